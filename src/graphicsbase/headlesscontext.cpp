#include <graphicsbase/glloader.h>
#include <graphicsbase/headlesscontext.h>

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/glew.h>

#include <cstring>

namespace GraphicsBase {

#ifndef EGL_PLATFORM_SURFACELESS_MESA
#define EGL_PLATFORM_SURFACELESS_MESA 0x31DD
#endif

namespace {
EGLDisplay openDisplay() {
    auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    const char* clientExtensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    if (getPlatformDisplay && clientExtensions &&
        std::strstr(clientExtensions, "EGL_MESA_platform_surfaceless")) {
        EGLDisplay d = getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
        if (d != EGL_NO_DISPLAY)
            return d;
    }
    return eglGetDisplay(EGL_DEFAULT_DISPLAY);
}
} // namespace

HeadlessGLContext::HeadlessGLContext(int width, int height) : width_(width), height_(height) {
    if (width <= 0 || height <= 0) {
        fail("invalid size");
        return;
    }
    EGLDisplay display = openDisplay();
    if (display == EGL_NO_DISPLAY) {
        fail("no EGL display could be opened (is Mesa's EGL installed?)");
        return;
    }
    EGLint major = 0, minor = 0;
    if (!eglInitialize(display, &major, &minor)) {
        fail("eglInitialize failed");
        return;
    }
    display_ = display;
    if (!eglBindAPI(EGL_OPENGL_API)) {
        fail("eglBindAPI(EGL_OPENGL_API) failed");
        return;
    }
    const EGLint configAttributes[] = {EGL_SURFACE_TYPE,
                                       EGL_PBUFFER_BIT,
                                       EGL_RENDERABLE_TYPE,
                                       EGL_OPENGL_BIT,
                                       EGL_RED_SIZE,
                                       8,
                                       EGL_GREEN_SIZE,
                                       8,
                                       EGL_BLUE_SIZE,
                                       8,
                                       EGL_ALPHA_SIZE,
                                       8,
                                       EGL_DEPTH_SIZE,
                                       24,
                                       EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, configAttributes, &config, 1, &count) || count < 1) {
        fail("no EGL config with an RGBA8 pbuffer and a 24-bit depth buffer");
        return;
    }
    const EGLint surfaceAttributes[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = eglCreatePbufferSurface(display, config, surfaceAttributes);
    if (surface == EGL_NO_SURFACE) {
        fail("eglCreatePbufferSurface failed");
        return;
    }
    surface_ = surface;
    const EGLint contextAttributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                        3,
                                        EGL_CONTEXT_MINOR_VERSION,
                                        3,
                                        EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                        EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                        EGL_NONE};
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, contextAttributes);
    if (context == EGL_NO_CONTEXT) {
        fail("eglCreateContext for OpenGL 3.3 core failed");
        return;
    }
    context_ = context;
    if (!MakeCurrent()) {
        fail("eglMakeCurrent failed");
        return;
    }
    std::string why;
    if (!GraphicsBase::LoadGL(&why)) {
        fail(why);
        return;
    }
    glViewport(0, 0, width, height);
    valid_ = true;
}

HeadlessGLContext::~HeadlessGLContext() {
    EGLDisplay display = static_cast<EGLDisplay>(display_);
    if (!display)
        return;
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context_)
        eglDestroyContext(display, static_cast<EGLContext>(context_));
    if (surface_)
        eglDestroySurface(display, static_cast<EGLSurface>(surface_));
    eglTerminate(display);
}

bool HeadlessGLContext::MakeCurrent() {
    if (!display_ || !context_)
        return false;
    return eglMakeCurrent(static_cast<EGLDisplay>(display_), static_cast<EGLSurface>(surface_),
                          static_cast<EGLSurface>(surface_), static_cast<EGLContext>(context_)) == EGL_TRUE;
}

std::string HeadlessGLContext::Renderer() const {
    if (!valid_)
        return {};
    const GLubyte* s = glGetString(GL_RENDERER);
    return s ? reinterpret_cast<const char*>(s) : "";
}

bool HeadlessGLContext::fail(const std::string& what) {
    error_ = "HeadlessGLContext: " + what;
    valid_ = false;
    return false;
}

} // namespace GraphicsBase
