// Statistics of a whole dense channel against its reduction to slices, on one recording, alternating; the
// counter "ratio" compares the medians.
#include "dataaccess/recording.h"
#include "dataaccess/statistics_query.h"

#include <benchmark/benchmark.h>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

constexpr std::uint32_t kFirstRaw = 4; // six raw values of the inertial unit, from this field on

void StatisticsOfWholeChannel(benchmark::State& state) {
    const auto fieldCount = static_cast<std::uint32_t>(state.range(0));
    const CDateTimeSpan end(static_cast<std::int64_t>(kPackets) * kStep);
    const SChannelAddress address{GetRecording().GetPath(), EFileKind::tarin, 0};
    std::vector<SStatisticsField> fields;
    for (std::uint32_t i = 0; i < fieldCount; ++i)
        fields.push_back({kFirstRaw + i, static_cast<double>(state.range(1))});
    std::vector<double> reduction, statistics;
    for (auto _ : state) {
        CTrvView1DDataQuery reduce(address, {CDateTimeSpan(1), end, CDateTimeSpan(end.GetTicks() / kSlices)},
                                   nullptr);
        reduction.push_back(ProcessorSecondsOf([&] { reduce.Execute(); }));
        CTrvStatisticsQuery query(address, {CDateTimeSpan(0), end}, fields, nullptr);
        statistics.push_back(ProcessorSecondsOf([&] { query.Execute(); }));
        if (query.GetStatistics().fields.at(0).count != kPackets) state.SkipWithError("packets are missing");
    }
    state.counters["reduction_ms"] = Median(reduction) * 1e3;
    state.counters["statistics_ms"] = Median(statistics) * 1e3;
    state.counters["ratio"] = Median(statistics) / Median(reduction);
}
BENCHMARK(StatisticsOfWholeChannel)
    ->ArgNames({"fields", "turn"})
    ->Args({1, 0})
    ->Args({3, 0})
    ->Args({6, 0})
    ->Args({1, 360})
    ->Iterations(7)
    ->Unit(benchmark::kMillisecond);

} // namespace
