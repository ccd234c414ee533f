#pragma once
// Easing curves that map an animation's normalised progress to its eased value.

#include <trelvogui/trelvogui_export.h>

namespace GUI::Animation {

/// What a sequence stores per animated property: progress in, eased value out.
using EasingFunction = float (*)(float);

// Every curve is stateless, does not clamp its argument (values outside 0..1 extrapolate the same
// formula) and takes the first half of an InOut curve only for p < 0.5 strictly.

/// 0 for every argument.
TRELVOGUI_EXPORT float Zero(float p);
/// The identity.
TRELVOGUI_EXPORT float LinearInterpolation(float p);

TRELVOGUI_EXPORT float QuadraticEaseIn(float p);
TRELVOGUI_EXPORT float QuadraticEaseOut(float p);
TRELVOGUI_EXPORT float QuadraticEaseInOut(float p);

TRELVOGUI_EXPORT float CubicEaseIn(float p);
TRELVOGUI_EXPORT float CubicEaseOut(float p);
TRELVOGUI_EXPORT float CubicEaseInOut(float p);

TRELVOGUI_EXPORT float QuarticEaseIn(float p);
TRELVOGUI_EXPORT float QuarticEaseOut(float p);
TRELVOGUI_EXPORT float QuarticEaseInOut(float p);

TRELVOGUI_EXPORT float QuinticEaseIn(float p);
TRELVOGUI_EXPORT float QuinticEaseOut(float p);
TRELVOGUI_EXPORT float QuinticEaseInOut(float p);

/// A full sine period shifted up by one: 1 at both ends, 2 at p = 0.25, 0 at p = 0.75.
TRELVOGUI_EXPORT float SineEaseIn(float p);
/// A full sine period: 0 at both ends, 1 at p = 0.25, -1 at p = 0.75.
TRELVOGUI_EXPORT float SineEaseOut(float p);
/// Half a cosine period from 0 to 1.
TRELVOGUI_EXPORT float SineEaseInOut(float p);

TRELVOGUI_EXPORT float CircularEaseIn(float p);
TRELVOGUI_EXPORT float CircularEaseOut(float p);
TRELVOGUI_EXPORT float CircularEaseInOut(float p);

/// Exactly 0 at p = 0.
TRELVOGUI_EXPORT float ExponentialEaseIn(float p);
/// Exactly 1 at p = 1.
TRELVOGUI_EXPORT float ExponentialEaseOut(float p);
/// Exactly 0 and 1 at the ends.
TRELVOGUI_EXPORT float ExponentialEaseInOut(float p);

/// Oscillates at 26 pi under a growing envelope; close to 0 at both ends.
TRELVOGUI_EXPORT float ElasticEaseIn(float p);
/// Oscillates at 26 pi under a decaying envelope; close to 1 at both ends.
TRELVOGUI_EXPORT float ElasticEaseOut(float p);
/// Jumps at p = 0.5 from about 0 to about 1.
TRELVOGUI_EXPORT float ElasticEaseInOut(float p);

/// Pulls back below 0 before rising to 1 (no overshoot parameter).
TRELVOGUI_EXPORT float BackEaseIn(float p);
TRELVOGUI_EXPORT float BackEaseOut(float p);
TRELVOGUI_EXPORT float BackEaseInOut(float p);

TRELVOGUI_EXPORT float BounceEaseIn(float p);
/// Four parabolic arcs meeting at 4/11, 8/11 and 9/10.
TRELVOGUI_EXPORT float BounceEaseOut(float p);
TRELVOGUI_EXPORT float BounceEaseInOut(float p);

} // namespace GUI::Animation
