#include <trelvogui/planarshaperenderer.h>

#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>
#include <graphicsbase/localframe.h>

#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <GL/glew.h>

#include <cmath>
#include <cstdio>
#include <vector>

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

void PlanarShapeRenderer::Draw() {
    if (!program_ || !visible_ || !frame_)
        return;
    const GLVertexBuffer* outline = shape_ == Square ? _vbSquare.get()
                                    : shape_ == Disc ? _vbDisc.get()
                                                     : nullptr;
    glm::mat4 model = glm::translate(glm::mat4(1.f), frame_->getPosition()) *
                      glm::mat4_cast(frame_->getOrientation()) *
                      glm::scale(glm::mat4(1.f), frame_->getScale());
    program_->begin();
    GLuint program = program_->getProgram();
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
    program_->end();
}
