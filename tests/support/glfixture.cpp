#include "support/glfixture.h"

#include <GL/glew.h>
#include <graphicsbase/pngwriter.h>

#include <cstdio>
#include <filesystem>

using namespace GraphicsBase;

namespace trelvo::test {

void GLTest::SetUp() {
    log = std::make_unique<LogCapture>();
    Recreate(256, 256);
}

void GLTest::Recreate(int width, int height) {
    context.reset();
    context = std::make_unique<HeadlessGLContext>(width, height);
    ASSERT_TRUE(context->Valid()) << context->Error();
}

void GLTest::TearDown() {
    for (const auto& line : log->Lines())
        EXPECT_EQ(line.find("Opengl assert"), std::string::npos) << "GL error logged: " << line;
    log.reset();
    context.reset();
}

std::array<uint8_t, 4> GLTest::ReadColor(int x, int y) {
    std::array<uint8_t, 4> p{};
    glFinish(); // the layers are drawn without waiting: let them land before reading
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, p.data());
    return p;
}

std::array<uint32_t, 4> GLTest::ReadIds(int x, int y, unsigned attachment) {
    std::array<uint32_t, 4> p{};
    glReadBuffer(GL_COLOR_ATTACHMENT0 + attachment);
    glFinish(); // the layers are drawn without waiting: let them land before reading
    glReadPixels(x, y, 1, 1, GL_RGBA_INTEGER, GL_UNSIGNED_INT, p.data());
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    return p;
}

std::vector<uint8_t> GLTest::ReadColorRegion(int x, int y, int width, int height) {
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glFinish(); // the layers are drawn without waiting: let them land before reading
    glReadPixels(x, y, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

std::string OutputDir() {
    std::string dir = TRELVO_TEST_OUTPUT_DIR;
    std::filesystem::create_directories(dir);
    return dir;
}

bool WritePng(const std::string& path, const uint8_t* rgba, int width, int height, bool bottomUp) {
    return GraphicsBase::WritePNG(path, rgba, width, height, bottomUp);
}

} // namespace trelvo::test
