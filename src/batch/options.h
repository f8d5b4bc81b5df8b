// The words of a command line: options "--name value" and "--flag", and the arguments between them.
#pragma once

#include "batch/table.h"
#include "foundation/date_time.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Batch {

using Outils_Texte::EText;

// The command line makes no sense; the text says why. Caught in Run, which answers with exit status 2.
class CUsageError : public std::runtime_error {
  public:
    explicit CUsageError(EText text, std::initializer_list<std::string_view> arguments = {});
};

// An option of a command.
struct SOption {
    std::string_view name;  // with its dashes
    std::string_view value; // what follows it, as the usage shows it; empty for a flag
    EText help;             // one line
    bool repeats = false;   // may be given several times
};
inline constexpr SOption kJson{"--json", "", EText::jsonHelp};

class COptions {
  public:
    // Sorts the words by the options that the command knows. Throws CUsageError for an unknown option, a
    // missing value or an option given twice. "--" ends the options; a number below zero is an argument.
    COptions(std::span<const std::string> words, std::span<const SOption> known);

    const std::vector<std::string>& GetArguments() const { return m_arguments; }
    bool Has(std::string_view option) const { return m_values.contains(option); }
    std::optional<std::string> Get(std::string_view option) const;
    // Every value of an option that repeats, in order.
    std::vector<std::string> GetAll(std::string_view option) const;
    // The form that the command's table has.
    EForm GetForm() const { return Has(kJson.name) ? EForm::json : EForm::rows; }
    // Throws CUsageError for a value that is no number of seconds, or no whole number above zero.
    std::optional<Outils_Temps::CDateTimeSpan> GetSeconds(std::string_view option) const;
    std::optional<long long> GetPositive(std::string_view option) const;

  private:
    std::vector<std::string> m_arguments;
    std::map<std::string, std::vector<std::string>, std::less<>> m_values;
};

// A number of seconds as a span that the clock of a recording can hold. Throws CUsageError.
Outils_Temps::CDateTimeSpan ParseSeconds(std::string_view text);

// The index of the row whose `member` is `word` without regard to case; empty when there is none.
template <class Rows, class Member>
std::optional<std::size_t> FindNoCase(const Rows& rows, Member member, std::string_view word) {
    std::size_t index = 0;
    for (const auto& row : rows) {
        if (Outils_Texte::EqualsNoCase(std::invoke(member, row), word)) return index;
        ++index;
    }
    return std::nullopt;
}

// Words of a list as a message shows them: "a, b, c", or that there is none.
template <class Rows, class Member>
std::string ListWords(const Rows& rows, Member member) {
    std::string list;
    for (const auto& row : rows) {
        if (!list.empty()) list += ", ";
        list += std::invoke(member, row);
    }
    return list.empty() ? std::string(Outils_Texte::GetText(EText::nothingThere)) : list;
}

} // namespace Batch
