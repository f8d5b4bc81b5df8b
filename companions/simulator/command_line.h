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
    bool help = false;
};

// Reads the arguments after the program's name. False with the reason in `error`; the options are not
// validated.
bool ParseCommandLine(std::span<const std::string> arguments, SCommandLine& commandLine, std::string& error);

// One line for each option.
std::string GetUsage();

} // namespace Simulation
