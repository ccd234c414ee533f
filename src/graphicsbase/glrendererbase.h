#pragma once
// Renderer base for OpenGL renderers that may follow the host camera.

#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/rendererbase.h>

#include <memory>

namespace GraphicsBase {

class Camera;

/// A RendererBase that optionally keeps the host camera it draws with.
class GRAPHICSBASE_EXPORT GLRendererBase : public RendererBase {
public:
    GLRendererBase() = default;
    explicit GLRendererBase(std::shared_ptr<Camera> camera) : camera_(std::move(camera)) {}

    const std::shared_ptr<Camera>& GetCamera() const { return camera_; }
    void SetCamera(std::shared_ptr<Camera> camera) { camera_ = std::move(camera); }

private:
    std::shared_ptr<Camera> camera_;
};

} // namespace GraphicsBase
