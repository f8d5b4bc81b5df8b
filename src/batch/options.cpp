#include "batch/options.h"

#include "foundation/numbers.h"

#include <algorithm>
#include <cmath>

namespace Batch {

using Outils_Temps::CDateTimeSpan;

CUsageError::CUsageError(EText text, std::initializer_list<std::string_view> arguments)
    : std::runtime_error(Outils_Texte::FormatText(text, arguments)) {}

COptions::COptions(std::span<const std::string> words, std::span<const SOption> known) {
    bool optionsEnded = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const bool isOption = word.size() > 1 && word[0] == '-' && !Outils_Texte::ParseDouble(word);
        if (optionsEnded || !isOption) {
            m_arguments.push_back(word);
            continue;
        }
        if (word == "--") {
            optionsEnded = true;
            continue;
        }
        const auto option = std::ranges::find(known, word, &SOption::name);
        if (option == known.end())
            throw CUsageError(EText::unknownOption, {word, ListWords(known, &SOption::name)});
        const bool takesValue = !option->value.empty();
        if (takesValue && i + 1 == words.size()) throw CUsageError(EText::optionValue, {word});
        auto& values = m_values[word];
        if (!values.empty() && !option->repeats) throw CUsageError(EText::optionTwice, {word});
        values.push_back(takesValue ? words[++i] : std::string());
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

std::optional<CDateTimeSpan> COptions::GetSeconds(std::string_view option) const {
    const auto text = Get(option);
    return text ? std::optional(ParseSeconds(*text)) : std::nullopt;
}

std::optional<long long> COptions::GetPositive(std::string_view option) const {
    const auto text = Get(option);
    if (!text) return std::nullopt;
    const auto number = Outils_Texte::ParseInt(*text);
    if (!number || *number <= 0) throw CUsageError(EText::positiveNumber, {option, *text});
    return *number;
}

CDateTimeSpan ParseSeconds(std::string_view text) {
    const auto number = Outils_Texte::ParseDouble(text);
    auto span = CDateTimeSpan::Invalid();
    if (number && std::isfinite(*number)) span = CDateTimeSpan::FromSeconds(*number);
    if (!span.IsValid()) throw CUsageError(EText::noSeconds, {text});
    return span;
}

} // namespace Batch
