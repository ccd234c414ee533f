#include <graphicsbase/directionallight.h>

namespace GraphicsBase {

tgeom::vec DirectionalLight::Direction() const {
    float len = glm::length(position);
    return len > 0.f ? position / len : tgeom::vec(0.f, 0.f, 1.f);
}

} // namespace GraphicsBase
