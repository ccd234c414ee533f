#pragma once
// A button skinned as a down arrow.

#include <trelvogui/gui/button.h>

namespace GUI::Controls {

class TRELVOGUI_EXPORT DownButton : public Button {
public:
    DownButton();
    ~DownButton() override;
    void DrawControl(GUI::Texture::Atlas* atlas) override;
};

} // namespace GUI::Controls
