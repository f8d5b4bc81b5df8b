// The whole project as text: every field that is archived under its own name, values as the user's settings
// show them. The order is that of the archives.
#include "batch/commands.h"
#include "batch/description_formats.h"
#include "batch/session.h"
#include "foundation/texts.h"

namespace Batch {

using Outils_Texte::EText;

using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

// Periods.

template <>
inline constexpr auto kRowsOf<CTrvPeriod> = std::tuple{
    SField{EText::fromLabel, &CTrvPeriod::begin, Time},
    SField{EText::toLabel, &CTrvPeriod::end, Time},
};
template <>
inline constexpr auto kRowsOf<CTrvOutputRate> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::value, &CTrvOutputRate::value, kHertz},
};
template <>
inline constexpr auto kRowsOf<CTrvZupt> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::mode, &CTrvZupt::mode, SWord{EWordList::zuptMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvAltitudeMode> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::mode, &CTrvAltitudeMode::mode, SWord{EWordList::altitudeMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvRejectionInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::mode, &CTrvRejectionInstruction::mode, SWord{EWordList::rejectionMode}},
};
template <>
inline constexpr auto kRowsOf<CTrvHorizontalFilteringInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::threshold, &CTrvHorizontalFilteringInstruction::threshold, SQuantity{EQuantity::distance}},
};
template <>
inline constexpr auto kRowsOf<CTrvRejectionGroup> = std::tuple{
    SField{EText::name, &CTrvRejectionGroup::name, Text},
    SOwned{EText::rejection, &CTrvRejectionGroup::instructions},
};

// Standard deviations. The modes of an odometer have words of their own.

template <>
inline constexpr auto kRowsOf<CTrvStdDevInstruction> = std::tuple{
    SBase<CTrvPeriod>{},
    SField{EText::wholeSimulation, &CTrvStdDevInstruction::isDefault, Flag},
};
constexpr SField kStdDevMode{EText::mode, &CTrvStdDevInstruction::mode, SWord{EWordList::stdDevMode}};

template <EQuantity quantity>
inline constexpr auto kScalarRows = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    kStdDevMode,
    SField{EText::value, &CTrvScalarStdDev::value, SQuantity{quantity}},
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
    SField{EText::latitude, &CTrvPositionStdDev::latitude, SQuantity{EQuantity::distance}},
    SField{EText::longitude, &CTrvPositionStdDev::longitude, SQuantity{EQuantity::distance}},
    SField{EText::crossvariance, &CTrvPositionStdDev::crossvariance, SQuantity{EQuantity::crossvariance}},
    SField{EText::altitude, &CTrvPositionStdDev::altitude, SQuantity{EQuantity::altitude}},
};
template <>
inline constexpr auto kRowsOf<CTrvGpsStdDevInstruction> = kRowsOf<CTrvPositionStdDev>;
template <>
inline constexpr auto kRowsOf<CTrvUsblStdDevInstruction> = kRowsOf<CTrvPositionStdDev>;

template <>
inline constexpr auto kRowsOf<CTrvDvlStdDevInstruction> = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    kStdDevMode,
    SField{EText::axisX, &CTrvDvlStdDevInstruction::x, SQuantity{EQuantity::linearSpeed}},
    SField{EText::axisY, &CTrvDvlStdDevInstruction::y, SQuantity{EQuantity::linearSpeed}},
    SField{EText::axisZ, &CTrvDvlStdDevInstruction::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvOdometerStdDevInstruction> = std::tuple{
    SBase<CTrvStdDevInstruction>{},
    SField{EText::mode, &CTrvStdDevInstruction::mode, SWord{EWordList::odometerStdDevMode}},
    SField{EText::valueX, &CTrvOdometerStdDevInstruction::x, SQuantity{EQuantity::linearSpeed}},
    SField{EText::valueY, &CTrvOdometerStdDevInstruction::y, SQuantity{EQuantity::linearSpeed}},
    SField{EText::valueZ, &CTrvOdometerStdDevInstruction::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvGpsStdDevThreshold> = std::tuple{
    SField{EText::latitude, &CTrvGpsStdDevThreshold::latitude, SQuantity{EQuantity::distance}},
    SField{EText::longitude, &CTrvGpsStdDevThreshold::longitude, SQuantity{EQuantity::distance}},
    SField{EText::altitude, &CTrvGpsStdDevThreshold::altitude, SQuantity{EQuantity::altitude}},
};

// Sensors.

template <>
inline constexpr auto kRowsOf<CTrvCurrentModeling> = std::tuple{
    SField{EText::time, &CTrvCurrentModeling::time, SQuantity{EQuantity::currentTime}},
    SField{EText::sigma, &CTrvCurrentModeling::sigma, SQuantity{EQuantity::currentSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvSpeedBias> = std::tuple{
    SField{EText::speedX, &CTrvSpeedBias::x, SQuantity{EQuantity::linearSpeed}},
    SField{EText::speedY, &CTrvSpeedBias::y, SQuantity{EQuantity::linearSpeed}},
    SField{EText::speedZ, &CTrvSpeedBias::z, SQuantity{EQuantity::linearSpeed}},
};
template <>
inline constexpr auto kRowsOf<CTrvSensor> = std::tuple{
    SField{EText::dataFile, &CTrvSensor::channel, SensorFile},
    SField{EText::channel, &CTrvSensor::channel, SensorChannel},
    SField{EText::timeOffset, &CTrvSensor::timeOffset, Offset},
    SOwned{EText::rejections, &CTrvSensor::rejectionGroups},
    SField{EText::synchronizedOutput, &CTrvSensor::synchronizedOutput, Flag},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorGps> = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::leverArm, &CTrvSensorGps::leverArm, LeverArm},
    SOwned{EText::stdDev, &CTrvSensorGps::stdDevInstruction},
    SOwned{EText::minimumValue, &CTrvSensorGps::stdDevThreshold},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorDvl> = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::leverArm, &CTrvSensorDvl::leverArm, LeverArm},
    SField{EText::misalignment, &CTrvSensorDvl::misalignment, Angles},
    SField{EText::scaleFactor, &CTrvSensorDvl::scaleFactor, SQuantity{EQuantity::scaleFactor}},
    SOwned{EText::currentModeling, &CTrvSensorDvl::currentModeling},
    SOwned{EText::speedBias, &CTrvSensorDvl::speedBias},
    SOwned{EText::bottomTrackStdDev, &CTrvSensorDvl::bottomTrackStdDevInstruction},
    SOwned{EText::waterTrackStdDev, &CTrvSensorDvl::waterTrackStdDevInstruction},
};
template <class Sensor>
inline constexpr auto kScalarSensorRows = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::leverArm, &Sensor::leverArm, LeverArm},
    SOwned{EText::stdDev, &Sensor::stdDevInstruction},
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
    SField{EText::reserved, &CTrvSensorUsbl::reserved, Whole},
    SField{EText::leverArm, &CTrvSensorUsbl::leverArm, LeverArm},
    SField{EText::transponderCode, &CTrvSensorUsbl::transponderCode, Text},
    SOwned{EText::stdDev, &CTrvSensorUsbl::stdDevInstruction},
    SOwned{EText::filtering, &CTrvSensorUsbl::filteringInstructions},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorOdometer> = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::leverArm, &CTrvSensorOdometer::leverArm, LeverArm},
    SField{EText::misalignment, &CTrvSensorOdometer::misalignment, Angles},
    SField{EText::scaleFactor, &CTrvSensorOdometer::scaleFactor, SQuantity{EQuantity::scaleFactor}},
    SOwned{EText::stdDev, &CTrvSensorOdometer::stdDevInstruction},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorEventMarker> = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::eventId, &CTrvSensorEventMarker::eventId, Text},
};
template <>
inline constexpr auto kRowsOf<CTrvSensorPlatformOrientation> = std::tuple{
    SBase<CTrvSensor>{},
    SField{EText::insLeverArm, &CTrvSensorPlatformOrientation::insLeverArm, LeverArm},
    SField{EText::insMisalignment, &CTrvSensorPlatformOrientation::insMisalignment, Angles},
    SField{EText::vehicleLeverArm, &CTrvSensorPlatformOrientation::vehicleLeverArm, LeverArm},
    SField{EText::vehicleMisalignment, &CTrvSensorPlatformOrientation::vehicleMisalignment, Angles},
};

// The inertial unit.

template <>
inline constexpr auto kRowsOf<CTrvNelixType> = std::tuple{
    SComputed{EText::equipment, TypeWord<CTrvNelixType::fieldEquipment>},
    SComputed{EText::housing, TypeWord<CTrvNelixType::fieldHousing>},
    SComputed{EText::fog, TypeWord<CTrvNelixType::fieldFog>},
    SComputed{EText::accelerometers, TypeWord<CTrvNelixType::fieldAccelerometers>},
    SComputed{EText::saturation, TypeWord<CTrvNelixType::fieldSaturation>},
    SComputed{EText::algorithm, TypeWord<CTrvNelixType::fieldAlgorithm>},
};
template <>
inline constexpr auto kRowsOf<CTrvNelixConfiguration> = std::tuple{
    SField{EText::factoryMisalignment, &CTrvNelixConfiguration::factoryMisalignment, Angles},
    SField{EText::roughMisalignment, &CTrvNelixConfiguration::roughMisalignment, Whole},
    SField{EText::fineMisalignment, &CTrvNelixConfiguration::fineMisalignment, Angles},
    SField{EText::userMisalignment, &CTrvNelixConfiguration::userMisalignment, Angles},
    SField{EText::primaryLeverArm, &CTrvNelixConfiguration::primaryLeverArm, LeverArm},
    SField{EText::secondaryLeverArmA, &CTrvNelixConfiguration::secondaryLeverArmA, LeverArm},
    SField{EText::secondaryLeverArmB, &CTrvNelixConfiguration::secondaryLeverArmB, LeverArm},
    SField{EText::secondaryLeverArmC, &CTrvNelixConfiguration::secondaryLeverArmC, LeverArm},
    SOwned{EText::currentModeling, &CTrvNelixConfiguration::currentModeling},
    SOwned{EText::device, &CTrvNelixConfiguration::type},
    SField{EText::cogLeverArm, &CTrvNelixConfiguration::cogLeverArm, LeverArm},
};

// The parameters of the processing.

template <>
inline constexpr auto kRowsOf<CTrvDataFile> = std::tuple{
    SField{EText::path, &CTrvDataFile::path, Path},
    SLines{EText::channel, &CTrvDataFile::channels, ChannelLine},
    SField{EText::timeOffset, &CTrvDataFile::timeOffset, Offset},
};
template <>
inline constexpr auto kRowsOf<CPosition> = std::tuple{
    SField{EText::latitude, &CPosition::latitude, Latitude},
    SField{EText::longitude, &CPosition::longitude, Longitude},
    SField{EText::altitudeKind, &CPosition::altitudeKind, Whole},
    SField{EText::altitude, &CPosition::altitude, SQuantity{EQuantity::altitude}},
};
template <>
inline constexpr auto kRowsOf<CTrvSimulationParameters> = std::tuple{
    SField{EText::algorithm, &CTrvSimulationParameters::algorithm, SWord{EWordList::algorithm}},
    SField{EText::heave, &CTrvSimulationParameters::heaveAlgorithm, SWord{EWordList::heaveAlgorithm}},
    SField{EText::seaState, &CTrvSimulationParameters::heaveSeaState, SWord{EWordList::heaveSeaState}},
    SField{EText::gpsAltitude, &CTrvSimulationParameters::gpsAltitudeReference,
           SWord{EWordList::gpsAltitudeReference}},
    SOwned{EText::referencePosition, &CTrvSimulationParameters::referencePosition},
    SField{EText::defaultOutputRate, &CTrvSimulationParameters::defaultOutputRate, kHertz},
    SField{EText::begin, &CTrvSimulationParameters::begin, Time},
    SField{EText::end, &CTrvSimulationParameters::end, Time},
    SOwned{EText::outputRate, &CTrvSimulationParameters::outputRates},
    SOwned{EText::zupt, &CTrvSimulationParameters::zupts},
    SOwned{EText::altitudeMode, &CTrvSimulationParameters::altitudeModes},
    SOwnedOfKinds{&CTrvSimulationParameters::sensors,
                  std::tuple{SKind<CTrvSensorGps>{EText::gps}, SKind<CTrvSensorDvl>{EText::dvl},
                             SKind<CTrvSensorEMLog>{EText::emLog}, SKind<CTrvSensorDepth>{EText::depth},
                             SKind<CTrvSensorUsbl>{EText::usbl}, SKind<CTrvSensorLbl>{EText::lbl},
                             SKind<CTrvSensorOdometer>{EText::odometer},
                             SKind<CTrvSensorEventMarker>{EText::eventMarker},
                             SKind<CTrvSensorPlatformOrientation>{EText::gyroStabilizedMount}}},
    SOwned{EText::configuration, &CTrvSimulationParameters::nelixConfiguration},
    SOwned{EText::inputFile, &CTrvSimulationParameters::mainInputFile},
    SOwned{EText::outputFile, &CTrvSimulationParameters::outputFile},
    SOwned{EText::externalFile, &CTrvSimulationParameters::externalFiles},
    SComputed{EText::utcReference, UtcReference},
};

// Graphs and instant values.

template <>
inline constexpr auto kRowsOf<CTrv1DCurve> = std::tuple{
    SField{EText::label, &CTrv1DCurve::label, Text},
    SField{EText::dataFile, &CTrv1DCurve::dataFile, FileOf},
    SComputed{EText::channel, ShownChannel<CTrv1DCurve>},
    SField{EText::field, &CTrv1DCurve::field, Whole},
    SField{EText::color, &CTrv1DCurve::color, Color},
    SField{EText::factor, &CTrv1DCurve::factor, SNumber{}},
};
template <>
inline constexpr auto kRowsOf<CTrv1DGraphMeasure> = std::tuple{
    SField{EText::title, &CTrv1DGraphMeasure::title, Text},
    SOwned{EText::curve, &CTrv1DGraphMeasure::curves},
};
template <>
inline constexpr auto kRowsOf<CTrv1DGraphEnum> = std::tuple{
    SField{EText::title, &CTrv1DGraphEnum::title, Text},
    SField{EText::dataFile, &CTrv1DGraphEnum::dataFile, FileOf},
    SComputed{EText::channel, ShownChannel<CTrv1DGraphEnum>},
    SField{EText::field, &CTrv1DGraphEnum::field, Whole},
    SField{EText::label, &CTrv1DGraphEnum::label, Text},
};
template <>
inline constexpr auto kRowsOf<CTrv1DSettings> = std::tuple{
    SOwnedOfKinds{&CTrv1DSettings::graphs, std::tuple{SKind<CTrv1DGraphMeasure>{EText::graph},
                                                      SKind<CTrv1DGraphEnum>{EText::chronogram}}},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValue> = std::tuple{
    SField{EText::label, &CTrvInstantValue::label, Text},
    SField{EText::dataFile, &CTrvInstantValue::dataFile, FileOf},
    SComputed{EText::channel, ShownChannel<CTrvInstantValue>},
    SField{EText::field, &CTrvInstantValue::field, Whole},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesEnum> = kRowsOf<CTrvInstantValue>;
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesMeasure> = std::tuple{
    SBase<CTrvInstantValue>{},
    SField{EText::secondField, &CTrvInstantValuesMeasure::secondField, Whole},
};
template <>
inline constexpr auto kRowsOf<CTrvInstantValuesSettings> = std::tuple{
    SOwned{EText::measure, &CTrvInstantValuesSettings::measures},
    SOwned{EText::natureEnumeration, &CTrvInstantValuesSettings::enums},
};

template <>
inline constexpr auto kRowsOf<CTrvProject> = std::tuple{
    SOwned{EText::simulationParameters, &CTrvProject::simulationParameters},
    SOwned{EText::graphs, &CTrvProject::graphSettings},
    SOwned{EText::instantValues, &CTrvProject::instantValuesSettings},
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
