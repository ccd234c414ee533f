#pragma once
// A button skinned as an up arrow.

#include <trelvogui/gui/button.h>

namespace GUI::Controls {

class TRELVOGUI_EXPORT UpButton : public Button {
public:
    UpButton();
    ~UpButton() override;
    void DrawControl(GUI::Texture::Atlas* atlas) override;
};

} // namespace GUI::Controls
