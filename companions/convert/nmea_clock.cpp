#include "convert/nmea_clock.h"

#include <cstdlib>

namespace Conversion {
namespace {

const Ticks kSecondEra = *MakeDay(1999, 8, 22) * kTicksPerDay;

// How many eras lie between two dates that a receiver may have mistaken for each other; 0 for others.
std::int64_t CountEras(Ticks from, Ticks to) {
    const Ticks distance = to - from;
    const std::int64_t eras =
        (distance + (distance >= 0 ? kTicksPerEra / 2 : -kTicksPerEra / 2)) / kTicksPerEra;
    return std::llabs(distance - eras * kTicksPerEra) <= kTicksPerDay ? eras : 0;
}

} // namespace

void CNmeaClock::SetDate(Ticks day, Ticks timeOfDay) {
    while (day < kSecondEra) {
        day += kTicksPerEra;
        m_hasMoved = true;
    }
    const Ticks relative = Place(timeOfDay), offset = day + timeOfDay - relative;
    if (!m_offset) {
        m_firstDay = day;
        m_offset = offset;
        return;
    }
    const std::int64_t eras = CountEras(*m_offset, offset);
    if (eras < 0) return;
    if (eras > 0) m_eraStep = eras * kTicksPerEra;
    m_offset = offset;
}

} // namespace Conversion
