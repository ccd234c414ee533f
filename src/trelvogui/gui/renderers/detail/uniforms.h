#pragma once
// Uniform lookup by name at every use, with the library's report for names a program lacks.

#include <GL/glew.h>

namespace GUI::Renderer::detail {

/// The location of `name` in `program`. When the program has no such active uniform, prints
/// "Could not get index for <name>\n" to standard output and returns -1; callers still make the
/// uniform call, which GL ignores for -1.
GLint UniformLocation(GLuint program, const char* name);

/// As UniformLocation, but silent: for uniforms a shader may legitimately optimise away.
GLint UniformLocationQuiet(GLuint program, const char* name);

} // namespace GUI::Renderer::detail
