#include <trelvogui/gui/textureregion.h>

namespace GUI::Texture {

void Expandable::Set(Base* color, Base* stencil, Area a, Borders b, int atlasWidth, int atlasHeight) {
    colorTexture = color;
    stencilTexture = stencil;
    area = a;
    borders = b;
    const float w = static_cast<float>(atlasWidth);
    const float h = static_cast<float>(atlasHeight);
    s[0] = a.xMin / w;
    s[1] = (a.xMin + b.left) / w;
    s[2] = (a.xMax - b.right) / w;
    s[3] = a.xMax / w;
    t[0] = a.yMin / h;
    t[1] = (a.yMin + b.top) / h;
    t[2] = (a.yMax - b.bottom) / h;
    t[3] = a.yMax / h;
}

void NonExpandable::Set(Base* color, Base* stencil, Area a, int atlasWidth, int atlasHeight) {
    colorTexture = color;
    stencilTexture = stencil;
    area = a;
    const float w = static_cast<float>(atlasWidth);
    const float h = static_cast<float>(atlasHeight);
    texCoords[0] = a.xMin / w;
    texCoords[1] = a.xMax / w;
    texCoords[2] = a.yMin / h;
    texCoords[3] = a.yMax / h;
}

} // namespace GUI::Texture
