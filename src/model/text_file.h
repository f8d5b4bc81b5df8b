#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Metier_Tarvel {

// The lines of a small text file as UTF-8, without their ends (LF or CR LF). Reads Windows-1252, and
// little-endian UTF-16 after its mark; a mark of UTF-8 is text, as it was to the original platform. Empty
// when the file cannot be read or is larger than any configuration.
std::optional<std::vector<std::string>> ReadTextLines(const std::filesystem::path& path);

} // namespace Metier_Tarvel
