#pragma once
// Shared by the backends: the cameras whose viewports follow the view's framebuffer size.

#include <graphicsbase/camera.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace GUI::detail {

/// The cameras a host handed to a backend's FollowViewport. A resize sets each one's viewport and
/// rebuilds its matrices, so the widgets that share it are drawn and picked where the host's scene
/// is, from the first frame at the new size on; a host that hands its own matrices every frame
/// overrides the projection anyway.
class FollowedCameras {
public:
    /// Null and cameras already followed are ignored.
    void Add(std::shared_ptr<GraphicsBase::Camera> camera) {
        if (camera && std::find(cameras_.begin(), cameras_.end(), camera) == cameras_.end())
            cameras_.push_back(std::move(camera));
    }
    /// A minimised (0 x 0) view leaves the cameras as they were.
    void Resize(int width, int height) const {
        if (width <= 0 || height <= 0)
            return;
        for (const std::shared_ptr<GraphicsBase::Camera>& camera : cameras_) {
            camera->SetViewport(width, height);
            camera->CalcMatrices();
        }
    }

private:
    std::vector<std::shared_ptr<GraphicsBase::Camera>> cameras_;
};

} // namespace GUI::detail
