#include "values/adaptors.h"

#include "values/units.h"

#include <algorithm>
#include <span>

namespace Outils_Valeurs {

namespace {

using namespace Outils_Configuration;

struct SQuantityRow {
    std::span<const SUnitRow> units;
    TKey<std::int32_t> precision;
    TKey<std::string> unit;
};

// The keys of a section that has both.
template <SKeyPath precision, SKeyPath unit>
constexpr SQuantityRow Row(std::span<const SUnitRow> units) {
    return {units, Cnf<precision>, Cnf<unit>};
}

// By EQuantity.
constexpr SQuantityRow kQuantities[] = {
    Row<"adaptors/rate/precision", "adaptors/rate/unit">(Units::kTime),
    Row<"adaptors/altitude/precision", "adaptors/altitude/unit">(Units::kLength),
    Row<"adaptors/misalignment/precision", "adaptors/misalignment/unit">(Units::kAngle),
    Row<"adaptors/leverArm/precision", "adaptors/leverArm/unit">(Units::kLength),
    Row<"adaptors/scaleFactor/precision", "adaptors/scaleFactor/unit">(Units::kScaleFactor),
    Row<"adaptors/currentSpeed/precision", "adaptors/currentSpeed/unit">(Units::kSpeed),
    Row<"adaptors/currentTime/precision", "adaptors/currentTime/unit">(Units::kTime),
    Row<"adaptors/linearSpeed/precision", "adaptors/linearSpeed/unit">(Units::kSpeed),
    Row<"adaptors/linearAcceleration/precision", "adaptors/linearAcceleration/unit">(Units::kAcceleration),
    Row<"adaptors/angularSpeed/precision", "adaptors/angularSpeed/unit">(Units::kAngularSpeed),
    Row<"adaptors/distance/precision", "adaptors/distance/unit">(Units::kDistance),
    Row<"adaptors/attitude/precision", "adaptors/attitude/unit">(Units::kAngle),
    Row<"adaptors/crossvariance/precision", "adaptors/crossvariance/unit">(Units::kCrossvariance),
    Row<"adaptors/timeDrift/precision", "adaptors/timeDrift/unit">(Units::kTimeDrift),
    Row<"adaptors/rawFogMeasurement/precision", "adaptors/rawFogMeasurement/unit">(Units::kRawFog),
    Row<"adaptors/rawAccMeasurement/precision", "adaptors/rawAccMeasurement/unit">(Units::kRawAcc),
};
static_assert(std::size(kQuantities) == static_cast<std::size_t>(EQuantity::count));
static_assert(std::ranges::all_of(kQuantities, [](const SQuantityRow& row) {
    return std::ranges::count(row.units, kSchema[row.unit.row].defaultText, &SUnitRow::symbol) == 1;
}));

// What shows the fields of a nature code; `count` for plain numbers, and for latitude and longitude, which
// have adaptors of their own. A time length is shown as a rate: the other quantity in seconds has no
// decimals.
constexpr std::uint32_t kLatitude = 1;
constexpr std::uint32_t kLongitude = 2;
constexpr EQuantity kNatures[] = {
    EQuantity::count,              // 0 unknown
    EQuantity::count,              // 1 latitude
    EQuantity::count,              // 2 longitude
    EQuantity::distance,           // 3 position standard deviation
    EQuantity::crossvariance,      // 4 position cross variance
    EQuantity::linearSpeed,        // 5 linear speed
    EQuantity::linearSpeed,        // 6 linear speed standard deviation
    EQuantity::linearAcceleration, // 7 linear acceleration
    EQuantity::linearAcceleration, // 8 linear acceleration standard deviation
    EQuantity::angularSpeed,       // 9 angular speed
    EQuantity::angularSpeed,       // 10 angular speed standard deviation
    EQuantity::count,              // 11 temperature
    EQuantity::count,              // 12 sound velocity
    EQuantity::altitude,           // 13 altitude
    EQuantity::altitude,           // 14 immersion
    EQuantity::altitude,           // 15 altitude or immersion standard deviation
    EQuantity::attitude,           // 16 attitude
    EQuantity::attitude,           // 17 attitude standard deviation
    EQuantity::distance,           // 18 distance
    EQuantity::distance,           // 19 distance standard deviation
    EQuantity::rate,               // 20 time length
    EQuantity::scaleFactor,        // 21 scale factor
    EQuantity::count,              // 22 enumeration
    EQuantity::timeDrift,          // 23 time drift
    EQuantity::rawFogMeasurement,  // 24 raw FOG measurement
    EQuantity::rawAccMeasurement,  // 25 raw accelerometer measurement
};
static_assert(std::size(kNatures) == 26);

void ConfigureAngle(CLatitudeLongitudeAdaptor& adaptor, const CTrvCnfConfigFile& configuration) {
    adaptor.notation = configuration.Get(Cnf<"adaptors/geographicPosition/notation">);
    adaptor.precision = configuration.Get(Cnf<"adaptors/geographicPosition/precision">);
    adaptor.useMathematicalSign = configuration.Get(Cnf<"adaptors/geographicPosition/useMathematicalSign">);
    adaptor.degreesSeparator = configuration.Get(Cnf<"adaptors/geographicPosition/degreesSeparator">);
    adaptor.minutesSeparator = configuration.Get(Cnf<"adaptors/geographicPosition/minutesSeparator">);
    adaptor.decimalSeparator = configuration.Get(Cnf<"adaptors/geographicPosition/decimalSeparator">);
    adaptor.hideSeparators = false;
}

} // namespace

CTrvAdaptors::CTrvAdaptors() {
    for (std::size_t i = 0; i < m_physical.size(); ++i)
        for (const SUnitRow& row : kQuantities[i].units)
            m_physical[i].AddUnit(row.A, row.B, 0.0, row.name, row.symbol);
    m_leverArm.SetAxes(Get(EQuantity::leverArm));
    m_misalignment.SetAxes(Get(EQuantity::misalignment));
    m_geographicPosition.altitude = Get(EQuantity::altitude);
}

void CTrvAdaptors::Configure(const CTrvCnfConfigFile& configuration) {
    const char16_t decimalSeparator = configuration.Get(Cnf<"adaptors/decimalSeparator">);
    m_numeric.decimalSeparator = decimalSeparator;
    for (std::size_t i = 0; i < m_physical.size(); ++i) {
        const SQuantityRow& row = kQuantities[i];
        m_physical[i].precision = configuration.Get(row.precision);
        m_physical[i].decimalSeparator = decimalSeparator;
        m_physical[i].SetCurrentUnit(row.units.front().symbol);
        m_physical[i].SetCurrentUnit(configuration.Get(row.unit));
    }
    m_leverArm.SetAxes(Get(EQuantity::leverArm));
    m_misalignment.SetAxes(Get(EQuantity::misalignment));

    m_dateTime.notation = configuration.Get(Cnf<"adaptors/dateTime/dateNotation">);
    m_dateTime.precision = configuration.Get(Cnf<"adaptors/dateTime/precision">);
    m_dateTime.dateSeparator = configuration.Get(Cnf<"adaptors/dateTime/dateSeparator">);
    m_dateTime.hourSeparator = configuration.Get(Cnf<"adaptors/dateTime/hourSeparator">);
    m_dateTime.decimalSeparator = decimalSeparator;

    m_dateTimeSpan.notation = configuration.Get(Cnf<"adaptors/dateTimeSpan/spanNotation">);
    m_dateTimeSpan.precision = configuration.Get(Cnf<"adaptors/dateTimeSpan/precision">);
    m_dateTimeSpan.hourSeparator = m_dateTime.hourSeparator;
    m_dateTimeSpan.decimalSeparator = decimalSeparator;
    m_dateTimeSpan.total.precision = m_dateTimeSpan.precision;
    m_dateTimeSpan.total.decimalSeparator = decimalSeparator;
    m_dateTimeSpan.total.SetCurrentUnit(Units::kSpan[0].symbol);
    m_dateTimeSpan.total.SetCurrentUnit(configuration.Get(Cnf<"adaptors/dateTimeSpan/unit">));

    ConfigureAngle(m_geographicPosition.latitude, configuration);
    ConfigureAngle(m_geographicPosition.longitude, configuration);
    m_geographicPosition.altitude = Get(EQuantity::altitude);
}

const CNumericValueAdaptor& CTrvAdaptors::GetForNature(std::uint32_t nature) const {
    if (nature == kLatitude) return m_geographicPosition.latitude;
    if (nature == kLongitude) return m_geographicPosition.longitude;
    if (nature >= std::size(kNatures) || kNatures[nature] == EQuantity::count) return m_numeric;
    return Get(kNatures[nature]);
}

} // namespace Outils_Valeurs
