// The whole project as text: every field that is archived under its own name, values as the user's settings
// show them. The order is that of the archives.
#include "batch/commands.h"
#include "batch/description_formats.h"
#include "batch/session.h"

namespace Batch {

using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

// Periods.

template <>
inline constexpr auto kRowsOf<CTrvPeriod> = std::tuple{
    SField{labelFrom, &CTrvPeriod::begin, Time},
    SField{labelTo, &CTrvPeriod::end, Time},
};
template <>
inline constexpr auto kRowsOf<CTrvOutputRate> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelValue, &CTrvOutputRate::value, kHertz},
};
template <>
inline constexpr auto kRowsOf<CTrvZupt> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelMode, &CTrvZupt::mode, SWord{EWordList::zuptMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvAltitudeMode> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelMode, &CTrvAltitudeMode::mode, SWord{EWordList::altitudeMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvRejectionInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelMode, &CTrvRejectionInstruction::mode, SWord{EWordList::rejectionMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvHorizontalFilteringInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelThreshold, &CTrvHorizontalFilteringInstruction::threshold, SQuantity{EQuantity::distance}},
};
template <>
inline constexpr auto kRowsOf<CTrvRejectionGroup> = std::tuple{
    SField{labelName, &CTrvRejectionGroup::name, Text},
    SOwned{labelRejection, &CTrvRejectionGroup::instructions},
};

// Standard deviations. The modes of an odometer have words of their own.

template <>
inline constexpr auto kRowsOf<CTrvStdDevInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{labelWholeSimulation, &CTrvStdDevInstruction::isDefault, Flag},
};
constexpr SField kStdDevMode{labelMode, &CTrvStdDevInstruction::mode, SWord{EWordList::stdDevMode}};

template <EQuantity quantity>
inline constexpr auto kScalarRows = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    kStdDevMode,
    SField{labelValue, &CTrvScalarStdDev::value, SQuantity{quantity}},
};
template <>
inline constexpr auto kRowsOf<CTrvDepthStdDevInstruction> = kScalarRows<EQuantity::altitude>;
template <>
inline constexpr auto kRowsOf<CTrvEMLogStdDevInstruction> = kScalarRows<EQuantity::linearSpeed>;
template <>
inline constexpr auto kRowsOf<CTrvLblStdDevInstruction> = kScalarRows<EQuantity::distance>;

template <>
inline constexpr auto kRowsOf<CTrvPositionStdDev> = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    kStdDevMode,
    SField{labelLatitude, &CTrvPositionStdDev::latitude, SQuantity{EQuantity::distance}},
    SField{labelLongitude, &CTrvPositionStdDev::longitude, SQuantity{EQuantity::distance}},
    SField{labelCrossvariance, &CTrvPositionStdDev::crossvariance, SQuantity{EQuantity::crossvariance}},
    SField{labelAltitude, &CTrvPositionStdDev::altitude, SQuantity{EQuantity::altitude}},
};
template <>
inline constexpr auto kRowsOf<CTrvGpsStdDevInstruction> = kRowsOf<CTrvPositionStdDev>;
template <>
inline constexpr auto kRowsOf<CTrvUsblStdDevInstruction> = kRowsOf<CTrvPositionStdDev>;

template <>
inline constexpr auto kRowsOf<CTrvDvlStdDevInstruction> = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    kStdDevMode,
    SField{labelX, &CTrvDvlStdDevInstruction::x, SQuantity{EQuantity::linearSpeed}},
    SField{labelY, &CTrvDvlStdDevInstruction::y, SQuantity{EQuantity::linearSpeed}},
    SField{labelZ, &CTrvDvlStdDevInstruction::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvOdometerStdDevInstruction> = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    SField{labelMode, &CTrvStdDevInstruction::mode, SWord{EWordList::odometerStdDevMode}},
    SField{labelValueX, &CTrvOdometerStdDevInstruction::x, SQuantity{EQuantity::linearSpeed}},
    SField{labelValueY, &CTrvOdometerStdDevInstruction::y, SQuantity{EQuantity::linearSpeed}},
    SField{labelValueZ, &CTrvOdometerStdDevInstruction::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvGpsStdDevThreshold> = std::tuple{
    SField{labelLatitude, &CTrvGpsStdDevThreshold::latitude, SQuantity{EQuantity::distance}},
    SField{labelLongitude, &CTrvGpsStdDevThreshold::longitude, SQuantity{EQuantity::distance}},
    SField{labelAltitude, &CTrvGpsStdDevThreshold::altitude, SQuantity{EQuantity::altitude}},
};

// Sensors.

template <>
inline constexpr auto kRowsOf<CTrvCurrentModeling> = std::tuple{
    SField{labelTime, &CTrvCurrentModeling::time, SQuantity{EQuantity::currentTime}},
    SField{labelSigma, &CTrvCurrentModeling::sigma, SQuantity{EQuantity::currentSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvSpeedBias> = std::tuple{
    SField{labelSpeedX, &CTrvSpeedBias::x, SQuantity{EQuantity::linearSpeed}},
    SField{labelSpeedY, &CTrvSpeedBias::y, SQuantity{EQuantity::linearSpeed}},
    SField{labelSpeedZ, &CTrvSpeedBias::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvSensor> = std::tuple{
    SField{labelDataFile, &CTrvSensor::channel, SensorFile},
    SField{labelChannel, &CTrvSensor::channel, SensorChannel},
    SField{labelTimeOffset, &CTrvSensor::timeOffset, Offset},
    SOwned{labelRejections, &CTrvSensor::rejectionGroups},
    SField{labelSynchronizedOutput, &CTrvSensor::synchronizedOutput, Flag},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorGps> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelLeverArm, &CTrvSensorGps::leverArm, LeverArm},
    SOwned{labelStdDev, &CTrvSensorGps::stdDevInstruction},
    SOwned{labelMinimumValue, &CTrvSensorGps::stdDevThreshold},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorDvl> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelLeverArm, &CTrvSensorDvl::leverArm, LeverArm},
    SField{labelMisalignment, &CTrvSensorDvl::misalignment, Angles},
    SField{labelScaleFactor, &CTrvSensorDvl::scaleFactor, SQuantity{EQuantity::scaleFactor}},
    SOwned{labelCurrentModeling, &CTrvSensorDvl::currentModeling},
    SOwned{labelSpeedBias, &CTrvSensorDvl::speedBias},
    SOwned{labelBottomTrackStdDev, &CTrvSensorDvl::bottomTrackStdDevInstruction},
    SOwned{labelWaterTrackStdDev, &CTrvSensorDvl::waterTrackStdDevInstruction},
};
template <class Sensor>
inline constexpr auto kScalarSensorRows = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelLeverArm, &Sensor::leverArm, LeverArm},
    SOwned{labelStdDev, &Sensor::stdDevInstruction},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorEMLog> = kScalarSensorRows<CTrvSensorEMLog>;
template <>
inline constexpr auto kRowsOf<CTrvSensorDepth> = kScalarSensorRows<CTrvSensorDepth>;
template <>
inline constexpr auto kRowsOf<CTrvSensorLbl> = kScalarSensorRows<CTrvSensorLbl>;
template <>
inline constexpr auto kRowsOf<CTrvSensorUsbl> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelReserved, &CTrvSensorUsbl::reserved, Whole},
    SField{labelLeverArm, &CTrvSensorUsbl::leverArm, LeverArm},
    SField{labelTransponderCode, &CTrvSensorUsbl::transponderCode, Text},
    SOwned{labelStdDev, &CTrvSensorUsbl::stdDevInstruction},
    SOwned{labelFiltering, &CTrvSensorUsbl::filteringInstructions},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorOdometer> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelLeverArm, &CTrvSensorOdometer::leverArm, LeverArm},
    SField{labelMisalignment, &CTrvSensorOdometer::misalignment, Angles},
    SField{labelScaleFactor, &CTrvSensorOdometer::scaleFactor, SQuantity{EQuantity::scaleFactor}},
    SOwned{labelStdDev, &CTrvSensorOdometer::stdDevInstruction},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorEventMarker> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelEventId, &CTrvSensorEventMarker::eventId, Text},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorPlatformOrientation> = std::tuple{
    SBase<CTrvSensor>{},
    SField{labelInsLeverArm, &CTrvSensorPlatformOrientation::insLeverArm, LeverArm},
    SField{labelInsMisalignment, &CTrvSensorPlatformOrientation::insMisalignment, Angles},
    SField{labelVehicleLeverArm, &CTrvSensorPlatformOrientation::vehicleLeverArm, LeverArm},
    SField{labelVehicleMisalignment, &CTrvSensorPlatformOrientation::vehicleMisalignment, Angles},
};

// The inertial unit.

template <>
inline constexpr auto kRowsOf<CTrvNelixType> = std::tuple{
    SComputed{labelEquipment, TypeWord<CTrvNelixType::fieldEquipment>},
    SComputed{labelHousing, TypeWord<CTrvNelixType::fieldHousing>},
    SComputed{labelFog, TypeWord<CTrvNelixType::fieldFog>},
    SComputed{labelAccelerometers, TypeWord<CTrvNelixType::fieldAccelerometers>},
    SComputed{labelSaturation, TypeWord<CTrvNelixType::fieldSaturation>},
    SComputed{labelAlgorithm, TypeWord<CTrvNelixType::fieldAlgorithm>},
};
template <>
inline constexpr auto kRowsOf<CTrvNelixConfiguration> = std::tuple{
    SField{labelFactoryMisalignment, &CTrvNelixConfiguration::factoryMisalignment, Angles},
    SField{labelRoughMisalignment, &CTrvNelixConfiguration::roughMisalignment, Whole},
    SField{labelFineMisalignment, &CTrvNelixConfiguration::fineMisalignment, Angles},
    SField{labelUserMisalignment, &CTrvNelixConfiguration::userMisalignment, Angles},
    SField{labelPrimaryLeverArm, &CTrvNelixConfiguration::primaryLeverArm, LeverArm},
    SField{labelSecondaryLeverArmA, &CTrvNelixConfiguration::secondaryLeverArmA, LeverArm},
    SField{labelSecondaryLeverArmB, &CTrvNelixConfiguration::secondaryLeverArmB, LeverArm},
    SField{labelSecondaryLeverArmC, &CTrvNelixConfiguration::secondaryLeverArmC, LeverArm},
    SOwned{labelCurrentModeling, &CTrvNelixConfiguration::currentModeling},
    SOwned{labelDevice, &CTrvNelixConfiguration::type},
    SField{labelCogLeverArm, &CTrvNelixConfiguration::cogLeverArm, LeverArm},
};

// The parameters of the processing.

template <>
inline constexpr auto kRowsOf<CTrvDataFile> = std::tuple{
    SField{labelPath, &CTrvDataFile::path, Path},
    SLines{labelChannel, &CTrvDataFile::channels, ChannelLine},
    SField{labelTimeOffset, &CTrvDataFile::timeOffset, Offset},
};
template <>
inline constexpr auto kRowsOf<CPosition> = std::tuple{
    SField{labelLatitude, &CPosition::latitude, Latitude},
    SField{labelLongitude, &CPosition::longitude, Longitude},
    SField{labelAltitudeKind, &CPosition::altitudeKind, Whole},
    SField{labelAltitude, &CPosition::altitude, SQuantity{EQuantity::altitude}},
};
template <>
inline constexpr auto kRowsOf<CTrvSimulationParameters> = std::tuple{
    SField{labelAlgorithm, &CTrvSimulationParameters::algorithm, SWord{EWordList::algorithm}},
    SField{labelHeave, &CTrvSimulationParameters::heaveAlgorithm, SWord{EWordList::heaveAlgorithm}},
    SField{labelSeaState, &CTrvSimulationParameters::heaveSeaState, SWord{EWordList::heaveSeaState}},
    SField{labelGpsAltitude, &CTrvSimulationParameters::gpsAltitudeReference,
           SWord{EWordList::gpsAltitudeReference}},
    SOwned{labelReferencePosition, &CTrvSimulationParameters::referencePosition},
    SField{labelDefaultOutputRate, &CTrvSimulationParameters::defaultOutputRate, kHertz},
    SField{labelBegin, &CTrvSimulationParameters::begin, Time},
    SField{labelEnd, &CTrvSimulationParameters::end, Time},
    SOwned{labelOutputRate, &CTrvSimulationParameters::outputRates},
    SOwned{labelZupt, &CTrvSimulationParameters::zupts},
    SOwned{labelAltitudeMode, &CTrvSimulationParameters::altitudeModes},
    SOwnedOfKinds{&CTrvSimulationParameters::sensors,
                  std::tuple{SKind<CTrvSensorGps>{labelGps}, SKind<CTrvSensorDvl>{labelDvl},
                             SKind<CTrvSensorEMLog>{labelEmLog}, SKind<CTrvSensorDepth>{labelDepth},
                             SKind<CTrvSensorUsbl>{labelUsbl}, SKind<CTrvSensorLbl>{labelLbl},
                             SKind<CTrvSensorOdometer>{labelOdometer},
                             SKind<CTrvSensorEventMarker>{labelEventMarker},
                             SKind<CTrvSensorPlatformOrientation>{labelMount}}},
    SOwned{labelConfiguration, &CTrvSimulationParameters::nelixConfiguration},
    SOwned{labelInputFile, &CTrvSimulationParameters::mainInputFile},
    SOwned{labelOutputFile, &CTrvSimulationParameters::outputFile},
    SOwned{labelExternalFile, &CTrvSimulationParameters::externalFiles},
    SComputed{labelUtcReference, UtcReference},
};

// Graphs and instant values.

template <>
inline constexpr auto kRowsOf<CTrv1DCurve> = std::tuple{
    SField{labelLabel, &CTrv1DCurve::label, Text},      SField{labelDataFile, &CTrv1DCurve::dataFile, FileOf},
    SComputed{labelChannel, ShownChannel<CTrv1DCurve>}, SField{labelField, &CTrv1DCurve::field, Whole},
    SField{labelColor, &CTrv1DCurve::color, Color},     SField{labelFactor, &CTrv1DCurve::factor, SNumber{}},
};
template <>
inline constexpr auto kRowsOf<CTrv1DGraphMeasure> = std::tuple{
    SField{labelTitle, &CTrv1DGraphMeasure::title, Text},
    SOwned{labelCurve, &CTrv1DGraphMeasure::curves},
};
template <>
inline constexpr auto kRowsOf<CTrv1DGraphEnum> = std::tuple{
    SField{labelTitle, &CTrv1DGraphEnum::title, Text},
    SField{labelDataFile, &CTrv1DGraphEnum::dataFile, FileOf},
    SComputed{labelChannel, ShownChannel<CTrv1DGraphEnum>},
    SField{labelField, &CTrv1DGraphEnum::field, Whole},
    SField{labelLabel, &CTrv1DGraphEnum::label, Text},
};
template <>
inline constexpr auto kRowsOf<CTrv1DSettings> = std::tuple{
    SOwnedOfKinds{&CTrv1DSettings::graphs,
                  std::tuple{SKind<CTrv1DGraphMeasure>{labelGraph}, SKind<CTrv1DGraphEnum>{labelChronogram}}},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValue> = std::tuple{
    SField{labelLabel, &CTrvInstantValue::label, Text},
    SField{labelDataFile, &CTrvInstantValue::dataFile, FileOf},
    SComputed{labelChannel, ShownChannel<CTrvInstantValue>},
    SField{labelField, &CTrvInstantValue::field, Whole},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesEnum> = kRowsOf<CTrvInstantValue>;
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesMeasure> = std::tuple{
    SBase<CTrvInstantValue>{},
    SField{labelSecondField, &CTrvInstantValuesMeasure::secondField, Whole},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesSettings> = std::tuple{
    SOwned{labelMeasure, &CTrvInstantValuesSettings::measures},
    SOwned{labelEnumeration, &CTrvInstantValuesSettings::enums},
};

template <>
inline constexpr auto kRowsOf<CTrvProject> = std::tuple{
    SOwned{labelSimulationParameters, &CTrvProject::simulationParameters},
    SOwned{labelGraphs, &CTrvProject::graphSettings},
    SOwned{labelInstantValues, &CTrvProject::instantValuesSettings},
};

int DescribeCommand(const COptions& options, SStreams streams) {
    CSession session(streams);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    const CTrvProject& project = *session.GetDocument().GetProject();
    Outils_Valeurs::CTrvAdaptors adaptors;
    adaptors.Configure(session.GetConfiguration());
    CTrvSimulationTimeAdaptor time(adaptors.GetDateTimeSpan(), adaptors.GetDateTime());
    using namespace Outils_Configuration;
    time.mode =
        static_cast<std::int32_t>(session.GetConfiguration().Get(Cnf<"adaptors/simulationTime/mode">));
    CDescription(streams.out, adaptors, time, *project.simulationParameters).Rows(project);
    return exitSuccess;
}

} // namespace Batch
