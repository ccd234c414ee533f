#pragma once
// Base of everything that renders into the host's 3D view with the host's camera and light.

#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/tgeom.h>

namespace GraphicsBase {

/// Surface description handed to shaders.
struct GRAPHICSBASE_EXPORT MaterialInfo {
    tgeom::vec4 color{1.f, 1.f, 1.f, 1.f};
    tgeom::vec4 specular{0.f, 0.f, 0.f, 1.f};
    float shininess = 0.f;
};

/// Carries the camera- and light-updated flags that the host raises when either changes, the
/// matrices the camera hands over and a material.
class GRAPHICSBASE_EXPORT RendererBase {
public:
    virtual ~RendererBase() = default;

    /// Draws when visible.
    virtual void Render() {
        if (visible_)
            Draw();
    }
    virtual void Draw() {}

    void SetVisible(bool v) { visible_ = v; }
    bool Visible() const { return visible_; }

    void SetCameraUpdated(bool v) { cameraUpdated_ = v; }
    bool GetCameraUpdated() const { return cameraUpdated_; }
    void SetLightUpdated(bool v) { lightUpdated_ = v; }
    bool GetLightUpdated() const { return lightUpdated_; }

    void SetViewMatrix(const tgeom::mat4& m) { view_ = m; }
    void SetProjectionMatrix(const tgeom::mat4& m) { projection_ = m; }
    void SetModelMatrix(const tgeom::mat4& m) { model_ = m; }
    void SetViewport(int width, int height) {
        viewportWidth_ = width;
        viewportHeight_ = height;
    }
    const tgeom::mat4& GetViewMatrix() const { return view_; }
    const tgeom::mat4& GetProjectionMatrix() const { return projection_; }
    const tgeom::mat4& GetModelMatrix() const { return model_; }
    int GetViewportWidth() const { return viewportWidth_; }
    int GetViewportHeight() const { return viewportHeight_; }

    void SetMaterialInfo(const MaterialInfo& m) { material_ = m; }
    const MaterialInfo& GetMaterialInfo() const { return material_; }

private:
    bool visible_ = true;
    bool cameraUpdated_ = false;
    bool lightUpdated_ = false;
    tgeom::mat4 view_{1.f};
    tgeom::mat4 projection_{1.f};
    tgeom::mat4 model_{1.f};
    int viewportWidth_ = 0;
    int viewportHeight_ = 0;
    MaterialInfo material_;
};

} // namespace GraphicsBase
