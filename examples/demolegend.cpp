#include "demolegend.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>

#include <algorithm>
#include <cstdio>

namespace demo {
namespace {

constexpr int kBarWidth = 24;
constexpr int kBarHeight = 220;
// Title, numbers right-aligned against the band, and the band itself, left of the bar.
constexpr int kDepthAxisWidth = 100;
// The lower corners stay free for the view cube and the light widget.
constexpr int kLowestBar = 150;
constexpr int kAxisInset = 160;

struct ControlPoint {
    float at; ///< 0..1 along the value range
    GUI::Color color;
};

/// A depth transfer function: shallow blue through white to deep red, sampled into `count` colours.
std::vector<GUI::Color> DepthColors(int count) {
    const ControlPoint points[] = {
        {0.f, {40, 70, 200, 255}}, {0.5f, {245, 245, 245, 255}}, {1.f, {200, 40, 40, 255}}};
    std::vector<GUI::Color> colors;
    for (int i = 0; i < count; ++i) {
        const float t = count > 1 ? static_cast<float>(i) / static_cast<float>(count - 1) : 0.f;
        const ControlPoint* a = &points[0];
        const ControlPoint* b = &points[1];
        if (t > points[1].at) {
            a = &points[1];
            b = &points[2];
        }
        const float w = std::clamp((t - a->at) / (b->at - a->at), 0.f, 1.f);
        auto mix = [w](uint8_t x, uint8_t y) { return static_cast<uint8_t>(x + (y - x) * w + 0.5f); };
        colors.push_back(
            {mix(a->color.r, b->color.r), mix(a->color.g, b->color.g), mix(a->color.b, b->color.b), 255});
    }
    return colors;
}

std::string Narrow(const std::wstring& text) {
    std::string out;
    for (wchar_t c : text)
        out.push_back(c < 128 ? static_cast<char>(c) : '?');
    return out;
}

} // namespace

DemoLegend::DemoLegend() = default;
DemoLegend::~DemoLegend() = default;

bool DemoLegend::Build(const std::shared_ptr<GUI::GUIManager>& manager, int width, int height) {
    const GUI::Color ink{230, 236, 242, 255};

    bar_ = std::make_unique<GUI::Controls::ColorBar>();
    if (!bar_->Initialize()) {
        std::fprintf(stderr, "the colour bar's shaders do not build\n");
        return false;
    }
    bar_->UpdateColorMap(DepthColors(256), true);

    depthAxis_ = std::make_unique<AxisControl>();
    distanceAxis_ = std::make_unique<AxisControl>();
    for (AxisControl* axis : {depthAxis_.get(), distanceAxis_.get()}) {
        if (!axis->Initialize()) {
            std::fprintf(stderr, "the axis shaders do not build\n");
            return false;
        }
        axis->SetFontColor(ink);
    }
    // Numbers to the left of a band that touches the bar; 0..2500 m shows the exponent form.
    depthAxis_->SetOrientation(AxisControl::AlongXMax);
    depthAxis_->SetRange(0.f, 2500.f);
    depthAxis_->SetTitle(L"Depth (m)");
    // Ticks on top, numbers and title below: an axis hanging under the scene.
    distanceAxis_->SetOrientation(AxisControl::AlongYMax);
    distanceAxis_->SetTickSpacing(80);
    distanceAxis_->SetRange(-50.f, 50.f);
    distanceAxis_->SetTitle(L"Distance (mm)");

    Place(width, height);
    bar_->Register(manager);
    depthAxis_->Register(manager);
    distanceAxis_->Register(manager);
    return true;
}

void DemoLegend::Place(int width, int height) {
    if (!bar_)
        return;
    const int barX = width - 120;
    const int barY = std::max(kLowestBar, (height - kBarHeight) / 2 - 20);
    bar_->SetRectangle({barX, barX + kBarWidth, barY, barY + kBarHeight});
    depthAxis_->SetRectangle({barX - kDepthAxisWidth, barX, barY, barY + kBarHeight});
    distanceAxis_->SetRectangle({kAxisInset, width - kAxisInset, 16, 86});
}

std::vector<std::string> DemoLegend::TickTexts() const {
    std::vector<std::string> lines;
    for (const AxisControl* axis : {depthAxis_.get(), distanceAxis_.get()}) {
        if (!axis)
            continue;
        std::string line = Narrow(axis->GetTitle()) + ":";
        for (GUI::Controls::Label* label : axis->GetNumberLabels())
            line += " " + Narrow(label->GetText());
        lines.push_back(line);
    }
    return lines;
}

} // namespace demo
