// One row for each kind of aiding channel.
#pragma once

#include "simulator/sensors.h"

namespace Simulation {

struct SSensorRow {
    std::string_view prefix; // of the channel names: "GPS_" means GPS_1 to GPS_3
    const Persistance_Xpf::SPacketLayout* layout;
    double rate;  // packets per second, usually
    double phase; // seconds after the whole period
    void (*fill)(CSensor& sensor, CPayload& payload);
    bool underWater = true; // also works there
};

// The row of a channel; null for a channel that is no sensor.
const SSensorRow* FindSensorRow(std::string_view channel);

} // namespace Simulation
