#pragma once
// Loads the OpenGL entry points the libraries use, so that a host needs no loader of its own.

#include <graphicsbase/graphicsbase_export.h>

#include <string>

namespace GraphicsBase {

/// Makes the GL 3.3 entry points this library calls available for the context current on the
/// calling thread. Needs that context to be current; loads once per process and only checks the
/// context on later calls, so it is cheap and safe to repeat (the manager's Initialize and the
/// headless context call it). False without a current context, or with one older than 3.3; then
/// `error`, when given, says why in one line without a trailing newline.
GRAPHICSBASE_EXPORT bool LoadGL(std::string* error = nullptr);

/// Whether GL objects can be deleted now: true when a context is current. Otherwise the caller
/// forgets its names instead (the objects are leaked with the context that owns them, which frees
/// them when it is destroyed), and the first such call logs one line saying so; the line is logged
/// again only after a context was current in between.
GRAPHICSBASE_EXPORT bool CanReleaseGL();

/// The current context's version as major * 10 + minor (33 for 3.3), or 0 when no context is
/// current. Needs no loaded entry points.
GRAPHICSBASE_EXPORT int CurrentGLVersion();

} // namespace GraphicsBase
