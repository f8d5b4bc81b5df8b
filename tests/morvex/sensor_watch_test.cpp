#include "morvex/sensor_watch.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Morvex;

namespace {

SAiding Packet(EAiding kind, double time, const Vector3d& value) {
    SAiding aiding;
    aiding.kind = kind;
    aiding.time = time;
    aiding.value = value;
    return aiding;
}

} // namespace

// Packets of 2 Hz with one value; after how many of them the sensor counts as jammed, 0: never.
TEST(SensorWatch, RepeatedValuesAreJams) {
    struct SRow {
        EAiding kind;
        Vector3d value;
        int jammedAt;
    };
    for (const SRow& row : {SRow{EAiding::dvlBottom, {1.0, 0.1, 0.0}, 9},
                            {EAiding::emLog, {2.5, 0, 0}, 41},
                            {EAiding::depth, {30.0, 0, 0}, 0},
                            {EAiding::odometer, {0, 0, 0}, 0}}) {
        CSensorWatch watch;
        int jammedAt = 0;
        for (int i = 1; i <= 100 && !jammedAt; ++i)
            if (watch.IsJammed(Packet(row.kind, 0.5 * i, row.value))) jammedAt = i;
        EXPECT_EQ(jammedAt, row.jammedAt) << static_cast<int>(row.kind);
        if (!jammedAt) continue;
        EXPECT_EQ(watch.TakeJam(row.kind), 0.5);
        EXPECT_FALSE(watch.TakeJam(row.kind)) << "once";
        EXPECT_FALSE(watch.IsJammed(Packet(row.kind, 60.0, row.value * 1.01))) << "it measures again";
    }
}

TEST(SensorWatch, TurnedLogsAreFound) {
    // Turned to port by so many degrees; the noise of the direction; whether it is worth a word.
    for (const auto& [degrees, noise, named] :
         {std::tuple{180.0, 0.05, true}, {-90.0, 0.05, true}, {2.0, 0.05, false}, {180.0, 3.0, false}}) {
        CSensorWatch watch;
        const double turn = degrees * kRadiansPerDegree;
        std::optional<double> found;
        for (int i = 0; i < 100; ++i) {
            const double off = noise * std::sin(2.4 * i) - turn, course = 0.3 * i;
            watch.AddDirection(EAiding::dvlBottom,
                               2.0 * Vector3d(std::cos(course + off), std::sin(course + off), 0.0),
                               2.0 * Vector3d(std::cos(course), std::sin(course), 0.0));
            if (const auto now = watch.TakeTurn(EAiding::dvlBottom)) found = now;
        }
        ASSERT_EQ(found.has_value(), named) << degrees;
        if (found) {
            EXPECT_NEAR(std::remainder(*found - turn, 2.0 * std::numbers::pi), 0.0, 0.03);
        }
    }
}

TEST(SensorWatch, LastingContradictionsAreNamedOnce) {
    CSensorWatch watch;
    int named = 0;
    for (int i = 0; i < 300; ++i)
        if (const auto since = watch.TakeContradiction(
                EAiding::emLog, i, i < 10 ? EFixResult::accepted : EFixResult::rejected)) {
            EXPECT_EQ(*since, 10.0);
            ++named;
        }
    EXPECT_EQ(named, 1);
}
