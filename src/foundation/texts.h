// The numbered texts of the program: every message, label and title that a user reads. The rows are in
// resources/texts.inc; no message text is written in code.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace Outils_Texte {

// The text with this number; "?" with an unknown one.
std::string_view GetText(int id);
// The same with %1, %2 ... replaced by the arguments.
std::string FormatText(int id, std::initializer_list<std::string_view> arguments);

// Calls `visit(id, text)` for every row, in ascending order of ids.
void ForEachText(void (*visit)(int id, std::string_view text, void* context), void* context);

} // namespace Outils_Texte
