#pragma once
// A histogram of raw values, drawn as bars in a chart.

#include <trelvogui/chartrenderer.h>
#include <trelvogui/gui/guitypes.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace trelvo::detail {
class ChartMarks;
}

/// Bins finite values over their range (or a range the host sets): a bin count, or a bin width that
/// wins over it when set. Bars show counts, log10(1 + count) with SetLogCounts, and running totals
/// with SetCumulative. x is the value, y the count. The last bin includes the range's upper end.
class TRELVOGUI_EXPORT HistogramRenderer : public ChartRenderer {
public:
    /// More bins than this are refused: they could not be told apart on any screen.
    static constexpr std::size_t kMostBins = 1u << 20;

    HistogramRenderer();
    ~HistogramRenderer() override;

    bool Initialize() override;
    void Draw(const ChartView& view, unsigned pid, unsigned sid) override;
    bool Bounds(bool xLog, bool yLog, double& x0, double& x1, double& y0, double& y1) const override;

    /// Bins the values, keeping a copy so that new bins can be made from them. False with a message
    /// for a null pointer with a non-zero count.
    bool SetValues(const float* values, std::size_t count);
    bool SetValues(const double* values, std::size_t count);
    /// The binned range; by default (and after SetAutoRange) the finite values' extent.
    bool SetRange(double lo, double hi);
    void SetAutoRange();
    /// Bins over the range (32 by default); refused below 1 or above kMostBins.
    bool SetBinCount(std::size_t count);
    /// A bin width that wins over the count; 0 goes back to the count. Refused when negative or when
    /// it would make more than kMostBins bins.
    bool SetBinWidth(double width);
    void SetLogCounts(bool on);
    void SetCumulative(bool on);
    void SetColor(const GUI::Color& color);

    /// Raw counts per bin (not cumulative, not logarithmic).
    const std::vector<std::size_t>& Counts() const { return counts_; }
    /// The bar heights as drawn.
    double Height(std::size_t bin) const;
    double BinStart(std::size_t bin) const { return lo_ + binWidth_ * static_cast<double>(bin); }
    double BinWidth() const { return binWidth_; }
    /// Values that were not finite or fell outside a range the host set.
    std::size_t LeftOut() const { return leftOut_; }

private:
    template <class T> bool Bin(const T* values, std::size_t count);
    bool Rebin();

    std::unique_ptr<trelvo::detail::ChartMarks> marks_;
    std::vector<double> values_;
    std::vector<std::size_t> counts_;
    std::size_t leftOut_ = 0;
    double lo_ = 0.0, hi_ = 1.0, binWidth_ = 1.0 / 32;
    bool autoRange_ = true;
    std::size_t binCount_ = 32;
    double wantedWidth_ = 0.0;
    bool logCounts_ = false;
    bool cumulative_ = false;
    GUI::Color color_{240, 170, 60, 255};
    std::vector<float> vertices_;
};
