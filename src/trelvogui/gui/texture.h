#pragma once
// Abstract handle of an off-screen image: layer targets, id targets and text images.

#include <trelvogui/trelvogui_export.h>

#include <cstdint>

namespace GUI::Texture {

/// 0 colour (RGBA8), 1 identifiers (RGBA32UI), 2 sRGB colour, 3 identifiers in half the memory
/// (RG32UI: the primary and secondary id alone; read as RGBA integers it gives (pid, sid, 0, 1)).
enum TextureFormat : int32_t { Color = 0, Identifier = 1, SrgbColor = 2, CompactIdentifier = 3 };

/// A texture created by the renderer's GenerateTexture. `valid` marks contents as current; text
/// images are re-rasterised when it is clear.
class TRELVOGUI_EXPORT Base {
public:
    explicit Base(int32_t format) : format_(format) {}
    virtual ~Base() = default;

    /// False for a negative size (nothing changes); otherwise stores it without reallocating.
    virtual bool SetSize(int width, int height);
    virtual bool Allocate() = 0;
    virtual bool Free() = 0;
    virtual bool SetData(const void* pixels) = 0;
    virtual bool Bind() = 0;

    int32_t Format() const { return format_; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    bool IsValid() const { return valid_; }
    void SetValid(bool v) { valid_ = v; }

    Base(const Base&) = delete;
    Base& operator=(const Base&) = delete;

protected:
    int32_t format_;
    int width_ = 0;
    int height_ = 0;
    bool valid_ = false;
};

} // namespace GUI::Texture
