// OpenglTexture: size checks, storage per format, uploads and the GL name's lifetime.
#include "support/glfixture.h"

#include <trelvogui/gui/opengltexture.h>

#include <GL/glew.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using namespace GraphicsBase;

using GUI::Texture::OpenglTexture;
using trelvo::test::GLTest;

namespace {

GLint LevelParameter(GLuint name, GLenum parameter) {
    GLint value = -1;
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, parameter, &value);
    glBindTexture(GL_TEXTURE_2D, 0);
    return value;
}

GLint BoundTexture() {
    GLint bound = -1;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
    return bound;
}

} // namespace

TEST_F(GLTest, TextureAllocateRefusesSizesBelowOneWithMessage) {
    struct Case {
        int width, height;
        const char* message;
    };
    const Case cases[] = {
        {0, 10, "OpenglTexture::Allocate(): Texture is set to invalid size 0 10.\n"},
        {10, 0, "OpenglTexture::Allocate(): Texture is set to invalid size 10 0.\n"},
        {0, 0, "OpenglTexture::Allocate(): Texture is set to invalid size 0 0.\n"},
    };
    for (const Case& c : cases) {
        OpenglTexture texture(GUI::Texture::Color);
        ASSERT_TRUE(texture.SetSize(c.width, c.height)) << "zero is accepted by SetSize";
        testing::internal::CaptureStdout();
        EXPECT_FALSE(texture.Allocate());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(texture.GetTextureName(), 0u) << "nothing is created";
        EXPECT_FALSE(texture.Bind());
    }
}

TEST_F(GLTest, TextureSetSizeRefusesNegativeAndKeepsSize) {
    OpenglTexture texture(GUI::Texture::Color);
    ASSERT_TRUE(texture.SetSize(8, 4));
    EXPECT_FALSE(texture.SetSize(-1, 5));
    EXPECT_FALSE(texture.SetSize(5, -1));
    EXPECT_EQ(texture.Width(), 8);
    EXPECT_EQ(texture.Height(), 4);
}

TEST_F(GLTest, TextureStoragePerFormat) {
    struct Case {
        int32_t format;
        GLint internalFormat; // 0: no storage defined
    };
    const Case cases[] = {{0, GL_RGBA8}, {1, GL_RGBA32UI}, {2, GL_SRGB8_ALPHA8}, {3, GL_RG32UI}, {7, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE("format " + std::to_string(c.format));
        OpenglTexture texture(c.format);
        texture.SetSize(5, 3);
        texture.SetValid(true);
        ASSERT_TRUE(texture.Allocate());
        ASSERT_NE(texture.GetTextureName(), 0u);
        EXPECT_FALSE(texture.IsValid()) << "a fresh allocation has no current contents";
        EXPECT_EQ(BoundTexture(), 0) << "allocation leaves no texture bound";
        GLuint name = texture.GetTextureName();
        if (c.internalFormat != 0) {
            EXPECT_EQ(LevelParameter(name, GL_TEXTURE_WIDTH), 5);
            EXPECT_EQ(LevelParameter(name, GL_TEXTURE_HEIGHT), 3);
            GLint internal = LevelParameter(name, GL_TEXTURE_INTERNAL_FORMAT);
            // GL may report the unsized GL_RGBA request as its sized equivalent.
            EXPECT_TRUE(internal == c.internalFormat || (c.format == 0 && internal == GL_RGBA)) << internal;
        } else {
            EXPECT_EQ(LevelParameter(name, GL_TEXTURE_WIDTH), 0) << "unknown formats get no storage";
        }
        glBindTexture(GL_TEXTURE_2D, name);
        GLint minFilter = 0, magFilter = 0;
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &minFilter);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &magFilter);
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_EQ(minFilter, GL_LINEAR);
        EXPECT_EQ(magFilter, GL_LINEAR);
    }
}

TEST_F(GLTest, TextureSetDataUploadsAndFollowsSizeChanges) {
    OpenglTexture color(GUI::Texture::Color);
    color.SetSize(2, 2);
    const std::array<uint8_t, 16> first = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    ASSERT_TRUE(color.SetData(first.data()));
    ASSERT_TRUE(color.Bind());
    std::array<uint8_t, 16> back{};
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, back.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(back, first);

    // A new size with the same object: the upload must take the new size, not write into the old.
    color.SetSize(3, 1);
    const std::array<uint8_t, 12> second = {9, 9, 9, 9, 8, 8, 8, 8, 7, 7, 7, 7};
    ASSERT_TRUE(color.SetData(second.data()));
    EXPECT_EQ(LevelParameter(color.GetTextureName(), GL_TEXTURE_WIDTH), 3);
    EXPECT_EQ(LevelParameter(color.GetTextureName(), GL_TEXTURE_HEIGHT), 1);

    // Both id layouts take four words a pixel; the compact one keeps the two ids and reads back the
    // rest as (0, 1), as any two-channel integer texture does.
    const std::array<uint32_t, 8> idData = {7, 3, 0, 0, 4000000000u, 1, 2, 3};
    const std::array<uint32_t, 8> compactBack = {7, 3, 0, 1, 4000000000u, 1, 0, 1};
    for (auto [format, expected] : {std::pair{GUI::Texture::Identifier, idData},
                                    std::pair{GUI::Texture::CompactIdentifier, compactBack}}) {
        OpenglTexture ids(format);
        ids.SetSize(1, 2);
        ASSERT_TRUE(ids.SetData(idData.data()));
        ASSERT_TRUE(ids.Bind());
        std::array<uint32_t, 8> idBack{};
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA_INTEGER, GL_UNSIGNED_INT, idBack.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        EXPECT_EQ(idBack, expected) << "format " << format;
    }
}

TEST_F(GLTest, TextureSetDataWithoutValidSizeStoresNothing) {
    OpenglTexture texture(GUI::Texture::Color);
    const uint8_t pixel[4] = {1, 2, 3, 4};
    testing::internal::CaptureStdout();
    EXPECT_FALSE(texture.SetData(pixel));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "OpenglTexture::Allocate(): Texture is set to invalid size 0 0.\n");
    EXPECT_EQ(texture.GetTextureName(), 0u);
}

TEST_F(GLTest, TextureFreeReleasesNameAndIsRepeatable) {
    GLuint name = 0;
    {
        OpenglTexture texture(GUI::Texture::Color);
        texture.SetSize(4, 4);
        ASSERT_TRUE(texture.Allocate());
        name = texture.GetTextureName();
        EXPECT_TRUE(glIsTexture(name));
        EXPECT_TRUE(texture.Free());
        EXPECT_TRUE(texture.Free());
        EXPECT_FALSE(glIsTexture(name));
        EXPECT_FALSE(texture.Bind());
        ASSERT_TRUE(texture.Allocate()) << "a freed texture can be allocated again";
        name = texture.GetTextureName();
        EXPECT_TRUE(glIsTexture(name));
    }
    EXPECT_FALSE(glIsTexture(name)) << "the destructor frees the texture";
}
