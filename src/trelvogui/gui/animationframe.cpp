#include <trelvogui/gui/animationframe.h>

#include <algorithm>
#include <cmath>

namespace GUI::Animation {

void Frame::reset() {
    position_ = glm::vec3(0.f);
    scale_ = glm::vec3(1.f);
    orientation_ = glm::quat(1.f, 0.f, 0.f, 0.f);
    alpha_ = 1.f;
}

void Frame::setScale(glm::vec3 s) {
    if (s.x == 0.f || s.y == 0.f || s.z == 0.f)
        return;
    scale_ = s;
}

void Frame::setOrientation(glm::quat q) {
    float len = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    if (len < 0.9999f || len > 1.0001f)
        return;
    orientation_ =
        len > 0.f ? glm::quat(q.w / len, q.x / len, q.y / len, q.z / len) : glm::quat(1.f, 0.f, 0.f, 0.f);
}

void Frame::setAlpha(float a) {
    alpha_ = std::clamp(a, 0.f, 1.f);
}

void Frame::setWithInterpolation(Frame* a, Frame* b, float t) {
    t = std::clamp(t, 0.f, 1.f);
    float u = 1.f - t;
    position_ = u * a->position_ + t * b->position_;
    scale_ = u * a->scale_ + t * b->scale_;
    alpha_ = u * a->alpha_ + t * b->alpha_;

    glm::quat qa = a->orientation_;
    glm::quat qb = b->orientation_;
    float d = qa.x * qb.x + qa.y * qb.y + qa.z * qb.z + qa.w * qb.w;
    if (d < 0.f) {
        qb = glm::quat(-qb.w, -qb.x, -qb.y, -qb.z);
        d = -d;
    }
    if (d > 0.9999999f) {
        orientation_ =
            glm::quat(u * qa.w + t * qb.w, u * qa.x + t * qb.x, u * qa.y + t * qb.y, u * qa.z + t * qb.z);
        return;
    }
    float theta = std::acos(d);
    float sinTheta = std::sin(theta);
    float wa = std::sin(u * theta) / sinTheta;
    float wb = std::sin(t * theta) / sinTheta;
    orientation_ =
        glm::quat(wa * qa.w + wb * qb.w, wa * qa.x + wb * qb.x, wa * qa.y + wb * qb.y, wa * qa.z + wb * qb.z);
}

} // namespace GUI::Animation
