#pragma once
// Draws a flat unit square or circle outline on a shared frame in the host's 3D view.

#include <trelvogui/trelvogui_export.h>

#include <trelvogui/gui/geometry.h>

#include <graphicsbase/glrendererbase.h>

#include <memory>

namespace GraphicsBase {
class Camera;
}
namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}
namespace GraphicsBase {
class LocalFrame;
}

/// The outline's shape; any other value draws nothing.
enum PlanarShape : int { Square = 1, Disc = 2 };

/// An outline in the x-y plane of a frame it shares with its owner, spanning -0.5..0.5 on both local
/// axes before the frame's scale, so the gizmo's scale handles stretch it. It reads the frame at every
/// draw and needs no updating when the frame moves. Drawn with the view and projection matrices the
/// camera hands over (Camera::SetMatrixParams).
class TRELVOGUI_EXPORT PlanarShapeRenderer : public GraphicsBase::GLRendererBase {
public:
    explicit PlanarShapeRenderer(std::shared_ptr<GraphicsBase::LocalFrame> frame);
    ~PlanarShapeRenderer() override;

    PlanarShapeRenderer(const PlanarShapeRenderer&) = delete;
    PlanarShapeRenderer& operator=(const PlanarShapeRenderer&) = delete;

    /// Loads the program and builds both outlines (current GL context needed); prints why on failure.
    bool Initialize();
    /// Draws the current shape when initialised and visible.
    void Draw() override;
    /// The pixels Draw can touch in a layer of the given size with the camera's matrices: the
    /// projected bounds of the outline (empty when nothing would be drawn). False when some of the
    /// outline lies behind the camera, where its projection bounds nothing.
    bool LayerFootprint(const GraphicsBase::Camera& camera, int layerWidth, int layerHeight,
                        GUI::Geometry::Rectangle& area) const;

    void SetVisible(bool v) { visible_ = v; }
    bool IsVisible() const { return visible_; }
    PlanarShape GetShape() const { return shape_; }
    void SetShape(PlanarShape shape) { shape_ = shape; }

private:
    /// Places the unit outline on the frame.
    glm::mat4 modelMatrix() const;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> _vbSquare;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> _vbDisc;
    PlanarShape shape_ = Square;
    std::shared_ptr<GraphicsBase::LocalFrame> frame_;
    bool visible_ = true;
    std::unique_ptr<GraphicsBase::GLSLProgram> program_;
    // Built on first use, when the manager draws the widget straight into the host's framebuffer.
    std::unique_ptr<GraphicsBase::GLSLProgram> directProgram_;
};
