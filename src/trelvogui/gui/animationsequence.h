#pragma once
// A timed animation of one control: eased deltas applied to its animation frame.

#include <trelvogui/gui/easing.h>
#include <trelvogui/trelvogui_export.h>

#include <glm/glm.hpp>

#include <cstdint>

namespace GUI::Controls {
class Base;
}

namespace GUI::Animation {

/// Drives one control's animation frame from its base frame over a fixed duration. Each update
/// eases the progress separately for translation, rotation, scale and alpha; the update that
/// reaches the end folds the result into the base frame and moves the control for good.
class TRELVOGUI_EXPORT Sequence {
public:
    /// The control is not owned. `seconds` becomes a duration in clock milliseconds.
    Sequence(GUI::Controls::Base* control, float seconds);
    virtual ~Sequence() = default;

    Sequence(const Sequence&) = delete;
    Sequence& operator=(const Sequence&) = delete;

    /// Starts the clock now; the sequence ends one duration later.
    virtual void Start();
    /// Recomputes the control's animation frame for the current time.
    virtual void Update();
    /// True once an update has reached the end time. Remove the sequence then: a further update
    /// would fold the frames and move the control again.
    virtual bool Done();
    virtual GUI::Controls::Base* GetControl();

    /// Pixels the control moves over the whole sequence; z only affects the animation frame.
    virtual bool SetTranslation(int x, int y, int z);
    /// Rotation over the whole sequence; the axis is normalised (it must not be zero).
    virtual bool SetRotation(float ax, float ay, float az, float angle);
    /// Kept for interface compatibility; has no effect.
    virtual bool SetScaleIncremental(float delta);
    /// Kept for interface compatibility; has no effect.
    virtual bool SetAlphaIncremental(float delta);
    /// The setters of the easing functions refuse null and keep the previous function.
    virtual bool SetTranslationFunction(EasingFunction f);
    virtual bool SetRotationFunction(EasingFunction f);
    virtual bool SetScaleFunction(EasingFunction f);
    virtual bool SetAlphaFunction(EasingFunction f);
    /// Whether the sequence moves or fades its control through the animation frame (the default). One
    /// that only drives something the control draws (a camera it follows) says false, and the
    /// manager then redraws just what is stale instead of the whole overlay.
    virtual bool MovesControl() const { return true; }

protected:
    uint64_t startTime_ = 0;
    uint64_t endTime_ = 0;
    uint64_t duration_ = 0;
    uint64_t currentTime_ = 0;
    GUI::Controls::Base* control_ = nullptr;
    int32_t translation_[3] = {0, 0, 0};
    glm::vec3 rotationAxis_{0.f, 0.f, 1.f};
    float rotationAngle_ = 0.f;
    glm::vec3 scaleDelta_{0.f, 0.f, 0.f};
    float alphaDelta_ = 0.f;
    EasingFunction translationFunction_ = LinearInterpolation;
    EasingFunction rotationFunction_ = LinearInterpolation;
    EasingFunction scaleFunction_ = LinearInterpolation;
    EasingFunction alphaFunction_ = LinearInterpolation;
};

} // namespace GUI::Animation
