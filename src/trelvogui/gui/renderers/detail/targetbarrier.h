#pragma once
// Makes earlier writes to the current target visible to the next draw that samples it.

#include <trelvogui/gui/geometry.h>

namespace GUI::Renderer::detail {

/// The UI shaders compose against the target they draw into by reading it back with texelFetch at
/// their own pixel. Reading a texture that is also attached for writing is only defined after a
/// texture barrier. TargetBarrier issues one unconditionally, for draws whose footprint is not known
/// (the 3D widgets); it uses glTextureBarrier (GL 4.5 or ARB_texture_barrier) or glTextureBarrierNV,
/// and does nothing where neither exists (plain 3.3 contexts, where the manager falls back to
/// finishing every draw instead).
void TargetBarrier();

/// Before a draw that covers `area` (target pixels): a barrier only when `area` overlaps something
/// drawn since the last barrier, or when the target changed since. A barrier orders every earlier
/// write, so draws side by side (the pieces of a skin, a row of buttons) share none.
void TargetBarrierFor(const GUI::Geometry::Rectangle& area);

/// The target was switched or cleared: the next draw that reads it needs a barrier.
void TargetChanged();

/// Strict mode issues a barrier before every draw, overlap or not. Used by the manager's strict
/// synchronisation setting, so that its output is the reference the fast path is compared with.
void SetStrictBarriers(bool strict);
bool StrictBarriers();

/// Whether the current context offers a texture barrier at all.
bool TextureBarrierAvailable();

} // namespace GUI::Renderer::detail
