#pragma once
// The host's scene drawn off screen, darkened by ambient occlusion, and put back with the overlay.

#include <trelvogui/trelvogui_export.h>

#include <memory>

namespace GraphicsBase {
class Camera;
}
namespace GraphicsBase {
class GLSLProgram;
}

namespace GUI {
class GUIManager;
}

/// An off-screen colour/depth target for the host's 3D scene, with an ambient-occlusion pass and
/// the blit back into the host's framebuffer.
///
/// Per frame, with the context current: BeginScene() (binds the target and its viewport; the host
/// clears and draws its scene as usual, optionally writing world-space unit normals to output
/// location 1), then EndScene() (resolves, runs the occlusion pass when it is on, and writes the
/// result into the framebuffer and viewport that were bound at BeginScene; given a manager, its
/// overlay is brought up to date and composited over it). The projection of the host's Camera must
/// be the one the scene was drawn with. Every entry point leaves the host's GL state as it found
/// it, except that between BeginScene and EndScene the target and its viewport are bound. Destroy
/// it while its context is current.
class TRELVOGUI_EXPORT SceneCompositor {
public:
    explicit SceneCompositor(std::shared_ptr<GraphicsBase::Camera> camera);
    ~SceneCompositor();
    SceneCompositor(const SceneCompositor&) = delete;
    SceneCompositor& operator=(const SceneCompositor&) = delete;

    /// Loads the GL entry points and builds the programs. False, with a message, without a current
    /// OpenGL 3.3 context or when a program does not build.
    bool Initialize();
    /// (Re)creates the targets for a view of width x height pixels, kept within the context's
    /// texture and viewport limits (with a message). A zero size keeps no targets: BeginScene then
    /// refuses. Refused while a scene is open.
    bool Resize(int width, int height);
    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }

    /// Remembers the bound framebuffers and viewport and binds the scene target. Refused (false,
    /// with a message, nothing changed) before Initialize/Resize or while a scene is already open.
    bool BeginScene();
    /// Finishes the scene into the framebuffer and viewport remembered by BeginScene and binds them
    /// again; with `overlay`, updates its layers and draws it on top. Refused without BeginScene.
    bool EndScene(GUI::GUIManager* overlay = nullptr);
    bool InScene() const { return inScene_; }

    /// Occlusion on or off; off, EndScene is a plain blit of the scene.
    void SetOcclusionEnabled(bool on) { occlusion_ = on; }
    bool GetOcclusionEnabled() const { return occlusion_; }
    /// Reach of the occlusion in world units (default 0.5). Zero, negative or NaN is refused with a
    /// message and the last good value kept; so are the setters below.
    bool SetRadius(float radius);
    float GetRadius() const { return radius_; }
    /// Strength: 1 darkens a fully enclosed point to black, more than 1 exaggerates (default 1).
    bool SetIntensity(float intensity);
    float GetIntensity() const { return intensity_; }
    /// Offset along the normal before sampling, in world units, against self-occlusion on flat
    /// surfaces (default 0.02). Zero is allowed; negative, NaN or not below the radius is refused.
    bool SetBias(float bias);
    float GetBias() const { return bias_; }
    /// Hemisphere directions a pixel tests, 4 to 64 (default 16).
    bool SetSampleCount(int samples);
    int GetSampleCount() const { return samples_; }
    /// Splits the sample directions among the pixels of a 4 x 4 tile (2 x 2 at half resolution)
    /// instead of tracing them all at every pixel; the blur gathers them back, so each pixel still
    /// counts the sample count, at a fraction of the cost but in coarser steps that can show as
    /// bands on smooth gradients (default off).
    void SetInterleavedSampling(bool on) { interleaved_ = on; }
    bool GetInterleavedSampling() const { return interleaved_; }
    /// Computes the occlusion at half the resolution and upsamples it along depth (default off).
    void SetHalfResolution(bool half);
    bool GetHalfResolution() const { return half_; }
    /// Samples per pixel of the scene target: 0 or 1 for none (default). Takes effect at the next
    /// Resize or BeginScene; where the context offers fewer, the most it offers is used, with one
    /// message. Negative counts are refused.
    bool SetMultisampleCount(int samples);
    int GetMultisampleCount() const { return requestedSamples_; }
    /// The sample count the target really has (0 for none).
    int GetActiveMultisampleCount() const { return activeSamples_; }
    /// Adds a normal attachment at output location 1 (RGBA16F, world-space unit normals in xyz, a
    /// cleared pixel meaning "not written"); without it, normals are reconstructed from depth.
    void SetNormalAttachment(bool on);
    bool GetNormalAttachment() const { return normals_; }
    /// For tests and tuning: EndScene writes the occlusion term as grey instead of the darkened
    /// colour, exactly as it would be applied.
    void SetShowOcclusion(bool on) { showOcclusion_ = on; }
    bool GetShowOcclusion() const { return showOcclusion_; }

    /// The resolved scene colour and depth textures (valid after EndScene).
    unsigned int GetColorTexture() const { return colorTexture_; }
    unsigned int GetDepthTexture() const { return depthTexture_; }

private:
    bool createTargets();
    void deleteTargets();
    bool ensureTargets();
    void occlusionPasses();
    void drawTriangle();

    std::shared_ptr<GraphicsBase::Camera> camera_;
    std::unique_ptr<GraphicsBase::GLSLProgram> linearDepthProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> occlusionProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> blurProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> applyProgram_;
    unsigned int emptyVertexArray_ = 0;
    // The target the host draws into (multisampled renderbuffers when asked for), and the
    // single-sample textures it resolves into (the same framebuffer when not multisampled).
    unsigned int sceneFramebuffer_ = 0;
    unsigned int sceneRenderbuffers_[3] = {0, 0, 0};
    unsigned int resolveFramebuffer_ = 0;
    unsigned int colorTexture_ = 0;
    unsigned int depthTexture_ = 0;
    unsigned int normalTexture_ = 0;
    // At the occlusion resolution: linear depth, then the raw occlusion, then after the horizontal
    // and the vertical blur.
    unsigned int occlusionFramebuffers_[4] = {0, 0, 0, 0};
    unsigned int occlusionTextures_[4] = {0, 0, 0, 0};
    int width_ = 0;
    int height_ = 0;
    int maxSize_ = 16384;
    int maxSamples_ = 0;
    int requestedSamples_ = 0;
    int activeSamples_ = 0;
    int builtSamples_ = -1;
    bool builtNormals_ = false;
    bool builtHalf_ = false;
    bool samplesReported_ = false;
    bool initialized_ = false;
    bool inScene_ = false;
    bool occlusion_ = true;
    bool normals_ = false;
    bool half_ = false;
    bool interleaved_ = false;
    bool showOcclusion_ = false;
    float radius_ = 0.5f;
    float intensity_ = 1.f;
    float bias_ = 0.02f;
    int samples_ = 16;
    int hostDrawFramebuffer_ = 0;
    int hostReadFramebuffer_ = 0;
    int hostViewport_[4] = {0, 0, 0, 0};
};
