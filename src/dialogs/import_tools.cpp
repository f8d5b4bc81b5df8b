#include "dialogs/import_tools.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "processing/command_switches.h"
#include "values/date_time_adaptor.h"

#include <algorithm>

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;
using namespace Communication_Processus;
using namespace Outils_Configuration;
using Outils_Fichiers::ToText;

namespace {

constexpr SImportFormat kImportFormats[] = {
    {"nmea", EText::formatGpsNmea, Cnf<"process/nmea2Tarin">},
    {"kolt", EText::formatKolt, Cnf<"process/kolt2Tarin">},
    {"novatel", EText::formatNovatel, Cnf<"process/novatel2Tarin">},
    {"ins", EText::formatRawPostProcessing, Cnf<"process/postProNelixDecode">, true},
    {"pd6", EText::formatRdiText, Cnf<"process/pd6Rdi2Tarin">},
    {"decoded", EText::formatDecodedPostProcessing, Cnf<"process/decodedNelix2Tarin">},
    {"synchro", EText::formatSynchronization, Cnf<"process/synchro2Tarin">},
    {"range", EText::formatLbl, Cnf<"process/range2Tarin">},
    {"usbl", EText::formatUsblText, Cnf<"process/usbl2Tarin">},
    {"platform", EText::formatPlatform, Cnf<"process/platform2Tarin">},
    {"odometer", EText::formatOdometerText, Cnf<"process/odometer2Tarin">},
    {"depth", EText::formatDepthText, Cnf<"process/depth2Tarin">},
};
static_assert(std::size(kImportFormats) == static_cast<std::size_t>(ERawFormat::depth) + 1);

constexpr unsigned kNmea = In(ERawFormat::nmea);
constexpr unsigned kKolt = In(ERawFormat::kolt);
constexpr unsigned kRawIns = In(ERawFormat::rawIns);
constexpr unsigned kDecoded = In(ERawFormat::decodedIns);

// clang-format off
constexpr SToolField kImportFields[] = {
    {.kind = EFieldKind::word, .title = EText::formatField, .help = EText::helpImportFormat},
    {.kind = EFieldKind::paths, .title = EText::sourceFilesField, .help = EText::helpSourceFiles},
    {.kind = EFieldKind::target, .title = EText::targetFileField, .help = EText::helpTargetFile},
    {EFieldKind::word, EText::checksumField, kNmea, "--verifyChecksum", "no|yes", EText::checksumIgnore,
     Cnf<"simpleImporter/nmea/verifyChecksum">, {}, true},
    {EFieldKind::integer, EText::beaconField, kKolt, "--beacon", "", EText::none,
     Cnf<"simpleImporter/kolt/beaconNumber">},
    {EFieldKind::word, EText::insTypeField, kDecoded, "--e", "1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|19",
     EText::equipmentInsModel1, Cnf<"simpleImporter/decodedNelix/equipmentType">},
    {EFieldKind::date, EText::dateField, kRawIns, "--utc", "", EText::none,
     Cnf<"simpleImporter/postproNelix/date">},
    {EFieldKind::date, EText::dateField, kDecoded, "--utc", "", EText::none,
     Cnf<"simpleImporter/decodedNelix/date">},
    {EFieldKind::integer, EText::skipField, kRawIns, "--skip", "", EText::none,
     Cnf<"simpleImporter/postproNelix/skip">},
    {EFieldKind::integer, EText::stopAtField, kRawIns, "--stop", "", EText::none,
     Cnf<"simpleImporter/postproNelix/stopAt">},
    {EFieldKind::word, EText::cipheredField, kRawIns, "--decipher", "no|yes", EText::choiceNo,
     Cnf<"simpleImporter/postproNelix/decipher">},
    {EFieldKind::word, EText::sortField, kRawIns, "--sort", "none|alpha", EText::choiceNo,
     Cnf<"simpleImporter/postproNelix/sort">},
    {EFieldKind::word, EText::driftField, kRawIns, "--ccd", "auto|off|on", EText::driftAutomatic,
     Cnf<"simpleImporter/postproNelix/insClockDriftCompensation">, {}, true},
    {EFieldKind::integer, EText::clockCycleField, kDecoded, "--cycle", "", EText::none,
     Cnf<"simpleImporter/decodedNelix/clockCycle">},
    {EFieldKind::word, EText::imuOffsetField, kDecoded, "--imu5msOffset", "no|yes", EText::choiceNo,
     Cnf<"simpleImporter/decodedNelix/imu5msOffset">},
};
// clang-format on
static_assert(std::size(kImportFields) == static_cast<std::size_t>(EImportField::count));

constexpr int ToInt(EImportField field) { return static_cast<int>(field); }

// What switches and checks are made of.
struct SImport {
    const CToolFields& fields;
    bool expert;
    std::vector<std::filesystem::path> sources;
    std::filesystem::path target;
    bool isTargetOfProject = false;
    SToolFiles files{};

    bool Has(EImportField field) const { return fields.Applies(ToInt(field)); }
    const std::string& Get(EImportField field) const { return fields.Get(ToInt(field)); }
    std::optional<int> GetInt(EImportField field) const { return fields.GetInt(ToInt(field)); }
    bool Is(ERawFormat format) const { return fields.GetFormat() == static_cast<int>(format); }
};
using Values = std::vector<std::string>;

Values Always(const SImport&) { return {""}; }
template <EImportField field>
Values Word(const SImport& import) {
    return import.Has(field) ? Values{import.Get(field)} : Values();
}
template <EImportField field>
Values Number(const SImport& import) {
    return import.Has(field) ? Values{std::to_string(import.GetInt(field).value_or(0))} : Values();
}
template <EImportField field>
Values NumberAboveZero(const SImport& import) {
    const auto number = import.GetInt(field).value_or(0);
    return import.Has(field) && number != 0 ? Values{std::to_string(number)} : Values();
}
template <EImportField field>
Values IfSeveral(const SImport& import) {
    return import.sources.size() > 1 ? Word<field>(import) : Values();
}
// Without expert mode the switch is left out, or has the value that is safe for everybody.
template <EImportField field>
Values ForExperts(const SImport& import) {
    return import.expert ? Word<field>(import) : Values();
}
Values Checksum(const SImport& import) {
    if (!import.Has(EImportField::checksum)) return {};
    return {import.expert ? import.Get(EImportField::checksum) : "yes"};
}

Outils_Valeurs::CDateTimeAdaptor MakeDayAdaptor() {
    Outils_Valeurs::CDateTimeAdaptor dates;
    dates.notation = EDateNotation::yearMonthDay;
    dates.showTime = false;
    dates.dateSeparator = u'-';
    return dates;
}
// "2026-03-01"; empty for a text that is no date.
std::string ReadDate(const SImport& import) {
    const auto field = import.Is(ERawFormat::rawIns) ? EImportField::date : EImportField::decodedDate;
    const auto dates = MakeDayAdaptor();
    auto date = Outils_Temps::CDateTime::Invalid();
    std::string text;
    if (!dates.TextToValue(import.Get(field), date) || !dates.ValueToText(date, text)) return {};
    return text;
}
Values Date(const SImport& import) {
    const bool has = import.Has(EImportField::date) || import.Has(EImportField::decodedDate);
    return has ? Values{ReadDate(import)} : Values();
}

using EArg = EArgument;
constexpr SCommandSwitch<SImport> kImportSwitches[] = {
    {"/remote", EArg::flag, Always},
    {"/verifyChecksum", EArg::word, Checksum},
    {"/beacon", EArg::word, Number<EImportField::beacon>},
    {"/f", EArg::word,
     [](const SImport& i) { return i.Is(ERawFormat::rawIns) ? Values{"tarin"} : Values(); }},
    {"/e", EArg::word, Word<EImportField::equipment>},
    {"/utc", EArg::word, Date},
    {"/skip", EArg::word, NumberAboveZero<EImportField::skip>},
    {"/stop", EArg::word, NumberAboveZero<EImportField::stopAt>},
    {"/decipher", EArg::word, Word<EImportField::decipher>},
    {"/sort", EArg::word, IfSeveral<EImportField::sort>},
    {"/ccd", EArg::word, ForExperts<EImportField::clockDrift>},
    {"/cycle", EArg::word, Number<EImportField::clockCycle>},
    {"/imu5msOffset", EArg::word, Word<EImportField::imuOffset>},
    {"", EArg::quotedIfNeeded,
     [](const SImport& i) {
         Values sources;
         for (const auto& source : i.sources) sources.push_back(ToText(source));
         return sources;
     }},
    {"/o", EArg::flag, [](const SImport& i) { return i.Is(ERawFormat::rawIns) ? Always(i) : Values(); }},
    {"", EArg::quoted, [](const SImport& i) { return Values{ToText(i.target)}; }},
};

template <EImportField field, int least, int most = std::numeric_limits<int>::max()>
bool IsWithin(const SImport& import) {
    const auto number = import.GetInt(field);
    return !import.Has(field) || (number && *number >= least && *number <= most);
}

constexpr SToolCheck<SImport> kImportChecks[] = {
    {EText::beaconRange, ToInt(EImportField::beacon), IsWithin<EImportField::beacon, 1, 127>},
    {EText::toolPositiveInteger, ToInt(EImportField::skip), IsWithin<EImportField::skip, 0>},
    {EText::toolPositiveInteger, ToInt(EImportField::stopAt), IsWithin<EImportField::stopAt, 0>},
    {EText::clockCyclePositive, ToInt(EImportField::clockCycle), IsWithin<EImportField::clockCycle, 1>},
    {EText::toolValidDate, ToInt(EImportField::date),
     [](const SImport& i) { return !i.Is(ERawFormat::rawIns) || !ReadDate(i).empty(); }},
    {EText::toolValidDate, ToInt(EImportField::decodedDate),
     [](const SImport& i) { return !i.Is(ERawFormat::decodedIns) || !ReadDate(i).empty(); }},
    {EText::toolSourceMissing, ToInt(EImportField::sources),
     [](const SImport& i) { return i.files.sourcesExist; }},
    {EText::toolOneSource, ToInt(EImportField::sources),
     [](const SImport& i) {
         return i.sources.size() == 1 ||
                kImportFormats[static_cast<std::size_t>(i.fields.GetFormat())].takesSeveral;
     }},
    {EText::toolTargetEmpty, ToInt(EImportField::target), [](const SImport& i) { return !i.target.empty(); }},
    {EText::toolTargetIsFolder, ToInt(EImportField::target),
     [](const SImport& i) { return !i.files.targetIsFolder; }},
    {EText::toolTargetIsSource, ToInt(EImportField::target),
     [](const SImport& i) { return !i.files.targetIsSource; }},
    {EText::toolTargetOfProject, ToInt(EImportField::target),
     [](const SImport& i) { return !i.isTargetOfProject; }},
    {EText::toolFolderReadOnly, ToInt(EImportField::target),
     [](const SImport& i) { return i.files.folderIsWritable; }},
    {EText::toolTargetIsOpen, ToInt(EImportField::target),
     [](const SImport& i) { return !i.files.targetIsOpen; }},
    {EText::toolTargetExists, ToInt(EImportField::target),
     [](const SImport& i) { return !i.files.targetExists; }, ECheck::question},
    {EText::stopBeforeSkip, ToInt(EImportField::stopAt),
     [](const SImport& i) {
         const int stop = i.GetInt(EImportField::stopAt).value_or(0);
         return !i.Has(EImportField::stopAt) || stop == 0 || stop > i.GetInt(EImportField::skip).value_or(0);
     }},
};

constexpr std::string_view kPacketExtension = ".tarin";

} // namespace

std::span<const SImportFormat> GetImportFormats() { return kImportFormats; }
std::span<const SToolField> GetImportFields() { return kImportFields; }

CTrvSimpleImporterDlg::CTrvSimpleImporterDlg(const SToolServices& services, ERawFormat format,
                                             const std::vector<std::filesystem::path>& sources,
                                             std::vector<std::filesystem::path> projectFiles)
    : CToolDialog(EToolKind::importer, services, kImportFields), m_projectFiles(std::move(projectFiles)) {
    std::vector<SFieldWord> formats;
    for (const SImportFormat& row : kImportFormats)
        formats.push_back({std::string(row.word), std::string(Outils_Texte::GetText(row.name))});
    m_fields.SetWords(ToInt(EImportField::format), formats);
    m_fields.Load(services.configuration);
    static_cast<void>(
        m_fields.Set(ToInt(EImportField::format), kImportFormats[static_cast<std::size_t>(format)].word));
    m_fields.SetPaths(ToInt(EImportField::sources), sources);
    ProposeTarget();
    MakeRows();
}

EText CTrvSimpleImporterDlg::GetTitle() const { return EText::importTitle; }

CToolDialog::SSizeKeys CTrvSimpleImporterDlg::GetSizeKeys() const {
    return {Cnf<"simpleImporter/width">, Cnf<"simpleImporter/height">,
            Cnf<"simpleImporter/firstColumnWidth">};
}

std::vector<std::filesystem::path> CTrvSimpleImporterDlg::GetSources() const {
    return m_fields.GetPaths(ToInt(EImportField::sources));
}

std::filesystem::path CTrvSimpleImporterDlg::GetTarget() const {
    return m_fields.GetPath(ToInt(EImportField::target));
}

std::string CTrvSimpleImporterDlg::GetProgram() const {
    return ResolveProgram(kImportFormats[static_cast<std::size_t>(m_fields.GetFormat())].program);
}

std::string CTrvSimpleImporterDlg::GetCommandLine() const {
    return MakeCommandLine(GetProgram(), kImportSwitches,
                           SImport{m_fields, m_services.expertMode, GetSources(), GetTarget()});
}

bool CTrvSimpleImporterDlg::Check() {
    SImport import{m_fields, m_services.expertMode, GetSources(), GetTarget()};
    const auto files = Look(import.sources, import.target);
    if (!files) return false;
    import.files = *files;
    import.isTargetOfProject = std::ranges::any_of(
        m_projectFiles, [&](const auto& file) { return Outils_Fichiers::SamePath(file, import.target);
});
return CheckAll<SImport>(kImportChecks, import);
} // namespace Dialogue_Tarvel

void CTrvSimpleImporterDlg::ProposeTarget() {
    const auto sources = GetSources();
    if (m_targetIsChosen || sources.empty()) return;
    auto target = Outils_Fichiers::WithExtension(sources.front(), kPacketExtension);
    // A log has often the name of the recording beside which it was made, which no habit may cost.
    const auto isTaken = [&target](const auto& file) { return Outils_Fichiers::SamePath(file, target); };
    const auto files = m_services.looks.Call(
        [sources, target](const Outils::CEvent&) { return LookAtFiles(sources, target); },
        GetTimeForChosenFile(m_services.configuration));
    if ((files && (files->targetExists || files->targetIsSource)) ||
        std::ranges::any_of(m_projectFiles, isTaken))
        (target = sources.front()) += kPacketExtension;
    m_fields.SetPaths(ToInt(EImportField::target), {target});
}

void CTrvSimpleImporterDlg::OnWritten(int field) {
    if (field == ToInt(EImportField::target)) m_targetIsChosen = true;
    if (field == ToInt(EImportField::sources)) ProposeTarget();
}

SPathQuestion CTrvSimpleImporterDlg::GetQuestion(int field) const {
    auto question = CToolDialog::GetQuestion(field);
    if (field == ToInt(EImportField::sources)) {
        question.kind = EPathKind::openSeveral;
        question.filter = EText::dataFileFilter;
    } else {
        question.kind = EPathKind::saveUnasked;
        question.filter = EText::batchInputFilter;
        question.extension = kPacketExtension.substr(1);
    }
    return question;
}

// A conversion that made no file is for the caller to report: it knows what the file was for.
bool CTrvSimpleImporterDlg::OnEnded(EOutcome& outcome, std::string& failure) {
    const auto target = GetTarget();
    if (outcome == EOutcome::cancelled) {
        RemoveFile(target);
        return false;
    }
    std::error_code error;
    if (!std::filesystem::exists(target, error)) {
        outcome = EOutcome::failed;
        failure = DescribeEnd();
        if (failure.empty())
            failure = Outils_Texte::FormatText(EText::toolNoTarget, {GetProgram(), ToText(target)});
    }
    return true;
}

} // namespace Dialogue_Tarvel
