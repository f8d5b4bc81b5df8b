// The program around a run: command line, standard input and output.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Morvex {

struct SEngineArguments {
    bool remote = false;   // "/remote": commands on standard input, protocol lines on standard output
    bool autostart = true; // "/autostart off": wait for the word "start"; only with "/remote"
    std::filesystem::path parameters;
};

// Switches in any case and place, and the one file; empty for anything else.
std::optional<SEngineArguments> ParseArguments(const std::vector<std::string>& arguments);

// Runs the engine with these descriptors and gives the exit code: 0 finished, 1 failed, 2 stopped.
int RunEngine(const std::vector<std::string>& arguments, int input, int output);

} // namespace Morvex
