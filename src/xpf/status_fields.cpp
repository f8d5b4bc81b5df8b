#include "xpf/status_fields.h"

#include "xpf/packets.h"

#include <algorithm>

namespace Persistance_Xpf {

namespace {

constexpr SStatusLiteral kRejection[] = {
    {2, "Off", "Sensor data is never processed"},
    {1, "On", "Sensor is always used during calculation"},
    {3, "Auto", "The choice of processing or not the sensor data is done automatically"},
};

constexpr SStatusLiteral kGpsModes[] = {
    {0, "Not available", "Fix not available or invalid"},
    {1, "GPS SPS Mode", "GPS SPS mode, fix valid"},
    {2, "DGPS SPS Mode", "Differential GPS, SPS mode, fix valid"},
    {3, "GPS PPS Mode", "GPS PPS mode, fix valid"},
    {4, "RTK", "Real Time Kinematic, System used in RTK mode with fixed integers"},
    {5, "Float RTK", "Float RTK, Sattelite system used in RTK mode, floating integers"},
    {6, "Estimated mode", "Estimated (dead reckoning) mode"},
    {7, "Manuel Input mode", "Manuel Input mode"},
    {8, "Simulator mode", "Simulator mode"},
    {9, "Float RTK converging (ppk)", "Float RTK converging (post-processing mode)"},
};

constexpr SStatusLiteral kUsblModes[] = {
    {0, "Unknown", "Unknown"},
    {1, "Absolute", "Absolute position"},
    {2, "Relative", "Relative position"},
};

constexpr SStatusLiteral kAltitudeModes[] = {
    {1, "Gps", "Altitude calculated using GPS"},
    {2, "Depth", "Altitude calculated using depth sensor"},
    {4, "Stabilized", "The altitude is stabilized around the value entered manually"},
    {8, "Hydro", "Altitude calculated using GPS - accurate mode"},
};

constexpr SStatusLiteral kOffOn[] = {{0, "Off", "Value is set to Off"}, {1, "On", "Value is set to On"}};
constexpr SStatusLiteral kFalseTrue[] = {{0, "False", "Value is set to False"},
                                         {1, "True", "Value is set to True"}};
constexpr SStatusLiteral kNoYes[] = {{0, "No", "Value is set to No"}, {1, "Yes", "Value is set to Yes"}};

constexpr SStatusField Rejection(std::uint8_t field, std::string_view name) {
    return {name,      "Instruction given by the user to process (or not) the sensor data", field, 0, 3,
            kRejection};
}

constexpr SStatusField kRejectionFields[] = {Rejection(0, "Rejection")};

constexpr SStatusField kGpsStatusFields[] = {
    Rejection(0, "Horizontal rejection"),
    Rejection(1, "Vertical rejection"),
    {"GPS Mode", "Mode du GPS", 2, 0, 0xFF, kGpsModes},
};

constexpr SStatusField kUsblStatusFields[] = {
    Rejection(0, "Horizontal rejection"),
    Rejection(1, "Vertical rejection"),
    {"Mode", "USBL mode", 3, 0, 0xFF, kUsblModes},
};

// One bit of algorithm status word 1 or 2; described by its name unless the row says more.
constexpr SStatusField Bit(std::uint8_t word, std::uint8_t bit, std::string_view name,
                           std::span<const SStatusLiteral> literals, std::string_view description = {}) {
    return {name,    description.empty() ? name : description, static_cast<std::uint8_t>(word - 1), bit, 1,
            literals};
}

constexpr SStatusField kAlgorithmFields[] = {
    Bit(1, 0, "Kalman filter", kOffOn),
    Bit(1, 1, "Alignment", kFalseTrue, "Initial alignment is in progress"),
    Bit(1, 2, "Fine Alignment", kFalseTrue, "Fine alignment is in progress"),
    Bit(1, 3, "Dead reckoning", kFalseTrue, "Dvl calibration is in progress"),
    Bit(1, 4, "Altitude GPS", kNoYes, "Altitude calculated using GPS"),
    Bit(1, 5, "Altitude Depth", kNoYes, "Altitude calculated using depth sensor"),
    Bit(1, 6, "Altitude stabilized", kNoYes, "The altitude is stabilized around the value entered manually"),
    Bit(1, 7, "Altitude Hydro", kNoYes, "Altitude calculated using GPS - accurate mode"),
    {"Altitude mode", "Current altitude mode of the INS", 0, 4, 15, kAltitudeModes},
    Bit(1, 8, "Log on", kOffOn),
    Bit(1, 9, "Log data valid", kNoYes),
    Bit(1, 10, "Waiting for log data", kNoYes),
    Bit(1, 11, "Log data rejected", kNoYes),
    Bit(1, 12, "Gps1 on", kOffOn),
    Bit(1, 13, "Gps1 data valid", kNoYes),
    Bit(1, 14, "Waiting for Gps1 data", kNoYes),
    Bit(1, 15, "Gps1 data rejected", kNoYes),
    Bit(1, 16, "Usbl on", kOffOn),
    Bit(1, 17, "Usbl data valid", kNoYes),
    Bit(1, 18, "Waiting for Usbl data", kNoYes),
    Bit(1, 19, "Usbl data rejected", kNoYes),
    Bit(1, 20, "Depth sensor on", kOffOn),
    Bit(1, 21, "Depth sensor data valid", kNoYes),
    Bit(1, 22, "Waiting for Depth sensor data", kNoYes),
    Bit(1, 23, "Depth sensor data rejected", kNoYes),
    Bit(1, 24, "Lbl on", kOffOn),
    Bit(1, 25, "Lbl data valid", kNoYes),
    Bit(1, 26, "Waiting for Lbl data", kNoYes),
    Bit(1, 27, "Lbl data rejected", kNoYes),
    Bit(1, 28, "Altitude saturation", kNoYes),
    Bit(1, 29, "Speed saturation", kNoYes),
    Bit(1, 30, "Acc or rotation speed dynamic exceeded", kNoYes,
        "Acceleration or rotation speed dynamic exceeded"),
    Bit(2, 0, "Water track on", kOffOn),
    Bit(2, 1, "Water track data valid", kNoYes),
    Bit(2, 2, "Waiting for Water track data", kNoYes),
    Bit(2, 3, "Water track data rejected", kNoYes),
    Bit(2, 4, "Gps2 on", kOffOn),
    // The same bit as the row above, and bit 5 has no row: what users see of this state has always come from
    // here.
    Bit(2, 4, "Gps2 data valid", kNoYes),
    Bit(2, 6, "Waiting for Gps2 data", kNoYes),
    Bit(2, 7, "Gps2 data rejected", kNoYes),
    Bit(2, 8, "Metrology on", kOffOn),
    Bit(2, 9, "Metrology data valid", kNoYes),
    Bit(2, 10, "Waiting for Metrology data", kNoYes),
    Bit(2, 11, "Metrology data rejected", kNoYes),
    Bit(2, 12, "Altitude on", kOffOn),
    Bit(2, 13, "Altitude data valid", kNoYes),
    Bit(2, 14, "Waiting for Altitude data", kNoYes),
    Bit(2, 15, "Altitude data rejected", kNoYes),
    Bit(2, 16, "Mode ZUPT", kNoYes),
    Bit(2, 17, "ZUPT valid", kFalseTrue),
    Bit(2, 18, "Mode ZUPT valid", kNoYes),
    Bit(2, 19, "ZUPT Bench valid", kFalseTrue),
    Bit(2, 20, "Static alignment", kFalseTrue),
    Bit(2, 21, "Go to Nav", kFalseTrue),
    Bit(2, 24, "EM Log on", kOffOn),
    Bit(2, 25, "EM Log data valid", kNoYes),
    Bit(2, 26, "Waiting for EM Log data", kNoYes),
    Bit(2, 27, "EM Log data rejected", kNoYes),
    Bit(2, 28, "Gps3 on", kOffOn),
    Bit(2, 29, "Gps3 data valid", kNoYes),
    Bit(2, 30, "Waiting for Gps3 data", kNoYes),
    Bit(2, 31, "Gps3 data rejected", kNoYes),
};
static_assert(std::size(kAlgorithmFields) == 62);

constexpr std::uint32_t kRejectionIndex = kDvlLayout.IndexOf("Rejection");
static_assert(kEMLogLayout.IndexOf("Rejection") == kRejectionIndex &&
              kDepthLayout.IndexOf("Rejection") == kRejectionIndex &&
              kLblLayout.IndexOf("Rejection") == kRejectionIndex &&
              kUtcLayout.IndexOf("Rejection") == kRejectionIndex &&
              kOdometerLayout.IndexOf("Rejection") == kRejectionIndex &&
              kSynchroLayout.IndexOf("Rejection") == kRejectionIndex);
static_assert(kGpsLayout.IndexOf("GPS mode") == kGpsLayout.IndexOf("Horizontal rejection") + 2);
static_assert(kUsblLayout.IndexOf("Mode") == kUsblLayout.IndexOf("Horizontal rejection") + 3);

constexpr SStatusTable kTables[] = {
    {typeDvl, kRejectionIndex, kRejectionFields},
    {typeEMLog, kRejectionIndex, kRejectionFields},
    {typeGps, kGpsLayout.IndexOf("Horizontal rejection"), kGpsStatusFields},
    {typeDepth, kRejectionIndex, kRejectionFields},
    {typeUsbl, kUsblLayout.IndexOf("Horizontal rejection"), kUsblStatusFields},
    {typeLbl, kRejectionIndex, kRejectionFields},
    {typeUtc, kRejectionIndex, kRejectionFields},
    {typeOdometer, kRejectionIndex, kRejectionFields},
    {typeSynchro, kRejectionIndex, kRejectionFields},
    {typeNelixNav, kNelixNavLayout.IndexOf("Algorithm status 1"), kAlgorithmFields},
    {typeMorvexStd, kMorvexStdLayout.IndexOf("Algorithm status 1"), kAlgorithmFields},
};

} // namespace

const SStatusTable* FindStatusTable(std::uint16_t packetType) {
    const auto* found = std::ranges::find(kTables, packetType, &SStatusTable::packetType);
    return found == std::end(kTables) ? nullptr : found;
}

} // namespace Persistance_Xpf
