#pragma once
// Encodes small PNG images in memory, for tests that feed decoders.

#include <png.h>

#include <cstdint>
#include <vector>

namespace trelvo::test {

/// Encodes `rows` (top-down, tightly packed) with the given colour type and bit depth; `palette` is
/// used for palette images. Empty on failure.
std::vector<unsigned char> EncodePng(int width, int height, int colorType, int bitDepth,
                                     const std::vector<uint8_t>& rows,
                                     const std::vector<png_color>& palette = {}, bool interlaced = false);

} // namespace trelvo::test
