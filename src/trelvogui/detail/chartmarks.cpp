#include "chartmarks.h"

#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <algorithm>
#include <cmath>

using namespace GraphicsBase;

namespace trelvo::detail {
namespace {
constexpr const char* kFile = "chartmarks";
} // namespace

ChartMarks::ChartMarks() = default;
ChartMarks::~ChartMarks() = default;

bool ChartMarks::Initialize() {
    GL::GLScopedBindings hostState;
    buffer_.reset();
    if (!GUI::Renderer::detail::BuildTargetPrograms(program_, fetch_, "ChartMarks.vs", "ChartMarks.fs"))
        return false;
    auto buffer = std::make_unique<GLVertexBuffer>();
    if (!buffer->addAttribute(2, GL_FLOAT) || !buffer->finishLayout())
        return false;
    buffer_ = std::move(buffer);
    return true;
}

void ChartMarks::AppendWideSegment(std::vector<float>& out, float x0, float y0, float x1, float y1,
                                   float width) {
    float dx = x1 - x0, dy = y1 - y0;
    const float length = std::sqrt(dx * dx + dy * dy);
    // A zero-length segment still shows as a square dot, as a one-pixel line would.
    if (length > 0.f) {
        dx /= length;
        dy /= length;
    } else {
        dx = 1.f;
        dy = 0.f;
    }
    const float h = width * 0.5f;
    const float nx = -dy * h, ny = dx * h;
    const float ex = dx * h, ey = dy * h;
    const float a[2] = {x0 - ex + nx, y0 - ey + ny}, b[2] = {x0 - ex - nx, y0 - ey - ny};
    const float c[2] = {x1 + ex - nx, y1 + ey - ny}, d[2] = {x1 + ex + nx, y1 + ey + ny};
    out.insert(out.end(), {a[0], a[1], b[0], b[1], c[0], c[1], a[0], a[1], c[0], c[1], d[0], d[1]});
}

void ChartMarks::AppendRectangle(std::vector<float>& out, float x0, float y0, float x1, float y1) {
    out.insert(out.end(), {x0, y0, x1, y0, x1, y1, x0, y0, x1, y1, x0, y1});
}

void ChartMarks::Draw(const std::vector<float>& xy, int mode, const GUI::Color& color, unsigned pid,
                      unsigned sid, const GUI::Geometry::Rectangle& clip) {
    if (!buffer_ || xy.size() < 2 || clip.Width() <= 0 || clip.Height() <= 0 ||
        !GUI::Renderer::detail::InDrawRegion(clip))
        return;
    // The clip in window pixels (a cached layer shifts the viewport), within the scissor already set.
    GLint viewport[4] = {};
    glGetIntegerv(GL_VIEWPORT, viewport);
    GB_CHECK_GL(kFile);
    GLint previous[4] = {};
    glGetIntegerv(GL_SCISSOR_BOX, previous);
    GB_CHECK_GL(kFile);
    const bool scissored = glIsEnabled(GL_SCISSOR_TEST) == GL_TRUE;
    GB_CHECK_GL(kFile);
    int x0 = clip.xMin + viewport[0], x1 = clip.xMax + viewport[0];
    int y0 = clip.yMin + viewport[1], y1 = clip.yMax + viewport[1];
    if (scissored) {
        x0 = std::max(x0, previous[0]);
        y0 = std::max(y0, previous[1]);
        x1 = std::min(x1, previous[0] + previous[2]);
        y1 = std::min(y1, previous[1] + previous[3]);
    }
    if (x1 <= x0 || y1 <= y0)
        return;

    GLSLProgram& drawing = GUI::Renderer::detail::BeginTargetDraw(*program_, fetch_.get());
    const GLuint program = drawing.getProgram();
    GUI::Renderer::detail::SetViewportProjection(program);
    glUniform4f(GUI::Renderer::detail::UniformLocation(program, "markColor"), color.r / 255.f,
                color.g / 255.f, color.b / 255.f, color.a / 255.f);
    GB_CHECK_GL(kFile);
    glUniform1ui(GUI::Renderer::detail::UniformLocationQuiet(program, "pid"), pid);
    GB_CHECK_GL(kFile);
    glUniform1ui(GUI::Renderer::detail::UniformLocationQuiet(program, "sid"), sid);
    GB_CHECK_GL(kFile);
    buffer_->upload(xy.data(), static_cast<int>(xy.size() / 2), nullptr, 0, GLVertexBuffer::Usage::Stream);

    if (!scissored) {
        glEnable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kFile);
    }
    glScissor(x0, y0, x1 - x0, y1 - y0);
    GB_CHECK_GL(kFile);
    GUI::Renderer::detail::TargetBarrierFor(clip, &drawing == program_.get());
    buffer_->draw(mode);
    glScissor(previous[0], previous[1], previous[2], previous[3]);
    GB_CHECK_GL(kFile);
    if (!scissored) {
        glDisable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kFile);
    }
    GUI::Renderer::detail::EndDraw(drawing);
}

} // namespace trelvo::detail
