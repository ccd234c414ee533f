#pragma once
// The check shared by the backend tests: the manager's display scale follows the window's ratio.

#include <trelvogui/gui/guimanager.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace trelvo::test {

/// For a backend just installed on a manager whose scale the host had set to something else: the
/// scale is the window's `ratio` (held to 0.5 to 4); with following off the host's scale stands, and
/// turning it on again brings the window's back at once.
template <class Backend>
void ExpectScaleFollowsWindow(GUI::GUIManager& manager, Backend& backend, float ratio) {
    const float windows = std::clamp(ratio, 0.5f, 4.f);
    EXPECT_EQ(manager.GetDisplayScale(), windows);
    backend.SetFollowDisplayScale(false);
    ASSERT_TRUE(manager.SetDisplayScale(windows == 2.5f ? 3.f : 2.5f));
    const float hosts = manager.GetDisplayScale();
    backend.SetFollowDisplayScale(false);
    EXPECT_EQ(manager.GetDisplayScale(), hosts);
    backend.SetFollowDisplayScale(true);
    EXPECT_EQ(manager.GetDisplayScale(), windows);
}

} // namespace trelvo::test
