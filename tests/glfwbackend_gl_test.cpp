// The GLFW backend in a hidden window: events reach the overlay through the callbacks it installed,
// chained after the host's own. Skipped without a display (scripts/test.sh runs it under Xvfb).
#include "support/logcapture.h"

#include <trelvogui/backends/glfw/glfwbackend.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>

#include <graphicsbase/camera.h>

#include <GLFW/glfw3.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace {

int hostCursorCalls = 0;

/// A host handler behind the overlay: records what the overlay did not consume.
class Recorder : public InputHandler {
public:
    DrawFlags mouseWheel(VX_UI::MouseWheelEvent* e) override {
        wheel.push_back(e->delta);
        return DRAW_SCENE;
    }
    DrawFlags keyPress(VX_UI::KeyEvent* e) override {
        keys.push_back(static_cast<int>(e->key));
        return DRAW_SCENE;
    }
    DrawFlags touchEvent(VX_UI::TouchEvent* e) override {
        for (int i = 0; i < e->pointCount; ++i)
            touches.push_back(e->points[i].x);
        return DRAW_SCENE;
    }
    std::vector<int> wheel;
    std::vector<int> keys;
    std::vector<float> touches;
};

class GLFWBackendTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!glfwInit()) {
            const char* why = nullptr;
            glfwGetError(&why);
            GTEST_SKIP() << "no display for GLFW: " << (why ? why : "");
        }
        GUI::GLFWBackend::RequestOpenGL33();
        glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
        window = glfwCreateWindow(256, 256, "backend test", nullptr, nullptr);
        if (!window)
            GTEST_SKIP() << "no OpenGL 3.3 window";
        glfwMakeContextCurrent(window);
        glfwSetCursorPosCallback(window, [](GLFWwindow*, double, double) { ++hostCursorCalls; });
        hostCursorCalls = 0;
        log = std::make_unique<trelvo::test::LogCapture>();
        manager = std::make_shared<GUI::GUIManager>();
        ASSERT_TRUE(manager->Initialize());
        int w = 0, h = 0;
        glfwGetFramebufferSize(window, &w, &h);
        manager->Resize(w, h);
    }
    void TearDown() override {
        if (log) {
            for (const auto& line : log->Lines())
                EXPECT_EQ(line.find("Opengl assert"), std::string::npos) << line;
        }
        manager.reset();
        if (window)
            glfwDestroyWindow(window);
        glfwTerminate();
    }
    // The callbacks GLFW would call, fetched from the window (and put back).
    GLFWcursorposfun cursor() {
        GLFWcursorposfun f = glfwSetCursorPosCallback(window, nullptr);
        glfwSetCursorPosCallback(window, f);
        return f;
    }
    GLFWmousebuttonfun button() {
        GLFWmousebuttonfun f = glfwSetMouseButtonCallback(window, nullptr);
        glfwSetMouseButtonCallback(window, f);
        return f;
    }
    void press(double x, double y) {
        cursor()(window, x, y);
        button()(window, GLFW_MOUSE_BUTTON_LEFT, GLFW_PRESS, 0);
    }
    void moveTo(double x, double y) { cursor()(window, x, y); }
    void release() { button()(window, GLFW_MOUSE_BUTTON_LEFT, GLFW_RELEASE, 0); }

    GLFWwindow* window = nullptr;
    std::unique_ptr<trelvo::test::LogCapture> log;
    std::shared_ptr<GUI::GUIManager> manager;
};

TEST_F(GLFWBackendTest, ClicksAndDragsReachTheOverlayAfterTheHostsCallbacks) {
    GUI::Controls::Panel panel;
    panel.SetRectangle({100, 220, 20, 120});
    panel.Register(manager);
    GUI::Controls::Button counter;
    counter.SetRectangle({10, 90, 200, 240});
    counter.Register(manager);
    int clicks = 0;
    counter.ClickedSignal.connect([&] { ++clicks; });
    manager->UpdateLayers();
    {
        GUI::GLFWBackend input(window, *manager);
        ASSERT_TRUE(input.Installed());
        GUI::GLFWBackend second(window, *manager);
        EXPECT_FALSE(second.Installed()) << "one backend per window";

        float sx = 0, sy = 0;
        input.PixelScale(&sx, &sy);
        // Host y grows downward: overlay y 220 is host y 36.
        press(50 / sx, 36 / sy);
        release();
        EXPECT_EQ(clicks, 1);
        EXPECT_GT(hostCursorCalls, 0) << "the host's own cursor callback is chained";

        // Drag the panel by (+30, +20) host pixels: it moves right and down (y up: -20).
        press(150 / sx, 180 / sy);
        for (int i = 1; i <= 3; ++i)
            moveTo((150 + 10 * i) / sx, (180 + 20 * i / 3.0) / sy);
        release();
        manager->UpdateLayers();
        EXPECT_EQ(panel.GetRectangle(), (GUI::Geometry::Rectangle{130, 250, 0, 100}));
    }
    // The backend is gone: the host's callback is back, and events no longer reach the overlay.
    int before = hostCursorCalls;
    cursor()(window, 10, 10);
    EXPECT_EQ(hostCursorCalls, before + 1);
}

TEST_F(GLFWBackendTest, FramesAreDueOnlyAfterAChangeAndMisuseIsRefused) {
    GUI::Controls::Button button;
    button.SetRectangle({10, 90, 200, 240});
    button.Register(manager);
    {
        GUI::GUIManager uninitialised;
        GUI::GLFWBackend early(window, uninitialised);
        EXPECT_FALSE(early.Installed());
        EXPECT_TRUE(log->Contains("GLFWBackend: the manager is not initialised; nothing is installed.\n"));
        EXPECT_FALSE(early.WaitForFrame());
    }
    GUI::GLFWBackend input(window, *manager);
    // Each WaitForFrame below returns at once because something is due; were it not, the call would
    // sleep until ctest's timeout.
    EXPECT_TRUE(input.WaitForFrame()) << "the first frame";
    manager->UpdateLayers();
    float sx = 0, sy = 0;
    input.PixelScale(&sx, &sy);
    press(50 / sx, 36 / sy); // the overlay changed: the button shows its press
    release();
    EXPECT_TRUE(input.WaitForFrame());
    manager->UpdateLayers();
    input.RequestFrame(); // the host's own animation
    EXPECT_TRUE(input.WaitForFrame());
    EXPECT_EQ(input.Frames(), 3);
    glfwSetWindowShouldClose(window, GLFW_TRUE);
    EXPECT_FALSE(input.WaitForFrame());
}

TEST_F(GLFWBackendTest, ABackendOutlivingGLFWLeavesTheDestroyedWindowAlone) {
    auto input = std::make_unique<GUI::GLFWBackend>(window, *manager);
    ASSERT_TRUE(input->Installed());
    manager.reset();
    glfwTerminate(); // destroys the window under the backend
    window = nullptr;
    input.reset();
    EXPECT_TRUE(log->Contains("GLFWBackend: GLFW was terminated before the backend was destroyed.\n"));
}

TEST_F(GLFWBackendTest, WheelKeysAndTouchReachTheHostsHandlers) {
    GUI::GLFWBackend input(window, *manager);
    Recorder recorder;
    input.Input().addScreenHandler(&recorder);
    GLFWscrollfun scroll = glfwSetScrollCallback(window, nullptr);
    glfwSetScrollCallback(window, scroll);
    GLFWkeyfun key = glfwSetKeyCallback(window, nullptr);
    glfwSetKeyCallback(window, key);

    scroll(window, 0, 1);
    scroll(window, 0, 0.5);
    for (int i = 0; i < 3; ++i) // touchpad slivers of 0.47 units add up instead of vanishing
        scroll(window, 0, 1.0 / 256);
    scroll(window, 0, -2);
    EXPECT_EQ(recorder.wheel, (std::vector<int>{120, 60, 1, -240}));

    key(window, GLFW_KEY_A, 0, GLFW_PRESS, GLFW_MOD_SHIFT);
    key(window, GLFW_KEY_A, 0, GLFW_RELEASE, 0);
    key(window, GLFW_KEY_UNKNOWN, 0, GLFW_PRESS, 0);
    EXPECT_EQ(recorder.keys, (std::vector<int>{GLFW_KEY_A}));

    // Touch points come in window units and reach the handlers in framebuffer pixels.
    VX_UI::TouchEvent touch;
    touch.pointCount = 2;
    touch.points[0].x = 10.f;
    touch.points[1].x = 40.f;
    EXPECT_TRUE(input.Touch(touch));
    float sx = 0, sy = 0;
    input.PixelScale(&sx, &sy);
    EXPECT_EQ(recorder.touches, (std::vector<float>{10.f * sx, 40.f * sx}));
    EXPECT_GT(input.GetDrawFlags() & DRAW_SCENE, 0);

    // Results reach the host as they come; resizes keep followed cameras' viewports in step.
    DrawFlags seen = DRAW_NOTHING;
    input.DrawFlagsSignal.connect([&](DrawFlags f) { seen |= f; });
    scroll(window, 0, 1);
    EXPECT_EQ(seen, DRAW_SCENE);
    auto camera = std::make_shared<Camera>();
    input.FollowViewport(camera);
    GLFWframebuffersizefun resized = glfwSetFramebufferSizeCallback(window, nullptr);
    glfwSetFramebufferSizeCallback(window, resized);
    resized(window, 300, 200);
    EXPECT_EQ(manager->GetWidth(), 300);
    EXPECT_EQ(std::make_pair(camera->Width(), camera->Height()), std::make_pair(300, 200));
}

} // namespace
