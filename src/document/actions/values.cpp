#include "document/actions/values.h"

#include <algorithm>

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Metier_Tarvel_Graphics::CTrv1DCurve;

SOutputRateValues SOutputRateValues::Of(const CTrvOutputRate& target) {
    return {target.value, target.begin, target.end};
}

void SOutputRateValues::ApplyTo(CTrvOutputRate& target) const {
    target.value = rate;
    target.begin = begin;
    target.end = end;
}

SFilteringValues SFilteringValues::Of(const CTrvHorizontalFilteringInstruction& target) {
    return {target.threshold, target.begin, target.end};
}

void SFilteringValues::ApplyTo(CTrvHorizontalFilteringInstruction& target) const {
    target.threshold = threshold;
    target.begin = begin;
    target.end = end;
}

SStdDevValues SStdDevValues::Of(const CTrvStdDevInstruction& target) {
    SStdDevValues values{target.mode, {}, target.begin, target.end};
    for (int i = 0; i < std::min(target.GetValueCount(), kMaximumCount); ++i)
        values.values[static_cast<std::size_t>(i)] = target.GetValue(i);
    return values;
}

void SStdDevValues::ApplyTo(CTrvStdDevInstruction& target) const {
    target.mode = mode;
    for (int i = 0; i < std::min(target.GetValueCount(), kMaximumCount); ++i)
        target.Value(i) = values[static_cast<std::size_t>(i)];
    target.begin = begin;
    target.end = end;
}

SGpsThresholdValues SGpsThresholdValues::Of(const CTrvGpsStdDevThreshold& target) {
    return {target.latitude, target.longitude, target.altitude};
}

void SGpsThresholdValues::ApplyTo(CTrvGpsStdDevThreshold& target) const {
    target.latitude = latitude;
    target.longitude = longitude;
    target.altitude = altitude;
}

SGpsValues SGpsValues::Of(const CTrvSensorGps& sensor) {
    return {*sensor.leverArm, sensor.owner->gpsAltitudeReference};
}

void SGpsValues::ApplyTo(CTrvSensorGps& sensor) const {
    *sensor.leverArm = leverArm;
    sensor.owner->gpsAltitudeReference = altitudeReference;
}

SDvlValues SDvlValues::Of(const CTrvSensorDvl& sensor) {
    return {*sensor.leverArm, *sensor.misalignment, sensor.scaleFactor, *sensor.currentModeling,
            *sensor.speedBias};
}

void SDvlValues::ApplyTo(CTrvSensorDvl& sensor) const {
    *sensor.leverArm = leverArm;
    *sensor.misalignment = misalignment;
    sensor.scaleFactor = scaleFactor;
    *sensor.currentModeling = currentModeling;
    *sensor.speedBias = speedBias;
}

SUsblValues SUsblValues::Of(const CTrvSensorUsbl& sensor) {
    return {*sensor.leverArm, sensor.transponderCode};
}

void SUsblValues::ApplyTo(CTrvSensorUsbl& sensor) const {
    *sensor.leverArm = leverArm;
    sensor.transponderCode = transponderCode;
}

SOdometerValues SOdometerValues::Of(const CTrvSensorOdometer& sensor) {
    return {*sensor.leverArm, *sensor.misalignment, sensor.scaleFactor};
}

void SOdometerValues::ApplyTo(CTrvSensorOdometer& sensor) const {
    *sensor.leverArm = leverArm;
    *sensor.misalignment = misalignment;
    sensor.scaleFactor = scaleFactor;
}

SEventMarkerValues SEventMarkerValues::Of(const CTrvSensorEventMarker& sensor) { return {sensor.eventId}; }

void SEventMarkerValues::ApplyTo(CTrvSensorEventMarker& sensor) const { sensor.eventId = eventId; }

SPlatformOrientationValues SPlatformOrientationValues::Of(const CTrvSensorPlatformOrientation& sensor) {
    return {*sensor.insLeverArm, *sensor.vehicleLeverArm, *sensor.insMisalignment,
            *sensor.vehicleMisalignment};
}

void SPlatformOrientationValues::ApplyTo(CTrvSensorPlatformOrientation& sensor) const {
    *sensor.insLeverArm = insLeverArm;
    *sensor.vehicleLeverArm = vehicleLeverArm;
    *sensor.insMisalignment = insMisalignment;
    *sensor.vehicleMisalignment = vehicleMisalignment;
}

SSimulationValues SSimulationValues::Of(const CTrvSimulationParameters& target) {
    return {target.algorithm,
            target.heaveAlgorithm,
            target.heaveSeaState,
            target.referencePosition,
            target.defaultOutputRate,
            target.begin,
            target.end};
}

void SSimulationValues::ApplyTo(CTrvSimulationParameters& target) const {
    target.algorithm = algorithm;
    target.heaveAlgorithm = heaveAlgorithm;
    target.heaveSeaState = heaveSeaState;
    target.referencePosition = referencePosition;
    target.defaultOutputRate = defaultOutputRate;
    target.begin = begin;
    target.end = end;
}

SNelixValues SNelixValues::Of(const CTrvNelixConfiguration& target) {
    return {*target.factoryMisalignment, target.roughMisalignment,   *target.fineMisalignment,
            *target.userMisalignment,    *target.primaryLeverArm,    *target.secondaryLeverArmA,
            *target.secondaryLeverArmB,  *target.secondaryLeverArmC, *target.cogLeverArm};
}

void SNelixValues::ApplyTo(CTrvNelixConfiguration& target) const {
    *target.factoryMisalignment = factoryMisalignment;
    target.roughMisalignment = roughMisalignment;
    *target.fineMisalignment = fineMisalignment;
    *target.userMisalignment = userMisalignment;
    *target.primaryLeverArm = primaryLeverArm;
    *target.secondaryLeverArmA = secondaryLeverArmA;
    *target.secondaryLeverArmB = secondaryLeverArmB;
    *target.secondaryLeverArmC = secondaryLeverArmC;
    *target.cogLeverArm = cogLeverArm;
}

SCurveValues SCurveValues::Of(const CTrv1DCurve& curve) { return {curve.label, curve.color, curve.factor}; }

void SCurveValues::ApplyTo(CTrv1DCurve& curve) const {
    curve.label = label;
    curve.color = color;
    curve.factor = factor;
}

} // namespace Application_Tarvel
