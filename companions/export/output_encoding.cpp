#include "export/output_encoding.h"

#include "foundation/text.h"

#include <map>

namespace Exportation {
namespace {

using Outils_Texte::Utf8ToUtf16;

// The codes above 127 of the page by their characters.
const std::map<char16_t, char>& GetWindows1252() {
    static const std::map<char16_t, char> codes = [] {
        std::map<char16_t, char> made;
        for (int code = 128; code < 256; ++code) {
            const char byte = static_cast<char>(code);
            made.emplace(Utf8ToUtf16(Outils_Texte::Windows1252ToUtf8({&byte, 1})).front(), byte);
        }
        return made;
    }();
    return codes;
}

std::optional<char> EncodeCharacter(char16_t character, EEncoding encoding) {
    if (character < 128) return static_cast<char>(character);
    if (encoding == EEncoding::latin1 && character < 256) return static_cast<char>(character);
    if (encoding != EEncoding::windows1252) return std::nullopt;
    const auto found = GetWindows1252().find(character);
    return found == GetWindows1252().end() ? std::nullopt : std::optional(found->second);
}

} // namespace

std::optional<std::string> Encode(std::string_view text, EEncoding encoding) {
    if (encoding == EEncoding::utf8) return std::string(text);
    std::string encoded;
    for (const char16_t character : Utf8ToUtf16(text)) {
        const auto code = EncodeCharacter(character, encoding);
        if (!code) return std::nullopt;
        encoded += *code;
    }
    return encoded;
}

} // namespace Exportation
