#include <trelvogui/gui/sizehandle.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/textureatlas.h>

#include <graphicsbase/logfile.h>

#include <algorithm>

using namespace GraphicsBase;

namespace GUI::Controls {
namespace {
// Without a manager there is no context to ask; every GL 4 context allows textures this large.
constexpr int kUnmanagedLimit = 16384;
// Room for the skin's border around the panel in its cached layer.
constexpr int kSkinAllowance = 64;
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
    // A panel is drawn through a cached layer of its size plus its skin's border: keep that within
    // what the context can hold, and no larger than the view the grip is dragged in.
    GUI::GUIManager* manager = panel_->Manager();
    int maxWidth = (manager ? manager->GetMaxLayerSize() : kUnmanagedLimit) - kSkinAllowance;
    int maxHeight = maxWidth;
    if (manager && manager->GetWidth() > 0 && manager->GetHeight() > 0) {
        maxWidth = std::min(maxWidth, manager->GetWidth());
        maxHeight = std::min(maxHeight, manager->GetHeight());
    }
    if (width > maxWidth || height > maxHeight) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "SizeHandle::OnMouseDrag(): %d x %d is more than the view allows (%d x %d); the "
            "size is clamped.\n",
            width, height, maxWidth, maxHeight);
        width = std::max(std::min(width, maxWidth), min.Width());
        height = std::max(std::min(height, maxHeight), min.Height());
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
