#pragma once
// Preset sequence that fades a control in.

#include <trelvogui/gui/animationsequence.h>

namespace GUI::Animation {

/// Fades the control from transparent to opaque, fast at first.
class TRELVOGUI_EXPORT FadeInSequence : public Sequence {
public:
    /// Makes the control transparent at once; the fade runs once started.
    FadeInSequence(GUI::Controls::Base* control, float seconds);
};

} // namespace GUI::Animation
