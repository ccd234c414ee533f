#pragma once
// Draws the transform gizmo in screen space and writes each handle's id for picking.

#include <trelvogui/trelvogui_export.h>

#include <trelvogui/gui/geometry.h>

#include <graphicsbase/glrendererbase.h>
#include <graphicsbase/localframe.h>
#include <graphicsbase/tgeom.h>

#include <glm/glm.hpp>

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

/// The gizmo of a ManipulatorControl: three arrows, three rings, three scale boxes and a centre
/// handle around the pose it owns (`getFrame`). Handles are flat meshes placed, turned and sized in
/// window pixels around the projected origin, so the gizmo keeps its size on screen at any distance.
/// Every handle writes the control's id and its own secondary id (1-3 arrows, 4-6 rings, 7-9 boxes,
/// 10 centre, 11-13 the optional plane squares normal to x, y and z) into the id layer.
///
/// Pixel convention: handles are placed in the camera's window coordinates exactly as
/// Camera::ProjectPoint returns them (origin bottom-left, y up), and drawn with a projection of the
/// same orientation, so the gizmo lands on the projected frame without any flip.
class TRELVOGUI_EXPORT ManipulatorRenderer : public GraphicsBase::GLRendererBase {
public:
    explicit ManipulatorRenderer(std::shared_ptr<GraphicsBase::Camera> camera);
    ~ManipulatorRenderer() override;

    ManipulatorRenderer(const ManipulatorRenderer&) = delete;
    ManipulatorRenderer& operator=(const ManipulatorRenderer&) = delete;

    /// Draws the translation arrow and the scale box of one axis.
    virtual void drawAxisX();
    virtual void drawAxisY();
    virtual void drawAxisZ();
    /// Draws the rotation band of one axis.
    virtual void drawRingX();
    virtual void drawRingY();
    virtual void drawRingZ();
    /// The centre handle: a round ring, or a hexagonal one while the polyCircle flag is set.
    virtual void DrawCircle();
    /// Builds the program and the five meshes. Needs a current GL context; false if a shader fails.
    virtual bool Initialize();
    virtual bool loadShaders();

    /// Draws the gizmo when initialised and visible.
    void Draw() override;

    /// The pixels Draw can touch in a layer of the given size: a square around the projected centre
    /// that holds every handle (empty when nothing would be drawn).
    GUI::Geometry::Rectangle LayerFootprint(int layerWidth, int layerHeight) const;

    GraphicsBase::LocalFrame& getFrame() { return frame_; }

    void setVisibleTranslate(bool x, bool y, bool z);
    void setVisibleRotate(bool x, bool y, bool z);
    void setVisibleScale(bool x, bool y, bool z);
    void setVisibleCenter(bool v) { centre_ = v; }
    void setVisiblePolyCircle(bool v) { polyCircle_ = v; }
    bool visiblePolyCircle() const { return polyCircle_; }
    void setVisible(bool v) { SetVisible(v); }
    void setPid(unsigned int pid) { pid_ = pid; }
    unsigned int pid() const { return pid_; }
    /// The hovered handle's id (0 = none); that handle is drawn mixed with the highlight colour.
    void setHighlightDof(unsigned int id) { highlightDof_ = id; }
    unsigned int highlightDof() const { return highlightDof_; }
    /// Bit i set hides handle i + 1 and makes it unpickable, for i = 0 to 8.
    void setDOFMask(unsigned int mask);
    unsigned int DOFMask() const { return dofMask_; }
    int primaryId() const { return primaryId_; }
    /// Whether handle id (1-9, 11-13) is shown and pickable. A plane square needs both of its
    /// plane's arrows.
    bool handleEnabled(int id) const {
        if (id >= 11 && id <= 13)
            return planeHandles_ && handles_[(id - 10) % 3] && handles_[(id - 9) % 3];
        return id >= 1 && id <= 9 && handles_[id - 1];
    }
    /// The three plane squares between pairs of arrows (off by default).
    void setPlaneHandles(bool v) { planeHandles_ = v; }
    bool planeHandles() const { return planeHandles_; }
    /// Arrows, rings and plane squares along the world axes; the scale boxes stay on the frame's.
    void setWorldAxes(bool v) { worldAxes_ = v; }
    bool worldAxes() const { return worldAxes_; }
    /// Greyed and at most half opaque: a dimmed gizmo writes no ids, so picking sees what is behind.
    void setDimmed(bool v) { dimmed_ = v; }
    /// Multiplies every pixel size and distance of the handles (the display scale; 1 by default).
    void setPixelScale(float scale) { pixelScale_ = scale; }
    float pixelScale() const { return pixelScale_; }
    bool dimmed() const { return dimmed_; }

    /// The frame's rotation with the stored translation in the translation column.
    void modelMatrix(glm::mat4& m) const;

private:
    void drawAxis(int axis);
    void drawRing(int axis);
    void drawPlane(int normal);
    bool projectAxis(const GraphicsBase::tgeom::vec& axis, glm::vec2& origin, glm::vec2& direction) const;
    glm::vec4 handleColor(int axis, unsigned int id) const;
    void drawMesh(const GraphicsBase::GLVertexBuffer& mesh, const glm::mat4& model, const glm::vec4& color,
                  unsigned int id, const glm::vec2& colorpos);
    /// The axis the arrows, rings and plane squares follow (world or frame); `localAxis` the frame's.
    GraphicsBase::tgeom::vec axisVector(int axis) const;
    GraphicsBase::tgeom::vec localAxis(int axis) const;

    GraphicsBase::LocalFrame frame_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> arrowHead_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> scaleBox_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> rotationArc_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> roundRing_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> hexRing_;
    std::unique_ptr<GraphicsBase::GLSLProgram> program_;
    // The build the fast path draws with where the context offers framebuffer fetch, and the one
    // drawing now.
    std::unique_ptr<GraphicsBase::GLSLProgram> fetchProgram_;
    // Built on first use, when the manager draws the gizmo straight into the host's framebuffer.
    std::unique_ptr<GraphicsBase::GLSLProgram> directProgram_;
    GraphicsBase::GLSLProgram* active_ = nullptr;
    float fadeStart_ = 0.85f;
    float fadeSlope_ = 30.f;
    // Translate X, Y, Z, rotate X, Y, Z, scale X, Y, Z.
    bool handles_[9] = {true, true, true, true, true, true, true, true, true};
    bool centre_ = true;
    bool polyCircle_ = false;
    bool planeHandles_ = false;
    bool worldAxes_ = false;
    bool dimmed_ = false;
    float pixelScale_ = 1.f;
    // The centre's outer radius as a fraction of the ring radius, the least thickness of a ring seen
    // edge-on (so it stays pickable) as a fraction of the radius, and the shade of a band's thin end.
    float centreSize_ = 0.2f;
    float ringMinimumThickness_ = 0.04f;
    float bandShade_ = 0.7f;
    int primaryId_ = 200;
    unsigned int pid_ = 0;
    int axisIndex_[3] = {0, 1, 2};
    glm::vec4 highlightColor_{1.f, 1.f, 1.f, 0.5f};
    glm::vec4 axisColor_[3] = {{1.f, 0.f, 0.f, 1.f}, {0.f, 1.f, 0.f, 1.f}, {0.f, 0.f, 1.f, 1.f}};
    glm::vec4 neutralColor_{0.8f, 0.8f, 0.8f, 1.f};
    unsigned int highlightDof_ = 0;
    unsigned int dofMask_ = 1;
    GraphicsBase::tgeom::vec translation_{0.f};
};
