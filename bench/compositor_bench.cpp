// Costs of the scene compositor at 1280 x 720: the occlusion pass at full and half resolution with
// 8, 16 and 32 samples (resolve, occlusion, blur and apply), and the plain blit with occlusion off,
// each also as a ratio to the one-quad floor measured beside it in the same run.
#include <trelvogui/scenecompositor.h>

#include <graphicsbase/camera.h>

#include "benchcontext.h"

#include <benchmark/benchmark.h>

#include <GL/glew.h>

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280;
constexpr int kHeight = 720;

GLuint program(const char* vertex, const char* fragment) {
    GLuint p = glCreateProgram();
    for (auto [stage, source] :
         {std::pair{GL_VERTEX_SHADER, vertex}, std::pair{GL_FRAGMENT_SHADER, fragment}}) {
        GLuint s = glCreateShader(stage);
        glShaderSource(s, 1, &source, nullptr);
        glCompileShader(s);
        glAttachShader(p, s);
        glDeleteShader(s);
    }
    glLinkProgram(p);
    return p;
}

/// A host scene (a box on a floor, lit by its normal) drawn once into the compositor's target, and
/// the floor of any full-view pass: one textured quad over the view.
class Bench {
public:
    Bench() {
        camera_->SetPerspective(40.f, 0.1f, 50.f);
        camera_->SetViewport(kWidth, kHeight);
        camera_->SetPosition({2.4f, 1.9f, 3.4f});
        camera_->SetTarget({0.f, 0.f, 0.f});
        camera_->CalcMatrices();
        ok_ = compositor_.Initialize() && compositor_.Resize(kWidth, kHeight);

        sceneProgram_ = program(R"(#version 330 core
layout(location = 0) in vec3 p;
uniform mat4 vp;
out vec3 world;
void main() { world = p; gl_Position = vp * vec4(p, 1.0); })",
                                R"(#version 330 core
in vec3 world;
out vec4 c;
void main() { c = vec4(0.5 + 0.5 * normalize(cross(dFdx(world), dFdy(world))), 1.0); })");
        std::vector<float> v;
        auto quad = [&](glm::vec3 a, glm::vec3 b, glm::vec3 c, glm::vec3 d) {
            for (const glm::vec3& q : {a, b, c, a, c, d})
                v.insert(v.end(), {q.x, q.y, q.z});
        };
        const float e = 4.f, f = -0.5f, h = 0.5f;
        quad({-e, f, -e}, {-e, f, e}, {e, f, e}, {e, f, -e});
        for (int axis = 0; axis < 3; ++axis)
            for (float s : {-h, h}) {
                glm::vec3 corners[4];
                for (int k = 0; k < 4; ++k) {
                    glm::vec3 c(0.f);
                    c[axis] = s;
                    c[(axis + 1) % 3] = (k == 1 || k == 2) ? h : -h;
                    c[(axis + 2) % 3] = (k >= 2) ? h : -h;
                    corners[k] = c;
                }
                quad(corners[0], corners[1], corners[2], corners[3]);
            }
        sceneVertices_ = static_cast<GLsizei>(v.size() / 3);
        glGenVertexArrays(1, &sceneVao_);
        glBindVertexArray(sceneVao_);
        glGenBuffers(1, &sceneVbo_);
        glBindBuffer(GL_ARRAY_BUFFER, sceneVbo_);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(v.size() * sizeof(float)), v.data(),
                     GL_STATIC_DRAW);
        glEnableVertexAttribArray(0);
        glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, 0, nullptr);

        floorProgram_ = program(R"(#version 330 core
void main() {
    vec2 p = vec2(float((gl_VertexID << 1) & 2), float(gl_VertexID & 2));
    gl_Position = vec4(p * 2.0 - 1.0, 0.0, 1.0);
})",
                                R"(#version 330 core
uniform sampler2D t;
out vec4 c;
void main() { c = texelFetch(t, ivec2(gl_FragCoord.xy), 0); })");
        std::vector<unsigned char> pixels(static_cast<size_t>(kWidth) * kHeight * 4, 128);
        glGenTextures(1, &floorTexture_);
        glBindTexture(GL_TEXTURE_2D, floorTexture_);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, kWidth, kHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     pixels.data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glBindVertexArray(0);
        glViewport(0, 0, kWidth, kHeight);

        // The host's scene, drawn once: every frame below composites the same picture.
        compositor_.BeginScene();
        glClearColor(0.1f, 0.12f, 0.16f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glUseProgram(sceneProgram_);
        glm::mat4 vp = camera_->ProjectionMatrix() * camera_->ViewMatrix();
        glUniformMatrix4fv(glGetUniformLocation(sceneProgram_, "vp"), 1, GL_FALSE, glm::value_ptr(vp));
        glBindVertexArray(sceneVao_);
        glDrawArrays(GL_TRIANGLES, 0, sceneVertices_);
        glBindVertexArray(0);
        glDisable(GL_DEPTH_TEST);
        compositor_.SetOcclusionEnabled(false);
        compositor_.EndScene();
        glFinish();
    }
    ~Bench() {
        glDeleteTextures(1, &floorTexture_);
        glDeleteBuffers(1, &sceneVbo_);
        glDeleteVertexArrays(1, &sceneVao_);
        glDeleteProgram(sceneProgram_);
        glDeleteProgram(floorProgram_);
    }
    bool Ok() const { return ok_; }

    /// samples 0: occlusion off.
    void Configure(bool half, int samples, bool interleaved) {
        compositor_.SetOcclusionEnabled(samples > 0);
        compositor_.SetHalfResolution(half);
        compositor_.SetInterleavedSampling(interleaved);
        if (samples > 0)
            compositor_.SetSampleCount(samples);
    }
    /// One frame of the compositor: the scene target is bound and finished again (the host's own
    /// drawing is not part of it).
    void Composite() {
        compositor_.BeginScene();
        compositor_.EndScene();
        glFinish();
    }
    /// One full-view textured quad: what any full-view pass costs at least.
    void Floor() {
        glUseProgram(floorProgram_);
        glBindTexture(GL_TEXTURE_2D, floorTexture_);
        glBindVertexArray(sceneVao_);
        glDrawArrays(GL_TRIANGLES, 0, 3);
        glBindVertexArray(0);
        glUseProgram(0);
        glFinish();
    }

private:
    std::shared_ptr<Camera> camera_ = std::make_shared<Camera>();
    SceneCompositor compositor_{camera_};
    bool ok_ = false;
    GLuint sceneProgram_ = 0, sceneVao_ = 0, sceneVbo_ = 0, floorProgram_ = 0, floorTexture_ = 0;
    GLsizei sceneVertices_ = 0;
};

struct Case {
    const char* name;
    bool half;
    int samples;
    bool interleaved = false;
};
const Case kCases[] = {{"off", false, 0},
                       {"full-8", false, 8},
                       {"full-16", false, 16},
                       {"full-32", false, 32},
                       {"half-8", true, 8},
                       {"half-16", true, 16},
                       {"half-32", true, 32},
                       {"full-16-interleaved", false, 16, true},
                       {"half-16-interleaved", true, 16, true}};
constexpr int kCaseCount = static_cast<int>(sizeof(kCases) / sizeof(kCases[0]));

/// Absolute time of one compositor frame; the argument indexes kCases.
void BM_SceneCompositor(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    Bench bench;
    if (!bench.Ok())
        return state.SkipWithError("the compositor did not initialise");
    const Case& c = kCases[state.range(0)];
    state.SetLabel(c.name);
    bench.Configure(c.half, c.samples, c.interleaved);
    for (auto _ : state)
        bench.Composite();
}
BENCHMARK(BM_SceneCompositor)->DenseRange(0, kCaseCount - 1)->Unit(benchmark::kMillisecond);

/// The one-quad floor by itself.
void BM_SceneCompositorFloor(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    Bench bench;
    for (auto _ : state)
        bench.Floor();
}
BENCHMARK(BM_SceneCompositorFloor)->Unit(benchmark::kMillisecond);

/// Each case against the floor, measured in alternating blocks so that both see the same machine;
/// prints "RATIO compositor <case> <value>" with the median of the blocks' ratios.
void BM_SceneCompositorRatios(benchmark::State& state) {
    if (!BenchContext().Valid())
        return state.SkipWithError("no GL context");
    Bench bench;
    if (!bench.Ok())
        return state.SkipWithError("the compositor did not initialise");
    using Clock = std::chrono::steady_clock;
    auto block = [](auto&& frame) {
        constexpr int kFrames = 4;
        frame(); // warm: the first frame after a change builds programs or targets
        const auto start = Clock::now();
        for (int i = 0; i < kFrames; ++i)
            frame();
        return std::chrono::duration<double>(Clock::now() - start).count() / kFrames;
    };
    for (auto _ : state) {
        for (const Case& c : kCases) {
            bench.Configure(c.half, c.samples, c.interleaved);
            std::vector<double> ratios;
            for (int b = 0; b < 7; ++b) {
                const double floor = block([&] { bench.Floor(); });
                const double pass = block([&] { bench.Composite(); });
                ratios.push_back(pass / floor);
            }
            std::nth_element(ratios.begin(), ratios.begin() + 3, ratios.end());
            std::printf("RATIO compositor %s %.2f\n", c.name, ratios[3]);
            state.counters[c.name] = ratios[3];
        }
    }
}
BENCHMARK(BM_SceneCompositorRatios)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
