#include "morvex/gap_bridge.h"
#include "morvex/imu_clock.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
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

TEST(ImuClock, FollowsTheEarliestOfJitteringDates) {
    std::mt19937 random(1);
    std::normal_distribution<double> late(0.0, 0.005);
    CImuClock clock(0.0101); // a first guess
    double time = 0.0;
    for (int i = 1; i <= 60000; ++i) {
        const auto span =
            clock.Add(0.01 * i + std::abs(late(random)), static_cast<std::uint16_t>(i % kCounterCycle));
        ASSERT_TRUE(span && span->lost == 0) << i;
        time = span->time - 0.01 * i;
    }
    EXPECT_NEAR(time, 0.0, 0.002);
}

namespace {

SImuSample WaveSample(double t) {
    const double sum = 0.05 / 0.8 * (std::sin(0.8 * t) - std::sin(0.8 * (t - 0.01)));
    return {t, 0.01, Vector3d(sum, 0.3 * sum, 0.1 * sum), Vector3d(sum, 0, 0.098)};
}

} // namespace

TEST(GapBridge, LongerGapsAreNeverKnownBetter) {
    Vector3d turn = Vector3d::Zero(), speed = Vector3d::Zero();
    for (const double gap : {0.01, 0.02, 0.05, 0.1, 0.2, 0.3, 1.0, 3.0, 8.0, 12.0}) {
        CGapBridge bridge;
        for (int i = 1; i <= 6000; ++i) bridge.Learn(WaveSample(0.01 * i));
        SImuSample next = WaveSample(60.01 + gap);
        next.span = gap + 0.01;
        next.gap = gap;
        std::vector<SImuSample> after, filled;
        for (double t = 60.02 + gap; t < 61.5 + gap; t += 0.01) after.push_back(WaveSample(t));
        bridge.Fill(next, after, 0.01, filled);

        SImuSample sum;
        Vector3d turnVariance = Vector3d::Zero(), speedVariance = Vector3d::Zero();
        for (const SImuSample& piece : filled) {
            sum.span += piece.span;
            sum.angle += piece.angle;
            sum.velocity += piece.velocity;
            turnVariance += piece.gapTurn.cwiseAbs2();
            speedVariance += piece.gapSpeed.cwiseAbs2();
        }
        EXPECT_NEAR(sum.span, next.span, 1e-9);
        EXPECT_NEAR(sum.velocity.z(), 9.8 * next.span, 1e-6);
        const double truth = 0.05 / 0.8 * (std::sin(0.8 * (60.01 + gap)) - std::sin(0.8 * 60.0));
        EXPECT_NEAR(sum.angle.x(), truth, 4.0 * std::sqrt(turnVariance.x()) + 1e-6) << gap;
        constexpr double kRounding = 1e-14;
        EXPECT_TRUE((turnVariance.array() + kRounding >= turn.array()).all()) << gap;
        EXPECT_TRUE((speedVariance.array() + kRounding >= speed.array()).all()) << gap;
        EXPECT_LT(std::sqrt(turnVariance.x()), gap < 0.03   ? 1e-6
                                               : gap <= 1.0 ? 1e-3
                                                            : 1.0)
            << "a second of waves is found from both sides";
        turn = turnVariance;
        speed = speedVariance;
    }
}
