#include "simulator/mission.h"

#include "simulator/earth.h"
#include "simulator/inertial_unit.h"
#include "xpf/packets.h"

#include <GeographicLib/Geocentric.hpp>
#include <GeographicLib/NormalGravity.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

namespace Simulation {
namespace {

using Persistance_Xpf::CXpfTarinImuPacketV2;

SMissionOptions MakeOptions(EVehicle vehicle) {
    SMissionOptions options;
    options.vehicle = vehicle;
    options.grade = EGrade::perfect;
    options.alignmentDuration = 20;
    options.duration = 400;
    options.altitude = vehicle == EVehicle::car ? 1200 : 0;
    options.latitude = vehicle == EVehicle::auv ? -33 : 48;
    return options;
}

struct SSample {
    double time;
    Vector3 rotation, velocity;
};

SSample NextSample(CInertialUnit& unit) {
    CXpfTarinImuPacketV2 packet;
    const auto payload = unit.MakePacket();
    EXPECT_EQ(payload.size(), packet.GetPayloadSize());
    std::memcpy(packet.GetPayload(), payload.data(), payload.size());
    double raw[6];
    for (std::uint32_t i = 0; i < 6; ++i) EXPECT_TRUE(packet.GetDouble(4 + i, raw[i]));
    // A thousandth of an arc second, a ten-millionth of a metre per second.
    constexpr double fog = 1e-3 / 3600 / 57.29577951308232, acc = 1e-7;
    return {packet.GetPacketDate().GetTotalSeconds(),
            {raw[0] * fog, raw[1] * fog, raw[2] * fog},
            {raw[3] * acc, raw[4] * acc, raw[5] * acc}};
}

// Inertial navigation in earth-fixed axes: it shares neither the axes nor the formulas of the simulator, and
// takes its gravity from another source.
class CEarthFixedNavigator {
  public:
    explicit CEarthFixedNavigator(const STruth& start) {
        m_earth.Forward(start.latitude, start.longitude, start.altitude, m_position.x, m_position.y,
                        m_position.z);
        const Frame level = GetLevel();
        const double h = start.heading / kRadian, p = start.pitch / kRadian, r = start.roll / kRadian;
        const auto blend = [](double a, const Vector3& u, double b, const Vector3& v) {
            return a * u + b * v;
        };
        const Vector3 ahead = blend(std::cos(h), level.north, std::sin(h), level.east);
        const Vector3 right = blend(std::cos(h), level.east, -std::sin(h), level.north);
        m_axes[0] = blend(std::cos(p), ahead, std::sin(p), level.up);
        const Vector3 top = blend(std::cos(p), level.up, -std::sin(p), ahead);
        m_axes[1] = blend(-std::cos(r), right, std::sin(r), top); // to port
        m_axes[2] = blend(std::cos(r), top, std::sin(r), right);
        m_velocity = start.speedNorth * level.north + start.speedEast * level.east + start.speedUp * level.up;
    }

    void Move(const SSample& sample, double step) {
        // Sculling and coning between this sample and the one before (P. Savage, 1998, two-sample forms).
        const Vector3 turned = sample.rotation + (1.0 / 12) * Cross(m_before.rotation, sample.rotation);
        const Vector3 bent = Cross(sample.rotation, sample.velocity);
        const Vector3 pushed = sample.velocity + 0.5 * bent + (1.0 / 6) * Cross(sample.rotation, bent) +
                               (1.0 / 12) * (Cross(m_before.rotation, sample.velocity) +
                                             Cross(m_before.velocity, sample.rotation));
        m_before = sample;
        const Vector3 earth{0, 0, kEarthRate};
        const Vector3 gain = ToEarth(pushed);
        const Vector3 gravity = GetGravityAt(m_position + step / 2 * m_velocity);
        const Vector3 mean = m_velocity + 0.5 * (gain + step * gravity);
        // The push is in the axes of the step's begin, from which the earth turns away.
        m_velocity += gain - step / 2 * Cross(earth, gain) + step * (gravity - 2 * Cross(earth, mean));
        m_position += step * mean;
        Rotate(turned, step);
    }

    STruth Get() const {
        STruth result;
        m_earth.Reverse(m_position.x, m_position.y, m_position.z, result.latitude, result.longitude,
                        result.altitude);
        const Frame level = GetLevel();
        result.speedNorth = Dot(m_velocity, level.north);
        result.speedEast = Dot(m_velocity, level.east);
        result.speedUp = Dot(m_velocity, level.up);
        const double heading = std::atan2(Dot(m_axes[0], level.east), Dot(m_axes[0], level.north)) * kRadian;
        result.heading = heading < 0 ? heading + 360 : heading;
        result.pitch = std::asin(Dot(m_axes[0], level.up)) * kRadian;
        result.roll = std::atan2(Dot(m_axes[1], level.up), Dot(m_axes[2], level.up)) * kRadian;
        return result;
    }

  private:
    struct Frame {
        Vector3 north, east, up;
    };
    static double Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

    Frame GetLevel() const {
        double latitude, longitude, altitude;
        m_earth.Reverse(m_position.x, m_position.y, m_position.z, latitude, longitude, altitude);
        const double s = std::sin(latitude / kRadian), c = std::cos(latitude / kRadian);
        const double sl = std::sin(longitude / kRadian), cl = std::cos(longitude / kRadian);
        return {{-s * cl, -s * sl, c}, {-sl, cl, 0}, {c * cl, c * sl, s}};
    }
    // Includes the centrifugal part, as accelerometers at rest feel it.
    Vector3 GetGravityAt(const Vector3& position) const {
        Vector3 g;
        m_gravity.U(position.x, position.y, position.z, g.x, g.y, g.z);
        return g;
    }
    Vector3 ToEarth(const Vector3& body) const {
        return body.x * m_axes[0] + body.y * m_axes[1] + body.z * m_axes[2];
    }
    static Vector3 Turn(const Vector3& v, const Vector3& rotation) { // Rodrigues' formula
        const double angle = Norm(rotation);
        if (angle == 0) return v;
        const Vector3 k = (1 / angle) * rotation;
        return std::cos(angle) * v + std::sin(angle) * Cross(k, v) + (1 - std::cos(angle)) * Dot(k, v) * k;
    }
    void Rotate(const Vector3& bodyRotation, double step) {
        const Vector3 rotation = ToEarth(bodyRotation);
        for (Vector3& axis : m_axes) axis = Turn(Turn(axis, rotation), {0, 0, -kEarthRate * step});
    }

    const GeographicLib::Geocentric& m_earth = GeographicLib::Geocentric::WGS84();
    const GeographicLib::NormalGravity& m_gravity = GeographicLib::NormalGravity::WGS84();
    Vector3 m_position, m_velocity;
    Vector3 m_axes[3];
    SSample m_before{};
};

class MissionTest : public testing::TestWithParam<std::tuple<EVehicle, int>> {};

TEST_P(MissionTest, InertialNavigationOfTheCountsReturnsTheTruth) {
    SMissionOptions options = MakeOptions(std::get<0>(GetParam()));
    options.imuRate = std::get<1>(GetParam());
    const CMission mission(options);
    CInertialUnit unit(mission);
    CTrackCursor cursor;
    CEarthFixedNavigator navigator(mission.GetTruth(0));
    double moved = 0, before = 0;
    for (double time = 0; time < options.duration - 1e-6;) {
        const SSample sample = NextSample(unit);
        navigator.Move(sample, sample.time - time);
        time = sample.time;
        if (std::floor(time / 20) == std::floor(before / 20)) {
            before = time;
            continue;
        }
        before = time;
        const STruth truth = mission.GetTruth(time, cursor), result = navigator.Get();
        SCOPED_TRACE(time);
        EXPECT_NEAR(result.latitude, truth.latitude, 0.01 / 111e3);
        EXPECT_NEAR(result.longitude, truth.longitude, 0.01 / 70e3);
        EXPECT_NEAR(result.altitude, truth.altitude, 0.01);
        EXPECT_NEAR(result.speedNorth, truth.speedNorth, 5e-5);
        EXPECT_NEAR(result.speedEast, truth.speedEast, 5e-5);
        EXPECT_NEAR(result.speedUp, truth.speedUp, 5e-5);
        EXPECT_NEAR(std::remainder(result.heading - truth.heading, 360), 0, 1e-6);
        EXPECT_NEAR(result.roll, truth.roll, 1e-6);
        EXPECT_NEAR(result.pitch, truth.pitch, 1e-6);
        moved = std::max(moved, std::abs(truth.latitude - options.latitude) * 111e3);
    }
    EXPECT_GT(moved, 100);
}

INSTANTIATE_TEST_SUITE_P(Vehicles, MissionTest,
                         testing::Combine(testing::Values(EVehicle::ship, EVehicle::auv, EVehicle::car),
                                          testing::Values(200, 50)));

TEST(InertialUnitTest, AtRestItCountsGravityAndTheRotationOfTheEarth) {
    SMissionOptions options = MakeOptions(EVehicle::ship);
    options.alignmentDuration = 400;
    options.heading = 90; // to the east
    const CMission mission(options);
    CInertialUnit unit(mission);
    Vector3 rotation, velocity;
    for (int i = 0; i < 100 * 100; ++i) {
        const SSample sample = NextSample(unit);
        rotation += sample.rotation;
        velocity += sample.velocity;
    }
    const double latitude = options.latitude / kRadian, earth = 15.04106717 / 3600 / kRadian;
    EXPECT_NEAR(rotation.x / 100, 0, 1e-10);
    EXPECT_NEAR(rotation.y / 100, earth * std::cos(latitude), 1e-10); // port is north
    EXPECT_NEAR(rotation.z / 100, earth * std::sin(latitude), 1e-10);
    EXPECT_NEAR(velocity.x / 100, 0, 1e-8);
    EXPECT_NEAR(velocity.z / 100, GeographicLib::NormalGravity::WGS84().SurfaceGravity(options.latitude),
                1e-6);
}

TEST(InertialUnitTest, GradesErrByTheirTable) {
    // The mean error of a minute at rest over many units: bias and random walk of the table.
    SMissionOptions options = MakeOptions(EVehicle::ship);
    options.alignmentDuration = 400;
    options.imuRate = 20;
    options.grade = EGrade::mems;
    const double earth = 15.04106717 * std::sin(options.latitude / kRadian);
    double sum = 0, squares = 0;
    constexpr int kUnits = 200;
    for (int seed = 1; seed <= kUnits; ++seed) {
        options.seed = static_cast<std::uint64_t>(seed);
        options.duration = 5;
        const CMission mission(options);
        CInertialUnit unit(mission);
        double turned = 0;
        for (int i = 0; i < 100; ++i) turned += NextSample(unit).rotation.z;
        const double error = turned * kRadian / 5 * 3600 - earth; // degrees per hour
        sum += error;
        squares += error * error;
    }
    // 20 constant, 5 wandering, and 0.3 degrees per root hour over 5 s: 8.05.
    const double expected = std::sqrt(20.0 * 20 + 5 * 5 + 8.05 * 8.05);
    EXPECT_NEAR(std::sqrt(squares / kUnits), expected, 0.15 * expected);
    EXPECT_NEAR(sum / kUnits, 0, 0.25 * expected);
}

TEST(MissionTest, TruthIsTheSameFromAnySide) {
    const CMission mission(MakeOptions(EVehicle::ship));
    CTrackCursor forward;
    for (double time = 0; time <= 400; time += 7.77) {
        const STruth along = mission.GetTruth(time, forward), alone = mission.GetTruth(time);
        EXPECT_DOUBLE_EQ(along.latitude, alone.latitude);
        EXPECT_DOUBLE_EQ(along.longitude, alone.longitude);
    }
    // Speeds are the derivative of the positions, also across the steps of the integration.
    CTrackCursor cursor;
    for (double time = 1; time < 399; time += 0.317) {
        constexpr double h = 0.01;
        const STruth before = mission.GetTruth(time - h, cursor), at = mission.GetTruth(time, cursor),
                     after = mission.GetTruth(time + h, cursor);
        const SRadii radii = GetRadii(std::sin(at.latitude / kRadian));
        EXPECT_NEAR((after.latitude - before.latitude) / kRadian * (radii.meridian + at.altitude) / (2 * h),
                    at.speedNorth, 1e-5);
        EXPECT_NEAR((after.longitude - before.longitude) / kRadian * (radii.normal + at.altitude) *
                        std::cos(at.latitude / kRadian) / (2 * h),
                    at.speedEast, 1e-5);
        EXPECT_NEAR((after.altitude - before.altitude) / (2 * h), at.speedUp, 1e-4);
    }
}

TEST(MissionTest, StartsAsAskedAndAtRest) {
    for (const EVehicle vehicle : {EVehicle::ship, EVehicle::auv, EVehicle::car}) {
        SMissionOptions options = MakeOptions(vehicle);
        options.alignmentDuration = 60;
        options.heading = 359.5;
        const CMission mission(options);
        for (const double time : {0.0, 30.0, 59.9}) {
            const STruth truth = mission.GetTruth(time);
            EXPECT_NEAR(truth.latitude, options.latitude, 1e-12);
            EXPECT_NEAR(truth.longitude, options.longitude, 1e-12);
            EXPECT_NEAR(truth.altitude, options.altitude, 1e-9);
            EXPECT_NEAR(truth.heading, options.heading, 1e-9);
            EXPECT_EQ(truth.speedNorth, 0);
        }
        EXPECT_GT(Norm({mission.GetTruth(150).speedNorth, mission.GetTruth(150).speedEast, 0}), 0.5);
    }
}

TEST(EarthTest, GravityAgreesWithTheExactField) {
    const auto& exact = GeographicLib::NormalGravity::WGS84();
    for (const double latitude : {-80.0, -45.0, 0.0, 30.0, 60.0})
        for (const double altitude : {-5000.0, 0.0, 1500.0, 8000.0}) {
            double north, up;
            exact.Gravity(latitude, altitude, north, up);
            const Vector3 gravity = GetGravity(std::sin(latitude / kRadian), altitude);
            EXPECT_NEAR(gravity.z, up, 1.5e-6) << latitude << ' ' << altitude;
            EXPECT_NEAR(gravity.x, north, 5e-7) << latitude << ' ' << altitude;
        }
}

} // namespace
} // namespace Simulation
