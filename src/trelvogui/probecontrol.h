#pragma once
// A two-line text box (name and a second line) in a draggable panel of the overlay.

#include <trelvogui/trelvogui_export.h>

#include <array>
#include <memory>
#include <string>

namespace GUI {
class GUIManager;
namespace Controls {
class Panel;
class Label;
} // namespace Controls
} // namespace GUI

/// Owns one panel and two labels and registers the panel with the manager. Every operation but the
/// constructor and destructor needs Initialize first; before it they do nothing but say so (getters
/// answer empty, false or zero).
class TRELVOGUI_EXPORT ProbeControl {
public:
    explicit ProbeControl(std::shared_ptr<GUI::GUIManager> manager);
    virtual ~ProbeControl();

    ProbeControl(const ProbeControl&) = delete;
    ProbeControl& operator=(const ProbeControl&) = delete;

    /// Builds and registers the box. Always true.
    bool Initialize();

    void SetName(std::wstring name);
    std::wstring GetName();
    void SetCollapsedText(std::wstring text);
    std::wstring GetCollapsedText();
    void Hide();
    void Show();
    bool IsVisible();
    /// (xMin, yMin) of the panel in overlay pixels.
    std::array<int, 2> GetLocation();
    /// Moves the panel keeping its size.
    void SetLocation(int x, int y);
    std::array<int, 2> GetSize();

    GUI::Controls::Panel* GetPanel() { return panel_; }

private:
    /// Whether the box exists; prints why `operation` does nothing when it does not.
    bool ready(const char* operation) const;

    std::shared_ptr<GUI::GUIManager> manager_;
    GUI::Controls::Panel* panel_ = nullptr;
    GUI::Controls::Label* nameLabel_ = nullptr;
    GUI::Controls::Label* collapsedLabel_ = nullptr;
    int settingA_ = 15;
    int settingB_ = 4;
};
