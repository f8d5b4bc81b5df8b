// Every edit that the user can make, one row each: the class that performs it, the hint that tells the views,
// and the message for the user when it fails.
#pragma once

#include "document/hints.h"
#include "foundation/texts.h"

#include <span>
#include <string_view>

namespace Application_Tarvel {

enum class EAction {
    addDataFile,
    removeDataFile,
    addSensorGps, // the kinds of sensors in the order of ESensorKind
    addSensorDvl,
    addSensorEMLog,
    addSensorDepth,
    addSensorUsbl,
    addSensorLbl,
    addSensorOdometer,
    addSensorEventMarker,
    addSensorPlatformOrientation,
    removeSensor,
    changeSensorGps,
    changeSensorDvl,
    changeSensorEMLog,
    changeSensorDepth,
    changeSensorUsbl,
    changeSensorLbl,
    changeSensorOdometer,
    changeSensorEventMarker,
    changeSensorPlatformOrientation,
    changeSensorTimeOffset,
    changeSensorSynchronizedOutput,
    changeSensorDataFileChannel,
    changeDataFileTimeOffset,
    changeSimulationParameters,
    changeNelixConfiguration,
    addRejectionInstruction,
    changeRejectionInstruction,
    removeRejectionInstruction,
    addZupt,
    changeZupt,
    removeZupt,
    addOutputRate,
    changeOutputRate,
    removeOutputRate,
    addAltitudeMode,
    changeAltitudeMode,
    removeAltitudeMode,
    addHorizontalFilteringInstruction,
    changeHorizontalFilteringInstruction,
    removeHorizontalFilteringInstruction,
    changeDvlStdDevInstruction,
    changeGpsStdDevInstruction,
    changeGpsStdDevThreshold,
    changeUsblStdDevInstruction,
    changeDepthStdDevInstruction,
    changeLblStdDevInstruction,
    changeEMLogStdDevInstruction,
    changeOdometerStdDevInstruction,
    add1DGraphMeasure,
    add1DGraphEnum,
    remove1DGraph,
    add1DCurve,
    change1DCurve,
    remove1DCurve,
    addInstantValuesMeasure,
    addInstantValuesEnum,
    removeInstantValuesMeasure,
    removeInstantValuesEnum,
};

struct SActionRow {
    EAction action;
    std::string_view className;
    EHint hint;
    Outils_Texte::EText failureText =
        Outils_Texte::EText::none; // number of the message; 0 for an edit that cannot fail or stays silent
};

// In the order of EAction.
std::span<const SActionRow> GetActionRows();
const SActionRow& GetActionRow(EAction action);

} // namespace Application_Tarvel
