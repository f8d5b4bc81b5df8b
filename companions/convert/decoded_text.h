// The tags of decoded INS text and the channels of their records.
#pragma once

#include <span>
#include <string_view>

namespace Conversion {

inline constexpr std::size_t kTagSize = 6; // a colon follows

struct STagRow {
    std::string_view tag;
    std::string_view channel; // empty: records of this tag have no channel
};

// The first row of a channel has the tag under which it is written.
std::span<const STagRow> GetTags();

} // namespace Conversion
