#include "processing/child_processes.h"

#include <gmock/gmock.h>

#include <limits>

using namespace Communication_Processus;
using namespace Communication_Interfaces;
using testing::ElementsAre;

namespace {

using Calls = std::vector<std::string>;

// Writes down what reaches the sink of an engine or of a tool.
struct SSink : IMorvexNotification, ISimpleImporterNotification {
    void OnProgress(float percent) override { calls.push_back(testing::PrintToString(percent)); }
    void OnMessage(int level, int code, std::string_view text) override {
        OnMessage(level, std::to_string(code) + "/" + std::string(text));
    }
    void OnMessage(int level, std::string_view text) override {
        calls.push_back(std::to_string(level) + "/" + std::string(text));
    }
    Calls calls;
};

struct SMorvex : CProcessMorvex {
    void Give(std::string_view line) { OnCommand(SplitTokens(line)); }
};

Calls LinesOf(std::string_view bytes, std::size_t split) {
    CLineBuffer buffer;
    Calls lines;
    const auto keep = [&](std::string_view line) { lines.emplace_back(line); };
    buffer.Append(bytes.substr(0, split), keep);
    buffer.Append(bytes.substr(split), keep);
    return lines;
}

} // namespace

TEST(LineProtocol, TokensFollowTheQuotingRules) {
    const std::tuple<const char*, Calls> rows[] = {
        {"", {}},
        {" \t ", {}},
        {"progress  50.5", {"progress", "50.5"}},
        {"\tprogress\t5 ", {"progress", "5"}},
        {R"(message info "a ""b"" c")", {"message", "info", R"(a "b" c)"}},
        {R"(message info "a""""b")", {"message", "info", R"(a"b)"}},
        {R"(message info "abc)", {"message", "info", "abc"}},
        {R"(message info "ab"")", {"message", "info", "ab\""}},
        {R"(message info "abc"def)", {}},
        {R"(message info ""x)", {}},
        {R"(message info "")", {"message", "info"}},
        {R"(message info """")", {"message", "info", "\""}},
        {R"(message "" info)", {"message", "info"}},
        {R"(a b"c d" "e" )", {"a", "b\"c", "d\"", "e"}},
        {R"(a ")", {"a"}},
    };
    for (const auto& [line, tokens] : rows) EXPECT_EQ(SplitTokens(line), tokens) << line;
}

TEST(LineProtocol, LinesIgnoreHowBytesArrive) {
    constexpr std::string_view bytes = "progress 1\r\n\n\r\nmessage \"a\r\" \r\r\nxy\nunfinished";
    const Calls expected = {"progress 1", "", "", "message \"a\r\" \r", "xy"};
    for (std::size_t split = 0; split <= bytes.size(); ++split)
        EXPECT_EQ(LinesOf(bytes, split), expected) << split;

    CLineBuffer buffer;
    Calls lines;
    for (const char& c : bytes)
        buffer.Append({&c, 1}, [&](std::string_view line) { lines.emplace_back(line); });
    EXPECT_EQ(lines, expected);
}

TEST(LineProtocol, OnlyTooLongLinesAreDropped) {
    const std::string longest(CLineBuffer::longestLine, 'x');
    const std::string bytes =
        "a\n" + longest + "\n" + longest + "x\nb\n" + longest + longest + longest + "\nc\n";
    for (const std::size_t split :
         {std::size_t(0), longest.size(), longest.size() + 2, 2 * longest.size() + 3, 2 * longest.size() + 4,
          5 * longest.size(), bytes.size()})
        EXPECT_TRUE(LinesOf(bytes, split) == (Calls{"a", longest, "b", "c"})) << split;
}

TEST(LineProtocol, CommandsAreQuotedOnlyForBlanks) {
    EXPECT_EQ(FormatCommand("start"), "start\n");
    EXPECT_EQ(FormatCommand("a\"b"), "a\"b\n");
    EXPECT_EQ(FormatCommand("say \"hi\""), "\"say \"\"hi\"\"\"\n");
}

TEST(LineProtocol, PercentagesAreWholeNumbersInRange) {
    for (const char* bad : {"101", "-1", "12abc", "x", "", ".0", "nan", "inf", "-1e-400", "1e300", "1 2"})
        EXPECT_FALSE(ParsePercent(bad)) << bad;
    const std::pair<const char*, float> rows[] = {{"0", 0.0f},  {"100", 100.0f}, {" +50.5\t", 50.5f},
                                                  {".5", 0.5f}, {"1e1", 10.0f},  {"100.000001", 100.0f},
                                                  {"-0", 0.0f}};
    for (const auto& [text, percent] : rows) EXPECT_EQ(ParsePercent(text), percent) << text;
}

TEST(LineProtocol, SinksGetOnlyWellFormedLines) {
    SMorvex morvex;
    morvex.Give("progress 1"); // without a sink
    SSink sink;
    morvex.SetNotification(&sink);
    for (const char* line :
         {"progress 50.5", "progress 1 2", "progress", "progress x", "message 2 -7 \"a b\"", "message 9 0 t",
          "message x 0 t", "message 1 1.5 t", "message 1 \" 2 \" t", "message 1 99999999999 t",
          "message info t", "message 1 2 t u", "other 1", "Progress 1"})
        morvex.Give(line);
    EXPECT_THAT(sink.calls, ElementsAre("50.5", "2/-7/a b", "9/0/t", "1/2/t", "1/2147483647/t"));

    SSink tool;
    for (const char* line : {"progress 0", "progress 101", "message info i", "message warning w",
                             "message error \"e e\"", "message fatal f", "message info", "message 1 2 t"})
        NotifyToolLine(SplitTokens(line), &tool);
    NotifyToolLine({}, &tool);
    NotifyToolLine({"progress", "1"}, nullptr);
    EXPECT_THAT(tool.calls, ElementsAre("0", "0/i", "1/w", "2/e e"));
}
