#include "model/text_file.h"

#include "foundation/files.h"
#include "foundation/text.h"

#include <algorithm>
#include <cstring>

namespace Metier_Tarvel {

namespace {

constexpr std::uint64_t kLargestFile = 1u << 20;

std::string Decode(const std::vector<std::uint8_t>& bytes) {
    if (bytes.size() >= 2 && bytes[0] == 0xFF && bytes[1] == 0xFE) {
        std::u16string units((bytes.size() - 2) / 2, u'\0');
        std::memcpy(units.data(), bytes.data() + 2, units.size() * sizeof(char16_t));
        return Outils_Texte::Utf16ToUtf8(units);
    }
    return Outils_Texte::Windows1252ToUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

} // namespace

std::optional<std::vector<std::string>> ReadTextLines(const std::filesystem::path& path) {
    const auto bytes = Outils_Fichiers::ReadWholeFile(path, kLargestFile);
    if (!bytes) return std::nullopt;
    const std::string text = Decode(*bytes);
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::size_t length = end - start;
        const bool carriageReturn = length > 0 && text[end - 1] == '\r';
        lines.push_back(text.substr(start, carriageReturn ? length - 1 : length));
        start = end + 1;
    }
    return lines;
}

} // namespace Metier_Tarvel
