#include <trelvogui/scenecompositor.h>

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/glerror.h>
#include <graphicsbase/glloader.h>
#include <graphicsbase/glscopedbindings.h>
#include <graphicsbase/glscopedsetter.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/logfile.h>

#include <GL/glew.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cmath>
#include <string>

using namespace GraphicsBase;

namespace {
const char* kFile = "scenecompositor";

// Texture units of the passes: the host's bindings there are put back afterwards.
constexpr GLuint kColorUnit = 4;
constexpr GLuint kDepthUnit = 5;
constexpr GLuint kNormalUnit = 6;
constexpr GLuint kOcclusionUnit = 7;

using GUI::Renderer::detail::UniformLocation;

bool buildProgram(std::unique_ptr<GLSLProgram>& program, const char* fragment) {
    program = std::make_unique<GLSLProgram>();
    program->addShader("SceneCompositor.vert");
    program->addShader(fragment);
    return program->linkProgram();
}

GLuint makeTexture(GLenum internalFormat, GLenum format, GLenum type, int width, int height) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    GB_CHECK_GL(kFile);
    glBindTexture(GL_TEXTURE_2D, texture);
    GB_CHECK_GL(kFile);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internalFormat), width, height, 0, format, type,
                 nullptr);
    GB_CHECK_GL(kFile);
    // Every pass reads with texelFetch; the filters matter only for completeness.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    GB_CHECK_GL(kFile);
    return texture;
}

GLuint makeRenderbuffer(GLenum internalFormat, int samples, int width, int height) {
    GLuint renderbuffer = 0;
    glGenRenderbuffers(1, &renderbuffer);
    GB_CHECK_GL(kFile);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    GB_CHECK_GL(kFile);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, internalFormat, width, height);
    GB_CHECK_GL(kFile);
    return renderbuffer;
}

// The setters' one refusal: the value, what it must be, and the value kept.
bool refuseValue(const char* operation, double value, const char* rule, double kept) {
    LogFile::Instance().AddLine(LogLevel::Warning, "SceneCompositor::%s(): %g refused, %s; keeping %g.\n",
                                operation, value, rule, kept);
    return false;
}
} // namespace

SceneCompositor::SceneCompositor(std::shared_ptr<Camera> camera) : camera_(std::move(camera)) {}

SceneCompositor::~SceneCompositor() {
    deleteTargets();
    if (emptyVertexArray_) {
        glDeleteVertexArrays(1, &emptyVertexArray_);
        GB_CHECK_GL(kFile);
    }
}

bool SceneCompositor::Initialize() {
    std::string why;
    if (!GraphicsBase::LoadGL(&why)) {
        LogFile::Instance().AddLine(LogLevel::Warning, "SceneCompositor::Initialize(): %s\n", why.c_str());
        return false;
    }
    if (!camera_) {
        LogFile::Instance().AddLine(LogLevel::Warning, "SceneCompositor::Initialize(): no camera.\n");
        return false;
    }
    GL::GLScopedBindings hostBindings;
    if (!buildProgram(linearDepthProgram_, "SceneLinearDepth.frag") ||
        !buildProgram(occlusionProgram_, "SceneOcclusion.frag") ||
        !buildProgram(blurProgram_, "SceneOcclusionBlur.frag") ||
        !buildProgram(applyProgram_, "SceneOcclusionApply.frag")) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "SceneCompositor::Initialize(): the occlusion programs do not build.\n");
        return false;
    }
    if (!emptyVertexArray_) {
        glGenVertexArrays(1, &emptyVertexArray_);
        GB_CHECK_GL(kFile);
    }
    GLint maxTexture = 0, maxViewport[2] = {0, 0}, maxRenderbuffer = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTexture);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, maxViewport);
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maxRenderbuffer);
    glGetIntegerv(GL_MAX_SAMPLES, &maxSamples_);
    GB_CHECK_GL(kFile);
    maxSize_ = std::max(1, std::min({maxTexture, maxViewport[0], maxViewport[1], maxRenderbuffer}));
    initialized_ = true;
    return true;
}

bool SceneCompositor::Resize(int width, int height) {
    if (inScene_) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "SceneCompositor::Resize(): refused between BeginScene and EndScene.\n");
        return false;
    }
    width = std::max(width, 0);
    height = std::max(height, 0);
    if (width > maxSize_ || height > maxSize_) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "SceneCompositor::Resize(): %d x %d exceeds the context's limit of %d; clamped.\n", width, height,
            maxSize_);
        width = std::min(width, maxSize_);
        height = std::min(height, maxSize_);
    }
    // The targets take up to about 40 bytes a pixel; the same budget as the overlay's layers.
    if (static_cast<long long>(width) * height > GUI::GUIManager::kMaxLayerPixels) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "SceneCompositor::Resize(): %d x %d exceeds the budget of %lld pixels; the height is clamped.\n",
            width, height, GUI::GUIManager::kMaxLayerPixels);
        height = static_cast<int>(GUI::GUIManager::kMaxLayerPixels / width);
    }
    width_ = width;
    height_ = height;
    deleteTargets();
    if (!initialized_ || width == 0 || height == 0)
        return true;
    return createTargets();
}

void SceneCompositor::deleteTargets() {
    GLuint framebuffers[6] = {sceneFramebuffer_,         resolveFramebuffer_,
                              occlusionFramebuffers_[0], occlusionFramebuffers_[1],
                              occlusionFramebuffers_[2], occlusionFramebuffers_[3]};
    for (GLuint& f : framebuffers)
        if (f) {
            glDeleteFramebuffers(1, &f);
            GB_CHECK_GL(kFile);
        }
    for (GLuint& r : sceneRenderbuffers_)
        if (r) {
            glDeleteRenderbuffers(1, &r);
            GB_CHECK_GL(kFile);
            r = 0;
        }
    GLuint textures[7] = {colorTexture_,         depthTexture_,         normalTexture_,
                          occlusionTextures_[0], occlusionTextures_[1], occlusionTextures_[2],
                          occlusionTextures_[3]};
    for (GLuint t : textures)
        if (t) {
            glDeleteTextures(1, &t);
            GB_CHECK_GL(kFile);
        }
    sceneFramebuffer_ = resolveFramebuffer_ = 0;
    colorTexture_ = depthTexture_ = normalTexture_ = 0;
    for (int i = 0; i < 4; ++i)
        occlusionFramebuffers_[i] = occlusionTextures_[i] = 0;
    builtSamples_ = -1;
}

bool SceneCompositor::createTargets() {
    GL::GLScopedBindings hostBindings;
    GLint hostRenderbuffer = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &hostRenderbuffer);
    GB_CHECK_GL(kFile);

    int samples = requestedSamples_ > 1 ? requestedSamples_ : 0;
    if (samples > maxSamples_) {
        const int offered = maxSamples_ > 1 ? maxSamples_ : 0;
        if (!samplesReported_)
            LogFile::Instance().AddLine(
                LogLevel::Warning,
                "SceneCompositor: %d samples asked for, the context offers %d; using %d.\n", samples,
                maxSamples_, offered);
        samplesReported_ = true;
        samples = offered;
    }

    // The resolved (or only) scene target: textures the passes read.
    colorTexture_ = makeTexture(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, width_, height_);
    depthTexture_ = makeTexture(GL_DEPTH_COMPONENT32F, GL_DEPTH_COMPONENT, GL_FLOAT, width_, height_);
    if (normals_)
        normalTexture_ = makeTexture(GL_RGBA16F, GL_RGBA, GL_FLOAT, width_, height_);
    glGenFramebuffers(1, &resolveFramebuffer_);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, resolveFramebuffer_);
    GB_CHECK_GL(kFile);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, colorTexture_, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, depthTexture_, 0);
    if (normalTexture_)
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D, normalTexture_, 0);
    GB_CHECK_GL(kFile);
    const GLenum drawBuffers[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(normalTexture_ ? 2 : 1, drawBuffers);
    GB_CHECK_GL(kFile);
    bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;

    sceneFramebuffer_ = resolveFramebuffer_;
    if (complete && samples > 0) {
        sceneRenderbuffers_[0] = makeRenderbuffer(GL_RGBA8, samples, width_, height_);
        sceneRenderbuffers_[1] = makeRenderbuffer(GL_DEPTH_COMPONENT32F, samples, width_, height_);
        if (normals_)
            sceneRenderbuffers_[2] = makeRenderbuffer(GL_RGBA16F, samples, width_, height_);
        glGenFramebuffers(1, &sceneFramebuffer_);
        GB_CHECK_GL(kFile);
        glBindFramebuffer(GL_FRAMEBUFFER, sceneFramebuffer_);
        GB_CHECK_GL(kFile);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                                  sceneRenderbuffers_[0]);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER,
                                  sceneRenderbuffers_[1]);
        if (normals_)
            glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_RENDERBUFFER,
                                      sceneRenderbuffers_[2]);
        GB_CHECK_GL(kFile);
        glDrawBuffers(normals_ ? 2 : 1, drawBuffers);
        GB_CHECK_GL(kFile);
        // The resolve target now only receives blits, one attachment at a time.
        glBindFramebuffer(GL_FRAMEBUFFER, resolveFramebuffer_);
        glDrawBuffers(1, drawBuffers);
        glBindFramebuffer(GL_FRAMEBUFFER, sceneFramebuffer_);
        GB_CHECK_GL(kFile);
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            LogFile::Instance().AddLine(LogLevel::Warning,
                                        "SceneCompositor: a target of %d samples is not supported; drawing "
                                        "without multisampling.\n",
                                        samples);
            glDeleteFramebuffers(1, &sceneFramebuffer_);
            glDeleteRenderbuffers(3, sceneRenderbuffers_);
            GB_CHECK_GL(kFile);
            sceneRenderbuffers_[0] = sceneRenderbuffers_[1] = sceneRenderbuffers_[2] = 0;
            sceneFramebuffer_ = resolveFramebuffer_;
            glBindFramebuffer(GL_FRAMEBUFFER, resolveFramebuffer_);
            glDrawBuffers(normals_ ? 2 : 1, drawBuffers);
            GB_CHECK_GL(kFile);
            samples = 0;
        }
    }

    // Occlusion targets: linear depth; then raw, blurred across, blurred along, with the term in r
    // and linear depth in g (16-bit targets measured no faster on the software rasteriser).
    builtHalf_ = half_;
    const int ow = builtHalf_ ? (width_ + 1) / 2 : width_;
    const int oh = builtHalf_ ? (height_ + 1) / 2 : height_;
    for (int i = 0; complete && i < 4; ++i) {
        occlusionTextures_[i] = i == 0 ? makeTexture(GL_R32F, GL_RED, GL_FLOAT, ow, oh)
                                       : makeTexture(GL_RG32F, GL_RG, GL_FLOAT, ow, oh);
        glGenFramebuffers(1, &occlusionFramebuffers_[i]);
        GB_CHECK_GL(kFile);
        glBindFramebuffer(GL_FRAMEBUFFER, occlusionFramebuffers_[i]);
        GB_CHECK_GL(kFile);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, occlusionTextures_[i], 0);
        GB_CHECK_GL(kFile);
        complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    }

    if (complete) {
        // A host that draws nothing finds cleared targets: background everywhere, no occlusion.
        GL::GLScopedSetter state(GL::Disable{GL_SCISSOR_TEST}, GL::Disable{GL_RASTERIZER_DISCARD},
                                 GL::ColorMask{true, true, true, true});
        GLboolean depthMask = GL_TRUE;
        GLfloat clearColor[4] = {0, 0, 0, 0};
        GLfloat clearDepth = 1.f;
        glGetBooleanv(GL_DEPTH_WRITEMASK, &depthMask);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, clearColor);
        glGetFloatv(GL_DEPTH_CLEAR_VALUE, &clearDepth);
        glDepthMask(GL_TRUE);
        glClearColor(0.f, 0.f, 0.f, 0.f);
        glClearDepth(1.0);
        for (GLuint f : {sceneFramebuffer_, resolveFramebuffer_}) {
            glBindFramebuffer(GL_FRAMEBUFFER, f);
            glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        }
        glDepthMask(depthMask);
        glClearColor(clearColor[0], clearColor[1], clearColor[2], clearColor[3]);
        glClearDepth(clearDepth);
        GB_CHECK_GL(kFile);
    }
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(hostRenderbuffer));
    GB_CHECK_GL(kFile);
    if (!complete) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "SceneCompositor::Resize(): the targets of %d x %d are incomplete.\n",
                                    width_, height_);
        deleteTargets();
        return false;
    }
    builtSamples_ = requestedSamples_;
    builtNormals_ = normals_;
    activeSamples_ = samples;
    return true;
}

bool SceneCompositor::ensureTargets() {
    if (colorTexture_ && builtSamples_ == requestedSamples_ && builtNormals_ == normals_ &&
        builtHalf_ == half_)
        return true;
    deleteTargets();
    return createTargets();
}

bool SceneCompositor::BeginScene() {
    if (inScene_) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "SceneCompositor::BeginScene(): a scene is already open; call EndScene first.\n");
        return false;
    }
    if (!initialized_ || width_ == 0 || height_ == 0 || !ensureTargets()) {
        LogFile::Instance().AddLine(
            LogLevel::Warning,
            "SceneCompositor::BeginScene(): no target; call Initialize and Resize first.\n");
        return false;
    }
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &hostDrawFramebuffer_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &hostReadFramebuffer_);
    glGetIntegerv(GL_VIEWPORT, hostViewport_);
    GB_CHECK_GL(kFile);
    glBindFramebuffer(GL_FRAMEBUFFER, sceneFramebuffer_);
    GB_CHECK_GL(kFile);
    glViewport(0, 0, width_, height_);
    GB_CHECK_GL(kFile);
    inScene_ = true;
    return true;
}

void SceneCompositor::drawTriangle() {
    glDrawArrays(GL_TRIANGLES, 0, 3);
    GB_CHECK_GL(kFile);
}

void SceneCompositor::occlusionPasses() {
    const int ow = builtHalf_ ? (width_ + 1) / 2 : width_;
    const int oh = builtHalf_ ? (height_ + 1) / 2 : height_;
    const int scale = builtHalf_ ? 2 : 1;
    // At half resolution a smaller tile keeps the blur's reach in scene pixels the same.
    const int patternSize = builtHalf_ ? 2 : 4;
    const glm::mat4& projection = camera_->ProjectionMatrix();
    const glm::mat4 inverse = glm::inverse(projection);
    const glm::mat3 viewRotation(camera_->ViewMatrix());
    glViewport(0, 0, ow, oh);
    GB_CHECK_GL(kFile);

    GLuint program = linearDepthProgram_->getProgram();
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, occlusionFramebuffers_[0]);
    linearDepthProgram_->begin();
    glUniform1i(UniformLocation(program, "DepthTexture"), kDepthUnit);
    glUniformMatrix4fv(UniformLocation(program, "InverseProjection"), 1, GL_FALSE, glm::value_ptr(inverse));
    glUniform1i(UniformLocation(program, "Scale"), scale);
    GB_CHECK_GL(kFile);
    drawTriangle();

    program = occlusionProgram_->getProgram();
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, occlusionFramebuffers_[1]);
    glActiveTexture(GL_TEXTURE0 + kOcclusionUnit);
    glBindTexture(GL_TEXTURE_2D, occlusionTextures_[0]);
    occlusionProgram_->begin();
    glUniform1i(UniformLocation(program, "LinearDepthTexture"), kOcclusionUnit);
    glUniform1i(GUI::Renderer::detail::UniformLocationQuiet(program, "NormalTexture"), kNormalUnit);
    glUniform1i(UniformLocation(program, "UseNormals"), normalTexture_ ? 1 : 0);
    glUniformMatrix4fv(UniformLocation(program, "Projection"), 1, GL_FALSE, glm::value_ptr(projection));
    glUniformMatrix3fv(GUI::Renderer::detail::UniformLocationQuiet(program, "ViewRotation"), 1, GL_FALSE,
                       glm::value_ptr(viewRotation));
    glUniform1f(UniformLocation(program, "Radius"), radius_);
    glUniform1f(UniformLocation(program, "Intensity"), intensity_);
    glUniform1f(UniformLocation(program, "Bias"), bias_);
    glUniform1i(UniformLocation(program, "SampleCount"), samples_);
    glUniform1i(UniformLocation(program, "Interleaved"), interleaved_ ? 1 : 0);
    glUniform1i(UniformLocation(program, "Scale"), scale);
    glUniform2f(UniformLocation(program, "SceneSize"), static_cast<float>(width_),
                static_cast<float>(height_));
    glUniform1i(UniformLocation(program, "PatternSize"), patternSize);
    GB_CHECK_GL(kFile);
    drawTriangle();

    program = blurProgram_->getProgram();
    blurProgram_->begin();
    glUniform1i(UniformLocation(program, "OcclusionTexture"), kOcclusionUnit);
    glUniform1i(UniformLocation(program, "PatternSize"), patternSize);
    // At full resolution the apply pass blurs along the second direction as it reads.
    const int passes = builtHalf_ ? 2 : 1;
    for (int pass = 1; pass <= passes; ++pass) {
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, occlusionFramebuffers_[pass + 1]);
        glBindTexture(GL_TEXTURE_2D, occlusionTextures_[pass]);
        glUniform2i(UniformLocation(program, "Direction"), pass == 1 ? 1 : 0, pass == 1 ? 0 : 1);
        GB_CHECK_GL(kFile);
        drawTriangle();
    }
    glBindTexture(GL_TEXTURE_2D, occlusionTextures_[passes + 1]);
    GB_CHECK_GL(kFile);
}

bool SceneCompositor::EndScene(GUI::GUIManager* overlay) {
    if (!inScene_) {
        LogFile::Instance().AddLine(LogLevel::Warning, "SceneCompositor::EndScene(): no scene is open.\n");
        return false;
    }
    {
        GL::GLScopedBindings bindings;
        GL::GLScopedSetter state(GL::Disable{GL_DEPTH_TEST}, GL::Disable{GL_BLEND},
                                 GL::Disable{GL_SCISSOR_TEST}, GL::Disable{GL_STENCIL_TEST},
                                 GL::Disable{GL_CULL_FACE}, GL::Disable{GL_FRAMEBUFFER_SRGB},
                                 GL::Disable{GL_RASTERIZER_DISCARD}, GL::ColorMask{true, true, true, true});
        if (sceneFramebuffer_ != resolveFramebuffer_) {
            glBindFramebuffer(GL_READ_FRAMEBUFFER, sceneFramebuffer_);
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolveFramebuffer_);
            GB_CHECK_GL(kFile);
            glBlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_,
                              GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT, GL_NEAREST);
            GB_CHECK_GL(kFile);
            if (normalTexture_) {
                glReadBuffer(GL_COLOR_ATTACHMENT1);
                const GLenum normalOnly[2] = {GL_NONE, GL_COLOR_ATTACHMENT1};
                glDrawBuffers(2, normalOnly);
                glBlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_, GL_COLOR_BUFFER_BIT,
                                  GL_NEAREST);
                glReadBuffer(GL_COLOR_ATTACHMENT0);
                const GLenum colourOnly = GL_COLOR_ATTACHMENT0;
                glDrawBuffers(1, &colourOnly);
                GB_CHECK_GL(kFile);
            }
        }
        const GLuint hostDraw = static_cast<GLuint>(hostDrawFramebuffer_);
        const int* v = hostViewport_;
        if (!occlusion_) {
            glBindFramebuffer(GL_READ_FRAMEBUFFER, resolveFramebuffer_);
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, hostDraw);
            GB_CHECK_GL(kFile);
            const bool sameSize = v[2] == width_ && v[3] == height_;
            glBlitFramebuffer(0, 0, width_, height_, v[0], v[1], v[0] + v[2], v[1] + v[3],
                              GL_COLOR_BUFFER_BIT, sameSize ? GL_NEAREST : GL_LINEAR);
            GB_CHECK_GL(kFile);
        } else {
            glBindVertexArray(emptyVertexArray_);
            GB_CHECK_GL(kFile);
            GL::GLScopedSetter textures(
                GL::BindTexture2D{kColorUnit, colorTexture_}, GL::BindTexture2D{kDepthUnit, depthTexture_},
                GL::BindTexture2D{kNormalUnit, normalTexture_}, GL::BindTexture2D{kOcclusionUnit, 0});
            occlusionPasses();

            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, hostDraw);
            glViewport(v[0], v[1], v[2], v[3]);
            GB_CHECK_GL(kFile);
            GLuint program = applyProgram_->getProgram();
            applyProgram_->begin();
            glUniform1i(UniformLocation(program, "ColorTexture"), kColorUnit);
            glUniform1i(UniformLocation(program, "DepthTexture"), kDepthUnit);
            glUniform1i(UniformLocation(program, "OcclusionTexture"), kOcclusionUnit);
            glUniform1i(UniformLocation(program, "PatternSize"), builtHalf_ ? 2 : 4);
            const glm::mat4 inverse = glm::inverse(camera_->ProjectionMatrix());
            glUniformMatrix4fv(UniformLocation(program, "InverseProjection"), 1, GL_FALSE,
                               glm::value_ptr(inverse));
            glUniform2i(UniformLocation(program, "ViewportOrigin"), v[0], v[1]);
            glUniform2f(UniformLocation(program, "ViewportScale"),
                        v[2] > 0 ? static_cast<float>(width_) / static_cast<float>(v[2]) : 1.f,
                        v[3] > 0 ? static_cast<float>(height_) / static_cast<float>(v[3]) : 1.f);
            glUniform1i(UniformLocation(program, "Scale"), builtHalf_ ? 2 : 1);
            glUniform1i(UniformLocation(program, "ShowOcclusion"), showOcclusion_ ? 1 : 0);
            GB_CHECK_GL(kFile);
            drawTriangle();
        }
    }
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(hostDrawFramebuffer_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(hostReadFramebuffer_));
    glViewport(hostViewport_[0], hostViewport_[1], hostViewport_[2], hostViewport_[3]);
    GB_CHECK_GL(kFile);
    inScene_ = false;
    if (overlay) {
        overlay->UpdateLayers();
        overlay->Draw();
    }
    return true;
}

bool SceneCompositor::SetRadius(float radius) {
    if (!std::isfinite(radius) || !(radius > bias_))
        return refuseValue("SetRadius", radius, "it must be finite and above the bias", radius_);
    radius_ = radius;
    return true;
}

bool SceneCompositor::SetIntensity(float intensity) {
    if (!std::isfinite(intensity) || !(intensity > 0.f))
        return refuseValue("SetIntensity", intensity, "it must be finite and above 0", intensity_);
    intensity_ = intensity;
    return true;
}

bool SceneCompositor::SetBias(float bias) {
    if (!(bias >= 0.f) || !(bias < radius_))
        return refuseValue("SetBias", bias, "it must be at least 0 and below the radius", bias_);
    bias_ = bias;
    return true;
}

bool SceneCompositor::SetSampleCount(int samples) {
    if (samples < 4 || samples > 64)
        return refuseValue("SetSampleCount", samples, "it must be 4 to 64", samples_);
    samples_ = samples;
    return true;
}

void SceneCompositor::SetHalfResolution(bool half) {
    half_ = half;
}

bool SceneCompositor::SetMultisampleCount(int samples) {
    if (samples < 0)
        return refuseValue("SetMultisampleCount", samples, "it must be 0 or more", requestedSamples_);
    if (samples != requestedSamples_)
        samplesReported_ = false;
    requestedSamples_ = samples;
    return true;
}

void SceneCompositor::SetNormalAttachment(bool on) {
    normals_ = on;
}
