#include "dialogs/choosers.h"

#include "foundation/paths.h"

namespace Dialogue_Tarvel {

using namespace Metier_Tarvel;
using Outils_Fichiers::ToText;

namespace {

EDataFileRole RoleOf(const CTrvSimulationParameters& parameters, const CTrvDataFile* file) {
    if (file == parameters.mainInputFile.get()) return EDataFileRole::mainInput;
    return file == parameters.outputFile.get() ? EDataFileRole::output : EDataFileRole::external;
}

} // namespace

CDataFileChooser::CDataFileChooser(const CTrvSimulationParameters& parameters,
                                   std::optional<std::size_t> selection) {
    for (CTrvDataFile* file : parameters.GetDataFiles())
        m_rows.push_back({RoleOf(parameters, file), ToText(file->path.filename()),
                          ToText(file->path.parent_path()), file});
    Select(selection);
}

CDataFileChannelChooser::CDataFileChannelChooser(const CTrvSimulationParameters& parameters,
                                                 const CTrvSensor& sensor) {
    for (const CTrvDataFile* file : parameters.GetDataFiles()) {
        // The engine cannot draw on what it writes.
        if (RoleOf(parameters, file) == EDataFileRole::output) continue;
        for (const auto& channel : file->channels) {
            if (channel->sensorClass != sensor.GetRuntimeClass().name) continue;
            if (channel.get() == sensor.channel) m_selection = m_rows.size();
            m_rows.push_back({channel->name, ToText(file->path.filename()), channel.get()});
        }
    }
}

} // namespace Dialogue_Tarvel
