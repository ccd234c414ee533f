// Cost of the easing curves and of one animation update.
#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/easing.h>
#include <trelvogui/gui/fadeinsequence.h>

#include <benchmark/benchmark.h>

#include <string>

using namespace GraphicsBase;

namespace {
namespace A = GUI::Animation;

struct NamedCurve {
    const char* name;
    A::EasingFunction fn;
};

const NamedCurve kCurves[] = {
    {"Zero", A::Zero},
    {"LinearInterpolation", A::LinearInterpolation},
    {"QuadraticEaseIn", A::QuadraticEaseIn},
    {"QuadraticEaseOut", A::QuadraticEaseOut},
    {"QuadraticEaseInOut", A::QuadraticEaseInOut},
    {"CubicEaseIn", A::CubicEaseIn},
    {"CubicEaseOut", A::CubicEaseOut},
    {"CubicEaseInOut", A::CubicEaseInOut},
    {"QuarticEaseIn", A::QuarticEaseIn},
    {"QuarticEaseOut", A::QuarticEaseOut},
    {"QuarticEaseInOut", A::QuarticEaseInOut},
    {"QuinticEaseIn", A::QuinticEaseIn},
    {"QuinticEaseOut", A::QuinticEaseOut},
    {"QuinticEaseInOut", A::QuinticEaseInOut},
    {"SineEaseIn", A::SineEaseIn},
    {"SineEaseOut", A::SineEaseOut},
    {"SineEaseInOut", A::SineEaseInOut},
    {"CircularEaseIn", A::CircularEaseIn},
    {"CircularEaseOut", A::CircularEaseOut},
    {"CircularEaseInOut", A::CircularEaseInOut},
    {"ExponentialEaseIn", A::ExponentialEaseIn},
    {"ExponentialEaseOut", A::ExponentialEaseOut},
    {"ExponentialEaseInOut", A::ExponentialEaseInOut},
    {"ElasticEaseIn", A::ElasticEaseIn},
    {"ElasticEaseOut", A::ElasticEaseOut},
    {"ElasticEaseInOut", A::ElasticEaseInOut},
    {"BackEaseIn", A::BackEaseIn},
    {"BackEaseOut", A::BackEaseOut},
    {"BackEaseInOut", A::BackEaseInOut},
    {"BounceEaseIn", A::BounceEaseIn},
    {"BounceEaseOut", A::BounceEaseOut},
    {"BounceEaseInOut", A::BounceEaseInOut},
};

// One call per item over a sweep of progress values, through the pointer as a sequence calls it.
void BM_Easing(benchmark::State& state, A::EasingFunction fn) {
    constexpr int kSteps = 256;
    for (auto _ : state) {
        for (int i = 0; i < kSteps; ++i) {
            float p = static_cast<float>(i) * (1.f / (kSteps - 1));
            benchmark::DoNotOptimize(fn(p));
        }
    }
    state.SetItemsProcessed(state.iterations() * kSteps);
}

const int kRegistered = [] {
    for (const NamedCurve& c : kCurves)
        benchmark::RegisterBenchmark((std::string("BM_Easing/") + c.name).c_str(), BM_Easing, c.fn);
    return 0;
}();

// One update of a running fade that also moves and turns its control, on the real clock.
void BM_SequenceUpdate(benchmark::State& state) {
    GUI::Controls::Base control;
    A::FadeInSequence sequence(&control, 3600.f);
    sequence.SetTranslation(100, -40, 0);
    sequence.SetRotation(0.f, 0.f, 1.f, 1.5f);
    sequence.SetTranslationFunction(A::BounceEaseOut);
    sequence.Start();
    for (auto _ : state) {
        sequence.Update();
        benchmark::DoNotOptimize(control.GetLocalFrameAnimation()->getAlpha());
    }
}
BENCHMARK(BM_SequenceUpdate);
} // namespace
