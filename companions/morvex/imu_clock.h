// Tells late, doubled and lost inertial packets apart by the unit's own frame counter.
#pragma once

#include <cstdint>
#include <optional>

namespace Morvex {

// The frame counter begins again at 0 after so many samples.
inline constexpr int kCounterCycle = 6000;

// Follows the dates of the packets. The dates are the recorder's and may be late, the counter is the unit's.
class CImuClock {
  public:
    // `nominal`: seconds between two samples.
    explicit CImuClock(double nominal = 0.01) : m_nominal(nominal) {}

    struct SSpan {
        double time = 0.0;   // end of the sample, s
        double length = 0.0; // since the end of the sample before, s, above 0
        int lost = 0;        // samples that are missing in between
    };
    // The span that a packet of this date and counter covers; empty for a packet that is to be left out: a
    // doubled one, or one dated before its predecessor. The first packet covers one nominal span.
    std::optional<SSpan> Add(double date, std::uint16_t counter);

  private:
    double m_nominal;
    double m_last = 0.0;
    double m_jitter = 0.0; // share of dates that are out of their place
    std::uint16_t m_counter = 0;
    bool m_started = false;
};

} // namespace Morvex
