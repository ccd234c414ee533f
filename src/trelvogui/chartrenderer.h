#pragma once
// What a chart hands its renderers: where the plot area is and which data ranges it shows.

#include <trelvogui/gui/geometry.h>
#include <trelvogui/trelvogui_export.h>

class ChartControl;

/// The mapping from data to overlay pixels of one chart frame. Ranges may be reversed; a
/// logarithmic axis maps log10 of the value, and values that are not positive have no place on it
/// (NaN).
struct TRELVOGUI_EXPORT ChartView {
    GUI::Geometry::Rectangle plot{0, 0, 0, 0}; ///< the plot area in overlay pixels
    double xMin = 0.0, xMax = 1.0, yMin = 0.0, yMax = 1.0;
    bool xLog = false, yLog = false;

    /// Overlay pixel of a data value (fractional; NaN where it has none).
    double PixelX(double x) const;
    double PixelY(double y) const;
    /// Data value at an overlay pixel.
    double DataX(double px) const;
    double DataY(double py) const;

    /// Where `v` lies between the ends `a` and `b` of an axis (0 at a, 1 at b), in the axis's scale;
    /// NaN for an empty range or, on a logarithmic axis, anything not positive.
    static double Fraction(double v, double a, double b, bool logarithmic);
    /// The value at a fraction between `a` and `b`; the inverse of Fraction.
    static double Value(double fraction, double a, double b, bool logarithmic);
};

/// A layer of a chart's plot area: draws with its own shaders inside the plot area, writing the
/// chart's id and its own part id. The chart does not own its renderers; a renderer tells its chart
/// when its picture changed. Destroy a renderer only after taking it out of its chart (the chart's
/// destructor lets go of those it still holds).
class TRELVOGUI_EXPORT ChartRenderer {
public:
    ChartRenderer();
    virtual ~ChartRenderer();
    ChartRenderer(const ChartRenderer&) = delete;
    ChartRenderer& operator=(const ChartRenderer&) = delete;

    /// With the GL context current: builds the renderer's programs. False when they do not build.
    virtual bool Initialize() = 0;
    /// Draws into the current target for `view`, writing `pid` and `sid`.
    virtual void Draw(const ChartView& view, unsigned pid, unsigned sid) = 0;
    /// The finite extent of the data, on linear axes or on logarithmic ones (positive values only).
    /// False when there is nothing to show.
    virtual bool Bounds(bool xLog, bool yLog, double& x0, double& x1, double& y0, double& y1) const = 0;

    /// The chart the renderer is in, or null.
    ChartControl* Chart() const { return chart_; }

protected:
    /// Requests a redraw of the chart, if any.
    void Changed();
    /// The data or the extent they span changed: a redraw, and a chart set to follow its data refits.
    void DataChanged();

private:
    friend class ChartControl;
    ChartControl* chart_ = nullptr;
};
