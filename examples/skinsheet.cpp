#include "skinsheet.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/downbutton.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/gui/upbutton.h>

#include <graphicsbase/pngwriter.h>

#include <GL/glew.h>

#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace demo {
namespace {
constexpr int kWidth = 520;
constexpr int kHeight = 320;

/// The controls of the sheet, kept alive while they are drawn.
struct Sheet {
    std::vector<std::unique_ptr<GUI::Controls::Base>> controls;

    template <class T> T* add(GUI::Geometry::Rectangle r, std::shared_ptr<GUI::GUIManager>& manager) {
        auto control = std::make_unique<T>();
        T* raw = control.get();
        raw->SetRectangle(r);
        raw->Register(manager);
        controls.push_back(std::move(control));
        return raw;
    }
};
} // namespace

bool WriteSkinSheet(const std::string& path) {
    auto manager = std::make_shared<GUI::GUIManager>();
    if (!manager->Initialize())
        return false;
    manager->Resize(kWidth, kHeight);
    Sheet sheet;
    using namespace GUI::Controls;

    auto* dark = sheet.add<Panel>({20, 240, 20, 300}, manager);
    dark->SetSizeable(true);
    auto* hot = sheet.add<Panel>({280, 500, 20, 110}, manager);
    hot->SetHovered(true);
    hot->SetSizeable(true);
    hot->GetSizeHandle()->SetHovered(true);

    struct ButtonState {
        const wchar_t* text;
        GUI::Geometry::Rectangle r;
        bool enabled, pressed, hovered;
    };
    const ButtonState buttons[] = {
        {L"Normal", {40, 140, 260, 284}, true, false, false},
        {L"Hovered", {40, 140, 222, 246}, true, false, true},
        {L"Pressed", {40, 140, 184, 208}, true, true, true},
        {L"Disabled", {40, 140, 146, 170}, false, false, false},
        {L"Wide button", {40, 220, 100, 130}, true, false, false},
        {L"OK", {300, 340, 60, 80}, true, false, false},
        {L"Cancel", {360, 480, 52, 88}, true, false, true},
        {L"Large", {310, 500, 240, 300}, true, false, false},
    };
    for (const ButtonState& s : buttons) {
        auto* b = sheet.add<Button>(s.r, manager);
        b->SetText(s.text);
        b->GetLabel()->SetColor({28, 32, 40, 255});
        b->GetLabel()->SetFontSize(13);
        b->SetEnabled(s.enabled);
        b->SetPressed(s.pressed);
        b->SetHovered(s.hovered);
    }
    for (int on = 0; on < 2; ++on) {
        sheet.add<SwitchButton>({160 + 36 * on, 188 + 36 * on, 250, 278}, manager)->SetOn(on == 1);
        sheet.add<SwitchButton>({300 + 60 * on, 348 + 60 * on, 180, 228}, manager)->SetOn(on == 1);
        sheet.add<UpButton>({160 + 26 * on, 178 + 26 * on, 200, 209}, manager)->SetHovered(on == 1);
        sheet.add<DownButton>({160 + 26 * on, 178 + 26 * on, 188, 197}, manager)->SetHovered(on == 1);
    }
    manager->UpdateLayers();

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, kWidth, kHeight);
    glClearColor(0.15f, 0.16f, 0.2f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    manager->Draw();
    std::vector<uint8_t> pixels(static_cast<size_t>(kWidth) * kHeight * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    sheet.controls.clear();
    return GraphicsBase::WritePNG(path, pixels.data(), kWidth, kHeight);
}

} // namespace demo
