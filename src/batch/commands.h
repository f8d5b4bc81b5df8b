// The commands of varnenav-batch: one row each.
#pragma once

#include "batch/options.h"
#include "foundation/text_id.h"

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
    // The words after the name that are no options, as the usage shows them; one with "..." may be repeated.
    std::string_view arguments;
    EText summary; // says in one line what the command does
    std::span<const SSwitchRow> options;
    int (*run)(const COptions& options, SStreams streams);
};

std::span<const SCommand> GetCommands();

// Runs the program on its words, without the program's own name. Returns the exit status.
int Run(std::span<const std::string> words, SStreams streams);

// The commands, by source file. project_commands.cpp:
int CreateCommand(const COptions& options, SStreams streams);
int CopyCommand(const COptions& options, SStreams streams);
// run_command.cpp:
int RunCommand(const COptions& options, SStreams streams);
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
// index_command.cpp:
int IndexCommand(const COptions& options, SStreams streams);
// packet_commands.cpp:
int ChannelsCommand(const COptions& options, SStreams streams);
int PacketsCommand(const COptions& options, SStreams streams);
int AtCommand(const COptions& options, SStreams streams);
int ReduceCommand(const COptions& options, SStreams streams);
// compare_command.cpp:
int CompareCommand(const COptions& options, SStreams streams);
// tool_commands.cpp, with the options that the fields of the dialogs are:
std::span<const SSwitchRow> GetImportOptions();
std::span<const SSwitchRow> GetExportOptions();
std::span<const SSwitchRow> GetUpdateOptions();
int ImportCommand(const COptions& options, SStreams streams);
int ExportCommand(const COptions& options, SStreams streams);
int UpdateCommand(const COptions& options, SStreams streams);
// picture_command.cpp:
int PictureCommand(const COptions& options, SStreams streams);

} // namespace Batch
