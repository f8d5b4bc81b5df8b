// Makes a recording of a mission.
#pragma once

#include "simulator/mission.h"

#include <filesystem>
#include <string>

namespace Simulation {

// Writes the recording and, unless `truthPath` is empty, the truth (see truth_writer.h). Equal options give
// equal bytes. False on failure, with the reason in `error`.
bool WriteMission(const CMission& mission, const std::filesystem::path& path,
                  const std::filesystem::path& truthPath, std::string& error);
// The same from options, which are validated first.
bool WriteMission(const SMissionOptions& options, const std::filesystem::path& path,
                  const std::filesystem::path& truthPath, std::string& error);

} // namespace Simulation
