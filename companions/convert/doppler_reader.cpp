// PD6: the text lines of a Doppler log.
#include "convert/packet_values.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <bitset>

namespace Conversion {
namespace {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Persistance_Xpf::kDvlLayout;

constexpr double kNoValue = -32768;
constexpr double kMetresPerMillimetre = 1e-3;

using Velocity = std::array<double, 3>; // m/s along the axes of the packets: forward, to port, up

// One of the two tracks, over the bottom or through the water.
struct STrack {
    std::optional<Velocity> instrument, ship;
    bool isBad = false; // stated, without a value
    double range = 0;   // m
    std::uint64_t line = 0;
};

// The measurements of one date.
struct SEnsemble {
    std::optional<Ticks> date;
    double soundVelocity = 0; // m/s
    STrack bottom, water;
    std::bitset<16> seen; // which tags have come
};

// "YYMMDDhhmmsscc", hundredths of a second at the end.
std::optional<Ticks> ParseStamp(std::string_view text) {
    text = Trim(text);
    const auto day = text.size() == 14 ? ParseInteger<int>(text.substr(0, 6)) : std::nullopt;
    if (!day || *day < 0) return std::nullopt;
    const auto number = MakeDay(2000 + *day / 10000, *day / 100 % 100, *day % 100);
    const auto time = ParseCompactTime(text.substr(6, 6));
    const auto hundredths = ParseInteger<int>(text.substr(12, 2));
    if (!number || !time || !hundredths || *hundredths < 0) return std::nullopt;
    return *number * kTicksPerDay + *time + *hundredths * (kTicksPerSecond / 100);
}

class CDopplerReader {
  public:
    explicit CDopplerReader(SConversion& conversion) : m_conversion(conversion), m_lines(conversion.source) {}

    bool Read() {
        for (std::string_view line; !m_conversion.IsDone() && m_lines.Next(line);) {
            // A logger may have put something before it.
            const std::size_t colon = line.find(':');
            for (std::size_t i = colon; i != std::string_view::npos; i = line.find(':', i + 1))
                if (line.size() > i + 4 && line[i + 3] == ',' &&
                    Take(line.substr(i + 1, 2), line.substr(i + 4)))
                    break;
        }
        Close();
        return true;
    }

  private:
    void Fault(EText kind) {
        if (!m_lines.IsUnfinished()) m_conversion.faults.Add(kind, m_lines.GetNumber());
    }

    // False for a tag that no line has.
    bool Take(std::string_view tag, std::string_view text) {
        struct SRow {
            std::string_view tag;
            void (CDopplerReader::*take)(const CFields& fields, STrack& track);
            STrack SEnsemble::*track;
        };
        constexpr SRow kRows[] = {
            {"SA", nullptr, nullptr},
            {"TS", &CDopplerReader::TakeStamp, &SEnsemble::bottom},
            {"WI", &CDopplerReader::TakeInstrument, &SEnsemble::water},
            {"WS", &CDopplerReader::TakeShip, &SEnsemble::water},
            {"WE", nullptr, nullptr},
            {"WD", nullptr, nullptr},
            {"BI", &CDopplerReader::TakeInstrument, &SEnsemble::bottom},
            {"BS", &CDopplerReader::TakeShip, &SEnsemble::bottom},
            {"BE", nullptr, nullptr},
            {"BD", &CDopplerReader::TakeDistance, &SEnsemble::bottom},
            {"UT", nullptr, nullptr},
        };
        const auto* row = std::ranges::find(kRows, tag, &SRow::tag);
        if (row == std::end(kRows)) return false;
        // The lines of an ensemble come in one order and once each: a second one begins the next.
        const auto place = static_cast<std::size_t>(row - kRows);
        const bool begins = tag == "SA" || (tag == "TS" && m_ensemble.date);
        if (begins || m_ensemble.seen.test(place)) Close();
        m_ensemble.seen.set(place);
        if (row->take) (this->*row->take)(CFields::Split(text, ','), m_ensemble.*row->track);
        return true;
    }

    void TakeStamp(const CFields& fields, STrack&) {
        m_ensemble.date = ParseStamp(fields[0]);
        if (!m_ensemble.date) return Fault(EText::faultDate);
        m_ensemble.soundVelocity = ParseNumber(fields[4]).value_or(0);
    }

    // Three speeds and, last, the status; empty when one of them is no value.
    std::optional<Velocity> MakeVelocity(const CFields& fields, std::size_t status, STrack& track) {
        track.line = m_lines.GetNumber();
        Velocity velocity{};
        const bool isCut = fields.GetCount() <= status;
        for (std::size_t i = 0; i < 3; ++i) {
            const auto value = ParseNumber(fields[i]);
            if (!value || isCut) {
                Fault(EText::faultNumber);
                return std::nullopt;
            }
            if (*value == kNoValue || !Trim(fields[status]).starts_with('A')) {
                track.isBad = true;
                return std::nullopt;
            }
            velocity[i] = *value * kMetresPerMillimetre;
        }
        return velocity;
    }

    void TakeInstrument(const CFields& fields, STrack& track) {
        constexpr std::size_t kStatus = 4; // after the error speed
        track.instrument = MakeVelocity(fields, kStatus, track);
    }

    // To starboard, forward, up.
    void TakeShip(const CFields& fields, STrack& track) {
        constexpr std::size_t kStatus = 3;
        const auto velocity = MakeVelocity(fields, kStatus, track);
        if (velocity) track.ship = Velocity{(*velocity)[1], -(*velocity)[0], (*velocity)[2]};
    }

    void TakeDistance(const CFields& fields, STrack& track) {
        track.range = ParseNumber(fields[3]).value_or(0);
    }

    void Close() {
        const SEnsemble ensemble = std::exchange(m_ensemble, SEnsemble());
        for (const auto& [track, channel] :
             {std::pair(&ensemble.bottom, m_bottom), std::pair(&ensemble.water, m_water)}) {
            const bool usesShip = !track->instrument && track->ship && m_instrumentSeen != true;
            m_instrumentSeen = m_instrumentSeen || track->instrument.has_value();
            const auto& velocity = usesShip ? track->ship : track->instrument;
            if (track->line == 0) continue;
            if (!velocity) {
                if (track->isBad) m_conversion.faults.Add(EText::faultInvalid, track->line);
                continue;
            }
            if (usesShip) m_conversion.notes.Say(ELevel::warning, EText::dopplerShipFrame);
            if (!ensemble.date)
                m_conversion.faults.Add(EText::faultUndated, track->line);
            else
                Write(channel, ensemble, *track, *velocity);
        }
    }

    void Write(std::uint16_t channel, const SEnsemble& ensemble, const STrack& track,
               const Velocity& velocity) {
        CPayload payload;
        payload.Reset(kDvlLayout.payloadSize);
        payload.Put(PlaceOf(kDvlLayout, "Rejection"), kAuto);
        payload.Put(PlaceOf(kDvlLayout, "Speed X"), velocity[0]);
        payload.Put(PlaceOf(kDvlLayout, "Speed Y"), velocity[1]);
        payload.Put(PlaceOf(kDvlLayout, "Speed Z"), velocity[2]);
        payload.Put(PlaceOf(kDvlLayout, "Sound velocity (sensor)"), ensemble.soundVelocity);
        payload.Put(PlaceOf(kDvlLayout, "Altitude"), track.range);
        m_conversion.sink.Add(channel, *ensemble.date, payload.Get(), track.line);
    }

    SConversion& m_conversion;
    CLineReader m_lines;
    SEnsemble m_ensemble;
    bool m_instrumentSeen = false; // the log gives its own axes
    const std::uint16_t m_bottom = GetChannelRow("DVL_BT"), m_water = GetChannelRow("DVL_WT");
};

} // namespace

bool ReadDopplerLog(SConversion& conversion) { return CDopplerReader(conversion).Read(); }

} // namespace Conversion
