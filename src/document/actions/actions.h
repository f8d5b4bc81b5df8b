// All user actions by name. Each takes the document, the object and the new values.
#pragma once

#include "document/actions/data_file_actions.h"
#include "document/actions/graph_actions.h"
#include "document/actions/nelix_action.h"
#include "document/actions/sensor_actions.h"
#include "document/actions/values.h"

namespace Application_Tarvel {

namespace Creation {
using namespace Metier_Tarvel;

inline CTrvZupt* AddZupt(CTrvProject& project) { return project.simulationParameters->AddZupt(); }
inline CTrvOutputRate* AddOutputRate(CTrvProject& project) {
    return project.simulationParameters->AddOutputRate();
}
inline CTrvAltitudeMode* AddAltitudeMode(CTrvProject& project) {
    return project.simulationParameters->AddAltitudeMode();
}
inline CTrvRejectionInstruction* AddRejection(CTrvProject&, CTrvRejectionGroup& group) {
    return group.AddInstruction();
}
inline CTrvHorizontalFilteringInstruction* AddFiltering(CTrvProject&, CTrvSensorUsbl& sensor) {
    return sensor.AddFilteringInstruction();
}
} // namespace Creation

namespace Removal {
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

inline bool RemoveSensor(CTrvProject& project, const CTrvSensor& sensor) {
    return project.simulationParameters->RemoveSensor(&sensor);
}
inline bool RemoveZupt(CTrvProject& project, const CTrvZupt& zupt) {
    return project.simulationParameters->RemoveZupt(&zupt);
}
inline bool RemoveOutputRate(CTrvProject& project, const CTrvOutputRate& rate) {
    return project.simulationParameters->RemoveOutputRate(&rate);
}
inline bool RemoveAltitudeMode(CTrvProject& project, const CTrvAltitudeMode& altitudeMode) {
    return project.simulationParameters->RemoveAltitudeMode(&altitudeMode);
}
inline bool RemoveRejection(CTrvProject&, const CTrvRejectionInstruction& instruction) {
    return instruction.group && instruction.group->RemoveInstruction(&instruction);
}
inline bool RemoveFiltering(CTrvProject&, const CTrvHorizontalFilteringInstruction& instruction) {
    return instruction.sensor && instruction.sensor->RemoveFilteringInstruction(&instruction);
}
inline bool RemoveGraph(CTrvProject& project, const CTrv1DGraph& graph) {
    return project.graphSettings->RemoveGraph(&graph);
}
inline bool RemoveInstantMeasure(CTrvProject& project, const CTrvInstantValuesMeasure& item) {
    return project.instantValuesSettings->RemoveMeasure(&item);
}
inline bool RemoveInstantEnum(CTrvProject& project, const CTrvInstantValuesEnum& item) {
    return project.instantValuesSettings->RemoveEnum(&item);
}
} // namespace Removal

// --- Sensors

using CTrvActRemoveSensor = TRemoveAction<EAction::removeSensor, CTrvSensor, Removal::RemoveSensor>;

using CTrvActChangeSensorGps =
    TChangeAction<EAction::changeSensorGps, Metier_Tarvel::CTrvSensorGps, SGpsValues>;
using CTrvActChangeSensorDvl =
    TChangeAction<EAction::changeSensorDvl, Metier_Tarvel::CTrvSensorDvl, SDvlValues>;
using CTrvActChangeSensorEMLog =
    TChangeAction<EAction::changeSensorEMLog, Metier_Tarvel::CTrvSensorEMLog, SLeverArmValues>;
using CTrvActChangeSensorDepth =
    TChangeAction<EAction::changeSensorDepth, Metier_Tarvel::CTrvSensorDepth, SLeverArmValues>;
using CTrvActChangeSensorUsbl =
    TChangeAction<EAction::changeSensorUsbl, Metier_Tarvel::CTrvSensorUsbl, SUsblValues>;
using CTrvActChangeSensorLbl =
    TChangeAction<EAction::changeSensorLbl, Metier_Tarvel::CTrvSensorLbl, SLeverArmValues>;
using CTrvActChangeSensorOdometer =
    TChangeAction<EAction::changeSensorOdometer, Metier_Tarvel::CTrvSensorOdometer, SOdometerValues>;
using CTrvActChangeSensorEventMarker =
    TChangeAction<EAction::changeSensorEventMarker, Metier_Tarvel::CTrvSensorEventMarker, SEventMarkerValues>;
using CTrvActChangeSensorPlatformOrientation =
    TChangeAction<EAction::changeSensorPlatformOrientation, Metier_Tarvel::CTrvSensorPlatformOrientation,
                  SPlatformOrientationValues>;

using CTrvActChangeSensorTimeOffset =
    TChangeAction<EAction::changeSensorTimeOffset, CTrvSensor, STimeOffsetValues>;
using CTrvActChangeSensorSynchronizedOutput =
    TChangeAction<EAction::changeSensorSynchronizedOutput, CTrvSensor, SSynchronizedOutputValues>;
using CTrvActChangeDataFileTimeOffset =
    TChangeAction<EAction::changeDataFileTimeOffset, CTrvDataFile, STimeOffsetValues>;

// --- Simulation

using CTrvActChangeSimulationParameters =
    TChangeAction<EAction::changeSimulationParameters, Metier_Tarvel::CTrvSimulationParameters,
                  SSimulationValues>;

using CTrvActAddZupt = TAddAction<EAction::addZupt, Creation::AddZupt>;
using CTrvActChangeZupt = TChangeAction<EAction::changeZupt, Metier_Tarvel::CTrvZupt, SModePeriodValues>;
using CTrvActRemoveZupt = TRemoveAction<EAction::removeZupt, Metier_Tarvel::CTrvZupt, Removal::RemoveZupt>;

using CTrvActAddOutputRate = TAddAction<EAction::addOutputRate, Creation::AddOutputRate>;
using CTrvActChangeOutputRate =
    TChangeAction<EAction::changeOutputRate, Metier_Tarvel::CTrvOutputRate, SOutputRateValues>;
using CTrvActRemoveOutputRate =
    TRemoveAction<EAction::removeOutputRate, Metier_Tarvel::CTrvOutputRate, Removal::RemoveOutputRate>;

using CTrvActAddAltitudeMode = TAddAction<EAction::addAltitudeMode, Creation::AddAltitudeMode>;
using CTrvActChangeAltitudeMode =
    TChangeAction<EAction::changeAltitudeMode, Metier_Tarvel::CTrvAltitudeMode, SModePeriodValues>;
using CTrvActRemoveAltitudeMode =
    TRemoveAction<EAction::removeAltitudeMode, Metier_Tarvel::CTrvAltitudeMode, Removal::RemoveAltitudeMode>;

// --- Instructions of sensors

using CTrvActAddRejectionInstruction =
    TAddAction<EAction::addRejectionInstruction, Creation::AddRejection, Metier_Tarvel::CTrvRejectionGroup&>;
using CTrvActChangeRejectionInstruction =
    TChangeAction<EAction::changeRejectionInstruction, Metier_Tarvel::CTrvRejectionInstruction,
                  SModePeriodValues>;
using CTrvActRemoveRejectionInstruction =
    TRemoveAction<EAction::removeRejectionInstruction, Metier_Tarvel::CTrvRejectionInstruction,
                  Removal::RemoveRejection>;

using CTrvActAddHorizontalFilteringInstruction =
    TAddAction<EAction::addHorizontalFilteringInstruction, Creation::AddFiltering,
               Metier_Tarvel::CTrvSensorUsbl&>;
using CTrvActChangeHorizontalFilteringInstruction =
    TChangeAction<EAction::changeHorizontalFilteringInstruction,
                  Metier_Tarvel::CTrvHorizontalFilteringInstruction, SFilteringValues>;
using CTrvActRemoveHorizontalFilteringInstruction =
    TRemoveAction<EAction::removeHorizontalFilteringInstruction,
                  Metier_Tarvel::CTrvHorizontalFilteringInstruction, Removal::RemoveFiltering>;

using CTrvActChangeDvlStdDevInstruction =
    TChangeAction<EAction::changeDvlStdDevInstruction, Metier_Tarvel::CTrvDvlStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeGpsStdDevInstruction =
    TChangeAction<EAction::changeGpsStdDevInstruction, Metier_Tarvel::CTrvGpsStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeGpsStdDevThreshold =
    TChangeAction<EAction::changeGpsStdDevThreshold, Metier_Tarvel::CTrvGpsStdDevThreshold,
                  SGpsThresholdValues>;
using CTrvActChangeUsblStdDevInstruction =
    TChangeAction<EAction::changeUsblStdDevInstruction, Metier_Tarvel::CTrvUsblStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeDepthStdDevInstruction =
    TChangeAction<EAction::changeDepthStdDevInstruction, Metier_Tarvel::CTrvDepthStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeLblStdDevInstruction =
    TChangeAction<EAction::changeLblStdDevInstruction, Metier_Tarvel::CTrvLblStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeEMLogStdDevInstruction =
    TChangeAction<EAction::changeEMLogStdDevInstruction, Metier_Tarvel::CTrvEMLogStdDevInstruction,
                  SStdDevValues>;
using CTrvActChangeOdometerStdDevInstruction =
    TChangeAction<EAction::changeOdometerStdDevInstruction, Metier_Tarvel::CTrvOdometerStdDevInstruction,
                  SStdDevValues>;

// --- Graphs and instant values

using CTrvActAdd1DGraphMeasure = TAddAction<EAction::add1DGraphMeasure, Creation::AddMeasureGraph,
                                            const Metier_Tarvel_DataModel::CTrvMeasureDef&>;
using CTrvActAdd1DGraphEnum =
    TAddAction<EAction::add1DGraphEnum, Creation::AddEnumGraph, const Metier_Tarvel_DataModel::CTrvEnumDef&>;
using CTrvActRemove1DGraph =
    TRemoveAction<EAction::remove1DGraph, Metier_Tarvel_Graphics::CTrv1DGraph, Removal::RemoveGraph>;
using CTrvActAdd1DCurve =
    TAddAction<EAction::add1DCurve, Creation::AddCurve, Metier_Tarvel_Graphics::CTrv1DGraphMeasure&,
               const Metier_Tarvel_DataModel::CTrvMeasureDef&>;
using CTrvActChange1DCurve =
    TChangeAction<EAction::change1DCurve, Metier_Tarvel_Graphics::CTrv1DCurve, SCurveValues>;

using CTrvActAddInstantValuesMeasure =
    TAddAction<EAction::addInstantValuesMeasure, Creation::AddInstantMeasure,
               const Metier_Tarvel_DataModel::CTrvMeasureDef&>;
using CTrvActAddInstantValuesEnum = TAddAction<EAction::addInstantValuesEnum, Creation::AddInstantEnum,
                                               const Metier_Tarvel_DataModel::CTrvEnumDef&>;
using CTrvActRemoveInstantValuesMeasure =
    TRemoveAction<EAction::removeInstantValuesMeasure, Metier_Tarvel_InstantValues::CTrvInstantValuesMeasure,
                  Removal::RemoveInstantMeasure>;
using CTrvActRemoveInstantValuesEnum =
    TRemoveAction<EAction::removeInstantValuesEnum, Metier_Tarvel_InstantValues::CTrvInstantValuesEnum,
                  Removal::RemoveInstantEnum>;

} // namespace Application_Tarvel
