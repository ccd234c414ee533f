#include <trelvogui/datasetrenderer.h>

#include "detail/chartmarks.h"

#include <trelvogui/gui/renderers/detail/targetbarrier.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glvertexbuffer.h>

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <type_traits>

using namespace GraphicsBase;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
// How far a column's extremes are pulled in: what makes decimated and full drawing agree best on
// random walks of 40 to 200 samples a column (the test that compares them measures it).
constexpr double kPull = 0.25;

/// Builds the marks of one frame in pixels: segments joined into paths, point squares or bars.
/// Everything is clipped to the plot area (a pixel or two beyond it) in double precision first, so
/// that a sample far outside the view reaches the GPU as a short, exact segment.
class PathBuilder {
public:
    PathBuilder(std::vector<float>& out, const GUI::Geometry::Rectangle& plot, DataSetRenderer::Style style,
                float width, float marker)
        : out_(out), style_(style), width_(width), marker_(marker) {
        const double pad = 2.0 + std::max(width, marker);
        x0_ = plot.xMin - pad;
        x1_ = plot.xMax + pad;
        y0_ = plot.yMin - pad;
        y1_ = plot.yMax + pad;
    }

    /// The next vertex of the path; `connect` false (or a non-finite position) starts a new piece.
    void Point(double px, double py, bool connect = true) {
        if (!std::isfinite(px) || !std::isfinite(py)) {
            have_ = false;
            return;
        }
        ++vertices_;
        if (style_ == DataSetRenderer::Points) {
            if (px >= x0_ && px <= x1_ && py >= y0_ && py <= y1_) {
                const float h = marker_ * 0.5f;
                trelvo::detail::ChartMarks::AppendRectangle(out_, float(px) - h, float(py) - h, float(px) + h,
                                                            float(py) + h);
            }
        } else if (have_ && connect) {
            if (style_ == DataSetRenderer::Steps) {
                Segment(px0_, py0_, px, py0_);
                Segment(px, py0_, px, py);
            } else {
                Segment(px0_, py0_, px, py);
            }
        }
        px0_ = px;
        py0_ = py;
        have_ = true;
    }
    void Break() { have_ = false; }

    /// A bar between two heights over [xa, xb].
    void Bar(double xa, double xb, double ya, double yb) {
        if (!std::isfinite(ya) || !std::isfinite(yb) || !std::isfinite(xa) || !std::isfinite(xb))
            return;
        xa = std::clamp(xa, x0_, x1_), xb = std::clamp(xb, x0_, x1_);
        ya = std::clamp(ya, y0_, y1_), yb = std::clamp(yb, y0_, y1_);
        if (xa == xb)
            return;
        ++vertices_;
        trelvo::detail::ChartMarks::AppendRectangle(out_, float(std::min(xa, xb)), float(std::min(ya, yb)),
                                                    float(std::max(xa, xb)), float(std::max(ya, yb)));
    }

    std::size_t Vertices() const { return vertices_; }
    /// Lines one pixel wide go as GL lines, everything else as triangles.
    bool Thin() const {
        return style_ != DataSetRenderer::Points && style_ != DataSetRenderer::Bars && width_ <= 1.5f;
    }

private:
    void Segment(double ax, double ay, double bx, double by) {
        // Liang-Barsky against the padded plot area.
        double t0 = 0.0, t1 = 1.0;
        const double dx = bx - ax, dy = by - ay;
        const double p[4] = {-dx, dx, -dy, dy};
        const double q[4] = {ax - x0_, x1_ - ax, ay - y0_, y1_ - ay};
        for (int i = 0; i < 4; ++i) {
            if (p[i] == 0.0) {
                if (q[i] < 0.0)
                    return;
            } else {
                const double t = q[i] / p[i];
                if (p[i] < 0.0)
                    t0 = std::max(t0, t);
                else
                    t1 = std::min(t1, t);
            }
        }
        if (t0 > t1)
            return;
        const float sx = float(ax + t0 * dx), sy = float(ay + t0 * dy);
        const float ex = float(ax + t1 * dx), ey = float(ay + t1 * dy);
        if (Thin())
            out_.insert(out_.end(), {sx, sy, ex, ey});
        else
            trelvo::detail::ChartMarks::AppendWideSegment(out_, sx, sy, ex, ey, width_);
    }

    std::vector<float>& out_;
    DataSetRenderer::Style style_;
    float width_, marker_;
    double x0_, x1_, y0_, y1_;
    double px0_ = 0.0, py0_ = 0.0;
    bool have_ = false;
    std::size_t vertices_ = 0;
};

} // namespace

template <class T> void DataSetRenderer::XColumn::Assign(const T* x, std::size_t count) {
    Clear();
    single_ = std::is_same_v<T, float>;
    if constexpr (std::is_same_v<T, float>)
        floats_.assign(x, x + count);
    else
        doubles_.assign(x, x + count);
}

void DataSetRenderer::XColumn::Append(double x) {
    if (single_ && static_cast<double>(static_cast<float>(x)) != x && !std::isnan(x)) {
        doubles_.assign(floats_.begin(), floats_.end());
        floats_.clear();
        floats_.shrink_to_fit();
        single_ = false;
    }
    if (single_)
        floats_.push_back(static_cast<float>(x));
    else
        doubles_.push_back(x);
}

void DataSetRenderer::XColumn::EraseFront(std::size_t count) {
    if (single_)
        floats_.erase(floats_.begin(), floats_.begin() + static_cast<std::ptrdiff_t>(count));
    else
        doubles_.erase(doubles_.begin(), doubles_.begin() + static_cast<std::ptrdiff_t>(count));
}

void DataSetRenderer::XColumn::Clear() {
    floats_.clear();
    doubles_.clear();
    single_ = true;
}

DataSetRenderer::DataSetRenderer() : marks_(std::make_unique<trelvo::detail::ChartMarks>()) {}

DataSetRenderer::~DataSetRenderer() = default;

bool DataSetRenderer::Initialize() {
    return marks_->Initialize();
}

std::size_t DataSetRenderer::MemoryBytes() const {
    return y_.MemoryBytes() + x_.MemoryBytes() + order_.capacity() * sizeof(std::uint32_t) +
           byX_.MemoryBytes();
}

bool DataSetRenderer::Fits(std::size_t count, bool withX, const char* operation,
                           std::size_t sampleBytes) const {
    // Unsorted x may need the sorted index beside the samples: count it in up front.
    const std::size_t perSample = sampleBytes + (withX ? 2 * sizeof(double) + sizeof(std::uint32_t) : 0);
    const bool indexable = count < std::numeric_limits<std::uint32_t>::max();
    const std::size_t most = indexable ? (budget_ / perSample) : 0;
    if (count <= most && count * perSample + 2 * MinMaxPyramid::SummaryBytes(count) <= budget_)
        return true;
    std::printf(
        "DataSetRenderer::%s(): %zu samples need more than the memory budget of %zu MiB; the data set "
        "is left as it was.\n",
        operation, count, budget_ >> 20);
    return false;
}

template <class T> bool DataSetRenderer::Assign(const T* x, const T* y, std::size_t count) {
    if (count > 0 && !y) {
        std::printf("DataSetRenderer::SetData(): No samples given for a count of %zu.\n", count);
        return false;
    }
    if (!Fits(count, x != nullptr, "SetData", sizeof(T)))
        return false;
    y_.Assign(y, count);
    x_.Clear();
    xOffset_ = 0;
    dropped_ = 0;
    hasX_ = x != nullptr;
    xSorted_ = true;
    if (hasX_) {
        x_.Assign(x, count);
        for (std::size_t i = 0; i < count && xSorted_; ++i)
            xSorted_ = std::isfinite(x_[i]) && (i == 0 || x_[i] >= x_[i - 1]);
    }
    reportedBudget_ = false;
    reportedLog_ = false;
    Touch();
    return true;
}

bool DataSetRenderer::SetData(const float* y, std::size_t count) {
    return Assign<float>(nullptr, y, count);
}
bool DataSetRenderer::SetData(const double* y, std::size_t count) {
    return Assign<double>(nullptr, y, count);
}
bool DataSetRenderer::SetData(const float* x, const float* y, std::size_t count) {
    if (count > 0 && !x) {
        std::printf("DataSetRenderer::SetData(): No x given for a count of %zu.\n", count);
        return false;
    }
    return Assign<float>(x, y, count);
}
bool DataSetRenderer::SetData(const double* x, const double* y, std::size_t count) {
    if (count > 0 && !x) {
        std::printf("DataSetRenderer::SetData(): No x given for a count of %zu.\n", count);
        return false;
    }
    return Assign<double>(x, y, count);
}

bool DataSetRenderer::Append(double y) {
    if (hasX_ && Size() > 0) {
        std::printf("DataSetRenderer::Append(): The data set has explicit x; append x and y.\n");
        return false;
    }
    if (!Fits(Size() + 1, false, "Append", y_.SinglePrecision() ? sizeof(float) : sizeof(double)))
        return false;
    hasX_ = false;
    y_.Append(y);
    Touch();
    return true;
}

bool DataSetRenderer::Append(double x, double y) {
    if (!hasX_ && Size() > 0) {
        std::printf("DataSetRenderer::Append(): The data set has implicit x; append y alone.\n");
        return false;
    }
    if (!Fits(Size() + 1, true, "Append", y_.SinglePrecision() ? sizeof(float) : sizeof(double)))
        return false;
    if (!hasX_) {
        x_.Clear();
        xOffset_ = 0;
        xSorted_ = true;
    }
    hasX_ = true;
    xSorted_ = xSorted_ && std::isfinite(x) && (Size() == 0 || x >= x_[x_.Size() - 1]);
    x_.Append(x);
    y_.Append(y);
    Touch();
    return true;
}

void DataSetRenderer::DropFront(std::size_t count) {
    count = std::min(count, Size());
    if (count == 0)
        return;
    y_.DropFront(count);
    dropped_ += count;
    if (hasX_) {
        xOffset_ += count;
        if (xOffset_ * 2 >= x_.Size()) {
            x_.EraseFront(xOffset_);
            xOffset_ = 0;
        }
        if (!xSorted_) {
            // Dropping the samples that were out of order may sort the rest.
            xSorted_ = true;
            for (std::size_t i = xOffset_; i < x_.Size() && xSorted_; ++i)
                xSorted_ = std::isfinite(x_[i]) && (i == xOffset_ || x_[i] >= x_[i - 1]);
        }
    }
    Touch();
}

void DataSetRenderer::Clear() {
    y_.Clear();
    x_.Clear();
    xOffset_ = 0;
    dropped_ = 0;
    hasX_ = false;
    xSorted_ = true;
    Touch();
}

void DataSetRenderer::Touch() {
    reportedUnsorted_ = false;
    orderValid_ = false;
    order_.clear();
    byX_.Clear();
    DataChanged();
}

double DataSetRenderer::X(std::size_t i) const {
    return hasX_ ? x_[xOffset_ + i] : static_cast<double>(dropped_ + i);
}

void DataSetRenderer::SetStyle(Style style) {
    if (style == style_)
        return;
    style_ = style;
    Changed();
}
void DataSetRenderer::SetColor(const GUI::Color& color) {
    color_ = color;
    Changed();
}
void DataSetRenderer::SetLineWidth(float width) {
    if (!(width > 0.f) || width > 64.f) {
        std::printf("DataSetRenderer::SetLineWidth(): A width of %g pixels is out of range.\n",
                    double(width));
        return;
    }
    lineWidth_ = width;
    Changed();
}
void DataSetRenderer::SetMarkerSize(float size) {
    if (!(size > 0.f) || size > 64.f) {
        std::printf("DataSetRenderer::SetMarkerSize(): A size of %g pixels is out of range.\n", double(size));
        return;
    }
    markerSize_ = size;
    Changed();
}
void DataSetRenderer::SetDecimation(bool on) {
    decimate_ = on;
    Changed();
}

std::size_t DataSetRenderer::LowerIndex(double v, bool after) const {
    const std::size_t n = Size();
    if (std::isnan(v))
        return n;
    if (!hasX_) {
        const double i = (after ? std::floor(v) + 1.0 : std::ceil(v)) - static_cast<double>(dropped_);
        return i <= 0.0 ? 0 : i >= static_cast<double>(n) ? n : static_cast<std::size_t>(i);
    }
    std::size_t lo = xOffset_, hi = x_.Size();
    while (lo < hi) {
        const std::size_t mid = lo + (hi - lo) / 2;
        if (after ? x_[mid] <= v : x_[mid] < v)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo - xOffset_;
}

void DataSetRenderer::EnsureOrder() const {
    if (xSorted_ || orderValid_)
        return;
    const std::size_t n = Size();
    order_.clear();
    for (std::size_t i = 0; i < n; ++i)
        if (std::isfinite(X(i)))
            order_.push_back(static_cast<std::uint32_t>(i));
    std::stable_sort(order_.begin(), order_.end(),
                     [this](std::uint32_t a, std::uint32_t b) { return X(a) < X(b); });
    byX_.Clear();
    byX_.Reserve(order_.size());
    for (std::uint32_t i : order_)
        byX_.Append(Y(i));
    orderValid_ = true;
}

std::size_t DataSetRenderer::NearestIndex(double x) const {
    if (Size() == 0 || std::isnan(x))
        return npos;
    EnsureOrder();
    // Positions in x order: the samples themselves when sorted, the index otherwise.
    const std::size_t count = xSorted_ ? Size() : order_.size();
    auto at = [&](std::size_t k) { return xSorted_ ? k : static_cast<std::size_t>(order_[k]); };
    std::size_t k;
    if (xSorted_) {
        k = LowerIndex(x);
    } else {
        k = static_cast<std::size_t>(
            std::lower_bound(order_.begin(), order_.end(), x,
                             [this](std::uint32_t i, double v) { return X(i) < v; }) -
            order_.begin());
    }
    // The nearest usable sample on each side; gaps (non-finite y) are stepped over, a bounded number
    // of them so that the query stays logarithmic.
    constexpr std::size_t kMostSkipped = 4096;
    std::size_t best = npos;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (std::size_t j = k, s = 0; j < count && s < kMostSkipped; ++j, ++s)
        if (std::isfinite(Y(at(j))) && std::isfinite(X(at(j)))) {
            bestDistance = std::fabs(X(at(j)) - x);
            best = at(j);
            break;
        }
    for (std::size_t j = k, s = 0; j > 0 && s < kMostSkipped; --j, ++s)
        if (std::isfinite(Y(at(j - 1))) && std::isfinite(X(at(j - 1)))) {
            if (std::fabs(X(at(j - 1)) - x) <= bestDistance)
                best = at(j - 1);
            break;
        }
    return best;
}

std::size_t DataSetRenderer::NearestOnScreen(const ChartView& view, double px, double py) const {
    std::size_t best = NearestIndex(view.DataX(px));
    if (best == npos)
        return npos;
    auto distance = [&](std::size_t i) {
        const double dx = view.PixelX(X(i)) - px, dy = view.PixelY(Y(i)) - py;
        return std::isfinite(dy) ? dx * dx + dy * dy : std::numeric_limits<double>::infinity();
    };
    if (xSorted_) {
        const double a = view.DataX(std::floor(px)), b = view.DataX(std::floor(px) + 1.0);
        const std::size_t from = LowerIndex(std::min(a, b)), to = LowerIndex(std::max(a, b));
        for (bool largest : {true, false}) {
            const std::size_t i = y_.IndexOfExtreme(from, to, largest);
            if (i < Size() && distance(i) < distance(best))
                best = i;
        }
    }
    return best;
}

MinMaxPyramid::Summary DataSetRenderer::Statistics(double x0, double x1) const {
    if (std::isnan(x0) || std::isnan(x1))
        return {};
    if (x0 > x1)
        std::swap(x0, x1);
    if (xSorted_)
        return y_.Range(LowerIndex(x0), LowerIndex(x1, true));
    EnsureOrder();
    auto position = [this](double v, bool after) {
        auto less = [this](std::uint32_t i, double w) { return X(i) < w; };
        auto greater = [this](double w, std::uint32_t i) { return w < X(i); };
        return static_cast<std::size_t>((after ? std::upper_bound(order_.begin(), order_.end(), v, greater)
                                               : std::lower_bound(order_.begin(), order_.end(), v, less)) -
                                        order_.begin());
    };
    return byX_.Range(position(x0, false), position(x1, true));
}

bool DataSetRenderer::Bounds(bool xLog, bool yLog, double& x0, double& x1, double& y0, double& y1) const {
    const std::size_t n = Size();
    MinMaxPyramid::Summary ys = y_.Extremes(0, n);
    if (ys.count == 0)
        return false;
    y0 = ys.min;
    y1 = ys.max;
    if (yLog && !(y0 > 0.0)) {
        // The smallest positive sample: a walk, but only for logarithmic axes over such data.
        y0 = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < n; ++i)
            if (y_[i] > 0.0 && std::isfinite(y_[i]))
                y0 = std::min(y0, y_[i]);
        if (!std::isfinite(y0))
            return false;
    }
    if (xSorted_) {
        x0 = X(0);
        x1 = X(n - 1);
    } else {
        x0 = std::numeric_limits<double>::infinity();
        x1 = -x0;
        for (std::size_t i = 0; i < n; ++i)
            if (std::isfinite(X(i))) {
                x0 = std::min(x0, X(i));
                x1 = std::max(x1, X(i));
            }
    }
    if (xLog && !(x0 > 0.0)) {
        x0 = std::numeric_limits<double>::infinity();
        for (std::size_t i = 0; i < n; ++i)
            if (X(i) > 0.0 && std::isfinite(X(i)))
                x0 = std::min(x0, X(i));
    }
    return std::isfinite(x0) && std::isfinite(x1);
}

void DataSetRenderer::Draw(const ChartView& view, unsigned pid, unsigned sid) {
    vertices_.clear();
    pathVertices_ = 0;
    const std::size_t n = Size();
    const int columns = view.plot.Width();
    if (n == 0 || columns <= 0 || view.plot.Height() <= 0)
        return;
    // Widths and marks are given in pixels at display scale 1.
    const float lineWidth = lineWidth_ * view.pixelScale, markerSize = markerSize_ * view.pixelScale;
    PathBuilder path(vertices_, view.plot, style_, lineWidth, markerSize);
    const double lo = std::min(view.xMin, view.xMax), hi = std::max(view.xMin, view.xMax);
    // On a logarithmic y axis a sample that is not positive has no place: it is left out (said once).
    auto reportLog = [this] {
        if (!reportedLog_)
            std::printf(
                "DataSetRenderer: Samples that are not positive are left out on a logarithmic axis.\n");
        reportedLog_ = true;
    };
    auto py = [&](double v) {
        if (view.yLog && v <= 0.0) {
            reportLog();
            return kNaN;
        }
        return view.PixelY(v);
    };
    // Bars stand on zero, or on the bottom of the plot where zero is not on it.
    double base = view.yLog ? kNaN : view.PixelY(0.0);
    if (!std::isfinite(base))
        base = view.plot.yMin;
    base = std::clamp(base, double(view.plot.yMin), double(view.plot.yMax));

    // Samples in x order: the set itself when x is sorted; for marks that need no order between
    // them (points, bars) the index sorted by x otherwise. A line of unsorted x joins the samples in
    // their own order, a curve that only every sample draws right.
    const bool marks = style_ == Points || style_ == Bars;
    if (!xSorted_ && !marks && n > kMostUnsortedLine) {
        if (!reportedUnsorted_)
            std::printf("DataSetRenderer::Draw(): x is not sorted, so a line joins the samples in their own "
                        "order; %zu samples are more than the %zu drawn that way. Sort the samples by x or "
                        "draw them as points.\n",
                        n, kMostUnsortedLine);
        reportedUnsorted_ = true;
        return;
    }
    const bool ordered = xSorted_ || marks;
    if (!xSorted_ && marks)
        EnsureOrder();
    const MinMaxPyramid& ys = xSorted_ ? y_ : byX_;
    const std::size_t count = xSorted_ ? n : marks ? order_.size() : n;
    auto xAt = [&](std::size_t k) { return xSorted_ || !marks ? X(k) : X(order_[k]); };
    auto yAt = [&](std::size_t k) { return xSorted_ || !marks ? Y(k) : byX_[k]; };
    auto lower = [&](double v, bool after) {
        if (xSorted_ || !marks)
            return LowerIndex(v, after);
        if (std::isnan(v))
            return count;
        auto less = [this](std::uint32_t i, double w) { return X(i) < w; };
        auto greater = [this](double w, std::uint32_t i) { return w < X(i); };
        return static_cast<std::size_t>((after ? std::upper_bound(order_.begin(), order_.end(), v, greater)
                                               : std::lower_bound(order_.begin(), order_.end(), v, less)) -
                                        order_.begin());
    };

    std::size_t i0 = 0, i1 = count;
    if (ordered) {
        i0 = lower(lo, false);
        i1 = lower(hi, true);
    }
    const bool decimated = decimate_ && ordered && i1 - i0 > static_cast<std::size_t>(2 * columns);
    if (!decimated) {
        // Every sample, with one neighbour beyond each end so the path runs out of the plot.
        const std::size_t a = i0 > 0 ? i0 - 1 : 0, b = std::min(count, i1 + 1);
        const double barWidth =
            std::max(1.0, 0.8 * columns / std::max<double>(1.0, static_cast<double>(i1 - i0)));
        for (std::size_t i = a; i < b; ++i) {
            const double px = view.PixelX(xAt(i)), y = py(yAt(i));
            if (style_ == Bars)
                path.Bar(px - barWidth / 2, px + barWidth / 2, base, y);
            else
                path.Point(px, y);
        }
    } else {
        const bool reversed = view.xMin > view.xMax;
        // Column j (in ascending x) covers samples [edge(j), edge(j + 1)).
        auto edge = [&](int j) -> std::size_t {
            if (j <= 0)
                return i0;
            if (j >= columns)
                return i1;
            const double px = reversed ? view.plot.xMax - j : view.plot.xMin + j;
            return std::clamp(lower(view.DataX(px), false), i0, i1);
        };
        // Points: one mark on each pixel row that a sample of the column falls into.
        MinMaxPyramid::RowMap rows;
        if (style_ == Points) {
            const double a = view.yLog ? std::log10(view.yMin) : view.yMin;
            const double b = view.yLog ? std::log10(view.yMax) : view.yMax;
            rows.scale = view.plot.Height() / (b - a);
            rows.offset = -a * rows.scale;
            rows.logarithmic = view.yLog;
            rows.rows = view.plot.Height();
            if (view.yLog && ys.Extremes(i0, i1).min <= 0.0)
                reportLog();
        }
        // A partial redraw needs only the columns it covers, and a few beyond them whose marks and
        // segments reach in; those are built exactly as in a whole frame.
        int jFrom = 0, jTo = columns;
        if (const GUI::Geometry::Rectangle* region = GUI::Renderer::detail::DrawRegion()) {
            GLint viewport[4] = {};
            glGetIntegerv(GL_VIEWPORT, viewport);
            GB_CHECK_GL("datasetrenderer");
            const int pad = 3 + static_cast<int>(std::ceil(std::max(lineWidth, markerSize)));
            const int left = region->xMin - viewport[0] - view.plot.xMin - pad;
            const int right = region->xMax - viewport[0] - view.plot.xMin + pad;
            jFrom = std::clamp(reversed ? columns - right : left, 0, columns);
            jTo = std::clamp(reversed ? columns - left : right, jFrom, columns);
        }
        if (i0 > 0 && !marks && jFrom == 0)
            path.Point(view.PixelX(xAt(i0 - 1)), py(yAt(i0 - 1)));
        std::size_t a = edge(jFrom);
        for (int j = jFrom; j < jTo; ++j) {
            const std::size_t b = edge(j + 1);
            if (b <= a)
                continue;
            const double centre = (reversed ? view.plot.xMax - j - 0.5 : view.plot.xMin + j + 0.5);
            if (style_ == Points) {
                rowsMarked_.assign(static_cast<std::size_t>(rows.rows), 0);
                ys.MarkRows(a, b, rows, rowsMarked_);
                for (int r = 0; r < rows.rows; ++r)
                    if (rowsMarked_[static_cast<std::size_t>(r)])
                        path.Point(centre, view.plot.yMin + r + 0.5);
                a = b;
                continue;
            }
            const MinMaxPyramid::Summary s = ys.Extremes(a, b);
            if (style_ == Bars) {
                if (s.count > 0)
                    path.Bar(centre - 0.5, centre + 0.5, std::min(base, py(s.min)),
                             std::max(base, py(s.max)));
                a = b;
                continue;
            }
            const double first = yAt(a), last = yAt(b - 1);
            path.Point(view.PixelX(xAt(a)), py(first));
            if (s.count > 0) {
                // The extremes at the column's centre, the one nearer the first sample first.
                double low = s.min, high = s.max;
                if (view.yLog && low <= 0.0) {
                    // Clipped at the bottom of the plot rather than drawn towards -infinity.
                    reportLog();
                    low = high > 0.0 ? view.DataY(view.plot.yMin - 4.0) : kNaN;
                }
                const bool lowFirst =
                    std::isfinite(first) && std::fabs(first - low) < std::fabs(first - high);
                // A line's last pixel is left out where it ends (the diamond-exit rule), so segments
                // drawn sample to sample often stop short of a turning point: the extremes are
                // pulled in a little towards the column's first and last samples to match.
                double pLow = py(low), pHigh = py(high);
                const double inner0 = std::isfinite(py(first)) ? py(first) : (pLow + pHigh) / 2;
                const double inner1 = std::isfinite(py(last)) ? py(last) : (pLow + pHigh) / 2;
                const double a = std::min(inner0, inner1), b = std::max(inner0, inner1);
                auto pull = [&](double p) {
                    return p < a ? std::min(a, p + kPull) : p > b ? std::max(b, p - kPull) : p;
                };
                pLow = pull(pLow);
                pHigh = pull(pHigh);
                path.Point(centre, lowFirst ? pLow : pHigh);
                path.Point(centre, lowFirst ? pHigh : pLow);
            }
            path.Point(view.PixelX(xAt(b - 1)), py(last));
            a = b;
        }
        if (i1 < count && !marks && jTo == columns)
            path.Point(view.PixelX(xAt(i1)), py(yAt(i1)));
    }
    pathVertices_ = path.Vertices();
    const int mode = path.Thin() ? GLVertexBuffer::Lines : GLVertexBuffer::Triangles;
    marks_->Draw(vertices_, mode, color_, pid, sid, view.plot);
}
