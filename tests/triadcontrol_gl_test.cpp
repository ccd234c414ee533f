// The view-orientation cube through the real path: drawn by the manager into its layers, picked from
// the id layer, clicked through the manager's pointer entries.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/gui/panel.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/resources.h>

#include <glm/glm.hpp>

#include <algorithm>
#include <cmath>

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
    for (unsigned sid : {6u, 7u, 0xFFFFFFFFu}) {
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
