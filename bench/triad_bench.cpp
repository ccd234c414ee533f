// Costs of the view-orientation cube and the light widget: a layer update with one of them stale, and
// reading the cube's model.
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/resources.h>
#include <graphicsbase/ui3delementreader.h>

#include "benchcontext.h"

#include <benchmark/benchmark.h>

#include <GL/glew.h>

#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 720;

/// A 1280 x 720 overlay with the cube, the light widget and one panel, drawn once.
struct Scene {
    std::shared_ptr<Camera> camera = std::make_shared<Camera>();
    std::shared_ptr<DirectionalLight> light = std::make_shared<DirectionalLight>();
    std::shared_ptr<GUI::GUIManager> manager = std::make_shared<GUI::GUIManager>();
    TriadControl triad{camera, light};
    LightControl widget{light};
    GUI::Controls::Panel panel;

    bool Build() {
        camera->SetPosition({3.f, 2.5f, 4.f});
        camera->SetViewport(kWidth, kHeight);
        camera->CalcMatrices();
        if (!manager->Initialize() || !triad.Initialize() || !widget.Initialize())
            return false;
        manager->Resize(kWidth, kHeight);
        panel.SetRectangle({40, 340, 400, 680});
        panel.Register(manager);
        triad.Register(manager);
        widget.Register(manager);
        manager->UpdateLayers();
        glFinish();
        return true;
    }
};

/// The host moved its camera: only the cube is restaled, and the layers are redrawn.
void BM_LayerUpdateTriadStale(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    Scene scene;
    if (!scene.Build())
        return state.SkipWithError("widgets did not initialise");
    for (auto _ : state) {
        scene.manager->SetCameraUpdated(true);
        scene.manager->UpdateLayers();
        glFinish();
    }
}
BENCHMARK(BM_LayerUpdateTriadStale)->Unit(benchmark::kMicrosecond);

/// One drag step on the light widget (the widget alone is stale), then the layer update.
void BM_LayerUpdateLightWidgetStale(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    Scene scene;
    if (!scene.Build())
        return state.SkipWithError("widgets did not initialise");
    GUI::Event e;
    for (auto _ : state) {
        scene.widget.OnMouseDrag(&e, 1, 0);
        scene.manager->UpdateLayers();
        glFinish();
    }
}
BENCHMARK(BM_LayerUpdateLightWidgetStale)->Unit(benchmark::kMicrosecond);

/// Parsing the embedded cube model (12 triangles) into vertex records.
void BM_ObjReaderCubeModel(benchmark::State& state) {
    const ResourceData model = LoadFromResource("TrelvoGUI", "OBJ_3DWIDGETCUBE", "OBJ");
    if (!model)
        return state.SkipWithError("no cube model");
    std::vector<UI3DVertex> vertices;
    for (auto _ : state) {
        UI3DElementReader::LoadFromASCIIToVertexArray(model.data, model.size, vertices);
        benchmark::DoNotOptimize(vertices.data());
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(model.size));
}
BENCHMARK(BM_ObjReaderCubeModel);

} // namespace
