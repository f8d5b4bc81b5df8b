// The command line of the mission simulator.
#pragma once

#include "simulator/mission_options.h"

#include <filesystem>
#include <span>
#include <string>

namespace Simulation {

struct SCommandLine {
    SMissionOptions options;
    std::filesystem::path output;
    std::filesystem::path truth; // by default beside the output
    bool force = false;          // existing files are replaced
    // Asked for instead of a mission.
    bool help = false;
    bool version = false;
};

// Reads the arguments after the program's name. False, with the reason in `error`, for a line that makes no
// sense; the values of the options are not validated.
bool ParseCommandLine(std::span<const std::string> arguments, SCommandLine& commandLine, std::string& error);

// False, with the reason in `error`, when recording or truth would replace a file without --force, or each
// other.
bool CheckTargets(const SCommandLine& commandLine, std::string& error);

// One line for each option with its default, the grades of inertial units and the channels.
std::string GetUsage();

} // namespace Simulation
