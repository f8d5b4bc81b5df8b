// The channels of a recording beside the inertial one: what each measures of the vehicle, with its errors.
#pragma once

#include "recording/payload.h"
#include "simulator/mission.h"
#include "simulator/random.h"

#include <span>
#include <utility>

namespace Simulation {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Enregistrement::SPlace;

struct SSensorRow;

// One channel, asked for its packets one after the other.
class CSensor {
  public:
    // REQUIRES: `channel` has a row in the sensor table; `mission` outlives the sensor.
    CSensor(const CMission& mission, std::string_view channel);

    // Date of the next packet in ticks.
    std::int64_t GetNextDate() const { return m_nextDate; }
    // Makes the packet of the next date and moves on. Empty when the sensor is silent then.
    std::span<const std::uint8_t> MakePacket(CTrackCursor& cursor);

    std::string_view GetChannel() const { return m_channel; }
    const CMission& GetMission() const { return *m_mission; }
    const SMissionOptions& GetOptions() const { return m_mission->GetOptions(); }

    // For the rows' functions: what is measured, when, and by which deviations it errs.
    const SVehicleState& GetState() const { return m_state; }
    std::int64_t GetDate() const { return m_date; }
    double GetTime() const;                           // seconds: when the measurement was valid
    double GetInterval() const { return m_interval; } // seconds to the packet before
    std::uint32_t GetCount() const { return m_count; }
    // A diving vehicle, a metre below the surface or more.
    bool IsUnderWater() const;
    // The deviation that the packet states, for one that holds.
    double State(double deviation) const { return deviation * GetOptions().statedDeviation; }
    // Metres north and east that a satellite receiver errs by beyond what it states.
    Vector3d StepHiddenError();
    // Three errors that wander by this deviation and change within so many seconds.
    Vector3d StepWander(double deviation, double time);
    // A random error of this standard deviation, wild if this packet is an outlier.
    double MakeError(double deviation);
    CRandom& GetRandom() { return m_random; }
    CWander& GetWander(std::size_t index) { return m_wander[index]; }
    // A value kept from packet to packet; the former one is returned.
    double Exchange(double value) { return std::exchange(m_kept, value); }
    // The position of a point of the vehicle.
    struct SPoint {
        double latitude, longitude; // radians
        double altitude;            // metres above the ellipsoid
    };
    SPoint GetPointAt(EMount mount) const;
    // The velocity over ground of a point of the vehicle, in vessel axes.
    Vector3d GetVelocityAt(EMount mount) const;

  private:
    void Schedule();

    const CMission* m_mission;
    const SSensorRow* m_row;
    std::string_view m_channel;
    double m_rate, m_delay, m_hiddenDelay, m_interval;
    CRandom m_random;
    std::array<CWander, 9> m_wander;
    CTrackCursor m_ownCursor; // for a sensor that looks back by its delay
    SVehicleState m_state;
    CPayload m_payload;
    std::int64_t m_date = 0, m_nextDate = 0;
    std::int64_t m_index = 0;  // of the next date
    std::uint32_t m_count = 0; // packets made
    double m_kept = 0;
    double m_jumpEnd = 0, m_nextJump = -1; // seconds
    Vector3d m_jump = Vector3d::Zero();    // metres north and east
    bool m_outlier = false;
};

// The channel's usual packets per second; 0 for a channel that is no sensor.
double GetUsualRate(std::string_view channel);

// Bytes per second of a recording with these options.
double GetBytesPerSecond(const SMissionOptions& options);

} // namespace Simulation
