#pragma once
// Writes RGBA8 pixels to a PNG file, for hosts and tests that save frames.

#include <graphicsbase/graphicsbase_export.h>

#include <cstdint>
#include <string>

namespace GraphicsBase {

/// `rgba` holds width x height pixels; with `bottomUp` the rows are in GL's bottom-to-top order and
/// are flipped so that the picture is upright. False if the file cannot be written.
GRAPHICSBASE_EXPORT bool WritePNG(const std::string& path, const uint8_t* rgba, int width, int height,
                                  bool bottomUp = true);

} // namespace GraphicsBase
