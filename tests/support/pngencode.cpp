#include "support/pngencode.h"

namespace trelvo::test {
namespace {
void appendBytes(png_structp png, png_bytep data, png_size_t length) {
    auto* out = static_cast<std::vector<unsigned char>*>(png_get_io_ptr(png));
    out->insert(out->end(), data, data + length);
}
} // namespace

std::vector<unsigned char> EncodePng(int width, int height, int colorType, int bitDepth,
                                     const std::vector<uint8_t>& rows, const std::vector<png_color>& palette,
                                     bool interlaced) {
    std::vector<unsigned char> out;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        return {};
    }
    png_set_write_fn(png, &out, appendBytes, nullptr);
    png_set_IHDR(png, info, width, height, bitDepth, colorType,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (!palette.empty())
        png_set_PLTE(png, info, palette.data(), static_cast<int>(palette.size()));
    png_write_info(png, info);
    const std::size_t stride = rows.size() / static_cast<std::size_t>(height);
    std::vector<png_bytep> pointers(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        pointers[static_cast<std::size_t>(y)] = const_cast<png_bytep>(rows.data() + y * stride);
    png_write_image(png, pointers.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return out;
}

} // namespace trelvo::test
