#pragma once
// The OpenGL implementation of the 2D renderer: rectangles, skin pieces and text with ids, layers.

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/trelvogui_export.h>

#include <glm/glm.hpp>

#include <memory>
#include <vector>

namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

namespace GUI::Renderer {

class TextRendererFreeType;

/// Draws with three programs ("UITexturedShader", "UILineShader", "UITexturedCachedShader") that
/// write colour to draw buffer 0 and the (primary, sub) id pair to draw buffer 1. GL blending is
/// not used: each shader reads the target it draws into (units 9 and 10) and composes "source over
/// target" itself, so the current target's colour and id textures must be bound there (the
/// manager's layer, or SetRenderTargetToTexture's pair).
///
/// Texture coordinates of a TexturedRectangle follow the image's row order: (s0, t0) is the
/// corner shown at the rectangle's top left (xMin, yMax), (s1, t1) the one at its bottom right.
class TRELVOGUI_EXPORT OpenglRenderer : public Base {
public:
    OpenglRenderer();
    ~OpenglRenderer() override;

    /// Framebuffer, the three programs, the five vertex buffers, then the text renderer. False on
    /// the first failure; the drawing operations stay inert until this succeeded.
    bool Initialize() override;
    /// Disables GL_BLEND and GL_DEPTH_TEST until the returned setter is destroyed.
    std::unique_ptr<GraphicsBase::GL::GLScopedSetter> SetRenderAttributes() override;
    /// Sets the viewport and the pixel projection (origin bottom left, y up). False before
    /// Initialize, when only the viewport changes.
    bool SetScreen(unsigned int width, unsigned int height) override;
    /// The atlas loads its own images; these only report whether the renderer is ready for it.
    bool LoadColorAtlas(std::string name, GUI::Texture::Atlas* atlas) override;
    bool UnloadColorAtlas(GUI::Texture::Atlas* atlas) override;
    bool LoadStencilAtlas(std::string name, GUI::Texture::Atlas* atlas) override;
    bool UnloadStencilAtlas(GUI::Texture::Atlas* atlas) override;
    void DrawLine(GUI::Geometry::Line const& line) override;
    void DrawCircle(GUI::Geometry::Circle const& circle) override;
    void DrawFilledCircle(GUI::Geometry::Circle const& circle) override;
    /// Fills the rectangle with the line colour and stamps the current ids on every pixel of it.
    void DrawRectangle(GUI::Geometry::Rectangle const& rectangle) override;
    /// Draws the rectangle's outline with the line colour; the id target is left untouched.
    void DrawFilledRectangle(GUI::Geometry::Rectangle const& rectangle) override;
    /// Draws an atlas area (colour on unit 13, stencil on unit 14) masked by the stencil's red
    /// coverage; ids are stamped where the coverage exceeds one half.
    void DrawTexturedRectangle(GUI::Geometry::TexturedRectangle const& rectangle) override;
    /// One instanced draw for up to kMostPieces pieces; piece by piece under strict synchronisation
    /// (the reference picture) and where the shader samples its target and pieces overlap.
    void DrawTexturedRectangles(const GUI::Geometry::TexturedRectangle* pieces, int count) override;
    void DrawText(GUI::Texture::Base* target, GUI::Text* text, GUI::Geometry::Rectangle area,
                  int horizontalAlignment, int verticalAlignment) override;
    void GetTextSize(GUI::Text* text, int* width, int* height) override;
    void SetLineThickness(float thickness) override;
    void SetLineColor(GUI::Color color) override;
    void SetFontColor(GUI::Color color) override;
    void SetIds(unsigned int primary, unsigned int sub) override;
    /// Stores a new, unallocated OpenglTexture of the format in *out.
    void GenerateTexture(GUI::Texture::Base** out, int format) override;
    void DeleteTexture(GUI::Texture::Base* texture) override;
    /// Sizes the pair to the rectangle, attaches it to the renderer's framebuffer, clears it and
    /// shifts the viewport so that screen coordinates keep working: the rectangle's minimum corner
    /// lands on texel (0, 0).
    bool RenderTargetReady() const override { return targetReady_; }
    /// Not under strict synchronisation, which keeps the plain whole redraw.
    bool SupportsPartialRedraw() const override;
    void SetRenderTargetToTextureRegion(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                        GUI::Geometry::Rectangle& rectangle,
                                        const GUI::Geometry::Rectangle& region) override;
    void SetRenderTargetToTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                  GUI::Geometry::Rectangle& rectangle) override;
    /// Back to the host's framebuffer with a full-screen viewport.
    void ClearRenderTargetToTexture() override;
    /// The transform that places a cached layer's unit quad (-0.5..0.5) when it is composited.
    static glm::mat4 CachedLayerTransform(const GUI::Animation::Frame& frame,
                                          const GUI::Geometry::Rectangle& rectangle,
                                          const GUI::Geometry::Point& pivot);
    /// The pixels a composited cached layer can cover (with a pixel of margin). With `part` (in the
    /// layer's untransformed coordinates), only the pixels that this part of it can reach, filtering
    /// included: what a partial redraw of the layer changes in the composite.
    static GUI::Geometry::Rectangle CachedLayerFootprint(const GUI::Animation::Frame& frame,
                                                         const GUI::Geometry::Rectangle& rectangle,
                                                         const GUI::Geometry::Point& pivot,
                                                         const GUI::Geometry::Rectangle* part = nullptr);
    /// Composites a layer pair onto the current target: the layer covers `rectangle`, transformed
    /// by the frame about `pivot`, faded by the frame's alpha.
    void RenderTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids, GUI::Animation::Frame* frame,
                       GUI::Geometry::Rectangle* rectangle, GUI::Geometry::Point* pivot) override;

    /// Creates the framebuffer used for texture targets unless it exists.
    virtual bool InitializeFBO();
    /// Deletes that framebuffer; the destructor does not.
    virtual bool DestroyFBO();
    /// 101 points on a circle of radius 0.5, the last repeating the first (reserved for circles).
    virtual bool BuildCircleBuffer();
    /// Unit quad (0,0)-(1,1) for filled areas, drawn as a triangle fan.
    virtual bool BuildQuadBuffer();
    /// Quad centred on the origin with texture coordinates, for compositing layers.
    virtual bool BuildCenteredQuadBuffer();
    /// Unit quad drawn as a line loop, for outlines.
    virtual bool BuildOutlineBuffer();
    /// Unit line (0,0)-(1,0), reserved for lines.
    virtual bool BuildLineBuffer();

    bool IsInitialized() const { return initialized_; }
    unsigned int ScreenWidth() const { return screenWidth_; }
    unsigned int ScreenHeight() const { return screenHeight_; }
    float LineThickness() const { return lineThickness_; }
    GUI::Color LineColor() const { return lineColor_; }
    unsigned int PrimaryId() const { return primaryId_; }
    unsigned int SubId() const { return subId_; }
    unsigned int FrameBuffer() const { return frameBuffer_; }

private:
    /// Binds a cached layer pair as the target: the whole of it, reallocated and cleared, or with
    /// `region` only that part cleared and drawable.
    void bindTarget(GUI::Texture::Base* color, GUI::Texture::Base* ids, GUI::Geometry::Rectangle& rectangle,
                    const GUI::Geometry::Rectangle* region);
    /// Every program built, both builds of each, for state that is set on all of them.
    std::vector<GraphicsBase::GLSLProgram*> programs() const;
    /// Points every sampler at its fixed unit once, so draws that set no sampler still read the
    /// right textures.
    void SetSamplerDefaults();
    void UploadProjection(GraphicsBase::GLSLProgram& program, const float* matrix);
    /// The current ids as uniforms `pid` and `sid` of the bound program.
    void SetIdUniforms(unsigned int program);
    /// Places the unit geometry on the rectangle (`bboxMin`, `bboxDim`).
    void SetPlacement(unsigned int program, GUI::Geometry::Rectangle const& r);
    /// Binds the textured program's build for the next draw and sets what every piece shares (ids,
    /// samplers, the atlas's encoding); true when that build samples its target.
    bool BeginTextured(GraphicsBase::GLSLProgram*& textured);

    /// As many pieces as the textured vertex shader's uniform arrays hold.
    static constexpr int kMostPieces = 9;

    unsigned int screenWidth_ = 0;
    unsigned int screenHeight_ = 0;
    float lineThickness_ = 0.f;
    GUI::Color lineColor_{};
    unsigned int primaryId_ = 0;
    unsigned int subId_ = 0;
    bool initialized_ = false;
    bool targetReady_ = false;
    bool targetScissored_ = false;
    unsigned int frameBuffer_ = 0;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> circleBuffer_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> quadBuffer_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> centeredQuadBuffer_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> outlineBuffer_;
    std::unique_ptr<GraphicsBase::GLVertexBuffer> lineBuffer_;
    // Each program in its literal build and, where the context offers framebuffer fetch, the build
    // the fast path draws with.
    std::unique_ptr<GraphicsBase::GLSLProgram> texturedProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> lineProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> cachedProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> texturedFetchProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> lineFetchProgram_;
    std::unique_ptr<GraphicsBase::GLSLProgram> cachedFetchProgram_;
    std::unique_ptr<TextRendererFreeType> textRenderer_;
};

} // namespace GUI::Renderer
