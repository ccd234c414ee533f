#include <trelvogui/colorbar.h>

#include "gui/renderers/detail/targetbarrier.h"
#include "gui/renderers/detail/uniforms.h"

#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <cstdio>

using namespace GraphicsBase;

namespace GUI::Controls {

namespace {
constexpr const char* kFile = "colorbar";

// Widget textures go on unit 8; 9 and 10 hold the target being drawn into.
constexpr GLint kColorMapUnit = 8;
} // namespace

ColorBar::ColorBar() {
    SetDimsWhenDisabled(true);
}

ColorBar::~ColorBar() {
    delete vertexBuffer_;
    delete program_;
}

bool ColorBar::Initialize() {
    GL::GLScopedBindings hostState;
    initialized_ = false;
    delete vertexBuffer_;
    vertexBuffer_ = nullptr;
    delete program_;
    program_ = new GLSLProgram();
    if (!program_->addShader("Legend.vs") || !program_->addShader("Legend.fs") || !program_->linkProgram())
        return false;
    GUI::Renderer::detail::BuildFetchProgram(fetchProgram_, "Legend.vs", "Legend.fs");
    vertexBuffer_ = new GLVertexBuffer();
    const float quad[] = {0.f, 0.f, 1.f, 0.f, 1.f, 1.f, 0.f, 1.f};
    if (!vertexBuffer_->addAttribute(2, GL_FLOAT) || !vertexBuffer_->finishLayout() ||
        !vertexBuffer_->upload(quad, 4))
        return false;
    initialized_ = true;
    return true;
}

void ColorBar::UpdateColorMap(const std::vector<GUI::Color>& colors, bool smooth) {
    GLint maxSize = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxSize);
    GB_CHECK_GL(kFile);
    if (colors.size() > static_cast<std::size_t>(maxSize)) {
        std::printf("ColorBar::UpdateColorMap(): %zu colours exceed the largest 1D texture (%d).\n",
                    colors.size(), maxSize);
        return;
    }
    GL::GLScopedBindings hostState;
    if (colorTexture_ != 0) {
        glDeleteTextures(1, &colorTexture_);
        GB_CHECK_GL(kFile);
        colorTexture_ = 0;
    }
    glGenTextures(1, &colorTexture_);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_1D, colorTexture_);
    GB_CHECK_GL(kFile);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    GB_CHECK_GL(kFile);
    const GLint filter = smooth ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, filter);
    GB_CHECK_GL(kFile);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, filter);
    GB_CHECK_GL(kFile);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA, static_cast<GLsizei>(colors.size()), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 colors.empty() ? nullptr : colors.data());
    GB_CHECK_GL(kFile);
    SetNeedsRedraw(true);
}

void ColorBar::DrawCustom() {
    if (!initialized_)
        return;
    GL::GLScopedBindings hostState;
    GLSLProgram& drawing = GUI::Renderer::detail::BeginTargetDraw(*program_, fetchProgram_.get());
    const GLuint program = drawing.getProgram();

    glActiveTexture(GL_TEXTURE0 + kColorMapUnit);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_1D, colorTexture_);
    GB_CHECK_GL(kFile);
    glUniform1i(GUI::Renderer::detail::UniformLocationQuiet(program, "trfunc_texunit"), kColorMapUnit);
    GB_CHECK_GL(kFile);

    GUI::Renderer::detail::SetViewportProjection(program);
    const GUI::Geometry::Rectangle& r = GetRectangle();
    glUniform2i(GUI::Renderer::detail::UniformLocation(program, "bboxMin"), r.xMin, r.yMin);
    GB_CHECK_GL(kFile);
    glUniform2i(GUI::Renderer::detail::UniformLocation(program, "bboxDim"), r.xMax - r.xMin, r.yMax - r.yMin);
    GB_CHECK_GL(kFile);
    glUniform1ui(GUI::Renderer::detail::UniformLocation(program, "pid"), GetId());
    GB_CHECK_GL(kFile);

    // The part id, like every overlay draw.
    glUniform1ui(GUI::Renderer::detail::UniformLocationQuiet(program, "sid"), 0u);
    GB_CHECK_GL(kFile);

    // The ramp covers exactly the rectangle: a barrier only if something drawn since overlaps it.
    GUI::Renderer::detail::TargetBarrierFor(r, &drawing == program_);
    vertexBuffer_->draw(GLVertexBuffer::TriangleFan);
    drawing.end();
}

} // namespace GUI::Controls
