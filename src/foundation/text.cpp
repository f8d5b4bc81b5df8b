#include "foundation/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Outils_Texte {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// What a lead byte announces: how many bytes follow, and the range of the first of them (the others are 80 to
// BF). The ranges shut out over-long forms and what lies beyond U+10FFFF, but not surrogates: those pass
// unpaired.
struct SLead {
    std::uint8_t first, last;
    int following;
    std::uint8_t lowest, highest;
};
constexpr SLead kLeads[] = {
    {0xC2, 0xDF, 1, 0x80, 0xBF}, {0xE0, 0xE0, 2, 0xA0, 0xBF}, {0xE1, 0xEF, 2, 0x80, 0xBF},
    {0xF0, 0xF0, 3, 0x90, 0xBF}, {0xF1, 0xF3, 3, 0x80, 0xBF}, {0xF4, 0xF4, 3, 0x80, 0x8F},
};

// The code point at `position`, which moves on. Bytes that form none give one U+FFFD for as many of them as
// could have been the start of a character.
char32_t NextCodePoint(std::string_view text, std::size_t& position) {
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    const std::uint8_t lead = byte(position++);
    if (lead < 0x80) return lead;
    const auto row = std::find_if(std::begin(kLeads), std::end(kLeads), [&](const SLead& candidate) {
        return lead >= candidate.first && lead <= candidate.last;
    });
    if (row == std::end(kLeads)) return kReplacement;
    char32_t point = lead & (0x3F >> row->following);
    std::uint8_t lowest = row->lowest;
    std::uint8_t highest = row->highest;
    for (int i = 0; i < row->following; ++i) {
        if (position >= text.size() || byte(position) < lowest || byte(position) > highest)
            return kReplacement;
        point = point << 6 | (byte(position++) & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return point;
}

void AppendUtf8(std::string& text, char32_t point) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(static_cast<std::uint8_t>(byte)); };
    if (point < 0x80) {
        append(point);
        return;
    }
    const int following = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr char32_t marks[] = {0, 0xC0, 0xE0, 0xF0};
    append(marks[following] | point >> (6 * following));
    for (int i = following - 1; i >= 0; --i) append(0x80 | (point >> (6 * i) & 0x3F));
}

// Code page 1252 from 80 to 9F; the rest of it is Latin-1.
constexpr char16_t kWindows1252[] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};
static_assert(std::size(kWindows1252) == 0x20);

// Simple case folding: every `step`th code point from `first` to `last` moves by `distance`.
struct SFolding {
    char32_t first, last;
    std::int32_t distance;
    char32_t step;
};
constexpr SFolding kFoldings[] = {
    {0x0041, 0x005A, 32, 1},   {0x00B5, 0x00B5, 775, 1}, {0x00C0, 0x00D6, 32, 1},   {0x00D8, 0x00DE, 32, 1},
    {0x0100, 0x012E, 1, 2},    {0x0132, 0x0136, 1, 2},   {0x0139, 0x0147, 1, 2},    {0x014A, 0x0176, 1, 2},
    {0x0178, 0x0178, -121, 1}, {0x0179, 0x017D, 1, 2},   {0x017F, 0x017F, -268, 1}, {0x0386, 0x0386, 38, 1},
    {0x0388, 0x038A, 37, 1},   {0x038C, 0x038C, 64, 1},  {0x038E, 0x038F, 63, 1},   {0x0391, 0x03A1, 32, 1},
    {0x03A3, 0x03AB, 32, 1},   {0x03C2, 0x03C2, 1, 1},   {0x0400, 0x040F, 80, 1},   {0x0410, 0x042F, 32, 1},
    {0x0460, 0x0480, 1, 2},    {0x048A, 0x04BE, 1, 2},   {0x04C0, 0x04C0, 15, 1},   {0x04C1, 0x04CD, 1, 2},
    {0x04D0, 0x052E, 1, 2},
};

char32_t Fold(char32_t point) {
    for (const SFolding& row : kFoldings) {
        if (point < row.first) break;
        if (point <= row.last && (point - row.first) % row.step == 0)
            return static_cast<char32_t>(static_cast<std::int32_t>(point) + row.distance);
    }
    return point;
}

} // namespace

std::u16string Utf8ToUtf16(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) {
        const char32_t point = NextCodePoint(text, position);
        if (point < 0x10000) {
            units += static_cast<char16_t>(point);
        } else {
            units += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
        }
    }
    return units;
}

std::string Utf16ToUtf8(std::u16string_view text) {
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if (IsHighSurrogate(point) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            point = 0x10000 + ((point - 0xD800) << 10) + (text[++i] - char32_t{0xDC00});
        AppendUtf8(bytes, point);
    }
    return bytes;
}

std::string Windows1252ToUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    for (const char character : bytes) {
        const auto byte = static_cast<std::uint8_t>(character);
        AppendUtf8(text, byte >= 0x80 && byte < 0xA0 ? char32_t{kWindows1252[byte - 0x80]} : char32_t{byte});
    }
    return text;
}

std::string_view TrimAtZero(std::string_view bytes) { return bytes.substr(0, bytes.find('\0')); }

bool EqualsNoCase(std::string_view a, std::string_view b) {
    std::size_t inA = 0;
    std::size_t inB = 0;
    while (inA < a.size() && inB < b.size()) {
        if (Fold(NextCodePoint(a, inA)) != Fold(NextCodePoint(b, inB))) return false;
    }
    return inA == a.size() && inB == b.size();
}

bool IsControl(char16_t c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); }

std::string ReplaceControls(std::string_view text) {
    std::u16string decoded = Utf8ToUtf16(text);
    std::replace_if(decoded.begin(), decoded.end(), IsControl, u' ');
    return Utf16ToUtf8(decoded);
}

std::string_view TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

} // namespace Outils_Texte
