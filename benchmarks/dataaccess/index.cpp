// The index of a recording: what it costs to make, how large it is, and how soon it answers. VARNE_BENCH_FILE
// names a recording of full size. Ratios compare medians of work that alternates in one run on warm pages.
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/file_indexes.h"
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <random>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

constexpr int kRuns = 5;

class CFolder {
  public:
    CFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "varne-bench-XXXXXX").string();
        path = ::mkdtemp(name.data());
    }
    ~CFolder() { std::filesystem::remove_all(path); }
    CFolder(const CFolder&) = delete;
    CFolder& operator=(const CFolder&) = delete;

    std::filesystem::path path;
};

const CFolder& GetFolder() {
    static const CFolder folder;
    return folder;
}

enum class EKept { no, yes };
std::shared_ptr<CFileIndexes> MakeIndexes(EKept kept) {
    SIndexSettings settings;
    if (kept == EKept::yes) settings.folder = GetFolder().path;
    return std::make_shared<CFileIndexes>(std::move(settings));
}

// The analysis as the program runs it, on the caller's thread.
class CAnalysis : public CTrvTarinDataFileAnalyzerThread {
  public:
    using CTrvTarinDataFileAnalyzerThread::CTrvTarinDataFileAnalyzerThread;
    void Work() { Run(); }
};

void Analyse(const std::filesystem::path& path, std::shared_ptr<CFileIndexes> indexes) {
    Outils::CMessageQueue queue;
    Outils::CMessagePort port(queue);
    CAnalysis analysis(
        path, port, [](std::uint16_t) {}, {}, std::move(indexes));
    analysis.Work();
}

// The machine's own limit: aligned blocks and the packet check.
std::int64_t ScanPlainly(const std::filesystem::path& path) {
    constexpr std::size_t kBlock = std::size_t{1} << 20, kRoom = 4096;
    const std::int64_t start = OpenXpfFile(path, EFileKind::tarin).file->GetDataStart().Get();
    auto* buffer = static_cast<std::uint8_t*>(std::aligned_alloc(4096, kRoom + kBlock));
    const int file = ::open(path.c_str(), O_RDONLY);
    std::int64_t offset = 0, packets = 0;
    std::uint8_t *at = buffer + kRoom, *end = at;
    for (;;) {
        const auto rest = static_cast<std::size_t>(end - at);
        std::memmove(buffer + kRoom - rest, at, rest);
        const auto count = ::pread(file, buffer + kRoom, kBlock, offset);
        if (count <= 0) break;
        at = buffer + kRoom - rest + (offset == 0 ? start : 0);
        offset += count;
        end = buffer + kRoom + count;
        while (end - at >= std::int64_t{kPacketOverhead}) {
            const std::uint32_t size = LoadPacketSize(at);
            if (end - at < std::int64_t{size}) break;
            if (!CheckHeaderBytes(at) || !TrailerBytesMatch(at, at + size - kPacketTrailerSize)) std::abort();
            at += size;
            ++packets;
        }
    }
    ::close(file);
    std::free(buffer);
    return packets;
}

void Scan(benchmark::State& state) {
    const std::filesystem::path path = GetLargeFile();
    std::vector<double> limit, plain, indexed;
    Analyse(path, nullptr);
    for (auto _ : state) {
        for (int run = 0; run < kRuns; ++run) {
            limit.push_back(ProcessorSecondsOf([&] { benchmark::DoNotOptimize(ScanPlainly(path)); }));
            plain.push_back(ProcessorSecondsOf([&] { Analyse(path, nullptr); }));
            indexed.push_back(ProcessorSecondsOf([&] { Analyse(path, MakeIndexes(EKept::no)); }));
        }
        state.SetIterationTime(Median(indexed));
    }
    const auto indexes = MakeIndexes(EKept::yes);
    Analyse(path, indexes);
    const auto index = indexes->Find(path);
    const auto size = static_cast<double>(std::filesystem::file_size(path));
    const auto place = CIndexStore(GetFolder().path, 0, 0).GetPlace(index->GetIdentity());
    state.counters["plain_ms"] = Median(plain) * 1e3;
    state.counters["ratio"] = Median(indexed) / Median(plain);
    state.counters["ratio_plain"] = Median(plain) / Median(limit);
    state.counters["memory_%"] = static_cast<double>(index->GetBytes()) / size * 100;
    state.counters["disk_%"] = static_cast<double>(std::filesystem::file_size(place)) / size * 100;
}
BENCHMARK(Scan)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

struct SExtent {
    std::uint16_t channel;
    std::int64_t first, last;
};
// Of every channel of the index.
std::vector<SExtent> FindExtents(const CFileIndex& index) {
    std::vector<SExtent> extents;
    for (const auto& [number, channel] : index.GetChannels()) {
        CIndexCursor cursor(channel);
        if (cursor.GetCount(0) < 8) continue;
        extents.push_back({number, cursor.GetHead(0, 0)->minimumDate,
                           cursor.GetHead(0, cursor.GetCount(0) - 1)->maximumDate});
    }
    return extents;
}

// Windows of every size of every channel with extremes, in 2000 slices.
void Windows(benchmark::State& state, EKept kept, bool uses) {
    const std::filesystem::path path = GetLargeFile();
    const auto indexes = MakeIndexes(kept);
    if (kept == EKept::no || !indexes->FindKept(path, EFileKind::tarin)) Analyse(path, indexes);
    const auto extents = FindExtents(*indexes->Find(path));
    std::mt19937_64 random(3);
    std::vector<double> times, whole;
    for (auto _ : state) {
        for (int i = 0; i < 60; ++i) {
            const auto& [channel, first, last] = extents[i % extents.size()];
            // From the whole extent down to a thousandth of it.
            const std::int64_t length = (last - first) >> (i / static_cast<int>(extents.size()) % 11);
            const auto room = static_cast<std::uint64_t>(last - first - length + 1);
            const std::int64_t start = first + static_cast<std::int64_t>(random() % room);
            CTrvView1DDataQuery query(
                {path, EFileKind::tarin, channel, nullptr, uses ? indexes.get() : nullptr},
                {CDateTimeSpan(start), CDateTimeSpan(start + length),
                 CDateTimeSpan(std::max<std::int64_t>(length / kSlices, 1))},
                nullptr);
            times.push_back(ProcessorSecondsOf([&] { query.Execute(); }));
            if (length == last - first) whole.push_back(times.back());
        }
        state.SetIterationTime(Median(times));
    }
    state.counters["whole_ms"] = Median(whole) * 1e3;
    state.counters["worst_ms"] = *std::max_element(times.begin(), times.end()) * 1e3;
}
BENCHMARK_CAPTURE(Windows, walk, EKept::no, false)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Windows, memory, EKept::no, true)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Windows, disk, EKept::yes, true)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// A second opening: the kept index is read and the whole extent of every channel reduced.
void SecondOpening(benchmark::State& state) {
    const std::filesystem::path path = GetLargeFile();
    Analyse(path, MakeIndexes(EKept::yes));
    std::vector<double> times;
    for (auto _ : state) {
        times.push_back(ProcessorSecondsOf([&] {
            const auto indexes = MakeIndexes(EKept::yes);
            Analyse(path, indexes);
            for (const auto& [channel, first, last] : FindExtents(*indexes->Find(path)))
                CTrvView1DDataQuery(
                    {path, EFileKind::tarin, channel, nullptr, indexes.get()},
                    {CDateTimeSpan(first), CDateTimeSpan(last), CDateTimeSpan((last - first) / kSlices)},
                    nullptr)
                    .Execute();
        }));
        state.SetIterationTime(times.back());
    }
    state.counters["median_ms"] = Median(times) * 1e3;
}
BENCHMARK(SecondOpening)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

void Moments(benchmark::State& state, bool uses) {
    const std::filesystem::path path = GetLargeFile();
    const auto indexes = MakeIndexes(EKept::no);
    Analyse(path, indexes);
    const auto extent = FindExtents(*indexes->Find(path)).front();
    std::mt19937_64 random(3);
    for (auto _ : state) {
        const auto time =
            extent.first +
            static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(extent.last - extent.first));
        CTrvViewValueDataQuery query(
            {path, EFileKind::tarin, extent.channel, nullptr, uses ? indexes.get() : nullptr},
            CDateTimeSpan(time), nullptr);
        query.Execute();
    }
}
BENCHMARK_CAPTURE(Moments, search, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Moments, index, true)->Unit(benchmark::kMicrosecond);

} // namespace
