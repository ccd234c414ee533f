#pragma once
// An on/off toggle that calls the user's callback when clicked.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/eventsbase.h>

namespace GUI::Controls {

/// Starts on. A click flips it (whether or not it is enabled) and returns the callback's flags with
/// bit 1 added; with no callback it returns 1.
class TRELVOGUI_EXPORT SwitchButton : public Base, public GUI::Events::Base {
public:
    SwitchButton();
    ~SwitchButton() override;

    void DrawControl(GUI::Texture::Atlas* atlas) override;
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;

    /// Stores the state only: no callback, no redraw request.
    void SetOn(bool on) { on_ = on; }
    bool IsOn() const { return on_; }

private:
    bool on_ = true;
};

} // namespace GUI::Controls
