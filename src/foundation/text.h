// Text in the program is UTF-8. Archives hold UTF-16, old narrow strings are Windows-1252.
#pragma once

#include <string>
#include <string_view>

namespace Outils_Texte {

// Lossless both ways for every UTF-16 sequence: an unpaired surrogate becomes the three bytes that UTF-8
// would give its code point, and comes back as it was. Other bytes that are not UTF-8 become U+FFFD.
std::u16string Utf8ToUtf16(std::string_view text);
std::string Utf16ToUtf8(std::u16string_view text);

// The five bytes that the code page leaves open keep their value as control characters.
std::string Windows1252ToUtf8(std::string_view bytes);

// Bytes up to the first zero, or all of them: a text field of a packet file.
std::string_view TrimAtZero(std::string_view bytes);

// Without regard to case, as file names are compared: ASCII, Latin, Greek and Cyrillic letters.
bool EqualsNoCase(std::string_view a, std::string_view b);

// Codes that end a line or steer a terminal, those above U+007F included.
bool IsControl(char16_t c);
// The text with a blank for each of them.
std::string ReplaceControls(std::string_view text);

// Blanks and tabs.
std::string_view TrimBlanks(std::string_view text);

} // namespace Outils_Texte
