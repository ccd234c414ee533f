#include <graphicsbase/glscopedbindings.h>

#include <graphicsbase/glerror.h>

namespace GL {
namespace {
const char* kFile = "glscopedbindings";
}

GLScopedBindings::GLScopedBindings() {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawFramebuffer_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &readFramebuffer_);
    glGetIntegerv(GL_VIEWPORT, viewport_);
    glGetIntegerv(GL_CURRENT_PROGRAM, &program_);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray_);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &activeTexture_);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &arrayBuffer_);
    glGetIntegerv(GL_SCISSOR_BOX, scissor_);
    scissorTest_ = glIsEnabled(GL_SCISSOR_TEST);
    GB_CHECK_GL(kFile);
}

GLScopedBindings::~GLScopedBindings() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawFramebuffer_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer_));
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
    glUseProgram(static_cast<GLuint>(program_));
    glBindVertexArray(static_cast<GLuint>(vertexArray_));
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer_));
    glScissor(scissor_[0], scissor_[1], scissor_[2], scissor_[3]);
    if (scissorTest_)
        glEnable(GL_SCISSOR_TEST);
    else
        glDisable(GL_SCISSOR_TEST);
    glActiveTexture(static_cast<GLenum>(activeTexture_));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
    GB_CHECK_GL(kFile);
}

} // namespace GL
