#pragma once
// Text rasterised by FreeType into per-text textures and drawn with its own shader program.

#include <trelvogui/gui/geometry.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/trelvogui_export.h>

#include <glm/glm.hpp>

#include <memory>

namespace GUI::Texture {
class Base;
}

namespace GUI::Renderer {

/// Owned by the OpenGL renderer. Draw rasterises only when the caller's texture is not valid and
/// marks it valid afterwards, so the owner clears the flag when its text changes. A text's size is
/// its line height in pixels; the text colour tints the glyphs, and a colour with alpha 0 (a label's
/// default) draws opaque. Fonts: "Segoe UI" when fontconfig really has it, else the embedded DejaVu
/// Sans regular and bold; faces without an italic are slanted.
class TRELVOGUI_EXPORT TextRendererFreeType {
public:
    TextRendererFreeType();
    ~TextRendererFreeType();

    TextRendererFreeType(const TextRendererFreeType&) = delete;
    TextRendererFreeType& operator=(const TextRendererFreeType&) = delete;

    /// Loads the fonts, builds the quad and links "UITextShader.vert" + "UITextShader.frag".
    bool Initialize();
    /// Draws the text's texture aligned in `area` (0 min side, 1 centred, 2 max side, other: 0).
    void Draw(GUI::Texture::Base* target, GUI::Text* text, GUI::Geometry::Rectangle area,
              int horizontalAlignment, int verticalAlignment);
    /// Extent of the text; width and height swap for any non-zero orientation.
    void Measure(GUI::Text* text, int* width, int* height);
    void SetIds(unsigned int primary, unsigned int sub) {
        primaryId_ = primary;
        subId_ = sub;
    }
    /// Stores the screen size and uploads the projection (depth -1..1) to the text program.
    void SetScreen(unsigned int width, unsigned int height, const glm::mat4& projection);

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
    unsigned int subId_ = 0;
    unsigned int primaryId_ = 0;
    unsigned int screenWidth_ = 0;
    unsigned int screenHeight_ = 0;
};

} // namespace GUI::Renderer
