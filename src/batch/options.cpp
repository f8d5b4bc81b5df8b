#include "batch/options.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>

namespace Batch {

using Outils_Temps::CDateTimeSpan;

CUsageError::CUsageError(EText text, std::initializer_list<std::string_view> arguments)
    : std::runtime_error(Outils_Texte::FormatText(text, arguments)) {}

COptions::COptions(std::span<const std::string> words, std::span<const SSwitchRow> known) {
    std::string error;
    if (!m_words.Parse(known, words, error, Outils_Texte::ESwitchStyle::dash)) throw CUsageError(error);
    for (const auto& given : m_words.GetSwitches())
        if (&given != m_words.Find(given.row->name) && given.row->kind != ESwitchValue::list)
            throw CUsageError(EText::optionTwice, {given.row->name});
}

std::optional<std::string> COptions::Get(std::string_view option) const {
    const auto* given = m_words.Find(option);
    return given ? std::optional(given->text) : std::nullopt;
}

std::vector<std::string> COptions::GetAll(std::string_view option) const {
    std::vector<std::string> values;
    for (const auto& given : m_words.GetSwitches())
        if (given.row->name == option) values.push_back(given.text);
    return values;
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
