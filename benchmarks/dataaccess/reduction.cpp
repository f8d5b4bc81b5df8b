// A whole dense channel reduced to 2000 slices, against a plain loop that reads the same bytes and keeps the
// same minima and maxima. Both run on one recording, alternating; the counter "ratio" compares the medians.
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

// The machine's own limit: aligned blocks, the packet check, and per slice the first packet and the extremes
// of the nine numeric fields behind the date.
std::uint64_t PlainReduction(const std::filesystem::path& path) {
    struct SExtremes {
        std::uint16_t counter;
        std::uint8_t system, data;
        std::array<std::int32_t, 6> raw;
        std::uint32_t status;
    };
    constexpr std::size_t kBlock = 1 << 20, kRoom = 4096;
    auto* buffer = static_cast<std::uint8_t*>(std::aligned_alloc(4096, kRoom + kBlock));
    const int file = ::open(path.c_str(), O_RDONLY);
    std::int64_t offset = 0;
    std::size_t start = kRoom, end = kRoom;
    bool headerPassed = false;
    std::uint64_t sum = 0;
    std::int64_t slice = -1;
    SExtremes low{}, high{};
    const std::int64_t width = static_cast<std::int64_t>(kPackets) * kStep / kSlices;
    for (;;) {
        const std::size_t rest = end - start;
        std::memmove(buffer + kRoom - rest, buffer + start, rest);
        const auto count = ::pread(file, buffer + kRoom, kBlock, offset);
        if (count <= 0) break;
        offset += count;
        start = kRoom - rest;
        end = kRoom + static_cast<std::size_t>(count);
        if (!headerPassed) {
            // Behind the header, two channel records and the definitions of two types.
            start += 123 + 2 * 84 + 2 * 8 + (11 + 13) * 100;
            headerPassed = true;
        }
        while (end - start >= 28) {
            const std::uint8_t* packet = buffer + start;
            SPacketHeader head;
            std::memcpy(&head, packet, sizeof head);
            if (end - start < head.size) break;
            SPacketTrailer trailer;
            std::memcpy(&trailer, packet + head.size - 8, sizeof trailer);
            if (!trailer.Matches(head)) std::abort();
            start += head.size;
            if (head.channel != 0) continue;
            std::int64_t date;
            SExtremes value;
            std::memcpy(&date, packet + 20, 8);
            std::memcpy(&value.counter, packet + 28, 2);
            value.system = packet[30];
            value.data = packet[31];
            std::memcpy(value.raw.data(), packet + 32, 24);
            std::memcpy(&value.status, packet + 56, 4);
            if (date / width != slice) {
                sum += low.counter + high.counter + static_cast<std::uint32_t>(low.raw[0]) +
                       static_cast<std::uint32_t>(high.raw[5]);
                slice = date / width;
                low = high = value;
                continue;
            }
            low.counter = std::min(low.counter, value.counter);
            high.counter = std::max(high.counter, value.counter);
            low.system = std::min(low.system, value.system);
            high.system = std::max(high.system, value.system);
            low.data = std::min(low.data, value.data);
            high.data = std::max(high.data, value.data);
            for (std::size_t i = 0; i < 6; ++i) {
                low.raw[i] = std::min(low.raw[i], value.raw[i]);
                high.raw[i] = std::max(high.raw[i], value.raw[i]);
            }
            low.status = std::min(low.status, value.status);
            high.status = std::max(high.status, value.status);
        }
    }
    ::close(file);
    std::free(buffer);
    return sum;
}

std::size_t QueryReduction(const std::filesystem::path& path) {
    const CDateTimeSpan end(static_cast<std::int64_t>(kPackets) * kStep);
    CTrvView1DDataQuery query({path, EFileKind::tarin, 0},
                              {CDateTimeSpan(1), end, CDateTimeSpan(end.GetTicks() / kSlices)}, nullptr);
    query.Execute();
    return query.TakeSeries().representatives.size();
}

void ReduceWholeChannel(benchmark::State& state) {
    const auto& path = GetRecording().GetPath();
    std::vector<double> plain, query;
    for (auto _ : state) {
        plain.push_back(ProcessorSecondsOf([&] { benchmark::DoNotOptimize(PlainReduction(path)); }));
        query.push_back(ProcessorSecondsOf([&] { benchmark::DoNotOptimize(QueryReduction(path)); }));
    }
    state.counters["plain_ms"] = Median(plain) * 1e3;
    state.counters["query_ms"] = Median(query) * 1e3;
    state.counters["ratio"] = Median(query) / Median(plain);
    state.counters["GB/s"] = static_cast<double>(std::filesystem::file_size(path)) / Median(query) / 1e9;
}
BENCHMARK(ReduceWholeChannel)->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace
