// The numbered texts of the programs: every message, label and title that a user reads. The rows are in
// resources/texts.inc; no message text is written in code.
#pragma once

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace Outils_Texte {

// The value is the text's number.
enum class EText : int {
    none = 0, // no text
#define TEXT(number, name, text) name = number,
#include "texts.inc"
#undef TEXT
};

// For families whose rows follow each other: the row `index` places after the first. REQUIRES: there is one.
constexpr EText operator+(EText first, int index) {
    return static_cast<EText>(static_cast<int>(first) + index);
}

// Any thread. Empty for EText::none. REQUIRES: the text is a row.
std::string_view GetText(EText text);
// The same with %1, %2 ... replaced by the arguments.
std::string FormatText(EText text, std::initializer_list<std::string_view> arguments);

struct STextRow {
    EText id;
    std::string_view name;
    std::string_view text;
};
// Every row, numbers ascending.
std::span<const STextRow> GetTexts();

} // namespace Outils_Texte
