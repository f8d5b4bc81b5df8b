// A whole dense channel reduced to 2000 slices, against a plain loop that reads the same bytes and keeps the
// same minima and maxima. Both run on one recording, alternating; the counter "ratio" compares the medians.
#include "dataaccess/view_queries.h"
#include "recording/recording_writer.h"
#include "xpf/packets.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;

namespace {

constexpr std::size_t kPackets = 3'000'000; // of the IMU: 204 MB, beside a sparse channel
constexpr int kSlices = 2000;
constexpr std::int64_t kStep = 50'000; // ticks between two packets: 200 Hz

// The recording, made once and removed at the end. Evicted and read back, so that its pages are those of a
// reader.
class CRecording {
  public:
    CRecording() {
        std::string name = (std::filesystem::temp_directory_path() / "varne-bench-XXXXXX").string();
        ::close(::mkstemp(name.data()));
        m_path = name;
        constexpr std::string_view channels[] = {"IMU", "GPS_1"};
        Enregistrement::CRecordingWriter writer;
        writer.Create(m_path, channels);
        CXpfTarinImuPacketV2 imu;
        CXpfTarinGpsPacketV2 gps;
        std::uint32_t noise = 1;
        for (std::size_t i = 0; i < kPackets; ++i) {
            const CDateTimeSpan date(static_cast<std::int64_t>(i) * kStep);
            imu.SetDate(0, date);
            for (std::uint32_t field = 4; field < 10; ++field)
                imu.SetInt32(field, static_cast<std::int32_t>(noise = noise * 1664525 + 1013904223));
            writer.Write(0, imu);
            if (i % 40 == 0) {
                gps.SetDate(0, date);
                writer.Write(1, gps);
            }
        }
        writer.Close();
        const int file = ::open(m_path.c_str(), O_RDONLY);
        ::fsync(file);
        ::posix_fadvise(file, 0, 0, POSIX_FADV_DONTNEED);
        std::vector<char> block(1 << 20);
        while (::read(file, block.data(), block.size()) > 0) {
        }
        ::close(file);
    }
    ~CRecording() { std::filesystem::remove(m_path); }
    const std::filesystem::path& GetPath() const { return m_path; }

  private:
    std::filesystem::path m_path;
};

const CRecording& GetRecording() {
    static const CRecording recording;
    return recording;
}

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
    bool cancelled = false;
    query.Execute(cancelled);
    return query.TakeSeries().representatives.size();
}

template <class Work>
double SecondsOf(Work&& work) {
    const auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(work());
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void ReduceWholeChannel(benchmark::State& state) {
    const auto& path = GetRecording().GetPath();
    std::vector<double> plain, query;
    for (auto _ : state) {
        plain.push_back(SecondsOf([&] { return PlainReduction(path); }));
        query.push_back(SecondsOf([&] { return QueryReduction(path); }));
    }
    state.counters["plain_ms"] = Median(plain) * 1e3;
    state.counters["query_ms"] = Median(query) * 1e3;
    state.counters["ratio"] = Median(query) / Median(plain);
    state.counters["GB/s"] = static_cast<double>(std::filesystem::file_size(path)) / Median(query) / 1e9;
}
BENCHMARK(ReduceWholeChannel)->Iterations(7)->Unit(benchmark::kMillisecond);

} // namespace
