#include "morvex/gap_bridge.h"
#include "morvex/imu_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace Morvex;

// Dates in hundredths and counters of the packets that arrive; the spans in hundredths, 0 for a packet that
// is left out, and the samples that are missing.
TEST(ImuClock, CounterTellsLateFromLost) {
    struct SPacket {
        double date;
        int counter;
        double length;
        int lost;
    };
    const std::vector<SPacket> rows[] = {
        {{1, 0, 1, 0}, {2, 1, 1, 0}, {3, 2, 1, 0}},                       // as they come
        {{1, 5998, 1, 0}, {2, 5999, 1, 0}, {3.9, 0, 1, 0}, {4, 1, 1, 0}}, // late, as the counter goes around
        {{1, 0, 1, 0}, {4, 3, 3, 2}, {5, 4, 1, 0}},                       // two lost
        {{1, 0, 1, 0}, {1.2, 0, 0, 0}, {2, 1, 1, 0}},                     // doubled
        {{1, 0, 1, 0}, {2, 2, 1, 0}, {3, 2, 1, 0}},                       // a counter made of rounded dates
        {{1, 7, 1, 0}, {2, 7, 1, 0}, {5, 7, 3, 2}},                       // no counter
        {{1, 0, 1, 0}, {9001, 3000, 9000, 8999}, {9002, 3001, 1, 0}},     // longer than its cycle
        {{5, 0, 1, 0}, {3, 4000, 0, 0}, {6, 1, 1, 0}},                    // dated back
    };
    for (const auto& packets : rows) {
        CImuClock clock(0.01);
        for (const SPacket& packet : packets) {
            const auto span = clock.Add(0.01 * packet.date, static_cast<std::uint16_t>(packet.counter));
            ASSERT_EQ(span.has_value(), packet.length > 0) << packet.date;
            if (!span) continue;
            EXPECT_NEAR(span->length, 0.01 * packet.length, 0.002) << packet.date;
            EXPECT_EQ(span->lost, packet.lost) << packet.date;
        }
    }
}

TEST(GapBridge, LongerGapsAreNeverKnownBetter) {
    Vector3d turn = Vector3d::Zero(), speed = Vector3d::Zero();
    for (const double gap : {0.01, 0.02, 0.05, 0.1, 0.2, 0.3, 1.0, 3.0, 12.0}) {
        CGapBridge bridge;
        const auto sample = [](double t) {
            const double rate = 0.05 * std::cos(0.8 * t);
            return SImuSample{t, 0.01, Vector3d(rate, 0.3 * rate, 0.1 * rate) * 0.01,
                              Vector3d(rate, 0, 9.8) * 0.01};
        };
        double t = 0.0;
        while (t < 60.0) {
            SImuSample next = sample(t += 0.01);
            bridge.Fill(next, 0.01);
            EXPECT_EQ(next.gapTurn, Vector3d::Zero());
        }
        SImuSample after = sample(t + gap);
        after.span = gap + 0.01;
        after.gap = gap;
        bridge.Fill(after, 0.01);
        EXPECT_NEAR(after.velocity.z(), 9.8 * after.span, 1e-6);
        EXPECT_TRUE((after.gapTurn.array() >= turn.array()).all()) << gap;
        EXPECT_TRUE((after.gapSpeed.array() >= speed.array()).all()) << gap;
        EXPECT_LT(after.gapTurn.norm(), gap < 0.03 ? 1e-5 : 1.0) << "a lost packet costs nothing";
        turn = after.gapTurn;
        speed = after.gapSpeed;
    }
}
