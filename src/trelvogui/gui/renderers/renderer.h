#pragma once
// The abstract 2D renderer every control, the atlas and the manager draw through.

#include <trelvogui/gui/geometry.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/glscopedsetter.h>

#include <memory>
#include <string>

namespace GUI {
namespace Texture {
class Base;
class Atlas;
} // namespace Texture
namespace Animation {
class Frame;
}
} // namespace GUI

namespace GUI::Renderer {

/// Draws screen-aligned primitives in overlay pixels and writes, beside every colour pixel, the
/// primary and secondary id set with SetIds.
class TRELVOGUI_EXPORT Base {
public:
    Base() = default;
    virtual ~Base() = default;

    virtual bool Initialize() = 0;
    /// The GL state drawing needs; the host's state comes back when the setter is destroyed.
    virtual std::unique_ptr<GraphicsBase::GL::GLScopedSetter> SetRenderAttributes() = 0;
    virtual bool SetScreen(unsigned int width, unsigned int height) = 0;
    virtual bool LoadColorAtlas(std::string name, GUI::Texture::Atlas* atlas) = 0;
    virtual bool UnloadColorAtlas(GUI::Texture::Atlas* atlas) = 0;
    virtual bool LoadStencilAtlas(std::string name, GUI::Texture::Atlas* atlas) = 0;
    virtual bool UnloadStencilAtlas(GUI::Texture::Atlas* atlas) = 0;
    virtual void SetDebugMode(bool on) { debug_ = on; }
    virtual void DrawLine(GUI::Geometry::Line const& line) = 0;
    virtual void DrawCircle(GUI::Geometry::Circle const& circle) = 0;
    virtual void DrawFilledCircle(GUI::Geometry::Circle const& circle) = 0;
    /// Fills the rectangle and stamps the current ids.
    virtual void DrawRectangle(GUI::Geometry::Rectangle const& rectangle) = 0;
    /// Draws the rectangle's outline; writes no ids.
    virtual void DrawFilledRectangle(GUI::Geometry::Rectangle const& rectangle) = 0;
    virtual void DrawTexturedRectangle(GUI::Geometry::TexturedRectangle const& rectangle) = 0;
    virtual void DrawText(GUI::Texture::Base* target, GUI::Text* text, GUI::Geometry::Rectangle area,
                          int horizontalAlignment, int verticalAlignment) = 0;
    virtual void GetTextSize(GUI::Text* text, int* width, int* height) = 0;
    virtual void SetLineThickness(float thickness) = 0;
    virtual void SetLineColor(GUI::Color color) = 0;
    virtual void SetFontColor(GUI::Color color) = 0;
    virtual void SetIds(unsigned int primary, unsigned int sub) = 0;
    virtual void GenerateTexture(GUI::Texture::Base** out, int format) = 0;
    virtual void DeleteTexture(GUI::Texture::Base* texture) = 0;
    virtual void SetRenderTargetToTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                          GUI::Geometry::Rectangle& rectangle) = 0;
    virtual void ClearRenderTargetToTexture() = 0;
    /// Whether cached layers may be redrawn in part (see SetRenderTargetToTextureRegion).
    virtual bool SupportsPartialRedraw() const { return false; }
    /// Like SetRenderTargetToTexture for a layer that keeps its size and contents: only `region`
    /// (overlay pixels inside `rectangle`) is cleared, and drawing is limited to it until
    /// ClearRenderTargetToTexture. The default redraws the whole layer.
    virtual void SetRenderTargetToTextureRegion(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                                GUI::Geometry::Rectangle& rectangle,
                                                const GUI::Geometry::Rectangle& /*region*/) {
        SetRenderTargetToTexture(color, ids, rectangle);
    }
    /// Whether the last SetRenderTargetToTexture took effect. A target it refused (empty, or beyond
    /// the context's texture limit) must not be drawn into: drawing would land in another target.
    virtual bool RenderTargetReady() const { return true; }
    virtual void RenderTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                               GUI::Animation::Frame* frame, GUI::Geometry::Rectangle* rectangle,
                               GUI::Geometry::Point* pivot) = 0;
    /// Draws `count` textured rectangles from the bound atlas with the current ids, in order, as
    /// DrawTexturedRectangle would one by one; a renderer may draw them together (the nine pieces of
    /// a skin cost one draw instead of nine).
    virtual void DrawTexturedRectangles(const GUI::Geometry::TexturedRectangle* pieces, int count) {
        for (int i = 0; i < count; ++i)
            DrawTexturedRectangle(pieces[i]);
    }

    bool DebugMode() const { return debug_; }

    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;

private:
    bool debug_ = false;
};

} // namespace GUI::Renderer
