#pragma once
// The demo's value legend: a legend control (colour bar of a small transfer function, its axis and a
// histogram of the depths), and a distance axis under the scene.

#include <memory>
#include <string>
#include <vector>

namespace GUI {
class GUIManager;
} // namespace GUI
class AxisControl;
class LegendControl;

namespace demo {

/// Owns the two controls; Build registers them with the manager as roots. Destroy it before the
/// manager, like any control.
class DemoLegend {
public:
    DemoLegend();
    ~DemoLegend();
    DemoLegend(const DemoLegend&) = delete;
    DemoLegend& operator=(const DemoLegend&) = delete;

    /// With the GL context current. False (with a message) if a control's shaders do not build.
    bool Build(const std::shared_ptr<GUI::GUIManager>& manager, int width, int height);
    /// Places the legend for a view of this size: at the right edge, vertically centred, and the
    /// distance axis along the bottom, clear of the lower corners.
    void Place(int width, int height);
    /// One line per axis: its title and the texts at its ticks.
    std::vector<std::string> TickTexts() const;

    LegendControl* Depth() { return legend_.get(); }
    AxisControl* DistanceAxis() { return distanceAxis_.get(); }

private:
    std::unique_ptr<LegendControl> legend_;
    std::unique_ptr<AxisControl> distanceAxis_;
};

} // namespace demo
