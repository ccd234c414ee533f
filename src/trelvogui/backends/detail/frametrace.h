#pragma once
// Shared by the backends: the optional one-line-per-frame trace that shows an idle window draws nothing.

#include <cstdio>
#include <cstdlib>

namespace GUI::detail {

/// With TRELVOGUI_TRACE_FRAMES set in the environment, every frame a backend lets the host draw is
/// printed ("frame N") and flushed at once, so that a test reading the host's output through a pipe
/// sees it when it happens.
inline bool TraceFramesRequested() {
    return std::getenv("TRELVOGUI_TRACE_FRAMES") != nullptr;
}

inline void TraceFrame(bool on, int frame) {
    if (on) {
        std::printf("frame %d\n", frame);
        std::fflush(stdout);
    }
}

} // namespace GUI::detail
