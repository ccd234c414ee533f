// The SDL backend in a hidden window: SDL events reach the overlay, those it leaves go to the host's
// handlers, and misuse is refused. Skipped without a display (scripts/test.sh runs it under Xvfb).
#include "support/followscale.h"
#include "support/logcapture.h"

#include <trelvogui/backends/sdl/sdlbackend.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/camera.h>

#include <SDL.h>

#include <gtest/gtest.h>

#include <memory>

using namespace GraphicsBase;

namespace {

class KeyRecorder : public InputHandler {
public:
    DrawFlags keyPress(VX_UI::KeyEvent* e) override {
        key = static_cast<int>(e->key);
        return DRAW_SCENE;
    }
    int key = 0;
};

class SDLBackendTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (SDL_Init(SDL_INIT_VIDEO) != 0)
            GTEST_SKIP() << "no display for SDL: " << SDL_GetError();
        GUI::SDLBackend::RequestOpenGL33();
        window = SDL_CreateWindow("backend test", 0, 0, 256, 256, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
        context = window ? SDL_GL_CreateContext(window) : nullptr;
        if (!context)
            GTEST_SKIP() << "no OpenGL 3.3 window: " << SDL_GetError();
        log = std::make_unique<trelvo::test::LogCapture>();
        manager = std::make_shared<GUI::GUIManager>();
        ASSERT_TRUE(manager->Initialize());
        manager->Resize(256, 256);
    }
    void TearDown() override {
        if (log) {
            for (const auto& line : log->Lines())
                EXPECT_EQ(line.find("Opengl assert"), std::string::npos) << line;
        }
        manager.reset();
        if (context)
            SDL_GL_DeleteContext(context);
        if (window)
            SDL_DestroyWindow(window);
        SDL_Quit();
    }
    SDL_Event button(Uint32 type, int x, int y) {
        SDL_Event e{};
        e.type = type;
        e.button.windowID = SDL_GetWindowID(window);
        e.button.button = SDL_BUTTON_LEFT;
        e.button.x = x;
        e.button.y = y;
        return e;
    }

    SDL_Window* window = nullptr;
    SDL_GLContext context = nullptr;
    std::unique_ptr<trelvo::test::LogCapture> log;
    std::shared_ptr<GUI::GUIManager> manager;
};

TEST_F(SDLBackendTest, ClicksReachTheOverlayAndTheRestReachesTheHost) {
    GUI::Controls::Button counter;
    counter.SetRectangle({10, 90, 200, 240});
    counter.Register(manager);
    int clicks = 0;
    counter.ClickedSignal.connect([&] { ++clicks; });
    manager->UpdateLayers();
    GUI::SDLBackend input(window, context, *manager);
    ASSERT_TRUE(input.Installed());
    KeyRecorder host;
    input.Input().addScreenHandler(&host);
    DrawFlags seen = DRAW_NOTHING;
    input.DrawFlagsSignal.connect([&](DrawFlags f) { seen |= f; });

    // Host y grows downward: overlay y 220 is host y 36 (the window is not scaled under X).
    EXPECT_TRUE(input.ProcessEvent(button(SDL_MOUSEBUTTONDOWN, 50, 36)));
    EXPECT_TRUE(input.ProcessEvent(button(SDL_MOUSEBUTTONUP, 50, 36)));
    EXPECT_EQ(clicks, 1);
    EXPECT_NE(seen, DRAW_NOTHING) << "the click's result reaches the host";
    SDL_Event elsewhere = button(SDL_MOUSEBUTTONDOWN, 50, 36);
    elsewhere.button.windowID += 1000;
    EXPECT_FALSE(input.ProcessEvent(elsewhere)) << "another window's event";
    SDL_Event key{};
    key.type = SDL_KEYDOWN;
    key.key.windowID = SDL_GetWindowID(window);
    key.key.keysym.sym = SDLK_a;
    EXPECT_TRUE(input.ProcessEvent(key)) << "consumed by the host's handler";
    EXPECT_EQ(host.key, SDLK_a);

    // Each NextEvent returns false at once because a frame is due (the press, the handler's result).
    SDL_Event event;
    while (input.NextEvent(&event)) {
    }
    EXPECT_EQ(input.Frames(), 1);

    // A resize brings the manager and every followed camera to the drawable size.
    auto camera = std::make_shared<Camera>();
    input.FollowViewport(camera);
    input.FollowViewport(nullptr);
    SDL_SetWindowSize(window, 300, 200);
    SDL_Event resized{};
    resized.type = SDL_WINDOWEVENT;
    resized.window.windowID = SDL_GetWindowID(window);
    resized.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
    input.ProcessEvent(resized);
    int dw = 0, dh = 0;
    SDL_GL_GetDrawableSize(window, &dw, &dh);
    EXPECT_EQ(std::make_pair(manager->GetWidth(), manager->GetHeight()), std::make_pair(dw, dh));
    EXPECT_EQ(std::make_pair(camera->Width(), camera->Height()), std::make_pair(dw, dh));

    GUI::SDLBackend second(window, context, *manager);
    EXPECT_FALSE(second.Installed());
    EXPECT_TRUE(log->Contains("SDLBackend: the window already has a backend.\n"));
    EXPECT_FALSE(second.ProcessEvent(button(SDL_MOUSEBUTTONDOWN, 50, 36)));

    // A window destroyed before its backend: its events are refused, once with a message.
    SDL_Window* other = SDL_CreateWindow("gone", 0, 0, 64, 64, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    ASSERT_NE(other, nullptr);
    GUI::SDLBackend orphan(other, context, *manager);
    SDL_Event late = button(SDL_MOUSEBUTTONDOWN, 10, 10);
    late.button.windowID = SDL_GetWindowID(other);
    SDL_DestroyWindow(other);
    EXPECT_FALSE(orphan.ProcessEvent(late));
    EXPECT_TRUE(log->Contains("SDLBackend: the window was destroyed; its events are ignored.\n"));
}

// A host whose own scale differs sees it replaced by the window's, unless it turns following off.
TEST_F(SDLBackendTest, TheManagersScaleFollowsTheWindowsUnlessTheHostTurnsThatOff) {
    ASSERT_TRUE(manager->SetDisplayScale(2.5f));
    GUI::SDLBackend input(window, context, *manager);
    float x = 0.f, y = 0.f;
    input.PixelScale(&x, &y);
    trelvo::test::ExpectScaleFollowsWindow(*manager, input, x);
}

TEST_F(SDLBackendTest, AnUninitialisedManagerOrMissingContextIsRefused) {
    GUI::GUIManager uninitialised;
    EXPECT_FALSE(GUI::SDLBackend(window, context, uninitialised).Installed());
    EXPECT_TRUE(log->Contains("SDLBackend: the manager is not initialised; nothing is forwarded.\n"));
    EXPECT_FALSE(GUI::SDLBackend(window, nullptr, *manager).Installed());
    EXPECT_TRUE(log->Contains("SDLBackend: the window or its context is null.\n"));
}

} // namespace
