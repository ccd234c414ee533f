#include <trelvogui/gui/fadeinsequence.h>

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/controlbase.h>

using namespace GraphicsBase;

namespace GUI::Animation {

FadeInSequence::FadeInSequence(GUI::Controls::Base* control, float seconds) : Sequence(control, seconds) {
    // The control is hidden from construction on so that it does not flash before the start.
    if (control)
        control->GetLocalFrame()->setAlpha(0.f);
    alphaDelta_ = 1.f;
    alphaFunction_ = CubicEaseOut;
}

} // namespace GUI::Animation
