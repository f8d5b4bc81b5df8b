// A whole dense channel as text, all numeric fields. The counter "MB/s" is text a second of processor time.
#include "dataaccess/csv_query.h"
#include "dataaccess/recording.h"

#include <benchmark/benchmark.h>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

void CsvOfWholeChannel(benchmark::State& state) {
    const CDateTimeSpan end(static_cast<std::int64_t>(kPackets) * kStep);
    Outils_Temps::CDateTime zero;
    zero.SetDateTime(2026, 3, 14, 0, 0, 0, 0);
    std::vector<SCsvColumn> columns;
    for (std::uint32_t field = 1; field < 11; ++field)
        columns.push_back({"Field", field, field < 4 ? 1 : 1e-7}); // half of them are scaled
    const CMadeFile target;
    std::vector<double> seconds;
    for (auto _ : state) {
        CTrvCsvQuery query({GetRecording().GetPath(), EFileKind::tarin, 0}, {CDateTimeSpan(0), end},
                           {"UTC", zero, {}}, columns, target.path, nullptr);
        seconds.push_back(ProcessorSecondsOf([&] { query.Execute(); }));
        if (query.GetRowCount() != kPackets) state.SkipWithError("rows are missing");
    }
    state.counters["MB/s"] =
        static_cast<double>(std::filesystem::file_size(target.path)) / Median(seconds) / 1e6;
}
BENCHMARK(CsvOfWholeChannel)->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
