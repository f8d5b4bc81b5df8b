// What a user waits for: a window of ten minutes, a moment, and the end of a query that a pan has made stale.
#include "dataaccess/date_search.h"
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <fstream>
#include <random>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

constexpr std::int64_t kLength = static_cast<std::int64_t>(kPackets) * kStep;
constexpr std::int64_t kGpsStep = 40 * kStep;

SChannelAddress Address(CXpfFileCache* cache = nullptr) {
    return {GetRecording().GetPath(), EFileKind::tarin, 0, cache};
}

// Read calls of this process so far, as the system counts them.
long ReadCalls() {
    std::ifstream counts("/proc/self/io");
    std::string word;
    while (counts >> word)
        if (word == "syscr:") {
            long count = 0;
            counts >> count;
            return count;
        }
    return 0;
}

// A window of 600 s of 200 Hz data in 2000 slices, anywhere in the recording.
void TenMinuteWindow(benchmark::State& state) {
    std::mt19937_64 random(1);
    constexpr std::int64_t width = 600 * Outils_Temps::kTicksPerSecond;
    for (auto _ : state) {
        const auto start =
            static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(kLength - width)) | 1;
        CTrvView1DDataQuery query(
            Address(), {CDateTimeSpan(start), CDateTimeSpan(start + width), CDateTimeSpan(width / kSlices)},
            nullptr);
        query.Execute();
        benchmark::DoNotOptimize(query.TakeSeries());
    }
}
BENCHMARK(TenMinuteWindow)->Unit(benchmark::kMillisecond);

// The packet at a moment. "reads" counts the read calls of one search in an open file, both ends of the
// channel and the packet itself among them; "worst" is the most that one took, "limit" what it may take: a
// bisection over the packets and two more, or four beside a cache that knows the neighbourhood; "over" is the
// share of the searches that took more.
enum ECacheState { cold, scattered, near };

void Moment(benchmark::State& state) {
    const bool sparse = state.range(0) != 0;
    const auto cacheState = static_cast<ECacheState>(state.range(1));
    const auto& path = GetRecording().GetPath();
    CXpfFileCache cache;
    std::mt19937_64 random(2);
    const Outils::CEvent cancel;
    const long first = ReadCalls();
    const long own = ReadCalls() - first; // of the counting itself
    const double packets = sparse ? kPackets / 40 : kPackets;
    const double limit = cacheState == near ? 4 : std::ceil(std::log2(packets)) + 2;
    long reads = 0, worst = 0, over = 0;
    std::int64_t searches = 0;
    const auto search = [&](std::int64_t ticks, bool feeds) {
        const auto file = OpenXpfFile(path, EFileKind::tarin).file;
        CXpfChannel& channel = *file->FindChannelByName(sparse ? "GPS_1" : "IMU");
        file->GetDataStart();
        const auto packet = channel.CreatePacket();
        auto& dated = static_cast<CXpfDatedPacket&>(*packet);
        const SDateSearch how{path, cacheState == cold ? nullptr : &cache, feeds, cancel};
        SDateBracket bracket;
        const CDateTimeSpan date(ticks);
        const long before = ReadCalls();
        const bool found = SearchDate(channel, dated, date, how, bracket) == EDateSearch::found &&
                           channel.SeekPacketNumber(PickNearer(bracket, date)) &&
                           channel.ReadNextPacket(dated);
        const long taken = ReadCalls() - before - own;
        if (!found) state.SkipWithError("not found");
        if (feeds) return;
        reads += taken;
        worst = std::max(worst, taken);
        over += static_cast<double>(taken) > limit;
        ++searches;
    };
    const auto pick = [&] {
        return static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(kLength - kGpsStep)) | 1;
    };
    for (int i = 0; cacheState == scattered && i < 200; ++i) search(pick(), true);
    for (auto _ : state) {
        const std::int64_t date = pick();
        if (cacheState == near) {
            // A second away from a window that began here.
            state.PauseTiming();
            search(date, true);
            state.ResumeTiming();
        }
        search(cacheState == near ? std::min(date + Outils_Temps::kTicksPerSecond, kLength - kGpsStep) : date,
               false);
    }
    state.counters["reads"] = static_cast<double>(reads) / static_cast<double>(searches);
    state.counters["worst"] = static_cast<double>(worst);
    state.counters["limit"] = limit;
    state.counters["over"] = static_cast<double>(over) / static_cast<double>(searches);
}
BENCHMARK(Moment)
    ->ArgsProduct({{0, 1}, {cold, scattered, near}})
    ->ArgNames({"sparse", "cache"})
    ->Iterations(1000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
