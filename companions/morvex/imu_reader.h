// The inertial data of a recording as samples in vessel axes.
#pragma once

#include "morvex/gap_bridge.h"
#include "morvex/imu_clock.h"
#include "morvex/measurements.h"
#include "morvex/packet_stream.h"
#include "morvex/run_plan.h"

#include <deque>
#include <vector>

namespace Morvex {

class CImuReader {
  public:
    // False when there is no such file or channel, or less than two packets in it.
    bool Open(const SRunPlan& plan);
    // The next sample; false at the end. Leaves out doubled packets and single ones dated far ahead of their
    // successor, sets late dates right, and bridges lost packets.
    bool Next(SImuSample& sample);

    double GetNominalSpan() const { return m_nominal; }
    CPacketStream& GetStream() { return m_stream; }

  private:
    struct SRaw {
        double time = 0.0;
        std::uint16_t counter = 0;
        Vector3d angle = Vector3d::Zero();
        Vector3d velocity = Vector3d::Zero();
    };
    bool ReadRaw(SRaw& raw);
    bool ProbeSpan();
    // The next packet as a sample; its `gap` is not bridged.
    bool Take(SImuSample& sample);

    CPacketStream m_stream;
    Matrix3d m_angleScale = Matrix3d::Identity();    // raw unit to rad in vessel axes
    Matrix3d m_velocityScale = Matrix3d::Identity(); // raw unit to m/s in vessel axes
    SRaw m_next;
    bool m_hasNext = false;
    double m_last = 0.0;
    double m_nominal = 0.0;
    CImuClock m_clock;
    CGapBridge m_bridge;
    std::deque<SImuSample> m_ahead;   // taken, and not looked at yet
    std::vector<SImuSample> m_filled; // of a hole, from m_nextFilled on
    std::size_t m_nextFilled = 0;
};

} // namespace Morvex
