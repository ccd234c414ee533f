#include <graphicsbase/glloader.h>

#include <graphicsbase/logfile.h>

#include <GL/glew.h>

#include <cstdio>

namespace GraphicsBase {

namespace {
bool fail(std::string* error, const std::string& why) {
    if (error)
        *error = why;
    return false;
}
} // namespace

int CurrentGLVersion() {
    // glGetString is a GL 1.1 entry point exported by the GL library itself, so it works before any
    // loading; the dispatch answers null when no context is current.
    const GLubyte* text = glGetString(GL_VERSION);
    if (!text)
        return 0;
    int major = 0, minor = 0;
    // Desktop version strings start with "major.minor"; anything else (OpenGL ES) is not usable.
    if (std::sscanf(reinterpret_cast<const char*>(text), "%d.%d", &major, &minor) != 2)
        return 0;
    return major * 10 + minor;
}

bool CanReleaseGL() {
    static bool reported = false;
    if (glGetString(GL_VERSION)) {
        reported = false;
        return true;
    }
    if (!reported)
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GraphicsBase: GL objects destroyed while no context is current are "
                                    "leaked; destroy them while their context is current.\n");
    reported = true;
    return false;
}

bool LoadGL(std::string* error) {
    int version = CurrentGLVersion();
    if (version == 0)
        return fail(error, "no current OpenGL context: create an OpenGL 3.3 (or newer) context and make it "
                           "current on this thread first");
    if (version < 33)
        return fail(error, "the current OpenGL context is version " + std::to_string(version / 10) + "." +
                               std::to_string(version % 10) + "; OpenGL 3.3 or newer is needed");
    // Non-null pointers mean this process has loaded them already (the host may have, too: the
    // pointers live in the shared loader library).
    if (glGenFramebuffers && glDrawBuffers && glGenVertexArrays)
        return true;
    // Core profiles hide the extension list glewInit reads unless experimental mode asks for every
    // entry point by name.
    glewExperimental = GL_TRUE;
    GLenum result = glewInit();
    // GLEW looks for a GLX display first; on an EGL context it reports that as an error although
    // every entry point has been loaded.
    if (result != GLEW_OK && result != 4 /* GLEW_ERROR_NO_GLX_DISPLAY */)
        return fail(error, std::string("loading the OpenGL entry points failed: ") +
                               reinterpret_cast<const char*>(glewGetErrorString(result)));
    if (!glGenFramebuffers || !glDrawBuffers || !glGenVertexArrays)
        return fail(error, "the OpenGL 3.3 entry points are missing after loading");
    // Loading may leave GL_INVALID_ENUM behind on core profiles; clear it so it is not blamed on
    // the next caller's error check.
    for (int i = 0; i < 8 && glGetError() != GL_NO_ERROR; ++i) {
    }
    return true;
}

} // namespace GraphicsBase
