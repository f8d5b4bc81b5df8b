// The exporters and the updater against writing the same bytes: to a file beside, to the disk, and renamed.
#include "export/export_file.h"
#include "export/kml_export.h"
#include "export/sbet_export.h"
#include "export/template_export.h"
#include "export/text_export.h"
#include "foundation/files.h"
#include "recording/recording_writer.h"
#include "simulator/mission_writer.h"
#include "simulator/truth_writer.h"
#include "update/updater_program.h"
#include "xpf/records.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>

namespace {

using namespace Compagnon;
namespace fs = std::filesystem;

class CSilentMonitor final : public IRunMonitor {
    void Progress(double) override {}
    void Message(ELevel, EText, std::string_view) override {}
    bool GoOn() override { return true; }
};

// A mission of a ship and its result, made once: 2000 s, 100 packets a second in both.
class CFiles {
  public:
    CFiles() {
        Simulation::SMissionOptions options;
        options.duration = 2000;
        options.truthRate = 100;
        std::string error;
        fs::create_directory(folder);
        if (!Simulation::WriteMission(options, input, folder / "truth.csv", error)) std::abort();
        result = Simulation::GetTruthResultPath(folder / "truth.csv");
    }
    ~CFiles() { fs::remove_all(folder); }

    const fs::path folder = fs::temp_directory_path() / ("export_benchmark_" + std::to_string(::getpid()));
    const fs::path input = folder / "mission.tarin";
    fs::path result;
};
const CFiles& GetFiles() {
    static const CFiles files;
    return files;
}

double Measure(const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Writes so many bytes as the exporters write theirs.
void WritePlain(const fs::path& target, std::uintmax_t size) {
    static const std::string block(1 << 20, 'x');
    Exportation::CExportFile file;
    if (file.Open(target, {}) != Outils_Texte::kNoText) std::abort();
    for (std::uintmax_t done = 0; done < size; done += block.size())
        file.Write(std::string_view(block).substr(0, std::min<std::uintmax_t>(block.size(), size - done)));
    if (!file.Commit()) std::abort();
}

void RunProgramOn(benchmark::State& state, const SProgram& program, std::vector<std::string> words,
                  const std::vector<fs::path>& written) {
    CSilentMonitor monitor;
    CArguments arguments;
    std::string error;
    if (!arguments.Parse(program.switches, words, error)) return state.SkipWithError(error.c_str());
    double time = 0, plain = 0;
    std::uintmax_t bytes = 0;
    for (auto _ : state) {
        time += Measure([&] {
            if (program.run(arguments, monitor) != ERunEnd::finished) state.SkipWithError("it failed");
        });
        std::uintmax_t size = 0;
        for (const fs::path& file : written) size += fs::file_size(file);
        state.PauseTiming();
        plain += Measure([&] { WritePlain(GetFiles().folder / "plain", size); });
        bytes += size;
        state.ResumeTiming();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
    state.counters["ratio"] = time / plain;
}

void Text(benchmark::State& state) {
    const fs::path target = GetFiles().folder / "t.csv";
    RunProgramOn(state, Exportation::kResultToText, {GetFiles().result, target}, {target});
}
void Kml(benchmark::State& state) {
    const fs::path target = GetFiles().folder / "t.kml";
    RunProgramOn(state, Exportation::kResultToKml, {"/dec", "1", "/track", "on", GetFiles().result, target},
                 {target});
}
void Sbet(benchmark::State& state) {
    const fs::path target = GetFiles().folder / "t.out";
    RunProgramOn(state, Exportation::kResultToSbet, {GetFiles().result, target}, {target});
}
void SurveyLine(benchmark::State& state) {
    const fs::path target = GetFiles().folder / "t.txt";
    RunProgramOn(state, Exportation::kTemplateExporter,
                 {"/t", TEMPLATES "/survey_line.tarudt", GetFiles().result, target}, {target});
}

// A recording whose packets state the version before theirs.
void Update(benchmark::State& state) {
    using namespace Persistance_Xpf;
    auto former = Outils_Fichiers::ReadWholeFile(GetFiles().input, std::uint64_t{1} << 30);
    if (!former) return state.SkipWithError("no recording");
    std::size_t place = kFileHeaderSize + std::size_t{kChannelRecordSize} * (*former)[kChannelCountOffset];
    for (int i = 0; i < (*former)[kDefinitionCountOffset]; ++i) {
        if ((*former)[place + 2] > 1) --(*former)[place + 2];
        place += kDefinitionRecordSize + std::size_t{kFieldRecordSize} * (*former)[place + 6];
    }
    const fs::path target = GetFiles().folder / "former.tarin";
    CSilentMonitor monitor;
    CArguments arguments;
    std::string error;
    const std::vector<std::string> words{"/backup", "no", target};
    if (!arguments.Parse(MiseANiveau::kFileUpdater.switches, words, error)) return;
    double time = 0, plain = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Outils_Fichiers::WriteWholeFile(target, *former);
        plain += Measure([&] { WritePlain(GetFiles().folder / "plain", former->size()); });
        state.ResumeTiming();
        time += Measure([&] {
            if (MiseANiveau::kFileUpdater.run(arguments, monitor) != ERunEnd::finished)
                state.SkipWithError("it failed");
        });
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(former->size()));
    state.counters["ratio"] = time / plain;
}

BENCHMARK(Text)->Unit(benchmark::kMillisecond);
BENCHMARK(Kml)->Unit(benchmark::kMillisecond);
BENCHMARK(Sbet)->Unit(benchmark::kMillisecond);
BENCHMARK(SurveyLine)->Unit(benchmark::kMillisecond);
BENCHMARK(Update)->Unit(benchmark::kMillisecond);

} // namespace
