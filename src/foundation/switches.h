// Command lines as tables: one row a switch, one parser and one help text for all programs.
#pragma once

#include "foundation/text_id.h"

#include <cstddef>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Outils_Texte {

enum class ESwitchValue : unsigned char {
    none,    // the switch alone
    text,    // any argument
    list,    // the same; the switch may be given several times
    pair,    // two arguments, joined by a blank
    word,    // one of the row's words, in any case
    integer, // within the row's range
    number   // the same, with a fraction
};

struct SSwitchRow {
    std::string_view name;  // with its prefix, "/remote" or "--seed"; matched without case
    ESwitchValue kind;      // what follows it
    std::string_view value; // words with "|" between them, or how the help names the value: "SECONDS"
    EText help;             // one line
    double least = std::numeric_limits<double>::lowest();
    double most = std::numeric_limits<double>::max();
};

// One switch of a command line. Valid as long as the rows.
struct SGivenSwitch {
    const SSwitchRow* row = nullptr;
    std::string text;     // the value as typed
    double number = 0.0;  // of an integer or a number
    std::size_t word = 0; // of a word: its place among the row's words
};

// What else looks like a switch, and is refused.
enum class ESwitchStyle : unsigned char {
    slash, // "--x", or "/x" without a further slash or point
    dash   // "-x", unless it is a number; all that follows the word "--" is files
};

// A command line cut into switches and files.
class CArguments {
  public:
    // Reads the arguments after the program's name. An argument is a switch when a row has its name; when no
    // row has it and it looks like one, the line is refused, as it is for a value that a row does not take.
    // False with the reason in `error`; what precedes the fault is read. REQUIRES: `rows` outlives the
    // object.
    bool Parse(std::span<const SSwitchRow> rows, std::span<const std::string> arguments, std::string& error,
               ESwitchStyle style = ESwitchStyle::slash);

    // The last switch of this name; null when it is not given.
    const SGivenSwitch* Find(std::string_view name) const;
    bool Has(std::string_view name) const { return Find(name) != nullptr; }
    std::string GetText(std::string_view name, std::string_view otherwise = {}) const;
    double GetNumber(std::string_view name, double otherwise) const;
    std::size_t GetWord(std::string_view name, std::size_t otherwise) const;

    // All switches, and all that is none, in the order of the line.
    const std::vector<SGivenSwitch>& GetSwitches() const { return m_switches; }
    const std::vector<std::string>& GetFiles() const { return m_files; }

  private:
    std::vector<SGivenSwitch> m_switches;
    std::vector<std::string> m_files;
};

// One line for each row: name, value, help.
std::string DescribeSwitches(std::span<const SSwitchRow> rows);

} // namespace Outils_Texte
