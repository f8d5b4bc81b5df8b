#include "dialogs/batch_creation.h"

#include "dataaccess/data_file_analyzer.h"
#include "document/project_creation.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/imu_channel.h"
#include "xpf/file.h"

#include <algorithm>

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Outils_Fichiers::ToAbsolute;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;
using Persistance_Parametres::SParameterFileRow;

namespace {

// Shifts the external files whose UTC is known onto the clock of the main input file, the first of `dates`.
// False when that leaves the range of times.
bool ShiftExternalFiles(CTrvSimulationParameters& parameters, const std::vector<CDateTime>& dates) {
    for (std::size_t i = 0; i < parameters.externalFiles.size(); ++i) {
        const Outils_Temps::CDateTimeSpan shift = dates[i + 1] - dates.front();
        if (!shift.IsValid()) continue;
        CDateTime& timeOffset = parameters.externalFiles[i]->timeOffset;
        const auto shifted = ToSpan(timeOffset) + shift;
        if (!shifted.IsValid()) return false;
        timeOffset = ToStoredTime(shifted);
    }
    return true;
}

} // namespace

bool CBatchCreation::Load(const std::filesystem::path& commandFile, std::string& message) {
    const bool loaded = m_reader.Load(commandFile);
    m_files = m_reader.GetFiles();
    m_commandFile = ToAbsolute(commandFile);
    m_name = ToText(m_commandFile.stem());
    m_folder = m_commandFile.parent_path();
    if (!loaded) message = std::string(GetText(EText::batchFileCorrupted));
    return loaded;
}

bool CBatchCreation::ChooseFile(std::string_view id, const std::filesystem::path& path) {
    const auto row =
        std::find_if(m_files.begin(), m_files.end(), [id](const auto& file) { return file.id == id; });
    if (row == m_files.end()) return false;
    row->path = ToAbsolute(path);
    return true;
}

CBatchCreation::SRecordings CBatchCreation::LookInto(const std::vector<SParameterFileRow>& files,
                                                     int maxPacketCount, const Outils::CEvent* interrupt) {
    SRecordings recordings;
    for (const SParameterFileRow& file : files) {
        if (file.isOutput) continue;
        const bool opened =
            Persistance_Xpf::OpenXpfFile(file.path, Persistance_Xpf::EFileKind::tarin, interrupt).how ==
            Persistance_Xpf::EOpening::opened;
        if (opened) {
            std::int32_t equipment = 0;
            if (recordings.origins.empty() &&
                Metier_Tarvel::ReadImuEquipment(file.path, equipment, interrupt))
                recordings.equipment = equipment;
            recordings.origins.push_back(FindUtcOrigin(file.path, maxPacketCount, interrupt));
        }
        // A search that gave up does not know whether the file has a date.
        if (!opened || (interrupt && interrupt->IsSet())) {
            recordings.unreadable = file.path;
            break;
        }
    }
    return recordings;
}

std::unique_ptr<CTrvProject> CBatchCreation::Create(const SRecordings& recordings,
                                                    std::string& message) const {
    message = std::string(GetText(EText::batchFileCorrupted)); // when nothing is loaded
    if (!recordings.unreadable.empty())
        message = FormatText(EText::noSynchronization, {ToText(recordings.unreadable)});
    const std::vector<CDateTime>& dates = recordings.origins;
    if (dates.empty() || !recordings.unreadable.empty()) return nullptr;
    Persistance_Parametres::CChosenPaths chosen;
    for (const SParameterFileRow& file : m_files) chosen[file.id] = file.path;

    auto parameters = m_reader.Read(chosen, dates.front());
    if (!parameters || !ShiftExternalFiles(*parameters, dates)) {
        message = FormatText(EText::batchFileNotRead, {ToText(m_commandFile)});
        return nullptr;
    }
    if (Outils_Fichiers::SamePath(parameters->mainInputFile->path, parameters->outputFile->path)) {
        message = std::string(GetText(EText::dataFileReferenced));
        return nullptr;
    }
    auto project = std::make_unique<CTrvProject>(std::move(parameters));
    if (!recordings.equipment) {
        message = std::string(GetText(EText::noEquipment));
        return nullptr;
    }
    project->simulationParameters->nelixConfiguration->type->SetFromEquipment(*recordings.equipment);
    return project;
}

} // namespace Application_Tarvel
