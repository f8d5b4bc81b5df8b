#include "model/ini_file.h"

#include "foundation/numbers.h"
#include "foundation/text.h"
#include "model/text_file.h"

#include <algorithm>
#include <cstdint>

namespace Metier_Tarvel {

using Outils_Texte::EqualsNoCase;
using Outils_Texte::TrimBlanks;

namespace {

constexpr std::size_t kLongestValue = 255; // characters, of a buffer of 256

std::string_view WithoutQuotes(std::string_view value) {
    const bool quoted =
        value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
    return quoted ? value.substr(1, value.size() - 2) : value;
}

// Never in the middle of a character.
std::string_view Cut(std::string_view value) {
    std::size_t characters = 0;
    for (std::size_t at = 0; at < value.size(); ++at) {
        const bool starts = (static_cast<unsigned char>(value[at]) & 0xC0) != 0x80;
        if (starts && characters++ == kLongestValue) return value.substr(0, at);
    }
    return value;
}

} // namespace

bool CIniFile::Open(const std::filesystem::path& path) {
    m_sections.clear();
    const auto lines = ReadTextLines(path);
    if (!lines) return false;
    for (const std::string& line : *lines) AddLine(TrimBlanks(line));
    return true;
}

void CIniFile::AddLine(std::string_view line) {
    if (line.empty() || line.front() == ';') return;
    if (line.front() == '[') {
        const std::string_view name = line.substr(1, line.find(']') - 1);
        m_sections.push_back({std::string(TrimBlanks(name)), {}});
        return;
    }
    if (m_sections.empty()) return;
    const std::size_t equals = std::min(line.find('='), line.size());
    const std::string_view value =
        equals < line.size() ? TrimBlanks(line.substr(equals + 1)) : std::string_view();
    m_sections.back().entries.push_back(
        {std::string(TrimBlanks(line.substr(0, equals))), std::string(Cut(WithoutQuotes(value)))});
}

const CIniFile::SSection* CIniFile::FindSection(std::string_view name) const {
    const auto found = std::find_if(m_sections.begin(), m_sections.end(), [name](const SSection& section) {
        return EqualsNoCase(section.name, name);
    });
    return found == m_sections.end() ? nullptr : &*found;
}

std::string CIniFile::GetString(std::string_view section, std::string_view key,
                                std::string_view defaultValue) const {
    if (const SSection* found = FindSection(section))
        for (const SEntry& entry : found->entries)
            if (EqualsNoCase(entry.key, key)) return entry.value;
    return std::string(defaultValue);
}

std::int32_t CIniFile::GetInt(std::string_view section, std::string_view key) const {
    const std::string value = GetString(section, key);
    std::size_t end = !value.empty() && (value[0] == '-' || value[0] == '+') ? 1 : 0;
    while (end < value.size() && value[end] >= '0' && value[end] <= '9') ++end;
    return Outils_Texte::ParseInt(std::string_view(value).substr(0, end)).value_or(0);
}

bool CIniFile::HasContent(std::string_view section) const {
    const SSection* found = FindSection(section);
    return found && !found->entries.empty();
}

} // namespace Metier_Tarvel
