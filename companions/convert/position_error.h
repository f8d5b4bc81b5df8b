// Standard deviations of positions that come without any: what a receiver in this mode is assumed to reach.
#pragma once

#include <array>
#include <cstddef>

namespace Conversion {

struct SPositionError {
    double horizontal, vertical; // metres, one standard deviation, at a dilution of precision of 1
};

// The modes of "GPS mode".
enum EGpsMode : unsigned char {
    gpsNone = 0,
    gpsSingle = 1,
    gpsDifferential = 2,
    gpsPrecise = 3,
    gpsFixed = 4,
    gpsFloat = 5,
    gpsEstimated = 6,
    gpsManual = 7,
    gpsSimulated = 8,
    gpsConverging = 9,
    gpsModeCount
};

inline constexpr std::array<SPositionError, gpsModeCount> kAssumedErrors{{
    {30, 45},     // none
    {3, 5},       // single
    {1, 1.6},     // differential
    {2, 3.2},     // precise
    {0.02, 0.03}, // fixed
    {0.3, 0.5},   // float
    {30, 45},     // estimated
    {10, 16},     // manual
    {10, 16},     // simulated
    {0.5, 0.8},   // converging
}};

inline SPositionError GetAssumedError(std::size_t mode, double dilution = 1) {
    const SPositionError& error = kAssumedErrors[mode < gpsModeCount ? mode : std::size_t{gpsNone}];
    return {error.horizontal * dilution, error.vertical * dilution};
}

} // namespace Conversion
