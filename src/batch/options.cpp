#include "batch/options.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <cmath>

namespace Batch {

COptions::COptions(std::span<const std::string> words, std::span<const SOption> known) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || !word.starts_with("--")) {
            m_arguments.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        const auto option =
            std::find_if(known.begin(), known.end(), [&](const SOption& row) { return row.name == word; });
        if (option == known.end()) throw CUsageError("unknown option " + word);
        if (option->takesValue && i + 1 == words.size())
            throw CUsageError("option " + word + " needs a value");
        auto& values = m_values[word];
        if (!values.empty() && !option->repeats) throw CUsageError("option " + word + " is given twice");
        values.push_back(option->takesValue ? words[++i] : std::string());
    }
}

std::optional<std::string> COptions::Get(std::string_view option) const {
    const auto place = m_values.find(option);
    return place == m_values.end() ? std::nullopt : std::optional(place->second.front());
}

std::vector<std::string> COptions::GetAll(std::string_view option) const {
    const auto place = m_values.find(option);
    return place == m_values.end() ? std::vector<std::string>() : place->second;
}

std::optional<double> COptions::GetNumber(std::string_view option) const {
    const auto text = Get(option);
    return text ? std::optional(ParseSeconds(*text)) : std::nullopt;
}

std::optional<long long> COptions::GetPositive(std::string_view option) const {
    const auto text = Get(option);
    if (!text) return std::nullopt;
    const auto number = Outils_Texte::ParseInt(*text);
    if (!number || *number <= 0)
        throw CUsageError(std::string(option) + " needs a whole number above zero, not \"" + *text + '"');
    return *number;
}

double ParseSeconds(std::string_view text) {
    const auto number = Outils_Texte::ParseDouble(text);
    if (!number || !std::isfinite(*number))
        throw CUsageError('"' + std::string(text) + "\" is no number of seconds");
    return *number;
}

} // namespace Batch
