#include "foundation/file_filter.h"

namespace Outils_Fichiers {

namespace {

// Takes the text before the next separator off the front of `text`.
std::string_view TakePart(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}

std::string_view WithoutBrackets(std::string_view name) {
    if (name.ends_with(')')) name = name.substr(0, name.rfind('('));
    while (name.ends_with(' ')) name.remove_suffix(1);
    return name;
}

} // namespace

std::vector<SFileFilter> ParseFileFilters(std::string_view text) {
    std::vector<SFileFilter> filters;
    while (!text.empty() && text != "|") {
        SFileFilter filter;
        filter.name = WithoutBrackets(TakePart(text, '|'));
        for (std::string_view patterns = TakePart(text, '|'); !patterns.empty();)
            filter.patterns.emplace_back(TakePart(patterns, ';'));
        if (!filter.patterns.empty()) filters.push_back(std::move(filter));
    }
    return filters;
}

} // namespace Outils_Fichiers
