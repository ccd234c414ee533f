#pragma once
// One OpenGL 2D texture behind the renderer's texture handle.

#include <trelvogui/gui/texture.h>
#include <trelvogui/trelvogui_export.h>

namespace GUI::Texture {

/// Created by OpenglRenderer::GenerateTexture. Storage per format: 0 GL_RGBA (RGBA8), 1 GL_RGBA32UI,
/// 2 GL_SRGB8_ALPHA8, 3 GL_RG32UI (data passes as four words a pixel, the last two ignored); any other format
/// gets a name and filters but no storage. Binding and allocating use the active texture unit and leave 0
/// bound on it.
class TRELVOGUI_EXPORT OpenglTexture : public Base {
public:
    /// Larger textures are refused by Allocate with a message (512 MiB as an id texture).
    static constexpr long long kMaxPixels = 32ll * 1024 * 1024;

    explicit OpenglTexture(int32_t format);
    ~OpenglTexture() override;

    /// Creates the name if needed and (re)defines level 0 at the current size without data. Prints
    /// the invalid-size message and returns false when either side is below 1.
    bool Allocate() override;
    /// Deletes the GL texture if any; always true.
    bool Free() override;
    /// Reallocates unless the contents are marked valid, then uploads width x height pixels of the
    /// format's type. False only when there is no storage to upload into.
    bool SetData(const void* pixels) override;
    /// Binds to GL_TEXTURE_2D of the active unit; false without a GL name.
    bool Bind() override;

    unsigned int GetTextureName() const { return name_; }

private:
    void defineLevel(const void* pixels);

    unsigned int name_ = 0;
};

} // namespace GUI::Texture
