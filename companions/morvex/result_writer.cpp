#include "morvex/result_writer.h"

#include "xpf/tarout_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace Morvex {
namespace {

using namespace Persistance_Xpf;
using Outils_Temps::CDateTimeSpan;

constexpr std::string_view kChannels[] = {kResultChannel, "MORVEX_MSG", "MORVEX_EXT", "MORVEX_STA"};

template <class Value>
void Put(CXpfPacket& packet, std::uint32_t offset, Value value) {
    std::memcpy(packet.GetPayload() + offset, &value, sizeof value);
}

constexpr std::uint32_t At(std::string_view name) { return kMorvexStdLayout.OffsetOf(name); }

struct SPointFields {
    std::uint32_t latitude, longitude, altitude, heave;
};
constexpr std::array<SPointFields, 4> kPoints{
    {{At("Latitude0"), At("Longitude0"), At("Altitude0"), At("Heave0")},
     {At("Latitude1"), At("Longitude1"), At("Altitude1"), At("Heave1")},
     {At("Latitude2"), At("Longitude2"), At("Altitude2"), At("Heave2")},
     {At("Latitude3"), At("Longitude3"), At("Altitude3"), At("Heave3")}}};

double Deviation(double variance) { return std::sqrt(std::max(variance, 0.0)); }

} // namespace

bool CResultWriter::Open(const SRunPlan& plan) {
    m_plan = &plan;
    m_lastFlush = std::chrono::steady_clock::now();
    if (!m_writer.Create(plan.output, kChannels)) return false;
    m_standard = *m_writer.FindChannel(kChannels[0]);
    m_message = *m_writer.FindChannel(kChannels[1]);
    m_estimates = *m_writer.FindChannel(kChannels[2]);
    m_states = *m_writer.FindChannel(kChannels[3]);
    return true;
}

bool CResultWriter::Write(const SNavigation& navigation, const NavigationCovariance& covariance,
                          const SResultContext& context) {
    m_packet.Clear();
    const CDateTimeSpan date = CDateTimeSpan::FromSeconds(navigation.time);
    Put(m_packet, At("Date"), date.GetTicks());
    std::memcpy(m_packet.GetPayload() + At("Sensor"), context.sensor.data(),
                std::min<std::size_t>(context.sensor.size(), 12));
    Put(m_packet, At("SensorData"), context.sensorData);

    const Matrix3d toLevel = navigation.attitude.toRotationMatrix();
    const SEarth earth(navigation.position[0], navigation.position[2], navigation.velocity);
    // With a stabilised mount the points are fixed to the vehicle, not to the unit.
    const auto toUnit = [&](const Vector3d& point) -> Vector3d {
        return m_plan->mount ? m_plan->mount->ToUnit(point, context.vehicleToUnit) : point;
    };
    const Vector3d primary = toUnit(m_plan->points[0]);
    for (std::size_t i = 0; i < kPoints.size(); ++i) {
        Vector3d position = navigation.position;
        MovePosition(position, toLevel * toUnit(m_plan->points[i]), earth);
        Put(m_packet, kPoints[i].latitude, position[0] / kRadiansPerDegree);
        Put(m_packet, kPoints[i].longitude, position[1] / kRadiansPerDegree);
        const double altitude = position[2] - (m_plan->aboveGeoid ? context.geoidHeight : 0.0);
        Put(m_packet, kPoints[i].altitude, static_cast<float>(altitude));
        Put(m_packet, kPoints[i].heave, static_cast<float>(context.heave[i]));
    }
    const Vector3d againstEarth = context.rate - toLevel.transpose() * earth.earthRate;
    const Vector3d velocity = navigation.velocity + toLevel * againstEarth.cross(primary);
    Put(m_packet, At("Speed north"), velocity.x());
    Put(m_packet, At("Speed east"), -velocity.y());
    Put(m_packet, At("Speed up"), velocity.z());

    // The written point moves with the errors of the attitude by its lever arm.
    const auto ofPoint = [&](int group, const Vector3d& arm) -> Matrix3d {
        Eigen::Matrix<double, 3, 9> h = Eigen::Matrix<double, 3, 9>::Zero();
        h.block<3, 3>(0, group).setIdentity();
        h.block<3, 3>(0, stateAttitude) = -SkewOf(arm);
        return h * covariance * h.transpose();
    };
    const Matrix3d place = ofPoint(statePosition, toLevel * primary);
    const Matrix3d speed = ofPoint(stateVelocity, velocity - navigation.velocity);
    Put(m_packet, At("Std. dev. north"), Deviation(place(0, 0)));
    Put(m_packet, At("Std. dev. east"), Deviation(place(1, 1)));
    Put(m_packet, At("Std. dev. altitude"), Deviation(place(2, 2)));
    Put(m_packet, At("Covariance XY"), -place(0, 1));
    Put(m_packet, At("Std. dev. speed north"), Deviation(speed(0, 0)));
    Put(m_packet, At("Std. dev. speed east"), Deviation(speed(1, 1)));
    Put(m_packet, At("Std. dev. speed up"), Deviation(speed(2, 2)));

    const Matrix3d userToLevel = toLevel * context.vehicleToUnit.toRotationMatrix() * m_plan->userToVessel;
    const SAttitude attitude = AttitudeOf(userToLevel);
    Put(m_packet, At("Heading"), attitude.heading / kRadiansPerDegree);
    Put(m_packet, At("Roll"), attitude.roll / kRadiansPerDegree);
    Put(m_packet, At("Pitch"), attitude.pitch / kRadiansPerDegree);
    // The tilt of the level axes, seen along and across the heading.
    const Matrix3d tilt = covariance.block<3, 3>(stateAttitude, stateAttitude);
    const Vector3d along(std::cos(attitude.heading), -std::sin(attitude.heading), 0.0);
    const Vector3d across(std::sin(attitude.heading), std::cos(attitude.heading), 0.0);
    Put(m_packet, At("Std. dev. heading"), Deviation(tilt(2, 2)) / kRadiansPerDegree);
    Put(m_packet, At("Std. dev. roll"), Deviation(along.dot(tilt * along)) / kRadiansPerDegree);
    Put(m_packet, At("Std. dev. pitch"), Deviation(across.dot(tilt * across)) / kRadiansPerDegree);

    SetUtc(date);
    Put(m_packet, At("Algorithm status 1"), context.status1);
    Put(m_packet, At("Algorithm status 2"), context.status2);
    ++m_count;
    return m_writer.Write(m_standard, m_packet);
}

void CResultWriter::SetUtc(CDateTimeSpan date) {
    Outils_Temps::CalendarFields utc;
    if (!(m_utcOrigin + date).GetCalendar(utc)) return;
    Put(m_packet, At("UTC Year"), static_cast<std::uint16_t>(utc.year));
    Put(m_packet, At("UTC Month"), static_cast<std::uint8_t>(utc.month));
    Put(m_packet, At("UTC Day"), static_cast<std::uint8_t>(utc.day));
    Put(m_packet, At("UTC Hour"), static_cast<std::uint8_t>(utc.hour));
    Put(m_packet, At("UTC Minute"), static_cast<std::uint8_t>(utc.minute));
    Put(m_packet, At("UTC Second"), static_cast<float>(utc.second + utc.ticks * 1e-7));
}

bool CResultWriter::WriteMessage(double time, int level, std::string_view text) {
    if (!m_writer.IsOpen()) return true;
    CXpfTaroutMorvexMsgPacketV1 packet;
    Put(packet, kMorvexMsgLayout.OffsetOf("Date"), CDateTimeSpan::FromSeconds(time).GetTicks());
    Put(packet, kMorvexMsgLayout.OffsetOf("Level"), static_cast<std::uint8_t>(level));
    std::size_t size = std::min<std::size_t>(text.size(), 256);
    while (size > 0 && size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0) == 0x80) --size;
    std::memcpy(packet.GetPayload() + kMorvexMsgLayout.OffsetOf("Text"), text.data(), size);
    return m_writer.Write(m_message, packet);
}

bool CResultWriter::FlushIfDue() {
    const auto now = std::chrono::steady_clock::now();
    if (now - m_lastFlush < std::chrono::milliseconds(500)) return true;
    m_lastFlush = now;
    return m_writer.Flush();
}

} // namespace Morvex
