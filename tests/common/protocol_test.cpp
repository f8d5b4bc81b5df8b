#include "common/command_reader.h"
#include "common/line_monitor.h"
#include "foundation/texts.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include <unistd.h>

using namespace Compagnon;

TEST(Protocol, LinesAreTokens) {
    EXPECT_EQ(MakeProgressLine(0.0), "progress 0.0\n");
    EXPECT_EQ(MakeProgressLine(150.0), "progress 100.0\n");
    const std::pair<EDialect, std::string_view> rows[] = {
        {EDialect::engine, "message 1 10913 \"a \"\"b\"\"  c\"\n"},
        {EDialect::tool, "message warning \"a \"\"b\"\"  c\"\n"},
        {EDialect::plain, "WARNING : a \"b\"\r\nc\n"}};
    for (const auto& [dialect, line] : rows)
        EXPECT_EQ(MakeMessageLine(dialect, ELevel::warning, 10913, "a \"b\"\r\nc"), line);
}

TEST(Protocol, LineFeedsEndCommands) {
    CCommandLines lines;
    std::vector<std::string> words;
    auto take = [&](std::string_view word) { words.emplace_back(word); };
    lines.Add("sta", take);
    EXPECT_TRUE(words.empty());
    lines.Add("rt\n\tpause \r\n\n\"stop\"\n" + std::string(1000, 'x') + "\nresume\nunfinished", take);
    EXPECT_EQ(words, (std::vector<std::string>{"start", "pause", "", "stop", "resume"}));
}

TEST(Protocol, ProgressRisesAndClosedOutputStops) {
    CRunControl control;
    std::string text;
    bool open = true;
    CLineMonitor monitor(control, EDialect::engine, [&](std::string_view line) {
        text += line;
        return open;
    });
    for (const double percent : {0.0, 0.0, -5.0, 100.0, 100.0, 50.0}) monitor.Progress(percent);
    EXPECT_EQ(text, "progress 0.0\nprogress 100.0\n");
    EXPECT_TRUE(monitor.GoOn());
    open = false;
    monitor.Message(ELevel::information, EText::finished, "x");
    EXPECT_FALSE(monitor.GoOn());
}

TEST(Protocol, PipedWordsDriveTheControl) {
    std::array<int, 2> ends;
    ASSERT_EQ(pipe(ends.data()), 0);
    CRunControl control;
    CCommandReader reader(ends[0], control);
    ASSERT_TRUE(reader.Start());
    auto say = [&](std::string_view text) {
        ASSERT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    };
    say("nonsense\nstart\n");
    EXPECT_TRUE(control.WaitForStart());
    say("pause\nresume\n");
    EXPECT_TRUE(control.GoOn());
    close(ends[1]); // the application has ended
    reader.Join();
    EXPECT_FALSE(control.GoOn());
    EXPECT_FALSE(control.WaitForStart());
    close(ends[0]);
}

TEST(Protocol, PausedRunWaitsForResume) {
    for (const std::string_view word : {"resume", "stop"}) {
        CRunControl control;
        control.Command("start");
        control.Command("pause");
        std::atomic<bool> passed = false, goesOn = false;
        std::thread run([&] {
            goesOn = control.GoOn();
            passed = true;
        });
        EXPECT_FALSE(passed);
        control.Command(word);
        run.join();
        EXPECT_EQ(goesOn, word == "resume");
    }
}
