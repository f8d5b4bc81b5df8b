// The attitude of a gyro-stabilised mount in its vehicle.
#pragma once

#include "morvex/packet_stream.h"
#include "morvex/run_plan.h"

#include <cstdint>

namespace Morvex {

// Without a mount, or before Open has succeeded, the unit is fixed to the vehicle. One thread.
class CMountReader {
  public:
    // `plan` must outlive the reader. False when its channel cannot be opened or is empty.
    bool Open(const SMountPlan& plan);
    bool IsOpen() const { return m_plan != nullptr; }

    // Turns axes of the vehicle into axes of the unit. Interpolates between packets; before the first and
    // after the last it repeats that packet. `time` may go back by no more than one packet.
    Quaterniond GetVehicleToUnit(double time);
    // A point of the vehicle, from its reference point in its axes, seen from the unit in the unit's axes, m.
    Vector3d ToUnit(const Vector3d& point, double time);
    // Packets that were read.
    std::uint64_t GetCount() const { return m_count; }

  private:
    struct SPacket {
        double time = 0.0; // s
        Quaterniond vehicleToUnit = Quaterniond::Identity();
    };
    bool Read(SPacket& packet);

    const SMountPlan* m_plan = nullptr;
    CPacketStream m_stream;
    SPacket m_before, m_after;
    std::uint64_t m_count = 0;
};

} // namespace Morvex
