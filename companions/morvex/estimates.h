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

// A text for each group of states in the filter. The lever arm of the GPS includes the stated one.
std::vector<SEstimateText> DescribeEstimates(CInsFilter& filter, const SRunPlan& plan);

} // namespace Morvex
