// The clock of an INS, which begins again after a cycle, as a steady time.
#pragma once

#include "convert/calendar.h"

namespace Conversion {

class CClockCycle {
  public:
    // Ticks of a cycle. The first time is taken as it is.
    explicit CClockCycle(Ticks cycle) : m_cycle(cycle) {}

    // The steady time: later than the one before, or earlier by less than an eighth of the cycle. A single
    // time far from its neighbours, damaged perhaps, leaves those after it as they are.
    // REQUIRES: 0 <= time <= cycle.
    Ticks Unwrap(Ticks time);

  private:
    static constexpr Ticks kNone = INT64_MIN;

    Ticks m_cycle, m_last = kNone, m_doubtful = kNone;
};

// Fits a line to pairs of clock time and UTC, to find by how much the clock drifts.
class CDriftFit {
  public:
    void Add(Ticks date, Ticks utc);
    // What a second of the clock is in seconds of UTC; 1 without enough pairs.
    double GetRate() const;
    // The drift over the recording is beyond what the scatter of the pairs can feign.
    bool IsSignificant() const;

  private:
    Ticks m_firstDate = 0, m_firstDifference = 0;
    // Sums over times in seconds from the first and differences in seconds from the first.
    double m_n = 0, m_t = 0, m_d = 0, m_tt = 0, m_td = 0, m_dd = 0, m_span = 0;
};

} // namespace Conversion
