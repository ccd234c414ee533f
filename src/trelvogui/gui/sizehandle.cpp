#include <trelvogui/gui/sizehandle.h>

#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/textureatlas.h>

#include <algorithm>

namespace GUI::Controls {

SizeHandle::SizeHandle(Panel* panel) : panel_(panel) {
    SetDraggable(true);
    Base::SetSizeable(true);
    SetAnimatable(true);
}

SizeHandle::~SizeHandle() = default;

void SizeHandle::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawSizeHandle(this);
}

DrawFlags SizeHandle::OnMouseDown(GUI::Event* e) {
    pressPoint_ = {e->x, e->y};
    startRectangle_ = panel_->GetRectangle();
    return DRAW_OVERLAY;
}

DrawFlags SizeHandle::OnMouseDrag(GUI::Event* e, int, int) {
    const GUI::Geometry::Rectangle& min = panel_->MinimumSize();
    int width = std::max(startRectangle_.Width() + (e->x - pressPoint_.x), min.Width());
    int height = std::max(startRectangle_.Height() + (e->y - pressPoint_.y), min.Height());
    panel_->SetRectangle({startRectangle_.xMin, startRectangle_.xMin + width, startRectangle_.yMax - height,
                          startRectangle_.yMax});
    return DRAW_OVERLAY;
}

DrawFlags SizeHandle::OnClick(GUI::Event*) {
    return DRAW_OVERLAY;
}

GUI::Geometry::Rectangle SizeHandle::GetRenderRectangleStandard(GUI::Texture::Atlas*) {
    return GetRectangle();
}

} // namespace GUI::Controls
