// Timed sequences on a hand-driven clock: easing order, presets, the end fold and the guards.
#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/easing.h>
#include <trelvogui/gui/fadeinoutsequence.h>
#include <trelvogui/gui/fadeinsequence.h>
#include <trelvogui/gui/fadeoutsequence.h>
#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/moveinsequence.h>
#include <trelvogui/gui/scalesequence.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

using namespace GraphicsBase;

using namespace GUI::Animation;
using GUI::Controls::Base;

namespace {
// Records which property asked for an eased value and with what progress.
std::string gCalls;
float gLastT = -1.f;
float Record(char property, float t) {
    gCalls += property;
    gLastT = t;
    return t;
}

class AnimationSequence : public ::testing::Test {
protected:
    void SetUp() override {
        GUI::Clock::SetSource([this] { return now; });
        gCalls.clear();
    }
    void TearDown() override { GUI::Clock::SetSource({}); }

    // Far beyond float precision, so progress must be computed from the tick difference.
    uint64_t now = 5'000'000'000;
    Base control;
    Frame& base() { return *control.GetLocalFrame(); }
    Frame& anim() { return *control.GetLocalFrameAnimation(); }
};
} // namespace

TEST_F(AnimationSequence, EasesEachPropertyOnceInOrderWithClampedProgress) {
    Sequence s(&control, 2.f);
    s.SetTranslationFunction([](float t) { return Record('T', t); });
    s.SetRotationFunction([](float t) { return Record('R', t); });
    s.SetScaleFunction([](float t) { return Record('S', t); });
    s.SetAlphaFunction([](float t) { return Record('A', t); });
    // Null functions are refused and the recorders stay in place.
    EXPECT_FALSE(s.SetTranslationFunction(nullptr));
    EXPECT_FALSE(s.SetRotationFunction(nullptr));
    EXPECT_FALSE(s.SetScaleFunction(nullptr));
    EXPECT_FALSE(s.SetAlphaFunction(nullptr));

    s.Start();
    EXPECT_FALSE(s.Done());
    now += 500;
    s.Update();
    EXPECT_EQ(gCalls, "TRSA");
    EXPECT_FLOAT_EQ(gLastT, 0.25f);
    EXPECT_FALSE(s.Done());

    now += 10'000;
    s.Update();
    EXPECT_EQ(gCalls, "TRSATRSA");
    EXPECT_FLOAT_EQ(gLastT, 1.f);
    EXPECT_TRUE(s.Done());
}

TEST_F(AnimationSequence, MoveInFoldsIntoTheControlAtTheEnd) {
    control.SetPosition(20, 30);
    MoveInSequence s(&control, 0.5f);
    EXPECT_EQ(base().getAlpha(), 0.f); // hidden at construction, before Start
    s.SetTranslation(10, -5, 0);
    s.Start();

    now += 250;
    s.Update();
    EXPECT_EQ(anim().getPosition(), glm::vec3(5.f, -2.5f, 0.f));
    EXPECT_FLOAT_EQ(anim().getAlpha(), 0.875f); // 1 - 0.5^3
    EXPECT_EQ(control.GetControlRectangle().xMin, 20);

    now += 251;
    s.Update();
    EXPECT_TRUE(s.Done());
    EXPECT_EQ(control.GetControlRectangle().xMin, 30);
    EXPECT_EQ(control.GetControlRectangle().yMin, 25);
    EXPECT_EQ(base().getPosition(), glm::vec3(0.f));
    EXPECT_EQ(base().getAlpha(), 1.f);
    EXPECT_EQ(anim().getPosition(), glm::vec3(0.f));
    EXPECT_EQ(anim().getScale(), glm::vec3(1.f));
    EXPECT_EQ(anim().getOrientation(), glm::quat(1.f, 0.f, 0.f, 0.f));
    EXPECT_EQ(anim().getAlpha(), 1.f);
}

TEST_F(AnimationSequence, PresetsSetTheBaseFrameAndEaseFromIt) {
    struct Case {
        const char* name;
        std::unique_ptr<Sequence> (*make)(Base*);
        float baseAlpha; // right after construction
        float alphaAtQuarter;
        float scaleAtQuarter;
    };
    const float cubicOutQuarter = 1.f - 0.75f * 0.75f * 0.75f;
    const float sineInOutQuarter = 0.5f * (1.f - std::cos(0.25f * 3.14159265f));
    const Case cases[] = {
        {"FadeIn",
         [](Base* c) -> std::unique_ptr<Sequence> { return std::make_unique<FadeInSequence>(c, 1.f); }, 0.f,
         cubicOutQuarter, 2.f},
        {"FadeOut",
         [](Base* c) -> std::unique_ptr<Sequence> { return std::make_unique<FadeOutSequence>(c, 1.f); }, 1.f,
         1.f - cubicOutQuarter, 2.f},
        // Fades one way only, along the sine.
        {"FadeInOut",
         [](Base* c) -> std::unique_ptr<Sequence> { return std::make_unique<FadeInOutSequence>(c, 1.f); },
         1.f, 1.f - sineInOutQuarter, 2.f},
        {"MoveIn",
         [](Base* c) -> std::unique_ptr<Sequence> { return std::make_unique<MoveInSequence>(c, 1.f); }, 0.f,
         cubicOutQuarter, 2.f},
        {"Scale",
         [](Base* c) -> std::unique_ptr<Sequence> { return std::make_unique<ScaleSequence>(c, 1.f); }, 0.5f,
         0.5f, 1.f - 0.5f * cubicOutQuarter},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Base target;
        target.GetLocalFrame()->setAlpha(0.5f);
        target.GetLocalFrame()->setScale(glm::vec3(2.f));
        auto s = c.make(&target);
        EXPECT_EQ(target.GetLocalFrame()->getAlpha(), c.baseAlpha);
        s->Start();
        now += 250;
        s->Update();
        EXPECT_NEAR(target.GetLocalFrameAnimation()->getAlpha(), c.alphaAtQuarter, 1e-6f);
        EXPECT_NEAR(target.GetLocalFrameAnimation()->getScale().y, c.scaleAtQuarter, 1e-6f);
    }
}

TEST_F(AnimationSequence, RotationComposesOnTheRightOfTheBaseOrientation) {
    const float h = 0.25f * 3.14159265f;
    base().setOrientation(glm::quat(std::cos(h), std::sin(h), 0.f, 0.f)); // 90 degrees about x
    Sequence s(&control, 1.f);
    EXPECT_TRUE(s.SetRotation(0.f, 0.f, 2.f, 3.14159265f)); // axis is normalised
    s.Start();
    now += 500;
    s.Update();
    // Half of 180 degrees about z, applied after the base: (w, x, y, z) = (1, 1, -1, 1) / 2.
    const glm::quat q = anim().getOrientation();
    EXPECT_NEAR(q.w, 0.5f, 1e-6f);
    EXPECT_NEAR(q.x, 0.5f, 1e-6f);
    EXPECT_NEAR(q.y, -0.5f, 1e-6f);
    EXPECT_NEAR(q.z, 0.5f, 1e-6f);
}

TEST_F(AnimationSequence, DegenerateScaleIsSkippedAndAlphaIsClamped) {
    ScaleSequence s(&control, 1.f);
    s.Start();
    now += 500;
    s.Update();
    EXPECT_FLOAT_EQ(anim().getScale().x, 0.5625f); // 1 - 0.5 * (1 - 0.5^3)

    s.SetScaleFunction([](float) { return 2.f; }); // 1 - 0.5 * 2 = 0: keeps the previous scale
    // The scale preset has no alpha delta; a fade does.
    FadeOutSequence fade(&control, 1.f);
    fade.SetAlphaFunction([](float) { return -1.f; }); // 1 + 1 = 2
    fade.Start();
    now += 100;
    s.Update();
    EXPECT_FLOAT_EQ(anim().getScale().x, 0.5625f);
    fade.Update();
    EXPECT_EQ(anim().getAlpha(), 1.f);
    fade.SetAlphaFunction([](float) { return 3.f; }); // 1 - 3 = -2
    fade.Update();
    EXPECT_EQ(anim().getAlpha(), 0.f);
}

TEST_F(AnimationSequence, ZeroDurationIsDoneAtOnceAndFoldsCleanly) {
    FadeInSequence s(&control, 0.f);
    s.SetTranslation(3, 4, 0);
    s.Start();
    EXPECT_TRUE(s.Done());
    s.Update();
    EXPECT_TRUE(s.Done());
    EXPECT_EQ(control.GetControlRectangle().xMin, 3);
    EXPECT_EQ(base().getAlpha(), 1.f);
    EXPECT_EQ(base().getPosition(), glm::vec3(0.f));

    Sequence negative(&control, -2.f);
    negative.Start();
    EXPECT_TRUE(negative.Done());
}
