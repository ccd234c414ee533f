#pragma once
// The transform a control's cached layer is composited with: offset, scale, orientation, opacity.

#include <trelvogui/trelvogui_export.h>

#include <glm/glm.hpp>
#include <glm/gtc/quaternion.hpp>

namespace GUI::Animation {

/// Position in pixels, scale, unit orientation and alpha in 0..1.
class TRELVOGUI_EXPORT Frame {
public:
    Frame() = default;
    virtual ~Frame() = default;

    /// Restores the identity frame.
    virtual void reset();

    glm::vec3 getPosition() const { return position_; }
    glm::vec3 getScale() const { return scale_; }
    glm::quat getOrientation() const { return orientation_; }
    float getAlpha() const { return alpha_; }

    void setPosition(glm::vec3 p) { position_ = p; }
    /// Ignored when a component is exactly 0: a scale is never degenerate.
    void setScale(glm::vec3 s);
    /// Ignored unless the length is within 1 +- 0.0001; stored normalised.
    void setOrientation(glm::quat q);
    /// Clamped to 0..1.
    void setAlpha(float a);
    /// Blend of `a` and `b` at t (clamped to 0..1); orientation along the shorter arc.
    void setWithInterpolation(Frame* a, Frame* b, float t);

private:
    glm::vec3 position_{0.f, 0.f, 0.f};
    glm::vec3 scale_{1.f, 1.f, 1.f};
    glm::quat orientation_{1.f, 0.f, 0.f, 0.f};
    float alpha_ = 1.f;
};

} // namespace GUI::Animation
