#pragma once
// Preset sequence that fades a control out.

#include <trelvogui/gui/animationsequence.h>

namespace GUI::Animation {

/// Fades the control from opaque to transparent, fast at first.
class TRELVOGUI_EXPORT FadeOutSequence : public Sequence {
public:
    /// Makes the control opaque at once; the fade runs once started.
    FadeOutSequence(GUI::Controls::Base* control, float seconds);
};

} // namespace GUI::Animation
