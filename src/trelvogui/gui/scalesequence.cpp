#include <trelvogui/gui/scalesequence.h>

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/controlbase.h>

using namespace GraphicsBase;

namespace GUI::Animation {

ScaleSequence::ScaleSequence(GUI::Controls::Base* control, float seconds) : Sequence(control, seconds) {
    if (control)
        control->GetLocalFrame()->setScale(glm::vec3(1.f));
    scaleDelta_ = glm::vec3(-0.5f);
    scaleFunction_ = CubicEaseOut;
}

} // namespace GUI::Animation
