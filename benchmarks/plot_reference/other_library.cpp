// Ten dense graphs painted by the plot engine, beside the same curves and bands by QCustomPlot. Neither
// smooths edges. Built where that library is installed (Debian: libqcustomplot-dev); nothing else needs it.
#include "plot/dense_graphs.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QPainter>

#include <qcustomplot.h>

using namespace bench;

namespace {

std::unique_ptr<QCustomPlot> MakePlot(unsigned seed) {
    auto plot = std::make_unique<QCustomPlot>();
    plot->resize(kWidth, static_cast<int>(kGraphHeight));
    plot->setNotAntialiasedElements(QCP::aeAll);
    plot->legend->setVisible(true);
    QVector<double> xs, middles, lows, highs;
    const CNoise source(seed);
    for (std::uint32_t i = 0; i < kBuckets; ++i) {
        double x = 0, y = 0;
        source.GetPoint(i, x, y);
        xs.push_back(x);
        middles.push_back(y);
        source.GetMinimum(i, x, y);
        lows.push_back(y);
        source.GetMaximum(i, x, y);
        highs.push_back(y);
    }
    plot->addGraph()->setData(xs, middles, true);
    plot->graph(0)->setPen(QPen(Qt::blue, 1));
    plot->graph(0)->setName(QStringLiteral("Velocity - North"));
    for (const auto& values : {lows, highs}) {
        plot->addGraph()->setData(xs, values, true);
        plot->graph(plot->graphCount() - 1)->setPen(Qt::NoPen);
        plot->graph(plot->graphCount() - 1)->removeFromLegend();
    }
    plot->graph(1)->setBrush(QColor(0, 0, 255, 200));
    plot->graph(1)->setChannelFillGraph(plot->graph(2));
    plot->xAxis->setRange(0, 100);
    plot->yAxis->setRange(0, 100);
    plot->grab(); // makes its buffers
    return plot;
}

void PaintTenGraphs(benchmark::State& state) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argc = 1;
    char name[] = "bench_plot_reference";
    char* argv[] = {name, nullptr};
    const QApplication application(argc, argv);
    const SGraphs graphs;
    std::vector<std::unique_ptr<QCustomPlot>> others;
    for (unsigned g = 0; g < kGraphs; ++g) others.push_back(MakePlot(g));
    QImage image(kWidth, kHeight, QImage::Format_RGB32);

    std::vector<double> ours, theirs;
    for (auto _ : state) {
        theirs.push_back(ProcessorSeconds([&] {
            for (const auto& plot : others) plot->replot(QCustomPlot::rpQueuedRefresh);
        }));
        ours.push_back(ProcessorSeconds([&] {
            QPainter painter(&image);
            CGraphics graphics(painter);
            for (const auto& plot : graphs.plots) plot->Draw(graphics);
        }));
        state.SetIterationTime(ours.back());
    }
    state.counters["other_cpu_ms"] = Median(theirs) * 1000;
    state.counters["plot_cpu_ms"] = Median(ours) * 1000;
    state.counters["ratio"] = Median(ours) / Median(theirs);
}

} // namespace

BENCHMARK(PaintTenGraphs)->UseManualTime()->Unit(benchmark::kMillisecond);
