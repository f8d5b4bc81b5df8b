#include "dialogs/tool_fields.h"

#include "config/config_file.h"
#include "dialogs/color_text.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/text.h"
#include "foundation/texts.h"

#include <algorithm>
#include <cmath>

namespace Dialogue_Tarvel {

using namespace Outils_Configuration;
using Outils_Fichiers::FromText;
using Outils_Fichiers::ToText;
using Outils_Texte::GetText;

namespace {

constexpr char kPathEnd = '\0'; // between paths: no path holds one

std::vector<std::string> Split(std::string_view words) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= words.size() && !words.empty();) {
        const std::size_t end = std::min(words.find('|', begin), words.size());
        parts.emplace_back(words.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

// A setting that is a number keeps the word when words are numbers, otherwise its place.
bool KeepsWord(const std::vector<std::string>& words) {
    return !words.empty() && Outils_Texte::ParseInt(words.front()).has_value();
}

std::string ReadReal(std::string_view text) {
    std::string number(text);
    std::ranges::replace(number, ',', '.');
    const auto value = Outils_Texte::ParseDouble(number);
    return value && std::isfinite(*value) ? Outils_Texte::FormatShortest(*value) : std::string();
}

} // namespace

CToolFields::CToolFields(std::span<const SToolField> rows) : m_rows(rows), m_values(rows.size()) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        SValue& value = m_values[i];
        value.words = Split(rows[i].words);
        for (std::size_t word = 0; word < value.words.size(); ++word)
            value.shown.emplace_back(rows[i].firstShown == EText::none
                                         ? std::string_view(value.words[word])
                                         : GetText(rows[i].firstShown + static_cast<int>(word)));
        if (!value.words.empty()) value.text = value.words.front();
    }
}

std::optional<int> CToolFields::GetInt(int field) const { return Outils_Texte::ParseInt(Get(field)); }

double CToolFields::GetReal(int field) const { return Outils_Texte::ParseDouble(Get(field)).value_or(0.0); }

std::vector<std::filesystem::path> CToolFields::GetPaths(int field) const {
    std::vector<std::filesystem::path> paths;
    std::string_view rest = Get(field);
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find(kPathEnd), rest.size());
        paths.push_back(FromText(rest.substr(0, end)));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return paths;
}

std::filesystem::path CToolFields::GetPath(int field) const { return FromText(Get(field)); }

void CToolFields::SetPaths(int field, const std::vector<std::filesystem::path>& paths) {
    std::string& text = m_values[static_cast<std::size_t>(field)].text;
    text.clear();
    for (const auto& path : paths) {
        if (!text.empty()) text += kPathEnd;
        text += ToText(path);
    }
}

std::string CToolFields::Set(int field, std::string_view text) {
    SValue& value = m_values[static_cast<std::size_t>(field)];
    std::string taken(text);
    switch (GetRow(field).kind) {
    case EFieldKind::word: {
        const auto found = std::ranges::find_if(
            value.words, [text](const auto& word) { return Outils_Texte::EqualsNoCase(word, text); });
        if (found == value.words.end()) return std::string(GetText(EText::invalidValue));
        taken = *found;
        break;
    }
    case EFieldKind::real:
        taken = ReadReal(text);
        if (taken.empty()) return std::string(GetText(EText::invalidValue));
        break;
    case EFieldKind::time:
        if (!taken.empty()) taken = ReadReal(text);
        if (taken.empty() && !text.empty()) return std::string(GetText(EText::invalidTime));
        break;
    case EFieldKind::color:
        if (!taken.starts_with('#')) taken.insert(taken.begin(), '#'); // begins a comment in a shell
        if (!ParseColor(taken)) return std::string(GetText(EText::invalidValue));
        break;
    default: break;
    }
    value.text = std::move(taken);
    return {};
}

int CToolFields::GetChoice(int field) const {
    const auto& words = GetWords(field);
    const auto found = std::ranges::find(words, Get(field));
    return found == words.end() ? -1 : static_cast<int>(found - words.begin());
}

void CToolFields::SetWords(int field, const std::vector<SFieldWord>& words) {
    SValue& value = m_values[static_cast<std::size_t>(field)];
    value.words.clear();
    value.shown.clear();
    for (const SFieldWord& word : words) {
        value.words.push_back(word.word);
        value.shown.push_back(word.shown);
    }
    if (GetChoice(field) < 0) value.text = words.empty() ? std::string() : words.front().word;
}

bool CToolFields::HasWord(const SFieldCondition& with) const {
    const bool negated = with.word.starts_with('!');
    return Is(with.field, with.word.substr(negated ? 1 : 0)) != negated;
}

bool CToolFields::Applies(int field) const {
    const SToolField& row = GetRow(field);
    return (row.formats >> GetFormat() & 1u) != 0 && (row.with.field < 0 || HasWord(row.with));
}

void CToolFields::Load(const CTrvCnfConfigFile& configuration) {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const SKey key = m_rows[i].key;
        if (key.row == kNoKey.row) continue;
        const CXmlConfigValue& setting = configuration.GetValue(key);
        const auto words = m_rows[i].words.empty() ? m_values[i].words : Split(m_rows[i].words);
        std::string text = setting.GetString();
        std::size_t place = words.size();
        switch (kSchema[key.row].kind) {
        case EKind::boolean: place = setting.GetBool() ? 1 : 0; break;
        case EKind::color: text = FormatColor(setting.GetColor()); break;
        case EKind::real: text = Outils_Texte::FormatShortest(setting.GetDouble()); break;
        case EKind::text: break;
        case EKind::integer:
            text = std::to_string(kSchema[key.row].range.Clamp(setting.GetInt()));
            if (!KeepsWord(words)) place = static_cast<std::size_t>(std::max(0, setting.GetInt()));
            break;
        default: place = static_cast<std::size_t>(static_cast<const CXmlConfigEnumeration&>(setting).Get());
        }
        if (m_rows[i].kind == EFieldKind::word && place < words.size()) text = words[place];
        static_cast<void>(Set(static_cast<int>(i), text));
    }
}

void CToolFields::Store(CTrvCnfConfigFile& configuration) const {
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const SKey key = m_rows[i].key;
        if (key.row == kNoKey.row) continue;
        CXmlConfigValue& setting = configuration.GetValue(key);
        const std::string& text = m_values[i].text;
        const auto words = m_rows[i].words.empty() ? m_values[i].words : Split(m_rows[i].words);
        const auto place = static_cast<int>(std::ranges::find(words, text) - words.begin());
        const bool isWord = m_rows[i].kind == EFieldKind::word;
        if (isWord && place == static_cast<int>(words.size())) continue;
        switch (kSchema[key.row].kind) {
        case EKind::boolean: setting.SetBool(place == 1); break;
        case EKind::color: setting.SetColor(ParseColor(text).value_or(0)); break;
        case EKind::real: setting.SetDouble(Outils_Texte::ParseDouble(text).value_or(0.0)); break;
        case EKind::text: setting.SetString(text); break;
        case EKind::integer:
            if (isWord && !KeepsWord(words))
                setting.SetInt(place);
            else if (const auto number = Outils_Texte::ParseInt(text))
                setting.SetInt(*number);
            break;
        default: static_cast<CXmlConfigEnumeration&>(setting).Set(place);
        }
    }
}

std::string JoinPaths(const std::vector<std::filesystem::path>& paths) {
    std::string line;
    for (const auto& path : paths) {
        const std::string text = ToText(path);
        const std::string_view quote = text.find(' ') == std::string::npos ? "" : "\"";
        line.append(line.empty() ? "" : " ").append(quote).append(text).append(quote);
    }
    return line;
}

std::vector<Outils_Texte::SSwitchRow> MakeOptions(std::span<const SToolField> rows) {
    using Outils_Texte::ESwitchValue;
    constexpr std::string_view kValues[] = {"WORD",     "N",    "X",        "YYYY-MM-DD", "S",
                                            "AARRGGBB", "FILE", "FILE ...", "FILE",       ""};
    std::vector<Outils_Texte::SSwitchRow> options;
    for (const SToolField& row : rows) {
        const auto isOwn = [&row](const auto& option) { return option.name == row.option; };
        if (row.option.empty() || std::ranges::any_of(options, isOwn)) continue;
        const bool hasWords = !row.words.empty();
        options.push_back({row.option, hasWords ? ESwitchValue::word : ESwitchValue::text,
                           hasWords ? row.words : kValues[static_cast<int>(row.kind)],
                           row.key.row == kNoKey.row ? row.help : kSchema[row.key.row].help});
    }
    return options;
}

} // namespace Dialogue_Tarvel
