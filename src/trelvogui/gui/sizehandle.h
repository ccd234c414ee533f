#pragma once
// The grip in a sizeable panel's corner; dragging it resizes the panel.

#include <trelvogui/gui/controlbase.h>

namespace GUI::Controls {

class Panel;

/// Created only by its panel. One drag is a press followed by drags measured from the press point.
class TRELVOGUI_EXPORT SizeHandle : public Base {
public:
    explicit SizeHandle(Panel* panel);
    ~SizeHandle() override;

    void DrawControl(GUI::Texture::Atlas* atlas) override;
    /// Records the press point and the panel's rectangle.
    GraphicsBase::DrawFlags OnMouseDown(GUI::Event* e) override;
    /// Resizes the panel keeping x-min and y-max fixed, never below its minimum size.
    GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override;
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    GUI::Geometry::Rectangle GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) override;

    Panel* GetPanel() { return panel_; }

private:
    Panel* panel_;
    GUI::Geometry::Rectangle startRectangle_{0, 0, 0, 0};
    GUI::Geometry::Point pressPoint_;
};

} // namespace GUI::Controls
