// The view-orientation cube through the real path: drawn by the manager into its layers, picked from
// the id layer, clicked through the manager's pointer entries.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/gui/easing.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/resources.h>

#include <glm/glm.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

#include <GL/glew.h>

using namespace GraphicsBase;

namespace {

const glm::vec3 kNormals[6] = {{0, -1, 0}, {0, 1, 0}, {0, 0, 1}, {-1, 0, 0}, {0, 0, -1}, {1, 0, 0}};

class TriadTest : public trelvo::test::OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        camera = std::make_shared<Camera>();
        light = std::make_shared<DirectionalLight>();
        View(256, 256);
        LookFrom({0.f, 0.f, 7.f});
        triad = std::make_unique<TriadControl>(camera, light);
    }
    void TearDown() override {
        triad.reset();
        OverlayTest::TearDown();
    }

    void View(int w, int h) {
        manager->Resize(w, h);
        camera->SetViewport(w, h);
        camera->CalcMatrices();
    }
    void LookFrom(glm::vec3 position, glm::vec3 target = {0.f, 0.f, 0.f}) {
        camera->SetTarget(target);
        camera->SetPosition(target + position);
        camera->SetUpVector({0.f, 1.f, 0.f});
        camera->CalcMatrices();
        manager->SetCameraUpdated(true);
    }
    void Add() {
        ASSERT_TRUE(triad->Initialize());
        triad->Register(manager);
        manager->UpdateLayers();
    }
    /// Overlay pixel (y up) where the centre of `face` appears, from the view rotation alone.
    glm::ivec2 FaceCentre(int face) const {
        const glm::vec3 eye = glm::mat3(camera->ViewMatrix()) * (0.5f * kNormals[face]);
        const float side = static_cast<float>(triad->Side());
        const glm::vec2 p = glm::vec2(10.f + side / 2.f) + glm::vec2(eye) / 0.9f * (side / 2.f);
        return {static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y))};
    }
    bool Visible(int face) const { return (glm::mat3(camera->ViewMatrix()) * kNormals[face]).z > 0.3f; }
    /// Clicks where `part` is drawn now (through the id layer); false when it is not drawn.
    bool ClickPart(unsigned part) {
        GUI::GUIManager::PartLocation where;
        if (!manager->Locate(triad.get(), part, where))
            return false;
        now += 1000;
        Click(where.overlayPixel.x, where.overlayPixel.y);
        return true;
    }
    /// The camera sits `distance` from `target` along `direction` with an upright up vector there.
    void ExpectView(glm::vec3 target, float distance, glm::vec3 direction, glm::vec3 up) const {
        EXPECT_NEAR(glm::distance(camera->Position(), target + distance * direction), 0.f, 1e-4f);
        EXPECT_NEAR(glm::distance(camera->UpVector(), up), 0.f, 1e-5f);
        EXPECT_EQ(camera->Target(), target);
    }

    std::shared_ptr<Camera> camera;
    std::shared_ptr<DirectionalLight> light;
    std::unique_ptr<TriadControl> triad;
};

} // namespace

// With the camera on +z the cube shows its +z face straight on: a square whose centre is the middle of
// the widget's viewport and whose side is 1/0.9 of half the viewport's, so both reveal the viewport.
TEST_F(TriadTest, ViewportIsTenPixelsInAndAFifteenthOfTheShorterSideAtLeastTheMinimum) {
    struct Case {
        int w, h, side;
    };
    const Case cases[] = {{1920, 1080, 100}, {3000, 2400, 160}, {256, 256, 100}};
    Add();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.w) + " x " + std::to_string(c.h));
        View(c.w, c.h);
        manager->SetCameraUpdated(true);
        manager->UpdateLayers();
        EXPECT_EQ(triad->Side(), c.side);
        const int span = c.side + 40;
        trelvo::test::LayerPixels layers = trelvo::test::ReadLayers(*manager, span, span);
        int xMin = span, xMax = -1, yMin = span, yMax = -1;
        for (int y = 0; y < span; ++y)
            for (int x = 0; x < span; ++x)
                if (layers.Pid(x, y) == triad->GetId()) {
                    xMin = std::min(xMin, x);
                    xMax = std::max(xMax, x);
                    yMin = std::min(yMin, y);
                    yMax = std::max(yMax, y);
                }
        ASSERT_GE(xMax, 0) << "the cube is drawn";
        const float expected = c.side / 0.9f * 0.5f;
        // One pixel either way: rasterisation rounds the square's edges.
        EXPECT_NEAR(xMax - xMin + 1, expected, 1.5f);
        EXPECT_NEAR(yMax - yMin + 1, expected, 1.5f);
        EXPECT_NEAR((xMin + xMax + 1) / 2.f, 10.f + c.side / 2.f, 1.f);
        EXPECT_NEAR((yMin + yMax + 1) / 2.f, 10.f + c.side / 2.f, 1.f);
        if (c.w == 1920)
            trelvo::test::SaveLayer(layers, "triad-front");
    }
}

// Seen from two opposite corners, every face is visible once and picked with its own number.
TEST_F(TriadTest, HitDetectionOverEachVisibleFaceGivesTheControlAndTheFace) {
    Add();
    int seen[6] = {0, 0, 0, 0, 0, 0};
    for (glm::vec3 from : {glm::vec3(3.f, 4.f, 5.f), glm::vec3(-3.f, -4.f, -5.f)}) {
        LookFrom(from);
        manager->UpdateLayers();
        for (int face = 0; face < 6; ++face) {
            if (!Visible(face))
                continue;
            SCOPED_TRACE("face " + std::to_string(face));
            const glm::ivec2 p = FaceCentre(face);
            unsigned pid = 0, sid = 99;
            manager->HitDetect(p.x, p.y, &pid, &sid);
            EXPECT_EQ(pid, triad->GetId());
            EXPECT_EQ(sid, static_cast<unsigned>(face));
            ++seen[face];
        }
    }
    EXPECT_EQ(std::count(seen, seen + 6, 1), 6);
    unsigned pid = 99, sid = 99;
    manager->HitDetect(200, 200, &pid, &sid);
    EXPECT_EQ(pid, 0u) << "nothing outside the cube's square";
}

// A click on each face, from a camera 7 units from an off-origin target looking mostly at that face,
// puts the camera 7 units out along the face's normal with the face's up vector; then the cube shows
// that face straight on.
TEST_F(TriadTest, ClickingAFacePlacesTheCameraOnThatSide) {
    const glm::vec3 ups[6] = {{0, 0, -1}, {0, 0, -1}, {0, 1, 0}, {0, 1, 0}, {0, 1, 0}, {0, 1, 0}};
    const glm::vec3 target(1.f, -2.f, 0.5f);
    Add();
    for (int face = 0; face < 6; ++face) {
        SCOPED_TRACE("face " + std::to_string(face));
        LookFrom(7.f * glm::normalize(2.f * kNormals[face] + glm::vec3(0.3f, 0.35f, 0.25f)), target);
        manager->UpdateLayers();
        ASSERT_TRUE(Visible(face));
        now += 1000;
        const glm::ivec2 at = FaceCentre(face);
        DrawFlags result = Click(at.x, at.y);
        EXPECT_EQ(result & DrawFlags(17), DrawFlags(17)) << "the face click's 17 reaches the host";
        EXPECT_NEAR(glm::distance(camera->Position(), target + 7.f * kNormals[face]), 0.f, 1e-4f);
        EXPECT_EQ(camera->UpVector(), ups[face]);
        EXPECT_EQ(camera->Target(), target);

        manager->UpdateLayers(); // the manager notices the camera the click moved by itself
        const int centre = 10 + triad->Side() / 2;
        GUI::GUIManager::PartLocation where;
        ASSERT_TRUE(manager->Locate(triad.get(), static_cast<unsigned>(face), where));
        EXPECT_NEAR(where.overlayPixel.x, centre, 2);
        EXPECT_NEAR(where.overlayPixel.y, centre, 2) << "the clicked face now faces the viewer";
    }
}

TEST_F(TriadTest, OnClickReturns17ForFacesAndIgnoresOtherPartIds) {
    LookFrom({0.f, 0.f, 7.f});
    GUI::Event e;
    e.sid = 1;
    EXPECT_EQ(triad->OnClick(&e), DrawFlags(17));
    EXPECT_NEAR(glm::distance(camera->Position(), glm::vec3(0.f, 7.f, 0.f)), 0.f, 1e-5f);
    EXPECT_EQ(camera->UpVector(), glm::vec3(0.f, 0.f, -1.f));
    const glm::mat4 view = camera->ViewMatrix();
    for (unsigned sid : {26u, 0xFFFFFFFFu}) {
        e.sid = sid;
        EXPECT_EQ(triad->OnClick(&e), DRAW_NOTHING);
    }
    EXPECT_EQ(camera->ViewMatrix(), view) << "the matrices were rebuilt by the face click only";

    // With the camera at its target no view can be taken: refused, nothing turns NaN.
    camera->SetPosition(camera->Target());
    const glm::vec3 up = camera->UpVector();
    e.sid = 2;
    EXPECT_EQ(triad->OnClick(&e), DRAW_NOTHING);
    EXPECT_TRUE(log->Contains("TriadControl::OnClick(): The camera is at its target"));
    EXPECT_EQ(camera->Position(), camera->Target());
    EXPECT_EQ(camera->UpVector(), up);
}

// The host's state around DrawCustom is checked with every other entry point in glstate_gl_test.cpp.
TEST_F(TriadTest, InitialisingTwiceRebuildsAndLaterDrawsLandWhereTheySay) {
    ASSERT_TRUE(triad->Initialize());
    ASSERT_TRUE(triad->Initialize()) << "initialising again rebuilds everything";

    // In the layers: a panel drawn after the cube lands where its rectangle says.
    GUI::Controls::Panel panel;
    panel.SetRectangle({150, 230, 150, 230});
    triad->Register(manager);
    panel.Register(manager);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(190, 190), panel.GetId());
    EXPECT_EQ(PidAt(60, 60), triad->GetId());
}

TEST_F(TriadTest, ALabelImageThatDoesNotDecodeFailsInitialisation) {
    const ResourceData original = LoadFromResource("TrelvoGUI", "TRIAD", "PNG");
    ASSERT_TRUE(original);
    static const unsigned char kNotAPng[] = {'n', 'o', 't', ' ', 'a', ' ', 'p', 'n', 'g'};
    GraphicsBase::RegisterResource("TrelvoGUI", "TRIAD", "PNG", kNotAPng, sizeof kNotAPng);
    testing::internal::CaptureStdout();
    const bool ok = triad->Initialize();
    const std::string out = testing::internal::GetCapturedStdout();
    GraphicsBase::RegisterResource("TrelvoGUI", "TRIAD", "PNG", original.data, original.size);
    EXPECT_FALSE(ok);
    EXPECT_EQ(out, "Load resource failed\n");
    EXPECT_EQ(triad->LabelTexture(), 0u);

    triad->Register(manager);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(60, 60), 0u) << "an incomplete cube is not drawn";
}

// Every edge and corner, seen mostly along its own diagonal, is drawn with its own part id, and a
// click there looks along that diagonal upright (no roll; -z up only straight down the y axis); the
// clicked part then sits in the middle of the cube. Switched off, the faces cover the cube again.
TEST_F(TriadTest, EdgesAndCornersAreClickableViewsOfTheirOwn) {
    const glm::vec3 target(1.f, -2.f, 0.5f);
    triad->SetEdgesAndCorners(true);
    Add();
    for (unsigned part = TriadControl::kEdgePlusXPlusY; part < TriadControl::kPartCount; ++part) {
        SCOPED_TRACE("part " + std::to_string(part));
        const glm::vec3 direction = TriadControl::PartDirection(part), up = TriadControl::PartUp(part);
        EXPECT_NEAR(glm::dot(direction, up), 0.f, 1e-6f);
        EXPECT_GT(up.y, 0.f) << "no edge or corner view is upside down";
        LookFrom(7.f * glm::normalize(2.f * direction + glm::vec3(0.3f, 0.35f, 0.25f)), target);
        manager->UpdateLayers();
        ASSERT_TRUE(ClickPart(part));
        ExpectView(target, 7.f, direction, up);
        manager->UpdateLayers();
        GUI::GUIManager::PartLocation where;
        ASSERT_TRUE(manager->Locate(triad.get(), part, where));
        EXPECT_NEAR(where.overlayPixel.x, 60, 3);
        EXPECT_NEAR(where.overlayPixel.y, 60, 3);
    }
    EXPECT_EQ(TriadControl::PartDirection(TriadControl::kPartCount), glm::vec3(0.f));

    // An edge or corner under the pointer lights up, only while the pointer is over it; faces never.
    GUI::GUIManager::PartLocation corner;
    ASSERT_TRUE(manager->Locate(triad.get(), TriadControl::kCornerMinusXMinusYMinusZ, corner));
    const glm::ivec2 at(corner.overlayPixel.x, corner.overlayPixel.y);
    const auto colour = [&] { return trelvo::test::ReadLayers(*manager, 128, 128).Color(at.x, at.y); };
    const auto hoverAt = [&](glm::ivec2 pointer) {
        const int row = manager->HostRow(pointer.y);
        Move(pointer.x, row, pointer.x, row);
        manager->UpdateLayers();
    };
    hoverAt({200, 200}); // off the cube: nothing lit
    const auto plain = colour();
    GUI::GUIManager::PartLocation side;
    ASSERT_TRUE(manager->Locate(triad.get(), TriadControl::kFaceMinusX, side));
    for (const glm::ivec2 pointer :
         {at, glm::ivec2(side.overlayPixel.x, side.overlayPixel.y), at, glm::ivec2(200, 200)}) {
        hoverAt(pointer);
        EXPECT_EQ(triad->HoveredPart() == TriadControl::kCornerMinusXMinusYMinusZ, pointer == at);
        EXPECT_EQ(colour() != plain, pointer == at) << pointer.x;
    }

    LookFrom({3.f, 4.f, 5.f});
    triad->SetEdgesAndCorners(false);
    manager->UpdateLayers();
    GUI::GUIManager::PartLocation all, face;
    ASSERT_TRUE(manager->Locate(triad.get(), GUI::GUIManager::kAnyPart, all));
    int faces = 0;
    for (unsigned f : {TriadControl::kFacePlusX, TriadControl::kFacePlusY, TriadControl::kFacePlusZ})
        faces += manager->Locate(triad.get(), f, face) ? face.pixels : 0;
    EXPECT_EQ(faces, all.pixels) << "without edges and corners the three faces cover the cube";
}

// A drag orbits about the target once past a few pixels of travel, keeps the distance and the
// camera upright, stops at the pole without flipping, and its release is no click; Escape or another
// button puts the camera back and the rest of that drag does nothing.
TEST_F(TriadTest, ADragOrbitsUprightUpToThePoleAndEscapePutsItBack) {
    const glm::vec3 target(1.f, -2.f, 0.5f);
    LookFrom({0.f, 0.f, 7.f}, target);
    triad->SetDragOrbits(true);
    Add();
    const int x = 60, y = 256 - 60;
    auto upright = [&] {
        const glm::vec3 d = glm::normalize(camera->Position() - target), up = camera->UpVector();
        EXPECT_NEAR(glm::length(camera->Position() - target), 7.f, 1e-4f);
        EXPECT_NEAR(glm::dot(d, up), 0.f, 1e-5f);
        EXPECT_NEAR(glm::length(up), 1.f, 1e-5f);
        EXPECT_GE(up.y, -1e-6f) << "never over the pole";
        return d;
    };
    Press(x, y);
    Move(x + 2, y, x, y, 1);
    EXPECT_EQ(camera->Position(), target + glm::vec3(0.f, 0.f, 7.f)) << "a jitter is still a click";
    Move(x + 30, y, x + 2, y, 1);
    glm::vec3 d = upright();
    EXPECT_LT(d.x, -0.5f) << "the cube follows the pointer: the camera goes left";
    Move(x + 30, y - 400, x + 30, y, 1); // far upward: the camera goes under, to the pole
    d = upright();
    EXPECT_NEAR(d.y, -1.f, 1e-5f);
    Move(x + 60, y - 500, x + 30, y - 400, 1);
    d = upright();
    EXPECT_NEAR(d.y, -1.f, 1e-5f) << "a turn at the pole stays there";
    Move(x + 60, y - 450, x + 60, y - 500, 1);
    EXPECT_GT(upright().y, -0.99f) << "and comes back the way it went";
    Release(x + 60, y - 450); // within the click window, over no part: no click either
    upright();

    VX_UI::KeyEvent escape;
    escape.key = 27;
    for (bool key : {true, false}) {
        SCOPED_TRACE(key ? "escape" : "another button");
        manager->UpdateLayers();
        const glm::vec3 position = camera->Position(), up = camera->UpVector();
        now += 1000;
        Press(x, y);
        Move(x + 40, y + 10, x, y, 1);
        ASSERT_NE(camera->Position(), position);
        const DrawFlags flags = key ? manager->keyPress(&escape) : Press(x + 40, y + 10, 3);
        EXPECT_EQ(flags & DRAW_TRIAD_FACE, DRAW_TRIAD_FACE);
        EXPECT_EQ(camera->Position(), position);
        EXPECT_EQ(camera->UpVector(), up);
        Move(x, y, x + 40, y + 10, 1);
        Release(x, y);
        EXPECT_EQ(camera->Position(), position) << "the rest of a cancelled drag and its release";
    }
}

// With a flight time a click starts a flight the manager's clock drives: the camera leaves at the
// next update, keeps its distance, passes the middle at half time (the easing's middle) with the host
// asked for every frame, and lands exactly where an instant click goes. A click mid-flight retargets
// from where the camera is; deleting the cube mid-flight is safe.
TEST_F(TriadTest, AFlightEasesToTheViewRetargetsWithoutAJumpAndLandsExactly) {
    const float bad[] = {-0.1f, 10.5f, std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity()};
    testing::internal::CaptureStdout();
    for (float seconds : bad)
        EXPECT_FALSE(triad->SetFlightTime(seconds));
    EXPECT_FALSE(triad->SetFlightTime(1.f, nullptr));
    const std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("TriadControl::SetFlightTime(): -0.1 seconds is outside 0 to 10; kept 0\n"),
              std::string::npos);
    EXPECT_EQ(triad->FlightTime(), 0.f);
    ASSERT_TRUE(triad->SetFlightTime(0.4f, GUI::Animation::LinearInterpolation));

    const glm::vec3 target(1.f, -2.f, 0.5f), start = target + glm::vec3(0.f, 0.f, 7.f);
    LookFrom(start - target, target);
    triad->SetEdgesAndCorners(true);
    Add();
    const unsigned corner = TriadControl::kCornerPlusXPlusYPlusZ;
    ASSERT_TRUE(ClickPart(corner));
    EXPECT_TRUE(triad->Flying());
    EXPECT_EQ(camera->Position(), start) << "nothing moves before the next frame";
    const glm::vec3 end = TriadControl::PartDirection(corner);
    auto angle = [&](glm::vec3 a, glm::vec3 b) {
        return std::acos(std::clamp(glm::dot(glm::normalize(a), glm::normalize(b)), -1.f, 1.f));
    };
    int requests = 0;
    boost::signals2::scoped_connection counting =
        manager->RedrawRequestSignal.connect([&requests] { ++requests; });
    now += 200;
    manager->UpdateLayers();
    EXPECT_TRUE(manager->NeedsRedraw()) << "the host is asked for the next frame";
    EXPECT_EQ(requests, 1) << "and told so, for a host that only listens";
    glm::vec3 d = camera->Position() - target;
    EXPECT_NEAR(glm::length(d), 7.f, 1e-4f);
    const float total = angle(start - target, end);
    for (glm::vec3 from : {start - target, end}) {
        EXPECT_GT(angle(d, from), 0.3f * total);
        EXPECT_LT(angle(d, from), 0.7f * total);
    }

    // Retarget to the +x face from the middle of the flight.
    const glm::vec3 middle = camera->Position();
    ASSERT_TRUE(ClickPart(TriadControl::kFacePlusX));
    EXPECT_EQ(camera->Position(), middle);
    now += 100;
    manager->UpdateLayers();
    const float moved = glm::distance(camera->Position(), middle);
    EXPECT_GT(moved, 0.f);
    EXPECT_LT(moved, 0.5f * glm::distance(middle, target + glm::vec3(7.f, 0.f, 0.f)))
        << "a quarter of the way on from where the camera was";
    now += 300;
    manager->UpdateLayers();
    EXPECT_FALSE(triad->Flying());
    ExpectView(target, 7.f, {1.f, 0.f, 0.f}, {0.f, 1.f, 0.f});
    manager->UpdateLayers();
    EXPECT_FALSE(manager->NeedsRedraw()) << "landed: no more frames asked for";

    ASSERT_TRUE(ClickPart(corner));
    now += 100;
    manager->UpdateLayers();
    triad.reset();
    now += 100;
    manager->UpdateLayers();
    EXPECT_FALSE(manager->NeedsRedraw());
}
