// The light-direction widget through the real path: drawn by the manager into its layers and dragged
// through the manager's pointer entries.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/lightcontrol.h>

#include <graphicsbase/directionallight.h>
#include <graphicsbase/uievents.h>

#include <glm/glm.hpp>

#include <algorithm>
#include <cmath>

#include <GL/glew.h>

using namespace GraphicsBase;

namespace {

constexpr float kDegree = 0.017453292f;

class LightTest : public trelvo::test::OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        light = std::make_shared<DirectionalLight>();
        light->position = {0.f, 0.f, 2.f};
        widget = std::make_unique<LightControl>(light);
        ASSERT_TRUE(widget->Initialize());
        widget->Register(manager);
        manager->UpdateLayers();
    }
    void TearDown() override {
        widget.reset();
        OverlayTest::TearDown();
    }

    /// Presses at the widget's centre and moves by the given host-pixel steps (y down) with the
    /// button held, then releases. Returns the result of the last move.
    DrawFlags Drag(int stepX, int stepY, int steps) {
        int x = 256 - 10 - 37, y = 256 - 10 - 37;
        now += 1000;
        Press(x, y);
        DrawFlags last = DRAW_NOTHING;
        for (int i = 0; i < steps; ++i) {
            last = Move(x + stepX, y + stepY, x, y, 1);
            x += stepX;
            y += stepY;
        }
        now += 1000;
        Release(x, y);
        return last;
    }

    std::shared_ptr<DirectionalLight> light;
    std::unique_ptr<LightControl> widget;
};

float AngleBetween(glm::vec3 a, glm::vec3 b) {
    return std::acos(std::clamp(glm::dot(glm::normalize(a), glm::normalize(b)), -1.f, 1.f)) / kDegree;
}

} // namespace

// widgetHeight and the margins are kept for the host only: the square stays widgetWidth on both sides,
// 10 pixels in from the right and bottom edges.
TEST_F(LightTest, ViewportIsASquareInTheLowerRightCornerWhateverTheInertFields) {
    manager->Resize(1280, 720);
    struct Case {
        const char* name;
        int height, marginX, marginY;
    };
    const Case cases[] = {{"defaults", 75, 10, 10}, {"taller", 200, 10, 10}, {"wider margins", 75, 40, 30}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        widget->SetWidgetSize(75, c.height);
        widget->SetMargins(c.marginX, c.marginY);
        manager->UpdateLayers();
        trelvo::test::LayerPixels layers = trelvo::test::ReadLayers(*manager, 1280, 720);
        int xMin = 1280, xMax = -1, yMin = 720, yMax = -1;
        for (int y = 0; y < 720; ++y)
            for (int x = 0; x < 1280; ++x)
                if (layers.Pid(x, y) == widget->GetId()) {
                    xMin = std::min(xMin, x);
                    xMax = std::max(xMax, x);
                    yMin = std::min(yMin, y);
                    yMax = std::max(yMax, y);
                }
        // The viewport (1195, 10, 75, 75): the tile's straight edges reach all four sides.
        EXPECT_EQ(xMin, 1195);
        EXPECT_EQ(xMax, 1195 + 75 - 1);
        EXPECT_EQ(yMin, 10);
        EXPECT_EQ(yMax, 10 + 75 - 1);
        EXPECT_EQ(layers.Pid(1195, 10), 0u) << "the tile's corners are rounded";
        if (c.height == 75 && c.marginX == 10)
            trelvo::test::SaveLayer(layers, "light-widget");
    }
}

// The ball is lit from the light's side: with the light to the right (+x) the right edge of the ball
// is brighter than the left, and a drag of 514 pixels (180 degrees) swaps them.
TEST_F(LightTest, ThePreviewIsLitFromTheLightsSide) {
    light->position = {2.f, 0.f, 0.3f};
    manager->SetLightUpdated(true);
    manager->UpdateLayers();
    auto brightness = [&](int x, int y) {
        trelvo::test::LayerPixels layers = trelvo::test::ReadLayers(*manager, 256, 256);
        auto c = layers.Color(x, y);
        return c[0] + c[1] + c[2];
    };
    // Ball centre at (208, 47), radius about 27 pixels.
    const int left = 208 - 18, right = 208 + 18;
    EXPECT_GT(brightness(right, 47), brightness(left, 47) + 150);
    Drag(2, 0, 257);
    manager->UpdateLayers();
    EXPECT_GT(brightness(left, 47), brightness(right, 47) + 150);
}

TEST_F(LightTest, DragsTurnTheLightAboutXThenYAtAThirdOfADegreeAPixel) {
    struct Case {
        const char* name;
        int stepX, stepY, steps;
        glm::vec3 expected; // the light's new position from (0, 0, 2)
    };
    const float s35 = std::sin(35.f * kDegree), c35 = std::cos(35.f * kDegree);
    const Case cases[] = {
        {"no motion", 0, 0, 3, {0.f, 0.f, 2.f}},
        {"100 px right: +35 degrees about y", 10, 0, 10, {2.f * s35, 0.f, 2.f * c35}},
        {"100 px up: the light rises", 0, -10, 10, {0.f, 2.f * s35, 2.f * c35}},
        // Ry first, then Rx: the rotation about x acts on the already turned position.
        {"one step 100 px right and up", 100, -100, 1, {2.f * s35, 2.f * c35 * s35, 2.f * c35 * c35}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        light->position = {0.f, 0.f, 2.f};
        DrawFlags last = Drag(c.stepX, c.stepY, c.steps);
        EXPECT_EQ(last, DrawFlags(33));
        EXPECT_NEAR(light->position.x, c.expected.x, 1e-4f);
        EXPECT_NEAR(light->position.y, c.expected.y, 1e-4f);
        EXPECT_NEAR(light->position.z, c.expected.z, 1e-4f);
    }
}

// 360 / 0.35 = 1028.57 pixels: 1028 and 1029 pixels in total land within a third of a degree of the
// start, at the same distance from the origin.
TEST_F(LightTest, AFullTurnOfHorizontalDragsBringsTheLightBack) {
    const glm::vec3 start(0.6f, 0.8f, 1.5f);
    for (int total : {1028, 1029}) {
        SCOPED_TRACE(total);
        light->position = start;
        Drag(4, 0, 257);
        Drag(total - 4 * 257, 0, 1);
        EXPECT_LT(AngleBetween(light->position, start), 0.35f);
        EXPECT_NEAR(glm::length(light->position), glm::length(start), 1e-4f);
    }
}

// What DrawCustom leaves behind for the host is checked with every other entry point in
// glstate_gl_test.cpp.
TEST_F(LightTest, ADragAsksForARedraw) {
    manager->UpdateLayers();
    EXPECT_FALSE(manager->NeedsRedraw());
    GUI::Event e;
    EXPECT_EQ(widget->OnMouseDrag(&e, 0, 0), DrawFlags(33));
    EXPECT_TRUE(manager->NeedsRedraw()) << "even a drag of nothing asks for a redraw";
}

TEST_F(LightTest, WithoutInitializeNothingIsDrawn) {
    LightControl bare(light);
    bare.Register(manager);
    GUI::Event e;
    EXPECT_EQ(bare.OnMouseDrag(&e, 3, 0), DrawFlags(33));
    manager->UpdateLayers();
    // The registered widget covers the same corner; the bare one adds nothing and logs no GL error.
    EXPECT_EQ(PidAt(208, 47), widget->GetId());
}

TEST_F(LightTest, ADragReportsItsEdgesAndEscapeOrAnotherButtonPutsTheLightBack) {
    int started = 0, ended = 0, cancelled = 0;
    glm::vec3 reportedPress(0.f), reportedNow(0.f);
    auto record = [&](int& count) {
        return [&](const tgeom::vec& atPress, const tgeom::vec& now) {
            ++count;
            reportedPress = atPress;
            reportedNow = now;
        };
    };
    widget->dragStartedSignal.connect(record(started));
    widget->dragEndedSignal.connect(record(ended));
    widget->dragCancelledSignal.connect(record(cancelled));
    const glm::vec3 first = light->position;
    Drag(3, -2, 4);
    EXPECT_EQ(std::make_pair(started, ended), std::make_pair(1, 1));
    EXPECT_EQ(reportedPress, first);
    EXPECT_EQ(reportedNow, light->position);
    EXPECT_NE(light->position, first);
    VX_UI::KeyEvent escape;
    escape.key = 27;
    EXPECT_EQ(manager->keyPress(&escape), DRAW_NOTHING) << "no drag, nothing to cancel";

    const int x = 256 - 10 - 37, y = 256 - 10 - 37;
    for (unsigned key : {27u, 256u, 0x01000000u, 0u}) {
        SCOPED_TRACE(key);
        const glm::vec3 atPress = light->position;
        now += 1000;
        Press(x, y);
        Move(x + 20, y + 10, x, y, 1);
        ASSERT_NE(light->position, atPress);
        manager->UpdateLayers();
        escape.key = key;
        const DrawFlags flags = key != 0 ? manager->keyPress(&escape) : Press(x + 20, y + 10, 3);
        EXPECT_EQ(flags & DRAW_LIGHT, DRAW_LIGHT);
        EXPECT_TRUE(manager->NeedsRedraw());
        EXPECT_EQ(light->position, atPress);
        EXPECT_EQ(ended, 1);
        Move(x + 40, y, x + 20, y + 10, 1);
        now += 1000;
        Release(x + 40, y);
        EXPECT_EQ(light->position, atPress) << "the held button turns the light no more";
        EXPECT_EQ(ended, 1) << "a cancelled drag does not end";
    }
    EXPECT_EQ(cancelled, 4);

    // A slot may delete the widget.
    for (int which = 0; which < 3; ++which) {
        widget.reset();
        auto* doomed = new LightControl(light);
        ASSERT_TRUE(doomed->Initialize());
        doomed->Register(manager);
        manager->UpdateLayers();
        LightControl::DragSignal* signals[] = {&doomed->dragStartedSignal, &doomed->dragEndedSignal,
                                               &doomed->dragCancelledSignal};
        signals[which]->connect([doomed](const tgeom::vec&, const tgeom::vec&) { delete doomed; });
        now += 1000;
        Press(x, y);
        Move(x + 5, y, x, y, 1);
        escape.key = which == 2 ? 27 : 65;
        manager->keyPress(&escape);
        now += 1000;
        Release(x + 5, y);
        EXPECT_TRUE(manager->Controls().empty()) << which;
    }
}

TEST_F(LightTest, ADisabledOrHiddenWidgetLetsThePointerThroughAndCancelsItsDrag) {
    const int x = 256 - 10 - 37, y = 256 - 10 - 37;
    auto colour = [&] { return trelvo::test::ReadLayers(*manager, 256, 256).Color(208, 47); };
    const auto lit = colour();
    for (bool hide : {false, true}) {
        SCOPED_TRACE(hide ? "hidden" : "disabled");
        const glm::vec3 atPress = light->position;
        now += 1000;
        Press(x, y);
        Move(x + 20, y + 10, x, y, 1);
        ASSERT_NE(light->position, atPress);
        hide ? widget->SetVisible(false) : widget->SetEnabled(false);
        EXPECT_EQ(light->position, atPress) << "the drag under way is cancelled";
        now += 1000;
        Release(x + 20, y + 10);
        manager->UpdateLayers();
        EXPECT_EQ(PidAt(208, 47), 0u) << "no ids: the pointer goes to what is behind";
        const auto dim = colour();
        if (hide)
            EXPECT_EQ(dim[3], 0);
        else
            EXPECT_TRUE(dim[3] > 0 && dim[3] < lit[3] && dim != lit) << "drawn dimmed";
        now += 1000;
        EXPECT_EQ(Press(x, y), DRAW_NOTHING);
        Release(x, y);
        hide ? widget->SetVisible(true) : widget->SetEnabled(true);
        manager->UpdateLayers();
        EXPECT_EQ(PidAt(208, 47), widget->GetId());
        EXPECT_EQ(colour(), lit);
    }
}
