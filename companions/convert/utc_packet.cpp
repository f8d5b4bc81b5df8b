#include "convert/utc_packet.h"

#include "convert/fields.h"
#include "convert/raw_frame.h"
#include "foundation/bytes.h"
#include "xpf/tarin_layouts.h"

#include <cmath>
#include <cstring>

namespace Conversion {
namespace {

using Outils::Load;
using Persistance_Xpf::kUtcLayout;

constexpr std::size_t At(std::string_view name) { return kUtcLayout.OffsetOf(name) - kDateSize; }
constexpr std::size_t kYear = At("UTC Year"), kMonth = At("UTC Month"), kDay = At("UTC day"),
                      kHour = At("UTC Hour"), kMinute = At("UTC Minute"), kSecond = At("UTC Second");

} // namespace

std::optional<Ticks> GetUtcDay(const Compagnon::CArguments& arguments) {
    return arguments.Has("/utc") ? ParseDay(arguments.GetText("/utc")) : std::nullopt;
}

std::optional<Ticks> ReadUtc(std::span<const std::uint8_t> payload, std::optional<Ticks> day) {
    const std::uint8_t* bytes = payload.data();
    const auto year = Load<std::uint16_t>(bytes + kYear);
    if (year != 0) {
        const auto number = MakeDay(year, bytes[kMonth], bytes[kDay]);
        day = number ? std::optional(*number * kTicksPerDay) : std::nullopt;
    }
    const float second = Load<float>(bytes + kSecond);
    const bool isTime = bytes[kHour] < 24 && bytes[kMinute] < 60 && second >= 0 && second < 61;
    if (!day || !isTime) return std::nullopt;
    return *day + (bytes[kHour] * 3600 + bytes[kMinute] * 60) * kTicksPerSecond +
           std::llround(static_cast<double>(second) * kTicksPerSecond);
}

void CompleteUtc(std::span<std::uint8_t> payload, Ticks day) {
    Outils_Temps::CalendarFields fields;
    if (Load<std::uint16_t>(payload.data() + kYear) != 0 ||
        !Outils_Temps::CDateTime(static_cast<std::uint64_t>(day)).GetCalendar(fields))
        return;
    const auto year = static_cast<std::uint16_t>(fields.year);
    std::memcpy(payload.data() + kYear, &year, sizeof year);
    payload[kMonth] = static_cast<std::uint8_t>(fields.month);
    payload[kDay] = static_cast<std::uint8_t>(fields.day);
}

} // namespace Conversion
