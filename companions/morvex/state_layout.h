// The states that sensors add to the fifteen of the navigation: one row a group.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace Morvex {

inline constexpr int kStates = 15;
inline constexpr int kMostStates = 40;

enum class EGroup : std::uint8_t {
    gpsArm,        // of the first GPS beyond the lever arm that is stated, vessel axes, m
    gpsLag,        // by which the fixes of the first GPS are dated late, s
    dvlScale,      // one part in one
    dvlTurn,       // misalignment of the Doppler log, rad, vessel axes
    current,       // of the water, north and west, m/s
    emLogScale,    // one part in one
    depthBias,     // tide, air pressure and offset, m
    usblBias,      // north, west, up, m
    usblOrigin,    // by which the origin of relative positions is off, the same axes, m
    soundScale,    // of ranges to beacons, one part in one
    odometerScale, // one part in one
    odometerTurn,  // boresight about the vertical and the port axis, rad
    count
};

struct SGroupRow {
    EGroup group;
    int size;
    double deviation; // at the start, in the group's unit
    double drift;     // standard deviation of its random walk, per root of a second
    double time;      // after which it forgets, s; 0: never
};

// In the order of EGroup. A plan may state another deviation and time.
inline constexpr std::array<SGroupRow, static_cast<std::size_t>(EGroup::count)> kGroupRows{{
    {EGroup::gpsArm, 3, 0.05, 0.0, 0.0},
    {EGroup::gpsLag, 1, 0.005, 0.0, 0.0},
    {EGroup::dvlScale, 1, 0.005, 0.0, 0.0},
    {EGroup::dvlTurn, 3, 0.01, 0.0, 0.0},
    {EGroup::current, 2, 0.5, 0.0, 3600.0},
    {EGroup::emLogScale, 1, 0.03, 0.0, 0.0},
    {EGroup::depthBias, 1, 0.5, 0.0, 21600.0},
    {EGroup::usblBias, 3, 0.2, 0.0, 1800.0},
    {EGroup::usblOrigin, 3, 3000.0, 0.0, 0.0},
    {EGroup::soundScale, 1, 0.003, 0.0, 0.0},
    {EGroup::odometerScale, 1, 0.1, 0.0, 0.0},
    {EGroup::odometerTurn, 2, 0.03, 0.0, 0.0},
}};

// Which groups a filter has, and where.
class CStateLayout {
  public:
    CStateLayout() {
        m_first.fill(-1);
        for (std::size_t i = 0; i < m_rows.size(); ++i) m_rows[i] = kGroupRows[i];
    }

    // Adds a group once; `deviation` or `time` above 0 replace those of the row. REQUIRES: room for it.
    void Add(EGroup group, double deviation = 0.0, double time = 0.0) {
        const auto index = static_cast<std::size_t>(group);
        if (m_first[index] >= 0) return;
        if (deviation > 0.0) m_rows[index].deviation = deviation;
        if (time > 0.0) m_rows[index].time = time;
        m_first[index] = m_size;
        m_size += m_rows[index].size;
    }
    // The first state of a group; -1 when the filter has none of it.
    int Find(EGroup group) const { return m_first[static_cast<std::size_t>(group)]; }
    const SGroupRow& GetRow(EGroup group) const { return m_rows[static_cast<std::size_t>(group)]; }
    // Puts the groups' variances at the start on the diagonal of a covariance of GetSize().
    template <class Matrix>
    void SetDeviations(Matrix& covariance) const {
        for (const SGroupRow& row : m_rows)
            for (int i = 0; Find(row.group) >= 0 && i < row.size; ++i) {
                const int at = Find(row.group) + i;
                covariance(at, at) = row.deviation * row.deviation;
            }
    }
    // All states, the fifteen included.
    int GetSize() const { return m_size; }

  private:
    std::array<SGroupRow, kGroupRows.size()> m_rows;
    std::array<int, kGroupRows.size()> m_first;
    int m_size = kStates;
};

} // namespace Morvex
