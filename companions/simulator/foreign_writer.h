// Writes a recording in the formats that the converters read, so that a mission converted back can be
// compared with itself.
#pragma once

#include "foundation/date_time.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Simulation {

// The names of the formats.
std::vector<std::string_view> GetForeignKinds();

// Writes what the format can hold of the recording, whose date zero is at `utcOrigin`. The format "ciphered"
// puts its key beside the target. False with the reason in `error`, also for an unknown format.
bool WriteForeign(std::string_view kind, const std::filesystem::path& recording,
                  Outils_Temps::CDateTime utcOrigin, const std::filesystem::path& target, std::string& error);

} // namespace Simulation
