#include "foundation/texts.h"

#include <algorithm>
#include <cassert>
#include <iterator>

namespace Outils_Texte {

namespace {

constexpr STextRow kTexts[] = {
#define TEXT(number, name, text) {EText::name, #name, text},
#include "texts.inc"
#undef TEXT
};

constexpr bool NumbersAscend() {
    return std::ranges::adjacent_find(kTexts, std::ranges::greater_equal(), &STextRow::id) ==
           std::end(kTexts);
}
static_assert(NumbersAscend(), "a number of resources/texts.inc is used twice or out of order");

} // namespace

std::string_view GetText(EText text) {
    if (text == EText::none) return {};
    const auto* row = std::ranges::lower_bound(kTexts, text, {}, &STextRow::id);
    assert(row != std::end(kTexts) && row->id == text);
    return row->text;
}

std::string FormatText(EText id, std::initializer_list<std::string_view> arguments) {
    const std::string_view form = GetText(id);
    std::string text;
    for (std::size_t i = 0; i < form.size(); ++i) {
        // "%1" names the first argument; any other percent sign is an ordinary character.
        const std::size_t number = i + 1 < form.size() ? static_cast<std::size_t>(form[i + 1] - '1') : 9;
        if (form[i] == '%' && number < arguments.size()) {
            text += arguments.begin()[number];
            ++i;
        } else {
            text += form[i];
        }
    }
    return text;
}

std::span<const STextRow> GetTexts() { return kTexts; }

} // namespace Outils_Texte
