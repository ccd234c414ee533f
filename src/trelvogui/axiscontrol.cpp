#include <trelvogui/axiscontrol.h>

#include <trelvogui/chartrenderer.h>

#include "gui/renderers/detail/targetbarrier.h"
#include "gui/renderers/detail/uniforms.h"

#include <trelvogui/gui/label.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

using namespace GraphicsBase;

namespace {

constexpr const char* kFile = "axiscontrol";

// The band's marks, in pixels: a baseline along the edge and a mark across the band at each tick.
constexpr float kBaselineDepth = 2.f;
constexpr float kMarkWidth = 2.f;
// Numbers and title, in pixels at display scale 1.
constexpr int kLabelFontSize = 16;
// Marks closer than a mark and a gap merge into a solid band, and every tick owns a label control:
// no more intervals than that, and never more than a few thousand however long the axis.
constexpr int kMinTickPitch = 4;
constexpr int kMaxIntervals = 4096;

int MaxIntervals(int pixels) {
    return std::clamp(std::abs(pixels) / kMinTickPitch, 1, kMaxIntervals);
}

// Float to int without undefined behaviour for NaN or out-of-range values.
int TruncateToInt(double v) {
    if (std::isnan(v))
        return 0;
    if (v >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (v <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(v);
}

bool IsHorizontal(int orientation) {
    return orientation == AxisControl::AlongYMin || orientation == AxisControl::AlongYMax;
}
bool IsVertical(int orientation) {
    return orientation == AxisControl::AlongXMax || orientation == AxisControl::AlongXMin;
}

void AppendQuad(std::vector<float>& out, float x0, float x1, float y0, float y1, const float rgba[4]) {
    const float corners[6][2] = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y0}, {x1, y1}, {x0, y1}};
    for (const auto& c : corners) {
        out.insert(out.end(), {c[0], c[1]});
        out.insert(out.end(), rgba, rgba + 4);
    }
}

// Texts of nice ticks and decades: fixed with as few decimals as the step needs while that stays
// short, otherwise one shared power of ten.
constexpr int kMostFixedDecimals = 4;
constexpr int kFirstExponentShown = 6;
// No axis needs more ticks than this; it also bounds the work for absurd requests.
constexpr int kMostTicks = 1000;
// Minor ticks of a logarithmic axis only where a decade gets at least this many pixels.
constexpr float kMinorDecadePixels = 30.f;

double PowerOfTen(int e) {
    return std::pow(10.0, e);
}

// k times mantissa times 10^e with one rounding where it can: dividing by an exact power of ten
// gives 0.6 for 3 x 2e-1, where multiplying by 0.1 would not.
double StepMultiple(double k, double mantissa, int e) {
    return e < 0 ? k * mantissa / PowerOfTen(-e) : k * mantissa * PowerOfTen(e);
}

std::string Printed(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string Printed(const char* format, ...) {
    char text[64];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

std::string DecadeText(int k) {
    if (k >= 0 && k < kFirstExponentShown)
        return Printed("%.0f", PowerOfTen(k));
    if (k < 0 && -k <= kMostFixedDecimals)
        return Printed("%.*f", -k, PowerOfTen(k));
    return Printed("1e%d", k);
}

} // namespace

void AxisControl::NiceTicks(double lo, double hi, int wanted, std::vector<double>& values,
                            std::vector<std::string>& texts) {
    values.clear();
    texts.clear();
    if (!std::isfinite(lo) || !std::isfinite(hi))
        return;
    if (lo > hi)
        std::swap(lo, hi);
    if (lo == hi) {
        values.push_back(lo);
        texts.push_back(Printed("%.6g", lo == 0.0 ? 0.0 : lo));
        return;
    }
    const double span = hi - lo;
    if (!std::isfinite(span))
        return;
    wanted = std::clamp(wanted, 1, kMostTicks - 1);
    const double raw = span / wanted;
    int e = static_cast<int>(std::floor(std::log10(raw)));
    const double normalised = raw / PowerOfTen(e);
    double mantissa = normalised <= 1.0 ? 1.0 : normalised <= 2.0 ? 2.0 : normalised <= 5.0 ? 5.0 : 10.0;
    if (mantissa == 10.0) {
        mantissa = 1.0;
        ++e;
    }
    // Rounding up may leave fewer than two ticks inside a short range: step down the 1-2-5 ladder
    // until two fit. Ends within a ten-thousandth of a step count as on a tick: ranges often arrive
    // in float, where 0.7 is a little less than 0.7.
    constexpr double kSlack = 1e-4;
    double first = 0.0, last = -1.0;
    for (int tries = 0; tries < 8; ++tries) {
        const double step = StepMultiple(1.0, mantissa, e);
        first = std::ceil(lo / step - kSlack);
        last = std::floor(hi / step + kSlack);
        if (last - first >= 1.0)
            break;
        mantissa = mantissa == 1.0 ? 5.0 : mantissa == 5.0 ? 2.0 : 1.0;
        if (mantissa == 5.0)
            --e;
    }
    if (last - first + 1.0 > kMostTicks)
        last = first + kMostTicks - 1;
    double largest = 0.0;
    for (double k = first; k <= last; k += 1.0) {
        values.push_back(StepMultiple(k, mantissa, e));
        largest = std::max(largest, std::fabs(values.back()));
    }
    const int decimals = std::max(0, -e);
    const int magnitude = largest > 0.0 ? static_cast<int>(std::floor(std::log10(largest))) : 0;
    const bool fixed = decimals <= kMostFixedDecimals && magnitude < kFirstExponentShown;
    for (double v : values) {
        if (v == 0.0)
            texts.push_back("0");
        else if (fixed)
            texts.push_back(Printed("%.*f", decimals, v));
        else
            texts.push_back(
                Printed("%.*fe%d", std::max(0, magnitude - e), v / PowerOfTen(magnitude), magnitude));
    }
}

AxisControl::AxisControl() {
    // Its tick band may sit beside the rectangle (orientation 3): a cached layer holding an axis is
    // redrawn whole.
    SetDrawsOutsideRenderRectangle(true);
    SetDimsWhenDisabled(true);
}

AxisControl::~AxisControl() {
    // Take the labels out of the child list directly: RemoveChild would request a redraw up a
    // parent chain that may already be gone while the host tears its tree down.
    auto dropChild = [this](GUI::Controls::Base* child) {
        Children()->remove(child);
        delete child;
    };
    for (GUI::Controls::Label* label : numberLabels_)
        dropChild(label);
    numberLabels_.clear();
    if (titleLabel_)
        dropChild(titleLabel_);
    titleLabel_ = nullptr;
    delete vertexBuffer_;
    delete program_;
}

bool AxisControl::Initialize() {
    GL::GLScopedBindings hostState;
    delete vertexBuffer_;
    vertexBuffer_ = nullptr;
    delete program_;
    program_ = new GLSLProgram();
    if (!program_->addShader("BackgroundMV.vs") || !program_->addShader("Background.fs") ||
        !program_->linkProgram())
        return false;
    GUI::Renderer::detail::BuildFetchProgram(fetchProgram_, "BackgroundMV.vs", "Background.fs");
    return BuildGeometry();
}

void AxisControl::SetRectangle(GUI::Geometry::Rectangle r) {
    std::weak_ptr<const void> alive = LifeToken();
    Base::SetRectangle(r);
    if (alive.expired()) // deleted by a RectangleChangedSignal handler
        return;
    Update();
}

void AxisControl::ShowTitle(bool show) {
    showTitle_ = show;
}
void AxisControl::ShowTicks(bool show) {
    showTicks_ = show;
}
void AxisControl::ShowNumbers(bool show) {
    showNumbers_ = show;
}

void AxisControl::SetAxisType(AxisType type) {
    if (type == axisType_)
        return;
    axisType_ = type;
    Update();
}

void AxisControl::SetTickSpacing(int spacing) {
    if (spacing < 1) {
        std::printf("AxisControl::SetTickSpacing(): Tick spacing must be at least 1 pixel, got %d.\n",
                    spacing);
        return;
    }
    if (spacing == tickSpacing_)
        return;
    tickSpacing_ = spacing;
    Update();
}

void AxisControl::SetTickCount(int n) {
    if (n < -1 || n >= kMaxIntervals) {
        std::printf("AxisControl::SetTickCount(): %d is outside -1 .. %d.\n", n, kMaxIntervals - 1);
        return;
    }
    tickCount_ = n;
    intervalCount_ = n + 1;
}

void AxisControl::SetRange(float min, float max) {
    min_ = min;
    max_ = max;
    reportedLogRange_ = false;
    ComputeTicks();
    FormatNumbers();
    PlaceNumbers();
    BuildGeometry();
    SetNeedsRedraw(true);
}

void AxisControl::SetOrientation(Orientation orientation) {
    orientation_ = orientation;
    // The band's marks are laid out for the edge they run along; the labels stay where they are.
    BuildGeometry();
    SetNeedsRedraw(true);
}

void AxisControl::SetTitle(std::wstring title) {
    title_ = std::move(title);
    if (titleLabel_)
        titleLabel_->SetText(title_);
}

void AxisControl::SetFontColor(const GUI::Color& color) {
    fontColor_ = color;
    if (titleLabel_)
        titleLabel_->SetColor(color);
    for (GUI::Controls::Label* label : numberLabels_)
        label->SetColor(color);
    // The band carries the colour in its vertices.
    BuildGeometry();
}

int AxisControl::GetTickSpacing() const {
    return tickSpacing_;
}
float AxisControl::GetMin() const {
    return min_;
}
float AxisControl::GetMax() const {
    return max_;
}
AxisControl::Orientation AxisControl::GetOrientation() const {
    return orientation_;
}
std::wstring AxisControl::GetTitle() const {
    return title_;
}

void AxisControl::Update() {
    const GUI::Geometry::Rectangle& r = GetRectangle();
    if (IsHorizontal(orientation_))
        intervalCount_ = TruncateToInt(static_cast<float>(r.Width()) / static_cast<float>(std::max(1, Scaled(tickSpacing_))));
    else if (IsVertical(orientation_))
        intervalCount_ = TruncateToInt(static_cast<float>(r.Height()) / static_cast<float>(std::max(1, Scaled(tickSpacing_))));
    if (intervalCount_ < 1)
        intervalCount_ = 1;
    // An explicit request wins over the spacing.
    if (tickCount_ != 0)
        intervalCount_ = tickCount_ + 1;
    const int length = IsVertical(orientation_) ? r.Height() : r.Width();
    if (intervalCount_ > MaxIntervals(length)) {
        std::printf("AxisControl::Update(): %d intervals do not fit on %d pixels; %d are shown.\n",
                    intervalCount_, std::abs(length), MaxIntervals(length));
        intervalCount_ = MaxIntervals(length);
    }
    ComputeTicks();
    LayoutTitle();
    FormatNumbers();
    PlaceNumbers();
    BuildGeometry();
}

void AxisControl::ComputeTicks() {
    tickFractions_.clear();
    tickValues_.clear();
    tickTexts_.clear();
    minorFractions_.clear();
    if (axisType_ == EvenlyDivided) {
        // A tick count of -1 asks for no intervals; the single tick then sits at the start.
        const float intervals = static_cast<float>(intervalCount_);
        for (int i = 0; i <= intervalCount_; ++i) {
            float fraction = intervalCount_ > 0 ? static_cast<float>(i) / intervals : 0.f;
            tickFractions_.push_back(fraction);
            tickValues_.push_back((max_ - min_) * fraction + min_);
        }
    } else if (axisType_ == IntegerSteps) {
        // The steps are sized from the control's width whatever the orientation, so a vertical axis
        // beside a plot of the same width gets the same integer steps as the plot's horizontal axis.
        const int width = GetRectangle().Width();
        const int columns = std::clamp(width / std::max(1, Scaled(tickSpacing_)), 1, MaxIntervals(width));
        const double range = static_cast<double>(max_) - static_cast<double>(min_);
        double step = std::trunc(std::ceil(range / columns));
        if (!(step >= 1.0))
            step = 1.0;
        intervalCount_ = TruncateToInt(std::floor(range / step));
        // An empty or reversed range still gets one interval.
        if (intervalCount_ < 1)
            intervalCount_ = 1;
        const double denominator = std::max(std::trunc(range), static_cast<double>(intervalCount_));
        for (int i = 0; i <= intervalCount_; ++i) {
            // In double and with the step multiplied first, so whole steps stay whole before "%d"
            // truncates them.
            const double offset = i * step;
            tickFractions_.push_back(static_cast<float>(offset / denominator));
            tickValues_.push_back(static_cast<float>(range * offset / denominator + min_));
        }
    } else if (axisType_ == NiceSteps) {
        ComputeNiceTicks(WantedIntervals());
    } else if (axisType_ == Logarithmic) {
        ComputeLogTicks(WantedIntervals());
    }
    RebuildNumberLabels();
}

int AxisControl::WantedIntervals() {
    if (tickCount_ != 0)
        return std::max(1, tickCount_ + 1);
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const int length = IsVertical(orientation_) ? r.Height() : r.Width();
    return std::max(1, length / std::max(1, Scaled(tickSpacing_)));
}

double AxisControl::FractionOf(double value) const {
    return ChartView::Fraction(value, min_, max_, axisType_ == Logarithmic);
}

double AxisControl::ValueAt(double fraction) const {
    return ChartView::Value(fraction, min_, max_, axisType_ == Logarithmic);
}

void AxisControl::ComputeNiceTicks(int wanted) {
    std::vector<double> values;
    NiceTicks(min_, max_, wanted, values, tickTexts_);
    for (double v : values) {
        // Ends a hair past a tick still show it, at the end.
        const double f = FractionOf(v);
        tickFractions_.push_back(std::isnan(f) ? 0.5f : static_cast<float>(std::clamp(f, 0.0, 1.0)));
        tickValues_.push_back(static_cast<float>(v));
    }
    KeepFractionsAscending();
    intervalCount_ = static_cast<int>(tickValues_.size()) - 1;
}

void AxisControl::KeepFractionsAscending() {
    // A reversed range runs its ticks from the far end.
    if (min_ > max_) {
        std::reverse(tickFractions_.begin(), tickFractions_.end());
        std::reverse(tickValues_.begin(), tickValues_.end());
        std::reverse(tickTexts_.begin(), tickTexts_.end());
    }
}

void AxisControl::ComputeLogTicks(int wanted) {
    const double lo = std::min(min_, max_), hi = std::max(min_, max_);
    if (!(lo > 0.0) || !std::isfinite(hi)) {
        if (!reportedLogRange_)
            std::printf("AxisControl: A logarithmic axis needs a positive range; %g .. %g gets no ticks.\n",
                        static_cast<double>(min_), static_cast<double>(max_));
        reportedLogRange_ = true;
        intervalCount_ = -1;
        return;
    }
    reportedLogRange_ = false;
    constexpr double kSlack = 1e-6; // in decades: a float bound of 1e-9 is 1e-9, not 1e-10

    const int firstDecade = static_cast<int>(std::ceil(std::log10(lo) - kSlack));
    const int lastDecade = static_cast<int>(std::floor(std::log10(hi) + kSlack));
    if (lastDecade - firstDecade < 1) {
        // Less than a decade: nice values, placed on the logarithmic scale.
        ComputeNiceTicks(wanted);
        return;
    }
    const int every = std::max(1, (lastDecade - firstDecade + wanted - 1) / wanted);
    const int start = static_cast<int>(std::ceil(static_cast<double>(firstDecade) / every)) * every;
    for (int k = start; k <= lastDecade; k += every) {
        tickValues_.push_back(static_cast<float>(PowerOfTen(k)));
        tickFractions_.push_back(static_cast<float>(FractionOf(PowerOfTen(k))));
        tickTexts_.push_back(DecadeText(k));
    }
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const float length = static_cast<float>(IsVertical(orientation_) ? r.Height() : r.Width());
    const float decadePixels = length / static_cast<float>(std::log10(hi) - std::log10(lo));
    if (every == 1 && decadePixels >= kMinorDecadePixels * DisplayScale())
        for (int k = firstDecade - 1; k <= lastDecade; ++k)
            for (int j = 2; j <= 9; ++j) {
                const double v = j * PowerOfTen(k);
                if (v >= lo && v <= hi)
                    minorFractions_.push_back(static_cast<float>(FractionOf(v)));
            }
    KeepFractionsAscending();
    intervalCount_ = static_cast<int>(tickValues_.size()) - 1;
}

void AxisControl::RebuildNumberLabels() {
    const std::size_t wanted = intervalCount_ >= 0 ? static_cast<std::size_t>(intervalCount_) + 1 : 0;
    if (numberLabels_.size() == wanted)
        return;
    for (GUI::Controls::Label* label : numberLabels_) {
        RemoveChild(label);
        delete label;
    }
    numberLabels_.clear();
    numberLabels_.reserve(wanted);
    for (std::size_t i = 0; i < wanted; ++i) {
        auto* label = new GUI::Controls::Label();
        label->SetColor(fontColor_);
        numberLabels_.push_back(label);
        AddChild(label);
    }
}

void AxisControl::FormatNumbers() {
    RebuildNumberLabels();
    int shownExponent = 0;
    if (axisType_ == EvenlyDivided && !(min_ == 0.f && max_ == 0.f)) {
        const double magnitude = std::max(std::log10(std::fabs(static_cast<double>(max_))),
                                          std::log10(std::fabs(static_cast<double>(min_))));
        const int e = TruncateToInt(magnitude);
        shownExponent = std::abs(e) >= 3 ? e : 0;
    }
    const double scale = std::pow(10.0, shownExponent);
    char text[64];
    const std::size_t count = std::min(numberLabels_.size(), tickValues_.size());
    numberTexts_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const float value = tickValues_[i];
        if (i < tickTexts_.size())
            std::snprintf(text, sizeof text, "%s", tickTexts_[i].c_str());
        else if (axisType_ == IntegerSteps)
            std::snprintf(text, sizeof text, "%d", TruncateToInt(value));
        else if (shownExponent != 0)
            std::snprintf(text, sizeof text, "%.3fe%d", value / scale, shownExponent);
        else
            std::snprintf(text, sizeof text, "%.3f", static_cast<double>(value));
        std::wstring& wide = numberTexts_[i];
        wide.clear();
        for (const char* c = text; *c != '\0'; ++c)
            wide.push_back(static_cast<wchar_t>(static_cast<unsigned char>(*c)));
    }
    // A tick that keeps its number keeps the label that shows it, wherever the tick moved: after a
    // pan every tick's index shifts, and only the numbers new to the axis are rasterised again. (The
    // first two types keep their labels in place, text and all, as they always have.)
    if (axisType_ != NiceSteps && axisType_ != Logarithmic) {
        for (std::size_t i = 0; i < count; ++i)
            numberLabels_[i]->SetText(numberTexts_[i]);
        return;
    }
    labelsByText_.assign(numberLabels_.begin(), numberLabels_.begin() + static_cast<std::ptrdiff_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        numberLabels_[i] = nullptr;
        for (GUI::Controls::Label*& label : labelsByText_)
            if (label && label->GetTextRecord()->string == numberTexts_[i]) {
                numberLabels_[i] = label;
                label = nullptr;
                break;
            }
    }
    auto spare = labelsByText_.begin();
    for (std::size_t i = 0; i < count; ++i) {
        if (numberLabels_[i])
            continue;
        while (!*spare)
            ++spare;
        numberLabels_[i] = *spare++;
        numberLabels_[i]->SetText(numberTexts_[i]);
    }
}

int AxisControl::Scaled(int pixels) const {
    return static_cast<int>(std::lround(static_cast<float>(pixels) * DisplayScale()));
}

void AxisControl::OnDisplayScaleChanged() {
    Update();
    SetNeedsRedraw(true);
}

void AxisControl::PlaceNumbers() {
    RebuildNumberLabels();
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const int w = r.Width();
    const int h = r.Height();
    const int l = Scaled(tickLength_);
    const int fontSize = Scaled(kLabelFontSize);
    // Aligned on every layout, not only when made: the orientation may have changed since.
    const int horizontal[] = {1, 1, 2, 0};
    const int vertical[] = {0, 2, 1, 1};
    for (GUI::Controls::Label* label : numberLabels_) {
        label->SetHorizontalAlignment(horizontal[orientation_]);
        label->SetVerticalAlignment(vertical[orientation_]);
        label->SetFontSize(static_cast<unsigned>(fontSize));
    }
    const std::size_t count = std::min(numberLabels_.size(), tickFractions_.size());
    for (std::size_t i = 0; i < count; ++i) {
        const float f = tickFractions_[i];
        const int t = TruncateToInt(static_cast<float>(w) * f);
        const int u = TruncateToInt(static_cast<float>(h) * f);
        switch (orientation_) {
        case AlongYMin:
            numberLabels_[i]->SetRectangle({t - Scaled(25), t + Scaled(25), l, l + Scaled(20)});
            break;
        case AlongYMax:
            numberLabels_[i]->SetRectangle({t - Scaled(25), t + Scaled(25), h - l - Scaled(20), h - l});
            break;
        case AlongXMax:
            numberLabels_[i]->SetRectangle({w - l - Scaled(50), w - l, u - Scaled(10), u + Scaled(10)});
            break;
        case AlongXMin:
            numberLabels_[i]->SetRectangle({l, l + Scaled(50), u - Scaled(10), u + Scaled(10)});
            break;
        }
    }
}

void AxisControl::LayoutTitle() {
    if (!titleLabel_) {
        titleLabel_ = new GUI::Controls::Label();
        titleLabel_->SetHorizontalAlignment(1);
        titleLabel_->SetVerticalAlignment(1);
        titleLabel_->SetColor(fontColor_);
        titleLabel_->SetText(title_);
        AddChild(titleLabel_);
    }
    // Turned on every layout: a horizontal axis made vertical reads its title along the band.
    if (IsHorizontal(orientation_))
        titleLabel_->SetOrientation(0);
    else if (IsVertical(orientation_))
        titleLabel_->SetOrientation(1);
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const int w = r.Width();
    const int h = r.Height();
    const int l = Scaled(tickLength_);
    const int t = Scaled(kLabelFontSize);
    titleLabel_->SetFontSize(static_cast<unsigned>(t));
    switch (orientation_) {
    case AlongYMin:
        titleLabel_->SetRectangle({0, w, h, h + t});
        break;
    case AlongYMax:
        titleLabel_->SetRectangle({0, w, h - l - Scaled(40), h - l - Scaled(24)});
        break;
    case AlongXMax:
        titleLabel_->SetRectangle({0, t, 0, h});
        break;
    case AlongXMin:
        titleLabel_->SetRectangle({w, w + t, 0, h});
        break;
    }
}

bool AxisControl::BuildGeometry() {
    // Geometry lives on the GPU; before a successful Initialize there is nothing to build it for.
    if (!program_ || !program_->isLinked())
        return true;
    GL::GLScopedBindings hostState;
    if (!vertexBuffer_) {
        vertexBuffer_ = new GLVertexBuffer();
        vertexBuffer_->addAttribute(2, GL_FLOAT);
        vertexBuffer_->addAttribute(4, GL_FLOAT);
        if (!vertexBuffer_->finishLayout()) {
            delete vertexBuffer_;
            vertexBuffer_ = nullptr;
            return false;
        }
    }

    // The band is built in a unit square: x runs along the axis (0..1 over its length), y across it
    // from the edge (0) to the side the numbers are on (1). DrawCustom scales it to the length and
    // the tick length and turns it onto the right edge, so marks are sized here in pixels of that
    // length and depth.
    const GUI::Geometry::Rectangle& r = GetRectangle();
    const float length = static_cast<float>(IsVertical(orientation_) ? r.Height() : r.Width());
    const float depth = static_cast<float>(Scaled(tickLength_));
    const float rgba[4] = {fontColor_.r / 255.f, fontColor_.g / 255.f, fontColor_.b / 255.f,
                           fontColor_.a / 255.f};
    bandVertices_.clear();
    if (length > 0.f && depth != 0.f) {
        const float baseline = std::min(1.f, kBaselineDepth * DisplayScale() / std::fabs(depth));
        AppendQuad(bandVertices_, 0.f, 1.f, 0.f, baseline, rgba);
        const float mark = std::min(1.f, kMarkWidth * DisplayScale() / length);
        auto addMark = [&](float f, float across) {
            // The same pixel the number label is centred on; the x-min orientation runs its band
            // from the top down, so its marks are mirrored to stay beside their numbers.
            float t = std::trunc(length * f) / length;
            if (orientation_ == AlongXMin)
                t = 1.f - t;
            const float x0 = std::clamp(t - mark * 0.5f, 0.f, 1.f - mark);
            AppendQuad(bandVertices_, x0, x0 + mark, 0.f, across, rgba);
        };
        for (float f : tickFractions_)
            addMark(f, 1.f);
        // Minor ticks reach half across the band.
        for (float f : minorFractions_)
            addMark(f, 0.5f);
    }
    return vertexBuffer_->upload(bandVertices_.data(), static_cast<int>(bandVertices_.size() / 6), nullptr, 0,
                                 GLVertexBuffer::Usage::Dynamic);
}

void AxisControl::DrawCustom() {
    if (!program_ || !vertexBuffer_ || !program_->isLinked())
        return;
    GL::GLScopedBindings hostState;
    GLSLProgram& drawing = GUI::Renderer::detail::BeginTargetDraw(*program_, fetchProgram_.get());
    const GLuint program = drawing.getProgram();
    GUI::Renderer::detail::SetViewportProjection(program);

    const GUI::Geometry::Rectangle& r = GetRectangle();
    const float w = static_cast<float>(r.Width());
    const float h = static_cast<float>(r.Height());
    const float l = static_cast<float>(Scaled(tickLength_));
    glm::vec3 scale(1.f);
    glm::vec3 corner(0.f);
    float angle = 0.f;
    switch (orientation_) {
    case AlongYMin:
        scale = {w, l, 1.f};
        corner = {r.xMin, r.yMin, 0.f};
        break;
    case AlongYMax:
        scale = {w, -l, 1.f};
        corner = {r.xMin, r.yMax, 0.f};
        break;
    case AlongXMax:
        scale = {h, l, 1.f};
        angle = glm::half_pi<float>();
        corner = {r.xMax, r.yMin, 0.f};
        break;
    case AlongXMin:
        scale = {h, -l, 1.f};
        angle = -glm::half_pi<float>();
        corner = {r.xMin, r.yMax, 0.f};
        break;
    default:
        // No edge to draw along.
        drawing.end();
        return;
    }
    glm::mat4 modelView = glm::translate(glm::mat4(1.f), corner);
    if (angle != 0.f)
        modelView = glm::rotate(modelView, angle, glm::vec3(0.f, 0.f, 1.f));
    modelView = glm::scale(modelView, scale);
    const GLint modelViewLocation = GUI::Renderer::detail::UniformLocationQuiet(program, "ModelViewMatrix");
    if (modelViewLocation != -1) {
        glUniformMatrix4fv(modelViewLocation, 1, GL_FALSE, glm::value_ptr(modelView));
        GB_CHECK_GL(kFile);
    }

    // Ids, like every overlay draw.
    glUniform1ui(GUI::Renderer::detail::UniformLocationQuiet(program, "pid"), GetId());
    GB_CHECK_GL(kFile);
    glUniform1ui(GUI::Renderer::detail::UniformLocationQuiet(program, "sid"), 0u);
    GB_CHECK_GL(kFile);

    GUI::Renderer::detail::TargetBarrier(&drawing == program_);
    vertexBuffer_->draw(GLVertexBuffer::Triangles);
    drawing.end();
}
