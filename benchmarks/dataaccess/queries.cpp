// What a user waits for: a window of ten minutes, a moment, and the end of a query that a pan has made stale.
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <fstream>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

constexpr std::int64_t kLength = static_cast<std::int64_t>(kPackets) * kStep;

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
        bool cancelled = false;
        query.Execute(cancelled);
        benchmark::DoNotOptimize(query.TakeSeries());
    }
}
BENCHMARK(TenMinuteWindow)->Unit(benchmark::kMillisecond);

// The packet at a moment. "reads" counts the read calls of one search, the opening of the file and its header
// among them.
void Moment(benchmark::State& state) {
    const bool warm = state.range(0) != 0;
    CXpfFileCache cache;
    std::mt19937_64 random(2);
    const auto search = [&](std::int64_t ticks) {
        CTrvViewValueDataQuery query(Address(warm ? &cache : nullptr), CDateTimeSpan(ticks), nullptr);
        bool cancelled = false;
        query.Execute(cancelled);
        benchmark::DoNotOptimize(query.TakePacket());
    };
    // A warm cache is one that windows have fed.
    for (int i = 0; warm && i < 200; ++i) {
        const auto start = static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(kLength)) | 1;
        CTrvView1DDataQuery query(
            Address(&cache), {CDateTimeSpan(start), CDateTimeSpan(start + 1), CDateTimeSpan(1)}, nullptr);
        bool cancelled = false;
        query.Execute(cancelled);
    }
    const long before = ReadCalls();
    std::int64_t searches = 0;
    for (auto _ : state) {
        search(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(kLength)) | 1);
        ++searches;
    }
    state.counters["reads"] = static_cast<double>(ReadCalls() - before) / static_cast<double>(searches);
}
BENCHMARK(Moment)->Arg(0)->Arg(1)->ArgName("warm")->Unit(benchmark::kMicrosecond);

// From the request to the end of a query that was reducing the whole recording; the counter "worst_ms" is the
// goal's figure.
void Cancel(benchmark::State& state) {
    std::mt19937 random(3);
    std::vector<double> times;
    for (auto _ : state) {
        CTrvView1DDataQuery query(
            Address(), {CDateTimeSpan(1), CDateTimeSpan(kLength), CDateTimeSpan(kLength / kSlices)}, nullptr);
        std::atomic<bool> running{false};
        std::thread loader([&] {
            bool cancelled = false;
            running = true;
            query.Execute(cancelled);
        });
        while (!running) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
        times.push_back(SecondsOf([&] {
            query.RequestCancel();
            loader.join();
        }));
        state.SetIterationTime(times.back());
    }
    state.counters["worst_ms"] = *std::max_element(times.begin(), times.end()) * 1e3;
}
BENCHMARK(Cancel)->Iterations(100)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
