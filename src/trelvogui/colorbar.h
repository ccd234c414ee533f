#pragma once
// A colour ramp of the overlay: the colours of a transfer function painted over a rectangle.

#include <trelvogui/gui/controlbase.h>

#include <memory>
#include <vector>

namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

namespace GUI::Controls {

/// Paints a colour map over its rectangle and writes its id there, so the whole bar is hit-tested.
/// The colours live in a 1D texture that the owner refreshes with UpdateColorMap. The ramp runs along
/// the rectangle's longer side, first colour at the bottom of a bar taller than wide and at the left
/// of any other; each of n colours fills one of n equal slices, and a smooth map blends between the
/// slice centres.
class TRELVOGUI_EXPORT ColorBar : public Base {
public:
    ColorBar();
    /// Deletes the program and the quad. The colour texture is left alone: its name may have been
    /// handed on (ColorTextureName) to views that draw in the same colours, and whoever holds the map
    /// deletes it when the last of them is done.
    ~ColorBar() override;

    /// Draws the ramp; does nothing (and touches no GL state) until Initialize has succeeded. Leaves
    /// texture unit 8 active with the colour texture bound.
    void DrawCustom() override;

    /// With the GL context current: builds "Legend.vs" + "Legend.fs" and the unit quad. False on any
    /// failure; the bar then stays undrawable.
    virtual bool Initialize();

    /// Replaces the colour texture with one texel per colour (red, green, blue, alpha bytes): linear
    /// filtering when `smooth`, nearest (a stepped legend) otherwise, clamped at the ends, no mipmaps.
    /// An empty vector gives a zero-width texture, which draws black. Needs the GL context; may come
    /// before or after Initialize. More colours than the driver's largest 1D texture are refused with
    /// a message and the current texture is kept.
    void UpdateColorMap(const std::vector<GUI::Color>& colors, bool smooth);

    bool IsInitialized() const { return initialized_; }
    /// The current 1D texture; 0 before the first UpdateColorMap.
    unsigned int ColorTextureName() const { return colorTexture_; }

private:
    bool initialized_ = false;
    unsigned int colorTexture_ = 0;
    GraphicsBase::GLSLProgram* program_ = nullptr;
    std::unique_ptr<GraphicsBase::GLSLProgram>
        fetchProgram_; // the fast path's build, where the context offers fetch
    GraphicsBase::GLVertexBuffer* vertexBuffer_ = nullptr;
};

} // namespace GUI::Controls
