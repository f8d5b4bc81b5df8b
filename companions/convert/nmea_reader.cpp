// NMEA 0183: positions (GGA, GNS) with their errors (GST) and dates (ZDA, RMC).
#include "convert/nmea_clock.h"
#include "convert/nmea_sentence.h"
#include "convert/packet_values.h"
#include "convert/position_error.h"
#include "convert/readers.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace Conversion {
namespace {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Persistance_Xpf::kGpsLayout;

using Talker = std::array<char, 2>;

struct SPosition {
    Talker talker{};
    std::uint64_t line = 0;
    int mode = gpsNone;
    double latitude = 0, longitude = 0, dilution = 0; // degrees; 0: not stated
    std::optional<double> altitude, separation;       // metres
};

struct SDeviations {
    Talker talker{};
    double north = 0, east = 0, covariance = 0; // metres
    std::optional<double> up;
};

// As many as the receivers of one log; what comes beyond is left out.
template <class T>
class TFew {
  public:
    bool Add(const T& value) {
        if (m_count == m_values.size()) return false;
        m_values[m_count++] = value;
        return true;
    }
    void Clear() { m_count = 0; }
    std::span<const T> Get() const { return {m_values.data(), m_count}; }

  private:
    std::array<T, 4> m_values{};
    std::size_t m_count = 0;
};

// What the sentences of one time of day state.
struct SEpoch {
    Ticks timeOfDay = 0, tick = 0; // the tick as the clock places it
    TFew<SPosition> gga, gns;
    TFew<SDeviations> gst;

    void Clear() {
        gga.Clear();
        gns.Clear();
        gst.Clear();
    }
};

struct SEarlyFix {
    Ticks tick;
    std::uint64_t line;
    CPayload payload;
};

// "GPS mode" by the letters of GNS, one for each satellite system: the best counts.
int GetMode(std::string_view letters) {
    constexpr std::pair<char, int> kBestFirst[] = {
        {'R', gpsFixed},  {'F', gpsFloat},     {'P', gpsPrecise}, {'D', gpsDifferential},
        {'A', gpsSingle}, {'E', gpsEstimated}, {'M', gpsManual},  {'S', gpsSimulated}};
    for (const auto& [letter, mode] : kBestFirst)
        if (letters.find(letter) != std::string_view::npos) return mode;
    return gpsNone;
}

// Rows of the error ellipse and of the deviations north and east; empty when neither is stated.
std::optional<SDeviations> MakeDeviations(const CFields& fields) {
    constexpr double kRadiansPerDegree = std::numbers::pi / 180;
    const auto major = ParseNumber(fields[2]), minor = ParseNumber(fields[3]), turn = ParseNumber(fields[4]);
    const auto north = ParseNumber(fields[5]), east = ParseNumber(fields[6]);
    SDeviations deviations;
    const bool hasEllipse = major && minor && turn && *major > 0;
    if (hasEllipse) {
        const double c = std::cos(*turn * kRadiansPerDegree), s = std::sin(*turn * kRadiansPerDegree);
        const double a = *major * *major, b = *minor * *minor;
        deviations.north = std::sqrt(a * c * c + b * s * s);
        deviations.east = std::sqrt(a * s * s + b * c * c);
        deviations.covariance = (a - b) * s * c;
    }
    if (north && east && *north > 0 && *east > 0) {
        deviations.north = *north;
        deviations.east = *east;
    } else if (!hasEllipse) {
        return std::nullopt;
    }
    deviations.up = ParseNumber(fields[7]);
    if (deviations.up && *deviations.up <= 0) deviations.up.reset();
    return deviations;
}

class CNmeaReader {
  public:
    explicit CNmeaReader(SConversion& conversion)
        : m_conversion(conversion),
          m_lines(conversion.source),
          m_verifies(conversion.arguments.GetWord("/verifyChecksum", 0) == 0) {}

    bool Read() {
        for (std::string_view line; !m_conversion.IsDone() && m_lines.Next(line);)
            for (SSentence sentence; TakeSentence(line, sentence);)
                if (!sentence.GetKind().empty()) Take(sentence);
        while (m_openCount > 0 && !m_conversion.IsDone()) CloseFirst();
        if (!m_clock.IsDated() && !m_early.empty()) {
            for (const SEarlyFix& fix : m_early) m_conversion.faults.Add(EText::faultUndated, fix.line);
            m_conversion.notes.Say(ELevel::error, EText::nmeaUndated);
        }
        if (m_clock.HasMovedEra())
            m_conversion.notes.Say(ELevel::warning, EText::nmeaMovedEra);
        else if (m_clock.IsDated())
            RemarkOnOldDate();
        return true;
    }

  private:
    static constexpr std::size_t kMostOpen = 3; // epochs: errors may come after the next position
    static constexpr std::size_t kMostEarly = 1 << 14;

    void Fault(EText kind) {
        if (!m_lines.IsUnfinished()) m_conversion.faults.Add(kind, m_lines.GetNumber());
    }

    // Once these sentences have check sums, one without is cut.
    bool IsTrusted(const SSentence& sentence) {
        m_hasSums = m_hasSums || sentence.sum == ECheckSum::right;
        if (!m_verifies || sentence.sum == ECheckSum::right || !m_hasSums) return true;
        Fault(EText::faultNoCheckSum);
        return false;
    }

    void Take(const SSentence& sentence) {
        struct SRow {
            std::string_view kind;
            void (CNmeaReader::*take)(const SSentence&, const CFields&, Ticks);
        };
        constexpr SRow kRows[] = {{"GGA", &CNmeaReader::TakeGga},
                                  {"GNS", &CNmeaReader::TakeGns},
                                  {"GST", &CNmeaReader::TakeGst},
                                  {"ZDA", &CNmeaReader::TakeZda},
                                  {"RMC", &CNmeaReader::TakeRmc}};
        const auto* row = std::ranges::find(kRows, sentence.GetKind(), &SRow::kind);
        // The damage may be in the name of the sentence.
        if (m_verifies && sentence.sum == ECheckSum::wrong) return Fault(EText::faultCheckSum);
        if (row == std::end(kRows) || !IsTrusted(sentence)) return;
        const CFields fields = CFields::Split(sentence.body, ',');
        if (fields[0].empty()) return; // a receiver that does not know the time yet
        const auto time = ParseCompactTime(fields[0]);
        if (!time) return Fault(EText::faultDate);
        (this->*row->take)(sentence, fields, *time);
    }

    SEpoch& Open(Ticks timeOfDay) {
        constexpr Ticks kSame = kTicksPerSecond / 1000; // receivers state two or three decimals
        for (std::size_t i = 0; i < m_openCount; ++i)
            if (std::abs(GetOpen(i).timeOfDay - timeOfDay) < kSame) return GetOpen(i);
        if (m_openCount == kMostOpen) CloseFirst();
        SEpoch& epoch = GetOpen(m_openCount++);
        epoch.Clear();
        epoch.timeOfDay = timeOfDay;
        epoch.tick = m_clock.Place(timeOfDay);
        return epoch;
    }
    // The epochs that are open, the oldest first.
    SEpoch& GetOpen(std::size_t index) { return m_open[(m_firstOpen + index) % kMostOpen]; }

    // What GGA and GNS have in common. `first`: the place of the dilution, after which altitude and
    // separation follow.
    std::optional<SPosition> MakePosition(const SSentence& sentence, const CFields& fields, int mode) {
        if (mode == gpsNone || (fields[1].empty() && fields[3].empty())) {
            Fault(EText::faultNoFix);
            return std::nullopt;
        }
        const auto latitude = ParseDegreesMinutes(fields[1], fields[2], 90);
        const auto longitude = ParseDegreesMinutes(fields[3], fields[4], 180);
        if (!latitude || !longitude) {
            Fault(EText::faultNumber);
            return std::nullopt;
        }
        SPosition position;
        position.talker = {sentence.address[0], sentence.address[1]};
        position.line = m_lines.GetNumber();
        position.mode = mode;
        position.latitude = *latitude;
        position.longitude = *longitude;
        position.dilution = ParseNumber(fields[7]).value_or(0);
        position.altitude = ParseNumber(fields[8]);
        return position;
    }

    void TakeGga(const SSentence& sentence, const CFields& fields, Ticks time) {
        SEpoch& epoch = Open(time);
        int mode = ParseInteger<std::uint8_t>(fields[5]).value_or(0);
        if (mode >= gpsConverging) mode = gpsDifferential; // 9 of some makers: corrections by satellite
        auto position = MakePosition(sentence, fields, mode);
        if (!position) return;
        position->separation = ParseNumber(fields[10]);
        if (!epoch.gga.Add(*position)) Fault(EText::faultRepeated);
    }

    void TakeGns(const SSentence& sentence, const CFields& fields, Ticks time) {
        SEpoch& epoch = Open(time);
        auto position = MakePosition(sentence, fields, GetMode(fields[5]));
        if (!position) return;
        position->separation = ParseNumber(fields[9]);
        if (!epoch.gns.Add(*position)) Fault(EText::faultRepeated);
    }

    void TakeGst(const SSentence& sentence, const CFields& fields, Ticks time) {
        auto deviations = MakeDeviations(fields);
        if (!deviations) return;
        deviations->talker = {sentence.address[0], sentence.address[1]};
        Open(time).gst.Add(*deviations);
    }

    void TakeZda(const SSentence&, const CFields& fields, Ticks time) {
        const auto day = ParseInteger<int>(fields[1]), month = ParseInteger<int>(fields[2]),
                   year = ParseInteger<int>(fields[3]);
        if (day && month && year) SetDate(*year, *month, *day, time);
    }

    void TakeRmc(const SSentence&, const CFields& fields, Ticks time) {
        const auto date = ParseInteger<int>(fields[8]);
        if (date && fields[8].size() == 6) SetDate(*date % 100, *date / 100 % 100, *date / 10000, time);
    }

    // Receivers send an impossible date while they do not know it.
    void SetDate(int year, int month, int day, Ticks time) {
        if (year < 100) year += year < 80 ? 2000 : 1900;
        const auto number = MakeDay(year, month, day);
        if (!number) return;
        Ticks midnight = *number * kTicksPerDay;
        SLearnt& learnt = m_conversion.learnt;
        if (midnight < learnt.eraBegin) midnight += learnt.eraShift;
        const bool wasDated = m_clock.IsDated();
        m_clock.SetDate(midnight, time);
        if (!wasDated) DateEarlyFixes();
        const Ticks step = m_clock.TakeEraStep();
        if (step == 0 || !m_hasFix || learnt.eraShift != 0) return;
        learnt.eraBegin = midnight - kTicksPerDay;
        learnt.eraShift = step;
        m_conversion.startAgain = true;
        m_conversion.notes.Say(ELevel::warning, EText::nmeaEraStep);
    }

    // A log that may as well be younger by an era: nothing in it can tell.
    void RemarkOnOldDate() {
        const Ticks day = m_clock.GetFirstDay();
        const Outils_Temps::CDateTime date(static_cast<std::uint64_t>(day));
        if (day + kTicksPerEra < static_cast<Ticks>(Outils_Temps::CDateTime::Now().GetTicks()))
            m_conversion.notes.Say(ELevel::information, EText::nmeaOldDate, {std::to_string(date.GetYear())});
    }

    void DateEarlyFixes() {
        for (SEarlyFix& fix : m_early) Write(fix.tick, fix.payload, fix.line);
        m_early.clear();
    }

    void CloseFirst() {
        const SEpoch& epoch = GetOpen(0); // stays as it is until another is opened
        m_firstOpen = (m_firstOpen + 1) % kMostOpen;
        --m_openCount;
        const SPosition* position = Choose(epoch);
        if (!position) return;
        m_lastTick = epoch.tick;
        CPayload payload = MakePayload(epoch, *position);
        if (m_clock.IsDated())
            Write(epoch.tick, payload, position->line);
        else if (m_early.size() < kMostEarly)
            m_early.push_back({epoch.tick, position->line, payload});
        else
            m_conversion.faults.Add(EText::faultUndated, position->line);
    }

    void Write(Ticks tick, const CPayload& payload, std::uint64_t line) {
        m_hasFix = true;
        m_conversion.sink.Add(m_channel, tick + m_clock.GetOffset(), payload.Get(), line);
    }

    // The position of the epoch that counts. A receiver may change its talker with the satellites it uses;
    // two receivers give positions side by side, and then only those of the first talker count.
    const SPosition* Choose(const SEpoch& epoch) {
        const SPosition* chosen = nullptr;
        for (const SPosition& position : epoch.gga.Get())
            if (!chosen || (position.talker == m_talker && chosen->talker != m_talker)) chosen = &position;
        if (chosen && m_talker == Talker()) m_talker = chosen->talker;
        const bool isOther = chosen && chosen->talker != m_talker;
        if (isOther && epoch.tick - m_lastTick < m_interval - m_interval / 100) m_twoReceivers = true;
        for (const SPosition& position : epoch.gga.Get()) {
            if (&position != chosen && position.talker == chosen->talker)
                m_conversion.faults.Add(EText::faultRepeated, position.line);
            if (position.talker == m_talker || (&position == chosen && !m_twoReceivers)) continue;
            m_twoReceivers = true;
            m_conversion.faults.Add(EText::faultOtherReceiver, position.line);
        }
        if (isOther && m_twoReceivers) return nullptr;
        if (!chosen && !epoch.gns.Get().empty() &&
            (m_talker == Talker() || epoch.tick - m_lastTick >= m_interval - m_interval / 100))
            chosen = &epoch.gns.Get().front();
        if (chosen && chosen->talker == m_talker) {
            if (m_hasInterval && epoch.tick > m_lastOwn)
                m_interval =
                    m_interval == 0 ? epoch.tick - m_lastOwn : std::min(m_interval, epoch.tick - m_lastOwn);
            m_hasInterval = true;
            m_lastOwn = epoch.tick;
        }
        return chosen;
    }

    CPayload MakePayload(const SEpoch& epoch, const SPosition& position) {
        const SDeviations* stated = epoch.gst.Get().empty() ? nullptr : &epoch.gst.Get().front();
        for (const SDeviations& deviations : epoch.gst.Get())
            if (deviations.talker == position.talker) stated = &deviations;
        const SPositionError assumed = GetAssumedError(static_cast<std::size_t>(position.mode),
                                                       position.dilution > 0 ? position.dilution : 1);
        if (!stated && !std::exchange(m_hasAssumed, true))
            m_conversion.notes.Say(ELevel::warning, EText::nmeaAssumedErrors);

        CPayload payload;
        payload.Reset(kGpsLayout.payloadSize);
        payload.Put(PlaceOf(kGpsLayout, "Horizontal rejection"), kAuto);
        payload.Put(PlaceOf(kGpsLayout, "Vertical rejection"), position.altitude ? kAuto : kOff);
        payload.Put(PlaceOf(kGpsLayout, "GPS mode"), position.mode);
        payload.Put(PlaceOf(kGpsLayout, "Latitude"), position.latitude);
        payload.Put(PlaceOf(kGpsLayout, "Longitude"), position.longitude);
        payload.Put(PlaceOf(kGpsLayout, "Altitude"), position.altitude.value_or(0));
        payload.Put(PlaceOf(kGpsLayout, "Std. dev. north"), stated ? stated->north : assumed.horizontal);
        payload.Put(PlaceOf(kGpsLayout, "Std. dev. east"), stated ? stated->east : assumed.horizontal);
        payload.Put(PlaceOf(kGpsLayout, "Std. dev. altitude"),
                    stated && stated->up ? *stated->up : assumed.vertical);
        payload.Put(PlaceOf(kGpsLayout, "Covariance XY"), stated ? stated->covariance : 0);
        payload.Put(PlaceOf(kGpsLayout, "Geoidal sep"), position.separation.value_or(0));
        return payload;
    }

    SConversion& m_conversion;
    CLineReader m_lines;
    bool m_verifies, m_hasSums = false;
    const std::uint16_t m_channel = GetChannelRow("GPS_1");
    CNmeaClock m_clock;
    std::array<SEpoch, kMostOpen> m_open; // a ring
    std::size_t m_firstOpen = 0, m_openCount = 0;
    std::vector<SEarlyFix> m_early; // before the first date
    bool m_hasFix = false;          // written

    Talker m_talker{}; // of the receiver whose positions count
    bool m_hasAssumed = false, m_twoReceivers = false, m_hasInterval = false;
    Ticks m_lastTick = INT64_MIN / 2, m_lastOwn = 0, m_interval = 0;
};

} // namespace

bool ReadNmea(SConversion& conversion) { return CNmeaReader(conversion).Read(); }

} // namespace Conversion
