// The numbered texts of the programs: every message, label and title that a user reads. The rows are in
// resources/texts.inc; no message text is written in code.
#pragma once

#include "foundation/text_id.h"

#include <span>
#include <string_view>

namespace Outils_Texte {

enum class EText : int {
    none = 0, // kNoText
#define TEXT(number, name, text) name = number,
#include "texts.inc"
#undef TEXT
};

struct STextRow {
    EText id;
    std::string_view name;
    std::string_view text;
};
// Every row, numbers ascending.
std::span<const STextRow> GetTexts();

} // namespace Outils_Texte
