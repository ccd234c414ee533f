// Text measuring and drawing through the OpenGL renderer: extents, placement, ids, styles, caching.
#include "support/glfixture.h"

#include <trelvogui/gui/opengltexture.h>
#include <trelvogui/gui/renderers/openglrenderer.h>

#include <GL/glew.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {

using GUI::Geometry::Rectangle;
using trelvo::test::GLTest;

constexpr int kSize = 256;

// Where a draw left ink, in target pixels; empty when nothing was drawn.
struct Ink {
    int xMin = kSize, xMax = -1, yMin = kSize, yMax = -1;
    int pixels = 0;
    bool Empty() const { return pixels == 0; }
    int Width() const { return xMax - xMin + 1; }
    int Height() const { return yMax - yMin + 1; }
};

GUI::Text MakeText(const std::wstring& s, uint32_t size = 16, int orientation = 0, bool bold = false) {
    GUI::Text t;
    t.string = s;
    t.size = size;
    t.orientation = orientation;
    t.bold = bold;
    return t;
}

class TextRendererTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        ASSERT_TRUE(renderer.Initialize());
        renderer.SetScreen(kSize, kSize);
        renderer.GenerateTexture(&color, GUI::Texture::Color);
        renderer.GenerateTexture(&ids, GUI::Texture::Identifier);
        renderer.GenerateTexture(&textTexture, GUI::Texture::Color);
        Rectangle all{0, kSize, 0, kSize};
        renderer.SetRenderTargetToTexture(color, ids, all);
        state = renderer.SetRenderAttributes();
        Clear();
    }
    void TearDown() override {
        state.reset();
        renderer.ClearRenderTargetToTexture();
        for (auto* t : {color, ids, textTexture})
            renderer.DeleteTexture(t);
        GLTest::TearDown();
    }

    // White colour and zero ids, set directly so every case starts from known contents.
    void Clear() {
        const GLfloat white[] = {1.f, 1.f, 1.f, 1.f};
        const GLuint none[] = {0, 0, 0, 0};
        glClearBufferfv(GL_COLOR, 0, white);
        glClearBufferuiv(GL_COLOR, 1, none);
    }

    void FreshTexture() {
        renderer.DeleteTexture(textTexture);
        renderer.GenerateTexture(&textTexture, GUI::Texture::Color);
    }

    void Draw(GUI::Text& text, Rectangle area, int h = 0, int v = 0) {
        renderer.SetIds(7, 3);
        renderer.DrawText(textTexture, &text, area, h, v);
    }

    // Ink is any pixel the draw darkened. For black text also checks that the pixels with more than
    // half coverage carry the ids and that clearly uncovered pixels kept id 0.
    Ink FindInk(bool blackText = true) {
        Ink ink;
        std::vector<uint8_t> rgba = ReadColorRegion(0, 0, kSize, kSize);
        std::vector<uint32_t> id(static_cast<size_t>(kSize) * kSize * 4);
        glReadBuffer(GL_COLOR_ATTACHMENT1);
        glFinish(); // the layers are drawn without waiting: let them land before reading
        glReadPixels(0, 0, kSize, kSize, GL_RGBA_INTEGER, GL_UNSIGNED_INT, id.data());
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        int wrongIds = 0;
        for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
                size_t i = (static_cast<size_t>(y) * kSize + x) * 4;
                uint8_t darkest = std::min({rgba[i], rgba[i + 1], rgba[i + 2]});
                if (darkest < 250) {
                    ++ink.pixels;
                    ink.xMin = std::min(ink.xMin, x);
                    ink.xMax = std::max(ink.xMax, x);
                    ink.yMin = std::min(ink.yMin, y);
                    ink.yMax = std::max(ink.yMax, y);
                }
                // Black text over white: coverage above one half leaves some channel below 128. The
                // margin keeps rounding at the threshold out of the check.
                bool stamped = id[i] == 7 && id[i + 1] == 3;
                bool empty = id[i] == 0 && id[i + 1] == 0;
                if ((darkest < 120 && !stamped) || (darkest > 135 && !empty))
                    ++wrongIds;
            }
        }
        if (blackText) {
            EXPECT_EQ(wrongIds, 0);
        }
        return ink;
    }

    GUI::Renderer::OpenglRenderer renderer;
    GUI::Texture::Base* color = nullptr;
    GUI::Texture::Base* ids = nullptr;
    GUI::Texture::Base* textTexture = nullptr;
    std::unique_ptr<GL::GLScopedSetter> state;
};

TEST_F(TextRendererTest, ExtentsGrowWithSizeAndLengthAndSwapWhenTurned) {
    GUI::Text base = MakeText(L"Label");
    int w = 0, h = 0;
    renderer.GetTextSize(&base, &w, &h);
    EXPECT_GT(w, 20);
    EXPECT_EQ(h, 16) << "a text's size is its line height";

    struct Case {
        GUI::Text text;
        bool longer, taller, swapped;
    } cases[] = {
        {MakeText(L"Label", 32), true, true, false},
        {MakeText(L"Label and more"), true, false, false},
        {MakeText(L"Label", 16, 1), false, false, true},
        {MakeText(L"Label", 16, 2), false, false, true}, // measuring turns every non-zero orientation
        {MakeText(L"Label", 16, 0, true), true, false, false},
    };
    for (auto& c : cases) {
        int cw = 0, ch = 0;
        renderer.GetTextSize(&c.text, &cw, &ch);
        int along = c.swapped ? ch : cw;
        int across = c.swapped ? cw : ch;
        SCOPED_TRACE(std::to_string(c.text.size) + " " + std::to_string(c.text.orientation));
        EXPECT_EQ(along > w, c.longer);
        EXPECT_EQ(across > h, c.taller);
        if (!c.longer) {
            EXPECT_EQ(along, w);
        }
    }

    GUI::Text empty = MakeText(L"");
    renderer.GetTextSize(&empty, &w, &h);
    EXPECT_EQ(w, 0);
    EXPECT_EQ(h, 16);
}

TEST_F(TextRendererTest, TextPixelsCarryTheIdsAndSitWhereAligned) {
    Rectangle area{40, 200, 60, 160};
    GUI::Text text = MakeText(L"Hgj Ids");
    int w = 0, h = 0;
    renderer.GetTextSize(&text, &w, &h);

    // The ink's offset inside the text box, from a draw at a known corner.
    Draw(text, area, 0, 0);
    Ink reference = FindInk();
    ASSERT_FALSE(reference.Empty());
    int dx = reference.xMin - area.xMin, dy = reference.yMin - area.yMin;
    EXPECT_GE(dx, 0);
    EXPECT_GE(dy, 0);
    EXPECT_LT(reference.xMax, area.xMin + w);
    EXPECT_LT(reference.yMax, area.yMin + h);

    struct Case {
        int h, v, x, y;
    } cases[] = {
        {1, 1, 40 + (160 - w) / 2, 60 + (100 - h) / 2},
        {2, 2, 200 - w, 160 - h},
        {7, -1, 0, 0}, // unknown alignments fall back to 0 on that axis
        {0, 5, 40, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.h) + "/" + std::to_string(c.v));
        Clear();
        Draw(text, area, c.h, c.v);
        Ink ink = FindInk();
        EXPECT_EQ(ink.xMin, c.x + dx);
        EXPECT_EQ(ink.yMin, c.y + dy);
        EXPECT_EQ(ink.pixels, reference.pixels);
    }
}

TEST_F(TextRendererTest, EmptyTextDrawsNothing) {
    GUI::Text text = MakeText(L"");
    testing::internal::CaptureStdout();
    Draw(text, {10, 100, 10, 100});
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("invalid size 0 16"), std::string::npos) << out;
    EXPECT_EQ(out.find("Problem creating texture"), std::string::npos);
    EXPECT_TRUE(FindInk().Empty());
}

TEST_F(TextRendererTest, UnrenderableTextIsReported) {
    GUI::Text text = MakeText(L"size zero", 0);
    testing::internal::CaptureStdout();
    Draw(text, {10, 100, 10, 100});
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Problem creating texture from text.\n"),
              std::string::npos);
    EXPECT_FALSE(textTexture->IsValid());
    EXPECT_TRUE(FindInk().Empty());
}

TEST_F(TextRendererTest, TurnedTextReadsBottomToTop) {
    // An underscore lies on the glyph's bottom edge: along the bottom when flat, along the right
    // when turned (glyph tops face left), and at the start of the run, which turned is at the bottom.
    GUI::Text flat = MakeText(L"_          ");
    GUI::Text turned = MakeText(L"_          ", 16, 1);
    int fw = 0, fh = 0, tw = 0, th = 0;
    renderer.GetTextSize(&flat, &fw, &fh);
    renderer.GetTextSize(&turned, &tw, &th);
    EXPECT_EQ(tw, fh);
    EXPECT_EQ(th, fw);

    Draw(flat, {20, 200, 20, 200});
    Ink f = FindInk();
    EXPECT_LT(f.xMax, 20 + fw / 3);
    EXPECT_LT(f.yMax, 20 + fh / 2);

    FreshTexture();
    Clear();
    Draw(turned, {20, 200, 20, 200});
    Ink t = FindInk();
    EXPECT_EQ(textTexture->Width(), tw);
    EXPECT_EQ(textTexture->Height(), th);
    EXPECT_GT(t.xMin, 20 + tw / 2);
    EXPECT_LT(t.yMax, 20 + th / 3);

    // Orientation 2 measures turned but draws flat.
    GUI::Text two = MakeText(L"_          ", 16, 2);
    FreshTexture();
    Draw(two, {20, 200, 20, 200});
    EXPECT_EQ(textTexture->Width(), fw);
    EXPECT_EQ(textTexture->Height(), fh);
}

TEST_F(TextRendererTest, StylesAndScriptsChangeTheInk) {
    auto inkOf = [&](GUI::Text text) {
        FreshTexture();
        Clear();
        Draw(text, {10, 250, 100, 150});
        return FindInk();
    };
    Ink regular = inkOf(MakeText(L"Sample"));
    Ink bold = inkOf(MakeText(L"Sample", 16, 0, true));
    EXPECT_GT(bold.Width(), regular.Width());
    EXPECT_GT(bold.pixels, regular.pixels);

    GUI::Text italic = MakeText(L"Sample");
    italic.italic = true;
    Ink slanted = inkOf(italic);
    EXPECT_EQ(slanted.Height(), regular.Height());
    EXPECT_GT(slanted.Width(), regular.Width()); // the slant leans the tall letters to the right

    // Cyrillic and Greek come out as glyphs: missing glyphs would all be the same box, so two
    // different words of six letters would leave the same ink.
    Ink cyrillic = inkOf(MakeText(L"Привет"));
    Ink greek = inkOf(MakeText(L"αβγδεζ"));
    Ink boxes = inkOf(MakeText(std::wstring(6, wchar_t(0x10FFFD))));
    EXPECT_GT(cyrillic.pixels, 60);
    EXPECT_NE(cyrillic.pixels, boxes.pixels);
    EXPECT_NE(greek.pixels, boxes.pixels);
    EXPECT_NE(cyrillic.pixels, greek.pixels);
}

TEST_F(TextRendererTest, FontColourTintsAndZeroAlphaMeansBlack) {
    struct Case {
        GUI::Color color;
        uint8_t r, g, b;
    } cases[] = {
        {GUI::Color{255, 0, 0, 255}, 255, 0, 0},
        {GUI::Color{0, 0, 255, 255}, 0, 0, 255},
        {GUI::Color{}, 0, 0, 0}, // a label's default colour
    };
    for (const auto& c : cases) {
        GUI::Text text = MakeText(L"WWWW", 24);
        text.color = c.color;
        FreshTexture();
        Clear();
        Draw(text, {10, 250, 100, 150});
        std::vector<uint8_t> rgba = ReadColorRegion(10, 100, 100, 30);
        // Full coverage shows the font colour itself; stems of a 24 px W are wide enough to have some.
        bool found = false;
        for (size_t i = 0; i < rgba.size() && !found; i += 4)
            found = std::abs(rgba[i] - c.r) < 16 && std::abs(rgba[i + 1] - c.g) < 16 &&
                    std::abs(rgba[i + 2] - c.b) < 16;
        EXPECT_TRUE(found) << int(c.r) << " " << int(c.g) << " " << int(c.b);
    }
}

TEST_F(TextRendererTest, UnchangedTextIsNotRasterisedAgain) {
    GUI::Text text = MakeText(L"cached");
    Draw(text, {20, 200, 20, 200});
    ASSERT_TRUE(textTexture->IsValid());
    int w = textTexture->Width(), h = textTexture->Height();

    // Overwrite the cached image with full coverage: a draw that rasterised again would bring the
    // glyphs back, a cached draw shows a solid block.
    std::vector<uint8_t> solid(static_cast<size_t>(w) * h * 4, 255);
    textTexture->SetData(solid.data());
    ASSERT_TRUE(textTexture->IsValid());
    Clear();
    Draw(text, {20, 200, 20, 200});
    EXPECT_EQ(FindInk().pixels, w * h);

    // The label clears the flag when its text changes.
    textTexture->SetValid(false);
    Clear();
    Draw(text, {20, 200, 20, 200});
    EXPECT_LT(FindInk().pixels, w * h / 2);
}

// Writes a picture of the styles for a person to look at; asserts only that something was drawn.
TEST_F(TextRendererTest, SampleImage) {
    GUI::Text italic = MakeText(L"Italic text, size 16");
    italic.italic = true;
    GUI::Text blue = MakeText(L"Blue 20px", 20);
    blue.color = GUI::Color{0, 60, 200, 255};
    struct Line {
        GUI::Text text;
        Rectangle area;
    } lines[] = {
        {MakeText(L"Regular text, size 16"), {30, 250, 230, 250}},
        {MakeText(L"Bold text, size 16", 16, 0, true), {30, 250, 210, 230}},
        {italic, {30, 250, 190, 210}},
        {MakeText(L"Привет, мир — αβγ"), {30, 250, 170, 190}},
        {MakeText(L"Small 11px text", 11), {30, 250, 155, 170}},
        {blue, {30, 250, 128, 150}},
        {MakeText(L"Turned upward", 16, 1), {6, 30, 10, 250}},
    };
    for (auto& line : lines) {
        FreshTexture();
        Draw(line.text, line.area);
    }
    EXPECT_GT(FindInk(false).pixels, 1000);
    std::vector<uint8_t> rgba = ReadColorRegion(0, 0, kSize, kSize);
    EXPECT_TRUE(
        trelvo::test::WritePng(trelvo::test::OutputDir() + "/text_sample.png", rgba.data(), kSize, kSize));
}

} // namespace
