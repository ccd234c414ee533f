#include <graphicsbase/glscopedbindings.h>

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

namespace GraphicsBase {

namespace GL {
namespace {
const char* kFile = "glscopedbindings";

void SetCapability(GLenum capability, bool on) {
    if (on)
        glEnable(capability);
    else
        glDisable(capability);
}

GLenum UnitEnum(int unit) {
    return GL_TEXTURE0 + static_cast<GLenum>(unit);
}

// The unit left active for the library's own work: a texture bound in passing lands here.
constexpr int kWorkUnit = 15;

// How many guards are open: the outermost one holds the host's state, the ones inside it the
// library's own (GL work happens on one thread).
int nesting = 0;
} // namespace

GLScopedBindings::GLScopedBindings() {
    save();
    ++nesting;
    prepare();
}

void GLScopedBindings::save() {
    glGetIntegerv(GL_CURRENT_PROGRAM, &program_);
    glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &vertexArray_);
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &arrayBuffer_);
    glGetIntegerv(GL_ACTIVE_TEXTURE, &activeTexture_);
    for (int i = 0; i < kUnitCount; ++i) {
        glActiveTexture(UnitEnum(kLibraryUnits[i]));
        glGetIntegerv(GL_TEXTURE_BINDING_1D, &units_[i].texture1D);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &units_[i].texture2D);
        glGetIntegerv(GL_SAMPLER_BINDING, &units_[i].sampler);
    }
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawFramebuffer_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &readFramebuffer_);
    glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer_);
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &renderbuffer_);
    glGetIntegerv(GL_VIEWPORT, viewport_);
    glGetIntegerv(GL_SCISSOR_BOX, scissor_);
    glGetIntegerv(GL_BLEND_SRC_RGB, &blendFactors_[0]);
    glGetIntegerv(GL_BLEND_DST_RGB, &blendFactors_[1]);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &blendFactors_[2]);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &blendFactors_[3]);
    glGetIntegerv(GL_BLEND_EQUATION_RGB, &blendEquations_[0]);
    glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &blendEquations_[1]);
    glGetFloatv(GL_BLEND_COLOR, blendColor_);
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clearColor_);
    glGetIntegerv(GL_DEPTH_FUNC, &depthFunc_);
    glGetIntegerv(GL_CULL_FACE_MODE, &cullMode_);
    glGetIntegerv(GL_FRONT_FACE, &frontFace_);
    glGetIntegerv(GL_POLYGON_MODE, polygonMode_);
    for (GLuint buffer = 0; buffer < 2; ++buffer)
        glGetBooleani_v(GL_COLOR_WRITEMASK, buffer, colorMask_[buffer]);
    glGetIntegerv(GL_PACK_ALIGNMENT, &pixelStore_[0]);
    glGetIntegerv(GL_PACK_ROW_LENGTH, &pixelStore_[1]);
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &pixelStore_[2]);
    glGetIntegerv(GL_UNPACK_ROW_LENGTH, &pixelStore_[3]);
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer_);
    glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &unpackBuffer_);
    GLboolean depthMask = GL_TRUE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
    depthMask_ = depthMask;
    scissorTest_ = glIsEnabled(GL_SCISSOR_TEST);
    blend_ = glIsEnabled(GL_BLEND);
    depthTest_ = glIsEnabled(GL_DEPTH_TEST);
    cullFace_ = glIsEnabled(GL_CULL_FACE);
    stencilTest_ = glIsEnabled(GL_STENCIL_TEST);
    srgb_ = glIsEnabled(GL_FRAMEBUFFER_SRGB);
    GB_CHECK_GL(kFile);
}

void GLScopedBindings::prepare() {
    // Only what differs from the library's needs is set: most hosts leave most of it at the defaults.
    if (packBuffer_)
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    if (unpackBuffer_)
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    const GLenum store[4] = {GL_PACK_ALIGNMENT, GL_PACK_ROW_LENGTH, GL_UNPACK_ALIGNMENT,
                             GL_UNPACK_ROW_LENGTH};
    const int wanted[4] = {4, 0, 4, 0};
    for (int i = 0; i < 4; ++i)
        if (pixelStore_[i] != wanted[i])
            glPixelStorei(store[i], wanted[i]);
    for (int i = 0; i < kUnitCount; ++i)
        if (units_[i].sampler)
            glBindSampler(static_cast<GLuint>(kLibraryUnits[i]), 0);
    bool fullMask = true;
    for (const auto& mask : colorMask_)
        for (unsigned char channel : mask)
            fullMask = fullMask && channel;
    // The host's masks go; inside the library's own guard the id buffer keeps its mask, which the
    // library sets on purpose (a disabled control draws without ids).
    if (!fullMask && nesting > 1)
        glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    else if (!fullMask)
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    if (polygonMode_[0] != GL_FILL || polygonMode_[1] != GL_FILL)
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    if (depthTest_)
        glDisable(GL_DEPTH_TEST);
    if (!depthMask_)
        glDepthMask(GL_TRUE);
    if (stencilTest_)
        glDisable(GL_STENCIL_TEST);
    if (cullFace_)
        glDisable(GL_CULL_FACE);
    if (frontFace_ != GL_CCW)
        glFrontFace(GL_CCW);
    if (blendEquations_[0] != GL_FUNC_ADD || blendEquations_[1] != GL_FUNC_ADD)
        glBlendEquation(GL_FUNC_ADD);
    glActiveTexture(UnitEnum(kWorkUnit));
    GB_CHECK_GL(kFile);
}

GLScopedBindings::~GLScopedBindings() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawFramebuffer_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer_));
    // The draw buffer belongs to the host's framebuffer, which the library never draws into with
    // buffers of its own choosing: set only if something did change it (a host's several buffers
    // stay as they are otherwise).
    GLint drawBuffer = 0;
    glGetIntegerv(GL_DRAW_BUFFER, &drawBuffer);
    if (drawBuffer != drawBuffer_)
        glDrawBuffer(static_cast<GLenum>(drawBuffer_));
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(renderbuffer_));
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
    glScissor(scissor_[0], scissor_[1], scissor_[2], scissor_[3]);
    SetCapability(GL_SCISSOR_TEST, scissorTest_);
    glUseProgram(static_cast<GLuint>(program_));
    glBindVertexArray(static_cast<GLuint>(vertexArray_));
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(arrayBuffer_));
    for (int i = 0; i < kUnitCount; ++i) {
        glActiveTexture(UnitEnum(kLibraryUnits[i]));
        glBindTexture(GL_TEXTURE_1D, static_cast<GLuint>(units_[i].texture1D));
        glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(units_[i].texture2D));
        glBindSampler(static_cast<GLuint>(kLibraryUnits[i]), static_cast<GLuint>(units_[i].sampler));
    }
    glActiveTexture(static_cast<GLenum>(activeTexture_));
    SetCapability(GL_BLEND, blend_);
    glBlendFuncSeparate(static_cast<GLenum>(blendFactors_[0]), static_cast<GLenum>(blendFactors_[1]),
                        static_cast<GLenum>(blendFactors_[2]), static_cast<GLenum>(blendFactors_[3]));
    glBlendEquationSeparate(static_cast<GLenum>(blendEquations_[0]), static_cast<GLenum>(blendEquations_[1]));
    glBlendColor(blendColor_[0], blendColor_[1], blendColor_[2], blendColor_[3]);
    glClearColor(clearColor_[0], clearColor_[1], clearColor_[2], clearColor_[3]);
    SetCapability(GL_DEPTH_TEST, depthTest_);
    glDepthMask(depthMask_ ? GL_TRUE : GL_FALSE);
    glDepthFunc(static_cast<GLenum>(depthFunc_));
    SetCapability(GL_CULL_FACE, cullFace_);
    glCullFace(static_cast<GLenum>(cullMode_));
    glFrontFace(static_cast<GLenum>(frontFace_));
    // A core context knows one mode for both faces; the front's is the one a host set.
    glPolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(polygonMode_[0]));
    for (GLuint buffer = 0; buffer < 2; ++buffer)
        glColorMaski(buffer, colorMask_[buffer][0], colorMask_[buffer][1], colorMask_[buffer][2],
                     colorMask_[buffer][3]);
    SetCapability(GL_STENCIL_TEST, stencilTest_);
    SetCapability(GL_FRAMEBUFFER_SRGB, srgb_);
    glPixelStorei(GL_PACK_ALIGNMENT, pixelStore_[0]);
    glPixelStorei(GL_PACK_ROW_LENGTH, pixelStore_[1]);
    glPixelStorei(GL_UNPACK_ALIGNMENT, pixelStore_[2]);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, pixelStore_[3]);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer_));
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(unpackBuffer_));
    --nesting;
    GB_CHECK_GL(kFile);
}

} // namespace GL

} // namespace GraphicsBase
