// External data text: a heading, a line of column titles, one line a record. The packet layouts say which
// columns there may be.
#include "convert/column.h"
#include "convert/packet_values.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace Conversion {
namespace {

using namespace Persistance_Xpf;
using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Enregistrement::SPlace;

struct SDefault {
    SPlace place;
    double value;
};

struct SExternalKind {
    std::string_view heading;
    const SPacketLayout& layout;
    std::span<const std::string_view> channels;
    std::span<const std::string_view> needed; // columns without which there is no measurement
    std::span<const SDefault> defaults;       // others than 0
};

constexpr std::string_view kRangeChannels[] = {"LBL"}, kBeaconChannels[] = {"USBL_1", "USBL_2", "USBL_3"},
                           kPlatformChannels[] = {"PLATFORM_ORIENT"}, kOdometerChannels[] = {"ODOMETER"},
                           kDepthChannels[] = {"DEPTH"};
constexpr std::string_view kRangeNeeds[] = {"Latitude", "Longitude", "Altitude", "Range"},
                           kBeaconNeeds[] = {"Latitude", "Longitude"},
                           kPlatformNeeds[] = {"Drift (heading)", "Roll", "Pitch"},
                           kOdometerNeeds[] = {"Measure"}, kDepthNeeds[] = {"Depth"};

constexpr SDefault kRangeDefaults[] = {{PlaceOf(kLblLayout, "Rejection"), kAuto}},
                   kBeaconDefaults[] = {{PlaceOf(kUsblLayout, "Horizontal rejection"), kAuto},
                                        {PlaceOf(kUsblLayout, "Vertical rejection"), kAuto},
                                        {PlaceOf(kUsblLayout, "Mode"), kAbsolute}},
                   kOdometerDefaults[] = {{PlaceOf(kOdometerLayout, "Rejection"), kAuto}},
                   kDepthDefaults[] = {{PlaceOf(kDepthLayout, "Rejection"), kAuto}};

constexpr SExternalKind kRange{"RANGE TO VARNE NAV EXTERNAL DATA", kLblLayout, kRangeChannels, kRangeNeeds,
                               kRangeDefaults};
constexpr SExternalKind kBeacon{"USBL TO VARNE NAV EXTERNAL DATA", kUsblLayout, kBeaconChannels, kBeaconNeeds,
                                kBeaconDefaults};
constexpr SExternalKind kPlatform{"PLATFORM ORIENTATION TO VARNE NAV EXTERNAL DATA",
                                  kPlatformOrientationLayout,
                                  kPlatformChannels,
                                  kPlatformNeeds,
                                  {}};
constexpr SExternalKind kOdometer{"ODOMETER TO VARNE NAV EXTERNAL DATA", kOdometerLayout, kOdometerChannels,
                                  kOdometerNeeds, kOdometerDefaults};
constexpr SExternalKind kDepth{"DEPTH TO VARNE NAV EXTERNAL DATA", kDepthLayout, kDepthChannels, kDepthNeeds,
                               kDepthDefaults};

class CExternalReader {
  public:
    CExternalReader(SConversion& conversion, const SExternalKind& kind)
        : m_conversion(conversion), m_kind(kind), m_lines(conversion.source) {
        m_default.Reset(kind.layout.payloadSize);
        for (const SDefault& value : kind.defaults) m_default.Put(value.place, value.value);
    }

    bool Read() {
        std::string_view line;
        if (!m_lines.Next(line) || !Trim(line).starts_with(m_kind.heading))
            return Refuse(EText::externalHeading, {m_kind.heading});
        while (!m_conversion.IsDone() && m_lines.Next(line)) {
            if (line.starts_with('#'))
                TakeComment(line.substr(1));
            else if (Trim(line).empty())
                continue;
            else if (!m_columns.empty())
                TakeRecord(line);
            else if (!TakeTitles(line))
                return false;
        }
        return true;
    }

  private:
    bool Refuse(EText text, std::initializer_list<std::string_view> arguments) {
        m_conversion.notes.Say(ELevel::error, text, arguments);
        return false;
    }
    void Fault(EText kind) {
        if (!m_lines.IsUnfinished()) m_conversion.faults.Add(kind, m_lines.GetNumber());
    }

    // "utc 2026-03-01T00:00:00": what dates in seconds count from.
    void TakeComment(std::string_view text) {
        text = Trim(text);
        if (!text.starts_with("utc ")) return;
        m_origin = ParseDate(text.substr(4));
        if (!m_origin) Fault(EText::faultDate);
    }

    bool TakeTitles(std::string_view line) {
        m_separator = line.find('\t') != std::string_view::npos ? '\t' : ';';
        const CFields titles = CFields::Split(line, m_separator);
        for (std::size_t i = 0; i < titles.GetCount(); ++i) {
            const auto column = MakeColumn(m_kind.layout, titles[i]);
            if (!column) return Refuse(EText::externalUnit, {Trim(titles[i])});
            if (!column->field && !Trim(titles[i]).empty())
                m_conversion.notes.Say(ELevel::warning, EText::externalColumn, {Trim(titles[i])});
            if (column->field && column->field->type == EFieldType::date) m_dateColumn = i;
            if (column->field && column->field->name == "Beacon") m_beaconColumn = i;
            m_columns.push_back(*column);
        }
        const auto has = [&](std::string_view name) {
            return std::ranges::any_of(
                m_columns, [&](const SColumn& column) { return column.field && column.field->name == name; });
        };
        if (!has("Date")) return Refuse(EText::externalMissing, {"Date"});
        for (const std::string_view name : m_kind.needed)
            if (!has(name)) return Refuse(EText::externalMissing, {name});
        return true;
    }

    std::optional<Ticks> ParseRecordDate(std::string_view text) {
        if (const auto date = ParseDate(text)) return date;
        constexpr double kMostSeconds = 1e10;
        const auto seconds = ParseNumberOrComma(text);
        if (!seconds || std::abs(*seconds) > kMostSeconds) return std::nullopt;
        if (!m_origin) m_conversion.notes.Say(ELevel::error, EText::externalSeconds);
        if (!m_origin) return std::nullopt;
        return *m_origin + std::llround(*seconds * kTicksPerSecond);
    }

    void TakeRecord(std::string_view line) {
        const CFields fields = CFields::Split(line, m_separator);
        // A line that was cut may have lost digits of its last value.
        if (m_lines.IsUnfinished() && fields.GetCount() < m_columns.size()) return;
        if (fields.GetCount() < m_columns.size()) return Fault(EText::faultColumns);
        const auto date = ParseRecordDate(fields[m_dateColumn]);
        if (!date) return Fault(EText::faultDate);
        CPayload payload = m_default;
        double beacon = 0;
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const SColumn& column = m_columns[i];
            if (i == m_dateColumn || !column.field) continue;
            const std::string_view text = Trim(fields[i]);
            const auto value = text.empty() ? std::nullopt : ParseNumberOrComma(text);
            if (text.empty() && std::ranges::find(m_kind.needed, column.field->name) == m_kind.needed.end())
                continue;
            if (!value) return Fault(EText::faultNumber);
            if (!Holds(*column.field, *value * column.factor)) return Fault(EText::faultRange);
            payload.Put(column.place, *value * column.factor);
            if (i == m_beaconColumn) beacon = *value;
        }
        const auto channel = FindChannel(beacon);
        if (!channel) return Fault(EText::faultNoChannel);
        m_conversion.sink.Add(*channel, *date, payload.Get(), m_lines.GetNumber());
    }

    // Beacons 1 to 3 have their channels; any other takes the first that no other has taken.
    std::optional<std::uint16_t> FindChannel(double beacon) {
        const std::size_t count = m_kind.channels.size();
        if (count == 1) return m_rows[0];
        if (beacon >= 1 && beacon <= static_cast<double>(count)) {
            const auto own = static_cast<std::size_t>(beacon) - 1;
            if (m_beacons[own] == kNoBeacon) m_beacons[own] = beacon;
            return m_rows[own];
        }
        for (std::size_t i = 0; i < count; ++i) {
            if (m_beacons[i] == kNoBeacon) m_beacons[i] = beacon;
            if (m_beacons[i] == beacon) return m_rows[i];
        }
        return std::nullopt;
    }

    SConversion& m_conversion;
    const SExternalKind& m_kind;
    CLineReader m_lines;
    CPayload m_default;
    char m_separator = ';';
    std::vector<SColumn> m_columns; // empty before the titles
    std::size_t m_dateColumn = 0, m_beaconColumn = SIZE_MAX;
    std::optional<Ticks> m_origin;
    static constexpr double kNoBeacon = -1;
    std::array<double, 3> m_beacons{kNoBeacon, kNoBeacon, kNoBeacon}; // that have taken the channels
    const std::array<std::uint16_t, 3> m_rows{GetChannelRow(m_kind.channels.front()),
                                              GetChannelRow(m_kind.channels[m_kind.channels.size() / 2]),
                                              GetChannelRow(m_kind.channels.back())};
};

} // namespace

bool ReadRanges(SConversion& conversion) { return CExternalReader(conversion, kRange).Read(); }
bool ReadExternalBeacons(SConversion& conversion) { return CExternalReader(conversion, kBeacon).Read(); }
bool ReadPlatform(SConversion& conversion) { return CExternalReader(conversion, kPlatform).Read(); }
bool ReadOdometer(SConversion& conversion) { return CExternalReader(conversion, kOdometer).Read(); }
bool ReadDepth(SConversion& conversion) { return CExternalReader(conversion, kDepth).Read(); }

} // namespace Conversion
