#pragma once
// An OpenGL 3.3 core context without a window, for tests and headless hosts.

#include <graphicsbase/graphicsbase_export.h>

#include <string>

namespace GraphicsBase {

/// Creates a width x height OpenGL 3.3 (or newer, compatible) core-profile context through EGL's
/// surfaceless platform, with a pbuffer as the default framebuffer, and makes it current. The GL
/// entry points are loaded for it. Check Valid(); Error() says why creation failed.
class GRAPHICSBASE_EXPORT HeadlessGLContext {
public:
    HeadlessGLContext(int width, int height);
    ~HeadlessGLContext();

    HeadlessGLContext(const HeadlessGLContext&) = delete;
    HeadlessGLContext& operator=(const HeadlessGLContext&) = delete;

    bool Valid() const { return valid_; }
    const std::string& Error() const { return error_; }
    int Width() const { return width_; }
    int Height() const { return height_; }
    /// Makes this context current on the calling thread again.
    bool MakeCurrent();
    /// The GL_RENDERER string, for diagnostics.
    std::string Renderer() const;

private:
    bool fail(const std::string& what);

    int width_;
    int height_;
    bool valid_ = false;
    std::string error_;
    void* display_ = nullptr;
    void* surface_ = nullptr;
    void* context_ = nullptr;
};

} // namespace GraphicsBase
