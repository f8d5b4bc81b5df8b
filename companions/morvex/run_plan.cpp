#include "morvex/run_plan.h"

#include "morvex/earth.h"

#include "foundation/files.h"
#include "foundation/texts.h"
#include "model/imu_channel.h"
#include "model/registration.h"
#include "model/simulation_parameters.h"

#include <algorithm>
#include <cmath>

namespace Morvex {
namespace {

using namespace Metier_Tarvel;

constexpr std::uint64_t kLargestParameterFile = 256u << 20;
constexpr std::int32_t kZuptAnc = 6;                            // the last of its words
constexpr std::int32_t kSaturationLand = 1, kSaturationAir = 3; // the first and the last of its words

double Seconds(CDateTime stored) { return ToSpan(stored).GetTotalSeconds(); }

SPeriod PeriodOf(const CTrvPeriod& period) { return {Seconds(period.begin), Seconds(period.end)}; }

Vector3d VectorOf(const std::unique_ptr<CLeverArm>& arm) {
    return arm ? Vector3d(arm->xv1, arm->xv2, arm->xv3) : Vector3d::Zero();
}

Matrix3d MatrixOfMisalignment(const std::unique_ptr<CMisalignment>& angles) {
    if (!angles) return Matrix3d::Identity();
    return MatrixOf({angles->heading * kRadiansPerDegree, angles->roll * kRadiansPerDegree,
                     angles->pitch * kRadiansPerDegree});
}

SChannelPlan ChannelPlanOf(const CTrvSensor& sensor) {
    SChannelPlan plan;
    plan.timeOffset = Seconds(sensor.timeOffset);
    if (!sensor.channel) return plan;
    plan.channel = sensor.channel->name;
    if (const CTrvDataFile* file = sensor.channel->file) {
        plan.path = file->path;
        plan.timeOffset += Seconds(file->timeOffset);
    }
    return plan;
}

std::vector<SInPeriod<ERejection>> RejectionsOf(const CTrvSensor& sensor, std::size_t group) {
    std::vector<SInPeriod<ERejection>> rejections;
    if (group >= sensor.rejectionGroups.size()) return rejections;
    for (const auto& instruction : sensor.rejectionGroups[group]->instructions)
        rejections.push_back(
            {PeriodOf(*instruction),
             static_cast<ERejection>(std::clamp(instruction->mode, std::int32_t{0}, std::int32_t{3}))});
    return rejections;
}

// The period and the values of a deviation that the user states; empty when the packets' own hold.
template <class Value>
std::vector<SInPeriod<Value>> UserDeviationOf(const CTrvStdDevInstruction* user, const Value& value) {
    if (!user || user->mode != stdDevUserDefined) return {};
    return {{user->isDefault ? SPeriod{-HUGE_VAL, HUGE_VAL} : PeriodOf(*user), value}};
}

template <class Sensor>
SGpsPlan PositionPlanOf(const Sensor& sensor) {
    SGpsPlan plan;
    plan.source = ChannelPlanOf(sensor);
    plan.leverArm = VectorOf(sensor.leverArm);
    plan.rejections = RejectionsOf(sensor, 0);
    if (const auto& user = sensor.stdDevInstruction)
        plan.userDeviations = UserDeviationOf<SFixDeviation>(
            user.get(), {user->latitude, user->longitude, user->altitude, user->crossvariance});
    return plan;
}

SGpsPlan GpsPlanOf(const CTrvSensorGps& gps) {
    SGpsPlan plan = PositionPlanOf(gps);
    if (const auto& least = gps.stdDevThreshold)
        plan.leastDeviation = {least->latitude, least->longitude, least->altitude, 0.0};
    return plan;
}

template <class Sensor>
SAidingPlan ScalarPlanOf(EAiding kind, const Sensor& sensor) {
    SAidingPlan plan;
    plan.kind = kind;
    plan.source = ChannelPlanOf(sensor);
    plan.leverArm = VectorOf(sensor.leverArm);
    plan.rejections = RejectionsOf(sensor, 0);
    if (const auto& user = sensor.stdDevInstruction)
        plan.userDeviations = UserDeviationOf<Vector3d>(user.get(), Vector3d::Constant(user->GetValue(0)));
    return plan;
}

SAidingPlan OdometerPlanOf(const CTrvSensorOdometer& odometer) {
    SAidingPlan plan;
    plan.kind = EAiding::odometer;
    plan.source = ChannelPlanOf(odometer);
    plan.leverArm = VectorOf(odometer.leverArm);
    plan.sensorToVessel = MatrixOfMisalignment(odometer.misalignment);
    plan.scale = odometer.scaleFactor;
    plan.rejections = RejectionsOf(odometer, 0);
    if (const auto& user = odometer.stdDevInstruction)
        plan.userDeviations = UserDeviationOf<Vector3d>(user.get(), {user->x, user->y, user->z});
    return plan;
}

SMountPlan MountPlanOf(const CTrvSensorPlatformOrientation& mount) {
    return {ChannelPlanOf(mount), VectorOf(mount.insLeverArm), VectorOf(mount.vehicleLeverArm),
            MatrixOfMisalignment(mount.insMisalignment), MatrixOfMisalignment(mount.vehicleMisalignment)};
}

// The log on the bottom and, where its file has the channel, the same log on the water.
void AddDvl(const CTrvSensorDvl& dvl, SRunPlan& plan) {
    SAidingPlan bottom;
    bottom.kind = EAiding::dvlBottom;
    bottom.source = ChannelPlanOf(dvl);
    bottom.leverArm = VectorOf(dvl.leverArm);
    bottom.sensorToVessel = MatrixOfMisalignment(dvl.misalignment);
    bottom.scale = dvl.scaleFactor;
    if (dvl.speedBias) bottom.bias = {dvl.speedBias->x, dvl.speedBias->y, dvl.speedBias->z};
    SAidingPlan water = bottom;
    const auto deviations = [](const CTrvDvlStdDevInstruction* user) {
        return user ? UserDeviationOf<Vector3d>(user, {user->x, user->y, user->z})
                    : std::vector<SInPeriod<Vector3d>>();
    };
    bottom.rejections = RejectionsOf(dvl, 0);
    bottom.userDeviations = deviations(dvl.bottomTrackStdDevInstruction.get());
    water.kind = EAiding::dvlWater;
    water.rejections = RejectionsOf(dvl, 1);
    water.userDeviations = deviations(dvl.waterTrackStdDevInstruction.get());
    const bool onWater = bottom.source.channel == "DVL_WT";
    bottom.source.channel = "DVL_BT";
    water.source.channel = "DVL_WT";
    bottom.isOptional = onWater;
    water.isOptional = !onWater;
    plan.aidings.push_back(std::move(bottom));
    plan.aidings.push_back(std::move(water));
    if (dvl.currentModeling) {
        plan.currentDeviation = dvl.currentModeling->sigma;
        plan.currentTime = dvl.currentModeling->time;
    }
}

void AddSensors(const CTrvSimulationParameters& parameters, SRunPlan& plan) {
    std::vector<SGpsPlan> usbls;
    for (const auto& sensor : parameters.sensors) {
        if (sensor->synchronizedOutput) plan.synchronized.push_back(ChannelPlanOf(*sensor));
        switch (sensor->GetKind().kind) {
        case ESensorKind::gps:
            if (plan.gps.size() < 3)
                plan.gps.push_back(GpsPlanOf(static_cast<const CTrvSensorGps&>(*sensor)));
            break;
        case ESensorKind::usbl:
            if (usbls.size() < 3) {
                usbls.push_back(PositionPlanOf(static_cast<const CTrvSensorUsbl&>(*sensor)));
                usbls.back().isUsbl = true;
            }
            break;
        case ESensorKind::dvl: AddDvl(static_cast<const CTrvSensorDvl&>(*sensor), plan); break;
        case ESensorKind::emLog:
            plan.aidings.push_back(
                ScalarPlanOf(EAiding::emLog, static_cast<const CTrvSensorEMLog&>(*sensor)));
            break;
        case ESensorKind::depth:
            plan.aidings.push_back(
                ScalarPlanOf(EAiding::depth, static_cast<const CTrvSensorDepth&>(*sensor)));
            break;
        case ESensorKind::lbl:
            plan.aidings.push_back(ScalarPlanOf(EAiding::range, static_cast<const CTrvSensorLbl&>(*sensor)));
            break;
        case ESensorKind::odometer:
            plan.aidings.push_back(OdometerPlanOf(static_cast<const CTrvSensorOdometer&>(*sensor)));
            break;
        case ESensorKind::eventMarker: break; // only its dates are of interest
        case ESensorKind::platformOrientation:
            plan.mount = MountPlanOf(static_cast<const CTrvSensorPlatformOrientation&>(*sensor));
            break;
        default:
            if (!plan.sensorsNotUsed.empty()) plan.sensorsNotUsed += ", ";
            plan.sensorsNotUsed += Outils_Texte::GetText(sensor->GetKind().label);
        }
    }
    plan.gps.insert(plan.gps.end(), usbls.begin(), usbls.end());
}

// None as well for a unit that is sold without heave.
EHeave GetHeave(const CTrvSimulationParameters& parameters) {
    constexpr std::int32_t kWithHeave = 1;
    const CTrvNelixConfiguration* ins = parameters.nelixConfiguration.get();
    if (ins && ins->type && ins->type->algorithm > kWithHeave) return EHeave::none;
    switch (parameters.heaveAlgorithm) {
    case 1: return EHeave::causal;
    case 2: return EHeave::zeroPhase;
    default: return EHeave::none;
    }
}

} // namespace

std::unique_ptr<CTrvSimulationParameters> LoadParameters(const std::filesystem::path& path) {
    auto bytes = Outils_Fichiers::ReadWholeFile(path, kLargestParameterFile);
    if (!bytes) return nullptr;
    Outils_Objets::CClassRegistry registry;
    RegisterModelClasses(registry);
    try {
        Outils_Objets::CMemoryStream stream(std::move(*bytes));
        CArchive archive(stream, CArchive::load, &registry, path);
        auto parameters = CTrvSimulationParameters::Load(archive);
        // Not in the file: the recording itself says whether its inertial data is ciphered.
        if (parameters && parameters->nelixConfiguration)
            parameters->nelixConfiguration->imuCipherMode =
                ReadImuCipherMode(parameters->mainInputFile->path);
        return parameters;
    } catch (const Outils_Objets::CArchiveException&) {
        return nullptr;
    }
}

EUse CombineUse(std::uint8_t rejection, const ERejection* instruction) {
    constexpr EUse byInstruction[] = {EUse::tested, EUse::never, EUse::always, EUse::reacquired};
    if (instruction && *instruction != ERejection::asPacketSays)
        return byInstruction[static_cast<int>(*instruction)];
    switch (rejection & 3u) {
    case 1: return EUse::always;
    case 2: return EUse::never;
    default: return EUse::tested;
    }
}

bool AddLandModel(SRunPlan& plan) {
    const auto says = [](const SAidingPlan& aiding) {
        return aiding.kind == EAiding::odometer || aiding.kind == EAiding::land;
    };
    if (std::ranges::any_of(plan.aidings, says)) return false;
    SAidingPlan land;
    land.kind = EAiding::land;
    land.source.channel = Outils_Texte::GetText(EText::landModel);
    plan.aidings.push_back(std::move(land));
    return true;
}

SRunPlan MakeRunPlan(const CTrvSimulationParameters& parameters) {
    SRunPlan plan;
    plan.imu = {parameters.mainInputFile->path, "IMU", Seconds(parameters.mainInputFile->timeOffset)};
    const SPeriod whole{Seconds(parameters.begin), Seconds(parameters.end)};
    if (whole.end > whole.begin) {
        plan.begin = whole.begin;
        plan.end = whole.end;
    }
    plan.output = parameters.outputFile->path;
    plan.defaultRate = parameters.defaultOutputRate;
    for (const auto& rate : parameters.outputRates) plan.rates.push_back({PeriodOf(*rate), rate->value});
    for (const auto& mode : parameters.altitudeModes) {
        // In the order of the words: live, none, GPS, depth sensor, hydro.
        constexpr EHeightAid aids[] = {EHeightAid::asPacketSays, EHeightAid::reference, EHeightAid::gps,
                                       EHeightAid::depth, EHeightAid::hydro};
        const bool known = mode->mode >= 0 && mode->mode < 5;
        plan.heightAids.push_back({PeriodOf(*mode), known ? aids[mode->mode] : EHeightAid::asPacketSays});
    }
    for (const auto& zupt : parameters.zupts) {
        // In the order of the words: live, none, static 10 m/s, static 0.1 m/s, autostatic, its bench form,
        // and one without a meaning here. 0: no speed is taken for granted.
        constexpr double deviations[] = {kFindRest, 0.0, 10.0, 0.1, 0.02, 0.02, 0.0};
        const bool known = zupt->mode >= 0 && zupt->mode < 7;
        plan.atRest.push_back({PeriodOf(*zupt), known ? deviations[zupt->mode] : 0.0});
        if (zupt->mode == kZuptAnc) plan.ignored.emplace_back(Outils_Texte::GetText(EText::ignoredZupt));
    }
    plan.referenceAltitude = parameters.referencePosition.altitude;
    plan.aboveGeoid = parameters.gpsAltitudeReference == altitudeGeoid;
    plan.backwardAsked = parameters.algorithm == algorithmBackward;
    plan.heave = GetHeave(parameters);
    // In the order of the words: slight, moderate, rough, harbours, automatic. Longer swell needs a slower
    // filter, and shows more of the unit's noise.
    constexpr double kPeriods[] = {150.0, 200.0, 240.0, 150.0, 200.0};
    if (parameters.heaveSeaState >= 0 && parameters.heaveSeaState < 5)
        plan.heavePeriod = kPeriods[parameters.heaveSeaState];
    if (parameters.hasUtcReference) plan.utcOrigin = parameters.utcReference;

    if (const CTrvNelixConfiguration* ins = parameters.nelixConfiguration.get()) {
        plan.unitToVessel = MatrixOfMisalignment(ins->fineMisalignment) *
                            RoughMounting(ins->roughMisalignment) *
                            MatrixOfMisalignment(ins->factoryMisalignment);
        plan.ciphered = ins->imuCipherMode != 0;
        plan.onLand = ins->type && ins->type->saturation == kSaturationLand;
        plan.inAir = ins->type && ins->type->saturation == kSaturationAir;
        plan.userToVessel = MatrixOfMisalignment(ins->userMisalignment);
        plan.points = {VectorOf(ins->primaryLeverArm), VectorOf(ins->secondaryLeverArmA),
                       VectorOf(ins->secondaryLeverArmB), VectorOf(ins->secondaryLeverArmC)};
    }
    AddSensors(parameters, plan);
    if (plan.onLand) AddLandModel(plan);
    return plan;
}

} // namespace Morvex
