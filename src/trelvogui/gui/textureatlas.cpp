#include <trelvogui/gui/textureatlas.h>

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/downbutton.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/gui/texture.h>
#include <trelvogui/gui/upbutton.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/pngreader.h>
#include <graphicsbase/resources.h>

#include <GL/glew.h>

#include <vector>

using namespace GraphicsBase;

namespace GUI::Texture {

namespace {

constexpr const char* kTag = "gui/textureatlas";
constexpr GLenum kColorUnit = GL_TEXTURE13;
constexpr GLenum kStencilUnit = GL_TEXTURE14;

using Borders = Expandable::Borders;
constexpr Borders kSkinBorders{5, 5, 5, 5};
constexpr Borders kNoBorders{0, 0, 0, 0};

// The built-in skin's regions, in pixels of the 800 x 900 atlas (rows counted from the top).
constexpr Area kButtonNormal{169, 311, 699, 761};
constexpr Area kButtonPressed{329, 471, 699, 761};
constexpr Area kButtonHovered{488, 630, 699, 761};
constexpr Area kSwitchOn{604, 632, 598, 626};
constexpr Area kSwitchOff{565, 593, 598, 626};
constexpr Area kSizeHandleNormal{596, 605, 684, 693};
constexpr Area kSizeHandleHovered{608, 617, 684, 693};
constexpr Area kDownNormal{490, 508, 684, 693};
constexpr Area kDownHovered{510, 528, 684, 693};
constexpr Area kUpNormal{530, 548, 684, 693};
constexpr Area kUpHovered{550, 568, 684, 693};
constexpr Area kSmallSquareA{146, 161, 700, 715};
constexpr Area kSmallSquareB{146, 161, 716, 731};
constexpr Area kBox1{170, 202, 652, 684};
constexpr Area kBox2{204, 236, 652, 684};
constexpr Area kBox3{237, 269, 652, 684};

// Fills one atlas texture from decoded pixels, creating it on first use. Both images use the sRGB
// format so that filtering across stretched pieces blends in linear light. A reload refills the
// same texture object: the control set's regions keep pointing at valid textures even when a
// reload fails half way and leaves the set as it was.
void Upload(GUI::Renderer::Base* renderer, GUI::Texture::Base*& texture, const PNGReader& image) {
    if (!texture)
        renderer->GenerateTexture(&texture, GUI::Texture::SrgbColor);
    texture->SetSize(image.width(), image.height());
    std::vector<unsigned char> pixels = image.rgba();
    texture->SetData(pixels.data());
}

} // namespace

Atlas::Atlas() = default;

Atlas::Atlas(GUI::Renderer::Base* renderer) : renderer_(renderer) {}

// The manager deletes its renderer before its atlas, so the textures are deleted directly (their
// destructors free the GL names) rather than through the renderer.
Atlas::~Atlas() {
    delete colorTexture_;
    delete stencilTexture_;
}

bool Atlas::LoadControlSet(std::string name) {
    ResourceData color = LoadFromResource("TrelvoGUI", "UIATLAS", "PNG");
    ResourceData stencil = LoadFromResource("TrelvoGUI", "UIATLASSTENCIL", "PNG");
    return LoadControlSetFromMemory(name, color.data, color.size, stencil.data, stencil.size);
}

bool Atlas::LoadControlSetFromMemory(const std::string& name, const unsigned char* colorPng,
                                     std::size_t colorSize, const unsigned char* stencilPng,
                                     std::size_t stencilSize) {
    if (!loadImages(name, colorPng, colorSize, stencilPng, stencilSize))
        return false;
    fillControlSet();
    return true;
}

bool Atlas::loadImages(const std::string& name, const unsigned char* colorPng, std::size_t colorSize,
                       const unsigned char* stencilPng, std::size_t stencilSize) {
    if (!renderer_)
        return false;
    PNGReader color(name);
    if (!color.loadFromMemory(colorPng, colorSize))
        return false;
    width_ = static_cast<unsigned int>(color.width());
    height_ = static_cast<unsigned int>(color.height());
    Upload(renderer_, colorTexture_, color);

    PNGReader stencil(name);
    if (!stencil.loadFromMemory(stencilPng, stencilSize))
        return false;
    if (stencil.width() != color.width() || stencil.height() != color.height())
        return false;
    Upload(renderer_, stencilTexture_, stencil);
    return true;
}

void Atlas::fillControlSet() {
    GUI::Controls::Set& set = controlSet_;
    const int w = colorTexture_->Width();
    const int h = colorTexture_->Height();
    auto expandable = [&](Expandable& region, Area area, Borders borders) {
        region.Set(colorTexture_, stencilTexture_, area, borders, w, h);
    };
    auto single = [&](NonExpandable& region, Area area) {
        region.Set(colorTexture_, stencilTexture_, area, w, h);
    };

    expandable(set.buttonNormal, kButtonNormal, kSkinBorders);
    expandable(set.buttonPressed, kButtonPressed, kSkinBorders);
    expandable(set.buttonHovered, kButtonHovered, kSkinBorders);
    expandable(set.buttonDisabled, kButtonNormal, kSkinBorders);
    expandable(set.panelNormal, kButtonPressed, kSkinBorders);
    expandable(set.panelHovered, kButtonHovered, kSkinBorders);
    single(set.switchOn, kSwitchOn);
    single(set.switchOff, kSwitchOff);
    single(set.sizeHandleNormal, kSizeHandleNormal);
    single(set.sizeHandleHovered, kSizeHandleHovered);
    single(set.downButtonNormal, kDownNormal);
    single(set.downButtonHovered, kDownHovered);
    single(set.upButtonNormal, kUpNormal);
    single(set.upButtonHovered, kUpHovered);
    expandable(set.smallSquareA, kSmallSquareA, kNoBorders);
    expandable(set.smallSquareB, kSmallSquareB, kNoBorders);
    for (Expandable& region : set.box1)
        expandable(region, kBox1, kNoBorders);
    for (Expandable& region : set.box2)
        expandable(region, kBox2, kNoBorders);
    for (Expandable& region : set.box3)
        expandable(region, kBox3, kNoBorders);
}

bool Atlas::bindRegion(RegionBase& region) {
    if (!region.colorTexture || !region.stencilTexture)
        return false;
    glActiveTexture(kColorUnit);
    GB_CHECK_GL(kTag);
    region.colorTexture->Bind();
    glActiveTexture(kStencilUnit);
    GB_CHECK_GL(kTag);
    // Other code may rebind these units between draws (uploads bind on the active unit), so every
    // region draw binds afresh.
    region.stencilTexture->Bind();
    return true;
}

void Atlas::DrawExpandableTexture(Expandable& region, GUI::Geometry::Rectangle& rect) {
    if (!renderer_ || !bindRegion(region))
        return;
    const int x0 = rect.xMin, x1 = rect.xMax, y0 = rect.yMin, y1 = rect.yMax;
    const int l = region.borders.left, r = region.borders.right;
    const int t = region.borders.top, b = region.borders.bottom;
    const float* s = region.s;
    const float* tc = region.t;
    // The texture's t runs down the image while screen y runs up, so the strip below the centre
    // shows the image's bottom border rows. Below the centre the strip is T high and above it B
    // high: with the skin's equal borders the distinction never shows.
    const GUI::Geometry::TexturedRectangle pieces[9] = {
        {{x0 - l, x0, y0 - t, y0}, s[0], tc[2], s[1], tc[3]},
        {{x0, x1, y0 - t, y0}, s[1], tc[2], s[2], tc[3]},
        {{x1, x1 + r, y0 - t, y0}, s[2], tc[2], s[3], tc[3]},
        {{x0 - l, x0, y0, y1}, s[0], tc[1], s[1], tc[2]},
        {{x0, x1, y0, y1}, s[1], tc[1], s[2], tc[2]},
        {{x1, x1 + r, y0, y1}, s[2], tc[1], s[3], tc[2]},
        {{x0 - l, x0, y1, y1 + b}, s[0], tc[0], s[1], tc[1]},
        {{x0, x1, y1, y1 + b}, s[1], tc[0], s[2], tc[1]},
        {{x1, x1 + r, y1, y1 + b}, s[2], tc[0], s[3], tc[1]},
    };
    renderer_->DrawTexturedRectangles(pieces, 9);
}

void Atlas::DrawNonExpandableTexture(NonExpandable& region, GUI::Geometry::Rectangle& rect) {
    if (!renderer_ || !bindRegion(region))
        return;
    const float* c = region.texCoords;
    renderer_->DrawTexturedRectangle(GUI::Geometry::TexturedRectangle{rect, c[0], c[2], c[1], c[3]});
}

GUI::Geometry::Rectangle Atlas::GetRectangleExpandableTexture(Expandable& region,
                                                              GUI::Geometry::Rectangle& rect) {
    using GUI::Geometry::AddSaturated;
    using GUI::Geometry::SubSaturated;
    return {SubSaturated(rect.xMin, region.borders.left), AddSaturated(rect.xMax, region.borders.right),
            SubSaturated(rect.yMin, region.borders.top), AddSaturated(rect.yMax, region.borders.bottom)};
}

GUI::Geometry::Rectangle Atlas::GetRectangleNonExpandableTexture(NonExpandable&,
                                                                 GUI::Geometry::Rectangle& rect) {
    return rect;
}

GUI::Geometry::Rectangle Atlas::GetRenderRectButton(GUI::Controls::Button* button) {
    return GetRectangleExpandableTexture(controlSet_.buttonNormal, button->GetRectangle());
}

GUI::Geometry::Rectangle Atlas::GetRenderRectPanel(GUI::Controls::Panel* panel) {
    return GetRectangleExpandableTexture(controlSet_.panelNormal, panel->GetRectangle());
}

GUI::Geometry::Rectangle Atlas::GetRenderRectSizeHandle(GUI::Controls::SizeHandle* handle) {
    return GetRectangleNonExpandableTexture(controlSet_.sizeHandleNormal, handle->GetRectangle());
}

void Atlas::GetTextSize(GUI::Controls::Label* label, int* width, int* height) {
    if (renderer_)
        renderer_->GetTextSize(label->GetTextRecord(), width, height);
}

void Atlas::DrawLabel(GUI::Controls::Label* label) {
    if (!renderer_)
        return;
    renderer_->SetIds(label->GetId(), 0);
    GUI::Text* text = label->GetTextRecord();
    if (text && !text->string.empty())
        renderer_->DrawText(label->GetColorTexture(), text, label->GetRectangle(),
                            label->GetHorizontalAlignment(), label->GetVerticalAlignment());
}

void Atlas::DrawButton(GUI::Controls::Button* button) {
    if (!renderer_)
        return;
    renderer_->SetIds(button->GetId(), 0);
    Expandable* region = nullptr;
    if (!button->Enabled())
        // The custom pressed slot decides whether the custom disabled look applies: a button given
        // only a disabled graphic keeps the atlas's. A missing disabled graphic falls back as well.
        region = button->CustomPressed() ? button->CustomDisabled() : nullptr;
    else if (button->Pressed())
        region = button->CustomPressed();
    else if (button->Hovered())
        region = button->CustomHovered();
    else
        region = button->CustomNormal();
    if (!region) {
        if (!button->Enabled())
            region = &controlSet_.buttonDisabled;
        else if (button->Pressed())
            region = &controlSet_.buttonPressed;
        else if (button->Hovered())
            region = &controlSet_.buttonHovered;
        else
            region = &controlSet_.buttonNormal;
    }
    DrawExpandableTexture(*region, button->GetRectangle());
}

void Atlas::DrawDownButton(GUI::Controls::DownButton* button) {
    if (!renderer_)
        return;
    renderer_->SetIds(button->GetId(), 0);
    const bool hot = button->Hovered() && !button->Pressed();
    DrawNonExpandableTexture(hot ? controlSet_.downButtonHovered : controlSet_.downButtonNormal,
                             button->GetRectangle());
}

void Atlas::DrawUpButton(GUI::Controls::UpButton* button) {
    if (!renderer_)
        return;
    renderer_->SetIds(button->GetId(), 0);
    const bool hot = button->Hovered() && !button->Pressed();
    DrawNonExpandableTexture(hot ? controlSet_.upButtonHovered : controlSet_.upButtonNormal,
                             button->GetRectangle());
}

void Atlas::DrawSwitchButton(GUI::Controls::SwitchButton* button) {
    if (!renderer_)
        return;
    renderer_->SetIds(button->GetId(), 0);
    DrawNonExpandableTexture(button->IsOn() ? controlSet_.switchOn : controlSet_.switchOff,
                             button->GetRectangle());
}

void Atlas::DrawPanel(GUI::Controls::Panel* panel) {
    if (!renderer_)
        return;
    renderer_->SetIds(panel->GetId(), 0);
    // The panel may have moved since the last layout; its skin and cached layer follow it.
    panel->CalcGlobalPosition();
    panel->CalcRenderingBoundingBox(this);
    const bool hot = panel->Hovered() && !panel->Pressed();
    DrawExpandableTexture(hot ? controlSet_.panelHovered : controlSet_.panelNormal, panel->GetRectangle());
}

void Atlas::DrawSizeHandle(GUI::Controls::SizeHandle* handle) {
    if (!renderer_)
        return;
    renderer_->SetIds(handle->GetId(), 0);
    handle->CalcGlobalPosition();
    handle->CalcRenderingBoundingBox(this);
    DrawNonExpandableTexture(handle->Hovered() ? controlSet_.sizeHandleHovered : controlSet_.sizeHandleNormal,
                             handle->GetRectangle());
}

} // namespace GUI::Texture
