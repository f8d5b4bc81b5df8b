#include "convert/conversion.h"

#include "common/target_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Conversion {
namespace {

namespace fs = std::filesystem;
using Compagnon::CTargetFile;

struct SFiles {
    std::vector<fs::path> sources;
    fs::path target;
};

// Sources and target of the command line; false without a target.
bool TakeFiles(const SConverter& converter, const CArguments& arguments, SFiles& files) {
    for (const std::string& file : arguments.GetFiles())
        files.sources.push_back(Outils_Fichiers::FromText(file));
    if (converter.manySources && arguments.Has("/o")) {
        files.target = Outils_Fichiers::FromText(arguments.GetText("/o"));
    } else {
        files.target = files.sources.back();
        files.sources.pop_back();
    }
    if (converter.sortsSources && arguments.GetWord("/sort", 1) == 0)
        std::ranges::sort(files.sources, {}, [](const fs::path& path) { return path.filename(); });
    return !files.sources.empty();
}

// One file or all of them by name.
std::string NameSources(std::span<const fs::path> sources) {
    std::string names;
    for (const fs::path& path : sources) names += (names.empty() ? "" : ", ") + Outils_Fichiers::ToText(path);
    return names;
}

struct SOutcome {
    ERunEnd end = ERunEnd::failed;
    std::uint64_t written = 0;
};

// Reads the source once or, as long as the reader or the sink asks for it, again.
SOutcome Read(const SConverter& converter, const CArguments& arguments, const SFiles& files,
              CByteSource& source, const fs::path& path, IRunMonitor& monitor, CFaultCounter& faults) {
    CNotes notes(monitor);
    SLearnt learnt;
    for (ChannelSet channels;;) {
        faults = CFaultCounter();
        source.Rewind();
        CRecordSink sink(path, converter.dates, channels, faults);
        SConversion conversion{arguments, files.sources, source, sink, faults, notes, learnt};
        const bool readable = converter.read(conversion);
        const auto fail = [&](EText text, const fs::path& file) {
            monitor.Report(ELevel::error, text, {Outils_Fichiers::ToText(file)});
            return SOutcome{ERunEnd::failed, 0};
        };
        if (source.IsStopped()) {
            monitor.Report(ELevel::information, EText::convertStopped);
            return {ERunEnd::stopped, 0};
        }
        if (source.IsFailed()) return fail(EText::convertUnreadable, source.GetCurrentPath());
        if (!readable) return {};
        const bool taken = conversion.startAgain || sink.Finish();
        channels = sink.GetChannels();
        if (!taken || sink.IsFailed()) return fail(EText::targetNotWritable, files.target);
        if (!conversion.startAgain && !sink.MustRestart()) return {ERunEnd::finished, sink.GetCount()};
    }
}

} // namespace

ERunEnd Convert(const SConverter& converter, const CArguments& arguments, IRunMonitor& monitor) {
    SFiles files;
    const auto fail = [&](EText text, const std::string& argument) {
        monitor.Report(ELevel::error, text, {argument});
        return ERunEnd::failed;
    };
    if (!TakeFiles(converter, arguments, files)) return fail(EText::convertNoTarget, {});
    CByteSource source(monitor);
    if (!source.Open(files.sources))
        return fail(EText::convertUnreadable, Outils_Fichiers::ToText(source.GetCurrentPath()));
    CTargetFile target;
    const EText refusal = target.Open(files.target, files.sources);
    if (refusal != EText::none) return fail(refusal, Outils_Fichiers::ToText(files.target));

    CFaultCounter faults;
    const SOutcome outcome = Read(converter, arguments, files, source, target.GetPath(), monitor, faults);
    if (outcome.end == ERunEnd::stopped) return outcome.end;
    faults.Report(monitor, converter.places);
    if (outcome.end != ERunEnd::finished) return outcome.end;
    if (outcome.written == 0) return fail(EText::convertNothing, NameSources(files.sources));
    if (!target.Commit()) return fail(EText::targetNotWritable, Outils_Fichiers::ToText(files.target));
    monitor.Report(ELevel::information, EText::convertSummary,
                   {std::to_string(outcome.written + faults.GetCount()), std::to_string(outcome.written),
                    std::to_string(faults.GetCount())});
    monitor.Progress(100.0);
    return ERunEnd::finished;
}

namespace {

// A run is a plain function: one for each row.
template <std::size_t Row>
ERunEnd ConvertRow(const CArguments& arguments, IRunMonitor& monitor) {
    return Convert(GetConverters()[Row], arguments, monitor);
}

constexpr auto kRuns = []<std::size_t... Row>(std::index_sequence<Row...>) {
    return std::array{&ConvertRow<Row>...};
}
(std::make_index_sequence<kConverterCount>());

} // namespace

Compagnon::SProgram MakeProgram(const SConverter& converter) {
    constexpr std::size_t kMostSources = 1000;
    const bool many = converter.manySources;
    const auto row = static_cast<std::size_t>(&converter - GetConverters().data());
    return {converter.program,
            converter.purpose,
            many ? "SOURCE... [TARGET]" : "SOURCE TARGET",
            many ? std::size_t{1} : std::size_t{2},
            many ? kMostSources : std::size_t{2},
            converter.switches,
            Compagnon::EDialect::tool,
            true,
            kRuns[row]};
}

} // namespace Conversion
