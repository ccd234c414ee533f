#pragma once
// Integer pixel geometry of the overlay (origin bottom-left, y up).

#include <cstdint>
#include <cstdio>
#include <limits>

namespace GUI::Geometry {

/// Clamps a wide intermediate to the 32-bit range: pointer coordinates and drags near the integer
/// limits saturate instead of wrapping (which would be undefined behaviour, and a panel on the far
/// side of the view).
constexpr int32_t Saturate(int64_t v) {
    return v > std::numeric_limits<int32_t>::max()   ? std::numeric_limits<int32_t>::max()
           : v < std::numeric_limits<int32_t>::min() ? std::numeric_limits<int32_t>::min()
                                                     : static_cast<int32_t>(v);
}

/// Control geometry stays within +-2^24 pixels, far beyond any view, so that adding skin borders,
/// margins and parents' offsets to it can never overflow.
constexpr int32_t kCoordinateLimit = 1 << 24;
constexpr int32_t ClampCoordinate(int64_t v) {
    return v > kCoordinateLimit    ? kCoordinateLimit
           : v < -kCoordinateLimit ? -kCoordinateLimit
                                   : static_cast<int32_t>(v);
}

/// A size a caller asked for, kept within lo .. kCoordinateLimit; prints "<operation>: <size> is
/// outside <lo> .. <limit>; <kept> is used." when it had to move it.
inline int32_t BoundedSize(const char* operation, int64_t size, int32_t lo) {
    const int32_t kept = static_cast<int32_t>(size < lo                 ? lo
                                              : size > kCoordinateLimit ? kCoordinateLimit
                                                                        : size);
    if (kept != size)
        std::printf("%s: %lld is outside %d .. %d; %d is used.\n", operation, static_cast<long long>(size),
                    lo, kCoordinateLimit, kept);
    return kept;
}

/// a + b and a - b, saturated.
constexpr int32_t AddSaturated(int32_t a, int32_t b) {
    return Saturate(int64_t{a} + b);
}
constexpr int32_t SubSaturated(int32_t a, int32_t b) {
    return Saturate(int64_t{a} - b);
}

struct Point {
    int32_t x = 0;
    int32_t y = 0;
};

/// Bounds in the order xMin, xMax, yMin, yMax: code may walk it as four integers where elements 0 and 2
/// are lower bounds. Never normalised: xMax below xMin is stored as given.
struct Rectangle {
    int32_t xMin = 0;
    int32_t xMax = 0;
    int32_t yMin = 0;
    int32_t yMax = 0;

    /// Saturated at the 32-bit limits.
    int32_t Width() const { return SubSaturated(xMax, xMin); }
    int32_t Height() const { return SubSaturated(yMax, yMin); }
    /// Centre with integer division truncating toward zero.
    Point Center() const {
        return {static_cast<int32_t>((int64_t{xMin} + xMax) / 2),
                static_cast<int32_t>((int64_t{yMin} + yMax) / 2)};
    }
    /// Moves both x bounds by dx and both y bounds by dy (saturating at the 32-bit limits).
    void Shift(int32_t dx, int32_t dy) {
        xMin = AddSaturated(xMin, dx);
        xMax = AddSaturated(xMax, dx);
        yMin = AddSaturated(yMin, dy);
        yMax = AddSaturated(yMax, dy);
    }
    /// Lowers the lower bounds to `o`'s lower bounds and raises the upper bounds to its upper bounds.
    void Include(const Rectangle& o) {
        if (o.xMin < xMin)
            xMin = o.xMin;
        if (o.yMin < yMin)
            yMin = o.yMin;
        if (o.xMax > xMax)
            xMax = o.xMax;
        if (o.yMax > yMax)
            yMax = o.yMax;
    }
    /// Moved by (dx, dy), then kept within +-kCoordinateLimit by moving it back, so that its size
    /// survives: only a rectangle wider or taller than the whole range is cut (Clamped). A control
    /// pushed against the limit stays the size it was.
    Rectangle Bounded(int64_t dx = 0, int64_t dy = 0) const {
        int64_t b[4] = {int64_t{xMin} + dx, int64_t{xMax} + dx, int64_t{yMin} + dy, int64_t{yMax} + dy};
        for (int axis = 0; axis < 4; axis += 2) {
            const int64_t low = b[axis] < b[axis + 1] ? b[axis] : b[axis + 1];
            const int64_t high = b[axis] < b[axis + 1] ? b[axis + 1] : b[axis];
            const int64_t back = high > kCoordinateLimit   ? kCoordinateLimit - high
                                 : low < -kCoordinateLimit ? -kCoordinateLimit - low
                                                           : 0;
            b[axis] += back;
            b[axis + 1] += back;
        }
        return {ClampCoordinate(b[0]), ClampCoordinate(b[1]), ClampCoordinate(b[2]), ClampCoordinate(b[3])};
    }
    /// Every bound clamped into +-kCoordinateLimit.
    Rectangle Clamped() const {
        return {ClampCoordinate(xMin), ClampCoordinate(xMax), ClampCoordinate(yMin), ClampCoordinate(yMax)};
    }
    bool operator==(const Rectangle& o) const {
        return xMin == o.xMin && xMax == o.xMax && yMin == o.yMin && yMax == o.yMax;
    }
    bool operator!=(const Rectangle& o) const { return !(*this == o); }
};

/// Content insets, in rectangle order: left, right, bottom, top.
struct Margin {
    int32_t left = 0;
    int32_t right = 0;
    int32_t bottom = 0;
    int32_t top = 0;
};

struct Circle {
    Point center;
    int32_t radius = 0;
};

struct Line {
    Point start;
    Point end;
};

/// A rectangle and the texture coordinates of its minimum (s0, t0) and maximum (s1, t1) corners.
struct TexturedRectangle {
    Rectangle rectangle;
    float s0 = 0.f;
    float t0 = 0.f;
    float s1 = 1.f;
    float t1 = 1.f;
};

inline bool operator==(const Point& a, const Point& b) {
    return a.x == b.x && a.y == b.y;
}

} // namespace GUI::Geometry
