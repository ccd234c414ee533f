#pragma once
// A rigid-body pose with scale: what gizmos move and what the scene draws objects with.

#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/tgeom.h>

namespace GraphicsBase {

/// Position, unit orientation and per-axis scale. The axis vectors are the rotated unit axes.
class GRAPHICSBASE_EXPORT LocalFrame {
public:
    LocalFrame() = default;
    virtual ~LocalFrame() = default;

    const tgeom::vec& getPosition() const { return position_; }
    const tgeom::quat& getOrientation() const { return orientation_; }
    const tgeom::vec& getScale() const { return scale_; }
    void setPosition(const tgeom::vec& p) { position_ = p; }
    /// Stores the quaternion normalised; a zero quaternion resets to identity.
    void setOrientation(const tgeom::quat& q);
    void setScale(const tgeom::vec& s) { scale_ = s; }

    tgeom::vec xvector() const;
    tgeom::vec yvector() const;
    tgeom::vec zvector() const;

    /// Turns the frame by `angle` radians about `axis` given in world space.
    void rotate(float angle, const tgeom::vec& axis);
    /// Turns the frame by `q` applied after the current orientation (world space).
    void rotate(const tgeom::quat& q);
    void translate(const tgeom::vec& d) { position_ += d; }
    /// Multiplies the scale component-wise.
    void scale3D(const tgeom::vec& s) { scale_ *= s; }
    /// Back to the identity pose with unit scale.
    void reset();

    /// Translation * rotation * scale.
    tgeom::mat4 getMatrix() const;

private:
    tgeom::vec position_{0.f, 0.f, 0.f};
    tgeom::quat orientation_{1.f, 0.f, 0.f, 0.f};
    tgeom::vec scale_{1.f, 1.f, 1.f};
};

} // namespace GraphicsBase
