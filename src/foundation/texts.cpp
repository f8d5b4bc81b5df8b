#include "foundation/texts.h"

#include <algorithm>
#include <iterator>

namespace Outils_Texte {

namespace {

struct SText {
    int id;
    std::string_view text;
};

constexpr SText kTexts[] = {
#include "texts.inc"
};

constexpr bool IdsAscend() {
    for (std::size_t i = 1; i < std::size(kTexts); ++i)
        if (kTexts[i].id <= kTexts[i - 1].id) return false;
    return true;
}
static_assert(IdsAscend(), "a number stands twice or out of order in resources/texts.inc");

} // namespace

std::string_view GetText(int id) {
    const auto row = std::lower_bound(std::begin(kTexts), std::end(kTexts), id,
                                      [](const SText& text, int wanted) { return text.id < wanted; });
    return row != std::end(kTexts) && row->id == id ? row->text : std::string_view("?");
}

std::string FormatText(int id, std::initializer_list<std::string_view> arguments) {
    const std::string_view form = GetText(id);
    std::string text;
    for (std::size_t i = 0; i < form.size(); ++i) {
        // "%1" names the first argument; any other percent sign stands for itself.
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

void ForEachText(void (*visit)(int id, std::string_view text, void* context), void* context) {
    for (const SText& row : kTexts) visit(row.id, row.text, context);
}

} // namespace Outils_Texte
