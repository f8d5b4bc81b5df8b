// Converters beside what the machine does with the same bytes: reading them, finding their line ends, writing
// the target.
#include "convert/conversion.h"
#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <fstream>
#include <map>

#include <fcntl.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// Removed at the end.
struct SFolder {
    SFolder() { fs::create_directories(path); }
    ~SFolder() {
        std::error_code error;
        fs::remove_all(path, error);
    }
    const fs::path path = fs::temp_directory_path() / ("convert_benchmark_" + std::to_string(::getpid()));
};

const fs::path& GetFolder() {
    static const SFolder folder;
    return folder.path;
}

// A mission with much of each kind, in the format of a converter.
const fs::path& GetSource(const std::string& kind) {
    static std::map<std::string, fs::path> sources;
    fs::path& path = sources[kind];
    if (!path.empty()) return path;
    const fs::path mission = GetFolder() / "mission.tarin";
    Simulation::SMissionOptions options;
    std::string error;
    if (!fs::exists(mission)) {
        options.duration = 8000;
        options.channels = {"IMU",       "GPS_1",    "UTC", "DVL_BT",          "DEPTH",    "USBL_1",
                            "SYNCHRO_1", "ODOMETER", "LBL", "PLATFORM_ORIENT", "NELIX_NAV"};
        for (const std::string& channel : options.channels) options.GetChannelOptions(channel).rate = 50;
        if (!Simulation::WriteMission(options, mission, {}, error)) return path;
    }
    const fs::path target = GetFolder() / kind;
    if (Simulation::WriteForeign(kind, mission, options.GetUtcOrigin(), target, error)) path = target;
    return path;
}

struct CSilentMonitor : Compagnon::IRunMonitor {
    void Progress(double) override {}
    void Message(Compagnon::ELevel, Outils_Texte::EText, std::string_view) override {}
    bool GoOn() override { return true; }
};

double Now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time); // other programs may share the machine
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// Reads the source, looks for its line ends, and writes as many bytes as the target has.
void ReadAndWrite(const fs::path& source, std::uintmax_t targetSize) {
    std::vector<char> buffer(256 << 10);
    const int from = open(source.c_str(), O_RDONLY),
              to = open((GetFolder() / "copy").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    for (ssize_t size; (size = read(from, buffer.data(), buffer.size())) > 0;)
        for (const char* at = buffer.data(); at;) {
            at = static_cast<const char*>(
                std::memchr(at, '\n', static_cast<std::size_t>(buffer.data() + size - at)));
            benchmark::DoNotOptimize(at);
            if (at) ++at;
        }
    for (std::uintmax_t left = targetSize; left > 0;) {
        const auto size = std::min<std::uintmax_t>(left, buffer.size());
        if (write(to, buffer.data(), size) <= 0) break;
        left -= size;
    }
    close(from);
    close(to);
}

void Convert(benchmark::State& state, const std::string& kind, std::string_view program) {
    const auto converters = Conversion::GetConverters();
    const auto converter =
        std::ranges::find(converters, std::string(program) + ".exe", &Conversion::SConverter::program);
    const fs::path source = GetSource(kind), target = GetFolder() / "target";
    Compagnon::CArguments arguments;
    std::string error;
    if (source.empty() ||
        !arguments.Parse(converter->switches, std::vector{source.string(), target.string()}, error))
        return state.SkipWithError("no source");
    double converting = 0, reading = 0;
    for (auto _ : state) {
        CSilentMonitor monitor;
        const double begin = Now();
        if (Conversion::Convert(*converter, arguments, monitor) != Compagnon::ERunEnd::finished)
            return state.SkipWithError("not converted");
        const double middle = Now();
        ReadAndWrite(source, fs::file_size(target));
        converting += middle - begin;
        reading += Now() - middle;
        state.SetIterationTime(middle - begin);
    }
    const auto size = static_cast<double>(fs::file_size(source));
    state.counters["MB/s"] = size * static_cast<double>(state.iterations()) * 1e-6 / converting;
    state.counters["ratio"] = converting / reading;
}

#define CONVERT(kind, program)                                                                               \
    BENCHMARK_CAPTURE(Convert, kind, #kind, program)                                                         \
        ->Unit(benchmark::kMillisecond)                                                                      \
        ->UseManualTime()                                                                                    \
        ->Iterations(5)
CONVERT(nmea, "Nmea2Tarin");
CONVERT(kolt, "Kolt2Tarin");
CONVERT(novatel, "Novatel2Tarin");
CONVERT(raw, "PostProNelixDecode");
CONVERT(ciphered, "PostProNelixDecode");
CONVERT(pd6, "PD6Rdi2Tarin");
CONVERT(decoded, "DecodedNelix2Tarin");
CONVERT(synchro, "Synchro2Tarin");
CONVERT(range, "Range2Tarin");
CONVERT(usbl, "Usbl2Tarin");
CONVERT(platform, "Platform2Tarin");
CONVERT(odometer, "Odometer2Tarin");
CONVERT(depth, "Depth2Tarin");

} // namespace
