#include <trelvogui/gui/label.h>

#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/gui/texture.h>
#include <trelvogui/gui/textureatlas.h>

#include <algorithm>

using namespace GraphicsBase;

namespace GUI::Controls {

Label::Label() = default;
Label::~Label() = default;

void Label::DrawControl(GUI::Texture::Atlas* atlas) {
    if (!GetColorTexture())
        atlas->GetRenderer()->GenerateTexture(&ColorTextureSlot(), GUI::Texture::Color);
    atlas->DrawLabel(this);
}

DrawFlags Label::OnMouseEnter(GUI::Event* e) {
    return HasParent() ? Parent()->OnMouseEnter(e) : DRAW_NOTHING;
}

DrawFlags Label::OnMouseExit(GUI::Event* e) {
    return HasParent() ? Parent()->OnMouseExit(e) : DRAW_NOTHING;
}

void Label::CalcBoundingBox(GUI::Texture::Atlas* atlas) {
    GUI::Policy::Sizing h = GetHorizontalSizingPolicy();
    GUI::Policy::Sizing v = GetVerticalSizingPolicy();
    if ((h != GUI::Policy::Fixed || v != GUI::Policy::Fixed) && atlas) {
        int w = 0, hgt = 0;
        atlas->GetTextSize(this, &w, &hgt);
        GUI::Geometry::Rectangle r = GetControlRectangle();
        if (h == GUI::Policy::FitContent)
            r.xMax = r.xMin + w;
        if (v == GUI::Policy::FitContent)
            r.yMax = r.yMin + hgt;
        SetRectangle(r);
    }
    BoundingBox() = GetControlRectangle();
}

GUI::Geometry::Rectangle Label::GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) {
    GUI::Geometry::Rectangle r = GetRectangle();
    if (!atlas)
        return r;
    int w = 0, h = 0;
    atlas->GetTextSize(this, &w, &h);
    const int overX = std::max(0, w - r.Width()), overY = std::max(0, h - r.Height());
    return {r.xMin - overX, r.xMax + overX, r.yMin - overY, r.yMax + overY};
}

std::wstring Label::GetText() {
    return text_.string;
}
GUI::Text* Label::GetTextRecord() {
    return &text_;
}

void Label::SetText(std::wstring text) {
    if (text.empty())
        text = L" ";
    if (text == text_.string)
        return;
    text_.string = std::move(text);
    invalidateText();
    SetNeedsRedraw(true);
}

void Label::SetHorizontalAlignment(int a) {
    horizontalAlignment_ = a;
}
void Label::SetVerticalAlignment(int a) {
    verticalAlignment_ = a;
}

void Label::SetOrientation(int o) {
    if (o != text_.orientation)
        invalidateText();
    text_.orientation = o;
}

int Label::GetHorizontalAlignment() {
    return horizontalAlignment_;
}
int Label::GetVerticalAlignment() {
    return verticalAlignment_;
}
int Label::GetOrientation() {
    return text_.orientation;
}
GUI::Color Label::GetColor() {
    return text_.color;
}

void Label::SetColor(GUI::Color c) {
    text_.color = c;
    SetNeedsRedraw(true);
}

void Label::SetFontSize(unsigned int size) {
    if (size != text_.size)
        invalidateText();
    text_.size = size;
}

void Label::invalidateText() {
    if (GetColorTexture())
        GetColorTexture()->SetValid(false);
}

} // namespace GUI::Controls
