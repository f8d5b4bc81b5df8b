// From a simulated recording to the picture of a better navigation, with the real engine as a child process.
#include "batch/batch_fixture.h"

#include "simulator/mission_writer.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <thread>
#include <unistd.h>

using namespace Simulation;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

// Kills the engine that this process has started, if there is one.
void KillEngine() {
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        std::ifstream stat(entry.path() / "stat");
        pid_t id = 0, parent = 0;
        std::string name, state;
        if (stat >> id >> name >> state >> parent && parent == ::getpid() && name == "(Morvex.exe)")
            ::kill(id, SIGKILL);
    }
}

constexpr double kMetresPerDegree = 111132.0; // of latitude, near enough for an error of metres

class EndToEnd : public test::Batch {
  protected:
    // A car's mission as /m.tarin, and a project with its GPS.
    SMissionOptions Record(double duration, double alignment, std::vector<std::string> channels) {
        SMissionOptions options;
        options.vehicle = EVehicle::car;
        options.duration = duration;
        options.alignmentDuration = alignment;
        options.imuRate = 50;
        options.channels = std::move(channels);
        std::string error;
        EXPECT_TRUE(WriteMission(options, Path("m.tarin"), {}, error)) << error;
        std::filesystem::remove(Path("m.tarprj"));
        Succeed("create /m.tarin /m.tarprj --add gps");
        return options;
    }

    // Root mean square of the errors of a channel along the meridian in metres.
    double LatitudeError(const std::string& fileAndChannel, const std::string& column,
                         const CMission& mission) {
        Succeed("packets " + fileAndChannel);
        const auto lines = Lines();
        const auto names = Cells(lines.at(0));
        const auto at =
            static_cast<std::size_t>(std::find(names.begin(), names.end(), column) - names.begin());
        double squares = 0;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            const auto cells = Cells(lines[i]);
            const double error = std::stod(cells.at(at)) - mission.GetTruth(std::stod(cells[0])).latitude;
            squares += std::pow(error * kMetresPerDegree, 2);
        }
        return std::sqrt(squares / static_cast<double>(lines.size() - 1));
    }
};

TEST_F(EndToEnd, ARecordingBecomesABetterNavigation) {
    const CMission mission(Record(420, 120, {"IMU", "GPS_1", "UTC", "NELIX_NAV"}));
    EXPECT_EQ(Run("create /m.tarin /m.tarprj"), 1); // never over an existing project
    Succeed("run /m.tarprj");
    int last = -1;
    double reached = 0;
    for (const std::string& line : Lines()) {
        const auto cells = Cells(line);
        if (cells.at(0) != "progress") continue;
        EXPECT_GT(std::stoi(cells.at(1)), last) << m_out;
        last = std::stoi(cells.at(1));
        if (cells.size() > 2 && !cells[2].empty()) reached = std::stod(cells[2]);
    }
    EXPECT_EQ(last, 100) << m_out;
    EXPECT_GT(reached, 400) << m_out; // the date of the result's last packet
    char utc[32];                     // the recording begins at 08:00
    std::snprintf(utc, sizeof utc, ";2024-05-14T08:%02d:", static_cast<int>(reached) / 60);
    EXPECT_THAT(m_out, AllOf(HasSubstr("\nINFO;"), HasSubstr(utc)));
    EXPECT_THAT(m_out, Not(HasSubstr("ERROR")));
    const double fixes = LatitudeError("/m.tarin GPS_1", "Latitude", mission);
    const double result = LatitudeError("/m.tarout MORVEX_STD", "Latitude0", mission);
    EXPECT_GT(Lines().size(), 415u);
    EXPECT_LT(result, fixes);

    for (const auto& [name, content] :
         {std::pair{"p.svg", "<polyline"}, {"p.PNG", "PNG"}, {"p.pdf", "%PDF"}}) {
        Succeed(std::string("picture /m.tarprj /") + name + " --size 800x600");
        EXPECT_THAT(TextOf(name), HasSubstr(content)) << name;
        EXPECT_GT(TextOf(name).size(), 10'000u) << name;
    }
    std::ofstream(Path("m.tarin"), std::ios::trunc) << "nothing of it is left";
    const std::string former = TextOf("m.tarout");
    EXPECT_EQ(Run("run /m.tarprj"), 1);
    EXPECT_THAT(m_error, HasSubstr("The processing is not started"));
    EXPECT_EQ(TextOf("m.tarout"), former);
}

// Whatever ends the engine in the middle of its work leaves a result that opens, with whole packets to its
// end.
TEST_F(EndToEnd, InterruptedRunLeavesAResult) {
    Record(14400, 60, {"IMU", "GPS_1", "UTC"}); // the engine is at work when the first of its result is seen
    const std::tuple<const char*, void (*)(), const char*> endings[] = {
        {"stopped", [] { ::raise(SIGTERM); }, "The processing was stopped."},
        {"killed", KillEngine, "killed by signal 9"}};
    for (const auto& [name, end, message] : endings) {
        std::filesystem::remove(Path("m.tarout"));
        bool ended = false;
        const auto endOnceThereIsAResult = [&] {
            std::error_code error;
            const auto size = std::filesystem::file_size(Path("m.tarout"), error);
            if (ended || error || size < 40'000) return;
            ended = true;
            end();
        };
        EXPECT_EQ(Run("run /m.tarprj", endOnceThereIsAResult), 1) << name;
        EXPECT_TRUE(ended) << name << m_out;
        EXPECT_THAT(m_out + m_error, HasSubstr(message)) << name;
        EXPECT_THAT(m_out, Not(HasSubstr("progress;100;"))) << name;

        Succeed("analyse /m.tarout");
        EXPECT_THAT(m_out, Not(HasSubstr("damaged"))) << name;
        Succeed("packets /m.tarout MORVEX_STD");
        const auto lines = Lines();
        EXPECT_GT(lines.size(), 20u) << name;
        EXPECT_EQ(Cells(lines.back()).size(), Cells(lines.front()).size()) << name;
        Succeed("picture /m.tarprj /p.svg --size 400x300");
    }
}

// The engine navigates by itself: what the unit thought during the mission is none of its inputs.
TEST_F(EndToEnd, ResultIgnoresRealTimeNavigation) {
    std::string results[2];
    for (const bool realTime : {false, true}) {
        std::vector<std::string> channels = {"IMU", "GPS_1", "UTC"};
        if (realTime) channels.push_back("NELIX_NAV");
        Record(150, 60, channels);
        Succeed("run /m.tarprj");
        Succeed("packets /m.tarout MORVEX_STD");
        results[realTime] = m_out;
    }
    EXPECT_GT(results[0].size(), 10'000u);
    EXPECT_EQ(results[0], results[1]);
}

TEST_F(EndToEnd, SignalEndsTheWaitForADeadDisk) {
    Record(20, 5, {"IMU", "GPS_1"});
    EXPECT_EXIT(
        {
            ::alarm(60); // for a program that waits on
            const test::CFaultyDisk disk(Path("m.tarin"), test::CFaultyDisk::stalls);
            std::thread([&disk] {
                disk.WaitForHeld(1);
                ::kill(::getpid(), SIGINT);
            }).detach();
            Run("run /m.tarprj");
        },
        testing::KilledBySignal(SIGINT), "");
}

} // namespace
