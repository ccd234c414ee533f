#pragma once
// The XY plot: a chart of data sets the user pans, zooms and reads values from.

#include <trelvogui/chartcontrol.h>
#include <trelvogui/minmaxpyramid.h>

#include <cstddef>
#include <memory>
#include <string>

class DataSetRenderer;
namespace trelvo::detail {
class ChartMarks;
}

/// A chart whose data sets the user explores: a drag pans, the wheel zooms about the pointer (in x
/// and y; with the pointer over an axis, along that axis only), a double click fits the data again.
/// Hovering shows a marker on the sample nearest the pointer (the point index, O(log n)) and its
/// values; the statistics label shows count, min, max, mean and standard deviation of the samples in
/// view of the first data set. Every range change fires RangeChangedSignal.
class TRELVOGUI_EXPORT XYPlotControl : public ChartControl {
public:
    XYPlotControl();
    ~XYPlotControl() override;

    bool Initialize() override;
    void DrawCustom() override;
    void SetRectangle(GUI::Geometry::Rectangle r) override;

    GraphicsBase::DrawFlags OnMouseHover(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseExit(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override;
    GraphicsBase::DrawFlags OnClick(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseWheel(GUI::Event* e, int delta) override;

    /// Adds a data set (not owned) and, with auto-scaling on, fits the ranges to all data.
    bool AddDataSet(DataSetRenderer* set);
    /// Fit on AddDataSet and on AutoScale (on by default). Data changes are fitted when the host calls
    /// AutoScale, or at once with SetFollowData(true).
    void SetAutoScale(bool on) { autoScale_ = on; }
    bool AutoScale();

    /// The statistics label, shown by default.
    void ShowStatistics(bool show);
    std::wstring StatisticsText() const { return statisticsText_; }
    /// The readout of the hovered sample (empty when none) and its index in its set.
    std::wstring ReadoutText() const { return readoutText_; }
    std::size_t HoveredIndex() const { return hovered_; }
    /// Statistics of the first data set over the x range in view.
    MinMaxPyramid::Summary VisibleStatistics();

protected:
    /// The statistics follow the data (and the ranges too, when set to follow them).
    void RendererDataChanged(ChartRenderer* renderer) override;

private:
    void UpdateStatistics();
    void PlaceLabels();
    bool Hover(int x, int y);
    /// The hover marker's centre in overlay pixels; false when none is shown.
    bool MarkerCentre(const ChartView& view, float& x, float& y) const;
    /// The pixels the hover marker covers (empty when none).
    GUI::Geometry::Rectangle MarkerArea(const ChartView& view) const;

    DataSetRenderer* first_ = nullptr;
    std::unique_ptr<trelvo::detail::ChartMarks> marker_;
    GUI::Controls::Label* statistics_ = nullptr;
    GUI::Controls::Label* readout_ = nullptr;
    std::wstring statisticsText_;
    std::wstring readoutText_;
    DataSetRenderer* hoveredSet_ = nullptr;
    std::size_t hovered_ = static_cast<std::size_t>(-1);
    bool autoScale_ = true;
    std::uint64_t lastClick_ = 0;
    bool clickedOnce_ = false;
    std::vector<float> vertices_;
};
