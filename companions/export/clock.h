// The dates of a source in seconds and in UTC: the one place where exports make them.
#pragma once

#include "export/packet_pass.h"
#include "foundation/date_time.h"

#include <optional>
#include <string_view>

namespace Exportation {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

// "2026-03-01T12:30:15.2500000", with "T" or a blank, with or without a fraction and a final "Z"; invalid for
// any other text and for what names no instant.
CDateTime ParseIsoDate(std::string_view text);

// `value` with leading zeros. Returns the end.
char* FormatDigits(std::uint64_t value, int digits, char* out);
// Signed decimal seconds with seven decimals. Returns the end.
char* FormatSeconds(std::int64_t ticks, char* out);

class CClock {
  public:
    CClock() = default;
    // `offset` is added to every date, ticks. `zero` is the UTC of date zero after that.
    CClock(std::int64_t offset, std::optional<CDateTime> zero) : m_offset(offset), m_zero(zero) {}

    // The clock of a source by the switches, or else by what the file says of itself: the first packet of its
    // UTC channel, or the UTC fields of its navigation. Walks the file.
    // `offset` as above. `zero`: the UTC of date zero by the switches.
    static CClock Find(CPacketPass& pass, std::int64_t offset, std::optional<CDateTime> zero);

    bool KnowsUtc() const { return m_zero.has_value(); }
    // The shifted date, ticks; the date itself where the shift overflows.
    std::int64_t Shift(std::int64_t date) const;
    // The shift undone: the date of the file at which a bound of the period lies.
    std::int64_t Unshift(std::int64_t shifted) const;
    // The instant of a date; invalid when the UTC is not known or the date is beyond the calendar.
    CDateTime GetUtc(std::int64_t date) const;

  private:
    std::int64_t m_offset = 0;
    std::optional<CDateTime> m_zero;
};

// Writes instants as "2026-03-14T09:26:53.5897932Z". The calendar is asked once a day. One thread.
class CIsoFormatter {
  public:
    // Decimals of the second, 0 to 7; further ones are cut.
    explicit CIsoFormatter(int decimals = 7) : m_decimals(decimals) {}
    // Returns the end; `out` itself for an invalid instant or a year above 9999.
    char* Format(CDateTime instant, char* out);

  private:
    int m_decimals;
    std::uint64_t m_day = ~std::uint64_t{0}; // whose date m_text holds
    char m_text[11] = {};
};

} // namespace Exportation
