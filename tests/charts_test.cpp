// Chart data without a GL context: the min/max pyramid, a data set's point index and statistics, and
// histogram bins, each against brute force on random data with gaps; bad input.
#include <trelvogui/chartcontrol.h>
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/histogramrenderer.h>
#include <trelvogui/minmaxpyramid.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

MinMaxPyramid::Summary BruteForce(const std::vector<double>& v, std::size_t a, std::size_t b) {
    MinMaxPyramid::Summary s;
    for (std::size_t i = a; i < b && i < v.size(); ++i)
        s.Add(v[i]);
    return s;
}

void ExpectSame(const MinMaxPyramid::Summary& a, const MinMaxPyramid::Summary& b) {
    ASSERT_EQ(a.count, b.count);
    if (a.count == 0)
        return;
    EXPECT_EQ(a.min, b.min);
    EXPECT_EQ(a.max, b.max);
    EXPECT_NEAR(a.mean, b.mean, 1e-9 * (1 + std::fabs(b.mean)));
    EXPECT_NEAR(a.StandardDeviation(), b.StandardDeviation(), 1e-7 * (1 + b.StandardDeviation()));
}

/// Random samples with runs of NaN and the odd infinity.
std::vector<double> Noisy(std::mt19937& rng, std::size_t n) {
    std::normal_distribution<double> value(3.0, 10.0);
    std::uniform_int_distribution<int> kind(0, 99);
    std::vector<double> v(n);
    for (std::size_t i = 0; i < n; ++i) {
        const int k = kind(rng);
        v[i] = k < 4 ? kNaN : k == 4 ? std::numeric_limits<double>::infinity() : value(rng);
    }
    return v;
}

} // namespace

TEST(MinMaxPyramid, RangesMatchBruteForceWhetherBuiltAppendedOrScrolled) {
    std::mt19937 rng(7);
    for (std::size_t n : {0u, 1u, 31u, 32u, 33u, 1000u, 4099u}) {
        SCOPED_TRACE(n);
        const std::vector<double> v = Noisy(rng, n);
        MinMaxPyramid built, appended, scrolled;
        built.Assign(v.data(), n);
        for (double x : v)
            appended.Append(x);
        // A window that drops from the front while it grows: ends up holding the second half.
        std::vector<double> window;
        for (std::size_t i = 0; i < n; ++i) {
            scrolled.Append(v[i]);
            if (i % 2 == 1)
                scrolled.DropFront(1);
        }
        window.assign(v.begin() + static_cast<std::ptrdiff_t>(n / 2), v.end());
        ASSERT_EQ(scrolled.Size(), window.size());
        std::uniform_int_distribution<std::size_t> at(0, n + 2);
        for (int q = 0; q < 300; ++q) {
            std::size_t a = at(rng), b = at(rng);
            if (a > b)
                std::swap(a, b);
            ExpectSame(built.Range(a, b), BruteForce(v, a, b));
            ExpectSame(appended.Range(a, b), BruteForce(v, a, b));
            ExpectSame(scrolled.Range(a, b), BruteForce(window, a, b));
            for (bool largest : {true, false}) {
                const MinMaxPyramid::Summary s = BruteForce(window, a, b);
                const double target = largest ? s.max : s.min;
                size_t first = scrolled.Size();
                for (size_t i = a; i < std::min(b, window.size()) && first == scrolled.Size(); ++i)
                    if (window[i] == target)
                        first = i;
                EXPECT_EQ(scrolled.IndexOfExtreme(a, b, largest), first) << a << " .. " << b;
            }
        }
    }
    EXPECT_LE(MinMaxPyramid::SummaryBytes(1000000), 1000000 * sizeof(float) / 2) << "at most half the data";
}

TEST(MinMaxPyramid, FloatSamplesStayFloatUntilOneNeedsMore) {
    std::mt19937 rng(5);
    const std::vector<double> noisy = Noisy(rng, 100000);
    const std::vector<float> v(noisy.begin(), noisy.end());
    const std::vector<double> rounded(v.begin(), v.end());
    MinMaxPyramid p;
    p.Assign(v.data(), v.size());
    EXPECT_TRUE(p.SinglePrecision());
    EXPECT_LE(p.MemoryBytes(), v.size() * sizeof(float) * 3 / 2) << "samples and summaries";
    p.Append(0.5); // a float holds it: still single precision
    EXPECT_TRUE(p.SinglePrecision());
    p.Append(0.1); // it does not: every sample moves to double, none is rounded
    EXPECT_FALSE(p.SinglePrecision());
    EXPECT_EQ(p[p.Size() - 1], 0.1);
    std::vector<double> all = rounded;
    all.insert(all.end(), {0.5, 0.1});
    for (std::size_t a : {std::size_t(0), std::size_t(777), std::size_t(99990)})
        ExpectSame(p.Range(a, all.size()), BruteForce(all, a, all.size()));
}

TEST(DataSetRenderer, PointIndexAndStatisticsMatchBruteForceSortedOrNot) {
    std::mt19937 rng(11);
    for (bool single : {false, true})
        for (bool sorted : {true, false})
            for (bool implicit : {true, false}) {
                if (implicit && !sorted)
                    continue;
                SCOPED_TRACE(std::string(sorted ? "sorted" : "unsorted") + (implicit ? ", implicit x" : "") +
                             (single ? ", floats" : ""));
                const std::size_t n = 5000;
                std::vector<double> y = Noisy(rng, n), x(n);
                std::uniform_real_distribution<double> spread(-100.0, 100.0);
                for (std::size_t i = 0; i < n; ++i)
                    x[i] = implicit ? double(i) : spread(rng);
                if (sorted)
                    std::sort(x.begin(), x.end());
                const std::vector<float> xf(x.begin(), x.end()), yf(y.begin(), y.end());
                if (single) // the brute force sees what the set holds
                    x.assign(xf.begin(), xf.end()), y.assign(yf.begin(), yf.end());
                DataSetRenderer set;
                ASSERT_TRUE(implicit ? (single ? set.SetData(yf.data(), n) : set.SetData(y.data(), n))
                                     : (single ? set.SetData(xf.data(), yf.data(), n)
                                               : set.SetData(x.data(), y.data(), n)));
                EXPECT_EQ(set.XSorted(), sorted);
                // Samples as given (float stays float) and the pyramid at most half of them.
                const std::size_t sample = single ? sizeof(float) : sizeof(double);
                EXPECT_LE(set.MemoryBytes(), n * sample * (implicit ? 3 : 5) / 2);
                std::uniform_real_distribution<double> where(implicit ? -10.0 : -120.0,
                                                             implicit ? 5010.0 : 120.0);
                for (int q = 0; q < 200; ++q) {
                    const double at = where(rng);
                    // Brute force: the nearest x among samples with finite y.
                    double best = std::numeric_limits<double>::infinity();
                    for (std::size_t i = 0; i < n; ++i)
                        if (std::isfinite(y[i]))
                            best = std::min(best, std::fabs(x[i] - at));
                    const std::size_t found = set.NearestIndex(at);
                    ASSERT_NE(found, DataSetRenderer::npos);
                    EXPECT_TRUE(std::isfinite(y[found]));
                    EXPECT_EQ(std::fabs(x[found] - at), best) << at;

                    double lo = where(rng), hi = where(rng);
                    MinMaxPyramid::Summary expected;
                    for (std::size_t i = 0; i < n; ++i)
                        if (x[i] >= std::min(lo, hi) && x[i] <= std::max(lo, hi))
                            expected.Add(y[i]);
                    ExpectSame(set.Statistics(lo, hi), expected);
                }
                if (single && !implicit) { // an x a float cannot hold moves them all to double, exactly
                    ASSERT_TRUE(set.Append(100.1, 1.0));
                    EXPECT_EQ(set.X(n), 100.1);
                    for (std::size_t i : {std::size_t(0), n / 2, n - 1})
                        EXPECT_EQ(set.X(i), x[i]);
                }
            }
}

TEST(DataSetRenderer, BadInputIsRefusedWithAMessageAndLeavesTheSetAsItWas) {
    DataSetRenderer set;
    const double y[] = {1.0, 2.0, 3.0};
    ASSERT_TRUE(set.SetData(y, 3));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(set.SetData(static_cast<const double*>(nullptr), 5));
    set.SetMemoryBudget(400);
    std::vector<float> many(100, 1.f);
    EXPECT_FALSE(set.SetData(many.data(), many.size()));
    // 10^9 samples are refused before anything is allocated (the pointer is never read).
    set.SetMemoryBudget(std::size_t(1) << 30);
    EXPECT_FALSE(set.SetData(y, std::size_t(1000000000)));
    EXPECT_FALSE(set.Append(1.0, 2.0)) << "explicit x onto implicit x";
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(set.Size(), 3u);
    EXPECT_EQ(set.Y(2), 3.0);
    EXPECT_NE(output.find("memory budget"), std::string::npos) << output;
    EXPECT_NE(output.find("DataSetRenderer::SetData()"), std::string::npos) << output;

    // Edge data: no samples, all NaN, one sample.
    double x0, x1, y0, y1;
    DataSetRenderer empty, gaps, one;
    const double nans[] = {kNaN, kNaN};
    gaps.SetData(nans, 2);
    one.SetData(y, 1);
    for (DataSetRenderer* s : {&empty, &gaps}) {
        EXPECT_FALSE(s->Bounds(false, false, x0, x1, y0, y1));
        EXPECT_EQ(s->NearestIndex(0.5), DataSetRenderer::npos);
        EXPECT_EQ(s->Statistics(-1, 1).count, 0u);
    }
    ASSERT_TRUE(one.Bounds(false, false, x0, x1, y0, y1));
    EXPECT_EQ(x0, x1);
    EXPECT_EQ(one.NearestIndex(-7.0), 0u);

    // A chart fitted to a single sample still gets a range of some width; log axes over data that
    // is not positive keep to the positive samples.
    ChartControl chart;
    chart.SetRectangle({0, 400, 0, 300});
    chart.AddRenderer(&one);
    ASSERT_TRUE(chart.FitToData());
    EXPECT_LT(chart.XMin(), 0.0);
    EXPECT_GT(chart.XMax(), 0.0);
    EXPECT_LT(chart.YMin(), 1.0);
    EXPECT_GT(chart.YMax(), 1.0);
    const double mixed[] = {-5.0, 0.0, 0.02, 300.0};
    DataSetRenderer signed_;
    signed_.SetData(mixed, 4);
    chart.AddRenderer(&signed_);
    ASSERT_TRUE(chart.SetYRange(-1.0, 10.0));
    chart.SetLogY(true); // the range is not positive: the positive data's, in whole decades
    EXPECT_DOUBLE_EQ(chart.YMin(), 0.01);
    EXPECT_DOUBLE_EQ(chart.YMax(), 1000.0);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(chart.SetYRange(-1.0, 10.0)) << "not on a logarithmic axis";
    EXPECT_FALSE(chart.SetXRange(2.0, 2.0));
    EXPECT_NE(testing::internal::GetCapturedStdout().find("ChartControl::SetRanges()"), std::string::npos);
    EXPECT_DOUBLE_EQ(chart.YMin(), 0.01) << "unchanged";
    chart.RemoveRenderer(&signed_);
}

TEST(ChartControl, RangesFollowTheDataOnlyWhenAsked) {
    ChartControl chart;
    chart.SetRectangle({0, 400, 0, 300});
    DataSetRenderer set;
    const double first[] = {0.0, 1.0, 2.0}, later[] = {10.0, 20.0, 30.0, 40.0};
    set.SetData(first, 3);
    chart.AddRenderer(&set);
    ASSERT_TRUE(chart.SetRanges(0.0, 1.0, 0.0, 1.0));
    set.SetData(later, 4);
    EXPECT_EQ(chart.YMax(), 1.0) << "the host's ranges stay by default";
    chart.SetFollowData(true);
    EXPECT_GE(chart.YMax(), 40.0);
    set.Append(100.0);
    EXPECT_GE(chart.YMax(), 100.0);
    EXPECT_GE(chart.XMax(), 4.0);
    chart.RemoveRenderer(&set);
}

TEST(HistogramRenderer, CountsMatchBruteForceForCountsWidthsAndRanges) {
    std::mt19937 rng(5);
    const std::vector<double> v = Noisy(rng, 20000);
    HistogramRenderer h;
    ASSERT_TRUE(h.SetValues(v.data(), v.size()));
    double lo = std::numeric_limits<double>::infinity(), hi = -lo;
    for (double x : v)
        if (std::isfinite(x))
            lo = std::min(lo, x), hi = std::max(hi, x);
    struct Case {
        std::size_t bins;
        double width;
        double from, to; // NaN: the data's own range
    };
    const Case cases[] = {{32, 0, kNaN, kNaN},
                          {7, 0, kNaN, kNaN},
                          {1, 0, kNaN, kNaN},
                          {32, 2.5, kNaN, kNaN},
                          {10, 0, 0.0, 10.0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.bins) + " bins, width " + std::to_string(c.width));
        ASSERT_TRUE(h.SetBinCount(c.bins));
        ASSERT_TRUE(h.SetBinWidth(c.width));
        if (std::isnan(c.from))
            h.SetAutoRange();
        else
            ASSERT_TRUE(h.SetRange(c.from, c.to));
        const double a = std::isnan(c.from) ? lo : c.from, b = std::isnan(c.from) ? hi : c.to;
        const std::size_t bins =
            c.width > 0 ? static_cast<std::size_t>(std::ceil((b - a) / c.width)) : c.bins;
        ASSERT_EQ(h.Counts().size(), bins);
        std::vector<std::size_t> expected(bins, 0);
        std::size_t outside = 0;
        for (double x : v) {
            if (!std::isfinite(x) || x < a || x > b) {
                ++outside;
                continue;
            }
            std::size_t k = 0;
            while (k + 1 < bins && x >= a + h.BinWidth() * static_cast<double>(k + 1))
                ++k;
            ++expected[k];
        }
        EXPECT_EQ(h.Counts(), expected);
        EXPECT_EQ(h.LeftOut(), outside);
    }
    h.SetCumulative(true);
    EXPECT_DOUBLE_EQ(h.Height(h.Counts().size() - 1), double(v.size() - h.LeftOut())) << "every value binned";
    h.SetLogCounts(true);
    EXPECT_NEAR(h.Height(0), std::log10(1.0 + double(h.Counts()[0])), 1e-12);

    testing::internal::CaptureStdout();
    EXPECT_FALSE(h.SetBinCount(0));
    EXPECT_FALSE(h.SetBinWidth(-1.0));
    EXPECT_FALSE(h.SetBinWidth(1e-12)) << "too many bins";
    EXPECT_FALSE(h.SetRange(3.0, 3.0));
    EXPECT_FALSE(h.SetValues(static_cast<const float*>(nullptr), 3));
    EXPECT_NE(testing::internal::GetCapturedStdout().find("HistogramRenderer"), std::string::npos);
    EXPECT_EQ(h.Counts().size(), 10u) << "unchanged";
}
