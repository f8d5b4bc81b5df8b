#include "morvex/strapdown.h"
#include "morvex/timeline.h"
#include "simulator/inertial_unit.h"
#include "xpf/packets.h"

#include <GeographicLib/Geodesic.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

using namespace Morvex;

namespace {

// What a perfect unit sums up over `span` when it keeps its attitude to the level and flies at a constant
// velocity against the level: it turns with the level and feels what holds it there.
SImuSample LevelFlightSample(const SNavigation& navigation, double time, double span) {
    const SEarth earth(navigation.position[0], navigation.position[2], navigation.velocity);
    const Matrix3d toVessel = navigation.attitude.toRotationMatrix().transpose();
    SImuSample sample;
    sample.time = time;
    sample.span = span;
    sample.angle = toVessel * (earth.earthRate + earth.transportRate) * span;
    sample.velocity = toVessel *
                      (Vector3d(0, 0, earth.gravity) +
                       (2.0 * earth.earthRate + earth.transportRate).cross(navigation.velocity)) *
                      span;
    return sample;
}

SNavigation Start(double latitude, double heading, const Vector3d& velocity) {
    SNavigation start;
    start.position = {latitude * kRadiansPerDegree, 5.0 * kRadiansPerDegree, 100.0};
    start.velocity = velocity;
    start.attitude = Quaterniond(
        MatrixOf({heading * kRadiansPerDegree, 3.0 * kRadiansPerDegree, -2.0 * kRadiansPerDegree}));
    return start;
}

} // namespace

TEST(Earth, GravityAgreesWithTheMeasuredPlace) {
    EXPECT_NEAR(NormalGravity(std::sin(34.246048 * kRadiansPerDegree), 380.0), 9.79553, 1e-5);
    EXPECT_NEAR(NormalGravity(1.0, 0.0), 9.8321849378, 1e-9); // NIMA TR8350.2, at the pole
}

TEST(Earth, MetresAndPositionsAreInverse) {
    const Vector3d from(60 * kRadiansPerDegree, 179.999 * kRadiansPerDegree, 50.0);
    const Vector3d metres(300.0, -400.0, 20.0);
    Vector3d to = from;
    MovePosition(to, metres, SEarth(from[0], from[2], Vector3d::Zero()));
    EXPECT_LT(to[1], 0.0) << "across the date line";
    EXPECT_LT((MetresBetween(from, to) - metres).norm(), 0.05);
    double distance = 0.0;
    GeographicLib::Geodesic::WGS84().Inverse(from[0] / kRadiansPerDegree, from[1] / kRadiansPerDegree,
                                             to[0] / kRadiansPerDegree, to[1] / kRadiansPerDegree, distance);
    EXPECT_NEAR(distance, 500.0, 0.05);
}

TEST(Rotation, AxesAndSignsSuitAVessel) {
    const Matrix3d c = MatrixOf({30 * kRadiansPerDegree, 10 * kRadiansPerDegree, 20 * kRadiansPerDegree});
    const Vector3d bow = c.col(0), port = c.col(1);
    EXPECT_NEAR(std::atan2(-bow.y(), bow.x()), 30 * kRadiansPerDegree, 1e-12) << "clockwise from north";
    EXPECT_GT(bow.z(), 0.0) << "bow up";
    EXPECT_GT(port.z(), 0.0) << "starboard down";
    for (const double heading : {0.5, 179.0, 359.0}) {
        const SAttitude a = AttitudeOf(
            MatrixOf({heading * kRadiansPerDegree, -100 * kRadiansPerDegree, 80 * kRadiansPerDegree}));
        EXPECT_NEAR(a.heading, heading * kRadiansPerDegree, 1e-12);
        EXPECT_NEAR(a.roll, -100 * kRadiansPerDegree, 1e-12);
        EXPECT_NEAR(a.pitch, 80 * kRadiansPerDegree, 1e-12);
    }
}

TEST(Rotation, MountingsAreTheTwentyFourRotations) {
    EXPECT_TRUE(RoughMounting(0).isIdentity());
    EXPECT_TRUE(RoughMounting(24).isIdentity());
    EXPECT_TRUE(RoughMounting(-1).isIdentity());
    for (int code = 0; code < 24; ++code) {
        EXPECT_NEAR(RoughMounting(code).determinant(), 1.0, 1e-12) << code;
        for (int other = 0; other < code; ++other) EXPECT_NE(RoughMounting(code), RoughMounting(other));
    }
    // Logo to port, connectors astern: the unit's third axis looks to port, its first still forward.
    EXPECT_EQ(RoughMounting(1) * Vector3d::UnitZ(), Vector3d::UnitY());
    EXPECT_EQ(RoughMounting(1) * Vector3d::UnitX(), Vector3d::UnitX());
    // Logo up, connectors at the bow: turned by half a turn.
    EXPECT_EQ(RoughMounting(4) * Vector3d::UnitX(), Vector3d(-Vector3d::UnitX()));
}

TEST(Strapdown, FlightsEndWhereTheGeodesicEnds) {
    for (const Vector3d& velocity : {Vector3d(0.0, -200.0, 0.0), Vector3d(200.0, 0.0, 0.0)}) {
        SNavigation truth = Start(0.0, 90.0, velocity);
        truth.position[2] = 0.0;
        CStrapdown strapdown(truth);
        for (int i = 1; i <= 60000; ++i) {
            // Where the flight is depends on the flight itself: along the track only the position changes.
            SNavigation there = truth;
            there.position = strapdown.Get().position;
            strapdown.Advance(LevelFlightSample(there, 0.01 * i, 0.01));
        }
        const Vector3d& end = strapdown.Get().position;
        double distance = 0.0;
        GeographicLib::Geodesic::WGS84().Inverse(0.0, 5.0, end[0] / kRadiansPerDegree,
                                                 end[1] / kRadiansPerDegree, distance);
        EXPECT_NEAR(distance, 200.0 * 600.0, 0.05);
        EXPECT_LT((strapdown.Get().velocity - velocity).norm(), 1e-4);
        EXPECT_NEAR(end[2], 0.0, 0.05);
    }
}

// Coning: two axes swing a quarter of a period apart, and the third drifts. The truth is the closed form.
TEST(Strapdown, ConingLeavesNoDrift) {
    constexpr double amplitude = 0.02, omega = 2.0 * std::numbers::pi * 3.0;
    auto attitude = [&](double t) {
        return RotationOf(amplitude * Vector3d(std::cos(omega * t), std::sin(omega * t), 0.0));
    };
    for (const bool cut : {false, true}) {
        CStrapdown strapdown({0.0, {0.7, 0.1, 0.0}, Vector3d::Zero(), attitude(0.0)});
        for (int i = 1; i <= 6000; ++i) {
            const double t = 0.01 * i;
            SImuSample sample{t, 0.01, {}, {}};
            // Fine steps of the exact rotation against the level, plus that of the level.
            for (int k = 0; k < 20; ++k) {
                const double t0 = t - 0.01 + k * 0.0005;
                const Eigen::AngleAxisd step(attitude(t0).conjugate() * attitude(t0 + 0.0005));
                sample.angle += step.angle() * step.axis();
            }
            const SEarth earth(0.7, 0.0, Vector3d::Zero());
            const Quaterniond middle = attitude(t - 0.005);
            sample.angle += middle.conjugate() * earth.earthRate * 0.01;
            sample.velocity = middle.conjugate() * Vector3d(0, 0, earth.gravity) * 0.01;
            if (cut) {
                SImuSample half{t - 0.004, 0.006, sample.angle * 0.6, sample.velocity * 0.6};
                strapdown.Advance(half);
                half = {t, 0.004, sample.angle * 0.4, sample.velocity * 0.4};
                strapdown.Advance(half);
            } else {
                strapdown.Advance(sample);
            }
        }
        // Uncompensated, a minute of it would turn the third axis by 0.22 degrees more or less.
        EXPECT_LT(strapdown.Get().attitude.angularDistance(attitude(60.0)),
                  (cut ? 0.05 : 0.005) * kRadiansPerDegree);
    }
}

TEST(Strapdown, TimeRunsBackToItsBegin) {
    const SNavigation start = Start(-35.0, 200.0, {12.0, -7.0, 0.4});
    CStrapdown forward(start);
    SStretch stretch;
    for (int i = 1; i <= 3000; ++i) {
        SImuSample sample = LevelFlightSample(start, 0.01 * i, 0.01);
        sample.angle += 1e-4 * Vector3d(std::sin(0.01 * i), std::cos(0.013 * i), 2.0);
        sample.velocity += 1e-2 * Vector3d(std::cos(0.02 * i), 0.5, std::sin(0.03 * i));
        stretch.samples.push_back(sample);
        forward.Advance(sample);
    }
    SNavigation turned = forward.Get();
    turned.velocity = -turned.velocity;
    turned.time = -turned.time;
    CStrapdown backward(turned, -1.0);
    for (const SImuSample& sample : stretch.Reversed().samples) backward.Advance(sample);
    EXPECT_NEAR(backward.Get().time, 0.0, 1e-9);
    EXPECT_LT(MetresBetween(start.position, backward.Get().position).norm(), 0.01);
    EXPECT_LT((backward.Get().velocity + start.velocity).norm(), 1e-3);
    EXPECT_LT(start.attitude.angularDistance(backward.Get().attitude), 1e-6);
}

// Two programs that share no formula: the one says where a vessel was and counts what its sensors felt there,
// the other finds the way from the counts.
TEST(Strapdown, SimulatedCountsLeadAlongTheTruth) {
    for (const auto vehicle :
         {Simulation::EVehicle::ship, Simulation::EVehicle::auv, Simulation::EVehicle::car})
        for (const auto& [rate, duration] : {std::pair{200, 80}, {50, 160}}) {
            Simulation::SMissionOptions options;
            options.vehicle = vehicle;
            options.grade = Simulation::EGrade::perfect;
            options.alignmentDuration = 10;
            options.duration = duration;
            options.imuRate = rate;
            options.latitude = vehicle == Simulation::EVehicle::auv ? -33 : 48;
            const Simulation::CMission mission(options);
            const auto truthAt = [&mission](double time) {
                const Simulation::STruth t = mission.GetTruth(time);
                return SNavigation{
                    time,
                    {t.latitude * kRadiansPerDegree, t.longitude * kRadiansPerDegree, t.altitude},
                    {t.speedNorth, -t.speedEast, t.speedUp},
                    Quaterniond(MatrixOf({t.heading * kRadiansPerDegree, t.roll * kRadiansPerDegree,
                                          t.pitch * kRadiansPerDegree}))};
            };
            Simulation::CInertialUnit unit(mission);
            CStrapdown strapdown(truthAt(0.0));
            for (int i = 1; i < duration * rate; ++i) {
                Persistance_Xpf::CXpfTarinImuPacketV2 packet;
                std::memcpy(packet.GetPayload(), unit.MakePacket().data(), packet.GetPayloadSize());
                const double time = packet.GetPacketDate().GetTotalSeconds();
                SImuSample sample{time, 1.0 / rate, {}, {}};
                for (std::uint32_t axis = 0; axis < 3; ++axis) {
                    ASSERT_TRUE(packet.GetDouble(4 + axis, sample.angle[axis]));
                    ASSERT_TRUE(packet.GetDouble(7 + axis, sample.velocity[axis]));
                }
                sample.angle *= kRadiansPerDegree / 3.6e6; // from a thousandth of an arc second
                sample.velocity *= 1e-7;
                strapdown.Advance(sample);
                if (i % (20 * rate) != 0) continue;
                const SNavigation truth = truthAt(time), &found = strapdown.Get();
                EXPECT_LT(MetresBetween(truth.position, found.position).norm(), 0.1) << time;
                EXPECT_LT((truth.velocity - found.velocity).norm(), 5e-4) << time;
                EXPECT_LT(truth.attitude.angularDistance(found.attitude), 1e-7) << time;
            }
            EXPECT_GT(MetresBetween(truthAt(0.0).position, strapdown.Get().position).norm(), 50);
        }
}
