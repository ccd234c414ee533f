#pragma once
// The one GL error check that follows every GL call in the library.

#include <graphicsbase/graphicsbase_export.h>

namespace GraphicsBase {

/// Logs "Opengl assert: File: <file> Line: <line> Error: <code>" when glGetError reports an error.
/// Never fatal. Returns the error code (0 when none).
GRAPHICSBASE_EXPORT unsigned int CheckOpenGLError(const char* file, int line);

/// Checks for a GL error, tagging it with the module-relative file name given and the current line.
#define GB_CHECK_GL(file) ::GraphicsBase::CheckOpenGLError((file), __LINE__)

} // namespace GraphicsBase
