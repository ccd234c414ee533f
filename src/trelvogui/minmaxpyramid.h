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
/// kept, as gaps, and left out of every summary. The summaries take less than a third of the samples' size.
class TRELVOGUI_EXPORT MinMaxPyramid {
public:
    static constexpr std::size_t kBlock = 32;

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

    /// Bytes the pyramid takes beside `samples` samples of 8 bytes, at most (for memory budgets).
    static std::size_t SummaryBytes(std::size_t samples);

    void Clear();
    /// Replaces the samples; O(n).
    void Assign(const double* samples, std::size_t count);
    template <class T> void Assign(const T* samples, std::size_t count) {
        Clear();
        Reserve(count);
        for (std::size_t i = 0; i < count; ++i)
            Append(static_cast<double>(samples[i]));
    }
    void Reserve(std::size_t count);
    /// Adds one sample at the end; amortised O(1).
    void Append(double sample);
    /// Forgets the first `count` samples (all of them if fewer); amortised O(1) a sample. Indices
    /// count from the new first sample.
    void DropFront(std::size_t count);

    std::size_t Size() const { return samples_.size() - offset_; }
    bool Empty() const { return Size() == 0; }
    double operator[](std::size_t i) const { return samples_[offset_ + i]; }
    /// The summary of samples [begin, end), clamped to the sequence.
    Summary Range(std::size_t begin, std::size_t end) const;
    /// The index of the first largest (or smallest) finite sample in [begin, end), found by walking
    /// down the levels in O(kBlock + log n); Size() when the range holds no finite sample.
    std::size_t IndexOfExtreme(std::size_t begin, std::size_t end, bool largest) const;

private:
    void Rebuild();
    void CloseBlock();

    std::vector<double> samples_;
    std::size_t offset_ = 0; // samples dropped from the front but not yet erased
    // levels_[0][j] summarises the complete block j; levels_[k][j] the blocks j*2^k .. (j+1)*2^k - 1.
    std::vector<std::vector<Summary>> levels_;
};
