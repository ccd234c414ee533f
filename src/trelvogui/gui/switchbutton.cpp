#include <trelvogui/gui/switchbutton.h>

#include <trelvogui/gui/textureatlas.h>

using namespace GraphicsBase;

namespace GUI::Controls {

SwitchButton::SwitchButton() {
    SetDraggable(false);
}
SwitchButton::~SwitchButton() = default;

void SwitchButton::DrawControl(GUI::Texture::Atlas* atlas) {
    atlas->DrawSwitchButton(this);
}

DrawFlags SwitchButton::OnClick(GUI::Event*) {
    on_ = !on_;
    // An empty callable throws std::bad_function_call; the toggle has happened by
    // then.
    std::weak_ptr<const void> alive = LifeToken();
    DrawFlags result = callback ? ((*callback)() | DRAW_OVERLAY) : DRAW_OVERLAY;
    if (!alive.expired()) // the callback may have deleted the switch
        SetNeedsRedraw(true);
    return result;
}

} // namespace GUI::Controls
