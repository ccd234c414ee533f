#include <graphicsbase/camera.h>
#include <graphicsbase/rendererbase.h>

#include <glm/gtc/matrix_transform.hpp>

#include <cmath>
#include <cstdio>

namespace GraphicsBase {

namespace {

bool Finite(const tgeom::mat4& m) {
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            if (!std::isfinite(m[c][r]))
                return false;
    return true;
}

// Singular, or too close to it for the inverse that unprojection takes to be finite.
bool Invertible(const tgeom::mat4& m) {
    const float d = glm::determinant(m);
    return std::isfinite(d) && d != 0.f && Finite(glm::inverse(m));
}

} // namespace

Camera::Camera() {
    CalcMatrices();
}

void Camera::SetPerspective(float fovyDegrees, float nearPlane, float farPlane) {
    fovy_ = fovyDegrees;
    near_ = nearPlane;
    far_ = farPlane;
    hostProjection_ = false;
}

void Camera::SetViewport(int width, int height) {
    width_ = width;
    height_ = height;
}

void Camera::CalcMatrices() {
    if (glm::length(target_ - position_) == 0.f) {
        std::printf("Camera::CalcMatrices(): The position is on the target; the matrices are kept.\n");
        return;
    }
    const tgeom::mat4 view = glm::lookAt(position_, target_, up_);
    const float aspect = height_ > 0 ? static_cast<float>(width_) / static_cast<float>(height_) : 1.f;
    const tgeom::mat4 projection =
        hostProjection_ ? projection_ : glm::perspective(glm::radians(fovy_), aspect, near_, far_);
    if (!Finite(view) || !Finite(projection) || !Invertible(projection * view)) {
        std::printf("Camera::CalcMatrices(): The parameters give degenerate matrices; the matrices are "
                    "kept.\n");
        return;
    }
    view_ = view;
    projection_ = projection;
}

bool Camera::SetMatrices(const tgeom::mat4& view, const tgeom::mat4& projection, int width, int height) {
    if (width <= 0 || height <= 0) {
        std::printf("Camera::SetMatrices(): The viewport %d x %d has no pixels.\n", width, height);
        return false;
    }
    if (!Finite(view) || !Finite(projection) || !Invertible(view) || !Invertible(projection * view)) {
        std::printf("Camera::SetMatrices(): The matrices are not finite or not invertible.\n");
        return false;
    }
    const tgeom::mat4 world = glm::inverse(view);
    const float distance = glm::length(target_ - position_);
    position_ = tgeom::vec(world[3]);
    target_ = position_ - glm::normalize(tgeom::vec(world[2])) * (distance > 0.f ? distance : 1.f);
    up_ = glm::normalize(tgeom::vec(world[1]));
    view_ = view;
    projection_ = projection;
    width_ = width;
    height_ = height;
    hostProjection_ = true;
    return true;
}

bool Camera::Valid() const {
    return width_ > 0 && height_ > 0 && Finite(view_) && Finite(projection_) &&
           Invertible(projection_ * view_);
}

tgeom::vec Camera::ViewDir() const {
    tgeom::vec d = target_ - position_;
    float len = glm::length(d);
    return len > 0.f ? d / len : tgeom::vec(0.f, 0.f, -1.f);
}

bool Camera::ProjectPoint(float x, float y, float z, float* sx, float* sy, float* sz) const {
    tgeom::vec4 clip = projection_ * view_ * tgeom::vec4(x, y, z, 1.f);
    if (clip.w == 0.f)
        return false;
    tgeom::vec ndc = tgeom::vec(clip) / clip.w;
    *sx = (ndc.x * 0.5f + 0.5f) * static_cast<float>(width_);
    *sy = (ndc.y * 0.5f + 0.5f) * static_cast<float>(height_);
    *sz = ndc.z * 0.5f + 0.5f;
    return true;
}

bool Camera::UnProjectPoint(float sx, float sy, float sz, float* x, float* y, float* z) const {
    if (width_ <= 0 || height_ <= 0)
        return false;
    tgeom::mat4 m = projection_ * view_;
    if (glm::determinant(m) == 0.f)
        return false;
    tgeom::vec4 ndc(sx / static_cast<float>(width_) * 2.f - 1.f, sy / static_cast<float>(height_) * 2.f - 1.f,
                    sz * 2.f - 1.f, 1.f);
    tgeom::vec4 world = glm::inverse(m) * ndc;
    if (world.w == 0.f)
        return false;
    *x = world.x / world.w;
    *y = world.y / world.w;
    *z = world.z / world.w;
    return true;
}

void Camera::SetMatrixParams(RendererBase* renderer) const {
    if (!renderer)
        return;
    renderer->SetViewMatrix(view_);
    renderer->SetProjectionMatrix(projection_);
    renderer->SetViewport(width_, height_);
}

} // namespace GraphicsBase
