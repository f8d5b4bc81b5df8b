// The filters of file dialogs: a text of "name|patterns|" pairs with one more "|" at the end, as in
// "Text files|*.txt;*.log|All files (*.*)|*.*||".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Outils_Fichiers {

struct SFileFilter {
    std::string name;                  // without patterns in brackets at its end
    std::vector<std::string> patterns; // "*.txt"
    bool operator==(const SFileFilter&) const = default;
};

// Any thread. A pair without patterns is ignored.
std::vector<SFileFilter> ParseFileFilters(std::string_view text);

} // namespace Outils_Fichiers
