// The easing curves against independently derived double-precision references.
#include <trelvogui/gui/easing.h>

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

namespace {
namespace A = GUI::Animation;

const double kPi = std::acos(-1.0);

// References in closed or rearranged form (mirror images, vertex forms of the bounce arcs), so a
// slip in the implementation's algebra does not repeat here.
double PowerIn(double p, int n) {
    return std::pow(p, n);
}
double PowerOut(double p, int n) {
    return 1.0 - std::pow(1.0 - p, n);
}
double PowerInOut(double p, int n) {
    double k = std::pow(2.0, n - 1);
    return p < 0.5 ? k * std::pow(p, n) : 1.0 - k * std::pow(1.0 - p, n);
}
double CircIn(double p) {
    return 1.0 - std::sqrt(1.0 - p * p);
}
double CircOut(double p) {
    return std::sqrt(1.0 - (p - 1.0) * (p - 1.0));
}
double ElasticIn(double p) {
    return std::sin(26.0 * kPi * p) * std::exp2(10.0 * p - 10.0);
}
double ElasticOut(double p) {
    return 1.0 - std::sin(26.0 * kPi * (p + 1.0)) * std::exp2(-10.0 * p);
}
double BackIn(double p) {
    return p * p * p - p * std::sin(kPi * p);
}
double BounceOut(double p) {
    if (p < 4.0 / 11.0)
        return 121.0 / 16.0 * p * p;
    if (p < 8.0 / 11.0)
        return 363.0 / 40.0 * (p - 6.0 / 11.0) * (p - 6.0 / 11.0) + 0.7;
    if (p < 0.9)
        return 4356.0 / 361.0 * (p - 179.0 / 220.0) * (p - 179.0 / 220.0) + 0.91;
    return 10.8 * (p - 0.95) * (p - 0.95) + 0.973;
}
double InOutOf(double (*in)(double), double (*out)(double), double p) {
    return p < 0.5 ? 0.5 * in(2.0 * p) : 0.5 * (1.0 + out(2.0 * p - 1.0));
}

struct Curve {
    const char* name;
    float (*fn)(float);
    double (*ref)(double);
    // Values at p = 0 and p = 1 within rounding; the full-turn curves break the usual 0 and 1.
    double at0;
    double at1;
};

const Curve kCurves[] = {
    {"Zero", A::Zero, [](double) { return 0.0; }, 0, 0},
    {"LinearInterpolation", A::LinearInterpolation, [](double p) { return p; }, 0, 1},
    {"QuadraticEaseIn", A::QuadraticEaseIn, [](double p) { return PowerIn(p, 2); }, 0, 1},
    {"QuadraticEaseOut", A::QuadraticEaseOut, [](double p) { return PowerOut(p, 2); }, 0, 1},
    {"QuadraticEaseInOut", A::QuadraticEaseInOut, [](double p) { return PowerInOut(p, 2); }, 0, 1},
    {"CubicEaseIn", A::CubicEaseIn, [](double p) { return PowerIn(p, 3); }, 0, 1},
    {"CubicEaseOut", A::CubicEaseOut, [](double p) { return PowerOut(p, 3); }, 0, 1},
    {"CubicEaseInOut", A::CubicEaseInOut, [](double p) { return PowerInOut(p, 3); }, 0, 1},
    {"QuarticEaseIn", A::QuarticEaseIn, [](double p) { return PowerIn(p, 4); }, 0, 1},
    {"QuarticEaseOut", A::QuarticEaseOut, [](double p) { return PowerOut(p, 4); }, 0, 1},
    {"QuarticEaseInOut", A::QuarticEaseInOut, [](double p) { return PowerInOut(p, 4); }, 0, 1},
    {"QuinticEaseIn", A::QuinticEaseIn, [](double p) { return PowerIn(p, 5); }, 0, 1},
    {"QuinticEaseOut", A::QuinticEaseOut, [](double p) { return PowerOut(p, 5); }, 0, 1},
    {"QuinticEaseInOut", A::QuinticEaseInOut, [](double p) { return PowerInOut(p, 5); }, 0, 1},
    {"SineEaseIn", A::SineEaseIn, [](double p) { return 1.0 + std::sin(2.0 * kPi * p); }, 1, 1},
    {"SineEaseOut", A::SineEaseOut, [](double p) { return std::sin(2.0 * kPi * p); }, 0, 0},
    {"SineEaseInOut", A::SineEaseInOut, [](double p) { return std::pow(std::sin(0.5 * kPi * p), 2); }, 0, 1},
    {"CircularEaseIn", A::CircularEaseIn, CircIn, 0, 1},
    {"CircularEaseOut", A::CircularEaseOut, CircOut, 0, 1},
    {"CircularEaseInOut", A::CircularEaseInOut, [](double p) { return InOutOf(CircIn, CircOut, p); }, 0, 1},
    {"ExponentialEaseIn", A::ExponentialEaseIn, [](double p) { return p == 0 ? 0 : std::exp2(10 * p - 10); },
     0, 1},
    {"ExponentialEaseOut", A::ExponentialEaseOut,
     [](double p) { return p == 1 ? 1 : 1 - std::exp2(-10 * p); }, 0, 1},
    {"ExponentialEaseInOut", A::ExponentialEaseInOut,
     [](double p) {
         if (p == 0 || p == 1)
             return p;
         return p < 0.5 ? std::exp2(20 * p - 11) : 1 - std::exp2(9 - 20 * p);
     },
     0, 1},
    {"ElasticEaseIn", A::ElasticEaseIn, ElasticIn, 0, 0},
    {"ElasticEaseOut", A::ElasticEaseOut, ElasticOut, 1, 1},
    {"ElasticEaseInOut", A::ElasticEaseInOut, [](double p) { return InOutOf(ElasticIn, ElasticOut, p); }, 0,
     1},
    {"BackEaseIn", A::BackEaseIn, BackIn, 0, 1},
    {"BackEaseOut", A::BackEaseOut, [](double p) { return 1.0 - BackIn(1.0 - p); }, 0, 1},
    {"BackEaseInOut", A::BackEaseInOut,
     [](double p) {
         return InOutOf(
             BackIn, [](double q) { return 1.0 - BackIn(1.0 - q); }, p);
     },
     0, 1},
    {"BounceEaseIn", A::BounceEaseIn, [](double p) { return 1.0 - BounceOut(1.0 - p); }, 0, 1},
    {"BounceEaseOut", A::BounceEaseOut, BounceOut, 0, 1},
    {"BounceEaseInOut", A::BounceEaseInOut,
     [](double p) { return InOutOf([](double q) { return 1.0 - BounceOut(1.0 - q); }, BounceOut, p); }, 0, 1},
};

// A few float roundings of the float-evaluated curves, relative to the larger of 1 and the value.
double Tolerance(double expected) {
    return 8.0 * FLT_EPSILON * std::max(1.0, std::fabs(expected));
}
} // namespace

TEST(Easing, EveryCurveMatchesItsReference) {
    // Ends, the half-way branch point, points inside each bounce arc and either side of the branch,
    // and two points outside 0..1 that extrapolate.
    const float points[] = {0.f,  0.095f, 0.1f,  0.25f, 0.3f,   0.4f,  0.49f, 0.5f,   0.51f,
                            0.6f, 0.7f,   0.75f, 0.85f, 0.905f, 0.95f, 1.f,   -0.25f, 1.25f};
    ASSERT_EQ(std::size(kCurves), 32u);
    for (const Curve& c : kCurves) {
        SCOPED_TRACE(c.name);
        EXPECT_NEAR(c.fn(0.f), c.at0, Tolerance(c.at0));
        EXPECT_NEAR(c.fn(1.f), c.at1, Tolerance(c.at1));
        for (float p : points) {
            double expected = c.ref(p);
            float actual = c.fn(p);
            if (std::isnan(expected)) { // the circular curves have no value outside 0..1
                EXPECT_TRUE(std::isnan(actual)) << "p = " << p;
                continue;
            }
            EXPECT_NEAR(actual, expected, Tolerance(expected)) << "p = " << p;
        }
    }
}

TEST(Easing, SpecialValuesAndFullTurnShapes) {
    EXPECT_EQ(A::Zero(123.f), 0.f);
    EXPECT_EQ(A::LinearInterpolation(0.3f), 0.3f);
    // The exponential ends are returned exactly, not 2^-10 away.
    EXPECT_EQ(A::ExponentialEaseIn(0.f), 0.f);
    EXPECT_EQ(A::ExponentialEaseOut(1.f), 1.f);
    EXPECT_EQ(A::ExponentialEaseInOut(0.f), 0.f);
    EXPECT_EQ(A::ExponentialEaseInOut(1.f), 1.f);
    EXPECT_EQ(A::ExponentialEaseInOut(0.5f), 0.5f);
    EXPECT_EQ(A::QuadraticEaseInOut(0.5f), 0.5f);
    EXPECT_EQ(A::BounceEaseOut(0.f), 0.f);
    EXPECT_NEAR(A::BounceEaseOut(1.f), 1.f, 1e-6f);

    const float quarters[] = {0.f, 0.25f, 0.5f, 0.75f, 1.f};
    const float sineOut[] = {0.f, 1.f, 0.f, -1.f, 0.f};
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(A::SineEaseOut(quarters[i]), sineOut[i], 1e-6f) << quarters[i];
        EXPECT_NEAR(A::SineEaseIn(quarters[i]), sineOut[i] + 1.f, 1e-6f) << quarters[i];
    }

    // The elastic curves have a sine node at both ends, so the in-out curve jumps at the middle.
    EXPECT_NEAR(A::ElasticEaseIn(1.f), 0.f, 1e-6f);
    EXPECT_NEAR(A::ElasticEaseOut(0.f), 1.f, 1e-6f);
    EXPECT_NEAR(A::ElasticEaseInOut(std::nextafter(0.5f, 0.f)), 0.f, 1e-5f);
    EXPECT_NEAR(A::ElasticEaseInOut(0.5f), 1.f, 1e-6f);

    // Without an overshoot constant the back curve dips by p^3 - p sin(pi p).
    EXPECT_NEAR(A::BackEaseIn(0.5f), 0.125f - 0.5f, 1e-6f);
}
