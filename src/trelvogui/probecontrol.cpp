#include <trelvogui/probecontrol.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>

ProbeControl::ProbeControl(std::shared_ptr<GUI::GUIManager> manager) : manager_(std::move(manager)) {}

ProbeControl::~ProbeControl() {
    if (panel_) {
        panel_->Unregister();
        delete panel_;
    }
    delete nameLabel_;
    delete collapsedLabel_;
    manager_.reset();
}

namespace {
GUI::Controls::Label* makeLine(GUI::Geometry::Rectangle r) {
    auto* label = new GUI::Controls::Label();
    label->SetFontSize(16);
    label->SetHorizontalAlignment(0);
    label->SetVerticalAlignment(1);
    label->SetRectangle(r);
    label->SetText(L" ");
    return label;
}
} // namespace

bool ProbeControl::Initialize() {
    // A second call would orphan the first box; the box is built once.
    if (panel_)
        return true;
    panel_ = new GUI::Controls::Panel();
    panel_->SetSizeable(false);
    panel_->SetMinSize(300, 250);
    panel_->SetRectangle({200, 450, 200, 240});
    panel_->SetMargins({5, 5, 0, 0});
    panel_->SetNeedsRedraw(true);
    panel_->SetHorizontalSizingPolicy(GUI::Policy::FitContent);
    panel_->SetNeedsRedraw(true);
    panel_->SetVerticalSizingPolicy(GUI::Policy::FitContent);
    panel_->SetNeedsRedraw(true);
    nameLabel_ = makeLine({0, 230, 20, 40});
    // Directly below the name line: y grows upward.
    collapsedLabel_ = makeLine({0, 230, 0, 20});
    panel_->AddChild(nameLabel_);
    panel_->AddChild(collapsedLabel_);
    panel_->Register(manager_);
    return true;
}

void ProbeControl::SetName(std::wstring name) {
    nameLabel_->SetText(std::move(name));
}
std::wstring ProbeControl::GetName() {
    return nameLabel_->GetText();
}
void ProbeControl::SetCollapsedText(std::wstring text) {
    collapsedLabel_->SetText(std::move(text));
}
std::wstring ProbeControl::GetCollapsedText() {
    return collapsedLabel_->GetText();
}
void ProbeControl::Hide() {
    panel_->SetVisible(false);
}
void ProbeControl::Show() {
    panel_->SetVisible(true);
}
bool ProbeControl::IsVisible() {
    return panel_->Visible();
}

std::array<int, 2> ProbeControl::GetLocation() {
    const auto& r = panel_->GetRectangle();
    return {r.xMin, r.yMin};
}

void ProbeControl::SetLocation(int x, int y) {
    const auto r = panel_->GetRectangle();
    panel_->SetRectangle({x, x + r.Width(), y, y + r.Height()});
}

std::array<int, 2> ProbeControl::GetSize() {
    const auto& r = panel_->GetRectangle();
    return {r.Width(), r.Height()};
}
