// Costs of the view-orientation cube and the light widget: a layer update with one of them stale, and
// reading the cube's model.
#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
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

#include <cstdint>
#include <memory>
#include <string>
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

/// The cube and the light widget beside the peer benchmark's 100 buttons (four panels of 25), on a
/// clock the benchmark advances by one 16 ms frame per iteration.
struct ButtonScene : Scene {
    std::vector<std::unique_ptr<GUI::Controls::Panel>> panels;
    std::vector<std::unique_ptr<GUI::Controls::Button>> buttons;
    uint64_t now = 1000;

    bool Build() {
        GUI::Clock::SetSource([this] { return now; });
        if (!Scene::Build())
            return false;
        for (int p = 0; p < 4; ++p) {
            auto box = std::make_unique<GUI::Controls::Panel>();
            box->SetRectangle(
                {450 + 200 * (p % 2), 646 + 200 * (p % 2), 200 + 200 * (p / 2), 396 + 200 * (p / 2)});
            for (int i = 0; i < 25; ++i) {
                auto button = std::make_unique<GUI::Controls::Button>();
                const int x = 4 + 38 * (i % 5), y = 4 + 38 * (i / 5);
                button->SetRectangle({x, x + 34, y, y + 20});
                button->GetLabel()->SetFontSize(13);
                button->SetText(L"B" + std::to_wstring(25 * p + i));
                box->AddChild(button.get());
                buttons.push_back(std::move(button));
            }
            box->Register(manager);
            panels.push_back(std::move(box));
        }
        manager->UpdateLayers();
        glFinish();
        return true;
    }
    ~ButtonScene() { GUI::Clock::SetSource({}); }
};

/// One frame: the clock moves on 16 ms, the layers are brought up to date and finished.
void Frame(ButtonScene& scene) {
    scene.now += 16;
    scene.manager->UpdateLayers();
    glFinish();
}

/// The three kinds of frame compared in one run (ratios, the machine being noisy): the host moved its
/// camera (the cube and the widgets that follow it are redrawn), the cube flies the camera to a view
/// (which must cost the same), and a panel moves under an animation (the whole overlay is redrawn).
void BM_FrameWith100Buttons(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    ButtonScene scene;
    if (!scene.Build())
        return state.SkipWithError("widgets did not initialise");
    const int kind = static_cast<int>(state.range(0));
    scene.triad.SetFlightTime(10.f);
    scene.triad.SetEdgesAndCorners(true);
    GUI::Event click;
    unsigned part = TriadControl::kCornerPlusXPlusYPlusZ;
    for (auto _ : state) {
        if (kind == 0) {
            scene.camera->SetPosition(scene.camera->Position() * 1.0001f);
            scene.camera->CalcMatrices();
        } else if (kind == 1 && !scene.triad.Flying()) {
            click.sid = part = part == TriadControl::kCornerPlusXPlusYPlusZ
                                   ? TriadControl::kCornerMinusXMinusYMinusZ
                                   : TriadControl::kCornerPlusXPlusYPlusZ;
            scene.triad.OnClick(&click);
        } else if (kind == 2 && !scene.manager->NeedsRedrawForAnimation()) {
            auto* slide = new GUI::Animation::Sequence(scene.panels[0].get(), 100.f);
            slide->Start();
            scene.manager->AddAnimation(slide);
        }
        Frame(scene);
    }
    state.SetLabel(kind == 0 ? "camera moved" : kind == 1 ? "cube flight" : "panel animation");
}
BENCHMARK(BM_FrameWith100Buttons)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMicrosecond);

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
