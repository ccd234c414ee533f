#include <graphicsbase/pngreader.h>

#include <png.h>

#include <cstdint>

#include <cstring>

namespace GraphicsBase {

namespace {

// Anything larger than this is taken for a corrupt header rather than allocated.
constexpr png_uint_32 kMaxDimension = 16384;

struct MemorySource {
    const unsigned char* data;
    std::size_t size;
    std::size_t offset;
};

void readFromMemory(png_structp png, png_bytep out, png_size_t length) {
    auto* source = static_cast<MemorySource*>(png_get_io_ptr(png));
    if (length > source->size - source->offset)
        png_error(png, "truncated image");
    std::memcpy(out, source->data + source->offset, length);
    source->offset += length;
}

// Decoding failures are reported through the return value; libpng's own messages would only reach
// stderr.
void silentError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void silentWarning(png_structp, png_const_charp) {}

struct Decoded {
    std::vector<unsigned char> pixels;
    std::vector<png_bytep> rows;
    png_uint_32 width = 0;
    png_uint_32 height = 0;
    int channels = 0;
};

// Only trivially destructible objects live in this frame, so leaving it by longjmp is safe; the
// vectors belong to the caller and are cleaned up there.
bool decode(png_structp png, png_infop info, MemorySource* source, Decoded* out) {
    if (setjmp(png_jmpbuf(png)))
        return false;
    png_set_read_fn(png, source, readFromMemory);
    png_set_user_limits(png, kMaxDimension, kMaxDimension);
    png_read_info(png, info);

    int bitDepth = png_get_bit_depth(png, info);
    int colorType = png_get_color_type(png, info);
    if (colorType == PNG_COLOR_TYPE_PALETTE)
        png_set_palette_to_rgb(png);
    if (colorType == PNG_COLOR_TYPE_GRAY && bitDepth < 8)
        png_set_expand_gray_1_2_4_to_8(png);
    if (png_get_valid(png, info, PNG_INFO_tRNS))
        png_set_tRNS_to_alpha(png);
    if (bitDepth == 16)
        png_set_strip_16(png);
    if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA)
        png_set_gray_to_rgb(png);
    png_set_interlace_handling(png);
    png_read_update_info(png, info);

    out->width = png_get_image_width(png, info);
    out->height = png_get_image_height(png, info);
    out->channels = png_get_channels(png, info);
    if (out->channels != 3 && out->channels != 4)
        return false;
    std::size_t rowBytes = png_get_rowbytes(png, info);
    if (rowBytes != std::size_t(out->width) * out->channels)
        return false;
    // Refused before anything is allocated: images beyond the pixel budget, and headers that promise
    // more pixels than the compressed bytes could ever inflate to (deflate stays below about 1:1032,
    // and rows add a filter byte each), which is how a few hundred bytes would ask for a gigabyte.
    const std::uint64_t bytes = std::uint64_t(rowBytes) * out->height;
    if (std::uint64_t(out->width) * out->height > PNGReader::kMaxPixels ||
        bytes > std::uint64_t(source->size) * 1032u + 65536u)
        return false;
    out->pixels.resize(rowBytes * out->height);
    out->rows.resize(out->height);
    for (png_uint_32 y = 0; y < out->height; ++y)
        out->rows[y] = out->pixels.data() + y * rowBytes;
    png_read_image(png, out->rows.data());
    png_read_end(png, nullptr);
    return true;
}

} // namespace

bool PNGReader::loadFromMemory(const unsigned char* data, std::size_t size) {
    clear();
    if (!data || size < 8 || png_sig_cmp(data, 0, 8) != 0)
        return false;

    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, silentError, silentWarning);
    if (!png)
        return false;
    png_infop info = png_create_info_struct(png);
    if (!info) {
        png_destroy_read_struct(&png, nullptr, nullptr);
        return false;
    }
    MemorySource source{data, size, 0};
    Decoded decoded;
    bool ok = decode(png, info, &source, &decoded);
    png_destroy_read_struct(&png, &info, nullptr);
    if (!ok)
        return false;

    pixels_ = std::move(decoded.pixels);
    width_ = static_cast<int>(decoded.width);
    height_ = static_cast<int>(decoded.height);
    channels_ = decoded.channels;
    return true;
}

std::vector<unsigned char> PNGReader::rgba() const {
    if (channels_ == 4)
        return pixels_;
    std::vector<unsigned char> out(std::size_t(width_) * height_ * 4);
    const std::size_t count = std::size_t(width_) * height_;
    for (std::size_t i = 0; i < count; ++i) {
        out[i * 4 + 0] = pixels_[i * 3 + 0];
        out[i * 4 + 1] = pixels_[i * 3 + 1];
        out[i * 4 + 2] = pixels_[i * 3 + 2];
        out[i * 4 + 3] = 255;
    }
    return out;
}

void PNGReader::clear() {
    pixels_.clear();
    pixels_.shrink_to_fit();
    width_ = 0;
    height_ = 0;
    channels_ = 0;
}

} // namespace GraphicsBase
