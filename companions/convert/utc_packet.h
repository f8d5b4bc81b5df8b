// UTC packets that a source holds itself.
#pragma once

#include "common/child_program.h"
#include "convert/calendar.h"

#include <cstdint>
#include <optional>
#include <span>

namespace Conversion {

// The day of the switch "/utc yyyy-mm-dd"; empty without it.
std::optional<Ticks> GetUtcDay(const Compagnon::CArguments& arguments);

// The UTC of a packet's payload without "Date"; `day` is taken for one that states no date. Empty when it is
// no time.
std::optional<Ticks> ReadUtc(std::span<const std::uint8_t> payload, std::optional<Ticks> day);
// Gives a payload without "Date" the day when it states none.
void CompleteUtc(std::span<std::uint8_t> payload, Ticks day);

} // namespace Conversion
