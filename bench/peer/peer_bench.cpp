// The same UI in TrelvoGUI and in Dear ImGui on one headless context: N push buttons with 13-pixel
// text in panels of 25, at 1280 x 720. Frames of both are measured in alternating blocks, so that the
// machine's noise hits both alike, and reported as medians (CPU time of the frame, and wall time with
// glFinish), with ratios to the peer and to the floor of one full-view blended quad. Every ratio is
// printed once more as a line `RATIO <case> <N> <value>` (TrelvoGUI over the peer) for scripts.
//
//     peer_bench [--blocks B] [--frames F] [--case WORD] [--n N] [--compact-ids]
//
// --compact-ids runs TrelvoGUI with compact id layers (two words a pixel); its memory lines are then
// `RATIO memory_compact` and `RATIO memory_gl_compact`.
#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/localframe.h>

#include <graphicsbase/headlesscontext.h>

#include "peertiming.h"

#include <GL/glew.h>

#include <backends/imgui_impl_opengl3.h>
#include <imgui.h>

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 720;
constexpr int kPerPanel = 25;
constexpr int kButtonW = 46;
constexpr int kButtonH = 20;
constexpr int kGap = 4;
constexpr int kPanelW = 5 * (kButtonW + kGap) + kGap;
constexpr int kPanelH = 5 * (kButtonH + kGap) + kGap;

/// Where button i sits, in host pixels (y down): panels of 5 x 5 tiled over the view, wrapping (and
/// so overlapping) when there are more than fit.
struct Layout {
    int panelX(int p) const { return 8 + (p % 4) * (kPanelW + 8) + (p / 24) * 12; }
    int panelY(int p) const { return 8 + ((p / 4) % 6) * (kPanelH + 8) + (p / 24) * 12; }
    int buttonX(int i) const { return kGap + (i % kPerPanel % 5) * (kButtonW + kGap); }
    int buttonY(int i) const { return kGap + (i % kPerPanel / 5) * (kButtonH + kGap); }
    /// Centre of button i in host pixels.
    int centreX(int i) const { return panelX(i / kPerPanel) + buttonX(i) + kButtonW / 2; }
    int centreY(int i) const { return panelY(i / kPerPanel) + buttonY(i) + kButtonH / 2; }
};

using peer::Measure;
using peer::Sample;

bool compactIds = false;

class TrelvoUI {
public:
    /// With `scene`, the camera-following widgets of a 3D viewer as well: a gizmo on the host's cube,
    /// a plane widget beside it, the view cube and the light widget, drawn straight into the host's
    /// frame unless `layered`.
    TrelvoUI(int n, bool scene, bool layered = false) : manager_(std::make_shared<GUI::GUIManager>()) {
        manager_->SetDirectSceneWidgets(scene && !layered);
        manager_->Initialize();
        manager_->SetCompactIdLayers(compactIds);
        manager_->Resize(kWidth, kHeight);
        if (scene) {
            camera_ = std::make_shared<Camera>();
            camera_->SetViewport(kWidth, kHeight);
            OrbitCamera(0);
            auto light = std::make_shared<DirectionalLight>();
            cube_ = std::make_shared<LocalFrame>();
            auto gizmo = std::make_unique<ManipulatorControl>(camera_);
            auto plane = std::make_unique<PlaneControl>(camera_);
            if (gizmo->Initialize())
                gizmo->attachFrame(cube_);
            if (plane->Initialize())
                plane->setPosition(-1.5f, 0.f, 0.f);
            auto triad = std::make_unique<TriadControl>(camera_, light);
            triad->Initialize();
            auto lamp = std::make_unique<LightControl>(light);
            lamp->Initialize();
            gizmo->transformationSignal.connect([] { return DRAW_SCENE; });
            plane->transformationSignal.connect([] { return DRAW_SCENE; });
            widgets_.push_back(std::move(gizmo));
            widgets_.push_back(std::move(plane));
            widgets_.push_back(std::move(triad));
            widgets_.push_back(std::move(lamp));
            for (auto& w : widgets_)
                w->Register(manager_);
        }
        Layout l;
        for (int p = 0; p * kPerPanel < n; ++p) {
            auto panel = std::make_unique<GUI::Controls::Panel>();
            int x = l.panelX(p), y = kHeight - l.panelY(p) - kPanelH;
            panel->SetRectangle({x, x + kPanelW, y, y + kPanelH});
            for (int i = p * kPerPanel; i < std::min(n, (p + 1) * kPerPanel); ++i) {
                auto button = std::make_unique<GUI::Controls::Button>();
                int bx = l.buttonX(i), by = kPanelH - l.buttonY(i) - kButtonH;
                button->SetRectangle({bx, bx + kButtonW, by, by + kButtonH});
                button->GetLabel()->SetFontSize(13);
                button->SetText(L"B" + std::to_wstring(i));
                panel->AddChild(button.get());
                buttons_.push_back(std::move(button));
            }
            panel->Register(manager_);
            panels_.push_back(std::move(panel));
        }
        manager_->UpdateLayers();
    }
    ~TrelvoUI() {
        widgets_.clear();
        buttons_.clear();
        panels_.clear();
        manager_.reset();
    }
    void Move(int x, int y) {
        VX_UI::MouseEvent e;
        e.x = x;
        e.y = y;
        e.prevX = lastX_;
        e.prevY = lastY_;
        manager_->mouseMoveEvent(&e);
        lastX_ = x;
        lastY_ = y;
    }
    void Frame() {
        manager_->UpdateLayers();
        manager_->Draw();
    }
    void RestaleAll() {
        for (auto& p : panels_)
            p->SetNeedsRedraw(true);
    }
    /// The host orbits its camera a little and says so.
    void OrbitCamera(int k) {
        float a = 0.02f * static_cast<float>(k % 50);
        camera_->SetPosition({5.f * std::sin(a), 1.5f, 5.f * std::cos(a)});
        camera_->CalcMatrices();
        manager_->SetCameraUpdated(true);
    }
    GUI::GUIManager& Manager() { return *manager_; }

private:
    std::shared_ptr<GUI::GUIManager> manager_;
    std::shared_ptr<Camera> camera_;
    std::shared_ptr<LocalFrame> cube_;
    std::vector<std::unique_ptr<GUI::Controls::Base>> widgets_;
    std::vector<std::unique_ptr<GUI::Controls::Panel>> panels_;
    std::vector<std::unique_ptr<GUI::Controls::Button>> buttons_;
    int lastX_ = 0, lastY_ = 0;
};

class ImGuiUI {
public:
    explicit ImGuiUI(int n) : n_(n) {
        context_ = ImGui::CreateContext();
        ImGui::SetCurrentContext(context_);
        ImGuiIO& io = ImGui::GetIO();
        io.IniFilename = nullptr;
        io.DisplaySize = ImVec2(float(kWidth), float(kHeight));
        ImGui_ImplOpenGL3_Init("#version 330");
        Frame();
    }
    ~ImGuiUI() {
        ImGui::SetCurrentContext(context_);
        ImGui_ImplOpenGL3_Shutdown();
        ImGui::DestroyContext(context_);
    }
    void Move(int x, int y) {
        ImGui::SetCurrentContext(context_);
        ImGui::GetIO().MousePos = ImVec2(float(x), float(y));
    }
    void Frame() {
        ImGui::SetCurrentContext(context_);
        ImGuiIO& io = ImGui::GetIO();
        io.DeltaTime = 1.f / 60.f;
        ImGui_ImplOpenGL3_NewFrame();
        ImGui::NewFrame();
        Layout l;
        char name[32];
        for (int p = 0; p * kPerPanel < n_; ++p) {
            std::snprintf(name, sizeof name, "panel %d", p);
            ImGui::SetNextWindowPos(ImVec2(float(l.panelX(p)), float(l.panelY(p))));
            ImGui::SetNextWindowSize(ImVec2(float(kPanelW), float(kPanelH)));
            ImGui::Begin(name, nullptr,
                         ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                             ImGuiWindowFlags_NoSavedSettings);
            for (int i = p * kPerPanel; i < std::min(n_, (p + 1) * kPerPanel); ++i) {
                ImGui::SetCursorPos(ImVec2(float(l.buttonX(i)), float(l.buttonY(i))));
                std::snprintf(name, sizeof name, "B%d", i);
                ImGui::Button(name, ImVec2(float(kButtonW), float(kButtonH)));
            }
            ImGui::End();
        }
        ImGui::Render();
        ImGui_ImplOpenGL3_RenderDrawData(ImGui::GetDrawData());
    }

private:
    int n_;
    ImGuiContext* context_ = nullptr;
};

/// The floor: one full-view blended textured quad, what any overlay composite costs at least.
class Floor {
public:
    Floor() {
        const char* vs = "#version 330 core\nlayout(location=0) in vec2 p; out vec2 uv;"
                         "void main(){ uv = p * 0.5 + 0.5; gl_Position = vec4(p, 0.0, 1.0); }";
        const char* fs = "#version 330 core\nin vec2 uv; uniform sampler2D t; out vec4 c;"
                         "void main(){ c = texture(t, uv); }";
        program_ = glCreateProgram();
        for (auto [stage, src] : {std::pair{GL_VERTEX_SHADER, vs}, std::pair{GL_FRAGMENT_SHADER, fs}}) {
            GLuint s = glCreateShader(stage);
            glShaderSource(s, 1, &src, nullptr);
            glCompileShader(s);
            glAttachShader(program_, s);
            glDeleteShader(s);
        }
        glLinkProgram(program_);
        const float quad[] = {-1, -1, 1, -1, 1, 1, -1, 1};
        glGenVertexArrays(1, &vao_);
        glBindVertexArray(vao_);
        glGenBuffers(1, &vbo_);
        glBindBuffer(GL_ARRAY_BUFFER, vbo_);
        glBufferData(GL_ARRAY_BUFFER, sizeof quad, quad, GL_STATIC_DRAW);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glBindVertexArray(0);
        std::vector<unsigned char> pixels(size_t(kWidth) * kHeight * 4, 128);
        glGenTextures(1, &texture_);
        glBindTexture(GL_TEXTURE_2D, texture_);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kWidth, kHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     pixels.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    }
    ~Floor() {
        glDeleteTextures(1, &texture_);
        glDeleteBuffers(1, &vbo_);
        glDeleteVertexArrays(1, &vao_);
        glDeleteProgram(program_);
    }
    void Frame() {
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glUseProgram(program_);
        glBindTexture(GL_TEXTURE_2D, texture_);
        glBindVertexArray(vao_);
        glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
        glBindVertexArray(0);
        glUseProgram(0);
        glDisable(GL_BLEND);
    }

private:
    GLuint program_ = 0, vao_ = 0, vbo_ = 0, texture_ = 0;
};

void Clear() {
    peer::Clear(kWidth, kHeight);
}

/// Resident set size now, in KiB. Freed heap pages go back to the system first, so that what the
/// previous size's UIs freed is not counted as room the next one grows into unseen.
long ResidentKiB() {
    malloc_trim(0);
    long pages = 0, resident = 0;
    if (FILE* f = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2)
            resident = 0;
        std::fclose(f);
    }
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

/// GL memory held by the textures and buffers a library created, by kind, in bytes: the names
/// that exist now and did not in `before` (names are small integers handed out in order).
struct GLMemory {
    static constexpr GLuint kScan = 20000;
    std::vector<bool> textures = std::vector<bool>(kScan), buffers = std::vector<bool>(kScan);
    double viewLayers = 0, colour = 0, ids = 0, buffer = 0;
    static GLMemory Now(const GLMemory* before = nullptr) {
        GLMemory m;
        for (GLuint name = 1; name < kScan; ++name) {
            m.textures[name] = glIsTexture(name);
            m.buffers[name] = glIsBuffer(name);
            if (m.textures[name] && !(before && before->textures[name]))
                m.AddTexture(name);
            if (m.buffers[name] && !(before && before->buffers[name])) {
                GLint size = 0;
                glGetNamedBufferParameteriv(name, GL_BUFFER_SIZE, &size);
                m.buffer += size;
            }
        }
        return m;
    }
    void AddTexture(GLuint name) {
        GLint w = 0, h = 0, format = 0, target = 0;
        glGetTextureParameteriv(name, GL_TEXTURE_TARGET, &target);
        if (target != GL_TEXTURE_2D)
            return;
        glGetTextureLevelParameteriv(name, 0, GL_TEXTURE_WIDTH, &w);
        glGetTextureLevelParameteriv(name, 0, GL_TEXTURE_HEIGHT, &h);
        glGetTextureLevelParameteriv(name, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
        // Integer formats hold ids; everything else here is four bytes a pixel of colour or depth.
        const std::pair<GLint, double> idFormats[] = {{GL_RGBA32UI, 16}, {GL_RG32UI, 8}, {GL_R32UI, 4}};
        double bytesPerPixel = 4;
        bool id = false;
        for (auto [f, size] : idFormats)
            if (format == f)
                bytesPerPixel = size, id = true;
        double bytes = double(w) * h * bytesPerPixel;
        (w == kWidth && h == kHeight ? viewLayers : id ? ids : colour) += bytes;
    }
    double Total() const { return viewLayers + colour + ids + buffer; }
};

void PrintRatio(const char* name, int n, double value) {
    std::printf("RATIO %s %d %.3f\n", name, n, value);
}

} // namespace

int main(int argc, char** argv) {
    int blocks = 12, frames = 8;
    const char* only = nullptr;
    std::vector<int> sizes{10, 100, 1000};
    for (int i = 1; i < argc; ++i)
        compactIds = compactIds || !std::strcmp(argv[i], "--compact-ids");
    for (int i = 1; i + 1 < argc; ++i) {
        if (!std::strcmp(argv[i], "--blocks"))
            blocks = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--frames"))
            frames = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--case")) // a word of the case's name, e.g. hover
            only = argv[++i];
        else if (!std::strcmp(argv[i], "--n"))
            sizes = {std::atoi(argv[++i])};
    }
    HeadlessGLContext context(kWidth, kHeight);
    if (!context.Valid()) {
        std::fprintf(stderr, "%s\n", context.Error().c_str());
        return 1;
    }
    std::printf("renderer: %s; %d blocks of %d frames per case and library\n", context.Renderer().c_str(),
                blocks, frames);
    // The floor is measured in blocks between those of both libraries, case by case, so that the
    // ratio to it sees the same machine as the case does.
    Floor floor;
    auto floorFrame = [&] {
        Clear();
        floor.Frame();
    };
    std::printf("floor: one full-view blended quad, measured with each case\n\n");
    std::printf("| N | case | TrelvoGUI CPU | ImGui CPU | ratio | TrelvoGUI wall | ImGui wall | ratio | wall "
                "/ floor |\n");
    std::printf("|---|---|---|---|---|---|---|---|---|\n");

    struct Ratio {
        std::string name;
        int n;
        double value;
    };
    std::vector<Ratio> ratios;
    for (int n : sizes) {
        Layout l;
        // Memory: what each library adds to the resident set of the process with its context, after
        // one frame drawn (llvmpipe keeps GL storage in process memory, so it is counted there too).
        GLMemory glBefore = GLMemory::Now();
        long before = ResidentKiB();
        const size_t heapBefore = mallinfo2().uordblks;
        auto trelvo = std::make_unique<TrelvoUI>(n, false);
        trelvo->Frame();
        glFinish();
        long trelvoRss = ResidentKiB() - before;
        const double trelvoHeap = double(mallinfo2().uordblks - heapBefore);
        GLMemory trelvoGL = GLMemory::Now(&glBefore);
        auto imgui = std::make_unique<ImGuiUI>(n);
        glFinish();
        long imguiRss = ResidentKiB() - before - trelvoRss;
        GLMemory imguiGL = GLMemory::Now(&trelvoGL);
        // The same UI with a gizmo over the scene, for the frame in which only the camera moved.
        auto withGizmo = std::make_unique<TrelvoUI>(n, true);
        auto withGizmoLayered = std::make_unique<TrelvoUI>(n, true, true);
        struct Case {
            const char* key; // of the RATIO lines; none for cases that compare unlike work
            const char* name;
            std::function<void(int)> trelvoFrame, imguiFrame;
        };
        int hoverIndex = 0;
        const Case cases[] = {
            {"idle", "idle frame", [&](int) { Clear(), trelvo->Frame(); },
             [&](int) { Clear(), imgui->Frame(); }},
            // The pointer event arrives between frames, before the host starts drawing.
            {"hover", "hover frame (pointer onto the next button)",
             [&](int) {
                 hoverIndex = (hoverIndex + 1) % n;
                 trelvo->Move(l.centreX(hoverIndex), l.centreY(hoverIndex));
                 Clear();
                 trelvo->Frame();
             },
             [&](int) {
                 imgui->Move(l.centreX(hoverIndex), l.centreY(hoverIndex));
                 Clear();
                 imgui->Frame();
             }},
            // TrelvoGUI answers such a move with DrawFlags 0: the host draws no frame, so the event is
            // the whole cost. ImGui learns that nothing changed only by building a frame.
            {nullptr, "pointer move that changes nothing (TrelvoGUI: the event alone)",
             [&](int k) { trelvo->Move(l.centreX(0) + (k & 1), l.centreY(0)); },
             [&](int k) {
                 imgui->Move(l.centreX(0) + (k & 1), l.centreY(0));
                 Clear();
                 imgui->Frame();
             }},
            {"rerender", "full re-render",
             [&](int) {
                 Clear();
                 trelvo->RestaleAll();
                 trelvo->Frame();
             },
             [&](int) { Clear(), imgui->Frame(); }},
            // ImGui has no scene widget: its frame is what it pays whatever moved.
            {"orbit",
             "orbit: only the camera moved (TrelvoGUI: with the gizmo, plane, view cube and light widget)",
             [&](int k) {
                 Clear();
                 withGizmo->OrbitCamera(k);
                 withGizmo->Frame();
             },
             [&](int) { Clear(), imgui->Frame(); }},
            // The same with the scene widgets drawn through the layers, as without SetDirectSceneWidgets.
            {"orbit_layers", "orbit, scene widgets drawn through the layers",
             [&](int k) {
                 Clear();
                 withGizmoLayered->OrbitCamera(k);
                 withGizmoLayered->Frame();
             },
             [&](int) { Clear(), imgui->Frame(); }},
        };
        for (const Case& c : cases) {
            if (only && !std::strstr(c.name, only) && !(c.key && std::strstr(c.key, only)))
                continue;
            Sample a, b, f;
            for (int block = 0; block < blocks; ++block) {
                for (int k = 0; k < frames; ++k)
                    Measure(a, [&] { c.trelvoFrame(k); });
                for (int k = 0; k < frames; ++k)
                    Measure(b, [&] { c.imguiFrame(k); });
                for (int k = 0; k < frames; ++k)
                    Measure(f, floorFrame);
            }
            double ac = Sample::Median(a.cpu), bc = Sample::Median(b.cpu), aw = Sample::Median(a.wall),
                   bw = Sample::Median(b.wall);
            const double floorWall = Sample::Median(f.wall);
            std::printf("| %d | %s | %.3f ms | %.3f ms | %.2fx | %.3f ms | %.3f ms | %.2fx | %.2fx |\n", n,
                        c.name, ac * 1e3, bc * 1e3, ac / bc, aw * 1e3, bw * 1e3, aw / bw, aw / floorWall);
            if (c.key) {
                ratios.push_back({std::string(c.key) + "_cpu", n, ac / bc});
                ratios.push_back({std::string(c.key) + "_full", n, aw / bw});
            }
        }
        auto mib = [](double bytes) { return bytes / 1048576.0; };
        std::printf(
            "| %d | memory: resident growth when built and drawn once | %.1f MiB | %.1f MiB | %.2fx | "
            "heap %.1f; GL: view layers %.1f, other colour textures %.1f, id textures %.1f, buffers %.1f "
            "MiB | GL: %.1f MiB | %.2fx | |\n",
            n, trelvoRss / 1024.0, imguiRss / 1024.0, double(trelvoRss) / double(imguiRss), mib(trelvoHeap),
            mib(trelvoGL.viewLayers), mib(trelvoGL.colour), mib(trelvoGL.ids), mib(trelvoGL.buffer),
            mib(imguiGL.Total()), trelvoGL.Total() / imguiGL.Total());
        // Only the first size of a process gives a fair resident figure: later ones reuse what the
        // earlier ones' libraries keep (the driver's pools). scripts/bench.sh runs each size alone.
        if (n == sizes.front())
            ratios.push_back(
                {compactIds ? "memory_compact" : "memory", n, double(trelvoRss) / double(imguiRss)});
        ratios.push_back(
            {compactIds ? "memory_gl_compact" : "memory_gl", n, trelvoGL.Total() / imguiGL.Total()});
        withGizmo.reset();
        withGizmoLayered.reset();
        imgui.reset();
        trelvo.reset();
    }
    std::printf("\n");
    for (const Ratio& r : ratios)
        PrintRatio(r.name.c_str(), r.n, r.value);
    return 0;
}
