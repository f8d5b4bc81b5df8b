// The frame of every child program: command line, help, protocol, signals, exit code.
#pragma once

#include "common/line_monitor.h"
#include "common/run_monitor.h"
#include "foundation/switches.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Compagnon {

using Outils_Texte::CArguments;
using Outils_Texte::ESwitchValue;
using Outils_Texte::SSwitchRow;

// What a program is: one constant each. Besides its own switches every program takes "/remote",
// "/autostart on|off", "--help" and "--version".
struct SProgram {
    std::string_view name;  // "Depth2Tarin.exe"
    EText purpose;          // one line
    std::string_view files; // how the help names the files: "SOURCE TARGET"
    std::size_t fewestFiles, mostFiles;
    std::span<const SSwitchRow> switches;
    EDialect dialect; // of the protocol, used with "/remote"
    // With "/remote" alone: true waits for the word "start", false begins at once.
    bool waitsForStart;
    // Does the work, and reports every failure to the monitor.
    ERunEnd (*run)(const CArguments& arguments, IRunMonitor& monitor);
};

// Runs the program and returns its exit code: 0 finished, 1 failed, 2 stopped (1 in the tools' dialect).
// `input` and `output` stay open and belong to the caller; `signals` as in CCommandReader. Without "/remote"
// the run starts at once and reports in plain text. An exception of the run is reported as a failure.
int RunProgram(const SProgram& program, const std::vector<std::string>& arguments, int input, int output,
               int signals = -1);

// The body of main: standard input and output, a closed output and the signals that end a program stop the
// run in order.
int RunMain(const SProgram& program, int count, char** arguments);

// What "--help" prints.
std::string DescribeProgram(const SProgram& program);

} // namespace Compagnon
