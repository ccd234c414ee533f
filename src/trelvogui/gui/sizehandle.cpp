#include <trelvogui/gui/sizehandle.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/textureatlas.h>

#include <graphicsbase/logfile.h>

#include <algorithm>

namespace GUI::Controls {
namespace {
// Without a manager there is no context to ask; every GL 4 context allows textures this large.
constexpr int kUnmanagedLimit = 16384;
} // namespace

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
    using GUI::Geometry::AddSaturated;
    using GUI::Geometry::SubSaturated;
    const GUI::Geometry::Rectangle& min = panel_->MinimumSize();
    int width =
        std::max(AddSaturated(startRectangle_.Width(), SubSaturated(e->x, pressPoint_.x)), min.Width());
    int height =
        std::max(AddSaturated(startRectangle_.Height(), SubSaturated(e->y, pressPoint_.y)), min.Height());
    // A panel is drawn through a cached layer of its size: keep it within what the context can hold.
    const int limit = panel_->Manager() ? panel_->Manager()->GetMaxLayerSize() : kUnmanagedLimit;
    if (width > limit || height > limit) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "SizeHandle::OnMouseDrag(): %d x %d exceeds the limit of %d; the size is "
                                    "clamped.\n",
                                    width, height, limit);
        width = std::min(width, limit);
        height = std::min(height, limit);
    }
    panel_->SetRectangle({startRectangle_.xMin, AddSaturated(startRectangle_.xMin, width),
                          SubSaturated(startRectangle_.yMax, height), startRectangle_.yMax});
    return DRAW_OVERLAY;
}

DrawFlags SizeHandle::OnClick(GUI::Event*) {
    return DRAW_OVERLAY;
}

GUI::Geometry::Rectangle SizeHandle::GetRenderRectangleStandard(GUI::Texture::Atlas*) {
    return GetRectangle();
}

} // namespace GUI::Controls
