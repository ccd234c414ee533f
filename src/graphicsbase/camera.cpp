#include <graphicsbase/camera.h>
#include <graphicsbase/rendererbase.h>

#include <glm/gtc/matrix_transform.hpp>

Camera::Camera() {
    CalcMatrices();
}

void Camera::SetPerspective(float fovyDegrees, float nearPlane, float farPlane) {
    fovy_ = fovyDegrees;
    near_ = nearPlane;
    far_ = farPlane;
}

void Camera::SetViewport(int width, int height) {
    width_ = width;
    height_ = height;
}

void Camera::CalcMatrices() {
    view_ = glm::lookAt(position_, target_, up_);
    float aspect = height_ > 0 ? static_cast<float>(width_) / static_cast<float>(height_) : 1.f;
    projection_ = glm::perspective(glm::radians(fovy_), aspect, near_, far_);
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
