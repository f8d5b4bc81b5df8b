#include "foundation/switches.h"

#include "foundation/numbers.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Outils_Texte {
namespace {

bool LooksLikeSwitch(std::string_view argument, ESwitchStyle style) {
    if (style == ESwitchStyle::dash)
        return argument.size() > 1 && argument[0] == '-' && !ParseDouble(argument);
    if (argument.starts_with("--")) return true;
    return argument.size() > 1 && argument[0] == '/' && argument.find_first_of("/.", 1) == argument.npos;
}

std::optional<std::size_t> FindWord(std::string_view words, std::string_view word) {
    for (std::size_t index = 0;; ++index) {
        const std::size_t end = words.find('|');
        if (EqualsNoCase(words.substr(0, end), word)) return index;
        if (end == words.npos) return std::nullopt;
        words.remove_prefix(end + 1);
    }
}

bool ReadValue(SGivenSwitch& given) {
    const SSwitchRow& row = *given.row;
    if (row.kind == ESwitchValue::word) {
        const auto word = FindWord(row.value, given.text);
        given.word = word.value_or(0);
        return word.has_value();
    }
    if (row.kind != ESwitchValue::integer && row.kind != ESwitchValue::number) return true;
    const auto number = ParseDouble(given.text);
    if (!number || !(*number >= row.least && *number <= row.most)) return false;
    given.number = *number;
    return row.kind == ESwitchValue::number || std::floor(*number) == *number;
}

// What the row takes, for a user who gave something else.
std::string DescribeValue(const SSwitchRow& row) {
    const bool ranged =
        row.least > std::numeric_limits<double>::lowest() || row.most < std::numeric_limits<double>::max();
    if (!ranged) return std::string(row.value);
    return FormatText(EText::switchRange, {row.value, FormatShortest(row.least), FormatShortest(row.most)});
}

std::string ListNames(std::span<const SSwitchRow> rows) {
    std::string names;
    for (const SSwitchRow& row : rows) (names += names.empty() ? "" : ", ") += row.name;
    return names.empty() ? std::string(GetText(EText::nothingThere)) : names;
}

} // namespace

bool CArguments::Parse(std::span<const SSwitchRow> rows, std::span<const std::string> arguments,
                       std::string& error, ESwitchStyle style) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (style == ESwitchStyle::dash && argument == "--") {
            m_files.insert(m_files.end(), arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                           arguments.end());
            break;
        }
        const auto row =
            std::ranges::find_if(rows, [&](const SSwitchRow& r) { return EqualsNoCase(r.name, argument); });
        if (row == rows.end()) {
            if (LooksLikeSwitch(argument, style)) {
                error = FormatText(EText::switchUnknown, {argument, ListNames(rows)});
                return false;
            }
            m_files.push_back(argument);
            continue;
        }
        SGivenSwitch given{&*row, {}, 0.0, 0};
        const std::size_t count = row->kind == ESwitchValue::none   ? 0
                                  : row->kind == ESwitchValue::pair ? 2
                                                                    : 1;
        if (i + count >= arguments.size()) {
            error = FormatText(EText::switchWithoutValue, {row->name, DescribeValue(*row)});
            return false;
        }
        for (std::size_t value = 0; value < count; ++value)
            given.text += (value > 0 ? " " : "") + arguments[++i];
        if (!ReadValue(given)) {
            error = FormatText(EText::switchWrongValue, {row->name, given.text, DescribeValue(*row)});
            return false;
        }
        m_switches.push_back(std::move(given));
    }
    return true;
}

const SGivenSwitch* CArguments::Find(std::string_view name) const {
    const auto found = std::find_if(m_switches.rbegin(), m_switches.rend(), [&](const SGivenSwitch& given) {
        return EqualsNoCase(given.row->name, name);
    });
    return found == m_switches.rend() ? nullptr : &*found;
}

std::string CArguments::GetText(std::string_view name, std::string_view otherwise) const {
    const SGivenSwitch* given = Find(name);
    return given ? given->text : std::string(otherwise);
}

double CArguments::GetNumber(std::string_view name, double otherwise) const {
    const SGivenSwitch* given = Find(name);
    return given ? given->number : otherwise;
}

std::size_t CArguments::GetWord(std::string_view name, std::size_t otherwise) const {
    const SGivenSwitch* given = Find(name);
    return given ? given->word : otherwise;
}

std::string DescribeSwitches(std::span<const SSwitchRow> rows) {
    constexpr std::size_t kHelpColumn = 34;
    std::string text;
    for (const SSwitchRow& row : rows) {
        std::string left = "  ";
        left += row.name;
        if (!row.value.empty()) (left += ' ') += row.value;
        left.resize(std::max(left.size() + 2, kHelpColumn), ' ');
        ((text += left) += Outils_Texte::GetText(row.help)) += '\n';
    }
    return text;
}

} // namespace Outils_Texte
