#include "demohost.h"
#include "democharts.h"
#include "demolegend.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/planecontrol.h>
#include <trelvogui/probecontrol.h>
#include <trelvogui/scenecompositor.h>
#include <trelvogui/triadcontrol.h>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <cstdio>

using namespace GraphicsBase;

namespace demo {
namespace {

const char* kCubeVertex = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
uniform mat4 model;
uniform mat4 viewProjection;
out vec3 worldNormal;
void main() {
    worldNormal = transpose(inverse(mat3(model))) * normal;
    gl_Position = viewProjection * model * vec4(position, 1.0);
})";

const char* kCubeFragment = R"(#version 330 core
in vec3 worldNormal;
uniform vec3 lightDirection;
uniform vec3 baseColor;
layout(location = 0) out vec4 color;
// For the compositor's normal attachment; ignored where the target has none.
layout(location = 1) out vec4 normalOut;
void main() {
    vec3 n = normalize(worldNormal);
    vec3 light = normalize(lightDirection);
    float diffuse = max(dot(n, light), 0.0);
    color = vec4(baseColor * (0.35 + 0.65 * diffuse), 1.0);
    normalOut = vec4(n, 0.0);
})";

GLuint compile(GLenum stage, const char* source) {
    GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    GLint ok = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (!ok) {
        char log[1024];
        glGetShaderInfoLog(shader, sizeof log, nullptr, log);
        std::fprintf(stderr, "cube shader: %s\n", log);
    }
    return shader;
}

std::string describe(GUI::Controls::Base* c) {
    return c ? "control " + std::to_string(c->GetId()) : std::string("nothing");
}

GUI::Color rgba(uint8_t r, uint8_t g, uint8_t b, uint8_t a = 255) {
    return GUI::Color{r, g, b, a};
}

} // namespace

DemoHost::DemoHost(int width, int height)
    : width_(width), height_(height), camera_(std::make_shared<Camera>()),
      light_(std::make_shared<DirectionalLight>()), cubeFrame_(std::make_shared<LocalFrame>()) {
    camera_->SetPosition({2.4f, 1.9f, 3.4f});
    camera_->SetTarget({0.f, 0.f, 0.f});
    camera_->SetUpVector({0.f, 1.f, 0.f});
    camera_->SetPerspective(40.f, 0.1f, 50.f);
    camera_->SetViewport(width, height);
    camera_->CalcMatrices();
    light_->position = {0.4f, 0.8f, 0.6f};
}

void DemoHost::CameraChanged() {
    camera_->CalcMatrices();
}

DemoHost::~DemoHost() {
    // Controls go before the manager; the probe box owns its own.
    probe_.reset();
    charts_.reset();
    legend_.reset();
    lightWidget_.reset();
    triad_.reset();
    plane_.reset();
    gizmo_.reset();
    while (!owned_.empty())
        owned_.pop_back();
    input_.reset();
    compositor_.reset();
    manager_.reset();
    if (cubeVao_)
        glDeleteVertexArrays(1, &cubeVao_);
    if (cubeVbo_)
        glDeleteBuffers(1, &cubeVbo_);
    if (cubeProgram_)
        glDeleteProgram(cubeProgram_);
}

bool DemoHost::Initialize() {
    if (!buildCube())
        return false;
    manager_ = std::make_shared<GUI::GUIManager>(GUI::Renderer::OpenGL);
    if (!manager_->Initialize()) {
        std::fprintf(stderr, "the overlay could not be initialised\n");
        return false;
    }
    manager_->Resize(width_, height_);
    // The scene goes through the compositor, which gives it contact shadows when occlusion is on.
    compositor_ = std::make_unique<SceneCompositor>(camera_);
    if (!compositor_->Initialize()) {
        std::fprintf(stderr, "the scene compositor could not be initialised\n");
        return false;
    }
    compositor_->SetNormalAttachment(true);
    compositor_->SetRadius(0.45f);
    compositor_->SetOcclusionEnabled(false);
    compositor_->Resize(width_, height_);
    input_ = std::make_unique<GUI::GUIInputManager>(*this);
    input_->addScreenHandler(manager_.get());
    // The 3D widgets are registered first, so the panels are drawn over them.
    if (!buildSceneWidgets())
        return false;
    buildOverlay();
    legend_ = std::make_unique<DemoLegend>();
    charts_ = std::make_unique<DemoCharts>();
    return legend_->Build(manager_, width_, height_) && charts_->Build(manager_);
}

void DemoHost::buildOverlay() {
    using namespace GUI::Controls;
    const int top = height_;

    toolbar_ = own(new Panel());
    toolbar_->SetRectangle({16, 336, top - 236, top - 16});
    toolbar_->SetMargins({12, 12, 12, 12});

    auto* title = own(new Label());
    title->SetFontSize(20);
    title->GetTextRecord()->bold = true;
    title->SetColor(rgba(30, 40, 60));
    title->SetRectangle({0, 260, 170, 196});
    title->SetText(L"Scene tools");
    toolbar_->AddChild(title);

    resetButton_ = own(new Button());
    resetButton_->SetRectangle({0, 140, 120, 156});
    resetButton_->SetText(L"Count click");
    resetButton_->ClickedSignal.connect([this] {
        ++clicks_;
        clicksLabel_->SetText(L"Clicks: " + std::to_wstring(clicks_));
        note("  button 'Count click' fired ClickedSignal");
    });
    toolbar_->AddChild(resetButton_);

    clicksLabel_ = own(new Label());
    clicksLabel_->SetRectangle({152, 290, 120, 156});
    clicksLabel_->SetVerticalAlignment(1);
    clicksLabel_->SetColor(rgba(30, 40, 60));
    clicksLabel_->SetText(L"Clicks: 0");
    toolbar_->AddChild(clicksLabel_);

    rotateSwitch_ = own(new SwitchButton());
    rotateSwitch_->SetRectangle({0, 28, 76, 104});
    rotateSwitch_->SetCallback([this] {
        rotating_ = rotateSwitch_->IsOn();
        note(std::string("  switch callback: rotation ") + (rotating_ ? "on" : "off"));
        return DRAW_SCENE;
    });
    toolbar_->AddChild(rotateSwitch_);

    auto* switchLabel = own(new Label());
    switchLabel->SetRectangle({40, 200, 76, 104});
    switchLabel->SetVerticalAlignment(1);
    switchLabel->SetColor(rgba(30, 40, 60));
    switchLabel->SetText(L"Rotate the cube");
    toolbar_->AddChild(switchLabel);

    auto* greeting = own(new Label());
    greeting->SetRectangle({0, 260, 36, 64});
    greeting->SetVerticalAlignment(1);
    greeting->SetColor(rgba(20, 90, 140));
    greeting->SetText(L"Привет, мир · Γειά σου κόσμε");
    toolbar_->AddChild(greeting);

    auto* axis = own(new Label());
    axis->SetOrientation(1);
    axis->SetFontSize(14);
    axis->SetColor(rgba(120, 40, 40));
    axis->SetRectangle({272, 296, 0, 110});
    axis->SetHorizontalAlignment(1);
    axis->SetVerticalAlignment(1);
    axis->SetText(L"Depth (mm)");
    toolbar_->AddChild(axis);

    auto* hint = own(new Label());
    hint->SetFontSize(13);
    hint->SetRectangle({0, 260, 4, 28});
    hint->SetVerticalAlignment(1);
    hint->SetColor(rgba(90, 100, 110));
    hint->SetText(L"Drag the panels; resize the notes.");
    toolbar_->AddChild(hint);
    toolbar_->Register(manager_);

    notes_ = own(new Panel());
    notes_->SetRectangle({width_ - 276, width_ - 16, top - 196, top - 16});
    notes_->SetMinSize(160, 90);
    // The grip sits in the panel's own corner, which margins would shift: keep them zero here.
    notes_->SetSizeable(true);
    auto* notesText = own(new Label());
    notesText->SetRectangle({12, 240, 140, 170});
    notesText->SetColor(rgba(30, 40, 60));
    notesText->SetVerticalAlignment(1);
    notesText->SetText(L"Notes: drag my grip");
    notes_->AddChild(notesText);
    notes_->RectangleChangedSignal.connect([this] {
        const auto& r = notes_->GetRectangle();
        note("  notes panel is now " + std::to_string(r.Width()) + " x " + std::to_string(r.Height()));
    });
    notes_->Register(manager_);

    probe_ = std::make_unique<ProbeControl>(manager_);
    probe_->Initialize();
    probe_->SetName(L"Probe A");
    probe_->SetCollapsedText(L"HU 42 · 3.1 mm");
    // Left of the light widget, which keeps the lower-right corner.
    probe_->SetLocation(width_ - 345, 24);
}

bool DemoHost::buildSceneWidgets() {
    gizmo_ = std::make_unique<ManipulatorControl>(camera_);
    if (!gizmo_->Initialize()) {
        std::fprintf(stderr, "the gizmo could not be initialised\n");
        return false;
    }
    gizmo_->attachFrame(cubeFrame_);
    gizmo_->transformationSignal.connect([this] {
        const LocalFrame& t = gizmo_->getTransformation();
        char line[160];
        std::snprintf(line, sizeof line, "  gizmo step: moved (%.3f, %.3f, %.3f), scaled (%.3f, %.3f, %.3f)",
                      t.getPosition().x, t.getPosition().y, t.getPosition().z, gizmo_->ScaleStep().x,
                      gizmo_->ScaleStep().y, gizmo_->ScaleStep().z);
        stepNotes_.push_back(line);
        return DRAW_SCENE;
    });
    // One undo step per drag: the cube's pose is noted at the press and kept when the drag ends (a
    // cancelled drag has put everything back by itself and leaves nothing to undo).
    gizmo_->dragStartedSignal.connect(
        [this](const LocalFrame&, const LocalFrame&) { cubeAtPress_ = *cubeFrame_; });
    gizmo_->dragEndedSignal.connect([this](const LocalFrame& atPress, const LocalFrame&) {
        gizmoUndo_.push_back({atPress, cubeAtPress_});
    });
    gizmo_->dragCancelledSignal.connect(
        [this](const LocalFrame&, const LocalFrame&) { note("  gizmo drag cancelled: back at the press"); });
    gizmo_->Register(manager_);

    // A slicing plane beside the cube, standing upright and facing along x: it slides along its
    // normal and tilts, which is all a clipping plane needs.
    plane_ = std::make_unique<PlaneControl>(camera_);
    if (!plane_->Initialize()) {
        std::fprintf(stderr, "the plane widget could not be initialised\n");
        return false;
    }
    plane_->SetShape(Disc);
    plane_->setPosition(-1.3f, -0.9f, 1.2f);
    glm::quat upright = glm::angleAxis(glm::radians(90.f), glm::vec3(0.f, 1.f, 0.f));
    plane_->setOrientation(upright.w, upright.x, upright.y, upright.z);
    plane_->setScale(1.3f, 1.3f, 1.f);
    plane_->enableTranslation(false, false, true);
    plane_->enableRotation(true, true, false);
    plane_->enableScaling(false, false, false);
    plane_->transformationSignal.connect([] { return DRAW_SCENE; });
    plane_->Register(manager_);

    // The orientation cube and the light widget share the scene's camera and light: what one changes,
    // the scene and every widget that follows it see at the next frame.
    triad_ = std::make_unique<TriadControl>(camera_, light_);
    lightWidget_ = std::make_unique<LightControl>(light_);
    if (!triad_->Initialize() || !lightWidget_->Initialize()) {
        std::fprintf(stderr, "the orientation cube or the light widget could not be initialised\n");
        return false;
    }
    triad_->Register(manager_);
    lightWidget_->Register(manager_);
    return true;
}

bool DemoHost::FindPart(unsigned pid, unsigned sid, int& x, int& y) {
    std::vector<GLuint> ids(static_cast<size_t>(width_) * height_ * 4);
    manager_->WaitForLayers();
    GLint previous = 0;
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &previous);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, manager_->GetLayerFramebuffer());
    glReadBuffer(GL_COLOR_ATTACHMENT1);
    glReadPixels(0, 0, width_, height_, GL_RGBA_INTEGER, GL_UNSIGNED_INT, ids.data());
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(previous));
    auto is = [&](int px, int py) {
        if (px < 0 || py < 0 || px >= width_ || py >= height_)
            return false;
        const GLuint* t = &ids[(static_cast<size_t>(py) * width_ + px) * 4];
        return t[0] == pid && t[1] == sid;
    };
    // The pixel of the part farthest from its edges, so a press lands well inside it.
    int best = -1;
    for (int py = 0; py < height_; ++py)
        for (int px = 0; px < width_; ++px) {
            if (!is(px, py))
                continue;
            int depth = 0;
            while (depth < 8 && is(px + depth + 1, py) && is(px - depth - 1, py) && is(px, py + depth + 1) &&
                   is(px, py - depth - 1))
                ++depth;
            if (depth > best) {
                best = depth;
                x = px;
                y = height_ - py;
            }
        }
    return best >= 0;
}

bool DemoHost::buildCube() {
    cubeProgram_ = glCreateProgram();
    GLuint vs = compile(GL_VERTEX_SHADER, kCubeVertex);
    GLuint fs = compile(GL_FRAGMENT_SHADER, kCubeFragment);
    glAttachShader(cubeProgram_, vs);
    glAttachShader(cubeProgram_, fs);
    glLinkProgram(cubeProgram_);
    glDeleteShader(vs);
    glDeleteShader(fs);
    GLint ok = 0;
    glGetProgramiv(cubeProgram_, GL_LINK_STATUS, &ok);
    if (!ok) {
        std::fprintf(stderr, "cube program does not link\n");
        return false;
    }
    std::vector<float> v;
    const glm::vec3 normals[6] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
    for (const glm::vec3& n : normals) {
        glm::vec3 u = glm::abs(n.x) > 0.5f ? glm::vec3(0, 1, 0) : glm::vec3(1, 0, 0);
        glm::vec3 w = glm::cross(n, u);
        glm::vec3 corners[4] = {n - u - w, n + u - w, n + u + w, n - u + w};
        for (int i : {0, 1, 2, 0, 2, 3}) {
            glm::vec3 p = corners[i] * 0.5f;
            v.insert(v.end(), {p.x, p.y, p.z, n.x, n.y, n.z});
        }
    }
    // The floor the cube stands on: a square under its bottom face.
    const float y = -0.5f, e = 3.f;
    for (const glm::vec2& c : {glm::vec2(-e, -e), glm::vec2(-e, e), glm::vec2(e, e), glm::vec2(-e, -e),
                               glm::vec2(e, e), glm::vec2(e, -e)})
        v.insert(v.end(), {c.x, y, c.y, 0.f, 1.f, 0.f});
    glGenVertexArrays(1, &cubeVao_);
    glBindVertexArray(cubeVao_);
    glGenBuffers(1, &cubeVbo_);
    glBindBuffer(GL_ARRAY_BUFFER, cubeVbo_);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(v.size() * sizeof(float)), v.data(),
                 GL_STATIC_DRAW);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 24, nullptr);
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, 24, reinterpret_cast<const void*>(12));
    glBindVertexArray(0);
    return true;
}

void DemoHost::drawCube() {
    glViewport(0, 0, width_, height_);
    glClearColor(0.12f, 0.14f, 0.18f, 1.f);
    glClearDepth(1.0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    // The cube's pose is the shared frame the gizmo moves.
    glm::mat4 model = cubeFrame_->getMatrix();
    glm::mat4 vp = camera_->ProjectionMatrix() * camera_->ViewMatrix();
    glm::vec3 toLight = light_->Direction();
    glUseProgram(cubeProgram_);
    glUniform3fv(glGetUniformLocation(cubeProgram_, "lightDirection"), 1, glm::value_ptr(toLight));
    glUniformMatrix4fv(glGetUniformLocation(cubeProgram_, "viewProjection"), 1, GL_FALSE, glm::value_ptr(vp));
    glBindVertexArray(cubeVao_);
    const glm::mat4 identity(1.f);
    glUniformMatrix4fv(glGetUniformLocation(cubeProgram_, "model"), 1, GL_FALSE, glm::value_ptr(identity));
    glUniform3f(glGetUniformLocation(cubeProgram_, "baseColor"), 0.55f, 0.6f, 0.66f);
    glDrawArrays(GL_TRIANGLES, 36, 6);
    glUniformMatrix4fv(glGetUniformLocation(cubeProgram_, "model"), 1, GL_FALSE, glm::value_ptr(model));
    glUniform3f(glGetUniformLocation(cubeProgram_, "baseColor"), 0.85f, 0.55f, 0.2f);
    glDrawArrays(GL_TRIANGLES, 0, 36);
    glBindVertexArray(0);
    glUseProgram(0);
    glDisable(GL_DEPTH_TEST);
}

void DemoHost::RenderFrame(float angle) {
    // The host spins the cube by itself too, and then puts the gizmo back onto it: attaching again
    // is how a host keeps the gizmo on a frame it moved.
    if (angle != spinAngle_) {
        cubeFrame_->rotate(glm::radians(angle - spinAngle_), glm::vec3(0.f, 1.f, 0.f));
        spinAngle_ = angle;
        gizmo_->attachFrame(cubeFrame_);
    }
    // One call after the scene: the compositor finishes it into the window and puts the overlay on.
    compositor_->BeginScene();
    drawCube();
    compositor_->EndScene(manager_.get());
}

void DemoHost::SetSceneOcclusion(bool on, bool showTerm) {
    compositor_->SetOcclusionEnabled(on);
    compositor_->SetShowOcclusion(showTerm);
}

void DemoHost::Resize(int width, int height) {
    width_ = width;
    height_ = height;
    camera_->SetViewport(width, height);
    CameraChanged();
    manager_->Resize(width, height);
    compositor_->Resize(width, height);
    legend_->Place(width, height);
}

bool DemoHost::MouseMove(int x, int y, int buttons) {
    bool handled = input_->mouseMoveEvent(x, y, lastX_, lastY_, buttons, 0);
    lastX_ = x;
    lastY_ = y;
    return handled;
}

bool DemoHost::MousePress(int x, int y, int buttons) {
    bool handled = input_->mousePressEvent(x, y, lastX_, lastY_, buttons, 0);
    lastX_ = x;
    lastY_ = y;
    unsigned pid = 0, sid = 0;
    manager_->HitDetect(x, height_ - y, &pid, &sid);
    note("  press at (" + std::to_string(x) + ", " + std::to_string(y) + ") reached " +
         describe(manager_->Find(pid)));
    return handled;
}

bool DemoHost::MouseWheel(int delta) {
    return input_->mouseWheelEvent(delta);
}

bool DemoHost::KeyPress(unsigned int key, unsigned int modifiers) {
    const bool handled = input_->keyPressEvent(key, modifiers);
    note("  key " + std::to_string(key) + (handled ? " was used" : " was not used"));
    return handled;
}

bool DemoHost::UndoGizmoDrag() {
    if (gizmoUndo_.empty())
        return false;
    const GizmoUndo last = gizmoUndo_.back();
    gizmoUndo_.pop_back();
    *cubeFrame_ = last.cube;
    gizmo_->getFrame() = last.gizmo;
    gizmo_->SetNeedsRedraw(true);
    note("  undo: the cube is back where the last gizmo drag started");
    return true;
}

bool DemoHost::MouseRelease(int x, int y, int buttons) {
    bool handled = input_->mouseReleaseEvent(x, y, lastX_, lastY_, buttons, 0);
    lastX_ = x;
    lastY_ = y;
    return handled;
}

void DemoHost::SetDrawFlags(DrawFlags flags) {
    GraphicsScene::SetDrawFlags(flags);
    note("  handlers answered DrawFlags " + std::to_string(static_cast<unsigned>(flags)));
}

std::vector<std::string> DemoHost::TakeJournal() {
    std::vector<std::string> out;
    out.swap(journal_);
    // Gizmo steps come many per drag: the first and the last tell the story.
    if (!stepNotes_.empty()) {
        out.push_back(stepNotes_.front() +
                      (stepNotes_.size() > 1 ? " (first of " + std::to_string(stepNotes_.size()) + ")" : ""));
        if (stepNotes_.size() > 1)
            out.push_back(stepNotes_.back() + " (last)");
        stepNotes_.clear();
    }
    return out;
}

} // namespace demo
