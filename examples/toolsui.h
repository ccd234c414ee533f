#pragma once
// The minimal host's overlay, shared by the SDL and Qt hosts: a tools panel (a title, two
// click-counting buttons, a switch) and a notes panel the user resizes by its grip.
#include <trelvogui/trelvogui.h>

#include <cstdio>
#include <memory>
#include <string>

namespace example {
using namespace GUI::Controls;

// A button that shows how often it was clicked.
struct Counter : Button {
    int clicks = 0;
    Counter(Panel& parent, std::wstring name, GUI::Geometry::Rectangle r) {
        SetRectangle(r);
        SetText(name);
        ClickedSignal.connect([this, name] { SetText(name + L" " + std::to_wstring(++clicks)); });
        parent.AddChild(this);
    }
};

/// Laid out for a view of w x h framebuffer pixels, registered with the manager.
struct ToolsUI {
    Panel tools; // children are placed inside the panel's margins, y up
    Label title;
    Counter first{tools, L"First", {0, 108, 72, 104}};
    Counter second{tools, L"Second", {128, 236, 72, 104}};
    SwitchButton toggle;
    Panel notes;

    ToolsUI(const std::shared_ptr<GUI::GUIManager>& manager, int w, int h) {
        tools.SetRectangle({16, 276, h - 196, h - 16});
        tools.SetMargins({12, 12, 12, 12});
        title.SetRectangle({0, 236, 128, 156});
        title.SetFontSize(20);
        title.SetText(L"Tools");
        tools.AddChild(&title);
        toggle.SetRectangle({0, 28, 16, 44});
        toggle.SetCallback([this] {
            std::printf("switch %s\n", toggle.IsOn() ? "on" : "off");
            return GraphicsBase::DRAW_OVERLAY;
        });
        tools.AddChild(&toggle);
        tools.Register(manager); // registers the whole tree
        notes.SetRectangle({w - 236, w - 16, h - 176, h - 16});
        notes.SetMinSize(120, 80);
        notes.SetSizeable(true);
        notes.Register(manager);
    }
};

} // namespace example
