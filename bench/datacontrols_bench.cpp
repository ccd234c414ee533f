// Cost of the data controls: re-laying an axis out (labels kept or recreated) and drawing a colour bar.
#include <trelvogui/axiscontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/headlesscontext.h>

#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace {

constexpr int kScreen = 512;

// One context and overlay shared by these benchmarks, made current again by each (other benchmark
// files keep contexts of their own).
struct DataScene {
    DataScene() : context(kScreen, kScreen) {
        if (!context.Valid())
            return;
        manager = std::make_shared<GUI::GUIManager>();
        ready = manager->Initialize();
        manager->Resize(kScreen, kScreen);
    }
    bool Enter() { return ready && context.MakeCurrent(); }

    HeadlessGLContext context;
    std::shared_ptr<GUI::GUIManager> manager;
    bool ready = false;
};

DataScene& scene() {
    static DataScene s;
    return s;
}

// Two rectangles per case, alternated so that every iteration really lays the axis out again.
void RunAxisUpdate(benchmark::State& state, GUI::Geometry::Rectangle a, GUI::Geometry::Rectangle b) {
    if (!scene().Enter())
        return state.SkipWithError("no GL context");
    AxisControl axis;
    if (!axis.Initialize())
        return state.SkipWithError("axis shaders do not build");
    axis.SetOrientation(AxisControl::AlongYMin);
    axis.SetRange(-2000.f, 1500.f);
    axis.SetRectangle(a);
    bool flip = false;
    for (auto _ : state) {
        axis.SetRectangle(flip ? a : b);
        flip = !flip;
    }
    glFinish();
    state.counters["labels"] = static_cast<double>(axis.GetNumberLabels().size());
}

void BM_AxisUpdateLabelsKept(benchmark::State& state) {
    // 400 pixels at spacing 40 either way: 11 ticks, the labels are kept and re-texted.
    RunAxisUpdate(state, {20, 420, 20, 60}, {40, 440, 20, 60});
}
BENCHMARK(BM_AxisUpdateLabelsKept)->Unit(benchmark::kMicrosecond);

void BM_AxisUpdateLabelCountChanging(benchmark::State& state) {
    // 400 and 360 pixels: 11 and 10 ticks in turn, so every layout deletes and creates the labels.
    RunAxisUpdate(state, {20, 420, 20, 60}, {20, 380, 20, 60});
}
BENCHMARK(BM_AxisUpdateLabelCountChanging)->Unit(benchmark::kMicrosecond);

void BM_ColorBarDraw(benchmark::State& state) {
    if (!scene().Enter())
        return state.SkipWithError("no GL context");
    GUI::Controls::ColorBar bar;
    if (!bar.Initialize())
        return state.SkipWithError("colour bar shaders do not build");
    std::vector<GUI::Color> ramp(256);
    for (int i = 0; i < 256; ++i)
        ramp[static_cast<size_t>(i)] = {static_cast<uint8_t>(i), 64, static_cast<uint8_t>(255 - i), 255};
    bar.UpdateColorMap(ramp, true);
    bar.SetRectangle({400, 424, 146, 366});

    // Draw straight into the overlay's layers, set up as a layer update sets them up.
    GUI::GUIManager& manager = *scene().manager;
    glBindFramebuffer(GL_FRAMEBUFFER, manager.GetLayerFramebuffer());
    const GLenum both[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, both);
    glViewport(0, 0, kScreen, kScreen);
    glActiveTexture(GL_TEXTURE9);
    glBindTexture(GL_TEXTURE_2D, manager.GetColorLayer());
    glActiveTexture(GL_TEXTURE10);
    glBindTexture(GL_TEXTURE_2D, manager.GetIdLayer());
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
    for (auto _ : state) {
        bar.DrawCustom();
        glFinish();
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    GLuint texture = bar.ColorTextureName();
    glDeleteTextures(1, &texture);
}
BENCHMARK(BM_ColorBarDraw)->Unit(benchmark::kMicrosecond);

} // namespace
