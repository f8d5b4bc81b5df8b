// The words of a command line: options "--name value" and "--flag", and the arguments between them.
#pragma once

#include "batch/table.h"
#include "foundation/date_time.h"
#include "foundation/switches.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <functional>
#include <initializer_list>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Batch {

using Outils_Texte::ESwitchValue;
using Outils_Texte::EText;
using Outils_Texte::SSwitchRow;

// The command line makes no sense; the text says why. Caught in Run, which answers with exit status 2.
class CUsageError : public std::runtime_error {
  public:
    explicit CUsageError(EText text, std::initializer_list<std::string_view> arguments = {});
    explicit CUsageError(const std::string& reason) : std::runtime_error(reason) {}
};

inline constexpr SSwitchRow kJson{"--json", ESwitchValue::none, "", EText::jsonHelp};

class COptions {
  public:
    // Sorts the words by the options that the command knows, which must outlive the object. Throws
    // CUsageError for a line that the parser refuses, and for an option given twice that is no list.
    COptions(std::span<const std::string> words, std::span<const SSwitchRow> known);

    const std::vector<std::string>& GetArguments() const { return m_words.GetFiles(); }
    bool Has(std::string_view option) const { return m_words.Has(option); }
    std::optional<std::string> Get(std::string_view option) const;
    // Every value of an option that is a list, in order.
    std::vector<std::string> GetAll(std::string_view option) const;
    // The form that the command's table has.
    EForm GetForm() const { return Has(kJson.name) ? EForm::json : EForm::rows; }
    // Throws CUsageError for a value that is no number of seconds, or no whole number above zero.
    std::optional<Outils_Temps::CDateTimeSpan> GetSeconds(std::string_view option) const;
    std::optional<long long> GetPositive(std::string_view option) const;

  private:
    Outils_Texte::CArguments m_words;
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
