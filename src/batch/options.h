// The words of a command line: options "--name value" and "--flag", and what stands between them.
#pragma once

#include "foundation/date_time.h"
#include "foundation/texts.h"

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

// What the user typed makes no sense; the text says why. Caught in Run, which answers with exit status 2.
class CUsageError : public std::runtime_error {
  public:
    explicit CUsageError(EText text, std::initializer_list<std::string_view> arguments = {});
};

// The options that a command knows.
struct SOption {
    std::string_view name; // with its dashes
    bool takesValue = true;
    bool repeats = false; // may be given several times
};

class COptions {
  public:
    // Sorts the words by the options that the command knows. Throws CUsageError for an unknown option, a
    // missing value or an option given twice. "--" ends the options.
    COptions(std::span<const std::string> words, std::span<const SOption> known);

    const std::vector<std::string>& GetArguments() const { return m_arguments; }
    bool Has(std::string_view option) const { return m_values.contains(option); }
    std::optional<std::string> Get(std::string_view option) const;
    // Every value of an option that repeats, in order.
    std::vector<std::string> GetAll(std::string_view option) const;
    // Throws CUsageError for a value that is no number of seconds, or no whole number above zero.
    std::optional<Outils_Temps::CDateTimeSpan> GetSeconds(std::string_view option) const;
    std::optional<long long> GetPositive(std::string_view option) const;

  private:
    std::vector<std::string> m_arguments;
    std::map<std::string, std::vector<std::string>, std::less<>> m_values;
};

// A number of seconds as a span that the clock of a recording can hold, or CUsageError.
Outils_Temps::CDateTimeSpan ParseSeconds(std::string_view text);

} // namespace Batch
