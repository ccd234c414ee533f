// Writes the view-orientation cube's two resources: the model (triadcube.obj) and its face labels
// (triad.png, 300 x 200 RGBA, 3 x 2 cells of 100 x 100 pixels).
//
// Usage: trelvo_triadpainter [output directory]   (default: the source tree's resources/ folder)
//
// The two are made together because they must agree: face k of the cube is object "o k", and its four
// corners map onto label cell k so that the label reads upright when the camera looks at that face
// the way a click on it places the camera (up (0, 0, -1) for the two y faces, (0, 1, 0) otherwise).
// The texture is uploaded without flipping, so the image's top row is t = 0: the cells with t in
// 0..1/2 are the upper row of the picture.
//
// Labels are set in the library's own font (DejaVu Sans Bold), rasterised by FreeType; colours are written
// display-encoded, as an sRGB texture expects.

#include <ft2build.h>
#include FT_FREETYPE_H
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int kCell = 100;
constexpr int kWidth = 3 * kCell;
constexpr int kHeight = 2 * kCell;

using Vec3 = std::array<int, 3>;

struct Face {
    const char* label; // UTF-8
    Vec3 normal;
    Vec3 right; // screen right when the camera looks at the face after a click on it
    Vec3 up;    // screen up then
    int column; // cell in the label image
    int row;    // 0: t in 0..1/2 (upper half of the picture), 1: t in 1/2..1
    unsigned tint;
    unsigned ink;
};

// Face order is the object order of the model and the secondary id the widget reports.
const Face kFaces[6] = {
    {"\xE2\x88\x92Y", {0, -1, 0}, {-1, 0, 0}, {0, 0, -1}, 2, 0, 0xE3F4E3, 0x1E7B34}, // -Y
    {"+Y", {0, 1, 0}, {1, 0, 0}, {0, 0, -1}, 1, 0, 0xE3F4E3, 0x1E7B34},              // +Y
    {"+Z", {0, 0, 1}, {1, 0, 0}, {0, 1, 0}, 0, 1, 0xE2EAFA, 0x1F4FB8},               // +Z
    {"\xE2\x88\x92X", {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}, 2, 1, 0xF8E4E2, 0xB32A22},   // -X
    {"\xE2\x88\x92Z", {0, 0, -1}, {-1, 0, 0}, {0, 1, 0}, 1, 1, 0xE2EAFA, 0x1F4FB8},  // -Z
    {"+X", {1, 0, 0}, {0, 0, -1}, {0, 1, 0}, 0, 0, 0xF8E4E2, 0xB32A22},              // +X
};
constexpr unsigned kBorder = 0x59616E;

float ToLinear(float c) {
    return c <= 0.04045f ? c / 12.92f : std::pow((c + 0.055f) / 1.055f, 2.4f);
}
float FromLinear(float c) {
    return c <= 0.0031308f ? c * 12.92f : 1.055f * std::pow(c, 1.f / 2.4f) - 0.055f;
}
float Channel(unsigned hex, int shift) {
    return ToLinear(float((hex >> shift) & 0xFF) / 255.f);
}

/// Linear RGB canvas, encoded to sRGB bytes on output.
struct Canvas {
    std::vector<float> rgb = std::vector<float>(std::size_t(kWidth) * kHeight * 3, 0.f);

    void Blend(int x, int y, unsigned hex, float coverage) {
        if (x < 0 || y < 0 || x >= kWidth || y >= kHeight || coverage <= 0.f)
            return;
        float* p = &rgb[(std::size_t(y) * kWidth + x) * 3];
        const int shifts[3] = {16, 8, 0};
        for (int c = 0; c < 3; ++c)
            p[c] = p[c] * (1.f - coverage) + Channel(hex, shifts[c]) * coverage;
    }
};

std::vector<unsigned> DecodeUtf8(const char* s) {
    std::vector<unsigned> out;
    for (const unsigned char* p = reinterpret_cast<const unsigned char*>(s); *p;) {
        if (*p < 0x80) {
            out.push_back(*p++);
        } else if ((*p & 0xE0) == 0xC0) {
            out.push_back(((p[0] & 0x1Fu) << 6) | (p[1] & 0x3Fu));
            p += 2;
        } else {
            out.push_back(((p[0] & 0x0Fu) << 12) | ((p[1] & 0x3Fu) << 6) | (p[2] & 0x3Fu));
            p += 3;
        }
    }
    return out;
}

/// Draws `text` centred (by its ink box) in the cell whose top-left corner is (x0, y0).
bool DrawLabel(FT_Face face, Canvas& canvas, const char* text, int x0, int y0, unsigned ink) {
    struct Glyph {
        std::vector<unsigned char> bitmap;
        int width, rows, pitch, left, top, penX;
    };
    std::vector<Glyph> glyphs;
    int pen = 0;
    int inkLeft = 1 << 20, inkRight = -(1 << 20), inkTop = -(1 << 20), inkBottom = 1 << 20;
    for (unsigned code : DecodeUtf8(text)) {
        if (FT_Load_Char(face, code, FT_LOAD_RENDER) != 0)
            return false;
        const FT_GlyphSlot g = face->glyph;
        Glyph out{
            {}, int(g->bitmap.width), int(g->bitmap.rows), g->bitmap.pitch, g->bitmap_left, g->bitmap_top,
            pen};
        out.bitmap.assign(g->bitmap.buffer, g->bitmap.buffer + std::size_t(out.rows) * std::abs(out.pitch));
        inkLeft = std::min(inkLeft, pen + out.left);
        inkRight = std::max(inkRight, pen + out.left + out.width);
        inkTop = std::max(inkTop, out.top);
        inkBottom = std::min(inkBottom, out.top - out.rows);
        pen += int(g->advance.x >> 6);
        glyphs.push_back(std::move(out));
    }
    // Baseline placement that centres the ink box in the cell.
    const int originX = x0 + (kCell - (inkRight - inkLeft)) / 2 - inkLeft;
    const int baseline = y0 + (kCell - (inkTop - inkBottom)) / 2 + inkTop;
    for (const Glyph& g : glyphs)
        for (int r = 0; r < g.rows; ++r)
            for (int c = 0; c < g.width; ++c) {
                float coverage = g.bitmap[std::size_t(r) * std::abs(g.pitch) + c] / 255.f;
                canvas.Blend(originX + g.penX + g.left + c, baseline - g.top + r, ink, coverage);
            }
    return true;
}

void PaintCell(Canvas& canvas, const Face& f) {
    const int x0 = f.column * kCell, y0 = f.row * kCell;
    for (int y = 0; y < kCell; ++y)
        for (int x = 0; x < kCell; ++x) {
            // A soft vertical shade keeps the faces from looking flat; a 3-pixel frame marks the cube's
            // edges whatever the lighting.
            const int edge = std::min(std::min(x, kCell - 1 - x), std::min(y, kCell - 1 - y));
            canvas.Blend(x0 + x, y0 + y, f.tint, 1.f);
            canvas.Blend(x0 + x, y0 + y, 0xFFFFFF, 0.35f * (1.f - float(y) / kCell));
            if (edge < 3)
                canvas.Blend(x0 + x, y0 + y, kBorder, 1.f);
        }
}

bool WritePng(const std::string& path, const Canvas& canvas) {
    std::vector<unsigned char> rgba(std::size_t(kWidth) * kHeight * 4);
    for (std::size_t i = 0; i < std::size_t(kWidth) * kHeight; ++i) {
        for (int c = 0; c < 3; ++c)
            rgba[i * 4 + c] = static_cast<unsigned char>(
                std::lround(std::clamp(FromLinear(canvas.rgb[i * 3 + c]), 0.f, 1.f) * 255.f));
        rgba[i * 4 + 3] = 255;
    }
    FILE* file = std::fopen(path.c_str(), "wb");
    if (!file)
        return false;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png))) {
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
        return false;
    }
    png_init_io(png, file);
    png_set_compression_level(png, 9);
    png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGBA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    for (int y = 0; y < kHeight; ++y)
        png_write_row(png, rgba.data() + std::size_t(y) * kWidth * 4);
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    return std::fclose(file) == 0;
}

int CornerIndex(int x, int y, int z) {
    return ((x > 0) << 2 | (y > 0) << 1 | (z > 0)) + 1;
}

bool WriteObj(const std::string& path) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f)
        return false;
    std::fprintf(
        f, "# View-orientation cube: side 2, centred on the origin. Written by tools/triadpainter.cpp.\n"
           "# Object k is face k (the widget's secondary id); its label is cell k of the TRIAD image.\n");
    for (int i = 0; i < 8; ++i)
        std::fprintf(f, "v %.6f %.6f %.6f\n", i & 4 ? 1.0 : -1.0, i & 2 ? 1.0 : -1.0, i & 1 ? 1.0 : -1.0);
    // Texture coordinates on the cell grid: column i (u = i/3), row j (v = j/2); index 4j + i + 1.
    for (int j = 0; j < 3; ++j)
        for (int i = 0; i < 4; ++i)
            std::fprintf(f, "vt %.6f %.6f\n", i / 3.0, j / 2.0);
    for (const Face& face : kFaces)
        std::fprintf(f, "vn %.4f %.4f %.4f\n", double(face.normal[0]), double(face.normal[1]),
                     double(face.normal[2]));
    // The +Z face's second triangle has a normal record of its own, as modelling tools write one per
    // smoothing group; the value is the same.
    std::fprintf(f, "vn -0.0000 0.0000 1.0000\n");
    for (int k = 0; k < 6; ++k) {
        const Face& face = kFaces[k];
        // Corners counter-clockwise seen from outside: lower-left, lower-right, upper-right, upper-left.
        const int signs[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        int v[4], vt[4];
        for (int c = 0; c < 4; ++c) {
            int p[3];
            for (int a = 0; a < 3; ++a)
                p[a] = face.normal[a] + signs[c][0] * face.right[a] + signs[c][1] * face.up[a];
            v[c] = CornerIndex(p[0], p[1], p[2]);
            const int column = face.column + (signs[c][0] > 0 ? 1 : 0);
            const int row = face.row + (signs[c][1] > 0 ? 0 : 1); // the label's top is the cell's smaller t
            vt[c] = 4 * row + column + 1;
        }
        const int n1 = k + 1;
        const int n2 = k == 2 ? 7 : k + 1;
        std::fprintf(f, "o %d\ns off\n", k);
        std::fprintf(f, "f %d/%d/%d %d/%d/%d %d/%d/%d\n", v[0], vt[0], n1, v[1], vt[1], n1, v[2], vt[2], n1);
        std::fprintf(f, "f %d/%d/%d %d/%d/%d %d/%d/%d\n", v[0], vt[0], n2, v[2], vt[2], n2, v[3], vt[3], n2);
    }
    return std::fclose(f) == 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::string dir = argc > 1 ? argv[1] : TRELVO_RESOURCE_DIR;
    FT_Library library = nullptr;
    FT_Face face = nullptr;
    const std::string font = std::string(TRELVO_RESOURCE_DIR) + "/DejaVuSans-Bold.ttf";
    if (FT_Init_FreeType(&library) != 0 || FT_New_Face(library, font.c_str(), 0, &face) != 0) {
        std::fprintf(stderr, "cannot open %s\n", font.c_str());
        return 1;
    }
    FT_Set_Pixel_Sizes(face, 0, 50);
    Canvas canvas;
    for (const Face& f : kFaces) {
        PaintCell(canvas, f);
        if (!DrawLabel(face, canvas, f.label, f.column * kCell, f.row * kCell, f.ink)) {
            std::fprintf(stderr, "cannot render the label %s\n", f.label);
            return 1;
        }
    }
    FT_Done_Face(face);
    FT_Done_FreeType(library);
    const std::string png = dir + "/triad.png", obj = dir + "/triadcube.obj";
    if (!WritePng(png, canvas) || !WriteObj(obj)) {
        std::fprintf(stderr, "cannot write %s or %s\n", png.c_str(), obj.c_str());
        return 1;
    }
    std::printf("wrote %s and %s\n", png.c_str(), obj.c_str());
    return 0;
}
