#pragma once
// A picture of the built-in skin: every standard control in each of its states.

#include <string>

namespace demo {
/// Draws the sheet through a GUI manager of its own into the current framebuffer and writes it as a
/// PNG. Needs a current GL context at least 520 x 320. False if the overlay or the file fails.
bool WriteSkinSheet(const std::string& path);
} // namespace demo
