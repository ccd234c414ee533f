#include <trelvogui/manipulatorcontrol.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/manipulatorrenderer.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/logfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace GraphicsBase;

namespace {
constexpr float kQuarterTurn = 1.5707964f;

bool IsArrow(int id) {
    return id >= 1 && id <= 3;
}
bool IsRing(int id) {
    return id >= 4 && id <= 6;
}
bool IsScaleBox(int id) {
    return id >= 7 && id <= 9;
}
constexpr int kCentre = 10;
bool IsPlane(int id) {
    return id >= 11 && id <= 13;
}
bool IsHandle(int id) {
    return (id >= 1 && id <= kCentre) || IsPlane(id);
}
// The scale factor of a drag never falls below this.
constexpr double kMinimumScale = 0.05;
// Larger snap steps are refused: they would silently snap every drag back to its press.
constexpr float kMaxTranslationIncrement = 1e6f;
constexpr float kMaxScaleIncrement = 100.f;
constexpr float kMaxRotationIncrement = 6.2831855f;

/// Whether `step` is a usable snap step of at most `most`; says why not otherwise.
bool UsableStep(const char* operation, float step, float most) {
    if (step > 0.f && step <= most)
        return true;
    std::printf("ManipulatorControl::%s(): %g is not a usable step (it must lie above 0 and at most %g).\n",
                operation, static_cast<double>(step), static_cast<double>(most));
    return false;
}

bool Finite(const tgeom::vec& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}
} // namespace

ManipulatorControl::ManipulatorControl(std::shared_ptr<Camera> camera)
    : camera_(std::move(camera)), renderer_(std::make_shared<ManipulatorRenderer>(camera_)) {
    SetUsesCamera(true);
}

ManipulatorControl::~ManipulatorControl() = default;

bool ManipulatorControl::Initialize() {
    if (!camera_) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "ManipulatorControl::Initialize(): No camera was given.\n");
        return false;
    }
    GL::GLScopedBindings hostState;
    if (!renderer_->Initialize())
        return false;
    MaterialInfo material;
    material.color = tgeom::vec4(0.5f, 0.5f, 0.5f, 1.f);
    renderer_->SetMaterialInfo(material);
    renderer_->setVisible(true);
    lastPosition_ = getFrame().getPosition();
    lastOrientation_ = getFrame().getOrientation();
    lastScale_ = scale_;
    return true;
}

LocalFrame& ManipulatorControl::getFrame() {
    return renderer_->getFrame();
}

void ManipulatorControl::attachFrame(std::shared_ptr<LocalFrame> frame) {
    if (!frame)
        return;
    attachedFrame_ = std::move(frame);
    getFrame().setPosition(attachedFrame_->getPosition());
    getFrame().setOrientation(attachedFrame_->getOrientation());
    SetNeedsRedraw(true);
}

void ManipulatorControl::releaseFrame() {
    attachedFrame_.reset();
}

void ManipulatorControl::resetPrevFrame() {
    const LocalFrame& source = attachedFrame_ ? *attachedFrame_ : getFrame();
    prevFrame_.setPosition(source.getPosition());
    prevFrame_.setScale(source.getScale());
    prevFrame_.setOrientation(source.getOrientation());
}

void ManipulatorControl::setPosition(float x, float y, float z) {
    getFrame().setPosition({x, y, z});
    prevFrame_.setPosition({x, y, z});
    SetNeedsRedraw(true);
}

void ManipulatorControl::setOrientation(float w, float x, float y, float z) {
    tgeom::quat q(w, x, y, z);
    getFrame().setOrientation(q);
    prevFrame_.setOrientation(q);
    SetNeedsRedraw(true);
}

void ManipulatorControl::setScale(float x, float y, float z) {
    getFrame().setScale({x, y, z});
    prevFrame_.setScale({x, y, z});
    SetNeedsRedraw(true);
}

void ManipulatorControl::enableTranslation(bool x, bool y, bool z) {
    renderer_->setVisibleTranslate(x, y, z);
    SetNeedsRedraw(true);
}

void ManipulatorControl::enableRotation(bool x, bool y, bool z) {
    renderer_->setVisibleRotate(x, y, z);
    SetNeedsRedraw(true);
}

void ManipulatorControl::enableScaling(bool x, bool y, bool z) {
    renderer_->setVisibleScale(x, y, z);
    SetNeedsRedraw(true);
}

void ManipulatorControl::setRotationIncrement(float radians) {
    // A zero, negative or non-finite step would make every snapped angle 0 or NaN.
    if (UsableStep("setRotationIncrement", radians, kMaxRotationIncrement))
        rotationIncrement_ = radians;
}

bool ManipulatorControl::setTranslationIncrement(float step) {
    if (!UsableStep("setTranslationIncrement", step, kMaxTranslationIncrement))
        return false;
    translationIncrement_ = step;
    return true;
}

bool ManipulatorControl::setScaleIncrement(float step) {
    if (!UsableStep("setScaleIncrement", step, kMaxScaleIncrement))
        return false;
    scaleIncrement_ = step;
    return true;
}

void ManipulatorControl::setWorldAxes(bool v) {
    worldAxes_ = v;
    renderer_->setWorldAxes(v);
    SetNeedsRedraw(true);
}

void ManipulatorControl::setPlaneHandles(bool v) {
    renderer_->setPlaneHandles(v);
    SetNeedsRedraw(true);
}

bool ManipulatorControl::planeHandles() const {
    return renderer_->planeHandles();
}

void ManipulatorControl::SetVisible(bool v) {
    // Hiding cancels a drag under way, whose slot may delete the gizmo.
    std::weak_ptr<const void> alive = LifeToken();
    Base::SetVisible(v);
    if (alive.expired())
        return;
    SetNeedsRedraw(true);
    renderer_->setVisible(v);
}

void ManipulatorControl::DrawCustom() {
    // A degenerate camera (no pixels, NaN or singular matrices) would draw and pick NaN: nothing.
    if (!camera_ || !camera_->Valid())
        return;
    GL::GLScopedBindings hostState;
    camera_->SetMatrixParams(renderer_.get());
    renderer_->setPid(GetId());
    renderer_->setDimmed(!Enabled());
    renderer_->setPixelScale(DisplayScale());
    renderer_->Render();
}

bool ManipulatorControl::LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) {
    if (!camera_ || !renderer_)
        return false;
    renderer_->setPixelScale(DisplayScale());
    area = renderer_->LayerFootprint(layerWidth, layerHeight);
    return true;
}

glm::vec2 ManipulatorControl::toWindow(int x, int y) const {
    // By default window point (x, height - y); with exact pointer rows the centre of the pointer's
    // pixel, host row y being window row height - 1 - y.
    const GUI::GUIManager* manager = Manager();
    if (manager && manager->GetExactPointerRows())
        return {static_cast<float>(x) + 0.5f, static_cast<float>(camera_->Height() - y) - 0.5f};
    return {static_cast<float>(x), static_cast<float>(camera_->Height()) - static_cast<float>(y)};
}

bool ManipulatorControl::rayPlane(const glm::vec2& mouse, const tgeom::vec& normal, tgeom::vec& hit) const {
    tgeom::vec a, b;
    if (!camera_->UnProjectPoint(mouse.x, mouse.y, 0.f, &a.x, &a.y, &a.z) ||
        !camera_->UnProjectPoint(mouse.x, mouse.y, 1.f, &b.x, &b.y, &b.z))
        return false;
    tgeom::vec r = glm::normalize(b - a);
    float facing = glm::dot(r, normal);
    if (facing == 0.f || !std::isfinite(facing))
        return false;
    tgeom::vec at = a + (glm::dot(pressPosition_ - a, normal) / facing) * r;
    if (!Finite(at))
        return false;
    hit = at;
    return true;
}

void ManipulatorControl::planeDirection(const glm::vec2& mouse, const tgeom::vec& axis,
                                        tgeom::vec& out) const {
    tgeom::vec hit;
    if (!rayPlane(mouse, axis, hit))
        return;
    tgeom::vec towards = hit - pressPosition_;
    float length = glm::length(towards);
    if (length > 0.f && std::isfinite(length))
        out = towards / length;
}

tgeom::vec ManipulatorControl::handleAxis(int index) const {
    if (worldAxes_) {
        tgeom::vec world(0.f);
        world[index] = 1.f;
        return world;
    }
    LocalFrame& frame = renderer_->getFrame();
    return index == 0 ? frame.xvector() : index == 1 ? frame.yvector() : frame.zvector();
}

bool ManipulatorControl::snapping(bool setting) const {
    const GUI::GUIManager* manager = Manager();
    const bool invert = manager && (manager->Modifiers() & snapInvertModifiers_) != 0;
    return setting != invert;
}

tgeom::vec ManipulatorControl::snapOffset(const tgeom::vec& offset) const {
    if (!snapping(translationIncrementOn_))
        return offset;
    // Whole steps along each handle axis, so that a move along one axis stays on it.
    tgeom::vec snapped(0.f);
    for (int i = 0; i < 3; ++i) {
        const tgeom::vec axis = handleAxis(i);
        snapped +=
            axis * (std::round(glm::dot(offset, axis) / translationIncrement_) * translationIncrement_);
    }
    return snapped;
}

bool ManipulatorControl::projectedAxis(const tgeom::vec& axis, glm::vec2& start, glm::vec2& direction) const {
    const tgeom::vec p0 = pressPosition_;
    const tgeom::vec p1 = p0 + axis;
    glm::vec2 end;
    float depth = 0.f;
    if (!camera_->ProjectPoint(p0.x, p0.y, p0.z, &start.x, &start.y, &depth) ||
        !camera_->ProjectPoint(p1.x, p1.y, p1.z, &end.x, &end.y, &depth))
        return false;
    float length = glm::length(end - start);
    // An axis seen end-on gives the pointer nothing to slide along.
    if (!(length > 1e-6f))
        return false;
    direction = (end - start) / length;
    return true;
}

tgeom::vec ManipulatorControl::axisPoint(const tgeom::vec& axis) const {
    const tgeom::vec p0 = pressPosition_;
    glm::vec2 s0, d;
    if (!projectedAxis(axis, s0, d))
        return p0;
    glm::vec2 q = s0 + glm::dot(currentMouse_ - pressMouse_, d) * d;
    tgeom::vec a, b;
    if (!camera_->UnProjectPoint(q.x, q.y, 0.f, &a.x, &a.y, &a.z) ||
        !camera_->UnProjectPoint(q.x, q.y, 1.f, &b.x, &b.y, &b.z))
        return p0;
    tgeom::vec r = glm::normalize(b - a);
    tgeom::vec across = r - glm::dot(r, axis) * axis;
    float acrossLength = glm::length(across);
    if (!(acrossLength > 1e-6f))
        return p0;
    tgeom::vec n = across / acrossLength;
    tgeom::vec hit = a + r * ((glm::dot(n, p0) - glm::dot(n, a)) / glm::dot(n, r));
    return Finite(hit) ? hit : p0;
}

double ManipulatorControl::scaleFactor(const tgeom::vec& axis) const {
    glm::vec2 s0, d;
    if (!projectedAxis(axis, s0, d))
        return scale_;
    double factor = 1.0 + 0.005 * static_cast<double>(glm::dot(currentMouse_ - pressMouse_, d));
    // Measured from the press (factor 1), so that slow motion cannot creep past a step.
    if (snapping(scaleIncrementOn_))
        factor = 1.0 + std::round((factor - 1.0) / scaleIncrement_) * static_cast<double>(scaleIncrement_);
    return factor < kMinimumScale ? kMinimumScale : factor;
}

DrawFlags ManipulatorControl::OnMouseDown(GUI::Event* e) {
    if (!e || !camera_ || !Enabled() || !Visible())
        return DRAW_NOTHING;
    LocalFrame& frame = getFrame();
    activeHandle_ = static_cast<int>(e->sid);
    scale_ = 1.0;
    lastScale_ = 1.0;
    scaleStep_ = tgeom::vec(1.f);
    pressPosition_ = frame.getPosition();
    pressMouse_ = toWindow(e->x, e->y);
    currentMouse_ = pressMouse_;
    pressOrientation_ = frame.getOrientation();
    moved_ = false;
    refusalLogged_ = false;
    if (IsArrow(activeHandle_) || IsRing(activeHandle_))
        dragAxis_ = handleAxis((activeHandle_ - 1) % 3);
    else if (IsPlane(activeHandle_))
        dragAxis_ = handleAxis(activeHandle_ - 11);
    // scale boxes and the centre keep the axis of the last press; scale_ is 1 already
    planeDirection(pressMouse_, dragAxis_, pressDirection_);
    lastDirection_ = pressDirection_;
    pressPlanePoint_ = pressPosition_;
    if (IsPlane(activeHandle_))
        rayPlane(pressMouse_, dragAxis_, pressPlanePoint_);
    pressFrame_ = frame;
    if (attachedFrame_)
        attachedPressFrame_ = *attachedFrame_;
    dragging_ = IsHandle(activeHandle_); // a handle, not a stray id
    std::weak_ptr<const void> alive = LifeToken();
    processPressEvent();
    if (alive.expired())
        return DRAW_OVERLAY;
    if (dragging_)
        dragStartedSignal(pressFrame_, getFrame());
    if (!alive.expired())
        SetNeedsRedraw(true);
    return DRAW_OVERLAY;
}

DrawFlags ManipulatorControl::OnCancelDrag(GUI::Event*) {
    if (!dragging_)
        return DRAW_NOTHING;
    dragging_ = false;
    const LocalFrame abandoned = getFrame();
    getFrame() = pressFrame_;
    if (attachedFrame_)
        *attachedFrame_ = attachedPressFrame_;
    // Later moves of the still-held button and its release belong to no drag.
    activeHandle_ = 0;
    centreDragged_ = false;
    moved_ = true;
    scale_ = 1.0;
    lastScale_ = 1.0;
    lastPosition_ = pressFrame_.getPosition();
    lastOrientation_ = pressFrame_.getOrientation();
    std::weak_ptr<const void> alive = LifeToken();
    dragCancelledSignal(pressFrame_, abandoned);
    if (!alive.expired())
        SetNeedsRedraw(true);
    return DRAW_OVERLAY | DRAW_SCENE;
}

DrawFlags ManipulatorControl::OnDoubleClick(GUI::Event*) {
    return DRAW_NOTHING;
}

DrawFlags ManipulatorControl::OnMouseDrag(GUI::Event* e, int dx, int dy) {
    if (!e || !camera_)
        return DRAW_NOTHING;
    // The event is where the pointer was; the deltas bring it to where it is now (dy grows upward).
    glm::vec2 mouse = toWindow(e->x, e->y) + glm::vec2(static_cast<float>(dx), static_cast<float>(dy));
    if (mouse != pressMouse_)
        moved_ = true;
    if (!dragStep(mouse))
        return DRAW_NOTHING;
    std::weak_ptr<const void> alive = LifeToken();
    // One after the other: either may run host code that deletes the gizmo.
    DrawFlags r = processMoveEvent();
    if (alive.expired())
        return r | DRAW_OVERLAY;
    r |= processTransformation();
    // The gizmo itself moved whatever the host answered, so its picture is stale either way (unless
    // the host's slot deleted it).
    if (!alive.expired())
        SetNeedsRedraw(true);
    return r | DRAW_OVERLAY;
}

bool ManipulatorControl::dragStep(const glm::vec2& mouse) {
    LocalFrame& frame = getFrame();
    currentMouse_ = mouse;
    const tgeom::vec before = frame.getPosition();
    transformation_.reset();

    if (IsArrow(activeHandle_)) {
        tgeom::vec moved = axisPoint(handleAxis(activeHandle_ - 1));
        moved = pressPosition_ + snapOffset(moved - pressPosition_);
        frame.setPosition(moved);
        transformation_.setPosition(moved - before);
    } else if (IsPlane(activeHandle_)) {
        // Both axes of the plane at once; a ray parallel to the plane leaves the gizmo where it is.
        tgeom::vec hit;
        if (rayPlane(currentMouse_, dragAxis_, hit)) {
            tgeom::vec moved = pressPosition_ + snapOffset(hit - pressPlanePoint_);
            frame.setPosition(moved);
            transformation_.setPosition(moved - before);
        }
    } else if (IsRing(activeHandle_)) {
        // A ray parallel to the ring's plane meets it nowhere: the turn stays where the last usable
        // ray put it rather than jumping back to the press orientation.
        tgeom::vec v = lastDirection_;
        planeDirection(currentMouse_, dragAxis_, v);
        lastDirection_ = v;
        // The angle between the two directions; atan2 keeps it exact near 0, where acos of a dot
        // product a rounding error below 1 would already turn by half a milliradian.
        tgeom::vec across = glm::cross(pressDirection_, v);
        float angle = std::atan2(glm::length(across), std::clamp(glm::dot(pressDirection_, v), -1.f, 1.f));
        if (snapping(rotationIncrementOn_))
            angle = std::trunc(angle / rotationIncrement_) * rotationIncrement_;
        if (glm::dot(across, dragAxis_) < 0.f)
            angle = -angle;
        tgeom::vec axis = glm::normalize(dragAxis_);
        float half = angle * 0.5f;
        tgeom::quat q(std::cos(half), axis.x * std::sin(half), axis.y * std::sin(half),
                      axis.z * std::sin(half));
        const tgeom::quat old = frame.getOrientation();
        frame.setOrientation(q * pressOrientation_);
        transformation_.setOrientation(frame.getOrientation() * glm::conjugate(old));
    } else if (IsScaleBox(activeHandle_)) {
        const double old = scale_;
        int axisIndex = activeHandle_ - 7;
        // Scaling stays along the frame's own axes whatever the other handles follow.
        tgeom::vec axis = axisIndex == 0   ? frame.xvector()
                          : axisIndex == 1 ? frame.yvector()
                                           : frame.zvector();
        scale_ = scaleFactor(axis);
        tgeom::vec step(1.f);
        step[axisIndex] = static_cast<float>(scale_ / old);
        transformation_.setScale(step);
    } else if (activeHandle_ == kCentre) {
        // A move event that goes nowhere (hosts send one with the release) keeps it a click.
        if (currentMouse_ != pressMouse_)
            centreDragged_ = true;
        float sx = 0.f, sy = 0.f, sz = 0.f;
        tgeom::vec moved;
        if (camera_->ProjectPoint(pressPosition_.x, pressPosition_.y, pressPosition_.z, &sx, &sy, &sz) &&
            camera_->UnProjectPoint(currentMouse_.x, currentMouse_.y, sz, &moved.x, &moved.y, &moved.z) &&
            Finite(moved)) {
            moved = pressPosition_ + snapOffset(moved - pressPosition_);
            frame.setPosition(moved);
            transformation_.setPosition(moved - before);
        }
    } else {
        return false;
    }
    copyToAttached();
    calculateTransformations();
    return true;
}

void ManipulatorControl::copyToAttached() {
    if (!attachedFrame_)
        return;
    attachedFrame_->setPosition(getFrame().getPosition());
    attachedFrame_->setOrientation(getFrame().getOrientation());
}

void ManipulatorControl::calculateTransformations() {
    LocalFrame& frame = getFrame();
    const tgeom::vec p = frame.getPosition();
    deltaPosition_ = p - lastPosition_;
    lastPosition_ = p;
    const tgeom::quat o = frame.getOrientation();
    deltaOrientation_ = o * glm::inverse(lastOrientation_);
    lastOrientation_ = o;
    const float s = static_cast<float>(scale_ / lastScale_);
    lastScale_ = scale_;
    if (!IsScaleBox(activeHandle_))
        return;
    scaleStep_ = tgeom::vec(1.f);
    scaleStep_[activeHandle_ - 7] = s;
    if (uniformScaling_)
        scaleStep_ = tgeom::vec(s);
    if (attachedFrame_)
        attachedFrame_->scale3D(scaleStep_);
    frame.scale3D(scaleStep_);
}

DrawFlags ManipulatorControl::OnMouseUp(GUI::Event*) {
    const bool centre = activeHandle_ == kCentre;
    if (centre) {
        if (!centreDragged_) {
            rotationIncrementOn_ = !rotationIncrementOn_;
            renderer_->setVisiblePolyCircle(rotationIncrementOn_);
        } else {
            centreDragged_ = false;
        }
    }
    activeHandle_ = 0;
    std::weak_ptr<const void> alive = LifeToken();
    DrawFlags r = processReleaseEvent();
    if (alive.expired())
        return r | DRAW_OVERLAY;
    if (dragging_) {
        dragging_ = false;
        dragEndedSignal(pressFrame_, getFrame());
        if (alive.expired())
            return r | DRAW_OVERLAY;
    }
    if (r != DRAW_NOTHING || centre) {
        SetNeedsRedraw(true);
        return DRAW_OVERLAY;
    }
    return DRAW_NOTHING;
}

DrawFlags ManipulatorControl::OnClick(GUI::Event* e) {
    if (!e || !IsRing(static_cast<int>(e->sid)) || moved_)
        return DRAW_NOTHING;
    LocalFrame& frame = getFrame();
    glm::mat3 rotation = glm::mat3_cast(frame.getOrientation());
    tgeom::vec axis =
        worldAxes_ ? handleAxis(static_cast<int>(e->sid) - 4) : rotation[static_cast<int>(e->sid) - 4];
    // The step a slot reads is this turn, not what the last drag left there.
    transformation_.reset();
    const tgeom::quat old = frame.getOrientation();
    if (glm::length(axis) != 0.f)
        frame.rotate(kQuarterTurn, axis);
    transformation_.setOrientation(frame.getOrientation() * glm::conjugate(old));
    copyToAttached();
    calculateTransformations();
    std::weak_ptr<const void> alive = LifeToken();
    // One after the other: either may run host code that deletes the gizmo.
    DrawFlags r = processMoveEvent();
    if (alive.expired())
        return r | DRAW_OVERLAY;
    r |= processTransformation();
    if (!alive.expired())
        SetNeedsRedraw(true);
    return r | DRAW_OVERLAY;
}

DrawFlags ManipulatorControl::OnMouseEnter(GUI::Event* e) {
    hoveredHandle_ = e ? static_cast<int>(e->sid) : 0;
    SetNeedsRedraw(true);
    renderer_->setHighlightDof(static_cast<unsigned int>(hoveredHandle_));
    return DRAW_OVERLAY | DRAW_CONSUMED;
}

DrawFlags ManipulatorControl::OnMouseExit(GUI::Event*) {
    hoveredHandle_ = 0;
    renderer_->setHighlightDof(0);
    SetNeedsRedraw(true);
    return DRAW_OVERLAY;
}

DrawFlags ManipulatorControl::OnMouseHover(GUI::Event* e) {
    if (!e || static_cast<int>(e->sid) == hoveredHandle_)
        return DRAW_NOTHING;
    return OnMouseEnter(e);
}

DrawFlags ManipulatorControl::processPressEvent() {
    return DRAW_NOTHING;
}
DrawFlags ManipulatorControl::processMoveEvent() {
    return DRAW_NOTHING;
}
DrawFlags ManipulatorControl::processReleaseEvent() {
    return DRAW_NOTHING;
}
DrawFlags ManipulatorControl::processTapEvent() {
    return DRAW_NOTHING;
}

DrawFlags ManipulatorControl::processTransformation() {
    boost::optional<DrawFlags> result = transformationSignal();
    if (!result) {
        if (!refusalLogged_)
            LogFile::Instance().AddLine(LogLevel::Warning,
                                        "ManipulatorControl::processTransformation(): No slot is "
                                        "connected to transformationSignal; the change is not "
                                        "reported.\n");
        refusalLogged_ = true;
        return DRAW_NOTHING;
    }
    return *result;
}
