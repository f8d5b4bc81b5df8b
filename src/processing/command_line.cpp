#include "processing/command_line.h"

#include "foundation/text.h"

namespace Communication_Processus {

namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

std::string TakeProgram(std::string_view& rest) {
    std::string program;
    bool quoted = false;
    std::size_t i = 0;
    for (; i < rest.size() && (quoted || !IsBlank(rest[i])); ++i) {
        if (rest[i] == '"')
            quoted = !quoted;
        else
            program += rest[i];
    }
    rest.remove_prefix(i);
    return program;
}

// `rest` starts at the argument's first character.
std::string TakeArgument(std::string_view& rest) {
    std::string argument;
    bool quoted = false;
    std::size_t i = 0;
    while (i < rest.size() && (quoted || !IsBlank(rest[i]))) {
        std::size_t backslashes = 0;
        while (i < rest.size() && rest[i] == '\\') {
            ++backslashes;
            ++i;
        }
        if (i == rest.size() || rest[i] != '"') {
            argument.append(backslashes, '\\');
            if (backslashes == 0) argument += rest[i++];
            continue;
        }
        argument.append(backslashes / 2, '\\');
        if (backslashes % 2 == 1) {
            argument += '"';
        } else if (quoted && i + 1 < rest.size() && rest[i + 1] == '"') {
            argument += '"';
            ++i;
        } else {
            quoted = !quoted;
        }
        ++i;
    }
    rest.remove_prefix(i);
    return argument;
}

} // namespace

std::vector<std::string> SplitCommandLine(std::string_view commandLine) {
    std::string_view rest = Outils_Texte::TrimAtZero(commandLine);
    std::vector<std::string> arguments{TakeProgram(rest)};
    for (;;) {
        const std::size_t start = rest.find_first_not_of(" \t");
        if (start == std::string_view::npos) return arguments;
        rest.remove_prefix(start);
        arguments.push_back(TakeArgument(rest));
    }
}

std::string QuoteArgument(std::string_view argument) {
    std::string quoted = "\"";
    std::size_t backslashes = 0; // at the end of `quoted`: special only once a quote follows
    for (const char c : argument) {
        if (c == '"') quoted.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        quoted += c;
    }
    quoted.append(backslashes, '\\');
    quoted += '"';
    return quoted;
}

std::string QuoteArgumentIfNeeded(std::string_view argument) {
    const bool plain = !argument.empty() && argument.find_first_of(" \t\"") == std::string_view::npos;
    return plain ? std::string(argument) : QuoteArgument(argument);
}

std::string QuoteProgram(std::string_view program) {
    if (program.find('"') != std::string_view::npos) return {};
    return '"' + std::string(program) + '"';
}

} // namespace Communication_Processus
