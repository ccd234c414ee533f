#pragma once
// The host's perspective camera: view and projection matrices and point projection.

#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/tgeom.h>

namespace GraphicsBase {

class RendererBase;

/// Camera looking from Position() at Target(). Call CalcMatrices() after changing it, or hand it the
/// host's own matrices with SetMatrices.
///
/// Matrix conventions: ViewMatrix() is glm::lookAt(Position(), Target(), UpVector()) (right-handed,
/// the camera looks down its -z) and ProjectionMatrix() is glm::perspective(fovy, width / height,
/// near, far) (clip z from -w to w), both column-major as glUniformMatrix4fv takes them unchanged.
///
/// Window convention of ProjectPoint/UnProjectPoint: x from 0 at the left edge to Width() at the
/// right, y from 0 at the bottom edge to Height() at the top (the GL window convention, not the
/// y-down convention of pointer events), depth 0 at the near plane and 1 at the far plane.
class GRAPHICSBASE_EXPORT Camera {
public:
    Camera();
    virtual ~Camera() = default;

    void SetPosition(const tgeom::vec& p) { position_ = p; }
    const tgeom::vec& Position() const { return position_; }
    void SetTarget(const tgeom::vec& t) { target_ = t; }
    const tgeom::vec& Target() const { return target_; }
    void SetUpVector(const tgeom::vec& up) { up_ = up; }
    const tgeom::vec& UpVector() const { return up_; }

    /// Vertical field of view in degrees and the clip distances.
    void SetPerspective(float fovyDegrees, float nearPlane, float farPlane);
    void SetViewport(int width, int height);
    int Width() const { return width_; }
    int Height() const { return height_; }

    /// Rebuilds the view matrix, and the projection unless the host's own is in use (SetMatrices),
    /// from the current parameters. With the position on the target, or a non-finite or degenerate
    /// result, it refuses with a message and keeps the matrices it had.
    void CalcMatrices();
    /// Takes the host's own view and projection matrices (perspective or orthographic, any matrix
    /// whose product is invertible) and its viewport in one call. Position, target (along the view
    /// direction, at the distance the target had) and up vector are derived from the view matrix;
    /// later CalcMatrices calls (a cube click) rebuild the view and keep this projection until
    /// SetPerspective. Refused with a message, the camera unchanged, for a viewport without pixels
    /// or non-finite or singular matrices.
    bool SetMatrices(const tgeom::mat4& view, const tgeom::mat4& projection, int width, int height);
    /// Whether the matrices and viewport can draw and pick: a positive viewport, finite matrices and an
    /// invertible view-projection. Widgets draw nothing with a camera that is not.
    bool Valid() const;
    /// True after SetMatrices, until SetPerspective.
    bool HostProjection() const { return hostProjection_; }
    const tgeom::mat4& ViewMatrix() const { return view_; }
    const tgeom::mat4& ProjectionMatrix() const { return projection_; }
    /// Unit vector from the position towards the target.
    tgeom::vec ViewDir() const;

    /// World point to window coordinates (see the class comment). False if w is 0.
    bool ProjectPoint(float x, float y, float z, float* sx, float* sy, float* sz) const;
    /// Window coordinates back to a world point. False if the matrices are singular.
    bool UnProjectPoint(float sx, float sy, float sz, float* x, float* y, float* z) const;

    /// Hands the view and projection matrices to a renderer before it draws.
    void SetMatrixParams(RendererBase* renderer) const;

private:
    tgeom::vec position_{0.f, 0.f, 5.f};
    tgeom::vec target_{0.f, 0.f, 0.f};
    tgeom::vec up_{0.f, 1.f, 0.f};
    float fovy_ = 45.f;
    float near_ = 0.1f;
    float far_ = 100.f;
    int width_ = 100;
    int height_ = 100;
    tgeom::mat4 view_{1.f};
    tgeom::mat4 projection_{1.f};
    bool hostProjection_ = false;
};

} // namespace GraphicsBase
