#pragma once
// The manager's colour and id layers read back in one go, for tests that look at many pixels.

#include <trelvogui/gui/guimanager.h>

#include <array>
#include <cstdint>
#include <vector>

namespace trelvo::test {

/// A copy of both layers; pixels addressed in overlay coordinates (y up).
struct LayerPixels {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> color; ///< RGBA8, rows bottom-up
    std::vector<uint32_t> ids;  ///< four words a pixel (pid, sid, 0, 0), rows bottom-up

    std::array<uint8_t, 4> Color(int x, int y) const;
    /// The ids at (x, y); 0 outside the layers.
    uint32_t Pid(int x, int y) const;
    uint32_t Sid(int x, int y) const;
};

/// Reads colour and ids (attachments 0 and 1) of the bound framebuffer, as drawn so far: callers that
/// drew without waiting finish first.
LayerPixels ReadBoundTarget(int width, int height);
/// Reads the layers the last UpdateLayers left; restores the default framebuffer afterwards.
LayerPixels ReadLayers(GUI::GUIManager& manager, int width, int height);
/// Writes the colour layer as a PNG under OutputDir() (for failures and for looking at it).
void SaveLayer(const LayerPixels& layers, const std::string& name);

} // namespace trelvo::test
