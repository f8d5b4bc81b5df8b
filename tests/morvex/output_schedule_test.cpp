#include "morvex/output_schedule.h"

#include <gtest/gtest.h>

using namespace Morvex;

TEST(OutputSchedule, DatesAreMultiplesOfThePeriod) {
    SRunPlan plan;
    plan.defaultRate = 1.0;
    plan.rates = {{{2.5, 4.05}, 10.0}, {{3.0, 3.2}, 50.0}};
    const COutputSchedule schedule(plan);
    const std::pair<double, double> rows[] = {{-0.3, 0.0}, {0.0, 1.0}, {1.9, 2.0},  {2.0, 2.5},
                                              {2.5, 2.6},  {2.9, 3.0}, {3.0, 3.02}, {3.18, 3.2},
                                              {3.2, 3.3},  {4.0, 5.0}, {7.0, 8.0}};
    for (const auto& [time, next] : rows) EXPECT_NEAR(schedule.GetNextAfter(time), next, 1e-6) << time;
    plan.defaultRate = -3.0;
    EXPECT_GT(schedule.GetNextAfter(10.0), 10.0);
}
