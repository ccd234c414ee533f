#include <trelvogui/gui/moveinsequence.h>

namespace GUI::Animation {

MoveInSequence::MoveInSequence(GUI::Controls::Base* control, float seconds)
    : FadeInSequence(control, seconds) {}

} // namespace GUI::Animation
