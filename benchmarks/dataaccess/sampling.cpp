// The first look at a whole recording: from nothing but its path to packets at even places, beside the plain
// answer of every packet. VARNE_BENCH_FILE names a recording of full size. The counters say how many reads it
// took of the system, and what it took of a file that is not in memory.
#include "dataaccess/recording.h"
#include "dataaccess/sampled_view_query.h"

#include <benchmark/benchmark.h>

#include <fstream>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

// Read calls of this process so far.
long CountReads() {
    std::ifstream status("/proc/self/io");
    for (std::string word; status >> word;) {
        long value = 0;
        if (word == "syscr:" && status >> value) return value;
    }
    return 0;
}

void Evict(const std::filesystem::path& path) {
    const int file = ::open(path.c_str(), O_RDONLY);
    ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
    ::close(file);
}

// The dates of the first and the last packet.
std::pair<CDateTimeSpan, CDateTimeSpan> FindExtent(const SChannelAddress& address) {
    const auto file = OpenXpfFile(address.path, address.kind).file;
    CXpfChannel& channel = *file->FindChannelByNumber(address.channel);
    const auto packet = channel.CreatePacket();
    const auto& dated = static_cast<const CXpfDatedPacket&>(*packet);
    channel.ReadNextPacket(*packet);
    const CDateTimeSpan first = dated.GetPacketDate();
    channel.SeekLastPacket(nullptr);
    channel.ReadNextPacket(*packet);
    return {first, dated.GetPacketDate()};
}

void SampleWholeRecording(benchmark::State& state) {
    SChannelAddress address{GetLargeFile(), EFileKind::tarin, 0};
    address.channel = OpenXpfFile(address.path, address.kind).file->FindChannelByName("IMU")->GetNumber();
    std::size_t count = 0;
    const auto sample = [&] {
        const auto [first, last] = FindExtent(address);
        const SWindow window{first, last, CDateTimeSpan((last - first).GetTicks() / kSlices), true};
        CTrvSampledViewQuery query(address, window, nullptr);
        query.Execute();
        count = query.TakeSeries().representatives.size();
        return window;
    };
    const SWindow window = sample();
    long reads = 0;
    std::vector<double> warm;
    for (auto _ : state) {
        const long before = CountReads();
        warm.push_back(SecondsOf(sample));
        reads = CountReads() - before;
        state.SetIterationTime(warm.back());
    }
    CTrvView1DDataQuery plain(address, window, nullptr);
    const double whole = SecondsOf([&] { plain.Execute(); });
    Evict(address.path);
    const double cold = SecondsOf(sample);
    state.counters["packets"] = static_cast<double>(count);
    state.counters["reads"] = static_cast<double>(reads);
    state.counters["warm_ms"] = Median(warm) * 1000;
    state.counters["cold_ms"] = cold * 1000;
    state.counters["whole_ms"] = whole * 1000;
}

// Whether the reads of the sampling are left in memory, where they would slow the scan that follows.
void ScanAfterSampling(benchmark::State& state) {
    SChannelAddress address{GetLargeFile(), EFileKind::tarin, 0};
    address.channel = OpenXpfFile(address.path, address.kind).file->FindChannelByName("IMU")->GetNumber();
    const auto [first, last] = FindExtent(address);
    const SWindow window{first, last, CDateTimeSpan((last - first).GetTicks() / kSlices), true};
    std::vector<double> plain, sampled;
    for (auto _ : state)
        for (const bool samples : {false, true}) {
            Evict(address.path);
            if (samples) CTrvSampledViewQuery(address, window, nullptr).Execute();
            CTrvView1DDataQuery query(address, window, nullptr);
            (samples ? sampled : plain).push_back(SecondsOf([&] { query.Execute(); }));
        }
    state.counters["plain_ms"] = Median(plain) * 1000;
    state.counters["sampled_ms"] = Median(sampled) * 1000;
    state.counters["ratio"] = Median(sampled) / Median(plain);
}

} // namespace

BENCHMARK(SampleWholeRecording)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(ScanAfterSampling)->Iterations(3)->Unit(benchmark::kMillisecond);
