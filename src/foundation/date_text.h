// Dates and seconds as text for files with many of them: into the caller's buffer, independent of the locale
// and of what the user has set.
#pragma once

#include "foundation/date_time.h"

#include <cstdint>

namespace Outils_Temps {

// `value` with leading zeros. Returns the end.
char* FormatDigits(std::uint64_t value, int digits, char* out);
// Signed decimal seconds with seven decimals, at most 22 characters. Returns the end.
char* FormatSeconds(std::int64_t ticks, char* out);

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

} // namespace Outils_Temps
