#include "foundation/texts.h"
#include "morvex/command_reader.h"
#include "morvex/engine_program.h"
#include "morvex/line_monitor.h"
#include "morvex/output_schedule.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

#include <unistd.h>

using namespace Morvex;

TEST(Protocol, LinesAreTokensThatTheApplicationReads) {
    EXPECT_EQ(MakeProgressLine(0.0), "progress 0.0\n");
    EXPECT_EQ(MakeProgressLine(150.0), "progress 100.0\n");
    EXPECT_EQ(MakeMessageLine(ELevel::warning, 10913, "a \"b\"\r\nc"),
              "message 1 10913 \"a \"\"b\"\"  c\"\n");
}

TEST(Protocol, CommandLinesAreCutAtLineFeedsOnly) {
    CCommandLines lines;
    std::vector<std::string> words;
    auto take = [&](std::string_view word) { words.emplace_back(word); };
    lines.Add("sta", take);
    EXPECT_TRUE(words.empty());
    lines.Add("rt\n\tpause \r\n\n\"stop\"\n" + std::string(1000, 'x') + "\nresume\nunfinished", take);
    EXPECT_EQ(words, (std::vector<std::string>{"start", "pause", "", "stop", "resume"}));
}

TEST(Protocol, ProgressNeverFallsAndAClosedOutputStopsTheRun) {
    CRunControl control;
    std::string text;
    bool open = true;
    CLineMonitor monitor(control, true, [&](std::string_view line) {
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

TEST(Protocol, WordsFromAPipeDriveTheControl) {
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
    close(ends[1]); // the application is gone
    reader.Join();
    EXPECT_FALSE(control.GoOn());
    EXPECT_FALSE(control.WaitForStart());
    close(ends[0]);
}

TEST(Protocol, APausedRunWaitsForResumeOrStop) {
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

TEST(Protocol, CommandLineTakesSwitchesInAnyCase) {
    const auto remote = ParseArguments({"/REMOTE", "/autostart", "Off", "/tmp/a b.dat"});
    const auto plain = ParseArguments({"x.dat"});
    ASSERT_TRUE(remote && plain);
    EXPECT_TRUE(remote->remote && !remote->autostart);
    EXPECT_EQ(remote->parameters, "/tmp/a b.dat");
    EXPECT_TRUE(!plain->remote && plain->autostart);
    const std::vector<std::string> wrong[] = {
        {}, {"/remote"}, {"a", "b"}, {"a", "/autostart"}, {"a", "/autostart", "maybe"}};
    for (const auto& words : wrong) EXPECT_FALSE(ParseArguments(words)) << testing::PrintToString(words);
}

TEST(OutputSchedule, DatesAreMultiplesOfThePeriodInForce) {
    SRunPlan plan;
    plan.defaultRate = 1.0;
    plan.rates = {{{2.5, 4.05}, 10.0}, {{3.0, 3.2}, 50.0}};
    const COutputSchedule schedule(plan);
    const std::pair<double, double> rows[] = {{-0.3, 0.0}, {0.0, 1.0}, {1.9, 2.0},  {2.0, 2.5},
                                              {2.5, 2.6},  {2.9, 3.0}, {3.0, 3.02}, {3.18, 3.2},
                                              {3.2, 3.3},  {4.0, 5.0}, {7.0, 8.0}};
    for (const auto& [time, next] : rows) EXPECT_NEAR(schedule.GetNextAfter(time), next, 1e-6) << time;
    plan.defaultRate = -3.0;
    EXPECT_GT(schedule.GetNextAfter(10.0), 10.0);
}
