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

SGpsPlan GpsPlanOf(const CTrvSensorGps& gps) {
    SGpsPlan plan;
    plan.source = ChannelPlanOf(gps);
    plan.leverArm = VectorOf(gps.leverArm);
    if (!gps.rejectionGroups.empty())
        for (const auto& instruction : gps.rejectionGroups.front()->instructions)
            plan.rejections.push_back(
                {PeriodOf(*instruction),
                 static_cast<ERejection>(std::clamp(instruction->mode, std::int32_t{0}, std::int32_t{3}))});
    if (const auto& user = gps.stdDevInstruction; user && user->mode == stdDevUserDefined) {
        const SPeriod period = user->isDefault ? SPeriod{-HUGE_VAL, HUGE_VAL} : PeriodOf(*user);
        plan.userDeviations.push_back(
            {period, {user->latitude, user->longitude, user->altitude, user->crossvariance}});
    }
    if (const auto& least = gps.stdDevThreshold)
        plan.leastDeviation = {least->latitude, least->longitude, least->altitude, 0.0};
    return plan;
}

void AddSensors(const CTrvSimulationParameters& parameters, SRunPlan& plan) {
    for (const auto& sensor : parameters.sensors) {
        if (sensor->synchronizedOutput) plan.synchronized.push_back(ChannelPlanOf(*sensor));
        switch (sensor->GetKind().kind) {
        case ESensorKind::gps:
            if (plan.gps.size() < 3)
                plan.gps.push_back(GpsPlanOf(static_cast<const CTrvSensorGps&>(*sensor)));
            break;
        case ESensorKind::eventMarker: break; // only its dates are of interest
        default:
            if (!plan.sensorsNotUsed.empty()) plan.sensorsNotUsed += ", ";
            plan.sensorsNotUsed += Outils_Texte::GetText(sensor->GetKind().label);
        }
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
        constexpr EHeightAid aids[] = {EHeightAid::asPacketSays, EHeightAid::other, EHeightAid::gps,
                                       EHeightAid::other, EHeightAid::gps};
        const bool known = mode->mode >= 0 && mode->mode < 5;
        plan.heightAids.push_back({PeriodOf(*mode), known ? aids[mode->mode] : EHeightAid::asPacketSays});
    }
    plan.aboveGeoid = parameters.gpsAltitudeReference == altitudeGeoid;
    plan.backwardAsked = parameters.algorithm == algorithmBackward;
    if (parameters.hasUtcReference) plan.utcOrigin = parameters.utcReference;

    if (const CTrvNelixConfiguration* ins = parameters.nelixConfiguration.get()) {
        plan.unitToVessel = MatrixOfMisalignment(ins->fineMisalignment) *
                            RoughMounting(ins->roughMisalignment) *
                            MatrixOfMisalignment(ins->factoryMisalignment);
        plan.ciphered = ins->imuCipherMode != 0;
        plan.userToVessel = MatrixOfMisalignment(ins->userMisalignment);
        plan.points = {VectorOf(ins->primaryLeverArm), VectorOf(ins->secondaryLeverArmA),
                       VectorOf(ins->secondaryLeverArmB), VectorOf(ins->secondaryLeverArmC)};
    }
    AddSensors(parameters, plan);
    return plan;
}

} // namespace Morvex
