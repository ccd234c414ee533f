// Axis layout without a GL context: tick counts, tick values, number texts and label placement.
#include <trelvogui/axiscontrol.h>
#include <trelvogui/gui/label.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

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
