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

constexpr SSwitchRow kFrom{"--from", ESwitchValue::text, "S", EText::fromHelp};
constexpr SSwitchRow kTo{"--to", ESwitchValue::text, "S", EText::toHelp};

constexpr SSwitchRow kCreateOptions[] = {
    {"--add", ESwitchValue::text, "all|KIND,...", EText::addHelp},
    {"--ins-configuration", ESwitchValue::text, "FILE", EText::insConfigurationHelp}};
constexpr SSwitchRow kReportOptions[] = {kJson};
constexpr SSwitchRow kFromParametersOptions[] = {{"--file", ESwitchValue::list, "ID=PATH", EText::fileHelp}};
constexpr SSwitchRow kDictionaryOptions[] = {{"--expert", ESwitchValue::none, "", EText::expertHelp}, kJson};
constexpr SSwitchRow kPacketsOptions[] = {
    kFrom, kTo, {"--limit", ESwitchValue::text, "N", EText::limitHelp}, kJson};
constexpr SSwitchRow kNoIndex{"--no-index", ESwitchValue::none, "", EText::noIndexHelp};
constexpr SSwitchRow kAtOptions[] = {kNoIndex, kJson};
constexpr SSwitchRow kReduceOptions[] = {
    kFrom, kTo, {"--slices", ESwitchValue::text, "N", EText::slicesHelp}, kNoIndex, kJson};
constexpr SSwitchRow kCompareOptions[] = {
    {"--fields", ESwitchValue::text, "NAME,...", EText::fieldsHelp}, kFrom, kTo, kJson};
constexpr SSwitchRow kPictureOptions[] = {{"--size", ESwitchValue::text, "WxH", EText::sizeHelp}};

const SCommand kCommands[] = {
    {"create", "RECORDING PROJECT", EText::createSummary, kCreateOptions, CreateCommand},
    {"run", "PROJECT", EText::runSummary, kReportOptions, RunCommand},
    {"check", "PROJECT", EText::checkSummary, kReportOptions, CheckCommand},
    {"describe", "PROJECT", EText::describeSummary, kReportOptions, DescribeCommand},
    {"copy", "PROJECT NEW-PROJECT", EText::copySummary, {}, CopyCommand},
    {"parameters", "PROJECT OUT.xml", EText::parametersSummary, {}, ParametersCommand},
    {"create-from-parameters", "IN.xml PROJECT", EText::createFromParametersSummary, kFromParametersOptions,
     CreateFromParametersCommand},
    {"dictionary", "PROJECT", EText::dictionarySummary, kDictionaryOptions, DictionaryCommand},
    {"analyse", "FILE", EText::analyseSummary, kReportOptions, AnalyseCommand},
    {"index", "FILE", EText::indexSummary, kReportOptions, IndexCommand},
    {"detect", "FILE", EText::detectSummary, kReportOptions, DetectCommand},
    {"channels", "FILE", EText::channelsSummary, kReportOptions, ChannelsCommand},
    {"packets", "FILE CHANNEL", EText::packetsSummary, kPacketsOptions, PacketsCommand},
    {"at", "FILE CHANNEL S", EText::atSummary, kAtOptions, AtCommand},
    {"reduce", "FILE CHANNEL", EText::reduceSummary, kReduceOptions, ReduceCommand},
    {"compare", "RESULT TRUTH", EText::compareSummary, kCompareOptions, CompareCommand},
    {"import", "KIND|auto SOURCE... TARGET", EText::importSummary, GetImportOptions(), ImportCommand},
    {"export", "FORMAT PROJECT|FILE TARGET", EText::exportSummary, GetExportOptions(), ExportCommand},
    {"update", "FILE...", EText::updateSummary, GetUpdateOptions(), UpdateCommand},
    {"picture", "PROJECT OUT.png|.svg|.pdf", EText::pictureSummary, kPictureOptions, PictureCommand},
};

constexpr bool IsOneOf(std::string_view word, std::initializer_list<std::string_view> words) {
    return std::ranges::find(words, word) != words.end();
}

std::string GetUsage(const SCommand& command) {
    std::string words(command.arguments);
    for (const SSwitchRow& option : command.options) {
        words += " [" + std::string(option.name);
        if (!option.value.empty()) words += ' ' + std::string(option.value);
        words += option.kind == ESwitchValue::list ? "]..." : "]";
    }
    return words;
}

std::string GetUsageLine(const SCommand& command) {
    return FormatText(EText::commandUsage, {kProgram, command.name, GetUsage(command)}) + '\n';
}

int PrintHelp(std::ostream& out) {
    out << FormatText(EText::commandUsage, {kProgram, "COMMAND", "..."}) << "\n\n";
    for (const SCommand& command : kCommands)
        out << "  " << command.name << ' ' << GetUsage(command) << "\n      " << GetText(command.summary)
            << '\n';
    out << GetText(EText::helpTail);
    return exitSuccess;
}

int PrintHelp(const SCommand& command, std::ostream& out) {
    out << GetUsageLine(command) << GetText(command.summary) << '\n';
    for (const SSwitchRow& option : command.options)
        out << "  " << option.name << ' ' << option.value << "\n      " << GetText(option.help) << '\n';
    return exitSuccess;
}

int PrintVersion(std::ostream& out) {
    out << kProgram << ' ' << kVersion << '\n';
    return exitSuccess;
}

const SCommand& FindCommand(std::string_view name) {
    const auto index = FindNoCase(kCommands, &SCommand::name, name);
    if (!index) throw CUsageError(EText::unknownCommand, {name, ListWords(kCommands, &SCommand::name)});
    return kCommands[*index];
}

int RunCommandLine(const SCommand& command, std::span<const std::string> words, SStreams streams) {
    for (const std::string& word : words) {
        if (word == "--") break;
        if (IsOneOf(word, {"--help", "-h"})) return PrintHelp(command, streams.out);
        if (word == "--version") return PrintVersion(streams.out);
    }
    const COptions options(words, command.options);
    const auto arguments =
        static_cast<std::size_t>(std::ranges::count(command.arguments, ' ')) + 1; // as the usage has them
    const bool repeats = command.arguments.find("...") != std::string_view::npos;
    if (options.GetArguments().size() < arguments || (options.GetArguments().size() > arguments && !repeats))
        throw CUsageError(EText::wrongArguments);
    return command.run(options, streams);
}

int RunWords(std::span<const std::string> words, SStreams streams, const SCommand*& command) {
    if (words.empty()) {
        PrintHelp(streams.error);
        return exitUsage;
    }
    if (IsOneOf(words[0], {"help", "--help", "-h"})) {
        return words.size() > 1 ? PrintHelp(FindCommand(words[1]), streams.out) : PrintHelp(streams.out);
    }
    if (words[0] == "--version") return PrintVersion(streams.out);
    command = &FindCommand(words[0]);
    return RunCommandLine(*command, words.subspan(1), streams);
}

} // namespace

std::span<const SCommand> GetCommands() { return kCommands; }

int Run(std::span<const std::string> words, SStreams streams) {
    const SCommand* command = nullptr;
    try {
        const int status = RunWords(words, streams, command);
        streams.out.flush();
        // A full disk or a closed pipe at standard output must not pass for success.
        if (streams.out) return status;
        streams.error << kProgram << ": " << GetText(EText::outputNotWritten) << '\n';
        return exitFailure;
    } catch (const CUsageError& fault) {
        streams.error << kProgram << ": " << fault.what() << '\n';
        if (command) streams.error << GetUsageLine(*command);
        return exitUsage;
    }
}

} // namespace Batch
