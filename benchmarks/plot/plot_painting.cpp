// Painting a full window of graphs, beside what the machine's painter can do at best: the same polylines, of
// points that lie ready, into the same picture. Both run in turn within each iteration, so that they meet the
// same machine.
#include "plot/dense_graphs.h"

#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

using namespace bench;

namespace {

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
