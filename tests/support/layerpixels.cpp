#include "support/layerpixels.h"

#include "support/glfixture.h"

#include <GL/glew.h>

namespace trelvo::test {

std::array<uint8_t, 4> LayerPixels::Color(int x, int y) const {
    const std::size_t i = (static_cast<std::size_t>(y) * width + x) * 4;
    return {color[i], color[i + 1], color[i + 2], color[i + 3]};
}

uint32_t LayerPixels::Pid(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height)
        return 0;
    return ids[(static_cast<std::size_t>(y) * width + x) * 4];
}

uint32_t LayerPixels::Sid(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height)
        return 0;
    return ids[(static_cast<std::size_t>(y) * width + x) * 4 + 1];
}

LayerPixels ReadBoundTarget(int width, int height) {
    LayerPixels out;
    out.width = width;
    out.height = height;
    out.color.resize(static_cast<std::size_t>(width) * height * 4);
    out.ids.resize(static_cast<std::size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, out.color.data());
    glReadBuffer(GL_COLOR_ATTACHMENT1);
    glReadPixels(0, 0, width, height, GL_RGBA_INTEGER, GL_UNSIGNED_INT, out.ids.data());
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    // Only the two ids carry meaning; compact id layers read the other two words back as (0, 1).
    for (std::size_t i = 0; i < out.ids.size(); i += 4)
        out.ids[i + 2] = out.ids[i + 3] = 0;
    return out;
}

LayerPixels ReadLayers(GUI::GUIManager& manager, int width, int height) {
    glBindFramebuffer(GL_FRAMEBUFFER, manager.GetLayerFramebuffer());
    manager.WaitForLayers();
    LayerPixels out = ReadBoundTarget(width, height);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    return out;
}

void SaveLayer(const LayerPixels& layers, const std::string& name) {
    WritePng(OutputDir() + "/" + name + ".png", layers.color.data(), layers.width, layers.height);
}

} // namespace trelvo::test
