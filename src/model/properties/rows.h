// The properties of the project, one constant each. A new property is one new constant, listed in its class
// in classes.cpp.
#pragma once

#include "foundation/paths.h"
#include "model/properties/builders.h"
#include "model/simulation_parameters.h"

namespace Metier_Tarvel_Proprietes {

using namespace Metier_Tarvel;
using Outils_Texte::GetText;
using Outils_Valeurs::EQuantity;

namespace Rows {

inline constexpr SForm kTime{EPropertyForm::time};
inline constexpr SForm kOffset{EPropertyForm::offset};
inline constexpr SForm kText{EPropertyForm::text};
inline constexpr SForm kFlag{EPropertyForm::flag};
inline constexpr SForm kWhole{EPropertyForm::whole};
inline constexpr SForm kDistance = Quantity(EQuantity::distance);
inline constexpr SForm kAltitudeForm = Quantity(EQuantity::altitude);
inline constexpr SForm kSpeed = Quantity(EQuantity::linearSpeed);
inline constexpr SForm kArm = Quantity(EQuantity::leverArm);
inline constexpr SForm kAngle = Quantity(EQuantity::misalignment);
inline constexpr SForm kHertz = Number(EText::hertz);

// --- Periods

// A standard deviation that covers the whole simulation has no use for its period.
inline bool HasOwnPeriod(const CObject& object) {
    return !object.IsKindOf(CTrvStdDevInstruction::Class()) ||
           !static_cast<const CTrvStdDevInstruction&>(object).isDefault;
}
inline constexpr SProperty kFrom =
    Value<&CTrvPeriod::begin>(EText::fromLabel, EText::helpFrom, kTime).VisibleIf(HasOwnPeriod);
inline constexpr SProperty kTo =
    Value<&CTrvPeriod::end>(EText::toLabel, EText::helpTo, kTime).VisibleIf(HasOwnPeriod);
inline constexpr SProperty kOutputRate =
    Value<&CTrvOutputRate::value>(EText::value, EText::helpOutputRate, kHertz).In(kPositive);
inline constexpr SProperty kZuptMode =
    Value<&CTrvZupt::mode>(EText::mode, EText::helpZuptMode, Word(EWordList::zuptMode));
inline constexpr SProperty kAltitudeMode =
    Value<&CTrvAltitudeMode::mode>(EText::mode, EText::helpAltitudeMode, Word(EWordList::altitudeMode));
inline constexpr SProperty kRejectionMode = Value<&CTrvRejectionInstruction::mode>(
    EText::mode, EText::helpRejectionMode, Word(EWordList::rejectionMode));
inline constexpr SProperty kThreshold =
    Value<&CTrvHorizontalFilteringInstruction::threshold>(EText::threshold, EText::helpThreshold, kDistance)
        .In(kNotNegative);
inline constexpr SProperty kGroupName =
    FixedValue<&CTrvRejectionGroup::name>(EText::name, EText::helpGroupName, kText);
inline constexpr SProperty kGroupInstructions =
    Owned<&CTrvRejectionGroup::instructions>(EText::rejections, EText::helpRejections);

// --- Standard deviations

inline constexpr SProperty kWholeSimulation =
    FixedValue<&CTrvStdDevInstruction::isDefault>(EText::wholeSimulation, EText::helpWholeSimulation, kFlag);
inline constexpr SProperty kStdDevMode =
    Value<&CTrvStdDevInstruction::mode>(EText::mode, EText::helpStdDevMode, Word(EWordList::stdDevMode));
inline constexpr SProperty kOdometerStdDevMode = Value<&CTrvStdDevInstruction::mode>(
    EText::mode, EText::helpStdDevMode, Word(EWordList::odometerStdDevMode));

constexpr SProperty ScalarStdDev(EQuantity quantity) {
    return Value<&CTrvScalarStdDev::value>(EText::value, EText::helpStdDev, Quantity(quantity))
        .In(kNotNegative);
}
inline constexpr SProperty kDepthStdDev = ScalarStdDev(EQuantity::altitude);
inline constexpr SProperty kEMLogStdDev = ScalarStdDev(EQuantity::linearSpeed);
inline constexpr SProperty kLblStdDev = ScalarStdDev(EQuantity::distance);

template <auto Member>
constexpr SProperty StdDev(EText label, SForm form) {
    return Value<Member>(label, EText::helpStdDev, form).In(kNotNegative);
}
inline constexpr SProperty kLatitudeStdDev =
    StdDev<&CTrvPositionStdDev::latitude>(EText::latitude, kDistance);
inline constexpr SProperty kLongitudeStdDev =
    StdDev<&CTrvPositionStdDev::longitude>(EText::longitude, kDistance);
inline constexpr SProperty kCrossvariance = Value<&CTrvPositionStdDev::crossvariance>(
    EText::crossvariance, EText::helpCrossvariance, Quantity(EQuantity::crossvariance));
inline constexpr SProperty kAltitudeStdDev =
    StdDev<&CTrvPositionStdDev::altitude>(EText::altitude, kAltitudeForm);
inline constexpr SProperty kStdDevX = StdDev<&CTrvVectorStdDev::x>(EText::axisX, kSpeed);
inline constexpr SProperty kStdDevY = StdDev<&CTrvVectorStdDev::y>(EText::axisY, kSpeed);
inline constexpr SProperty kStdDevZ = StdDev<&CTrvVectorStdDev::z>(EText::axisZ, kSpeed);
inline constexpr SProperty kOdometerStdDevX = StdDev<&CTrvVectorStdDev::x>(EText::valueX, kSpeed);
inline constexpr SProperty kOdometerStdDevY = StdDev<&CTrvVectorStdDev::y>(EText::valueY, kSpeed);
inline constexpr SProperty kOdometerStdDevZ = StdDev<&CTrvVectorStdDev::z>(EText::valueZ, kSpeed);

template <auto Member>
constexpr SProperty Least(EText label, SForm form) {
    return Value<Member>(label, EText::helpLeastStdDev, form).In(kNotNegative);
}
inline constexpr SProperty kLeastLatitude =
    Least<&CTrvGpsStdDevThreshold::latitude>(EText::latitude, kDistance);
inline constexpr SProperty kLeastLongitude =
    Least<&CTrvGpsStdDevThreshold::longitude>(EText::longitude, kDistance);
inline constexpr SProperty kLeastAltitude =
    Least<&CTrvGpsStdDevThreshold::altitude>(EText::altitude, kAltitudeForm);

// --- Mounting

inline constexpr SProperty kArm1 = Value<&CLeverArm::xv1>(EText::xv1, EText::helpArm1, kArm);
inline constexpr SProperty kArm2 = Value<&CLeverArm::xv2>(EText::xv2, EText::helpArm2, kArm);
inline constexpr SProperty kArm3 = Value<&CLeverArm::xv3>(EText::xv3, EText::helpArm3, kArm);
inline constexpr SProperty kHeading =
    Value<&CMisalignment::heading>(EText::heading, EText::helpHeading, kAngle);
inline constexpr SProperty kRoll = Value<&CMisalignment::roll>(EText::roll, EText::helpRoll, kAngle);
inline constexpr SProperty kPitch = Value<&CMisalignment::pitch>(EText::pitch, EText::helpPitch, kAngle);

// The members that several kinds of sensors have.
template <class Sensor>
inline constexpr SProperty kLeverArm = OwnedInLine<&Sensor::leverArm>(EText::leverArm, EText::helpLeverArm);
template <class Sensor>
inline constexpr SProperty kMisalignment = OwnedInLine<&Sensor::misalignment>(EText::misalignment,
                                                                              EText::helpMisalignment);
template <class Sensor>
inline constexpr SProperty kScaleFactor = Value<&Sensor::scaleFactor>(EText::scaleFactor,
                                                                      EText::helpScaleFactor,
                                                                      Quantity(EQuantity::scaleFactor));
template <class Sensor>
constexpr SProperty StdDevOf(EText label) {
    return Owned<&Sensor::stdDevInstruction>(label, EText::helpStdDevSection).ForExperts();
}

// --- Sensors

inline std::string PathOf(const CTrvDataFile* file) {
    return file ? Outils_Fichiers::ToText(file->path) : std::string(GetText(EText::noneWord));
}
inline std::string SensorFile(const SPropertyContext&, const CTrvSensor& sensor) {
    return PathOf(sensor.channel ? sensor.channel->file : nullptr);
}
inline std::string SensorChannel(const SPropertyContext&, const CTrvSensor& sensor) {
    return sensor.channel ? sensor.channel->name : std::string(GetText(EText::noneWord));
}
inline constexpr SProperty kDataFile = Shown<CTrvSensor, SensorFile>(EText::dataFile, EText::helpDataFile);
inline constexpr SProperty kChannel = Shown<CTrvSensor, SensorChannel>(EText::channel, EText::helpChannel);
inline constexpr SProperty kSensorTimeOffset =
    Value<&CTrvSensor::timeOffset>(EText::timeOffset, EText::helpSensorTimeOffset, kOffset);
inline constexpr SProperty kRejections =
    Owned<&CTrvSensor::rejectionGroups>(EText::rejections, EText::helpRejections);
inline constexpr SProperty kSynchronizedOutput =
    Value<&CTrvSensor::synchronizedOutput>(EText::synchronizedOutput, EText::helpSynchronizedOutput, kFlag);

// One reference for all GPS of the project, shown with each of them.
inline std::int32_t& AltitudeReferenceOf(const CTrvSensorGps& sensor) {
    return sensor.owner->gpsAltitudeReference;
}
inline constexpr SProperty kGpsAltitude = Value<AltitudeReferenceOf>(
    EText::gpsAltitude, EText::helpGpsAltitude, Word(EWordList::gpsAltitudeReference));
inline constexpr SProperty kGpsStdDev = StdDevOf<CTrvSensorGps>(EText::stdDev);
inline constexpr SProperty kMinimumValue =
    Owned<&CTrvSensorGps::stdDevThreshold>(EText::minimumValue, EText::helpLeastStdDev).ForExperts();

inline constexpr SProperty kCurrentTime =
    Value<&CTrvCurrentModeling::time>(EText::time, EText::helpCurrentTime, Quantity(EQuantity::currentTime))
        .In(kNotNegative);
inline constexpr SProperty kCurrentSigma =
    Value<&CTrvCurrentModeling::sigma>(EText::sigma, EText::helpCurrentSigma,
                                       Quantity(EQuantity::currentSpeed))
        .In(kNotNegative);
inline constexpr SProperty kBiasX = Value<&CTrvSpeedBias::x>(EText::speedX, EText::helpSpeedBias, kSpeed);
inline constexpr SProperty kBiasY = Value<&CTrvSpeedBias::y>(EText::speedY, EText::helpSpeedBias, kSpeed);
inline constexpr SProperty kBiasZ = Value<&CTrvSpeedBias::z>(EText::speedZ, EText::helpSpeedBias, kSpeed);
inline constexpr SProperty kCurrentModeling =
    Owned<&CTrvSensorDvl::currentModeling>(EText::currentModeling, EText::helpCurrentModeling);
inline constexpr SProperty kSpeedBias =
    Owned<&CTrvSensorDvl::speedBias>(EText::speedBias, EText::helpSpeedBias);
inline constexpr SProperty kBottomTrackStdDev =
    Owned<&CTrvSensorDvl::bottomTrackStdDevInstruction>(EText::bottomTrackStdDev, EText::helpStdDevSection)
        .ForExperts();
inline constexpr SProperty kWaterTrackStdDev =
    Owned<&CTrvSensorDvl::waterTrackStdDevInstruction>(EText::waterTrackStdDev, EText::helpStdDevSection)
        .ForExperts();

inline constexpr SProperty kEMLogStdDevs = StdDevOf<CTrvSensorEMLog>(EText::emLogStdDev);
inline constexpr SProperty kDepthStdDevs = StdDevOf<CTrvSensorDepth>(EText::depthStdDev);
inline constexpr SProperty kLblStdDevs = StdDevOf<CTrvSensorLbl>(EText::lblStdDev);
inline constexpr SProperty kUsblStdDevs = StdDevOf<CTrvSensorUsbl>(EText::usblStdDev);
inline constexpr SProperty kOdometerStdDevs = StdDevOf<CTrvSensorOdometer>(EText::odometerStdDev);

inline constexpr SProperty kReserved =
    FixedValue<&CTrvSensorUsbl::reserved>(EText::reserved, EText::helpReserved, kWhole);
inline constexpr SProperty kTransponderCode =
    Value<&CTrvSensorUsbl::transponderCode>(EText::transponderCode, EText::helpTransponderCode, kText);
inline constexpr SProperty kFiltering =
    Owned<&CTrvSensorUsbl::filteringInstructions>(EText::filteringSection, EText::helpFiltering);
inline constexpr SProperty kEventId =
    Value<&CTrvSensorEventMarker::eventId>(EText::eventId, EText::helpEventId, kText);

using CMount = CTrvSensorPlatformOrientation;
inline constexpr SProperty kInsLeverArm =
    OwnedInLine<&CMount::insLeverArm>(EText::insLeverArm, EText::helpInsLeverArm);
inline constexpr SProperty kVehicleLeverArm =
    OwnedInLine<&CMount::vehicleLeverArm>(EText::vehicleLeverArm, EText::helpVehicleLeverArm);
inline constexpr SProperty kInsMisalignment =
    OwnedInLine<&CMount::insMisalignment>(EText::insMisalignment, EText::helpInsMisalignment);
inline constexpr SProperty kVehicleMisalignment =
    OwnedInLine<&CMount::vehicleMisalignment>(EText::vehicleMisalignment, EText::helpVehicleMisalignment);

// --- The inertial unit

template <CTrvNelixType::EField Field>
std::string TypeWord(const SPropertyContext&, const CTrvNelixType& type) {
    return type.GetFieldText(Field);
}
template <CTrvNelixType::EField Field>
constexpr SProperty TypeRow(EText label) {
    return Shown<CTrvNelixType, TypeWord<Field>>(label, EText::helpDevice);
}
inline constexpr SProperty kEquipment = TypeRow<CTrvNelixType::fieldEquipment>(EText::equipment);
inline constexpr SProperty kHousing = TypeRow<CTrvNelixType::fieldHousing>(EText::housing);
inline constexpr SProperty kFog = TypeRow<CTrvNelixType::fieldFog>(EText::fog);
inline constexpr SProperty kAccelerometers =
    TypeRow<CTrvNelixType::fieldAccelerometers>(EText::accelerometers);
inline constexpr SProperty kSaturation = TypeRow<CTrvNelixType::fieldSaturation>(EText::saturation);
inline constexpr SProperty kTypeAlgorithm = TypeRow<CTrvNelixType::fieldAlgorithm>(EText::algorithm);

using CIns = CTrvNelixConfiguration;
inline constexpr SProperty kFactoryMisalignment =
    OwnedInLine<&CIns::factoryMisalignment>(EText::factoryMisalignment, EText::helpFactoryMisalignment);
inline constexpr SProperty kRoughMisalignment =
    Value<&CIns::roughMisalignment>(EText::roughMisalignment, EText::helpRoughMisalignment, kWhole)
        .In({0.0, kRoughMisalignmentCount - 1.0});
inline constexpr SProperty kFineMisalignment =
    OwnedInLine<&CIns::fineMisalignment>(EText::fineMisalignment, EText::helpFineMisalignment);
inline constexpr SProperty kUserMisalignment =
    OwnedInLine<&CIns::userMisalignment>(EText::userMisalignment, EText::helpUserMisalignment);
inline constexpr SProperty kPrimaryLeverArm =
    OwnedInLine<&CIns::primaryLeverArm>(EText::primaryLeverArm, EText::helpPrimaryLeverArm);
inline constexpr SProperty kSecondaryLeverArmA =
    OwnedInLine<&CIns::secondaryLeverArmA>(EText::secondaryLeverArmA, EText::helpSecondaryLeverArm);
inline constexpr SProperty kSecondaryLeverArmB =
    OwnedInLine<&CIns::secondaryLeverArmB>(EText::secondaryLeverArmB, EText::helpSecondaryLeverArm);
inline constexpr SProperty kSecondaryLeverArmC =
    OwnedInLine<&CIns::secondaryLeverArmC>(EText::secondaryLeverArmC, EText::helpSecondaryLeverArm);
inline constexpr SProperty kInsCurrentModeling =
    Owned<&CIns::currentModeling>(EText::currentModeling, EText::helpCurrentModeling);
inline constexpr SProperty kDevice = Owned<&CIns::type>(EText::device, EText::helpDevice);
inline constexpr SProperty kCogLeverArm =
    OwnedInLine<&CIns::cogLeverArm>(EText::cogLeverArm, EText::helpCogLeverArm);
inline std::string CipherText(const SPropertyContext&, const CIns& configuration) {
    return std::string(GetText(configuration.imuCipherMode ? EText::yes : EText::no));
}
inline constexpr SProperty kCiphered = Shown<CIns, CipherText>(EText::cipheredImu, EText::helpCipheredImu);

// --- The processing

inline std::string PathText(const SPropertyContext&, const CTrvDataFile& file) { return PathOf(&file); }
inline constexpr SProperty kPath = Shown<CTrvDataFile, PathText>(EText::path, EText::helpPath);
inline constexpr SProperty kChannels =
    OwnedInLine<&CTrvDataFile::channels>(EText::channel, EText::helpChannels);
// The recording and the result have the clock of the project.
inline bool IsOnItsOwnClock(const CObject& object) {
    const auto& file = static_cast<const CTrvDataFile&>(object);
    return !file.owner || (file.owner->mainInputFile.get() != &file && file.owner->outputFile.get() != &file);
}
inline constexpr SProperty kFileTimeOffset =
    Value<&CTrvDataFile::timeOffset>(EText::timeOffset, EText::helpFileTimeOffset, kOffset)
        .VisibleIf(IsOnItsOwnClock);
// "5 GPS_1 Gps": the last word is the kind of sensor that may use the channel.
inline std::string ChannelText(const SPropertyContext&, const CTrvDataFileChannel& channel) {
    const SSensorKind* kind = FindSensorKind(channel.sensorClass);
    std::string line = std::to_string(channel.id) + ' ' + channel.name;
    if (kind || !channel.sensorClass.empty())
        line.append(" ").append(kind ? GetText(kind->label) : channel.sensorClass);
    return line;
}
inline constexpr SProperty kChannelText =
    Shown<CTrvDataFileChannel, ChannelText>(kNoText, EText::helpChannels);

inline constexpr SProperty kLatitude =
    Value<&CPosition::latitude>(EText::latitude, EText::helpLatitude, {EPropertyForm::latitude})
        .In({-90.0, 90.0});
inline constexpr SProperty kLongitude =
    Value<&CPosition::longitude>(EText::longitude, EText::helpLongitude, {EPropertyForm::longitude})
        .In({-180.0, 180.0});
inline constexpr SProperty kAltitudeKind =
    FixedValue<&CPosition::altitudeKind>(EText::altitudeKind, EText::helpReserved, kWhole);
inline constexpr SProperty kAltitude =
    Value<&CPosition::altitude>(EText::altitude, EText::helpAltitude, kAltitudeForm);

using CRun = CTrvSimulationParameters;
inline constexpr SProperty kAlgorithm =
    Value<&CRun::algorithm>(EText::algorithm, EText::helpAlgorithm, Word(EWordList::algorithm));
inline constexpr SProperty kHeave =
    Value<&CRun::heaveAlgorithm>(EText::heave, EText::helpHeave, Word(EWordList::heaveAlgorithm));
inline constexpr SProperty kSeaState =
    Value<&CRun::heaveSeaState>(EText::seaState, EText::helpSeaState, Word(EWordList::heaveSeaState));
inline constexpr SProperty kRunGpsAltitude = Value<&CRun::gpsAltitudeReference>(
    EText::gpsAltitude, EText::helpGpsAltitude, Word(EWordList::gpsAltitudeReference));
inline constexpr SProperty kReferencePosition =
    Owned<&CRun::referencePosition>(EText::referencePosition, EText::helpReferencePosition);
inline constexpr SProperty kDefaultOutputRate =
    Value<&CRun::defaultOutputRate>(EText::defaultOutputRate, EText::helpOutputRate, kHertz).In(kPositive);
inline constexpr SProperty kBegin = Value<&CRun::begin>(EText::begin, EText::helpBegin, kTime);
inline constexpr SProperty kEnd = Value<&CRun::end>(EText::end, EText::helpEnd, kTime);
inline std::string FrequencyText(const SPropertyContext&, const CRun& run) {
    return std::to_string(run.imuFrequency).append(" ").append(GetText(EText::hertz));
}
inline constexpr SProperty kImuFrequency =
    Shown<CRun, FrequencyText>(EText::imuFrequency, EText::helpImuFrequency);
inline constexpr SProperty kOutputRates =
    Owned<&CRun::outputRates>(EText::outputRateCollection, EText::helpOutputRate);
inline constexpr SProperty kZupts = Owned<&CRun::zupts>(EText::zuptCollection, EText::helpZuptMode);
inline constexpr SProperty kAltitudeModes =
    Owned<&CRun::altitudeModes>(EText::altitudeModeCollection, EText::helpAltitudeMode);
inline constexpr SProperty kSensors = Owned<&CRun::sensors>(EText::sensors, EText::helpSensors);
inline constexpr SProperty kConfiguration =
    Owned<&CRun::nelixConfiguration>(EText::configuration, EText::helpConfiguration);
inline constexpr SProperty kInputFile = Owned<&CRun::mainInputFile>(EText::inputFile, EText::helpInputFile);
inline constexpr SProperty kOutputFile = Owned<&CRun::outputFile>(EText::outputFile, EText::helpOutputFile);
inline constexpr SProperty kExternalFiles =
    Owned<&CRun::externalFiles>(EText::externalFile, EText::helpExternalFile);
// Without a reference its date means nothing.
inline std::string UtcReference(const SPropertyContext& context, const CRun& run) {
    std::string text(GetText(EText::noneWord));
    if (run.hasUtcReference) context.adaptors.GetDateTime().ValueToText(run.utcReference, text);
    return text;
}
inline constexpr SProperty kUtcReference =
    Shown<CRun, UtcReference>(EText::utcReference, EText::helpUtcReference);

} // namespace Rows
} // namespace Metier_Tarvel_Proprietes
