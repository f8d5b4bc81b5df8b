#include "foundation/numbers.h"
#include "foundation/text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <utility>

using namespace Outils_Texte;

namespace {

TEST(Text, EveryUtf16SequenceComesBack) {
    std::u16string units;
    for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) units += static_cast<char16_t>(unit);
    // Every order of high, low and plain units.
    const char16_t parts[] = {0xD800, 0xDBFF, 0xDC00, 0xDFFF, u'x', 0xFFFF};
    for (char16_t a : parts)
        for (char16_t b : parts)
            for (char16_t c : parts) units += {a, b, c};
    EXPECT_TRUE(Utf8ToUtf16(Utf16ToUtf8(units)) == units);
    EXPECT_EQ(Utf16ToUtf8(u"\U0001F6A2"), "\xF0\x9F\x9A\xA2");
}

TEST(Text, BadUtf8BecomesReplacements) {
    const std::pair<std::string_view, std::u16string_view> rows[] = {
        {"a\x80z", u"a\xFFFDz"},
        {"\xC0\xAF", u"\xFFFD\xFFFD"},                    // over-long
        {"\xE2\x82z\xF0\x9F\x9A", u"\xFFFDz\xFFFD"},      // cut short
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"} // beyond the last code point
    };
    for (const auto& row : rows) EXPECT_TRUE(Utf8ToUtf16(row.first) == row.second) << row.first;
}

TEST(Text, CodePage1252) {
    EXPECT_EQ(Windows1252ToUtf8("A\x80\x81\x9F\xA0\xFF"), "A\xE2\x82\xAC\xC2\x81\xC5\xB8\xC2\xA0\xC3\xBF");
}

TEST(Text, ComparesWithoutCase) {
    const std::tuple<const char*, const char*, bool> rows[] = {{"Data.TARIN", "dATA.tarin", true},
                                                               {"a", "ab", false},
                                                               {"", "", true},
                                                               {"[", "{", false},
                                                               {"ÀÉÞ", "àéþ", true},
                                                               {"×", "÷", false},
                                                               {"ŒŸŽĹŇ", "œÿžĺň", true},
                                                               {"ĸ", "Ĺ", false},
                                                               {"ΆΩΣ", "άως", true},
                                                               {"ЁЖҐ", "ёжґ", true},
                                                               {"é", "e", false}};
    for (const auto& [a, b, equal] : rows) EXPECT_EQ(EqualsNoCase(a, b), equal) << a << ' ' << b;
}

TEST(Text, ControlsBecomeBlanks) {
    EXPECT_EQ(ReplaceControls("a\nb\x7F\xC2\x80\xC2\x9F\xC2\xA0\xE2\x82\xAC"), "a b   \xC2\xA0\xE2\x82\xAC");
}

TEST(Numbers, ParseDouble) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::pair<const char*, double> accepted[] = {
        {"1.5", 1.5},          {" \t-2e3\t ", -2000.0},
        {"+7", 7.0},           {".5", 0.5},
        {"5.", 5.0},           {"0", 0.0},
        {"-0.0", 0.0},         {"00", 0.0},
        {"0e5", 0.0},          {"0.1e-400", 0.0},
        {"1e400", inf},        {"-1e99999999999999999999", -inf},
        {"0x1F", 31.0},        {"-0X1.8p1", -3.0},
        {"0x.8", 0.5},         {"0x0", 0.0},
        {"0x1p9999", inf},     {"0x1p-9999", 0.0},
        {"inf", inf},          {"-INFINITY", -inf},
        {"4.9e-324", 4.9e-324}};
    for (const auto& [text, value] : accepted) EXPECT_EQ(ParseDouble(text), value) << text;
    for (const char* text : {".0", "-.0", "1e-400", "", " ", "x", "+-1", "--1", "1 2", "1,5", "1e", "12abc",
                             "\n", "0x", "infinit"})
        EXPECT_FALSE(ParseDouble(text)) << text;
    EXPECT_TRUE(std::isnan(ParseDouble("nan").value_or(0.0)));
    EXPECT_EQ(ParseDouble(std::string(400, '9')), inf);
    EXPECT_EQ(ParseDouble("0." + std::string(400, '0') + "1"), 0.0);
}

TEST(Numbers, PrefixStopsWhereTheNumberDoes) {
    const std::tuple<const char*, double, std::size_t> rows[] = {
        {" 12.5N", 12.5, 5}, {"1e+", 1.0, 1}, {"0xg", 0.0, 1}, {"-3:20", -3.0, 2}};
    for (const auto& [text, value, used] : rows) {
        const auto prefix = ParseDoublePrefix(text);
        EXPECT_TRUE(prefix && prefix->value == value && prefix->used == used) << text;
    }
    EXPECT_FALSE(ParseDoublePrefix("N"));
    EXPECT_FALSE(ParseDoublePrefix(".0N"));
}

TEST(Numbers, ParseIntegers) {
    const std::tuple<const char*, std::int32_t, std::uint32_t> rows[] = {
        {"0", 0, 0},
        {" +12\t", 12, 12},
        {"-1", -1, 4294967295},
        {"2147483648", 2147483647, 2147483648},
        {"-2147483649", -2147483647 - 1, 2147483647},
        {"99999999999999999999999", 2147483647, 4294967295},
        {"-99999999999999999999999", -2147483647 - 1, 4294967295}};
    for (const auto& [text, value, unsignedValue] : rows) {
        EXPECT_EQ(ParseInt(text), value) << text;
        EXPECT_EQ(ParseUInt(text), unsignedValue) << text;
    }
    for (const char* text : {"1.0", "+-1", "- 1", "0x10", ""})
        EXPECT_FALSE(ParseInt(text) || ParseUInt(text)) << text;
    EXPECT_EQ(ParseUInt("fF80c0A1", 16), 0xFF80C0A1u);
    EXPECT_EQ(ParseUInt("0x1f", 16), 0x1Fu);
    EXPECT_EQ(ParseUInt("0x", 16), std::nullopt);
    EXPECT_EQ(ParseUInt("1ffffffff", 16), 0xFFFFFFFFu);
}

TEST(Numbers, ShortestTextKeepsEveryBit) {
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        if (std::isnan(value)) continue;
        const auto back = ParseDouble(FormatShortest(value));
        ASSERT_TRUE(back) << FormatShortest(value);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(value))
            << FormatShortest(value);
    }
    EXPECT_TRUE(std::signbit(ParseDouble(FormatShortest(-0.0)).value_or(1.0)));
}

TEST(Numbers, FormatFixed) {
    EXPECT_EQ(FormatFixed(2.0 / 3.0, 3), "0.667");
    EXPECT_EQ(FormatFixed(-1234567.5, 0), "-1234568");
    EXPECT_EQ(FormatFixed(-0.001, 2), "-0.00");
    EXPECT_EQ(FormatFixed(-std::numeric_limits<double>::max(), 40).size(), 1u + 309 + 1 + 40);
}

} // namespace
