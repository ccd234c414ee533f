#pragma once
// A value legend: a colour bar, its nice-tick value axis and a histogram of the values, with a title.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/histogramrenderer.h>

#include <memory>
#include <string>
#include <vector>

class AxisControl;
namespace GUI::Controls {
class ColorBar;
class Label;
} // namespace GUI::Controls
namespace trelvo::detail {
class ChartMarks;
}

/// Vertical: the title on top, the axis's numbers on the left, the bar, and the histogram's bars
/// growing to the right of it, each beside the colour of its values. Horizontal: the title on top,
/// the histogram growing upwards over the bar, the numbers below. The legend owns its bar, axis and
/// title (children); the histogram bins the values the host gives over the legend's range.
class TRELVOGUI_EXPORT LegendControl : public GUI::Controls::Base {
public:
    enum Layout : int { Vertical = 0, Horizontal = 1 };

    LegendControl();
    ~LegendControl() override;

    /// With the GL context current: the bar's, the axis's and the histogram's programs.
    virtual bool Initialize();
    void DrawCustom() override;
    /// The rectangle and a margin: the numbers at the ends of the axis reach beyond the rectangle. A root
    /// chart is then redrawn only there when it changes.
    bool LayerFootprint(int layerWidth, int layerHeight, GUI::Geometry::Rectangle& area) override;
    void SetRectangle(GUI::Geometry::Rectangle r) override;
    void OnDisplayScaleChanged() override;

    void SetLayout(Layout layout);
    Layout GetLayout() const { return layout_; }
    /// The transfer function's colours, first at the range's low end.
    void SetColorMap(const std::vector<GUI::Color>& colors, bool smooth);
    /// The value range of the bar and axis; refused with a message when not finite or empty.
    bool SetRange(double lo, double hi);
    void SetTitle(const std::wstring& title);
    /// The values whose histogram stands beside the bar (binned over the range, copied).
    bool SetValues(const float* values, std::size_t count);
    bool SetValues(const double* values, std::size_t count);
    void ShowHistogram(bool show);
    void SetHistogramColor(const GUI::Color& color);

    GUI::Controls::ColorBar* Bar() { return bar_; }
    AxisControl* Axis() { return axis_; }
    GUI::Controls::Label* TitleLabel() { return title_; }
    HistogramRenderer& Histogram() { return histogram_; }

private:
    void Arrange();

    GUI::Controls::ColorBar* bar_ = nullptr;
    AxisControl* axis_ = nullptr;
    GUI::Controls::Label* title_ = nullptr;
    HistogramRenderer histogram_;
    std::unique_ptr<trelvo::detail::ChartMarks> marks_;
    Layout layout_ = Vertical;
    double lo_ = 0.0, hi_ = 1.0;
    bool showHistogram_ = true;
    GUI::Color histogramColor_{200, 208, 220, 200};
    GUI::Geometry::Rectangle histogramArea_{0, 0, 0, 0}; // relative to the legend
    std::vector<float> vertices_;
};
