#include <graphicsbase/srgbcolor.h>

#include <cmath>

namespace GraphicsBase {

float SrgbColor::ToLinear(float c) {
    return c <= 0.04045f ? c / 12.92f : std::pow((c + 0.055f) / 1.055f, 2.4f);
}

float SrgbColor::FromLinear(float c) {
    return c <= 0.0031308f ? c * 12.92f : 1.055f * std::pow(c, 1.f / 2.4f) - 0.055f;
}

glm::vec4 SrgbColor::ToLinear() const {
    return {ToLinear(r), ToLinear(g), ToLinear(b), a};
}

} // namespace GraphicsBase
