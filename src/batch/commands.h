// The commands of varnenav-batch: one row each.
#pragma once

#include "batch/options.h"
#include "foundation/texts.h"

#include <iosfwd>
#include <span>
#include <string_view>

namespace Batch {

// Where a command writes: results, and messages about what went wrong.
struct SStreams {
    std::ostream& out;
    std::ostream& error;
};

enum EExit { exitSuccess = 0, exitFailure = 1, exitUsage = 2 };

struct SCommand {
    std::string_view name;
    std::string_view usage;      // the words behind the name
    Outils_Texte::EText summary; // number of the text that says in one line what it does
    std::size_t arguments;       // words that are no options
    std::span<const SOption> options;
    int (*run)(const COptions& options, SStreams streams);
};

std::span<const SCommand> GetCommands();

// Runs the program on its words, the program's own name left out. The exit status.
int Run(std::span<const std::string> words, SStreams streams);

// The commands, by the file in which they stand. project_commands.cpp:
int CreateCommand(const COptions& options, SStreams streams);
int RunCommand(const COptions& options, SStreams streams);
int CopyCommand(const COptions& options, SStreams streams);
// parameter_commands.cpp:
int CheckCommand(const COptions& options, SStreams streams);
int ParametersCommand(const COptions& options, SStreams streams);
int CreateFromParametersCommand(const COptions& options, SStreams streams);
// describe_command.cpp:
int DescribeCommand(const COptions& options, SStreams streams);
// analysis_commands.cpp:
int DictionaryCommand(const COptions& options, SStreams streams);
int AnalyseCommand(const COptions& options, SStreams streams);
int DetectCommand(const COptions& options, SStreams streams);
// packet_commands.cpp:
int ChannelsCommand(const COptions& options, SStreams streams);
int PacketsCommand(const COptions& options, SStreams streams);
int AtCommand(const COptions& options, SStreams streams);
int ReduceCommand(const COptions& options, SStreams streams);
// picture_command.cpp:
int PictureCommand(const COptions& options, SStreams streams);

} // namespace Batch
