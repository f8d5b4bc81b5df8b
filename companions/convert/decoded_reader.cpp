// Decoded INS text: the records of the raw stream, one a line.
#include "convert/clock_cycle.h"
#include "convert/decoded_text.h"
#include "convert/raw_frame.h"
#include "convert/readers.h"
#include "convert/utc_packet.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace Conversion {
namespace {

using namespace Persistance_Xpf;

constexpr STagRow kTags[] = {
    {"IMU   ", "IMU"},
    {"IMU___", "IMU"},
    {"LOG   ", "DVL_BT"},
    {"LOG___", "DVL_BT"},
    {"WATTRK", "DVL_WT"},
    {"WLOG__", "DVL_WT"},
    {"LOGEM ", "EM_LOG_1"},
    {"LOGEM_", "EM_LOG_2"},
    {"GPS   ", "GPS_1"},
    {"GPS___", "GPS_1"},
    {"GPS2__", "GPS_2"},
    {"GPSM__", "GPS_3"},
    {"DEPTH ", "DEPTH"},
    {"DEPTH_", "DEPTH"},
    {"USBL  ", "USBL_1"},
    {"USBL__", "USBL_2"},
    {"KOLT  ", "USBL_3"},
    {"LBL   ", "LBL"},
    {"LBL___", "LBL"},
    {"UTC   ", "UTC"},
    {"UTC___", "UTC"},
    {"VELTOR", "ODOMETER"},
    {"EV1   ", "SYNCHRO_1"},
    {"EV2   ", "SYNCHRO_2"},
    {"EV3   ", "SYNCHRO_3"},
    {"EV4   ", "SYNCHRO_4"},
    {"NAV___", "NELIX_NAV"},
    {"TEMP__", "TEMPERATURE"},
    {"HINGIS", "PLATFORM_ORIENT"},
    {"FOGACC", ""},
    {"IMU2__", ""},
    {"INCSYS", ""},
    {"HINGE1", ""},
    {"REF   ", ""},
    {"GPSnv ", ""},
    {"GPS2nv", ""},
    {"GPSMnv", ""},
    {"USBLnv", ""},
    {"LBLnv ", ""},
    {"SYNEXT", ""},
    {"MISSED", ""},
    {"UNKNOW", ""},
};

// The value of a word in the field's type; false for one that is none or does not fit.
template <class T>
bool Store(std::string_view word, std::uint8_t* bytes) {
    T stored;
    if constexpr (std::is_floating_point_v<T>) {
        const auto value = ParseNumberOrComma(word);
        if (!value || std::abs(*value) > std::numeric_limits<T>::max()) return false;
        stored = static_cast<T>(*value);
    } else {
        const auto value = ParseInteger<T>(word);
        if (!value) return false;
        stored = *value;
    }
    std::memcpy(bytes, &stored, sizeof stored);
    return true;
}

bool StoreField(EFieldType type, std::string_view word, std::uint8_t* bytes) {
    switch (type) {
    case EFieldType::u8: return Store<std::uint8_t>(word, bytes);
    case EFieldType::u16: return Store<std::uint16_t>(word, bytes);
    case EFieldType::u32: return Store<std::uint32_t>(word, bytes);
    case EFieldType::i8: return Store<std::int8_t>(word, bytes);
    case EFieldType::i16: return Store<std::int16_t>(word, bytes);
    case EFieldType::i32: return Store<std::int32_t>(word, bytes);
    case EFieldType::f32: return Store<float>(word, bytes);
    case EFieldType::f64: return Store<double>(word, bytes);
    case EFieldType::date: return false;
    }
    return false;
}

struct STaggedChannel {
    STagRow row;
    std::uint16_t channel = 0;
    const SPacketLayout* layout = nullptr; // null: no channel
};

class CDecodedReader {
  public:
    explicit CDecodedReader(SConversion& conversion)
        : m_conversion(conversion),
          m_cycle(conversion.arguments.GetNumber("/cycle", 86400)),
          m_equipment(static_cast<int>(conversion.arguments.GetNumber("/e", 0))),
          m_isImuLate(conversion.arguments.GetWord("/imu5msOffset", 0) == 0) {
        for (const STagRow& row : kTags) {
            STaggedChannel tagged{row};
            if (!row.channel.empty()) {
                tagged.channel = GetChannelRow(row.channel);
                tagged.layout = FindPacketLayout(GetChannelLayouts()[tagged.channel].packetType);
            }
            m_tags.push_back(tagged);
        }
    }

    bool Read() {
        m_day = GetUtcDay(m_conversion.arguments);
        const bool hasUtc = LookForUtc();
        if (!hasUtc && m_day) m_conversion.sink.SetUtcOrigin(*m_day);
        if (!hasUtc && !m_day) m_conversion.notes.Say(ELevel::warning, EText::rawNoUtc);
        CLineReader lines(m_conversion.source);
        CClockCycle clock(std::llround(m_cycle * kTicksPerSecond));
        for (std::string_view line; !m_conversion.IsDone() && lines.Next(line);) {
            if (line.size() <= kTagSize || line[kTagSize] != ':') {
                if (!Trim(line).empty() && !lines.IsUnfinished())
                    m_conversion.faults.Add(EText::faultNoTag, lines.GetNumber());
                continue;
            }
            const EText fault = Take(line, lines.GetNumber(), clock);
            if (fault != EText::none && !lines.IsUnfinished())
                m_conversion.faults.Add(fault, lines.GetNumber());
        }
        return true;
    }

  private:
    // As a rule it is among the first lines.
    bool LookForUtc() {
        CLineReader lines(m_conversion.source);
        bool found = false;
        for (std::string_view line; !found && lines.Next(line);)
            found = line.starts_with("UTC   :") || line.starts_with("UTC___:");
        if (!m_conversion.source.IsStopped() && !m_conversion.source.IsFailed()) m_conversion.source.Rewind();
        return found;
    }

    const STaggedChannel* FindTag(std::string_view tag) {
        if (m_lastTag && m_lastTag->row.tag == tag) return m_lastTag; // most lines are of one tag
        const auto found =
            std::ranges::find(m_tags, tag, [](const STaggedChannel& tagged) { return tagged.row.tag; });
        return m_lastTag = found == m_tags.end() ? nullptr : &*found;
    }

    EText Take(std::string_view line, std::uint64_t number, CClockCycle& clock) {
        const STaggedChannel* tagged = FindTag(line.substr(0, kTagSize));
        if (!tagged) return EText::faultNoTag;
        if (!tagged->layout) return EText::faultNoChannel;
        const SPacketLayout& layout = *tagged->layout;
        const CFields words = CFields::SplitWords(line.substr(kTagSize + 1));
        if (words.GetCount() != layout.fields.size()) return EText::faultColumns;
        for (std::size_t i = 1; i < layout.fields.size(); ++i)
            if (!StoreField(layout.fields[i].type, words[i - 1], m_payload.data() + layout.offsets[i]))
                return EText::faultNumber;
        const auto time = ParseNumberOrComma(words[layout.fields.size() - 1]);
        if (!time || *time < 0 || *time >= m_cycle) return EText::faultDate;
        Ticks date = clock.Unwrap(std::llround(*time * kTicksPerSecond));
        const std::span<std::uint8_t> payload(m_payload.data(), layout.payloadSize);
        if (layout.type == typeImu) {
            constexpr Ticks kLate = 5 * kTicksPerSecond / 1000;
            if (m_isImuLate) date -= kLate;
            TakeEquipment(payload[kImuLayout.OffsetOf("System type")]);
        } else if (layout.type == typeUtc && m_day) {
            CompleteUtc(payload.subspan(kDateSize), *m_day);
        }
        m_conversion.sink.Add(tagged->channel, date, payload, number);
        return EText::none;
    }

    // The operator knows the equipment; a text that says another one is remarked on.
    void TakeEquipment(std::uint8_t& stated) {
        if (m_equipment == 0 || stated == m_equipment) return;
        if (stated != 0 && !std::exchange(m_hasRemarked, true))
            m_conversion.notes.Say(ELevel::warning, EText::decodedEquipment,
                                   {std::to_string(stated), std::to_string(m_equipment)});
        stated = static_cast<std::uint8_t>(m_equipment);
    }

    SConversion& m_conversion;
    double m_cycle;  // seconds
    int m_equipment; // code; 0: as the text says
    bool m_isImuLate, m_hasRemarked = false;
    std::optional<Ticks> m_day;
    std::vector<STaggedChannel> m_tags;
    const STaggedChannel* m_lastTag = nullptr;
    std::array<std::uint8_t, kLargestFrame> m_payload{};
};

} // namespace

std::span<const STagRow> GetTags() { return kTags; }

bool ReadDecodedText(SConversion& conversion) { return CDecodedReader(conversion).Read(); }

} // namespace Conversion
