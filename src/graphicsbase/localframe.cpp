#include <graphicsbase/localframe.h>

#include <glm/gtc/matrix_transform.hpp>

namespace GraphicsBase {

void LocalFrame::setOrientation(const tgeom::quat& q) {
    float len = glm::length(q);
    orientation_ = len > 0.f ? q / len : tgeom::quat(1.f, 0.f, 0.f, 0.f);
}

tgeom::vec LocalFrame::xvector() const {
    return orientation_ * tgeom::vec(1.f, 0.f, 0.f);
}
tgeom::vec LocalFrame::yvector() const {
    return orientation_ * tgeom::vec(0.f, 1.f, 0.f);
}
tgeom::vec LocalFrame::zvector() const {
    return orientation_ * tgeom::vec(0.f, 0.f, 1.f);
}

void LocalFrame::rotate(float angle, const tgeom::vec& axis) {
    float len = glm::length(axis);
    if (len <= 0.f)
        return;
    rotate(glm::angleAxis(angle, axis / len));
}

void LocalFrame::rotate(const tgeom::quat& q) {
    setOrientation(q * orientation_);
}

void LocalFrame::reset() {
    position_ = tgeom::vec(0.f);
    orientation_ = tgeom::quat(1.f, 0.f, 0.f, 0.f);
    scale_ = tgeom::vec(1.f);
}

tgeom::mat4 LocalFrame::getMatrix() const {
    tgeom::mat4 m = glm::translate(tgeom::mat4(1.f), position_);
    m = m * glm::mat4_cast(orientation_);
    return glm::scale(m, scale_);
}

} // namespace GraphicsBase
