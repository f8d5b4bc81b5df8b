#include "batch/commands.h"

#include "foundation/texts.h"

#include <algorithm>
#include <ostream>

namespace Batch {

using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr std::string_view kProgram = "varnenav-batch";
constexpr std::string_view kVersion = VARNE_VERSION;

constexpr SOption kCreateOptions[] = {{"--add"}, {"--ins-configuration"}};
constexpr SOption kFromParametersOptions[] = {{"--file", true, true}};
constexpr SOption kDictionaryOptions[] = {{"--expert", false}};
constexpr SOption kPacketsOptions[] = {{"--from"}, {"--to"}, {"--limit"}};
constexpr SOption kReduceOptions[] = {{"--from"}, {"--to"}, {"--slices"}};
constexpr SOption kPictureOptions[] = {{"--size"}};

// Summaries have consecutive numbers.
constexpr SCommand kCommands[] = {
    {"create", "RECORDING.tarin PROJECT.tarprj [--add all|KIND,...] [--ins-configuration FILE]", 10511, 2,
     kCreateOptions, CreateCommand},
    {"run", "PROJECT", 10512, 1, {}, RunCommand},
    {"check", "PROJECT", 10513, 1, {}, CheckCommand},
    {"describe", "PROJECT", 10514, 1, {}, DescribeCommand},
    {"copy", "PROJECT OUT.tarprj", 10515, 2, {}, CopyCommand},
    {"parameters", "PROJECT OUT.xml", 10516, 2, {}, ParametersCommand},
    {"create-from-parameters", "IN.xml PROJECT.tarprj [--file ID=PATH]...", 10517, 2, kFromParametersOptions,
     CreateFromParametersCommand},
    {"dictionary", "PROJECT [--expert]", 10518, 1, kDictionaryOptions, DictionaryCommand},
    {"analyse", "FILE", 10519, 1, {}, AnalyseCommand},
    {"detect", "FILE", 10520, 1, {}, DetectCommand},
    {"channels", "FILE", 10521, 1, {}, ChannelsCommand},
    {"packets", "FILE CHANNEL [--from S] [--to S] [--limit N]", 10522, 2, kPacketsOptions, PacketsCommand},
    {"at", "FILE CHANNEL SECONDS", 10523, 3, {}, AtCommand},
    {"reduce", "FILE CHANNEL --from S --to S --slices N", 10524, 2, kReduceOptions, ReduceCommand},
    {"picture", "PROJECT OUT.png|.svg|.pdf [--size WxH]", 10525, 2, kPictureOptions, PictureCommand},
};

void PrintHelp(std::ostream& out) {
    out << FormatText(textUsage, {kProgram, "COMMAND", "..."}) << "\n\n";
    for (const SCommand& command : kCommands)
        out << "  " << command.name << ' ' << command.usage << "\n      " << GetText(command.summary) << '\n';
    out << GetText(textHelpTail);
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
        streams.error << kProgram << ": " << FormatText(textUnknownCommand, {words[0]}) << '\n';
        return exitUsage;
    }
    try {
        const auto optionsEnd = std::find(words.begin(), words.end(), "--");
        if (std::find(words.begin(), optionsEnd, "--help") != optionsEnd) {
            streams.out << FormatText(textUsage, {kProgram, command->name, command->usage}) << '\n'
                        << GetText(command->summary) << '\n';
            return exitSuccess;
        }
        const COptions options(words.subspan(1), command->options);
        if (options.GetArguments().size() != command->arguments) throw CUsageError(textWrongArguments);
        const int status = command->run(options, streams);
        streams.out.flush();
        // A full disk or a closed pipe behind standard output must not pass for success.
        if (streams.out) return status;
        streams.error << kProgram << ": " << GetText(textOutputNotWritten) << '\n';
        return exitFailure;
    } catch (const CUsageError& fault) {
        streams.error << kProgram << ": " << fault.what() << '\n'
                      << FormatText(textUsage, {kProgram, command->name, command->usage}) << '\n';
        return exitUsage;
    }
}

} // namespace Batch
