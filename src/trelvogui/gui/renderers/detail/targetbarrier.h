#pragma once
// Makes earlier writes to the current target visible to the next draw that samples it.

namespace GUI::Renderer::detail {

/// The UI shaders compose against the target they draw into by reading it back with texelFetch at
/// their own pixel. Reading a texture that is also attached for writing is only defined after a
/// texture barrier, so every such draw calls this first. It uses glTextureBarrier (GL 4.5 or
/// ARB_texture_barrier) or glTextureBarrierNV, and does nothing where neither exists (plain 3.3
/// contexts, where drivers in practice see the previous draw's writes anyway).
void TargetBarrier();

} // namespace GUI::Renderer::detail
