// OpenglRenderer: ids and colour written by each primitive, texture targets and layer compositing,
// read back from the target textures.
#include "support/glfixture.h"

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/opengltexture.h>
#include <trelvogui/gui/renderers/openglrenderer.h>

#include <GL/glew.h>
#include <glm/gtc/quaternion.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

using namespace GraphicsBase;

using GUI::Geometry::Point;
using GUI::Geometry::Rectangle;
using GUI::Geometry::TexturedRectangle;
using GUI::Renderer::OpenglRenderer;
using GUI::Texture::OpenglTexture;
using trelvo::test::GLTest;

namespace {

using Rgba = std::array<uint8_t, 4>;
using Ids = std::array<uint32_t, 4>;

constexpr GUI::Color kRed{255, 0, 0, 255};
constexpr GUI::Color kBlue{0, 0, 255, 255};
constexpr GUI::Color kGreen{0, 255, 0, 255};
constexpr Ids kNoIds{0, 0, 0, 0};

Ids IdPair(uint32_t pid, uint32_t sid) {
    return {pid, sid, 0, 0};
}

// Colours go through 8-bit channels and a float blend; one step of rounding either way is fine.
::testing::AssertionResult Near(const Rgba& actual, const Rgba& expected, int tolerance = 1) {
    for (int i = 0; i < 4; ++i)
        if (std::abs(int(actual[i]) - int(expected[i])) > tolerance)
            return ::testing::AssertionFailure()
                   << "got (" << int(actual[0]) << "," << int(actual[1]) << "," << int(actual[2]) << ","
                   << int(actual[3]) << ") expected (" << int(expected[0]) << "," << int(expected[1]) << ","
                   << int(expected[2]) << "," << int(expected[3]) << ")";
    return ::testing::AssertionSuccess();
}

class RendererTest : public trelvo::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        renderer = std::make_unique<OpenglRenderer>();
        ASSERT_TRUE(renderer->Initialize());
        ASSERT_TRUE(renderer->SetScreen(256, 256));
        attributes = renderer->SetRenderAttributes();
        screenColor = NewTexture(GUI::Texture::Color);
        screenIds = NewTexture(GUI::Texture::Identifier);
    }
    void TearDown() override {
        renderer->ClearRenderTargetToTexture();
        for (auto* t : textures)
            renderer->DeleteTexture(t);
        attributes.reset();
        renderer->DestroyFBO();
        renderer.reset();
        GLTest::TearDown();
    }

    GUI::Texture::Base* NewTexture(int format) {
        GUI::Texture::Base* t = nullptr;
        renderer->GenerateTexture(&t, format);
        textures.push_back(t);
        return t;
    }

    // A screen-sized target pair filled with opaque `background` and no ids.
    void UseScreenTarget(GUI::Color background = kGreen) {
        Rectangle screen{0, 256, 0, 256};
        renderer->SetRenderTargetToTexture(screenColor, screenIds, screen);
        renderer->SetLineColor(background);
        renderer->SetIds(0, 0);
        renderer->DrawRectangle(screen);
    }

    Rgba Color(int x, int y) { return ReadColor(x, y); }
    Ids IdsAt(int x, int y) { return ReadIds(x, y, 1); }

    std::unique_ptr<OpenglRenderer> renderer;
    std::unique_ptr<GL::GLScopedSetter> attributes;
    std::vector<GUI::Texture::Base*> textures;
    GUI::Texture::Base* screenColor = nullptr;
    GUI::Texture::Base* screenIds = nullptr;
};

} // namespace

TEST_F(RendererTest, DrawRectangleFillsAndStampsIdsExactlyOnItsArea) {
    UseScreenTarget();
    renderer->SetLineColor(kRed);
    renderer->SetIds(7, 3);
    renderer->DrawRectangle(Rectangle{10, 50, 20, 40});

    struct Probe {
        int x, y;
        bool inside;
    };
    const Probe probes[] = {{10, 20, true},  {49, 39, true},  {30, 30, true},  {9, 20, false},
                            {50, 20, false}, {10, 19, false}, {10, 40, false}, {49, 40, false}};
    for (const Probe& p : probes) {
        SCOPED_TRACE("pixel " + std::to_string(p.x) + "," + std::to_string(p.y));
        EXPECT_EQ(IdsAt(p.x, p.y), p.inside ? IdPair(7, 3) : kNoIds);
        EXPECT_TRUE(Near(Color(p.x, p.y), p.inside ? Rgba{255, 0, 0, 255} : Rgba{0, 255, 0, 255}));
    }
}

TEST_F(RendererTest, DrawRectangleComposesSourceOverTargetAndAlwaysStampsIds) {
    UseScreenTarget(kBlue);
    renderer->SetLineColor(GUI::Color{255, 0, 0, 51}); // a = 0.2
    renderer->SetIds(4, 2);
    renderer->DrawRectangle(Rectangle{0, 16, 0, 16});
    EXPECT_TRUE(Near(Color(8, 8), Rgba{51, 0, 204, 255}));
    EXPECT_EQ(IdsAt(8, 8), IdPair(4, 2)) << "a filled rectangle is a hit area at any opacity";
}

TEST_F(RendererTest, OutlineDrawsColourButLeavesIdsUntouched) {
    UseScreenTarget();
    renderer->SetLineColor(kRed);
    renderer->SetIds(5, 1);
    Rectangle area{40, 80, 40, 80};
    renderer->DrawRectangle(area);
    renderer->SetLineColor(kBlue);
    renderer->SetIds(9, 9);
    renderer->DrawFilledRectangle(area);

    // Which side of an edge a line on pixel boundaries lights is up to the rasteriser, so look at a
    // band of two pixels around each edge.
    int outlinePixels = 0;
    for (int y = 38; y < 82; ++y)
        for (int x = 38; x < 82; ++x) {
            bool inside = x >= 40 && x < 80 && y >= 40 && y < 80;
            ASSERT_EQ(IdsAt(x, y), inside ? IdPair(5, 1) : kNoIds) << x << "," << y;
            outlinePixels += Color(x, y) == Rgba{0, 0, 255, 255};
        }
    EXPECT_GE(outlinePixels, 4 * 38) << "the outline runs round all four sides";
    EXPECT_EQ(Color(60, 60), (Rgba{255, 0, 0, 255})) << "the outline does not fill";

    renderer->SetIds(6, 6);
    renderer->DrawRectangle(Rectangle{0, 4, 0, 4});
    EXPECT_EQ(IdsAt(1, 1), IdPair(6, 6)) << "id writes are enabled again after the outline";
}

TEST_F(GLTest, RendererBeforeInitializeDrawsNothing) {
    OpenglRenderer renderer;
    glClearColor(0.f, 1.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    renderer.SetIds(1, 1);
    renderer.DrawRectangle(Rectangle{0, 256, 0, 256});
    renderer.DrawFilledRectangle(Rectangle{0, 256, 0, 256});
    renderer.DrawTexturedRectangle(TexturedRectangle{Rectangle{0, 256, 0, 256}});
    GUI::Text text;
    text.string = L"text";
    renderer.DrawText(nullptr, &text, Rectangle{0, 256, 0, 256}, 0, 0);
    EXPECT_EQ(ReadColor(128, 128), (std::array<uint8_t, 4>{0, 255, 0, 255}));
    EXPECT_FALSE(renderer.LoadColorAtlas("", nullptr));
    EXPECT_FALSE(renderer.LoadStencilAtlas("", nullptr));

    EXPECT_FALSE(renderer.SetScreen(100, 60));
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ(viewport[2], 100) << "the viewport is set even before Initialize";
    EXPECT_EQ(viewport[3], 60);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(RendererTest, TextureTargetShiftsScreenCoordinatesOntoItsOrigin) {
    auto* color = NewTexture(GUI::Texture::Color);
    auto* ids = NewTexture(GUI::Texture::Identifier);
    Rectangle layer{100, 164, 50, 90};
    renderer->SetRenderTargetToTexture(color, ids, layer);
    EXPECT_EQ(color->Width(), 64);
    EXPECT_EQ(color->Height(), 40);
    EXPECT_EQ(ids->Width(), 64);
    EXPECT_EQ(IdsAt(0, 0), kNoIds) << "a new target starts without ids";

    renderer->SetLineColor(kRed);
    renderer->SetIds(11, 12);
    renderer->DrawRectangle(Rectangle{100, 101, 50, 51});
    EXPECT_EQ(IdsAt(0, 0), IdPair(11, 12));
    EXPECT_EQ(Color(0, 0), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(IdsAt(1, 0), kNoIds);
    EXPECT_EQ(IdsAt(0, 1), kNoIds);

    renderer->ClearRenderTargetToTexture();
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    EXPECT_EQ((std::array<GLint, 4>{viewport[0], viewport[1], viewport[2], viewport[3]}),
              (std::array<GLint, 4>{0, 0, 256, 256}));
    GLint framebuffer = -1;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    EXPECT_EQ(framebuffer, 0);
}

TEST_F(RendererTest, InvalidTargetSizePrintsAndChangesNothing) {
    struct Case {
        Rectangle rect;
        const char* message;
    };
    const Case cases[] = {
        {{10, 10, 0, 30}, "SetRenderTargetToTexture: Texture is set to invalid size 0 30.\n"},
        {{0, 20, 40, 10}, "SetRenderTargetToTexture: Texture is set to invalid size 20 -30.\n"},
        {{5, 0, 0, 0}, "SetRenderTargetToTexture: Texture is set to invalid size -5 0.\n"},
    };
    for (const Case& c : cases) {
        auto* color = NewTexture(GUI::Texture::Color);
        auto* ids = NewTexture(GUI::Texture::Identifier);
        Rectangle rect = c.rect;
        testing::internal::CaptureStdout();
        renderer->SetRenderTargetToTexture(color, ids, rect);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.message);
        EXPECT_EQ(static_cast<OpenglTexture*>(color)->GetTextureName(), 0u);
        EXPECT_EQ(static_cast<OpenglTexture*>(ids)->GetTextureName(), 0u);
        EXPECT_EQ(color->Width(), 0);
        GLint framebuffer = -1, viewport[4] = {};
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
        glGetIntegerv(GL_VIEWPORT, viewport);
        EXPECT_EQ(framebuffer, 0);
        EXPECT_EQ(viewport[0], 0);
        EXPECT_EQ(viewport[2], 256);
    }
}

namespace {

// A 64 x 40 layer at (40, 60): four quadrants of distinct colour and ids, fully covered.
struct Layer {
    Rectangle rect{40, 104, 60, 100};
    GUI::Texture::Base* color = nullptr;
    GUI::Texture::Base* ids = nullptr;
};

struct Quadrant {
    Rectangle rect;
    GUI::Color color;
    uint32_t pid;
};

const Quadrant kQuadrants[] = {
    {{40, 72, 60, 80}, {255, 0, 0, 255}, 21},
    {{72, 104, 60, 80}, {0, 0, 255, 255}, 22},
    {{40, 72, 80, 100}, {255, 255, 0, 255}, 23},
    {{72, 104, 80, 100}, {255, 0, 255, 255}, 24},
};

} // namespace

class LayerCompositeTest : public RendererTest {
protected:
    Layer MakeLayer() {
        Layer layer;
        layer.color = NewTexture(GUI::Texture::Color);
        layer.ids = NewTexture(GUI::Texture::Identifier);
        renderer->SetRenderTargetToTexture(layer.color, layer.ids, layer.rect);
        for (const Quadrant& q : kQuadrants) {
            renderer->SetLineColor(q.color);
            renderer->SetIds(q.pid, 1);
            renderer->DrawRectangle(q.rect);
        }
        renderer->ClearRenderTargetToTexture();
        return layer;
    }
};

TEST_F(LayerCompositeTest, IdentityFrameReproducesTheLayerWhateverThePivot) {
    const Point pivots[] = {{72, 80}, {0, 0}, {300, -20}, {40, 60}};
    for (const Point& pivotValue : pivots) {
        SCOPED_TRACE("pivot " + std::to_string(pivotValue.x) + "," + std::to_string(pivotValue.y));
        Layer layer = MakeLayer();
        UseScreenTarget();
        GUI::Animation::Frame frame;
        Point pivot = pivotValue;
        renderer->RenderTexture(layer.color, layer.ids, &frame, &layer.rect, &pivot);

        for (const Quadrant& q : kQuadrants) {
            const int corners[4][2] = {{q.rect.xMin, q.rect.yMin},
                                       {q.rect.xMax - 1, q.rect.yMin},
                                       {q.rect.xMin, q.rect.yMax - 1},
                                       {q.rect.xMax - 1, q.rect.yMax - 1}};
            for (const auto& c : corners) {
                EXPECT_EQ(IdsAt(c[0], c[1]), IdPair(q.pid, 1)) << c[0] << "," << c[1];
                EXPECT_TRUE(Near(Color(c[0], c[1]), Rgba{q.color.r, q.color.g, q.color.b, 255}))
                    << c[0] << "," << c[1];
            }
        }
        const int outside[][2] = {{39, 60}, {104, 60}, {40, 59}, {40, 100}, {103, 100}};
        for (const auto& o : outside) {
            EXPECT_EQ(IdsAt(o[0], o[1]), kNoIds) << o[0] << "," << o[1];
            EXPECT_EQ(Color(o[0], o[1]), (Rgba{0, 255, 0, 255})) << o[0] << "," << o[1];
        }
    }
}

TEST_F(LayerCompositeTest, HalfScaleAboutTheCentreShrinksTowardIt) {
    Layer layer = MakeLayer();
    UseScreenTarget();
    GUI::Animation::Frame frame;
    frame.setScale(glm::vec3(0.5f));
    Point pivot{72, 80};
    renderer->RenderTexture(layer.color, layer.ids, &frame, &layer.rect, &pivot);

    // The layer now covers (56..88, 70..90); each quadrant keeps its place relative to the centre.
    EXPECT_EQ(IdsAt(60, 72), IdPair(21, 1));
    EXPECT_EQ(IdsAt(84, 72), IdPair(22, 1));
    EXPECT_EQ(IdsAt(60, 88), IdPair(23, 1));
    EXPECT_EQ(IdsAt(84, 88), IdPair(24, 1));
    EXPECT_EQ(IdsAt(56, 70), IdPair(21, 1));
    EXPECT_EQ(IdsAt(87, 89), IdPair(24, 1));
    const int uncovered[][2] = {{55, 70}, {88, 70}, {56, 69}, {56, 90}, {41, 61}, {102, 98}};
    for (const auto& o : uncovered) {
        EXPECT_EQ(IdsAt(o[0], o[1]), kNoIds) << o[0] << "," << o[1];
        EXPECT_EQ(Color(o[0], o[1]), (Rgba{0, 255, 0, 255})) << o[0] << "," << o[1];
    }
}

TEST_F(LayerCompositeTest, FrameAlphaFadesColourAndDropsIdsWhenInvisible) {
    struct Case {
        float alpha;
        Rgba color; // quadrant 1 (red) over green
        Ids ids;
    };
    const Case cases[] = {
        {1.f, {255, 0, 0, 255}, IdPair(21, 1)},
        {0.5f, {128, 128, 0, 255}, IdPair(21, 1)},
        {0.f, {0, 255, 0, 255}, kNoIds},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("alpha " + std::to_string(c.alpha));
        Layer layer = MakeLayer();
        UseScreenTarget();
        GUI::Animation::Frame frame;
        frame.setAlpha(c.alpha);
        Point pivot{0, 0};
        renderer->RenderTexture(layer.color, layer.ids, &frame, &layer.rect, &pivot);
        EXPECT_TRUE(Near(Color(50, 65), c.color));
        EXPECT_EQ(IdsAt(50, 65), c.ids);
    }
}

TEST_F(LayerCompositeTest, PositionMovesTheLayer) {
    Layer layer = MakeLayer();
    UseScreenTarget();
    GUI::Animation::Frame frame;
    frame.setPosition(glm::vec3(100.f, -20.f, 0.f));
    Point pivot{72, 80};
    renderer->RenderTexture(layer.color, layer.ids, &frame, &layer.rect, &pivot);
    EXPECT_EQ(IdsAt(140, 40), IdPair(21, 1));
    EXPECT_EQ(IdsAt(203, 79), IdPair(24, 1));
    EXPECT_EQ(IdsAt(50, 65), kNoIds);
}

namespace {

// 4 x 4 test atlas. Rows are given top row first, as images are stored.
constexpr Rgba kAtlas[4][4] = {
    {{255, 0, 0, 255}, {0, 0, 255, 255}, {255, 255, 255, 255}, {10, 20, 30, 255}},
    {{0, 0, 0, 255}, {200, 100, 50, 255}, {255, 0, 255, 255}, {0, 255, 255, 255}},
    {{40, 40, 40, 255}, {90, 80, 70, 255}, {1, 2, 3, 255}, {250, 128, 5, 255}},
    {{100, 0, 0, 255}, {0, 100, 0, 255}, {0, 0, 100, 255}, {255, 255, 0, 0}},
};
// Coverage in the stencil's red channel: 255 inside the shape, 0 outside, partial on the edge.
constexpr uint8_t kCoverage[4][4] = {
    {255, 255, 255, 0},
    {255, 255, 255, 255},
    {255, 255, 96, 255},
    {160, 255, 255, 255},
};

} // namespace

class TexturedRectangleTest : public RendererTest {
protected:
    // Call after setting the target: allocating textures rebinds the active unit.
    void BindAtlas(int colorFormat) {
        atlasColor = NewTexture(colorFormat);
        atlasStencil = NewTexture(GUI::Texture::Color);
        std::vector<uint8_t> color, stencil;
        for (int row = 0; row < 4; ++row)
            for (int col = 0; col < 4; ++col) {
                color.insert(color.end(), kAtlas[row][col].begin(), kAtlas[row][col].end());
                stencil.insert(stencil.end(), {kCoverage[row][col], 0, 0, 255});
            }
        atlasColor->SetSize(4, 4);
        atlasColor->SetData(color.data());
        atlasStencil->SetSize(4, 4);
        atlasStencil->SetData(stencil.data());
        glActiveTexture(GL_TEXTURE13);
        atlasColor->Bind();
        glActiveTexture(GL_TEXTURE14);
        atlasStencil->Bind();
    }

    // Expected pixel for atlas texel (row, col) drawn over opaque green with ids (3, 4) stamped.
    static Rgba Over(int row, int col) {
        const Rgba& s = kAtlas[row][col];
        float a = s[3] / 255.f * kCoverage[row][col] / 255.f;
        auto mix = [a](int src, int dst) { return static_cast<uint8_t>(src * a + dst * (1.f - a) + 0.5f); };
        return {mix(s[0], 0), mix(s[1], 255), mix(s[2], 0), 255};
    }
    static Ids IdsFor(int row, int col) {
        float a = kAtlas[row][col][3] / 255.f * kCoverage[row][col] / 255.f;
        return a > 0.5f ? IdPair(3, 4) : kNoIds;
    }

    GUI::Texture::Base* atlasColor = nullptr;
    GUI::Texture::Base* atlasStencil = nullptr;
};

TEST_F(TexturedRectangleTest, SamplesTexelsWithStencilMaskAndImageRowOrder) {
    // sRGB atlases are decoded on sampling; the shader re-encodes, so both formats show the same
    // stored values (within a rounding step).
    for (int format : {GUI::Texture::Color, GUI::Texture::SrgbColor}) {
        SCOPED_TRACE("format " + std::to_string(format));
        UseScreenTarget();
        BindAtlas(format);
        renderer->SetIds(3, 4);
        // One pixel per texel: every pixel centre lands on a texel centre.
        renderer->DrawTexturedRectangle(TexturedRectangle{Rectangle{20, 24, 30, 34}, 0.f, 0.f, 1.f, 1.f});
        for (int row = 0; row < 4; ++row)
            for (int col = 0; col < 4; ++col) {
                int x = 20 + col, y = 33 - row; // the image's top row is the rectangle's top row
                EXPECT_TRUE(Near(Color(x, y), Over(row, col), format == 2 ? 2 : 1))
                    << "texel " << row << "," << col;
                EXPECT_EQ(IdsAt(x, y), IdsFor(row, col)) << "texel " << row << "," << col;
            }
        EXPECT_EQ(IdsAt(19, 30), kNoIds);
        EXPECT_EQ(IdsAt(24, 30), kNoIds);
    }
}

TEST_F(TexturedRectangleTest, AreaStartsAtTheGivenTextureCorner) {
    UseScreenTarget();
    BindAtlas(GUI::Texture::Color);
    renderer->SetIds(3, 4);
    // A zero-sized area at the centre of texel (row 2, col 1) fills the whole rectangle with it; a
    // wrong corner or axis would pick a neighbour.
    renderer->DrawTexturedRectangle(
        TexturedRectangle{Rectangle{100, 108, 100, 108}, 0.375f, 0.625f, 0.375f, 0.625f});
    for (int y = 100; y < 108; y += 7)
        for (int x = 100; x < 108; x += 7) {
            EXPECT_TRUE(Near(Color(x, y), Over(2, 1))) << x << "," << y;
            EXPECT_EQ(IdsAt(x, y), IdPair(3, 4));
        }
}

// Pieces drawn together must give the very pixels and ids that drawing them one by one gives: the
// nine pieces of a skin (stretched, so texture coordinates fall between texels), pieces that overlap
// (each composes over the one before), and more pieces than one draw takes.
TEST_F(TexturedRectangleTest, PiecesDrawnTogetherMatchPiecesDrawnOneByOne) {
    auto nine = [](int x0, int x1, int y0, int y1, int b) {
        const float s[4] = {0.f, 0.3f, 0.7f, 1.f}, t[4] = {0.f, 0.2f, 0.8f, 1.f};
        const int xs[4] = {x0 - b, x0, x1, x1 + b}, ys[4] = {y0 - b, y0, y1, y1 + b};
        std::vector<TexturedRectangle> pieces;
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col)
                pieces.push_back({{xs[col], xs[col + 1], ys[row], ys[row + 1]},
                                  s[col],
                                  t[2 - row],
                                  s[col + 1],
                                  t[3 - row]});
        return pieces;
    };
    std::vector<TexturedRectangle> many = nine(6, 20, 6, 14, 3);
    for (const TexturedRectangle& piece : nine(30, 40, 20, 30, 4))
        many.push_back(piece);
    const struct {
        const char* name;
        std::vector<TexturedRectangle> pieces;
    } cases[] = {
        {"a skin's nine pieces", nine(8, 30, 10, 24, 3)},
        {"overlapping pieces",
         {{{4, 30, 4, 20}, 0.1f, 0.1f, 0.9f, 0.6f},
          {{12, 40, 10, 36}, 0.f, 0.4f, 1.f, 1.f},
          {{20, 26, 2, 44}, 0.5f, 0.f, 0.9f, 1.f}}},
        {"more pieces than one draw takes", many},
    };
    constexpr int kSide = 48;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<uint8_t> colours[2];
        std::vector<Ids> ids[2];
        for (int together = 0; together < 2; ++together) {
            UseScreenTarget();
            BindAtlas(GUI::Texture::SrgbColor);
            renderer->SetIds(3, 4);
            if (together)
                renderer->DrawTexturedRectangles(c.pieces.data(), static_cast<int>(c.pieces.size()));
            else
                for (const TexturedRectangle& piece : c.pieces)
                    renderer->DrawTexturedRectangle(piece);
            colours[together] = ReadColorRegion(0, 0, kSide, kSide);
            for (int y = 0; y < kSide; ++y)
                for (int x = 0; x < kSide; ++x)
                    ids[together].push_back(IdsAt(x, y));
        }
        EXPECT_TRUE(colours[0] == colours[1]) << "the colours differ";
        EXPECT_TRUE(ids[0] == ids[1]) << "the ids differ";
        EXPECT_NE(std::count(ids[1].begin(), ids[1].end(), IdPair(3, 4)), 0) << "the pieces drew nothing";
    }
}

TEST_F(RendererTest, StateSettersKeepTheirValues) {
    renderer->SetLineThickness(2.5f);
    renderer->SetLineColor(GUI::Color{1, 2, 3, 4});
    renderer->SetIds(8, 9);
    EXPECT_EQ(renderer->LineThickness(), 2.5f);
    EXPECT_EQ(renderer->LineColor(), (GUI::Color{1, 2, 3, 4}));
    EXPECT_EQ(renderer->PrimaryId(), 8u);
    EXPECT_EQ(renderer->SubId(), 9u);
    EXPECT_TRUE(renderer->LoadColorAtlas("", nullptr));
    EXPECT_TRUE(renderer->InitializeFBO()) << "an existing framebuffer is kept";
    GLuint fbo = renderer->FrameBuffer();
    EXPECT_TRUE(renderer->DestroyFBO());
    EXPECT_FALSE(glIsFramebuffer(fbo));
    EXPECT_TRUE(renderer->DestroyFBO());
    EXPECT_TRUE(renderer->InitializeFBO());
}

TEST_F(RendererTest, RenderAttributesDisableBlendAndDepthUntilReleased) {
    attributes.reset();
    glEnable(GL_BLEND);
    glEnable(GL_DEPTH_TEST);
    {
        auto setter = renderer->SetRenderAttributes();
        EXPECT_FALSE(glIsEnabled(GL_BLEND));
        EXPECT_FALSE(glIsEnabled(GL_DEPTH_TEST));
    }
    EXPECT_TRUE(glIsEnabled(GL_BLEND)) << "the host's state comes back";
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
}

TEST_F(GLTest, RendererInitializeFailsOnABrokenShaderAndStaysInert) {
    std::string dir = trelvo::test::OutputDir() + "/renderer_broken_shader";
    std::filesystem::create_directories(dir);
    std::ofstream(dir + "/UILineShader.frag") << "#version 330 core\nvoid main() { broken }\n";
    setenv("TRELVOGUI_SHADER_PATH", dir.c_str(), 1);
    OpenglRenderer renderer;
    testing::internal::CaptureStdout();
    bool initialized = renderer.Initialize();
    std::string output = testing::internal::GetCapturedStdout();
    unsetenv("TRELVOGUI_SHADER_PATH");
    std::filesystem::remove_all(dir);

    EXPECT_FALSE(initialized);
    EXPECT_FALSE(renderer.IsInitialized());
    EXPECT_NE(output.find("UILineShader.frag"), std::string::npos) << output;
    EXPECT_FALSE(renderer.SetScreen(256, 256));
    glClearColor(0.f, 0.f, 1.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    renderer.DrawRectangle(Rectangle{0, 256, 0, 256});
    renderer.DrawTexturedRectangle(TexturedRectangle{Rectangle{0, 256, 0, 256}});
    EXPECT_EQ(ReadColor(10, 10), (std::array<uint8_t, 4>{0, 0, 255, 255}));
    renderer.DestroyFBO();
}
