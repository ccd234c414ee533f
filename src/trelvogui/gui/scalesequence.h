#pragma once
// Preset sequence that shrinks a control to half its size.

#include <trelvogui/gui/animationsequence.h>

namespace GUI::Animation {

/// Shrinks the control from full to half size, fast at first.
class TRELVOGUI_EXPORT ScaleSequence : public Sequence {
public:
    /// Resets the control's scale to 1 at once; the shrinking runs once started.
    ScaleSequence(GUI::Controls::Base* control, float seconds);
};

} // namespace GUI::Animation
