#pragma once
// The skin atlas: loads the embedded skin images, holds the control set and draws standard controls.

#include <trelvogui/gui/controlset.h>
#include <trelvogui/gui/geometry.h>
#include <trelvogui/trelvogui_export.h>

#include <cstddef>
#include <string>

namespace GUI::Renderer {
class Base;
}
namespace GUI::Controls {
class Label;
class Button;
class DownButton;
class UpButton;
class SwitchButton;
class Panel;
class SizeHandle;
} // namespace GUI::Controls

namespace GUI::Texture {

class Base;

/// Colour ("UIATLAS", RGBA) and stencil ("UIATLASSTENCIL", RGB) images of the same size, bound on
/// texture units 13 and 14 while a region draws.
class TRELVOGUI_EXPORT Atlas {
public:
    Atlas();
    explicit Atlas(GUI::Renderer::Base* renderer);
    ~Atlas();

    Atlas(const Atlas&) = delete;
    Atlas& operator=(const Atlas&) = delete;

    /// Loads both images and fills the control set. False when an image is missing, cannot be
    /// decoded, or the two sizes differ (the set is then left untouched).
    bool LoadControlSet(std::string name);
    /// LoadControlSet on encoded PNG images given in memory (colour RGBA, stencil RGB): the colour
    /// texture is replaced as soon as its image decodes, whatever becomes of the stencil.
    bool LoadControlSetFromMemory(const std::string& name, const unsigned char* colorPng,
                                  std::size_t colorSize, const unsigned char* stencilPng,
                                  std::size_t stencilSize);

    void DrawLabel(GUI::Controls::Label* label);
    void DrawButton(GUI::Controls::Button* button);
    void DrawDownButton(GUI::Controls::DownButton* button);
    void DrawUpButton(GUI::Controls::UpButton* button);
    void DrawSwitchButton(GUI::Controls::SwitchButton* button);
    void DrawPanel(GUI::Controls::Panel* panel);
    void DrawSizeHandle(GUI::Controls::SizeHandle* handle);

    /// Draws the nine pieces; `rect` is the centre piece and the borders lie outside it.
    void DrawExpandableTexture(Expandable& region, GUI::Geometry::Rectangle& rect);
    void DrawNonExpandableTexture(NonExpandable& region, GUI::Geometry::Rectangle& rect);
    /// The rectangle grown by the region's borders.
    GUI::Geometry::Rectangle GetRectangleExpandableTexture(Expandable& region,
                                                           GUI::Geometry::Rectangle& rect);
    GUI::Geometry::Rectangle GetRectangleNonExpandableTexture(NonExpandable& region,
                                                              GUI::Geometry::Rectangle& rect);
    GUI::Geometry::Rectangle GetRenderRectButton(GUI::Controls::Button* button);
    GUI::Geometry::Rectangle GetRenderRectPanel(GUI::Controls::Panel* panel);
    GUI::Geometry::Rectangle GetRenderRectSizeHandle(GUI::Controls::SizeHandle* handle);
    void GetTextSize(GUI::Controls::Label* label, int* width, int* height);

    unsigned int Width() const { return width_; }
    unsigned int Height() const { return height_; }
    GUI::Renderer::Base* GetRenderer() { return renderer_; }
    GUI::Controls::Set& GetControlSet() { return controlSet_; }
    GUI::Texture::Base* GetColorTexture() { return colorTexture_; }
    GUI::Texture::Base* GetStencilTexture() { return stencilTexture_; }

private:
    bool loadImages(const std::string& name, const unsigned char* colorPng, std::size_t colorSize,
                    const unsigned char* stencilPng, std::size_t stencilSize);
    void fillControlSet();
    /// Binds the region's colour and stencil textures on units 13 and 14; false when the atlas has
    /// no images yet.
    bool bindRegion(RegionBase& region);

    GUI::Renderer::Base* renderer_ = nullptr;
    GUI::Texture::Base* colorTexture_ = nullptr;
    GUI::Texture::Base* stencilTexture_ = nullptr;
    GUI::Controls::Set controlSet_;
    unsigned int width_ = 4;
    unsigned int height_ = 4;
};

} // namespace GUI::Texture
