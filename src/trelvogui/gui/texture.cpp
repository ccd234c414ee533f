#include <trelvogui/gui/texture.h>

namespace GUI::Texture {

bool Base::SetSize(int width, int height) {
    if (width < 0 || height < 0)
        return false;
    width_ = width;
    height_ = height;
    return true;
}

} // namespace GUI::Texture
