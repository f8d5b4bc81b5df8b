// The clock of an INS, which begins again after a cycle, as a steady time.
#pragma once

#include "convert/calendar.h"

#include <cstdlib>
#include <optional>

namespace Conversion {

class CClockCycle {
  public:
    // Ticks of a cycle. The first time is taken as it is.
    explicit CClockCycle(Ticks cycle) : m_cycle(cycle) {}

    // The steady time: later than the one before, or earlier by less than an eighth of the cycle. A single
    // time far from its neighbours, damaged perhaps, leaves those after it as they are.
    // REQUIRES: 0 <= time <= cycle.
    Ticks Unwrap(Ticks time) {
        if (!m_last) return *(m_last = time);
        const Ticks far = m_cycle / 8, least = *m_last - far - time;
        const Ticks cycles = least <= 0 ? -(-least / m_cycle) : (least + m_cycle - 1) / m_cycle;
        time += cycles * m_cycle;
        const bool isFar = std::abs(time - *m_last) > far;
        if (isFar && !(m_doubtful && std::abs(time - *m_doubtful) <= far)) return *(m_doubtful = time);
        m_doubtful.reset();
        return *(m_last = time);
    }

  private:
    Ticks m_cycle;
    std::optional<Ticks> m_last, m_doubtful;
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
