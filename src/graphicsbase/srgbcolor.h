#pragma once
// A colour given in sRGB space, with conversion to linear light for shading.

#include <graphicsbase/graphicsbase_export.h>

#include <glm/glm.hpp>

namespace GraphicsBase {

/// Four channels in 0..1, sRGB encoded (alpha linear).
struct GRAPHICSBASE_EXPORT SrgbColor {
    float r = 0.f, g = 0.f, b = 0.f, a = 1.f;

    SrgbColor() = default;
    SrgbColor(float red, float green, float blue, float alpha = 1.f) : r(red), g(green), b(blue), a(alpha) {}

    glm::vec4 ToVec4() const { return {r, g, b, a}; }
    /// The colour in linear light (alpha unchanged).
    glm::vec4 ToLinear() const;
    static float ToLinear(float channel);
    static float FromLinear(float channel);
};

} // namespace GraphicsBase
