// Charts drawn into the overlay's layers: decimated lines against every segment, a spike among
// 10^7 samples at every zoom, the ids of the plot and its data sets, clipping, histogram bars, and
// the pictures bad input gives.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/chartcontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/histogramrenderer.h>
#include <trelvogui/legendcontrol.h>
#include <trelvogui/xyplotcontrol.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <vector>

using namespace GraphicsBase;

using trelvo::test::LayerPixels;

namespace {

constexpr int kW = 640, kH = 400;
const GUI::Color kLine{255, 220, 40, 255};
const GUI::Color kOther{60, 230, 120, 255};

bool Is(const LayerPixels& l, int x, int y, const GUI::Color& c) {
    const auto p = l.Color(x, y);
    return p[0] == c.r && p[1] == c.g && p[2] == c.b;
}

class ChartGLTest : public trelvo::test::OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        manager->Resize(kW, kH);
        ASSERT_TRUE(chart.Initialize());
        chart.SetRectangle({0, kW, 0, kH});
        chart.ShowGrid(false);
        chart.Register(manager);
    }
    void TearDown() override {
        chart.Unregister();
        OverlayTest::TearDown();
    }
    LayerPixels Draw() {
        manager->UpdateLayers();
        return trelvo::test::ReadLayers(*manager, kW, kH);
    }
    ChartControl chart;
};

} // namespace

TEST_F(ChartGLTest, DecimatedDrawingGivesThePixelsOfEverySample) {
    // A random walk with noise: 10^5 samples over 554 columns, about 180 a column; drawn as a line, and
    // as points with x given in sorted and in shuffled order (reduced through the x-sorted index).
    std::mt19937 rng(3);
    std::normal_distribution<double> step(0.0, 1.0);
    std::vector<double> y(100000), x(y.size());
    std::iota(x.begin(), x.end(), 0.0);
    double v = 0.0;
    for (double& s : y)
        s = (v += step(rng)) + 8.0 * step(rng);
    std::vector<std::size_t> shuffled(y.size());
    std::iota(shuffled.begin(), shuffled.end(), std::size_t(0));
    std::shuffle(shuffled.begin(), shuffled.end(), rng);
    std::vector<double> xs(y.size()), ys(y.size());
    for (std::size_t i = 0; i < y.size(); ++i) {
        xs[i] = x[shuffled[i]];
        ys[i] = y[shuffled[i]];
    }
    struct Case {
        const char* name;
        DataSetRenderer::Style style;
        bool shuffledX;
    };
    for (const Case& c :
         {Case{"line", DataSetRenderer::Line, false}, Case{"points", DataSetRenderer::Points, false},
          Case{"points, unsorted x", DataSetRenderer::Points, true}}) {
        SCOPED_TRACE(c.name);
        DataSetRenderer set;
        ASSERT_TRUE(set.Initialize());
        set.SetColor(kLine);
        set.SetStyle(c.style);
        ASSERT_TRUE(c.shuffledX ? set.SetData(xs.data(), ys.data(), y.size())
                                : set.SetData(y.data(), y.size()));
        chart.AddRenderer(&set);
        ASSERT_TRUE(chart.FitToData());
        const GUI::Geometry::Rectangle plot = chart.PlotArea();
        const double fullX0 = chart.XMin(), fullX1 = chart.XMax();
        struct View {
            const char* name;
            double x0, x1;
        };
        const View views[] = {{"everything", fullX0, fullX1},
                              {"zoomed in", 41234.5, 63012.25},
                              {"reversed", fullX1, fullX0},
                              {"a few samples a column", 50000.0, 50900.0}};
        for (const View& view : views) {
            SCOPED_TRACE(view.name);
            ASSERT_TRUE(chart.SetXRange(view.x0, view.x1));
            set.SetDecimation(true);
            const LayerPixels decimated = Draw();
            const std::size_t drawn = set.DrawnPathVertices();
            if (c.style == DataSetRenderer::Line) {
                EXPECT_LE(drawn, static_cast<size_t>(4 * plot.Width() + 2));
            } else {
                // One mark per occupied pixel where the data are dense.
                std::set<std::pair<int, int>> occupied;
                const ChartView frame = chart.View();
                for (std::size_t i = 0; i < y.size(); ++i) {
                    const double px = std::floor(frame.PixelX(x[i])), py = std::floor(frame.PixelY(y[i]));
                    if (px >= plot.xMin && px < plot.xMax && py >= plot.yMin && py < plot.yMax)
                        occupied.emplace(int(px), int(py));
                }
                if (std::fabs(view.x1 - view.x0) > 4.0 * plot.Width()) {
                    EXPECT_NEAR(double(drawn), double(occupied.size()), 2.0 + occupied.size() / 500.0);
                }
            }
            set.SetDecimation(false);
            const LayerPixels full = Draw();
            int differing = 0, lit = 0;
            for (int py = plot.yMin; py < plot.yMax; ++py)
                for (int px = plot.xMin; px < plot.xMax; ++px) {
                    differing += Is(decimated, px, py, kLine) != Is(full, px, py, kLine);
                    lit += Is(full, px, py, kLine);
                }
            // Rasterisation rules differ where a column's extremes meet its neighbours' segments.
            const int allowed = plot.Width() * plot.Height() / 1000;
            EXPECT_LE(differing, allowed) << lit << " lit pixels";
            EXPECT_GT(lit, plot.Width()) << "the data are drawn";
            if (differing > allowed) {
                trelvo::test::SaveLayer(decimated, std::string("chart-decimated-") + c.name + view.name);
                trelvo::test::SaveLayer(full, std::string("chart-full-") + c.name + view.name);
            }
        }
        chart.RemoveRenderer(&set);
    }
}

TEST_F(ChartGLTest, ASpikeAmongTenMillionSamplesShowsAtEveryZoom) {
    const std::size_t n = 10000000, spike = 7654321;
    std::vector<float> y(n, 0.f);
    for (std::size_t i = 0; i < n; ++i)
        y[i] = static_cast<float>(std::sin(static_cast<double>(i) * 1e-3));
    y[spike] = 100.f;
    DataSetRenderer set;
    ASSERT_TRUE(set.Initialize());
    set.SetColor(kLine);
    ASSERT_TRUE(set.SetData(y.data(), n));
    chart.AddRenderer(&set);
    ASSERT_TRUE(chart.SetYRange(-10.0, 110.0));
    const GUI::Geometry::Rectangle plot = chart.PlotArea();
    double width = static_cast<double>(n);
    for (int zoom = 0; width > 20.0; ++zoom, width /= 7.3) {
        // The spike anywhere in the view: centred, near either edge.
        for (double where : {0.5, 0.03, 0.97}) {
            SCOPED_TRACE("width " + std::to_string(width) + " at " + std::to_string(where));
            const double x0 = static_cast<double>(spike) - where * width;
            ASSERT_TRUE(chart.SetXRange(x0, x0 + width));
            const LayerPixels l = Draw();
            EXPECT_LE(set.DrawnPathVertices(), static_cast<size_t>(4 * plot.Width() + 2));
            const ChartView view = chart.View();
            const int column = static_cast<int>(std::floor(view.PixelX(static_cast<double>(spike))));
            const int top = static_cast<int>(view.PixelY(95.0));
            bool seen = false;
            for (int px = column - 1; px <= column + 1 && !seen; ++px)
                for (int py = top; py < plot.yMax && !seen; ++py)
                    seen = Is(l, px, py, kLine);
            EXPECT_TRUE(seen) << "no line pixel above 95 near column " << column;
            if (!seen)
                trelvo::test::SaveLayer(l, "chart-spike-" + std::to_string(zoom));
        }
    }
}

TEST_F(ChartGLTest, DataSetsWriteTheirPartIdsAndStayInsideThePlotArea) {
    // Two flat lines that run far beyond the view on both sides.
    const double x[] = {-1e9, 1e9};
    const double a[] = {0.25, 0.25}, b[] = {0.75, 0.75};
    DataSetRenderer first, second;
    for (DataSetRenderer* s : {&first, &second}) {
        ASSERT_TRUE(s->Initialize());
        s->SetLineWidth(3.f);
    }
    first.SetColor(kLine);
    second.SetColor(kOther);
    first.SetData(x, a, 2);
    second.SetData(x, b, 2);
    chart.AddRenderer(&first);
    chart.AddRenderer(&second);
    ASSERT_TRUE(chart.SetRanges(0.0, 1.0, 0.0, 1.0));
    const LayerPixels l = Draw();
    const ChartView view = chart.View();
    const int cx = (view.plot.xMin + view.plot.xMax) / 2;
    const int ya = static_cast<int>(view.PixelY(0.25)), yb = static_cast<int>(view.PixelY(0.75));
    EXPECT_TRUE(Is(l, cx, ya, kLine));
    EXPECT_TRUE(Is(l, cx, yb, kOther));
    EXPECT_EQ(l.Pid(cx, ya), chart.GetId());
    EXPECT_EQ(l.Sid(cx, ya), 1u);
    EXPECT_EQ(l.Sid(cx, yb), 2u);
    EXPECT_EQ(l.Pid(cx, (ya + yb) / 2), chart.GetId()) << "the plot area is the chart's";
    EXPECT_EQ(l.Sid(cx, (ya + yb) / 2), 0u);
    // Clipped: nothing of the lines left or right of the plot area.
    for (int px : {view.plot.xMin - 1, view.plot.xMin - 10, view.plot.xMax, view.plot.xMax + 5}) {
        EXPECT_FALSE(Is(l, px, ya, kLine)) << px;
        EXPECT_FALSE(Is(l, px, yb, kOther)) << px;
    }
    // A hit on the line says which data set it is.
    unsigned pid = 0, sid = 0;
    ASSERT_TRUE(manager->HitDetect(cx, yb, &pid, &sid));
    EXPECT_EQ(sid, 2u);
    chart.RemoveRenderer(&second);
    EXPECT_FALSE(Is(Draw(), cx, yb, kOther)) << "a removed renderer is gone from the picture";
}

TEST_F(ChartGLTest, HistogramBarsReachTheirCounts) {
    std::vector<double> values;
    const int counts[] = {3, 10, 0, 7, 1};
    for (int bin = 0; bin < 5; ++bin)
        for (int k = 0; k < counts[bin]; ++k)
            values.push_back(bin + 0.5);
    values.push_back(0.0);
    values.push_back(5.0); // the upper end falls into the last bin
    HistogramRenderer h;
    ASSERT_TRUE(h.Initialize());
    h.SetColor(kOther);
    ASSERT_TRUE(h.SetValues(values.data(), values.size()));
    ASSERT_TRUE(h.SetBinCount(5));
    chart.AddRenderer(&h);
    ASSERT_TRUE(chart.SetRanges(0.0, 5.0, 0.0, 12.0));
    const LayerPixels l = Draw();
    const ChartView view = chart.View();
    const int expected[] = {4, 10, 0, 7, 2};
    for (int bin = 0; bin < 5; ++bin) {
        SCOPED_TRACE(bin);
        EXPECT_EQ(h.Counts()[static_cast<size_t>(bin)], static_cast<size_t>(expected[bin]));
        const int px = static_cast<int>(view.PixelX(bin + 0.5));
        int top = view.plot.yMin - 1;
        for (int py = view.plot.yMin; py < view.plot.yMax; ++py)
            if (Is(l, px, py, kOther))
                top = py;
        EXPECT_NEAR(top + 1, view.PixelY(expected[bin]), 1.0);
    }
}

TEST_F(ChartGLTest, BadInputGivesASensiblePictureAndNoGLError) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double one[] = {2.0}, gaps[] = {nan, nan, nan},
                 mixed[] = {-3.0, 0.0, 5.0, 8.0, nan, 50.0, 60.0, -1.0, 500.0};
    const double unsortedX[] = {3.0, 1.0, 2.0, 0.5, 4.0, 2.5, 1.5, 7.0, 6.0};
    DataSetRenderer empty, single, allNaN, signedSet, scatter;
    for (DataSetRenderer* s : {&empty, &single, &allNaN, &signedSet, &scatter}) {
        ASSERT_TRUE(s->Initialize());
        chart.AddRenderer(s);
    }
    single.SetData(one, 1);
    allNaN.SetData(gaps, 3);
    signedSet.SetData(mixed, 9);
    signedSet.SetColor(kLine);
    scatter.SetData(unsortedX, mixed, 9);
    scatter.SetStyle(DataSetRenderer::Points);
    for (auto style : {DataSetRenderer::Line, DataSetRenderer::Steps, DataSetRenderer::Bars}) {
        signedSet.SetStyle(style);
        ASSERT_TRUE(chart.FitToData());
        Draw();
        ASSERT_TRUE(chart.SetRanges(chart.XMax(), chart.XMin(), chart.YMax(), chart.YMin())); // reversed
        Draw();
    }
    signedSet.SetStyle(DataSetRenderer::Line);
    testing::internal::CaptureStdout();
    chart.SetLogY(true);
    Draw();
    chart.SetXRange(0.0, 9.0);
    Draw();
    const std::string output = testing::internal::GetCapturedStdout();
    size_t said = 0;
    for (size_t at = output.find("not positive"); at != std::string::npos;
         at = output.find("not positive", at + 1))
        ++said;
    EXPECT_EQ(said, 2u) << "once for each of the two sets with such samples: " << output;
    // The positive samples still draw.
    const LayerPixels l = Draw();
    const ChartView view = chart.View();
    int lit = 0;
    for (int py = view.plot.yMin; py < view.plot.yMax; ++py)
        lit += Is(l, static_cast<int>(view.PixelX(5.5)), py, kLine);
    EXPECT_GT(lit, 0);

    // A line through more unsorted x than it joins in their own order is left out, said once.
    std::vector<double> xs(DataSetRenderer::kMostUnsortedLine + 1), ys(xs.size(), 1.0);
    for (std::size_t i = 0; i < xs.size(); ++i)
        xs[i] = static_cast<double>((i * 7919) % xs.size());
    DataSetRenderer curve;
    ASSERT_TRUE(curve.Initialize());
    ASSERT_TRUE(curve.SetData(xs.data(), ys.data(), xs.size()));
    chart.AddRenderer(&curve);
    testing::internal::CaptureStdout();
    for (int frame = 0; frame < 2; ++frame) {
        chart.SetNeedsRedraw(true);
        Draw();
    }
    const std::string refused = testing::internal::GetCapturedStdout();
    EXPECT_EQ(refused.find("x is not sorted"), refused.rfind("x is not sorted")) << refused;
    EXPECT_NE(refused.find("x is not sorted"), std::string::npos) << refused;
    EXPECT_EQ(curve.DrawnPathVertices(), 0u);
    chart.RemoveRenderer(&curve);
}

namespace {

class XYPlotGLTest : public trelvo::test::OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        manager->Resize(kW, kH);
        ASSERT_TRUE(plot.Initialize());
        ASSERT_TRUE(set.Initialize());
        plot.SetRectangle({0, kW, 0, kH});
        plot.Register(manager);
        plot.RangeChangedSignal.connect([this](double, double, double, double) { ++changes; });
    }
    void TearDown() override {
        plot.RemoveRenderer(&set);
        plot.Unregister();
        OverlayTest::TearDown();
    }
    /// Pointer events at overlay pixels (y up), as a host sends them.
    DrawFlags MoveTo(int x, int y, int buttons = 0) {
        const DrawFlags f = Move(x, kH - y, lastX, kH - lastY, buttons);
        lastX = x, lastY = y;
        return f;
    }
    DrawFlags Wheel(int delta) {
        VX_UI::MouseWheelEvent e;
        e.delta = delta;
        return manager->mouseWheel(&e);
    }
    XYPlotControl plot;
    DataSetRenderer set;
    int changes = 0;
    int lastX = 0, lastY = 0;
};

} // namespace

TEST_F(XYPlotGLTest, HoverDragWheelAndDoubleClickGoThroughTheManager) {
    // Unsorted x with gaps: the point index must still find the nearest sample.
    std::mt19937 rng(21);
    std::uniform_real_distribution<double> u(0.0, 100.0);
    std::vector<double> x(20000), y(20000);
    for (size_t i = 0; i < x.size(); ++i) {
        x[i] = u(rng);
        y[i] = i % 97 == 0 ? std::nan("") : std::sin(x[i] * 0.2) * 10.0;
    }
    set.SetStyle(DataSetRenderer::Points);
    ASSERT_TRUE(set.SetData(x.data(), y.data(), x.size()));
    ASSERT_TRUE(plot.AddDataSet(&set));
    manager->UpdateLayers();
    const double fitX0 = plot.XMin(), fitX1 = plot.XMax();
    EXPECT_LE(fitX0, 0.0);
    EXPECT_GE(fitX1, 100.0);

    // Hover: the readout names the sample nearest in x to the pointer.
    ChartView v = plot.View();
    const int hx = (v.plot.xMin + v.plot.xMax) / 2 + 7, hy = (v.plot.yMin + v.plot.yMax) / 2;
    MoveTo(hx, hy);
    MoveTo(hx, hy + 1);
    ASSERT_NE(plot.HoveredIndex(), DataSetRenderer::npos);
    const double at = v.DataX(hx + 0.5);
    double best = 1e300;
    for (size_t i = 0; i < x.size(); ++i)
        if (std::isfinite(y[i]))
            best = std::min(best, std::fabs(x[i] - at));
    EXPECT_EQ(std::fabs(x[plot.HoveredIndex()] - at), best);
    EXPECT_NE(plot.ReadoutText().find(L"[" + std::to_wstring(plot.HoveredIndex()) + L"]"),
              std::wstring::npos);

    // Statistics of what is in view, against brute force.
    auto expectStatistics = [&] {
        MinMaxPyramid::Summary s;
        for (size_t i = 0; i < x.size(); ++i)
            if (x[i] >= std::min(plot.XMin(), plot.XMax()) && x[i] <= std::max(plot.XMin(), plot.XMax()))
                s.Add(y[i]);
        const MinMaxPyramid::Summary shown = plot.VisibleStatistics();
        EXPECT_EQ(shown.count, s.count);
        EXPECT_NEAR(shown.mean, s.mean, 1e-9);
        EXPECT_NE(plot.StatisticsText().find(L"n = " + std::to_wstring(s.count)), std::wstring::npos);
    };
    expectStatistics();

    // A drag pans: the data under the pointer follows it.
    const int before = changes;
    const double grabbed = v.DataX(hx);
    Press(hx, kH - (hy + 1));
    MoveTo(hx + 40, hy + 1, 1);
    now += 500;
    Release(hx + 40, kH - (hy + 1));
    EXPECT_GT(changes, before);
    v = plot.View();
    EXPECT_NEAR(v.DataX(hx + 40), grabbed, 1e-9 * (fitX1 - fitX0));
    expectStatistics();

    // The wheel zooms about the pointer; it reaches the plot through the manager.
    MoveTo(hx, hy);
    const double under = v.DataX(hx), width = plot.XMax() - plot.XMin();
    EXPECT_NE(Wheel(120), DRAW_NOTHING);
    v = plot.View();
    EXPECT_NEAR(v.DataX(hx), under, 1e-9 * width);
    EXPECT_NEAR(plot.XMax() - plot.XMin(), width * 0.8, 1e-9 * width);
    // Over the x axis's numbers (a child of the plot) the wheel zooms x only.
    const double yWidth = plot.YMax() - plot.YMin();
    MoveTo(hx, v.plot.yMin - 20);
    EXPECT_NE(Wheel(-120), DRAW_NOTHING);
    EXPECT_NEAR(plot.XMax() - plot.XMin(), width, 1e-9 * width);
    EXPECT_DOUBLE_EQ(plot.YMax() - plot.YMin(), yWidth);
    // Outside every control the wheel is not consumed.
    plot.SetRectangle({0, kW / 2, 0, kH / 2});
    manager->UpdateLayers();
    MoveTo(kW - 5, kH - 5);
    EXPECT_EQ(Wheel(120), DRAW_NOTHING);
    plot.SetRectangle({0, kW, 0, kH});
    manager->UpdateLayers();

    // A double click fits the data again.
    v = plot.View();
    Click(hx, hy);
    now += 100;
    Click(hx, hy);
    EXPECT_DOUBLE_EQ(plot.XMin(), fitX0);
    EXPECT_DOUBLE_EQ(plot.XMax(), fitX1);
}

TEST_F(XYPlotGLTest, LegendBarsStandBesideTheColoursOfTheirValuesEitherWay) {
    plot.SetVisible(false);
    std::vector<double> values(150, 0.25);
    std::fill(values.begin() + 100, values.end(), 0.75); // 100 at 0.25, 50 at 0.75
    LegendControl legend;
    ASSERT_TRUE(legend.Initialize());
    legend.SetColorMap({{0, 0, 255, 255}, {255, 0, 0, 255}}, true);
    ASSERT_TRUE(legend.SetRange(0.0, 1.0));
    ASSERT_TRUE(legend.SetValues(values.data(), values.size()));
    legend.SetHistogramColor(kOther);
    legend.SetTitle(L"Value");
    legend.Register(manager);
    for (auto layout : {LegendControl::Vertical, LegendControl::Horizontal}) {
        SCOPED_TRACE(layout);
        legend.SetLayout(layout);
        legend.SetRectangle({100, 400, 100, 340});
        manager->UpdateLayers();
        const LayerPixels l = trelvo::test::ReadLayers(*manager, kW, kH);
        const bool vertical = layout == LegendControl::Vertical;
        // Walk from the bar outwards across the histogram at each value's place.
        const auto& bar = legend.Bar()->GetRectangle();
        auto length = [&](double value) {
            int n = 0;
            for (int k = 2; k < 300; ++k) {
                const int x = vertical ? bar.xMax + k : bar.xMin + static_cast<int>(value * bar.Width());
                const int y = vertical ? bar.yMin + static_cast<int>(value * bar.Height()) : bar.yMax + k;
                if (x >= kW || y >= kH)
                    break;
                if (Is(l, x, y, kOther)) {
                    ++n;
                    EXPECT_EQ(l.Pid(x, y), legend.GetId());
                }
            }
            return n;
        };
        const int full = length(0.25), half = length(0.75);
        EXPECT_GT(full, 40);
        EXPECT_NEAR(half, full / 2.0, 2.0);
        EXPECT_EQ(length(0.5), 0);
        EXPECT_EQ(l.Pid((bar.xMin + bar.xMax) / 2, (bar.yMin + bar.yMax) / 2), legend.Bar()->GetId());
        EXPECT_EQ(legend.Axis()->GetAxisType(), AxisControl::NiceSteps);
        EXPECT_EQ(legend.Axis()->GetNumberLabels().front()->GetText(), L"0");
    }
    testing::internal::CaptureStdout();
    EXPECT_FALSE(legend.SetRange(1.0, 1.0));
    EXPECT_NE(testing::internal::GetCapturedStdout().find("LegendControl::SetRange()"), std::string::npos);
    legend.Unregister();
}
