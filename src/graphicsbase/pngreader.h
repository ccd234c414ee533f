#pragma once
// Decodes PNG images held in memory (embedded resources) into 8-bit RGB or RGBA pixels.

#include <graphicsbase/graphicsbase_export.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace GraphicsBase {

/// Reads 8-bit RGB and RGBA PNGs; palette and grey images are expanded to RGB (RGBA when they carry
/// transparency) and 16-bit channels are reduced to 8 bits. Rows are kept top-down, as stored.
/// A failed load (including an image beyond kMaxPixels, or one whose header promises far more pixels
/// than its bytes can hold) leaves the reader empty (width and height 0); corrupt or truncated input never
/// aborts the process.
class GRAPHICSBASE_EXPORT PNGReader {
public:
    /// Images of more pixels are refused before any pixel memory is allocated (128 MiB as RGBA).
    static constexpr unsigned long long kMaxPixels = 32ull * 1024 * 1024;

    PNGReader() = default;
    /// The name only labels the reader; images come from loadFromMemory.
    explicit PNGReader(std::string name) : name_(std::move(name)) {}

    bool loadFromMemory(const unsigned char* data, std::size_t size);

    int width() const { return width_; }
    int height() const { return height_; }
    /// 3 for RGB, 4 for RGBA; 0 when nothing is loaded.
    int channels() const { return channels_; }
    /// width × height × channels bytes, rows top-down; null when nothing is loaded.
    const unsigned char* data() const { return pixels_.empty() ? nullptr : pixels_.data(); }
    /// The pixels as RGBA (alpha 255 where the image has none), rows top-down.
    std::vector<unsigned char> rgba() const;
    const std::string& name() const { return name_; }

private:
    void clear();

    std::string name_;
    std::vector<unsigned char> pixels_;
    int width_ = 0;
    int height_ = 0;
    int channels_ = 0;
};

} // namespace GraphicsBase
