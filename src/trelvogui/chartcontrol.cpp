#include <trelvogui/chartcontrol.h>

#include "detail/chartmarks.h"
#include "detail/ownedchildren.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/gui/label.h>

#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glvertexbuffer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

using namespace GraphicsBase;

ChartControl::ChartControl() : marks_(std::make_unique<trelvo::detail::ChartMarks>()) {
    SetDimsWhenDisabled(true);
    xAxis_ = new AxisControl();
    yAxis_ = new AxisControl();
    xAxis_->SetOrientation(AxisControl::AlongYMax);
    yAxis_->SetOrientation(AxisControl::AlongXMax);
    xAxis_->SetTickSpacing(80);
    yAxis_->SetTickSpacing(40);
    for (AxisControl* axis : {xAxis_, yAxis_}) {
        axis->SetAxisType(AxisControl::NiceSteps);
        axis->SetFontColor({220, 226, 234, 255});
        AddChild(axis);
    }
    title_ = new GUI::Controls::Label();
    title_->SetFontSize(15);
    title_->SetHorizontalAlignment(1);
    title_->SetVerticalAlignment(1);
    title_->SetColor({230, 236, 242, 255});
    AddChild(title_);
    Layout();
}

ChartControl::~ChartControl() {
    for (ChartRenderer* r : renderers_)
        r->chart_ = nullptr;
    trelvo::detail::DeleteOwnedChildren(*this, {xAxis_, yAxis_, title_});
}

bool ChartControl::Initialize() {
    const bool axes = xAxis_->Initialize() && yAxis_->Initialize();
    const bool plot = marks_->Initialize();
    Layout();
    return axes && plot;
}

void ChartControl::SetRectangle(GUI::Geometry::Rectangle r) {
    Base::SetRectangle(r);
    Layout();
}

void ChartControl::Layout() {
    const GUI::Geometry::Rectangle& r = GetControlRectangle();
    const int w = std::max(r.Width(), kLeft + kRight + 1), h = std::max(r.Height(), kBottom + kTop + 1);
    xAxis_->SetRectangle({kLeft, w - kRight, 0, kBottom});
    yAxis_->SetRectangle({0, kLeft, kBottom, h - kTop});
    title_->SetRectangle({kLeft, w - kRight, h - kTop + 2, h});
    UpdateAxes();
}

void ChartControl::UpdateAxes() {
    // The range goes first onto a logarithmic axis and last onto a linear one, so that neither ever
    // holds a range it cannot show.
    auto apply = [](AxisControl* axis, bool logarithmic, double a, double b) {
        if (logarithmic)
            axis->SetRange(static_cast<float>(a), static_cast<float>(b));
        axis->SetAxisType(logarithmic ? AxisControl::Logarithmic : AxisControl::NiceSteps);
        if (!logarithmic)
            axis->SetRange(static_cast<float>(a), static_cast<float>(b));
    };
    apply(xAxis_, logX_, xMin_, xMax_);
    apply(yAxis_, logY_, yMin_, yMax_);
    SetNeedsRedraw(true);
}

void ChartControl::SetNeedsRedraw(bool v) {
    if (v && localChanges_ == 0)
        damageWhole_ = true;
    Base::SetNeedsRedraw(v);
}

void ChartControl::AddLayerDamage(const GUI::Geometry::Rectangle& area) {
    if (area.Width() > 0 && area.Height() > 0 && damage_.size() < kMostDamagePieces)
        damage_.push_back(area);
    else if (area.Width() > 0 && area.Height() > 0)
        damageWhole_ = true;
}

bool ChartControl::TakeLayerDamage(std::vector<GUI::Geometry::Rectangle>& areas) {
    const bool confined = !damageWhole_;
    if (confined)
        areas.insert(areas.end(), damage_.begin(), damage_.end());
    damageWhole_ = false;
    damage_.clear();
    return confined;
}

void ChartControl::SetTitle(const std::wstring& title) {
    title_->SetText(title);
}

bool ChartControl::AddRenderer(ChartRenderer* renderer) {
    if (!renderer || renderer->chart_) {
        std::printf("ChartControl::AddRenderer(): %s.\n",
                    renderer ? "The renderer is in a chart already" : "No renderer given");
        return false;
    }
    renderer->chart_ = this;
    renderers_.push_back(renderer);
    SetNeedsRedraw(true);
    return true;
}

bool ChartControl::RemoveRenderer(ChartRenderer* renderer) {
    auto it = std::find(renderers_.begin(), renderers_.end(), renderer);
    if (it == renderers_.end())
        return false;
    renderers_.erase(it);
    renderer->chart_ = nullptr;
    SetNeedsRedraw(true);
    return true;
}

bool ChartControl::SetRanges(double x0, double x1, double y0, double y1) {
    auto usable = [](double a, double b, bool logarithmic) {
        return std::isfinite(a) && std::isfinite(b) && a != b && (!logarithmic || (a > 0.0 && b > 0.0));
    };
    if (!usable(x0, x1, logX_) || !usable(y0, y1, logY_)) {
        std::printf("ChartControl::SetRanges(): x %g .. %g, y %g .. %g is not a range to show%s.\n", x0, x1,
                    y0, y1, logX_ || logY_ ? " (logarithmic axes need positive ranges)" : "");
        return false;
    }
    if (x0 == xMin_ && x1 == xMax_ && y0 == yMin_ && y1 == yMax_)
        return true;
    xMin_ = x0, xMax_ = x1, yMin_ = y0, yMax_ = y1;
    UpdateAxes();
    RangeChangedSignal(xMin_, xMax_, yMin_, yMax_);
    return true;
}

void ChartControl::SetLogX(bool on) {
    SetLogarithmic(logX_, xMin_, xMax_, on);
}

void ChartControl::SetLogY(bool on) {
    SetLogarithmic(logY_, yMin_, yMax_, on);
}

void ChartControl::SetLogarithmic(bool& flag, double& lo, double& hi, bool on) {
    if (on == flag)
        return;
    flag = on;
    if (on && !(lo > 0.0 && hi > 0.0) && !FitToData())
        lo = 1.0, hi = 10.0;
    UpdateAxes();
}

namespace {

// Widens [lo, hi] by the margin and out to whole nice steps (or whole decades).
void NiceBounds(double& lo, double& hi, double margin, bool logarithmic, int wanted) {
    if (logarithmic) {
        double a = std::log10(lo), b = std::log10(hi);
        const double pad = (b - a) * margin;
        a = std::floor(a - pad);
        b = std::ceil(b + pad);
        if (a == b)
            b = a + 1.0;
        lo = std::pow(10.0, a);
        hi = std::pow(10.0, b);
        return;
    }
    if (lo == hi) {
        // A single value: a unit around it, or a tenth of its size.
        const double half = lo == 0.0 ? 0.5 : std::fabs(lo) * 0.1;
        lo -= half;
        hi += half;
    }
    const double pad = (hi - lo) * margin;
    lo -= pad;
    hi += pad;
    std::vector<double> values;
    std::vector<std::string> texts;
    // Bounds on a finer grid than the ticks', so that rounding out wastes little of the plot.
    AxisControl::NiceTicks(lo, hi, wanted * 4, values, texts);
    if (values.size() >= 2) {
        const double step = values[1] - values[0];
        lo = std::floor(lo / step + 1e-9) * step;
        hi = std::ceil(hi / step - 1e-9) * step;
    }
}

} // namespace

bool ChartControl::FitToData(double margin) {
    double x0 = std::numeric_limits<double>::infinity(), x1 = -x0, y0 = x0, y1 = -x0;
    bool any = false;
    for (ChartRenderer* r : renderers_) {
        double a, b, c, d;
        if (!r->Bounds(logX_, logY_, a, b, c, d))
            continue;
        any = true;
        x0 = std::min(x0, a), x1 = std::max(x1, b), y0 = std::min(y0, c), y1 = std::max(y1, d);
    }
    if (!any)
        return false;
    const GUI::Geometry::Rectangle plot = PlotArea();
    NiceBounds(x0, x1, margin, logX_, std::max(1, plot.Width() / std::max(1, xAxis_->GetTickSpacing())));
    NiceBounds(y0, y1, margin, logY_, std::max(1, plot.Height() / std::max(1, yAxis_->GetTickSpacing())));
    return SetRanges(x0, x1, y0, y1);
}

void ChartControl::SetFollowData(bool on) {
    followData_ = on;
    if (on)
        FitToData();
}

void ChartControl::RendererDataChanged(ChartRenderer*) {
    if (followData_)
        FitToData();
    SetNeedsRedraw(true);
}

void ChartControl::ShowGrid(bool show) {
    grid_ = show;
    SetNeedsRedraw(true);
}
void ChartControl::SetGridColor(const GUI::Color& color) {
    gridColor_ = color;
    SetNeedsRedraw(true);
}
void ChartControl::SetBackgroundColor(const GUI::Color& color) {
    background_ = color;
    SetNeedsRedraw(true);
}

GUI::Geometry::Rectangle ChartControl::PlotArea() {
    const GUI::Geometry::Rectangle& r = GetRectangle();
    return {r.xMin + kLeft, std::max(r.xMin + kLeft, r.xMax - kRight), r.yMin + kBottom,
            std::max(r.yMin + kBottom, r.yMax - kTop)};
}

ChartView ChartControl::View() {
    ChartView view;
    view.plot = PlotArea();
    view.xMin = xMin_, view.xMax = xMax_, view.yMin = yMin_, view.yMax = yMax_;
    view.xLog = logX_, view.yLog = logY_;
    return view;
}

bool ChartControl::LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) {
    area = trelvo::detail::GrownFootprint(GetRectangle(), 16, layerWidth, layerHeight);
    return true;
}

void ChartControl::DrawCustom() {
    GL::GLScopedBindings hostState;
    DrawChart();
}

void ChartControl::DrawChart() {
    const ChartView view = View();
    const GUI::Geometry::Rectangle& p = view.plot;
    if (p.Width() <= 0 || p.Height() <= 0)
        return;
    // The margins keep the picture behind them but carry the chart's id, so that a wheel over the
    // axes reaches the chart: four strips around the plot area, so that no pixel is drawn twice.
    const GUI::Geometry::Rectangle& whole = GetRectangle();
    vertices_.clear();
    auto strip = [this](int x0, int x1, int y0, int y1) {
        if (x1 > x0 && y1 > y0)
            trelvo::detail::ChartMarks::AppendRectangle(vertices_, float(x0), float(y0), float(x1),
                                                        float(y1));
    };
    strip(whole.xMin, whole.xMax, whole.yMin, p.yMin);
    strip(whole.xMin, whole.xMax, p.yMax, whole.yMax);
    strip(whole.xMin, p.xMin, p.yMin, p.yMax);
    strip(p.xMax, whole.xMax, p.yMin, p.yMax);
    marks_->Draw(vertices_, GLVertexBuffer::Triangles, {0, 0, 0, 0}, GetId(), 0, whole);
    vertices_.clear();
    trelvo::detail::ChartMarks::AppendRectangle(vertices_, float(p.xMin), float(p.yMin), float(p.xMax),
                                                float(p.yMax));
    marks_->Draw(vertices_, GLVertexBuffer::Triangles, background_, GetId(), 0, p);
    if (grid_) {
        // Pixel centres, on the very pixels the axes put their tick marks on.
        vertices_.clear();
        for (float f : xAxis_->GetTickFractions()) {
            const float x = float(p.xMin) + std::trunc(float(p.Width()) * f) + 0.5f;
            vertices_.insert(vertices_.end(), {x, float(p.yMin), x, float(p.yMax)});
        }
        for (float f : yAxis_->GetTickFractions()) {
            const float y = float(p.yMin) + std::trunc(float(p.Height()) * f) + 0.5f;
            vertices_.insert(vertices_.end(), {float(p.xMin), y, float(p.xMax), y});
        }
        marks_->Draw(vertices_, GLVertexBuffer::Lines, gridColor_, GetId(), 0, p);
    }
    for (std::size_t k = 0; k < renderers_.size(); ++k)
        renderers_[k]->Draw(view, GetId(), static_cast<unsigned>(k + 1));
}
