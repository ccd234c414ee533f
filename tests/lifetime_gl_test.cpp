// Hosts cannot crash the overlay: controls deleted from inside their own handlers, trees moved between
// managers, screen handlers that vanish, extreme geometry, and a long seeded input soak.
#include "support/overlayfixture.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/fadeinsequence.h>
#include <trelvogui/gui/guiinputmanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/probecontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>

#include <graphicsbase/graphicsscene.h>

#include <EGL/egl.h>
#include <GL/glew.h>

#include <array>

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <random>
#include <set>

using namespace GraphicsBase;

using GUI::Controls::Base;
using GUI::Controls::Button;
using GUI::Controls::Panel;

namespace {
class LifetimeTest : public trelvo::test::OverlayTest {
protected:
    /// Press at (x0, y0), drag to (x1, y1) with the button held, release late (no click).
    void Drag(int x0, int y0, int x1, int y1) {
        Move(x0, 256 - y0, x0, 256 - y0);
        Press(x0, 256 - y0);
        Move(x1, 256 - y1, x0, 256 - y0, 1);
        manager->UpdateLayers();
        now += 1000;
        Release(x1, 256 - y1);
    }
};

/// A sequence whose step runs host code, the way a host's own sequence class would.
class CallbackSequence : public GUI::Animation::Sequence {
public:
    CallbackSequence(Base* control, std::function<void()> step)
        : Sequence(control, 1.f), step_(std::move(step)) {}
    void Update() override {
        Sequence::Update();
        if (step_)
            step_();
    }

private:
    std::function<void()> step_;
};
} // namespace

TEST_F(LifetimeTest, HandlersMayDeleteTheControlThatCalledThem) {
    // "Close": the button deletes itself when clicked.
    auto* close = new Button();
    close->SetRectangle({10, 90, 10, 40});
    close->Register(manager);
    close->ClickedSignal.connect([&] { delete close; });
    manager->UpdateLayers();
    Click(50, 25);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(50, 25), 0u);

    // "OK" in a dialog: the click deletes the dialog, which deletes the button it owns.
    struct Dialog : Panel {
        Dialog() {
            ok = new Button();
            ok->SetRectangle({10, 90, 10, 40});
            AddChild(ok);
        }
        ~Dialog() override { delete ok; }
        Button* ok;
    };
    auto* dialog = new Dialog();
    dialog->SetRectangle({100, 240, 100, 200});
    dialog->Register(manager);
    dialog->ok->ClickedSignal.connect([&] { delete dialog; });
    manager->UpdateLayers();
    Click(150, 125);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(150, 125), 0u);

    // Deleted on entering, on pressing, on switching, and by a drag of its own grip.
    auto* entered = new Button();
    entered->SetRectangle({10, 90, 100, 140});
    entered->Register(manager);
    entered->MouseEnterSignal.connect([&] { delete entered; });
    auto* pressed = new Button();
    pressed->SetRectangle({10, 90, 150, 190});
    pressed->Register(manager);
    pressed->MouseDownSignal.connect([&](GUI::Event*) { delete pressed; });
    auto* toggled = new GUI::Controls::SwitchButton();
    toggled->SetRectangle({10, 38, 200, 228});
    toggled->Register(manager);
    toggled->SetCallback([&] {
        delete toggled;
        return DRAW_SCENE;
    });
    auto* resized = new Panel();
    resized->SetRectangle({120, 200, 10, 90});
    resized->SetSizeable(true);
    resized->Register(manager);
    resized->RectangleChangedSignal.connect([&] { delete resized; });
    manager->UpdateLayers();
    Move(50, 256 - 120, 0, 0);
    Click(50, 170);
    Click(24, 214);
    Drag(196, 14, 230, 5);
    manager->UpdateLayers();
    for (auto [x, y] : {std::pair{50, 120}, {50, 170}, {24, 214}, {160, 50}})
        EXPECT_EQ(PidAt(x, y), 0u) << x << ", " << y;
    EXPECT_TRUE(manager->Controls().empty());
}

TEST_F(LifetimeTest, DeletingPartsOfATreeLeavesTheRestWhole) {
    Panel parent;
    parent.SetRectangle({10, 100, 10, 100});
    parent.SetDraggable(true);
    auto* child = new Button();
    child->SetRectangle({10, 80, 10, 40});
    parent.AddChild(child);
    parent.Register(manager);
    manager->UpdateLayers();

    // A child deleted while still in its parent's list is gone from the list and the registry.
    delete child;
    EXPECT_TRUE(parent.Children()->empty());
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(50, 30), parent.GetId());

    // A parent deleted while its child is pressed: the drag that follows reaches nothing.
    auto* owner = new Panel();
    owner->SetRectangle({120, 240, 120, 240});
    Button kept;
    kept.SetRectangle({5, 60, 5, 30});
    owner->AddChild(&kept);
    owner->Register(manager);
    manager->UpdateLayers();
    Move(140, 256 - 135, 0, 0);
    Press(140, 256 - 135);
    delete owner;
    EXPECT_FALSE(kept.HasParent());
    EXPECT_FALSE(kept.Registered()) << "a freed child leaves the registry with its parent";
    Move(160, 256 - 160, 140, 256 - 135, 1);
    Release(160, 256 - 160);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(140, 135), 0u);
}

TEST_F(LifetimeTest, AControlBelongsToOneManagerAtATime) {
    auto other = std::make_shared<GUI::GUIManager>();
    ASSERT_TRUE(other->Initialize());
    other->Resize(256, 256);

    // Registered here, then placed under a panel of the other manager: it moves with its new tree and
    // this manager forgets it, so a click here cannot reach it by its old id.
    Button moved;
    moved.SetRectangle({10, 90, 10, 40});
    moved.Register(manager);
    const unsigned oldId = moved.GetId();
    Panel there;
    there.SetRectangle({0, 200, 0, 200});
    there.Register(other);
    there.AddChild(&moved);
    EXPECT_EQ(moved.Manager(), other.get());
    EXPECT_EQ(manager->Find(oldId), nullptr);
    EXPECT_EQ(other->Find(moved.GetId()), &moved);

    // Registered with one, then with the other, then deleted: neither keeps a dangling entry.
    auto* hopper = new Button();
    hopper->SetRectangle({100, 150, 100, 150});
    hopper->Register(manager);
    hopper->Register(other);
    EXPECT_TRUE(manager->Controls().empty());
    delete hopper;
    manager->UpdateLayers();
    other->UpdateLayers();
    EXPECT_EQ(other->Controls().size(), 3u) << "the panel, the moved button and its label";

    // An unregistered control no longer marks its old manager (which may be gone by then).
    Button loose;
    loose.Register(other);
    loose.Unregister();
    other->UpdateLayers();
    ASSERT_FALSE(other->NeedsRedraw());
    loose.SetRectangle({1, 2, 1, 2});
    EXPECT_FALSE(other->NeedsRedraw());
    there.RemoveChild(&moved);
    other.reset();
    loose.SetNeedsRedraw(true);
}

TEST_F(LifetimeTest, AnimationsEndWithTheirControlEvenFromInsideASequence) {
    auto* faded = new Button();
    faded->SetRectangle({10, 90, 10, 40});
    faded->Register(manager);
    auto* fade = new GUI::Animation::FadeInSequence(faded, 1.f);
    fade->Start();
    ASSERT_TRUE(manager->AddAnimation(fade));
    EXPECT_FALSE(manager->AddAnimation(fade)) << "the same sequence twice";
    delete faded; // cancels and deletes its sequence
    now += 100;
    manager->UpdateLayers();

    // A sequence whose step deletes its own control, and a second one on the same control.
    auto* doomed = new Button();
    doomed->SetRectangle({10, 90, 60, 90});
    doomed->Register(manager);
    auto* first = new CallbackSequence(doomed, [&] { delete doomed; });
    auto* second = new CallbackSequence(doomed, {});
    first->Start();
    second->Start();
    ASSERT_TRUE(manager->AddAnimation(first));
    ASSERT_TRUE(manager->AddAnimation(second));
    now += 100;
    manager->UpdateLayers();
    now += 100;
    manager->UpdateLayers();
    EXPECT_FALSE(manager->NeedsRedrawForAnimation());
    EXPECT_EQ(PidAt(50, 75), 0u);
}

TEST_F(LifetimeTest, ScreenHandlersMayVanishWhileRegisteredOrDuringADispatch) {
    GraphicsScene scene;
    GUI::GUIInputManager input(scene);
    struct Counting : InputHandler {
        std::function<void()> onPress;
        int presses = 0;
        DrawFlags mousePressEvent(VX_UI::MouseEvent*) override {
            ++presses;
            if (onPress)
                onPress();
            return DRAW_NOTHING; // let the next handler see it too
        }
    };
    auto first = std::make_unique<Counting>();
    auto second = std::make_unique<Counting>();
    auto third = std::make_unique<Counting>();
    input.addScreenHandler(first.get());
    input.addScreenHandler(second.get());
    const unsigned thirdId = input.addScreenHandler(third.get());
    {
        Counting gone;
        input.addScreenHandler(&gone);
    } // destroyed while registered
    EXPECT_EQ(input.GetScreenHandlers().size(), 3u);

    // The first handler removes the third and destroys the second mid-dispatch: neither is called.
    Counting* thirdRaw = third.get();
    first->onPress = [&] {
        input.removeScreenHandler(static_cast<int>(thirdId));
        second.reset();
    };
    input.mousePressEvent(5, 5, 5, 5, 1, 0);
    EXPECT_EQ(first->presses, 1);
    EXPECT_EQ(thirdRaw->presses, 0);
    EXPECT_EQ(input.GetScreenHandlers().size(), 1u);
}

TEST_F(LifetimeTest, ExtremeGeometryIsClampedAndAMinimisedViewDrawsNothing) {
    Panel panel;
    panel.SetRectangle({20, 120, 20, 120});
    panel.SetSizeable(true);
    panel.Register(manager);
    manager->UpdateLayers();
    // The grip to the integer limits (what a NaN pointer position becomes) and back.
    for (int target : {INT_MAX, INT_MIN, 1 << 30}) {
        Move(116, 256 - 24, 116, 256 - 24);
        Press(116, 256 - 24);
        // The grip measures from the event before the current one: two moves reach the target.
        Move(target, target, 116, 256 - 24, 1);
        Move(target, target, target, target, 1);
        manager->UpdateLayers();
        now += 1000;
        Release(target, target);
        EXPECT_LE(panel.GetRectangle().Width(), manager->GetMaxLayerSize());
        EXPECT_LE(panel.GetRectangle().Height(), manager->GetMaxLayerSize());
    }
    EXPECT_TRUE(log->Contains("is clamped"));
    // Dragged under a pointer far outside the view, or placed past the limits, a panel is stopped by
    // moving it: it keeps its size and comes back whole.
    panel.SetDraggable(true);
    for (int target : {1 << 30, -(1 << 30)}) {
        panel.SetRectangle({20, 120, 20, 120});
        manager->UpdateLayers();
        Drag(60, 60, target, target);
        EXPECT_EQ(panel.GetRectangle().Width(), 100);
        EXPECT_EQ(panel.GetRectangle().Height(), 100);
        EXPECT_EQ(std::abs(panel.GetRectangle().xMin + panel.GetRectangle().xMax), 2 * (1 << 24) - 100);
    }
    panel.SetRectangle({(1 << 24) - 10, (1 << 24) + 90, INT_MIN, INT_MIN + 50});
    EXPECT_EQ(panel.GetRectangle(),
              (GUI::Geometry::Rectangle{(1 << 24) - 100, 1 << 24, -(1 << 24), -(1 << 24) + 50}));
    panel.SetDraggable(false);
    panel.SetRectangle({20, 120, 20, 120});

    // Minimised: no layers, no drawing, no picking, no GL error; the next real size restores it all.
    manager->Resize(0, 0);
    manager->UpdateLayers();
    manager->Draw();
    EXPECT_EQ(PidAt(50, 50), 0u);
    EXPECT_EQ(manager->GetLayerFramebuffer(), 0u);
    manager->Resize(-5, 300);
    EXPECT_EQ(manager->GetLayerFramebuffer(), 0u);
    manager->Resize(256, 256);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(50, 50), panel.GetId());

    // Text beyond the texture limit is refused with a message instead of a GL error.
    GUI::Controls::Label label;
    label.SetRectangle({0, 200, 0, 40});
    label.SetText(std::wstring(100000, L'W'));
    label.Register(manager);
    testing::internal::CaptureStdout();
    manager->UpdateLayers();
    label.SetFontSize(20000);
    manager->UpdateLayers();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("exceed the texture limit"), std::string::npos) << out;
}

TEST_F(LifetimeTest, DataControlsRefuseWhatTheyCannotHoldAndSurviveTheirOwnSignals) {
    testing::internal::CaptureStdout();
    // The probe box before Initialize: every operation answers, with a message, and touches nothing.
    {
        ProbeControl probe(manager);
        probe.SetName(L"a");
        probe.SetCollapsedText(L"b");
        probe.Hide();
        probe.Show();
        probe.SetLocation(5, 5);
        EXPECT_EQ(probe.GetName(), L"");
        EXPECT_EQ(probe.GetCollapsedText(), L"");
        EXPECT_FALSE(probe.IsVisible());
        EXPECT_EQ(probe.GetLocation(), (std::array<int, 2>{0, 0}));
        EXPECT_EQ(probe.GetSize(), (std::array<int, 2>{0, 0}));
        ASSERT_TRUE(probe.Initialize());
        probe.SetName(L"after");
        EXPECT_EQ(probe.GetName(), L"after");
    }
    // An axis laid out after its rectangle changed: a handler may delete it first.
    auto* axis = new AxisControl();
    axis->Register(manager);
    axis->RectangleChangedSignal.connect([&] { delete axis; });
    axis->SetRectangle({10, 200, 10, 40});
    EXPECT_TRUE(manager->Controls().empty());
    // The same when a resize moves the roots: the others still move.
    Panel first, last;
    first.Register(manager);
    axis = new AxisControl();
    axis->Register(manager);
    axis->RectangleChangedSignal.connect([&] { delete axis; });
    last.Register(manager);
    manager->Resize(256, 200);
    EXPECT_EQ(manager->Controls().size(), 2u);
    EXPECT_EQ(last.GetRectangle().yMin, first.GetRectangle().yMin);
    manager->Resize(256, 256);

    // Tick counts and spacings that would ask for more labels than the axis can show.
    AxisControl longAxis;
    const int intervals = longAxis.GetIntervalCount();
    longAxis.SetTickCount(INT_MAX);
    EXPECT_EQ(longAxis.GetIntervalCount(), intervals) << "refused";
    longAxis.SetTickSpacing(1);
    longAxis.SetRectangle({0, 1 << 24, 0, 30});
    EXPECT_EQ(longAxis.GetNumberLabels().size(), 4097u);
    longAxis.SetRectangle({0, 400, 0, 30});
    EXPECT_EQ(longAxis.GetIntervalCount(), 100) << "marks 4 pixels apart at the closest";

    // Widget sizes beyond the geometry limits are brought within them.
    LightControl light(std::make_shared<DirectionalLight>());
    light.SetWidgetSize(INT_MAX, -5);
    Panel panel;
    panel.SetMinSize(-1, INT_MAX);
    const std::string out = testing::internal::GetCapturedStdout();
    for (const char* message :
         {"ProbeControl::SetName(): The box does not exist before Initialize.\n",
          "ProbeControl::GetSize(): The box does not exist before Initialize.\n",
          "AxisControl::SetTickCount(): 2147483647 is outside -1 .. 4095.\n",
          "AxisControl::Update(): 16777216 intervals do not fit on 16777216 pixels; 4096 are shown.\n",
          "LightControl::SetWidgetSize(): 2147483647 is outside 1 .. 16777216; 16777216 is used.\n",
          "LightControl::SetWidgetSize(): -5 is outside 1 .. 16777216; 1 is used.\n",
          "Base::SetMinSize(): -1 is outside 0 .. 16777216; 0 is used.\n"})
        EXPECT_NE(out.find(message), std::string::npos) << message << out;

    // And when a panel fits itself to its contents while the layers are drawn.
    GUI::Controls::Label text;
    text.SetRectangle({0, 120, 0, 20});
    text.SetText(L"fits");
    auto* fitted = new Panel();
    fitted->SetRectangle({20, 60, 20, 60});
    fitted->SetHorizontalSizingPolicy(GUI::Policy::FitContent);
    fitted->AddChild(&text);
    fitted->Register(manager);
    int changes = 0;
    fitted->RectangleChangedSignal.connect([&] {
        ++changes;
        delete fitted;
    });
    manager->UpdateLayers();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(manager->Controls().size(), 2u);
    EXPECT_FALSE(text.HasParent());
    manager->UpdateLayers();
}

TEST_F(LifetimeTest, DestroyingTheOverlayWithoutACurrentContextLeaksWithOneMessage) {
    auto bar = std::make_unique<GUI::Controls::ColorBar>();
    ASSERT_TRUE(bar->Initialize());
    bar->UpdateColorMap({GUI::Color::FromWord(0xFF0000FF)}, false);
    bar->Register(manager);
    auto button = std::make_unique<Button>();
    button->SetRectangle({10, 90, 10, 40});
    button->Register(manager);
    manager->UpdateLayers();
    EGLDisplay display = eglGetCurrentDisplay();
    ASSERT_TRUE(eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT));
    bar.reset();
    button.reset();
    manager.reset();
    ASSERT_TRUE(context->MakeCurrent());
    EXPECT_EQ(log->Count("GraphicsBase: GL objects destroyed while no context is current are leaked; "
                         "destroy them while their context is current.\n"),
              1);
    // With the context back, the next overlay works and releases normally.
    manager = std::make_shared<GUI::GUIManager>();
    ASSERT_TRUE(manager->Initialize());
    manager->Resize(256, 256);
}

TEST_F(LifetimeTest, SeededInputSoakKeepsEveryInvariant) {
    // Panels of buttons, a switch and a sizeable panel, the 3D widgets over a scene and the data
    // controls, rebuilt now and then; pointer events with coordinates up to the integer limits; camera
    // orbits, axis and colour-bar updates; some controls delete themselves in their own handlers; views
    // resized down to 0 x 0 and up to the context's limit. TRELVO_SOAK_EVENTS asks for a longer run.
    std::mt19937 rng(20261122u);
    auto pick = [&](int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); };
    auto camera = std::make_shared<Camera>();
    camera->SetTarget({0.f, 0.f, 0.f});
    camera->SetPerspective(45.f, 0.1f, 100.f);
    camera->SetViewport(256, 256);
    auto light = std::make_shared<DirectionalLight>();
    light->position = {0.f, 0.f, 2.f};
    auto orbit = [&](float angle) {
        camera->SetPosition({5.f * std::cos(angle), 2.5f, 5.f * std::sin(angle)});
        camera->CalcMatrices();
        manager->SetCameraUpdated(true);
    };
    orbit(0.7f);
    struct {
        int gizmoSteps = 0, triadClicks = 0, lightDrags = 0;
    } reached;
    std::vector<std::unique_ptr<Base>> owned;
    auto forget = [&owned](Base* raw) {
        for (auto& c : owned)
            if (c.get() == raw)
                c.reset();
    };
    AxisControl* axis = nullptr;
    GUI::Controls::ColorBar* bar = nullptr;
    auto keep = [&](std::unique_ptr<Base> control, bool registered = true) {
        if (registered)
            control->Register(manager);
        owned.push_back(std::move(control));
        return owned.back().get();
    };
    auto build = [&] {
        owned.clear();
        for (int p = 0; p < 3; ++p) {
            auto panel = std::make_unique<Panel>();
            panel->SetRectangle({p * 80, p * 80 + 90, 20 + p * 60, 140 + p * 60});
            panel->SetDraggable(p != 1);
            panel->SetSizeable(p == 2);
            for (int b = 0; b < 3; ++b) {
                auto button = std::make_unique<Button>();
                button->SetRectangle({5, 80, 5 + b * 35, 35 + b * 35});
                Button* raw = button.get();
                // Some buttons delete themselves when clicked.
                if (b == 2)
                    raw->ClickedSignal.connect([&forget, raw] { forget(raw); });
                panel->AddChild(raw);
                keep(std::move(button), false);
            }
            keep(std::move(panel));
        }
        auto gizmo = std::make_unique<ManipulatorControl>(camera);
        EXPECT_TRUE(gizmo->Initialize());
        ManipulatorControl* g = gizmo.get();
        // Now and then the host deletes the gizmo from inside a drag step.
        g->transformationSignal.connect([&forget, &pick, &reached, g] {
            ++reached.gizmoSteps;
            if (pick(0, 30) == 0)
                forget(g);
            return DRAW_SCENE;
        });
        keep(std::move(gizmo));
        auto plane = std::make_unique<PlaneControl>(camera);
        EXPECT_TRUE(plane->Initialize());
        plane->setPosition(-1.f, 0.f, 0.5f);
        keep(std::move(plane));
        auto triad = std::make_unique<TriadControl>(camera, light);
        EXPECT_TRUE(triad->Initialize());
        keep(std::move(triad));
        auto lightWidget = std::make_unique<LightControl>(light);
        EXPECT_TRUE(lightWidget->Initialize());
        keep(std::move(lightWidget));
        auto newBar = std::make_unique<GUI::Controls::ColorBar>();
        EXPECT_TRUE(newBar->Initialize());
        newBar->SetRectangle({180, 250, 200, 215});
        bar = static_cast<GUI::Controls::ColorBar*>(keep(std::move(newBar)));
        auto newAxis = std::make_unique<AxisControl>();
        EXPECT_TRUE(newAxis->Initialize());
        newAxis->SetRectangle({180, 250, 170, 195});
        axis = static_cast<AxisControl*>(keep(std::move(newAxis)));
        // A layout may delete the axis from its rectangle signal.
        axis->RectangleChangedSignal.connect([&, a = axis] {
            if (pick(0, 20) == 0) {
                forget(a);
                axis = nullptr;
            }
        });
    };
    build();
    const int extremes[] = {INT_MIN, -1, 0, 1, 255, 256, INT_MAX};
    int x = 0, y = 0, buttons = 0, width = 256, height = 256;
    const char* asked = std::getenv("TRELVO_SOAK_EVENTS");
    const int kEvents = asked ? std::atoi(asked) : 100000;
    for (int i = 0; i < kEvents; ++i) {
        int px = x, py = y;
        if (pick(0, 50) == 0) {
            x = extremes[pick(0, 6)];
            y = extremes[pick(0, 6)];
        } else {
            x = static_cast<int>(
                std::clamp<long long>(x + static_cast<long long>(pick(-20, 20)), -10, width + 10));
            y = static_cast<int>(
                std::clamp<long long>(y + static_cast<long long>(pick(-20, 20)), -10, height + 10));
        }
        DrawFlags flags = DRAW_NOTHING;
        switch (pick(0, 9)) {
        case 0:
            buttons = 1;
            flags = Press(x, y);
            break;
        case 1:
            buttons = 0;
            now += static_cast<uint64_t>(pick(0, 400));
            flags = Release(x, y);
            break;
        default:
            flags = Move(x, y, px, py, buttons);
            break;
        }
        reached.triadClicks += (flags & DRAW_TRIAD_FACE) ? 1 : 0;
        reached.lightDrags += (flags & DRAW_LIGHT) ? 1 : 0;
        now += 3;
        switch (pick(0, 199)) {
        case 0:
            orbit(static_cast<float>(pick(0, 628)) / 100.f);
            break;
        case 1:
            if (axis) {
                axis->SetRange(static_cast<float>(pick(-1000, 0)), static_cast<float>(pick(-10, 1000)));
                axis->SetRectangle({pick(100, 200), pick(150, 256), pick(120, 170), pick(170, 256)});
            }
            break;
        case 2:
            if (bar)
                bar->UpdateColorMap(
                    std::vector<GUI::Color>(static_cast<size_t>(pick(1, 64)),
                                            GUI::Color::FromWord(static_cast<uint32_t>(rng()))),
                    pick(0, 1) == 0);
            break;
        default:
            break;
        }
        if (i % 40 == 0) {
            manager->UpdateLayers();
            manager->Draw();
            unsigned pid = 99, sid = 99;
            manager->HitDetect(x, GUI::Geometry::SubSaturated(height, y), &pid, &sid);
            ASSERT_TRUE(pid == 0 || manager->Contains(pid))
                << "event " << i << " picked an unknown id " << pid;
            GLint viewport[4] = {0, 0, 0, 0}, program = -1, unit = 0;
            glGetIntegerv(GL_VIEWPORT, viewport);
            glGetIntegerv(GL_CURRENT_PROGRAM, &program);
            glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
            ASSERT_TRUE(viewport[0] == 0 && viewport[1] == 0 && viewport[2] == 256 && viewport[3] == 256 &&
                        program == 0 && unit == GL_TEXTURE0)
                << "event " << i << " left host state behind";
        }
        if (i % 5000 == 4999) {
            const int sizes[][2] = {{0, 0}, {256, 256}, {manager->GetMaxLayerSize(), 2}, {97, 311}, {-3, 40}};
            auto s = sizes[pick(0, 4)];
            manager->Resize(s[0], s[1]);
            width = std::max(manager->GetWidth(), 1);
            height = std::max(manager->GetHeight(), 1);
            camera->SetViewport(width, height);
            camera->CalcMatrices();
            manager->SetCameraUpdated(true);
        }
        if (i % 20000 == 19999)
            build(); // delete everything mid-session and start again
    }
    manager->Resize(256, 256);
    manager->UpdateLayers();
    owned.clear();
    manager->UpdateLayers();
    EXPECT_TRUE(manager->Controls().empty());
    // The walk reaches the widgets, not only the panels.
    EXPECT_GT(reached.gizmoSteps, 0);
    EXPECT_GT(reached.triadClicks, 0);
    EXPECT_GT(reached.lightDrags, 0);
    std::printf("soak: %d events, %d gizmo steps, %d cube clicks, %d light drags\n", kEvents,
                reached.gizmoSteps, reached.triadClicks, reached.lightDrags);
}
