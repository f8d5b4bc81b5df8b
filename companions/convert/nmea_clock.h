// The date of sentences that state a time of day only.
#pragma once

#include "convert/clock_cycle.h"

#include <optional>
#include <utility>

namespace Conversion {

// Follows the times of a log over midnight. Until the first date, days count from the first time: ticks are
// then relative, and GetFirstDate() makes them absolute.
class CNmeaClock {
  public:
    // The tick of a time of day.
    Ticks Place(Ticks timeOfDay) { return m_clock.Unwrap(timeOfDay); }
    // A date with its time of day. A date of an era of the GPS week that is over is ignored, and a new era
    // is reported by EraStep.
    void SetDate(Ticks day, Ticks timeOfDay);

    bool IsDated() const { return m_offset.has_value(); }
    // What relative ticks lack, once dated.
    Ticks GetOffset() const { return m_offset.value_or(0); }
    // The date has stepped forward by so many ticks of whole eras: what came before was dated in a wrong one.
    // Zero otherwise; asking clears it.
    Ticks TakeEraStep() { return std::exchange(m_eraStep, 0); }
    // A date was moved out of the first era, in which no log can be.
    bool HasMovedEra() const { return m_hasMoved; }
    // The first date, as ticks of its midnight; 0 without one.
    Ticks GetFirstDay() const { return m_firstDay; }

  private:
    CClockCycle m_clock{kTicksPerDay};
    std::optional<Ticks> m_offset; // from relative to absolute
    Ticks m_eraStep = 0, m_firstDay = 0;
    bool m_hasMoved = false;
};

} // namespace Conversion
