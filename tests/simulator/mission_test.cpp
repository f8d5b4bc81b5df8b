#include "simulator/mission.h"

#include "simulator/earth.h"
#include "simulator/inertial_unit.h"
#include "xpf/packets.h"

#include <GeographicLib/NormalGravity.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace Simulation {
namespace {

// The mean error over many units: bias and random walk of the table.
TEST(InertialUnitTest, GradesErrByTheirTable) {
    SMissionOptions options;
    options.alignmentDuration = 400;
    options.imuRate = 20;
    options.grade = EGrade::mems;
    options.duration = 5;
    const double earth = 15.04106717 * std::sin(options.latitude * kRadiansPerDegree); // degrees per hour
    double sum = 0, squares = 0;
    constexpr int kUnits = 200;
    for (options.seed = 1; options.seed <= kUnits; ++options.seed) {
        const CMission mission(options);
        CInertialUnit unit(mission);
        double turned = 0; // about the vertical, thousandths of an arc second
        for (int i = 0; i < 100; ++i) {
            Persistance_Xpf::CXpfTarinImuPacketV2 packet;
            std::memcpy(packet.GetPayload(), unit.MakePacket().data(), packet.GetPayloadSize());
            double raw = 0;
            ASSERT_TRUE(packet.GetDouble(6, raw));
            turned += raw;
        }
        const double error = turned / 1000 / 5 - earth;
        sum += error;
        squares += error * error;
    }
    // 20 constant, 5 wandering, and 0.3 degrees per root hour over 5 s: 8.05.
    const double expected = std::sqrt(20.0 * 20 + 5 * 5 + 8.05 * 8.05);
    EXPECT_NEAR(std::sqrt(squares / kUnits), expected, 0.15 * expected);
    EXPECT_NEAR(sum / kUnits, 0, 0.25 * expected);
}

// The truth does not depend on the order of the questions, and moves by its speeds.
TEST(MissionTest, TruthIsTheSameEitherWay) {
    for (const EVehicle vehicle : {EVehicle::ship, EVehicle::auv, EVehicle::car}) {
        SMissionOptions options;
        options.vehicle = vehicle;
        options.alignmentDuration = 20;
        options.duration = 400;
        options.heading = 359.5;
        const CMission mission(options);
        CTrackCursor forward;
        constexpr double h = 0.01;
        for (double time = h; time < 399; time += 0.317) {
            const STruth before = mission.GetTruth(time - h, forward), at = mission.GetTruth(time, forward),
                         after = mission.GetTruth(time + h);
            const SRadii radii = GetRadii(std::sin(at.latitude * kRadiansPerDegree));
            EXPECT_NEAR((after.latitude - before.latitude) * kRadiansPerDegree *
                            (radii.meridian + at.altitude) / (2 * h),
                        at.speedNorth, 5e-5);
            EXPECT_NEAR((after.longitude - before.longitude) * kRadiansPerDegree *
                            (radii.normal + at.altitude) * std::cos(at.latitude * kRadiansPerDegree) /
                            (2 * h),
                        at.speedEast, 5e-5);
            EXPECT_NEAR((after.altitude - before.altitude) / (2 * h), at.speedUp, 1e-4);
            if (time > options.alignmentDuration) continue;
            EXPECT_NEAR(at.latitude, options.latitude, 1e-12);
            EXPECT_NEAR(at.longitude, options.longitude, 1e-12);
            EXPECT_NEAR(at.altitude, options.altitude, 1e-9);
            EXPECT_NEAR(at.heading, options.heading, 1e-9);
            EXPECT_EQ(std::hypot(at.speedNorth, at.speedEast, at.speedUp), 0);
        }
    }
}

TEST(EarthTest, GravityAgreesWithTheExactField) {
    const auto& exact = GeographicLib::NormalGravity::WGS84();
    for (const double latitude : {-80.0, -45.0, 0.0, 30.0, 60.0})
        for (const double altitude : {-5000.0, 0.0, 1500.0, 8000.0}) {
            double north, up;
            exact.Gravity(latitude, altitude, north, up);
            const Vector3d gravity = GetGravity(std::sin(latitude * kRadiansPerDegree), altitude);
            EXPECT_NEAR(gravity.z(), up, 1.5e-6) << latitude << ' ' << altitude;
            EXPECT_NEAR(gravity.x(), north, 5e-7) << latitude << ' ' << altitude;
        }
}

} // namespace
} // namespace Simulation
