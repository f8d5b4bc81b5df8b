// The self-description at the front of a packet file.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace Enregistrement {

// File header, channel records in the given order and one definition for each packet type in use, ascending
// by type. Empty when the names do not make a file: none, an unknown or repeated one, or names of both file
// kinds.
std::vector<std::uint8_t> MakeRecordingHeader(std::span<const std::string_view> channelNames);

} // namespace Enregistrement
