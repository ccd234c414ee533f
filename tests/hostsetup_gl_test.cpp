// What a new host meets first: GL loading done by the library, a clear failure without a context,
// and a click window the host can widen.
#include "support/logcapture.h"
#include "support/overlayfixture.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/glloader.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

using namespace GraphicsBase;

namespace {

/// A host's own context, made without HeadlessGLContext and without any GL loader call, so that
/// the manager has to load the entry points itself (ctest runs each test in a fresh process).
class HostContext {
public:
    HostContext() {
        // Mesa's surfaceless platform needs no display server.
        auto platformDisplay =
            reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
        display_ = platformDisplay ? platformDisplay(0x31DD /* EGL_PLATFORM_SURFACELESS_MESA */,
                                                     EGL_DEFAULT_DISPLAY, nullptr)
                                   : eglGetDisplay(EGL_DEFAULT_DISPLAY);
        if (display_ == EGL_NO_DISPLAY || !eglInitialize(display_, nullptr, nullptr) ||
            !eglBindAPI(EGL_OPENGL_API))
            return;
        const EGLint config[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                 EGL_NONE};
        EGLConfig chosen = nullptr;
        EGLint count = 0;
        if (!eglChooseConfig(display_, config, &chosen, 1, &count) || count < 1)
            return;
        const EGLint size[] = {EGL_WIDTH, 64, EGL_HEIGHT, 64, EGL_NONE};
        surface_ = eglCreatePbufferSurface(display_, chosen, size);
        const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION,
                                  3,
                                  EGL_CONTEXT_MINOR_VERSION,
                                  3,
                                  EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                  EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                  EGL_NONE};
        context_ = eglCreateContext(display_, chosen, EGL_NO_CONTEXT, version);
        current_ = context_ != EGL_NO_CONTEXT && eglMakeCurrent(display_, surface_, surface_, context_);
    }
    ~HostContext() {
        if (display_ == EGL_NO_DISPLAY)
            return;
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        if (context_ != EGL_NO_CONTEXT)
            eglDestroyContext(display_, context_);
        if (surface_ != EGL_NO_SURFACE)
            eglDestroySurface(display_, surface_);
    }
    bool Current() const { return current_; }

private:
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLSurface surface_ = EGL_NO_SURFACE;
    EGLContext context_ = EGL_NO_CONTEXT;
    bool current_ = false;
};

TEST(GLLoading, InitializeWithoutACurrentContextFailsAndSaysWhy) {
    trelvo::test::LogCapture log;
    std::string why;
    EXPECT_EQ(GraphicsBase::CurrentGLVersion(), 0);
    EXPECT_FALSE(GraphicsBase::LoadGL(&why));
    EXPECT_NE(why.find("no current OpenGL context"), std::string::npos) << why;
    {
        GUI::GUIManager manager;
        EXPECT_FALSE(manager.Initialize());
    } // and destroying the manager that never started touches no GL
    EXPECT_TRUE(log.Contains("GUIManager::Initialize(): no current OpenGL context")) << log.Lines().size();
}

TEST(GLLoading, AHostThatNeverCallsALoaderGetsAWorkingOverlay) {
    HostContext host;
    ASSERT_TRUE(host.Current()) << "no EGL pbuffer context for OpenGL 3.3 core";
    EXPECT_GE(GraphicsBase::CurrentGLVersion(), 33);
    trelvo::test::LogCapture log;
    {
        auto manager = std::make_shared<GUI::GUIManager>();
        ASSERT_TRUE(manager->Initialize());
        EXPECT_TRUE(manager->Initialize()) << "loading again is harmless";
        manager->Resize(64, 64);
        GUI::Controls::Button button;
        button.SetRectangle({8, 56, 8, 40});
        button.Register(manager);
        manager->UpdateLayers();
        unsigned pid = 0, sid = 0;
        manager->HitDetect(32, 24, &pid, &sid);
        EXPECT_EQ(pid, button.GetId());
    }
    for (const auto& line : log.Lines())
        EXPECT_EQ(line.find("Opengl assert"), std::string::npos) << line;
}

class ClickWindowTest : public trelvo::test::OverlayTest {};

TEST_F(ClickWindowTest, AReleaseWithinTheHostsWindowIsAClick) {
    EXPECT_EQ(manager->GetClickWindow(), 200u);
    struct Case {
        uint64_t window; // 0: the default
        uint64_t held;
        bool click;
    };
    const Case cases[] = {{0, 200, true},   {0, 201, false},  {0, 450, false},   {500, 150, true},
                          {500, 450, true}, {500, 500, true}, {500, 501, false}, {50, 60, false}};
    GUI::Controls::Button button;
    button.SetRectangle({20, 120, 20, 60});
    button.Register(manager);
    manager->UpdateLayers();
    for (const Case& c : cases) {
        manager->SetClickWindow(c.window ? c.window : 200);
        int clicks = 0;
        auto connection = button.ClickedSignal.connect([&] { ++clicks; });
        Press(60, 216);
        now += c.held;
        Release(60, 216);
        connection.disconnect();
        EXPECT_EQ(clicks, c.click ? 1 : 0) << "window " << c.window << " ms, held " << c.held << " ms";
        now += 1000;
    }
}

} // namespace
