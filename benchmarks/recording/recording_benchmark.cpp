#include "recording/recording_writer.h"
#include "simulator/mission_writer.h"
#include "xpf/packets.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

namespace {

std::filesystem::path GetPath() {
    return std::filesystem::temp_directory_path() /
           ("recording_benchmark_" + std::to_string(::getpid()) + ".tarin");
}

// The writer alone: 100 inertial packets for each GPS packet.
void WritePackets(benchmark::State& state) {
    constexpr int kRounds = 20'000;
    const Persistance_Xpf::CXpfTarinImuPacketV2 imu;
    const Persistance_Xpf::CXpfTarinGpsPacketV2 gps;
    std::int64_t bytes = 0;
    for (auto _ : state) {
        Enregistrement::CRecordingWriter writer;
        bool good = writer.Create(GetPath(), std::vector<std::string_view>{"IMU", "GPS_1"});
        for (int i = 0; good && i < kRounds; ++i) {
            for (int k = 0; good && k < 100; ++k) good = writer.Write(0, imu);
            good = good && writer.Write(1, gps);
        }
        bytes += writer.GetSize();
        if (!good || !writer.Close()) state.SkipWithError("cannot write");
    }
    state.SetBytesProcessed(bytes);
    std::filesystem::remove(GetPath());
}
BENCHMARK(WritePackets)->Unit(benchmark::kMillisecond)->UseRealTime();

// A whole mission, by vehicle, without its truth file.
void WriteMission(benchmark::State& state) {
    Simulation::SMissionOptions options;
    options.vehicle = static_cast<Simulation::EVehicle>(state.range(0));
    options.targetSize = 50'000'000;
    std::int64_t bytes = 0;
    for (auto _ : state) {
        std::string error;
        if (!Simulation::WriteMission(options, GetPath(), {}, error)) state.SkipWithError(error.c_str());
        bytes += options.targetSize;
    }
    state.SetBytesProcessed(bytes);
    std::filesystem::remove(GetPath());
}
BENCHMARK(WriteMission)->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
