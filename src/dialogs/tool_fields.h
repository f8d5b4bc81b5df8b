// The fields of a tool's dialog: one row each, and the values that a user, the settings or a command line
// gave them. UI thread.
#pragma once

#include "config/schema.h"
#include "foundation/switches.h"
#include "foundation/text_id.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Dialogue_Tarvel {

using Outils_Texte::EText;

enum class EFieldKind {
    word,    // one of the row's words
    integer, // as typed: the checks at the start read it
    real,    // with a decimal point
    date,    // "2026-03-01", as typed
    time,    // seconds of the simulation; empty for none
    color,   // "#AARRGGBB"
    path,
    paths,  // one file or more
    target, // the file to be made
    note    // shown, never edited
};

inline constexpr Outils_Configuration::SKey kNoKey{static_cast<std::size_t>(-1)};
inline constexpr unsigned kAllFormats = ~0u;
constexpr unsigned In(auto... formats) { return ((1u << static_cast<int>(formats)) | ...); }

// Another field, and its word with which a row is shown and of effect; with '!' before it, any other word.
struct SFieldCondition {
    int field = -1;
    std::string_view word{};
};

struct SToolField {
    EFieldKind kind;
    EText title;
    unsigned formats = kAllFormats;
    std::string_view option{}; // of the batch program, "--beacon"; empty for none
    // Of a word, as commands have them, "no|yes". A setting that is a flag counts the second for true.
    std::string_view words{};
    EText firstShown =
        Outils_Texte::kNoText; // what the dialog shows for the first; none: the words themselves
    Outils_Configuration::SKey key = kNoKey; // keeps the last value
    SFieldCondition with{};
    bool expertOnly = false;
    EText help = Outils_Texte::kNoText; // of a row without a key
};

// What a command calls a word, and what the user reads.
struct SFieldWord {
    std::string word, shown;
};

class CToolFields {
  public:
    // All empty or the first of their words. `rows` outlives the object; the first is the format.
    explicit CToolFields(std::span<const SToolField> rows);

    std::size_t GetCount() const { return m_rows.size(); }
    const SToolField& GetRow(int field) const { return m_rows[static_cast<std::size_t>(field)]; }

    const std::string& Get(int field) const { return m_values[static_cast<std::size_t>(field)].text; }
    bool Is(int field, std::string_view word) const { return Get(field) == word; }
    // As typed; empty for a text that is no whole number.
    std::optional<int> GetInt(int field) const;
    // 0 for an empty text.
    double GetReal(int field) const;
    std::vector<std::filesystem::path> GetPaths(int field) const;
    std::filesystem::path GetPath(int field) const;
    int GetFormat() const { return GetChoice(0); }

    // Takes a text of the field's kind; a refusal leaves the value and returns its message.
    std::string Set(int field, std::string_view text);
    void SetPaths(int field, const std::vector<std::filesystem::path>& paths);

    // The words of a field at the moment, and the number of the present one.
    const std::vector<std::string>& GetShown(int field) const {
        return m_values[static_cast<std::size_t>(field)].shown;
    }
    const std::vector<std::string>& GetWords(int field) const {
        return m_values[static_cast<std::size_t>(field)].words;
    }
    int GetChoice(int field) const;
    // Gives the field other words. The present one stays if it is among them; otherwise the first is taken.
    void SetWords(int field, const std::vector<SFieldWord>& words);

    // Whether the field belongs to the format, and the word on which it depends is the present one.
    bool Applies(int field) const;

    // The last values, from the settings and back. A text that is no value of its setting is not kept.
    void Load(const Outils_Configuration::CTrvCnfConfigFile& configuration);
    void Store(Outils_Configuration::CTrvCnfConfigFile& configuration) const;

  private:
    struct SValue {
        std::string text;
        std::vector<std::string> words, shown; // of a word
    };
    bool HasWord(const SFieldCondition& with) const;

    const std::span<const SToolField> m_rows;
    std::vector<SValue> m_values; // by row
};

// "a b.log" "c.log" as one line, those with a blank in quotes.
std::string JoinPaths(const std::vector<std::filesystem::path>& paths);

// The options that a batch command has of the rows, each name once.
std::vector<Outils_Texte::SSwitchRow> MakeOptions(std::span<const SToolField> rows);

} // namespace Dialogue_Tarvel
