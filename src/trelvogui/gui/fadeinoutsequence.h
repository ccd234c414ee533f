#pragma once
// Preset sequence that fades a control out along a smooth sine.

#include <trelvogui/gui/animationsequence.h>

namespace GUI::Animation {

/// Fades the control from opaque to transparent, slow at both ends. It fades one way only: a
/// round trip is two sequences.
class TRELVOGUI_EXPORT FadeInOutSequence : public Sequence {
public:
    /// Makes the control opaque at once; the fade runs once started.
    FadeInOutSequence(GUI::Controls::Base* control, float seconds);
};

} // namespace GUI::Animation
