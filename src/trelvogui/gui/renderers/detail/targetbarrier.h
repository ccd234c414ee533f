#pragma once
// Makes earlier writes to the current target visible to the next draw that samples it.

#include <trelvogui/gui/geometry.h>

#include <memory>

namespace GraphicsBase {
class GLSLProgram;
}

namespace GUI::Renderer::detail {

/// The UI shaders compose against the target they draw into by reading it back with texelFetch at
/// their own pixel. Reading a texture that is also attached for writing is only defined after a
/// texture barrier. TargetBarrier issues one unconditionally, for draws whose footprint is not known
/// (the 3D widgets); it uses glTextureBarrier (GL 4.5 or ARB_texture_barrier) or glTextureBarrierNV,
/// and does nothing where neither exists (plain 3.3 contexts, where the manager falls back to
/// finishing every draw instead). A draw that reads the target through framebuffer fetch
/// (`samplesTarget` false) needs none; it only counts as having written anywhere.
void TargetBarrier(bool samplesTarget = true);

/// Before a draw that covers `area` (target pixels): a barrier only when `area` overlaps something
/// drawn since the last barrier, or when the target changed since. A barrier orders every earlier
/// write, so draws side by side (the pieces of a skin, a row of buttons) share none. A draw that
/// reads the target through framebuffer fetch (`samplesTarget` false) needs none; its area is only
/// recorded for a later draw that samples.
void TargetBarrierFor(const GUI::Geometry::Rectangle& area, bool samplesTarget = true);

/// The target was switched or cleared: the next draw that reads it needs a barrier.
void TargetChanged();

/// Strict mode issues a barrier before every draw, overlap or not. Used by the manager's strict
/// synchronisation setting, so that its output is the reference the fast path is compared with.
void SetStrictBarriers(bool strict);
bool StrictBarriers();

/// The part of the current target that draws can change (the scissored region of a partial redraw),
/// or nullptr for all of it. Set with the target; a switch of target (TargetChanged) resets it.
void SetDrawRegion(const GUI::Geometry::Rectangle* region);

/// The draw region set last (target pixels), or nullptr when draws may change all of the target.
const GUI::Geometry::Rectangle* DrawRegion();

/// Whether a draw covering `area` can change any pixel of the draw region. A draw wholly outside it
/// writes nothing, so it is skipped before any state is touched: on the fast path a skipped label
/// saves a texture and program change, which is what costs, not its clipped pixels. The test allows
/// a pixel of margin for lines drawn along the area's edges.
bool InDrawRegion(const GUI::Geometry::Rectangle& area);

/// After a draw: the literal sequence unbinds the program; the fast path leaves it bound. Rebinding a
/// program (or any texture) makes the driver revalidate every sampler, the target's own among them,
/// and a software rasteriser answers that by flushing and waiting for the draws that write the
/// target. The manager's scoped bindings give the host its program back at the end of an update.
void EndDraw(GraphicsBase::GLSLProgram& program);

/// Framebuffer fetch on the fast path: reading the target through the shader's own outputs gives the
/// same values as sampling it, with no barrier and without the target among the bound samplers, so
/// program and texture changes between draws stay cheap. Used when the manager allows it, the
/// context offers coherent fetch (EXT_shader_framebuffer_fetch) and the update is not strict.
void AllowTargetFetch(bool allowed);
bool TargetFetchAvailable();
bool TargetFetch();

/// Builds `literal` from the two shader files and, where the context offers framebuffer fetch,
/// `fetch` from the same files with TARGET_FETCH defined. A fetch build that fails is dropped (the
/// literal one serves every path); false only when the literal build fails.
bool BuildTargetPrograms(std::unique_ptr<GraphicsBase::GLSLProgram>& literal,
                         std::unique_ptr<GraphicsBase::GLSLProgram>& fetch, const char* vertex,
                         const char* fragment);

/// Builds `fetch` from the two files with TARGET_FETCH defined where the context offers framebuffer
/// fetch; leaves it empty otherwise or when the build fails.
void BuildFetchProgram(std::unique_ptr<GraphicsBase::GLSLProgram>& fetch, const char* vertex,
                       const char* fragment);

/// The build of a pair that the next draw uses.
GraphicsBase::GLSLProgram& ProgramFor(GraphicsBase::GLSLProgram& literal, GraphicsBase::GLSLProgram* fetch);

/// Binds the build the next draw uses and, when that is the literal one, points its target samplers
/// at the target (SetTargetSamplers). The draw samples its target exactly when the result is
/// `literal`.
GraphicsBase::GLSLProgram& BeginTargetDraw(GraphicsBase::GLSLProgram& literal,
                                           GraphicsBase::GLSLProgram* fetch);

/// Direct drawing: a scene widget drawn straight into the host's framebuffer beside the composite, not
/// into the layers. Its shaders are the builds with TARGET_DIRECT defined, which compose over
/// transparent black (colour weighted by coverage) for the GL blend to lay over the host's pixels; no
/// target is read, so no barrier is issued. Set by the manager around those draws only.
void SetDirectTarget(bool direct);
bool DirectTarget();

/// The build the next draw uses, for widgets that may be drawn directly: in direct mode `direct`,
/// built from the two files on first use and then handed to `prepare` (bound) for the uniforms the
/// other builds got at initialisation; a failed build leaves it empty and falls back to `literal`.
/// Otherwise ProgramFor(literal, fetch).
GraphicsBase::GLSLProgram& DrawingProgram(GraphicsBase::GLSLProgram& literal,
                                          GraphicsBase::GLSLProgram* fetch,
                                          std::unique_ptr<GraphicsBase::GLSLProgram>& direct,
                                          const char* vertex, const char* fragment,
                                          void (*prepare)(GraphicsBase::GLSLProgram&) = nullptr);

/// Whether the current context offers a texture barrier at all.
bool TextureBarrierAvailable();

} // namespace GUI::Renderer::detail
