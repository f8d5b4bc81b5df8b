// The inertial channel: what three gyroscopes and three accelerometers along the vessel axes count.
#pragma once

#include "recording/payload.h"
#include "simulator/mission.h"
#include "simulator/random.h"

#include <array>

namespace Simulation {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Enregistrement::SPlace;

// Turns exact increments into raw counts, one sample after the other.
//
// A sample is the integral of rotation rate and of specific force over the interval that ends at its date, by
// a Gauss-Legendre rule on the formulas of the motion: for all motions here within a tenth of a raw unit, at
// 20 samples per second as at 200. Then come the errors of the grade, and the rounding, whose remainder goes
// over to the next sample, so that counts do not drift from what they count.
class CInertialUnit {
  public:
    // `mission` outlives the unit.
    explicit CInertialUnit(const CMission& mission);

    std::int64_t GetNextDate() const { return GetDate(m_count + 1); }
    // The payload of the next sample, valid until the next call.
    std::span<const std::uint8_t> MakePacket();

  private:
    struct SAxis {
        double bias = 0, scale = 0,
               walk = 0; // in raw units per second, 1, raw units per square root of a second
        CWander wander;
        double remainder = 0;
    };

    std::int64_t GetDate(std::int64_t count) const;
    double Count(SAxis& axis, double exact, double step);

    const CMission* m_mission;
    int m_rate;
    CRandom m_random;
    CTrackCursor m_cursor;
    std::array<SAxis, 6> m_axes; // gyroscopes, then accelerometers
    CPayload m_payload;
    std::int64_t m_count = 0;
};

} // namespace Simulation
