// The processing panel over a project with this many ZUPT: until it is painted after an opening, and from an
// edit to the repainted panel.
#include "application.h"
#include "batch/session.h"
#include "document/edits.h"
#include "document/project_file.h"
#include "views/grid_view.h"
#include "views/view_processing.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <iostream>

using namespace Application_Tarvel;
using namespace Metier_Tarvel;

namespace {

// A session of its own for each count of instructions.
class CPanelSession {
  public:
    explicit CPanelSession(int count) : m_session({std::cout, std::cerr}) {
        const auto path = std::filesystem::temp_directory_path() / "panel_benchmark.tarprj";
        CTrvProject project("r.tarin", "r.tarout");
        for (int i = 0; i < count; ++i) {
            CTrvZupt* zupt = project.simulationParameters->AddZupt();
            zupt->begin = Outils_Temps::CDateTime(static_cast<std::uint64_t>(i));
            zupt->end = Outils_Temps::CDateTime(static_cast<std::uint64_t>(i + 1));
        }
        StoreProject(&project, path);
        m_session.Open(path.string());
        std::filesystem::remove(path);
        m_adaptors.Configure(m_settings);
    }
    std::unique_ptr<CTrvViewProcessing> MakePanel() {
        auto panel = std::make_unique<CTrvViewProcessing>(m_session.GetDocument(), m_settings, m_adaptors);
        panel->resize(320, 900);
        panel->show();
        panel->grab();
        return panel;
    }
    CTrvDocument& GetDocument() { return m_session.GetDocument(); }

  private:
    Batch::CSession m_session;
    Outils_Configuration::CTrvCnfConfigFile m_settings;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
};

void OpenPanel(benchmark::State& state) {
    GetApplication();
    CPanelSession session(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(session.MakePanel());
}

void EditInPanel(benchmark::State& state) {
    GetApplication();
    CPanelSession session(static_cast<int>(state.range(0)));
    const auto panel = session.MakePanel();
    auto& zupt = *session.GetDocument().GetProject()->simulationParameters->zupts.back();
    panel->GetGrid().Select(*panel->GetTree().Find(&zupt));
    for (auto _ : state) {
        auto values = ValuesOf(Edits::kChangeZupt, zupt);
        values.Get<&CTrvZupt::mode>() ^= 1;
        session.GetDocument().GetEdits().Do(Edits::kChangeZupt, zupt, values);
        benchmark::DoNotOptimize(panel->grab());
    }
}

BENCHMARK(OpenPanel)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(EditInPanel)->Arg(10)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
