#pragma once
// A data set of a chart drawn as a line, points, steps or bars, reduced to what its pixels can show.

#include <trelvogui/chartrenderer.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/minmaxpyramid.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace trelvo::detail {
class ChartMarks;
}

/// Samples y, with x given or implicit (the index), kept at the precision they came in (x in double).
/// Non-finite samples make gaps and are left out of bounds and statistics. A frame draws at most four
/// vertices per pixel column of the plot area (the first, last, smallest and largest sample falling
/// into it), read from a min/max pyramid, so a pan or zoom costs O(columns x log n) whatever n is, and
/// a spike of one sample shows at every zoom. Points draw one mark per occupied pixel and bars the
/// extreme bar per column where samples are dense. Points and bars of unsorted x reduce the same way
/// through an index sorted by x; a line of unsorted x joins its samples in their own order and draws
/// them all, up to kMostUnsortedLine. Appending is amortised O(1) a sample; so is dropping from the
/// front.
class TRELVOGUI_EXPORT DataSetRenderer : public ChartRenderer {
public:
    enum Style : int { Line = 0, Points = 1, Steps = 2, Bars = 3 };
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    /// The most samples a line (or steps) of unsorted x draws; it joins them in their own order, so
    /// every one of them is drawn. Beyond it the line is left out with a message.
    static constexpr std::size_t kMostUnsortedLine = std::size_t(1) << 20;

    DataSetRenderer();
    ~DataSetRenderer() override;

    bool Initialize() override;
    void Draw(const ChartView& view, unsigned pid, unsigned sid) override;
    bool Bounds(bool xLog, bool yLog, double& x0, double& x1, double& y0, double& y1) const override;

    /// Replaces the samples (x implicit: 0, 1, 2, ...). False with a message, and the set unchanged,
    /// for a null pointer with a non-zero count or beyond the memory budget.
    bool SetData(const float* y, std::size_t count);
    bool SetData(const double* y, std::size_t count);
    /// Replaces the samples with explicit x. Unsorted x is accepted (a scatter, a curve).
    bool SetData(const float* x, const float* y, std::size_t count);
    bool SetData(const double* x, const double* y, std::size_t count);
    /// Adds a sample at the end: without x to a set of implicit x (or an empty one), with x to a set
    /// of explicit x (or an empty one). False with a message otherwise or past the memory budget.
    bool Append(double y);
    bool Append(double x, double y);
    /// Forgets the oldest samples (a scrolling window); implicit x keeps counting from the start.
    void DropFront(std::size_t count);
    void Clear();

    /// The most bytes the set may take, samples and summaries together (1 GiB by default). Data
    /// beyond it are refused with a message.
    void SetMemoryBudget(std::size_t bytes) { budget_ = bytes; }
    std::size_t MemoryBudget() const { return budget_; }
    /// Bytes the set takes now.
    std::size_t MemoryBytes() const;

    void SetStyle(Style style);
    void SetColor(const GUI::Color& color);
    /// Line width in pixels (1 by default).
    void SetLineWidth(float width);
    /// Side of the square point marks in pixels (3 by default).
    void SetMarkerSize(float size);
    /// With false, every visible sample is drawn: for comparisons; on by default.
    void SetDecimation(bool on);
    Style GetStyle() const { return style_; }
    GUI::Color GetColor() const { return color_; }

    std::size_t Size() const { return y_.Size(); }
    bool HasX() const { return hasX_; }
    /// The x of sample i: its index (plus what was dropped) when x is implicit.
    double X(std::size_t i) const;
    double Y(std::size_t i) const { return y_[i]; }
    /// Whether x is implicit or finite and ascending.
    bool XSorted() const { return xSorted_; }
    const MinMaxPyramid& Samples() const { return y_; }

    /// The sample whose x is nearest to `x` among those with finite x and y, in O(log n) (a set with
    /// unsorted x keeps an index sorted by x for this, built at the first query after a change);
    /// npos when there is none.
    std::size_t NearestIndex(double x) const;
    /// The sample nearest to overlay pixel (px, py) in `view`: the one nearest in x, or, where many
    /// samples share the pointer's pixel column, its highest or lowest if that is nearer on screen.
    /// O(log n); npos when there is none.
    std::size_t NearestOnScreen(const ChartView& view, double px, double py) const;
    /// Count, extremes, mean and standard deviation of the finite y whose x lies in [x0, x1] (either
    /// order), in O(log n).
    MinMaxPyramid::Summary Statistics(double x0, double x1) const;

    /// Vertices of the line's path the last Draw produced (first, last, min and max per column when
    /// decimated), for tests and benchmarks.
    std::size_t DrawnPathVertices() const { return pathVertices_; }

private:
    template <class T> bool Assign(const T* x, const T* y, std::size_t count);
    bool Fits(std::size_t count, bool withX, const char* operation, std::size_t sampleBytes) const;
    /// First index with x >= v (or > v when `after`), for implicit or ascending x.
    std::size_t LowerIndex(double v, bool after = false) const;
    void EnsureOrder() const;
    void Touch();

    /// Explicit x as given: float x stays float (half the memory) until a double that a float cannot
    /// hold is appended, and then all of it moves to double, nothing rounded away.
    class XColumn {
    public:
        template <class T> void Assign(const T* x, std::size_t count);
        void Append(double x);
        void EraseFront(std::size_t count);
        void Clear();
        std::size_t Size() const { return single_ ? floats_.size() : doubles_.size(); }
        double operator[](std::size_t i) const { return single_ ? double(floats_[i]) : doubles_[i]; }
        std::size_t MemoryBytes() const {
            return floats_.capacity() * sizeof(float) + doubles_.capacity() * sizeof(double);
        }

    private:
        std::vector<float> floats_;
        std::vector<double> doubles_;
        bool single_ = true;
    };

    std::unique_ptr<trelvo::detail::ChartMarks> marks_;
    MinMaxPyramid y_;
    XColumn x_;
    std::size_t xOffset_ = 0; // dropped x not yet erased, as in the pyramid
    std::uint64_t dropped_ = 0;
    bool hasX_ = false;
    bool xSorted_ = true;
    std::size_t budget_ = std::size_t(1) << 30;
    // Unsorted x: the sample indices in x order and their y in that order, for the O(log n) queries.
    mutable std::vector<std::uint32_t> order_;
    mutable MinMaxPyramid byX_;
    mutable bool orderValid_ = false;
    mutable bool reportedLog_ = false;
    bool reportedUnsorted_ = false;
    bool reportedBudget_ = false;

    Style style_ = Line;
    GUI::Color color_{90, 170, 255, 255};
    float lineWidth_ = 1.f;
    float markerSize_ = 3.f;
    bool decimate_ = true;
    std::size_t pathVertices_ = 0;
    // Per-frame scratch, kept so that frames do not allocate.
    std::vector<float> vertices_;
    std::vector<unsigned char> rowsMarked_;
};
