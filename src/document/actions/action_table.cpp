#include "document/actions/action_table.h"

#include "document/text_ids.h"

#include <iterator>

namespace Application_Tarvel {

namespace {

using enum EAction;

constexpr SActionRow kRows[] = {
    {addDataFile, "CTrvActAddDataFile", hintDataFileAdded, textDataFileFailed},
    {removeDataFile, "CTrvActRemoveDataFile", hintDataFileRemoved, textDataFileInUse},
    {addSensorGps, "CTrvActAddSensorGps", hintSensorAdded, textSensorFailed},
    {addSensorDvl, "CTrvActAddSensorDvl", hintSensorAdded, textSensorFailed},
    {addSensorEMLog, "CTrvActAddSensorEMLog", hintSensorAdded, textSensorFailed},
    {addSensorDepth, "CTrvActAddSensorDepth", hintSensorAdded, textSensorFailed},
    {addSensorUsbl, "CTrvActAddSensorUsbl", hintSensorAdded, textSensorFailed},
    {addSensorLbl, "CTrvActAddSensorLbl", hintSensorAdded, textSensorFailed},
    {addSensorOdometer, "CTrvActAddSensorOdometer", hintSensorAdded, textSensorFailed},
    {addSensorEventMarker, "CTrvActAddSensorEventMarker", hintSensorAdded, textSensorFailed},
    {addSensorPlatformOrientation, "CTrvActAddSensorPlatformOrientation", hintSensorAdded, textSensorFailed},
    {removeSensor, "CTrvActRemoveSensor", hintSensorRemoved},
    {changeSensorGps, "CTrvActChangeSensorGps", hintSensorChanged},
    {changeSensorDvl, "CTrvActChangeSensorDvl", hintSensorChanged},
    {changeSensorEMLog, "CTrvActChangeSensorEMLog", hintSensorChanged},
    {changeSensorDepth, "CTrvActChangeSensorDepth", hintSensorChanged},
    {changeSensorUsbl, "CTrvActChangeSensorUsbl", hintSensorChanged},
    {changeSensorLbl, "CTrvActChangeSensorLbl", hintSensorChanged},
    {changeSensorOdometer, "CTrvActChangeSensorOdometer", hintSensorChanged},
    {changeSensorEventMarker, "CTrvActChangeSensorEventMarker", hintSensorChanged},
    {changeSensorPlatformOrientation, "CTrvActChangeSensorPlatformOrientation", hintSensorChanged},
    {changeSensorTimeOffset, "CTrvActChangeSensorTimeOffset", hintSensorTimeOffsetChanged},
    {changeSensorSynchronizedOutput, "CTrvActChangeSensorSynchronizedOutput",
     hintSensorSynchronizedOutputChanged},
    {changeSensorDataFileChannel, "CTrvActChangeSensorDataFileChannel", hintSensorChannelChanged},
    {changeDataFileTimeOffset, "CTrvActChangeDataFileTimeOffset", hintDataFileTimeOffsetChanged},
    {changeSimulationParameters, "CTrvActChangeSimulationParameters", hintSimulationParametersChanged},
    {changeNelixConfiguration, "CTrvActChangeNelixConfiguration", hintNelixConfigurationChanged,
     textInsConfigurationFailed},
    {addRejectionInstruction, "CTrvActAddRejectionInstruction", hintRejectionAdded, textRejectionFailed},
    {changeRejectionInstruction, "CTrvActChangeRejectionInstruction", hintRejectionChanged},
    {removeRejectionInstruction, "CTrvActRemoveRejectionInstruction", hintRejectionRemoved},
    {addZupt, "CTrvActAddZupt", hintZuptAdded, textZuptFailed},
    {changeZupt, "CTrvActChangeZupt", hintZuptChanged},
    {removeZupt, "CTrvActRemoveZupt", hintZuptRemoved},
    {addOutputRate, "CTrvActAddOutputRate", hintOutputRateAdded, textOutputRateFailed},
    {changeOutputRate, "CTrvActChangeOutputRate", hintOutputRateChanged},
    {removeOutputRate, "CTrvActRemoveOutputRate", hintOutputRateRemoved},
    {addAltitudeMode, "CTrvActAddAltitudeMode", hintAltitudeModeAdded, textAltitudeModeFailed},
    {changeAltitudeMode, "CTrvActChangeAltitudeMode", hintAltitudeModeChanged},
    {removeAltitudeMode, "CTrvActRemoveAltitudeMode", hintAltitudeModeRemoved},
    {addHorizontalFilteringInstruction, "CTrvActAddHorizontalFilteringInstruction", hintFilteringAdded,
     textFilteringFailed},
    {changeHorizontalFilteringInstruction, "CTrvActChangeHorizontalFilteringInstruction",
     hintFilteringChanged},
    {removeHorizontalFilteringInstruction, "CTrvActRemoveHorizontalFilteringInstruction",
     hintFilteringRemoved},
    {changeDvlStdDevInstruction, "CTrvActChangeDvlStdDevInstruction", hintDvlStdDevChanged},
    {changeGpsStdDevInstruction, "CTrvActChangeGpsStdDevInstruction", hintGpsStdDevChanged},
    {changeGpsStdDevThreshold, "CTrvActChangeGpsStdDevThreshold", hintGpsStdDevChanged},
    {changeUsblStdDevInstruction, "CTrvActChangeUsblStdDevInstruction", hintUsblStdDevChanged},
    {changeDepthStdDevInstruction, "CTrvActChangeDepthStdDevInstruction", hintDepthStdDevChanged},
    {changeLblStdDevInstruction, "CTrvActChangeLblStdDevInstruction", hintLblStdDevChanged},
    {changeEMLogStdDevInstruction, "CTrvActChangeEMLogStdDevInstruction", hintEMLogStdDevChanged},
    {changeOdometerStdDevInstruction, "CTrvActChangeOdometerStdDevInstruction", hintOdometerStdDevChanged},
    {add1DGraphMeasure, "CTrvActAdd1DGraphMeasure", hintGraphAdded, textGraphFailed},
    {add1DGraphEnum, "CTrvActAdd1DGraphEnum", hintGraphAdded, textGraphFailed},
    {remove1DGraph, "CTrvActRemove1DGraph", hintGraphRemoved, textGraphNotRemoved},
    {add1DCurve, "CTrvActAdd1DCurve", hintCurveAdded, textCurveFailed},
    {change1DCurve, "CTrvActChange1DCurve", hintCurveChanged},
    {remove1DCurve, "CTrvActRemove1DCurve", hintCurveRemoved, textCurveNotRemoved},
    {addInstantValuesMeasure, "CTrvActAddInstantValuesMeasure", hintInstantMeasureAdded,
     textInstantMeasureFailed},
    {addInstantValuesEnum, "CTrvActAddInstantValuesEnum", hintInstantEnumAdded, textInstantEnumFailed},
    {removeInstantValuesMeasure, "CTrvActRemoveInstantValuesMeasure", hintInstantMeasureRemoved},
    {removeInstantValuesEnum, "CTrvActRemoveInstantValuesEnum", hintInstantEnumRemoved},
};

constexpr bool AreInOrder() {
    for (std::size_t i = 0; i < std::size(kRows); ++i)
        if (kRows[i].action != static_cast<EAction>(i)) return false;
    return kRows[std::size(kRows) - 1].action == removeInstantValuesEnum;
}
static_assert(AreInOrder(), "the rows must follow the order of EAction");

} // namespace

std::span<const SActionRow> GetActionRows() { return kRows; }

const SActionRow& GetActionRow(EAction action) { return kRows[static_cast<std::size_t>(action)]; }

} // namespace Application_Tarvel
