#include "foundation/switches.h"
#include "foundation/texts.h"

#include <gtest/gtest.h>

using namespace Outils_Texte;

namespace {

constexpr SSwitchRow kRows[] = {
    {"/sort", ESwitchValue::word, "alpha|none", EText::switchHelp},
    {"/beacon", ESwitchValue::integer, "NUMBER", EText::switchHelp, 1, 127},
    {"/factor", ESwitchValue::number, "FACTOR", EText::switchHelp},
    {"/o", ESwitchValue::none, "", EText::switchHelp},
    {"--arm", ESwitchValue::pair, "SENSOR X,Y,Z", EText::switchHelp},
    {"/t", ESwitchValue::text, "FILE", EText::switchHelp},
};

bool Parse(const std::vector<std::string>& words, CArguments& arguments, std::string& error) {
    return arguments.Parse(kRows, words, error);
}

} // namespace

TEST(Switches, RowsReadTheLine) {
    CArguments arguments;
    std::string error;
    ASSERT_TRUE(Parse({"/SORT", "None", "/beacon", "3", "/beacon", "127", "/tmp/a b.txt", "/factor", "-1.5",
                       "/o", "--arm", "gps", "1,2,3", "/t", "--odd", "out"},
                      arguments, error))
        << error;
    EXPECT_EQ(arguments.GetWord("/sort", 0), 1u);
    EXPECT_EQ(arguments.GetNumber("/beacon", 0), 127) << "the last counts";
    EXPECT_EQ(arguments.GetNumber("/factor", 0), -1.5);
    EXPECT_TRUE(arguments.Has("/O"));
    EXPECT_EQ(arguments.GetText("--arm"), "gps 1,2,3");
    EXPECT_EQ(arguments.GetText("/t"), "--odd");
    EXPECT_EQ(arguments.GetFiles(), (std::vector<std::string>{"/tmp/a b.txt", "out"}));
    EXPECT_EQ(arguments.GetSwitches().size(), 7u);

    CArguments dashed;
    ASSERT_TRUE(dashed.Parse(kRows, std::vector<std::string>{"/x", "-1.5", "--arm", "a", "b", "--", "--arm"},
                             error, ESwitchStyle::dash));
    EXPECT_EQ(dashed.GetFiles(), (std::vector<std::string>{"/x", "-1.5", "--arm"}));
    EXPECT_FALSE(dashed.Parse(kRows, std::vector<std::string>{"-x"}, error, ESwitchStyle::dash));
}

TEST(Switches, FaultsNameTheSwitch) {
    const std::pair<std::vector<std::string>, std::string_view> rows[] = {
        {{"/beacom", "3"}, "/beacom"},     {{"--seed"}, "--seed"},      {{"/beacon"}, "/beacon"},
        {{"/beacon", "128"}, "1 to 127"},  {{"/beacon", "2.5"}, "2.5"}, {{"/beacon", "x"}, "x"},
        {{"/sort", "beta"}, "alpha|none"}, {{"--arm", "gps"}, "--arm"}, {{"/factor", "nan"}, "nan"}};
    for (const auto& [words, part] : rows) {
        CArguments arguments;
        std::string error;
        EXPECT_FALSE(Parse(words, arguments, error)) << testing::PrintToString(words);
        EXPECT_NE(error.find(part), std::string::npos) << error;
    }
}
