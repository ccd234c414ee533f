#include "targetbarrier.h"

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

namespace GUI::Renderer::detail {

void TargetBarrier() {
    // GLEW's flags are plain loads after glewInit, cheap enough to test on every draw; checking them
    // here keeps the helper right when a host switches between contexts of different versions.
    if ((GLEW_VERSION_4_5 || GLEW_ARB_texture_barrier) && glTextureBarrier != nullptr) {
        glTextureBarrier();
        GB_CHECK_GL("gui/renderers/detail/targetbarrier");
    } else if (GLEW_NV_texture_barrier && glTextureBarrierNV != nullptr) {
        glTextureBarrierNV();
        GB_CHECK_GL("gui/renderers/detail/targetbarrier");
    }
}

} // namespace GUI::Renderer::detail
