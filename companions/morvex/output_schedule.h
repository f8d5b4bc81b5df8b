// At which dates the result is wanted.
#pragma once

#include "morvex/run_plan.h"

namespace Morvex {

// The dates are the whole multiples of the period of the rate in force, so that they do not depend on where a
// run begins.
class COutputSchedule {
  public:
    // `plan` must outlive the schedule.
    explicit COutputSchedule(const SRunPlan& plan) : m_plan(plan) {}

    // The first date after `time`, s. Where the rate changes before it, the multiples of the new rate count
    // from the change on. Rates are bounded to between one in an hour and 1 kHz.
    double GetNextAfter(double time) const;

  private:
    double GetRate(double time) const;
    const SRunPlan& m_plan;
};

} // namespace Morvex
