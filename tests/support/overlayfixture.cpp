#include "support/overlayfixture.h"

#include <trelvogui/gui/guiclock.h>

using namespace GraphicsBase;

namespace trelvo::test {
namespace {
VX_UI::MouseEvent hostEvent(int x, int y, int prevX, int prevY, int buttons) {
    VX_UI::MouseEvent e;
    e.x = x;
    e.y = y;
    e.prevX = prevX;
    e.prevY = prevY;
    e.buttons = buttons;
    return e;
}
} // namespace

void OverlayTest::SetUp() {
    GLTest::SetUp();
    GUI::Clock::SetSource([this] { return now; });
    manager = std::make_shared<GUI::GUIManager>();
    ASSERT_TRUE(manager->Initialize());
    manager->Resize(256, 256);
}

void OverlayTest::TearDown() {
    manager.reset();
    GUI::Clock::SetSource({});
    GLTest::TearDown();
}

DrawFlags OverlayTest::Move(int x, int y, int prevX, int prevY, int buttons) {
    VX_UI::MouseEvent e = hostEvent(x, y, prevX, prevY, buttons);
    return manager->mouseMoveEvent(&e);
}

DrawFlags OverlayTest::Press(int x, int y, int buttons) {
    VX_UI::MouseEvent e = hostEvent(x, y, x, y, buttons);
    return manager->mousePressEvent(&e);
}

DrawFlags OverlayTest::Release(int x, int y) {
    VX_UI::MouseEvent e = hostEvent(x, y, x, y, 0);
    return manager->mouseReleaseEvent(&e);
}

DrawFlags OverlayTest::Click(int x, int y) {
    const int hostY = manager->HostRow(y);
    Press(x, hostY);
    return Release(x, hostY);
}

unsigned OverlayTest::PidAt(int x, int y) {
    unsigned pid = 99, sid = 99;
    EXPECT_TRUE(manager->HitDetect(x, y, &pid, &sid));
    return pid;
}

} // namespace trelvo::test
