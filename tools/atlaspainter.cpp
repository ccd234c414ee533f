// Paints the built-in skin: the colour atlas (RGBA) and its coverage stencil (RGB), 800 x 900 each.
//
// Usage: trelvo_atlaspainter [output directory]   (default: the source tree's resources/ folder)
//
// Every shape is sampled 8 x 8 times per pixel. The colour image keeps alpha 255 over each region's
// whole box and leaves the outline to the stencil, whose red channel (copied to green and blue) holds
// the shape's coverage, stored linearly: the renderer undoes the sRGB decoding of the stencil texture
// before it multiplies alpha by the coverage.
//
// Nine-slice regions keep every curve and stroke inside their 5-pixel borders and a uniform centre,
// so they stretch to any size. Several roles share one area (disabled and normal buttons; panels and
// pressed/hovered buttons), so each of those looks is chosen to read well in both roles.

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 900;
constexpr int kSamples = 8;

struct Rgb {
    float r, g, b;
};

constexpr Rgb Hex(unsigned v) {
    return {float((v >> 16) & 0xFF) / 255.f, float((v >> 8) & 0xFF) / 255.f, float(v & 0xFF) / 255.f};
}

// The palette: a light, flat skin that stays legible under the default black label text.
constexpr Rgb kAccent = Hex(0x2F6FED);
constexpr Rgb kWhite = Hex(0xFFFFFF);
constexpr Rgb kButtonFill = Hex(0xFBFCFD);
constexpr Rgb kButtonStroke = Hex(0xBCC4CE);
constexpr Rgb kButtonLip = Hex(0xA3ADBA);
constexpr Rgb kHoverFill = Hex(0xEAF1FE);
constexpr Rgb kPressedFill = Hex(0xE1E6ED);
constexpr Rgb kPressedStroke = Hex(0xA3ADBA);
constexpr Rgb kPressedShade = Hex(0xD2D9E2);
constexpr Rgb kGlyph = Hex(0x4A5565);
constexpr Rgb kTrackOff = Hex(0xB5BECA);
constexpr Rgb kKnobRing = Hex(0xA3ADBA);
constexpr Rgb kGrip = Hex(0x8B95A3);
constexpr Rgb kTileLight = Hex(0xFFFFFF);
constexpr Rgb kTileMid = Hex(0xE1E6ED);

float ToLinear(float c) {
    return c <= 0.04045f ? c / 12.92f : std::pow((c + 0.055f) / 1.055f, 2.4f);
}
float FromLinear(float c) {
    return c <= 0.0031308f ? c * 12.92f : 1.055f * std::pow(c, 1.f / 2.4f) - 0.055f;
}
unsigned char ToByte(float v) {
    return static_cast<unsigned char>(std::lround(std::clamp(v, 0.f, 1.f) * 255.f));
}

/// What one sub-sample of a region sees: whether it lies inside the shape and the colour there.
struct Sample {
    bool inside = false;
    Rgb color{0.f, 0.f, 0.f};
};
/// x and y in region pixels from the region's top-left corner, rows growing downwards.
using Painter = std::function<Sample(float x, float y)>;

struct Area {
    int xMin, xMax, yMin, yMax;
};

class Canvas {
public:
    Canvas() : color_(std::size_t(kWidth) * kHeight * 4, 0), stencil_(std::size_t(kWidth) * kHeight * 3, 0) {}

    /// Paints pixels xMin..xMax-1, yMin..yMax-1: the texels a region's texture coordinates span.
    /// `outside` colours the pixels the shape leaves uncovered, so that filtering across the
    /// outline blends with the outline's own colour.
    void Paint(const Area& area, const Rgb& outside, const Painter& painter) {
        const int w = area.xMax - area.xMin;
        const int h = area.yMax - area.yMin;
        for (int py = 0; py < h; ++py) {
            for (int px = 0; px < w; ++px) {
                float lin[3] = {0.f, 0.f, 0.f};
                int inside = 0;
                for (int sy = 0; sy < kSamples; ++sy) {
                    for (int sx = 0; sx < kSamples; ++sx) {
                        Sample s = painter(px + (sx + 0.5f) / kSamples, py + (sy + 0.5f) / kSamples);
                        if (!s.inside)
                            continue;
                        ++inside;
                        lin[0] += ToLinear(s.color.r);
                        lin[1] += ToLinear(s.color.g);
                        lin[2] += ToLinear(s.color.b);
                    }
                }
                Rgb c = outside;
                if (inside > 0)
                    c = {FromLinear(lin[0] / inside), FromLinear(lin[1] / inside),
                         FromLinear(lin[2] / inside)};
                const float coverage = float(inside) / (kSamples * kSamples);
                const std::size_t i = std::size_t(area.yMin + py) * kWidth + (area.xMin + px);
                color_[i * 4 + 0] = ToByte(c.r);
                color_[i * 4 + 1] = ToByte(c.g);
                color_[i * 4 + 2] = ToByte(c.b);
                color_[i * 4 + 3] = 255;
                const unsigned char m = ToByte(coverage);
                stencil_[i * 3 + 0] = m;
                stencil_[i * 3 + 1] = m;
                stencil_[i * 3 + 2] = m;
            }
        }
    }

    bool Write(const std::string& colorPath, const std::string& stencilPath) const {
        return WritePng(colorPath, color_.data(), PNG_COLOR_TYPE_RGBA, 4) &&
               WritePng(stencilPath, stencil_.data(), PNG_COLOR_TYPE_RGB, 3);
    }

private:
    static bool WritePng(const std::string& path, const unsigned char* pixels, int colorType, int channels) {
        FILE* f = std::fopen(path.c_str(), "wb");
        if (!f)
            return false;
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        if (setjmp(png_jmpbuf(png))) {
            png_destroy_write_struct(&png, &info);
            std::fclose(f);
            return false;
        }
        png_init_io(png, f);
        png_set_compression_level(png, 9);
        png_set_IHDR(png, info, kWidth, kHeight, 8, colorType, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        for (int y = 0; y < kHeight; ++y)
            png_write_row(png, const_cast<png_bytep>(pixels + std::size_t(y) * kWidth * channels));
        png_write_end(png, nullptr);
        png_destroy_write_struct(&png, &info);
        return std::fclose(f) == 0;
    }

    std::vector<unsigned char> color_;
    std::vector<unsigned char> stencil_;
};

// Signed distance to a rounded box [x0, x1] x [y0, y1] with corner radius r (negative inside).
float RoundBox(float x, float y, float x0, float y0, float x1, float y1, float r) {
    const float cx = (x0 + x1) * 0.5f, cy = (y0 + y1) * 0.5f;
    const float hx = (x1 - x0) * 0.5f - r, hy = (y1 - y0) * 0.5f - r;
    const float qx = std::fabs(x - cx) - hx, qy = std::fabs(y - cy) - hy;
    const float ox = std::max(qx, 0.f), oy = std::max(qy, 0.f);
    return std::sqrt(ox * ox + oy * oy) + std::min(std::max(qx, qy), 0.f) - r;
}

float Segment(float x, float y, float ax, float ay, float bx, float by) {
    const float px = x - ax, py = y - ay, dx = bx - ax, dy = by - ay;
    const float h = std::clamp((px * dx + py * dy) / (dx * dx + dy * dy), 0.f, 1.f);
    const float ex = px - dx * h, ey = py - dy * h;
    return std::sqrt(ex * ex + ey * ey);
}

/// A stroked polyline of three points (chevrons, the check mark).
bool OnStroke(float x, float y, const float (&p)[6], float halfWidth) {
    return Segment(x, y, p[0], p[1], p[2], p[3]) <= halfWidth ||
           Segment(x, y, p[2], p[3], p[4], p[5]) <= halfWidth;
}

struct Frame {
    Rgb fill;
    Rgb stroke;
    Rgb bottomStroke; ///< the lowest outline row, darker on raised looks
    Rgb topShade;     ///< the row under the top outline, darker on sunken looks
};

constexpr float kButtonRadius = 4.f;

/// A nine-slice frame: 1-pixel outline, rounded corners of radius 4, all inside the 5-pixel borders.
Painter FramePainter(int w, int h, Frame f) {
    return [=](float x, float y) {
        Sample s;
        const float d = RoundBox(x, y, 0.f, 0.f, float(w), float(h), kButtonRadius);
        s.inside = d <= 0.f;
        if (d > -1.f)
            s.color = y > h - 1.f ? f.bottomStroke : f.stroke;
        else if (y < 2.f)
            s.color = f.topShade;
        else
            s.color = f.fill;
        return s;
    };
}

Painter SwitchPainter(bool on) {
    // The track is a pill across the square's middle; the knob sits at the end that reads as the
    // state (right for on).
    return [=](float x, float y) {
        Sample s;
        const float track = RoundBox(x, y, 1.f, 6.f, 27.f, 22.f, 8.f);
        s.inside = track <= 0.f;
        const float kx = on ? 19.f : 9.f, ky = 14.f;
        const float knob = std::hypot(x - kx, y - ky);
        if (knob <= 6.f)
            s.color = kWhite;
        else if (!on && knob <= 7.f)
            s.color = kKnobRing;
        else
            s.color = on ? kAccent : kTrackOff;
        return s;
    };
}

Painter ArrowPainter(bool up, bool hovered) {
    // A small key with a chevron: the whole key is covered so that it is easy to hit.
    return [=](float x, float y) {
        Sample s;
        const float d = RoundBox(x, y, 0.f, 0.f, 18.f, 9.f, 3.f);
        s.inside = d <= 0.f;
        const float down[6] = {5.5f, 3.f, 9.f, 6.2f, 12.5f, 3.f};
        const float upward[6] = {5.5f, 6.f, 9.f, 2.8f, 12.5f, 6.f};
        const Rgb stroke = hovered ? kAccent : kButtonStroke;
        const Rgb fill = hovered ? kHoverFill : kButtonFill;
        if (OnStroke(x, y, up ? upward : down, 0.85f))
            s.color = hovered ? kAccent : kGlyph;
        else if (d > -1.f)
            s.color = stroke;
        else
            s.color = fill;
        return s;
    };
}

Painter GripPainter(bool hovered) {
    // The corner triangle of a resizable panel (bottom right), covered as a whole so that it is easy
    // to grab, with a pixel-aligned triangle of 2 x 2 dots that stays crisp at its 1:1 size.
    return [=](float x, float y) {
        Sample s;
        s.inside = x + y >= 8.f;
        const int cx = int(x), cy = int(y);
        const bool dot = cx % 3 != 0 && cy % 3 != 0 && (cx / 3) + (cy / 3) >= 2;
        if (dot)
            s.color = hovered ? kAccent : kGrip;
        else
            s.color = hovered ? kHoverFill : kPressedShade;
        return s;
    };
}

Painter CheckPainter(bool checked) {
    return [=](float x, float y) {
        Sample s;
        const float d = RoundBox(x, y, 0.f, 0.f, 15.f, 15.f, 3.f);
        s.inside = d <= 0.f;
        const float tick[6] = {3.8f, 7.8f, 6.4f, 10.4f, 11.4f, 4.6f};
        if (checked)
            s.color = OnStroke(x, y, tick, 1.f) ? kWhite : kAccent;
        else
            s.color = d > -1.f ? kButtonLip : kWhite;
        return s;
    };
}

Painter TilePainter(Rgb c) {
    // Zero-border regions stretch as a whole, so only a flat fill scales without smearing.
    return [=](float, float) { return Sample{true, c}; };
}

} // namespace

int main(int argc, char** argv) {
    std::string dir = argc > 1 ? argv[1] : std::string(TRELVO_RESOURCE_DIR);
    Canvas canvas;

    const Area buttonNormal{169, 311, 699, 761};
    const Area buttonPressed{329, 471, 699, 761};
    const Area buttonHovered{488, 630, 699, 761};
    auto frame = [&](const Area& a, const Frame& f) {
        canvas.Paint(a, f.stroke, FramePainter(a.xMax - a.xMin, a.yMax - a.yMin, f));
    };
    // Normal doubles as disabled: a quiet white key with a darker lip reads as raised when enabled
    // and does not shout when it cannot be pressed.
    frame(buttonNormal, {kButtonFill, kButtonStroke, kButtonLip, kButtonFill});
    // Pressed doubles as the panel background: sunken grey with a shade under the top edge.
    frame(buttonPressed, {kPressedFill, kPressedStroke, kPressedStroke, kPressedShade});
    // Hovered doubles as the hovered panel: tinted fill with the accent outline.
    frame(buttonHovered, {kHoverFill, kAccent, kAccent, kHoverFill});

    canvas.Paint({604, 632, 598, 626}, kAccent, SwitchPainter(true));
    canvas.Paint({565, 593, 598, 626}, kTrackOff, SwitchPainter(false));
    canvas.Paint({596, 605, 684, 693}, kGrip, GripPainter(false));
    canvas.Paint({608, 617, 684, 693}, kAccent, GripPainter(true));
    canvas.Paint({490, 508, 684, 693}, kButtonStroke, ArrowPainter(false, false));
    canvas.Paint({510, 528, 684, 693}, kAccent, ArrowPainter(false, true));
    canvas.Paint({530, 548, 684, 693}, kButtonStroke, ArrowPainter(true, false));
    canvas.Paint({550, 568, 684, 693}, kAccent, ArrowPainter(true, true));

    canvas.Paint({146, 161, 700, 715}, kButtonLip, CheckPainter(false));
    canvas.Paint({146, 161, 716, 731}, kAccent, CheckPainter(true));
    canvas.Paint({170, 202, 652, 684}, kTileLight, TilePainter(kTileLight));
    canvas.Paint({204, 236, 652, 684}, kTileMid, TilePainter(kTileMid));
    canvas.Paint({237, 269, 652, 684}, kAccent, TilePainter(kAccent));

    const std::string color = dir + "/uiatlas.png";
    const std::string stencil = dir + "/uiatlasstencil.png";
    if (!canvas.Write(color, stencil)) {
        std::fprintf(stderr, "atlaspainter: could not write %s and %s\n", color.c_str(), stencil.c_str());
        return 1;
    }
    std::printf("wrote %s and %s\n", color.c_str(), stencil.c_str());
    return 0;
}
