#include "export/template_values.h"

#include "export/clock.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Exportation {

using namespace Outils_Temps;
using namespace Persistance_Xpf;

namespace {

bool IsWhole(const SFieldLayout& field) {
    return field.nature == natureEnumeration ||
           (field.type != EFieldType::f32 && field.type != EFieldType::f64);
}

double GetSeconds(std::int64_t from, std::int64_t to) {
    return (static_cast<double>(to) - static_cast<double>(from)) / static_cast<double>(kTicksPerSecond);
}

} // namespace

CInputTrack::CInputTrack(const std::filesystem::path& source, EFileKind kind, const STemplateInput& input,
                         IRunMonitor& monitor)
    : m_input(input), m_monitor(monitor), m_pass(m_monitor) {
    if (!m_pass.Open(source, {kind})) return;
    const SPassChannel* channel = m_pass.FindChannel(input.channel->row->name);
    if (!channel) return;
    m_pass.Begin({channel}, {});
    Advance();
}

void CInputTrack::Advance() {
    std::swap(m_before, m_after);
    SPassPacket packet;
    m_after.payload.clear();
    if (!m_pass.Next(packet)) return;
    m_after.date = packet.date;
    m_after.payload.assign(packet.payload, packet.payload + packet.channel->layout->payloadSize);
}

void CInputTrack::MoveTo(std::int64_t date) {
    m_date = date;
    while (!m_after.payload.empty() && m_after.date <= date) Advance();
}

std::optional<double> CInputTrack::Get(SFieldRef field) const {
    const bool hasBefore = !m_before.payload.empty() && m_before.date <= m_date,
               hasAfter = !m_after.payload.empty() && m_after.date > m_date;
    if (hasBefore && m_before.date == m_date) return GetValue(m_before.payload.data(), field);
    const double sinceBefore = hasBefore ? GetSeconds(m_before.date, m_date) : HUGE_VAL,
                 untilAfter = hasAfter ? GetSeconds(m_date, m_after.date) : HUGE_VAL;
    if (m_input.nearest || (IsWhole(*field.row) && hasBefore && hasAfter)) {
        if (std::min(sinceBefore, untilAfter) > m_input.maxGap) return std::nullopt;
        return GetValue((sinceBefore <= untilAfter ? m_before : m_after).payload.data(), field);
    }
    if (!hasBefore || !hasAfter || sinceBefore + untilAfter > m_input.maxGap) return std::nullopt;
    return Interpolate(*field.row, GetValue(m_before.payload.data(), field),
                       GetValue(m_after.payload.data(), field), sinceBefore / (sinceBefore + untilAfter));
}

double Interpolate(const SFieldLayout& field, double before, double after, double share) {
    if (!IsAngle(field.nature)) return before + (after - before) * share;
    const double angle = before + std::remainder(after - before, 360.0) * share;
    if (!field.name.starts_with("Heading")) return std::remainder(angle, 360.0);
    const double heading = std::fmod(angle, 360.0);
    return heading < 0.0 ? heading + 360.0 : heading;
}

std::string FormatPattern(CDateTime instant, std::string_view pattern) {
    const auto decimals = std::min<std::ptrdiff_t>(std::ranges::count(pattern, 'f'), 7);
    std::int64_t unit = kTicksPerSecond;
    for (std::ptrdiff_t i = 0; i < decimals; ++i) unit /= 10;
    instant += CDateTimeSpan(unit / 2);
    CalendarFields fields;
    if (!instant.GetCalendar(fields)) return {};
    const CDateTime midnight(instant.GetTicks() - instant.GetTicks() % kTicksPerDay);
    CDateTime newYear;
    newYear.SetDateTime(static_cast<std::uint16_t>(fields.year), 1, 1, 0, 0, 0, 0);
    const std::int64_t dayOfYear = (midnight - newYear).GetDays() + 1;

    std::string text;
    for (std::size_t i = 0; i < pattern.size();) {
        const char letter = pattern[i];
        const std::size_t end = std::min(pattern.find_first_not_of(letter, i), pattern.size());
        const std::size_t length = end - i;
        const auto take = [&](std::int64_t value, std::size_t digits) {
            char out[8];
            text.append(out, FormatDigits(static_cast<std::uint64_t>(value), static_cast<int>(digits), out));
            i += digits;
        };
        if (letter == 'y' && length >= 4)
            take(fields.year % 10000, 4);
        else if (letter == 'y' && length >= 2)
            take(fields.year % 100, 2);
        else if (letter == 'M' && length >= 2)
            take(fields.month, 2);
        else if (letter == 'D' && length >= 3)
            take(dayOfYear, 3);
        else if (letter == 'd' && length >= 2)
            take(fields.day, 2);
        else if (letter == 'H' && length >= 2)
            take(fields.hour, 2);
        else if (letter == 'm' && length >= 2)
            take(fields.minute, 2);
        else if (letter == 's' && length >= 2)
            take(fields.second, 2);
        else if (letter == 'f') {
            const std::size_t digits = std::min<std::size_t>(length, 7);
            char out[8];
            FormatDigits(static_cast<std::uint64_t>(fields.ticks), 7, out);
            text.append(out, digits);
            i += length;
        } else {
            text += letter;
            ++i;
        }
    }
    return text;
}

} // namespace Exportation
