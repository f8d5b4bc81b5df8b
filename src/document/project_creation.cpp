#include "document/project_creation.h"

#include "dataaccess/format_detection.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/ins_web_configuration_file.h"
#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// Backward processing is for the equipment that starts its missions without an alignment.
bool IsBackwardEquipment(std::int32_t equipment) {
    return equipment == 13 || equipment == 14 || equipment == 15 || equipment == 18;
}

// Whether the recording can be the main input of a project; the message if not.
bool CheckRecording(const std::filesystem::path& path, std::string& message) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) {
        message = FormatText(EText::recordingNotFound, {ToText(path)});
        return false;
    }
    if (!IsXpfFile(path)) {
        message = FormatText(EText::unknownFileType, {ToText(path)});
        return false;
    }
    using Persistance_Xpf::EOpening;
    const EOpening how = Persistance_Xpf::OpenXpfFile(path, Persistance_Xpf::EFileKind::tarin).how;
    if (how == EOpening::opened) return true;
    message = FormatText(how == EOpening::outdated  ? EText::recordingOutdated
                         : how == EOpening::damaged ? EText::recordingDamaged
                                                    : EText::unknownFileType,
                         {ToText(path)});
    return false;
}

// A file that opens as an embedded configuration is never tried as an INI file.
bool ImportConfiguration(CTrvSimulationParameters& parameters, const std::filesystem::path& path) {
    CInsWebConfigurationFile web;
    return web.Open(path) ? parameters.ImportWebConfiguration(web) : parameters.ImportIniConfiguration(path);
}

} // namespace

std::unique_ptr<CTrvProject> CreateProject(const SNewProject& wanted, std::string& message) {
    if (!CheckRecording(wanted.recording, message)) return nullptr;
    EText failure = EText::none;
    auto project = BuildProject(wanted, failure);
    if (!project) message = FormatText(failure, {ToText(wanted.recording)});
    return project;
}

std::unique_ptr<CTrvProject> BuildProject(const SNewProject& wanted, EText& failure,
                                          const Outils::CEvent* interrupt) {
    const auto result = Outils_Fichiers::WithExtension(wanted.project, GetText(EText::outputExtension));
    if (Outils_Fichiers::SamePath(wanted.recording, result)) {
        failure = EText::dataFileReferenced;
        return nullptr;
    }
    if (!Outils_Fichiers::CanBeStored(wanted.recording) || !Outils_Fichiers::CanBeStored(result)) {
        failure = EText::nameNotStorable;
        return nullptr;
    }
    auto project = std::make_unique<CTrvProject>(wanted.recording, result);
    auto& parameters = *project->simulationParameters;

    if (!wanted.configuration.empty() && !ImportConfiguration(parameters, wanted.configuration)) {
        failure = EText::insConfigurationFailed;
        return nullptr;
    }
    const auto isGivenUp = [interrupt] { return interrupt && interrupt->IsSet(); };
    std::int32_t equipment = 0;
    if (!parameters.ReadEquipmentCode(equipment, interrupt)) {
        failure = isGivenUp() ? EText::fileNotReadable : EText::noEquipment;
        return nullptr;
    }
    parameters.gpsAltitudeReference = wanted.ellipsoidalGpsAltitude ? altitudeEllipsoid : altitudeGeoid;
    parameters.nelixConfiguration->type->SetFromEquipment(equipment);
    parameters.algorithm = IsBackwardEquipment(equipment) ? algorithmBackward : algorithmStandard;
    parameters.heaveAlgorithm = heaveKelvar;
    Outils_Temps::CDateTimeSpan first, last;
    if (parameters.ReadTimeSpan(first, last, interrupt)) {
        parameters.begin = ToStoredTime(first);
        parameters.end = ToStoredTime(last);
    } else if (isGivenUp()) {
        failure = EText::fileNotReadable; // its period may be there
        return nullptr;
    }
    return project;
}

} // namespace Application_Tarvel
