#include <trelvogui/chartrenderer.h>

#include <trelvogui/chartcontrol.h>

#include <cmath>

using namespace GraphicsBase;

double ChartView::Fraction(double v, double a, double b, bool logarithmic) {
    if (logarithmic) {
        if (!(v > 0.0) || !(a > 0.0) || !(b > 0.0))
            return std::nan("");
        v = std::log10(v);
        a = std::log10(a);
        b = std::log10(b);
    }
    return a == b ? std::nan("") : (v - a) / (b - a);
}

double ChartView::Value(double f, double a, double b, bool logarithmic) {
    if (logarithmic && a > 0.0 && b > 0.0) {
        const double la = std::log10(a), lb = std::log10(b);
        return std::pow(10.0, la + (lb - la) * f);
    }
    return a + (b - a) * f;
}

double ChartView::PixelX(double x) const {
    return plot.xMin + Fraction(x, xMin, xMax, xLog) * plot.Width();
}
double ChartView::PixelY(double y) const {
    return plot.yMin + Fraction(y, yMin, yMax, yLog) * plot.Height();
}
double ChartView::DataX(double px) const {
    return Value((px - plot.xMin) / plot.Width(), xMin, xMax, xLog);
}
double ChartView::DataY(double py) const {
    return Value((py - plot.yMin) / plot.Height(), yMin, yMax, yLog);
}

ChartRenderer::ChartRenderer() = default;

ChartRenderer::~ChartRenderer() {
    if (chart_)
        chart_->RemoveRenderer(this);
}

void ChartRenderer::Changed() {
    if (chart_)
        chart_->SetNeedsRedraw(true);
}

void ChartRenderer::DataChanged() {
    if (chart_)
        chart_->RendererDataChanged(this);
}
