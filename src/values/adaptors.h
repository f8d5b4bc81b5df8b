// The shared set of adaptors, set up from the settings: a change of the settings changes every display at
// once.
#pragma once

#include "config/config_file.h"
#include "values/compound_adaptors.h"
#include "values/date_time_adaptor.h"
#include "values/date_time_span_adaptor.h"

#include <array>

namespace Outils_Valeurs {

// The quantities with a physical adaptor of their own; internal units in brackets.
enum class EQuantity {
    rate,               // [s]
    altitude,           // [m]
    misalignment,       // [degree]
    leverArm,           // [m]
    scaleFactor,        // [ratio]
    currentSpeed,       // [m/s]
    currentTime,        // [s]
    linearSpeed,        // [m/s]
    linearAcceleration, // [m/s2]
    angularSpeed,       // [rad/s]
    distance,           // [m]
    attitude,           // [degree]
    crossvariance,      // [m2]
    timeDrift,          // [s]
    rawFogMeasurement,  // [1/1000 arc second]
    rawAccMeasurement,  // [1e-7 m/s]
    count,
};

// One object per process, created by the application and passed to whoever shows or reads values. References
// that it gives stay valid as long as it lives. Configure on the main thread, while no thread formats;
// reading on any.
class CTrvAdaptors {
  public:
    // Every adaptor with its units, the first of them in force, and default settings.
    CTrvAdaptors();
    CTrvAdaptors(const CTrvAdaptors&) = delete;
    CTrvAdaptors& operator=(const CTrvAdaptors&) = delete;

    // Takes over the `adaptors` section. An unknown unit symbol leaves the first unit in force.
    void Configure(const Outils_Configuration::CTrvCnfConfigFile& configuration);

    const CPhysicalValueAdaptor& Get(EQuantity quantity) const {
        return m_physical[static_cast<std::size_t>(quantity)];
    }
    const CDateTimeAdaptor& GetDateTime() const { return m_dateTime; }
    const CDateTimeSpanAdaptor& GetDateTimeSpan() const { return m_dateTimeSpan; }
    const CGeographicPositionAdaptor& GetGeographicPosition() const { return m_geographicPosition; }
    const CMisalignmentAdaptor& GetMisalignment() const { return m_misalignment; }
    const CLeverArmAdaptor& GetLeverArm() const { return m_leverArm; }
    // For numbers without a unit.
    const CNumericValueAdaptor& GetNumeric() const { return m_numeric; }

    // The adaptor for packet fields of a nature code; that for plain numbers for natures without a unit and
    // for unknown codes. Fields of a nature are in the adaptor's internal unit.
    const CNumericValueAdaptor& GetForNature(std::uint32_t nature) const;

  private:
    std::array<CPhysicalValueAdaptor, static_cast<std::size_t>(EQuantity::count)> m_physical;
    CDateTimeAdaptor m_dateTime;
    CDateTimeSpanAdaptor m_dateTimeSpan;
    CGeographicPositionAdaptor m_geographicPosition;
    CMisalignmentAdaptor m_misalignment;
    CLeverArmAdaptor m_leverArm;
    CNumericValueAdaptor m_numeric;
};

} // namespace Outils_Valeurs
