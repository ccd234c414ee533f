#include "targetbarrier.h"

#include "uniforms.h"

#include <graphicsbase/glerror.h>
#include <graphicsbase/glslprogram.h>

#include <GL/glew.h>

#include <array>
#include <cstddef>

using namespace GraphicsBase;

namespace GUI::Renderer::detail {
namespace {

// Everything runs on the one GL thread, so one record serves every renderer: what was drawn into the
// current target since its last barrier. Past kSlots areas a barrier is cheaper than the bookkeeping.
constexpr std::size_t kSlots = 64;
struct Pending {
    std::array<GUI::Geometry::Rectangle, kSlots> areas;
    std::size_t count = 0;
    bool whole = true; // the target changed: treat all of it as written
    bool strict = false;
    bool fetchAllowed = true;
    bool clipped = false; // draws land only inside `region`
    bool direct = false;  // draws go straight into the host's framebuffer
    GUI::Geometry::Rectangle region{0, 0, 0, 0};
} pending;

bool Overlap(const GUI::Geometry::Rectangle& a, const GUI::Geometry::Rectangle& b) {
    return a.xMin < b.xMax && b.xMin < a.xMax && a.yMin < b.yMax && b.yMin < a.yMax;
}

void Issue() {
    // GLEW's flags are plain loads after glewInit, cheap enough to test on every draw; checking them
    // here keeps the helper right when a host switches between contexts of different versions.
    if ((GLEW_VERSION_4_5 || GLEW_ARB_texture_barrier) && glTextureBarrier != nullptr) {
        glTextureBarrier();
        GB_CHECK_GL("gui/renderers/detail/targetbarrier");
    } else if (GLEW_NV_texture_barrier && glTextureBarrierNV != nullptr) {
        glTextureBarrierNV();
        GB_CHECK_GL("gui/renderers/detail/targetbarrier");
    }
    pending.count = 0;
    pending.whole = false;
}

} // namespace

void TargetBarrier(bool samplesTarget) {
    if (pending.direct)
        return;
    if (samplesTarget)
        Issue();
    // The draw that follows may cover anything.
    pending.whole = true;
}

void TargetBarrierFor(const GUI::Geometry::Rectangle& area, bool samplesTarget) {
    if (pending.direct)
        return;
    if (!samplesTarget) {
        // Nothing to order for this draw; a later sampling draw must still see its writes.
        if (pending.count == kSlots)
            pending.whole = true;
        else
            pending.areas[pending.count++] = area;
        return;
    }
    bool needed = pending.strict || pending.whole || pending.count == kSlots;
    for (std::size_t i = 0; i < pending.count && !needed; ++i)
        needed = Overlap(pending.areas[i], area);
    if (needed)
        Issue();
    pending.areas[pending.count++] = area;
}

void TargetChanged() {
    pending.count = 0;
    pending.whole = true;
    pending.clipped = false;
}

void SetDrawRegion(const GUI::Geometry::Rectangle* region) {
    pending.clipped = region != nullptr;
    if (region)
        pending.region = *region;
}

const GUI::Geometry::Rectangle* DrawRegion() {
    return pending.clipped ? &pending.region : nullptr;
}

bool InDrawRegion(const GUI::Geometry::Rectangle& area) {
    using GUI::Geometry::AddSaturated;
    using GUI::Geometry::SubSaturated;
    if (!pending.clipped)
        return true;
    const GUI::Geometry::Rectangle grown{SubSaturated(area.xMin, 1), AddSaturated(area.xMax, 1),
                                         SubSaturated(area.yMin, 1), AddSaturated(area.yMax, 1)};
    return Overlap(grown, pending.region);
}

void SetStrictBarriers(bool strict) {
    pending.strict = strict;
}

bool StrictBarriers() {
    return pending.strict;
}

void EndDraw(GLSLProgram& program) {
    if (pending.strict)
        program.end();
}

void AllowTargetFetch(bool allowed) {
    pending.fetchAllowed = allowed;
}

bool TargetFetchAvailable() {
    return GLEW_EXT_shader_framebuffer_fetch;
}

bool TargetFetch() {
    return pending.fetchAllowed && !pending.strict && TargetFetchAvailable();
}

bool BuildTargetPrograms(std::unique_ptr<GLSLProgram>& literal, std::unique_ptr<GLSLProgram>& fetch,
                         const char* vertex, const char* fragment) {
    literal = std::make_unique<GLSLProgram>();
    fetch.reset();
    if (!literal->addShader(vertex) || !literal->addShader(fragment) || !literal->linkProgram())
        return false;
    BuildFetchProgram(fetch, vertex, fragment);
    return true;
}

void BuildFetchProgram(std::unique_ptr<GLSLProgram>& fetch, const char* vertex, const char* fragment) {
    fetch.reset();
    if (!TargetFetchAvailable())
        return;
    fetch = std::make_unique<GLSLProgram>();
    if (!fetch->addShader(vertex) || !fetch->addShader(fragment, "#define TARGET_FETCH 1\n") ||
        !fetch->linkProgram())
        fetch.reset();
}

GLSLProgram& ProgramFor(GLSLProgram& literal, GLSLProgram* fetch) {
    return fetch != nullptr && TargetFetch() ? *fetch : literal;
}

GLSLProgram& BeginTargetDraw(GLSLProgram& literal, GLSLProgram* fetch) {
    GLSLProgram& drawing = ProgramFor(literal, fetch);
    drawing.begin();
    if (&drawing == &literal)
        SetTargetSamplers(drawing.getProgram());
    return drawing;
}

void SetDirectTarget(bool direct) {
    pending.direct = direct;
    TargetChanged();
}

bool DirectTarget() {
    return pending.direct;
}

GLSLProgram& DrawingProgram(GLSLProgram& literal, GLSLProgram* fetch, std::unique_ptr<GLSLProgram>& direct,
                            const char* vertex, const char* fragment, void (*prepare)(GLSLProgram&)) {
    if (!pending.direct)
        return ProgramFor(literal, fetch);
    if (!direct) {
        direct = std::make_unique<GLSLProgram>();
        if (!direct->addShader(vertex) || !direct->addShader(fragment, "#define TARGET_DIRECT 1\n") ||
            !direct->linkProgram()) {
            direct.reset();
            return literal;
        }
        if (prepare) {
            direct->begin();
            prepare(*direct);
            direct->end();
        }
    }
    return *direct;
}

bool TextureBarrierAvailable() {
    return ((GLEW_VERSION_4_5 || GLEW_ARB_texture_barrier) && glTextureBarrier != nullptr) ||
           (GLEW_NV_texture_barrier && glTextureBarrierNV != nullptr);
}

} // namespace GUI::Renderer::detail
