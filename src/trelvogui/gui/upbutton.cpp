#include <trelvogui/gui/upbutton.h>

#include <trelvogui/gui/textureatlas.h>

using namespace GraphicsBase;

namespace GUI::Controls {

UpButton::UpButton() {
    SetDraggable(false);
}
UpButton::~UpButton() = default;
void UpButton::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawUpButton(this);
}

} // namespace GUI::Controls
