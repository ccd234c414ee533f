#pragma once
// Saves the host's GL bindings and puts them back at the end of a scope.

#include <graphicsbase/graphicsbase_export.h>

#include <GL/glew.h>

namespace GL {

/// Remembers the draw and read framebuffers, the viewport, the current program, the bound vertex
/// array, the array buffer, the active texture unit and the 2D texture bound on it, the scissor test
/// and box, and restores them on destruction, so that drawing into the library's own targets leaves a
/// host that renders into its own framebuffer undisturbed.
class GRAPHICSBASE_EXPORT GLScopedBindings {
public:
    GLScopedBindings();
    ~GLScopedBindings();

    GLScopedBindings(const GLScopedBindings&) = delete;
    GLScopedBindings& operator=(const GLScopedBindings&) = delete;

private:
    GLint drawFramebuffer_ = 0;
    GLint readFramebuffer_ = 0;
    GLint viewport_[4] = {0, 0, 0, 0};
    GLint program_ = 0;
    GLint vertexArray_ = 0;
    GLint activeTexture_ = GL_TEXTURE0;
    GLint texture_ = 0;
    GLint arrayBuffer_ = 0;
    GLint scissor_[4] = {0, 0, 0, 0};
    GLboolean scissorTest_ = GL_FALSE;
};

} // namespace GL
