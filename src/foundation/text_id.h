// The type of the numbered texts without their names: for headers, and for code that passes texts on. Only a
// source that names a text includes foundation/texts.h, and is compiled again after a change of the rows.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace Outils_Texte {

// The value is the text's number.
enum class EText : int;

inline constexpr EText kNoText{};

// For families whose rows follow each other: the row `index` places after the first. REQUIRES: there is one.
constexpr EText operator+(EText first, int index) {
    return static_cast<EText>(static_cast<int>(first) + index);
}

// Any thread. Empty for kNoText. REQUIRES: the text is a row.
std::string_view GetText(EText text);
// The same with %1, %2 ... replaced by the arguments.
std::string FormatText(EText text, std::initializer_list<std::string_view> arguments);

} // namespace Outils_Texte
