#include "model/imu_channel.h"
#include "model/simulation_parameters.h"

#include <algorithm>

namespace Metier_Tarvel {

namespace {

constexpr std::uint32_t kFrequencySpan = 100; // packets over which the frequency is measured
constexpr std::int32_t kFrequencies[] = {200, 100, 50, 25, 20};

// Frames between two values of the counter, which runs through 6000 values.
int CountFrames(std::uint16_t first, std::uint16_t last) {
    constexpr int kPeriod = 6000;
    const auto lift =
        last < first ? static_cast<std::uint16_t>(((first - last - 1) / kPeriod + 1) * kPeriod) : 0;
    return static_cast<std::uint16_t>(last + lift - first);
}

} // namespace

bool CTrvSimulationParameters::ReadImuFrequency() {
    imuFrequency = 0;
    CImuChannel imu;
    CDateTimeSpan firstDate, lastDate;
    std::uint16_t firstCounter = 0, lastCounter = 0;
    if (!imu.Open(mainInputFile->path) || !imu.ReadFirst() || !imu.GetDate(firstDate) ||
        !imu.GetFrameCounter(firstCounter))
        return false;
    // By number, so that a gap counts as the packets that are missing in it; by packets too, so that damaged
    // numbers that do not grow cannot lead through the whole file.
    const std::uint64_t lastNumber = std::uint64_t{imu.GetNumber()} + kFrequencySpan;
    for (std::uint32_t read = 0; read < kFrequencySpan && imu.GetNumber() < lastNumber; ++read)
        if (!imu.ReadNext()) return false;
    if (!imu.GetDate(lastDate) || !imu.GetFrameCounter(lastCounter)) return false;

    const CDateTimeSpan span = lastDate - firstDate;
    if (!span.IsValid() || span.GetTicks() <= 0) return false;
    const double measured = static_cast<double>(CountFrames(firstCounter, lastCounter)) /
                                static_cast<double>(span.GetTicks()) * Outils_Temps::kTicksPerSecond +
                            0.5;
    imuFrequency = static_cast<std::int32_t>(std::min(measured, 2e9));
    return std::find(std::begin(kFrequencies), std::end(kFrequencies), imuFrequency) !=
           std::end(kFrequencies);
}

bool CTrvSimulationParameters::ReadTimeSpan(CDateTimeSpan& first, CDateTimeSpan& last) const {
    CImuChannel imu;
    CDateTimeSpan firstDate, lastDate;
    if (!imu.Open(mainInputFile->path) || !imu.ReadFirst() || !imu.GetDate(firstDate) || !imu.ReadLast() ||
        !imu.GetDate(lastDate))
        return false;
    first = firstDate;
    last = lastDate;
    return true;
}

bool CTrvSimulationParameters::ReadEquipmentCode(std::int32_t& code) const {
    CImuChannel imu;
    std::uint8_t systemType = 0;
    if (!imu.Open(mainInputFile->path) || !imu.ReadFirst() || !imu.GetSystemType(systemType)) return false;
    code = systemType;
    return true;
}

} // namespace Metier_Tarvel
