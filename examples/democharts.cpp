#include "democharts.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/chartcontrol.h>
#include <trelvogui/datasetrenderer.h>
#include <trelvogui/histogramrenderer.h>
#include <trelvogui/xyplotcontrol.h>

#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

using namespace GraphicsBase;

namespace demo {

DemoCharts::DemoCharts() = default;

DemoCharts::~DemoCharts() {
    // The charts let go of their renderers as they go.
    plot_.reset();
    histogramChart_.reset();
}

bool DemoCharts::Build(const std::shared_ptr<GUI::GUIManager>& manager) {
    signal_ = std::make_unique<DataSetRenderer>();
    histogram_ = std::make_unique<HistogramRenderer>();
    plot_ = std::make_unique<XYPlotControl>();
    histogramChart_ = std::make_unique<ChartControl>();
    if (!plot_->Initialize() || !histogramChart_->Initialize() || !signal_->Initialize() ||
        !histogram_->Initialize()) {
        std::fprintf(stderr, "the charts' shaders do not build\n");
        return false;
    }
    // A sensor trace: two slow oscillations and noise, sampled a million times, with one glitch.
    std::vector<float> samples(kSamples);
    std::mt19937 rng(5);
    std::normal_distribution<float> noise(0.f, 0.35f);
    for (std::size_t i = 0; i < kSamples; ++i) {
        const double t = static_cast<double>(i) * 1e-5;
        samples[i] = static_cast<float>(std::sin(t * 6.283) * 2.0 + std::sin(t * 41.0) * 0.6) + noise(rng);
    }
    samples[kSpike] = 9.5f;
    signal_->SetData(samples.data(), samples.size());
    signal_->SetColor({90, 180, 255, 255});
    // Clear of the tools panel above, the probe box and the legend on the right.
    plot_->SetRectangle({150, 600, 150, 396});
    plot_->SetTitle(L"Sensor trace, 10^6 samples");
    plot_->XAxis()->SetTitle(L"Sample");
    plot_->YAxis()->SetTitle(L"Signal (mV)");
    plot_->AddDataSet(signal_.get());

    histogram_->SetValues(samples.data(), samples.size());
    histogram_->SetBinCount(60);
    histogram_->SetColor({240, 170, 60, 255});
    histogramChart_->SetRectangle({870, 1090, 150, 396});
    histogramChart_->SetTitle(L"Its histogram");
    histogramChart_->XAxis()->SetTitle(L"Signal (mV)");
    histogramChart_->YAxis()->SetTitle(L"Samples");
    histogramChart_->AddRenderer(histogram_.get());
    histogramChart_->SetLogY(true);
    histogramChart_->FitToData(0.0);

    Show(false);
    plot_->Register(manager);
    histogramChart_->Register(manager);
    return true;
}

void DemoCharts::Show(bool show) {
    plot_->SetVisible(show);
    histogramChart_->SetVisible(show);
}

std::string DemoCharts::Describe() const {
    std::string out;
    for (const std::wstring& text : {plot_->ReadoutText(), plot_->StatisticsText()}) {
        out += "  ";
        for (wchar_t c : text)
            out.push_back(c < 128 ? static_cast<char>(c) : '?');
        out += "\n";
    }
    return out;
}

} // namespace demo
