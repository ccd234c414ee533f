#include <trelvogui/gui/downbutton.h>

#include <trelvogui/gui/textureatlas.h>

using namespace GraphicsBase;

namespace GUI::Controls {

DownButton::DownButton() {
    SetDraggable(false);
}
DownButton::~DownButton() = default;
void DownButton::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawDownButton(this);
}

} // namespace GUI::Controls
