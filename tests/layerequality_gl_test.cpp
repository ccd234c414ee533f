// The fast layer update (barriers only where draws overlap, or framebuffer fetch where the context
// offers it; nothing flushed or finished) against the strict one (a barrier before every draw, every
// control flushed, the update finished): randomised sessions drive the same UI on three managers, and
// after every frame the layers of both fast ones must be identical to the strict one's.
#include "support/glfixture.h"
#include "support/layerpixels.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/chartcontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/fadeinoutsequence.h>
#include <trelvogui/gui/fadeinsequence.h>
#include <trelvogui/gui/fadeoutsequence.h>
#include <trelvogui/gui/guiclock.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/moveinsequence.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/scalesequence.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/histogramrenderer.h>
#include <trelvogui/legendcontrol.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/triadcontrol.h>
#include <trelvogui/xyplotcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/localframe.h>

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace GraphicsBase;

using namespace GUI::Controls;

namespace {

/// One copy of the UI on one manager. Both copies are built and driven identically.
struct World {
    // Each world is a host of its own: the cube and the light widget change the camera and the light.
    std::shared_ptr<Camera> camera = std::make_shared<Camera>();
    std::shared_ptr<DirectionalLight> light = std::make_shared<DirectionalLight>();
    std::shared_ptr<GUI::GUIManager> manager;
    std::vector<std::unique_ptr<Base>> owned;
    std::vector<Base*> roots;
    std::vector<Base*> scene; // the scene widgets, registered last
    std::vector<Base*> all;
    std::vector<Label*> labels;
    std::vector<Panel*> sizeable;
    std::vector<std::shared_ptr<LocalFrame>> frames;
    // A chart of a decimated signal and a histogram of it, over the panels.
    ChartControl* chart = nullptr;
    DataSetRenderer signal;
    HistogramRenderer histogram;
    int lastX = 0, lastY = 0, buttons = 0;

    World(bool strict, bool fetch, bool direct = false, bool compact = false)
        : manager(std::make_shared<GUI::GUIManager>()) {
        Orbit(320, 240, 0.3f);
        manager->SetCompactIdLayers(compact);
        manager->SetDirectSceneWidgets(direct);
        manager->SetStrictSynchronisation(strict);
        manager->SetFramebufferFetch(fetch);
        manager->Initialize();
        manager->Resize(320, 240);
        for (int p = 0; p < 3; ++p) {
            auto* panel = own(new Panel());
            panel->SetRectangle({10 + p * 95, 110 + p * 95, 20 + p * 40, 150 + p * 40});
            panel->SetDraggable(true);
            panel->SetSizeable(p != 1);
            if (p != 1)
                sizeable.push_back(panel);
            for (int b = 0; b < 3; ++b) {
                auto* button = own(new Button());
                button->SetRectangle({6, 90, 6 + b * 32, 32 + b * 32});
                button->SetText(L"Button " + std::to_wstring(p * 3 + b));
                panel->AddChild(button);
                labels.push_back(button->GetLabel());
            }
            auto* sw = own(new SwitchButton());
            sw->SetRectangle({60, 88, 104, 124});
            panel->AddChild(sw);
            panel->Register(manager);
            roots.push_back(panel);
        }
        auto* loose = own(new Label());
        loose->SetRectangle({100, 300, 200, 230});
        loose->SetText(L"Überlappung · overlap");
        loose->Register(manager);
        roots.push_back(loose);
        labels.push_back(loose);
        // Half-transparent steps over the panels: a draw that samples its target after draws that
        // may have read it through framebuffer fetch.
        auto* bar = own(new GUI::Controls::ColorBar());
        if (bar->Initialize())
            bar->UpdateColorMap({{200, 40, 40, 128}, {40, 200, 40, 90}, {40, 40, 200, 200}}, false);
        bar->SetRectangle({30, 290, 95, 115});
        bar->Register(manager);
        roots.push_back(bar);
        // An axis whose tick band crosses panels and the bar.
        auto* axis = own(new AxisControl());
        axis->SetOrientation(AxisControl::AlongYMin);
        if (axis->Initialize())
            axis->SetRectangle({20, 300, 60, 100});
        axis->Register(manager);
        roots.push_back(axis);
        // An XY plot, so that hovers over it take its readout-only redraw.
        chart = own(new XYPlotControl());
        std::vector<double> walk(20000);
        std::mt19937 rng(9);
        std::normal_distribution<double> step(0.0, 1.0);
        double v = 0.0;
        for (double& y : walk)
            y = v += step(rng);
        if (chart->Initialize() && signal.Initialize() && histogram.Initialize()) {
            signal.SetData(walk.data(), walk.size());
            histogram.SetValues(walk.data(), walk.size());
            histogram.SetColor({200, 120, 40, 255});
            chart->AddRenderer(&histogram);
            chart->AddRenderer(&signal);
        }
        // A legend beside it, whose histogram stands over the panels.
        auto* legend = own(new LegendControl());
        if (legend->Initialize()) {
            legend->SetColorMap({{30, 60, 200, 255}, {240, 240, 240, 255}, {200, 30, 30, 255}}, true);
            legend->SetRange(-60.0, 60.0);
            legend->SetValues(walk.data(), walk.size());
        }
        legend->SetTitle(L"Walk");
        legend->SetRectangle({220, 318, 10, 150});
        legend->Register(manager);
        roots.push_back(legend);
        chart->SetRectangle({30, 310, 120, 238});
        chart->FitToData();
        chart->Register(manager);
        roots.push_back(chart);
        // The scene widgets, drawn straight into the layers where they say they draw.
        // A plane widget whose outline reaches far beyond its gizmo, which mostly sits off the view.
        auto* gizmo = own(new PlaneControl(camera));
        auto frame = std::make_shared<LocalFrame>();
        frame->setPosition({2.2f, 0.3f, -0.5f});
        frames.push_back(frame);
        if (gizmo->Initialize()) {
            gizmo->attachFrame(frame);
            gizmo->getFrame().setScale({8.f, 8.f, 8.f});
        }
        gizmo->transformationSignal.connect([] { return DRAW_SCENE; });
        gizmo->Register(manager);
        auto* cube = own(new TriadControl(camera, light));
        cube->Initialize();
        cube->Register(manager);
        auto* lamp = own(new LightControl(light));
        lamp->Initialize();
        lamp->Register(manager);
        scene = {gizmo, cube, lamp};
        for (auto& c : owned)
            all.push_back(c.get());
    }
    ~World() {
        chart->RemoveRenderer(&signal);
        chart->RemoveRenderer(&histogram);
        owned.clear();
        manager.reset();
    }
    /// Keeps the scene widgets drawn after every other root (`onTop`) or before them, registering
    /// again what is out of place (a click raises the root it hits).
    void ArrangeScene(bool onTop) {
        std::vector<Base*> order;
        for (Base* c : manager->Controls())
            if (!c->HasParent())
                order.push_back(c);
        std::vector<Base*> wanted = order;
        const auto last = std::stable_partition(wanted.begin(), wanted.end(), [&](Base* c) {
            return (std::find(scene.begin(), scene.end(), c) != scene.end()) != onTop;
        });
        if (wanted != order)
            for (auto it = last; it != wanted.end(); ++it)
                manager->RemoveControl(*it), (*it)->Unregister(), (*it)->Register(manager);
    }
    /// The host's camera on a circle round the scene, looking at its centre.
    void Orbit(int w, int h, float angle) {
        camera->SetViewport(w, h);
        camera->SetPosition({5.f * std::sin(angle), 1.5f, 5.f * std::cos(angle)});
        camera->CalcMatrices();
    }
    template <class T> T* own(T* c) {
        owned.emplace_back(c);
        return c;
    }
    void Event(int kind, int x, int y) {
        VX_UI::MouseEvent e;
        e.x = x;
        e.y = y;
        e.prevX = lastX;
        e.prevY = lastY;
        if (kind == 0) {
            e.buttons = buttons;
            manager->mouseMoveEvent(&e);
        } else if (kind == 1) {
            e.buttons = buttons = 1;
            manager->mousePressEvent(&e);
        } else {
            e.buttons = buttons = 0;
            manager->mouseReleaseEvent(&e);
        }
        lastX = x;
        lastY = y;
    }
};

class LayerEqualityTest : public trelvo::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        GUI::Clock::SetSource([this] { return now; });
    }
    void TearDown() override {
        GUI::Clock::SetSource({});
        GLTest::TearDown();
    }
    uint64_t now = 1000;
};

} // namespace

/// Drives one randomised session on every world alike and calls `check` after each frame's update.
/// Hovers and clicks most of the time (they take the partial paths), camera and light changes often
/// (the scene widgets redraw where they say they draw); the rest now and then. An orbiting session
/// also turns the camera a little every frame, as a host does while the user orbits.
void RunSession(const std::vector<World*>& worlds, unsigned seed, int frames, bool orbiting, uint64_t& now,
                const std::function<void(int frame, int op, int width, int height)>& check) {
    std::mt19937 rng(seed);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    auto both = [&](auto&& apply) {
        for (World* w : worlds)
            apply(*w);
    };
    int width = 320, height = 240;
    for (int frame = 0; frame < frames; ++frame) {
        const int draw = pick(0, 26);
        const int op = draw < 10 ? draw % 2 : draw < 14 ? 2 : draw < 17 ? 13 : draw - 14;
        const int x = pick(0, width), y = pick(0, height);
        const int which = pick(0, 1000);
        if (orbiting)
            both([&](World& w) {
                w.Orbit(width, height, 0.3f + 0.05f * static_cast<float>(frame));
                w.manager->SetCameraUpdated(true);
            });
        switch (op) {
        case 0: // hover
            both([&](World& w) { w.Event(0, x, y); });
            break;
        case 1: // hover, then along the plot's data (its readout and marker redraw on their own)
            both([&](World& w) {
                w.Event(0, x, y);
                for (int step = 0; step < 3; ++step)
                    w.Event(0, 102 + (x + 5 * step) % 194, 240 - 168 - y % 44);
            });
            break;
        case 2: { // click
            both([&](World& w) {
                w.Event(0, x, y);
                w.Event(1, x, y);
                w.Event(2, x, y);
            });
            break;
        }
        case 3: { // drag (a panel, or whatever is under the pointer)
            const int dx = pick(-40, 40), dy = pick(-40, 40);
            both([&](World& w) {
                w.Event(0, x, y);
                w.Event(1, x, y);
                w.Event(0, x + dx / 2, y + dy / 2);
                w.Event(0, x + dx, y + dy);
            });
            now += 300;
            both([&](World& w) { w.Event(2, x + dx, y + dy); });
            break;
        }
        case 4: { // grip resize
            const int dx = pick(-30, 60), dy = pick(-30, 60);
            both([&](World& w) {
                Panel* p = w.sizeable[static_cast<size_t>(which) % w.sizeable.size()];
                const auto& r = p->GetRectangle();
                int gx = r.xMax - 4, gy = height - (r.yMin + 4);
                w.Event(0, gx, gy);
                w.Event(1, gx, gy);
                w.Event(0, gx + dx, gy + dy);
                w.Event(0, gx + dx, gy + dy);
            });
            now += 300;
            both([&](World& w) { w.Event(2, w.lastX, w.lastY); });
            break;
        }
        case 5: // show or hide
            both([&](World& w) {
                Base* c = w.all[static_cast<size_t>(which) % w.all.size()];
                c->SetVisible(!c->Visible());
            });
            break;
        case 6: // enable or disable
            both([&](World& w) {
                Base* c = w.all[static_cast<size_t>(which) % w.all.size()];
                c->SetEnabled(!c->Enabled());
            });
            break;
        case 7: // text
            both([&](World& w) {
                w.labels[static_cast<size_t>(which) % w.labels.size()]->SetText(L"Text " +
                                                                                std::to_wstring(frame));
            });
            break;
        case 8: { // an animation of each preset in turn
            const int preset = frame % 5;
            both([&](World& w) {
                Base* root = w.roots[static_cast<size_t>(which) % w.roots.size()];
                GUI::Animation::Sequence* s = nullptr;
                switch (preset) {
                case 0:
                    s = new GUI::Animation::FadeInSequence(root, 0.2f);
                    break;
                case 1:
                    s = new GUI::Animation::FadeOutSequence(root, 0.2f);
                    break;
                case 2:
                    s = new GUI::Animation::FadeInOutSequence(root, 0.2f);
                    break;
                case 3:
                    s = new GUI::Animation::MoveInSequence(root, 0.2f);
                    break;
                default:
                    s = new GUI::Animation::ScaleSequence(root, 0.2f);
                    break;
                }
                s->Start();
                if (!w.manager->AddAnimation(s))
                    delete s;
            });
            break;
        }
        case 9: // removal and registration again
            both([&](World& w) {
                Base* root = w.roots[static_cast<size_t>(which) % w.roots.size()];
                if (root->Registered())
                    w.manager->RemoveControl(root), root->Unregister();
                else
                    root->Register(w.manager);
            });
            break;
        case 10: // view resize
            width = pick(160, 360);
            height = pick(120, 260);
            both([&](World& w) {
                w.Orbit(width, height, 0.3f);
                w.manager->Resize(width, height);
                w.manager->SetCameraUpdated(true);
            });
            break;
        case 13: // the host orbits its camera, or turns its light
            both([&](World& w) {
                if (which % 2 == 0) {
                    w.Orbit(width, height, static_cast<float>(which) * 0.006f);
                    w.manager->SetCameraUpdated(true);
                } else {
                    w.light->position = {std::cos(static_cast<float>(which)), 1.f,
                                         std::sin(static_cast<float>(which))};
                    w.manager->SetLightUpdated(true);
                }
            });
            break;
        case 11: // the chart pans and zooms
            both([&](World& w) {
                const double span = (w.chart->XMax() - w.chart->XMin()) * (0.5 + (which % 7) * 0.2);
                const double from = (which % 13) * 1500.0 - 2000.0;
                w.chart->SetXRange(from, from + span);
            });
            break;
        default: // time passes: animations advance
            break;
        }
        if (frame % 30 == 29) // bring everything back now and then, so the sessions keep drawing
            both([&](World& w) {
                for (Base* c : w.all)
                    c->SetVisible(true);
                for (Base* root : w.roots)
                    root->Register(w.manager);
            });
        if (orbiting) // scene widgets over the rest for a while, then under it
            both([&](World& w) { w.ArrangeScene(frame / 40 % 2 == 0); });
        now += 40;
        both([&](World& w) { w.manager->UpdateLayers(); });
        check(frame, op, width, height);
    }
}

TEST_F(LayerEqualityTest, FastAndStrictUpdatesProduceIdenticalLayers) {
    // The compact id layout too, from the start with framebuffer fetch and switched on in the middle
    // of the session with barriers (every cached id layer replaced while the UI is in use).
    World strict(true, false), barriers(false, false), fetch(false, true),
        compactFetch(false, true, false, true), compactLater(false, false);
    const int kFrames = 240;
    int drawnFrames = 0;
    const std::pair<World*, const char*> fast[] = {{&barriers, "barriers"},
                                                   {&fetch, "fetch"},
                                                   {&compactFetch, "compact-fetch"},
                                                   {&compactLater, "compact-later"}};
    RunSession({&strict, &barriers, &fetch, &compactFetch, &compactLater}, 4242u, kFrames, false, now,
               [&](int frame, int op, int width, int height) {
                   if (frame == kFrames / 3)
                       compactLater.manager->SetCompactIdLayers(true);
                   auto a = trelvo::test::ReadLayers(*strict.manager, width, height);
                   for (auto [world, name] : fast) {
                       auto b = trelvo::test::ReadLayers(*world->manager, width, height);
                       bool same = a.color == b.color && a.ids == b.ids;
                       if (!same) {
                           trelvo::test::SaveLayer(a, "equality-strict");
                           trelvo::test::SaveLayer(b, std::string("equality-") + name);
                       }
                       ASSERT_TRUE(same)
                           << name << ": frame " << frame << " after operation " << op << " differs";
                   }
                   drawnFrames +=
                       std::any_of(a.ids.begin(), a.ids.end(), [](uint32_t id) { return id != 0; }) ? 1 : 0;
               });
    EXPECT_GT(drawnFrames, kFrames * 3 / 4) << "the sessions compare drawn layers, not empty ones";
    for (World* compact : {&compactFetch, &compactLater}) {
        glBindTexture(GL_TEXTURE_2D, compact->manager->GetIdLayer());
        GLint format = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
        EXPECT_EQ(format, GL_RG32UI) << "the compact sessions ran on two-word id layers";
    }
    glBindTexture(GL_TEXTURE_2D, 0);
}

/// The picture a host sees: the manager's frame drawn over a patterned frame of the host's own
/// (an off-screen one, so that the result goes back where the host had it bound).
std::vector<uint8_t> HostPicture(GUI::GUIManager& manager, int width, int height) {
    GLuint texture = 0, framebuffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    glViewport(0, 0, width, height);
    glClearColor(0.6f, 0.1f, 0.4f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, width / 2, height);
    glClearColor(0.2f, 0.7f, 0.3f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    manager.Draw();
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
    return pixels;
}

/// Checks a manager drawing its scene widgets into the host's frame against the plain one: picks
/// while the ids are stale (one pixel brought up to date each), then the whole id layer, then the
/// picture over a host frame, colour within rounding (the alpha the composite leaves in the host's
/// frame is A * A + a (1 - A) of the layer's accumulated A, which drawing piece by piece does not
/// reproduce). Returns whether the colour layers differ, as they do while widgets are drawn directly.
bool ExpectPlainPicksAndPicture(GUI::GUIManager& plain, GUI::GUIManager& direct, int width, int height,
                                unsigned seed, const std::string& at) {
    std::mt19937 rng(seed);
    for (int i = 0; i < 8; ++i) {
        const int x = std::uniform_int_distribution<int>(0, width - 1)(rng);
        const int y = std::uniform_int_distribution<int>(0, height - 1)(rng);
        unsigned a[2] = {}, b[2] = {};
        plain.HitDetect(x, y, &a[0], &a[1]);
        direct.HitDetect(x, y, &b[0], &b[1]);
        EXPECT_TRUE(a[0] == b[0] && a[1] == b[1]) << at << ", pick at " << x << ", " << y;
    }
    direct.GetIdLayer();
    auto expected = trelvo::test::ReadLayers(plain, width, height);
    auto got = trelvo::test::ReadLayers(direct, width, height);
    EXPECT_TRUE(expected.ids == got.ids) << at;
    auto want = HostPicture(plain, width, height);
    auto have = HostPicture(direct, width, height);
    size_t worst = 0;
    for (size_t i = 0; i < want.size(); ++i)
        if (i % 4 != 3 && std::abs(want[i] - have[i]) > std::abs(want[worst] - have[worst]))
            worst = i;
    if (std::abs(want[worst] - have[worst]) > 3) {
        trelvo::test::WritePng(trelvo::test::OutputDir() + "/direct-plain.png", want.data(), width, height);
        trelvo::test::WritePng(trelvo::test::OutputDir() + "/direct-direct.png", have.data(), width, height);
    }
    EXPECT_LE(std::abs(want[worst] - have[worst]), 3)
        << at << ", at " << worst / 4 % width << ", " << worst / 4 / width << " channel " << worst % 4;
    return expected.color != got.color;
}

TEST_F(LayerEqualityTest, SceneWidgetsDrawnIntoTheHostFrameMatchThePlainUpdate) {
    // Orbiting sessions: the camera turns every frame while the usual session goes on, the scene
    // widgets drawn after the rest for 40 frames, then before it. Drawn straight into the host's frame
    // (over the composite; under it where a root drawing text into the layers does not cover them),
    // with their ids brought up to date only when read, they must pick exactly as the plain update and
    // show its picture, also after the setting is switched off and on again.
    constexpr int kFrames = 160;
    World plain(true, false), direct(false, true, true, true),
        directSampling(false, false, true); // the first on compact id layers
    int directFrames = 0;
    RunSession(
        {&plain, &direct, &directSampling}, 777u, kFrames, true, now, [&](int frame, int op, int w, int h) {
            for (World* world : {&direct, &directSampling})
                directFrames += ExpectPlainPicksAndPicture(
                                    *plain.manager, *world->manager, w, h, static_cast<unsigned>(frame),
                                    std::string(world == &direct ? "fetch" : "sampling") + ": frame " +
                                        std::to_string(frame) + " after operation " + std::to_string(op))
                                    ? 1
                                    : 0;
            ASSERT_FALSE(HasFailure());
            // The sampling world turns the setting off for a while: its widgets go back into the layers.
            if (frame == 60 || frame == 100)
                directSampling.manager->SetDirectSceneWidgets(frame == 100);
        });
    EXPECT_GT(directFrames, kFrames / 2) << "the sessions draw scene widgets into the host's frame";
}

TEST_F(LayerEqualityTest, TheCompositeLimitedToTheOverlayShowsTheSamePicture) {
    // The same panels composited twice over a patterned host frame: once limited to what they cover,
    // once over the whole view (an empty root without a cached layer forces that). One panel, two
    // apart (two areas) and three overlapping (merged, no pixel blended twice).
    auto picture = [&](bool whole, bool upsideDown, const std::vector<size_t>& shown) {
        World w(false, true);
        w.manager->SetUpsideDown(upsideDown);
        Base empty;
        if (whole)
            empty.Register(w.manager);
        // Panels only; the label root would force the whole view (it has no cached layer).
        for (size_t i = 0; i < w.roots.size(); ++i)
            w.roots[i]->SetVisible(std::find(shown.begin(), shown.end(), i) != shown.end());
        w.roots[0]->GetLocalFrameAnimation()->setPosition(glm::vec3(17.f, -9.f, 0.f));
        w.roots[0]->SetNeedsRedraw(true);
        w.manager->UpdateLayers();
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glViewport(0, 0, 320, 240);
        glClearColor(0.6f, 0.1f, 0.4f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_SCISSOR_TEST);
        glScissor(0, 0, 160, 240); // a host scissor state the composite must put back
        glClearColor(0.2f, 0.5f, 0.3f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT);
        glDisable(GL_SCISSOR_TEST);
        w.manager->Draw();
        GLint box[4] = {};
        glGetIntegerv(GL_SCISSOR_BOX, box);
        EXPECT_EQ(box[2], 160) << "the host's scissor box is restored";
        EXPECT_FALSE(glIsEnabled(GL_SCISSOR_TEST));
        return ReadColorRegion(0, 0, 320, 240);
    };
    const std::vector<std::vector<size_t>> panelSets = {{0}, {0, 2}, {0, 1, 2}};
    for (const auto& shown : panelSets)
        for (bool upsideDown : {false, true}) {
            auto limited = picture(false, upsideDown, shown);
            auto whole = picture(true, upsideDown, shown);
            int differing = 0, fx = -1, fy = -1;
            for (size_t i = 0; i < limited.size(); i += 4)
                if (std::memcmp(&limited[i], &whole[i], 4) != 0) {
                    if (differing++ == 0) {
                        fx = static_cast<int>(i / 4 % 320);
                        fy = static_cast<int>(i / 4 / 320);
                    }
                }
            EXPECT_EQ(differing, 0) << shown.size() << " panels, " << (upsideDown ? "upside down" : "upright")
                                    << "; first at " << fx << ", " << fy;
        }
}

TEST_F(LayerEqualityTest, SceneWidgetsRedrawnWhereTheySayTheyDrawMatchThePlainUpdate) {
    // A view larger than the gizmo's square, with a plane outline reaching well beyond it, and a
    // panel: as the camera orbits and the widget is dragged, the fast update redraws only the
    // widget's old and new footprints, and the layers must still be the plain update's. Drawn
    // straight into the host's frame, under the panel or over it, the widget picks and looks the same.
    constexpr int kW = 800, kH = 600;
    struct Scene {
        std::shared_ptr<Camera> camera = std::make_shared<Camera>();
        std::shared_ptr<GUI::GUIManager> manager = std::make_shared<GUI::GUIManager>();
        Panel panel;
        std::unique_ptr<PlaneControl> plane;
        Scene(bool strict, bool direct, bool planeFirst) {
            manager->SetStrictSynchronisation(strict);
            manager->SetDirectSceneWidgets(direct);
            manager->Initialize();
            manager->Resize(kW, kH);
            Orbit(0.f);
            panel.SetRectangle({40, 760, 40, 560});
            auto button = std::make_unique<Button>();
            button->SetRectangle({20, 200, 20, 60});
            button->SetText(L"Over the plane");
            panel.AddChild(button.release()); // the panel deletes its children
            plane = std::make_unique<PlaneControl>(camera);
            if (plane->Initialize())
                plane->getFrame().setScale({5.f, 5.f, 5.f});
            plane->transformationSignal.connect([] { return DRAW_SCENE; });
            if (planeFirst)
                plane->Register(manager);
            panel.Register(manager);
            if (!planeFirst)
                plane->Register(manager);
        }
        ~Scene() {
            plane.reset();
            manager.reset();
        }
        void Orbit(float angle) {
            camera->SetViewport(kW, kH);
            camera->SetPosition({6.f * std::sin(angle), 1.f, 6.f * std::cos(angle)});
            camera->CalcMatrices();
            if (manager)
                manager->SetCameraUpdated(true);
        }
    };
    Scene strict(true, false, false), fast(false, false, false), over(false, true, false);
    Scene strictUnder(true, false, true), under(false, true, true);
    int directSteps = 0;
    for (int step = 0; step < 24; ++step) {
        for (Scene* s : {&strict, &fast, &over, &strictUnder, &under}) {
            s->Orbit(0.13f * static_cast<float>(step));
            if (step % 6 == 5) // the widget moves without the camera
                s->plane->getFrame().setPosition({0.1f * static_cast<float>(step % 4), 0.f, 0.f});
            s->plane->SetNeedsRedraw(true);
            s->manager->UpdateLayers();
        }
        auto a = trelvo::test::ReadLayers(*strict.manager, kW, kH);
        auto b = trelvo::test::ReadLayers(*fast.manager, kW, kH);
        ASSERT_TRUE(a.color == b.color && a.ids == b.ids) << "step " << step;
        const std::string at = "step " + std::to_string(step);
        directSteps +=
            ExpectPlainPicksAndPicture(*strict.manager, *over.manager, kW, kH, step, at + ", over");
        directSteps +=
            ExpectPlainPicksAndPicture(*strictUnder.manager, *under.manager, kW, kH, step, at + ", under");
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_EQ(directSteps, 2 * 23) << "from the second update on (the first learns where the widget draws)";
}
