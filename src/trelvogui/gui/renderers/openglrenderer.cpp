#include <trelvogui/gui/renderers/openglrenderer.h>

#include "detail/disabledlook.h"
#include "detail/targetbarrier.h"
#include "detail/uniforms.h"

#include <trelvogui/gui/animationframe.h>
#include <trelvogui/gui/opengltexture.h>
#include <trelvogui/gui/renderers/textrendererfreetype.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <glm/gtc/constants.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <glm/gtc/quaternion.hpp>
#include <glm/gtc/type_ptr.hpp>

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

using namespace GraphicsBase;

namespace GUI::Renderer {

namespace {

constexpr const char* kTag = "gui/renderers/openglrenderer";

// Fixed texture units shared by the whole overlay.
constexpr GLint kTargetColorUnit = 9;
constexpr GLint kTargetIdUnit = 10;
constexpr GLint kSourceColorUnit = 11;
constexpr GLint kSourceIdUnit = 12;
constexpr GLint kAtlasColorUnit = 13;
constexpr GLint kAtlasStencilUnit = 14;

using detail::UniformLocation;
using detail::UniformLocationQuiet;

GLuint NameOf(GUI::Texture::Base* texture) {
    auto* gl = dynamic_cast<GUI::Texture::OpenglTexture*>(texture);
    return gl != nullptr ? gl->GetTextureName() : 0;
}

// Integer textures are incomplete under linear filtering, and an incomplete texture reads as zero
// even through texelFetch; id textures are therefore switched to nearest filtering wherever this
// renderer samples them. Expects the texture bound on the active unit.
void UseNearestFilter() {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    GB_CHECK_GL(kTag);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    GB_CHECK_GL(kTag);
}

bool IsSrgbOnUnit(GLint unit) {
    glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    GB_CHECK_GL(kTag);
    GLint format = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    GB_CHECK_GL(kTag);
    return format == GL_SRGB8_ALPHA8 || format == GL_SRGB8 || format == GL_SRGB_ALPHA || format == GL_SRGB;
}

bool MakeBuffer(std::unique_ptr<GLVertexBuffer>& buffer, int componentsPerAttribute, int attributes,
                const float* vertices, int vertexCount) {
    buffer = std::make_unique<GLVertexBuffer>();
    for (int i = 0; i < attributes; ++i)
        if (!buffer->addAttribute(componentsPerAttribute, GL_FLOAT))
            return false;
    return buffer->finishLayout() && buffer->upload(vertices, vertexCount);
}

} // namespace

OpenglRenderer::OpenglRenderer() = default;

OpenglRenderer::~OpenglRenderer() {
    circleBuffer_.reset();
    quadBuffer_.reset();
    centeredQuadBuffer_.reset();
    outlineBuffer_.reset();
    lineBuffer_.reset();
    texturedProgram_.reset();
    lineProgram_.reset();
    cachedProgram_.reset();
    texturedFetchProgram_.reset();
    lineFetchProgram_.reset();
    cachedFetchProgram_.reset();
    textRenderer_.reset();
}

std::vector<GLSLProgram*> OpenglRenderer::programs() const {
    std::vector<GLSLProgram*> all;
    for (const auto* program : {&texturedProgram_, &lineProgram_, &cachedProgram_, &texturedFetchProgram_,
                                &lineFetchProgram_, &cachedFetchProgram_})
        if (*program != nullptr)
            all.push_back(program->get());
    return all;
}

bool OpenglRenderer::Initialize() {
    initialized_ = false;
    if (!InitializeFBO())
        return false;
    using detail::BuildTargetPrograms;
    if (!BuildTargetPrograms(texturedProgram_, texturedFetchProgram_, "UITexturedShader.vert",
                             "UITexturedShader.frag") ||
        !BuildTargetPrograms(lineProgram_, lineFetchProgram_, "UILineShader.vert", "UILineShader.frag") ||
        !BuildTargetPrograms(cachedProgram_, cachedFetchProgram_, "UITexturedCachedShader.vert",
                             "UITexturedCachedShader.frag"))
        return false;
    if (!BuildCircleBuffer() || !BuildQuadBuffer() || !BuildCenteredQuadBuffer() || !BuildOutlineBuffer() ||
        !BuildLineBuffer())
        return false;
    SetSamplerDefaults();
    textRenderer_ = std::make_unique<TextRendererFreeType>();
    if (!textRenderer_->Initialize())
        return false;
    initialized_ = true;
    return true;
}

void OpenglRenderer::SetSamplerDefaults() {
    struct Sampler {
        const char* name;
        GLint unit;
    };
    static constexpr Sampler kSamplers[] = {
        {"targetColorSampler", kTargetColorUnit}, {"targetIDSampler", kTargetIdUnit},
        {"sourceColorSampler", kSourceColorUnit}, {"sourceIDSampler", kSourceIdUnit},
        {"textureSampler", kAtlasColorUnit},      {"stencilSampler", kAtlasStencilUnit},
    };
    for (GLSLProgram* program : programs()) {
        program->begin();
        for (const Sampler& s : kSamplers) {
            // Each program uses only some of the samplers; the others are simply absent.
            GLint location = UniformLocationQuiet(program->getProgram(), s.name);
            if (location != -1) {
                glUniform1i(location, s.unit);
                GB_CHECK_GL(kTag);
            }
        }
        program->end();
    }
}

std::unique_ptr<GL::GLScopedSetter> OpenglRenderer::SetRenderAttributes() {
    return std::make_unique<GL::GLScopedSetter>(GL::Disable{GL_BLEND}, GL::Disable{GL_DEPTH_TEST});
}

void OpenglRenderer::UploadProjection(GLSLProgram& program, const float* matrix) {
    program.begin();
    glUniformMatrix4fv(UniformLocation(program.getProgram(), "ProjectionMatrix"), 1, GL_FALSE, matrix);
    GB_CHECK_GL(kTag);
    program.end();
}

bool OpenglRenderer::SetScreen(unsigned int width, unsigned int height) {
    screenWidth_ = width;
    screenHeight_ = height;
    glViewport(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height));
    GB_CHECK_GL(kTag);
    if (!initialized_)
        return false;

    // Pixel (0, 0) is the view's lower-left corner; depth spans -1000..1000 for the UI programs.
    // An empty view keeps a finite matrix.
    glm::mat4 projection(1.f);
    projection[0][0] = 2.f / static_cast<float>(width > 0 ? width : 1);
    projection[1][1] = 2.f / static_cast<float>(height > 0 ? height : 1);
    projection[2][2] = -0.001f;
    projection[3][0] = -1.f;
    projection[3][1] = -1.f;
    projection[3][2] = -0.f;
    for (GLSLProgram* program : programs())
        UploadProjection(*program, glm::value_ptr(projection));

    glm::mat4 textProjection = projection;
    textProjection[2][2] = -1.f;
    textProjection[3][2] = 0.f;
    textRenderer_->SetScreen(width, height, textProjection);
    return true;
}

bool OpenglRenderer::LoadColorAtlas(std::string, GUI::Texture::Atlas*) {
    return initialized_;
}
bool OpenglRenderer::UnloadColorAtlas(GUI::Texture::Atlas*) {
    return true;
}
bool OpenglRenderer::LoadStencilAtlas(std::string, GUI::Texture::Atlas*) {
    return initialized_;
}
bool OpenglRenderer::UnloadStencilAtlas(GUI::Texture::Atlas*) {
    return true;
}

void OpenglRenderer::SetIdUniforms(GLuint program) {
    glUniform1ui(UniformLocation(program, "pid"), primaryId_);
    GB_CHECK_GL(kTag);
    glUniform1ui(UniformLocation(program, "sid"), subId_);
    GB_CHECK_GL(kTag);
}

void OpenglRenderer::SetPlacement(GLuint program, GUI::Geometry::Rectangle const& r) {
    glUniform2i(UniformLocation(program, "bboxMin"), r.xMin, r.yMin);
    GB_CHECK_GL(kTag);
    glUniform2i(UniformLocation(program, "bboxDim"), r.xMax - r.xMin, r.yMax - r.yMin);
    GB_CHECK_GL(kTag);
}

// Circles and lines are not drawn by the standard controls; their buffers are kept for them.
void OpenglRenderer::DrawLine(GUI::Geometry::Line const&) {}
void OpenglRenderer::DrawCircle(GUI::Geometry::Circle const&) {}
void OpenglRenderer::DrawFilledCircle(GUI::Geometry::Circle const&) {}

void OpenglRenderer::DrawRectangle(GUI::Geometry::Rectangle const& rectangle) {
    if (!initialized_ || !detail::InDrawRegion(rectangle))
        return;
    GLSLProgram& line = detail::ProgramFor(*lineProgram_, lineFetchProgram_.get());
    const bool samples = &line == lineProgram_.get();
    GLuint program = line.getProgram();
    line.begin();
    SetIdUniforms(program);
    SetPlacement(program, rectangle);
    if (samples) {
        glUniform1i(UniformLocation(program, "targetColorSampler"), kTargetColorUnit);
        GB_CHECK_GL(kTag);
    }
    detail::TargetBarrierFor(rectangle, samples);
    quadBuffer_->draw(GLVertexBuffer::TriangleFan);
    detail::EndDraw(line);
    // Strict synchronisation finishes every fill before the next draw; otherwise the barriers order
    // the draws and the pick read waits for the id layer by itself.
    if (detail::StrictBarriers()) {
        glFinish();
        GB_CHECK_GL(kTag);
    }
}

void OpenglRenderer::DrawFilledRectangle(GUI::Geometry::Rectangle const& rectangle) {
    if (!initialized_ || !detail::InDrawRegion(rectangle))
        return;
    GLSLProgram& line = detail::ProgramFor(*lineProgram_, lineFetchProgram_.get());
    GLuint program = line.getProgram();
    line.begin();
    SetPlacement(program, rectangle);
    // An outline is decoration, not a hit area: keep the id attachment as it was.
    GLboolean idMask[4] = {GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
    glGetBooleani_v(GL_COLOR_WRITEMASK, 1, idMask);
    GB_CHECK_GL(kTag);
    glColorMaski(1, GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    GB_CHECK_GL(kTag);
    detail::TargetBarrierFor(rectangle, &line == lineProgram_.get());
    outlineBuffer_->draw(GLVertexBuffer::LineLoop);
    glColorMaski(1, idMask[0], idMask[1], idMask[2], idMask[3]);
    GB_CHECK_GL(kTag);
    detail::EndDraw(line);
}

bool OpenglRenderer::BeginTextured(GLSLProgram*& textured) {
    detail::DisableBlending();
    bool textureIsSrgb = IsSrgbOnUnit(kAtlasColorUnit);
    bool stencilIsSrgb = IsSrgbOnUnit(kAtlasStencilUnit);

    textured = &detail::ProgramFor(*texturedProgram_, texturedFetchProgram_.get());
    const bool samples = textured == texturedProgram_.get();
    GLuint program = textured->getProgram();
    textured->begin();
    SetIdUniforms(program);
    glUniform1i(UniformLocation(program, "textureSampler"), kAtlasColorUnit);
    GB_CHECK_GL(kTag);
    glUniform1i(UniformLocation(program, "stencilSampler"), kAtlasStencilUnit);
    GB_CHECK_GL(kTag);
    if (samples) {
        glUniform1i(UniformLocation(program, "targetColorSampler"), kTargetColorUnit);
        GB_CHECK_GL(kTag);
        glUniform1i(UniformLocation(program, "targetIDSampler"), kTargetIdUnit);
        GB_CHECK_GL(kTag);
    }
    glUniform1i(UniformLocationQuiet(program, "textureIsSrgb"), textureIsSrgb ? 1 : 0);
    GB_CHECK_GL(kTag);
    glUniform1i(UniformLocationQuiet(program, "stencilIsSrgb"), stencilIsSrgb ? 1 : 0);
    GB_CHECK_GL(kTag);
    return samples;
}

void OpenglRenderer::DrawTexturedRectangle(GUI::Geometry::TexturedRectangle const& piece) {
    const GUI::Geometry::Rectangle& r = piece.rectangle;
    if (!initialized_ || !detail::InDrawRegion(r))
        return;
    GLSLProgram* textured = nullptr;
    const bool samples = BeginTextured(textured);
    GLuint program = textured->getProgram();
    SetPlacement(program, r);
    glUniform2f(UniformLocation(program, "uvMin"), piece.s0, piece.t0);
    GB_CHECK_GL(kTag);
    glUniform2f(UniformLocation(program, "uvDim"), piece.s1 - piece.s0, piece.t1 - piece.t0);
    GB_CHECK_GL(kTag);
    detail::TargetBarrierFor(r, samples);
    quadBuffer_->draw(GLVertexBuffer::TriangleFan);
    detail::EndDraw(*textured);
    if (detail::StrictBarriers()) {
        glFlush();
        GB_CHECK_GL(kTag);
    }
}

void OpenglRenderer::DrawTexturedRectangles(const GUI::Geometry::TexturedRectangle* pieces, int count) {
    if (!initialized_ || pieces == nullptr || count <= 0)
        return;
    // Strict synchronisation gives the reference picture: every piece its own draw and flush.
    if (detail::StrictBarriers() || count == 1) {
        for (int i = 0; i < count; ++i)
            DrawTexturedRectangle(pieces[i]);
        return;
    }
    // A shader that samples its target sees none of its own draw's writes, so pieces that overlap
    // one another go one by one; framebuffer fetch reads earlier primitives of the same draw.
    const bool fetch =
        &detail::ProgramFor(*texturedProgram_, texturedFetchProgram_.get()) != texturedProgram_.get();
    auto normalised = [](const GUI::Geometry::Rectangle& r) {
        return GUI::Geometry::Rectangle{std::min(r.xMin, r.xMax), std::max(r.xMin, r.xMax),
                                        std::min(r.yMin, r.yMax), std::max(r.yMin, r.yMax)};
    };
    for (int i = 0; i < count && !fetch; ++i)
        for (int j = 0; j < i; ++j) {
            const GUI::Geometry::Rectangle a = normalised(pieces[i].rectangle);
            const GUI::Geometry::Rectangle b = normalised(pieces[j].rectangle);
            if (a.xMin < b.xMax && b.xMin < a.xMax && a.yMin < b.yMax && b.yMin < a.yMax) {
                for (int k = 0; k < count; ++k)
                    DrawTexturedRectangle(pieces[k]);
                return;
            }
        }

    // The placement of every piece, in the vertex shader's arrays; the arithmetic is the single
    // draw's, so each piece lands on the same pixels with the same texture coordinates.
    GLint bboxMin[2 * kMostPieces], bboxDim[2 * kMostPieces];
    GLfloat uvMin[2 * kMostPieces], uvDim[2 * kMostPieces];
    GLSLProgram* textured = nullptr;
    bool samples = false;
    for (int first = 0; first < count; first += kMostPieces) {
        int n = 0;
        for (int i = first; i < std::min(count, first + kMostPieces); ++i) {
            const GUI::Geometry::TexturedRectangle& piece = pieces[i];
            const GUI::Geometry::Rectangle& r = piece.rectangle;
            if (!detail::InDrawRegion(r))
                continue;
            bboxMin[2 * n] = r.xMin;
            bboxMin[2 * n + 1] = r.yMin;
            bboxDim[2 * n] = r.xMax - r.xMin;
            bboxDim[2 * n + 1] = r.yMax - r.yMin;
            uvMin[2 * n] = piece.s0;
            uvMin[2 * n + 1] = piece.t0;
            uvDim[2 * n] = piece.s1 - piece.s0;
            uvDim[2 * n + 1] = piece.t1 - piece.t0;
            ++n;
        }
        if (n == 0)
            continue;
        if (textured == nullptr)
            samples = BeginTextured(textured);
        GLuint program = textured->getProgram();
        glUniform2iv(UniformLocation(program, "bboxMin"), n, bboxMin);
        GB_CHECK_GL(kTag);
        glUniform2iv(UniformLocation(program, "bboxDim"), n, bboxDim);
        GB_CHECK_GL(kTag);
        glUniform2fv(UniformLocation(program, "uvMin"), n, uvMin);
        GB_CHECK_GL(kTag);
        glUniform2fv(UniformLocation(program, "uvDim"), n, uvDim);
        GB_CHECK_GL(kTag);
        for (int i = 0; i < n; ++i)
            detail::TargetBarrierFor({bboxMin[2 * i], bboxMin[2 * i] + bboxDim[2 * i], bboxMin[2 * i + 1],
                                      bboxMin[2 * i + 1] + bboxDim[2 * i + 1]},
                                     samples);
        glBindVertexArray(quadBuffer_->vertexArray());
        GB_CHECK_GL(kTag);
        glDrawArraysInstanced(GL_TRIANGLE_FAN, 0, quadBuffer_->vertexCount(), n);
        GB_CHECK_GL(kTag);
        glBindVertexArray(0);
        GB_CHECK_GL(kTag);
    }
    if (textured != nullptr)
        detail::EndDraw(*textured);
}

void OpenglRenderer::DrawText(GUI::Texture::Base* target, GUI::Text* text, GUI::Geometry::Rectangle area,
                              int horizontalAlignment, int verticalAlignment) {
    if (!initialized_)
        return;
    textRenderer_->SetIds(primaryId_, subId_);
    textRenderer_->Draw(target, text, area, horizontalAlignment, verticalAlignment);
    if (detail::StrictBarriers()) {
        glFlush();
        GB_CHECK_GL(kTag);
    }
}

void OpenglRenderer::GetTextSize(GUI::Text* text, int* width, int* height) {
    if (textRenderer_ != nullptr) {
        textRenderer_->Measure(text, width, height);
        return;
    }
    // Measuring needs the font, which Initialize loads; report an empty extent until then.
    if (width != nullptr)
        *width = 0;
    if (height != nullptr)
        *height = 0;
}

void OpenglRenderer::SetLineThickness(float thickness) {
    lineThickness_ = thickness;
    for (GLSLProgram* line : {lineProgram_.get(), lineFetchProgram_.get()}) {
        if (line == nullptr)
            continue;
        line->begin();
        glUniform1f(UniformLocation(line->getProgram(), "thickness"), thickness);
        GB_CHECK_GL(kTag);
        line->end();
    }
}

void OpenglRenderer::SetLineColor(GUI::Color color) {
    lineColor_ = color;
    for (GLSLProgram* line : {lineProgram_.get(), lineFetchProgram_.get()}) {
        if (line == nullptr)
            continue;
        line->begin();
        glUniform4f(UniformLocation(line->getProgram(), "color"), color.r / 255.f, color.g / 255.f,
                    color.b / 255.f, color.a / 255.f);
        GB_CHECK_GL(kTag);
        line->end();
    }
}

// Text takes its colour from the text renderer's own path.
void OpenglRenderer::SetFontColor(GUI::Color) {}

void OpenglRenderer::SetIds(unsigned int primary, unsigned int sub) {
    primaryId_ = primary;
    subId_ = sub;
}

void OpenglRenderer::GenerateTexture(GUI::Texture::Base** out, int format) {
    if (out != nullptr)
        *out = new GUI::Texture::OpenglTexture(format);
}

void OpenglRenderer::DeleteTexture(GUI::Texture::Base* texture) {
    delete texture;
}

void OpenglRenderer::SetRenderTargetToTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                              GUI::Geometry::Rectangle& rectangle) {
    bindTarget(color, ids, rectangle, nullptr);
}

bool OpenglRenderer::SupportsPartialRedraw() const {
    return initialized_ && !detail::StrictBarriers();
}

void OpenglRenderer::SetRenderTargetToTextureRegion(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                                    GUI::Geometry::Rectangle& rectangle,
                                                    const GUI::Geometry::Rectangle& region) {
    bindTarget(color, ids, rectangle, &region);
}

void OpenglRenderer::bindTarget(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                GUI::Geometry::Rectangle& rectangle, const GUI::Geometry::Rectangle* region) {
    targetReady_ = false;
    targetScissored_ = false;
    int width = rectangle.Width();
    int height = rectangle.Height();
    if (width <= 0 || height <= 0) {
        std::printf("SetRenderTargetToTexture: Texture is set to invalid size %d %d.\n", width, height);
        return;
    }
    // A layer of the same size keeps its storage: a region redraw needs its contents, and a whole
    // redraw clears every texel below, where fresh storage would only give the driver new pages to
    // fault in and zero on every full re-render.
    const bool reusable = NameOf(color) != 0 && NameOf(ids) != 0 && color->Width() == width &&
                          color->Height() == height && ids->Width() == width && ids->Height() == height;
    if (!reusable) {
        region = nullptr;
        color->SetSize(width, height);
        ids->SetSize(width, height);
        if (!color->Allocate() || !ids->Allocate())
            return;
    }

    // The shaders compose against the target they write, so it is also bound for reading.
    glActiveTexture(GL_TEXTURE0 + kTargetColorUnit);
    GB_CHECK_GL(kTag);
    color->Bind();
    glActiveTexture(GL_TEXTURE0 + kTargetIdUnit);
    GB_CHECK_GL(kTag);
    if (ids->Bind())
        UseNearestFilter();

    glBindFramebuffer(GL_FRAMEBUFFER, frameBuffer_);
    GB_CHECK_GL(kTag);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, NameOf(color), 0);
    GB_CHECK_GL(kTag);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D, NameOf(ids), 0);
    GB_CHECK_GL(kTag);
    if (region) {
        // Clears and draws stay inside the region, in texels of the layer.
        glEnable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kTag);
        glScissor(region->xMin - rectangle.xMin, region->yMin - rectangle.yMin, region->Width(),
                  region->Height());
        GB_CHECK_GL(kTag);
        targetScissored_ = true;
    }

    // The unsigned clear goes to the colour attachment and the float clear to the id attachment;
    // what the layer relies on is that the ids read 0 (no control) afterwards.
    static const GLenum kColorOnly[] = {GL_COLOR_ATTACHMENT0};
    static const GLenum kIdsOnly[] = {GL_COLOR_ATTACHMENT1};
    static const GLenum kBoth[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    static const GLuint kUnsignedClear[] = {0, 0, 0, 4294967295u};
    static const GLfloat kFloatClear[] = {0.f, 0.f, 0.f, 0.f};
    static const GLfloat kDepthClear = 1.f;
    glDrawBuffers(1, kColorOnly);
    GB_CHECK_GL(kTag);
    glClearBufferuiv(GL_COLOR, 0, kUnsignedClear);
    GB_CHECK_GL(kTag);
    glDrawBuffers(1, kIdsOnly);
    GB_CHECK_GL(kTag);
    glClearBufferfv(GL_COLOR, 0, kFloatClear);
    GB_CHECK_GL(kTag);
    glClearBufferfv(GL_DEPTH, 0, &kDepthClear);
    GB_CHECK_GL(kTag);

    // Controls keep drawing in screen coordinates; the shifted viewport puts the rectangle's
    // minimum corner on texel (0, 0).
    glViewport(GUI::Geometry::SubSaturated(0, rectangle.xMin), GUI::Geometry::SubSaturated(0, rectangle.yMin),
               static_cast<GLsizei>(screenWidth_), static_cast<GLsizei>(screenHeight_));
    GB_CHECK_GL(kTag);
    glDrawBuffers(2, kBoth);
    GB_CHECK_GL(kTag);
    detail::TargetChanged();
    detail::SetDrawRegion(region);
    targetReady_ = true;
}

void OpenglRenderer::ClearRenderTargetToTexture() {
    if (detail::StrictBarriers()) {
        glFlush();
        GB_CHECK_GL(kTag);
        glFinish();
        GB_CHECK_GL(kTag);
    }
    if (targetScissored_) {
        glDisable(GL_SCISSOR_TEST);
        GB_CHECK_GL(kTag);
        targetScissored_ = false;
    }
    // Back to whatever target comes next; the cached layer is read by a later composite, which the
    // barrier before that draw makes safe.
    detail::TargetChanged();
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    GB_CHECK_GL(kTag);
    glViewport(0, 0, static_cast<GLsizei>(screenWidth_), static_cast<GLsizei>(screenHeight_));
    GB_CHECK_GL(kTag);
}

glm::mat4 OpenglRenderer::CachedLayerTransform(const GUI::Animation::Frame& frame,
                                               const GUI::Geometry::Rectangle& rectangle,
                                               const GUI::Geometry::Point& pivot) {
    float w = static_cast<float>(rectangle.Width());
    float h = static_cast<float>(rectangle.Height());
    glm::vec3 center((static_cast<float>(rectangle.xMin) + static_cast<float>(rectangle.xMax)) * 0.5f,
                     (static_cast<float>(rectangle.yMin) + static_cast<float>(rectangle.yMax)) * 0.5f, 0.f);
    glm::vec3 p(static_cast<float>(pivot.x), static_cast<float>(pivot.y), 0.f);

    // Rotation and scale act about the pivot; the frame's position then moves the whole layer.
    glm::mat4 modelView = glm::translate(glm::mat4(1.f), p);
    modelView = glm::translate(modelView, frame.getPosition());
    modelView = modelView * glm::mat4_cast(frame.getOrientation());
    modelView = glm::scale(modelView, frame.getScale());
    modelView = glm::translate(modelView, center - p);
    return glm::scale(modelView, glm::vec3(w, h, 1.f));
}

GUI::Geometry::Rectangle OpenglRenderer::CachedLayerFootprint(const GUI::Animation::Frame& frame,
                                                              const GUI::Geometry::Rectangle& rectangle,
                                                              const GUI::Geometry::Point& pivot,
                                                              const GUI::Geometry::Rectangle* part) {
    const glm::mat4 m = CachedLayerTransform(frame, rectangle, pivot);
    float x0 = 1e30f, x1 = -1e30f, y0 = 1e30f, y1 = -1e30f;
    // The quad spans -0.5..0.5 before the transform. A part is grown by a texel, which a filtered
    // sample next to it still reads.
    glm::vec2 low(-0.5f), high(0.5f);
    if (part != nullptr && rectangle.Width() > 0 && rectangle.Height() > 0) {
        const glm::vec2 origin(static_cast<float>(rectangle.xMin), static_cast<float>(rectangle.yMin));
        const glm::vec2 size(static_cast<float>(rectangle.Width()), static_cast<float>(rectangle.Height()));
        low = glm::max(
            low, (glm::vec2(static_cast<float>(part->xMin), static_cast<float>(part->yMin)) - 1.f - origin) /
                         size -
                     0.5f);
        high = glm::min(
            high, (glm::vec2(static_cast<float>(part->xMax), static_cast<float>(part->yMax)) + 1.f - origin) /
                          size -
                      0.5f);
    }
    for (glm::vec2 corner : {low, glm::vec2(high.x, low.y), high, glm::vec2(low.x, high.y)}) {
        glm::vec4 q = m * glm::vec4(corner, 0.f, 1.f);
        x0 = std::min(x0, q.x);
        x1 = std::max(x1, q.x);
        y0 = std::min(y0, q.y);
        y1 = std::max(y1, q.y);
    }
    // A pixel of margin for rasterisation at the edges; clamped so that no bound overflows.
    using GUI::Geometry::ClampCoordinate;
    return {ClampCoordinate(static_cast<int64_t>(std::floor(std::max(x0, -3e7f))) - 1),
            ClampCoordinate(static_cast<int64_t>(std::ceil(std::min(x1, 3e7f))) + 1),
            ClampCoordinate(static_cast<int64_t>(std::floor(std::max(y0, -3e7f))) - 1),
            ClampCoordinate(static_cast<int64_t>(std::ceil(std::min(y1, 3e7f))) + 1)};
}

void OpenglRenderer::RenderTexture(GUI::Texture::Base* color, GUI::Texture::Base* ids,
                                   GUI::Animation::Frame* frame, GUI::Geometry::Rectangle* rectangle,
                                   GUI::Geometry::Point* pivot) {
    // A layer that could not be allocated has nothing to show.
    if (cachedProgram_ == nullptr || centeredQuadBuffer_ == nullptr || !color || !ids || NameOf(color) == 0 ||
        NameOf(ids) == 0)
        return;
    const GUI::Geometry::Rectangle footprint = CachedLayerFootprint(*frame, *rectangle, *pivot);
    if (!detail::InDrawRegion(footprint))
        return;
    const glm::mat4 modelView = CachedLayerTransform(*frame, *rectangle, *pivot);

    detail::DisableBlending();
    GLSLProgram& cached = detail::ProgramFor(*cachedProgram_, cachedFetchProgram_.get());
    const bool samples = &cached == cachedProgram_.get();
    GLuint program = cached.getProgram();
    cached.begin();
    glUniformMatrix4fv(UniformLocation(program, "ModelViewMatrix"), 1, GL_FALSE, glm::value_ptr(modelView));
    GB_CHECK_GL(kTag);
    glUniform1f(UniformLocation(program, "alpha"), frame->getAlpha());
    GB_CHECK_GL(kTag);
    if (samples) {
        glUniform1i(UniformLocation(program, "targetColorSampler"), kTargetColorUnit);
        GB_CHECK_GL(kTag);
        glUniform1i(UniformLocation(program, "targetIDSampler"), kTargetIdUnit);
        GB_CHECK_GL(kTag);
    }
    glUniform1i(UniformLocation(program, "sourceColorSampler"), kSourceColorUnit);
    GB_CHECK_GL(kTag);
    glUniform1i(UniformLocation(program, "sourceIDSampler"), kSourceIdUnit);
    GB_CHECK_GL(kTag);

    glActiveTexture(GL_TEXTURE0 + kSourceColorUnit);
    GB_CHECK_GL(kTag);
    color->Bind();
    glActiveTexture(GL_TEXTURE0 + kSourceIdUnit);
    GB_CHECK_GL(kTag);
    if (ids->Bind())
        UseNearestFilter();

    detail::TargetBarrierFor(footprint, samples);
    centeredQuadBuffer_->draw(GLVertexBuffer::TriangleFan);
    detail::EndDraw(cached);
}

bool OpenglRenderer::InitializeFBO() {
    if (frameBuffer_ != 0)
        return true;
    glGenFramebuffers(1, &frameBuffer_);
    GB_CHECK_GL(kTag);
    return frameBuffer_ != 0;
}

bool OpenglRenderer::DestroyFBO() {
    if (frameBuffer_ != 0) {
        glDeleteFramebuffers(1, &frameBuffer_);
        GB_CHECK_GL(kTag);
        frameBuffer_ = 0;
    }
    return true;
}

bool OpenglRenderer::BuildCircleBuffer() {
    constexpr int kSegments = 100;
    float points[(kSegments + 1) * 2];
    for (int i = 0; i < kSegments; ++i) {
        float angle = static_cast<float>(i) * 2.f * glm::pi<float>() / static_cast<float>(kSegments);
        points[i * 2] = 0.5f * std::cos(angle);
        points[i * 2 + 1] = 0.5f * std::sin(angle);
    }
    // Closing exactly on the first point avoids a hairline gap from rounding at 2 pi.
    points[kSegments * 2] = points[0];
    points[kSegments * 2 + 1] = points[1];
    return MakeBuffer(circleBuffer_, 2, 1, points, kSegments + 1);
}

bool OpenglRenderer::BuildQuadBuffer() {
    static const float kQuad[] = {0.f, 0.f, 1.f, 0.f, 1.f, 1.f, 0.f, 1.f};
    return MakeBuffer(quadBuffer_, 2, 1, kQuad, 4);
}

bool OpenglRenderer::BuildCenteredQuadBuffer() {
    static const float kQuad[] = {-0.5f, -0.5f, 0.f, 0.f, 0.5f,  -0.5f, 1.f, 0.f,
                                  0.5f,  0.5f,  1.f, 1.f, -0.5f, 0.5f,  0.f, 1.f};
    return MakeBuffer(centeredQuadBuffer_, 2, 2, kQuad, 4);
}

bool OpenglRenderer::BuildOutlineBuffer() {
    static const float kQuad[] = {0.f, 0.f, 1.f, 0.f, 1.f, 1.f, 0.f, 1.f};
    return MakeBuffer(outlineBuffer_, 2, 1, kQuad, 4);
}

bool OpenglRenderer::BuildLineBuffer() {
    static const float kLine[] = {0.f, 0.f, 1.f, 0.f};
    return MakeBuffer(lineBuffer_, 2, 1, kLine, 2);
}

} // namespace GUI::Renderer
