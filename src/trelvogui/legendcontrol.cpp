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
constexpr int kTitle = 34;   // title row on top, clear of the top number, which overhangs the bar
constexpr int kNumbers = 62; // the axis: numbers and band beside the bar
constexpr int kBar = 22;     // the bar's thickness
constexpr int kGap = 3;      // between the bar and the histogram
constexpr int kBinPixels = 4;
} // namespace

LegendControl::LegendControl() : marks_(std::make_unique<trelvo::detail::ChartMarks>()) {
    SetDimsWhenDisabled(true);
    bar_ = new GUI::Controls::ColorBar();
    axis_ = new AxisControl();
    axis_->SetAxisType(AxisControl::NiceSteps);
    axis_->SetFontColor({230, 236, 242, 255});
    title_ = new GUI::Controls::Label();
    title_->SetFontSize(15);
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

void LegendControl::Arrange() {
    const GUI::Geometry::Rectangle& r = GetControlRectangle();
    const int w = std::max(r.Width(), 1), h = std::max(r.Height(), kTitle + 1);
    const int body = h - kTitle;
    title_->SetRectangle({0, w, body + 12, h});
    if (layout_ == Vertical) {
        axis_->SetOrientation(AxisControl::AlongXMax);
        axis_->SetTickSpacing(40);
        axis_->SetRectangle({0, kNumbers, 0, body});
        bar_->SetRectangle({kNumbers, kNumbers + kBar, 0, body});
        histogramArea_ = {kNumbers + kBar + kGap, std::max(kNumbers + kBar + kGap, w), 0, body};
    } else {
        const int numbers = 36;
        axis_->SetOrientation(AxisControl::AlongYMax);
        axis_->SetTickSpacing(70);
        axis_->SetRectangle({0, w, 0, numbers});
        bar_->SetRectangle({0, w, numbers, numbers + kBar});
        histogramArea_ = {0, w, numbers + kBar + kGap, std::max(numbers + kBar + kGap, body)};
    }
    // About one bin every few pixels along the bar.
    const int along = layout_ == Vertical ? body : w;
    histogram_.SetBinCount(static_cast<std::size_t>(std::max(1, along / kBinPixels)));
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
    area = trelvo::detail::GrownFootprint(GetRectangle(), 28, layerWidth, layerHeight);
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
