// Charts in TrelvoGUI and in Dear ImGui on one headless context: a trace of n samples with one spike,
// drawn 600 pixels wide, as a line (PlotLines) and as bars (PlotHistogram; cases prefixed "bars-"). ImGui's
// PlotLines runs twice, with its default auto-scaling (it reads every sample each frame to find the range)
// and with a fixed scale (it reads about one sample a pixel); ratios are taken against the faster of the two.
// Frames of the three are measured in alternating blocks; medians of CPU time, and of wall time with
// glFinish. Prints one line per ratio:
//
//     RATIO chart <case> <n> <trelvo/peer>
//
// Cases: idle (nothing changed), hover (the readout follows the pointer), pan (range shifted by 1%),
// zoom (range scaled about its centre), with "-wall" for the wall-time ratios; memory (bytes held for
// the plot: TrelvoGUI's copy and pyramid against the float array the peer reads); and whether the
// spike is in the picture, as "SPIKE chart <contestant> <n> <0|1>".
//
//     chart_peer_bench [--blocks B] [--frames F] [--n N] [--case NAME]
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/xyplotcontrol.h>

#include <graphicsbase/headlesscontext.h>

#include "peertiming.h"

#include <GL/glew.h>

#include <backends/imgui_impl_opengl3.h>
#include <imgui.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {
constexpr int kWidth = 1280, kHeight = 720;
// The plot area of both: 600 x 300 pixels with its lower-left corner at (200, 200), y up.
constexpr int kPlotX = 200, kPlotY = 200, kPlotW = 600, kPlotH = 300;
constexpr float kSpike = 50.f;

std::vector<float> Trace(std::size_t n) {
    std::vector<float> v(n);
    for (std::size_t i = 0; i < n; ++i)
        v[i] = static_cast<float>(std::sin(static_cast<double>(i) * 6.283 / static_cast<double>(n) * 5.0));
    v[n * 7 / 11] = kSpike;
    return v;
}

class TrelvoPlot {
public:
    TrelvoPlot(const std::vector<float>& samples, bool bars) : manager_(std::make_shared<GUI::GUIManager>()) {
        manager_->Initialize();
        manager_->Resize(kWidth, kHeight);
        plot_.Initialize();
        set_.Initialize();
        set_.SetData(samples.data(), samples.size());
        if (bars)
            set_.SetStyle(DataSetRenderer::Bars);
        plot_.SetAutoScale(false);
        // The plot area lands on the same pixels as the peer's.
        plot_.SetRectangle({kPlotX - 72, kPlotX + kPlotW + 14, kPlotY - 48, kPlotY + kPlotH + 26});
        plot_.ShowGrid(false);
        plot_.ShowStatistics(false);
        plot_.AddDataSet(&set_);
        n_ = static_cast<double>(samples.size());
        plot_.SetRanges(0.0, n_, -2.0, kSpike + 5.0);
        plot_.Register(manager_);
        Frame();
    }
    ~TrelvoPlot() {
        plot_.RemoveRenderer(&set_);
        plot_.Unregister();
    }
    void Frame() {
        manager_->UpdateLayers();
        manager_->Draw();
    }
    void Hover(int k) {
        VX_UI::MouseEvent e;
        e.x = kPlotX + 10 + (k * 37) % (kPlotW - 20);
        e.y = kHeight - (kPlotY + kPlotH / 2);
        e.prevX = lastX_;
        e.prevY = e.y;
        lastX_ = e.x;
        manager_->mouseMoveEvent(&e);
    }
    void Pan(int k) {
        const double shift = (k % 2 == 0 ? 0.01 : -0.01) * n_;
        plot_.SetXRange(plot_.XMin() + shift, plot_.XMax() + shift);
    }
    void Zoom(int k) {
        const double c = n_ / 2, half = (plot_.XMax() - plot_.XMin()) / 2 * (k % 2 == 0 ? 0.9 : 1.0 / 0.9);
        plot_.SetXRange(c - half, c + half);
    }
    void Reset() { plot_.SetRanges(0.0, n_, -2.0, kSpike + 5.0); }
    std::size_t Bytes() const { return set_.MemoryBytes(); }

private:
    std::shared_ptr<GUI::GUIManager> manager_;
    XYPlotControl plot_;
    DataSetRenderer set_;
    double n_ = 0;
    int lastX_ = 0;
};

class PeerPlot {
public:
    PeerPlot(const std::vector<float>& samples, bool autoScale, bool bars)
        : samples_(samples), autoScale_(autoScale), bars_(bars) {
        context_ = ImGui::CreateContext();
        ImGui::SetCurrentContext(context_);
        ImGuiIO& io = ImGui::GetIO();
        io.IniFilename = nullptr;
        io.DisplaySize = ImVec2(float(kWidth), float(kHeight));
        ImGui_ImplOpenGL3_Init("#version 330");
        count_ = static_cast<int>(samples.size());
        Frame();
    }
    ~PeerPlot() {
        ImGui::SetCurrentContext(context_);
        ImGui_ImplOpenGL3_Shutdown();
        ImGui::DestroyContext(context_);
    }
    void Frame() {
        ImGui::SetCurrentContext(context_);
        ImGui::GetIO().DeltaTime = 1.f / 60.f;
        ImGui_ImplOpenGL3_NewFrame();
        ImGui::NewFrame();
        ImGui::SetNextWindowPos(ImVec2(float(kPlotX) - 8.f, float(kHeight - kPlotY - kPlotH) - 8.f));
        ImGui::SetNextWindowSize(ImVec2(float(kPlotW) + 16.f, float(kPlotH) + 16.f));
        ImGui::Begin("trace", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoSavedSettings);
        ImGui::SetCursorPos(ImVec2(8.f, 8.f));
        const float lo = autoScale_ ? FLT_MAX : -2.f, hi = autoScale_ ? FLT_MAX : kSpike + 5.f;
        if (bars_)
            ImGui::PlotHistogram("##trace", samples_.data() + offset_, count_, 0, nullptr, lo, hi,
                                 ImVec2(float(kPlotW), float(kPlotH)));
        else
            ImGui::PlotLines("##trace", samples_.data() + offset_, count_, 0, nullptr, lo, hi,
                             ImVec2(float(kPlotW), float(kPlotH)));
        ImGui::End();
        ImGui::Render();
        ImGui_ImplOpenGL3_RenderDrawData(ImGui::GetDrawData());
    }
    void Hover(int k) {
        ImGui::SetCurrentContext(context_);
        ImGui::GetIO().MousePos =
            ImVec2(float(kPlotX + 10 + (k * 37) % (kPlotW - 20)), float(kHeight - (kPlotY + kPlotH / 2)));
    }
    // The peer shows a window of the array: pan moves its start, zoom changes its length.
    void Pan(int k) {
        const int total = static_cast<int>(samples_.size()), step = std::max(1, total / 100);
        if (count_ == total)
            count_ = total - 2 * step;
        offset_ = std::clamp(offset_ + (k % 2 == 0 ? step : -step), 0, total - count_);
    }
    void Zoom(int k) {
        const int total = static_cast<int>(samples_.size());
        count_ = std::clamp(static_cast<int>(count_ * (k % 2 == 0 ? 0.9 : 1.0 / 0.9)), 2, total);
        offset_ = (total - count_) / 2;
    }
    void Reset() {
        offset_ = 0;
        count_ = static_cast<int>(samples_.size());
    }

private:
    const std::vector<float>& samples_;
    bool autoScale_, bars_;
    ImGuiContext* context_ = nullptr;
    int offset_ = 0, count_ = 0;
};

/// Whether the picture holds a bright pixel in the plot's upper fifth, where only the spike reaches.
bool SpikeVisible() {
    const int y0 = kPlotY + kPlotH * 4 / 5, h = kPlotY + kPlotH - y0;
    std::vector<unsigned char> pixels(static_cast<std::size_t>(kPlotW) * h * 4);
    glReadPixels(kPlotX, y0, kPlotW, h, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    for (std::size_t i = 0; i < pixels.size(); i += 4)
        if (pixels[i] + pixels[i + 1] + pixels[i + 2] > 300)
            return true;
    return false;
}

} // namespace

int main(int argc, char** argv) {
    int blocks = 6, frames = 6;
    const char* only = nullptr;
    std::vector<std::size_t> sizes{1000, 100000, 1000000, 10000000};
    for (int i = 1; i + 1 < argc; ++i) {
        if (!std::strcmp(argv[i], "--blocks"))
            blocks = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--frames"))
            frames = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--case"))
            only = argv[++i];
        else if (!std::strcmp(argv[i], "--n"))
            sizes = {static_cast<std::size_t>(std::atoll(argv[++i]))};
    }
    HeadlessGLContext context(kWidth, kHeight);
    if (!context.Valid()) {
        std::fprintf(stderr, "%s\n", context.Error().c_str());
        return 1;
    }
    std::printf("renderer: %s; %d blocks of %d frames per case and contestant\n", context.Renderer().c_str(),
                blocks, frames);
    for (std::size_t n : sizes) {
        const std::vector<float> samples = Trace(n);
        // The trace as a line (the peer's PlotLines) and as bars (its PlotHistogram).
        for (bool bars : {false, true}) {
            const std::string kind = bars ? "bars-" : "";
            TrelvoPlot trelvo(samples, bars);
            PeerPlot autoScaled(samples, true, bars), fixed(samples, false, bars);
            struct Case {
                const char* name;
                void (TrelvoPlot::*trelvoStep)(int);
                void (PeerPlot::*peerStep)(int);
            };
            const Case cases[] = {{"idle", nullptr, nullptr},
                                  {"hover", &TrelvoPlot::Hover, &PeerPlot::Hover},
                                  {"pan", &TrelvoPlot::Pan, &PeerPlot::Pan},
                                  {"zoom", &TrelvoPlot::Zoom, &PeerPlot::Zoom}};
            for (const Case& c : cases) {
                const std::string name = kind + c.name;
                if (only && name != only)
                    continue;
                peer::Sample t, a, f;
                for (int block = 0; block < blocks; ++block) {
                    for (int k = 0; k < frames; ++k)
                        peer::Measure(t, [&] {
                            if (c.trelvoStep)
                                (trelvo.*c.trelvoStep)(k);
                            peer::Clear(kWidth, kHeight);
                            trelvo.Frame();
                        });
                    for (PeerPlot* p : {&autoScaled, &fixed})
                        for (int k = 0; k < frames; ++k)
                            peer::Measure(p == &autoScaled ? a : f, [&] {
                                if (c.peerStep)
                                    (p->*c.peerStep)(k);
                                peer::Clear(kWidth, kHeight);
                                p->Frame();
                            });
                }
                using S = peer::Sample;
                const double tc = S::Median(t.cpu), tw = S::Median(t.wall);
                const double pc = std::min(S::Median(a.cpu), S::Median(f.cpu));
                const double pw = std::min(S::Median(a.wall), S::Median(f.wall));
                std::printf(
                    "# %s n=%zu: TrelvoGUI %.3f ms CPU (%.3f ms its own thread) %.3f ms wall; peer auto "
                    "%.3f / %.3f ms, fixed %.3f / %.3f ms\n",
                    name.c_str(), n, tc * 1e3, S::Median(t.thread) * 1e3, tw * 1e3, S::Median(a.cpu) * 1e3,
                    S::Median(a.wall) * 1e3, S::Median(f.cpu) * 1e3, S::Median(f.wall) * 1e3);
                std::printf("RATIO chart %s %zu %.3f\n", name.c_str(), n, tc / pc);
                std::printf("RATIO chart %s-wall %zu %.3f\n", name.c_str(), n, tw / pw);
                trelvo.Reset();
                autoScaled.Reset();
                fixed.Reset();
            }
            if (!bars)
                std::printf("RATIO chart memory %zu %.3f\n", n,
                            double(trelvo.Bytes()) / double(n * sizeof(float)));
            // The spike in the whole trace, as each contestant draws it.
            peer::Clear(kWidth, kHeight);
            trelvo.Frame();
            std::printf("SPIKE chart %strelvo %zu %d\n", kind.c_str(), n, SpikeVisible() ? 1 : 0);
            for (PeerPlot* p : {&autoScaled, &fixed}) {
                peer::Clear(kWidth, kHeight);
                p->Frame();
                std::printf("SPIKE chart %speer-%s %zu %d\n", kind.c_str(),
                            p == &autoScaled ? "auto" : "fixed", n, SpikeVisible() ? 1 : 0);
            }
        }
    }
    return 0;
}
