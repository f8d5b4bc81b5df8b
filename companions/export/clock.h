// The dates of a source in seconds and in UTC: the one place where exports make them.
#pragma once

#include "export/packet_pass.h"
#include "foundation/date_text.h"
#include "foundation/date_time.h"

#include <optional>
#include <string_view>

namespace Exportation {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;
using Outils_Temps::CIsoFormatter;
using Outils_Temps::FormatSeconds;

// "2026-03-01T12:30:15.2500000", with "T" or a blank, with or without a fraction and a final "Z"; invalid for
// any other text and for what names no instant.
CDateTime ParseIsoDate(std::string_view text);

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

} // namespace Exportation
