// Axis layout without a GL context: tick counts, tick values, number texts and label placement.
#include <trelvogui/axiscontrol.h>
#include <trelvogui/gui/label.h>

#include <gtest/gtest.h>

#include <map>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

using namespace GraphicsBase;

using GUI::Geometry::Rectangle;

namespace {

std::vector<std::wstring> Texts(const AxisControl& axis) {
    std::vector<std::wstring> out;
    for (GUI::Controls::Label* label : axis.GetNumberLabels())
        out.push_back(label->GetText());
    return out;
}

struct IntervalCase {
    const char* name;
    Rectangle rectangle;
    AxisControl::Orientation orientation;
    int spacing;
    int tickCount;
    int intervals;
};

const IntervalCase kIntervalCases[] = {
    {"horizontal 400 px at 40", {0, 400, 0, 30}, AxisControl::AlongYMin, 40, 0, 10},
    {"horizontal 400 px at 50", {10, 410, 0, 30}, AxisControl::AlongYMax, 50, 0, 8},
    {"vertical axes use the height", {0, 30, 0, 400}, AxisControl::AlongXMax, 40, 0, 10},
    {"shorter than one spacing", {0, 30, 0, 10}, AxisControl::AlongYMin, 40, 0, 1},
    {"reversed rectangle", {400, 0, 0, 30}, AxisControl::AlongYMin, 40, 0, 1},
    {"a tick count wins over the spacing", {0, 400, 0, 30}, AxisControl::AlongYMin, 40, 4, 5},
    {"a tick count on a vertical axis", {0, 30, 0, 400}, AxisControl::AlongXMin, 40, 2, 3},
};

} // namespace

TEST(AxisControl, IntervalsComeFromTheSpacingUnlessACountIsRequested) {
    for (const IntervalCase& c : kIntervalCases) {
        SCOPED_TRACE(c.name);
        AxisControl axis;
        axis.SetOrientation(c.orientation);
        axis.SetTickSpacing(c.spacing);
        axis.SetTickCount(c.tickCount);
        axis.SetRectangle(c.rectangle);
        EXPECT_EQ(axis.GetIntervalCount(), c.intervals);
        EXPECT_EQ(axis.GetNumberLabels().size(), static_cast<size_t>(c.intervals + 1));
        ASSERT_EQ(axis.GetTickFractions().size(), static_cast<size_t>(c.intervals + 1));
        EXPECT_EQ(axis.GetTickFractions().front(), 0.f);
        EXPECT_EQ(axis.GetTickFractions().back(), 1.f);
        EXPECT_EQ(axis.GetTickValues().back(), 1.f);
        // Title plus one label per tick, all owned children.
        EXPECT_EQ(axis.Children()->size(), static_cast<size_t>(c.intervals + 2));
    }
}

TEST(AxisControl, TickCountTakesEffectAtTheNextLayoutAndKeepsLabelsWhenTheCountHolds) {
    AxisControl axis;
    axis.SetRectangle({0, 400, 0, 30});
    ASSERT_EQ(axis.GetNumberLabels().size(), 11u);
    const std::vector<GUI::Controls::Label*> before = axis.GetNumberLabels();

    axis.SetRange(-5.f, 5.f);
    EXPECT_EQ(axis.GetNumberLabels(), before) << "same count: the labels are kept";
    axis.SetRectangle({20, 420, 0, 30});
    EXPECT_EQ(axis.GetNumberLabels(), before);

    axis.SetTickCount(4);
    EXPECT_EQ(axis.GetIntervalCount(), 5);
    EXPECT_EQ(axis.GetNumberLabels().size(), 11u) << "nothing is recomputed yet";
    EXPECT_EQ(axis.GetTickFractions().size(), 11u);
    axis.SetRectangle({0, 400, 0, 30});
    EXPECT_EQ(axis.GetIntervalCount(), 5);
    EXPECT_EQ(axis.GetNumberLabels().size(), 6u);
    EXPECT_EQ(axis.Children()->size(), 7u) << "the old labels left the children";
    EXPECT_EQ(Texts(axis),
              (std::vector<std::wstring>{L"-5.000", L"-3.000", L"-1.000", L"1.000", L"3.000", L"5.000"}));

    // -1 asks for no intervals: one tick at the start, no division by zero.
    axis.SetTickCount(-1);
    EXPECT_EQ(axis.GetIntervalCount(), 0);
    axis.SetRange(0.f, 2.f);
    EXPECT_EQ(axis.GetTickFractions(), (std::vector<float>{0.f}));
    EXPECT_EQ(Texts(axis), (std::vector<std::wstring>{L"0.000"}));
}

TEST(AxisControl, IntegerStepsUseTheWidthEvenOnVerticalAxes) {
    struct Case {
        const char* name;
        Rectangle rectangle;
        AxisControl::Orientation orientation;
        float min, max;
        std::vector<float> values;
        std::vector<std::wstring> texts;
    };
    const Case cases[] = {
        {"0..10 on 160 px",
         {0, 160, 0, 30},
         AxisControl::AlongYMin,
         0,
         10,
         {0, 3, 6, 9},
         {L"0", L"3", L"6", L"9"}},
        {"vertical, 160 px wide",
         {0, 160, 0, 900},
         AxisControl::AlongXMax,
         0,
         10,
         {0, 3, 6, 9},
         {L"0", L"3", L"6", L"9"}},
        {"negative range",
         {0, 400, 0, 30},
         AxisControl::AlongYMin,
         -20,
         20,
         {-20, -16, -12, -8, -4, 0, 4, 8, 12, 16, 20},
         {L"-20", L"-16", L"-12", L"-8", L"-4", L"0", L"4", L"8", L"12", L"16", L"20"}},
        {"an empty range keeps two ticks",
         {0, 160, 0, 30},
         AxisControl::AlongYMin,
         3,
         3,
         {3, 3},
         {L"3", L"3"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        AxisControl axis;
        axis.SetOrientation(c.orientation);
        axis.SetRectangle(c.rectangle);
        axis.SetAxisType(AxisControl::IntegerSteps);
        axis.SetRange(c.min, c.max);
        EXPECT_EQ(axis.GetTickValues(), c.values);
        EXPECT_EQ(Texts(axis), c.texts);
    }
    AxisControl axis;
    axis.SetRectangle({0, 160, 0, 30});
    axis.SetAxisType(AxisControl::IntegerSteps);
    axis.SetRange(0.f, 10.f);
    EXPECT_EQ(axis.GetTickFractions(), (std::vector<float>{0.f, 0.3f, 0.6f, 0.9f})) << "denominator 10";
}

TEST(AxisControl, NumbersShowThreeDecimalsAndAnExponentOnlyFromThreeUp) {
    struct Case {
        float min, max;
        int tickCount;
        std::vector<std::wstring> texts;
    };
    const Case cases[] = {
        {0.f, 1.f, 3, {L"0.000", L"0.250", L"0.500", L"0.750", L"1.000"}},
        {-2000.f, 1500.f, 0, {L"-2.000e3", L"1.500e3"}},
        {0.f, 25000.f, 1, {L"0.000e4", L"1.250e4", L"2.500e4"}},
        {0.f, 0.f, 2, {L"0.000", L"0.000", L"0.000", L"0.000"}},
        {0.f, 500.f, 0, {L"0.000", L"500.000"}},
        {-0.0005f, 0.f, 0, {L"-0.500e-3", L"0.000e-3"}},
        {-1.f, 1.f, 1, {L"-1.000", L"0.000", L"1.000"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.min) + " .. " + std::to_string(c.max));
        AxisControl axis;
        axis.SetTickCount(c.tickCount);
        axis.SetRectangle({0, 30, 0, 30}); // one interval from the spacing unless a count is asked for
        axis.SetRange(c.min, c.max);
        EXPECT_EQ(Texts(axis), c.texts);
    }
}

TEST(AxisControl, LabelsArePlacedBesideTheBandOfEachOrientation) {
    struct Case {
        AxisControl::Orientation orientation;
        Rectangle firstNumber, lastNumber, title;
        int numberH, numberV, titleOrientation;
    };
    // 200 x 100 at (30, 40), two intervals, tick length 8. Rectangles are relative to the axis.
    const Case cases[] = {
        {AxisControl::AlongYMin, {-25, 25, 8, 28}, {175, 225, 8, 28}, {0, 200, 100, 116}, 1, 0, 0},
        {AxisControl::AlongYMax, {-25, 25, 72, 92}, {175, 225, 72, 92}, {0, 200, 52, 68}, 1, 2, 0},
        {AxisControl::AlongXMax, {142, 192, -10, 10}, {142, 192, 90, 110}, {0, 16, 0, 100}, 2, 1, 1},
        {AxisControl::AlongXMin, {8, 58, -10, 10}, {8, 58, 90, 110}, {200, 216, 0, 100}, 0, 1, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(static_cast<int>(c.orientation));
        AxisControl axis;
        axis.SetOrientation(c.orientation);
        axis.SetTickCount(1);
        axis.SetRectangle({30, 230, 40, 140});
        const auto& labels = axis.GetNumberLabels();
        ASSERT_EQ(labels.size(), 3u);
        EXPECT_EQ(labels.front()->GetControlRectangle(), c.firstNumber);
        EXPECT_EQ(labels.back()->GetControlRectangle(), c.lastNumber);
        EXPECT_EQ(labels.back()->GetRectangle().xMin, c.lastNumber.xMin + 30) << "children of the axis";
        EXPECT_EQ(labels[1]->GetHorizontalAlignment(), c.numberH);
        EXPECT_EQ(labels[1]->GetVerticalAlignment(), c.numberV);
        ASSERT_NE(axis.GetTitleLabel(), nullptr);
        EXPECT_EQ(axis.GetTitleLabel()->GetControlRectangle(), c.title);
        EXPECT_EQ(axis.GetTitleLabel()->GetOrientation(), c.titleOrientation);
        EXPECT_EQ(axis.GetTitleLabel()->FontSize(), 16u);
    }
}

TEST(AxisControl, OrientationAndTitleFollowTheirOwnRules) {
    AxisControl axis;
    axis.SetTitle(L"Depth");
    axis.SetRectangle({0, 200, 0, 100});
    ASSERT_NE(axis.GetTitleLabel(), nullptr);
    EXPECT_EQ(axis.GetTitleLabel()->GetText(), L"Depth") << "a title set before the first layout shows";
    axis.SetTitle(L"Depth (mm)");
    EXPECT_EQ(axis.GetTitleLabel()->GetText(), L"Depth (mm)");

    const Rectangle placed = axis.GetNumberLabels().front()->GetControlRectangle();
    axis.SetOrientation(AxisControl::AlongXMin);
    EXPECT_EQ(axis.GetNumberLabels().front()->GetControlRectangle(), placed) << "not re-placed yet";
    axis.SetRectangle({0, 200, 0, 100});
    EXPECT_EQ(axis.GetNumberLabels().front()->GetControlRectangle(), (Rectangle{8, 58, -10, 10}));

    // The flags are stored and change nothing.
    axis.ShowTitle(false);
    axis.ShowTicks(false);
    axis.ShowNumbers(false);
    EXPECT_FALSE(axis.TitleShown() || axis.TicksShown() || axis.NumbersShown());
    EXPECT_TRUE(axis.GetTitleLabel()->Visible());
    EXPECT_TRUE(axis.GetNumberLabels().front()->Visible());

    GUI::Color red{200, 20, 20, 255};
    axis.SetFontColor(red);
    EXPECT_EQ(axis.GetTitleLabel()->GetColor(), red);
    axis.SetTickCount(7);
    axis.SetRectangle({0, 200, 0, 100});
    for (GUI::Controls::Label* label : axis.GetNumberLabels())
        EXPECT_EQ(label->GetColor(), red) << "new labels take the font colour";
}

TEST(AxisControl, SetterGuards) {
    AxisControl axis;
    axis.SetRectangle({0, 400, 0, 30});
    testing::internal::CaptureStdout();
    axis.SetTickSpacing(0);
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_EQ(axis.GetTickSpacing(), 40);
    EXPECT_EQ(axis.GetIntervalCount(), 10);
    EXPECT_NE(output.find("AxisControl::SetTickSpacing()"), std::string::npos) << output;

    axis.SetTickSpacing(80);
    EXPECT_EQ(axis.GetIntervalCount(), 5) << "a changed spacing lays out again";
    axis.SetAxisType(AxisControl::IntegerSteps);
    EXPECT_EQ(axis.GetIntervalCount(), 1) << "400 / 80 = 5 columns over a range of 1";
}

namespace {

// A 200-pixel horizontal axis at the default spacing asks for five intervals.
AxisControl& Laid(AxisControl& axis, AxisControl::AxisType type, float min, float max) {
    axis.SetRectangle({0, 200, 0, 30});
    axis.SetRange(min, max);
    axis.SetAxisType(type);
    return axis;
}

std::vector<std::string> Narrow(const std::vector<std::wstring>& texts) {
    std::vector<std::string> out;
    for (const std::wstring& t : texts)
        out.emplace_back(t.begin(), t.end());
    return out;
}

} // namespace

TEST(AxisControl, NiceAndLogarithmicTicksShowTheShortestTextsThatTellNeighboursApart) {
    struct Case {
        AxisControl::AxisType type;
        float min, max;
        std::vector<std::string> texts;
        float firstFraction;
        size_t minorTicks;
    };
    const auto nice = AxisControl::NiceSteps;
    const auto log = AxisControl::Logarithmic;
    const Case cases[] = {
        {nice, -40.f, 40.f, {"-40", "-20", "0", "20", "40"}, 0.f, 0},
        {nice, 0.f, 0.7f, {"0", "0.2", "0.4", "0.6"}, 0.f, 0},
        {nice, 40.f, -40.f, {"40", "20", "0", "-20", "-40"}, 0.f, 0}, // reversed: 40 at the start
        {nice, 3.f, 3.f, {"3"}, 0.5f, 0},                             // zero width: one tick, centred
        {nice, 0.f, 1e9f, {"0", "0.2e9", "0.4e9", "0.6e9", "0.8e9", "1.0e9"}, 0.f, 0},
        {nice, 0.f, 1e-9f, {"0", "0.2e-9", "0.4e-9", "0.6e-9", "0.8e-9", "1.0e-9"}, 0.f, 0},
        {nice, 0.999f, 1.001f, {"0.9990", "0.9995", "1.0000", "1.0005", "1.0010"}, 0.f, 0},
        {log, 1.f, 1000.f, {"1", "10", "100", "1000"}, 0.f, 24},
        {log, 1e-9f, 1e9f, {"1e-8", "0.0001", "1", "10000", "1e8"}, 1.f / 18.f, 0}, // every fourth decade
        {log, 1000.f, 1.f, {"1000", "100", "10", "1"}, 0.f, 24},
        {log, 2.f, 8.f, {"2", "4", "6", "8"}, 0.f, 0}, // within a decade: nice values on the log scale
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.type) + ": " + std::to_string(c.min) + " .. " + std::to_string(c.max));
        AxisControl axis;
        Laid(axis, c.type, c.min, c.max);
        EXPECT_EQ(Narrow(Texts(axis)), c.texts);
        ASSERT_FALSE(axis.GetTickFractions().empty());
        EXPECT_NEAR(axis.GetTickFractions().front(), c.firstFraction, 1e-5);
        EXPECT_TRUE(std::is_sorted(axis.GetTickFractions().begin(), axis.GetTickFractions().end()));
        EXPECT_EQ(axis.GetMinorTickFractions().size(), c.minorTicks);
        EXPECT_EQ(axis.GetIntervalCount() + 1, static_cast<int>(c.texts.size()));
    }
    // Nice values within a decade sit where the logarithmic scale puts them.
    AxisControl axis;
    Laid(axis, log, 2.f, 8.f);
    EXPECT_NEAR(axis.GetTickFractions()[1], 0.5f, 1e-5) << "4 is half way between 2 and 8 on a log scale";
}

TEST(AxisControl, NiceTicksOverEveryMagnitudeAreEvenNiceAndReadBack) {
    for (int p = -9; p <= 9; ++p)
        for (double a : {-3.0, 0.0, 1.0})
            for (double b : {0.04, 1.5, 7.0}) {
                const double scale = std::pow(10.0, p);
                const double lo = a * scale, hi = (a + b) * scale;
                for (int wanted : {1, 5, 12}) {
                    SCOPED_TRACE(std::to_string(lo) + " .. " + std::to_string(hi) + " in " +
                                 std::to_string(wanted));
                    std::vector<double> v;
                    std::vector<std::string> t;
                    AxisControl::NiceTicks(lo, hi, wanted, v, t);
                    ASSERT_GE(v.size(), 2u);
                    ASSERT_LE(v.size(), static_cast<size_t>(wanted * 5 / 2 + 2));
                    const double step = v[1] - v[0];
                    double mantissa = step / std::pow(10.0, std::floor(std::log10(step)));
                    if (mantissa > 9.5)
                        mantissa /= 10.0;
                    EXPECT_TRUE(std::fabs(mantissa - 1) < 1e-6 || std::fabs(mantissa - 2) < 1e-6 ||
                                std::fabs(mantissa - 5) < 1e-6)
                        << step;
                    EXPECT_GE(v.front(), lo - step * 1e-6);
                    EXPECT_LE(v.back(), hi + step * 1e-6);
                    for (size_t i = 0; i < v.size(); ++i) {
                        if (i > 0) {
                            EXPECT_NEAR(v[i] - v[i - 1], step, step * 1e-6);
                            EXPECT_NE(t[i], t[i - 1]);
                        }
                        EXPECT_NEAR(std::strtod(t[i].c_str(), nullptr), v[i], step * 1e-6) << t[i];
                        EXPECT_LE(t[i].size(), 10u) << t[i];
                    }
                }
            }
    std::vector<double> v;
    std::vector<std::string> t;
    AxisControl::NiceTicks(0.0, std::nan(""), 5, v, t);
    EXPECT_TRUE(v.empty() && t.empty());
}

TEST(AxisControl, LogarithmicAxisOverNonPositiveRangeSaysSoOnceAndDrawsNoTicks) {
    AxisControl axis;
    testing::internal::CaptureStdout();
    Laid(axis, AxisControl::Logarithmic, -1.f, 100.f);
    axis.SetRectangle({0, 300, 0, 30});
    const std::string output = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(axis.GetTickFractions().empty() && axis.GetNumberLabels().empty());
    EXPECT_EQ(output.find("logarithmic"), output.rfind("logarithmic")) << output;
    EXPECT_NE(output.find("positive range"), std::string::npos) << output;
    EXPECT_TRUE(std::isnan(axis.FractionOf(10.0)));
    axis.SetRange(1.f, 100.f);
    EXPECT_EQ(Narrow(Texts(axis)), (std::vector<std::string>{"1", "10", "100"}));
    EXPECT_NEAR(axis.FractionOf(10.0), 0.5, 1e-9);
    EXPECT_NEAR(axis.ValueAt(0.5), 10.0, 1e-9);
}

TEST(AxisControl, NiceTicksKeepTheLabelOfANumberThroughAPan) {
    AxisControl axis;
    axis.SetAxisType(AxisControl::NiceSteps);
    axis.SetRectangle({0, 400, 0, 30});
    axis.SetRange(0.f, 100.f);
    std::map<std::wstring, GUI::Controls::Label*> shown;
    for (GUI::Controls::Label* label : axis.GetNumberLabels())
        shown[label->GetText()] = label;
    axis.SetRange(10.f, 110.f); // every tick's index shifts by one
    int kept = 0;
    for (GUI::Controls::Label* label : axis.GetNumberLabels())
        if (shown.count(label->GetText()) != 0) {
            EXPECT_EQ(shown[label->GetText()], label) << "the number's own label, not rasterised again";
            ++kept;
        }
    EXPECT_GE(kept, 3);
}
