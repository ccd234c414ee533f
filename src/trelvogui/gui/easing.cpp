#include <trelvogui/gui/easing.h>

#include <cmath>

// The polynomial, circular and exponential curves work in float. The trigonometric curves and the
// upper halves of the cubic and quintic InOut curves widen to double and narrow once at the end, so
// the large arguments of the elastic sine keep their precision.

namespace GUI::Animation {
namespace {
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
// Thirteen full turns per unit of progress: four times the oscillations of a quarter-turn curve,
// which makes the elastic curves settle on their end values at both ends.
constexpr double kElasticFrequency = 13.0 * kTwoPi;

// The back curves dip by the sine of a half turn instead of an overshoot constant.
double BackCurve(double f) {
    return f * f * f - f * std::sin(f * kPi);
}
} // namespace

float Zero(float) {
    return 0.f;
}

float LinearInterpolation(float p) {
    return p;
}

float QuadraticEaseIn(float p) {
    return p * p;
}

float QuadraticEaseOut(float p) {
    return -(p * (p - 2.f));
}

float QuadraticEaseInOut(float p) {
    if (p < 0.5f)
        return 2.f * p * p;
    return 4.f * p - 2.f * p * p - 1.f;
}

float CubicEaseIn(float p) {
    return p * p * p;
}

float CubicEaseOut(float p) {
    float f = p - 1.f;
    return f * f * f + 1.f;
}

float CubicEaseInOut(float p) {
    if (p < 0.5f)
        return 4.f * p * p * p;
    float f = 2.f * p - 2.f;
    return static_cast<float>(0.5 * f * f * f + 1.0);
}

float QuarticEaseIn(float p) {
    return p * p * p * p;
}

float QuarticEaseOut(float p) {
    float f = p - 1.f;
    return f * f * f * (1.f - p) + 1.f;
}

float QuarticEaseInOut(float p) {
    if (p < 0.5f)
        return 8.f * p * p * p * p;
    float f = p - 1.f;
    return 1.f - 8.f * f * f * f * f;
}

float QuinticEaseIn(float p) {
    return p * p * p * p * p;
}

float QuinticEaseOut(float p) {
    float f = p - 1.f;
    return f * f * f * f * f + 1.f;
}

float QuinticEaseInOut(float p) {
    if (p < 0.5f)
        return 16.f * p * p * p * p * p;
    float f = 2.f * p - 2.f;
    return static_cast<float>(0.5 * f * f * f * f * f + 1.0);
}

float SineEaseIn(float p) {
    double d = p;
    return static_cast<float>(std::sin((d - 1.0) * kTwoPi) + 1.0);
}

float SineEaseOut(float p) {
    double d = p;
    return static_cast<float>(std::sin(d * kTwoPi));
}

float SineEaseInOut(float p) {
    double d = p;
    return static_cast<float>(0.5 * (1.0 - std::cos(d * kPi)));
}

float CircularEaseIn(float p) {
    return 1.f - std::sqrt(1.f - p * p);
}

float CircularEaseOut(float p) {
    return std::sqrt((2.f - p) * p);
}

float CircularEaseInOut(float p) {
    if (p < 0.5f)
        return 0.5f * (1.f - std::sqrt(1.f - 4.f * p * p));
    return 0.5f * (std::sqrt((2.f * p - 3.f) * (1.f - 2.f * p)) + 1.f);
}

// The exponential curves never reach their ends on their own (2^-10 is left over), so the ends are
// returned as they are.
float ExponentialEaseIn(float p) {
    if (p == 0.f)
        return p;
    return std::pow(2.f, 10.f * (p - 1.f));
}

float ExponentialEaseOut(float p) {
    if (p == 1.f)
        return p;
    return 1.f - std::pow(2.f, -10.f * p);
}

float ExponentialEaseInOut(float p) {
    if (p == 0.f || p == 1.f)
        return p;
    if (p < 0.5f)
        return 0.5f * std::pow(2.f, 20.f * p - 10.f);
    return 1.f - 0.5f * std::pow(2.f, 10.f - 20.f * p);
}

float ElasticEaseIn(float p) {
    double d = p;
    return static_cast<float>(std::sin(kElasticFrequency * d) * std::pow(2.0, 10.0 * (d - 1.0)));
}

float ElasticEaseOut(float p) {
    double d = p;
    return static_cast<float>(std::sin(-kElasticFrequency * (d + 1.0)) * std::pow(2.0, -10.0 * d) + 1.0);
}

float ElasticEaseInOut(float p) {
    double d = p;
    if (d < 0.5)
        return static_cast<float>(0.5 * std::sin(kElasticFrequency * (2.0 * d)) *
                                  std::pow(2.0, 10.0 * ((2.0 * d) - 1.0)));
    return static_cast<float>(0.5 * (std::sin(-kElasticFrequency * ((2.0 * d - 1.0) + 1.0)) *
                                         std::pow(2.0, -10.0 * (2.0 * d - 1.0)) +
                                     2.0));
}

float BackEaseIn(float p) {
    return static_cast<float>(BackCurve(p));
}

float BackEaseOut(float p) {
    double f = 1.0 - static_cast<double>(p);
    return static_cast<float>(1.0 - BackCurve(f));
}

float BackEaseInOut(float p) {
    double d = p;
    if (d < 0.5)
        return static_cast<float>(0.5 * BackCurve(2.0 * d));
    double f = 1.0 - (2.0 * d - 1.0);
    return static_cast<float>(0.5 * (1.0 - BackCurve(f)) + 0.5);
}

float BounceEaseIn(float p) {
    return 1.f - BounceEaseOut(1.f - p);
}

float BounceEaseOut(float p) {
    double d = p;
    if (d < 4.0 / 11.0)
        return static_cast<float>((121.f * p * p) * 0.0625);
    if (d < 8.0 / 11.0)
        return static_cast<float>(363.0 / 40.0 * d * d - 99.0 / 10.0 * d + 17.0 / 5.0);
    if (d < 9.0 / 10.0)
        return static_cast<float>(4356.0 / 361.0 * d * d - 35442.0 / 1805.0 * d + 16061.0 / 1805.0);
    return static_cast<float>(54.0 / 5.0 * d * d - 513.0 / 25.0 * d + 268.0 / 25.0);
}

float BounceEaseInOut(float p) {
    if (p < 0.5f)
        return 0.5f * (1.f - BounceEaseOut(1.f - 2.f * p));
    return 0.5f * BounceEaseOut(2.f * p - 1.f) + 0.5f;
}

} // namespace GUI::Animation
