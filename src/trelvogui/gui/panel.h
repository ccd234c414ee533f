#pragma once
// A skinned background that other controls sit on; optionally resizable through its grip.

#include <trelvogui/gui/controlbase.h>

namespace GUI::Controls {

class SizeHandle;

/// Draggable and drawn through its own cached layer. Swallows clicks. While sizeable it owns a 9 x 9
/// grip at its x-max, y-min corner.
class TRELVOGUI_EXPORT Panel : public Base {
public:
    Panel();
    ~Panel() override;

    void DrawControl(GUI::Texture::Atlas* atlas) override;
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    /// Creates and places the grip, or removes and deletes it.
    void SetSizeable(bool on) override;
    /// Also keeps the grip in the corner.
    void SetRectangle(GUI::Geometry::Rectangle r) override;
    /// The rectangle grown by the panel skin's borders.
    GUI::Geometry::Rectangle GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) override;

    SizeHandle* GetSizeHandle() { return sizeHandle_; }

private:
    void placeHandle();

    SizeHandle* sizeHandle_ = nullptr;
};

} // namespace GUI::Controls
