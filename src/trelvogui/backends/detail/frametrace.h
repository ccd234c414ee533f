#pragma once
// Shared by the backends: the optional one-line-per-frame trace that shows an idle window draws nothing.

#include <cstdio>
#include <cstdlib>

namespace GUI::detail {

/// With TRELVOGUI_TRACE_FRAMES set in the environment, every frame a backend let the host draw is
/// printed ("frame N") once it is on screen (the host came back for the next one, or the view
/// swapped), and flushed at once, so that a test reading the host's output through a pipe sees it
/// when it happens: what the host does after that line is idle time.
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
