// A value that holds and changes along smooth ramps.
#pragma once

#include <cstddef>
#include <vector>

namespace Simulation {

struct SProfileValue {
    double value = 0, first = 0, second = 0; // and its derivatives by time
};

// Ramps follow 35 x^4 - 84 x^5 + 70 x^6 - 20 x^7, the polynomial whose first three derivatives vanish at both
// ends.
class CProfile {
  public:
    // Index of the ramp that was used last: a guess that makes the next look-up short.
    using Hint = std::size_t;

    explicit CProfile(double initial) : m_ramps{{0, 1, initial, 0, 0}} {}

    // Changes to `value` over `duration` seconds, above 0.
    // REQUIRES: `begin` is not before the end of the last ramp, nor before 0.
    void ChangeTo(double value, double begin, double duration);
    // The value after the last ramp.
    double GetLast() const { return m_ramps.back().from + m_ramps.back().delta; }

    // `time` from 0 on.
    SProfileValue At(double time, Hint& hint) const;
    // The integral from time 0.
    double IntegralAt(double time, Hint& hint) const;

  private:
    struct SRamp {
        double begin, duration, from, delta;
        double integral; // from time 0 to `begin`
    };
    const SRamp& Find(double time, Hint& hint) const;
    static double Integrate(const SRamp& ramp, double time);

    std::vector<SRamp> m_ramps;
};

} // namespace Simulation
