#include "processing/command_switches.h"
#include "processing/engine_command.h"

#include <gmock/gmock.h>

#include <random>

using namespace Communication_Processus;
using testing::ElementsAreArray;

TEST(CommandLine, SplitsByTheOriginalRules) {
    const std::tuple<const char*, std::vector<std::string>> rows[] = {
        {"", {""}},
        {" /remote", {"", "/remote"}},
        {"tool", {"tool"}},
        {R"("/opt/a b/Morvex.exe" /remote  /autostart off)",
         {"/opt/a b/Morvex.exe", "/remote", "/autostart", "off"}},
        {R"("c:\dir\"x y)", {R"(c:\dir\x)", "y"}}, // the program's backslashes are plain
        {R"(/opt/"a b"/tool x)", {"/opt/a b/tool", "x"}},
        {"t \t a\t", {"t", "a"}},
        {R"(t "a b" c"d e"f "")", {"t", "a b", "cd ef", ""}},
        {R"(t a\b \\c\ "d\e")", {"t", R"(a\b)", R"(\\c\)", R"(d\e)"}},
        {R"(t \"a \\"b c" \\\"d)", {"t", "\"a", R"(\b c)", R"(\"d)"}},
        {R"(t "a""b c" """")", {"t", "a\"b c", "\""}},
        {R"(t "open end)", {"t", "open end"}},
    };
    for (const auto& [line, arguments] : rows)
        EXPECT_THAT(SplitCommandLine(line), ElementsAreArray(arguments)) << line;
    EXPECT_THAT(SplitCommandLine(std::string_view("t a\0b", 5)), ElementsAreArray({"t", "a"}));
}

TEST(CommandLine, QuotedArgumentsComeBack) {
    std::mt19937 random(7);
    constexpr std::string_view alphabet = "a\\\\\"\" \t";
    for (int round = 0; round < 2000; ++round) {
        std::vector<std::string> arguments = {"/opt/my tools/x"};
        std::string line = QuoteProgram(arguments[0]);
        for (int i = 0; i < 3; ++i) {
            std::string argument;
            for (auto length = random() % 8; length > 0; --length)
                argument += alphabet[random() % alphabet.size()];
            line += ' ' + (random() % 2 ? QuoteArgument(argument) : QuoteArgumentIfNeeded(argument));
            arguments.push_back(argument);
        }
        ASSERT_THAT(SplitCommandLine(line), ElementsAreArray(arguments)) << line;
    }
    EXPECT_EQ(QuoteArgument("/a/b"), "\"/a/b\"");
    EXPECT_EQ(QuoteArgumentIfNeeded("/a/b"), "/a/b");
    EXPECT_EQ(QuoteProgram("/a\"b"), "");
}

TEST(CommandLine, SwitchesAreWrittenRowByRow) {
    struct SOptions {
        bool accuracy = false;
        int decimation = 0;
        std::vector<std::string> sources;
        std::string format = "KML";
    };
    using Values = std::vector<std::string>;
    constexpr SCommandSwitch<SOptions> rows[] = {
        {"/a", EArgument::flag, [](const SOptions& o) { return o.accuracy ? Values{""} : Values{}; }},
        {"/dec", EArgument::word,
         [](const SOptions& o) {
             return o.decimation > 0 ? Values{std::to_string(o.decimation)} : Values{};
         }},
        {"/f", EArgument::quotedIfNeeded, [](const SOptions& o) { return Values{o.format}; }},
        {"", EArgument::quoted, [](const SOptions& o) { return o.sources; }},
    };
    EXPECT_EQ(MakeCommandLine("/opt/a b/tool", rows, SOptions()), R"("/opt/a b/tool" /f KML)");
    EXPECT_EQ(MakeCommandLine("tool", rows, SOptions{true, 5, {"a", "b c"}, "ESRI Shapefile"}),
              R"("tool" /a /dec 5 /f "ESRI Shapefile" "a" "b c")");
    EXPECT_EQ(MakeCommandLine("a\"b", rows, SOptions()), "");
    EXPECT_EQ(MakeEngineCommand("/opt/Morvex.exe", "/tmp/p 1"),
              R"("/opt/Morvex.exe" /remote /autostart off "/tmp/p 1")");
}
