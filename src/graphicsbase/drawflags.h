#pragma once
// Bit set every input entry and control handler returns: what the host must redraw.

namespace GraphicsBase {

/// 0: not consumed, nothing to redraw. Results combine with bitwise or.
enum DrawFlags : unsigned int {
    DRAW_NOTHING = 0,
    DRAW_OVERLAY = 1,  ///< the overlay changed
    DRAW_SCENE = 2,    ///< the host's 3D scene must be redrawn
    DRAW_CAMERA = 4,   ///< the camera moved
    DRAW_CONSUMED = 8, ///< the handler consumed the event
    DRAW_TRIAD_FACE = 16,
    DRAW_LIGHT = 32,
};

constexpr DrawFlags operator|(DrawFlags a, DrawFlags b) {
    return static_cast<DrawFlags>(static_cast<unsigned>(a) | static_cast<unsigned>(b));
}
constexpr DrawFlags operator&(DrawFlags a, DrawFlags b) {
    return static_cast<DrawFlags>(static_cast<unsigned>(a) & static_cast<unsigned>(b));
}
inline DrawFlags& operator|=(DrawFlags& a, DrawFlags b) {
    return a = a | b;
}

} // namespace GraphicsBase
