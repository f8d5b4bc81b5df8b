// Command lines of the child programs as tables: one row a switch, one function that writes them.
#pragma once

#include "processing/command_line.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Communication_Processus {

// How the value of a switch is written.
enum class EArgument {
    flag,          // the switch alone; the value's text is ignored
    word,          // as it is
    quoted,        // in double quotes
    quotedIfNeeded // in double quotes when it holds a blank or a quote, or is empty
};

template <class TOptions>
struct SCommandSwitch {
    std::string_view name; // "/remote"; empty for an argument without a switch
    EArgument kind;
    // The values of the switch, each written with its name. No value leaves the switch out.
    std::vector<std::string> (*values)(const TOptions& options);
};

// " /name value", " /name" or " value".
std::string WriteSwitch(std::string_view name, EArgument kind, std::string_view value);

// The program in double quotes and the switches in the order of the rows. Empty, so that no child starts, for
// a program whose path holds a double quote.
template <class TOptions, std::size_t Count>
std::string MakeCommandLine(std::string_view program, const SCommandSwitch<TOptions> (&rows)[Count],
                            const TOptions& options) {
    std::string line = QuoteProgram(program);
    if (line.empty()) return line;
    for (const auto& row : rows)
        for (const std::string& value : row.values(options)) line += WriteSwitch(row.name, row.kind, value);
    return line;
}

} // namespace Communication_Processus
