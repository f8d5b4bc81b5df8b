// The command line of the mission simulator.
#pragma once

#include "simulator/mission_options.h"

#include <filesystem>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace Simulation {

struct SCommandLine {
    SMissionOptions options;
    std::filesystem::path output;
    std::filesystem::path truth; // by default beside the output
    // The mission in foreign formats, see foreign_writer.h: format and file.
    std::vector<std::pair<std::string, std::filesystem::path>> also;
    bool force = false; // existing files are replaced
    // Asked for instead of a mission.
    bool help = false;
    bool version = false;
};

// Reads the arguments after the program's name. False, with the reason in `error`, for a line that makes no
// sense; the values of the options are not validated.
bool ParseCommandLine(std::span<const std::string> arguments, SCommandLine& commandLine, std::string& error);

// False, with the reason in `error`, when a file would be replaced without --force, or two of the targets are
// one.
bool CheckTargets(const SCommandLine& commandLine, std::string& error);

// One line for each option with its default, the grades of inertial units and the channels.
std::string GetUsage();

} // namespace Simulation
