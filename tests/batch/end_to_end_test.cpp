// From a simulated recording to the picture of a better navigation, with the real engine as a child process.
#include "batch/batch_fixture.h"

#include "simulator/mission_writer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>
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
    void Record(const SMissionOptions& options) {
        std::string error;
        ASSERT_TRUE(WriteMission(options, Path("m.tarin"), {}, error)) << error;
    }

    // Root mean square of the horizontal distance to the truth in metres, and the greatest heading error in
    // degrees, over the packets of a channel from `from` seconds on.
    struct SErrors {
        double horizontal = 0;
        double heading = 0;
        int count = 0;
    };
    SErrors Compare(const std::string& file, const std::string& channel, const std::string& latitude,
                    const std::string& longitude, const CMission& mission, double from) {
        EXPECT_EQ(Run({"packets", file, channel, "--from", std::to_string(from)}), 0) << m_error;
        const auto lines = Lines();
        const auto names = Cells(lines.at(0));
        const auto column = [&names](const std::string& name) {
            return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
        };
        SErrors errors;
        for (std::size_t i = 1; i < lines.size(); ++i) {
            const auto cells = Cells(lines[i]);
            const STruth truth = mission.GetTruth(std::stod(cells[0]));
            const double north = (std::stod(cells.at(column(latitude))) - truth.latitude) * kMetresPerDegree;
            const double east = (std::stod(cells.at(column(longitude))) - truth.longitude) *
                                kMetresPerDegree * std::cos(truth.latitude * M_PI / 180);
            errors.horizontal += north * north + east * east;
            if (column("Heading") < cells.size()) {
                const double error =
                    std::remainder(std::stod(cells[column("Heading")]) - truth.heading, 360.0);
                errors.heading = std::max(errors.heading, std::fabs(error));
            }
            ++errors.count;
        }
        errors.horizontal = std::sqrt(errors.horizontal / std::max(1, errors.count));
        return errors;
    }
};

TEST_F(EndToEnd, ARecordingBecomesABetterNavigation) {
    SMissionOptions options;
    options.vehicle = EVehicle::car;
    options.duration = 420;
    options.alignmentDuration = 120;
    options.imuRate = 50;
    options.seed = 5;
    options.channels = {"IMU", "GPS_1", "UTC", "NELIX_NAV"};
    Record(options);
    ASSERT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj"), "--add", "gps,depth"}), 0) << m_error;
    EXPECT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj")}), 1); // never over an existing project
    ASSERT_EQ(Run({"run", Path("m.tarprj")}), 0) << m_out << m_error;

    int last = -1;
    for (const std::string& line : Lines()) {
        if (!line.starts_with("progress ")) continue;
        EXPECT_GT(std::stoi(line.substr(9)), last) << m_out;
        last = std::stoi(line.substr(9));
    }
    EXPECT_EQ(last, 100) << m_out;
    EXPECT_THAT(m_out, HasSubstr("INFO : "));
    EXPECT_THAT(m_out, Not(HasSubstr("ERROR")));

    const CMission mission(options);
    const SErrors fixes = Compare(Path("m.tarin"), "GPS_1", "Latitude", "Longitude", mission, 0);
    const SErrors all = Compare(Path("m.tarout"), "MORVEX_STD", "Latitude0", "Longitude0", mission, 0);
    const SErrors turned = Compare(Path("m.tarout"), "MORVEX_STD", "Latitude0", "Longitude0", mission, 300);
    EXPECT_GE(all.count, 415);
    EXPECT_LT(all.horizontal, fixes.horizontal);
    EXPECT_LT(turned.heading, 1.0);
    RecordProperty("horizontal_m", std::to_string(all.horizontal));
    RecordProperty("fixes_m", std::to_string(fixes.horizontal));
    RecordProperty("heading_deg", std::to_string(turned.heading));

    struct SPicture {
        const char* name;
        const char* content;
    };
    for (const auto& [name, content] :
         {SPicture{"p.svg", "<polyline"}, {"p.png", "PNG"}, {"p.pdf", "%PDF"}}) {
        ASSERT_EQ(Run({"picture", Path("m.tarprj"), Path(name), "--size", "800x600"}), 0) << m_error;
        std::ifstream file(Path(name), std::ios::binary);
        const std::string bytes(std::istreambuf_iterator<char>(file), {});
        EXPECT_THAT(bytes, HasSubstr(content)) << name;
        EXPECT_GT(bytes.size(), 10'000u) << name;
    }
}

// Whatever ends the engine in the middle of its work leaves a result that opens, with whole packets to its
// end.
TEST_F(EndToEnd, AnEngineStoppedOrKilledLeavesAResultThatOpens) {
    SMissionOptions options;
    options.vehicle = EVehicle::car;
    options.duration = 600;
    options.alignmentDuration = 60;
    options.channels = {"IMU", "GPS_1", "UTC"};
    Record(options);
    ASSERT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj"), "--add", "gps"}), 0) << m_error;

    struct SEnding {
        const char* name;
        void (*end)();
        const char* told;
    };
    const SEnding endings[] = {
        {"stopped", [] { ::raise(SIGTERM); }, "The processing was stopped."},
        {"killed", KillEngine, "the processing ended before its end"},
    };
    for (const auto& [name, end, told] : endings) {
        std::filesystem::remove(Path("m.tarout"));
        bool ended = false;
        const auto endOnceThereIsAResult = [&] {
            std::error_code error;
            const auto size = std::filesystem::file_size(Path("m.tarout"), error);
            if (ended || error || size < 40'000) return;
            ended = true;
            end();
        };
        EXPECT_EQ(Run({"run", Path("m.tarprj")}, endOnceThereIsAResult), 1) << name;
        EXPECT_TRUE(ended) << name << m_out;
        EXPECT_THAT(m_out + m_error, HasSubstr(told)) << name;
        EXPECT_THAT(m_out, Not(HasSubstr("progress 100\n"))) << name;

        ASSERT_EQ(Run({"analyse", Path("m.tarout")}), 0) << name << m_error;
        EXPECT_THAT(m_out, Not(HasSubstr("damaged"))) << name;
        ASSERT_EQ(Run({"packets", Path("m.tarout"), "MORVEX_STD"}), 0) << name;
        const auto lines = Lines();
        EXPECT_GT(lines.size(), 20u) << name;
        EXPECT_EQ(Cells(lines.back()).size(), Cells(lines.front()).size()) << name;
        EXPECT_EQ(Run({"picture", Path("m.tarprj"), Path("p.svg"), "--size", "400x300"}), 0) << name;
    }
}

// The engine navigates by itself: what the unit thought during the mission is none of its inputs.
TEST_F(EndToEnd, TheResultIsNoCopyOfTheRealTimeNavigation) {
    std::vector<std::string> results[2];
    for (const bool realTime : {false, true}) {
        SMissionOptions options;
        options.vehicle = EVehicle::car;
        options.duration = 150;
        options.alignmentDuration = 60;
        options.imuRate = 50;
        options.channels = {"IMU", "GPS_1", "UTC"};
        if (realTime) options.channels.push_back("NELIX_NAV");
        Record(options);
        std::filesystem::remove(Path("m.tarprj"));
        ASSERT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj"), "--add", "gps"}), 0) << m_error;
        ASSERT_EQ(Run({"run", Path("m.tarprj")}), 0) << m_out << m_error;
        ASSERT_EQ(Run({"packets", Path("m.tarout"), "MORVEX_STD"}), 0) << m_error;
        results[realTime] = Lines();
    }
    EXPECT_GT(results[0].size(), 100u);
    EXPECT_EQ(results[0], results[1]);
}

TEST_F(EndToEnd, ABrokenRecordingIsAnError) {
    SMissionOptions options;
    options.vehicle = EVehicle::car;
    options.duration = 60;
    options.alignmentDuration = 10;
    options.channels = {"IMU", "GPS_1"};
    Record(options);
    ASSERT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj"), "--add", "all"}), 0) << m_error;
    std::ofstream(Path("m.tarin"), std::ios::trunc) << "nothing of it is left";
    EXPECT_EQ(Run({"run", Path("m.tarprj")}), 1);
    EXPECT_THAT(m_out, HasSubstr("ERROR : "));
}

} // namespace
