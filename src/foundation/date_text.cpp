#include "foundation/date_text.h"

#include <charconv>
#include <cstring>

namespace Outils_Temps {

char* FormatDigits(std::uint64_t value, int digits, char* out) {
    for (int i = digits; i-- > 0; value /= 10) out[i] = static_cast<char>('0' + value % 10);
    return out + digits;
}

char* FormatSeconds(std::int64_t ticks, char* out) {
    if (ticks < 0) *out++ = '-';
    const auto size = ticks < 0 ? 0 - static_cast<std::uint64_t>(ticks) : static_cast<std::uint64_t>(ticks);
    out = std::to_chars(out, out + 24, size / kTicksPerSecond).ptr;
    *out++ = '.';
    return FormatDigits(size % kTicksPerSecond, 7, out);
}

char* CIsoFormatter::Format(CDateTime instant, char* out) {
    if (!instant.IsValid()) return out;
    constexpr auto kDay = static_cast<std::uint64_t>(kTicksPerDay);
    const std::uint64_t ticks = instant.GetTicks(), day = ticks / kDay, inDay = ticks % kDay;
    if (day != m_day) {
        CalendarFields fields;
        if (!instant.GetCalendar(fields) || fields.year > 9999) return out;
        m_day = day;
        char* text = FormatDigits(static_cast<std::uint64_t>(fields.year), 4, m_text);
        *text++ = '-';
        text = FormatDigits(static_cast<std::uint64_t>(fields.month), 2, text);
        *text++ = '-';
        FormatDigits(static_cast<std::uint64_t>(fields.day), 2, text);
    }
    std::memcpy(out, m_text, 10);
    out[10] = 'T';
    FormatDigits(inDay / kTicksPerHour, 2, out + 11);
    out[13] = ':';
    FormatDigits(inDay / kTicksPerMinute % 60, 2, out + 14);
    out[16] = ':';
    FormatDigits(inDay / kTicksPerSecond % 60, 2, out + 17);
    out += 19;
    if (m_decimals > 0) {
        *out++ = '.';
        char fraction[7];
        FormatDigits(inDay % kTicksPerSecond, 7, fraction);
        std::memcpy(out, fraction, static_cast<std::size_t>(m_decimals));
        out += m_decimals;
    }
    *out++ = 'Z';
    return out;
}

} // namespace Outils_Temps
