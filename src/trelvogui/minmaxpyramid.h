#pragma once
// Summaries of a sample sequence at every power-of-two scale: any range's extremes and moments
// without walking its samples.

#include <trelvogui/trelvogui_export.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/// Holds a sequence of samples and, over blocks of kBlock samples and every power of two of blocks,
/// their finite minimum, maximum, count, mean and sum of squared deviations. Building is O(n),
/// appending amortised O(1) a sample, dropping from the front (a scrolling window) amortised O(1),
/// and the summary of any index range O(kBlock + log n). Non-finite samples (NaN, infinities) are
/// kept, as gaps, and left out of every summary. Samples given as float are kept as float until one
/// arrives that a float cannot hold exactly; the summaries take less than a third of the samples' size
/// either way.
class TRELVOGUI_EXPORT MinMaxPyramid {
public:
    static constexpr std::size_t kBlock = 64;

    /// The finite samples of a range: `count` of them; min > max when there are none.
    struct Summary {
        double min = std::numeric_limits<double>::infinity();
        double max = -std::numeric_limits<double>::infinity();
        double mean = 0.0;
        double m2 = 0.0; ///< sum of squared deviations from the mean
        std::uint64_t count = 0;

        void Add(double v);
        void Merge(const Summary& other);
        /// Population standard deviation; 0 for fewer than two samples.
        double StandardDeviation() const;
    };

    /// Bytes the summaries take beside `samples` samples, at most (for memory budgets).
    static std::size_t SummaryBytes(std::size_t samples);
    /// Bytes the samples and summaries take now.
    std::size_t MemoryBytes() const;
    /// Whether the samples are kept in single precision.
    bool SinglePrecision() const { return single_; }

    void Clear();
    /// Replaces the samples; O(n).
    void Assign(const double* samples, std::size_t count);
    /// Replaces the samples with floats, kept as floats; O(n).
    void Assign(const float* samples, std::size_t count);
    void Reserve(std::size_t count);
    /// Adds one sample at the end; amortised O(1).
    void Append(double sample);
    /// Forgets the first `count` samples (all of them if fewer); amortised O(1) a sample. Indices
    /// count from the new first sample.
    void DropFront(std::size_t count);

    std::size_t Size() const { return Stored() - offset_; }
    bool Empty() const { return Size() == 0; }
    double operator[](std::size_t i) const { return At(offset_ + i); }
    /// The summary of samples [begin, end), clamped to the sequence.
    Summary Range(std::size_t begin, std::size_t end) const;
    /// Count, minimum and maximum of the finite samples of [begin, end), without the moments: what a
    /// frame's decimation reads, at a fraction of Range's cost.
    Summary Extremes(std::size_t begin, std::size_t end) const;
    /// The index of the first largest (or smallest) finite sample in [begin, end), found by walking
    /// down the levels in O(kBlock + log n); Size() when the range holds no finite sample.
    std::size_t IndexOfExtreme(std::size_t begin, std::size_t end, bool largest) const;

    /// Rows of pixels, for MarkRows: sample v falls into row floor(offset + scale * t), t being v (or
    /// log10 v, where only positive samples have a row); rows outside 0 .. rows - 1 are left out.
    struct RowMap {
        double offset = 0.0, scale = 1.0;
        bool logarithmic = false;
        int rows = 0;
    };
    /// Sets `marked[r]` for every row r that a finite sample of [begin, end) falls into. A block is read
    /// through its extremes (whose rows are surely occupied) and walked into only while rows between
    /// them are not yet marked, so a dense range costs about its occupied rows times log n.
    void MarkRows(std::size_t begin, std::size_t end, const RowMap& map,
                  std::vector<unsigned char>& marked) const;

private:
    template <bool kMoments> Summary Gather(std::size_t begin, std::size_t end) const;
    void Rebuild();
    void CloseBlock();
    std::size_t Stored() const { return single_ ? floats_.size() : samples_.size(); }
    double At(std::size_t i) const { return single_ ? static_cast<double>(floats_[i]) : samples_[i]; }

    std::vector<double> samples_;
    std::vector<float> floats_;
    bool single_ = false;
    std::size_t offset_ = 0; // samples dropped from the front but not yet erased
    // levels_[0][j] summarises the complete block j; levels_[k][j] the blocks j*2^k .. (j+1)*2^k - 1.
    std::vector<std::vector<Summary>> levels_;
};
