// Costs of the transform gizmo: redrawing it when the camera moved, and one drag step per handle kind.
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planecontrol.h>

#include <graphicsbase/camera.h>

#include "benchcontext.h"

#include <benchmark/benchmark.h>

#include <GL/glew.h>

#include <memory>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 720;

std::shared_ptr<Camera> MakeCamera() {
    auto camera = std::make_shared<Camera>();
    camera->SetPosition({3.f, 2.5f, 4.f});
    camera->SetViewport(kWidth, kHeight);
    camera->CalcMatrices();
    return camera;
}

/// One layer update in which only the 3D widgets are stale: the host reported a camera change.
void BM_LayerUpdateGizmoAndPlaneStale(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    auto camera = MakeCamera();
    auto manager = std::make_shared<GUI::GUIManager>();
    manager->Initialize();
    manager->Resize(kWidth, kHeight);
    ManipulatorControl gizmo(camera);
    PlaneControl plane(camera);
    if (!gizmo.Initialize() || !plane.Initialize())
        return state.SkipWithError("widgets did not initialise");
    plane.setPosition(-1.f, 0.f, 0.f);
    gizmo.Register(manager);
    plane.Register(manager);
    manager->UpdateLayers();
    glFinish();
    for (auto _ : state) {
        manager->SetCameraUpdated(true);
        manager->UpdateLayers();
        glFinish();
    }
}
BENCHMARK(BM_LayerUpdateGizmoAndPlaneStale)->Unit(benchmark::kMicrosecond);

/// One drag step (CPU only: the ray work, the frame updates and the signal) for handle `range(0)`;
/// with `range(1)` set, the gizmo follows the world axes and snaps moves, turns and scales.
void BM_DragStep(benchmark::State& state) {
    auto camera = MakeCamera();
    ManipulatorControl gizmo(camera);
    auto attached = std::make_shared<LocalFrame>();
    gizmo.attachFrame(attached);
    gizmo.transformationSignal.connect([] { return DRAW_SCENE; });
    if (state.range(1) != 0) {
        gizmo.setWorldAxes(true);
        gizmo.setPlaneHandles(true);
        gizmo.setTranslationIncrementOn(true);
        gizmo.setScaleIncrementOn(true);
        gizmo.setRotatationIncrementOn(true);
        gizmo.setTranslationIncrement(0.01f);
        gizmo.setScaleIncrement(0.01f);
        gizmo.setRotationIncrement(0.01f);
    }
    const unsigned handle = static_cast<unsigned>(state.range(0));
    GUI::Event press{kWidth / 2 + 40, kHeight / 2 - 30, 1, handle};
    gizmo.OnMouseDown(&press);
    int step = 0;
    for (auto _ : state) {
        // Back and forth, so scale and position stay in a sane range however long it runs.
        int d = (step++ & 1) ? -3 : 3;
        GUI::Event at{press.x + d, press.y, 1, handle};
        benchmark::DoNotOptimize(gizmo.OnMouseDrag(&at, d, d));
    }
    gizmo.OnMouseUp(&press);
}
BENCHMARK(BM_DragStep)->ArgsProduct({{1, 5, 7, 10, 13}, {0, 1}})->ArgNames({"handle", "snapWorld"});
} // namespace
