#include "uniforms.h"

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

#include <cstdio>

namespace GUI::Renderer::detail {

GLint UniformLocationQuiet(GLuint program, const char* name) {
    GLint location = glGetUniformLocation(program, name);
    GB_CHECK_GL("gui/renderers/detail/uniforms");
    return location;
}

GLint UniformLocation(GLuint program, const char* name) {
    GLint location = UniformLocationQuiet(program, name);
    if (location == -1)
        std::printf("Could not get index for %s\n", name);
    return location;
}

} // namespace GUI::Renderer::detail
