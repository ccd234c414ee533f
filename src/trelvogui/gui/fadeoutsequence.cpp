#include <trelvogui/gui/fadeoutsequence.h>

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/controlbase.h>

using namespace GraphicsBase;

namespace GUI::Animation {

FadeOutSequence::FadeOutSequence(GUI::Controls::Base* control, float seconds) : Sequence(control, seconds) {
    if (control)
        control->GetLocalFrame()->setAlpha(1.f);
    alphaDelta_ = -1.f;
    alphaFunction_ = CubicEaseOut;
}

} // namespace GUI::Animation
