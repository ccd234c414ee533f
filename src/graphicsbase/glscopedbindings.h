#pragma once
// Saves the host's GL bindings and puts them back at the end of a scope.

#include <graphicsbase/graphicsbase_export.h>

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
    int drawFramebuffer_ = 0;
    int readFramebuffer_ = 0;
    int viewport_[4] = {0, 0, 0, 0};
    int program_ = 0;
    int vertexArray_ = 0;
    int activeTexture_ = 0x84C0; // GL_TEXTURE0
    int texture_ = 0;
    int arrayBuffer_ = 0;
    int scissor_[4] = {0, 0, 0, 0};
    unsigned char scissorTest_ = 0;
};

} // namespace GL
