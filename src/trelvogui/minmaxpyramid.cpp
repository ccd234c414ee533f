#include <trelvogui/minmaxpyramid.h>

#include <algorithm>
#include <cmath>

void MinMaxPyramid::Summary::Add(double v) {
    if (!std::isfinite(v))
        return;
    min = std::min(min, v);
    max = std::max(max, v);
    ++count;
    const double delta = v - mean;
    mean += delta / static_cast<double>(count);
    m2 += delta * (v - mean);
}

void MinMaxPyramid::Summary::Merge(const Summary& other) {
    if (other.count == 0)
        return;
    if (count == 0) {
        *this = other;
        return;
    }
    // Chan's pairwise update: stable where a sum of squares would cancel.
    const double n = static_cast<double>(count), m = static_cast<double>(other.count);
    const double delta = other.mean - mean;
    min = std::min(min, other.min);
    max = std::max(max, other.max);
    count += other.count;
    mean += delta * m / (n + m);
    m2 += other.m2 + delta * delta * n * m / (n + m);
}

double MinMaxPyramid::Summary::StandardDeviation() const {
    return count > 1 ? std::sqrt(std::max(0.0, m2 / static_cast<double>(count))) : 0.0;
}

std::size_t MinMaxPyramid::SummaryBytes(std::size_t samples) {
    // Level 0 has one summary a block, every level above half as many: twice level 0 in all.
    return 2 * (samples / kBlock + 1) * sizeof(Summary);
}

std::size_t MinMaxPyramid::MemoryBytes() const {
    std::size_t bytes = samples_.capacity() * sizeof(double) + floats_.capacity() * sizeof(float);
    for (const std::vector<Summary>& level : levels_)
        bytes += level.capacity() * sizeof(Summary);
    return bytes;
}

void MinMaxPyramid::Clear() {
    samples_.clear();
    floats_.clear();
    single_ = false;
    offset_ = 0;
    levels_.clear();
}

void MinMaxPyramid::Assign(const double* samples, std::size_t count) {
    Clear();
    samples_.assign(samples, samples + count);
    samples_.shrink_to_fit();
    Rebuild();
}

void MinMaxPyramid::Assign(const float* samples, std::size_t count) {
    Clear();
    single_ = true;
    floats_.assign(samples, samples + count);
    floats_.shrink_to_fit();
    samples_.shrink_to_fit();
    Rebuild();
}

void MinMaxPyramid::Reserve(std::size_t count) {
    if (single_)
        floats_.reserve(count);
    else
        samples_.reserve(count);
}

void MinMaxPyramid::Append(double sample) {
    if (single_ && static_cast<double>(static_cast<float>(sample)) != sample && !std::isnan(sample)) {
        // Nothing is rounded away: the samples move to double precision for good.
        samples_.assign(floats_.begin(), floats_.end());
        floats_.clear();
        floats_.shrink_to_fit();
        single_ = false;
    }
    if (single_)
        floats_.push_back(static_cast<float>(sample));
    else
        samples_.push_back(sample);
    if (Stored() % kBlock == 0)
        CloseBlock();
}

void MinMaxPyramid::CloseBlock() {
    // The block just completed, then each level whose last pair it completes: a level-k summary is
    // made once every 2^k blocks, so the levels cost O(1) a block in all.
    const std::size_t first = Stored() - kBlock;
    Summary block;
    for (std::size_t i = first; i < Stored(); ++i)
        block.Add(At(i));
    if (levels_.empty())
        levels_.emplace_back();
    levels_[0].push_back(block);
    for (std::size_t k = 0; levels_[k].size() % 2 == 0; ++k) {
        Summary pair = levels_[k][levels_[k].size() - 2];
        pair.Merge(levels_[k].back());
        if (levels_.size() == k + 1)
            levels_.emplace_back();
        levels_[k + 1].push_back(pair);
    }
}

void MinMaxPyramid::Rebuild() {
    levels_.clear();
    const std::size_t blocks = Stored() / kBlock;
    std::vector<Summary> level(blocks);
    for (std::size_t b = 0; b < blocks; ++b)
        for (std::size_t i = b * kBlock; i < (b + 1) * kBlock; ++i)
            level[b].Add(At(i));
    while (!level.empty()) {
        std::vector<Summary> up(level.size() / 2);
        for (std::size_t j = 0; j < up.size(); ++j) {
            up[j] = level[2 * j];
            up[j].Merge(level[2 * j + 1]);
        }
        levels_.push_back(std::move(level));
        level = std::move(up);
    }
}

void MinMaxPyramid::DropFront(std::size_t count) {
    offset_ += std::min(count, Size());
    // Blocks are aligned to the stored samples, so dropped ones stay until they are half of them;
    // erasing then and rebuilding costs O(what stays), at most what was dropped since the last time.
    if (offset_ * 2 >= Stored()) {
        if (single_)
            floats_.erase(floats_.begin(), floats_.begin() + static_cast<std::ptrdiff_t>(offset_));
        else
            samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(offset_));
        offset_ = 0;
        Rebuild();
    }
}

template <bool kMoments>
MinMaxPyramid::Summary MinMaxPyramid::Gather(std::size_t begin, std::size_t end) const {
    Summary s;
    end = std::min(end, Size());
    if (begin >= end)
        return s;
    begin += offset_;
    end += offset_;
    auto add = [&s](double v) {
        if (kMoments) {
            s.Add(v);
        } else if (std::isfinite(v)) {
            s.min = std::min(s.min, v);
            s.max = std::max(s.max, v);
            ++s.count;
        }
    };
    auto merge = [&s](const Summary& o) {
        if (kMoments) {
            s.Merge(o);
        } else {
            s.min = std::min(s.min, o.min);
            s.max = std::max(s.max, o.max);
            s.count += o.count;
        }
    };
    // Whole blocks inside the range go through the levels; the ragged ends sample by sample.
    std::size_t l = (begin + kBlock - 1) / kBlock;
    std::size_t r = std::min(end / kBlock, levels_.empty() ? std::size_t(0) : levels_[0].size());
    if (l >= r) {
        for (std::size_t i = begin; i < end; ++i)
            add(At(i));
        return s;
    }
    for (std::size_t i = begin; i < l * kBlock; ++i)
        add(At(i));
    for (std::size_t i = r * kBlock; i < end; ++i)
        add(At(i));
    // Bottom-up over the levels: at most two summaries a level.
    for (std::size_t k = 0; l < r && k < levels_.size(); ++k, l /= 2, r /= 2) {
        if (l & 1)
            merge(levels_[k][l++]);
        if (r & 1)
            merge(levels_[k][--r]);
    }
    return s;
}

MinMaxPyramid::Summary MinMaxPyramid::Range(std::size_t begin, std::size_t end) const {
    return Gather<true>(begin, end);
}

MinMaxPyramid::Summary MinMaxPyramid::Extremes(std::size_t begin, std::size_t end) const {
    return Gather<false>(begin, end);
}

std::size_t MinMaxPyramid::IndexOfExtreme(std::size_t begin, std::size_t end, bool largest) const {
    end = std::min(end, Size());
    const Summary all = Extremes(begin, end);
    if (all.count == 0)
        return Size();
    const double target = largest ? all.max : all.min;
    auto extreme = [largest](const Summary& s) { return largest ? s.max : s.min; };
    auto scan = [&](std::size_t a, std::size_t b) {
        for (std::size_t i = a; i < b; ++i)
            if (At(i) == target)
                return i - offset_;
        return Size();
    };
    begin += offset_;
    end += offset_;
    std::size_t l = (begin + kBlock - 1) / kBlock;
    std::size_t r = std::min(end / kBlock, levels_.empty() ? std::size_t(0) : levels_[0].size());
    if (l >= r)
        return scan(begin, end);
    const std::size_t tail = r * kBlock;
    if (const std::size_t i = scan(begin, l * kBlock); i != Size())
        return i;
    // The range's nodes from left to right: those taken at the left end in order, then those taken
    // at the right end in reverse.
    struct Node {
        std::size_t level, index;
    };
    std::vector<Node> left, right;
    for (std::size_t k = 0; l < r && k < levels_.size(); ++k, l /= 2, r /= 2) {
        if (l & 1)
            left.push_back({k, l++});
        if (r & 1)
            right.push_back({k, --r});
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    for (Node node : left) {
        if (extreme(levels_[node.level][node.index]) != target)
            continue;
        for (; node.level > 0; --node.level)
            node.index = extreme(levels_[node.level - 1][2 * node.index]) == target ? 2 * node.index
                                                                                    : 2 * node.index + 1;
        return scan(node.index * kBlock, (node.index + 1) * kBlock);
    }
    return scan(tail, end);
}

void MinMaxPyramid::MarkRows(std::size_t begin, std::size_t end, const RowMap& map,
                             std::vector<unsigned char>& marked) const {
    end = std::min(end, Size());
    if (begin >= end || map.rows <= 0)
        return;
    marked.resize(static_cast<std::size_t>(map.rows), 0);
    // The row as a real number: NaN where a sample has none (not finite; not positive on a log axis).
    auto place = [&map](double v) {
        if (!std::isfinite(v) || (map.logarithmic && !(v > 0.0)))
            return std::nan("");
        return std::floor(map.offset + map.scale * (map.logarithmic ? std::log10(v) : v));
    };
    auto mark = [&](double r) {
        if (r >= 0.0 && r < map.rows)
            marked[static_cast<std::size_t>(r)] = 1;
    };
    auto scan = [&](std::size_t a, std::size_t b) {
        for (std::size_t i = a; i < b; ++i)
            mark(place(At(i)));
    };
    // Whether nothing in the block can mark a new row.
    auto settled = [&](const Summary& s) {
        if (s.count == 0)
            return true;
        const double a = place(s.min), b = place(s.max);
        mark(a);
        mark(b);
        // A log axis's block whose least sample has no row may reach down to the bottom row.
        const double lo = std::max(0.0, std::isnan(a) ? 0.0 : std::min(a, b));
        const double hi = std::min(double(map.rows - 1), std::isnan(a) ? b : std::max(a, b));
        for (double r = lo; r <= hi; ++r)
            if (!marked[static_cast<std::size_t>(r)])
                return false;
        return true;
    };
    auto descend = [&](auto& self, std::size_t level, std::size_t index) -> void {
        if (settled(levels_[level][index]))
            return;
        if (level == 0) {
            scan(index * kBlock, (index + 1) * kBlock);
            return;
        }
        self(self, level - 1, 2 * index);
        self(self, level - 1, 2 * index + 1);
    };
    begin += offset_;
    end += offset_;
    std::size_t l = (begin + kBlock - 1) / kBlock;
    std::size_t r = std::min(end / kBlock, levels_.empty() ? std::size_t(0) : levels_[0].size());
    if (l >= r) {
        scan(begin, end);
        return;
    }
    scan(begin, l * kBlock);
    scan(r * kBlock, end);
    for (std::size_t k = 0; l < r && k < levels_.size(); ++k, l /= 2, r /= 2) {
        if (l & 1)
            descend(descend, k, l++);
        if (r & 1)
            descend(descend, k, --r);
    }
}
