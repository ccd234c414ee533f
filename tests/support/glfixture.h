#pragma once
// Test fixture with a current headless GL context; fails any test that logs a GL error.

#include "support/logcapture.h"

#include <graphicsbase/headlesscontext.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace trelvo::test {

/// One context per test, 256 x 256 unless a test asks for another size with Recreate.
class GLTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Replaces the context with one of the given size.
    void Recreate(int width, int height);

    /// Reads one RGBA8 pixel of the currently bound read framebuffer.
    std::array<uint8_t, 4> ReadColor(int x, int y);
    /// Reads one RGBA32UI texel of the currently bound read framebuffer's given attachment.
    std::array<uint32_t, 4> ReadIds(int x, int y, unsigned attachment = 1);
    /// Reads a whole RGBA8 region, rows bottom-up as GL returns them.
    std::vector<uint8_t> ReadColorRegion(int x, int y, int width, int height);

    std::unique_ptr<GraphicsBase::HeadlessGLContext> context;
    std::unique_ptr<LogCapture> log;
};

/// Writes rows bottom-up RGBA8 pixels to a PNG (flipped so that it looks right). For failures and
/// for looking at pictures.
bool WritePng(const std::string& path, const uint8_t* rgba, int width, int height, bool bottomUp = true);
/// Directory where tests write images; created on demand.
std::string OutputDir();

} // namespace trelvo::test
