#include "model/properties/classes.h"

#include "foundation/texts.h"
#include "model/project.h"
#include "model/properties/rows.h"

#include <algorithm>
#include <array>

namespace Metier_Tarvel_Proprietes {

namespace {

using namespace Rows;
using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

template <std::size_t... Sizes>
constexpr auto Join(const std::array<const SProperty*, Sizes>&... parts) {
    std::array<const SProperty*, (Sizes + ...)> all{};
    auto next = all.begin();
    ((next = std::copy(parts.begin(), parts.end(), next)), ...);
    return all;
}
template <class... Row>
constexpr auto List(const Row&... rows) {
    return std::array<const SProperty*, sizeof...(Row)>{&rows...};
}

// --- Graphs and instant values: no property of them is edited as text.

template <class Object>
std::string ShownFile(const SPropertyContext&, const Object& object) {
    return PathOf(object.dataFile);
}
// The channel's name; its number when the reference leads nowhere.
template <class Object>
std::string ShownChannel(const SPropertyContext&, const Object& object) {
    const auto* channel = object.dataFile ? object.dataFile->FindChannel(object.channel) : nullptr;
    return channel ? channel->name : std::to_string(object.channel);
}
template <class Object>
constexpr SProperty kLabel = FixedValue<&Object::label>(EText::label, EText::helpCurveLabel, kText);
template <class Object>
constexpr SProperty kFile = Shown<Object, ShownFile<Object>>(EText::dataFile, EText::helpDataFile);
template <class Object>
constexpr SProperty kShownChannel = Shown<Object, ShownChannel<Object>>(EText::channel, EText::helpChannel);
template <class Object>
constexpr SProperty kField = FixedValue<&Object::field>(EText::field, EText::helpField, kWhole);
constexpr SProperty kTitle = FixedValue<&CTrv1DGraph::title>(EText::title, EText::helpGraphTitle, kText);
constexpr SProperty kColor =
    Value<&CTrv1DCurve::color>(EText::color, EText::helpColor, {EPropertyForm::color});
constexpr SProperty kCurveLabel = Value<&CTrv1DCurve::label>(EText::label, EText::helpCurveLabel, kText);
constexpr SProperty kFactor = Value<&CTrv1DCurve::factor>(EText::factor, EText::helpFactor, Number());
constexpr SProperty kCurves = Owned<&CTrv1DGraphMeasure::curves>(EText::curve, EText::helpGraphTitle);
constexpr SProperty kGraphs = Owned<&CTrv1DSettings::graphs>(EText::graphs, EText::helpGraphs);
constexpr SProperty kSecondField =
    FixedValue<&CTrvInstantValuesMeasure::secondField>(EText::secondField, EText::helpField, kWhole);
constexpr SProperty kMeasures =
    Owned<&CTrvInstantValuesSettings::measures>(EText::measure, EText::helpInstantValues);
constexpr SProperty kEnums =
    Owned<&CTrvInstantValuesSettings::enums>(EText::natureEnumeration, EText::helpInstantValues);

constexpr SProperty kProjectParameters =
    Owned<&CTrvProject::simulationParameters>(EText::simulationParameters, EText::helpParameters);
constexpr SProperty kProjectGraphs = Owned<&CTrvProject::graphSettings>(EText::graphs, EText::helpGraphs);
constexpr SProperty kProjectValues =
    Owned<&CTrvProject::instantValuesSettings>(EText::instantValues, EText::helpInstantValues);

// --- The lists. An archive has the fields of the base before those of the class.

constexpr auto kPeriod = List(kFrom, kTo);
constexpr auto kStdDevBase = List(kFrom, kTo, kWholeSimulation);
constexpr auto kSensorHead = List(kDataFile, kChannel, kSensorTimeOffset);
constexpr auto kSensorBase = Join(kSensorHead, List(kRejections, kSynchronizedOutput));
constexpr auto kSensorTail = List(kSynchronizedOutput, kRejections);

// What one class has of its own, at the two places where the base goes.
template <const auto& Own>
constexpr auto kPeriodRows = Join(Own, kPeriod);
template <const auto& Own>
constexpr auto kPeriodArchive = Join(kPeriod, Own);
template <const auto& Own>
constexpr auto kStdDevArchive = Join(kStdDevBase, Own);
template <const auto& Own, const auto& StdDevs>
constexpr auto kSensorRows = Join(kSensorHead, Own, kSensorTail, StdDevs);
template <const auto& Own>
constexpr auto kSensorArchive = Join(kSensorBase, Own);

constexpr auto kOutputRateOwn = List(Rows::kOutputRate);
constexpr auto kZuptOwn = List(kZuptMode);
constexpr auto kAltitudeModeOwn = List(Rows::kAltitudeMode);
constexpr auto kRejectionOwn = List(kRejectionMode);
constexpr auto kFilteringOwn = List(kThreshold);
constexpr auto kGroup = List(kGroupName, kGroupInstructions);
constexpr auto kGroupRows = List(kGroupInstructions);

constexpr auto kDepthOwn = List(kStdDevMode, kDepthStdDev);
constexpr auto kEMLogOwn = List(kStdDevMode, kEMLogStdDev);
constexpr auto kLblOwn = List(kStdDevMode, kLblStdDev);
constexpr auto kPositionOwn =
    List(kStdDevMode, kLatitudeStdDev, kLongitudeStdDev, kCrossvariance, kAltitudeStdDev);
constexpr auto kDvlOwn = List(kStdDevMode, kStdDevX, kStdDevY, kStdDevZ);
constexpr auto kOdometerOwn = List(kOdometerStdDevMode, kOdometerStdDevX, kOdometerStdDevY, kOdometerStdDevZ);
constexpr auto kLeast = List(kLeastLatitude, kLeastLongitude, kLeastAltitude);

constexpr auto kArms = List(kArm1, kArm2, kArm3);
constexpr auto kAngles = List(kHeading, kRoll, kPitch);
constexpr auto kModeling = List(kCurrentTime, kCurrentSigma);
constexpr auto kBias = List(kBiasX, kBiasY, kBiasZ);

constexpr auto kGps = List(kLeverArm<CTrvSensorGps>, kGpsAltitude);
constexpr auto kGpsStdDevs = List(kGpsStdDev, kMinimumValue);
constexpr auto kGpsArchived = Join(List(kLeverArm<CTrvSensorGps>), kGpsStdDevs);
constexpr auto kDvl = List(kLeverArm<CTrvSensorDvl>, kMisalignment<CTrvSensorDvl>,
                           kScaleFactor<CTrvSensorDvl>, kCurrentModeling, kSpeedBias);
constexpr auto kDvlStdDevs = List(kBottomTrackStdDev, kWaterTrackStdDev);
constexpr auto kDvlArchived = Join(kDvl, kDvlStdDevs);
template <class Sensor>
constexpr auto kArmOf = List(kLeverArm<Sensor>);
template <const auto& StdDevs>
constexpr auto kOne = List(StdDevs);
template <class Sensor, const auto& StdDevs>
constexpr auto kScalar = List(kLeverArm<Sensor>, StdDevs);
constexpr auto kUsbl = List(kLeverArm<CTrvSensorUsbl>, kTransponderCode);
constexpr auto kUsblEnd = List(kUsblStdDevs, kFiltering);
constexpr auto kUsblArchived = Join(List(kReserved), kUsbl, kUsblEnd);
constexpr auto kOdometer =
    List(kLeverArm<CTrvSensorOdometer>, kMisalignment<CTrvSensorOdometer>, kScaleFactor<CTrvSensorOdometer>);
constexpr auto kOdometerArchived = Join(kOdometer, List(kOdometerStdDevs));
constexpr auto kMarker = List(kEventId);
constexpr auto kMarkerRows = List(kDataFile, kChannel, kEventId, kSensorTimeOffset, kSynchronizedOutput);
constexpr auto kMountArchived = List(kInsLeverArm, kInsMisalignment, kVehicleLeverArm, kVehicleMisalignment);
constexpr auto kMount = List(kInsLeverArm, kVehicleLeverArm, kInsMisalignment, kVehicleMisalignment);
constexpr std::array<const SProperty*, 0> kNone{};

constexpr auto kType = List(kEquipment, kHousing, kFog, kAccelerometers, kSaturation, kTypeAlgorithm);
constexpr auto kInsRows =
    List(kPrimaryLeverArm, kSecondaryLeverArmA, kSecondaryLeverArmB, kSecondaryLeverArmC, kCogLeverArm,
         kFactoryMisalignment, kRoughMisalignment, kFineMisalignment, kUserMisalignment, kCiphered, kDevice);
constexpr auto kInsArchive =
    List(kFactoryMisalignment, kRoughMisalignment, kFineMisalignment, kUserMisalignment, kPrimaryLeverArm,
         kSecondaryLeverArmA, kSecondaryLeverArmB, kSecondaryLeverArmC, kInsCurrentModeling, kDevice,
         kCogLeverArm);

constexpr auto kFileRows = List(kPath, kFileTimeOffset);
constexpr auto kFileArchive = List(kPath, kChannels, kFileTimeOffset);
constexpr auto kChannelRows = List(kChannelText);
constexpr auto kPositionRows = List(kLatitude, kLongitude, kAltitude);
constexpr auto kPositionArchive = List(kLatitude, kLongitude, kAltitudeKind, kAltitude);
constexpr auto kRunRows =
    List(kAlgorithm, kBegin, kEnd, kDefaultOutputRate, kReferencePosition, kImuFrequency, kHeave, kSeaState);
constexpr auto kRunArchive =
    List(kAlgorithm, kHeave, kSeaState, kRunGpsAltitude, kReferencePosition, kDefaultOutputRate, kBegin, kEnd,
         kOutputRates, kZupts, kAltitudeModes, kSensors, kConfiguration, kInputFile, kOutputFile,
         kExternalFiles, kUtcReference);

constexpr auto kCurve =
    List(kCurveLabel, kFile<CTrv1DCurve>, kShownChannel<CTrv1DCurve>, kField<CTrv1DCurve>, kColor, kFactor);
constexpr auto kMeasureGraph = List(kTitle, kCurves);
constexpr auto kEnumGraph = List(kTitle, kFile<CTrv1DGraphEnum>, kShownChannel<CTrv1DGraphEnum>,
                                 kField<CTrv1DGraphEnum>, kLabel<CTrv1DGraphEnum>);
constexpr auto kGraphList = List(kGraphs);
constexpr auto kInstantEnum = List(kLabel<CTrvInstantValue>, kFile<CTrvInstantValue>,
                                   kShownChannel<CTrvInstantValue>, kField<CTrvInstantValue>);
constexpr auto kInstantMeasure = Join(kInstantEnum, List(kSecondField));
constexpr auto kInstantList = List(kMeasures, kEnums);
constexpr auto kProject = List(kProjectParameters, kProjectGraphs, kProjectValues);

// --- The classes

template <class Class>
constexpr SPropertyClass Entry(EText title, CPropertyRows rows, CPropertyRows archived) {
    return {[]() -> const Outils_Objets::CRuntimeClass& { return Class::Class(); }, title, rows, archived};
}
template <class Class>
constexpr SPropertyClass Entry(EText title, CPropertyRows rows) {
    return Entry<Class>(title, rows, rows);
}
template <class Class, const auto& Own>
constexpr SPropertyClass PeriodEntry(EText title) {
    return Entry<Class>(title, kPeriodRows<Own>, kPeriodArchive<Own>);
}
template <class Class, const auto& Own>
constexpr SPropertyClass StdDevEntry() {
    return Entry<Class>(EText::stdDevDefaultTitle, kPeriodRows<Own>, kStdDevArchive<Own>);
}
template <class Sensor, const auto& StdDevs>
constexpr SPropertyClass ScalarEntry(EText title) {
    return Entry<Sensor>(title, kSensorRows<kArmOf<Sensor>, kOne<StdDevs>>,
                         kSensorArchive<kScalar<Sensor, StdDevs>>);
}

constexpr SPropertyClass kClasses[] = {
    PeriodEntry<CTrvOutputRate, kOutputRateOwn>(EText::outputRate),
    PeriodEntry<CTrvZupt, kZuptOwn>(EText::zupt),
    PeriodEntry<CTrvAltitudeMode, kAltitudeModeOwn>(EText::altitudeMode),
    PeriodEntry<CTrvRejectionInstruction, kRejectionOwn>(EText::rejection),
    PeriodEntry<CTrvHorizontalFilteringInstruction, kFilteringOwn>(EText::filtering),
    Entry<CTrvRejectionGroup>(EText::rejections, kGroupRows, kGroup),
    StdDevEntry<CTrvDepthStdDevInstruction, kDepthOwn>(),
    StdDevEntry<CTrvEMLogStdDevInstruction, kEMLogOwn>(),
    StdDevEntry<CTrvLblStdDevInstruction, kLblOwn>(),
    StdDevEntry<CTrvGpsStdDevInstruction, kPositionOwn>(),
    StdDevEntry<CTrvUsblStdDevInstruction, kPositionOwn>(),
    StdDevEntry<CTrvDvlStdDevInstruction, kDvlOwn>(),
    StdDevEntry<CTrvOdometerStdDevInstruction, kOdometerOwn>(),
    Entry<CTrvGpsStdDevThreshold>(EText::minimumValue, kLeast),
    Entry<CLeverArm>(EText::leverArm, kArms),
    Entry<CMisalignment>(EText::misalignment, kAngles),
    Entry<CTrvCurrentModeling>(EText::currentModeling, kModeling),
    Entry<CTrvSpeedBias>(EText::speedBias, kBias),
    Entry<CTrvSensorGps>(EText::gps, kSensorRows<kGps, kGpsStdDevs>, kSensorArchive<kGpsArchived>),
    Entry<CTrvSensorDvl>(EText::dvl, kSensorRows<kDvl, kDvlStdDevs>, kSensorArchive<kDvlArchived>),
    ScalarEntry<CTrvSensorEMLog, kEMLogStdDevs>(EText::emLog),
    ScalarEntry<CTrvSensorDepth, kDepthStdDevs>(EText::depth),
    Entry<CTrvSensorUsbl>(EText::usbl, kSensorRows<kUsbl, kUsblEnd>, kSensorArchive<kUsblArchived>),
    ScalarEntry<CTrvSensorLbl, kLblStdDevs>(EText::lbl),
    Entry<CTrvSensorOdometer>(EText::odometer, kSensorRows<kOdometer, kOne<kOdometerStdDevs>>,
                              kSensorArchive<kOdometerArchived>),
    Entry<CTrvSensorEventMarker>(EText::eventMarker, kMarkerRows, kSensorArchive<kMarker>),
    Entry<CTrvSensorPlatformOrientation>(EText::platformOrientation, kSensorRows<kMount, kNone>,
                                         kSensorArchive<kMountArchived>),
    Entry<CTrvNelixType>(EText::device, kType),
    Entry<CTrvNelixConfiguration>(EText::configuration, kInsRows, kInsArchive),
    Entry<CTrvDataFile>(EText::externalFile, kFileRows, kFileArchive),
    Entry<CTrvDataFileChannel>(EText::channel, kChannelRows),
    Entry<CPosition>(EText::referencePosition, kPositionRows, kPositionArchive),
    Entry<CTrvSimulationParameters>(EText::simulationParameters, kRunRows, kRunArchive),
    Entry<CTrv1DCurve>(EText::curve, kCurve),
    Entry<CTrv1DGraphMeasure>(EText::graph, kMeasureGraph),
    Entry<CTrv1DGraphEnum>(EText::chronogram, kEnumGraph),
    Entry<CTrv1DSettings>(EText::graphs, kGraphList),
    Entry<CTrvInstantValuesMeasure>(EText::measure, kInstantMeasure),
    Entry<CTrvInstantValuesEnum>(EText::natureEnumeration, kInstantEnum),
    Entry<CTrvInstantValuesSettings>(EText::instantValues, kInstantList),
    Entry<CTrvProject>(EText::none, kProject),
};

} // namespace

std::span<const SPropertyClass> GetPropertyClasses() { return kClasses; }

const SPropertyClass* FindPropertyClass(const CObject& object) {
    const Outils_Objets::CRuntimeClass& wanted = object.GetRuntimeClass();
    const auto found = std::ranges::find_if(
        kClasses, [&wanted](const SPropertyClass& entry) { return &entry.runtimeClass() == &wanted; });
    return found == std::end(kClasses) ? nullptr : found;
}

} // namespace Metier_Tarvel_Proprietes
