// Platform layer pieces without a context: frames, camera projection, resources, log.
#include "support/logcapture.h"

#include <graphicsbase/camera.h>
#include <graphicsbase/localframe.h>
#include <graphicsbase/rendererbase.h>
#include <graphicsbase/resources.h>

#include <gtest/gtest.h>

#include <glm/gtc/matrix_transform.hpp>

#include <cmath>

using namespace GraphicsBase;

namespace {
void expectNear(const glm::vec3& a, const glm::vec3& b, float tolerance = 1e-5f) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}
} // namespace

TEST(LocalFrame, RotationTurnsTheAxesAndScaleMultiplies) {
    LocalFrame f;
    f.rotate(1.5707964f, {0.f, 0.f, 2.f}); // a quarter turn about z; the axis need not be unit length
    expectNear(f.xvector(), {0.f, 1.f, 0.f});
    expectNear(f.yvector(), {-1.f, 0.f, 0.f});
    expectNear(f.zvector(), {0.f, 0.f, 1.f});
    f.rotate(1.f, {0.f, 0.f, 0.f}); // no axis: nothing happens
    expectNear(f.xvector(), {0.f, 1.f, 0.f});
    f.setScale({1.f, 2.f, 3.f});
    f.scale3D({2.f, 2.f, 0.5f});
    expectNear(f.getScale(), {2.f, 4.f, 1.5f});
    f.setPosition({5.f, 0.f, 0.f});
    expectNear(glm::vec3(f.getMatrix() * glm::vec4(1.f, 0.f, 0.f, 1.f)), {5.f, 2.f, 0.f});
    f.setOrientation(glm::quat(0.f, 0.f, 0.f, 0.f));
    expectNear(f.xvector(), {1.f, 0.f, 0.f});
    f.reset();
    expectNear(f.getPosition(), {0.f, 0.f, 0.f});
    expectNear(f.getScale(), {1.f, 1.f, 1.f});
}

TEST(Camera, ProjectsWithBottomLeftOriginAndUnprojectsBack) {
    Camera camera;
    camera.SetViewport(800, 600);
    camera.SetPosition({0.f, 0.f, 10.f});
    camera.SetTarget({0.f, 0.f, 0.f});
    camera.SetPerspective(60.f, 1.f, 100.f);
    camera.CalcMatrices();
    expectNear(camera.ViewDir(), {0.f, 0.f, -1.f});

    float sx = 0, sy = 0, sz = 0;
    ASSERT_TRUE(camera.ProjectPoint(0.f, 0.f, 0.f, &sx, &sy, &sz));
    EXPECT_NEAR(sx, 400.f, 1e-3f);
    EXPECT_NEAR(sy, 300.f, 1e-3f);
    EXPECT_GT(sz, 0.f);
    EXPECT_LT(sz, 1.f);
    // A point above the target lands above the centre: y grows upward in window coordinates.
    ASSERT_TRUE(camera.ProjectPoint(0.f, 1.f, 0.f, &sx, &sy, &sz));
    EXPECT_GT(sy, 300.f);
    ASSERT_TRUE(camera.ProjectPoint(1.f, 0.f, 0.f, &sx, &sy, &sz));
    EXPECT_GT(sx, 400.f);

    float x = 0, y = 0, z = 0;
    ASSERT_TRUE(camera.UnProjectPoint(sx, sy, sz, &x, &y, &z));
    expectNear({x, y, z}, {1.f, 0.f, 0.f}, 1e-3f);
    ASSERT_TRUE(camera.UnProjectPoint(400.f, 300.f, 0.f, &x, &y, &z));
    expectNear({x, y, z}, {0.f, 0.f, 9.f}, 1e-3f); // depth 0 is the near plane

    RendererBase renderer;
    camera.SetMatrixParams(&renderer);
    EXPECT_EQ(renderer.GetViewMatrix(), camera.ViewMatrix());
    EXPECT_EQ(renderer.GetProjectionMatrix(), camera.ProjectionMatrix());
    EXPECT_EQ(renderer.GetViewportWidth(), 800);
}

TEST(Camera, TakesTheHostsMatricesAndRefusesDegenerateOnes) {
    // The documented matrices are the usual look-at and perspective ones.
    Camera camera;
    camera.SetViewport(400, 200);
    camera.SetPosition({1.f, 2.f, 6.f});
    camera.CalcMatrices();
    EXPECT_EQ(camera.ViewMatrix(),
              glm::lookAt(glm::vec3(1.f, 2.f, 6.f), glm::vec3(0.f), glm::vec3(0.f, 1.f, 0.f)));
    EXPECT_EQ(camera.ProjectionMatrix(), glm::perspective(glm::radians(45.f), 2.f, 0.1f, 100.f));

    // An orthographic host camera in one call; the eye, target direction and up come from the view.
    const glm::mat4 view = glm::lookAt(glm::vec3(0.f, 5.f, 0.f), glm::vec3(0.f), glm::vec3(0.f, 0.f, -1.f));
    const glm::mat4 ortho = glm::ortho(-4.f, 4.f, -3.f, 3.f, 0.5f, 20.f);
    ASSERT_TRUE(camera.SetMatrices(view, ortho, 640, 480));
    EXPECT_TRUE(camera.Valid());
    expectNear(camera.Position(), {0.f, 5.f, 0.f});
    expectNear(camera.ViewDir(), {0.f, -1.f, 0.f});
    expectNear(camera.UpVector(), {0.f, 0.f, -1.f});
    float sx = 0, sy = 0, sz = 0, x = 0, y = 0, z = 0;
    ASSERT_TRUE(camera.ProjectPoint(2.f, 0.f, -1.5f, &sx, &sy, &sz));
    EXPECT_NEAR(sx, 480.f, 1e-3f);
    EXPECT_NEAR(sy, 360.f, 1e-3f);
    ASSERT_TRUE(camera.UnProjectPoint(sx, sy, 0.f, &x, &y, &z));
    expectNear({x, y, z}, {2.f, 4.5f, -1.5f}, 1e-4f); // straight back to the near plane
    camera.SetPosition({5.f, 0.f, 0.f});
    camera.CalcMatrices(); // a cube click rebuilds the view and keeps the host's projection
    EXPECT_EQ(camera.ProjectionMatrix(), ortho);

    const float nan = std::nan("");
    const struct {
        glm::mat4 view, projection;
        int width, height;
    } refused[] = {{view, ortho, 0, 480},
                   {view, ortho, 640, -1},
                   {view, glm::mat4(0.f), 640, 480},
                   {glm::mat4(nan), ortho, 640, 480},
                   {view, glm::mat4(1e30f), 640, 480}};
    const Camera before = camera;
    for (const auto& r : refused) {
        testing::internal::CaptureStdout();
        EXPECT_FALSE(camera.SetMatrices(r.view, r.projection, r.width, r.height));
        EXPECT_NE(testing::internal::GetCapturedStdout().find("Camera::SetMatrices(): "), std::string::npos);
        EXPECT_EQ(camera.ViewMatrix(), before.ViewMatrix());
        EXPECT_EQ(camera.ProjectionMatrix(), before.ProjectionMatrix());
        EXPECT_EQ(camera.Width(), 640);
    }
    // The eye on its target leaves the matrices as they were.
    camera.SetPosition(camera.Target());
    testing::internal::CaptureStdout();
    camera.CalcMatrices();
    EXPECT_NE(testing::internal::GetCapturedStdout().find("position is on the target"), std::string::npos);
    EXPECT_EQ(camera.ViewMatrix(), before.ViewMatrix());
    EXPECT_TRUE(camera.Valid());
    camera.SetViewport(0, 0);
    EXPECT_FALSE(camera.Valid()) << "widgets draw nothing with it";
}

TEST(Resources, EmbeddedDataIsFoundByNameAndUnknownNamesFailCleanly) {
    ResourceData atlas = LoadFromResource("TrelvoGUI", "UIATLAS", "PNG");
    ASSERT_TRUE(atlas);
    EXPECT_GT(atlas.size, 8u);
    EXPECT_EQ(atlas.data[1], 'P'); // the PNG signature
    EXPECT_TRUE(FindResource("UICompositShader.vert", "SHADER"));
    EXPECT_FALSE(LoadFromResource("TrelvoGUI", "NOSUCHTHING", "PNG"));
    EXPECT_FALSE(LoadFromResource("TrelvoGUI", "UIATLAS", "SHADER"));
    EXPECT_FALSE(LoadFromResource("Elsewhere", "UIATLAS", "PNG"));
    EXPECT_EQ(LoadFromResource("TrelvoGUI.dll", "UIATLAS", "PNG").data, atlas.data)
        << "the file name works too";
    EXPECT_FALSE(LoadFromResource("Elsewhere.dll", "UIATLAS", "PNG"));
    EXPECT_FALSE(LoadFromResource(".dll", "UIATLAS", "PNG"));
}

TEST(LogFile, FormatsLinesAndHandsThemToObservers) {
    trelvo::test::LogCapture log;
    const bool echo = LogFile::Instance().Echo();
    LogFile::Instance().SetEcho(false);
    LogFile::Instance().AddLine(LogLevel::Warning, "value %d and %s\n", 42, "text");
    std::string longText(2000, 'x');
    LogFile::Instance().AddLine(LogLevel::Info, "%s\n", longText.c_str());
    LogFile::Instance().SetEcho(echo);
    ASSERT_EQ(log.Lines().size(), 2u);
    EXPECT_EQ(log.Lines()[0], "value 42 and text\n");
    EXPECT_EQ(log.Lines()[1].size(), 2001u) << "long lines are not truncated";
}
