// The payloads of the result file, field by field. The status words lack the nature of an enumeration that
// they have in the input file; the standard deviations of the speeds are plain speeds: both as the engine
// writes them.
#pragma once

#include "xpf/layout.h"

namespace Persistance_Xpf {

inline constexpr SFieldLayout kMorvexStdFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Sensor", EFieldType::i8, natureUnknown, 12},
    {"SensorData", EFieldType::u32, natureUnknown},
    {"Latitude0", EFieldType::f64, natureLatitude},
    {"Longitude0", EFieldType::f64, natureLongitude},
    {"Altitude0", EFieldType::f32, natureAltitude},
    {"Latitude1", EFieldType::f64, natureLatitude},
    {"Longitude1", EFieldType::f64, natureLongitude},
    {"Altitude1", EFieldType::f32, natureAltitude},
    {"Latitude2", EFieldType::f64, natureLatitude},
    {"Longitude2", EFieldType::f64, natureLongitude},
    {"Altitude2", EFieldType::f32, natureAltitude},
    {"Latitude3", EFieldType::f64, natureLatitude},
    {"Longitude3", EFieldType::f64, natureLongitude},
    {"Altitude3", EFieldType::f32, natureAltitude},
    {"Heave0", EFieldType::f32, natureDistance},
    {"Surge0", EFieldType::f32, natureDistance},
    {"Sway0", EFieldType::f32, natureDistance},
    {"Heave1", EFieldType::f32, natureDistance},
    {"Surge1", EFieldType::f32, natureDistance},
    {"Sway1", EFieldType::f32, natureDistance},
    {"Heave2", EFieldType::f32, natureDistance},
    {"Surge2", EFieldType::f32, natureDistance},
    {"Sway2", EFieldType::f32, natureDistance},
    {"Heave3", EFieldType::f32, natureDistance},
    {"Surge3", EFieldType::f32, natureDistance},
    {"Sway3", EFieldType::f32, natureDistance},
    {"Speed north", EFieldType::f64, natureLinearSpeed},
    {"Speed east", EFieldType::f64, natureLinearSpeed},
    {"Speed up", EFieldType::f64, natureLinearSpeed},
    {"Std. dev. north", EFieldType::f64, naturePositionStdDev},
    {"Std. dev. east", EFieldType::f64, naturePositionStdDev},
    {"Std. dev. altitude", EFieldType::f64, natureAltitudeStdDev},
    {"Covariance XY", EFieldType::f64, naturePositionCrossVariance},
    {"Std. dev. speed north", EFieldType::f64, natureLinearSpeed},
    {"Std. dev. speed east", EFieldType::f64, natureLinearSpeed},
    {"Std. dev. speed up", EFieldType::f64, natureLinearSpeed},
    {"Heading", EFieldType::f64, natureAttitude},
    {"Roll", EFieldType::f64, natureAttitude},
    {"Pitch", EFieldType::f64, natureAttitude},
    {"Std. dev. heading", EFieldType::f64, natureAttitudeStdDev},
    {"Std. dev. roll", EFieldType::f64, natureAttitudeStdDev},
    {"Std. dev. pitch", EFieldType::f64, natureAttitudeStdDev},
    {"UTC Year", EFieldType::u16, natureUnknown},
    {"UTC Month", EFieldType::u8, natureUnknown},
    {"UTC Day", EFieldType::u8, natureUnknown},
    {"UTC Hour", EFieldType::u8, natureUnknown},
    {"UTC Minute", EFieldType::u8, natureUnknown},
    {"UTC Second", EFieldType::f32, natureUnknown},
    {"Algorithm status 1", EFieldType::u32, natureUnknown},
    {"Algorithm status 2", EFieldType::u32, natureUnknown},
    {"Algorithm status 3", EFieldType::u32, natureUnknown},
};
inline constexpr SPacketLayout kMorvexStdLayout{typeMorvexStd, 2, kMorvexStdFields};
static_assert(kMorvexStdLayout.payloadSize == 302);

inline constexpr SFieldLayout kMorvexMsgFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Level", EFieldType::u8, natureUnknown},
    {"Text", EFieldType::i8, natureUnknown, 256},
};
inline constexpr SPacketLayout kMorvexMsgLayout{typeMorvexMsg, 1, kMorvexMsgFields};
static_assert(kMorvexMsgLayout.payloadSize == 265);

inline constexpr SFieldLayout kMorvexExtFields[] = {
    {"Date", EFieldType::date, natureUnknown},
    {"Qnb", EFieldType::f64, natureUnknown, 4},
    {"Speed north", EFieldType::f64, natureLinearSpeed},
    {"Speed west", EFieldType::f64, natureLinearSpeed},
    {"Latitude", EFieldType::f64, natureLatitude},
    {"Longitude", EFieldType::f64, natureLongitude},
    {"Acc bias X", EFieldType::f64, natureLinearAcceleration},
    {"Acc bias Y", EFieldType::f64, natureLinearAcceleration},
    {"Acc bias Z", EFieldType::f64, natureLinearAcceleration},
    {"Gyro bias X", EFieldType::f64, natureAngularSpeed},
    {"Gyro bias Y", EFieldType::f64, natureAngularSpeed},
    {"Gyro bias Z", EFieldType::f64, natureAngularSpeed},
    {"Altitude", EFieldType::f64, natureAltitude},
    {"Speed up", EFieldType::f64, natureLinearSpeed},
    {"Lever arm GPS1 X", EFieldType::f64, natureDistance},
    {"Lever arm GPS1 Y", EFieldType::f64, natureDistance},
    {"Lever arm GPS1 Z", EFieldType::f64, natureDistance},
    {"Lever arm GPS2 X", EFieldType::f64, natureDistance},
    {"Lever arm GPS2 Y", EFieldType::f64, natureDistance},
    {"Lever arm GPS2 Z", EFieldType::f64, natureDistance},
    {"Lever arm LOG X", EFieldType::f64, natureDistance},
    {"Lever arm LOG Y", EFieldType::f64, natureDistance},
    {"Lever arm LOG Z", EFieldType::f64, natureDistance},
    {"Qbody_log", EFieldType::f64, natureUnknown, 4},
    {"Scale factor Log", EFieldType::f64, natureScaleFactor},
    {"Scale factor gyro Z", EFieldType::f64, natureScaleFactor},
    {"Scale factor gyro X", EFieldType::f64, natureScaleFactor},
    {"Scale factor gyro Y", EFieldType::f64, natureScaleFactor},
    {"Scale factor acc Z", EFieldType::f64, natureScaleFactor},
    {"Scale factor acc X", EFieldType::f64, natureScaleFactor},
    {"Scale factor acc Y", EFieldType::f64, natureScaleFactor},
    {"Misalignment gyro XY", EFieldType::f64, natureUnknown},
    {"Misalignment gyro XZ", EFieldType::f64, natureUnknown},
    {"Misalignment gyro YX", EFieldType::f64, natureUnknown},
    {"Misalignment gyro YZ", EFieldType::f64, natureUnknown},
    {"Misalignment gyro ZX", EFieldType::f64, natureUnknown},
    {"Misalignment gyro ZY", EFieldType::f64, natureUnknown},
    {"Misalignment acc XY", EFieldType::f64, natureUnknown},
    {"Misalignment acc XZ", EFieldType::f64, natureUnknown},
    {"Misalignment acc YX", EFieldType::f64, natureUnknown},
    {"Misalignment acc YZ", EFieldType::f64, natureUnknown},
    {"Misalignment acc ZX", EFieldType::f64, natureUnknown},
    {"Misalignment acc ZY", EFieldType::f64, natureUnknown},
    {"Acc lever arm", EFieldType::f64, natureUnknown, 9},
    {"Suspension model - heading", EFieldType::f64, natureUnknown},
    {"Metrology 0 - latitude", EFieldType::f64, natureLatitude},
    {"Metrology 0 - longitude", EFieldType::f64, natureLongitude},
    {"Metrology 0 - altitude", EFieldType::f64, natureAltitude},
    {"Metrology 1 - latitude", EFieldType::f64, natureLatitude},
    {"Metrology 1 - longitude", EFieldType::f64, natureLongitude},
    {"Metrology 1 - altitude", EFieldType::f64, natureAltitude},
    {"Suspension model - pitch", EFieldType::f64, natureUnknown},
    {"Asymetry Gyro X", EFieldType::f64, natureScaleFactor},
    {"Asymetry Gyro Y", EFieldType::f64, natureScaleFactor},
    {"Asymetry Gyro Z", EFieldType::f64, natureScaleFactor},
    {"Asymetry Acc X", EFieldType::f64, natureScaleFactor},
    {"Asymetry Acc Y", EFieldType::f64, natureScaleFactor},
    {"Asymetry Acc Z", EFieldType::f64, natureScaleFactor},
    {"Algorithm status 1", EFieldType::u32, natureUnknown},
    {"Algorithm status 2", EFieldType::u32, natureUnknown},
    {"Algorithm status 3", EFieldType::u32, natureUnknown},
    {"Instant value gyro X", EFieldType::f64, natureAngularSpeed},
    {"Instant value gyro Y", EFieldType::f64, natureAngularSpeed},
    {"Instant value gyro Z", EFieldType::f64, natureAngularSpeed},
    {"Gyro X", EFieldType::f64, natureAngularSpeed},
    {"Gyro Y", EFieldType::f64, natureAngularSpeed},
    {"Gyro Z", EFieldType::f64, natureAngularSpeed},
    {"Acc X", EFieldType::f64, natureLinearAcceleration},
    {"Acc Y", EFieldType::f64, natureLinearAcceleration},
    {"Acc Z", EFieldType::f64, natureLinearAcceleration},
    {"Heave", EFieldType::f64, natureDistance, 4},
};
inline constexpr SPacketLayout kMorvexExtLayout{typeMorvexExt, 1, kMorvexExtFields};
static_assert(kMorvexExtLayout.payloadSize == 692);

static_assert(kMorvexStdLayout.OffsetOf("Latitude3") == 84 && kMorvexStdLayout.OffsetOf("UTC Second") == 286);
static_assert(kMorvexStdLayout.OffsetOf("Algorithm status 3") == 298);
static_assert(kMorvexMsgLayout.OffsetOf("Text") == 9);
static_assert(kMorvexExtLayout.IndexOf("Qbody_log") == 23 && kMorvexExtLayout.IndexOf("Acc lever arm") == 43);
static_assert(kMorvexExtLayout.IndexOf("Heave") == 70 && kMorvexExtLayout.OffsetOf("Heave") == 660);
static_assert(kMorvexExtLayout.OffsetOf("Algorithm status 1") == 576);

// The packets of the engine's internal states vary in size and are never decoded: the two size fields say how
// many values follow each.
inline constexpr SFieldLayout kMorvexStaFields[] = {
    {"Date", EFieldType::date, natureUnknown},  {"Vector size", EFieldType::u32, natureUnknown},
    {"Vector", EFieldType::f64, natureUnknown}, {"Matrix size", EFieldType::u32, natureUnknown},
    {"Matrix", EFieldType::f64, natureUnknown},
};
inline constexpr SPacketLayout kMorvexStaLayout{typeMorvexSta, 1, kMorvexStaFields};

} // namespace Persistance_Xpf
