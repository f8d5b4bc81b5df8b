// What the first stretch of a recording says about settings that are forgotten or wrong.
#pragma once

#include "morvex/run_plan.h"

#include <functional>
#include <optional>

namespace Morvex {

// What the data say of the first GPS and of the vehicle. Deviations are standard deviations.
struct SMounting {
    Vector3d arm = Vector3d::Zero(); // of the antenna beyond the lever arm that is stated, vessel axes, m
    Vector3d armDeviation = Vector3d::Zero();
    double lag = 0.0; // by which its fixes are dated late beyond their stated delay, s
    double lagDeviation = 0.0;
    bool isOnWheels = false; // it goes where it points, up slopes and round bends
};

// Navigates the beginning of a recording once with a lever arm and a date lag that are next to unknown. Empty
// without a GPS, without an alignment, and when `goOn`, which is asked every second of the recording, ends
// the work.
std::optional<SMounting> ProbeMounting(const SRunPlan& plan, const std::function<bool()>& goOn);

// Whether an estimate differs from zero by so much that chance does not explain it.
bool IsCertain(double estimate, double deviation, double least);

} // namespace Morvex
