#include <trelvogui/gui/animationsequence.h>

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guiclock.h>

#include <glm/gtc/quaternion.hpp>

#include <cmath>

using namespace GraphicsBase;

namespace GUI::Animation {

Sequence::Sequence(GUI::Controls::Base* control, float seconds) : control_(control) {
    // One clock tick is a millisecond. A negative or NaN length has no meaning and would make the
    // conversion undefined, so it counts as no time at all.
    float ticks = seconds * 1000.f;
    duration_ = ticks > 0.f ? static_cast<uint64_t>(ticks) : 0;
}

void Sequence::Start() {
    startTime_ = GUI::Clock::Ticks();
    currentTime_ = startTime_;
    endTime_ = startTime_ + duration_;
}

void Sequence::Update() {
    uint64_t now = GUI::Clock::Ticks();
    currentTime_ = now > endTime_ ? endTime_ : now;
    if (!control_)
        return;

    // The difference is taken in integers: tick counts are far beyond float precision. A clock
    // that went back before the start gives a negative progress, which the curves extrapolate.
    // With no duration the sequence jumps straight to its end instead of easing a 0/0.
    float t = 1.f;
    if (duration_ > 0)
        t = static_cast<float>(static_cast<int64_t>(currentTime_ - startTime_)) /
            static_cast<float>(duration_);

    Frame* base = control_->GetLocalFrame();
    Frame* anim = control_->GetLocalFrameAnimation();

    const glm::vec3 translation(static_cast<float>(translation_[0]), static_cast<float>(translation_[1]),
                                static_cast<float>(translation_[2]));
    anim->setPosition(base->getPosition() + translation * translationFunction_(t));

    float half = rotationFunction_(t) * rotationAngle_ * 0.5f;
    const glm::vec3 axis = rotationAxis_ * std::sin(half);
    // Frame::setOrientation rejects a product that drifted off unit length.
    anim->setOrientation(base->getOrientation() * glm::quat(std::cos(half), axis.x, axis.y, axis.z));

    // setScale keeps the previous scale when a component comes out exactly 0.
    anim->setScale(base->getScale() + scaleDelta_ * scaleFunction_(t));

    anim->setAlpha(alphaFunction_(t) * alphaDelta_ + base->getAlpha());

    if (currentTime_ == endTime_) {
        base->setPosition(anim->getPosition());
        base->setScale(anim->getScale());
        base->setOrientation(anim->getOrientation());
        base->setAlpha(anim->getAlpha());
        anim->reset();
        // The movement becomes the control's real position, so the frame offset goes back to 0.
        base->setPosition(glm::vec3(0.f));
        control_->Translate(translation_[0], translation_[1]);
    }
}

bool Sequence::Done() {
    return currentTime_ >= endTime_;
}

GUI::Controls::Base* Sequence::GetControl() {
    return control_;
}

bool Sequence::SetTranslation(int x, int y, int z) {
    translation_[0] = x;
    translation_[1] = y;
    translation_[2] = z;
    return true;
}

bool Sequence::SetRotation(float ax, float ay, float az, float angle) {
    rotationAxis_ = glm::vec3(ax, ay, az) / std::sqrt(ax * ax + ay * ay + az * az);
    rotationAngle_ = angle;
    return true;
}

bool Sequence::SetScaleIncremental(float) {
    return true;
}

bool Sequence::SetAlphaIncremental(float) {
    return true;
}

bool Sequence::SetTranslationFunction(EasingFunction f) {
    if (!f)
        return false;
    translationFunction_ = f;
    return true;
}

bool Sequence::SetRotationFunction(EasingFunction f) {
    if (!f)
        return false;
    rotationFunction_ = f;
    return true;
}

bool Sequence::SetScaleFunction(EasingFunction f) {
    if (!f)
        return false;
    scaleFunction_ = f;
    return true;
}

bool Sequence::SetAlphaFunction(EasingFunction f) {
    if (!f)
        return false;
    alphaFunction_ = f;
    return true;
}

} // namespace GUI::Animation
