#include <trelvogui/xyplotcontrol.h>

#include "detail/chartmarks.h"
#include "detail/ownedchildren.h"

#include <trelvogui/datasetrenderer.h>
#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>

#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glvertexbuffer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace GraphicsBase;

namespace {

// Two clicks within this many milliseconds are a double click.
constexpr std::uint64_t kDoubleClick = 400;
// A wheel notch zooms by this factor.
constexpr double kNotchZoom = 0.8;
constexpr float kMarker = 7.f;

std::wstring Widened(const char* text) {
    std::wstring out;
    for (const char* c = text; *c; ++c)
        out.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*c)));
    return out;
}

} // namespace

XYPlotControl::XYPlotControl() : marker_(std::make_unique<trelvo::detail::ChartMarks>()) {
    for (GUI::Controls::Label** label : {&statistics_, &readout_}) {
        *label = new GUI::Controls::Label();
        (*label)->SetFontSize(12);
        (*label)->SetVerticalAlignment(1);
        (*label)->SetColor({230, 236, 242, 255});
        AddChild(*label);
    }
    RangeChangedSignal.connect([this](double, double, double, double) { UpdateStatistics(); });
    PlaceLabels();
}

XYPlotControl::~XYPlotControl() {
    trelvo::detail::DeleteOwnedChildren(*this, {statistics_, readout_});
}

bool XYPlotControl::Initialize() {
    const bool chart = ChartControl::Initialize();
    return marker_->Initialize() && chart;
}

void XYPlotControl::SetRectangle(GUI::Geometry::Rectangle r) {
    ChartControl::SetRectangle(r);
    PlaceLabels();
}

void XYPlotControl::PlaceLabels() {
    // Inside the plot area's top edge: the statistics, and the readout in the row below.
    const GUI::Geometry::Rectangle& r = GetControlRectangle();
    const int top = r.Height() - kTop;
    statistics_->SetRectangle({kLeft + 6, r.Width() - kRight - 6, top - 20, top - 2});
    readout_->SetRectangle({kLeft + 6, r.Width() - kRight - 6, top - 38, top - 20});
}

bool XYPlotControl::AddDataSet(DataSetRenderer* set) {
    if (!AddRenderer(set))
        return false;
    if (!first_)
        first_ = set;
    if (autoScale_)
        FitToData();
    UpdateStatistics();
    return true;
}

void XYPlotControl::RendererDataChanged(ChartRenderer* renderer) {
    ChartControl::RendererDataChanged(renderer);
    UpdateStatistics();
}

bool XYPlotControl::AutoScale() {
    const bool fitted = FitToData();
    UpdateStatistics();
    return fitted;
}

void XYPlotControl::ShowStatistics(bool show) {
    statistics_->SetVisible(show);
    SetNeedsRedraw(true);
}

MinMaxPyramid::Summary XYPlotControl::VisibleStatistics() {
    // The set may have left the chart; only one still in it counts.
    const auto& list = Renderers();
    if (!first_ || std::find(list.begin(), list.end(), first_) == list.end())
        return {};
    return first_->Statistics(XMin(), XMax());
}

void XYPlotControl::UpdateStatistics() {
    const MinMaxPyramid::Summary s = VisibleStatistics();
    char text[200];
    if (s.count == 0)
        std::snprintf(text, sizeof text, "n = 0");
    else
        std::snprintf(text, sizeof text, "n = %llu  min %.4g  max %.4g  mean %.4g  sd %.4g",
                      static_cast<unsigned long long>(s.count), s.min, s.max, s.mean, s.StandardDeviation());
    statisticsText_ = Widened(text);
    statistics_->SetText(statisticsText_);
}

bool XYPlotControl::Hover(int x, int y) {
    const ChartView view = View();
    const GUI::Geometry::Rectangle& p = view.plot;
    DataSetRenderer* best = nullptr;
    std::size_t bestIndex = DataSetRenderer::npos;
    double bestDistance = 0.0;
    if (x >= p.xMin && x < p.xMax && y >= p.yMin && y < p.yMax) {
        // The nearest sample of each set; of those, the nearest on screen.
        for (ChartRenderer* r : Renderers()) {
            auto* set = dynamic_cast<DataSetRenderer*>(r);
            if (!set)
                continue;
            const std::size_t i = set->NearestOnScreen(view, x + 0.5, y + 0.5);
            if (i == DataSetRenderer::npos)
                continue;
            const double dx = view.PixelX(set->X(i)) - x - 0.5, dy = view.PixelY(set->Y(i)) - y - 0.5;
            const double d = std::isfinite(dy) ? dx * dx + dy * dy : dx * dx + 1e12;
            if (!best || d < bestDistance) {
                best = set;
                bestIndex = i;
                bestDistance = d;
            }
        }
    }
    if (best == hoveredSet_ && bestIndex == hovered_)
        return false;
    // Only the marker's old and new squares and the readout change.
    LocalChange local(*this);
    AddLayerDamage(MarkerArea(view));
    hoveredSet_ = best;
    hovered_ = bestIndex;
    AddLayerDamage(MarkerArea(view));
    const GUI::Geometry::Rectangle& text = readout_->GetRectangle();
    AddLayerDamage({text.xMin - 2, text.xMax + 2, text.yMin - 2, text.yMax + 2});
    if (best) {
        char text[160];
        std::snprintf(text, sizeof text, "[%zu]  x %.6g  y %.6g", bestIndex, best->X(bestIndex),
                      best->Y(bestIndex));
        readoutText_ = Widened(text);
    } else {
        readoutText_.clear();
    }
    readout_->SetText(readoutText_.empty() ? L" " : readoutText_);
    SetNeedsRedraw(true);
    return true;
}

DrawFlags XYPlotControl::OnMouseHover(GUI::Event* e) {
    if (!e || !Manager())
        return DRAW_NOTHING;
    return Hover(e->x, Manager()->OverlayRow(e->y)) ? DRAW_OVERLAY : DRAW_NOTHING;
}

DrawFlags XYPlotControl::OnMouseExit(GUI::Event* e) {
    ChartControl::OnMouseExit(e);
    return Hover(-1, -1) ? DRAW_OVERLAY : DRAW_NOTHING;
}

DrawFlags XYPlotControl::OnMouseDrag(GUI::Event*, int dx, int dy) {
    const ChartView v = View();
    const GUI::Geometry::Rectangle& p = v.plot;
    if (p.Width() <= 0 || p.Height() <= 0 || (dx == 0 && dy == 0))
        return DRAW_NOTHING;
    // The data under the pointer follows it.
    SetRanges(v.DataX(p.xMin - dx), v.DataX(p.xMax - dx), v.DataY(p.yMin - dy), v.DataY(p.yMax - dy));
    return DRAW_OVERLAY;
}

DrawFlags XYPlotControl::OnClick(GUI::Event*) {
    const std::uint64_t now = GUI::Clock::Ticks();
    if (clickedOnce_ && now - lastClick_ <= kDoubleClick) {
        clickedOnce_ = false;
        AutoScale();
        return DRAW_OVERLAY;
    }
    clickedOnce_ = true;
    lastClick_ = now;
    return DRAW_NOTHING;
}

DrawFlags XYPlotControl::OnMouseWheel(GUI::Event* e, int delta) {
    if (!e || !Manager())
        return DRAW_NOTHING;
    const ChartView v = View();
    const GUI::Geometry::Rectangle& p = v.plot;
    if (p.Width() <= 0 || p.Height() <= 0)
        return DRAW_NOTHING;
    const double x = e->x, y = Manager()->OverlayRow(e->y);
    const double factor = std::pow(kNotchZoom, delta / 120.0);
    // Over the plot both ways; over an axis (beside the plot) along that axis only.
    const bool alongX = y < p.yMin || (x >= p.xMin && y < p.yMax);
    const bool alongY = x < p.xMin || (y >= p.yMin && x < p.xMax);
    auto zoom = [&](double edge, double at, bool on) { return on ? at + (edge - at) * factor : edge; };
    const bool done = SetRanges(v.DataX(zoom(p.xMin, x, alongX)), v.DataX(zoom(p.xMax, x, alongX)),
                                v.DataY(zoom(p.yMin, y, alongY)), v.DataY(zoom(p.yMax, y, alongY)));
    return done ? DRAW_OVERLAY : DRAW_NOTHING;
}

bool XYPlotControl::MarkerCentre(const ChartView& view, float& x, float& y) const {
    if (!hoveredSet_ || hovered_ >= hoveredSet_->Size())
        return false;
    const double px = view.PixelX(hoveredSet_->X(hovered_)), py = view.PixelY(hoveredSet_->Y(hovered_));
    if (!std::isfinite(px) || !std::isfinite(py) || std::fabs(px) > 1e7 || std::fabs(py) > 1e7)
        return false;
    x = static_cast<float>(px);
    y = static_cast<float>(py);
    return true;
}

GUI::Geometry::Rectangle XYPlotControl::MarkerArea(const ChartView& view) const {
    float x, y;
    if (!MarkerCentre(view, x, y))
        return {0, 0, 0, 0};
    // The square's pixels and one more on each side.
    const int h = static_cast<int>(std::ceil(kMarker / 2)) + 1;
    const int cx = static_cast<int>(std::floor(x)), cy = static_cast<int>(std::floor(y));
    return {cx - h, cx + h + 1, cy - h, cy + h + 1};
}

void XYPlotControl::DrawCustom() {
    GL::GLScopedBindings hostState;
    DrawChart();
    const ChartView v = View();
    float fx, fy;
    if (!MarkerCentre(v, fx, fy))
        return;
    vertices_.clear();
    const float h = kMarker / 2;
    trelvo::detail::ChartMarks::AppendRectangle(vertices_, fx - h, fy - h, fx + h, fy + h);
    marker_->Draw(vertices_, GLVertexBuffer::Triangles, {255, 255, 255, 255}, GetId(), 0, v.plot);
}
