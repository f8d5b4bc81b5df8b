// Text in the encoding that a template asks for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Exportation {

enum class EEncoding : unsigned char { utf8, windows1252, latin1, ascii };

// The words of the encodings with "|" between them, in their order.
inline constexpr std::string_view kEncodingWords = "utf-8|windows-1252|iso-8859-1|ascii";

// Empty when the encoding has no code for a character of the text, which is UTF-8.
std::optional<std::string> Encode(std::string_view text, EEncoding encoding);

} // namespace Exportation
