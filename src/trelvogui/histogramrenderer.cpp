#include <trelvogui/histogramrenderer.h>

#include "detail/chartmarks.h"

#include <graphicsbase/glvertexbuffer.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

using namespace GraphicsBase;

HistogramRenderer::HistogramRenderer() : marks_(std::make_unique<trelvo::detail::ChartMarks>()) {}

HistogramRenderer::~HistogramRenderer() = default;

bool HistogramRenderer::Initialize() {
    return marks_->Initialize();
}

template <class T> bool HistogramRenderer::Bin(const T* values, std::size_t count) {
    if (count > 0 && !values) {
        std::printf("HistogramRenderer::SetValues(): No values given for a count of %zu.\n", count);
        return false;
    }
    values_.assign(values, values + count);
    return Rebin();
}

bool HistogramRenderer::SetValues(const float* values, std::size_t count) {
    return Bin(values, count);
}
bool HistogramRenderer::SetValues(const double* values, std::size_t count) {
    return Bin(values, count);
}

bool HistogramRenderer::SetRange(double lo, double hi) {
    if (!std::isfinite(lo) || !std::isfinite(hi) || !(lo < hi)) {
        std::printf("HistogramRenderer::SetRange(): %g .. %g is not a range to bin over.\n", lo, hi);
        return false;
    }
    const double keptLo = lo_, keptHi = hi_;
    const bool keptAuto = autoRange_;
    lo_ = lo;
    hi_ = hi;
    autoRange_ = false;
    if (Rebin())
        return true;
    lo_ = keptLo, hi_ = keptHi, autoRange_ = keptAuto;
    Rebin();
    return false;
}

void HistogramRenderer::SetAutoRange() {
    autoRange_ = true;
    Rebin();
}

bool HistogramRenderer::SetBinCount(std::size_t count) {
    if (count < 1 || count > kMostBins) {
        std::printf("HistogramRenderer::SetBinCount(): %zu bins is out of range (1 .. %zu).\n", count,
                    kMostBins);
        return false;
    }
    binCount_ = count;
    return Rebin();
}

bool HistogramRenderer::SetBinWidth(double width) {
    if (!(width >= 0.0) || !std::isfinite(width)) {
        std::printf("HistogramRenderer::SetBinWidth(): A width of %g is not usable.\n", width);
        return false;
    }
    const double kept = wantedWidth_;
    wantedWidth_ = width;
    if (Rebin())
        return true;
    wantedWidth_ = kept;
    Rebin();
    return false;
}

bool HistogramRenderer::Rebin() {
    if (autoRange_) {
        lo_ = std::numeric_limits<double>::infinity();
        hi_ = -lo_;
        for (double v : values_)
            if (std::isfinite(v)) {
                lo_ = std::min(lo_, v);
                hi_ = std::max(hi_, v);
            }
        if (!std::isfinite(lo_)) {
            lo_ = 0.0;
            hi_ = 1.0;
        } else if (lo_ == hi_) {
            // One value (or all the same): one bin a unit wide around it.
            lo_ -= 0.5;
            hi_ += 0.5;
        }
    }
    std::size_t bins = binCount_;
    if (wantedWidth_ > 0.0) {
        const double n = std::ceil((hi_ - lo_) / wantedWidth_);
        if (!(n <= static_cast<double>(kMostBins))) {
            std::printf("HistogramRenderer: A bin width of %g makes more than %zu bins over %g .. %g.\n",
                        wantedWidth_, kMostBins, lo_, hi_);
            return false;
        }
        bins = std::max<std::size_t>(1, static_cast<std::size_t>(n));
        binWidth_ = wantedWidth_;
    } else {
        binWidth_ = (hi_ - lo_) / static_cast<double>(bins);
    }
    counts_.assign(bins, 0);
    leftOut_ = 0;
    for (double v : values_) {
        if (!std::isfinite(v) || v < lo_ || v > hi_) {
            ++leftOut_;
            continue;
        }
        const double at = std::floor((v - lo_) / binWidth_);
        const std::size_t bin = std::min(bins - 1, static_cast<std::size_t>(std::max(0.0, at)));
        ++counts_[bin];
    }
    DataChanged();
    return true;
}

void HistogramRenderer::SetLogCounts(bool on) {
    logCounts_ = on;
    DataChanged();
}
void HistogramRenderer::SetCumulative(bool on) {
    cumulative_ = on;
    DataChanged();
}
void HistogramRenderer::SetColor(const GUI::Color& color) {
    color_ = color;
    Changed();
}

double HistogramRenderer::Height(std::size_t bin) const {
    if (bin >= counts_.size())
        return 0.0;
    double count = static_cast<double>(counts_[bin]);
    if (cumulative_) {
        count = 0.0;
        for (std::size_t i = 0; i <= bin; ++i)
            count += static_cast<double>(counts_[i]);
    }
    return logCounts_ ? std::log10(1.0 + count) : count;
}

bool HistogramRenderer::Bounds(bool xLog, bool yLog, double& x0, double& x1, double& y0, double& y1) const {
    if (counts_.empty() || values_.empty() || (xLog && !(lo_ > 0.0)))
        return false;
    x0 = lo_;
    x1 = lo_ + binWidth_ * static_cast<double>(counts_.size());
    double top = 0.0;
    for (std::size_t i = 0; i < counts_.size(); ++i)
        top = std::max(top, Height(i));
    y0 = yLog ? 1.0 : 0.0;
    y1 = std::max(top, y0 + 1.0);
    return true;
}

void HistogramRenderer::Draw(const ChartView& view, unsigned pid, unsigned sid) {
    vertices_.clear();
    if (counts_.empty() || view.plot.Width() <= 0 || view.plot.Height() <= 0)
        return;
    const double bottom = view.yLog
                              ? view.plot.yMin
                              : std::clamp(view.PixelY(0.0), double(view.plot.yMin), double(view.plot.yMax));
    double running = 0.0;
    for (std::size_t i = 0; i < counts_.size(); ++i) {
        running += static_cast<double>(counts_[i]);
        const double shown = cumulative_ ? running : static_cast<double>(counts_[i]);
        const double h = logCounts_ ? std::log10(1.0 + shown) : shown;
        if (h <= 0.0)
            continue;
        double xa = view.PixelX(BinStart(i)), xb = view.PixelX(BinStart(i + 1));
        double top = view.PixelY(h);
        if (!std::isfinite(xa) || !std::isfinite(xb) || !std::isfinite(top))
            continue;
        // Within the plot, a pixel or so beyond it: the scissor does the exact clipping.
        const double left = view.plot.xMin - 2.0, right = view.plot.xMax + 2.0;
        xa = std::clamp(xa, left, right);
        xb = std::clamp(xb, left, right);
        top = std::clamp(top, view.plot.yMin - 2.0, view.plot.yMax + 2.0);
        if (xa == xb)
            continue;
        // A gap of a pixel between bars that are wide enough to spare one.
        const double gap = std::fabs(xb - xa) >= 4.0 ? 1.0 : 0.0;
        trelvo::detail::ChartMarks::AppendRectangle(vertices_, float(std::min(xa, xb)), float(bottom),
                                                    float(std::max(xa, xb) - gap), float(top));
    }
    marks_->Draw(vertices_, GLVertexBuffer::Triangles, color_, pid, sid, view.plot);
}
