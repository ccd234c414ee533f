#include <trelvogui/gui/opengltexture.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>

#include <GL/glew.h>

#include <cstdio>

using namespace GraphicsBase;

namespace GUI::Texture {

namespace {

constexpr const char* kTag = "gui/opengltexture";

struct Storage {
    GLint internalFormat;
    GLenum format;
    GLenum type;
};

// False for formats that get no storage.
bool StorageFor(int32_t format, Storage& out) {
    switch (format) {
    case Color:
        out = {GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE};
        return true;
    case Identifier:
        out = {GL_RGBA32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT};
        return true;
    case CompactIdentifier:
        out = {GL_RG32UI, GL_RGBA_INTEGER, GL_UNSIGNED_INT};
        return true;
    case SrgbColor:
        out = {GL_SRGB8_ALPHA8, GL_RGBA, GL_UNSIGNED_BYTE};
        return true;
    default:
        return false;
    }
}

} // namespace

OpenglTexture::OpenglTexture(int32_t format) : Base(format) {}

OpenglTexture::~OpenglTexture() {
    Free();
}

// Defines level 0 of the bound texture with the format's storage, then unbinds it.
void OpenglTexture::defineLevel(const void* pixels) {
    Storage storage{};
    if (StorageFor(format_, storage)) {
        glTexImage2D(GL_TEXTURE_2D, 0, storage.internalFormat, width_, height_, 0, storage.format,
                     storage.type, pixels);
        GB_CHECK_GL(kTag);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    GB_CHECK_GL(kTag);
}

bool OpenglTexture::Allocate() {
    if (width_ < 1 || height_ < 1) {
        std::printf("OpenglTexture::Allocate(): Texture is set to invalid size %d %d.\n", width_, height_);
        return false;
    }
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    GB_CHECK_GL(kTag);
    if (width_ > limit || height_ > limit) {
        std::printf("OpenglTexture::Allocate(): Texture size %d %d exceeds the context's limit of %d.\n",
                    width_, height_, limit);
        return false;
    }
    // Within the side limit a texture can still exhaust memory (an id texture holds 16 bytes a pixel),
    // which a driver reports only as an out-of-memory error after the fact.
    if (static_cast<long long>(width_) * height_ > kMaxPixels) {
        std::printf("OpenglTexture::Allocate(): Texture size %d %d exceeds the budget of %lld pixels.\n",
                    width_, height_, kMaxPixels);
        return false;
    }
    if (name_ == 0) {
        glGenTextures(1, &name_);
        GB_CHECK_GL(kTag);
    }
    glBindTexture(GL_TEXTURE_2D, name_);
    GB_CHECK_GL(kTag);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    GB_CHECK_GL(kTag);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    GB_CHECK_GL(kTag);
    defineLevel(nullptr);
    valid_ = false;
    return true;
}

bool OpenglTexture::Free() {
    if (name_ != 0 && !GraphicsBase::CanReleaseGL())
        name_ = 0;
    if (name_ != 0) {
        glDeleteTextures(1, &name_);
        GB_CHECK_GL(kTag);
        name_ = 0;
    }
    valid_ = false;
    return true;
}

bool OpenglTexture::SetData(const void* pixels) {
    // Allocate leaves the contents marked stale, so every upload reallocates first: a texture whose
    // size changed since the last upload never receives pixels for the old size.
    if (!valid_)
        Allocate();
    if (name_ == 0)
        return false;
    glBindTexture(GL_TEXTURE_2D, name_);
    GB_CHECK_GL(kTag);
    defineLevel(pixels);
    return true;
}

bool OpenglTexture::Bind() {
    if (name_ == 0)
        return false;
    glBindTexture(GL_TEXTURE_2D, name_);
    GB_CHECK_GL(kTag);
    return true;
}

} // namespace GUI::Texture
