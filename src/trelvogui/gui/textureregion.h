#pragma once
// Regions of the skin atlas: nine-slice (expandable) and single-piece (non-expandable).

#include <trelvogui/trelvogui_export.h>

#include <cstdint>

namespace GUI::Texture {

class Base;

/// The atlas textures a region samples (not owned).
class TRELVOGUI_EXPORT RegionBase {
public:
    virtual ~RegionBase() = default;
    Base* colorTexture = nullptr;
    Base* stencilTexture = nullptr;
};

/// Atlas area in pixels (rows counted from the top of the image).
struct Area {
    int32_t xMin = 0;
    int32_t xMax = 0;
    int32_t yMin = 0;
    int32_t yMax = 0;
};

/// Nine-slice region: corners keep their size, edges and centre stretch.
class TRELVOGUI_EXPORT Expandable : public RegionBase {
public:
    struct Borders {
        int32_t left = 0;
        int32_t right = 0;
        int32_t top = 0;
        int32_t bottom = 0;
    };

    /// Sets the textures, area and borders and computes s and t from the colour texture's size.
    void Set(Base* color, Base* stencil, Area a, Borders b, int atlasWidth, int atlasHeight);
    bool IsSet() const { return colorTexture != nullptr; }

    Area area;
    Borders borders;
    float s[4] = {0.f, 0.f, 0.f, 0.f};
    float t[4] = {0.f, 0.f, 0.f, 0.f};
};

/// Single-piece region stretched to the target rectangle.
class TRELVOGUI_EXPORT NonExpandable : public RegionBase {
public:
    void Set(Base* color, Base* stencil, Area a, int atlasWidth, int atlasHeight);

    Area area;
    /// x min / W, x max / W, y min / H, y max / H.
    float texCoords[4] = {0.f, 0.f, 0.f, 0.f};
};

} // namespace GUI::Texture
