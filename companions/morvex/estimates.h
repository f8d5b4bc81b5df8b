// What the filter has found out about the sensors, in words.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/run_plan.h"

#include <string>
#include <vector>

namespace Morvex {

// Of one sensor: its channel, and what was estimated of it.
struct SEstimateText {
    std::string channel;
    std::string text;
};

// One text for each group of states that the filter has; the lever arm of the GPS as a whole, what is stated
// included.
std::vector<SEstimateText> DescribeEstimates(const CInsFilter& filter, const SRunPlan& plan);

} // namespace Morvex
