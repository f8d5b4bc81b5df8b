#include "simulator/mission_options.h"

#include "simulator/sensors.h"
#include "xpf/layout.h"

#include <algorithm>
#include <cmath>

namespace Simulation {

using namespace Persistance_Xpf;

namespace {

constexpr std::string_view kShipChannels[] = {"IMU",   "DVL_BT", "DVL_WT",    "EM_LOG_1",
                                              "GPS_1", "UTC",    "NELIX_NAV", "TEMPERATURE"};
constexpr std::string_view kAuvChannels[] = {"IMU",    "DVL_BT", "DVL_WT",    "GPS_1",      "DEPTH",
                                             "USBL_1", "UTC",    "NELIX_NAV", "TEMPERATURE"};
constexpr std::string_view kCarChannels[] = {"IMU", "GPS_1", "UTC", "ODOMETER", "NELIX_NAV", "TEMPERATURE"};

bool IsWithin(double value, double low, double high) {
    return value >= low && value <= high;
} // false for NaN

} // namespace

Outils_Temps::CDateTime SMissionOptions::GetUtcOrigin() const {
    if (utcOrigin.IsValid()) return utcOrigin;
    Outils_Temps::CDateTime usual;
    usual.SetDateTime(2024, 5, 14, 8, 0, 0, 0);
    return usual;
}

const SChannelOptions* SMissionOptions::FindChannelOptions(std::string_view channel) const {
    const auto found = std::ranges::find(channelOptions, channel, &SChannelOptions::channel);
    return found == channelOptions.end() ? nullptr : &*found;
}

SChannelOptions& SMissionOptions::GetChannelOptions(std::string_view channel) {
    const auto found = std::ranges::find(channelOptions, channel, &SChannelOptions::channel);
    if (found != channelOptions.end()) return *found;
    return channelOptions.emplace_back(SChannelOptions{std::string(channel), 0, 0, {}});
}

bool SMissionOptions::IsOutage(std::string_view channel, double time) const {
    const SChannelOptions* own = FindChannelOptions(channel);
    return own &&
           std::ranges::any_of(own->outages, [&](const SPeriod& outage) { return outage.Contains(time); });
}

std::vector<std::string_view> SMissionOptions::GetChannels() const {
    std::vector<std::string_view> wanted(channels.begin(), channels.end());
    if (wanted.empty()) {
        const std::span<const std::string_view> usual =
            vehicle == EVehicle::ship  ? std::span<const std::string_view>(kShipChannels)
            : vehicle == EVehicle::auv ? std::span<const std::string_view>(kAuvChannels)
                                       : std::span<const std::string_view>(kCarChannels);
        wanted.assign(usual.begin(), usual.end());
    }
    std::vector<std::string_view> result;
    for (const SChannelLayout& row : GetChannelLayouts())
        if (row.name == "IMU" || std::ranges::find(wanted, row.name) != wanted.end())
            result.push_back(row.name);
    return result;
}

std::string SMissionOptions::Validate() const {
    constexpr double kLongest = 1e7; // seconds, four months
    if (targetSize < 0) return "the size must not be negative";
    if (targetSize == 0 && !(duration > 0 && duration <= kLongest))
        return "the duration must be above 0 s and at most 1e7 s";
    if (!IsWithin(imuRate, 1, 2000)) return "the rate of the inertial channel must be 1 to 2000 Hz";
    if (!IsWithin(alignmentDuration, 0, kLongest)) return "the alignment must last 0 to 1e7 s";
    if (!IsWithin(alignmentMotion, 0, 1)) return "the motion during alignment must be 0 to 1";
    if (!IsWithin(seaState, 0, 5)) return "the sea must be 0 to 5";
    if (!IsWithin(latitude, -85, 85) || !IsWithin(longitude, -180, 360))
        return "the start must be between 85 S and 85 N";
    if (!IsWithin(altitude, -10000, 10000)) return "the altitude must be -10000 to 10000 m";
    if (!IsWithin(heading, -360, 360)) return "the heading must be -360 to 360 degrees";
    if (!IsWithin(current.norm(), 0, 5)) return "the current must be at most 5 m/s";
    if (!IsWithin(equipment, 0, 255)) return "the equipment code must be 0 to 255";
    if (!IsWithin(gpsMode, 1, 5)) return "the GPS mode must be 1 to 5";
    if (!IsWithin(outliers, 0, 1)) return "the share of outliers must be 0 to 1";
    if (!IsWithin(truthRate, 0.001, 1000)) return "the rate of the truth must be 0.001 to 1000 Hz";
    if (!std::isfinite(noise + geoidSeparation + seabedDepth + dvlScaleError + dvlHeadingError))
        return "a value is not finite";
    for (const Vector3d& arm : leverArms)
        if (!IsWithin(arm.norm(), 0, 1000)) return "a lever arm must be at most 1000 m";
    for (const std::string& name : channels)
        if (name != "IMU" && GetUsualRate(name) == 0) return "there is no input channel named " + name;
    for (const SChannelOptions& own : channelOptions) {
        if (GetUsualRate(own.channel) == 0) return "there is no sensor channel named " + own.channel;
        if (own.rate != 0 && !IsWithin(own.rate, 0.001, 2000))
            return "the rate of " + own.channel + " must be 0.001 to 2000 Hz";
        if (!IsWithin(own.delay, 0, 60)) return "the delay of " + own.channel + " must be 0 to 60 s";
    }
    if (targetSize > 0 && static_cast<double>(targetSize) / GetBytesPerSecond(*this) > kLongest)
        return "the size would need a mission of more than 1e7 s";
    return {};
}

} // namespace Simulation
