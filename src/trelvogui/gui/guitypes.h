#pragma once
// Value types shared by the whole overlay: colour, text runs, control events and layout enums.

#include <cstdint>
#include <string>

namespace GUI {

/// Four 8-bit channels in memory order r, g, b, a; as a little-endian word red is bits 0-7 and alpha
/// bits 24-31 (0xFF000000 is opaque black).
struct Color {
    uint8_t r = 0;
    uint8_t g = 0;
    uint8_t b = 0;
    uint8_t a = 0;

    static constexpr Color FromWord(uint32_t w) {
        return Color{static_cast<uint8_t>(w & 0xFF), static_cast<uint8_t>((w >> 8) & 0xFF),
                     static_cast<uint8_t>((w >> 16) & 0xFF), static_cast<uint8_t>((w >> 24) & 0xFF)};
    }
    constexpr uint32_t Word() const {
        return uint32_t(r) | (uint32_t(g) << 8) | (uint32_t(b) << 16) | (uint32_t(a) << 24);
    }
    bool operator==(const Color& o) const { return Word() == o.Word(); }
};
static_assert(sizeof(Color) == 4, "a colour is one 32-bit word");

/// A run of text to rasterise. Orientation 0 is horizontal, 1 is turned 90 degrees.
struct Text {
    uint32_t size = 16; ///< font height in pixels
    Color color;
    int32_t orientation = 0;
    std::wstring string;
    bool bold = false;
    bool italic = false;
};

/// What a control handler receives: host pixel position (y down, as given) and the hit ids.
struct Event {
    int32_t x = 0;
    int32_t y = 0;
    uint32_t pid = 0;
    uint32_t sid = 0;
};

namespace Policy {
/// 0: keep the rectangle, grow the bounding box over children; 1: fit the upper bound to the content.
enum Sizing : int32_t { Fixed = 0, FitContent = 1 };
} // namespace Policy

namespace Alignment {
namespace Horizontal {
enum Type : int32_t { Left = 0, Center = 1, Right = 2 };
}
namespace Vertical {
enum Type : int32_t { Bottom = 0, Center = 1, Top = 2 };
}
} // namespace Alignment

namespace Renderer {
enum Type : int32_t { OpenGL = 0 };
}

} // namespace GUI
