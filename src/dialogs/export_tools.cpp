#include "dialogs/export_tools.h"

#include "config/config_file.h"
#include "dialogs/color_text.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/simulation_parameters.h"
#include "model/simulation_time_adaptor.h"
#include "processing/command_switches.h"
#include "values/adaptors.h"

#include <algorithm>

namespace Dialogue_Tarvel {

using namespace Application_Tarvel;
using namespace Communication_Processus;
using namespace Outils_Configuration;
using Outils_Fichiers::ToText;
using Outils_Temps::CDateTimeSpan;
using Outils_Texte::FormatFixed;
using Outils_Texte::GetText;

namespace {

constexpr SExportFormat kExportFormats[] = {
    {"txt", EText::formatTxt, Cnf<"process/tarin2Txt">, Cnf<"process/tarout2Txt">, "csv"},
    {"kml", EText::formatKml, Cnf<"process/tarin2Kml">, Cnf<"process/tarout2Kml">, "kml"},
    {"geo", EText::formatGeo, Cnf<"process/tarin2Geo">, Cnf<"process/tarout2Geo">, "shp"},
    {"udt", EText::formatUdt, Cnf<"process/udtExporter">, Cnf<"process/udtExporter">, "txt"},
    {"sbet", EText::formatSbet, Cnf<"process/tarout2Sbet">, Cnf<"process/tarout2Sbet">, "out"},
};

struct SGeoFormat {
    std::string_view word, extension;
};
// In the order of the words of the field.
constexpr SGeoFormat kGeoFormats[] = {
    {"ESRI Shapefile", "shp"}, {"KML", "kml"}, {"GML", "gml"},          {"DXF", "dxf"},
    {"Geoconcept", "gxt"},     {"GMT", "gmt"}, {"MapInfo File", "tab"}, {"DGN", "dgn"},
};

constexpr std::string_view kNavigation = "NELIX_NAV"; // the navigation of the result

constexpr unsigned kTxt = In(EExportFormat::txt);
constexpr unsigned kKml = In(EExportFormat::kml);
constexpr unsigned kGeo = In(EExportFormat::geo);
constexpr unsigned kUdt = In(EExportFormat::udt);
constexpr unsigned kSbet = In(EExportFormat::sbet);
constexpr int ToInt(EExportField field) { return static_cast<int>(field); }

constexpr std::string_view kChannels = "GPS_1|GPS_2|GPS_3|USBL_1|USBL_2|USBL_3|NELIX_NAV";
constexpr std::string_view kOffOn = "off|on", kNoYes = "no|yes", kLeverArms = "0|1|2|3";
constexpr SFieldCondition kOfResult{ToInt(EExportField::source), "output"};
constexpr SFieldCondition kOfInput{ToInt(EExportField::source), "!output"};

constexpr SToolField Flag(EText title, unsigned formats, std::string_view option, std::string_view words,
                          SKey key, SFieldCondition with = {}) {
    return {EFieldKind::word, title, formats, option, words, EText::choiceNo, key, with};
}
constexpr SToolField LeverArm(unsigned formats, SKey key) {
    return {EFieldKind::word, EText::leverArmField, formats, "--lv", kLeverArms, EText::leverArmPrimary, key};
}
constexpr SToolField Channel(unsigned formats, SKey key) {
    return {EFieldKind::word, EText::channelField, formats, "--c", kChannels, EText::none, key};
}
constexpr SToolField TimeReference(unsigned formats, SKey key) {
    return {EFieldKind::word,  EText::timeReferenceField,      formats, "--time",
            "simulation|file", EText::timeReferenceSimulation, key,     kOfInput};
}
constexpr SToolField Decimate(unsigned formats, SKey key) {
    return Flag(EText::decimateField, formats, "--decimate", kOffOn, key);
}
constexpr SToolField Decimation(unsigned formats, SKey key, EExportField decimate) {
    return {EFieldKind::integer,    EText::decimationField, formats, "--dec", "", EText::none, key,
            {ToInt(decimate), "on"}};
}

// clang-format off
constexpr SToolField kExportFields[] = {
    {EFieldKind::word, EText::formatField, kAllFormats, "", "", EText::none, Cnf<"simpleExporter/general/idxFormat">},
    {EFieldKind::word, EText::sourceFileField, kAllFormats, "", "", EText::none, Cnf<"simpleExporter/general/idxSource">},
    {.kind = EFieldKind::target, .title = EText::targetFileField, .help = EText::helpTargetFile},
    Flag(EText::headerField, kTxt, "--header", kOffOn, Cnf<"simpleExporter/txt/printHeader">),
    Flag(EText::imuFramesField, kTxt, "--imu", kOffOn, Cnf<"simpleExporter/txt/outputImuFrames">, kOfResult),

    Channel(kKml, Cnf<"simpleExporter/kml/idxChannel">),
    Flag(EText::showTimeField, kKml, "--showTime", kOffOn, Cnf<"simpleExporter/kml/showTime">),
    TimeReference(kKml, Cnf<"simpleExporter/kml/fileTimeRefence">),
    Flag(EText::trackField, kKml, "--track", kOffOn, Cnf<"simpleExporter/kml/drawTrack">),
    {EFieldKind::color, EText::trackColorField, kKml, "--trackColor", "", EText::none,
     Cnf<"simpleExporter/kml/trackColor">, {ToInt(EExportField::track), "on"}},
    {EFieldKind::word, EText::pointColorModeField, kKml, "--pointColorMode", "user|auto", EText::pointColorUser,
     Cnf<"simpleExporter/kml/automaticPointColor">},
    {EFieldKind::color, EText::pointColorField, kKml, "--pointColor", "", EText::none,
     Cnf<"simpleExporter/kml/pointColor">, {ToInt(EExportField::pointColorMode), "user"}},
    LeverArm(kKml, Cnf<"simpleExporter/kml/leverArm">),
    Flag(EText::clampField, kKml, "--clampToGround", kOffOn, Cnf<"simpleExporter/kml/clampToGround">),
    {EFieldKind::real, EText::altitudeScaleField, kKml, "--asf", "", EText::none,
     Cnf<"simpleExporter/kml/altitudeScaleFactor">, {ToInt(EExportField::clamp), "off"}},
    {EFieldKind::real, EText::altitudeOffsetField, kKml, "--ao", "", EText::none,
     Cnf<"simpleExporter/kml/altitudeOffset">, {ToInt(EExportField::clamp), "off"}},
    Decimate(kKml, Cnf<"simpleExporter/kml/decimate">),
    Decimation(kKml, Cnf<"simpleExporter/kml/value">, EExportField::kmlDecimate),

    Channel(kGeo, Cnf<"simpleExporter/geo/idxChannel">),
    {EFieldKind::word, EText::geoFormatField, kGeo, "--f",
     "ESRI Shapefile|KML|GML|DXF|Geoconcept|GMT|MapInfo File|DGN", EText::none, Cnf<"simpleExporter/geo/idxFileFormat">},
    LeverArm(kGeo, Cnf<"simpleExporter/geo/leverArm">),
    TimeReference(kGeo, Cnf<"simpleExporter/geo/fileTimeRefence">),
    Flag(EText::geometryField, kGeo, "--25d", kNoYes, Cnf<"simpleExporter/geo/geometry25d">),
    Flag(EText::motionField, kGeo, "--motion", kNoYes, Cnf<"simpleExporter/geo/motion">),
    Flag(EText::speedField, kGeo, "--speed", kNoYes, Cnf<"simpleExporter/geo/speed">),
    Flag(EText::orientationField, kGeo, "--orientation", kNoYes, Cnf<"simpleExporter/geo/orientation">),
    Decimate(kGeo, Cnf<"simpleExporter/geo/decimate">),
    Decimation(kGeo, Cnf<"simpleExporter/geo/value">, EExportField::geoDecimate),

    {EFieldKind::path, EText::templateField, kUdt, "--t", "", EText::none, Cnf<"simpleExporter/udt/templatePath">},
    {.kind = EFieldKind::note, .title = EText::channelField, .formats = kUdt, .help = EText::helpTemplateChannel},

    LeverArm(kSbet, Cnf<"simpleExporter/sbet/leverArm">),
    {EFieldKind::word, EText::timestampField, kSbet, "--tr", "day|week", EText::timestampDay,
     Cnf<"simpleExporter/sbet/weekSeconds">},
    Flag(EText::accuracyField, kSbet, "--a", kNoYes, Cnf<"simpleExporter/sbet/outputAccuracyFile">),
    Decimate(kSbet, Cnf<"simpleExporter/sbet/decimate">),
    Decimation(kSbet, Cnf<"simpleExporter/sbet/value">, EExportField::sbetDecimate),

    {EFieldKind::time, EText::fromLabel, kAllFormats, "--from", "", EText::none, Cnf<"simpleExporter/period/from">},
    {EFieldKind::time, EText::toLabel, kAllFormats, "--to", "", EText::none, Cnf<"simpleExporter/period/to">},
    Flag(EText::openAtEndField, kAllFormats, "", kNoYes, Cnf<"simpleExporter/general/openAtEnd">),
    Flag(EText::closeAtEndField, kAllFormats, "", kNoYes, Cnf<"simpleExporter/general/closeAtEnd">),
};
// clang-format on
static_assert(std::size(kExportFields) == static_cast<std::size_t>(EExportField::count));

// What switches and checks are made of.
struct SExport {
    const CToolFields& fields;
    const SExportSource& source;
    Outils_Temps::CDateTime utcReference; // invalid when the project has none
    std::filesystem::path target;
    bool isTargetOfProject = false;
    SToolFiles files{};

    bool Has(EExportField field) const { return fields.Applies(ToInt(field)); }
    const std::string& Get(EExportField field) const { return fields.Get(ToInt(field)); }
    bool Is(EExportFormat format) const { return fields.GetFormat() == static_cast<int>(format); }
    bool HasSimulationTime() const {
        return (Has(EExportField::kmlTime) && Get(EExportField::kmlTime) == "simulation") ||
               (Has(EExportField::geoTime) && Get(EExportField::geoTime) == "simulation");
    }
};
using Values = std::vector<std::string>;

Values Always(const SExport&) { return {""}; }
template <EExportField field>
Values Word(const SExport& e) {
    return e.Has(field) ? Values{e.Get(field)} : Values();
}
template <EExportField field>
Values Number(const SExport& e) {
    return e.Has(field) ? Values{std::to_string(e.fields.GetInt(ToInt(field)).value_or(0))} : Values();
}
template <EExportField field>
Values Real(const SExport& e) {
    return e.Has(field) ? Values{FormatFixed(e.fields.GetReal(ToInt(field)), 6)} : Values();
}
template <EExportField field>
Values Color(const SExport& e) {
    return e.Has(field) ? Values{e.Get(field).substr(1)} : Values(); // without the "#"
}
template <EExportField field>
Values IfYes(const SExport& e) {
    return e.Has(field) && e.Get(field) == "yes" ? Values{""} : Values();
}
template <EExportField field>
Values IfOff(const SExport& e) {
    return e.Has(field) && e.Get(field) == "off" ? Values{"off"} : Values();
}
template <EExportField field>
Values Seconds(const SExport& e) {
    return e.Get(field).empty() ? Values() : Values{FormatFixed(e.fields.GetReal(ToInt(field)), 3)};
}
Values Offset(const SExport& e) {
    return e.HasSimulationTime() ? Values{FormatFixed(e.source.timeOffset.GetTotalSeconds(), 7)} : Values();
}
Values Utc(const SExport& e) {
    Outils_Valeurs::CDateTimeAdaptor dates;
    dates.notation = EDateNotation::yearMonthDay;
    dates.dateSeparator = u'-';
    dates.timeSeparator = u'T';
    dates.precision = 7;
    std::string text;
    const bool has = e.HasSimulationTime() && e.utcReference.IsValid();
    return has && dates.ValueToText(e.utcReference, text) ? Values{text} : Values();
}

using EArg = EArgument;
constexpr SCommandSwitch<SExport> kExportSwitches[] = {
    {"/remote", EArg::flag, Always},
    {"/c", EArg::word, Word<EExportField::kmlChannel>},
    {"/c", EArg::word, Word<EExportField::geoChannel>},
    {"/showTime", EArg::word, Word<EExportField::showTime>},
    {"/lv", EArg::word, Word<EExportField::geoLeverArm>},
    {"/f", EArg::quotedIfNeeded, Word<EExportField::geoFormat>},
    {"/toffset", EArg::word, Offset},
    {"/utc", EArg::word, Utc},
    {"/track", EArg::word, Word<EExportField::track>},
    {"/trackColor", EArg::word, Color<EExportField::trackColor>},
    {"/pointColor", EArg::word, Color<EExportField::pointColor>},
    {"/lv", EArg::word, Word<EExportField::kmlLeverArm>},
    {"/clampToGround", EArg::word, IfOff<EExportField::clamp>},
    {"/asf", EArg::word, Real<EExportField::altitudeScale>},
    {"/ao", EArg::word, Real<EExportField::altitudeOffset>},
    {"/25d", EArg::word, Word<EExportField::geometry>},
    {"/motion", EArg::word, Word<EExportField::motion>},
    {"/speed", EArg::word, Word<EExportField::speed>},
    {"/orientation", EArg::word, Word<EExportField::orientation>},
    {"/t", EArg::quoted, Word<EExportField::exportTemplate>},
    {"/lv", EArg::word, Word<EExportField::sbetLeverArm>},
    {"/tr", EArg::word, Word<EExportField::timestamp>},
    {"/a", EArg::flag, IfYes<EExportField::accuracy>},
    {"/dec", EArg::word, Number<EExportField::kmlDecimation>},
    {"/dec", EArg::word, Number<EExportField::geoDecimation>},
    {"/dec", EArg::word, Number<EExportField::sbetDecimation>},
    {"/header", EArg::word, Word<EExportField::header>},
    {"/imu", EArg::word, Word<EExportField::imuFrames>},
    {"/from", EArg::word, Seconds<EExportField::from>},
    {"/to", EArg::word, Seconds<EExportField::to>},
    {"", EArg::quoted, [](const SExport& e) { return Values{ToText(e.source.path)}; }},
    {"", EArg::quoted, [](const SExport& e) { return Values{ToText(e.target)}; }},
};

template <EExportField field>
bool IsPositive(const SExport& e) {
    const auto number = e.fields.GetInt(ToInt(field));
    return !e.Has(field) || (number && *number > 0);
}
bool HasChannel(const SExport& e) {
    return !(e.Has(EExportField::kmlChannel) && e.Get(EExportField::kmlChannel).empty()) &&
           !(e.Has(EExportField::geoChannel) && e.Get(EExportField::geoChannel).empty());
}

constexpr SToolCheck<SExport> kExportChecks[] = {
    {EText::toolTemplateMissing, ToInt(EExportField::exportTemplate),
     [](const SExport& e) { return !e.Is(EExportFormat::udt) || e.files.templateExists; }},
    {EText::sbetOfResult, ToInt(EExportField::source),
     [](const SExport& e) { return !e.Is(EExportFormat::sbet) || e.source.isResult; }},
    {EText::toolResultMissing, ToInt(EExportField::source),
     [](const SExport& e) { return !e.source.isResult || e.files.sourcesExist; }},
    {EText::toolSourceMissing, ToInt(EExportField::source),
     [](const SExport& e) { return e.files.sourcesExist; }},
    {EText::toolNoChannel, ToInt(EExportField::source), HasChannel},
    {EText::toolTargetEmpty, ToInt(EExportField::target), [](const SExport& e) { return !e.target.empty(); }},
    {EText::toolTargetIsFolder, ToInt(EExportField::target),
     [](const SExport& e) { return !e.files.targetIsFolder; }},
    {EText::toolTargetIsSource, ToInt(EExportField::target),
     [](const SExport& e) { return !e.files.targetIsSource; }},
    {EText::toolTargetOfProject, ToInt(EExportField::target),
     [](const SExport& e) { return !e.isTargetOfProject; }},
    {EText::toolFolderReadOnly, ToInt(EExportField::target),
     [](const SExport& e) { return e.files.folderIsWritable; }},
    {EText::toolTargetIsOpen, ToInt(EExportField::target),
     [](const SExport& e) { return !e.files.targetIsOpen; }},
    {EText::toolTargetExists, ToInt(EExportField::target),
     [](const SExport& e) { return !e.files.targetExists; }, ECheck::question},
    {EText::decimationPositive, ToInt(EExportField::kmlDecimation), IsPositive<EExportField::kmlDecimation>},
    {EText::decimationPositive, ToInt(EExportField::geoDecimation), IsPositive<EExportField::geoDecimation>},
    {EText::decimationPositive, ToInt(EExportField::sbetDecimation),
     IsPositive<EExportField::sbetDecimation>},
};

} // namespace

std::span<const SExportFormat> GetExportFormats() { return kExportFormats; }
std::span<const SToolField> GetExportFields() { return kExportFields; }

CTrvSimpleExporterDlg::CTrvSimpleExporterDlg(const SToolServices& services, SExportProject project,
                                             COpenFile openFile)
    : CToolDialog(EToolKind::exporter, services, kExportFields),
      m_project(std::move(project)),
      m_openFile(std::move(openFile)) {
    std::vector<SFieldWord> formats, sources;
    for (const SExportFormat& row : kExportFormats)
        formats.push_back({std::string(row.word), std::string(GetText(row.name))});
    for (const SExportSource& row : m_project.sources) sources.push_back({row.word, row.shown});
    m_fields.SetWords(ToInt(EExportField::format), formats);
    m_fields.SetWords(ToInt(EExportField::source), sources);
    m_fields.Load(services.configuration);
    OfferChannels();
    TakeTemplate();
    ProposeTarget();
    MakeRows();
}

EText CTrvSimpleExporterDlg::GetTitle() const { return EText::exportTitle; }

CToolDialog::SSizeKeys CTrvSimpleExporterDlg::GetSizeKeys() const {
    return {Cnf<"simpleExporter/width">, Cnf<"simpleExporter/height">,
            Cnf<"simpleExporter/firstColumnWidth">};
}

const SExportSource& CTrvSimpleExporterDlg::GetSource() const {
    const int choice = m_fields.GetChoice(ToInt(EExportField::source));
    return m_project.sources[static_cast<std::size_t>(std::max(0, choice))];
}

std::filesystem::path CTrvSimpleExporterDlg::GetTarget() const {
    return m_fields.GetPath(ToInt(EExportField::target));
}

std::string CTrvSimpleExporterDlg::GetProgram() const {
    const SExportFormat& row = kExportFormats[static_cast<std::size_t>(m_fields.GetFormat())];
    return ResolveProgram(GetSource().isResult ? row.programOfResult : row.program);
}

std::string CTrvSimpleExporterDlg::GetCommandLine() const {
    const auto* parameters = m_project.parameters;
    return MakeCommandLine(GetProgram(), kExportSwitches,
                           SExport{m_fields, GetSource(),
                                   parameters && parameters->hasUtcReference
                                       ? parameters->utcReference
                                       : Outils_Temps::CDateTime::Invalid(),
                                   GetTarget()});
}

bool CTrvSimpleExporterDlg::Check() {
    SExport made{m_fields, GetSource(), {}, GetTarget()};
    const auto files =
        Look({made.source.path}, made.target, m_fields.GetPath(ToInt(EExportField::exportTemplate)));
    if (!files) return false;
    made.files = *files;
    made.isTargetOfProject = std::ranges::any_of(m_project.sources, [&](const SExportSource& row) {
        return Outils_Fichiers::SamePath(row.path, made.target);
    });
    if (!CheckAll<SExport>(kExportChecks, made)) return false;
    m_services.configuration.Set(Cnf<"simpleExporter/general/targetFolder">,
                                 ToText(made.target.parent_path()));
    return true;
}

// Of an input file its own channels with positions, of the result its navigation.
void CTrvSimpleExporterDlg::OfferChannels() {
    const SExportSource& present = GetSource();
    for (const auto field : {EExportField::kmlChannel, EExportField::geoChannel}) {
        std::vector<SFieldWord> offered;
        for (std::size_t begin = 0; begin < kChannels.size();) {
            const std::size_t end = std::min(kChannels.find('|', begin), kChannels.size());
            const std::string name(kChannels.substr(begin, end - begin));
            const bool has = present.isResult
                                 ? name == kNavigation
                                 : std::ranges::find(present.channels, name) != present.channels.end();
            if (has) offered.push_back({name, name});
            begin = end + 1;
        }
        const std::string before = m_fields.Get(ToInt(field));
        m_fields.SetWords(ToInt(field), offered);
        if (m_fields.Get(ToInt(field)) != before) static_cast<void>(m_fields.Set(ToInt(field), kNavigation));
    }
}

void CTrvSimpleExporterDlg::TakeTemplate() {
    const auto path = m_fields.GetPath(ToInt(EExportField::exportTemplate));
    const STemplateMetadata metadata =
        path.empty() ? STemplateMetadata()
                     : m_services.looks
                           .Call([path](const Outils::CEvent&) { return ReadTemplateMetadata(path); },
                                 GetTimeForChosenFile(m_services.configuration))
                           .value_or(STemplateMetadata());
    m_templateExtension = metadata.extension;
    if (metadata.channel.empty()) return;
    for (const auto field :
         {EExportField::templateChannel, EExportField::kmlChannel, EExportField::geoChannel})
        static_cast<void>(m_fields.Set(ToInt(field), metadata.channel));
}

void CTrvSimpleExporterDlg::ProposeTarget() {
    if (m_targetIsChosen) return;
    std::string extension(kExportFormats[static_cast<std::size_t>(m_fields.GetFormat())].extension);
    if (m_fields.GetFormat() == static_cast<int>(EExportFormat::geo))
        extension = kGeoFormats[static_cast<std::size_t>(m_fields.GetChoice(ToInt(EExportField::geoFormat)))]
                        .extension;
    if (m_fields.GetFormat() == static_cast<int>(EExportFormat::udt) && !m_templateExtension.empty())
        extension = m_templateExtension;
    const auto& path = GetSource().path;
    const std::string kept = m_services.configuration.Get(Cnf<"simpleExporter/general/targetFolder">);
    const auto folder = kept.empty() ? path.parent_path() : Outils_Fichiers::FromText(kept);
    m_fields.SetPaths(ToInt(EExportField::target),
                      {folder / Outils_Fichiers::WithExtension(path.filename(), "." + extension)});
}

void CTrvSimpleExporterDlg::OnWritten(int field) {
    if (field == ToInt(EExportField::target)) m_targetIsChosen = true;
    if (field == ToInt(EExportField::source)) OfferChannels();
    if (field == ToInt(EExportField::exportTemplate)) TakeTemplate();
    if (field == ToInt(EExportField::source) || field == ToInt(EExportField::format) ||
        field == ToInt(EExportField::geoFormat) || field == ToInt(EExportField::exportTemplate))
        ProposeTarget();
}

std::string CTrvSimpleExporterDlg::Show(int field) const {
    const std::string& value = m_fields.Get(field);
    if (m_fields.GetRow(field).kind != EFieldKind::time || value.empty() || !m_project.parameters)
        return CToolDialog::Show(field);
    Metier_Tarvel::CTrvSimulationTimeAdaptor times(m_services.adaptors.GetDateTimeSpan(),
                                                   m_services.adaptors.GetDateTime());
    times.Configure(m_services.configuration);
    std::string text;
    times.ValueToText(Metier_Tarvel::ToStoredTime(CDateTimeSpan::FromSeconds(m_fields.GetReal(field))),
                      *m_project.parameters, text);
    return text;
}

std::string CTrvSimpleExporterDlg::Read(int field, std::string_view text, std::string& value) const {
    value = text;
    if (m_fields.GetRow(field).kind != EFieldKind::time || text.empty() || !m_project.parameters) return {};
    Metier_Tarvel::CTrvSimulationTimeAdaptor times(m_services.adaptors.GetDateTimeSpan(),
                                                   m_services.adaptors.GetDateTime());
    times.Configure(m_services.configuration);
    Outils_Temps::CDateTime time;
    // Any other text is a number of seconds, or refused as none.
    if (!times.TextToValue(text, *m_project.parameters, time)) return {};
    value = Outils_Texte::FormatShortest(Metier_Tarvel::ToSpan(time).GetTotalSeconds());
    return {};
}

SPathQuestion CTrvSimpleExporterDlg::GetQuestion(int field) const {
    auto question = CToolDialog::GetQuestion(field);
    if (field == ToInt(EExportField::exportTemplate)) {
        question.filter = EText::templateFilter;
    } else {
        question.kind = EPathKind::saveUnasked;
        question.extension = kExportFormats[static_cast<std::size_t>(m_fields.GetFormat())].extension;
    }
    return question;
}

bool CTrvSimpleExporterDlg::OnEnded(EOutcome& outcome, std::string& failure) {
    const auto made = GetTarget();
    std::error_code error;
    const bool succeeded = m_run.GetEnd().IsSuccess();
    if (outcome == EOutcome::cancelled) {
        if (!succeeded) RemoveFile(made);
        return false;
    }
    if (!succeeded && !std::filesystem::exists(made, error)) {
        outcome = EOutcome::failed;
        failure = DescribeEnd();
        m_services.host.ShowMessage(failure, EButtons::ok, EIcon::exclamation);
        return false; // what the tool has said stays in sight
    }
    if (m_fields.Is(ToInt(EExportField::openAtEnd), "yes") && !m_openFile(made))
        m_services.host.ShowMessage(std::string(GetText(EText::openResultFailed)), EButtons::ok,
                                    EIcon::exclamation);
    return m_fields.Is(ToInt(EExportField::closeAtEnd), "yes");
}

} // namespace Dialogue_Tarvel
