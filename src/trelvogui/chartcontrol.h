#pragma once
// A chart: a plot area with an x and a y axis, grid lines, a title and renderers drawing data in it.

#include <trelvogui/chartrenderer.h>
#include <trelvogui/gui/controlbase.h>

#include <boost/signals2/signal.hpp>

#include <memory>
#include <string>
#include <vector>

class AxisControl;
namespace GUI::Controls {
class Label;
}
namespace trelvo::detail {
class ChartMarks;
}

/// The plot area fills the rectangle less room for the axes (left and bottom) and the title (top).
/// The chart owns its two axes (children, nice ticks by default) and its title label; it does not
/// own its renderers. The plot area writes the chart's id with part id 0; renderer k (from 0, in the
/// order added) writes part id k + 1, so a hit says which data set is under the pointer. Renderers
/// draw clipped to the plot area.
class TRELVOGUI_EXPORT ChartControl : public GUI::Controls::Base {
public:
    /// Fires with the new x and y ranges after each change of either, so hosts can link charts.
    boost::signals2::signal<void(double, double, double, double)> RangeChangedSignal;

    ChartControl();
    ~ChartControl() override;

    /// With the GL context current: the axes' and the plot area's programs. False when one fails.
    virtual bool Initialize();

    void DrawCustom() override;
    /// The rectangle and a margin: the numbers at the ends of the axes reach a little beyond the rectangle. A
    /// root chart is then redrawn only there when it changes.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    /// Lays the plot area, axes and title out for the new rectangle.
    void SetRectangle(GUI::Geometry::Rectangle r) override;
    /// A redraw request from the chart or any part of it counts as a change of the whole chart, except
    /// inside a LocalChange, whose areas the chart names itself.
    void SetNeedsRedraw(bool v) override;
    bool TakeLayerDamage(std::vector<GUI::Geometry::Rectangle>& areas) override;

    AxisControl* XAxis() { return xAxis_; }
    AxisControl* YAxis() { return yAxis_; }
    GUI::Controls::Label* TitleLabel() { return title_; }
    void SetTitle(const std::wstring& title);

    /// Adds a renderer on top of those added before (not owned). False for null or one already in a
    /// chart.
    bool AddRenderer(ChartRenderer* renderer);
    bool RemoveRenderer(ChartRenderer* renderer);
    const std::vector<ChartRenderer*>& Renderers() const { return renderers_; }

    /// Shown ranges; either may be reversed. Refused with a message when not finite, of zero width,
    /// or not positive on a logarithmic axis.
    bool SetRanges(double x0, double x1, double y0, double y1);
    bool SetXRange(double x0, double x1) { return SetRanges(x0, x1, yMin_, yMax_); }
    bool SetYRange(double y0, double y1) { return SetRanges(xMin_, xMax_, y0, y1); }
    double XMin() const { return xMin_; }
    double XMax() const { return xMax_; }
    double YMin() const { return yMin_; }
    double YMax() const { return yMax_; }
    /// Logarithmic axes; a range that is not positive then becomes the data's positive extent (or
    /// 1 .. 10 without such data).
    void SetLogX(bool on);
    void SetLogY(bool on);
    bool LogX() const { return logX_; }
    bool LogY() const { return logY_; }
    /// Ranges that hold every renderer's data with `margin` (a fraction of the extent) on each side,
    /// widened to whole tick steps (whole decades on logarithmic axes). False, ranges unchanged,
    /// when no renderer has data.
    bool FitToData(double margin = 0.05);

    void ShowGrid(bool show);
    void SetGridColor(const GUI::Color& color);
    void SetBackgroundColor(const GUI::Color& color);

    /// With true, the ranges are fitted to the data (FitToData) whenever a renderer's data change;
    /// off by default, so that a host's ranges stay where it put them.
    void SetFollowData(bool on);
    bool FollowData() const { return followData_; }

    /// The plot area in overlay pixels, and the mapping of the current frame.
    GUI::Geometry::Rectangle PlotArea();
    ChartView View();

protected:
    /// While one lives, redraw requests are small changes whose areas the chart adds with
    /// AddLayerDamage (a hover marker, a readout), so that the layers are redrawn only there.
    class LocalChange {
    public:
        explicit LocalChange(ChartControl& chart) : chart_(chart) { ++chart_.localChanges_; }
        ~LocalChange() { --chart_.localChanges_; }
        LocalChange(const LocalChange&) = delete;
        LocalChange& operator=(const LocalChange&) = delete;

    private:
        ChartControl& chart_;
    };
    /// A renderer's data changed: refits when following the data, and redraws.
    virtual void RendererDataChanged(ChartRenderer* renderer);
    /// Overlay pixels that a LocalChange changes.
    void AddLayerDamage(const GUI::Geometry::Rectangle& area);

    /// The chart's drawing without the host-state guard, for subclasses that draw more inside theirs.
    void DrawChart();
    /// Pixels around the plot area: room for the y axis, the x axis and the title.
    static constexpr int kLeft = 72, kBottom = 48, kTop = 26, kRight = 14;
    void UpdateAxes();

private:
    friend class ChartRenderer;
    void Layout();
    void SetLogarithmic(bool& flag, double& lo, double& hi, bool on);

    AxisControl* xAxis_ = nullptr;
    AxisControl* yAxis_ = nullptr;
    GUI::Controls::Label* title_ = nullptr;
    std::unique_ptr<trelvo::detail::ChartMarks> marks_;
    std::vector<ChartRenderer*> renderers_;
    double xMin_ = 0.0, xMax_ = 1.0, yMin_ = 0.0, yMax_ = 1.0;
    bool logX_ = false, logY_ = false;
    bool grid_ = true;
    bool followData_ = false;
    GUI::Color gridColor_{58, 64, 76, 255};
    GUI::Color background_{24, 28, 36, 255};
    std::vector<float> vertices_;
    int localChanges_ = 0;
    bool damageWhole_ = true;
    // Hovers between two updates add a few pieces each; past this many the chart is redrawn whole.
    static constexpr std::size_t kMostDamagePieces = 16;
    std::vector<GUI::Geometry::Rectangle> damage_;
};
