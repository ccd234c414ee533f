#include <trelvogui/lightcontrol.h>

#include <trelvogui/gui/guimanager.h>

#include "gui/renderers/detail/targetbarrier.h"
#include "gui/renderers/detail/uniforms.h"

#include <graphicsbase/directionallight.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cmath>

using namespace GraphicsBase;

namespace {
constexpr const char* kFile = "lightcontrol";
constexpr float kDegreesPerPixel = 0.35f;
constexpr float kRadiansPerDegree = 0.017453292f;

using GUI::Renderer::detail::SetUniformQuiet;
using GUI::Renderer::detail::UniformLocationQuiet;

} // namespace

LightControl::LightControl(std::shared_ptr<DirectionalLight> light) : light_(std::move(light)) {
    SetUsesLight(true);
}

LightControl::~LightControl() = default;

void LightControl::SetWidgetSize(int width, int height) {
    widgetWidth_ = GUI::Geometry::BoundedSize("LightControl::SetWidgetSize()", width, 1);
    widgetHeight_ = GUI::Geometry::BoundedSize("LightControl::SetWidgetSize()", height, 1);
    SetNeedsRedraw(true);
}

void LightControl::SetMargins(int x, int y) {
    marginX_ = x;
    marginY_ = y;
}

void LightControl::setMaterial(GLSLProgram& program) {
    GUI::Renderer::detail::SetMaterialUniforms(program.getProgram(), tgeom::vec4(0.5f, 0.5f, 0.5f, 1.f),
                                               40.f);
}

bool LightControl::Initialize() {
    GL::GLScopedBindings hostState;
    program_.reset();
    directProgram_.reset();
    quadBuffer_.reset();
    auto program = std::make_shared<GLSLProgram>();
    if (!program->addShader("LightWidget.vs") || !program->addShader("LightWidget.fs") ||
        !program->linkProgram())
        return false;
    auto quad = std::make_shared<GLVertexBuffer>();
    const float vertices[6][4] = {{-1.f, -1.f, -1.f, 1.f}, {1.f, -1.f, -1.f, 1.f}, {1.f, 1.f, -1.f, 1.f},
                                  {-1.f, -1.f, -1.f, 1.f}, {1.f, 1.f, -1.f, 1.f},  {-1.f, 1.f, -1.f, 1.f}};
    if (!quad->addAttribute(4, GL_FLOAT) || !quad->finishLayout() || !quad->upload(vertices, 6))
        return false;

    std::unique_ptr<GLSLProgram> fetch;
    GUI::Renderer::detail::BuildFetchProgram(fetch, "LightWidget.vs", "LightWidget.fs");
    for (GLSLProgram* build : {program.get(), fetch.get()}) {
        if (build == nullptr)
            continue;
        build->begin();
        setMaterial(*build);
        build->end();
    }
    program_ = std::move(program);
    fetchProgram_ = std::move(fetch);
    quadBuffer_ = std::move(quad);
    return true;
}

bool LightControl::LayerFootprint(int layerWidth, int, GUI::Geometry::Rectangle& area) {
    const int side = program_ && quadBuffer_ && light_ ? Side() : 0;
    const int m = Margin();
    area = {layerWidth - side - m, layerWidth - m, m, m + side};
    return true;
}

void LightControl::DrawCustom() {
    if (!program_ || !quadBuffer_ || !light_)
        return;
    // The host's viewport, origin included, comes back with the rest of its state.
    GL::GLScopedBindings hostState;
    GLint viewport[4] = {0, 0, 0, 0};
    glGetIntegerv(GL_VIEWPORT, viewport);
    GB_CHECK_GL(kFile);
    // widgetHeight and the margin fields do not take part: the square is widgetWidth on both sides,
    // 10 pixels in from the right and bottom edges, both times the display scale.
    const int side = Side(), m = Margin();
    glViewport(viewport[0] + viewport[2] - side - m, viewport[1] + m, side, side);
    GB_CHECK_GL(kFile);

    GLSLProgram& drawing = GUI::Renderer::detail::DrawingProgram(
        *program_, fetchProgram_.get(), directProgram_, "LightWidget.vs", "LightWidget.fs", setMaterial);
    drawing.begin();
    if (&drawing == program_.get())
        GUI::Renderer::detail::SetTargetSamplers(drawing.getProgram());
    const GLuint program = drawing.getProgram();
    SetUniformQuiet(program, "light.position", tgeom::vec4(light_->position, 1.f));
    SetUniformQuiet(program, "light.ambient", light_->ambient);
    SetUniformQuiet(program, "light.diffuse", light_->diffuse);
    SetUniformQuiet(program, "light.specular", light_->specular);
    GLint location = UniformLocationQuiet(program, "primaryid");
    if (location != -1) {
        glUniform1ui(location, GetId());
        GB_CHECK_GL(kFile);
    }
    // Disabled: greyed, half transparent and without ids, so the pointer reaches what is behind.
    SetUniformQuiet(program, "dimmed", static_cast<GLint>(Enabled() ? 0 : 1));
    // The tile is translucent and composes over what the overlay drew before it, like every UI draw.
    GUI::Renderer::detail::TargetBarrier(&drawing == program_.get());
    quadBuffer_->draw(GLVertexBuffer::Triangles);
    drawing.end();
}

DrawFlags LightControl::OnMouseDown(GUI::Event* e) {
    if (!Enabled() || !Visible())
        return DRAW_NOTHING;
    const DrawFlags result = Base::OnMouseDown(e);
    cancelled_ = false;
    if (!light_)
        return result;
    pressPosition_ = light_->position;
    dragging_ = true;
    std::weak_ptr<const void> alive = LifeToken();
    dragStartedSignal(pressPosition_, light_->position);
    return alive.expired() ? result | DRAW_OVERLAY : result;
}

DrawFlags LightControl::OnMouseUp(GUI::Event* e) {
    const DrawFlags result = Base::OnMouseUp(e);
    cancelled_ = false;
    if (!dragging_ || !light_)
        return result;
    dragging_ = false;
    std::weak_ptr<const void> alive = LifeToken();
    dragEndedSignal(pressPosition_, light_->position);
    return alive.expired() ? result | DRAW_OVERLAY : result;
}

DrawFlags LightControl::OnCancelDrag(GUI::Event*) {
    if (!dragging_ || !light_)
        return DRAW_NOTHING;
    dragging_ = false;
    const tgeom::vec abandoned = light_->position;
    light_->position = pressPosition_;
    // Moves of the still-held button until its release turn the light no more.
    cancelled_ = true;
    std::weak_ptr<const void> alive = LifeToken();
    dragCancelledSignal(pressPosition_, abandoned);
    if (alive.expired())
        return DRAW_LIGHT | DRAW_OVERLAY;
    SetNeedsRedraw(true);
    if (GUI::GUIManager* manager = Manager())
        manager->SetLightUpdated(true);
    return DRAW_LIGHT | DRAW_OVERLAY;
}

DrawFlags LightControl::OnMouseDrag(GUI::Event*, int dx, int dy) {
    if (cancelled_)
        return DRAW_NOTHING;
    // At a larger display scale the same hand movement covers more pixels: the same turn.
    const float perPixel = kDegreesPerPixel / DisplayScale();
    const float a = -(static_cast<float>(dy) * perPixel) * kRadiansPerDegree;
    const float b = static_cast<float>(dx) * perPixel * kRadiansPerDegree;
    glm::mat4 m = glm::rotate(glm::mat4(1.f), a, glm::vec3(1.f, 0.f, 0.f));
    m = glm::rotate(m, b, glm::vec3(0.f, 1.f, 0.f));
    if (light_)
        light_->position = tgeom::vec(m * tgeom::vec4(light_->position, 1.f));
    SetNeedsRedraw(true);
    // Every lit widget (the cube) is stale now, not only this one.
    if (GUI::GUIManager* manager = Manager())
        manager->SetLightUpdated(true);
    return DRAW_LIGHT | DRAW_OVERLAY;
}

int LightControl::Side() const {
    return ScaledPixels(static_cast<float>(widgetWidth_));
}

int LightControl::Margin() const {
    return ScaledPixels(10.f);
}
