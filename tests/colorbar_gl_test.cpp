// The colour bar: its 1D texture, the ramp it paints into the overlay and the id it stamps there.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"
#include "support/shaderdir.h"

#include <trelvogui/colorbar.h>

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

using namespace GraphicsBase;

using GUI::Color;
using GUI::Controls::ColorBar;
using GUI::Geometry::Rectangle;
using trelvo::test::LayerPixels;

namespace {

class ColorBarGLTest : public trelvo::test::OverlayTest {
protected:
    LayerPixels Layers() { return trelvo::test::ReadLayers(*manager, 256, 256); }

    GLint TextureParameter(GLuint texture, GLenum name) {
        GLint value = -1;
        glBindTexture(GL_TEXTURE_1D, texture);
        if (name == GL_TEXTURE_WIDTH)
            glGetTexLevelParameteriv(GL_TEXTURE_1D, 0, name, &value);
        else
            glGetTexParameteriv(GL_TEXTURE_1D, name, &value);
        glBindTexture(GL_TEXTURE_1D, 0);
        return value;
    }
};

const std::vector<Color> kSteps = {
    {20, 40, 200, 255}, {240, 240, 240, 255}, {200, 30, 30, 255}, {10, 160, 60, 255}};

std::array<uint8_t, 4> Bytes(Color c) {
    return {c.r, c.g, c.b, c.a};
}

} // namespace

TEST_F(ColorBarGLTest, SteppedRampRunsAlongTheLongerSideInEqualSlicesAndOwnsItsPixels) {
    struct Case {
        const char* name;
        Rectangle rectangle;
        bool vertical;
    };
    const Case cases[] = {{"tall bar, bottom to top", {100, 124, 20, 220}, true},
                          {"wide bar, left to right", {20, 220, 100, 124}, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ColorBar bar;
        ASSERT_TRUE(bar.Initialize());
        bar.UpdateColorMap(kSteps, false);
        bar.SetRectangle(c.rectangle);
        bar.Register(manager);
        manager->UpdateLayers();
        const LayerPixels layers = Layers();
        const Rectangle& r = c.rectangle;
        const int length = c.vertical ? r.Height() : r.Width();
        const int slice = length / static_cast<int>(kSteps.size());
        for (int along = 0; along < length; ++along) {
            const Color expected = kSteps[static_cast<size_t>(along / slice)];
            for (int across : {0, 11, 23}) {
                const int x = c.vertical ? r.xMin + across : r.xMin + along;
                const int y = c.vertical ? r.yMin + along : r.yMin + across;
                ASSERT_EQ(layers.Color(x, y), Bytes(expected)) << "at " << along << ", " << across;
                ASSERT_EQ(layers.Pid(x, y), bar.GetId());
            }
        }
        EXPECT_EQ(layers.Pid(r.xMin - 1, r.yMin), 0u);
        EXPECT_EQ(layers.Pid(r.xMax, r.yMax - 1), 0u);
        EXPECT_EQ(layers.Pid(r.xMin, r.yMax), 0u);
    }
}

TEST_F(ColorBarGLTest, SmoothRampBlendsBetweenSliceCentres) {
    // Blue through white to red, as a depth legend would show it.
    const std::vector<Color> colors = {{0, 0, 255, 255}, {255, 255, 255, 255}, {255, 0, 0, 255}};
    ColorBar bar;
    ASSERT_TRUE(bar.Initialize());
    bar.UpdateColorMap(colors, true);
    bar.SetRectangle({100, 124, 28, 228});
    bar.Register(manager);
    manager->UpdateLayers();
    const LayerPixels layers = Layers();
    int worst = 0;
    for (int row = 0; row < 200; ++row) {
        // GL's linear rule at this pixel's centre: texel coordinate u = s n - 1/2, clamped at the ends.
        const float u = std::clamp((row + 0.5f) / 200.f * 3.f - 0.5f, 0.f, 2.f);
        const int i = std::min(static_cast<int>(u), 1);
        const float w = u - static_cast<float>(i);
        const Color a = colors[static_cast<size_t>(i)];
        const Color b = colors[static_cast<size_t>(i + 1)];
        const auto actual = layers.Color(112, 28 + row);
        const float expected[3] = {a.r + (b.r - a.r) * w, a.g + (b.g - a.g) * w, a.b + (b.b - a.b) * w};
        for (int k = 0; k < 3; ++k)
            worst = std::max(worst, static_cast<int>(std::lround(std::fabs(actual[k] - expected[k]))));
        EXPECT_EQ(actual[3], 255);
        EXPECT_EQ(layers.Pid(112, 28 + row), bar.GetId());
    }
    // Drivers filter with a few fractional bits of weight (8 on the software rasteriser), which
    // moves a blended channel by a level or two.
    EXPECT_LE(worst, 2);
    if (HasFailure())
        trelvo::test::SaveLayer(layers, "colorbar_smooth");
}

TEST_F(ColorBarGLTest, UpdateColorMapReplacesTheTextureWithTheRequestedSampling) {
    ColorBar bar;
    EXPECT_EQ(bar.ColorTextureName(), 0u);
    std::vector<Color> ramp(256);
    for (int i = 0; i < 256; ++i)
        ramp[static_cast<size_t>(i)] = {static_cast<uint8_t>(i), 0, static_cast<uint8_t>(255 - i), 255};
    // Before Initialize: the texture needs only the context.
    bar.UpdateColorMap(ramp, false);
    const GLuint first = bar.ColorTextureName();
    ASSERT_NE(first, 0u);
    EXPECT_EQ(TextureParameter(first, GL_TEXTURE_WIDTH), 256);
    EXPECT_EQ(TextureParameter(first, GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(TextureParameter(first, GL_TEXTURE_MAG_FILTER), GL_NEAREST);
    EXPECT_EQ(TextureParameter(first, GL_TEXTURE_WRAP_S), GL_CLAMP_TO_EDGE);

    // The host's own 1D binding survives the update.
    GLuint hostTexture = 0;
    glGenTextures(1, &hostTexture);
    glBindTexture(GL_TEXTURE_1D, hostTexture);
    bar.UpdateColorMap(kSteps, true);
    GLint bound = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_1D, &bound);
    EXPECT_EQ(static_cast<GLuint>(bound), hostTexture);
    glBindTexture(GL_TEXTURE_1D, 0);
    glDeleteTextures(1, &hostTexture);

    const GLuint second = bar.ColorTextureName();
    ASSERT_NE(second, 0u);
    if (second != first) {
        EXPECT_FALSE(glIsTexture(first)) << "the first texture is deleted";
    }
    EXPECT_EQ(TextureParameter(second, GL_TEXTURE_WIDTH), 4);
    EXPECT_EQ(TextureParameter(second, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(TextureParameter(second, GL_TEXTURE_MAG_FILTER), GL_LINEAR);

    // The bar shows the new colours, and a later map is shown at the next update without any other
    // change asking for a redraw.
    ASSERT_TRUE(bar.Initialize());
    bar.UpdateColorMap(kSteps, false);
    bar.SetRectangle({0, 40, 0, 200});
    bar.Register(manager);
    manager->UpdateLayers();
    EXPECT_EQ(Layers().Color(20, 10), Bytes(kSteps[0]));
    EXPECT_EQ(Layers().Color(20, 190), Bytes(kSteps[3]));
    bar.UpdateColorMap({kSteps[3], kSteps[2], kSteps[1], kSteps[0]}, false);
    EXPECT_TRUE(bar.NeedsRedraw());
    manager->UpdateLayers();
    EXPECT_EQ(Layers().Color(20, 10), Bytes(kSteps[3]));

    // No colours: a zero-width texture and no GL error left behind (the fixture fails on a logged one).
    bar.UpdateColorMap({}, true);
    EXPECT_EQ(TextureParameter(bar.ColorTextureName(), GL_TEXTURE_WIDTH), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    manager->UpdateLayers();
    EXPECT_EQ(Layers().Pid(20, 10), bar.GetId()) << "still hit-tested";

    GLuint kept = 0;
    {
        ColorBar other;
        other.UpdateColorMap(kSteps, false);
        kept = other.ColorTextureName();
    }
    EXPECT_TRUE(glIsTexture(kept)) << "the destructor leaves the texture to whoever holds the map";
    glDeleteTextures(1, &kept);
}

TEST_F(ColorBarGLTest, PlacementFollowsSetRectangleAlone) {
    ColorBar bar;
    ASSERT_TRUE(bar.Initialize());
    bar.UpdateColorMap(kSteps, false);
    bar.SetRectangle({10, 34, 10, 110});
    bar.Register(manager);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(20, 50), bar.GetId());
    bar.SetRectangle({150, 250, 200, 224});
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(20, 50), 0u);
    EXPECT_EQ(PidAt(150, 200), bar.GetId());
    EXPECT_EQ(PidAt(249, 223), bar.GetId());
    EXPECT_EQ(PidAt(250, 223), 0u);
    glBindFramebuffer(GL_FRAMEBUFFER, manager->GetLayerFramebuffer());
    EXPECT_EQ(ReadColor(155, 210), Bytes(kSteps[0])) << "now wide: the ramp starts at the left";
    EXPECT_EQ(ReadColor(245, 210), Bytes(kSteps[3]));
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

TEST_F(ColorBarGLTest, UninitialisedOrFailedBarDrawsNothingAndTouchesNoState) {
    struct Case {
        const char* name;
        bool brokenShader;
    };
    for (const Case& c : {Case{"never initialised", false}, Case{"failed to initialise", true}}) {
        SCOPED_TRACE(c.name);
        ColorBar bar;
        if (c.brokenShader) {
            trelvo::test::ShaderDir shaders;
            shaders.Write("Legend.fs", "#version 330 core\nvoid main() { broken }\n");
            testing::internal::CaptureStdout();
            EXPECT_FALSE(bar.Initialize());
            EXPECT_NE(testing::internal::GetCapturedStdout().find("Legend.fs"), std::string::npos);
        }
        EXPECT_FALSE(bar.IsInitialized());
        bar.UpdateColorMap(kSteps, false);
        glActiveTexture(GL_TEXTURE3);
        bar.DrawCustom();
        GLint active = 0, bound = -1;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        glActiveTexture(GL_TEXTURE8);
        glGetIntegerv(GL_TEXTURE_BINDING_1D, &bound);
        glActiveTexture(GL_TEXTURE0);
        EXPECT_EQ(active, GL_TEXTURE3);
        EXPECT_EQ(bound, 0);

        bar.SetRectangle({10, 34, 10, 110});
        bar.Register(manager);
        manager->UpdateLayers();
        EXPECT_EQ(PidAt(20, 50), 0u);
    }
}

TEST_F(ColorBarGLTest, MissingUniformsAreReportedAndDrawingGoesOn) {
    trelvo::test::ShaderDir shaders;
    shaders.Write("Legend.vs", R"(#version 330 core
layout(location = 0) in vec2 position;
void main() { gl_Position = vec4(position * 2.0 - 1.0, 0.0, 1.0); }
)");
    shaders.Write("Legend.fs", R"(#version 330 core
layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;
void main() { fragColor = vec4(1.0); fragIds = uvec4(7u, 0u, 0u, 0u); }
)");
    ColorBar bar;
    ASSERT_TRUE(bar.Initialize());
    bar.UpdateColorMap(kSteps, false);
    bar.SetRectangle({10, 34, 10, 110});
    bar.Register(manager);
    testing::internal::CaptureStdout();
    manager->UpdateLayers();
    const std::string output = testing::internal::GetCapturedStdout();
    for (const char* name : {"ProjectionMatrix", "bboxMin", "bboxDim", "pid"})
        EXPECT_NE(output.find(std::string("Could not get index for ") + name + "\n"), std::string::npos)
            << name;
    EXPECT_EQ(output.find("trfunc_texunit"), std::string::npos) << output;
    EXPECT_EQ(PidAt(200, 200), 7u) << "the quad was still drawn";
}
