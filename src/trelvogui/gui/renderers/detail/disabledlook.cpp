#include <trelvogui/gui/renderers/detail/disabledlook.h>

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

namespace GUI::Renderer::detail {

namespace {
constexpr const char* kTag = "disabledlook";
int alive = 0;
} // namespace

DisabledLook::DisabledLook() {
    blend_ = glIsEnabled(GL_BLEND) == GL_TRUE;
    const GLenum functions[4] = {GL_BLEND_SRC_RGB, GL_BLEND_DST_RGB, GL_BLEND_SRC_ALPHA, GL_BLEND_DST_ALPHA};
    for (int i = 0; i < 4; ++i)
        glGetIntegerv(functions[i], &functions_[i]);
    glGetFloatv(GL_BLEND_COLOR, color_);
    GLboolean mask[4] = {GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
    glGetBooleani_v(GL_COLOR_WRITEMASK, 1, mask);
    for (int i = 0; i < 4; ++i)
        idMask_[i] = mask[i] == GL_TRUE;
    GB_CHECK_GL(kTag);
    // The shaders write the source already composed over the target; a constant-alpha blend of that
    // with the target is the source at kOpacity of its own opacity. Integer id buffers never blend.
    glEnable(GL_BLEND);
    glBlendColor(0.f, 0.f, 0.f, kOpacity);
    glBlendFuncSeparate(GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA, GL_CONSTANT_ALPHA,
                        GL_ONE_MINUS_CONSTANT_ALPHA);
    glColorMaski(1, GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    GB_CHECK_GL(kTag);
    ++alive;
}

DisabledLook::~DisabledLook() {
    --alive;
    glColorMaski(1, idMask_[0], idMask_[1], idMask_[2], idMask_[3]);
    glBlendFuncSeparate(static_cast<GLenum>(functions_[0]), static_cast<GLenum>(functions_[1]),
                        static_cast<GLenum>(functions_[2]), static_cast<GLenum>(functions_[3]));
    glBlendColor(color_[0], color_[1], color_[2], color_[3]);
    if (blend_)
        glEnable(GL_BLEND);
    else
        glDisable(GL_BLEND);
    GB_CHECK_GL(kTag);
}

bool DisabledLook::Active() {
    return alive > 0;
}

void DisableBlending() {
    if (alive == 0)
        glDisable(GL_BLEND);
    GB_CHECK_GL(kTag);
}

} // namespace GUI::Renderer::detail
