#pragma once
// A 256 x 256 overlay on a headless context, a hand-driven clock and pointer events in host pixels.

#include "support/glfixture.h"

#include <trelvogui/gui/guimanager.h>

#include <cstdint>
#include <memory>

namespace trelvo::test {

/// Host pointer positions have y growing downward: overlay y = 256 - host y.
class OverlayTest : public GLTest {
protected:
    void SetUp() override;
    void TearDown() override;

    GraphicsBase::DrawFlags Move(int x, int y, int prevX, int prevY, int buttons = 0);
    GraphicsBase::DrawFlags Press(int x, int y, int buttons = 1);
    GraphicsBase::DrawFlags Release(int x, int y);
    /// A quick press and release at overlay pixel (x, y), y up: a click. Returns the release's flags.
    GraphicsBase::DrawFlags Click(int x, int y);
    /// The primary id under overlay pixel (x, y), y up.
    unsigned PidAt(int x, int y);

    /// Milliseconds seen by the library while the test runs.
    uint64_t now = 1000;
    std::shared_ptr<GUI::GUIManager> manager;
};

} // namespace trelvo::test
