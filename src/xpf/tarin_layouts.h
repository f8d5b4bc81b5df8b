// The payloads of the input data file, field by field. Values are in the base unit of their nature.
#pragma once

#include "xpf/layout.h"

namespace Persistance_Xpf {

inline constexpr SFieldLayout kImuFields[] = {
    {"Date", EFieldType::date, natureUnknown},         {"FrameCounter", EFieldType::u16, natureUnknown},
    {"System type", EFieldType::u8, natureUnknown},    {"Data type", EFieldType::u8, natureUnknown},
    {"Fog 1", EFieldType::i32, natureRawFog},          {"Fog 2", EFieldType::i32, natureRawFog},
    {"Fog 3", EFieldType::i32, natureRawFog},          {"Acc 1", EFieldType::i32, natureRawAcc},
    {"Acc 2", EFieldType::i32, natureRawAcc},          {"Acc 3", EFieldType::i32, natureRawAcc},
    {"Sensor status", EFieldType::u32, natureUnknown},
};
inline constexpr SPacketLayout kImuLayout{typeImu, 2, kImuFields};
static_assert(kImuLayout.payloadSize == 40);

inline constexpr SFieldLayout kDvlFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Speed X", EFieldType::f32, natureLinearSpeed},
    {"Speed Y", EFieldType::f32, natureLinearSpeed},
    {"Speed Z", EFieldType::f32, natureLinearSpeed},
    {"Sound velocity (sensor)", EFieldType::f32, natureSoundVelocity},
    {"Sound velocity (external)", EFieldType::f32, natureSoundVelocity},
    {"Altitude", EFieldType::f32, natureAltitude},
    {"Std. dev. speed X", EFieldType::f32, natureLinearSpeedStdDev},
    {"Std. dev. speed Y", EFieldType::f32, natureLinearSpeedStdDev},
    {"Std. dev. speed Z", EFieldType::f32, natureLinearSpeedStdDev},
};
inline constexpr SPacketLayout kDvlLayout{typeDvl, 1, kDvlFields};
static_assert(kDvlLayout.payloadSize == 49);

inline constexpr SFieldLayout kEMLogFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Speed", EFieldType::f32, natureLinearSpeed},
    {"Std. dev. speed", EFieldType::f32, natureLinearSpeedStdDev},
};
inline constexpr SPacketLayout kEMLogLayout{typeEMLog, 1, kEMLogFields};
static_assert(kEMLogLayout.payloadSize == 21);

inline constexpr SFieldLayout kGpsFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Horizontal rejection", EFieldType::u8, natureEnumeration},
    {"Vertical rejection", EFieldType::u8, natureEnumeration},
    {"GPS mode", EFieldType::u8, natureEnumeration},
    {"Latitude", EFieldType::f64, natureLatitude},
    {"Longitude", EFieldType::f64, natureLongitude},
    {"Altitude", EFieldType::f32, natureAltitude},
    {"Std. dev. north", EFieldType::f32, naturePositionStdDev},
    {"Std. dev. east", EFieldType::f32, naturePositionStdDev},
    {"Std. dev. altitude", EFieldType::f32, natureAltitudeStdDev},
    {"Covariance XY", EFieldType::f32, naturePositionCrossVariance},
    {"Geoidal sep", EFieldType::f32, natureAltitude},
};
inline constexpr SPacketLayout kGpsLayout{typeGps, 2, kGpsFields};
static_assert(kGpsLayout.payloadSize == 55);

inline constexpr SFieldLayout kDepthFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Depth", EFieldType::f32, natureImmersion},
    {"Std. dev. depth", EFieldType::f32, natureAltitudeStdDev},
};
inline constexpr SPacketLayout kDepthLayout{typeDepth, 1, kDepthFields};
static_assert(kDepthLayout.payloadSize == 21);

inline constexpr SFieldLayout kUsblFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Horizontal rejection", EFieldType::u8, natureEnumeration},
    {"Vertical rejection", EFieldType::u8, natureEnumeration},
    {"Beacon", EFieldType::u16, natureUnknown},
    {"Mode", EFieldType::u8, natureEnumeration},
    {"Latitude", EFieldType::f64, natureLatitude},
    {"Longitude", EFieldType::f64, natureLongitude},
    {"Altitude", EFieldType::f32, natureAltitude},
    {"Std. dev. north", EFieldType::f32, naturePositionStdDev},
    {"Std. dev. east", EFieldType::f32, naturePositionStdDev},
    {"Covariance XY", EFieldType::f32, naturePositionCrossVariance},
    // Without a nature, unlike the same field of the GPS packet: files carry it so.
    {"Std. dev. altitude", EFieldType::f32, natureUnknown},
};
inline constexpr SPacketLayout kUsblLayout{typeUsbl, 1, kUsblFields};
static_assert(kUsblLayout.payloadSize == 53);

inline constexpr SFieldLayout kLblFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Beacon", EFieldType::u16, natureUnknown},
    {"Latitude", EFieldType::f64, natureLatitude},
    {"Longitude", EFieldType::f64, natureLongitude},
    {"Altitude", EFieldType::f32, natureAltitude},
    {"Range", EFieldType::f32, natureDistance},
    {"Std. dev. range", EFieldType::f32, natureDistanceStdDev},
};
inline constexpr SPacketLayout kLblLayout{typeLbl, 1, kLblFields};
static_assert(kLblLayout.payloadSize == 43);

inline constexpr SFieldLayout kUtcFields[] = {
    {"Date", EFieldType::date, natureUnknown},        {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration}, {"UTC Year", EFieldType::u16, natureUnknown},
    {"UTC Month", EFieldType::u8, natureUnknown},     {"UTC day", EFieldType::u8, natureUnknown},
    {"UTC Hour", EFieldType::u8, natureUnknown},      {"UTC Minute", EFieldType::u8, natureUnknown},
    {"UTC Second", EFieldType::f32, natureUnknown},   {"Realtime drift", EFieldType::f64, natureUnknown},
};
inline constexpr SPacketLayout kUtcLayout{typeUtc, 2, kUtcFields};
static_assert(kUtcLayout.payloadSize == 31);

inline constexpr SFieldLayout kOdometerFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Measure", EFieldType::f64, natureUnknown},
    {"Std. dev. measure", EFieldType::f64, natureUnknown},
};
inline constexpr SPacketLayout kOdometerLayout{typeOdometer, 2, kOdometerFields};
static_assert(kOdometerLayout.payloadSize == 29);

inline constexpr SFieldLayout kSynchroFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Delay", EFieldType::f32, natureTimeLength},
    {"Rejection", EFieldType::u8, natureEnumeration},
    {"Counter", EFieldType::u32, natureUnknown},
};
inline constexpr SPacketLayout kSynchroLayout{typeSynchro, 2, kSynchroFields};
static_assert(kSynchroLayout.payloadSize == 17);

inline constexpr SFieldLayout kNelixNavFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Algorithm status 1", EFieldType::u32, natureEnumeration},
    {"Algorithm status 2", EFieldType::u32, natureEnumeration},
    {"Algorithm status 3", EFieldType::u32, natureEnumeration},
    {"Latitude", EFieldType::f64, natureLatitude},
    {"Longitude", EFieldType::f64, natureLongitude},
    {"Altitude", EFieldType::f32, natureAltitude},
    {"Heading", EFieldType::f32, natureAttitude},
    {"Roll", EFieldType::f32, natureAttitude},
    {"Pitch", EFieldType::f32, natureAttitude},
    {"Speed north", EFieldType::f32, natureLinearSpeed},
    {"Speed east", EFieldType::f32, natureLinearSpeed},
    {"Speed up", EFieldType::f32, natureLinearSpeed},
};
inline constexpr SPacketLayout kNelixNavLayout{typeNelixNav, 2, kNelixNavFields};
static_assert(kNelixNavLayout.payloadSize == 64);

inline constexpr SFieldLayout kTemperatureFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"FOG 1 temperature", EFieldType::f32, natureTemperature},
    {"FOG 2 temperature", EFieldType::f32, natureTemperature},
    {"FOG 3 temperature", EFieldType::f32, natureTemperature},
    {"ACC 1 temperature", EFieldType::f32, natureTemperature},
    {"ACC 2 temperature", EFieldType::f32, natureTemperature},
    {"ACC 3 temperature", EFieldType::f32, natureTemperature},
    {"Analog card temperature", EFieldType::f32, natureTemperature},
    {"Source temperature", EFieldType::f32, natureTemperature},
};
inline constexpr SPacketLayout kTemperatureLayout{typeTemperature, 1, kTemperatureFields};
static_assert(kTemperatureLayout.payloadSize == 40);

inline constexpr SFieldLayout kPlatformOrientationFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Drift (heading)", EFieldType::f32, natureAttitude},
    {"Roll", EFieldType::f32, natureAttitude},
    {"Pitch", EFieldType::f32, natureAttitude},
};
inline constexpr SPacketLayout kPlatformOrientationLayout{typePlatformOrientation, 1,
                                                          kPlatformOrientationFields};
static_assert(kPlatformOrientationLayout.payloadSize == 20);

static_assert(kImuLayout.OffsetOf("Sensor status") == 36);
static_assert(kDvlLayout.OffsetOf("Std. dev. speed Z") == 45);
static_assert(kGpsLayout.OffsetOf("Latitude") == 15 && kGpsLayout.OffsetOf("Geoidal sep") == 51);
static_assert(kUsblLayout.OffsetOf("Mode") == 16 && kUsblLayout.OffsetOf("Std. dev. altitude") == 49);
static_assert(kLblLayout.OffsetOf("Range") == 35);
static_assert(kUtcLayout.OffsetOf("UTC Second") == 19 && kUtcLayout.OffsetOf("Realtime drift") == 23);
static_assert(kNelixNavLayout.OffsetOf("Algorithm status 3") == 16 &&
              kNelixNavLayout.OffsetOf("Speed up") == 60);

} // namespace Persistance_Xpf
