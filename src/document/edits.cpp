#include "document/edits.h"

namespace Application_Tarvel {

bool CTrvDocumentEdits::ChangeSimulationParameters(const SSimulationValues& values) {
    CTrvProject* project = m_document.GetProject();
    return project && Run<CTrvActChangeSimulationParameters>(*project->simulationParameters, values);
}

bool CTrvDocumentEdits::ChangeStdDevInstruction(Edits::CTrvStdDevInstruction& instruction,
                                                const SStdDevValues& values) {
    return RunByKind<CTrvActChangeDvlStdDevInstruction, CTrvActChangeGpsStdDevInstruction,
                     CTrvActChangeUsblStdDevInstruction, CTrvActChangeDepthStdDevInstruction,
                     CTrvActChangeLblStdDevInstruction, CTrvActChangeEMLogStdDevInstruction,
                     CTrvActChangeOdometerStdDevInstruction>(instruction, values);
}

CTrvDocumentEdits CTrvDocument::GetEdits() { return CTrvDocumentEdits(*this); }

} // namespace Application_Tarvel
