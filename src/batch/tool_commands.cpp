// The commands that run a tool: a converter, an export tool or the file updater.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "dialogs/export_tools.h"
#include "dialogs/file_updater.h"
#include "dialogs/import_tools.h"
#include "foundation/end_signals.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/project.h"

#include <algorithm>
#include <chrono>
#include <ostream>

namespace Batch {

using namespace Application_Tarvel;
using namespace Dialogue_Tarvel;
using namespace Outils_Configuration;
using Outils::CEndSignals;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToAbsolute;
using Outils_Fichiers::ToText;
using Outils_Texte::FormatText;

namespace {

constexpr std::string_view kOverwrite = "--overwrite", kSource = "--source", kAuto = "auto";

constexpr SSwitchRow kOverwriteOption{kOverwrite, ESwitchValue::none, "", EText::overwriteHelp};
constexpr SSwitchRow kSourceOption{kSource, ESwitchValue::text, "FILE", EText::exportSourceHelp};

std::vector<SSwitchRow> JoinOptions(std::span<const SToolField> fields,
                                    std::initializer_list<SSwitchRow> own) {
    auto options = MakeOptions(fields);
    options.insert(options.end(), own);
    return options;
}

// Every field at its default, so that a script does the same on every desk; only the programs are those of
// the settings.
class CToolSettings final : public CTrvCnfConfigFile {
  public:
    explicit CToolSettings(const CTrvCnfConfigFile& settings) {
        for (std::size_t row = 0; row < std::size(kSchema); ++row)
            if (kSchema[row].section == "process" || kSchema[row].section == "general/utcSearch")
                GetValue(SKey{row}).SetString(settings.GetValue(SKey{row}).GetString());
    }
};

// Hands the messages of a tool to the report of the command.
class CToolReport final : public IToolDialogListener {
  public:
    explicit CToolReport(IReport& report) : m_report(report) {}
    void OnToolMessage(int level, const std::string& text) override { m_report.ReportLine(level, text); }
    void Report(const CToolDialog& dialog) {
        if (dialog.GetProgress() <= m_lastPercent) return;
        m_lastPercent = dialog.GetProgress();
        m_report.ReportProgress(m_lastPercent);
    }

  private:
    IReport& m_report;
    int m_lastPercent = 0;
};

// The lines of the application, until a tool runs: what its dialog writes into the output panel then is in
// the report of the command.
class CLinesBefore final : public IReport {
  public:
    explicit CLinesBefore(std::ostream& out) : m_lines(out) {}
    void ReportLine(int level, std::string_view text) override {
        if (!m_isRunning) m_lines.ReportLine(level, text);
    }
    void ReportProgress(int) override {}
    void SetRunning() { m_isRunning = true; }

  private:
    CLineReport m_lines;
    bool m_isRunning = false;
};

// What every command of a tool works with.
struct SBench {
    explicit SBench(SStreams streams, const COptions& options, bool expert = true)
        : signals({SIGHUP, SIGINT, SIGTERM, SIGPIPE}),
          report(streams.out, options.GetForm()),
          before(streams.error),
          session(streams, before),
          settings(session.GetConfiguration()),
          services{session.GetHost(), settings, session.GetDocument().GetFileLooks(), adaptors, expert} {
        adaptors.Configure(settings);
    }

    const CEndSignals signals;
    CRunReport report;
    CLinesBefore before;
    CSession session;
    CToolSettings settings;
    Outils_Valeurs::CTrvAdaptors adaptors;
    const SToolServices services;
};

// Sets the fields that the options name. Throws CUsageError for an option that the format does not have, and
// for a value that the field refuses.
void SetFields(CToolDialog& dialog, const COptions& options, std::span<const SToolField> rows,
               std::string_view format) {
    const CToolFields& fields = dialog.GetFields();
    const auto belongs = [&](const SToolField& row) { return (row.formats >> fields.GetFormat() & 1u) != 0; };
    const auto set = [&](int field, std::string_view value) {
        const SToolField& row = rows[static_cast<std::size_t>(field)];
        if (dialog.Write(field, value).empty()) return;
        throw CUsageError(EText::noOptionValue,
                          {row.option, value, ListWords(fields.GetWords(field), std::identity())});
    };
    for (const SToolField& option : rows) {
        const auto value = option.option.empty() ? std::nullopt : options.Get(option.option);
        if (!value) continue;
        const auto row = std::ranges::find_if(
            rows, [&](const SToolField& own) { return own.option == option.option && belongs(own); });
        if (row == rows.end()) throw CUsageError(EText::noOptionOfFormat, {option.option, format});
        const int field = static_cast<int>(row - rows.begin());
        // "--trackColor" says that there is a track.
        if (row->with.field > 2 && !row->with.word.starts_with('!')) set(row->with.field, row->with.word);
        const bool isFile = row->kind == EFieldKind::path;
        set(field, isFile ? ToText(ToAbsolute(FromText(*value))) : *value);
        if (!dialog.IsShown(field)) throw CUsageError(EText::noOptionOfFormat, {option.option, format});
    }
}

// Whether the command may make the target; reports why not.
bool MayMake(const std::string& target, const COptions& options, SStreams streams) {
    return options.Has(kOverwrite) ? FindTargetPath(target, streams).has_value()
                                   : FindFreePath(target, streams).has_value();
}

// Runs the tool to its end; a signal stops it.
int RunTool(CToolDialog& dialog, SBench& bench, SStreams streams) {
    CToolReport report(bench.report);
    dialog.SetListener(&report);
    bench.before.SetRunning();
    if (!dialog.Start()) {
        dialog.SetListener(nullptr);
        return exitFailure;
    }
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kPatience(6); // a second request this late ends a tool that is frozen
    std::optional<Clock::time_point> nextRequest;
    while (dialog.IsRunning()) {
        dialog.Wait(std::chrono::milliseconds(50));
        report.Report(dialog);
        if (bench.signals.Take() == 0 && !(nextRequest && Clock::now() > *nextRequest)) continue;
        dialog.Cancel();
        nextRequest = Clock::now() + kPatience;
    }
    dialog.SetListener(nullptr);
    if (dialog.GetOutcome() == EOutcome::done && dialog.GetEnd().IsSuccess()) return exitSuccess;
    if (!dialog.GetFailure().empty() && dialog.HasEnded()) FailWith(dialog.GetFailure(), streams);
    return exitFailure;
}

ERawFormat FindImportFormat(const std::string& word, const std::string& source, SStreams streams,
                            bool& found) {
    const auto formats = GetImportFormats();
    if (!Outils_Texte::EqualsNoCase(word, kAuto)) {
        const auto row = FindNoCase(formats, &SImportFormat::word, word);
        if (!row)
            throw CUsageError(EText::unknownToolFormat, {word, ListWords(formats, &SImportFormat::word)});
        found = true;
        return static_cast<ERawFormat>(*row);
    }
    Outils_Valeurs::CTrvAdaptors adaptors;
    ConfigureAdaptors(adaptors);
    const SDataFileKind kind = ClassifyDataFile(FromText(source), adaptors.GetDateTime());
    found = kind.kind == EDataFileKind::raw;
    const bool isPackets = kind.kind == EDataFileKind::packets || kind.kind == EDataFileKind::outdatedPackets;
    if (!found)
        FailWith(FormatText(isPackets ? EText::alreadyPackets : EText::formatNotDetected, {source}), streams);
    return kind.format;
}

// A packet file by itself, as the only source.
std::optional<SExportProject> MakeSingleSource(const std::string& path, SStreams streams) {
    const auto open = OpenFile(path, streams);
    if (!open.file) return std::nullopt;
    const bool isResult = open.kind == Persistance_Xpf::EFileKind::tarout;
    SExportSource source{ToAbsolute(FromText(path)), isResult ? "output" : "input", path, isResult, {}, {}};
    for (const auto& channel : open.file->GetChannels()) source.channels.emplace_back(channel->GetName());
    return SExportProject{{source}};
}

// "result" and "main" in the place of the words of the dialog, or the name of a file.
std::string FindSource(const SExportProject& project, const std::string& wanted) {
    for (const SExportSource& source : project.sources) {
        const std::string role = source.word == "input" ? "main" : source.isResult ? "result" : source.word;
        if (Outils_Texte::EqualsNoCase(wanted, role) || Outils_Texte::EqualsNoCase(wanted, source.word) ||
            wanted == ToText(source.path.filename()) ||
            Outils_Fichiers::SamePath(ToAbsolute(FromText(wanted)), source.path))
            return source.word;
    }
    throw CUsageError(EText::sourceNotInProject, {wanted, ListWords(project.sources, &SExportSource::shown)});
}

} // namespace

std::span<const SSwitchRow> GetImportOptions() {
    static const auto options = JoinOptions(GetImportFields(), {kOverwriteOption, kJson});
    return options;
}

std::span<const SSwitchRow> GetExportOptions() {
    static const auto options = JoinOptions(GetExportFields(), {kSourceOption, kOverwriteOption, kJson});
    return options;
}

std::span<const SSwitchRow> GetUpdateOptions() {
    static const auto options = JoinOptions(GetUpdateFields(), {kJson});
    return options;
}

int ImportCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const std::string& target = arguments.back();
    std::vector<std::filesystem::path> sources;
    for (auto source = arguments.begin() + 1; source != arguments.end() - 1; ++source) {
        if (!CheckFile(*source, FindFileFault, streams)) return exitFailure;
        sources.push_back(ToAbsolute(FromText(*source)));
    }
    bool found = false;
    const ERawFormat format = FindImportFormat(arguments[0], arguments[1], streams, found);
    if (!found || !MayMake(target, options, streams)) return exitFailure;
    // What is for experts takes effect only when the line names it.
    const auto rows = GetImportFields();
    const bool expert = std::ranges::any_of(
        rows, [&](const SToolField& row) { return row.expertOnly && options.Has(row.option); });
    SBench bench(streams, options, expert);
    CTrvSimpleImporterDlg dialog(bench.services, format, sources);
    dialog.WritePaths(static_cast<int>(EImportField::target), {FromText(target)});
    SetFields(dialog, options, rows, GetImportFormats()[static_cast<std::size_t>(format)].word);
    return RunTool(dialog, bench, streams);
}

int ExportCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const auto formats = GetExportFormats();
    const auto format = FindNoCase(formats, &SExportFormat::word, arguments[0]);
    if (!format)
        throw CUsageError(EText::unknownToolFormat, {arguments[0], ListWords(formats, &SExportFormat::word)});
    SBench bench(streams, options);
    std::optional<SExportProject> project;
    std::string source;
    if (FindProjectFault(FromText(arguments[1])) == EText::none) {
        if (!bench.session.Open(arguments[1])) return exitFailure;
        project = GetExportProject(*bench.session.GetDocument().GetProject()->simulationParameters);
        source = FindSource(*project, options.Get(kSource).value_or("result"));
    } else {
        project = MakeSingleSource(arguments[1], streams);
        if (!project) return exitFailure;
        source = FindSource(*project, options.Get(kSource).value_or(project->sources.front().word));
    }
    if (!MayMake(arguments[2], options, streams)) return exitFailure;
    CTrvSimpleExporterDlg dialog(bench.services, *project, [](const auto&) { return true; });
    const auto write = [&](EExportField field, std::string_view text) {
        dialog.Write(static_cast<int>(field), text);
    };
    write(EExportField::format, formats[*format].word);
    write(EExportField::source, source);
    dialog.WritePaths(static_cast<int>(EExportField::target), {FromText(arguments[2])});
    SetFields(dialog, options, GetExportFields(), formats[*format].word);
    return RunTool(dialog, bench, streams);
}

int UpdateCommand(const COptions& options, SStreams streams) {
    std::vector<std::filesystem::path> files;
    for (const std::string& file : options.GetArguments()) {
        if (!CheckFile(file, FindFileFault, streams)) return exitFailure;
        files.push_back(ToAbsolute(FromText(file)));
    }
    SBench bench(streams, options);
    CTrvFileUpdaterDlg dialog(bench.services, files);
    SetFields(dialog, options, GetUpdateFields(), "packets");
    return RunTool(dialog, bench, streams);
}

} // namespace Batch
