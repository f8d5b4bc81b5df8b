// The trajectory records of a result: navigation in radians, and the motion against the Earth that
// neighbouring packets show.
#pragma once

#include "export/fields.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Exportation {

// One navigation packet of a result. Axes: north, east, down; vessel forward, to starboard, down. Angles in
// radians: heading clockwise from north, roll positive with starboard down, pitch positive with the bow up.
struct SNavigationSample {
    std::int64_t date = 0;                  // ticks
    double latitude = 0.0, longitude = 0.0; // radians
    double altitude = 0.0;                  // m
    std::array<double, 3> velocity{};       // north, east, down; m/s
    double roll = 0.0, pitch = 0.0, heading = 0.0;
    std::array<double, 3> arm{};               // from the primary point to this one; north, east, down; m
    std::array<double, 3> positionDeviation{}; // north, east, down; m
    std::array<double, 3> velocityDeviation{}; // m/s
    std::array<double, 3> attitudeDeviation{}; // roll, pitch, heading; radians
};

// In the axes of the vessel.
struct SMotion {
    std::array<double, 3> acceleration{}; // against the Earth, without gravity; m/s²
    std::array<double, 3> rate{};         // against the local level; radians/s
};

// Reads samples of the point 0 to 3. REQUIRES: payloads of the standard result packet.
class CNavigationReader {
  public:
    explicit CNavigationReader(int point);
    SNavigationSample Read(const std::uint8_t* payload) const;

  private:
    STrackFields m_fields, m_primary;
    std::array<SFieldRef, 3> m_velocityDeviation, m_attitudeDeviation;
    bool m_isPrimary;
};

// The motion at the middle one of three samples, and for a point other than the primary one its velocity.
// Neighbours farther away than kLongestStep, and those that do not follow in time, do not count: with one
// neighbour the motion is that of the step, with none it is zero.
inline constexpr double kLongestStep = 2.0; // s
SMotion GetMotion(const SNavigationSample* before, SNavigationSample& at, const SNavigationSample* after);

} // namespace Exportation
