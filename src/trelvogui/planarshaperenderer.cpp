#include <trelvogui/planarshaperenderer.h>

#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>
#include <graphicsbase/localframe.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr const char* kFile = "planarshaperenderer";
constexpr int kDiscVertices = 101;

using GUI::Renderer::detail::UniformLocationQuiet;

/// Position then colour, all white.
void AppendVertex(std::vector<float>& v, float x, float y) {
    v.insert(v.end(), {x, y, 0.f, 1.f, 1.f, 1.f, 1.f});
}

bool Declare(GLVertexBuffer& buffer) {
    return buffer.addAttribute(3, GL_FLOAT, false) && buffer.addAttribute(4, GL_FLOAT, true) &&
           buffer.finishLayout();
}
} // namespace

PlanarShapeRenderer::PlanarShapeRenderer(std::shared_ptr<LocalFrame> frame) : frame_(std::move(frame)) {}

PlanarShapeRenderer::~PlanarShapeRenderer() = default;

bool PlanarShapeRenderer::Initialize() {
    directProgram_.reset();
    program_ = std::make_unique<GLSLProgram>();
    if (!program_->addShader("genericLine.vs") || !program_->addShader("genericLine.fs")) {
        std::printf("PlanarShapeRenderer::loadProgram(): Could not load shaders.\n");
        program_.reset();
        return false;
    }
    program_->linkProgram();
    if (!program_->isLinked()) {
        std::printf("PlanarShapeRenderer::loadProgram(): Could not link program.\n");
        program_.reset();
        return false;
    }

    _vbSquare = std::make_unique<GLVertexBuffer>();
    std::vector<float> square;
    AppendVertex(square, -0.5f, -0.5f);
    AppendVertex(square, 0.5f, -0.5f);
    AppendVertex(square, 0.5f, 0.5f);
    AppendVertex(square, -0.5f, 0.5f);
    if (!Declare(*_vbSquare) || !_vbSquare->upload(square.data(), 4)) {
        std::printf("PlanarShapeRenderer::Initialize(): Could not allocate vertex buffer _vbSquare.\n");
        _vbSquare.reset();
        program_.reset();
        return false;
    }

    _vbDisc = std::make_unique<GLVertexBuffer>();
    std::vector<float> disc;
    for (int i = 0; i < kDiscVertices; ++i) {
        // The last vertex repeats the first, so the outline closes also when drawn as an open strip.
        float theta = static_cast<float>(i) / 100.f * 6.2831855f;
        AppendVertex(disc, 0.5f * std::cos(theta), 0.5f * std::sin(theta));
    }
    if (!Declare(*_vbDisc) || !_vbDisc->upload(disc.data(), kDiscVertices)) {
        std::printf("PlanarShapeRenderer::Initialize(): Could not allocate vertex buffer _vbDisc.\n");
        _vbSquare.reset();
        _vbDisc.reset();
        program_.reset();
        return false;
    }
    return true;
}

glm::mat4 PlanarShapeRenderer::modelMatrix() const {
    return glm::translate(glm::mat4(1.f), frame_->getPosition()) * glm::mat4_cast(frame_->getOrientation()) *
           glm::scale(glm::mat4(1.f), frame_->getScale());
}

bool PlanarShapeRenderer::LayerFootprint(const Camera& camera, int layerWidth, int layerHeight,
                                         GUI::Geometry::Rectangle& area) const {
    area = {0, 0, 0, 0};
    const bool outlined = (shape_ == Square && _vbSquare) || (shape_ == Disc && _vbDisc);
    if (!program_ || !visible_ || !frame_ || !outlined)
        return true;
    // The disc lies inside the square, and with every corner in front of the camera the projection
    // of the square holds the projection of anything inside it.
    const glm::mat4 m = camera.ProjectionMatrix() * camera.ViewMatrix() * modelMatrix();
    float x0 = 3e7f, x1 = -3e7f, y0 = 3e7f, y1 = -3e7f;
    for (glm::vec2 corner :
         {glm::vec2(-0.5f, -0.5f), glm::vec2(0.5f, -0.5f), glm::vec2(0.5f, 0.5f), glm::vec2(-0.5f, 0.5f)}) {
        const glm::vec4 clip = m * glm::vec4(corner, 0.f, 1.f);
        if (!(clip.w > 1e-6f))
            return false;
        const float x = (clip.x / clip.w * 0.5f + 0.5f) * static_cast<float>(layerWidth);
        const float y = (clip.y / clip.w * 0.5f + 0.5f) * static_cast<float>(layerHeight);
        if (!std::isfinite(x) || !std::isfinite(y))
            return false;
        x0 = std::min(x0, x);
        x1 = std::max(x1, x);
        y0 = std::min(y0, y);
        y1 = std::max(y1, y);
    }
    // Two pixels more for the one-pixel lines along the edges; clamped so that no bound overflows.
    auto at = [](float v, bool up) {
        v = std::clamp(v, -3e7f, 3e7f);
        return GUI::Geometry::ClampCoordinate(
            static_cast<int64_t>(up ? std::ceil(v) + 2 : std::floor(v) - 2));
    };
    area = {at(x0, false), at(x1, true), at(y0, false), at(y1, true)};
    return true;
}

void PlanarShapeRenderer::Draw() {
    if (!program_ || !visible_ || !frame_)
        return;
    const GLVertexBuffer* outline = shape_ == Square ? _vbSquare.get()
                                    : shape_ == Disc ? _vbDisc.get()
                                                     : nullptr;
    glm::mat4 model = modelMatrix();
    // The outline keeps to sampling its target: it passes the ids beneath it through, and on
    // llvmpipe framebuffer fetch reads integer attachments wrongly for line primitives.
    GLSLProgram& drawing = GUI::Renderer::detail::DrawingProgram(*program_, nullptr, directProgram_,
                                                                 "genericLine.vs", "genericLine.fs");
    drawing.begin();
    GLuint program = drawing.getProgram();
    GLint location = UniformLocationQuiet(program, "ModelMatrix");
    if (location != -1) {
        glUniformMatrix4fv(location, 1, GL_FALSE, glm::value_ptr(model));
        GB_CHECK_GL(kFile);
    }
    glUniformMatrix4fv(UniformLocationQuiet(program, "ViewMatrix"), 1, GL_FALSE,
                       glm::value_ptr(GetViewMatrix()));
    GB_CHECK_GL(kFile);
    glUniformMatrix4fv(UniformLocationQuiet(program, "ProjectionMatrix"), 1, GL_FALSE,
                       glm::value_ptr(GetProjectionMatrix()));
    GB_CHECK_GL(kFile);
    GUI::Renderer::detail::SetTargetSamplers(program);
    if (outline) {
        GUI::Renderer::detail::TargetBarrier();
        outline->draw(GLVertexBuffer::LineLoop);
    }
    drawing.end();
}
