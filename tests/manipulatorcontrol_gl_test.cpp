// The transform gizmo and the plane widget through the real path: drawn by the manager into its
// layers, picked from the id layer, driven by pointer events through the input manager.
#include "support/glfixture.h"
#include "support/layerpixels.h"
#include "support/shaderdir.h"

#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/guiinputmanager.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/manipulatorrenderer.h>
#include <trelvogui/planecontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/inputhandler.h>

#include <glm/gtc/matrix_transform.hpp>

#include <GL/glew.h>

#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <tuple>

using namespace GraphicsBase;

namespace {
constexpr int kW = 640;
constexpr int kH = 480;
constexpr float kDegree = 0.017453292f;

class GizmoTest : public trelvo::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        GUI::Clock::SetSource([this] { return now; });
        camera = std::make_shared<Camera>();
        camera->SetPosition({3.f, 2.5f, 4.f});
        camera->SetTarget({0.f, 0.f, 0.f});
        camera->SetPerspective(45.f, 0.1f, 100.f);
        camera->SetViewport(kW, kH);
        camera->CalcMatrices();
        manager = std::make_shared<GUI::GUIManager>();
        ASSERT_TRUE(manager->Initialize());
        manager->Resize(kW, kH);
        input = std::make_unique<GUI::GUIInputManager>(scene);
        input->addScreenHandler(manager.get());
    }

    void TearDown() override {
        input.reset();
        manager.reset();
        GUI::Clock::SetSource({});
        GLTest::TearDown();
    }

    /// Registers the gizmo with a slot that counts steps, at an off-centre position.
    void Add(ManipulatorControl& gizmo, tgeom::vec at = {0.6f, -0.3f, 0.4f}) {
        ASSERT_TRUE(gizmo.Initialize());
        gizmo.setPosition(at.x, at.y, at.z);
        gizmo.transformationSignal.connect([this] {
            ++steps;
            return DRAW_SCENE;
        });
        gizmo.Register(manager);
        manager->UpdateLayers();
    }

    /// Window pixel of a world point, computed with GLM from the camera's matrices.
    glm::vec2 Window(const tgeom::vec& p) {
        glm::vec3 w =
            glm::project(p, camera->ViewMatrix(), camera->ProjectionMatrix(), glm::vec4(0, 0, kW, kH));
        return {w.x, w.y};
    }

    /// (pid, sid) at window pixel (x, y), y up.
    std::pair<unsigned, unsigned> Hit(glm::vec2 at) {
        unsigned pid = 0, sid = 0;
        manager->HitDetect(static_cast<int>(std::floor(at.x)), static_cast<int>(std::floor(at.y)), &pid,
                           &sid);
        return {pid, sid};
    }

    /// Every handle of the control in the id layer: sid -> pixel count and a pixel deep inside the
    /// handle (its neighbours two pixels away carry the same ids), for pressing on it.
    std::map<unsigned, std::pair<int, glm::ivec2>> Handles(unsigned pid) {
        const trelvo::test::LayerPixels layers = trelvo::test::ReadLayers(*manager, kW, kH);
        auto is = [&](int x, int y, unsigned sid) {
            return layers.Pid(x, y) == pid && layers.Sid(x, y) == sid;
        };
        std::map<unsigned, std::pair<int, glm::ivec2>> found;
        for (int y = 0; y < kH; ++y)
            for (int x = 0; x < kW; ++x) {
                if (layers.Pid(x, y) != pid)
                    continue;
                const unsigned sid = layers.Sid(x, y);
                auto& entry = found[sid];
                if (++entry.first == 1 ||
                    (is(x + 2, y, sid) && is(x - 2, y, sid) && is(x, y + 2, sid) && is(x, y - 2, sid)))
                    entry.second = {x, y};
            }
        return found;
    }

    std::array<uint8_t, 4> LayerColor(glm::vec2 at) {
        return trelvo::test::ReadLayers(*manager, kW, kH)
            .Color(static_cast<int>(at.x), static_cast<int>(at.y));
    }

    // Pointer input in window pixels (y up), turned into the host's y-down pixels.
    void MoveTo(glm::vec2 p, int buttons = 0) {
        // Window pixel (floor x, floor y) is host pixel (floor x, height - floor y).
        int x = static_cast<int>(std::floor(p.x)), y = kH - static_cast<int>(std::floor(p.y));
        input->mouseMoveEvent(x, y, lastX, lastY, buttons, modifiers);
        lastX = x;
        lastY = y;
        manager->UpdateLayers();
    }
    void PressAt(glm::vec2 p) {
        MoveTo(p);
        input->mousePressEvent(lastX, lastY, lastX, lastY, 1, modifiers);
    }
    void ReleaseAt(glm::vec2 p, uint64_t heldMs = 500) {
        MoveTo(p, 1);
        now += heldMs;
        input->mouseReleaseEvent(lastX, lastY, lastX, lastY, 0, modifiers);
        manager->UpdateLayers();
    }
    /// Press at `from`, drag in `stepsCount` moves to `to`, release after a long hold (no click).
    void Drag(glm::vec2 from, glm::vec2 to, int stepsCount = 5) {
        PressAt(from);
        for (int i = 1; i <= stepsCount; ++i)
            MoveTo(from + (to - from) * (static_cast<float>(i) / stepsCount), 1);
        ReleaseAt(to);
    }
    void Click(glm::vec2 at) {
        PressAt(at);
        ReleaseAt(at, 50);
    }

    /// Where handle `id` of `gizmo` sits: head middle, box centre, or a band or plane-square pixel.
    glm::vec2 HandlePoint(ManipulatorControl& gizmo, int id) {
        const LocalFrame& f = gizmo.getFrame();
        glm::vec2 o = Window(f.getPosition());
        if (id == 10)
            return o + glm::vec2(15.f, 0.f);
        if ((id >= 4 && id <= 6) || id > 10) {
            auto found = Handles(gizmo.GetId());
            EXPECT_TRUE(found.count(static_cast<unsigned>(id))) << "handle " << id << " is drawn";
            return glm::vec2(found[static_cast<unsigned>(id)].second) + glm::vec2(0.5f);
        }
        // Arrows follow the world axes when the gizmo says so; scale boxes always the frame's.
        const bool world = gizmo.worldAxes() && id <= 3;
        const tgeom::vec axes[3] = {world ? tgeom::vec(1, 0, 0) : f.xvector(),
                                    world ? tgeom::vec(0, 1, 0) : f.yvector(),
                                    world ? tgeom::vec(0, 0, 1) : f.zvector()};
        tgeom::vec a = axes[(id - 1) % 3];
        glm::vec2 u = glm::normalize(Window(f.getPosition() + a) - o);
        float s = std::sqrt(1.f - std::pow(glm::dot(a, camera->ViewDir()), 2.f));
        return o + u * ((id <= 3 ? 70.f : 120.f) * s) + glm::vec2(0.5f);
    }

    GraphicsScene scene;
    std::shared_ptr<Camera> camera;
    std::shared_ptr<GUI::GUIManager> manager;
    std::unique_ptr<GUI::GUIInputManager> input;
    uint64_t now = 1000;
    int lastX = 0;
    int lastY = 0;
    int steps = 0;
    int modifiers = 0;
};

/// Angle in radians and unit axis of the turn from `a` to `b`.
std::pair<float, tgeom::vec> TurnBetween(const tgeom::quat& a, const tgeom::quat& b) {
    tgeom::quat d = b * glm::inverse(a);
    if (d.w < 0.f)
        d = -d;
    float angle = 2.f * std::acos(std::min(1.f, d.w));
    tgeom::vec axis(d.x, d.y, d.z);
    float len = glm::length(axis);
    return {angle, len > 0.f ? axis / len : tgeom::vec(0.f)};
}
} // namespace

TEST_F(GizmoTest, EveryHandleIsDrawnWhereTheFrameProjectsAndPickedWithItsId) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    auto drawn = Handles(gizmo.GetId());
    for (unsigned id = 1; id <= 10; ++id)
        EXPECT_GT(drawn[id].first, 30) << "handle " << id << " covers pixels of its own";

    // The centre ring surrounds the projected origin; arrow heads and boxes lie along each projected
    // axis at 60-90 and 120 pixels (times the axis' sine against the line of sight).
    for (int id : {1, 2, 3, 7, 8, 9, 10}) {
        auto [pid, sid] = Hit(HandlePoint(gizmo, id));
        EXPECT_EQ(pid, gizmo.GetId()) << "handle " << id;
        EXPECT_EQ(sid, static_cast<unsigned>(id)) << "handle " << id;
    }

    // Hidden handles are neither drawn nor picked; the rest stay.
    gizmo.GetRenderer()->setDOFMask(0x1FF);
    EXPECT_EQ(gizmo.GetRenderer()->DOFMask(), 0x1FFu);
    gizmo.SetNeedsRedraw(true);
    manager->UpdateLayers();
    drawn = Handles(gizmo.GetId());
    EXPECT_EQ(drawn.size(), 1u) << "only the centre is left";
    EXPECT_GT(drawn[10].first, 30);
    gizmo.GetRenderer()->setDOFMask(0);
    gizmo.enableScaling(true, false, true);
    manager->UpdateLayers();
    drawn = Handles(gizmo.GetId());
    EXPECT_EQ(drawn.count(8), 0u);
    EXPECT_EQ(drawn.count(7), 1u);
}

TEST_F(GizmoTest, AnAxisSeenEndOnFadesOutWhileTheOthersStay) {
    // Look straight down the frame's z axis: the z arrow and box vanish, x and y are at full length.
    camera->SetPosition({0.f, 0.f, 6.f});
    camera->CalcMatrices();
    ManipulatorControl gizmo(camera);
    Add(gizmo, {0.f, 0.f, 0.f});
    auto drawn = Handles(gizmo.GetId());
    EXPECT_EQ(drawn.count(3), 0u);
    EXPECT_EQ(drawn.count(9), 0u);
    glm::vec2 o(kW / 2.f, kH / 2.f);
    EXPECT_EQ(Hit(o + glm::vec2(61.f, 0.f)).second, 1u) << "x head starts 60 px out";
    EXPECT_EQ(Hit(o + glm::vec2(120.f, 0.f)).second, 7u) << "x box 120 px out";
    EXPECT_EQ(Hit(o + glm::vec2(0.f, 120.f)).second, 8u) << "y box 120 px up: y up on screen";
}

TEST_F(GizmoTest, HoverHighlightsTheHandleUnderThePointer) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    glm::vec2 arrow = HandlePoint(gizmo, 1);
    auto plain = LayerColor(arrow);
    EXPECT_EQ(plain[0], 255);
    EXPECT_EQ(plain[1], 0);

    MoveTo(HandlePoint(gizmo, 1) + glm::vec2(40.f, 40.f));
    MoveTo(arrow);
    EXPECT_EQ(gizmo.HoveredHandle(), 1);
    auto lit = LayerColor(arrow);
    EXPECT_EQ(lit[0], 255);
    EXPECT_NEAR(lit[1], 128, 2) << "half way to the white highlight";
    EXPECT_EQ(LayerColor(HandlePoint(gizmo, 7))[1], 0) << "the same axis' box keeps pure red";

    MoveTo(HandlePoint(gizmo, 8));
    EXPECT_EQ(gizmo.HoveredHandle(), 8) << "the highlight moves along inside the gizmo";
    MoveTo({5.f, 5.f});
    EXPECT_EQ(gizmo.GetRenderer()->highlightDof(), 0u);
}

TEST_F(GizmoTest, ArrowDragsSlideTheFrameAlongItsAxisUnderThePointer) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setOrientation(std::cos(0.3f), 0.f, std::sin(0.3f), 0.f);
    manager->UpdateLayers();
    auto attached = std::make_shared<LocalFrame>(gizmo.getFrame());
    gizmo.attachFrame(attached);

    // Each axis, with a pointer motion that has a component across the axis (which must be ignored)
    // and a vertical part, so a wrong y convention shows.
    for (int id : {1, 2, 3}) {
        const LocalFrame& f = gizmo.getFrame();
        tgeom::vec axis = id == 1 ? f.xvector() : id == 2 ? f.yvector() : f.zvector();
        tgeom::vec p0 = f.getPosition();
        glm::vec2 o = Window(p0);
        glm::vec2 d = glm::normalize(Window(p0 + axis) - o);
        glm::vec2 motion = d * 45.f + glm::vec2(-d.y, d.x) * 20.f + glm::vec2(0.f, 12.f);
        glm::vec2 grab = HandlePoint(gizmo, id);
        ASSERT_EQ(Hit(grab).second, static_cast<unsigned>(id));
        int before = steps;
        Drag(grab, grab + motion);
        EXPECT_EQ(steps - before, 6) << "a signal per drag step: five moves and the release's";

        tgeom::vec p1 = gizmo.getFrame().getPosition();
        tgeom::vec moved = p1 - p0;
        EXPECT_GT(glm::length(moved), 0.05f);
        EXPECT_NEAR(glm::length(glm::cross(moved, axis)), 0.f, 1e-3f) << "only along the axis, id " << id;
        // The pointer moves in whole pixels.
        glm::vec2 expected = o + d * glm::dot(glm::floor(grab + motion) - glm::floor(grab), d);
        EXPECT_NEAR(glm::distance(Window(p1), expected), 0.f, 1.f)
            << "the centre follows the pointer, id " << id;
        EXPECT_EQ(attached->getPosition(), p1) << "the attached frame follows";
    }
}

TEST_F(GizmoTest, CentreDragsInTheViewPlaneAndACentreClickTogglesSnapping) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    const float depth = glm::project(gizmo.getFrame().getPosition(), camera->ViewMatrix(),
                                     camera->ProjectionMatrix(), glm::vec4(0, 0, kW, kH))
                            .z;
    glm::vec2 target = Window(gizmo.getFrame().getPosition()) + glm::vec2(-70.f, 55.f);
    Drag(HandlePoint(gizmo, 10), target);
    EXPECT_FALSE(gizmo.rotatonIncrementOn()) << "press, drag, release does not toggle";
    glm::vec3 w = glm::project(gizmo.getFrame().getPosition(), camera->ViewMatrix(),
                               camera->ProjectionMatrix(), glm::vec4(0, 0, kW, kH));
    EXPECT_NEAR(w.x, target.x, 1.f);
    EXPECT_NEAR(w.y, target.y, 1.f);
    EXPECT_NEAR(w.z, depth, 1e-4f) << "at the depth it had";

    Click(HandlePoint(gizmo, 10));
    EXPECT_TRUE(gizmo.rotatonIncrementOn());
    EXPECT_TRUE(gizmo.GetRenderer()->visiblePolyCircle()) << "the centre is drawn as a hexagon";
    ReleaseAt(HandlePoint(gizmo, 10)); // a stray release without a press changes nothing
    PressAt(HandlePoint(gizmo, 10));
    ReleaseAt(HandlePoint(gizmo, 10)); // held long: not a click, but still no drag
    EXPECT_FALSE(gizmo.rotatonIncrementOn());
}

TEST_F(GizmoTest, UnderAnOrthographicHostCameraHandlesArePickedAndDragsFollowThePointer) {
    ASSERT_TRUE(
        camera->SetMatrices(camera->ViewMatrix(), glm::ortho(-4.f, 4.f, -3.f, 3.f, 0.1f, 50.f), kW, kH));
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    for (int id : {1, 2, 3, 7, 8, 9, 10})
        EXPECT_EQ(Hit(HandlePoint(gizmo, id)), std::make_pair(gizmo.GetId(), static_cast<unsigned>(id)))
            << "handle " << id;

    // An arrow drag slides along the axis with the pointer's component along it.
    const tgeom::vec p0 = gizmo.getFrame().getPosition(), axis = gizmo.getFrame().yvector();
    const glm::vec2 o = Window(p0), d = glm::normalize(Window(p0 + axis) - o);
    const glm::vec2 grab = HandlePoint(gizmo, 2), motion = d * 40.f + glm::vec2(-d.y, d.x) * 15.f;
    Drag(grab, grab + motion);
    const tgeom::vec p1 = gizmo.getFrame().getPosition();
    EXPECT_NEAR(glm::length(glm::cross(p1 - p0, axis)), 0.f, 1e-3f);
    EXPECT_NEAR(glm::distance(Window(p1), o + d * glm::dot(glm::floor(grab + motion) - glm::floor(grab), d)),
                0.f, 1.f);

    // The centre moves in the view plane, keeping its depth.
    const float depth =
        glm::project(p1, camera->ViewMatrix(), camera->ProjectionMatrix(), glm::vec4(0, 0, kW, kH)).z;
    const glm::vec2 target = Window(p1) + glm::vec2(-60.f, 45.f);
    Drag(HandlePoint(gizmo, 10), target);
    const glm::vec3 w = glm::project(gizmo.getFrame().getPosition(), camera->ViewMatrix(),
                                     camera->ProjectionMatrix(), glm::vec4(0, 0, kW, kH));
    EXPECT_NEAR(glm::distance(glm::vec2(w), target), 0.f, 1.5f);
    EXPECT_NEAR(w.z, depth, 1e-4f);
}

TEST_F(GizmoTest, PointerPositionsBecomeWindowPointsAsThePointerRowSettingSays) {
    struct Exposed : ManipulatorControl {
        using ManipulatorControl::ManipulatorControl;
        using ManipulatorControl::toWindow;
    };
    Exposed gizmo(camera);
    const float h = kH;
    EXPECT_EQ(gizmo.toWindow(10, 20), glm::vec2(10.f, h - 20.f)) << "no manager: the default";
    Add(gizmo);
    const struct {
        bool exact;
        int x, y;
        glm::vec2 window;
    } cases[] = {{false, 10, 20, {10.f, h - 20.f}},
                 {false, 0, 0, {0.f, h}},
                 {true, 10, 20, {10.5f, h - 20.5f}},
                 {true, 0, 0, {0.5f, h - 0.5f}}};
    for (const auto& c : cases) {
        manager->SetExactPointerRows(c.exact);
        EXPECT_EQ(gizmo.toWindow(c.x, c.y), c.window) << c.x << "," << c.y << (c.exact ? " (exact)" : "");
    }
    manager->SetExactPointerRows(false);
}

TEST_F(GizmoTest, AHostCameraMoveIsFollowedWithoutBeingReportedAndADegenerateOneDrawsNothing) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    camera->SetPosition({-3.f, 1.f, 4.f});
    camera->CalcMatrices();
    manager->UpdateLayers(); // no SetCameraUpdated
    EXPECT_EQ(Hit(HandlePoint(gizmo, 10)), std::make_pair(gizmo.GetId(), 10u))
        << "drawn where the camera is now";
    camera->SetViewport(0, 0);
    manager->UpdateLayers();
    EXPECT_TRUE(Handles(gizmo.GetId()).empty());
}

TEST_F(GizmoTest, RingDragsTurnBySnappedStepsWithTheTurningSense) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setRotatationIncrementOn(true);

    // The camera looks down on the x-z plane, so turning the pointer anticlockwise on screen about
    // the centre turns anticlockwise seen from +y: a positive turn about y.
    glm::vec2 o = Window(gizmo.getFrame().getPosition());
    glm::vec2 grab = HandlePoint(gizmo, 5);
    for (float sense : {1.f, -1.f}) {
        const tgeom::quat press = gizmo.getFrame().getOrientation();
        PressAt(grab);
        glm::vec2 r = grab - o;
        for (int i = 1; i <= 6; ++i) {
            float a = sense * static_cast<float>(i) * 7.f * kDegree;
            glm::vec2 p =
                o + glm::vec2(r.x * std::cos(a) - r.y * std::sin(a), r.x * std::sin(a) + r.y * std::cos(a));
            MoveTo(p, 1);
            auto [angle, axis] = TurnBetween(press, gizmo.getFrame().getOrientation());
            float steps5 = angle / (5.f * kDegree);
            EXPECT_NEAR(steps5, std::round(steps5), 1e-3f) << "whole multiples of 5 degrees";
            if (angle > 1e-4f) {
                EXPECT_NEAR(glm::dot(axis, tgeom::vec(0, 1, 0)), sense, 1e-4f) << "turning sense " << sense;
            }
        }
        ReleaseAt(o + glm::vec2(r.x * std::cos(sense * 0.7f) - r.y * std::sin(sense * 0.7f),
                                r.x * std::sin(sense * 0.7f) + r.y * std::cos(sense * 0.7f)));
        auto [angle, axis] = TurnBetween(press, gizmo.getFrame().getOrientation());
        EXPECT_GT(angle, 20.f * kDegree);
        grab = HandlePoint(gizmo, 5);
    }
}

TEST_F(GizmoTest, ARayParallelToTheRingsPlaneKeepsTheTurnMadeSoFar) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    const glm::vec2 o = Window(gizmo.getFrame().getPosition()), grab = HandlePoint(gizmo, 4);
    const tgeom::quat press = gizmo.getFrame().getOrientation();
    PressAt(grab);
    const glm::vec2 r = grab - o, turned = o + glm::vec2(r.x * 0.9f - r.y * 0.44f, r.x * 0.44f + r.y * 0.9f);
    MoveTo(turned, 1);
    const tgeom::quat before = gizmo.getFrame().getOrientation();
    ASSERT_GT(TurnBetween(press, before).first, 10.f * kDegree);
    // The host switches to a view straight down -z: every ray now runs parallel to the x ring's plane.
    ASSERT_TRUE(
        camera->SetMatrices(glm::lookAt(glm::vec3(0.f, 0.f, 10.f), glm::vec3(0.f), glm::vec3(0.f, 1.f, 0.f)),
                            glm::ortho(-4.f, 4.f, -3.f, 3.f, 0.1f, 50.f), kW, kH));
    MoveTo(turned + glm::vec2(30.f, 20.f), 1);
    EXPECT_LT(TurnBetween(before, gizmo.getFrame().getOrientation()).first, 1e-4f);
    ReleaseAt(turned + glm::vec2(30.f, 20.f));
    EXPECT_LT(TurnBetween(before, gizmo.getFrame().getOrientation()).first, 1e-4f);
}

TEST_F(GizmoTest, ADragReportsItsEdgesAndEscapeOrAnotherButtonPutsItBackExactly) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setOrientation(std::cos(0.2f), 0.f, std::sin(0.2f), 0.f);
    manager->UpdateLayers();
    auto attached = std::make_shared<LocalFrame>(gizmo.getFrame());
    attached->setScale({2.f, 2.f, 2.f});
    gizmo.attachFrame(attached);
    int started = 0, ended = 0, cancelled = 0;
    LocalFrame reportedPress, reportedNow;
    auto record = [&](int& count) {
        return [&](const LocalFrame& atPress, const LocalFrame& now) {
            ++count;
            reportedPress = atPress;
            reportedNow = now;
        };
    };
    gizmo.dragStartedSignal.connect(record(started));
    gizmo.dragEndedSignal.connect(record(ended));
    gizmo.dragCancelledSignal.connect(record(cancelled));
    auto same = [](const LocalFrame& a, const LocalFrame& b) {
        return a.getPosition() == b.getPosition() && a.getOrientation() == b.getOrientation() &&
               a.getScale() == b.getScale();
    };

    // A finished drag: one start and one end carrying the press pose and the released one.
    const LocalFrame before = gizmo.getFrame();
    Drag(HandlePoint(gizmo, 1), HandlePoint(gizmo, 1) + glm::vec2(40.f, 5.f));
    EXPECT_EQ(std::make_pair(started, ended), std::make_pair(1, 1));
    EXPECT_TRUE(same(reportedPress, before));
    EXPECT_TRUE(same(reportedNow, gizmo.getFrame()));
    EXPECT_FALSE(same(before, gizmo.getFrame()));
    EXPECT_FALSE(input->keyPressEvent(256, 0)) << "Escape with no drag does nothing";
    EXPECT_EQ(cancelled, 0);
    manager->UpdateLayers();

    const std::function<bool()> cancels[] = {
        [&] { return input->keyPressEvent(27, 0); }, [&] { return input->keyPressEvent(256, 0); },
        [&] { return input->keyPressEvent(0x01000000, 0); },
        [&] { return input->mousePressEvent(lastX, lastY, lastX, lastY, 3, 0); }};
    for (int id : {2, 5, 8, 10})
        for (std::size_t how = 0; how < std::size(cancels); ++how) {
            SCOPED_TRACE("handle " + std::to_string(id) + ", cancel " + std::to_string(how));
            const LocalFrame gizmoAtPress = gizmo.getFrame(), attachedAtPress = *attached;
            const glm::vec2 grab = HandlePoint(gizmo, id);
            PressAt(grab);
            MoveTo(grab + glm::vec2(25.f, 30.f), 1);
            ASSERT_FALSE(same(gizmo.getFrame(), gizmoAtPress));
            const int before = cancelled;
            gizmo.ClearNeedsRedraw();
            scene.ClearDrawFlags();
            EXPECT_TRUE(cancels[how]());
            EXPECT_EQ(cancelled - before, 1);
            EXPECT_TRUE(scene.GetDrawFlags() & DRAW_SCENE);
            EXPECT_TRUE(gizmo.NeedsRedraw());
            EXPECT_TRUE(same(gizmo.getFrame(), gizmoAtPress));
            EXPECT_TRUE(same(*attached, attachedAtPress));
            EXPECT_TRUE(same(reportedPress, gizmoAtPress));
            // The held button's later moves, a quick release and a second Escape change nothing.
            MoveTo(grab + glm::vec2(60.f, -20.f), 1);
            ReleaseAt(grab, 50);
            EXPECT_FALSE(input->keyPressEvent(256, 0));
            EXPECT_TRUE(same(gizmo.getFrame(), gizmoAtPress));
            EXPECT_TRUE(same(*attached, attachedAtPress));
            EXPECT_EQ(cancelled - before, 1);
            EXPECT_EQ(ended, 1) << "a cancelled drag does not end";
            EXPECT_FALSE(gizmo.rotatonIncrementOn()) << "nor does it become a centre click";
            manager->UpdateLayers();
        }
}

TEST_F(GizmoTest, ARingClickTurnsAQuarterAboutTheFramesOwnAxisButAQuickRingDragDoesNot) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setOrientation(std::cos(0.25f), std::sin(0.25f) * 0.6f, 0.f, std::sin(0.25f) * 0.8f);
    manager->UpdateLayers();
    auto attached = std::make_shared<LocalFrame>(gizmo.getFrame());
    gizmo.attachFrame(attached);

    for (int id : {4, 5, 6}) {
        const tgeom::quat before = gizmo.getFrame().getOrientation();
        const LocalFrame& f = gizmo.getFrame();
        tgeom::vec own = id == 4 ? f.xvector() : id == 5 ? f.yvector() : f.zvector();
        int signals = steps;
        Click(HandlePoint(gizmo, id));
        auto [angle, axis] = TurnBetween(before, gizmo.getFrame().getOrientation());
        EXPECT_NEAR(angle, 1.5707964f, 1e-4f) << "ring " << id;
        EXPECT_NEAR(glm::dot(axis, own), 1.f, 1e-4f) << "about its own current axis, ring " << id;
        EXPECT_EQ(steps - signals, 2) << "the release's move (no turn) and the click";
        EXPECT_EQ(attached->getOrientation(), gizmo.getFrame().getOrientation());
        manager->UpdateLayers();
    }

    // A drag released within the click window is still a drag: no extra quarter turn.
    const tgeom::quat before = gizmo.getFrame().getOrientation();
    glm::vec2 grab = HandlePoint(gizmo, 6);
    PressAt(grab);
    MoveTo(grab + glm::vec2(1.f, 0.f), 1);
    MoveTo(grab, 1);
    ReleaseAt(grab, 50);
    EXPECT_LT(TurnBetween(before, gizmo.getFrame().getOrientation()).first, 5.f * kDegree);
}

TEST_F(GizmoTest, ScaleHandlesStopAtAFloorAndUniformScalingScalesEveryAxis) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    auto attached = std::make_shared<LocalFrame>(gizmo.getFrame());
    gizmo.attachFrame(attached);
    glm::vec2 o = Window(gizmo.getFrame().getPosition());
    glm::vec2 box = HandlePoint(gizmo, 7);
    glm::vec2 inward = glm::normalize(o - box);

    // Far past the centre in one step.
    PressAt(box);
    MoveTo(box + inward * 900.f, 1);
    ReleaseAt(box + inward * 900.f);
    EXPECT_EQ(gizmo.getFrame().getScale(), tgeom::vec(0.05f, 1.f, 1.f));
    EXPECT_EQ(attached->getScale(), tgeom::vec(0.05f, 1.f, 1.f));

    gizmo.setScale(1.f, 1.f, 1.f);
    attached->setScale(tgeom::vec(1.f));
    gizmo.setUniformScaling(true);
    manager->UpdateLayers();
    box = HandlePoint(gizmo, 8);
    glm::vec2 outward = glm::normalize(box - o);
    PressAt(box);
    MoveTo(box + outward * 30.f, 1);
    MoveTo(box + outward * 60.f, 1); // 1 + 0.005 * 60 in all
    tgeom::vec step = gizmo.getTransformation().getScale();
    EXPECT_FLOAT_EQ(step.x, 1.f) << "the step still reports the dragged axis alone";
    EXPECT_NEAR(step.y, 1.3f / 1.15f, 1e-2f);
    EXPECT_FLOAT_EQ(step.z, 1.f);
    ReleaseAt(box + outward * 60.f);
    tgeom::vec s = gizmo.getFrame().getScale();
    EXPECT_NEAR(s.x, 1.3f, 1e-2f);
    EXPECT_FLOAT_EQ(s.x, s.y);
    EXPECT_FLOAT_EQ(s.x, s.z);
    EXPECT_EQ(attached->getScale(), s);
}

TEST_F(GizmoTest, EverySnapCountsWholeStepsFromThePressAndTheModifierInvertsIt) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setPlaneHandles(true);
    constexpr float kStep = 0.25f;
    ASSERT_TRUE(gizmo.setTranslationIncrement(kStep));
    ASSERT_TRUE(gizmo.setScaleIncrement(kStep));
    gizmo.setSnapInvertModifiers(0x2);
    const tgeom::quat orientation(std::cos(0.1f), 0.f, std::sin(0.1f), 0.f);
    const tgeom::vec at = gizmo.getFrame().getPosition();
    // What a drag changed, in the steps snapping counts: the move along the frame's axes, the scale
    // factor's change, the turn in 5-degree steps.
    auto measure = [&](int id) {
        const LocalFrame& f = gizmo.getFrame();
        if (id >= 4 && id <= 6)
            return glm::vec3(TurnBetween(orientation, f.getOrientation()).first / (5.f * kDegree), 0.f, 0.f);
        if (id >= 7 && id <= 9)
            return (f.getScale() - 1.f) / kStep;
        const tgeom::vec d = f.getPosition() - at;
        return glm::vec3(glm::dot(d, f.xvector()), glm::dot(d, f.yvector()), glm::dot(d, f.zvector())) /
               kStep;
    };
    auto whole = [](const glm::vec3& v) {
        return glm::all(glm::lessThan(glm::abs(v - glm::round(v)), glm::vec3(2e-3f)));
    };
    for (int id : {1, 3, 11, 13, 10, 7, 8, 5}) {
        // Snapping off, on with the modifier held (so off), on, off with the modifier held (so on).
        const std::pair<bool, int> runs[] = {{false, 0}, {true, 2}, {true, 0}, {false, 2}};
        glm::vec3 ends[4];
        for (int run = 0; run < 4; ++run) {
            SCOPED_TRACE("handle " + std::to_string(id) + ", run " + std::to_string(run));
            const auto [on, held] = runs[run];
            gizmo.setPosition(at.x, at.y, at.z);
            gizmo.setOrientation(orientation.w, orientation.x, orientation.y, orientation.z);
            gizmo.setScale(1.f, 1.f, 1.f);
            gizmo.setTranslationIncrementOn(on);
            gizmo.setScaleIncrementOn(on);
            gizmo.setRotatationIncrementOn(on);
            manager->UpdateLayers();
            const glm::vec2 grab = HandlePoint(gizmo, id);
            const glm::vec2 out = glm::normalize(grab - Window(at)),
                            motion = out * 60.f + glm::vec2(-out.y, out.x) * 30.f;
            const bool snapped = on != (held != 0);
            modifiers = held;
            PressAt(grab);
            // A slow drag: every move is below a step, so snapping each move would never leave the press.
            bool allWhole = true;
            for (int i = 1; i <= 20; ++i) {
                MoveTo(grab + motion * (static_cast<float>(i) / 20.f), 1);
                allWhole = allWhole && whole(measure(id));
            }
            ReleaseAt(grab + motion);
            modifiers = 0;
            ends[run] = measure(id);
            EXPECT_EQ(allWhole, snapped);
        }
        EXPECT_GE(glm::length(ends[0]), 1.f) << "handle " << id << " moved at least a step";
        // Rotations keep whole steps towards the press, moves and scales go to the nearest step.
        const glm::vec3 expected = id >= 4 && id <= 6 ? glm::trunc(ends[0]) : glm::round(ends[0]);
        EXPECT_LT(glm::distance(ends[1], ends[0]), 2e-3f) << "handle " << id;
        for (int run : {2, 3})
            EXPECT_LT(glm::distance(ends[run], expected), 2e-3f) << "handle " << id << ": no creep";
    }
}

TEST_F(GizmoTest, WithWorldAxesMovesAndTurnsFollowTheWorldWhileScalingStaysOnTheFrame) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    gizmo.setOrientation(std::cos(0.25f), std::sin(0.25f) * 0.6f, 0.f, std::sin(0.25f) * 0.8f);
    gizmo.setWorldAxes(true);
    manager->UpdateLayers();
    const tgeom::vec world[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int id : {1, 2, 3, 7, 8})
        EXPECT_EQ(Hit(HandlePoint(gizmo, id)).second, static_cast<unsigned>(id)) << "handle " << id;
    for (int id : {1, 2, 3}) {
        const tgeom::vec p0 = gizmo.getFrame().getPosition();
        const glm::vec2 grab = HandlePoint(gizmo, id);
        Drag(grab, grab + glm::normalize(grab - Window(p0)) * 40.f + glm::vec2(7.f, -5.f));
        const tgeom::vec moved = gizmo.getFrame().getPosition() - p0;
        EXPECT_GT(glm::length(moved), 0.05f) << "arrow " << id;
        EXPECT_NEAR(glm::length(glm::cross(moved, world[id - 1])), 0.f, 1e-3f)
            << "along the world, arrow " << id;
        manager->UpdateLayers();
    }
    for (int id : {4, 5, 6}) {
        const tgeom::quat before = gizmo.getFrame().getOrientation();
        Click(HandlePoint(gizmo, id));
        auto [angle, axis] = TurnBetween(before, gizmo.getFrame().getOrientation());
        EXPECT_NEAR(angle, 1.5707964f, 1e-4f) << "ring " << id;
        EXPECT_NEAR(glm::dot(axis, world[id - 4]), 1.f, 1e-4f) << "about the world's axis, ring " << id;
        manager->UpdateLayers();
    }
    // A scale box scales the frame along its own axis, where it is drawn.
    const LocalFrame before = gizmo.getFrame();
    const glm::vec2 box = HandlePoint(gizmo, 8);
    Drag(box, box + glm::normalize(box - Window(before.getPosition())) * 40.f);
    EXPECT_NEAR(gizmo.getFrame().getScale().y, 1.2f, 1e-2f);
    EXPECT_EQ(gizmo.getFrame().getScale().x, 1.f);
    EXPECT_EQ(gizmo.getFrame().getOrientation(), before.getOrientation());
}

TEST_F(GizmoTest, PlaneSquaresArePickedWhereDrawnAndMoveInTheirPlaneUnderThePointer) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    EXPECT_EQ(Handles(gizmo.GetId()).count(11), 0u) << "off by default";
    gizmo.setPlaneHandles(true);
    manager->UpdateLayers();
    const LocalFrame& f = gizmo.getFrame();
    for (unsigned id : {ManipulatorControl::kTranslateYZ, ManipulatorControl::kTranslateZX,
                        ManipulatorControl::kTranslateXY}) {
        SCOPED_TRACE(id);
        GUI::GUIManager::PartLocation where;
        ASSERT_TRUE(manager->Locate(&gizmo, id, where));
        EXPECT_GT(where.pixels, 60);
        EXPECT_EQ(Hit({where.overlayPixel.x + 0.5f, where.overlayPixel.y + 0.5f}).second, id);
        const tgeom::vec normal = id == 11 ? f.xvector() : id == 12 ? f.yvector() : f.zvector();
        const tgeom::vec p0 = f.getPosition();
        const glm::vec2 grab(where.overlayPixel.x + 0.5f, where.overlayPixel.y + 0.5f),
            to = grab + glm::vec2(35.f, -25.f);
        Drag(grab, to);
        const tgeom::vec moved = f.getPosition() - p0;
        EXPECT_NEAR(glm::dot(moved, normal), 0.f, 1e-4f) << "in the plane";
        // The point of the plane under the pointer keeps its place on the square.
        auto onPlane = [&](glm::vec2 window, tgeom::vec origin) {
            const glm::vec4 view(0, 0, kW, kH);
            glm::vec3 a = glm::unProject(glm::vec3(glm::floor(window), 0.f), camera->ViewMatrix(),
                                         camera->ProjectionMatrix(), view);
            glm::vec3 b = glm::unProject(glm::vec3(glm::floor(window), 1.f), camera->ViewMatrix(),
                                         camera->ProjectionMatrix(), view);
            return a + (b - a) * (glm::dot(origin - a, normal) / glm::dot(b - a, normal)) - origin;
        };
        EXPECT_LT(glm::distance(onPlane(to, f.getPosition()), onPlane(grab, p0)), 2e-3f);
        manager->UpdateLayers();
    }
    // A square needs both of its plane's arrows.
    gizmo.enableTranslation(true, false, true);
    manager->UpdateLayers();
    auto drawn = Handles(gizmo.GetId());
    EXPECT_EQ(std::make_tuple(drawn.count(11), drawn.count(12), drawn.count(13)),
              std::make_tuple(0u, 1u, 0u));
}

TEST_F(GizmoTest, ADisabledOrHiddenGizmoLetsThePointerThroughAndCancelsItsDrag) {
    struct Host : InputHandler {
        DrawFlags mousePressEvent(VX_UI::MouseEvent*) override {
            ++presses;
            return DRAW_SCENE;
        }
        int presses = 0;
    } host;
    input->addScreenHandler(&host);
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    const glm::vec2 arrow = HandlePoint(gizmo, 1);
    const auto lit = LayerColor(arrow);
    const std::function<void(bool)> switches[] = {[&](bool v) { gizmo.SetEnabled(v); },
                                                  [&](bool v) { gizmo.SetVisible(v); }};
    for (int which = 0; which < 2; ++which) {
        SCOPED_TRACE(which == 0 ? "disabled" : "hidden");
        int cancelled = 0;
        auto connection =
            gizmo.dragCancelledSignal.connect([&](const LocalFrame&, const LocalFrame&) { ++cancelled; });
        const LocalFrame atPress = gizmo.getFrame();
        PressAt(arrow);
        MoveTo(arrow + glm::vec2(30.f, 0.f), 1);
        switches[which](false);
        EXPECT_EQ(cancelled, 1) << "a drag under way is cancelled";
        EXPECT_EQ(gizmo.getFrame().getPosition(), atPress.getPosition());
        ReleaseAt(arrow + glm::vec2(30.f, 0.f));
        manager->UpdateLayers();
        EXPECT_TRUE(Handles(gizmo.GetId()).empty()) << "no ids: the pointer goes to what is behind";
        const auto dim = LayerColor(arrow);
        if (which == 0)
            EXPECT_TRUE(dim[3] > 0 && dim[3] < 128 && dim[0] < lit[0]) << "drawn dimmed";
        else
            EXPECT_EQ(dim[3], 0) << "not drawn";
        const int before = host.presses;
        PressAt(arrow);
        ReleaseAt(arrow);
        EXPECT_EQ(host.presses - before, 1) << "the host got the press";
        EXPECT_EQ(gizmo.getFrame().getPosition(), atPress.getPosition());
        switches[which](true);
        manager->UpdateLayers();
        EXPECT_EQ(Hit(arrow), std::make_pair(gizmo.GetId(), 1u));
        EXPECT_EQ(LayerColor(arrow), lit);
        connection.disconnect();
    }
}

TEST_F(GizmoTest, SnapStepsThatCannotWorkAreRefusedAndTheLastGoodOneKept) {
    ManipulatorControl gizmo(camera);
    const std::pair<std::function<bool(float)>, std::function<float()>> settings[] = {
        {[&](float v) { return gizmo.setTranslationIncrement(v); },
         [&] { return gizmo.translationIncrement(); }},
        {[&](float v) { return gizmo.setScaleIncrement(v); }, [&] { return gizmo.scaleIncrement(); }},
        {[&](float v) {
             gizmo.setRotationIncrement(v);
             return gizmo.rotationIncrement() == v;
         },
         [&] { return gizmo.rotationIncrement(); }}};
    for (const auto& [set, get] : settings) {
        EXPECT_TRUE(set(0.5f));
        for (float bad : {0.f, -1.f, std::nanf(""), INFINITY, 1e30f}) {
            testing::internal::CaptureStdout();
            EXPECT_FALSE(set(bad)) << bad;
            EXPECT_NE(testing::internal::GetCapturedStdout().find("is not a usable step"), std::string::npos)
                << bad;
            EXPECT_EQ(get(), 0.5f) << bad;
        }
    }
}

TEST_F(GizmoTest, ADragSignalsSlotMayDeleteTheGizmo) {
    // Started, ended, then cancelled by Escape, by disabling and by hiding the gizmo.
    for (int which = 0; which < 5; ++which) {
        SCOPED_TRACE(which);
        auto* gizmo = new ManipulatorControl(camera);
        Add(*gizmo);
        ManipulatorControl::DragSignal* signals[] = {&gizmo->dragStartedSignal, &gizmo->dragEndedSignal,
                                                     &gizmo->dragCancelledSignal};
        signals[std::min(which, 2)]->connect([gizmo](const LocalFrame&, const LocalFrame&) { delete gizmo; });
        const glm::vec2 grab = HandlePoint(*gizmo, 1);
        PressAt(grab);
        MoveTo(grab + glm::vec2(20.f, 0.f), 1);
        if (which == 3)
            gizmo->SetEnabled(false);
        else if (which == 4)
            gizmo->SetVisible(false);
        else
            input->keyPressEvent(which == 2 ? 27 : 65, 0);
        ReleaseAt(grab + glm::vec2(20.f, 0.f));
        EXPECT_TRUE(manager->Controls().empty());
    }
}

TEST_F(GizmoTest, ASlotOrAnOverrideMayDeleteTheGizmoInTheMiddleOfADragStep) {
    struct Deleting : ManipulatorControl {
        using ManipulatorControl::ManipulatorControl;
        DrawFlags processMoveEvent() override {
            if (fromOverride)
                delete this;
            return DRAW_NOTHING;
        }
        bool fromOverride = false;
    };
    for (bool fromOverride : {false, true}) {
        SCOPED_TRACE(fromOverride ? "processMoveEvent" : "transformationSignal");
        auto* gizmo = new Deleting(camera);
        Add(*gizmo);
        const glm::vec2 grab = HandlePoint(*gizmo, 1);
        gizmo->fromOverride = fromOverride;
        if (!fromOverride)
            gizmo->transformationSignal.connect([gizmo] {
                delete gizmo;
                return DRAW_NOTHING;
            });
        const int before = steps;
        Drag(grab, grab + glm::vec2(40.f, 10.f));
        EXPECT_EQ(steps - before, fromOverride ? 0 : 1) << "no step after the gizmo is gone";
        EXPECT_TRUE(manager->Controls().empty());
        EXPECT_EQ(Hit(grab).first, 0u);
    }
}

TEST_F(GizmoTest, PressingTheGizmoKeepsItBeneathThePanelsOverTheScene) {
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    glm::vec2 box = HandlePoint(gizmo, 7);
    GUI::Controls::Panel panel;
    panel.SetRectangle({static_cast<int>(box.x) - 20, static_cast<int>(box.x) + 60,
                        static_cast<int>(box.y) - 20, static_cast<int>(box.y) + 60});
    panel.Register(manager);
    manager->UpdateLayers();
    ASSERT_EQ(Hit(box).first, panel.GetId());
    Drag(HandlePoint(gizmo, 2), HandlePoint(gizmo, 2) + glm::vec2(0.f, 3.f));
    EXPECT_EQ(Hit(box).first, panel.GetId());
}

TEST_F(GizmoTest, AttachingAndReportingEdges) {
    ManipulatorControl gizmo(camera);
    ASSERT_TRUE(gizmo.Initialize());
    // Every setter that changes the picture asks for a redraw.
    const std::pair<const char*, std::function<void()>> setters[] = {
        {"setPosition", [&] { gizmo.setPosition(0.f, 1.f, 0.f); }},
        {"setOrientation", [&] { gizmo.setOrientation(0.f, 1.f, 0.f, 0.f); }},
        {"setScale", [&] { gizmo.setScale(2.f, 1.f, 1.f); }},
        {"enableTranslation", [&] { gizmo.enableTranslation(true, false, true); }}};
    for (const auto& [name, set] : setters) {
        gizmo.ClearNeedsRedraw();
        set();
        EXPECT_TRUE(gizmo.NeedsRedraw()) << name;
    }
    gizmo.setOrientation(1.f, 0.f, 0.f, 0.f);
    gizmo.setScale(1.f, 1.f, 1.f);
    auto first = std::make_shared<LocalFrame>();
    first->setPosition({1.f, 2.f, 3.f});
    gizmo.attachFrame(first);
    EXPECT_EQ(gizmo.getFrame().getPosition(), tgeom::vec(1.f, 2.f, 3.f));
    gizmo.attachFrame(nullptr);
    gizmo.getFrame().setPosition({0.f, 0.f, 0.f});
    gizmo.resetPrevFrame();
    EXPECT_EQ(gizmo.getPrevFrame().getPosition(), tgeom::vec(1.f, 2.f, 3.f)) << "the first attachment stays";

    // No slot connected: the step is refused with one logged line, and 0 comes back.
    EXPECT_EQ(gizmo.processTransformation(), DRAW_NOTHING);
    EXPECT_TRUE(log->Contains("No slot is connected to transformationSignal"));
    gizmo.Register(manager);
    manager->UpdateLayers();
    log->Clear();
    Drag(HandlePoint(gizmo, 1), HandlePoint(gizmo, 1) + glm::vec2(30.f, 0.f));
    EXPECT_EQ(log->Lines().size(), 1u) << "once per press, not per step";
    gizmo.releaseFrame();
}

TEST_F(GizmoTest, PlaneOutlineFollowsTheFrameAndHidesWithIt) {
    camera->SetPosition({0.f, 0.f, 5.f});
    camera->CalcMatrices();
    PlaneControl plane(camera);
    ASSERT_TRUE(plane.Initialize());
    plane.setScale(2.f, 1.f, 1.f);
    plane.Register(manager);
    manager->UpdateLayers();

    // White outline pixels of the layer: a rectangle twice as wide as it is high, around the centre.
    auto outlineBox = [&] {
        const trelvo::test::LayerPixels layers = trelvo::test::ReadLayers(*manager, kW, kH);
        glm::ivec4 box(kW, -1, kH, -1);
        for (int y = 0; y < kH; ++y)
            for (int x = 0; x < kW; ++x) {
                auto p = layers.Color(x, y);
                if (p[0] > 240 && p[1] > 240 && p[2] > 240)
                    box = {std::min(box[0], x), std::max(box[1], x), std::min(box[2], y),
                           std::max(box[3], y)};
            }
        return box;
    };
    glm::ivec4 box = outlineBox();
    float width = static_cast<float>(box[1] - box[0]), height = static_cast<float>(box[3] - box[2]);
    EXPECT_NEAR(width / height, 2.f, 0.03f);
    EXPECT_NEAR((box[0] + box[1]) / 2.f, kW / 2.f, 1.5f);
    EXPECT_EQ(Hit({box[0] + 0.5f, kH / 2.f + 0.5f}).first, 0u) << "the outline is a guide, not a handle";

    plane.SetShape(static_cast<PlanarShape>(3));
    manager->UpdateLayers();
    EXPECT_EQ(outlineBox()[1], -1) << "no outline";
    EXPECT_EQ(Hit(HandlePoint(plane, 10)).second, 10u) << "the gizmo still draws";

    plane.SetShape(Disc);
    plane.SetVisible(false);
    manager->UpdateLayers();
    EXPECT_EQ(outlineBox()[1], -1);
    EXPECT_TRUE(Handles(plane.GetId()).empty());
    plane.SetVisible(true);
    manager->UpdateLayers();
    box = outlineBox();
    EXPECT_NEAR(static_cast<float>(box[1] - box[0]) / static_cast<float>(box[3] - box[2]), 2.f, 0.05f);
    EXPECT_FALSE(Handles(plane.GetId()).empty());

    // Disabled, the outline fades with the gizmo (no pure white left) and nothing is picked.
    plane.SetEnabled(false);
    manager->UpdateLayers();
    EXPECT_EQ(outlineBox()[1], -1);
    EXPECT_TRUE(Handles(plane.GetId()).empty());
    plane.SetEnabled(true);
    manager->UpdateLayers();
    EXPECT_EQ(outlineBox(), box);
}

TEST_F(GizmoTest, ShadersLackingUniformsAreReportedAndDrawingGoesOn) {
    trelvo::test::ShaderDir dir;
    // Places nothing by the pixel matrices and writes no handle ids: every optional name is missing.
    dir.Write("PolygonManipulator.vs", R"(#version 330 core
layout(location = 0) in vec3 position;
void main() { gl_Position = vec4(position * 0.01, 1.0); })");
    dir.Write("PolygonManipulator.fs", R"(#version 330 core
uniform uint pid;
layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;
void main() { fragColor = vec4(1.0); fragIds = uvec4(pid, 0u, 0u, 0u); })");
    ManipulatorControl gizmo(camera);
    Add(gizmo);
    for (const char* name : {"ProjectionMatrix", "ModelViewMatrix", "secondaryId"})
        EXPECT_TRUE(log->Contains(std::string("Could not get index for ") + name + "\n")) << name;
    EXPECT_FALSE(log->Contains("ModelMatrix\n")) << "a missing ModelMatrix is reported under the other name";
    EXPECT_FALSE(Handles(gizmo.GetId()).empty()) << "drawing went on";

    // The outline's program cannot be built: the plane widget says so and refuses to start.
    dir.Write("genericLine.fs", "#version 330 core\nvoid main() { broken }\n");
    PlaneControl plane(camera);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(plane.Initialize());
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("PlanarShapeRenderer::loadProgram(): Could not load shaders.\n"), std::string::npos)
        << out;
    plane.Register(manager);
    manager->UpdateLayers();
    EXPECT_EQ(Handles(plane.GetId()).size(), 0u) << "a plane widget that failed to start draws nothing";
}
