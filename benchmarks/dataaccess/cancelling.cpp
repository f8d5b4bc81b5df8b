// From the request to the end of a query that a pan has made stale, whatever it was doing: one benchmark for
// each work that may take long. The counter "worst_ms" is the most of all runs.
#include "dataaccess/recording.h"
#include "dataaccess/view_queries.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <fstream>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace bench;

namespace {

struct SWork {
    std::filesystem::path path;
    std::uint16_t channel;
    CDateTimeSpan end;
};

std::uint16_t FindNumber(const std::filesystem::path& path, std::string_view name) {
    const auto file = OpenXpfFile(path, EFileKind::tarin).file;
    return file->FindChannelByName(name)->GetNumber();
}

SWork ReduceTheWhole(CMadeFile&) {
    const std::filesystem::path path = GetLargeFile();
    return {path, FindNumber(path, "IMU"), CDateTimeSpan(static_cast<std::int64_t>(1) << 50)};
}

void WriteRecording(const std::filesystem::path& path, std::size_t count) {
    constexpr std::string_view channels[] = {"IMU", "DEPTH"};
    Enregistrement::CRecordingWriter writer;
    writer.Create(path, channels);
    CXpfTarinImuPacketV2 imu;
    for (std::size_t i = 0; i < count; ++i) {
        imu.SetDate(0, CDateTimeSpan(static_cast<std::int64_t>(i) * kStep));
        writer.Write(0, imu);
    }
}

// A channel that the file declares, and of which it has no packet.
SWork SearchSilentChannel(CMadeFile& file) {
    WriteRecording(file.path, kPackets);
    return {file.path, FindNumber(file.path, "DEPTH"), CDateTimeSpan(1)};
}

// The last packet of a channel stands before gigabytes of nothing.
SWork SearchDamagedTail(CMadeFile& file) {
    WriteRecording(file.path, 10);
    std::filesystem::resize_file(file.path, std::uintmax_t{4} << 30);
    return {file.path, FindNumber(file.path, "IMU"), CDateTimeSpan(1)};
}

// As many fields as a header may define.
SWork OpenLargeHeader(CMadeFile& file) {
    constexpr std::uint16_t definitions = 4, fields = 65535;
    std::vector<char> bytes(
        kFileHeaderSize + definitions * (kDefinitionRecordSize + kFieldRecordSize * fields), 'x');
    const std::uint16_t channels = 0;
    std::memcpy(&bytes[kChannelCountOffset], &channels, sizeof channels);
    std::memcpy(&bytes[kDefinitionCountOffset], &definitions, sizeof definitions);
    for (std::size_t i = 0; i < definitions; ++i)
        std::memcpy(&bytes[kFileHeaderSize + i * (kDefinitionRecordSize + kFieldRecordSize * fields) + 6],
                    &fields, sizeof fields);
    std::ofstream(file.path, std::ios::binary)
        .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return {file.path, 0, CDateTimeSpan(1)};
}

void Cancel(benchmark::State& state, SWork (*prepare)(CMadeFile&)) {
    CMadeFile made;
    const SWork work = prepare(made);
    const auto makeQuery = [&work] {
        return std::make_unique<CTrvView1DDataQuery>(
            SChannelAddress{work.path, EFileKind::tarin, work.channel},
            SWindow{CDateTimeSpan(1), work.end, CDateTimeSpan(std::int64_t{1} << 32)}, nullptr);
    };
    const double whole = SecondsOf([&] { makeQuery()->Execute(); });
    std::mt19937 random(3);
    std::vector<double> times;
    for (auto _ : state) {
        const auto query = makeQuery();
        std::atomic<bool> running{false};
        std::thread loader([&] {
            running = true;
            query->Execute();
        });
        while (!running) std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::duration<double>(whole * (random() % 1000) / 1000));
        times.push_back(SecondsOf([&] {
            query->RequestCancel();
            loader.join();
        }));
        state.SetIterationTime(times.back());
    }
    state.counters["whole_ms"] = whole * 1e3;
    state.counters["worst_ms"] = *std::max_element(times.begin(), times.end()) * 1e3;
}
BENCHMARK_CAPTURE(Cancel, reduction, ReduceTheWhole)
    ->Iterations(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Cancel, silent_channel, SearchSilentChannel)
    ->Iterations(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Cancel, damaged_tail, SearchDamagedTail)
    ->Iterations(30)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Cancel, large_header, OpenLargeHeader)
    ->Iterations(100)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
