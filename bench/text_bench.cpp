// Cost of text: rasterising a label after its text changed, drawing a cached label, measuring one.
#include <trelvogui/gui/renderers/openglrenderer.h>
#include <trelvogui/gui/texture.h>

#include <graphicsbase/headlesscontext.h>

#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <memory>

using namespace GraphicsBase;

namespace {

constexpr int kScreen = 512;

// One context, renderer and texture-pair target shared by every text benchmark.
struct TextScene {
    TextScene() : context(kScreen, kScreen) {
        if (!context.Valid() || !renderer.Initialize())
            return;
        renderer.SetScreen(kScreen, kScreen);
        renderer.GenerateTexture(&color, GUI::Texture::Color);
        renderer.GenerateTexture(&ids, GUI::Texture::Identifier);
        renderer.GenerateTexture(&label, GUI::Texture::Color);
        GUI::Geometry::Rectangle all{0, kScreen, 0, kScreen};
        renderer.SetRenderTargetToTexture(color, ids, all);
        state = renderer.SetRenderAttributes();
        text.string = L"Probe value: 12.3456"; // 20 characters
        text.size = 16;
        ready = true;
    }
    ~TextScene() {
        state.reset();
        renderer.ClearRenderTargetToTexture();
        for (auto* t : {color, ids, label})
            renderer.DeleteTexture(t);
    }

    void Draw() {
        renderer.SetIds(5, 1);
        renderer.DrawText(label, &text, {20, 400, 20, 60}, 1, 1);
    }

    HeadlessGLContext context;
    GUI::Renderer::OpenglRenderer renderer;
    GUI::Texture::Base* color = nullptr;
    GUI::Texture::Base* ids = nullptr;
    GUI::Texture::Base* label = nullptr;
    std::unique_ptr<GL::GLScopedSetter> state;
    GUI::Text text;
    bool ready = false;
};

TextScene& Scene() {
    static TextScene scene;
    return scene;
}

// What a label pays on the frame after SetText: glyph layout, the RGBA image, the upload and the
// quad. Glyphs come from the cache after the first iteration, as they do in a running UI.
void BM_RasteriseLabel20(benchmark::State& state) {
    TextScene& s = Scene();
    if (!s.ready) {
        state.SkipWithError("no GL context or renderer");
        return;
    }
    for (auto _ : state) {
        s.label->SetValid(false);
        s.Draw();
        glFinish();
    }
}
BENCHMARK(BM_RasteriseLabel20)->Unit(benchmark::kMicrosecond);

// The steady state: the label's texture is valid, so a draw is one quad.
void BM_DrawCachedLabel(benchmark::State& state) {
    TextScene& s = Scene();
    if (!s.ready) {
        state.SkipWithError("no GL context or renderer");
        return;
    }
    s.label->SetValid(false);
    s.Draw();
    for (auto _ : state) {
        s.Draw();
        glFinish();
    }
}
BENCHMARK(BM_DrawCachedLabel)->Unit(benchmark::kMicrosecond);

// Layout measures labels without drawing them.
void BM_MeasureLabel20(benchmark::State& state) {
    TextScene& s = Scene();
    if (!s.ready) {
        state.SkipWithError("no GL context or renderer");
        return;
    }
    int w = 0, h = 0;
    for (auto _ : state) {
        s.renderer.GetTextSize(&s.text, &w, &h);
        benchmark::DoNotOptimize(w);
    }
}
BENCHMARK(BM_MeasureLabel20);

} // namespace
