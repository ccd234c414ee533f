// Frame costs of the overlay: idle frames, a change, full re-renders and picking.
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/gui/textureatlas.h>

#include "benchcontext.h"

#include <benchmark/benchmark.h>

#include <GL/glew.h>

#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 800;

/// A plain filled rectangle with its id: the cheapest control that still draws.
class Tile : public GUI::Controls::Base {
public:
    void DrawControl(GUI::Texture::Atlas* atlas) override {
        auto* r = atlas->GetRenderer();
        r->SetLineColor(GUI::Color{40, 120, 200, 255});
        r->SetIds(GetId(), 0);
        r->DrawRectangle(GetRectangle());
    }
};

struct Overlay {
    explicit Overlay(int tiles) {
        if (!BenchContext().Valid())
            return;
        manager = std::make_shared<GUI::GUIManager>();
        ok = manager->Initialize();
        manager->Resize(kWidth, kHeight);
        for (int i = 0; i < tiles; ++i) {
            auto tile = std::make_unique<Tile>();
            int x = (i * 37) % (kWidth - 40), y = (i * 53) % (kHeight - 30);
            tile->SetRectangle({x, x + 40, y, y + 30});
            tile->Register(manager);
            controls.push_back(std::move(tile));
        }
        manager->UpdateLayers();
        glFinish();
    }
    ~Overlay() {
        controls.clear();
        manager.reset();
    }
    std::shared_ptr<GUI::GUIManager> manager;
    std::vector<std::unique_ptr<GUI::Controls::Base>> controls;
    bool ok = false;
};

void finishFrame() {
    glFinish();
}

void BM_IdleFrame(benchmark::State& state) {
    Overlay o(100);
    if (!o.ok)
        return state.SkipWithError("no GL context");
    for (auto _ : state) {
        o.manager->UpdateLayers();
        o.manager->Draw();
        finishFrame();
    }
}
BENCHMARK(BM_IdleFrame)->Unit(benchmark::kMicrosecond);

void BM_FrameAfterOneControlChanged(benchmark::State& state) {
    Overlay o(100);
    if (!o.ok)
        return state.SkipWithError("no GL context");
    int step = 1;
    for (auto _ : state) {
        o.controls[0]->Translate(step, 0);
        step = -step;
        o.manager->UpdateLayers();
        o.manager->Draw();
        finishFrame();
    }
}
BENCHMARK(BM_FrameAfterOneControlChanged)->Unit(benchmark::kMillisecond);

void BM_FullRerender(benchmark::State& state) {
    Overlay o(static_cast<int>(state.range(0)));
    if (!o.ok)
        return state.SkipWithError("no GL context");
    for (auto _ : state) {
        o.manager->SetNeedsRedraw(true);
        o.manager->UpdateLayers();
        finishFrame();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_FullRerender)->Arg(10)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

void BM_HitDetect(benchmark::State& state) {
    Overlay o(100);
    if (!o.ok)
        return state.SkipWithError("no GL context");
    unsigned pid = 0, sid = 0;
    int i = 0;
    for (auto _ : state) {
        o.manager->HitDetect((i * 7) % kWidth, (i * 13) % kHeight, &pid, &sid);
        benchmark::DoNotOptimize(pid);
        ++i;
    }
}
BENCHMARK(BM_HitDetect)->Unit(benchmark::kMicrosecond);

void BM_PanelWith100ButtonsRerender(benchmark::State& state) {
    Overlay o(0);
    if (!o.ok)
        return state.SkipWithError("no GL context");
    GUI::Controls::Panel panel;
    panel.SetRectangle({10, 1210, 10, 780});
    std::vector<std::unique_ptr<GUI::Controls::Button>> buttons;
    for (int i = 0; i < 100; ++i) {
        auto b = std::make_unique<GUI::Controls::Button>();
        int x = 10 + (i % 10) * 118, y = 10 + (i / 10) * 75;
        b->SetRectangle({x, x + 108, y, y + 60});
        b->SetText(L"Button " + std::to_wstring(i));
        panel.AddChild(b.get());
        buttons.push_back(std::move(b));
    }
    panel.Register(o.manager);
    o.manager->UpdateLayers(); // rasterises the labels once
    for (auto _ : state) {
        panel.SetNeedsRedraw(true);
        o.manager->UpdateLayers();
        finishFrame();
    }
    buttons.clear();
}
BENCHMARK(BM_PanelWith100ButtonsRerender)->Unit(benchmark::kMillisecond);

} // namespace
