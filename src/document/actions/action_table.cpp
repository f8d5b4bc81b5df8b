#include "document/actions/action_table.h"
#include "foundation/texts.h"

#include <iterator>

namespace Application_Tarvel {

using Outils_Texte::EText;

namespace {

using enum EAction;

constexpr SActionRow kRows[] = {
    {addDataFile, "CTrvActAddDataFile", hintDataFileAdded, EText::dataFileFailed},
    {removeDataFile, "CTrvActRemoveDataFile", hintDataFileRemoved, EText::dataFileInUse},
    {addSensorGps, "CTrvActAddSensorGps", hintSensorAdded, EText::sensorFailed},
    {addSensorDvl, "CTrvActAddSensorDvl", hintSensorAdded, EText::sensorFailed},
    {addSensorEMLog, "CTrvActAddSensorEMLog", hintSensorAdded, EText::sensorFailed},
    {addSensorDepth, "CTrvActAddSensorDepth", hintSensorAdded, EText::sensorFailed},
    {addSensorUsbl, "CTrvActAddSensorUsbl", hintSensorAdded, EText::sensorFailed},
    {addSensorLbl, "CTrvActAddSensorLbl", hintSensorAdded, EText::sensorFailed},
    {addSensorOdometer, "CTrvActAddSensorOdometer", hintSensorAdded, EText::sensorFailed},
    {addSensorEventMarker, "CTrvActAddSensorEventMarker", hintSensorAdded, EText::sensorFailed},
    {addSensorPlatformOrientation, "CTrvActAddSensorPlatformOrientation", hintSensorAdded,
     EText::sensorFailed},
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
     EText::insConfigurationFailed},
    {addRejectionInstruction, "CTrvActAddRejectionInstruction", hintRejectionAdded, EText::rejectionFailed},
    {changeRejectionInstruction, "CTrvActChangeRejectionInstruction", hintRejectionChanged},
    {removeRejectionInstruction, "CTrvActRemoveRejectionInstruction", hintRejectionRemoved},
    {addZupt, "CTrvActAddZupt", hintZuptAdded, EText::zuptFailed},
    {changeZupt, "CTrvActChangeZupt", hintZuptChanged},
    {removeZupt, "CTrvActRemoveZupt", hintZuptRemoved},
    {addOutputRate, "CTrvActAddOutputRate", hintOutputRateAdded, EText::outputRateFailed},
    {changeOutputRate, "CTrvActChangeOutputRate", hintOutputRateChanged},
    {removeOutputRate, "CTrvActRemoveOutputRate", hintOutputRateRemoved},
    {addAltitudeMode, "CTrvActAddAltitudeMode", hintAltitudeModeAdded, EText::altitudeModeFailed},
    {changeAltitudeMode, "CTrvActChangeAltitudeMode", hintAltitudeModeChanged},
    {removeAltitudeMode, "CTrvActRemoveAltitudeMode", hintAltitudeModeRemoved},
    {addHorizontalFilteringInstruction, "CTrvActAddHorizontalFilteringInstruction", hintFilteringAdded,
     EText::filteringFailed},
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
    {add1DGraphMeasure, "CTrvActAdd1DGraphMeasure", hintGraphAdded, EText::graphFailed},
    {add1DGraphEnum, "CTrvActAdd1DGraphEnum", hintGraphAdded, EText::graphFailed},
    {remove1DGraph, "CTrvActRemove1DGraph", hintGraphRemoved, EText::graphNotRemoved},
    {add1DCurve, "CTrvActAdd1DCurve", hintCurveAdded, EText::curveFailed},
    {change1DCurve, "CTrvActChange1DCurve", hintCurveChanged},
    {remove1DCurve, "CTrvActRemove1DCurve", hintCurveRemoved, EText::curveNotRemoved},
    {addInstantValuesMeasure, "CTrvActAddInstantValuesMeasure", hintInstantMeasureAdded,
     EText::instantMeasureFailed},
    {addInstantValuesEnum, "CTrvActAddInstantValuesEnum", hintInstantEnumAdded, EText::instantEnumFailed},
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
