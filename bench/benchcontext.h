#pragma once
// The headless context shared by the overlay, gizmo and cube benchmarks of this executable.

#include <graphicsbase/headlesscontext.h>

/// Created on first use and made current on every call, since the text and data-control benchmarks
/// switch to contexts of their own. Views are the managers' own layers, so the surface size matters
/// little.
inline GraphicsBase::HeadlessGLContext& BenchContext() {
    static GraphicsBase::HeadlessGLContext context(1280, 800);
    if (context.Valid())
        context.MakeCurrent();
    return context;
}
