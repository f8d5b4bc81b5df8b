#include "batch/commands.h"

#include "foundation/texts.h"

#include <algorithm>
#include <ostream>

namespace Batch {

using Outils_Texte::EText;
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
    {"create", "RECORDING.tarin PROJECT.tarprj [--add all|KIND,...] [--ins-configuration FILE]",
     EText::createSummary, 2, kCreateOptions, CreateCommand},
    {"run", "PROJECT", EText::runSummary, 1, {}, RunCommand},
    {"check", "PROJECT", EText::checkSummary, 1, {}, CheckCommand},
    {"describe", "PROJECT", EText::describeSummary, 1, {}, DescribeCommand},
    {"copy", "PROJECT OUT.tarprj", EText::copySummary, 2, {}, CopyCommand},
    {"parameters", "PROJECT OUT.xml", EText::parametersSummary, 2, {}, ParametersCommand},
    {"create-from-parameters", "IN.xml PROJECT.tarprj [--file ID=PATH]...",
     EText::createFromParametersSummary, 2, kFromParametersOptions, CreateFromParametersCommand},
    {"dictionary", "PROJECT [--expert]", EText::dictionarySummary, 1, kDictionaryOptions, DictionaryCommand},
    {"analyse", "FILE", EText::analyseSummary, 1, {}, AnalyseCommand},
    {"detect", "FILE", EText::detectSummary, 1, {}, DetectCommand},
    {"channels", "FILE", EText::channelsSummary, 1, {}, ChannelsCommand},
    {"packets", "FILE CHANNEL [--from S] [--to S] [--limit N]", EText::packetsSummary, 2, kPacketsOptions,
     PacketsCommand},
    {"at", "FILE CHANNEL SECONDS", EText::atSummary, 3, {}, AtCommand},
    {"reduce", "FILE CHANNEL --from S --to S --slices N", EText::reduceSummary, 2, kReduceOptions,
     ReduceCommand},
    {"picture", "PROJECT OUT.png|.svg|.pdf [--size WxH]", EText::pictureSummary, 2, kPictureOptions,
     PictureCommand},
};

void PrintHelp(std::ostream& out) {
    out << FormatText(EText::commandUsage, {kProgram, "COMMAND", "..."}) << "\n\n";
    for (const SCommand& command : kCommands)
        out << "  " << command.name << ' ' << command.usage << "\n      " << GetText(command.summary) << '\n';
    out << GetText(EText::helpTail);
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
        streams.error << kProgram << ": " << FormatText(EText::unknownCommand, {words[0]}) << '\n';
        return exitUsage;
    }
    try {
        const auto optionsEnd = std::find(words.begin(), words.end(), "--");
        if (std::find(words.begin(), optionsEnd, "--help") != optionsEnd) {
            streams.out << FormatText(EText::commandUsage, {kProgram, command->name, command->usage}) << '\n'
                        << GetText(command->summary) << '\n';
            return exitSuccess;
        }
        const COptions options(words.subspan(1), command->options);
        if (options.GetArguments().size() != command->arguments) throw CUsageError(EText::wrongArguments);
        const int status = command->run(options, streams);
        streams.out.flush();
        // A full disk or a closed pipe behind standard output must not pass for success.
        if (streams.out) return status;
        streams.error << kProgram << ": " << GetText(EText::outputNotWritten) << '\n';
        return exitFailure;
    } catch (const CUsageError& fault) {
        streams.error << kProgram << ": " << fault.what() << '\n'
                      << FormatText(EText::commandUsage, {kProgram, command->name, command->usage}) << '\n';
        return exitUsage;
    }
}

} // namespace Batch
