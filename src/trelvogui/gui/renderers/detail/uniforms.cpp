#include "uniforms.h"

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <cstdio>

using namespace GraphicsBase;

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

void SetViewportProjection(GLuint program) {
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    GB_CHECK_GL("gui/renderers/detail/uniforms");
    const glm::mat4 projection =
        glm::ortho(0.f, static_cast<float>(viewport[2]), 0.f, static_cast<float>(viewport[3]), -1.f, 1.f);
    glUniformMatrix4fv(UniformLocation(program, "ProjectionMatrix"), 1, GL_FALSE, glm::value_ptr(projection));
    GB_CHECK_GL("gui/renderers/detail/uniforms");
}

void SetUniformQuiet(GLuint program, const char* name, const glm::vec4& v) {
    GLint location = UniformLocationQuiet(program, name);
    if (location != -1) {
        glUniform4fv(location, 1, glm::value_ptr(v));
        GB_CHECK_GL("gui/renderers/detail/uniforms");
    }
}

void SetUniformQuiet(GLuint program, const char* name, GLint v) {
    GLint location = UniformLocationQuiet(program, name);
    if (location != -1) {
        glUniform1i(location, v);
        GB_CHECK_GL("gui/renderers/detail/uniforms");
    }
}

void SetTargetSamplers(GLuint program) {
    SetUniformQuiet(program, "targetColorSampler", 9);
    SetUniformQuiet(program, "targetIDSampler", 10);
}

void SetMaterialUniforms(GLuint program, const glm::vec4& colour, float shininess) {
    SetUniformQuiet(program, "material.ambient", colour);
    SetUniformQuiet(program, "material.diffuse", colour);
    SetUniformQuiet(program, "material.specular", colour);
    GLint location = UniformLocationQuiet(program, "material.shininess");
    if (location != -1) {
        glUniform1f(location, shininess);
        GB_CHECK_GL("gui/renderers/detail/uniforms");
    }
}

} // namespace GUI::Renderer::detail
