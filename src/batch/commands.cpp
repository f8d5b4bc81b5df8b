#include "batch/commands.h"

#include <algorithm>
#include <ostream>

namespace Batch {

namespace {

constexpr std::string_view kProgram = "varnenav-batch";
constexpr std::string_view kVersion = VARNE_VERSION;

constexpr SOption kCreateOptions[] = {{"--add"}, {"--ins-configuration"}};
constexpr SOption kFromParametersOptions[] = {{"--file", true, true}};
constexpr SOption kDictionaryOptions[] = {{"--expert", false}};
constexpr SOption kPacketsOptions[] = {{"--from"}, {"--to"}, {"--limit"}};
constexpr SOption kReduceOptions[] = {{"--from"}, {"--to"}, {"--slices"}};
constexpr SOption kPictureOptions[] = {{"--size"}};

constexpr SCommand kCommands[] = {
    {"create", "RECORDING.tarin PROJECT.tarprj [--add all|KIND,...] [--ins-configuration FILE]",
     "makes a project over a recording, with a sensor for every channel of the named kinds", 2,
     kCreateOptions, CreateCommand},
    {"run", "PROJECT", "processes a project; progress and messages as lines", 1, {}, RunCommand},
    {"check",
     "PROJECT",
     "lists the rules that a project breaks; exit status 1 if there are any",
     1,
     {},
     CheckCommand},
    {"describe", "PROJECT", "prints the whole project as text", 1, {}, DescribeCommand},
    {"copy",
     "PROJECT OUT.tarprj",
     "saves a project under a new name, in the present form",
     2,
     {},
     CopyCommand},
    {"parameters",
     "PROJECT OUT.xml",
     "writes the processing as a batch command file",
     2,
     {},
     ParametersCommand},
    {"create-from-parameters", "IN.xml PROJECT.tarprj [--file ID=PATH]...",
     "makes a project from a batch command file", 2, kFromParametersOptions, CreateFromParametersCommand},
    {"dictionary", "PROJECT [--expert]", "lists what a project's files offer: layers, measures, enumerations",
     1, kDictionaryOptions, DictionaryCommand},
    {"analyse", "FILE", "scans a packet file: channels, dates, origin, damage", 1, {}, AnalyseCommand},
    {"detect", "FILE", "tells the format of a recording", 1, {}, DetectCommand},
    {"channels", "FILE", "lists the channels of a packet file", 1, {}, ChannelsCommand},
    {"packets", "FILE CHANNEL [--from S] [--to S] [--limit N]", "prints the packets of a channel", 2,
     kPacketsOptions, PacketsCommand},
    {"at", "FILE CHANNEL SECONDS", "prints the packet nearest to a moment", 3, {}, AtCommand},
    {"reduce", "FILE CHANNEL --from S --to S --slices N",
     "prints representative, minimum and maximum packet of each slice of a window", 2, kReduceOptions,
     ReduceCommand},
    {"picture", "PROJECT OUT.png|.svg|.pdf [--size WxH]", "draws the graphs of a project", 2, kPictureOptions,
     PictureCommand},
};

void PrintHelp(std::ostream& out) {
    out << "usage: " << kProgram << " COMMAND ...\n\n";
    for (const SCommand& command : kCommands)
        out << "  " << command.name << ' ' << command.usage << "\n      " << command.summary << '\n';
    out << "\n  --help      this text\n  --version   the version of the program\n\n"
           "Kinds of sensor: gps, dvl, emlog, depth, usbl, lbl, odometer, eventmarker, mount.\n"
           "Times are seconds on the recording's own clock.\n"
           "Exit status: 0 success, 1 failure, 2 wrong usage.\n";
}

} // namespace

std::span<const SCommand> GetCommands() { return kCommands; }

int Run(std::span<const std::string> words, SStreams streams) {
    if (words.empty()) {
        PrintHelp(streams.error);
        return exitUsage;
    }
    if (words[0] == "--help") {
        PrintHelp(streams.out);
        return exitSuccess;
    }
    if (words[0] == "--version") {
        streams.out << kProgram << ' ' << kVersion << '\n';
        return exitSuccess;
    }
    const auto command = std::find_if(std::begin(kCommands), std::end(kCommands),
                                      [&](const SCommand& row) { return row.name == words[0]; });
    if (command == std::end(kCommands)) {
        streams.error << kProgram << ": unknown command \"" << words[0] << "\"; see --help\n";
        return exitUsage;
    }
    try {
        const COptions options(words.subspan(1), command->options);
        if (options.GetArguments().size() != command->arguments)
            throw CUsageError("wrong number of arguments");
        const int status = command->run(options, streams);
        streams.out.flush();
        // A full disk or a closed pipe behind standard output must not pass for success.
        return status == exitSuccess && !streams.out ? exitFailure : status;
    } catch (const CUsageError& fault) {
        streams.error << kProgram << ": " << fault.what() << "\nusage: " << kProgram << ' ' << command->name
                      << ' ' << command->usage << '\n';
        return exitUsage;
    }
}

} // namespace Batch
