#include "demolegend.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/legendcontrol.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>

using namespace GraphicsBase;

namespace demo {
namespace {

// Numbers, bar and histogram side by side, the title on top.
constexpr int kLegendWidth = 150;
constexpr int kLegendHeight = 250;
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

    legend_ = std::make_unique<LegendControl>();
    distanceAxis_ = std::make_unique<AxisControl>();
    if (!legend_->Initialize() || !distanceAxis_->Initialize()) {
        std::fprintf(stderr, "the legend's or the axis's shaders do not build\n");
        return false;
    }
    legend_->SetColorMap(DepthColors(256), true);
    legend_->SetRange(0.0, 2500.0);
    legend_->SetTitle(L"Depth (m)");
    // The depths of a survey: most of the sea floor is shallow shelf, some of it a deep basin.
    std::mt19937 rng(17);
    std::normal_distribution<double> shelf(420.0, 160.0), basin(1900.0, 220.0);
    std::vector<double> depths(60000);
    for (std::size_t i = 0; i < depths.size(); ++i)
        depths[i] = std::clamp(i % 4 == 0 ? basin(rng) : shelf(rng), 0.0, 2500.0);
    legend_->SetValues(depths.data(), depths.size());

    distanceAxis_->SetFontColor(ink);
    // Ticks on top, numbers and title below: an axis hanging under the scene, in nice steps.
    distanceAxis_->SetOrientation(AxisControl::AlongYMax);
    distanceAxis_->SetTickSpacing(80);
    distanceAxis_->SetAxisType(AxisControl::NiceSteps);
    distanceAxis_->SetRange(-50.f, 50.f);
    distanceAxis_->SetTitle(L"Distance (mm)");

    Place(width, height);
    legend_->Register(manager);
    distanceAxis_->Register(manager);
    return true;
}

void DemoLegend::Place(int width, int height) {
    if (!legend_)
        return;
    const int x = width - 24 - kLegendWidth;
    const int y = std::max(kLowestBar, (height - kLegendHeight) / 2 - 20);
    legend_->SetRectangle({x, x + kLegendWidth, y, y + kLegendHeight});
    distanceAxis_->SetRectangle({kAxisInset, width - kAxisInset, 16, 86});
}

std::vector<std::string> DemoLegend::TickTexts() const {
    std::vector<std::string> lines;
    auto line = [&](const std::wstring& title, AxisControl* axis) {
        std::string text = Narrow(title) + ":";
        for (GUI::Controls::Label* label : axis->GetNumberLabels())
            text += " " + Narrow(label->GetText());
        lines.push_back(text);
    };
    if (legend_)
        line(legend_->TitleLabel()->GetText(), legend_->Axis());
    if (distanceAxis_)
        line(distanceAxis_->GetTitle(), distanceAxis_.get());
    return lines;
}

} // namespace demo
