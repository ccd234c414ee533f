#include <graphicsbase/pngwriter.h>

#include <png.h>

#include <cstdio>

namespace GraphicsBase {

bool WritePNG(const std::string& path, const uint8_t* rgba, int width, int height, bool bottomUp) {
    if (!rgba || width <= 0 || height <= 0)
        return false;
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (!png || !info || setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(f);
        return false;
    }
    png_init_io(png, f);
    png_set_IHDR(png, info, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int row = 0; row < height; ++row) {
        int source = bottomUp ? height - 1 - row : row;
        png_write_row(png, const_cast<png_bytep>(rgba + static_cast<size_t>(source) * width * 4));
    }
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return std::fclose(f) == 0;
}

} // namespace GraphicsBase
