// The overlay as a guest in the host's context: every entry point a host calls leaves every piece of
// GL state as the host set it, and state a host leaves behind changes neither the picture nor picking.
#include "support/overlayfixture.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/colorbar.h>
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/legendcontrol.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/probecontrol.h>
#include <trelvogui/triadcontrol.h>
#include <trelvogui/xyplotcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>

#include <GL/glew.h>

#include <functional>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {

// Units the overlay binds on (text 1, widgets 8, targets and layers 9 to 12, atlas 13 and 14,
// composite 15) and one it must never touch.
constexpr int kUnits[] = {0, 1, 8, 9, 10, 11, 12, 13, 14, 15};

/// Every item of host-visible state the overlay promises to leave alone, read back from GL.
struct Snapshot {
    std::vector<GLint> ints;
    std::vector<GLfloat> floats;
    std::vector<std::string> names;

    void Int(const char* name, GLenum item, int count = 1) {
        GLint v[4] = {0, 0, 0, 0};
        glGetIntegerv(item, v);
        for (int i = 0; i < count; ++i)
            Add(name, v[i]);
    }
    void Add(const std::string& name, GLint v) {
        names.push_back(name);
        ints.push_back(v);
        floats.push_back(0.f);
    }
    void Float(const char* name, GLenum item) {
        GLfloat v[4] = {0, 0, 0, 0};
        glGetFloatv(item, v);
        for (GLfloat f : v) {
            names.push_back(name);
            ints.push_back(0);
            floats.push_back(f);
        }
    }
    static Snapshot Take() {
        Snapshot s;
        s.Int("program", GL_CURRENT_PROGRAM);
        s.Int("vertex array", GL_VERTEX_ARRAY_BINDING);
        s.Int("array buffer", GL_ARRAY_BUFFER_BINDING);
        s.Int("active unit", GL_ACTIVE_TEXTURE);
        GLint active = GL_TEXTURE0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        for (int unit : kUnits) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
            const std::string u = " on unit " + std::to_string(unit);
            s.Int(("1D texture" + u).c_str(), GL_TEXTURE_BINDING_1D);
            s.Int(("2D texture" + u).c_str(), GL_TEXTURE_BINDING_2D);
            s.Int(("sampler" + u).c_str(), GL_SAMPLER_BINDING);
        }
        glActiveTexture(static_cast<GLenum>(active));
        s.Int("draw framebuffer", GL_DRAW_FRAMEBUFFER_BINDING);
        s.Int("read framebuffer", GL_READ_FRAMEBUFFER_BINDING);
        s.Int("draw buffer", GL_DRAW_BUFFER);
        s.Int("renderbuffer", GL_RENDERBUFFER_BINDING);
        s.Int("viewport", GL_VIEWPORT, 4);
        s.Int("scissor box", GL_SCISSOR_BOX, 4);
        for (auto [name, item] : {std::pair{"scissor test", GL_SCISSOR_TEST},
                                  {"blend", GL_BLEND},
                                  {"depth test", GL_DEPTH_TEST},
                                  {"cull", GL_CULL_FACE},
                                  {"stencil test", GL_STENCIL_TEST},
                                  {"sRGB", GL_FRAMEBUFFER_SRGB}})
            s.Add(name, glIsEnabled(item));
        s.Int("blend source RGB", GL_BLEND_SRC_RGB);
        s.Int("blend destination RGB", GL_BLEND_DST_RGB);
        s.Int("blend source alpha", GL_BLEND_SRC_ALPHA);
        s.Int("blend destination alpha", GL_BLEND_DST_ALPHA);
        s.Int("blend equation RGB", GL_BLEND_EQUATION_RGB);
        s.Int("blend equation alpha", GL_BLEND_EQUATION_ALPHA);
        s.Float("blend colour", GL_BLEND_COLOR);
        s.Float("clear colour", GL_COLOR_CLEAR_VALUE);
        s.Int("depth mask", GL_DEPTH_WRITEMASK);
        s.Int("depth function", GL_DEPTH_FUNC);
        s.Int("cull mode", GL_CULL_FACE_MODE);
        s.Int("front face", GL_FRONT_FACE);
        s.Int("polygon mode", GL_POLYGON_MODE);
        for (GLuint buffer = 0; buffer < 2; ++buffer) {
            GLboolean mask[4] = {0, 0, 0, 0};
            glGetBooleani_v(GL_COLOR_WRITEMASK, buffer, mask);
            for (GLboolean m : mask)
                s.Add("colour mask of buffer " + std::to_string(buffer), m);
        }
        s.Int("pack alignment", GL_PACK_ALIGNMENT);
        s.Int("pack row length", GL_PACK_ROW_LENGTH);
        s.Int("unpack alignment", GL_UNPACK_ALIGNMENT);
        s.Int("unpack row length", GL_UNPACK_ROW_LENGTH);
        s.Int("pixel pack buffer", GL_PIXEL_PACK_BUFFER_BINDING);
        s.Int("pixel unpack buffer", GL_PIXEL_UNPACK_BUFFER_BINDING);
        return s;
    }
    /// The items that differ, one line each; empty when the snapshots agree.
    std::string Diff(const Snapshot& after) const {
        std::ostringstream out;
        for (size_t i = 0; i < names.size() && i < after.names.size(); ++i)
            if (ints[i] != after.ints[i] || floats[i] != after.floats[i])
                out << names[i] << ": " << ints[i] << "/" << floats[i] << " -> " << after.ints[i] << "/"
                    << after.floats[i] << "\n";
        return out.str();
    }
};

const char* kVertex = "#version 330 core\nvoid main() { gl_Position = vec4(0.0); }\n";
const char* kFragment = "#version 330 core\nout vec4 c;\nvoid main() { c = vec4(1.0); }\n";

/// A host with objects of its own: a program, a vertex array, buffers, textures and samplers on
/// every unit, and a framebuffer with two colour attachments and depth and stencil.
class HostObjects {
public:
    static constexpr int kSize = 256;
    HostObjects() {
        program = glCreateProgram();
        for (auto [stage, text] : {std::pair{GL_VERTEX_SHADER, kVertex}, {GL_FRAGMENT_SHADER, kFragment}}) {
            GLuint shader = glCreateShader(stage);
            glShaderSource(shader, 1, &text, nullptr);
            glCompileShader(shader);
            glAttachShader(program, shader);
            glDeleteShader(shader);
        }
        glLinkProgram(program);
        glGenVertexArrays(1, &vertexArray);
        glGenBuffers(3, buffers);
        for (GLuint b : buffers) {
            glBindBuffer(GL_ARRAY_BUFFER, b);
            glBufferData(GL_ARRAY_BUFFER, 1 << 20, nullptr, GL_STATIC_DRAW);
        }
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glGenTextures(2, colour);
        for (GLuint t : colour) {
            glBindTexture(GL_TEXTURE_2D, t);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kSize, kSize, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        }
        glBindTexture(GL_TEXTURE_2D, 0);
        glGenRenderbuffers(1, &depthStencil);
        glBindRenderbuffer(GL_RENDERBUFFER, depthStencil);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, kSize, kSize);
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, colour[0], 0);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D, colour[1], 0);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depthStencil);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glGenTextures(kUnitCount, textures1D);
        glGenTextures(kUnitCount, textures2D);
        glGenSamplers(kUnitCount, samplers);
    }
    ~HostObjects() {
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteRenderbuffers(1, &depthStencil);
        glDeleteTextures(2, colour);
        glDeleteTextures(kUnitCount, textures1D);
        glDeleteTextures(kUnitCount, textures2D);
        glDeleteSamplers(kUnitCount, samplers);
        glDeleteBuffers(3, buffers);
        glDeleteVertexArrays(1, &vertexArray);
        glDeleteProgram(program);
    }

    /// Every item set to something other than its default. The framebuffer is the host's, drawn into
    /// through attachment 0 (`drawBuffer`) with its depth cleared to the near plane.
    void SetHostile() {
        glUseProgram(program);
        glBindVertexArray(vertexArray);
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        for (int i = 0; i < kUnitCount; ++i) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(kUnits[i]));
            glBindTexture(GL_TEXTURE_1D, textures1D[i]);
            glBindTexture(GL_TEXTURE_2D, textures2D[i]);
            glBindSampler(static_cast<GLuint>(kUnits[i]), samplers[i]);
        }
        glActiveTexture(GL_TEXTURE3);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glDrawBuffer(GL_COLOR_ATTACHMENT0);
        glReadBuffer(GL_COLOR_ATTACHMENT0);
        glClearDepth(0.0);
        glClear(GL_DEPTH_BUFFER_BIT);
        glClearDepth(1.0);
        glBindRenderbuffer(GL_RENDERBUFFER, depthStencil);
        glViewport(7, 9, 100, 120);
        glScissor(3, 4, 50, 60);
        for (GLenum on : {GL_BLEND, GL_DEPTH_TEST, GL_CULL_FACE, GL_STENCIL_TEST, GL_FRAMEBUFFER_SRGB})
            glEnable(on);
        if (scissor)
            glEnable(GL_SCISSOR_TEST);
        glBlendFuncSeparate(GL_ONE, GL_ZERO, GL_DST_ALPHA, GL_SRC_COLOR);
        glBlendEquationSeparate(GL_FUNC_SUBTRACT, GL_MAX);
        glBlendColor(0.1f, 0.2f, 0.3f, 0.4f);
        glClearColor(0.25f, 0.5f, 0.75f, 0.125f);
        glDepthMask(GL_FALSE);
        glDepthFunc(GL_LESS); // with the depth at 0, nothing passes
        glCullFace(GL_FRONT_AND_BACK);
        glFrontFace(GL_CW);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        glStencilFunc(GL_NEVER, 0, 0xFF);
        glColorMaski(0, GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
        glColorMaski(1, GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glPixelStorei(GL_PACK_ROW_LENGTH, 17);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 13);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers[1]);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers[2]);
    }

    /// Back to the defaults (the stencil function included), framebuffer 0 bound.
    static void SetDefaults() {
        glUseProgram(0);
        glBindVertexArray(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        for (int unit : kUnits) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
            glBindTexture(GL_TEXTURE_1D, 0);
            glBindTexture(GL_TEXTURE_2D, 0);
            glBindSampler(static_cast<GLuint>(unit), 0);
        }
        glActiveTexture(GL_TEXTURE0);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        glViewport(0, 0, kSize, kSize);
        glScissor(0, 0, kSize, kSize);
        for (GLenum off :
             {GL_SCISSOR_TEST, GL_BLEND, GL_DEPTH_TEST, GL_CULL_FACE, GL_STENCIL_TEST, GL_FRAMEBUFFER_SRGB})
            glDisable(off);
        glBlendFuncSeparate(GL_ONE, GL_ZERO, GL_ONE, GL_ZERO);
        glBlendEquation(GL_FUNC_ADD);
        glBlendColor(0, 0, 0, 0);
        glClearColor(0, 0, 0, 0);
        glDepthMask(GL_TRUE);
        glDepthFunc(GL_LESS);
        glCullFace(GL_BACK);
        glFrontFace(GL_CCW);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        glStencilFunc(GL_ALWAYS, 0, 0xFF);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glPixelStorei(GL_PACK_ALIGNMENT, 4);
        glPixelStorei(GL_PACK_ROW_LENGTH, 0);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    }

    static constexpr int kUnitCount = sizeof kUnits / sizeof kUnits[0];
    bool scissor = true;
    GLuint program = 0, vertexArray = 0, buffers[3] = {0, 0, 0}, colour[2] = {0, 0}, depthStencil = 0,
           framebuffer = 0;
    GLuint textures1D[kUnitCount] = {}, textures2D[kUnitCount] = {}, samplers[kUnitCount] = {};
};

/// One of everything the library offers a host, in a 256 x 256 view.
struct Scene {
    explicit Scene(std::shared_ptr<GUI::GUIManager> m) : manager(std::move(m)) {
        camera->SetPosition({3.f, 2.5f, 4.f});
        camera->SetTarget({0.f, 0.f, 0.f});
        camera->SetPerspective(45.f, 0.1f, 100.f);
        camera->SetViewport(256, 256);
        camera->CalcMatrices();
        light->position = {0.f, 0.f, 2.f};
    }
    /// Builds, initialises and registers the controls: with the host's state hostile, every upload
    /// (skin, text, colour map, cube labels) happens under it.
    void Build() {
        panel.SetRectangle({20, 140, 150, 240});
        button.SetRectangle({30, 120, 170, 200});
        button.SetText(L"OK");
        panel.AddChild(&button);
        panel.Register(manager);
        EXPECT_TRUE(bar.Initialize());
        bar.UpdateColorMap({GUI::Color::FromWord(0xFF0000FF), GUI::Color::FromWord(0xFF00FF00)}, false);
        bar.SetRectangle({160, 240, 150, 170});
        bar.Register(manager);
        EXPECT_TRUE(axis.Initialize());
        axis.SetRectangle({160, 240, 110, 140});
        axis.SetRange(0.f, 10.f);
        axis.Register(manager);
        for (ManipulatorControl* m : std::initializer_list<ManipulatorControl*>{&gizmo, &plane}) {
            EXPECT_TRUE(m->Initialize());
            m->Register(manager);
        }
        plane.setPosition(-0.8f, 0.f, 0.f);
        EXPECT_TRUE(triad.Initialize());
        triad.Register(manager);
        EXPECT_TRUE(lightWidget.Initialize());
        lightWidget.Register(manager);
        EXPECT_TRUE(plot.Initialize() && samples.Initialize());
        const float y[] = {0.f, 3.f, 1.f, 4.f, 1.f, 5.f, 9.f, 2.f};
        samples.SetData(y, 8);
        plot.AddRenderer(&samples);
        plot.SetRectangle({150, 250, 200, 250});
        plot.Register(manager);
        EXPECT_TRUE(legend.Initialize());
        legend.SetColorMap({GUI::Color::FromWord(0xFF0000FF), GUI::Color::FromWord(0xFFFF0000)}, true);
        legend.SetValues(y, 8);
        legend.SetRectangle({200, 250, 30, 100});
        legend.Register(manager);
    }
    std::shared_ptr<GUI::GUIManager> manager;
    std::shared_ptr<Camera> camera = std::make_shared<Camera>();
    std::shared_ptr<DirectionalLight> light = std::make_shared<DirectionalLight>();
    GUI::Controls::Panel panel;
    GUI::Controls::Button button;
    GUI::Controls::ColorBar bar;
    AxisControl axis;
    ManipulatorControl gizmo{camera};
    PlaneControl plane{camera};
    TriadControl triad{camera, light};
    LightControl lightWidget{light};
    XYPlotControl plot;
    DataSetRenderer samples;
    LegendControl legend;
};

class GLStateTest : public trelvo::test::OverlayTest {};

TEST_F(GLStateTest, EveryEntryPointLeavesEveryItemOfHostStateAsItWas) {
    Scene scene(manager);
    scene.Build();
    manager->UpdateLayers();
    HostObjects host;
    auto stale = [&] { manager->SetNeedsRedraw(true); };
    struct Entry {
        const char* name;
        std::function<void()> call;
    };
    const std::vector<Entry> entries = {
        {"GUIManager::Initialize", [&] { manager->Initialize(); }},
        {"GUIManager::Resize", [&] { manager->Resize(256, 256); }},
        {"GUIManager::UpdateLayers", [&] { stale(), manager->UpdateLayers(); }},
        {"GUIManager::Draw", [&] { manager->Draw(); }},
        {"GUIManager::HitDetect", [&] { PidAt(60, 180); }},
        {"GUIManager::WaitForLayers", [&] { stale(), manager->UpdateLayers(), manager->WaitForLayers(); }},
        {"GUIManager::SetUpsideDown", [&] { manager->SetUpsideDown(false); }},
        {"scene widgets drawn directly: update, Draw, a pick and GetIdLayer after an orbit",
         [&] {
             manager->SetDirectSceneWidgets(true);
             manager->UpdateLayers();
             scene.camera->SetPosition({1.f, 2.f, 5.f});
             scene.camera->CalcMatrices();
             manager->UpdateLayers();
             manager->Draw();
             PidAt(128, 128);
             manager->GetIdLayer();
             manager->SetDirectSceneWidgets(false);
             manager->UpdateLayers();
         }},
        {"pointer press, move, release", [&] { Move(60, 70, 61, 70), Press(60, 70), Release(60, 70); }},
        {"gizmo drag", [&] { Press(128, 128), Move(140, 120, 128, 128, 1), Release(140, 120); }},
        {"ColorBar::Initialize", [&] { scene.bar.Initialize(); }},
        {"ColorBar::UpdateColorMap",
         [&] { scene.bar.UpdateColorMap({GUI::Color::FromWord(0xFFFFFFFF)}, true); }},
        {"ColorBar::DrawCustom", [&] { scene.bar.DrawCustom(); }},
        {"AxisControl::Initialize", [&] { scene.axis.Initialize(); }},
        {"AxisControl::SetRange", [&] { scene.axis.SetRange(-5.f, 5.f); }},
        {"AxisControl::SetRectangle",
         [&] {
             scene.axis.SetRectangle({150, 250, 100, 140});
         }},
        {"AxisControl::DrawCustom", [&] { scene.axis.DrawCustom(); }},
        {"ManipulatorControl::Initialize", [&] { scene.gizmo.Initialize(); }},
        {"ManipulatorControl::DrawCustom", [&] { scene.gizmo.DrawCustom(); }},
        {"PlaneControl::Initialize", [&] { scene.plane.Initialize(); }},
        {"PlaneControl::DrawCustom", [&] { scene.plane.DrawCustom(); }},
        {"TriadControl::Initialize", [&] { scene.triad.Initialize(); }},
        {"TriadControl::DrawCustom", [&] { scene.triad.DrawCustom(); }},
        {"LightControl::Initialize", [&] { scene.lightWidget.Initialize(); }},
        {"LightControl::DrawCustom", [&] { scene.lightWidget.DrawCustom(); }},
        {"XYPlotControl::Initialize", [&] { scene.plot.Initialize(); }},
        {"XYPlotControl::DrawCustom", [&] { scene.plot.DrawCustom(); }},
        {"LegendControl::Initialize", [&] { scene.legend.Initialize(); }},
        {"LegendControl::DrawCustom", [&] { scene.legend.DrawCustom(); }},
        {"ProbeControl::Initialize", [&] { ProbeControl(manager).Initialize(); }},
        {"destructors",
         [&] {
             auto bar = std::make_unique<GUI::Controls::ColorBar>();
             bar->Initialize();
             bar->UpdateColorMap({GUI::Color::FromWord(0xFFFFFFFF)}, false);
             auto other = std::make_unique<GUI::GUIManager>();
             other->Initialize();
             other->Resize(64, 64);
             bar.reset();
             other.reset();
         }},
    };
    for (bool scissor : {true, false}) {
        host.scissor = scissor;
        for (const Entry& e : entries) {
            host.SetHostile();
            const Snapshot before = Snapshot::Take();
            e.call();
            EXPECT_EQ(before.Diff(Snapshot::Take()), "") << e.name << (scissor ? ", scissored" : "");
            HostObjects::SetDefaults();
        }
    }
}

/// The host's framebuffer after a frame of the scene, and the ids picked on a grid over the view.
struct Frame {
    std::vector<uint8_t> pixels;
    std::vector<unsigned> ids;
};

TEST_F(GLStateTest, StateTheHostLeftChangesNeitherThePictureNorPicking) {
    HostObjects host;
    host.scissor = false; // a scissor the host sets is honoured on purpose
    auto frame = [&](bool hostile, GUI::Geometry::Point origin) {
        HostObjects::SetDefaults();
        glBindFramebuffer(GL_FRAMEBUFFER, host.framebuffer);
        const GLfloat grey[4] = {0.5f, 0.5f, 0.5f, 1.f};
        glClearBufferfv(GL_COLOR, 0, grey);
        if (hostile)
            host.SetHostile();
        Frame f;
        {
            auto m = std::make_shared<GUI::GUIManager>();
            EXPECT_TRUE(m->Initialize());
            m->Resize(256, 256);
            m->SetOrigin(origin.x, origin.y);
            Scene scene(m);
            scene.Build();
            m->UpdateLayers();
            m->Draw();
            for (int y = 4; y < 256; y += 8)
                for (int x = 4; x < 256; x += 8) {
                    unsigned pid = 0;
                    m->HitDetect(x, y, &pid, nullptr);
                    f.ids.push_back(pid);
                }
        }
        HostObjects::SetDefaults();
        glBindFramebuffer(GL_FRAMEBUFFER, host.framebuffer);
        f.pixels = ReadColorRegion(0, 0, 256, 256);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return f;
    };
    const Frame reference = frame(false, {0, 0});
    const Frame guest = frame(true, {0, 0});
    // The same draws on the same rasteriser: bit for bit.
    EXPECT_TRUE(guest.pixels == reference.pixels);
    EXPECT_TRUE(guest.ids == reference.ids);
    std::set<unsigned> picked(reference.ids.begin(), reference.ids.end());
    EXPECT_GE(picked.size(), 6u) << "the grid should land on most of the scene's controls";
    if (guest.pixels != reference.pixels) {
        trelvo::test::WritePng(trelvo::test::OutputDir() + "/glstate_reference.png", reference.pixels.data(),
                               256, 256);
        trelvo::test::WritePng(trelvo::test::OutputDir() + "/glstate_guest.png", guest.pixels.data(), 256,
                               256);
    }

    // A view that starts away from the framebuffer's corner: the picture moves with the origin, the
    // ids (in the view's own pixels) stay.
    const Frame shifted = frame(true, {40, 24});
    EXPECT_TRUE(shifted.ids == reference.ids);
    int wrong = 0;
    for (int y = 0; y + 24 < 256; ++y)
        for (int x = 0; x + 40 < 256; ++x)
            for (int c = 0; c < 4; ++c)
                wrong += shifted.pixels[((y + 24) * 256 + x + 40) * 4 + c] !=
                         reference.pixels[(y * 256 + x) * 4 + c];
    EXPECT_EQ(wrong, 0);
}

} // namespace
