#pragma once
// The demo's charts: an XY plot of a long signal with one spike, and a histogram of its values.

#include <memory>
#include <string>

namespace GUI {
class GUIManager;
}
class XYPlotControl;
class ChartControl;
class DataSetRenderer;
class HistogramRenderer;

namespace demo {

/// Owns the two charts and their renderers; Build registers the charts, hidden until Show. Destroy it
/// before the manager, like any control.
class DemoCharts {
public:
    static constexpr std::size_t kSamples = 1000000;
    static constexpr std::size_t kSpike = 613777;

    DemoCharts();
    ~DemoCharts();
    DemoCharts(const DemoCharts&) = delete;
    DemoCharts& operator=(const DemoCharts&) = delete;

    /// With the GL context current. False (with a message) if a chart's shaders do not build.
    bool Build(const std::shared_ptr<GUI::GUIManager>& manager);
    void Show(bool show);
    XYPlotControl* Plot() { return plot_.get(); }
    /// The readout and statistics lines the plot shows.
    std::string Describe() const;

private:
    std::unique_ptr<DataSetRenderer> signal_;
    std::unique_ptr<HistogramRenderer> histogram_;
    std::unique_ptr<XYPlotControl> plot_;
    std::unique_ptr<ChartControl> histogramChart_;
};

} // namespace demo
