// The animation frame's guarded setters and interpolation.
#include <trelvogui/gui/animationframe.h>

#include <gtest/gtest.h>

#include <cmath>

using GUI::Animation::Frame;

TEST(AnimationFrame, SettersGuardDegenerateValues) {
    Frame f;
    f.setScale({2.f, 3.f, 4.f});
    f.setScale({1.f, 0.f, 1.f});
    EXPECT_EQ(f.getScale(), glm::vec3(2.f, 3.f, 4.f));

    const glm::quat turned(std::cos(0.5f), std::sin(0.5f), 0.f, 0.f);
    f.setOrientation(turned * 0.99f);
    f.setOrientation(turned * 1.01f);
    EXPECT_EQ(f.getOrientation(), glm::quat(1.f, 0.f, 0.f, 0.f));
    f.setOrientation(turned * 1.00005f);
    EXPECT_NEAR(glm::length(f.getOrientation()), 1.f, 1e-6f);
    EXPECT_NEAR(f.getOrientation().x, turned.x, 1e-6f);

    f.setAlpha(1.5f);
    EXPECT_EQ(f.getAlpha(), 1.f);
    f.setAlpha(-0.2f);
    EXPECT_EQ(f.getAlpha(), 0.f);

    f.setPosition({1.f, 2.f, 3.f});
    f.reset();
    EXPECT_EQ(f.getPosition(), glm::vec3(0.f));
    EXPECT_EQ(f.getScale(), glm::vec3(1.f));
    EXPECT_EQ(f.getAlpha(), 1.f);
}

TEST(AnimationFrame, InterpolationClampsAndTakesShortArc) {
    Frame a, b, out;
    a.setPosition({0.f, 0.f, 0.f});
    b.setPosition({10.f, -10.f, 4.f});
    b.setScale({3.f, 3.f, 3.f});
    b.setAlpha(0.f);
    const float half = 0.5f * 1.5707964f; // 90 degrees about z
    b.setOrientation(glm::quat(std::cos(half), 0.f, 0.f, std::sin(half)));

    out.setWithInterpolation(&a, &b, 0.25f);
    EXPECT_EQ(out.getPosition(), glm::vec3(2.5f, -2.5f, 1.f));
    EXPECT_FLOAT_EQ(out.getScale().x, 1.5f);
    EXPECT_FLOAT_EQ(out.getAlpha(), 0.75f);
    // Slerp a quarter of the way: 22.5 degrees about z.
    EXPECT_NEAR(out.getOrientation().z, std::sin(0.25f * half), 1e-6f);
    EXPECT_NEAR(out.getOrientation().w, std::cos(0.25f * half), 1e-6f);

    out.setWithInterpolation(&a, &b, 7.f);
    EXPECT_EQ(out.getPosition(), b.getPosition());
    out.setWithInterpolation(&a, &b, -1.f);
    EXPECT_EQ(out.getPosition(), a.getPosition());

    // The negated quaternion is the same rotation: interpolation goes the short way.
    Frame negated;
    negated.setOrientation(glm::quat(-std::cos(half), 0.f, 0.f, -std::sin(half)));
    out.setWithInterpolation(&a, &negated, 0.25f);
    EXPECT_NEAR(std::abs(out.getOrientation().z), std::sin(0.25f * half), 1e-6f);
}

TEST(AnimationFrame, NearlyEqualOrientationsMixWithoutRenormalising) {
    Frame a, b, out;
    const float tiny = 2e-4f;
    b.setOrientation(glm::quat(std::cos(tiny), std::sin(tiny), 0.f, 0.f));
    out.setWithInterpolation(&a, &b, 0.5f);
    glm::quat q = out.getOrientation();
    EXPECT_FLOAT_EQ(q.w, 0.5f * (1.f + std::cos(tiny)));
    EXPECT_FLOAT_EQ(q.x, 0.5f * std::sin(tiny));
}
