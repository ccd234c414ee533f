#pragma once
// The view-orientation cube: a labelled cube in the lower-left corner that turns with the camera.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/easing.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>

#include <glm/gtc/quaternion.hpp>

#include <cstdint>
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
/// The twelve edges and eight corners are parts of their own (the kEdge and kCorner ids): a click
/// there looks at the target along that diagonal, upright. A drag on the cube orbits the camera
/// about its target, never past the poles; Escape or another button during the drag puts it back.
/// With SetFlightTime above 0 a click flies the camera to its view instead of jumping there, timed by
/// the manager's animation clock; the manager asks the host for a frame until the flight lands.
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
        // Edges, named after the two faces they join; a click looks along the sum of their normals.
        kEdgePlusXPlusY = 6,
        kEdgePlusXMinusY = 7,
        kEdgeMinusXPlusY = 8,
        kEdgeMinusXMinusY = 9,
        kEdgePlusXPlusZ = 10,
        kEdgePlusXMinusZ = 11,
        kEdgeMinusXPlusZ = 12,
        kEdgeMinusXMinusZ = 13,
        kEdgePlusYPlusZ = 14,
        kEdgePlusYMinusZ = 15,
        kEdgeMinusYPlusZ = 16,
        kEdgeMinusYMinusZ = 17,
        // Corners, named after the three faces they join.
        kCornerPlusXPlusYPlusZ = 18,
        kCornerPlusXPlusYMinusZ = 19,
        kCornerPlusXMinusYPlusZ = 20,
        kCornerPlusXMinusYMinusZ = 21,
        kCornerMinusXPlusYPlusZ = 22,
        kCornerMinusXPlusYMinusZ = 23,
        kCornerMinusXMinusYPlusZ = 24,
        kCornerMinusXMinusYMinusZ = 25,
        kPartCount = 26,
    };
    /// The unit direction from the target to the camera that a click on `part` takes (zero for an id
    /// that is no part), and the up vector that goes with it: world +y tilted into the view, or -z
    /// looking straight down or up the y axis.
    static glm::vec3 PartDirection(unsigned int part);
    static glm::vec3 PartUp(unsigned int part);
    TriadControl(std::shared_ptr<GraphicsBase::Camera> camera,
                 std::shared_ptr<GraphicsBase::DirectionalLight> light);
    /// Deletes the program, the geometry and the label texture (GL context current).
    ~TriadControl() override;

    /// Draws the cube; nothing before a successful Initialize. Leaves the viewport at (0, 0, w, h) of
    /// the viewport it found; texture unit 8's binding, the active unit, face culling, the front-face
    /// winding and the polygon mode as they were.
    bool CanDrawDirect() override { return true; }
    void DrawCustom() override;
    /// The cube's square, 10 pixels in from the lower-left corner.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    /// Places the camera on the clicked part's side (or starts flying there); 17 for the 26 parts, 0
    /// (nothing done) for other ids and for a release that ends an orbiting drag.
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseDown(GUI::Event* e) override;
    /// Orbits once the pointer has travelled a few pixels from the press: half a turn across the cube.
    GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override;
    GraphicsBase::DrawFlags OnCancelDrag(GUI::Event* e) override;
    /// The edge or corner under the pointer is drawn lit up (faces are not; none after the pointer
    /// leaves).
    GraphicsBase::DrawFlags OnMouseEnter(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseHover(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseExit(GUI::Event* e) override;
    /// The lit-up edge or corner, kPartCount for none.
    unsigned int HoveredPart() const { return hoveredPart_; }
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

    /// How long a click takes to bring the camera to its view, in seconds: 0 (the default) jumps at
    /// once; up to 10. Refused, with a message and the last value kept, outside that or NaN, and for
    /// a null easing curve. A click during a flight retargets from wherever the camera is then.
    bool SetFlightTime(float seconds, GUI::Animation::EasingFunction easing = GUI::Animation::CubicEaseInOut);
    float FlightTime() const { return flightSeconds_; }
    bool Flying() const { return flying_; }
    /// Whether edges and corners pick as parts of their own, taking the 20 diagonal views (default
    /// off: the whole face writes its face id, as the cube always did).
    void SetEdgesAndCorners(bool on);
    bool EdgesAndCorners() const { return edgesAndCorners_; }
    /// Whether a drag on the cube orbits the camera about its target (default off: a drag does what
    /// it did, and its release over the cube still clicks).
    void SetDragOrbits(bool on) { dragOrbits_ = on; }
    bool DragOrbits() const { return dragOrbits_; }

    const GraphicsBase::Camera* SceneCamera() const override { return camera_.get(); }
    const GraphicsBase::DirectionalLight* SceneLight() const override { return light_.get(); }

private:
    class FlightTicker;
    /// Moves the camera, rebuilds its matrices and tells the manager.
    void moveCamera(const glm::vec3& position, const glm::vec3& up);
    /// Puts the camera at `orientation`'s view of its target at `distance`; rebuilds and reports.
    void place(const glm::quat& orientation, float distance);
    /// One step of the flight at the clock's time; false once it has landed (or was stopped).
    bool advanceFlight();
    /// Takes the event's part as the lit-up one; true when that changed.
    bool hover(unsigned int part);

    std::shared_ptr<GraphicsBase::Camera> camera_;
    std::shared_ptr<GraphicsBase::DirectionalLight> light_;
    /// The material and part-table uniforms every build of the shader gets once.
    static void prepareProgram(GraphicsBase::GLSLProgram& program);
    std::unique_ptr<GraphicsBase::GLSLProgram> program_;
    // Built on first use, when the manager draws the cube straight into the host's framebuffer.
    std::unique_ptr<GraphicsBase::GLSLProgram> directProgram_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> vertexBuffer_;
    unsigned int labelTexture_ = 0;
    int minimumSize_ = 100;
    bool ready_ = false;
    bool edgesAndCorners_ = false;
    bool dragOrbits_ = false;
    unsigned int hoveredPart_ = kPartCount;

    float flightSeconds_ = 0.f;
    GUI::Animation::EasingFunction easing_ = GUI::Animation::CubicEaseInOut;
    bool flying_ = false;
    glm::quat flightFrom_{1.f, 0.f, 0.f, 0.f};
    glm::quat flightTo_{1.f, 0.f, 0.f, 0.f};
    glm::vec3 flightDirection_{0.f, 0.f, 1.f};
    glm::vec3 flightUp_{0.f, 1.f, 0.f};
    std::uint64_t flightStart_ = 0;
    std::weak_ptr<void> ticker_; ///< expires when the manager has deleted the running ticker

    // The press in progress: whether it orbits yet (or was cancelled), its travel and the pose it
    // started from.
    enum class Drag { None, Pending, Orbiting, Cancelled };
    Drag drag_ = Drag::None;
    int dragTravel_ = 0;
    glm::vec3 pressPosition_{0.f};
    glm::vec3 pressUp_{0.f, 1.f, 0.f};
};
