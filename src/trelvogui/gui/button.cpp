#include <trelvogui/gui/button.h>

#include <trelvogui/gui/label.h>
#include <trelvogui/gui/textureatlas.h>

using namespace GraphicsBase;

namespace GUI::Controls {

Button::Button() : label_(new Label()) {
    SetDraggable(false);
    AddChild(label_);
}

Button::~Button() {
    delete label_;
    label_ = nullptr;
}

void Button::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawButton(this);
}

void Button::SetRectangle(GUI::Geometry::Rectangle r) {
    std::weak_ptr<const void> alive = LifeToken();
    Controls::Base::SetRectangle(r);
    if (alive.expired()) // deleted by a RectangleChangedSignal handler
        return;
    const GUI::Geometry::Rectangle& own = GetControlRectangle();
    label_->SetRectangle({0, own.Width(), 0, own.Height()});
    label_->SetHorizontalAlignment(1);
    label_->SetVerticalAlignment(1);
}

GUI::Geometry::Rectangle Button::GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) {
    return atlas ? atlas->GetRenderRectButton(this) : GetRectangle();
}

void Button::SetText(std::wstring text) {
    label_->SetText(std::move(text));
}
std::wstring Button::GetText() {
    return label_->GetText();
}

void Button::SetCustomGraphics(GUI::Texture::Expandable* normal, GUI::Texture::Expandable* pressed,
                               GUI::Texture::Expandable* hovered, GUI::Texture::Expandable* disabled) {
    customNormal_ = normal;
    customPressed_ = pressed;
    customHovered_ = hovered;
    customDisabled_ = disabled;
}

} // namespace GUI::Controls
