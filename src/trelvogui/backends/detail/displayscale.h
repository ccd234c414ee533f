#pragma once
// Shared by the backends: the window's device-pixel ratio handed to the manager as its display scale.

#include <trelvogui/gui/guimanager.h>

#include <algorithm>
#include <cmath>

namespace GUI::detail {

/// Sets the manager's display scale to the window's ratio of device pixels to layout units, held to
/// the manager's range so that an odd screen neither draws nor logs a refusal. A ratio that is not
/// finite or not positive (a window not shown yet) leaves the scale as it is.
inline void FollowDisplayScale(GUIManager& manager, double ratio) {
    if (!(ratio > 0.0) || !std::isfinite(ratio))
        return;
    const float scale =
        std::clamp(static_cast<float>(ratio), GUIManager::kMinDisplayScale, GUIManager::kMaxDisplayScale);
    if (scale != manager.GetDisplayScale())
        manager.SetDisplayScale(scale);
}

} // namespace GUI::detail
