#pragma once
// The library's millisecond clock for click timing and animations.

#include <trelvogui/trelvogui_export.h>

#include <cstdint>
#include <functional>

namespace GUI {

/// Monotonic wall-clock milliseconds. Click detection and animation timing read only this, so a
/// test can substitute a clock it advances by hand and never has to sleep.
class TRELVOGUI_EXPORT Clock {
public:
    /// Milliseconds since an arbitrary fixed start.
    static uint64_t Ticks();
    /// Replaces the time source (for tests); an empty function restores the monotonic clock.
    static void SetSource(std::function<uint64_t()> source);
};

} // namespace GUI
