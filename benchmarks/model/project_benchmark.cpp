// Opening, checking and saving a project that has every sensor it may have and this many instructions of
// every kind, also in each group of each sensor.
#include "foundation/archive.h"
#include "model/project.h"
#include "model/registration.h"
#include "model/rules/rule_report.h"

#include <benchmark/benchmark.h>

using namespace Metier_Tarvel;
using namespace Outils_Objets;

namespace {

template <class T>
void Fill(T* period, int i) {
    period->begin = CDateTime(static_cast<std::uint64_t>(i));
    period->end = CDateTime(static_cast<std::uint64_t>(i + 1));
}

std::unique_ptr<CTrvProject> MakeProject(int count) {
    auto project = std::make_unique<CTrvProject>();
    CTrvSimulationParameters& parameters = *project->simulationParameters;
    for (const SSensorKind& kind : GetSensorKinds()) {
        parameters.mainInputFile->AddChannel(1, "c", std::string(kind.className));
        while (parameters.AddSensor(kind.kind)) {
        }
    }
    for (int i = 0; i < count; ++i) {
        Fill(parameters.AddZupt(), i);
        Fill(parameters.AddOutputRate(), i);
        Fill(parameters.AddAltitudeMode(), i);
        for (const auto& sensor : parameters.sensors) {
            for (const auto& group : sensor->rejectionGroups) Fill(group->AddInstruction(), i);
            if (sensor->IsKindOf(CTrvSensorUsbl::Class()))
                Fill(static_cast<CTrvSensorUsbl&>(*sensor).AddFilteringInstruction(), i);
        }
    }
    return project;
}

std::vector<std::uint8_t> Store(const CTrvProject& project) {
    CMemoryStream stream;
    CArchive archive(stream, CArchive::store, nullptr);
    archive.WriteObject(&project);
    archive.Close();
    return stream.GetBytes();
}

void SaveProject(benchmark::State& state) {
    const auto project = MakeProject(static_cast<int>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(Store(*project));
    state.SetComplexityN(state.range(0));
}

void OpenProject(benchmark::State& state) {
    const std::vector<std::uint8_t> bytes = Store(*MakeProject(static_cast<int>(state.range(0))));
    CClassRegistry registry;
    RegisterModelClasses(registry);
    for (auto _ : state) {
        CMemoryStream stream(bytes);
        CArchive archive(stream, CArchive::load, &registry);
        benchmark::DoNotOptimize(CTrvProject::Load(archive));
    }
    state.SetComplexityN(state.range(0));
}

void CheckProject(benchmark::State& state) {
    const auto project = MakeProject(static_cast<int>(state.range(0)));
    // Every second ZUPT is at fault.
    for (std::size_t i = 0; i < project->simulationParameters->zupts.size(); i += 2)
        project->simulationParameters->zupts[i]->end = CDateTime(0);
    for (auto _ : state) {
        Metier_Tarvel_Regles::CTrvRuleReport report;
        benchmark::DoNotOptimize(project->simulationParameters->Validate(report));
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(SaveProject)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(OpenProject)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(CheckProject)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMillisecond)->Complexity();

} // namespace
