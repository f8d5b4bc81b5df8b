// An INI file with the reading rules of the original platform's private profiles.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Metier_Tarvel {

// Sections and keys are found without regard to case, the first of a name counts. Lines that begin with ";"
// are comments. Reads Windows-1252, and UTF-16 after its mark.
class CIniFile {
  public:
    // False when the file cannot be read or is larger than any configuration; then every key has its default.
    bool Open(const std::filesystem::path& path);

    // The value without the blanks and one pair of quotes around it, cut at 255 characters.
    std::string GetString(std::string_view section, std::string_view key,
                          std::string_view defaultValue = {}) const;
    // The integer at the start of the value; 0 when there is none.
    std::int32_t GetInt(std::string_view section, std::string_view key) const;
    // Whether the section has any line but comments.
    bool HasContent(std::string_view section) const;

  private:
    struct SEntry {
        std::string key;
        std::string value;
    };
    struct SSection {
        std::string name;
        std::vector<SEntry> entries;
    };

    void AddLine(std::string_view line);
    const SSection* FindSection(std::string_view name) const;

    std::vector<SSection> m_sections;
};

} // namespace Metier_Tarvel
