#include "export/clock.h"

#include "foundation/bytes.h"
#include "xpf/tarout_layouts.h"
#include "xpf/utc_fields.h"

#include <array>
#include <charconv>
#include <cstring>

namespace Exportation {

using namespace Outils_Temps;
using namespace Persistance_Xpf;
using Outils::Load;

namespace {

// Navigation packets whose UTC is looked at. Seconds are stored as 32-bit floats, which are the more precise
// the smaller they are: within a minute or two one of them is near zero.
constexpr int kNavigationLookedAt = 1000;

bool ReadNumber(std::string_view& text, std::size_t digits, std::uint16_t& number) {
    if (text.size() < digits) return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + digits, number);
    if (error != std::errc() || end != text.data() + digits) return false;
    text.remove_prefix(digits);
    return true;
}

bool ReadSign(std::string_view& text, std::string_view signs) {
    if (text.empty() || signs.find(text.front()) == signs.npos) return false;
    text.remove_prefix(1);
    return true;
}

consteval std::uint32_t At(std::string_view name) { return kMorvexStdLayout.OffsetOf(name); }

CDateTime GetNavigationZero(const std::uint8_t* payload, float second) {
    CDateTime zero = CDateTime::Invalid();
    if (payload[At("UTC Month")] == 0) return zero;
    zero.SetDateTime(Load<std::uint16_t>(payload + At("UTC Year")), payload[At("UTC Month")],
                     payload[At("UTC Day")], payload[At("UTC Hour")], payload[At("UTC Minute")], 0, 0);
    zero += CDateTimeSpan::FromSeconds(static_cast<double>(second));
    return zero - CDateTimeSpan(Load<std::int64_t>(payload));
}

std::optional<CDateTime> FindZero(CPacketPass& pass) {
    const SPassChannel* utc = pass.FindChannel("UTC");
    const SPassChannel* navigation = pass.FindChannel(kResultChannel);
    if (!utc && !navigation) return std::nullopt;
    pass.Begin({utc ? utc : navigation}, {}, 0.0, 0.0);
    std::optional<CDateTime> zero;
    float least = 60.0f;
    SPassPacket packet;
    for (int count = 0; (utc || count < kNavigationLookedAt) && pass.Next(packet); ++count) {
        if (utc) {
            const CDateTime found =
                SUtcFields({packet.payload, packet.channel->layout->payloadSize}).GetOrigin();
            if (found.IsValid()) return found;
            continue;
        }
        const auto second = Load<float>(packet.payload + At("UTC Second"));
        if (!(second >= 0.0f && second < least)) continue;
        const CDateTime found = GetNavigationZero(packet.payload, second);
        if (!found.IsValid()) continue;
        zero = found;
        least = second;
    }
    return zero;
}

} // namespace

CDateTime ParseIsoDate(std::string_view text) {
    CDateTime date = CDateTime::Invalid();
    std::uint16_t year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    if (!ReadNumber(text, 4, year) || !ReadSign(text, "-") || !ReadNumber(text, 2, month) ||
        !ReadSign(text, "-") || !ReadNumber(text, 2, day) || !ReadSign(text, "T ") ||
        !ReadNumber(text, 2, hour) || !ReadSign(text, ":") || !ReadNumber(text, 2, minute) ||
        !ReadSign(text, ":") || !ReadNumber(text, 2, second))
        return date;
    std::int64_t ticks = 0;
    if (ReadSign(text, ".")) {
        std::int64_t place = kTicksPerSecond / 10;
        for (; !text.empty() && text.front() >= '0' && text.front() <= '9';
             text.remove_prefix(1), place /= 10)
            ticks += place * (text.front() - '0');
    }
    ReadSign(text, "Z");
    if (text.empty()) date.SetDateTime(year, month, day, hour, minute, second, ticks);
    return date;
}

CClock CClock::Find(CPacketPass& pass, std::int64_t offset, std::optional<CDateTime> zero) {
    if (zero) return CClock(offset, zero);
    zero = FindZero(pass);
    // What the file says of itself holds before its dates are shifted.
    if (zero) *zero -= CDateTimeSpan(offset);
    return CClock(offset, zero && zero->IsValid() ? zero : std::nullopt);
}

std::int64_t CClock::Shift(std::int64_t date) const {
    std::int64_t shifted = 0;
    return __builtin_add_overflow(date, m_offset, &shifted) ? date : shifted;
}

std::int64_t CClock::Unshift(std::int64_t shifted) const {
    std::int64_t date = 0;
    return __builtin_sub_overflow(shifted, m_offset, &date) ? shifted : date;
}

CDateTime CClock::GetUtc(std::int64_t date) const {
    return m_zero ? *m_zero + CDateTimeSpan(Shift(date)) : CDateTime::Invalid();
}

} // namespace Exportation
