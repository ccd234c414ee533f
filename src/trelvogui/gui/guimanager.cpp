#include <trelvogui/gui/guimanager.h>

#include <trelvogui/gui/controlbase.h>

namespace GUI {

GUIManager::GUIManager(GUI::Renderer::Type type) : rendererType_(type) {}

GUIManager::~GUIManager() = default;

bool GUIManager::NeedsRedraw() { return needsRedraw_; }

void GUIManager::SetNeedsRedraw(bool v) {
    if (!needsRedraw_ && v)
        RedrawRequestSignal();
    needsRedraw_ = needsRedraw_ || v;
}

bool GUIManager::AddControl(GUI::Controls::Base* control) {
    control->SetManagerRedrawFlag(&needsRedraw_);
    control->SetNeedsRedraw(true);
    return Factory::AddControl(control);
}

bool GUIManager::RemoveControl(GUI::Controls::Base* control) {
    control->SetManagerRedrawFlag(nullptr);
    SetNeedsRedraw(true);
    return Factory::RemoveControl(control);
}

} // namespace GUI
