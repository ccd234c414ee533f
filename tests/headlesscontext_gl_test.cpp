// The headless context and the GL error check every GL call is followed by.
#include "support/glfixture.h"

#include <graphicsbase/glerror.h>

#include <GL/glew.h>

using namespace GraphicsBase;

using trelvo::test::GLTest;

TEST_F(GLTest, ContextIsCoreProfileWithRequestedDefaultFramebuffer) {
    GLint major = 0, minor = 0, profile = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
    EXPECT_GE(major * 10 + minor, 33);
    EXPECT_TRUE(profile & GL_CONTEXT_CORE_PROFILE_BIT);

    glClearColor(0.f, 1.f, 0.f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
    auto p = ReadColor(255, 255);
    EXPECT_EQ(p[1], 255);
    EXPECT_EQ(p[0], 0);
}

TEST_F(GLTest, ErrorCheckLogsFileLineAndCode) {
    glEnable(0xFFFF); // GL_INVALID_ENUM
    // The error is provoked on purpose: keep it off standard output, where test hosts treat any such
    // line as a failure of the run.
    const bool echo = LogFile::Instance().Echo();
    LogFile::Instance().SetEcho(false);
    int line = __LINE__ + 1;
    unsigned code = GB_CHECK_GL("tests/headlesscontext");
    LogFile::Instance().SetEcho(echo);
    EXPECT_EQ(code, static_cast<unsigned>(GL_INVALID_ENUM));
    std::string expected = "Opengl assert: File: tests/headlesscontext Line: " + std::to_string(line) +
                           " Error: " + std::to_string(GL_INVALID_ENUM) + "\n";
    EXPECT_EQ(log->Count(expected), 1);
    EXPECT_EQ(GB_CHECK_GL("tests/headlesscontext"), 0u) << "the error was consumed";
    log->Clear(); // this test provoked the error on purpose
}

TEST(HeadlessGLContext, RefusesInvalidSizeWithReason) {
    HeadlessGLContext context(0, 10);
    EXPECT_FALSE(context.Valid());
    EXPECT_NE(context.Error().find("invalid size"), std::string::npos);
}
