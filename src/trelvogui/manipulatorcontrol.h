#pragma once
// The transform gizmo: a control that turns drags on its handles into moves, turns and scales.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/drawflags.h>
#include <graphicsbase/localframe.h>
#include <graphicsbase/tgeom.h>

#include <boost/signals2/signal.hpp>

#include <memory>

namespace GraphicsBase {
class Camera;
}
class ManipulatorRenderer;

/// A gizmo in the overlay's control tree, drawn over the host's 3D view with the host's camera. A
/// press on a handle (the event's secondary id: 1-3 arrows, 4-6 rings, 7-9 scale boxes, 10 centre,
/// 11-13 the optional plane squares)
/// starts a drag that moves, turns or scales the gizmo's frame, keeps an attached frame in step and
/// fires `transformationSignal` after every step; `getTransformation` holds that step's change.
///
/// Pointer positions arrive in host pixels with y down; the control turns them into the camera's
/// window coordinates (y up, see Camera) once, so every ray computation works in one convention.
/// Connect a slot to `transformationSignal` before the first drag: without one the step is still
/// made, and a refusal is logged once per press.
///
/// Disabled (SetEnabled(false)), the gizmo draws dimmed and writes no ids, so the pointer reaches
/// what lies behind it.
class TRELVOGUI_EXPORT ManipulatorControl : public GUI::Controls::Base {
public:
    using TransformationSignal = boost::signals2::signal<GraphicsBase::DrawFlags()>;
    /// Secondary ids the handles write into the id layer (the event's sid, a GUIManager::Locate part).
    enum Handle : unsigned int {
        kNoHandle = 0,
        kTranslateX = 1,
        kTranslateY = 2,
        kTranslateZ = 3,
        kRotateX = 4,
        kRotateY = 5,
        kRotateZ = 6,
        kScaleX = 7,
        kScaleY = 8,
        kScaleZ = 9,
        kCentre = 10,
        /// The squares between two arrows (setPlaneHandles): a drag moves in the plane normal to x,
        /// y or z.
        kTranslateYZ = 11,
        kTranslateZX = 12,
        kTranslateXY = 13,
    };

    /// The frame at the press and as it is now (at the release, or when the drag was cancelled).
    using DragSignal = boost::signals2::signal<void(const GraphicsBase::LocalFrame& atPress,
                                                    const GraphicsBase::LocalFrame& now)>;

    TransformationSignal transformationSignal;
    /// A press on a handle starts a drag and its release ends it: one undo step per drag for a host.
    DragSignal dragStartedSignal;
    DragSignal dragEndedSignal;
    /// Escape or another button during a drag: the gizmo and the attached frame are back at their
    /// press state when this fires, and no end follows.
    DragSignal dragCancelledSignal;
    /// Free for hosts; the library never fires them.
    TransformationSignal reservedSignal1;
    TransformationSignal reservedSignal2;
    TransformationSignal reservedSignal3;

    explicit ManipulatorControl(std::shared_ptr<GraphicsBase::Camera> camera);
    ~ManipulatorControl() override;

    bool CanDrawDirect() override { return true; }
    void DrawCustom() override;
    /// Where the gizmo can draw: a square around its projected centre.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    GraphicsBase::DrawFlags OnMouseDown(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnDoubleClick(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override;
    GraphicsBase::DrawFlags OnMouseUp(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseEnter(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseExit(GUI::Event* e) override;
    /// Moving from one handle to another inside the gizmo moves the highlight along.
    GraphicsBase::DrawFlags OnMouseHover(GUI::Event* e) override;
    /// A click on a ring turns the gizmo a quarter turn about that ring's axis.
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    void SetVisible(bool v) override;
    /// Puts the gizmo and the attached frame back where the drag under way started. Nothing without
    /// a drag.
    GraphicsBase::DrawFlags OnCancelDrag(GUI::Event* e) override;
    /// Builds the renderer (current GL context needed). False if its shaders fail.
    virtual bool Initialize();

    /// Hooks for derived controls and hosts; each returns 0 here.
    virtual GraphicsBase::DrawFlags processPressEvent();
    virtual GraphicsBase::DrawFlags processMoveEvent();
    virtual GraphicsBase::DrawFlags processReleaseEvent();
    virtual GraphicsBase::DrawFlags processTapEvent();
    /// Fires `transformationSignal` and returns its last slot's value, or 0 when no slot is connected.
    virtual GraphicsBase::DrawFlags processTransformation();

    /// Keeps `frame` in step with the gizmo and moves the gizmo onto it. A null frame changes nothing.
    void attachFrame(std::shared_ptr<GraphicsBase::LocalFrame> frame);
    void releaseFrame();
    GraphicsBase::LocalFrame& getFrame();
    GraphicsBase::LocalFrame& getPrevFrame() { return prevFrame_; }
    GraphicsBase::LocalFrame& getTransformation() { return transformation_; }
    /// Copies the attached frame's pose (or the gizmo's, with none attached) into the previous frame.
    void resetPrevFrame();
    void setPosition(float x, float y, float z);
    void setOrientation(float w, float x, float y, float z);
    void setScale(float x, float y, float z);
    void enableTranslation(bool x, bool y, bool z);
    void enableRotation(bool x, bool y, bool z);
    void enableScaling(bool x, bool y, bool z);
    void setUniformScaling(bool v) { uniformScaling_ = v; }
    bool rotationIncrementSupported() { return true; }
    bool rotatonIncrementOn() { return rotationIncrementOn_; }
    void setRotatationIncrementOn(bool v) { rotationIncrementOn_ = v; }
    /// The snapping step in radians.
    float rotationIncrement() { return rotationIncrement_; }
    void setRotationIncrement(float radians);
    /// Arrow, plane-square and centre moves snap to whole steps (world units) of the motion from the
    /// press, counted along the handle axes. Off by default; the step is 1.
    bool translationIncrementOn() const { return translationIncrementOn_; }
    void setTranslationIncrementOn(bool v) { translationIncrementOn_ = v; }
    float translationIncrement() const { return translationIncrement_; }
    /// False, with a message and the step kept, for a step that is not finite and positive or is
    /// above 1e6.
    bool setTranslationIncrement(float step);
    /// Scale drags snap the factor of the drag (1 at the press) to whole steps. Off by default; the
    /// step is 0.1.
    bool scaleIncrementOn() const { return scaleIncrementOn_; }
    void setScaleIncrementOn(bool v) { scaleIncrementOn_ = v; }
    float scaleIncrement() const { return scaleIncrement_; }
    /// False, with a message and the step kept, for a step that is not finite and positive or is
    /// above 100.
    bool setScaleIncrement(float step);
    /// While any of these modifier bits is held (the latest pointer or key event's modifiers, in the
    /// backend's encoding: Ctrl is 0x2 with GLFW, 0xC0 with SDL, 0x04000000 with Qt), every kind of
    /// snapping is inverted for the drag. 0 (the default) turns the inversion off.
    void setSnapInvertModifiers(unsigned int mask) { snapInvertModifiers_ = mask; }
    unsigned int snapInvertModifiers() const { return snapInvertModifiers_; }
    /// Arrows, rings and plane squares follow the world axes instead of the frame's, and moves and
    /// turns act about them; the scale boxes stay on the frame's axes and scale it along them.
    void setWorldAxes(bool v);
    bool worldAxes() const { return worldAxes_; }
    /// Adds the three plane squares (kTranslateYZ, kTranslateZX, kTranslateXY). Off by default.
    void setPlaneHandles(bool v);
    bool planeHandles() const;
    /// Per-step deltas against the pose at the previous call; applies the step's scale to the frames.
    void calculateTransformations();

    const std::shared_ptr<ManipulatorRenderer>& GetRenderer() const { return renderer_; }
    const std::shared_ptr<GraphicsBase::Camera>& GetCamera() const { return camera_; }
    int ActiveHandle() const { return activeHandle_; }
    int HoveredHandle() const { return hoveredHandle_; }
    const GraphicsBase::tgeom::vec& DeltaPosition() const { return deltaPosition_; }
    const GraphicsBase::tgeom::quat& DeltaOrientation() const { return deltaOrientation_; }
    const GraphicsBase::tgeom::vec& ScaleStep() const { return scaleStep_; }

protected:
    /// Unit vector from the press position to where the pointer's ray meets the plane through it
    /// with normal `axis`; `out` is left unchanged when the ray runs parallel to that plane.
    void planeDirection(const glm::vec2& mouse, const GraphicsBase::tgeom::vec& axis,
                        GraphicsBase::tgeom::vec& out) const;
    /// The point on the line through the press position along `axis` under the pointer's motion
    /// along the projected axis, measured from the press (the grab offset is ignored).
    GraphicsBase::tgeom::vec axisPoint(const GraphicsBase::tgeom::vec& axis) const;
    /// The press position and the unit direction of `axis` from it, in window pixels. False when the
    /// axis points at the viewer (no direction on screen) or does not project.
    bool projectedAxis(const GraphicsBase::tgeom::vec& axis, glm::vec2& start, glm::vec2& direction) const;
    /// 1 + 0.005 per pixel of pointer motion along the projected axis, never below 0.05.
    double scaleFactor(const GraphicsBase::tgeom::vec& axis) const;
    /// Where the pointer's ray meets the plane through the press position with normal `normal`; false
    /// (and `hit` unchanged) when it runs parallel to the plane or does not unproject.
    bool rayPlane(const glm::vec2& mouse, const GraphicsBase::tgeom::vec& normal,
                  GraphicsBase::tgeom::vec& hit) const;
    /// The axis a handle of axis index 0-2 works along: the world's or the frame's.
    GraphicsBase::tgeom::vec handleAxis(int index) const;
    /// Whether snapping of the given setting applies now (the invert modifiers flip it).
    bool snapping(bool setting) const;
    /// `offset` with its components along the handle axes rounded to whole translation steps when
    /// translation snapping applies.
    GraphicsBase::tgeom::vec snapOffset(const GraphicsBase::tgeom::vec& offset) const;
    /// A host pointer position in the camera's window coordinates.
    glm::vec2 toWindow(int x, int y) const;
    /// One step of the drag under way; false when the pressed id is no handle.
    bool dragStep(const glm::vec2& mouse);
    void copyToAttached();

    const GraphicsBase::Camera* SceneCamera() const override { return camera_.get(); }

private:
    std::shared_ptr<GraphicsBase::Camera> camera_;
    std::shared_ptr<ManipulatorRenderer> renderer_;
    std::shared_ptr<GraphicsBase::LocalFrame> attachedFrame_;
    double scale_ = 1.0;
    int activeHandle_ = 0;
    GraphicsBase::LocalFrame prevFrame_;
    GraphicsBase::LocalFrame transformation_;
    GraphicsBase::tgeom::vec pressPosition_{0.f};
    GraphicsBase::tgeom::vec dragAxis_{1.f, 0.f, 0.f};
    GraphicsBase::tgeom::vec lastPosition_{0.f};
    GraphicsBase::tgeom::quat lastOrientation_{1.f, 0.f, 0.f, 0.f};
    double lastScale_ = 1.0;
    GraphicsBase::tgeom::vec deltaPosition_{0.f};
    GraphicsBase::tgeom::quat deltaOrientation_{1.f, 0.f, 0.f, 0.f};
    GraphicsBase::tgeom::vec scaleStep_{1.f};
    glm::vec2 pressMouse_{0.f};
    glm::vec2 currentMouse_{0.f};
    GraphicsBase::tgeom::quat pressOrientation_{1.f, 0.f, 0.f, 0.f};
    GraphicsBase::tgeom::vec pressDirection_{1.f, 0.f, 0.f};
    GraphicsBase::tgeom::vec lastDirection_{1.f, 0.f, 0.f};
    float rotationIncrement_ = 0.0872665f;
    bool uniformScaling_ = false;
    bool rotationIncrementOn_ = false;
    bool centreDragged_ = false;
    float translationIncrement_ = 1.f;
    float scaleIncrement_ = 0.1f;
    bool translationIncrementOn_ = false;
    bool scaleIncrementOn_ = false;
    bool worldAxes_ = false;
    unsigned int snapInvertModifiers_ = 0;
    // Where the pointer's ray met the dragged plane square's plane at the press: plane moves keep
    // the grab offset.
    GraphicsBase::tgeom::vec pressPlanePoint_{0.f};
    int hoveredHandle_ = 0;
    // The poses at the press, to give back on a cancel and to report with the drag's edges.
    GraphicsBase::LocalFrame pressFrame_;
    GraphicsBase::LocalFrame attachedPressFrame_;
    bool dragging_ = false;
    // Whether the pointer moved since the press: a quick drag also ends as a click, which must not
    // add a quarter turn to the turn the drag made.
    bool moved_ = false;
    bool refusalLogged_ = false;
};
