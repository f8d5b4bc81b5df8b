// A command line is one string, as the tools of the original platform get it; these are its quoting rules.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Communication_Processus {

// The arguments in `commandLine`, the program first. The program ends at the first blank or tab outside
// double quotes, and its backslashes are ordinary characters. In what follows, a backslash is special only
// in a row of backslashes before a double quote: each pair of them means one, and one left over makes
// the quote an ordinary character. Two double quotes inside a quoted part mean one. The text ends at a
// zero character. An empty text, or one that starts with a blank, has an empty program.
std::vector<std::string> SplitCommandLine(std::string_view commandLine);

// `argument` in double quotes, so that SplitCommandLine gives it back, whatever it holds.
std::string QuoteArgument(std::string_view argument);
// The same, but the quotes are left out where the text can do without them: a path without blanks.
std::string QuoteArgumentIfNeeded(std::string_view argument);
// `program` in double quotes for the first place. A program's name has no way to hold a double quote: such a
// path gives an empty text, with which no child starts.
std::string QuoteProgram(std::string_view program);

} // namespace Communication_Processus
