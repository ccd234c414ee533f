#include <graphicsbase/glerror.h>
#include <graphicsbase/logfile.h>

#include <GL/glew.h>

namespace GraphicsBase {

unsigned int CheckOpenGLError(const char* file, int line) {
    GLenum error = glGetError();
    if (error != GL_NO_ERROR)
        LogFile::Instance().AddLine(LogLevel::Warning, "Opengl assert: File: %s Line: %d Error: %u\n", file,
                                    line, static_cast<unsigned>(error));
    return error;
}

} // namespace GraphicsBase
