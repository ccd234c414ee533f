// The scene compositor: its occlusion against ray-cast ground truth, the plain blit bit for bit,
// refusals, and the host's GL state around every entry point.
#include "support/glfixture.h"
#include "support/occlusionreference.h"

#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/scenecompositor.h>

#include <graphicsbase/camera.h>

#include <GL/glew.h>

#include <glm/gtc/type_ptr.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
using trelvo::test::AnalyticScene;
using trelvo::test::ReferencePixel;

constexpr int kWidth = 160;
constexpr int kHeight = 120;

const char* kVertex = R"(#version 330 core
layout(location = 0) in vec3 position;
layout(location = 1) in vec3 normal;
uniform mat4 viewProjection;
out vec3 worldNormal;
void main() {
    worldNormal = normal;
    gl_Position = viewProjection * vec4(position, 1.0);
})";

const char* kFragment = R"(#version 330 core
in vec3 worldNormal;
layout(location = 0) out vec4 color;
layout(location = 1) out vec4 normalOut;
void main() {
    vec3 n = normalize(worldNormal);
    color = vec4(0.4 + 0.3 * n, 1.0);
    normalOut = vec4(n, 0.0);
})";

/// The host side: its scene's triangles, a program, and a framebuffer of its own (not 0), which the
/// compositor has to find again at EndScene.
class Host {
public:
    explicit Host(const AnalyticScene& scene, int samples = 0) {
        program_ = glCreateProgram();
        for (auto [stage, source] :
             {std::pair{GL_VERTEX_SHADER, kVertex}, std::pair{GL_FRAGMENT_SHADER, kFragment}}) {
            GLuint s = glCreateShader(stage);
            glShaderSource(s, 1, &source, nullptr);
            glCompileShader(s);
            glAttachShader(program_, s);
            glDeleteShader(s);
        }
        glLinkProgram(program_);
        std::vector<float> v = scene.Triangles();
        vertices_ = static_cast<GLsizei>(v.size() / 6);
        glGenVertexArrays(1, &vao_);
        glBindVertexArray(vao_);
        glGenBuffers(1, &vbo_);
        glBindBuffer(GL_ARRAY_BUFFER, vbo_);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(v.size() * sizeof(float)), v.data(),
                     GL_STATIC_DRAW);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 24, nullptr);
        glEnableVertexAttribArray(1);
        glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, 24, reinterpret_cast<const void*>(12));
        glBindVertexArray(0);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        framebuffer_ = makeTarget(0, colour_, depth_);
        if (samples > 0)
            multisampled_ = makeTarget(samples, msColour_, msDepth_);
    }
    ~Host() {
        glDeleteFramebuffers(1, &framebuffer_);
        glDeleteFramebuffers(1, &multisampled_);
        GLuint renderbuffers[4] = {colour_, depth_, msColour_, msDepth_};
        glDeleteRenderbuffers(4, renderbuffers);
        glDeleteBuffers(1, &vbo_);
        glDeleteVertexArrays(1, &vao_);
        glDeleteProgram(program_);
    }
    GLuint Framebuffer() const { return framebuffer_; }

    /// Clears and draws the scene into whatever framebuffer is bound.
    void Draw(const Camera& camera, bool drawScene = true) {
        glClearColor(0.1f, 0.2f, 0.3f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        if (!drawScene)
            return;
        glEnable(GL_DEPTH_TEST);
        glUseProgram(program_);
        glm::mat4 vp = camera.ProjectionMatrix() * camera.ViewMatrix();
        glUniformMatrix4fv(glGetUniformLocation(program_, "viewProjection"), 1, GL_FALSE, glm::value_ptr(vp));
        glBindVertexArray(vao_);
        glDrawArrays(GL_TRIANGLES, 0, vertices_);
        glBindVertexArray(0);
        glUseProgram(0);
        glDisable(GL_DEPTH_TEST);
    }
    /// The scene drawn straight into the host's framebuffer (through its multisampled one, resolved,
    /// when it has one).
    void DrawStraight(const Camera& camera) {
        glBindFramebuffer(GL_FRAMEBUFFER, multisampled_ ? multisampled_ : framebuffer_);
        glViewport(0, 0, kWidth, kHeight);
        Draw(camera);
        if (multisampled_) {
            glBindFramebuffer(GL_READ_FRAMEBUFFER, multisampled_);
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_);
            glBlitFramebuffer(0, 0, kWidth, kHeight, 0, 0, kWidth, kHeight, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        }
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    }

private:
    static GLuint makeTarget(int samples, GLuint& colour, GLuint& depth) {
        GLuint f = 0;
        glGenFramebuffers(1, &f);
        glBindFramebuffer(GL_FRAMEBUFFER, f);
        glGenRenderbuffers(1, &colour);
        glBindRenderbuffer(GL_RENDERBUFFER, colour);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_RGBA8, kWidth, kHeight);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
        glGenRenderbuffers(1, &depth);
        glBindRenderbuffer(GL_RENDERBUFFER, depth);
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, GL_DEPTH_COMPONENT24, kWidth, kHeight);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
        glBindRenderbuffer(GL_RENDERBUFFER, 0);
        return f;
    }

    GLuint program_ = 0, vao_ = 0, vbo_ = 0;
    GLsizei vertices_ = 0;
    GLuint framebuffer_ = 0, colour_ = 0, depth_ = 0;
    GLuint multisampled_ = 0, msColour_ = 0, msDepth_ = 0;
};

class SceneCompositorTest : public trelvo::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        Recreate(kWidth, kHeight);
        camera = std::make_shared<Camera>();
        camera->SetPerspective(45.f, 0.1f, 50.f);
        camera->SetViewport(kWidth, kHeight);
        LookFrom({2.6f, 2.0f, 3.2f}, {0.f, 0.4f, 0.f});
        compositor = std::make_unique<SceneCompositor>(camera);
        ASSERT_TRUE(compositor->Initialize());
        ASSERT_TRUE(compositor->Resize(kWidth, kHeight));
    }
    void TearDown() override {
        compositor.reset();
        GLTest::TearDown();
    }
    void LookFrom(glm::vec3 eye, glm::vec3 target) {
        camera->SetPosition(eye);
        camera->SetTarget(target);
        camera->CalcMatrices();
    }
    /// One frame through the compositor into the host's framebuffer; its pixels.
    std::vector<uint8_t> Composite(Host& host, bool drawScene = true) {
        glBindFramebuffer(GL_FRAMEBUFFER, host.Framebuffer());
        glViewport(0, 0, kWidth, kHeight);
        EXPECT_TRUE(compositor->BeginScene());
        host.Draw(*camera, drawScene);
        EXPECT_TRUE(compositor->EndScene());
        return ReadColorRegion(0, 0, kWidth, kHeight);
    }

    std::shared_ptr<Camera> camera;
    std::unique_ptr<SceneCompositor> compositor;
};

// --- Ground truth -----------------------------------------------------------------------------

struct TruthCase {
    const char* name;
    AnalyticScene (*scene)();
    glm::vec3 eye, target;
    bool half;
    bool normals;
    bool interleaved = false;
};

class GroundTruthTest : public SceneCompositorTest, public ::testing::WithParamInterface<TruthCase> {};

TEST_P(GroundTruthTest, OcclusionMatchesRayCasting) {
    const TruthCase& c = GetParam();
    constexpr float kRadius = 0.5f;
    LookFrom(c.eye, c.target);
    const AnalyticScene scene = c.scene();
    Host host(scene);
    compositor->SetHalfResolution(c.half);
    compositor->SetNormalAttachment(c.normals);
    compositor->SetInterleavedSampling(c.interleaved);
    ASSERT_TRUE(compositor->SetRadius(kRadius));
    compositor->SetShowOcclusion(true);
    const std::vector<uint8_t> pixels = Composite(host);
    const std::vector<ReferencePixel> truth =
        trelvo::test::ReferenceOcclusion(scene, *camera, kWidth, kHeight, kRadius);

    // The blur's footprint in scene pixels, and the upsampling's one more at half resolution.
    const int reach = c.half ? 5 : 2;
    auto at = [&](int x, int y) { return pixels[(static_cast<size_t>(y) * kWidth + x) * 4] / 255.f; };
    double errorSum = 0.0, creaseSum = 0.0;
    int covered = 0, creases = 0, open = 0, halo = 0;
    float worstOpen = 1.f, worstHalo = 1.f;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            const ReferencePixel& r = truth[static_cast<size_t>(y) * kWidth + x];
            const float ao = at(x, y);
            if (!r.covered) {
                EXPECT_EQ(pixels[(static_cast<size_t>(y) * kWidth + x) * 4], 255) << x << ", " << y;
                continue;
            }
            ++covered;
            errorSum += std::abs(ao - r.occlusion);
            if (r.creaseDistance < 0.03f) {
                ++creases;
                creaseSum += ao;
            }
            if (r.creaseDistance > 2.f * kRadius) {
                ++open;
                worstOpen = std::min(worstOpen, ao);
            }
            // A halo: darkening beside the silhouette of a nearer object where neither this pixel nor
            // any pixel of its own surface within the blur's footprint has geometry within reach.
            // (Within the footprint the blur rightly carries real occlusion along a surface.)
            if (r.creaseDistance > kRadius) {
                bool behindSilhouette = false, allOpen = true;
                for (int dy = -reach; dy <= reach; ++dy)
                    for (int dx = -reach; dx <= reach; ++dx) {
                        const int nx = x + dx, ny = y + dy;
                        if (nx < 0 || ny < 0 || nx >= kWidth || ny >= kHeight)
                            continue;
                        const ReferencePixel& n = truth[static_cast<size_t>(ny) * kWidth + nx];
                        if (!n.covered)
                            continue;
                        if (n.primitive == r.primitive)
                            allOpen &= n.occlusion == 1.f;
                        else if (std::max(std::abs(dx), std::abs(dy)) <= 4)
                            behindSilhouette |= n.depth < r.depth - kRadius;
                    }
                if (behindSilhouette && allOpen) {
                    ++halo;
                    worstHalo = std::min(worstHalo, ao);
                }
            }
        }
    const double mae = errorSum / covered;
    const double creaseMean = creases ? creaseSum / creases : 0.0;
    const bool pass = mae <= 0.08 && worstOpen >= 0.98f && worstHalo >= 0.98f && creaseMean < 0.7;
    if (!pass) {
        std::vector<uint8_t> reference(pixels.size(), 255);
        for (size_t i = 0; i < truth.size(); ++i)
            for (int k = 0; k < 3; ++k)
                reference[i * 4 + k] = static_cast<uint8_t>(std::lround(truth[i].occlusion * 255.f));
        const std::string base = trelvo::test::OutputDir() + "/compositor-" + c.name;
        trelvo::test::WritePng(base + "-actual.png", pixels.data(), kWidth, kHeight);
        trelvo::test::WritePng(base + "-reference.png", reference.data(), kWidth, kHeight);
    }
    EXPECT_GT(covered, kWidth * kHeight / 2);
    EXPECT_LE(mae, 0.08) << "mean absolute error over " << covered << " covered pixels";
    EXPECT_GT(open, 100);
    EXPECT_GE(worstOpen, 0.98f) << "open floor far from objects, over " << open << " pixels";
    EXPECT_GE(creases, 5); // the sphere hides most of its contact from any view
    EXPECT_LT(creaseMean, 0.7) << "contact creases, over " << creases << " pixels";
    if (halo > 0) { // the corner has no silhouette in view
        EXPECT_GE(worstHalo, 0.98f) << "background beside silhouettes, over " << halo << " pixels";
    }
}

AnalyticScene (*const kBox)() = &AnalyticScene::BoxOnPlane;
AnalyticScene (*const kCorner)() = &AnalyticScene::InsideCorner;
AnalyticScene (*const kSphere)() = &AnalyticScene::SphereOnPlane;
const glm::vec3 kEye{2.6f, 2.0f, 3.2f}, kTarget{0.f, 0.4f, 0.f};
const glm::vec3 kCornerEye{3.2f, 2.4f, 3.6f}, kCornerTarget{0.5f, 0.3f, 0.5f};

INSTANTIATE_TEST_SUITE_P(
    Scenes, GroundTruthTest,
    ::testing::Values(TruthCase{"box", kBox, kEye, kTarget, false, false},
                      TruthCase{"corner", kCorner, kCornerEye, kCornerTarget, false, false},
                      TruthCase{"sphere", kSphere, kEye, kTarget, false, false},
                      TruthCase{"box_half", kBox, kEye, kTarget, true, false},
                      TruthCase{"corner_half", kCorner, kCornerEye, kCornerTarget, true, false},
                      TruthCase{"sphere_half", kSphere, kEye, kTarget, true, false},
                      TruthCase{"box_normals", kBox, kEye, kTarget, false, true},
                      TruthCase{"sphere_normals", kSphere, kEye, kTarget, false, true},
                      TruthCase{"box_interleaved", kBox, kEye, kTarget, false, false, true},
                      TruthCase{"corner_interleaved", kCorner, kCornerEye, kCornerTarget, false, false, true},
                      TruthCase{"sphere_interleaved", kSphere, kEye, kTarget, false, false, true},
                      TruthCase{"corner_half_interleaved", kCorner, kCornerEye, kCornerTarget, true, false,
                                true}),
    [](const auto& info) { return std::string(info.param.name); });

// --- The picture without occlusion ---------------------------------------------------------------

TEST_F(SceneCompositorTest, OcclusionOffIsTheSceneDrawnStraightBitForBit) {
    GLint maxSamples = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
    for (int samples : {0, 4}) {
        if (samples > maxSamples)
            continue;
        SCOPED_TRACE(samples);
        Host host(AnalyticScene::BoxOnPlane(), samples);
        host.DrawStraight(*camera);
        const std::vector<uint8_t> straight = ReadColorRegion(0, 0, kWidth, kHeight);
        compositor->SetOcclusionEnabled(false);
        ASSERT_TRUE(compositor->SetMultisampleCount(samples));
        // Another picture first, so that nothing passes by being left over.
        glBindFramebuffer(GL_FRAMEBUFFER, host.Framebuffer());
        glClearColor(1.f, 0.f, 1.f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT);
        EXPECT_EQ(Composite(host), straight);
        EXPECT_EQ(compositor->GetActiveMultisampleCount(), samples);
    }
}

TEST_F(SceneCompositorTest, AHostThatDrawsNothingIsNotOccluded) {
    Host host(AnalyticScene::BoxOnPlane());
    compositor->SetShowOcclusion(true);
    for (bool half : {false, true}) {
        compositor->SetHalfResolution(half);
        Composite(host); // a frame with a scene first: nothing of it may be left over
        const std::vector<uint8_t> pixels = Composite(host, false);
        for (size_t p = 0; p < pixels.size(); p += 4)
            ASSERT_EQ(pixels[p], 255) << "pixel " << p / 4 << ", half " << half;
    }
}

TEST_F(SceneCompositorTest, MultisamplingBeyondTheContextFallsBackWithOneMessage) {
    GLint maxSamples = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
    Host host(AnalyticScene::SphereOnPlane());
    ASSERT_TRUE(compositor->SetMultisampleCount(maxSamples + 8));
    for (int frame = 0; frame < 3; ++frame)
        Composite(host);
    EXPECT_EQ(compositor->GetActiveMultisampleCount(), maxSamples > 1 ? maxSamples : 0);
    int messages = 0;
    for (const std::string& line : log->Lines())
        messages += line.find("samples asked for") != std::string::npos;
    EXPECT_EQ(messages, 1);
}

// --- Refusals ------------------------------------------------------------------------------------

TEST_F(SceneCompositorTest, BadInputIsRefusedWithAMessageAndChangesNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    SceneCompositor& c = *compositor;
    struct Case {
        const char* message;
        std::function<bool()> call;
    };
    const Case cases[] = {
        {"SetRadius(): 0 refused", [&] { return c.SetRadius(0.f); }},
        {"SetRadius(): -1 refused", [&] { return c.SetRadius(-1.f); }},
        {"SetRadius(): nan refused", [&] { return c.SetRadius(nan); }},
        {"SetRadius(): inf refused", [&] { return c.SetRadius(inf); }},
        {"SetRadius(): 0.01 refused", [&] { return c.SetRadius(0.01f); }}, // below the bias
        {"SetIntensity(): 0 refused", [&] { return c.SetIntensity(0.f); }},
        {"SetIntensity(): -2 refused", [&] { return c.SetIntensity(-2.f); }},
        {"SetIntensity(): nan refused", [&] { return c.SetIntensity(nan); }},
        {"SetBias(): -0.1 refused", [&] { return c.SetBias(-0.1f); }},
        {"SetBias(): nan refused", [&] { return c.SetBias(nan); }},
        {"SetBias(): 0.5 refused", [&] { return c.SetBias(0.5f); }}, // not below the radius
        {"SetSampleCount(): 0 refused", [&] { return c.SetSampleCount(0); }},
        {"SetSampleCount(): 65 refused", [&] { return c.SetSampleCount(65); }},
        {"SetMultisampleCount(): -4 refused", [&] { return c.SetMultisampleCount(-4); }},
        {"EndScene(): no scene is open", [&] { return c.EndScene(); }},
    };
    for (const Case& k : cases) {
        log->Clear();
        EXPECT_FALSE(k.call()) << k.message;
        EXPECT_TRUE(log->Contains(k.message)) << k.message;
        EXPECT_EQ(c.GetRadius(), 0.5f);
        EXPECT_EQ(c.GetIntensity(), 1.f);
        EXPECT_EQ(c.GetBias(), 0.02f);
        EXPECT_EQ(c.GetSampleCount(), 16);
        EXPECT_EQ(c.GetMultisampleCount(), 0);
    }

    // Begin twice, Resize inside a scene: refused, the open scene unharmed.
    ASSERT_TRUE(c.BeginScene());
    GLint bound = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &bound);
    EXPECT_FALSE(c.BeginScene());
    EXPECT_FALSE(c.Resize(64, 64));
    EXPECT_EQ(c.GetWidth(), kWidth);
    GLint still = 0;
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &still);
    EXPECT_EQ(still, bound);
    EXPECT_TRUE(c.EndScene());
    EXPECT_TRUE(log->Contains("BeginScene(): a scene is already open"));
    EXPECT_TRUE(log->Contains("Resize(): refused between BeginScene and EndScene"));

    // Sizes: zero keeps no target, huge is clamped to the context's limits.
    EXPECT_TRUE(c.Resize(0, 0));
    EXPECT_FALSE(c.BeginScene());
    GLint maxTexture = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &maxTexture);
    EXPECT_TRUE(c.Resize(1 << 30, 8));
    EXPECT_LE(c.GetWidth(), maxTexture);
    EXPECT_TRUE(log->Contains("exceeds the context's limit"));
    SceneCompositor uninitialised(camera);
    EXPECT_FALSE(uninitialised.BeginScene());
}

// --- Host state ----------------------------------------------------------------------------------

/// The pieces of GL state a compositor could disturb.
struct HostState {
    GLint ints[12] = {};
    GLint viewport[4] = {}, scissor[4] = {}, blend[4] = {};
    GLboolean mask[4] = {};
    GLboolean enabled[7] = {};
    GLint units[4] = {};

    static HostState Read() {
        HostState s;
        const GLenum names[12] = {
            GL_DRAW_FRAMEBUFFER_BINDING, GL_READ_FRAMEBUFFER_BINDING, GL_CURRENT_PROGRAM,
            GL_VERTEX_ARRAY_BINDING,     GL_ARRAY_BUFFER_BINDING,     GL_ACTIVE_TEXTURE,
            GL_TEXTURE_BINDING_2D,       GL_RENDERBUFFER_BINDING,     GL_DEPTH_FUNC,
            GL_DEPTH_WRITEMASK,          GL_CULL_FACE_MODE,           GL_FRONT_FACE};
        for (int i = 0; i < 12; ++i)
            glGetIntegerv(names[i], &s.ints[i]);
        glGetIntegerv(GL_VIEWPORT, s.viewport);
        glGetIntegerv(GL_SCISSOR_BOX, s.scissor);
        glGetIntegerv(GL_BLEND_SRC_RGB, &s.blend[0]);
        glGetIntegerv(GL_BLEND_DST_RGB, &s.blend[1]);
        glGetIntegerv(GL_BLEND_SRC_ALPHA, &s.blend[2]);
        glGetIntegerv(GL_BLEND_DST_ALPHA, &s.blend[3]);
        glGetBooleanv(GL_COLOR_WRITEMASK, s.mask);
        const GLenum caps[7] = {GL_DEPTH_TEST,        GL_BLEND,     GL_SCISSOR_TEST,
                                GL_STENCIL_TEST,      GL_CULL_FACE, GL_FRAMEBUFFER_SRGB,
                                GL_RASTERIZER_DISCARD};
        for (int i = 0; i < 7; ++i)
            s.enabled[i] = glIsEnabled(caps[i]);
        GLint active = 0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        for (int i = 0; i < 4; ++i) {
            glActiveTexture(GL_TEXTURE4 + i);
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &s.units[i]);
        }
        glActiveTexture(static_cast<GLenum>(active));
        return s;
    }
    bool operator==(const HostState& o) const {
        auto same = [](const auto& a, const auto& b) {
            return std::equal(std::begin(a), std::end(a), std::begin(b));
        };
        return same(ints, o.ints) && same(viewport, o.viewport) && same(scissor, o.scissor) &&
               same(blend, o.blend) && same(mask, o.mask) && same(enabled, o.enabled) && same(units, o.units);
    }
};

TEST_F(SceneCompositorTest, EveryEntryPointLeavesTheHostStateAsItFoundIt) {
    Host host(AnalyticScene::BoxOnPlane());
    // A host with unusual state everywhere the compositor draws.
    GLuint textures[5];
    glGenTextures(5, textures);
    for (int i = 0; i < 5; ++i) {
        glActiveTexture(GL_TEXTURE3 + i);
        glBindTexture(GL_TEXTURE_2D, textures[i]);
    }
    GLuint program = glCreateProgram(), vao = 0, buffer = 0, renderbuffer = 0;
    glGenVertexArrays(1, &vao);
    glBindVertexArray(vao);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, host.Framebuffer());
    glViewport(3, 5, 150, 110);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 2, 30, 40);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_ONE, GL_ZERO, GL_DST_ALPHA, GL_SRC_COLOR);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT);
    glDepthFunc(GL_GREATER);
    glDepthMask(GL_FALSE);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    glEnable(GL_STENCIL_TEST);
    const HostState before = HostState::Read();

    compositor->SetMultisampleCount(4);
    compositor->SetNormalAttachment(true);
    EXPECT_TRUE(compositor->Resize(kWidth, kHeight));
    EXPECT_TRUE(HostState::Read() == before) << "Resize";
    for (bool occlusion : {true, false})
        for (bool half : {false, true}) {
            compositor->SetOcclusionEnabled(occlusion);
            compositor->SetHalfResolution(half);
            ASSERT_TRUE(compositor->BeginScene());
            // Inside the scene only the framebuffer and the viewport are the compositor's.
            HostState inside = HostState::Read();
            inside.ints[0] = before.ints[0];
            inside.ints[1] = before.ints[1];
            std::copy(std::begin(before.viewport), std::end(before.viewport), inside.viewport);
            EXPECT_TRUE(inside == before) << "BeginScene";
            ASSERT_TRUE(compositor->EndScene());
            EXPECT_TRUE(HostState::Read() == before)
                << "EndScene, occlusion " << occlusion << ", half " << half;
        }
    SceneCompositor other(camera);
    EXPECT_TRUE(other.Initialize());
    EXPECT_TRUE(HostState::Read() == before) << "Initialize";

    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glDisable(GL_STENCIL_TEST);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glDeleteTextures(5, textures);
    glDeleteProgram(program);
    glDeleteVertexArrays(1, &vao);
    glDeleteBuffers(1, &buffer);
    glDeleteRenderbuffers(1, &renderbuffer);
}

TEST_F(SceneCompositorTest, TheOverlayIsCompositedInTheSameCall) {
    Host host(AnalyticScene::BoxOnPlane());
    auto manager = std::make_shared<GUI::GUIManager>();
    ASSERT_TRUE(manager->Initialize());
    manager->Resize(kWidth, kHeight);
    GUI::Controls::Panel panel;
    panel.SetRectangle({10, 70, 10, 50});
    panel.Register(manager);

    // The host's two calls after the compositor's: the picture one call has to give.
    const std::vector<uint8_t> plain = Composite(host);
    manager->UpdateLayers();
    manager->Draw();
    const std::vector<uint8_t> twoCalls = ReadColorRegion(0, 0, kWidth, kHeight);
    ASSERT_NE(plain, twoCalls);

    glBindFramebuffer(GL_FRAMEBUFFER, host.Framebuffer());
    ASSERT_TRUE(compositor->BeginScene());
    host.Draw(*camera);
    ASSERT_TRUE(compositor->EndScene(manager.get()));
    EXPECT_EQ(ReadColorRegion(0, 0, kWidth, kHeight), twoCalls);
    manager->RemoveControl(&panel);
}

} // namespace
