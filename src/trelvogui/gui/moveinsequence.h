#pragma once
// Preset sequence that brings a control in: a fade-in plus a caller-given movement.

#include <trelvogui/gui/fadeinsequence.h>

namespace GUI::Animation {

/// Fades the control in exactly like FadeInSequence; the caller adds the movement with
/// SetTranslation.
class TRELVOGUI_EXPORT MoveInSequence : public FadeInSequence {
public:
    /// Makes the control transparent at once; the fade runs once started.
    MoveInSequence(GUI::Controls::Base* control, float seconds);
};

} // namespace GUI::Animation
