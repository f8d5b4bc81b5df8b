#include "document/recording_survey.h"

#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/file_scan.h"
#include "model/project.h"
#include "xpf/file.h"

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Persistance_Xpf::EFileKind;
using Persistance_Xpf::OpenXpfFile;

SRecordingSurvey SurveyRecording(const std::filesystem::path& path, int most, const Outils::CEvent& cancel) {
    SRecordingSurvey survey;
    survey.isRecording = OpenXpfFile(path, EFileKind::tarin, &cancel).file != nullptr;
    if (!survey.isRecording) return survey;
    const CTrvProject project(path, {});
    const CTrvSimulationParameters& run = *project.simulationParameters;
    if (std::int32_t code = 0; run.ReadEquipmentCode(code, &cancel)) {
        CTrvNelixType type;
        type.SetFromEquipment(code);
        survey.equipment = type.GetFieldText(CTrvNelixType::fieldEquipment);
    }
    if (CDateTimeSpan first, last; run.ReadTimeSpan(first, last, &cancel)) {
        survey.first = first;
        survey.last = last;
    }
    survey.utcOrigin = FindUtcOrigin(path, most, &cancel);
    return survey;
}

std::vector<SSurveyedChannel> SurveyChannels(const std::filesystem::path& path,
                                             const Outils::CEvent& cancel) {
    const auto file = OpenXpfFile(path, EFileKind::tarin, &cancel).file;
    if (!file) return {};
    CFileScan scan(*file, EFileKind::tarin, path);
    scan.Run();
    std::vector<SSurveyedChannel> channels;
    for (const auto& channel : file->GetChannels()) {
        const SChannelScan* found = scan.GetChannel(channel->GetNumber());
        if (!found) continue;
        const SSensorKind* kind =
            FindSensorKindOfChannel(static_cast<std::uint16_t>(channel->GetPacketType()));
        // The document adds these by itself as it meets their packets.
        const bool isChosen = kind && kind->kind != ESensorKind::eventMarker &&
                              kind->kind != ESensorKind::platformOrientation;
        channels.push_back({channel->GetNumber(), channel->GetName(),
                            isChosen ? std::optional(kind->kind) : std::nullopt, found->packets,
                            found->dates ? found->first : CDateTimeSpan(),
                            found->dates ? found->last : CDateTimeSpan()});
    }
    return channels;
}

} // namespace Application_Tarvel
