// Every edit that a user can make, one row each, and the given class names of the actions.
//
//     document.GetEdits().Do(kAddZupt);
//     auto values = ValuesOf(kChangeSensorDvl, dvl);
//     values.Get<&CTrvSensorDvl::scaleFactor>() = 0.01;
//     document.GetEdits().Do(kChangeSensorDvl, dvl, values);
#pragma once

#include "document/actions/procedures.h"
#include "model/properties/rows.h"

#include <span>

namespace Application_Tarvel {

namespace Edits {
using namespace Procedures;

template <auto List, class Target>
bool RemoveOf(CTrvProject& project, const Target& target) {
    return (*project.simulationParameters.*List)(&target);
}
inline void SetOffset(CTrvSensor& sensor, CDateTimeSpan offset) { sensor.timeOffset = ToStoredTime(offset); }
inline void SetFileOffset(CTrvDataFile& file, CDateTimeSpan offset) {
    file.timeOffset = ToStoredTime(offset);
}

// --- Data files

inline constexpr TEditRow<> kAddDataFile{{"CTrvActAddDataFile", hintDataFileAdded, EText::dataFileFailed},
                                         AddDataFile};
// For a file that was dropped: it has no given name.
inline constexpr TEditRow<std::filesystem::path> kAddGivenDataFile{
    {"", hintDataFileAdded, EText::dataFileFailed}, AddGivenDataFile};
inline constexpr TEditRow<CMoves> kMoveDataFiles{
    {"CTrvActMoveDataFiles", hintDataLayersRebuilt, EText::dataFileReferenced}, MoveDataFiles};
inline constexpr TEditRow<CTrvDataFile&> kRemoveDataFile{
    {"CTrvActRemoveDataFile", hintDataFileRemoved, EText::dataFileInUse}, Procedures::RemoveDataFile};
inline constexpr auto kChangeDataFileTimeOffset =
    ChangeAs<&CTrvDataFile::timeOffset, CTrvDataFile, CDateTimeSpan, SetFileOffset>(
        "CTrvActChangeDataFileTimeOffset", hintDataFileTimeOffsetChanged);

// --- Sensors

template <ESensorKind Kind>
constexpr TEditRow<> AddSensorRow(std::string_view className) {
    return {{className, hintSensorAdded, EText::sensorFailed}, AddSensorOf<Kind>};
}
inline constexpr auto kAddSensorGps = AddSensorRow<ESensorKind::gps>("CTrvActAddSensorGps");
inline constexpr auto kAddSensorDvl = AddSensorRow<ESensorKind::dvl>("CTrvActAddSensorDvl");
inline constexpr auto kAddSensorEMLog = AddSensorRow<ESensorKind::emLog>("CTrvActAddSensorEMLog");
inline constexpr auto kAddSensorDepth = AddSensorRow<ESensorKind::depth>("CTrvActAddSensorDepth");
inline constexpr auto kAddSensorUsbl = AddSensorRow<ESensorKind::usbl>("CTrvActAddSensorUsbl");
inline constexpr auto kAddSensorLbl = AddSensorRow<ESensorKind::lbl>("CTrvActAddSensorLbl");
inline constexpr auto kAddSensorOdometer = AddSensorRow<ESensorKind::odometer>("CTrvActAddSensorOdometer");
inline constexpr auto kAddSensorEventMarker =
    AddSensorRow<ESensorKind::eventMarker>("CTrvActAddSensorEventMarker");
inline constexpr auto kAddSensorPlatformOrientation =
    AddSensorRow<ESensorKind::platformOrientation>("CTrvActAddSensorPlatformOrientation");
// By ESensorKind.
inline constexpr const TEditRow<>* kAddSensor[kSensorKindCount] = {
    &kAddSensorGps,      &kAddSensorDvl,         &kAddSensorEMLog,
    &kAddSensorDepth,    &kAddSensorUsbl,        &kAddSensorLbl,
    &kAddSensorOdometer, &kAddSensorEventMarker, &kAddSensorPlatformOrientation};

inline constexpr auto kRemoveSensor =
    RemoveBy<CTrvSensor, RemoveOf<&CTrvSimulationParameters::RemoveSensor, CTrvSensor>>("CTrvActRemoveSensor",
                                                                                        hintSensorRemoved);
inline constexpr auto kChangeSensorTimeOffset =
    ChangeAs<&CTrvSensor::timeOffset, CTrvSensor, CDateTimeSpan, SetOffset>("CTrvActChangeSensorTimeOffset",
                                                                            hintSensorTimeOffsetChanged);
inline constexpr auto kChangeSensorSynchronizedOutput = Change<CTrvSensor, &CTrvSensor::synchronizedOutput>(
    "CTrvActChangeSensorSynchronizedOutput", hintSensorSynchronizedOutputChanged);
inline constexpr TEditRow<CTrvSensor&, CTrvDataFileChannel&> kChangeSensorDataFileChannel{
    {"CTrvActChangeSensorDataFileChannel", hintSensorChannelChanged}, ChangeSensorChannel};

template <class Sensor, auto... Members>
constexpr auto ChangeSensor(std::string_view className) {
    return Change<Sensor, Members...>(className, hintSensorChanged);
}
inline constexpr auto kChangeSensorGps =
    ChangeSensor<CTrvSensorGps, &CTrvSensorGps::leverArm,
                 Metier_Tarvel_Proprietes::Rows::AltitudeReferenceOf>("CTrvActChangeSensorGps");
inline constexpr auto kChangeSensorDvl =
    ChangeSensor<CTrvSensorDvl, &CTrvSensorDvl::leverArm, &CTrvSensorDvl::misalignment,
                 &CTrvSensorDvl::scaleFactor, &CTrvSensorDvl::currentModeling, &CTrvSensorDvl::speedBias>(
        "CTrvActChangeSensorDvl");
inline constexpr auto kChangeSensorEMLog =
    ChangeSensor<CTrvSensorEMLog, &CTrvSensorEMLog::leverArm>("CTrvActChangeSensorEMLog");
inline constexpr auto kChangeSensorDepth =
    ChangeSensor<CTrvSensorDepth, &CTrvSensorDepth::leverArm>("CTrvActChangeSensorDepth");
inline constexpr auto kChangeSensorUsbl =
    ChangeSensor<CTrvSensorUsbl, &CTrvSensorUsbl::leverArm, &CTrvSensorUsbl::transponderCode>(
        "CTrvActChangeSensorUsbl");
inline constexpr auto kChangeSensorLbl =
    ChangeSensor<CTrvSensorLbl, &CTrvSensorLbl::leverArm>("CTrvActChangeSensorLbl");
inline constexpr auto kChangeSensorOdometer =
    ChangeSensor<CTrvSensorOdometer, &CTrvSensorOdometer::leverArm, &CTrvSensorOdometer::misalignment,
                 &CTrvSensorOdometer::scaleFactor>("CTrvActChangeSensorOdometer");
inline constexpr auto kChangeSensorEventMarker =
    ChangeSensor<CTrvSensorEventMarker, &CTrvSensorEventMarker::eventId>("CTrvActChangeSensorEventMarker");
inline constexpr auto kChangeSensorPlatformOrientation =
    ChangeSensor<CTrvSensorPlatformOrientation, &CTrvSensorPlatformOrientation::insLeverArm,
                 &CTrvSensorPlatformOrientation::vehicleLeverArm,
                 &CTrvSensorPlatformOrientation::insMisalignment,
                 &CTrvSensorPlatformOrientation::vehicleMisalignment>(
        "CTrvActChangeSensorPlatformOrientation");

// --- Simulation

inline constexpr auto kChangeSimulationParameters =
    Change<CTrvSimulationParameters, &CTrvSimulationParameters::algorithm,
           &CTrvSimulationParameters::heaveAlgorithm, &CTrvSimulationParameters::heaveSeaState,
           &CTrvSimulationParameters::referencePosition, &CTrvSimulationParameters::defaultOutputRate,
           &CTrvSimulationParameters::begin, &CTrvSimulationParameters::end>(
        "CTrvActChangeSimulationParameters", hintSimulationParametersChanged);
// With the path of a configuration file of the INS, or an empty one.
inline constexpr TEditRow<CTrvNelixConfiguration&, CNelixValues, std::filesystem::path>
    kChangeNelixConfiguration{
        {"CTrvActChangeNelixConfiguration", hintNelixConfigurationChanged, EText::insConfigurationFailed,
         []() -> const CRuntimeClass& { return CTrvNelixConfiguration::Class(); }, CNelixValues::Covers},
        ChangeNelixConfiguration};

template <auto Create>
CObject* AddToParameters(CTrvProject& project) {
    return (*project.simulationParameters.*Create)();
}
inline constexpr auto kAddZupt = Add<AddToParameters<&CTrvSimulationParameters::AddZupt>>(
    "CTrvActAddZupt", hintZuptAdded, EText::zuptFailed);
inline constexpr auto kChangeZupt =
    Change<CTrvZupt, &CTrvZupt::mode, &CTrvZupt::begin, &CTrvZupt::end>("CTrvActChangeZupt", hintZuptChanged);
inline constexpr auto kRemoveZupt =
    RemoveBy<CTrvZupt, RemoveOf<&CTrvSimulationParameters::RemoveZupt, CTrvZupt>>("CTrvActRemoveZupt",
                                                                                  hintZuptRemoved);
inline constexpr auto kAddOutputRate = Add<AddToParameters<&CTrvSimulationParameters::AddOutputRate>>(
    "CTrvActAddOutputRate", hintOutputRateAdded, EText::outputRateFailed);
inline constexpr auto kChangeOutputRate =
    Change<CTrvOutputRate, &CTrvOutputRate::value, &CTrvOutputRate::begin, &CTrvOutputRate::end>(
        "CTrvActChangeOutputRate", hintOutputRateChanged);
inline constexpr auto kRemoveOutputRate =
    RemoveBy<CTrvOutputRate, RemoveOf<&CTrvSimulationParameters::RemoveOutputRate, CTrvOutputRate>>(
        "CTrvActRemoveOutputRate", hintOutputRateRemoved);
inline constexpr auto kAddAltitudeMode = Add<AddToParameters<&CTrvSimulationParameters::AddAltitudeMode>>(
    "CTrvActAddAltitudeMode", hintAltitudeModeAdded, EText::altitudeModeFailed);
inline constexpr auto kChangeAltitudeMode =
    Change<CTrvAltitudeMode, &CTrvAltitudeMode::mode, &CTrvAltitudeMode::begin, &CTrvAltitudeMode::end>(
        "CTrvActChangeAltitudeMode", hintAltitudeModeChanged);
inline constexpr auto kRemoveAltitudeMode =
    RemoveBy<CTrvAltitudeMode, RemoveOf<&CTrvSimulationParameters::RemoveAltitudeMode, CTrvAltitudeMode>>(
        "CTrvActRemoveAltitudeMode", hintAltitudeModeRemoved);

// --- Instructions of sensors

inline CObject* AddRejection(CTrvProject&, CTrvRejectionGroup& group) { return group.AddInstruction(); }
inline bool RemoveRejection(CTrvProject&, const CTrvRejectionInstruction& instruction) {
    return instruction.group && instruction.group->RemoveInstruction(&instruction);
}
inline CObject* AddFiltering(CTrvProject&, CTrvSensorUsbl& sensor) {
    return sensor.AddFilteringInstruction();
}
inline bool RemoveFiltering(CTrvProject&, const CTrvHorizontalFilteringInstruction& instruction) {
    return instruction.sensor && instruction.sensor->RemoveFilteringInstruction(&instruction);
}
inline constexpr auto kAddRejectionInstruction = Add<AddRejection, CTrvRejectionGroup&>(
    "CTrvActAddRejectionInstruction", hintRejectionAdded, EText::rejectionFailed);
inline constexpr auto kChangeRejectionInstruction =
    Change<CTrvRejectionInstruction, &CTrvRejectionInstruction::mode, &CTrvRejectionInstruction::begin,
           &CTrvRejectionInstruction::end>("CTrvActChangeRejectionInstruction", hintRejectionChanged);
inline constexpr auto kRemoveRejectionInstruction = RemoveBy<CTrvRejectionInstruction, RemoveRejection>(
    "CTrvActRemoveRejectionInstruction", hintRejectionRemoved);
inline constexpr auto kAddHorizontalFilteringInstruction = Add<AddFiltering, CTrvSensorUsbl&>(
    "CTrvActAddHorizontalFilteringInstruction", hintFilteringAdded, EText::filteringFailed);
inline constexpr auto kChangeHorizontalFilteringInstruction =
    Change<CTrvHorizontalFilteringInstruction, &CTrvHorizontalFilteringInstruction::threshold,
           &CTrvHorizontalFilteringInstruction::begin, &CTrvHorizontalFilteringInstruction::end>(
        "CTrvActChangeHorizontalFilteringInstruction", hintFilteringChanged);
inline constexpr auto kRemoveHorizontalFilteringInstruction =
    RemoveBy<CTrvHorizontalFilteringInstruction, RemoveFiltering>(
        "CTrvActRemoveHorizontalFilteringInstruction", hintFilteringRemoved);

template <class Target, auto... Members>
constexpr auto ChangeStdDev(std::string_view className, EHint hint) {
    return Change<Target, &Target::mode, Members..., &Target::begin, &Target::end>(className, hint);
}
template <class Target>
constexpr auto ChangeScalar(std::string_view className, EHint hint) {
    return ChangeStdDev<Target, &Target::value>(className, hint);
}
template <class Target>
constexpr auto ChangeVector(std::string_view className, EHint hint) {
    return ChangeStdDev<Target, &Target::x, &Target::y, &Target::z>(className, hint);
}
template <class Target>
constexpr auto ChangePosition(std::string_view className, EHint hint) {
    return ChangeStdDev<Target, &Target::latitude, &Target::longitude, &Target::crossvariance,
                        &Target::altitude>(className, hint);
}
inline constexpr auto kChangeDvlStdDevInstruction =
    ChangeVector<CTrvDvlStdDevInstruction>("CTrvActChangeDvlStdDevInstruction", hintDvlStdDevChanged);
inline constexpr auto kChangeGpsStdDevInstruction =
    ChangePosition<CTrvGpsStdDevInstruction>("CTrvActChangeGpsStdDevInstruction", hintGpsStdDevChanged);
inline constexpr auto kChangeGpsStdDevThreshold =
    Change<CTrvGpsStdDevThreshold, &CTrvGpsStdDevThreshold::latitude, &CTrvGpsStdDevThreshold::longitude,
           &CTrvGpsStdDevThreshold::altitude>("CTrvActChangeGpsStdDevThreshold", hintGpsStdDevChanged);
inline constexpr auto kChangeUsblStdDevInstruction =
    ChangePosition<CTrvUsblStdDevInstruction>("CTrvActChangeUsblStdDevInstruction", hintUsblStdDevChanged);
inline constexpr auto kChangeDepthStdDevInstruction =
    ChangeScalar<CTrvDepthStdDevInstruction>("CTrvActChangeDepthStdDevInstruction", hintDepthStdDevChanged);
inline constexpr auto kChangeLblStdDevInstruction =
    ChangeScalar<CTrvLblStdDevInstruction>("CTrvActChangeLblStdDevInstruction", hintLblStdDevChanged);
inline constexpr auto kChangeEMLogStdDevInstruction =
    ChangeScalar<CTrvEMLogStdDevInstruction>("CTrvActChangeEMLogStdDevInstruction", hintEMLogStdDevChanged);
inline constexpr auto kChangeOdometerStdDevInstruction = ChangeVector<CTrvOdometerStdDevInstruction>(
    "CTrvActChangeOdometerStdDevInstruction", hintOdometerStdDevChanged);

// --- Graphs and instant values

inline bool RemoveGraph(CTrvProject& project, const CTrv1DGraph& graph) {
    return project.graphSettings->RemoveGraph(&graph);
}
inline bool RemoveInstantMeasure(CTrvProject& project, const CTrvInstantValuesMeasure& item) {
    return project.instantValuesSettings->RemoveMeasure(&item);
}
inline bool RemoveInstantEnum(CTrvProject& project, const CTrvInstantValuesEnum& item) {
    return project.instantValuesSettings->RemoveEnum(&item);
}
inline constexpr auto kAdd1DGraphMeasure = Add<AddMeasureGraph, const CTrvMeasureDef&>(
    "CTrvActAdd1DGraphMeasure", hintGraphAdded, EText::graphFailed);
inline constexpr auto kAdd1DGraphEnum =
    Add<AddEnumGraph, const CTrvEnumDef&>("CTrvActAdd1DGraphEnum", hintGraphAdded, EText::graphFailed);
inline constexpr auto kRemove1DGraph =
    RemoveBy<CTrv1DGraph, RemoveGraph>("CTrvActRemove1DGraph", hintGraphRemoved, EText::graphNotRemoved);
inline constexpr auto kAdd1DCurve = Add<AddCurve, CTrv1DGraphMeasure&, const CTrvMeasureDef&>(
    "CTrvActAdd1DCurve", hintCurveAdded, EText::curveFailed);
inline constexpr auto kChange1DCurve =
    Change<CTrv1DCurve, &CTrv1DCurve::label, &CTrv1DCurve::color, &CTrv1DCurve::factor>(
        "CTrvActChange1DCurve", hintCurveChanged);
inline constexpr TEditRow<const CTrv1DCurve&> kRemove1DCurve{
    {"CTrvActRemove1DCurve", hintCurveRemoved, EText::curveNotRemoved}, RemoveCurve};
inline constexpr auto kAddInstantValuesMeasure = Add<AddInstantMeasure, const CTrvMeasureDef&>(
    "CTrvActAddInstantValuesMeasure", hintInstantMeasureAdded, EText::instantMeasureFailed);
inline constexpr auto kAddInstantValuesEnum = Add<AddInstantEnum, const CTrvEnumDef&>(
    "CTrvActAddInstantValuesEnum", hintInstantEnumAdded, EText::instantEnumFailed);
inline constexpr auto kRemoveInstantValuesMeasure = RemoveBy<CTrvInstantValuesMeasure, RemoveInstantMeasure>(
    "CTrvActRemoveInstantValuesMeasure", hintInstantMeasureRemoved);
inline constexpr auto kRemoveInstantValuesEnum = RemoveBy<CTrvInstantValuesEnum, RemoveInstantEnum>(
    "CTrvActRemoveInstantValuesEnum", hintInstantEnumRemoved);
// To a place among the rows of its kind. The views take it for an added row, which they know already.
inline constexpr TEditRow<const CTrvInstantValue&, std::size_t> kMoveInstantValue{
    {"CTrvActMoveInstantValue", hintInstantMeasureAdded},
    [](const CEdit& edit, const CTrvInstantValue& value, std::size_t place) {
        return edit.GetProject().instantValuesSettings->Move(value, place) && edit.Changed(&value);
    }};

} // namespace Edits

// In the order above.
std::span<const SEditRow* const> GetEditRows();
// The edit that writes the member at this address of a target or of what it owns; null for none.
const SEditRow* FindEdit(const CObject& target, const void* address);

// The present values of a target, for the edit that changes them.
template <class Target, class Values, class... More>
Values ValuesOf(const TEditRow<Target&, Values, More...>&, const std::type_identity_t<Target>& target) {
    return Values::Of(target);
}

// The given class names.
using CTrvActAddDataFile = TAction<Edits::kAddDataFile>;
using CTrvActRemoveDataFile = TAction<Edits::kRemoveDataFile>;
using CTrvActChangeDataFileTimeOffset = TAction<Edits::kChangeDataFileTimeOffset>;
using CTrvActAddSensorGps = TAction<Edits::kAddSensorGps>;
using CTrvActAddSensorDvl = TAction<Edits::kAddSensorDvl>;
using CTrvActAddSensorEMLog = TAction<Edits::kAddSensorEMLog>;
using CTrvActAddSensorDepth = TAction<Edits::kAddSensorDepth>;
using CTrvActAddSensorUsbl = TAction<Edits::kAddSensorUsbl>;
using CTrvActAddSensorLbl = TAction<Edits::kAddSensorLbl>;
using CTrvActAddSensorOdometer = TAction<Edits::kAddSensorOdometer>;
using CTrvActAddSensorEventMarker = TAction<Edits::kAddSensorEventMarker>;
using CTrvActAddSensorPlatformOrientation = TAction<Edits::kAddSensorPlatformOrientation>;
using CTrvActRemoveSensor = TAction<Edits::kRemoveSensor>;
using CTrvActChangeSensorTimeOffset = TAction<Edits::kChangeSensorTimeOffset>;
using CTrvActChangeSensorSynchronizedOutput = TAction<Edits::kChangeSensorSynchronizedOutput>;
using CTrvActChangeSensorDataFileChannel = TAction<Edits::kChangeSensorDataFileChannel>;
using CTrvActChangeSensorGps = TAction<Edits::kChangeSensorGps>;
using CTrvActChangeSensorDvl = TAction<Edits::kChangeSensorDvl>;
using CTrvActChangeSensorEMLog = TAction<Edits::kChangeSensorEMLog>;
using CTrvActChangeSensorDepth = TAction<Edits::kChangeSensorDepth>;
using CTrvActChangeSensorUsbl = TAction<Edits::kChangeSensorUsbl>;
using CTrvActChangeSensorLbl = TAction<Edits::kChangeSensorLbl>;
using CTrvActChangeSensorOdometer = TAction<Edits::kChangeSensorOdometer>;
using CTrvActChangeSensorEventMarker = TAction<Edits::kChangeSensorEventMarker>;
using CTrvActChangeSensorPlatformOrientation = TAction<Edits::kChangeSensorPlatformOrientation>;
using CTrvActChangeSimulationParameters = TAction<Edits::kChangeSimulationParameters>;
using CTrvActChangeNelixConfiguration = TAction<Edits::kChangeNelixConfiguration>;
using CTrvActAddZupt = TAction<Edits::kAddZupt>;
using CTrvActChangeZupt = TAction<Edits::kChangeZupt>;
using CTrvActRemoveZupt = TAction<Edits::kRemoveZupt>;
using CTrvActAddOutputRate = TAction<Edits::kAddOutputRate>;
using CTrvActChangeOutputRate = TAction<Edits::kChangeOutputRate>;
using CTrvActRemoveOutputRate = TAction<Edits::kRemoveOutputRate>;
using CTrvActAddAltitudeMode = TAction<Edits::kAddAltitudeMode>;
using CTrvActChangeAltitudeMode = TAction<Edits::kChangeAltitudeMode>;
using CTrvActRemoveAltitudeMode = TAction<Edits::kRemoveAltitudeMode>;
using CTrvActAddRejectionInstruction = TAction<Edits::kAddRejectionInstruction>;
using CTrvActChangeRejectionInstruction = TAction<Edits::kChangeRejectionInstruction>;
using CTrvActRemoveRejectionInstruction = TAction<Edits::kRemoveRejectionInstruction>;
using CTrvActAddHorizontalFilteringInstruction = TAction<Edits::kAddHorizontalFilteringInstruction>;
using CTrvActChangeHorizontalFilteringInstruction = TAction<Edits::kChangeHorizontalFilteringInstruction>;
using CTrvActRemoveHorizontalFilteringInstruction = TAction<Edits::kRemoveHorizontalFilteringInstruction>;
using CTrvActChangeDvlStdDevInstruction = TAction<Edits::kChangeDvlStdDevInstruction>;
using CTrvActChangeGpsStdDevInstruction = TAction<Edits::kChangeGpsStdDevInstruction>;
using CTrvActChangeGpsStdDevThreshold = TAction<Edits::kChangeGpsStdDevThreshold>;
using CTrvActChangeUsblStdDevInstruction = TAction<Edits::kChangeUsblStdDevInstruction>;
using CTrvActChangeDepthStdDevInstruction = TAction<Edits::kChangeDepthStdDevInstruction>;
using CTrvActChangeLblStdDevInstruction = TAction<Edits::kChangeLblStdDevInstruction>;
using CTrvActChangeEMLogStdDevInstruction = TAction<Edits::kChangeEMLogStdDevInstruction>;
using CTrvActChangeOdometerStdDevInstruction = TAction<Edits::kChangeOdometerStdDevInstruction>;
using CTrvActAdd1DGraphMeasure = TAction<Edits::kAdd1DGraphMeasure>;
using CTrvActAdd1DGraphEnum = TAction<Edits::kAdd1DGraphEnum>;
using CTrvActRemove1DGraph = TAction<Edits::kRemove1DGraph>;
using CTrvActAdd1DCurve = TAction<Edits::kAdd1DCurve>;
using CTrvActChange1DCurve = TAction<Edits::kChange1DCurve>;
using CTrvActRemove1DCurve = TAction<Edits::kRemove1DCurve>;
using CTrvActAddInstantValuesMeasure = TAction<Edits::kAddInstantValuesMeasure>;
using CTrvActAddInstantValuesEnum = TAction<Edits::kAddInstantValuesEnum>;
using CTrvActRemoveInstantValuesMeasure = TAction<Edits::kRemoveInstantValuesMeasure>;
using CTrvActRemoveInstantValuesEnum = TAction<Edits::kRemoveInstantValuesEnum>;
using CTrvActMoveInstantValue = TAction<Edits::kMoveInstantValue>;

} // namespace Application_Tarvel
