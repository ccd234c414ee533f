// Texture atlas: loading the embedded skin, nine-slice geometry, and which region each control state
// draws, checked on pixels read back from a texture target against the decoded atlas images.
#include "support/glfixture.h"
#include "support/layerpixels.h"
#include "support/pngencode.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/downbutton.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/renderers/openglrenderer.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/gui/texture.h>
#include <trelvogui/gui/textureatlas.h>
#include <trelvogui/gui/upbutton.h>

#include <graphicsbase/pngreader.h>
#include <graphicsbase/resources.h>

#include <GL/glew.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace GraphicsBase;

using GUI::Geometry::Rectangle;
using GUI::Texture::Area;
using GUI::Texture::Atlas;
using GUI::Texture::Expandable;
using GUI::Texture::NonExpandable;

namespace {

// The built-in skin's areas, as the control set must hold them.
constexpr Area kButtonNormal{169, 311, 699, 761};
constexpr Area kButtonPressed{329, 471, 699, 761};
constexpr Area kButtonHovered{488, 630, 699, 761};
constexpr Area kSwitchOn{604, 632, 598, 626};
constexpr Area kSwitchOff{565, 593, 598, 626};
constexpr Area kGripNormal{596, 605, 684, 693};
constexpr Area kGripHovered{608, 617, 684, 693};
constexpr Area kDownNormal{490, 508, 684, 693};
constexpr Area kDownHovered{510, 528, 684, 693};
constexpr Area kUpNormal{530, 548, 684, 693};
constexpr Area kUpHovered{550, 568, 684, 693};

constexpr GUI::Color kBackdrop{40, 90, 60, 255};

bool SameArea(const Area& a, const Area& b) {
    return a.xMin == b.xMin && a.xMax == b.xMax && a.yMin == b.yMin && a.yMax == b.yMax;
}

// A flat image of the given size: RGBA (4 channels) or RGB (3).
std::vector<unsigned char> EncodeFlat(int width, int height, int channels, uint8_t value) {
    return trelvo::test::EncodePng(width, height, channels == 4 ? PNG_COLOR_TYPE_RGBA : PNG_COLOR_TYPE_RGB, 8,
                                   std::vector<uint8_t>(std::size_t(width) * height * channels, value));
}

/// The skin images as the atlas should show them, decoded independently of the atlas.
struct SkinImages {
    PNGReader color;
    PNGReader stencil;

    SkinImages() {
        ResourceData c = LoadFromResource("TrelvoGUI", "UIATLAS", "PNG");
        ResourceData s = LoadFromResource("TrelvoGUI", "UIATLASSTENCIL", "PNG");
        color.loadFromMemory(c.data, c.size);
        stencil.loadFromMemory(s.data, s.size);
    }
    std::array<uint8_t, 4> Color(int x, int y) const {
        const unsigned char* p = color.data() + (std::size_t(y) * color.width() + x) * 4;
        return {p[0], p[1], p[2], p[3]};
    }
    /// Effective coverage: colour alpha times stencil red, the shader's source alpha.
    float Coverage(int x, int y) const {
        const unsigned char* s = stencil.data() + (std::size_t(y) * stencil.width() + x) * 3;
        return Color(x, y)[3] / 255.f * s[0] / 255.f;
    }
};

const SkinImages& Skin() {
    static const SkinImages images;
    return images;
}

class TextureAtlasTest : public trelvo::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        renderer = std::make_unique<GUI::Renderer::OpenglRenderer>();
        ASSERT_TRUE(renderer->Initialize());
        renderer->SetScreen(256, 256);
        attributes = renderer->SetRenderAttributes();
        renderer->GenerateTexture(&targetColor, GUI::Texture::Color);
        renderer->GenerateTexture(&targetIds, GUI::Texture::Identifier);
        atlas = std::make_unique<Atlas>(renderer.get());
        ASSERT_TRUE(atlas->LoadControlSet(""));
        ASSERT_EQ(Skin().color.width(), 800);
        ASSERT_EQ(Skin().stencil.width(), 800);
        ClearTarget();
    }
    void TearDown() override {
        renderer->ClearRenderTargetToTexture();
        atlas.reset();
        renderer->DeleteTexture(targetColor);
        renderer->DeleteTexture(targetIds);
        attributes.reset();
        renderer->DestroyFBO();
        renderer.reset();
        GLTest::TearDown();
    }

    /// A fresh screen-sized target: opaque backdrop, no ids.
    void ClearTarget() {
        Rectangle screen{0, 256, 0, 256};
        renderer->SetRenderTargetToTexture(targetColor, targetIds, screen);
        renderer->SetLineColor(kBackdrop);
        renderer->SetIds(0, 0);
        renderer->DrawRectangle(screen);
    }

    /// The target as drawn so far (drawing does not wait: let it land first).
    trelvo::test::LayerPixels Target() {
        glFinish();
        return trelvo::test::ReadBoundTarget(256, 256);
    }

    /// Compares the drawn pixels of `screen` with the atlas area shown 1:1 (screen rows go up, image
    /// rows down). Fully covered texels must match in colour and carry `id`; uncovered ones must
    /// show the backdrop and no id.
    ::testing::AssertionResult DrawnAs(const Rectangle& screen, const Area& area, uint32_t id,
                                       const std::string& name) {
        const int w = screen.Width(), h = screen.Height();
        if (w != area.xMax - area.xMin || h != area.yMax - area.yMin)
            return ::testing::AssertionFailure() << "test error: sizes differ";
        const trelvo::test::LayerPixels target = Target();
        int bad = 0;
        std::string first;
        for (int j = 0; j < h; ++j) {
            for (int i = 0; i < w; ++i) {
                const int tx = area.xMin + i, ty = area.yMax - 1 - j;
                const float coverage = Skin().Coverage(tx, ty);
                const std::array<uint8_t, 4> got = target.Color(screen.xMin + i, screen.yMin + j);
                const uint32_t gotId = target.Pid(screen.xMin + i, screen.yMin + j);
                std::array<uint8_t, 4> want{kBackdrop.r, kBackdrop.g, kBackdrop.b, 255};
                if (coverage >= 1.f)
                    want = Skin().Color(tx, ty);
                else if (coverage > 0.f)
                    continue;
                // sRGB decoding on upload and encoding in the shader may round by one step.
                bool ok = gotId == (coverage >= 1.f ? id : 0u);
                for (int c = 0; c < 3; ++c)
                    ok = ok && std::abs(int(got[c]) - int(want[c])) <= 2;
                if (!ok && bad++ == 0)
                    first = "at (" + std::to_string(i) + "," + std::to_string(j) + ") got rgb " +
                            std::to_string(got[0]) + "," + std::to_string(got[1]) + "," +
                            std::to_string(got[2]) + " id " + std::to_string(gotId) + ", want " +
                            std::to_string(want[0]) + "," + std::to_string(want[1]) + "," +
                            std::to_string(want[2]);
            }
        }
        if (bad == 0)
            return ::testing::AssertionSuccess();
        std::string file = "textureatlas_" + name;
        std::replace(file.begin(), file.end(), ' ', '_');
        trelvo::test::SaveLayer(target, file);
        return ::testing::AssertionFailure() << bad << " pixels differ from the atlas area, first " << first;
    }

    std::unique_ptr<GUI::Renderer::OpenglRenderer> renderer;
    std::unique_ptr<GL::GLScopedSetter> attributes;
    std::unique_ptr<Atlas> atlas;
    GUI::Texture::Base* targetColor = nullptr;
    GUI::Texture::Base* targetIds = nullptr;
};

} // namespace

TEST_F(TextureAtlasTest, LoadsEmbeddedSkinIntoTheControlSet) {
    EXPECT_EQ(atlas->Width(), 800u);
    EXPECT_EQ(atlas->Height(), 900u);
    ASSERT_NE(atlas->GetColorTexture(), nullptr);
    ASSERT_NE(atlas->GetStencilTexture(), nullptr);
    EXPECT_EQ(atlas->GetStencilTexture()->Width(), 800);
    EXPECT_EQ(atlas->GetStencilTexture()->Height(), 900);

    GUI::Controls::Set& set = atlas->GetControlSet();
    struct NineSlice {
        const char* name;
        Expandable& region;
        Area area;
        int border;
    };
    // Disabled shares the normal area and the panel the pressed and hovered ones.
    const NineSlice expandables[] = {
        {"button normal", set.buttonNormal, kButtonNormal, 5},
        {"button pressed", set.buttonPressed, kButtonPressed, 5},
        {"button hovered", set.buttonHovered, kButtonHovered, 5},
        {"button disabled", set.buttonDisabled, kButtonNormal, 5},
        {"panel normal", set.panelNormal, kButtonPressed, 5},
        {"panel hovered", set.panelHovered, kButtonHovered, 5},
        {"small square B", set.smallSquareB, {146, 161, 716, 731}, 0},
        {"box 2", set.box2[2], {204, 236, 652, 684}, 0},
    };
    for (const NineSlice& e : expandables) {
        SCOPED_TRACE(e.name);
        EXPECT_TRUE(SameArea(e.region.area, e.area));
        EXPECT_EQ(e.region.colorTexture, atlas->GetColorTexture());
        EXPECT_EQ(e.region.stencilTexture, atlas->GetStencilTexture());
        const float s[4] = {e.area.xMin / 800.f, (e.area.xMin + e.border) / 800.f,
                            (e.area.xMax - e.border) / 800.f, e.area.xMax / 800.f};
        const float t[4] = {e.area.yMin / 900.f, (e.area.yMin + e.border) / 900.f,
                            (e.area.yMax - e.border) / 900.f, e.area.yMax / 900.f};
        for (int i = 0; i < 4; ++i) {
            EXPECT_FLOAT_EQ(e.region.s[i], s[i]);
            EXPECT_FLOAT_EQ(e.region.t[i], t[i]);
        }
    }
    struct Single {
        const char* name;
        NonExpandable& region;
        Area area;
    };
    const Single singles[] = {
        {"switch on", set.switchOn, kSwitchOn},      {"switch off", set.switchOff, kSwitchOff},
        {"grip", set.sizeHandleNormal, kGripNormal}, {"grip hovered", set.sizeHandleHovered, kGripHovered},
        {"down", set.downButtonNormal, kDownNormal}, {"up hovered", set.upButtonHovered, kUpHovered},
    };
    for (const Single& e : singles) {
        SCOPED_TRACE(e.name);
        EXPECT_TRUE(SameArea(e.region.area, e.area));
        EXPECT_FLOAT_EQ(e.region.texCoords[0], e.area.xMin / 800.f);
        EXPECT_FLOAT_EQ(e.region.texCoords[1], e.area.xMax / 800.f);
        EXPECT_FLOAT_EQ(e.region.texCoords[2], e.area.yMin / 900.f);
        EXPECT_FLOAT_EQ(e.region.texCoords[3], e.area.yMax / 900.f);
    }
    // The spare regions stay empty.
    EXPECT_FALSE(set.extra[3][3].IsSet());
}

TEST_F(TextureAtlasTest, RenderRectanglesGrowBySkinBorders) {
    Rectangle r{10, 110, 20, 50};
    EXPECT_EQ(atlas->GetRectangleExpandableTexture(atlas->GetControlSet().buttonNormal, r),
              (Rectangle{5, 115, 15, 55}));
    EXPECT_EQ(atlas->GetRectangleNonExpandableTexture(atlas->GetControlSet().switchOn, r), r);

    GUI::Controls::Button button;
    button.SetRectangle(r);
    EXPECT_EQ(atlas->GetRenderRectButton(&button), (Rectangle{5, 115, 15, 55}));
    GUI::Controls::Panel panel;
    panel.SetRectangle({100, 200, 50, 150});
    EXPECT_EQ(atlas->GetRenderRectPanel(&panel), (Rectangle{95, 205, 45, 155}));
    panel.SetSizeable(true);
    panel.GetSizeHandle()->CalcGlobalPosition();
    EXPECT_EQ(atlas->GetRenderRectSizeHandle(panel.GetSizeHandle()), (Rectangle{191, 200, 50, 59}));
}

// The nine pieces tile exactly the rectangle grown by the borders, at any size (including a centre of
// zero size): ids land on every pixel of it that the skin covers, and nowhere else. The corners show
// the atlas corners the right way up.
TEST_F(TextureAtlasTest, NineSliceCoversExactlyTheGrownRectangle) {
    const Rectangle rects[] = {
        {40, 200, 60, 120}, // stretched
        {60, 192, 70, 122}, // 1:1
        {20, 31, 30, 36},   // shrunk
        {100, 100, 150, 150},
    };
    Expandable& region = atlas->GetControlSet().buttonNormal;
    for (const Rectangle& rect : rects) {
        SCOPED_TRACE(::testing::Message()
                     << rect.xMin << ".." << rect.xMax << ", " << rect.yMin << ".." << rect.yMax);
        ClearTarget();
        Rectangle r = rect;
        renderer->SetIds(7, 0);
        atlas->DrawExpandableTexture(region, r);
        const Rectangle g = atlas->GetRectangleExpandableTexture(region, r);
        const trelvo::test::LayerPixels target = Target();
        int wrong = 0;
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256; ++x) {
                const bool inside = x >= g.xMin && x < g.xMax && y >= g.yMin && y < g.yMax;
                const bool left = x < r.xMin, right = x >= r.xMax, below = y < r.yMin, above = y >= r.yMax;
                bool expected = inside;
                if (inside && (left || right) && (below || above)) {
                    // Corner piece, shown 1:1.
                    const int tx =
                        left ? kButtonNormal.xMin + (x - g.xMin) : kButtonNormal.xMax - (g.xMax - x);
                    const int ty =
                        below ? kButtonNormal.yMax - 1 - (y - g.yMin) : kButtonNormal.yMin + (g.yMax - 1 - y);
                    const float coverage = Skin().Coverage(tx, ty);
                    if (std::fabs(coverage - 0.5f) < 0.02f)
                        continue;
                    expected = coverage > 0.5f;
                }
                if ((target.Pid(x, y) == 7u) != expected)
                    ++wrong;
            }
        }
        EXPECT_EQ(wrong, 0);
        if (wrong)
            trelvo::test::SaveLayer(target, "textureatlas_nineslice");
    }
}

TEST_F(TextureAtlasTest, ButtonStatesPickTheirRegion) {
    struct Case {
        const char* name;
        bool enabled, pressed, hovered;
        Area area;
    };
    const Case cases[] = {
        {"normal", true, false, false, kButtonNormal},
        {"hovered", true, false, true, kButtonHovered},
        {"pressed", true, true, false, kButtonPressed},
        {"pressed and hovered", true, true, true, kButtonPressed},
        {"disabled", false, false, false, kButtonNormal},
        {"disabled pressed hovered", false, true, true, kButtonNormal},
    };
    // Centre 132 x 52: with the 5-pixel borders the skin is drawn at its atlas size.
    const Rectangle rect{60, 192, 100, 152};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClearTarget();
        GUI::Controls::Button button;
        button.SetId(11);
        button.SetRectangle(rect);
        button.SetEnabled(c.enabled);
        button.SetPressed(c.pressed);
        button.SetHovered(c.hovered);
        atlas->DrawButton(&button);
        EXPECT_TRUE(DrawnAs(atlas->GetRenderRectButton(&button), c.area, 11, c.name));
    }
}

// Custom regions replace the atlas's per state; a disabled button uses its custom disabled region
// only when it also has a custom pressed one.
TEST_F(TextureAtlasTest, ButtonCustomRegions) {
    GUI::Controls::Set& set = atlas->GetControlSet();
    // Flat tiles whose colours differ from each other and from the atlas's own button fills.
    Expandable offTrack;
    offTrack.Set(atlas->GetColorTexture(), atlas->GetStencilTexture(), {585, 590, 608, 616}, {}, 800, 900);
    Expandable* normal = &set.box2[0];
    Expandable* pressed = &set.box1[0];
    Expandable* hovered = &offTrack;
    Expandable* disabled = &set.box3[0];
    auto tileColor = [](Expandable* region) {
        return Skin().Color((region->area.xMin + region->area.xMax) / 2,
                            (region->area.yMin + region->area.yMax) / 2);
    };
    const std::array<uint8_t, 4> atlasNormalFill = Skin().Color(240, 730);

    struct Case {
        const char* name;
        bool withPressed;
        bool enabled, pressed, hovered;
        std::array<uint8_t, 4> centre;
    };
    const Case cases[] = {
        {"normal", true, true, false, false, tileColor(normal)},
        {"pressed", true, true, true, true, tileColor(pressed)},
        {"hovered", true, true, false, true, tileColor(hovered)},
        {"disabled", true, false, false, false, tileColor(disabled)},
        {"disabled without custom pressed", false, false, false, false, atlasNormalFill},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClearTarget();
        GUI::Controls::Button button;
        button.SetId(3);
        button.SetRectangle({60, 192, 100, 152});
        button.SetCustomGraphics(normal, c.withPressed ? pressed : nullptr, hovered, disabled);
        button.SetEnabled(c.enabled);
        button.SetPressed(c.pressed);
        button.SetHovered(c.hovered);
        atlas->DrawButton(&button);
        const std::array<uint8_t, 4> got = ReadColor(126, 126);
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(got[i], c.centre[i], 2) << "channel " << i;
        EXPECT_EQ(ReadIds(126, 126)[0], 3u);
    }
}

TEST_F(TextureAtlasTest, SmallControlsPickTheirRegion) {
    struct Case {
        const char* name;
        std::function<Rectangle(Atlas&)> draw; ///< draws the control, returns where its skin lies
        Area area;
    };
    auto arrow = [](auto* button, bool pressed, bool hovered) {
        button->SetId(5);
        button->SetRectangle({30, 48, 40, 49});
        button->SetPressed(pressed);
        button->SetHovered(hovered);
    };
    auto down = [&](bool pressed, bool hovered) {
        return [=](Atlas& a) {
            GUI::Controls::DownButton b;
            arrow(&b, pressed, hovered);
            a.DrawDownButton(&b);
            return b.GetRectangle();
        };
    };
    auto up = [&](bool pressed, bool hovered) {
        return [=](Atlas& a) {
            GUI::Controls::UpButton b;
            arrow(&b, pressed, hovered);
            a.DrawUpButton(&b);
            return b.GetRectangle();
        };
    };
    auto toggle = [](bool on) {
        return [=](Atlas& a) {
            GUI::Controls::SwitchButton s;
            s.SetId(5);
            s.SetRectangle({100, 128, 100, 128});
            s.SetOn(on);
            a.DrawSwitchButton(&s);
            return s.GetRectangle();
        };
    };
    auto panel = [](bool pressed, bool hovered) {
        return [=](Atlas& a) {
            GUI::Controls::Panel p;
            p.SetId(5);
            p.SetRectangle({60, 192, 100, 152});
            p.SetPressed(pressed);
            p.SetHovered(hovered);
            a.DrawPanel(&p);
            return a.GetRenderRectPanel(&p);
        };
    };
    auto grip = [](bool hovered) {
        return [=](Atlas& a) {
            GUI::Controls::Panel p;
            p.SetRectangle({100, 200, 50, 150});
            p.SetSizeable(true);
            GUI::Controls::SizeHandle* h = p.GetSizeHandle();
            h->SetId(5);
            h->SetHovered(hovered);
            a.DrawSizeHandle(h);
            return h->GetRectangle();
        };
    };
    const Case cases[] = {
        {"down", down(false, false), kDownNormal},
        {"down hovered", down(false, true), kDownHovered},
        {"down pressed and hovered", down(true, true), kDownNormal},
        {"up", up(false, false), kUpNormal},
        {"up hovered", up(false, true), kUpHovered},
        {"up pressed and hovered", up(true, true), kUpNormal},
        {"switch on", toggle(true), kSwitchOn},
        {"switch off", toggle(false), kSwitchOff},
        {"panel", panel(false, false), kButtonPressed},
        {"panel hovered", panel(false, true), kButtonHovered},
        {"panel pressed and hovered", panel(true, true), kButtonPressed},
        {"grip", grip(false), kGripNormal},
        {"grip hovered", grip(true), kGripHovered},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ClearTarget();
        const Rectangle where = c.draw(*atlas);
        EXPECT_TRUE(DrawnAs(where, c.area, 5, c.name));
    }
}

// The states must be told apart at a glance: every two button looks differ clearly in fill or
// outline and at least a little in fill (a large button is mostly fill), and the two looks of every
// small control differ clearly.
TEST(TextureAtlasSkin, StatesAreDistinct) {
    auto distance = [](int ax, int ay, int bx, int by) {
        std::array<uint8_t, 4> a = Skin().Color(ax, ay), b = Skin().Color(bx, by);
        return std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]);
    };
    const int buttonX[3] = {kButtonNormal.xMin, kButtonPressed.xMin, kButtonHovered.xMin};
    const char* names[3] = {"normal", "pressed", "hovered"};
    for (int a = 0; a < 3; ++a) {
        for (int b = a + 1; b < 3; ++b) {
            SCOPED_TRACE(std::string(names[a]) + "/" + names[b]);
            const int fill = distance(buttonX[a] + 70, 730, buttonX[b] + 70, 730);
            const int outline = distance(buttonX[a], 730, buttonX[b], 730);
            EXPECT_GT(fill, 15);
            EXPECT_GT(std::max(fill, outline), 60);
        }
    }
    struct Pair {
        const char* name;
        int ax, ay, bx, by;
    };
    const Pair pairs[] = {
        {"switch knob/track", 622, 612, 583, 612},
        {"down key outline", 490, 688, 510, 688},
        {"up key outline", 530, 688, 550, 688},
        {"grip", 603, 691, 615, 691},
    };
    for (const Pair& p : pairs)
        EXPECT_GT(distance(p.ax, p.ay, p.bx, p.by), 60) << p.name;
}

TEST_F(TextureAtlasTest, StencilOfAnotherSizeFailsAfterReplacingTheColourImage) {
    GUI::Controls::Set& set = atlas->GetControlSet();
    GUI::Texture::Base* color = atlas->GetColorTexture();
    const float s0 = set.buttonNormal.s[0];

    const std::vector<unsigned char> color8x6 = EncodeFlat(8, 6, 4, 200);
    const std::vector<unsigned char> stencil6x8 = EncodeFlat(6, 8, 3, 255);
    EXPECT_FALSE(atlas->LoadControlSetFromMemory("", color8x6.data(), color8x6.size(), stencil6x8.data(),
                                                 stencil6x8.size()));
    EXPECT_EQ(atlas->Width(), 8u);
    EXPECT_EQ(atlas->Height(), 6u);
    EXPECT_EQ(atlas->GetColorTexture()->Width(), 8);
    EXPECT_EQ(atlas->GetStencilTexture()->Width(), 800);
    // The set is untouched, and still points at live textures.
    EXPECT_FLOAT_EQ(set.buttonNormal.s[0], s0);
    EXPECT_EQ(set.buttonNormal.colorTexture, color);
    EXPECT_EQ(atlas->GetColorTexture(), color);

    EXPECT_FALSE(atlas->LoadControlSetFromMemory("", color8x6.data(), color8x6.size(), nullptr, 0));
    const std::vector<unsigned char> broken(color8x6.begin(), color8x6.begin() + 30);
    EXPECT_FALSE(atlas->LoadControlSetFromMemory("", broken.data(), broken.size(), stencil6x8.data(),
                                                 stencil6x8.size()));
    EXPECT_EQ(atlas->Width(), 8u);

    const std::vector<unsigned char> stencil8x6 = EncodeFlat(8, 6, 3, 255);
    EXPECT_TRUE(atlas->LoadControlSetFromMemory("", color8x6.data(), color8x6.size(), stencil8x6.data(),
                                                stencil8x6.size()));
    EXPECT_FLOAT_EQ(set.buttonNormal.s[0], 169 / 8.f);

    // Without a renderer nothing can be loaded.
    Atlas detached;
    EXPECT_FALSE(detached.LoadControlSet(""));
    EXPECT_EQ(detached.Width(), 4u);
}

TEST_F(TextureAtlasTest, LabelDrawsOnlyWithText) {
    GUI::Controls::Label label;
    label.SetId(9);
    label.SetRectangle({20, 120, 20, 60});
    label.SetColor({0, 0, 0, 255});
    // A fresh label has no text: nothing reaches the target.
    label.DrawControl(atlas.get());
    auto pidCount = [](const trelvo::test::LayerPixels& t, uint32_t id) {
        int n = 0;
        for (std::size_t i = 0; i < t.ids.size(); i += 4)
            n += t.ids[i] == id ? 1 : 0;
        return n;
    };
    EXPECT_EQ(pidCount(Target(), 9u), 0);

    label.SetText(L"Apply");
    label.DrawControl(atlas.get());
    const trelvo::test::LayerPixels drawn = Target();
    int inside = 0, outside = 0;
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x)
            if (drawn.Pid(x, y) == 9u)
                ++(x >= 20 && x < 120 && y >= 20 && y < 60 ? inside : outside);
    EXPECT_GT(inside, 0);
    EXPECT_EQ(outside, 0);
}
