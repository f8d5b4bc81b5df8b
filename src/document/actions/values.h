// What an edit writes to an object of the model. Each has `Of(object)`, the values that the object has now,
// so that a caller changes one of them and hands all back.
#pragma once

#include "model/graph_settings.h"
#include "model/nelix_configuration.h"
#include "model/sensors.h"
#include "model/simulation_parameters.h"

#include <array>
#include <cstdint>
#include <string>

namespace Application_Tarvel {

using Metier_Tarvel::CLeverArm;
using Metier_Tarvel::CMisalignment;
using Metier_Tarvel::CPosition;
using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

// Of an instruction that is a mode in a period: ZUPT, altitude mode, rejection.
struct SModePeriodValues {
    std::int32_t mode = 0;
    CDateTime begin; // simulation time
    CDateTime end;

    template <class Target>
    static SModePeriodValues Of(const Target& target) {
        return {target.mode, target.begin, target.end};
    }
    template <class Target>
    void ApplyTo(Target& target) const {
        target.mode = mode;
        target.begin = begin;
        target.end = end;
    }
};

struct SOutputRateValues {
    double rate = 0.0; // hertz
    CDateTime begin;
    CDateTime end;

    static SOutputRateValues Of(const Metier_Tarvel::CTrvOutputRate& target);
    void ApplyTo(Metier_Tarvel::CTrvOutputRate& target) const;
};

struct SFilteringValues {
    float threshold = 0.0f;
    CDateTime begin;
    CDateTime end;

    static SFilteringValues Of(const Metier_Tarvel::CTrvHorizontalFilteringInstruction& target);
    void ApplyTo(Metier_Tarvel::CTrvHorizontalFilteringInstruction& target) const;
};

struct SStdDevValues {
    static constexpr int kMaximumCount = 4;

    std::int32_t mode = 0;
    std::array<double, kMaximumCount> values{}; // as many as the instruction has, in its order
    CDateTime begin;                            // the period does not count for a default instruction
    CDateTime end;

    static SStdDevValues Of(const Metier_Tarvel::CTrvStdDevInstruction& target);
    void ApplyTo(Metier_Tarvel::CTrvStdDevInstruction& target) const;
};

struct SGpsThresholdValues {
    double latitude = 0.0; // metres, as the others
    double longitude = 0.0;
    double altitude = 0.0;

    static SGpsThresholdValues Of(const Metier_Tarvel::CTrvGpsStdDevThreshold& target);
    void ApplyTo(Metier_Tarvel::CTrvGpsStdDevThreshold& target) const;
};

// Of sensors and data files.
struct STimeOffsetValues {
    CDateTimeSpan offset;

    template <class Target>
    static STimeOffsetValues Of(const Target& target) {
        return {Metier_Tarvel::ToSpan(target.timeOffset)};
    }
    template <class Target>
    void ApplyTo(Target& target) const {
        target.timeOffset = Metier_Tarvel::ToStoredTime(offset);
    }
};

struct SSynchronizedOutputValues {
    bool synchronizedOutput = false;

    static SSynchronizedOutputValues Of(const Metier_Tarvel::CTrvSensor& sensor) {
        return {sensor.synchronizedOutput};
    }
    void ApplyTo(Metier_Tarvel::CTrvSensor& sensor) const { sensor.synchronizedOutput = synchronizedOutput; }
};

struct SGpsValues {
    CLeverArm leverArm;
    std::int32_t altitudeReference = 0; // of all GPS of the project, EWordList::gpsAltitudeReference

    static SGpsValues Of(const Metier_Tarvel::CTrvSensorGps& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorGps& sensor) const;
};

struct SDvlValues {
    CLeverArm leverArm;
    CMisalignment misalignment;
    double scaleFactor = 0.0; // a fraction
    Metier_Tarvel::CTrvCurrentModeling currentModeling;
    Metier_Tarvel::CTrvSpeedBias speedBias;

    static SDvlValues Of(const Metier_Tarvel::CTrvSensorDvl& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorDvl& sensor) const;
};

// Of the kinds that have nothing else: EM log, depth sensor, LBL.
struct SLeverArmValues {
    CLeverArm leverArm;

    template <class Sensor>
    static SLeverArmValues Of(const Sensor& sensor) {
        return {*sensor.leverArm};
    }
    template <class Sensor>
    void ApplyTo(Sensor& sensor) const {
        *sensor.leverArm = leverArm;
    }
};

struct SUsblValues {
    CLeverArm leverArm;
    std::string transponderCode;

    static SUsblValues Of(const Metier_Tarvel::CTrvSensorUsbl& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorUsbl& sensor) const;
};

struct SOdometerValues {
    CLeverArm leverArm;
    CMisalignment misalignment;
    double scaleFactor = 0.0; // a fraction

    static SOdometerValues Of(const Metier_Tarvel::CTrvSensorOdometer& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorOdometer& sensor) const;
};

struct SEventMarkerValues {
    std::string eventId;

    static SEventMarkerValues Of(const Metier_Tarvel::CTrvSensorEventMarker& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorEventMarker& sensor) const;
};

struct SPlatformOrientationValues {
    CLeverArm insLeverArm;
    CLeverArm vehicleLeverArm;
    CMisalignment insMisalignment;
    CMisalignment vehicleMisalignment;

    static SPlatformOrientationValues Of(const Metier_Tarvel::CTrvSensorPlatformOrientation& sensor);
    void ApplyTo(Metier_Tarvel::CTrvSensorPlatformOrientation& sensor) const;
};

// The altitude reference of GPS goes with SGpsValues.
struct SSimulationValues {
    std::int32_t algorithm = 0;
    std::int32_t heaveAlgorithm = 0;
    std::int32_t heaveSeaState = 0;
    CPosition referencePosition;
    double defaultOutputRate = 0.0; // hertz
    CDateTime begin;                // simulation time
    CDateTime end;

    static SSimulationValues Of(const Metier_Tarvel::CTrvSimulationParameters& target);
    void ApplyTo(Metier_Tarvel::CTrvSimulationParameters& target) const;
};

// The model of the unit is not edited: it is what the recording says.
struct SNelixValues {
    CMisalignment factoryMisalignment;
    std::int32_t roughMisalignment = 0; // 0 to 23
    CMisalignment fineMisalignment;
    CMisalignment userMisalignment;
    CLeverArm primaryLeverArm;
    CLeverArm secondaryLeverArmA;
    CLeverArm secondaryLeverArmB;
    CLeverArm secondaryLeverArmC;
    CLeverArm cogLeverArm;

    static SNelixValues Of(const Metier_Tarvel::CTrvNelixConfiguration& target);
    void ApplyTo(Metier_Tarvel::CTrvNelixConfiguration& target) const;
};

struct SCurveValues {
    std::string label;
    std::uint32_t color = 0xFF000000; // ARGB
    double factor = 1.0;              // multiplied onto every value shown

    static SCurveValues Of(const Metier_Tarvel_Graphics::CTrv1DCurve& curve);
    void ApplyTo(Metier_Tarvel_Graphics::CTrv1DCurve& curve) const;
};

} // namespace Application_Tarvel
