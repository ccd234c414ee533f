#pragma once
// Uniform lookup by name at every use, with the library's report for names a program lacks.

#include <GL/glew.h>

#include <glm/glm.hpp>

namespace GUI::Renderer::detail {

/// The location of `name` in `program`. When the program has no such active uniform, prints
/// "Could not get index for <name>\n" to standard output and returns -1; callers still make the
/// uniform call, which GL ignores for -1.
GLint UniformLocation(GLuint program, const char* name);

/// As UniformLocation, but silent: for uniforms a shader may legitimately optimise away.
GLint UniformLocationQuiet(GLuint program, const char* name);

/// Sets the uniform when the program has it; silent otherwise.
void SetUniformQuiet(GLuint program, const char* name, const glm::vec4& v);
void SetUniformQuiet(GLuint program, const char* name, GLint v);

/// Points "targetColorSampler" and "targetIDSampler" at the units where the layer being drawn is
/// bound (9 and 10): every shader that composes against its target reads them.
void SetTargetSamplers(GLuint program);

/// Sets "ProjectionMatrix" to the pixel projection of the current viewport: (0, 0) at its lower-left
/// corner, one unit a pixel, y up. For the data controls, which draw in overlay pixels.
void SetViewportProjection(GLuint program);

/// The lit widgets' material block ("material.ambient", ".diffuse", ".specular", ".shininess"),
/// with one colour for the three terms.
void SetMaterialUniforms(GLuint program, const glm::vec4& colour, float shininess);

} // namespace GUI::Renderer::detail
