#include "batch/comparison.h"

#include "xpf/tarout_layouts.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace Batch {

using namespace Persistance_Xpf;

namespace {

constexpr double kRadiansPerDegree = std::numbers::pi / 180.0;
// WGS 84.
constexpr double kSemiMajorAxis = 6378137.0;
constexpr double kEccentricity2 = 6.69437999014e-3;

constexpr std::uint32_t At(std::string_view name) { return kMorvexStdLayout.OffsetOf(name); }

struct SField {
    std::uint32_t offset;
    bool isFloat;
};
constexpr SField kValues[SSolution::valueCount] = {
    {At("Latitude0"), false},  {At("Longitude0"), false}, {At("Altitude0"), true}, {At("Speed north"), false},
    {At("Speed east"), false}, {At("Speed up"), false},   {At("Heading"), false},  {At("Roll"), false},
    {At("Pitch"), false},      {At("Heave0"), true}};
constexpr std::uint32_t kDeviations[SSolution::deviationCount] = {
    At("Std. dev. north"),    At("Std. dev. east"),        At("Std. dev. altitude"),
    At("Covariance XY"),      At("Std. dev. speed north"), At("Std. dev. speed east"),
    At("Std. dev. speed up"), At("Std. dev. heading"),     At("Std. dev. roll"),
    At("Std. dev. pitch")};

// The short way from one angle to another, degrees.
double Turn(double from, double to) { return std::remainder(to - from, 360.0); }

bool IsAngle(std::size_t value) {
    return value == SSolution::longitude || (value >= SSolution::heading && value <= SSolution::pitch);
}

using S = SSolution;

// By how much the result is north and east of the truth, metres.
double GetNorth(const S& result, const S& truth) {
    const double sine = std::sin(truth.values[S::latitude] * kRadiansPerDegree);
    const double k = 1.0 - kEccentricity2 * sine * sine;
    const double radius = kSemiMajorAxis * (1.0 - kEccentricity2) / (k * std::sqrt(k));
    return (result.values[S::latitude] - truth.values[S::latitude]) * kRadiansPerDegree *
           (radius + truth.values[S::altitude]);
}
double GetEast(const S& result, const S& truth) {
    const double latitude = truth.values[S::latitude] * kRadiansPerDegree;
    const double sine = std::sin(latitude);
    const double radius = kSemiMajorAxis / std::sqrt(1.0 - kEccentricity2 * sine * sine);
    return Turn(truth.values[S::longitude], result.values[S::longitude]) * kRadiansPerDegree *
           (radius + truth.values[S::altitude]) * std::cos(latitude);
}
double GetHorizontal(const S& result, const S& truth) {
    return std::hypot(GetNorth(result, truth), GetEast(result, truth));
}
// Along the bow of the truth, or to its starboard.
template <bool Across>
double GetAlong(const S& result, const S& truth) {
    const double heading = truth.values[S::heading] * kRadiansPerDegree;
    const double c = std::cos(heading), s = std::sin(heading);
    const double north = GetNorth(result, truth), east = GetEast(result, truth);
    return Across ? c * east - s * north : c * north + s * east;
}
template <bool Across>
double GetAlongDeviation(const S& result, const S& truth) {
    const double heading = truth.values[S::heading] * kRadiansPerDegree;
    const double north = Across ? -std::sin(heading) : std::cos(heading);
    const double east = Across ? std::cos(heading) : std::sin(heading);
    const double dn = result.deviations[S::ofNorth], de = result.deviations[S::ofEast];
    const double variance = north * north * dn * dn + east * east * de * de +
                            2.0 * north * east * result.deviations[S::ofNorthEast];
    return std::sqrt(std::max(variance, 0.0));
}
double GetHorizontalDeviation(const S& result, const S&) {
    return std::hypot(result.deviations[S::ofNorth], result.deviations[S::ofEast]);
}
template <S::EValue Value>
double GetDifference(const S& result, const S& truth) {
    const double difference = result.values[Value] - truth.values[Value];
    return IsAngle(Value) ? std::remainder(difference, 360.0) : difference;
}
template <S::EDeviation Deviation>
double GetDeviation(const S& result, const S&) {
    return result.deviations[Deviation];
}

constexpr SDifference kDifferences[] = {
    {"north", "m", GetNorth, GetDeviation<S::ofNorth>},
    {"east", "m", GetEast, GetDeviation<S::ofEast>},
    {"up", "m", GetDifference<S::altitude>, GetDeviation<S::ofUp>},
    {"along", "m", GetAlong<false>, GetAlongDeviation<false>},
    {"across", "m", GetAlong<true>, GetAlongDeviation<true>},
    {"horizontal", "m", GetHorizontal, GetHorizontalDeviation},
    {"speed-north", "m/s", GetDifference<S::speedNorth>, GetDeviation<S::ofSpeedNorth>},
    {"speed-east", "m/s", GetDifference<S::speedEast>, GetDeviation<S::ofSpeedEast>},
    {"speed-up", "m/s", GetDifference<S::speedUp>, GetDeviation<S::ofSpeedUp>},
    {"heading", "deg", GetDifference<S::heading>, GetDeviation<S::ofHeading>},
    {"roll", "deg", GetDifference<S::roll>, GetDeviation<S::ofRoll>},
    {"pitch", "deg", GetDifference<S::pitch>, GetDeviation<S::ofPitch>},
    {"heave", "m", GetDifference<S::heave>, nullptr},
};

} // namespace

CSolutionReader::CSolutionReader(CXpfChannel& channel, double shift)
    : m_channel(channel), m_packet(channel.CreatePacket()), m_shift(shift) {
    m_channel.SeekFirstPacket(nullptr);
}

std::optional<SSolution> CSolutionReader::Next() {
    if (!m_channel.ReadNextPacket(*m_packet)) return std::nullopt;
    const std::uint8_t* payload = m_packet->GetPayload();
    const auto load = [payload]<class Value>(std::uint32_t offset, Value value) {
        std::memcpy(&value, payload + offset, sizeof value);
        return value;
    };
    SSolution solution;
    solution.time = static_cast<double>(load(0, std::int64_t{})) * 1e-7 + m_shift;
    for (std::size_t i = 0; i < S::valueCount; ++i)
        solution.values[i] =
            kValues[i].isFloat ? load(kValues[i].offset, float{}) : load(kValues[i].offset, double{});
    for (std::size_t i = 0; i < S::deviationCount; ++i)
        solution.deviations[i] = load(kDeviations[i], double{});
    return solution;
}

SSolution InterpolateSolution(const SSolution& a, const SSolution& b, double time) {
    const double share = b.time > a.time ? (time - a.time) / (b.time - a.time) : 0.0;
    SSolution between = a;
    between.time = time;
    for (std::size_t i = 0; i < S::valueCount; ++i)
        between.values[i] +=
            share * (IsAngle(i) ? Turn(a.values[i], b.values[i]) : b.values[i] - a.values[i]);
    return between;
}

std::span<const SDifference> GetDifferences() { return kDifferences; }

void CDifferenceStatistics::Add(double time, double difference, double deviation) {
    if (!std::isfinite(difference)) return;
    ++m_count;
    m_sum += difference;
    m_squares += difference * difference;
    m_last = difference;
    if (m_count == 1 || std::abs(difference) > std::abs(m_largest)) {
        m_largest = difference;
        m_largestTime = time;
    }
    if (!(deviation > 0.0) || !std::isfinite(deviation)) return;
    ++m_stated;
    const double normal = std::abs(difference) / deviation;
    m_normalised += normal * normal;
    for (std::size_t i = 0; i < m_within.size(); ++i)
        if (normal <= static_cast<double>(i + 1)) ++m_within[i];
}

void CDifferenceStatistics::Write(CTable& table, const SDifference& row) const {
    table.Add(row.name).Add(row.unit).Add(m_count);
    if (m_count > 0) {
        // Digits beyond these are noise of the numbers in the files.
        const auto rounded = [](double value) { return std::round(value * 1e6) / 1e6; };
        const auto count = static_cast<double>(m_count);
        const double mean = m_sum / count, square = m_squares / count;
        table.Add(rounded(mean)).Add(rounded(std::sqrt(std::max(square - mean * mean, 0.0))));
        table.Add(rounded(std::sqrt(square))).Add(rounded(m_largest)).Add(rounded(m_largestTime));
        table.Add(rounded(m_last));
        if (m_stated > 0) {
            const auto stated = static_cast<double>(m_stated);
            for (const std::uint64_t within : m_within)
                table.Add(std::round(1000.0 * static_cast<double>(within) / stated) / 10.0);
            table.Add(rounded(m_normalised / stated));
        }
    }
    table.EndRow();
}

} // namespace Batch
