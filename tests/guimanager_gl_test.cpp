// The overlay end to end on a real context: layers, compositing, hit detection and input routing.
#include "support/overlayfixture.h"

#include <trelvogui/gui/animationsequence.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/fadeinsequence.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/renderers/renderer.h>
#include <trelvogui/gui/textureatlas.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>

#include <glm/gtc/matrix_transform.hpp>

#include <GL/glew.h>

#include <functional>

#include <string>
#include <vector>

using namespace GraphicsBase;

using GUI::Controls::Base;

namespace {
/// A control that paints its rectangle in one colour with its id and records every handler call.
class Probe : public Base {
public:
    explicit Probe(std::vector<std::string>* journal, std::string name, uint32_t color = 0xFF3060C0)
        : journal_(journal), name_(std::move(name)), color_(color) {}

    void DrawControl(GUI::Texture::Atlas* atlas) override {
        ++draws;
        auto* r = atlas->GetRenderer();
        r->SetLineColor(GUI::Color::FromWord(color_));
        r->SetIds(GetId(), 7);
        r->DrawRectangle(GetRectangle());
    }
    DrawFlags OnMouseEnter(GUI::Event* e) override { return log("enter", Base::OnMouseEnter(e)); }
    DrawFlags OnMouseExit(GUI::Event* e) override { return log("exit", Base::OnMouseExit(e)); }
    DrawFlags OnMouseHover(GUI::Event* e) override { return log("hover", Base::OnMouseHover(e)); }
    DrawFlags OnMouseDown(GUI::Event* e) override {
        lastSid = e->sid;
        return log("down", Base::OnMouseDown(e));
    }
    DrawFlags OnMouseUp(GUI::Event* e) override { return log("up", Base::OnMouseUp(e)); }
    DrawFlags OnClick(GUI::Event* e) override { return log("click", Base::OnClick(e)); }
    DrawFlags OnMouseDrag(GUI::Event* e, int dx, int dy) override {
        return log("drag " + std::to_string(dx) + "," + std::to_string(dy), Base::OnMouseDrag(e, dx, dy));
    }
    void MakeAnimatable() { SetAnimatable(true); }
    /// Draws with this camera and light, as a 3D widget does.
    void Follow(const Camera* camera, const DirectionalLight* light) {
        camera_ = camera;
        light_ = light;
        SetUsesCamera(camera);
        SetUsesLight(light);
    }
    /// Followers know where they draw, so a change redraws only there.
    bool LayerFootprint(int, int, GUI::Geometry::Rectangle& area) override {
        area = GetRectangle();
        return camera_ || light_;
    }
    const Camera* SceneCamera() const override { return camera_; }
    const DirectionalLight* SceneLight() const override { return light_; }
    /// Changes what the next draw paints without marking anything, as host state the control reads.
    void SetColorQuietly(uint32_t color) { color_ = color; }

    int draws = 0;
    unsigned lastSid = 0;

private:
    DrawFlags log(const std::string& what, DrawFlags result) {
        journal_->push_back(name_ + " " + what);
        return result;
    }
    std::vector<std::string>* journal_;
    std::string name_;
    uint32_t color_;
    const Camera* camera_ = nullptr;
    const DirectionalLight* light_ = nullptr;
};

class GUIManagerTest : public trelvo::test::OverlayTest {
protected:
    void TearDown() override {
        controls.clear();
        OverlayTest::TearDown();
    }

    /// A registered root probe at (x0, x1, y0, y1) in overlay pixels.
    Probe* AddRoot(const std::string& name, GUI::Geometry::Rectangle r, uint32_t color = 0xFF3060C0) {
        controls.push_back(std::make_unique<Probe>(&journal, name, color));
        controls.back()->SetRectangle(r);
        controls.back()->Register(manager);
        return controls.back().get();
    }

    std::vector<std::unique_ptr<Probe>> controls;
    std::vector<std::string> journal;
};
} // namespace

TEST_F(GUIManagerTest, EmptyOverlayClearsLayersAndHitsNothing) {
    manager->SetNeedsRedraw(true);
    manager->UpdateLayers();
    EXPECT_FALSE(manager->NeedsRedraw());
    EXPECT_EQ(PidAt(10, 10), 0u);
    EXPECT_EQ(PidAt(-1, 10), 0u);
    EXPECT_EQ(PidAt(10, 256), 0u);
    glBindFramebuffer(GL_FRAMEBUFFER, manager->GetLayerFramebuffer());
    auto c = ReadColor(100, 100);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(c[3], 0) << "the cleared colour layer must be transparent";
}

TEST_F(GUIManagerTest, TheHostMarkingTheManagerRedrawsRootsThatMarkedNothing) {
    // The host changed something its controls read without telling them; marking the manager is how
    // it asks for the layers anew. Partial updates must not take "no root is stale" for "nothing to do".
    Probe* a = AddRoot("a", {20, 60, 30, 70}, 0xFF0000FF);
    manager->UpdateLayers();
    a->SetColorQuietly(0xFF00FF00);
    manager->SetNeedsRedraw(true);
    manager->UpdateLayers();
    glBindFramebuffer(GL_FRAMEBUFFER, manager->GetLayerFramebuffer());
    auto c = ReadColor(40, 50);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(c[0], 0);
    EXPECT_EQ(c[1], 255) << "the root is drawn again in its new colour";
}

TEST_F(GUIManagerTest, IdLayerCarriesIdsOfWhatIsDrawnAndCompositeBlendsOverHostFrame) {
    Probe* a = AddRoot("a", {20, 60, 30, 70}, 0xFF0000FF); // opaque red
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(20, 30), a->GetId());
    EXPECT_EQ(PidAt(59, 69), a->GetId());
    EXPECT_EQ(PidAt(60, 50), 0u);
    EXPECT_EQ(PidAt(40, 29), 0u);
    unsigned pid = 0, sid = 0;
    manager->HitDetect(40, 40, &pid, &sid);
    EXPECT_EQ(sid, 7u);

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, 256, 256);
    glClearColor(0.f, 0.f, 1.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    manager->Draw();
    auto inside = ReadColor(40, 50);
    auto outside = ReadColor(200, 200);
    EXPECT_EQ(inside[0], 255);
    EXPECT_EQ(inside[2], 0);
    EXPECT_EQ(outside[2], 255) << "the host's frame shows through where the overlay is empty";
    EXPECT_EQ(outside[0], 0);
    EXPECT_FALSE(glIsEnabled(GL_BLEND)) << "Draw restores the host's blend state";
}

TEST_F(GUIManagerTest, CompactIdLayersTakeEffectAtTheNextUpdateAndPickTheSame) {
    Probe* plain = AddRoot("plain", {20, 60, 30, 70});
    Probe* cached = AddRoot("cached", {100, 140, 30, 70});
    cached->MakeAnimatable();
    manager->UpdateLayers();
    auto idFormat = [&] {
        GLint format = 0;
        glBindTexture(GL_TEXTURE_2D, manager->GetIdLayer());
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
        glBindTexture(GL_TEXTURE_2D, 0);
        return format;
    };
    for (bool compact : {true, false}) {
        SCOPED_TRACE(compact ? "compact" : "back to four words");
        manager->SetCompactIdLayers(compact);
        EXPECT_EQ(idFormat(), compact ? GL_RGBA32UI : GL_RG32UI) << "the layers change at the next update";
        EXPECT_TRUE(manager->NeedsRedraw());
        manager->UpdateLayers();
        EXPECT_EQ(idFormat(), compact ? GL_RG32UI : GL_RGBA32UI);
        for (Probe* p : {plain, cached}) {
            unsigned pid = 0, sid = 0;
            const auto& r = p->GetRectangle();
            manager->HitDetect(r.xMin + 5, r.yMin + 5, &pid, &sid);
            EXPECT_EQ(pid, p->GetId());
            EXPECT_EQ(sid, 7u);
        }
        EXPECT_EQ(PidAt(80, 50), 0u);
    }
}

TEST_F(GUIManagerTest, IdleUpdateDrawsNothingAndAChangeRedrawsOnce) {
    Probe* a = AddRoot("a", {0, 10, 0, 10});
    manager->UpdateLayers();
    int draws = a->draws;
    int updates = manager->GetLayerUpdateCount();
    manager->UpdateLayers();
    manager->UpdateLayers();
    EXPECT_EQ(a->draws, draws);
    EXPECT_EQ(manager->GetLayerUpdateCount(), updates);

    int requests = 0;
    boost::signals2::scoped_connection counting = manager->RedrawRequestSignal.connect([&] { ++requests; });
    a->Translate(100, 100);
    a->SetVisible(true);
    EXPECT_EQ(requests, 1) << "the signal fires once when the flag goes up";
    manager->UpdateLayers();
    EXPECT_EQ(a->draws, draws + 1);
    EXPECT_EQ(PidAt(105, 105), a->GetId());
    EXPECT_EQ(PidAt(5, 5), 0u);
}

TEST_F(GUIManagerTest, HoverPressDragReleaseFollowTheTransitionTable) {
    Probe* a = AddRoot("a", {50, 100, 156, 206}); // host y 50..100
    a->SetDraggable(true);
    int clicked = 0;
    a->ClickedSignal.connect([&] { ++clicked; });
    manager->UpdateLayers();

    EXPECT_EQ(Move(10, 10, 10, 10), DRAW_NOTHING);
    EXPECT_EQ(Move(60, 60, 10, 10), DrawFlags(9));
    EXPECT_EQ(Move(61, 61, 60, 60), DRAW_NOTHING);
    EXPECT_EQ(Press(61, 61), DrawFlags(9));
    EXPECT_EQ(a->lastSid, 7u);
    now += 50;
    EXPECT_EQ(Release(61, 61), DrawFlags(9));
    EXPECT_EQ(clicked, 1);
    EXPECT_EQ(journal,
              (std::vector<std::string>{"a enter", "a hover", "a down", "a click", "a up", "a enter"}));

    // A slow release is not a click; the drag moves the control (upward motion is positive dy).
    journal.clear();
    Press(61, 61);
    EXPECT_EQ(Move(71, 51, 61, 61, 1), DrawFlags(9));
    EXPECT_EQ(a->GetRectangle(), (GUI::Geometry::Rectangle{60, 110, 166, 216}));
    now += 201;
    Release(71, 51);
    EXPECT_EQ(clicked, 1);
    EXPECT_EQ(journal, (std::vector<std::string>{"a down", "a drag 10,10", "a up", "a enter"}));
}

TEST_F(GUIManagerTest, DragThatLeavesKeepsDeliveringAndTheNewControlIsEnteredAtRelease) {
    Probe* a = AddRoot("a", {0, 50, 206, 256});
    Probe* b = AddRoot("b", {150, 200, 206, 256});
    (void)b;
    manager->UpdateLayers();
    Press(10, 10);
    Move(100, 10, 10, 10, 1);
    Move(160, 10, 100, 10, 1);
    EXPECT_EQ(journal, (std::vector<std::string>{"a down", "a drag 90,0", "a drag 60,0"}));
    journal.clear();
    now += 500;
    Release(160, 10);
    EXPECT_EQ(journal, (std::vector<std::string>{"a up", "a exit", "b enter"}));
    EXPECT_FALSE(a->Pressed());
}

TEST_F(GUIManagerTest, PressingAChildBringsItsRootToTheFront) {
    Probe* back = AddRoot("back", {0, 100, 0, 100}, 0xFF00FF00);
    Probe* front = AddRoot("front", {50, 150, 50, 150}, 0xFFFF0000);
    Probe child(&journal, "child");
    child.SetRectangle({0, 10, 0, 10});
    back->AddChild(&child);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(75, 75), front->GetId());
    EXPECT_EQ(Press(5, 251), DrawFlags(9)) << "press on the child at overlay (5, 5)";
    EXPECT_EQ(manager->Controls().back(), back);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(75, 75), back->GetId()) << "the pressed tree is now drawn last";
    back->RemoveChild(&child);
    child.SetParent(nullptr);
    manager->RemoveControl(&child);

    journal.clear();
    std::list<Base*> order = manager->Controls();
    EXPECT_EQ(Press(250, 5), DRAW_NOTHING) << "empty space";
    EXPECT_EQ(manager->Controls(), order);
}

TEST_F(GUIManagerTest, RightButtonIsNotRoutedAndNeitherIsItsRelease) {
    AddRoot("a", {0, 100, 156, 256});
    manager->UpdateLayers();
    EXPECT_EQ(Press(10, 10, 2), DRAW_NOTHING);
    EXPECT_EQ(Release(10, 10), DRAW_NOTHING);
    EXPECT_TRUE(journal.empty());
}

TEST_F(GUIManagerTest, PointerRowsHitAControlsEdgeRowsByDefaultAndWithExactRows) {
    // Overlay rows 100..155 and 246..255. By default host y is overlay row 256 - y (host y 0 is
    // outside the view); with exact rows host row y is overlay row 255 - y.
    AddRoot("band", {0, 100, 100, 156});
    AddRoot("top", {150, 200, 246, 256});
    manager->UpdateLayers();
    EXPECT_FALSE(manager->GetExactPointerRows()) << "off by default";
    const struct {
        bool exact;
        int x, hostY;
        const char* entered;
    } rows[] = {{false, 10, 101, "band"},  {false, 10, 100, nullptr}, {false, 10, 156, "band"},
                {false, 10, 157, nullptr}, {false, 160, 1, "top"},    {false, 160, 0, nullptr},
                {false, 160, 10, "top"},   {false, 160, 11, nullptr}, {true, 10, 100, "band"},
                {true, 10, 99, nullptr},   {true, 10, 155, "band"},   {true, 10, 156, nullptr},
                {true, 160, 0, "top"},     {true, 160, -1, nullptr},  {true, 160, 9, "top"},
                {true, 160, 10, nullptr}};
    for (const auto& r : rows) {
        manager->SetExactPointerRows(r.exact);
        Move(250, 250, 250, 250);
        journal.clear();
        Move(r.x, r.hostY, 250, 250);
        EXPECT_EQ(journal, r.entered ? std::vector<std::string>{std::string(r.entered) + " enter"}
                                     : std::vector<std::string>{})
            << "host row " << r.hostY << (r.exact ? " (exact)" : "");
        EXPECT_EQ(manager->OverlayRow(r.hostY), (r.exact ? 255 : 256) - r.hostY);
        EXPECT_EQ(manager->HostRow(manager->OverlayRow(r.hostY)), r.hostY);
    }
}

TEST_F(GUIManagerTest, ReleaseAtHostTopRowHitsNothing) {
    AddRoot("a", {0, 100, 156, 256});
    manager->UpdateLayers();
    Press(10, 10);
    now += 500;
    Release(10, 0); // overlay y = height: outside
    EXPECT_EQ(journal, (std::vector<std::string>{"a down", "a up", "a exit"}));
    journal.clear();
    Move(200, 200, 10, 0);
    Move(210, 200, 200, 200);
    EXPECT_TRUE(journal.empty()) << "nothing under the pointer, nothing hovered";
}

TEST_F(GUIManagerTest, ResizeKeepsRootsAtTheirDistanceFromTheTop) {
    Probe* a = AddRoot("a", {10, 20, 200, 250});
    Probe child(&journal, "child");
    child.SetRectangle({1, 2, 3, 4});
    a->AddChild(&child);
    manager->Resize(256, 456);
    EXPECT_EQ(a->GetRectangle(), (GUI::Geometry::Rectangle{10, 20, 400, 450}));
    EXPECT_EQ(child.GetControlRectangle(), (GUI::Geometry::Rectangle{1, 2, 3, 4}));
    EXPECT_EQ(a->GetVerticalAlignment(), GUI::Alignment::Vertical::Top);
    EXPECT_EQ(PidAt(15, 420), a->GetId());
    a->RemoveChild(&child);
    child.SetParent(nullptr);
}

TEST_F(GUIManagerTest, AnimationReRendersEveryUpdateUntilItEnds) {
    Probe* a = AddRoot("a", {20, 60, 20, 60});
    a->MakeAnimatable();
    manager->UpdateLayers();
    auto* fade = new GUI::Animation::FadeInSequence(a, 0.1f);
    fade->Start();
    manager->AddAnimation(fade);
    EXPECT_TRUE(manager->NeedsRedrawForAnimation());
    manager->SetNeedsRedraw(true);
    int updates = manager->GetLayerUpdateCount();
    for (int i = 0; i < 3; ++i) {
        now += 30;
        manager->UpdateLayers();
        EXPECT_TRUE(manager->NeedsRedraw()) << "still animating";
    }
    now += 30;
    manager->UpdateLayers();
    EXPECT_EQ(manager->GetLayerUpdateCount(), updates + 4);
    EXPECT_FALSE(manager->NeedsRedrawForAnimation());
    EXPECT_FALSE(manager->NeedsRedraw());
    EXPECT_FLOAT_EQ(a->GetLocalFrame()->getAlpha(), 1.f);
    EXPECT_EQ(PidAt(40, 40), a->GetId()) << "the composited cached layer carries the ids";
}

TEST_F(GUIManagerTest, RemovingAControlCancelsItsAnimations) {
    Probe* a = AddRoot("a", {0, 10, 0, 10});
    auto* fade = new GUI::Animation::FadeInSequence(a, 5.f);
    fade->Start();
    manager->AddAnimation(fade);
    EXPECT_TRUE(manager->RemoveControl(a));
    EXPECT_FALSE(manager->NeedsRedrawForAnimation());
    EXPECT_FALSE(manager->Contains(a));
}

TEST_F(GUIManagerTest, HostBindingsSurviveEveryOperationAndTheOverlayLandsInTheHostsFramebuffer) {
    AddRoot("a", {10, 50, 10, 50}, 0xFF00FF00);
    GLuint hostTexture = 0, hostFramebuffer = 0, hostVertexArray = 0, spareTexture = 0;
    glGenTextures(1, &hostTexture);
    glBindTexture(GL_TEXTURE_2D, hostTexture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 256, 256, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &hostFramebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, hostFramebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, hostTexture, 0);
    glGenVertexArrays(1, &hostVertexArray);
    glBindVertexArray(hostVertexArray);
    glActiveTexture(GL_TEXTURE3);
    glGenTextures(1, &spareTexture);
    glBindTexture(GL_TEXTURE_2D, spareTexture);
    glViewport(0, 0, 256, 256);
    glClearColor(0.f, 0.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);

    auto expectHostState = [&](const char* after) {
        GLint v = 0;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &v);
        EXPECT_EQ(static_cast<GLuint>(v), hostFramebuffer) << after;
        glGetIntegerv(GL_VERTEX_ARRAY_BINDING, &v);
        EXPECT_EQ(static_cast<GLuint>(v), hostVertexArray) << after;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &v);
        EXPECT_EQ(v, GL_TEXTURE3) << after;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &v);
        EXPECT_EQ(static_cast<GLuint>(v), spareTexture) << after;
    };
    manager->UpdateLayers();
    expectHostState("UpdateLayers");
    manager->Draw();
    expectHostState("Draw");
    EXPECT_EQ(ReadColor(30, 30)[1], 255) << "the overlay was composited into the host's framebuffer";
    manager->Resize(300, 200);
    expectHostState("Resize");
    manager->SetUpsideDown(true);
    expectHostState("SetUpsideDown");
    Press(30, 100);
    Release(30, 100);
    expectHostState("a click");

    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindVertexArray(0);
    glActiveTexture(GL_TEXTURE0);
    glDeleteFramebuffers(1, &hostFramebuffer);
    glDeleteVertexArrays(1, &hostVertexArray);
    glDeleteTextures(1, &hostTexture);
    glDeleteTextures(1, &spareTexture);
}

TEST_F(GUIManagerTest, ExplicitGammaCorrectionBrightensTheCompositeAndCanBeSwitchedOff) {
    AddRoot("grey", {20, 60, 20, 60}, 0xFF808080);
    manager->UpdateLayers();
    auto composite = [&](bool gamma) {
        manager->SetExplicitGammaCorrection(gamma);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glViewport(0, 0, 256, 256);
        glClearColor(0.f, 0.f, 0.f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT);
        manager->Draw();
        return ReadColor(40, 40)[0];
    };
    EXPECT_EQ(composite(false), 128);
    EXPECT_NEAR(composite(true), 186, 1) << "255 * (128 / 255)^(1 / 2.2)";
    EXPECT_EQ(composite(false), 128) << "back to the plain program";
}

TEST_F(GUIManagerTest, FollowersOfAChangedCameraOrLightRedrawWithoutBeingTold) {
    Camera camera;
    camera.SetViewport(256, 256);
    camera.CalcMatrices();
    DirectionalLight light;
    Probe* viewer = AddRoot("viewer", {0, 50, 0, 50});
    viewer->Follow(&camera, nullptr);
    Probe* lit = AddRoot("lit", {100, 150, 0, 50});
    lit->Follow(nullptr, &light);
    Probe* plain = AddRoot("plain", {200, 250, 0, 50});
    plain->Follow(nullptr, nullptr); // knows its footprint too
    manager->UpdateLayers();
    const struct {
        const char* what;
        std::function<void()> change;
        bool viewer, lit;
    } steps[] = {
        {"nothing", [] {}, false, false},
        {"orbit",
         [&] {
             camera.SetPosition({1.f, 2.f, 5.f}), camera.CalcMatrices();
         },
         true, false},
        {"viewport", [&] { camera.SetViewport(200, 100); }, true, false},
        {"host matrices",
         [&] { camera.SetMatrices(glm::mat4(1.f), glm::ortho(-1.f, 1.f, -1.f, 1.f, -1.f, 1.f), 200, 100); },
         true, false},
        {"light moved", [&] { light.position.x = -2.f; }, false, true},
        {"light colour", [&] { light.diffuse.g = 0.1f; }, false, true},
        {"reported camera", [&] { manager->SetCameraUpdated(true); }, true, false},
        {"reported light", [&] { manager->SetLightUpdated(true); }, false, true},
    };
    // Each probe is given a new colour quietly: it shows only where the manager redrew.
    uint32_t color = 0xFF203040;
    auto at = [&](int x) {
        glBindFramebuffer(GL_FRAMEBUFFER, manager->GetLayerFramebuffer());
        const auto c = ReadColor(x, 25);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return c;
    };
    for (const auto& s : steps) {
        const std::array<uint8_t, 4> before[] = {at(25), at(125), at(225)};
        color += 0x000A0A;
        for (Probe* p : {viewer, lit, plain})
            p->SetColorQuietly(color);
        s.change();
        manager->UpdateLayers();
        EXPECT_EQ(at(25) != before[0], s.viewer) << s.what;
        EXPECT_EQ(at(125) != before[1], s.lit) << s.what;
        EXPECT_EQ(at(225), before[2]) << s.what;
    }
}

TEST_F(GUIManagerTest, LocateTellsWhereAControlAndItsPartsAreDrawn) {
    Probe* a = AddRoot("a", {20, 60, 30, 70});
    Probe unregistered(&journal, "u");
    manager->UpdateLayers();
    GUI::GUIManager::PartLocation where;
    // Host bounds and pixel follow the pointer-row setting: a press there hits the control.
    for (auto [part, exact] : {std::pair<unsigned, bool>{GUI::GUIManager::kAnyPart, false}, {7u, true}}) {
        manager->SetExactPointerRows(exact);
        ASSERT_TRUE(manager->Locate(a, part, where));
        EXPECT_EQ(where.overlay, (GUI::Geometry::Rectangle{20, 60, 30, 70}));
        EXPECT_EQ(where.host, (GUI::Geometry::Rectangle{20, 60, exact ? 186 : 187, exact ? 226 : 227}));
        EXPECT_EQ(where.pixels, 40 * 40);
        EXPECT_EQ(PidAt(where.overlayPixel.x, where.overlayPixel.y), a->GetId());
        EXPECT_EQ(where.hostPixel.y, (exact ? 255 : 256) - where.overlayPixel.y);
        journal.clear();
        Press(where.hostPixel.x, where.hostPixel.y);
        EXPECT_EQ(journal, (std::vector<std::string>{"a down"}))
            << "the host pixel is where a pointer hits it";
        now += 500;
        Release(where.hostPixel.x, where.hostPixel.y);
    }

    const GUI::GUIManager::PartLocation before = where;
    for (auto [control, part] : {std::pair<Base*, unsigned>{nullptr, 7u}, {&unregistered, 7u}, {a, 3u}}) {
        testing::internal::CaptureStdout();
        EXPECT_FALSE(manager->Locate(control, part, where));
        EXPECT_NE(testing::internal::GetCapturedStdout().find("GUIManager::Locate(): "), std::string::npos);
        EXPECT_EQ(where.overlay, before.overlay);
    }
}
