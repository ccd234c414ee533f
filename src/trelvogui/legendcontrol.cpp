#include <trelvogui/legendcontrol.h>

#include "detail/chartmarks.h"
#include "detail/ownedchildren.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/gui/label.h>

#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glvertexbuffer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace GraphicsBase;

namespace {
// Pixel sizes at display scale 1.
constexpr float kTitle = 34.f;         // title row on top, clear of the top number, which overhangs the bar
constexpr float kNumbers = 62.f;       // the axis: numbers and band beside the bar (vertical layout)
constexpr float kNumbersAcross = 36.f; // the same below a horizontal bar
constexpr float kBar = 22.f;           // the bar's thickness
constexpr float kGap = 3.f;            // between the bar and the histogram
constexpr float kBinPixels = 4.f;
constexpr unsigned int kTitleFont = 15;
} // namespace

LegendControl::LegendControl() : marks_(std::make_unique<trelvo::detail::ChartMarks>()) {
    SetDimsWhenDisabled(true);
    bar_ = new GUI::Controls::ColorBar();
    axis_ = new AxisControl();
    axis_->SetAxisType(AxisControl::NiceSteps);
    axis_->SetFontColor({230, 236, 242, 255});
    title_ = new GUI::Controls::Label();
    title_->SetFontSize(kTitleFont);
    title_->SetHorizontalAlignment(1);
    title_->SetVerticalAlignment(1);
    title_->SetColor({230, 236, 242, 255});
    AddChild(bar_);
    AddChild(axis_);
    AddChild(title_);
    Arrange();
}

LegendControl::~LegendControl() {
    trelvo::detail::DeleteOwnedChildren(*this, {bar_, axis_, title_});
}

bool LegendControl::Initialize() {
    const bool bar = bar_->Initialize();
    const bool axis = axis_->Initialize();
    const bool marks = marks_->Initialize();
    Arrange();
    return bar && axis && marks;
}

void LegendControl::SetRectangle(GUI::Geometry::Rectangle r) {
    Base::SetRectangle(r);
    Arrange();
}

void LegendControl::SetLayout(Layout layout) {
    if (layout == layout_)
        return;
    layout_ = layout;
    Arrange();
}

void LegendControl::OnDisplayScaleChanged() {
    title_->SetFontSize(static_cast<unsigned int>(ScaledPixels(kTitleFont)));
    Arrange();
}

void LegendControl::Arrange() {
    const GUI::Geometry::Rectangle& r = GetControlRectangle();
    const int titleRow = ScaledPixels(kTitle), bar = ScaledPixels(kBar), gap = ScaledPixels(kGap);
    const int w = std::max(r.Width(), 1), h = std::max(r.Height(), titleRow + 1);
    const int body = h - titleRow;
    title_->SetRectangle({0, w, body + ScaledPixels(12.f), h});
    if (layout_ == Vertical) {
        const int numbers = ScaledPixels(kNumbers);
        axis_->SetOrientation(AxisControl::AlongXMax);
        axis_->SetTickSpacing(40);
        axis_->SetRectangle({0, numbers, 0, body});
        bar_->SetRectangle({numbers, numbers + bar, 0, body});
        histogramArea_ = {numbers + bar + gap, std::max(numbers + bar + gap, w), 0, body};
    } else {
        const int numbers = ScaledPixels(kNumbersAcross);
        axis_->SetOrientation(AxisControl::AlongYMax);
        axis_->SetTickSpacing(70);
        axis_->SetRectangle({0, w, 0, numbers});
        bar_->SetRectangle({0, w, numbers, numbers + bar});
        histogramArea_ = {0, w, numbers + bar + gap, std::max(numbers + bar + gap, body)};
    }
    // About one bin every few pixels along the bar.
    const int along = layout_ == Vertical ? body : w;
    histogram_.SetBinCount(static_cast<std::size_t>(std::max(1, along / ScaledPixels(kBinPixels))));
    axis_->SetRange(static_cast<float>(lo_), static_cast<float>(hi_));
    SetNeedsRedraw(true);
}

void LegendControl::SetColorMap(const std::vector<GUI::Color>& colors, bool smooth) {
    bar_->UpdateColorMap(colors, smooth);
    SetNeedsRedraw(true);
}

bool LegendControl::SetRange(double lo, double hi) {
    if (!std::isfinite(lo) || !std::isfinite(hi) || lo == hi) {
        std::printf("LegendControl::SetRange(): %g .. %g is not a range to show.\n", lo, hi);
        return false;
    }
    lo_ = lo;
    hi_ = hi;
    histogram_.SetRange(std::min(lo, hi), std::max(lo, hi));
    axis_->SetRange(static_cast<float>(lo), static_cast<float>(hi));
    SetNeedsRedraw(true);
    return true;
}

void LegendControl::SetTitle(const std::wstring& title) {
    title_->SetText(title);
}

bool LegendControl::SetValues(const float* values, std::size_t count) {
    const bool done = histogram_.SetValues(values, count);
    SetNeedsRedraw(true);
    return done;
}
bool LegendControl::SetValues(const double* values, std::size_t count) {
    const bool done = histogram_.SetValues(values, count);
    SetNeedsRedraw(true);
    return done;
}

void LegendControl::ShowHistogram(bool show) {
    showHistogram_ = show;
    SetNeedsRedraw(true);
}
void LegendControl::SetHistogramColor(const GUI::Color& color) {
    histogramColor_ = color;
    SetNeedsRedraw(true);
}

bool LegendControl::LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) {
    area = trelvo::detail::GrownFootprint(GetRectangle(), ScaledPixels(28.f), layerWidth, layerHeight);
    return true;
}

void LegendControl::DrawCustom() {
    const std::vector<std::size_t>& counts = histogram_.Counts();
    if (!showHistogram_ || counts.empty())
        return;
    GL::GLScopedBindings hostState;
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const GUI::Geometry::Rectangle area{r.xMin + histogramArea_.xMin, r.xMin + histogramArea_.xMax,
                                        r.yMin + histogramArea_.yMin, r.yMin + histogramArea_.yMax};
    const double top = static_cast<double>(*std::max_element(counts.begin(), counts.end()));
    if (top <= 0.0 || area.Width() <= 0 || area.Height() <= 0)
        return;
    const bool vertical = layout_ == Vertical;
    const double along = vertical ? area.Height() : area.Width();
    const double depth = vertical ? area.Width() : area.Height();
    // Bin i sits beside the colours of its values: a reversed range runs the other way.
    const double span = hi_ - lo_;
    vertices_.clear();
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        double a = (histogram_.BinStart(i) - lo_) / span * along;
        double b = (histogram_.BinStart(i + 1) - lo_) / span * along;
        if (a > b)
            std::swap(a, b);
        const double length = static_cast<double>(counts[i]) / top * depth;
        if (vertical)
            trelvo::detail::ChartMarks::AppendRectangle(vertices_, float(area.xMin), float(area.yMin + a),
                                                        float(area.xMin + length), float(area.yMin + b));
        else
            trelvo::detail::ChartMarks::AppendRectangle(vertices_, float(area.xMin + a), float(area.yMin),
                                                        float(area.xMin + b), float(area.yMin + length));
    }
    marks_->Draw(vertices_, GLVertexBuffer::Triangles, histogramColor_, GetId(), 0, area);
}
