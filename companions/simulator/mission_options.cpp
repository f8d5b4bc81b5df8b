#include "simulator/mission_options.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "simulator/sensors.h"
#include "xpf/layout.h"

#include <algorithm>
#include <cmath>

namespace Simulation {

using namespace Persistance_Xpf;
using Outils_Texte::EText;

namespace {

constexpr std::string_view kShipChannels[] = {"IMU",   "DVL_BT", "DVL_WT",    "EM_LOG_1",
                                              "GPS_1", "UTC",    "NELIX_NAV", "TEMPERATURE"};
constexpr std::string_view kAuvChannels[] = {"IMU",    "DVL_BT", "DVL_WT",    "GPS_1",      "DEPTH",
                                             "USBL_1", "UTC",    "NELIX_NAV", "TEMPERATURE"};
constexpr std::string_view kUavChannels[] = {"IMU", "GPS_1", "UTC", "NELIX_NAV", "TEMPERATURE"};
constexpr std::string_view kCarChannels[] = {"IMU", "GPS_1", "UTC", "ODOMETER", "NELIX_NAV", "TEMPERATURE"};

bool IsWithin(double value, double low, double high) {
    return value >= low && value <= high;
} // false for NaN

std::string Say(EText text, std::initializer_list<std::string_view> arguments = {}) {
    return Outils_Texte::FormatText(text, arguments);
}

// Options that are numbers and nothing more.
struct SRange {
    std::string_view name;
    double SMissionOptions::*value;
    double low, high;
};
constexpr SRange kRanges[] = {
    {"--imu-lost", &SMissionOptions::imuLost, 0, 1},
    {"--imu-late", &SMissionOptions::imuLate, 0, 1},
    {"--imu-late-by", &SMissionOptions::imuLateBy, 0, 1},
    {"--imu-doubled", &SMissionOptions::imuDoubled, 0, 1},
    {"--imu-jitter", &SMissionOptions::imuJitter, 0, 1},
    {"--clock-drift", &SMissionOptions::clockDrift, -1000, 1000},
    {"--gps-wander", &SMissionOptions::gpsWander, 0, 1000},
    {"--gps-jumps", &SMissionOptions::gpsJumps, 0, 1e4},
    {"--odometer-scale", &SMissionOptions::odometerScaleError, -0.9, 10},
    {"--wheel-slip", &SMissionOptions::wheelSlip, 0, 1},
    {"--stated-deviation", &SMissionOptions::statedDeviation, 0.001, 1000},
    {"--current-field", &SMissionOptions::currentField, 0, 5},
    {"--gravity-disturbance", &SMissionOptions::gravityDisturbance, 0, 1000},
    {"--stabilised", &SMissionOptions::stabilised, 0, 1},
    {"--lbl-beacons", &SMissionOptions::lblBeacons, 1, 4},
    {"--usbl-origin", &SMissionOptions::usblOrigin, -1e5, 1e5},
};

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
    return channelOptions.emplace_back(SChannelOptions{std::string(channel), 0, 0, {}, 0, {}});
}

bool SMissionOptions::IsWithinOwn(std::string_view channel, std::vector<SPeriod> SChannelOptions::*periods,
                                  double time) const {
    const SChannelOptions* own = FindChannelOptions(channel);
    return own &&
           std::ranges::any_of(own->*periods, [&](const SPeriod& period) { return period.Contains(time); });
}

std::vector<std::string_view> SMissionOptions::GetChannels() const {
    std::vector<std::string_view> wanted(channels.begin(), channels.end());
    if (wanted.empty()) {
        const std::span<const std::string_view> usual =
            vehicle == EVehicle::uav    ? std::span<const std::string_view>(kUavChannels)
            : vehicle == EVehicle::ship ? std::span<const std::string_view>(kShipChannels)
            : vehicle == EVehicle::auv  ? std::span<const std::string_view>(kAuvChannels)
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
    if (targetSize < 0) return Say(EText::simSizeNegative);
    if (targetSize == 0 && !(duration > 0 && duration <= kLongest)) return Say(EText::simDurationRange);
    if (!IsWithin(imuRate, 1, 2000)) return Say(EText::simImuRateRange);
    if (!IsWithin(alignmentDuration, 0, kLongest)) return Say(EText::simAlignmentRange);
    if (!IsWithin(alignmentMotion, 0, 1)) return Say(EText::simAlignmentMotionRange);
    if (!IsWithin(seaState, 0, 5)) return Say(EText::simSeaRange);
    if (!IsWithin(latitude, -85, 85) || !IsWithin(longitude, -180, 360)) return Say(EText::simStartRange);
    if (!IsWithin(altitude, -10000, 10000)) return Say(EText::simAltitudeRange);
    if (!IsWithin(heading, -360, 360)) return Say(EText::simHeadingRange);
    if (!IsWithin(current.norm(), 0, 5)) return Say(EText::simCurrentRange);
    if (!IsWithin(equipment, 0, 255)) return Say(EText::simEquipmentRange);
    if (!IsWithin(gpsMode, 1, 5)) return Say(EText::simGpsModeRange);
    if (!IsWithin(outliers, 0, 1)) return Say(EText::simOutliersRange);
    if (!IsWithin(truthRate, 0.001, 1000)) return Say(EText::simTruthRateRange);
    if (!std::isfinite(noise + geoidSeparation + seabedDepth + dvlScaleError + dvlHeadingError))
        return Say(EText::simNotFinite);
    for (const SRange& range : kRanges)
        if (!IsWithin(this->*range.value, range.low, range.high))
            return Say(EText::simValueRange, {range.name, Outils_Texte::FormatShortest(range.low),
                                              Outils_Texte::FormatShortest(range.high)});
    for (const Vector3d& arm : leverArms)
        if (!IsWithin(arm.norm(), 0, 1000)) return Say(EText::simLeverArmRange);
    for (const std::string& name : channels)
        if (name != "IMU" && GetUsualRate(name) == 0) return Say(EText::simNoInputChannel, {name});
    for (const SChannelOptions& own : channelOptions) {
        if (own.channel != "IMU" && GetUsualRate(own.channel) == 0)
            return Say(EText::simNoSensorChannel, {own.channel});
        if (own.rate != 0 && !IsWithin(own.rate, 0.001, 2000)) return Say(EText::simRateRange, {own.channel});
        if (!IsWithin(own.delay, 0, 60) || !IsWithin(own.hiddenDelay, 0, 60))
            return Say(EText::simDelayRange, {own.channel});
    }
    if (targetSize > 0 && static_cast<double>(targetSize) / GetBytesPerSecond(*this) > kLongest)
        return Say(EText::simSizeTooGreat);
    return {};
}

} // namespace Simulation
