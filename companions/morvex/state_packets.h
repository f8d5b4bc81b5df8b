// The filter's estimates and its whole state as packets of the result.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/run_plan.h"

#include <array>
#include <cstdint>
#include <vector>

namespace Morvex {

// What a packet of the estimates holds besides the filter's state.
struct SEstimateContext {
    double geoidHeight = 0.0; // m, taken off the altitude when it is wanted above the geoid
    std::uint32_t status1 = 0, status2 = 0;
};

// The estimates at the filter's instant: its layout's fields in SI units, angles of the position in degrees.
// Fields without a state are zero, as is heave, which is computed later.
std::vector<std::uint8_t> MakeEstimatePacket(CInsFilter& filter, const SRunPlan& plan,
                                             const SEstimateContext& context);

// The vector of all states as they were estimated, and the upper triangle of their covariance by rows, in the
// order of EState and of the layout's groups. The navigation's errors are zero: they are in the estimates.
std::vector<std::uint8_t> MakeStatePacket(CInsFilter& filter);

} // namespace Morvex
