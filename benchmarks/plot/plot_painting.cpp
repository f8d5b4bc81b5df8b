// Painting a full window of graphs, beside what the machine's painter can do at best: the same polylines, of
// points that lie ready, into the same picture. Both run in turn within each iteration, so that they meet the
// same machine.
#include "plot/plot.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>
#include <random>

using namespace Outils_Plot2D;

namespace {

constexpr int kWidth = 1600, kHeight = 1000, kGraphs = 10;
constexpr std::uint32_t kBuckets = 2000;
constexpr float kGraphHeight = static_cast<float>(kHeight) / kGraphs;

// A slow wave with noise, the noise as band.
class CNoise : public CPlot2DDataSource {
  public:
    explicit CNoise(unsigned seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> noise(0, 20);
        for (std::uint32_t i = 0; i < kBuckets; ++i) {
            const double middle = 50 + 20 * std::sin(i * 0.005 + seed);
            m_values.push_back({middle + noise(random) - 10, middle - noise(random), middle + noise(random)});
        }
    }
    bool HasExtremum() const override { return true; }
    double GetPeriod() const override { return 100.0 / kBuckets; }
    std::uint32_t GetCount() const override { return kBuckets; }
    bool GetPoint(std::uint32_t i, double& x, double& y) const override { return Get(i, 0, x, y); }
    bool GetMinimum(std::uint32_t i, double& x, double& y) const override { return Get(i, 1, x, y); }
    bool GetMaximum(std::uint32_t i, double& x, double& y) const override { return Get(i, 2, x, y); }

  private:
    bool Get(std::uint32_t i, std::size_t which, double& x, double& y) const {
        x = (i + 0.5) * 100.0 / kBuckets;
        y = m_values[i][which];
        return true;
    }
    std::vector<std::array<double, 3>> m_values;
};

struct SGraphs {
    CPlot2DSettings settings;
    std::vector<std::unique_ptr<CPlot2D>> plots;
    std::vector<std::vector<QPointF>> lines; // the same points, ready for a painter

    SGraphs() {
        for (unsigned g = 0; g < kGraphs; ++g) {
            auto& plot = *plots.emplace_back(std::make_unique<CPlot2D>(settings));
            const float top = static_cast<float>(g) * kGraphHeight;
            plot.SetRect({0, top, kWidth, kGraphHeight});
            plot.SetBrush(std::make_unique<CPlot2DSolidBrush>(0xFFFFFFFF));
            plot.GetPlottingArea().SetRect({200, 2, kWidth - 203, kGraphHeight - 20});
            plot.GetLegend().SetRect({0, 2, 150, kGraphHeight - 5});
            plot.GetVerticalAxis().GetGrid().SetPen(std::make_unique<CPlot2DPen>(0xFFE0E0E0));
            auto source = std::make_unique<CNoise>(g);
            auto& line = lines.emplace_back();
            const SRect& area = plot.GetPlottingArea().GetRect();
            for (std::uint32_t i = 0; i < kBuckets; ++i) {
                double x = 0, y = 0;
                source->GetPoint(i, x, y);
                line.emplace_back(area.x + x / 100 * area.width, top + area.Bottom() - y / 100 * area.height);
            }
            plot.AddCurve(std::move(source), "Velocity - North");
        }
    }
};

double Seconds(auto&& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Of all threads: on a machine that others use too this says more than the clock on the wall.
double ProcessorSeconds(auto&& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2),
                     values.end());
    return values[values.size() / 2];
}

// Arguments: the device pixel ratio in quarters, and whether curves are splines.
void PaintTenGraphs(benchmark::State& state) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char name[] = "bench_plot";
    char* argv[] = {name, nullptr};
    const QGuiApplication application(argc, argv);
    SGraphs graphs;
    graphs.settings.drawCurve = state.range(1) != 0;
    const double ratio = static_cast<double>(state.range(0)) / 4;
    QImage image(QSize(kWidth, kHeight) * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);

    std::vector<double> plain, ours, plainProcessor, oursProcessor;
    const auto paintPlain = [&] {
        QPainter painter(&image);
        painter.setPen(QPen(Qt::blue, 0)); // one device pixel at any ratio
        for (const auto& line : graphs.lines)
            painter.drawPolyline(line.data(), static_cast<int>(line.size()));
    };
    const auto paintGraphs = [&] {
        QPainter painter(&image);
        CGraphics graphics(painter);
        for (const auto& plot : graphs.plots) plot->Draw(graphics);
    };
    for (auto _ : state) {
        plainProcessor.push_back(ProcessorSeconds([&] { plain.push_back(Seconds(paintPlain)); }));
        oursProcessor.push_back(ProcessorSeconds([&] { ours.push_back(Seconds(paintGraphs)); }));
        state.SetIterationTime(ours.back());
    }
    state.counters["plain_cpu_ms"] = Median(plainProcessor) * 1000;
    state.counters["plot_cpu_ms"] = Median(oursProcessor) * 1000;
    state.counters["plain_ms"] = Median(plain) * 1000;
    state.counters["plot_ms"] = Median(ours) * 1000;
    state.counters["ratio"] = Median(ours) / Median(plain);
}

} // namespace

BENCHMARK(PaintTenGraphs)
    ->ArgNames({"ratio", "splines"})
    ->ArgsProduct({{4, 6, 8}, {0}})
    ->Args({4, 1})
    ->Args({8, 1})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
