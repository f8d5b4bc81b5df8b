// Finds the faults of a whole aiding sensor: repeated values, a log mounted turned, a lasting contradiction.
#pragma once

#include "morvex/aiding.h"

#include <array>
#include <optional>

namespace Morvex {

class CSensorWatch {
  public:
    // Whether the sensor hangs: its values repeat to the last digit for longer than chance explains. Each
    // packet is to be asked once, in order.
    bool IsJammed(const SAiding& aiding);
    // When the values began to repeat, s, once for every time that IsJammed turns true.
    std::optional<double> TakeJam(EAiding kind);

    // Adds a speed that a log measured and the one that was expected, both in its axes, m/s.
    void AddDirection(EAiding kind, const Vector3d& measured, const Vector3d& expected);
    // The angle to port from the stated mounting of the log, rad: once, when it is certain and large.
    std::optional<double> TakeTurn(EAiding kind);

    // Adds what became of a packet. Gives the time from which the sensor contradicts the rest, once for every
    // contradiction that lasts.
    std::optional<double> TakeContradiction(EAiding kind, double time, EFixResult result);

  private:
    struct SState {
        Vector3d last = Vector3d::Constant(HUGE_VAL);
        double same = 0.0; // since when, s
        int repeats = 0;
        bool jamTaken = false;
        double cosine = 0.0, sine = 0.0, weight = 0.0; // of the measured directions
        int directions = 0;
        bool turnTaken = false;
        double rejectedSince = -1.0; // s; below 0: the last packet was taken
        bool contradictionTaken = false;
    };
    SState& Get(EAiding kind) { return m_states[static_cast<std::size_t>(kind)]; }

    std::array<SState, static_cast<std::size_t>(EAiding::count)> m_states;
};

} // namespace Morvex
