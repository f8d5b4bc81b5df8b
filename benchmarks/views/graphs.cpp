// Ten graphs with data at hand: from a turn of the wheel, a drag by a few pixels or a step of the cursor to
// the painted window. Nothing is read: the files do not exist.
#include "application.h"
#include "batch/session.h"
#include "document/project_file.h"
#include "views/view_1d.h"
#include "xpf/packets.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>

using namespace Application_Tarvel;
using namespace Presentation_Tarvel_Graphics;

namespace {

constexpr int kGraphs = 10, kBuckets = 1600;
constexpr std::uint32_t kLatitude = 3;

// A wave with extremes, a packet for every second.
std::shared_ptr<CTrv1DGraphDataset> MakeWave() {
    SReducedSeries series;
    const auto make = [](int second, double value) {
        auto packet = std::make_unique<Persistance_Xpf::CXpfTaroutMorvexStdPacketV2>();
        packet->SetDate(0, CDateTimeSpan::FromSeconds(second));
        packet->SetDouble(kLatitude, value);
        return packet;
    };
    for (int i = 0; i < kBuckets; ++i) {
        const double value = std::sin(i * 0.01) + 0.2 * std::sin(i * 1.7);
        series.representatives.push_back(make(i, value));
        series.minima.push_back(make(i, value - 0.1));
        series.maxima.push_back(make(i, value + 0.1));
    }
    return std::make_shared<CTrv1DGraphDataset>(std::move(series), CDateTimeSpan::FromSeconds(1),
                                                CDateTimeSpan());
}

class CGraphsSession {
  public:
    CGraphsSession() : m_session({std::cout, std::cerr}) {
        const auto path = std::filesystem::temp_directory_path() / "graphs_benchmark.tarprj";
        Metier_Tarvel::CTrvProject project("/nowhere/r.tarin", "/nowhere/r.tarout");
        for (int i = 0; i < kGraphs; ++i)
            project.graphSettings->AddMeasureGraph("graph " + std::to_string(i))
                ->AddCurve(project.simulationParameters->outputFile.get(), 1, kLatitude,
                           "MORVEX_STD - Latitude");
        StoreProject(&project, path);
        m_session.Open(path.string());
        std::filesystem::remove(path);
        m_adaptors.Configure(m_settings);
        m_view.emplace(m_session.GetDocument(), m_viewState, m_settings, m_adaptors, m_plots);
        m_view->resize(1800, 1400);
        m_view->show();
        QApplication::processEvents();
        const SChannelKey channel{
            m_session.GetDocument().GetProject()->simulationParameters->outputFile.get(), 1};
        m_viewState.SetPeriod({CDateTimeSpan(), CDateTimeSpan::FromSeconds(kBuckets)});
        m_view->GetStack().SetDataset(channel, MakeWave());
        m_view->grab();
    }
    CViewState& GetState() { return m_viewState; }
    CTrvView1D& GetView() { return *m_view; }
    // As the window system would, without the copy that a grab makes.
    void Paint() { m_view->viewport()->repaint(); }

  private:
    Batch::CSession m_session;
    Outils_Configuration::CTrvCnfConfigFile m_settings;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_plots;
    CViewState m_viewState;
    std::optional<CTrvView1D> m_view;
};

template <class Act>
void Run(benchmark::State& state, Act&& act) {
    GetApplication();
    CGraphsSession session;
    int turn = 0;
    for (auto _ : state) {
        act(session, ++turn);
        session.Paint();
    }
}

void PanGraphs(benchmark::State& state) {
    Run(state, [](CGraphsSession& session, int turn) {
        session.GetView().GetLoader().ScrollTime(turn % 2 ? 0.01 : -0.01);
    });
}
void ZoomGraphs(benchmark::State& state) {
    Run(state, [](CGraphsSession& session, int turn) {
        session.GetView().GetLoader().ZoomTime(turn % 2 ? 0.125 : -0.125);
    });
}
void MoveCursor(benchmark::State& state) {
    Run(state, [](CGraphsSession& session, int turn) {
        session.GetState().SetCursor(ECursor::first, CDateTimeSpan::FromSeconds(100 + turn % 1000));
    });
}

} // namespace

BENCHMARK(PanGraphs)->Unit(benchmark::kMillisecond);
BENCHMARK(ZoomGraphs)->Unit(benchmark::kMillisecond);
BENCHMARK(MoveCursor)->Unit(benchmark::kMillisecond);
