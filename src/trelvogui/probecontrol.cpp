#include <trelvogui/probecontrol.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>

#include <cstdio>

using namespace GraphicsBase;

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

bool ProbeControl::ready(const char* operation) const {
    if (panel_)
        return true;
    std::printf("ProbeControl::%s(): The box does not exist before Initialize.\n", operation);
    return false;
}

void ProbeControl::SetName(std::wstring name) {
    if (ready("SetName"))
        nameLabel_->SetText(std::move(name));
}
std::wstring ProbeControl::GetName() {
    return ready("GetName") ? nameLabel_->GetText() : std::wstring();
}
void ProbeControl::SetCollapsedText(std::wstring text) {
    if (ready("SetCollapsedText"))
        collapsedLabel_->SetText(std::move(text));
}
std::wstring ProbeControl::GetCollapsedText() {
    return ready("GetCollapsedText") ? collapsedLabel_->GetText() : std::wstring();
}
void ProbeControl::Hide() {
    if (ready("Hide"))
        panel_->SetVisible(false);
}
void ProbeControl::Show() {
    if (ready("Show"))
        panel_->SetVisible(true);
}
bool ProbeControl::IsVisible() {
    return ready("IsVisible") && panel_->Visible();
}

std::array<int, 2> ProbeControl::GetLocation() {
    if (!ready("GetLocation"))
        return {0, 0};
    const auto& r = panel_->GetRectangle();
    return {r.xMin, r.yMin};
}

void ProbeControl::SetLocation(int x, int y) {
    if (!ready("SetLocation"))
        return;
    const auto r = panel_->GetRectangle();
    panel_->SetRectangle(GUI::Geometry::Rectangle{0, r.Width(), 0, r.Height()}.Bounded(x, y));
}

std::array<int, 2> ProbeControl::GetSize() {
    if (!ready("GetSize"))
        return {0, 0};
    const auto& r = panel_->GetRectangle();
    return {r.Width(), r.Height()};
}
