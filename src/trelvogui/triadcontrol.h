#pragma once
// The view-orientation cube: a labelled cube in the lower-left corner that turns with the camera.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>

#include <memory>

namespace GraphicsBase {
class Camera;
}
namespace GraphicsBase {
struct DirectionalLight;
}
namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

/// A lit cube whose faces name the axis directions, drawn with the host camera's view rotation in a
/// square viewport 10 pixels from the view's lower-left corner. Clicking a face moves the camera to
/// that side of its target at the same distance (face = the event's secondary id: 0 -Y, 1 +Y, 2 +Z,
/// 3 -X, 4 -Z, 5 +X). The host recomputes nothing: the camera's matrices are rebuilt here, and the
/// manager notices the change at its next update, as it notices the host's own camera moves.
///
/// Uses the camera and the light, so the manager redraws it whenever either changes.
class TRELVOGUI_EXPORT TriadControl : public GUI::Controls::Base {
public:
    /// Secondary ids the cube's faces write (the event's sid, a GUIManager::Locate part), named after
    /// the axis direction the face shows; a click puts the camera on that side.
    enum Face : unsigned int {
        kFaceMinusY = 0,
        kFacePlusY = 1,
        kFacePlusZ = 2,
        kFaceMinusX = 3,
        kFaceMinusZ = 4,
        kFacePlusX = 5,
    };
    TriadControl(std::shared_ptr<GraphicsBase::Camera> camera,
                 std::shared_ptr<GraphicsBase::DirectionalLight> light);
    /// Deletes the program, the geometry and the label texture (GL context current).
    ~TriadControl() override;

    /// Draws the cube; nothing before a successful Initialize. Leaves the viewport at (0, 0, w, h) of
    /// the viewport it found; texture unit 8's binding, the active unit, face culling, the front-face
    /// winding and the polygon mode as they were.
    void DrawCustom() override;
    /// The cube's square, 10 pixels in from the lower-left corner.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    /// Places the camera on the clicked face's side; 17 for faces 0-5, 0 (nothing done) otherwise.
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    /// With the GL context current: builds "Triad.vs" + "Triad.fs", the cube from the embedded model
    /// and the label texture. False (and nothing drawn) when any step fails.
    virtual bool Initialize();

    /// Smallest side of the cube's square in pixels; larger views get min(width, height) / 15.
    int MinimumSize() const { return minimumSize_; }
    void SetMinimumSize(int pixels);
    /// The side the next draw uses for the current camera size.
    int Side() const;
    /// The gap between the cube and the view's lower-left corner: 10 pixels times the display scale.
    int Margin() const;
    unsigned int LabelTexture() const { return labelTexture_; }

    const GraphicsBase::Camera* SceneCamera() const override { return camera_.get(); }
    const GraphicsBase::DirectionalLight* SceneLight() const override { return light_.get(); }

private:
    std::shared_ptr<GraphicsBase::Camera> camera_;
    std::shared_ptr<GraphicsBase::DirectionalLight> light_;
    std::unique_ptr<GraphicsBase::GLSLProgram> program_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> vertexBuffer_;
    unsigned int labelTexture_ = 0;
    int minimumSize_ = 100;
    bool ready_ = false;
};
