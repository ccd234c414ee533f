#include <trelvogui/gui/panel.h>

#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/textureatlas.h>

using namespace GraphicsBase;

namespace GUI::Controls {

Panel::Panel() {
    SetDraggable(true);
    SetAnimatable(true);
}

Panel::~Panel() {
    delete sizeHandle_;
}

void Panel::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawPanel(this);
}

DrawFlags Panel::OnClick(GUI::Event*) {
    return DRAW_NOTHING;
}

void Panel::SetSizeable(bool on) {
    Base::SetSizeable(on);
    if (on) {
        if (!sizeHandle_)
            sizeHandle_ = new SizeHandle(this);
        placeHandle();
        AddChild(sizeHandle_);
    } else if (sizeHandle_) {
        RemoveChild(sizeHandle_);
        delete sizeHandle_;
        sizeHandle_ = nullptr;
    }
    SetNeedsRedraw(true);
}

void Panel::SetRectangle(GUI::Geometry::Rectangle r) {
    std::weak_ptr<const void> alive = LifeToken();
    Base::SetRectangle(r);
    if (alive.expired()) // deleted by a RectangleChangedSignal handler
        return;
    if (Sizeable() && sizeHandle_)
        placeHandle();
}

GUI::Geometry::Rectangle Panel::GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) {
    return atlas ? atlas->GetRenderRectPanel(this) : GetRectangle();
}

void Panel::placeHandle() {
    int w = GetRectangle().Width();
    sizeHandle_->SetRectangle({w - 9, w, 0, 9});
}

} // namespace GUI::Controls
