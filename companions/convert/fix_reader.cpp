// Post-processed GPS text of several programs: a header that names the columns, then one line a position.
#include "convert/fix_columns.h"
#include "convert/packet_values.h"
#include "convert/position_error.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace Conversion {
namespace {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Persistance_Xpf::kGpsLayout;
using enum EFixColumn;

// "GPS mode" by the quality figure of the programs, from 1 on; 0 and figures beyond count as single.
constexpr std::array kGradedModes{gpsFixed, gpsFloat, gpsConverging, gpsDifferential, gpsSingle, gpsSingle};
constexpr std::array kSolutionModes{gpsFixed,        gpsFloat,  gpsDifferential,
                                    gpsDifferential, gpsSingle, gpsFloat};

// How one of the kinds is recognised and read.
struct STextKind {
    std::string_view heading;
    std::span<const EGpsMode> modes;
    char comment;         // begins the lines of the header and of the titles; 0 for none
    bool hasFixedColumns; // there are no titles
};
constexpr STextKind kTextKinds[] = {
    {"% program", kSolutionModes, '%', false},
    {"Program:", kGradedModes, 0, false},
    {"GRAFNAV TO VARNE NAV POST-PROCESSED GPS DATA", kGradedModes, '#', true},
};

// Date, degrees, ellipsoidal height and standard deviations, m.
SFixLayout MakeFixedLayout() {
    SFixLayout layout;
    for (const EFixColumn column :
         {utcStamp, latitude, longitude, heightEllipsoid, deviationNorth, deviationEast, deviationUp})
        layout.columns.push_back({column, 1, 1.0});
    layout.wordsOfAngles = 1;
    return layout;
}

class CFixReader {
  public:
    explicit CFixReader(SConversion& conversion) : m_conversion(conversion), m_lines(conversion.source) {}

    bool Read() {
        for (std::string_view line; !m_conversion.IsDone() && m_lines.Next(line);) {
            if (!m_kind) {
                FindKind(line);
                continue;
            }
            if (Trim(line).empty()) continue;
            const char first = Trim(line).front();
            const bool isData = IsDigit(first) || first == '-' || first == '+';
            if (!m_hasLayout || !isData)
                TakeHeader(line);
            else
                TakeLine(line);
        }
        if (!m_short.empty() && !m_conversion.IsDone()) TakeWords(Split(m_short), m_shortLine);
        if (!m_kind || !m_hasLayout) {
            m_conversion.notes.Say(ELevel::error, EText::fixNoColumns);
            return false;
        }
        return true;
    }

  private:
    void Fault(EText kind, std::uint64_t line) {
        if (!m_lines.IsUnfinished()) m_conversion.faults.Add(kind, line);
    }

    void FindKind(std::string_view line) {
        for (const STextKind& kind : kTextKinds)
            if (line.starts_with(kind.heading)) m_kind = &kind;
        if (!m_kind || !m_kind->hasFixedColumns) return;
        m_layout = MakeFixedLayout();
        m_hasLayout = true;
    }

    void TakeHeader(std::string_view line) {
        constexpr std::string_view kOffset = "UTC Offset:";
        if (line.starts_with(kOffset)) {
            const CFields words = CFields::SplitWords(line.substr(kOffset.size()));
            if (const auto seconds = ParseNumber(words[0])) m_offset = *seconds;
        }
        if (m_kind->hasFixedColumns) {
            if (m_hasData && !line.starts_with('#')) Fault(EText::faultColumns, m_lines.GetNumber());
            return;
        }
        if (m_hasLayout && m_awaitsUnits) AddUnits(m_layout, m_titles, line);
        m_awaitsUnits = false;
        if (m_kind->comment != 0 && !line.starts_with(m_kind->comment)) return;
        // The list of columns in the header explains each on a line of its own.
        const auto layout = MakeFixLayout(line);
        if (!layout && m_hasData) Fault(EText::faultColumns, m_lines.GetNumber());
        if (!layout) return;
        m_layout = *layout;
        m_titles = line;
        m_hasLayout = m_awaitsUnits = true;
    }

    void TakeLine(std::string_view line) {
        m_awaitsUnits = false;
        m_hasData = true;
        if (!m_short.empty()) {
            Fault(EText::faultColumns, m_shortLine);
            m_short.clear();
        }
        const CFields words = Split(line);
        if (m_kind->hasFixedColumns)
            m_layout.columns[0].words = words[1].find(':') == std::string_view::npos ? 1 : 2;
        if (!FitAngles(m_layout, words.GetCount()) || words.GetCount() > m_layout.CountWords())
            return Fault(EText::faultColumns, m_lines.GetNumber());
        if (words.GetCount() < m_layout.CountWords()) {
            // Only the last line of a text may be short: there it was cut.
            m_short = line;
            m_shortLine = m_lines.GetNumber();
            return;
        }
        TakeWords(words, m_lines.GetNumber());
    }

    CFields Split(std::string_view line) {
        // A comma may also be the decimal sign: it separates only where blanks and tabs do not.
        if (m_kind->hasFixedColumns && !m_hasSeparator) {
            m_hasSeparator = true;
            for (const char separator : {',', ';'})
                if (CFields::SplitWords(line).GetCount() < m_layout.columns.size() &&
                    line.find(separator) != std::string_view::npos)
                    m_layout.separator = separator;
        }
        return CFields::SplitWords(line, m_layout.separator);
    }

    std::optional<double> ParseValue(std::string_view word) const {
        return m_layout.separator == ',' ? ParseNumber(word) : ParseNumberOrComma(word);
    }

    // Degrees in one to three words. The first word has the sign, also as "-0".
    std::optional<double> ParseAngle(const CFields& words, std::size_t first, unsigned count,
                                     double most) const {
        double angle = 0, unit = 1;
        for (unsigned i = 0; i < count; ++i, unit *= 60) {
            const auto value = ParseValue(words[first + i]);
            if (!value || (i > 0 && (*value < 0 || *value >= 60))) return std::nullopt;
            angle += std::abs(*value) / unit;
        }
        if (angle > most) return std::nullopt;
        return words[first].starts_with('-') ? -angle : angle;
    }

    // The values of a line: NaN for columns that it does not have.
    struct SFix {
        std::array<double, kFixColumnCount> values;
        std::optional<Ticks> day, time; // time of the day
        std::optional<Ticks> timeOfWeek;
        bool isGps = false;

        double operator[](EFixColumn column) const { return values[static_cast<std::size_t>(column)]; }
        double& operator[](EFixColumn column) { return values[static_cast<std::size_t>(column)]; }
        double Get(EFixColumn column, double otherwise) const {
            const double value = (*this)[column];
            return std::isnan(value) ? otherwise : value;
        }
    };

    // False for words that are no value of their column.
    bool TakeValue(SFix& fix, const SFixColumn& column, const CFields& words, std::size_t first) const {
        const std::string_view word = words[first];
        switch (column.column) {
        case ignored: return true;
        case date: return (fix.day = ParseDay(word, m_layout.dayOrder)).has_value();
        case utcStamp:
        case gpsStamp: return TakeStamp(fix, column, word, words[first + 1]);
        case gpsTime:
        case utcTime: fix.isGps = column.column == gpsTime; return TakeTime(fix, word);
        case latitude:
        case longitude: {
            const auto angle =
                ParseAngle(words, first, column.words, column.column == latitude ? 90.0 : 360.0);
            if (angle) fix[column.column] = *angle;
            return angle.has_value();
        }
        default:
            const auto value = ParseValue(word);
            if (value) fix[column.column] = *value * column.factor;
            return value.has_value();
        }
    }

    bool TakeTime(SFix& fix, std::string_view word) const {
        if (word.find(':') != std::string_view::npos) return (fix.time = ParseTime(word)).has_value();
        const auto seconds = ParseValue(word);
        if (!seconds || *seconds < 0 || *seconds > 7 * 86400.0) return false;
        fix.timeOfWeek = std::llround(*seconds * kTicksPerSecond);
        return true;
    }

    bool TakeStamp(SFix& fix, const SFixColumn& column, std::string_view word, std::string_view next) const {
        fix.isGps = column.column == gpsStamp;
        if (column.words == 1) {
            const auto stamp = ParseDate(word, m_layout.dayOrder);
            if (!stamp) return false;
            fix.day = *stamp / kTicksPerDay * kTicksPerDay;
            fix.time = *stamp % kTicksPerDay;
            return true;
        }
        fix.day = ParseDay(word, m_layout.dayOrder);
        if (fix.day) return (fix.time = ParseTime(next)).has_value();
        const auto number = ParseInteger<int>(word);
        if (number) fix[week] = *number;
        return number && TakeTime(fix, next) && fix.timeOfWeek;
    }

    std::optional<Ticks> MakeUtc(const SFix& fix) {
        std::optional<Ticks> tick;
        if (fix.day && (fix.time || fix.timeOfWeek))
            tick = *fix.day + (fix.time ? *fix.time : *fix.timeOfWeek % kTicksPerDay);
        else if (!std::isnan(fix[week]) && fix.timeOfWeek && std::abs(fix[week]) < 1e5)
            tick = MakeGpsTime(static_cast<std::int64_t>(fix[week]), *fix.timeOfWeek);
        if (!tick || !fix.isGps) return tick;
        const double leap = m_offset.value_or(GetLeapSeconds(*tick));
        if (std::exchange(m_leap, leap) != leap)
            m_conversion.notes.Say(ELevel::information, EText::fixLeapSeconds,
                                   {std::to_string(std::lround(leap))});
        return *tick - std::llround(leap * kTicksPerSecond);
    }

    void TakeWords(const CFields& words, std::uint64_t number) {
        SFix fix;
        fix.values.fill(std::nan(""));
        std::size_t first = 0;
        for (const SFixColumn& column : m_layout.columns) {
            if (first + column.words > words.GetCount()) break;
            if (!TakeValue(fix, column, words, first))
                return Fault(column.column <= gpsStamp ? EText::faultDate : EText::faultNumber, number);
            first += column.words;
        }
        const bool hasHeight = !std::isnan(fix[heightEllipsoid]) || !std::isnan(fix[heightSea]);
        if (std::isnan(fix[latitude]) || std::isnan(fix[longitude]) || !hasHeight)
            return Fault(EText::faultColumns, number);
        const auto utc = MakeUtc(fix);
        if (!utc) return Fault(EText::faultDate, number);
        m_conversion.sink.Add(m_channel, *utc, MakePayload(fix).Get(), number);
    }

    // "GPS mode", by the quality where there is one, else by the deviations.
    EGpsMode GetMode(const SFix& fix) const {
        const double figure = fix.Get(quality, 0), deviation = fix.Get(deviationNorth, 1);
        if (std::isnan(fix[quality]))
            return deviation < 0.1 ? gpsFixed : deviation < 1 ? gpsFloat : gpsDifferential;
        const bool known = figure >= 1 && figure <= static_cast<double>(m_kind->modes.size());
        return known ? m_kind->modes[static_cast<std::size_t>(figure) - 1] : gpsSingle;
    }

    CPayload MakePayload(const SFix& fix) {
        constexpr double kGreatest = 1e6; // m: no height or deviation is beyond
        const EGpsMode mode = GetMode(fix);
        const SPositionError assumed = GetAssumedError(mode);
        const bool assumes = std::isnan(fix[deviationNorth]) || std::isnan(fix[deviationEast]);
        if (assumes && !std::exchange(m_hasAssumed, true))
            m_conversion.notes.Say(ELevel::warning, EText::fixAssumedErrors);
        // The height above the sea and the geoid where they are given, as a receiver states them.
        const double ellipsoid = fix.Get(heightEllipsoid, 0);
        const double separation = fix.Get(
            undulation,
            std::isnan(fix[heightSea]) || std::isnan(fix[heightEllipsoid]) ? 0 : ellipsoid - fix[heightSea]);
        const double altitude = fix.Get(heightSea, ellipsoid - separation);
        const double root = fix.Get(signedRootCovariance, 0);

        CPayload payload;
        payload.Reset(kGpsLayout.payloadSize);
        const auto put = [&](Enregistrement::SPlace place, double value) {
            payload.Put(place, std::clamp(value, -kGreatest, kGreatest));
        };
        put(PlaceOf(kGpsLayout, "Horizontal rejection"), kAuto);
        put(PlaceOf(kGpsLayout, "Vertical rejection"), kAuto);
        put(PlaceOf(kGpsLayout, "GPS mode"), mode);
        put(PlaceOf(kGpsLayout, "Latitude"), fix[latitude]);
        put(PlaceOf(kGpsLayout, "Longitude"), std::remainder(fix[longitude], 360));
        put(PlaceOf(kGpsLayout, "Altitude"), altitude);
        put(PlaceOf(kGpsLayout, "Std. dev. north"), fix.Get(deviationNorth, assumed.horizontal));
        put(PlaceOf(kGpsLayout, "Std. dev. east"), fix.Get(deviationEast, assumed.horizontal));
        put(PlaceOf(kGpsLayout, "Std. dev. altitude"), fix.Get(deviationUp, assumed.vertical));
        put(PlaceOf(kGpsLayout, "Covariance XY"), std::copysign(root * root, root));
        put(PlaceOf(kGpsLayout, "Geoidal sep"), separation);
        return payload;
    }

    SConversion& m_conversion;
    CLineReader m_lines;
    const std::uint16_t m_channel = GetChannelRow("GPS_1");
    const STextKind* m_kind = nullptr;
    SFixLayout m_layout;
    bool m_hasLayout = false, m_awaitsUnits = false, m_hasSeparator = false;
    std::string m_titles;
    std::string m_short; // a line that lacks words, and may be the last
    std::uint64_t m_shortLine = 0;
    double m_leap = -1; // seconds, said last
    bool m_hasAssumed = false, m_hasData = false;
    std::optional<double> m_offset; // seconds from UTC to GPS time, when the header states them
};

} // namespace

bool ReadPostProcessed(SConversion& conversion) { return CFixReader(conversion).Read(); }

} // namespace Conversion
