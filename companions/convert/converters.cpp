// The twelve converters and their switches, one row each.
#include "convert/readers.h"
#include "foundation/texts.h"

namespace Conversion {
namespace {

using Compagnon::SSwitchRow;
using Outils_Texte::ESwitchValue;

constexpr SSwitchRow kNmeaSwitches[] = {
    {"/verifyChecksum", ESwitchValue::word, "yes|no", EText::switchCheckSum}};
constexpr SSwitchRow kBeaconSwitches[] = {
    {"/beacon", ESwitchValue::integer, "N", EText::switchBeacon, 1, 127}};
constexpr SSwitchRow kUtcSwitch{"/utc", ESwitchValue::text, "YYYY-MM-DD", EText::switchUtc};
constexpr SSwitchRow kRawSwitches[] = {
    {"/f", ESwitchValue::word, "tarin", EText::switchForm},
    kUtcSwitch,
    {"/skip", ESwitchValue::integer, "S", EText::switchSkip, 0, 1e9},
    {"/stop", ESwitchValue::integer, "S", EText::switchStop, 0, 1e9},
    {"/decipher", ESwitchValue::word, "yes|no", EText::switchDecipher},
    {"/sort", ESwitchValue::word, "alpha|none", EText::switchSort},
    {"/ccd", ESwitchValue::word, "auto|off|on", EText::switchDrift},
    {"/o", ESwitchValue::text, "TARGET", EText::switchTarget},
};
constexpr SSwitchRow kDecodedSwitches[] = {
    {"/e", ESwitchValue::integer, "CODE", EText::switchEquipment, 1, 255},
    kUtcSwitch,
    {"/cycle", ESwitchValue::integer, "S", EText::switchCycle, 1, 1e9},
    {"/imu5msOffset", ESwitchValue::word, "yes|no", EText::switchImuOffset},
};

constexpr SConverter kConverters[] = {
    {"Nmea2Tarin.exe", EText::purposeNmea, kNmeaSwitches, EDates::utc, EText::faultsByLine, ReadNmea},
    {"Kolt2Tarin.exe", EText::purposeBeacons, kBeaconSwitches, EDates::utc, EText::faultsByLine, ReadBeacons},
    {"Novatel2Tarin.exe",
     EText::purposePostProcessed,
     {},
     EDates::utc,
     EText::faultsByLine,
     ReadPostProcessed},
    {"PostProNelixDecode.exe", EText::purposeRaw, kRawSwitches, EDates::own, EText::faultsByByte,
     ReadRawStream, true, true},
    {"PD6Rdi2Tarin.exe", EText::purposeDoppler, {}, EDates::utc, EText::faultsByLine, ReadDopplerLog},
    {"DecodedNelix2Tarin.exe", EText::purposeDecoded, kDecodedSwitches, EDates::own, EText::faultsByLine,
     ReadDecodedText},
    {"Synchro2Tarin.exe", EText::purposeEvents, {}, EDates::utc, EText::faultsByLine, ReadEvents},
    {"Range2Tarin.exe", EText::purposeRanges, {}, EDates::utc, EText::faultsByLine, ReadRanges},
    {"Usbl2Tarin.exe", EText::purposeUsbl, {}, EDates::utc, EText::faultsByLine, ReadExternalBeacons},
    {"Platform2Tarin.exe", EText::purposePlatform, {}, EDates::utc, EText::faultsByLine, ReadPlatform},
    {"Odometer2Tarin.exe", EText::purposeOdometer, {}, EDates::utc, EText::faultsByLine, ReadOdometer},
    {"Depth2Tarin.exe", EText::purposeDepth, {}, EDates::utc, EText::faultsByLine, ReadDepth},
};
static_assert(std::size(kConverters) == kConverterCount);

} // namespace

std::span<const SConverter, kConverterCount> GetConverters() { return kConverters; }

} // namespace Conversion
