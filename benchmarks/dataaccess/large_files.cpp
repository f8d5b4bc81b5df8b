// Work on a file far larger than the memory that it may take: the analysis of a whole recording and the
// reduction of one channel, against a raw read of the same bytes. VARNE_BENCH_FILE names a recording of full
// size; the counter "MB" is the most memory that the work has held on top of what was there before.
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <fstream>
#include <memory>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 20;
constexpr int kRuns = 5;

std::int64_t ReadRaw(const std::filesystem::path& path, std::uint8_t* buffer) {
    const int file = ::open(path.c_str(), O_RDONLY);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_SEQUENTIAL);
    std::int64_t at = 0;
    for (ssize_t got; (got = ::pread(file, buffer, kBlock, at)) > 0;) at += got;
    ::close(file);
    return at;
}

// The analysis as the program runs it, on the caller's thread.
class CAnalysis : public CTrvTarinDataFileAnalyzerThread {
  public:
    using CTrvTarinDataFileAnalyzerThread::CTrvTarinDataFileAnalyzerThread;
    void Work() { Run(); }
};

std::int64_t Analyse(const std::filesystem::path& path) {
    Outils::CMessageQueue queue;
    Outils::CMessagePort port(queue);
    CAnalysis analysis(path, port, [](std::uint16_t) {});
    analysis.Work();
    return analysis.GetResumePosition().Get();
}

// The inertial data of the whole file in 2000 slices with extremes.
std::int64_t Reduce(const std::filesystem::path& path) {
    const auto file = OpenXpfFile(path, EFileKind::tarin).file;
    CXpfChannel& channel = *file->FindChannelByName("IMU");
    const auto packet = channel.CreatePacket();
    auto& dated = static_cast<CXpfDatedPacket&>(*packet);
    channel.ReadNextPacket(dated);
    const CDateTimeSpan first = dated.GetPacketDate();
    channel.SeekLastPacket(nullptr);
    channel.ReadNextPacket(dated);
    const CDateTimeSpan length = dated.GetPacketDate() - first;
    CTrvView1DDataQuery query({path, EFileKind::tarin, channel.GetNumber()},
                              {first, first + length, CDateTimeSpan(length.GetTicks() / kSlices)}, nullptr);
    query.Execute();
    return static_cast<std::int64_t>(query.TakeSeries().representatives.size());
}

// In kilobytes.
long ReadStatus(std::string_view name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long value = 0;
        if (word == name && status >> value) return value;
    }
    return 0;
}

void AgainstRawRead(benchmark::State& state, std::int64_t (*work)(const std::filesystem::path&)) {
    const std::filesystem::path path = GetLargeFile();
    struct SFree {
        void operator()(std::uint8_t* bytes) const { std::free(bytes); }
    };
    const std::unique_ptr<std::uint8_t, SFree> buffer(
        static_cast<std::uint8_t*>(std::aligned_alloc(4096, kBlock)));
    ReadRaw(path, buffer.get());
    for (auto _ : state) {
        std::vector<double> own, raw;
        long most = 0;
        for (int run = 0; run < kRuns; ++run) {
            raw.push_back(ProcessorSecondsOf([&] { benchmark::DoNotOptimize(ReadRaw(path, buffer.get())); }));
            std::ofstream("/proc/self/clear_refs") << "5"; // the peak is measured from here on
            const long before = ReadStatus("VmRSS:");
            own.push_back(ProcessorSecondsOf([&] { benchmark::DoNotOptimize(work(path)); }));
            most = std::max(most, ReadStatus("VmHWM:") - before);
        }
        state.SetIterationTime(Median(own));
        state.counters["raw_ms"] = Median(raw) * 1e3;
        state.counters["ratio"] = Median(own) / Median(raw);
        state.counters["MB"] = static_cast<double>(most) / 1024;
    }
}
BENCHMARK_CAPTURE(AgainstRawRead, analysis, Analyse)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AgainstRawRead, reduction, Reduce)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
