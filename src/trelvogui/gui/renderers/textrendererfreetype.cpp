// Placeholder until the FreeType text path lands: measures nothing and draws nothing.
#include <trelvogui/gui/renderers/textrendererfreetype.h>

namespace GUI::Renderer {

struct TextRendererFreeType::Impl {};

TextRendererFreeType::TextRendererFreeType() : impl_(std::make_unique<Impl>()) {}
TextRendererFreeType::~TextRendererFreeType() = default;

bool TextRendererFreeType::Initialize() { return true; }

void TextRendererFreeType::Draw(GUI::Texture::Base*, GUI::Text*, GUI::Geometry::Rectangle, int, int) {}

void TextRendererFreeType::Measure(GUI::Text*, int* width, int* height) {
    *width = 0;
    *height = 0;
}

void TextRendererFreeType::SetScreen(unsigned int width, unsigned int height, const glm::mat4&) {
    screenWidth_ = width;
    screenHeight_ = height;
}

} // namespace GUI::Renderer
