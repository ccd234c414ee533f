#pragma once
// Timing helpers of the peer benchmarks: CPU and wall time of one frame, medians, and the host's clear.

#include <GL/glew.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <vector>

namespace peer {

inline double CpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}
/// The calling thread's CPU time alone: the frame's own work, without the software rasteriser's
/// threads that a flush inside the frame sets going.
inline double ThreadCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}
inline double WallSeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

struct Sample {
    std::vector<double> cpu, wall, thread;
    static double Median(std::vector<double>& v) {
        if (v.empty())
            return 0.0;
        std::nth_element(v.begin(), v.begin() + static_cast<long>(v.size() / 2), v.end());
        return v[v.size() / 2];
    }
};

/// A frame measured twice: its CPU cost without waiting for the GPU, and its wall time with glFinish.
inline void Measure(Sample& s, const std::function<void()>& frame) {
    glFinish();
    double c0 = CpuSeconds(), w0 = WallSeconds(), t0 = ThreadCpuSeconds();
    frame();
    double c1 = CpuSeconds(), t1 = ThreadCpuSeconds();
    glFinish();
    double w1 = WallSeconds();
    s.cpu.push_back(c1 - c0);
    s.thread.push_back(t1 - t0);
    s.wall.push_back(w1 - w0);
}

inline void Clear(int width, int height) {
    glViewport(0, 0, width, height);
    glClearColor(0.1f, 0.1f, 0.12f, 1.f);
    glClear(GL_COLOR_BUFFER_BIT);
}

} // namespace peer
