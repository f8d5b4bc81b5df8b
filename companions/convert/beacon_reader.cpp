// Positions of acoustic beacons, "$PTSAG".
#include "convert/nmea_sentence.h"
#include "convert/packet_values.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <map>

namespace Conversion {
namespace {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Persistance_Xpf::kUsblLayout;

// The fields after the address.
enum EField : std::size_t {
    fieldFrame,
    fieldTime,
    fieldDay,
    fieldMonth,
    fieldYear,
    fieldBeacon,
    fieldLatitude,
    fieldNorth,
    fieldLongitude,
    fieldEast,
    fieldValid,
    fieldDepth, // computed
    fieldDepthKind,
    fieldSensorDepth
};

// The depth to take, m, by its code: 0 none, 1 the computed depth, 2 the beacon's own sensor.
std::optional<double> GetDepth(const CFields& fields) {
    const auto kind = ParseInteger<int>(fields[fieldDepthKind]);
    if (kind == 1) return ParseNumber(fields[fieldDepth]);
    if (kind == 2) return ParseNumber(fields[fieldSensorDepth]);
    return std::nullopt;
}

// A hexadecimal digit, one bit for each receiver that heard the beacon, or a status letter.
bool IsValid(std::string_view letter) { return !letter.empty() && letter != "0" && letter != "V"; }

class CBeaconReader {
  public:
    explicit CBeaconReader(SConversion& conversion)
        : m_conversion(conversion),
          m_lines(conversion.source),
          m_beacon(static_cast<int>(conversion.arguments.GetNumber("/beacon", 0))) {}

    bool Read() {
        for (std::string_view line; !m_conversion.IsDone() && m_lines.Next(line);)
            for (SSentence sentence; TakeSentence(line, sentence);)
                if (sentence.address == "PTSAG") Take(sentence);
        for (const auto& [beacon, count] : m_others)
            if (!m_conversion.IsDone())
                m_conversion.notes.Say(ELevel::information, EText::beaconOthers,
                                       {std::to_string(beacon), std::to_string(count)});
        return true;
    }

  private:
    void Fault(EText kind) {
        if (!m_lines.IsUnfinished()) m_conversion.faults.Add(kind, m_lines.GetNumber());
    }

    void Take(const SSentence& sentence) {
        m_hasSums = m_hasSums || sentence.sum == ECheckSum::right;
        if (sentence.sum == ECheckSum::wrong) return Fault(EText::faultCheckSum);
        if (sentence.sum == ECheckSum::missing && m_hasSums) return Fault(EText::faultNoCheckSum);
        const CFields fields = CFields::Split(sentence.body, ',');
        if (fields.GetCount() <= fieldDepthKind) return Fault(EText::faultColumns);
        const auto beacon = ParseInteger<int>(fields[fieldBeacon]);
        if (!beacon) return Fault(EText::faultNumber);
        if (m_beacon == 0 && *beacon != 0) { // by hand, without the switch: the first beacon of the log
            m_beacon = *beacon;
            m_conversion.notes.Say(ELevel::information, EText::beaconTaken, {std::to_string(m_beacon)});
        }
        if (*beacon == 0 || *beacon != m_beacon) return CountOther(*beacon);
        if (!IsValid(fields[fieldValid])) return Fault(EText::faultInvalid);
        Write(fields);
    }

    // A damaged number may be any: not more of them are kept than there are beacons.
    void CountOther(int beacon) {
        constexpr std::size_t kMost = 300;
        if (m_others.size() < kMost || m_others.contains(beacon)) ++m_others[beacon];
        m_conversion.faults.Add(beacon == 0 ? EText::faultShip : EText::faultOtherBeacon,
                                m_lines.GetNumber());
    }

    void Write(const CFields& fields) {
        const auto time = ParseCompactTime(fields[fieldTime]);
        const auto day = ParseInteger<int>(fields[fieldDay]), month = ParseInteger<int>(fields[fieldMonth]),
                   year = ParseInteger<int>(fields[fieldYear]);
        const auto date = day && month && year ? MakeDay(*year, *month, *day) : std::nullopt;
        if (!time || !date) return Fault(EText::faultDate);
        const auto latitude = ParseDegreesMinutes(fields[fieldLatitude], fields[fieldNorth], 90);
        const auto longitude = ParseDegreesMinutes(fields[fieldLongitude], fields[fieldEast], 180);
        if (!latitude || !longitude) return Fault(EText::faultNumber);
        const auto depth = GetDepth(fields);

        CPayload payload;
        payload.Reset(kUsblLayout.payloadSize);
        payload.Put(PlaceOf(kUsblLayout, "Horizontal rejection"), kAuto);
        payload.Put(PlaceOf(kUsblLayout, "Vertical rejection"), depth ? kAuto : kOff);
        payload.Put(PlaceOf(kUsblLayout, "Beacon"), m_beacon);
        payload.Put(PlaceOf(kUsblLayout, "Mode"), kAbsolute);
        payload.Put(PlaceOf(kUsblLayout, "Latitude"), *latitude);
        payload.Put(PlaceOf(kUsblLayout, "Longitude"), *longitude);
        payload.Put(PlaceOf(kUsblLayout, "Altitude"), -depth.value_or(0));
        m_conversion.sink.Add(m_channel, *date * kTicksPerDay + *time, payload.Get(), m_lines.GetNumber());
    }

    SConversion& m_conversion;
    CLineReader m_lines;
    int m_beacon; // 0: not chosen
    bool m_hasSums = false;
    const std::uint16_t m_channel = GetChannelRow("USBL_1");
    std::map<int, std::uint64_t> m_others;
};

} // namespace

bool ReadBeacons(SConversion& conversion) { return CBeaconReader(conversion).Read(); }

} // namespace Conversion
