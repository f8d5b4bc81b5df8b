#include "dialogs/project_dialogs.h"

#include "config/config_file.h"
#include "document/automatic_sensors.h"
#include "document/project_creation.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "values/adaptors.h"

#include <algorithm>

namespace Dialogue_Tarvel {

using Outils_Configuration::Cnf;
using Outils_Fichiers::ToAbsolute;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;
using std::filesystem::file_type;

using Metier_Tarvel::ESensorKind;

namespace {

constexpr std::string_view kProjectExtension = ".tarprj";

int GetMaximum(ESensorKind kind) { return Metier_Tarvel::GetSensorKind(kind).maximum; }

} // namespace

bool CProjectDialog::OnOK(EProjectField& focus) {
    if (!CheckFiles(focus) || !CheckPlace(focus)) return false;
    focus = EProjectField::files;
    if (!PrepareFiles()) return false;
    focus = EProjectField::name;
    if (!AgreeToOverwrite()) return false;
    const CWaitCursor wait(m_host);
    m_project = MakeProject(focus);
    return m_project != nullptr;
}

std::filesystem::path CProjectDialog::GetProjectPath() const {
    const std::string name = std::string(projectName).append(kProjectExtension);
    return ToAbsolute(projectFolder / Outils_Fichiers::FromText(name));
}

bool CProjectDialog::CheckPlace(EProjectField& focus) {
    focus = EProjectField::name;
    if (projectName.empty()) return Refuse(EText::enterValue);
    focus = EProjectField::folder;
    switch (FindType(projectFolder)) {
    case file_type::directory:
        return IsWritable(projectFolder) ||
               Refuse(FormatText(EText::folderReadOnly, {ToText(projectFolder)}));
    case file_type::none: return false;
    case file_type::not_found: return Refuse(EText::folderNotFound);
    default: return Refuse(EText::notAFolder);
    }
}

bool CProjectDialog::AgreeToOverwrite() {
    const file_type type = FindType(GetProjectPath());
    return type == file_type::not_found || (type != file_type::none && Ask(EText::overwriteProject));
}

file_type CProjectDialog::FindType(const std::filesystem::path& path) {
    const auto type = LookInto([path](const Outils::CEvent&) {
        std::error_code error;
        return std::filesystem::status(path, error).type();
    });
    if (type.value_or(file_type::none) != file_type::none) return *type;
    Refuse(FormatText(EText::fileNotReadable, {ToText(path)}));
    return file_type::none;
}

bool CProjectDialog::IsWritable(const std::filesystem::path& folder) {
    return LookInto([folder](const Outils::CEvent&) { return Outils_Fichiers::CanWriteInto(folder); })
        .value_or(false);
}

bool CProjectDialog::CheckExists(const std::filesystem::path& path) {
    const file_type type = FindType(path);
    return type != file_type::none && (type != file_type::not_found || Refuse(EText::fileNotFound));
}

bool CProjectDialog::Refuse(std::string message) {
    m_host.ShowMessage(message, EButtons::ok, EIcon::exclamation);
    return false;
}

bool CProjectDialog::Refuse(EText text) { return Refuse(std::string(GetText(text))); }

bool CProjectDialog::Ask(EText question) {
    return m_host.ShowMessage(std::string(GetText(question)), EButtons::okCancel, EIcon::question) ==
           EAnswer::ok;
}

void CNewProjectWizard::ChooseInputFiles(const std::vector<std::filesystem::path>& files) {
    m_inputFiles.clear();
    for (const auto& file : files) m_inputFiles.push_back(ToAbsolute(file));
    if (m_inputFiles.empty()) return;
    projectName = ToText(m_inputFiles[0].stem());
    projectFolder = m_inputFiles[0].parent_path();
    StartSurvey();
}

CNewProjectWizard::~CNewProjectWizard() {
    m_looks.Forget(&m_findings);
    m_looks.Forget(&m_channelsKnown);
}

void CNewProjectWizard::Survey(std::function<void()> onFound) {
    m_onFound = std::move(onFound);
    StartSurvey();
}

void CNewProjectWizard::StartSurvey() {
    m_looks.Forget(&m_findings);
    m_looks.Forget(&m_channelsKnown);
    m_findings = {};
    m_channelsKnown = false;
    if (!m_onFound || m_inputFiles.empty()) return;
    m_findings.isBusy = true;
    const auto path = m_inputFiles[0];
    const int most = m_configuration.Get(Cnf<"general/utcSearch/maxPacketCount">);
    m_looks.Ask(
        &m_findings,
        [path, most](const Outils::CEvent& cancel) { return SurveyRecording(path, most, cancel); },
        [this, path](SRecordingSurvey found) {
            m_findings.recording = std::move(found);
            m_findings.isBusy = m_findings.recording.isRecording;
            if (m_findings.isBusy)
                m_looks.Ask(
                    &m_channelsKnown,
                    [path](const Outils::CEvent& cancel) { return SurveyChannels(path, cancel); },
                    [this](std::vector<SSurveyedChannel> channels) {
                        TakeChannels(std::move(channels));
                        m_onFound();
                    });
            m_onFound();
        });
    m_onFound();
}

void CNewProjectWizard::TakeChannels(std::vector<SSurveyedChannel> channels) {
    m_channelsKnown = true;
    m_findings.isBusy = false;
    m_findings.channels = std::move(channels);
    for (const SSurveyedChannel& channel : m_findings.channels)
        if (channel.kind)
            m_findings.offers.push_back({channel, CountTaken(*channel.kind) < GetMaximum(*channel.kind)});
}

int CNewProjectWizard::CountTaken(ESensorKind kind) const {
    return static_cast<int>(std::ranges::count_if(m_findings.offers, [kind](const SOffer& offer) {
        return offer.isTaken && offer.channel.kind == kind;
    }));
}

void CNewProjectWizard::Take(std::size_t offer, bool isTaken) {
    auto& offers = m_findings.offers;
    offers[offer].isTaken = isTaken;
    const ESensorKind kind = *offers[offer].channel.kind;
    if (CountTaken(kind) <= GetMaximum(kind)) return;
    const auto first = std::ranges::find_if(offers, [&](const SOffer& other) {
        return &other != &offers[offer] && other.isTaken && other.channel.kind == kind;
    });
    if (first != offers.end()) first->isTaken = false;
}

std::vector<CNewProjectWizard::SFindingRow> CNewProjectWizard::DescribeFindings() const {
    const auto text = [](EText id) { return std::string(GetText(id)); };
    if (m_inputFiles.empty()) return {{text(EText::wizardHint), {}, {}}};
    const auto& recording = m_findings.recording;
    if (!recording.isRecording)
        return {{text(m_findings.isBusy ? EText::surveyBusy : EText::surveyNone), {}, {}}};
    Outils_Valeurs::CTrvAdaptors adaptors;
    adaptors.Configure(m_configuration);
    const auto show = [&adaptors](CDateTimeSpan date) {
        std::string shown;
        adaptors.GetDateTimeSpan().ValueToText(date, shown);
        return shown;
    };
    std::vector<SFindingRow> rows;
    rows.push_back({text(EText::equipment),
                    recording.equipment.empty() ? text(EText::surveyNoInertial) : recording.equipment,
                    {}});
    if (recording.first && recording.last)
        rows.push_back({text(EText::surveyPeriod),
                        FormatText(EText::surveyPeriodValue, {show(*recording.first), show(*recording.last),
                                                              show(*recording.last - *recording.first)}),
                        {}});
    std::string utc = text(EText::surveyNoUtc);
    if (recording.utcOrigin.IsValid()) adaptors.GetDateTime().ValueToText(recording.utcOrigin, utc);
    rows.push_back({text(EText::surveyUtc), utc, {}});
    std::size_t offer = 0;
    for (const SSurveyedChannel& channel : m_findings.channels)
        rows.push_back({channel.name,
                        FormatText(EText::surveyChannelValue, {std::to_string(channel.packets),
                                                               show(channel.first), show(channel.last)}),
                        channel.kind ? std::optional(offer++) : std::nullopt});
    if (m_findings.isBusy) rows.push_back({text(EText::surveyBusy), {}, {}});
    return rows;
}

// A channel that the configuration file of the INS has given its sensor keeps that.
void CNewProjectWizard::AddSensors(CTrvProject& project) const {
    auto& run = *project.simulationParameters;
    for (const SOffer& offer : m_findings.offers)
        if (offer.isTaken) AddSensorOn(run, *run.mainInputFile, offer.channel.id);
}

std::string CNewProjectWizard::GetInputLine() const {
    std::string line;
    for (const auto& file : m_inputFiles) {
        const std::string text = ToText(file);
        const std::string_view quote = text.find(' ') == std::string::npos ? "" : "\"";
        line.append(line.empty() ? "" : " ").append(quote).append(text).append(quote);
    }
    return line;
}

bool CNewProjectWizard::CheckFiles(EProjectField& focus) {
    focus = EProjectField::files;
    if (m_inputFiles.empty()) return Refuse(EText::enterValue);
    for (const auto& file : m_inputFiles)
        if (!CheckExists(file)) return false;
    focus = EProjectField::configurationFile;
    return insConfigurationFile.empty() || CheckExists(insConfigurationFile);
}

bool CNewProjectWizard::PrepareFiles() {
    const auto adaptors = std::make_shared<Outils_Valeurs::CTrvAdaptors>();
    adaptors->Configure(m_configuration);
    std::vector<SDataFileKind> kinds;
    for (const auto& file : m_inputFiles) {
        const auto kind = LookInto([file, adaptors](const Outils::CEvent&) {
            return ClassifyDataFile(file, adaptors->GetDateTime());
        });
        kinds.push_back(kind.value_or(SDataFileKind()));
        if (kinds.back().kind == EDataFileKind::unreadable)
            return Refuse(FormatText(EText::unknownFileType, {ToText(file)}));
    }
    const auto isRaw = [](const SDataFileKind& kind, ERawFormat format) {
        return kind.kind == EDataFileKind::raw && kind.format == format;
    };
    const auto isRawIns = [&](const SDataFileKind& kind) { return isRaw(kind, ERawFormat::rawIns); };
    if (kinds.size() > 1 && !std::all_of(kinds.begin(), kinds.end(), isRawIns))
        return Refuse(EText::onlyRawFilesTogether);

    const SDataFileKind& kind = kinds[0];
    if (kind.kind == EDataFileKind::packets) return true;
    if (kind.kind == EDataFileKind::outdatedPackets)
        return Ask(EText::upgradeDataFile) && m_host.UpdateDataFile(m_inputFiles[0]) == EOutcome::done;
    if (isRawIns(kind) || isRaw(kind, ERawFormat::decodedIns)) return Convert(kind.format);
    return Ask(EText::unrecognizedRecording) && Convert(ERawFormat::rawIns);
}

bool CNewProjectWizard::Convert(ERawFormat format) {
    if (!Ask(EText::convertDataFile)) return false;
    std::filesystem::path converted;
    if (m_host.ConvertRawFiles(m_inputFiles, format, converted) != EOutcome::done) return false;
    m_inputFiles = {ToAbsolute(converted)};
    StartSurvey();
    // A converter reports its failure only in its output.
    return CheckExists(m_inputFiles[0]);
}

std::unique_ptr<CTrvProject> CNewProjectWizard::MakeProject(EProjectField& focus) {
    using Outils_Configuration::EGpsAltitudeMode;
    const bool ellipsoidal =
        m_configuration.Get(Cnf<"general/gpsAltitudeMode">) == EGpsAltitudeMode::ellipsoid;
    struct SMade {
        std::unique_ptr<CTrvProject> project;
        EText failure = EText::fileNotReadable;
    };
    const SNewProject wanted{m_inputFiles[0], GetProjectPath(), insConfigurationFile, ellipsoidal};
    SMade made = LookInto([wanted](const Outils::CEvent& cancel) {
                     SMade built;
                     built.project = BuildProject(wanted, built.failure, &cancel);
                     return built;
                 }).value_or(SMade());
    if (!made.project) {
        focus = made.failure == EText::insConfigurationFailed ? EProjectField::configurationFile
                                                              : EProjectField::files;
        Refuse(FormatText(made.failure, {ToText(wanted.recording)}));
        return nullptr;
    }
    if (m_onFound && !m_channelsKnown) {
        // The user did not wait, or the recording has just been converted: what its first part holds.
        auto channels = LookInto(
            [path = wanted.recording](const Outils::CEvent& cancel) { return SurveyChannels(path, cancel); });
        if (channels) TakeChannels(std::move(*channels));
    }
    AddSensors(*made.project);
    return std::move(made.project);
}

bool CNewFromBatchParametersDlg::Load(const std::filesystem::path& commandFile) {
    std::string message;
    if (!m_creation.Load(commandFile, message)) return Refuse(message);
    projectName = m_creation.GetProposedName();
    projectFolder = m_creation.GetProposedFolder();
    return true;
}

std::unique_ptr<CTrvProject> CNewFromBatchParametersDlg::MakeProject(EProjectField& focus) {
    focus = EProjectField::files;
    const auto recordings = LookInto(
        [files = m_creation.GetFiles(), most = m_configuration.Get(Cnf<"general/utcSearch/maxPacketCount">)](
            const Outils::CEvent& cancel) { return CBatchCreation::LookInto(files, most, &cancel); });
    std::string message(GetText(EText::noEquipment));
    auto project = recordings ? m_creation.Create(*recordings, message) : nullptr;
    if (!project) Refuse(message);
    return project;
}

} // namespace Dialogue_Tarvel
