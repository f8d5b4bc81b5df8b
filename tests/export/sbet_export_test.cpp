#include "export/sbet_export.h"

#include "export_fixture.h"
#include "simulator/mission.h"
#include "simulator/mission_writer.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace Exportation {
namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr double kRadian = std::numbers::pi / 180;

// Places in a record.
enum : std::size_t {
    time = 0,
    latitude,
    longitude,
    altitude,
    velocity,
    roll = 7,
    pitch,
    heading,
    wander,
    acceleration,
    rate = 14
};

class SbetExport : public ExportTest {
  protected:
    using Records = std::vector<std::vector<double>>;

    // As another program reads them.
    Records Read(std::string_view name, int count) const {
        Records records;
        for (const std::string& line :
             Split(Ask("python3 " READ_BACK " doubles " + Name(name) + ' ' + std::to_string(count)), '\n')) {
            records.emplace_back();
            for (const std::string& value : Split(line, '\t'))
                records.back().push_back(std::strtod(value.c_str(), nullptr));
        }
        return records;
    }
    void Record(const std::vector<CPacketMaker>& packets) const {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path("in.tarout"), std::vector<std::string_view>{"MORVEX_STD"}));
        for (const CPacketMaker& packet : packets) ASSERT_TRUE(writer.Write("MORVEX_STD", packet));
        ASSERT_TRUE(writer.Close());
    }
    static CPacketMaker Navigation(double at, int day = 7, int hour = 12, int minute = 0, double second = 0) {
        CPacketMaker packet("MORVEX_STD", at);
        packet.SetAll({{"UTC Year", 2026},
                       {"UTC Month", 3},
                       {"UTC Day", day},
                       {"UTC Hour", hour},
                       {"UTC Minute", minute},
                       {"UTC Second", second}});
        return packet;
    }
};

// The mission's own formulas tell the acceleration, not differences.
TEST_F(SbetExport, SimulatedShipAgreesWithItsTruth) {
    Simulation::SMissionOptions options;
    options.duration = 120;
    options.alignmentDuration = 20;
    options.truthRate = 20;
    const Simulation::CMission mission(options);
    std::string error;
    ASSERT_TRUE(Simulation::WriteMission(mission, Path("m.tarin"), Path("m.csv"), error)) << error;
    ASSERT_EQ(Run(kResultToSbet, {"/tr", "day", Name("m.tarout"), Name("m.out")}), ERunEnd::finished);
    const Records records = Read("m.out", 17);
    ASSERT_EQ(records.size(), 120u * 20 + 1);
    Simulation::CTrackCursor cursor;
    const double begin = records.front()[time];
    for (std::size_t i = 1; i + 1 < records.size(); ++i) {
        const std::vector<double>& record = records[i];
        const double at = record[time] - begin;
        const Simulation::STruth truth = mission.GetTruth(at, cursor);
        const std::pair<double, double> exact[] = {
            {record[latitude], truth.latitude * kRadian},
            {record[longitude], truth.longitude * kRadian},
            {record[velocity], truth.speedNorth},
            {record[velocity + 1], truth.speedEast},
            {record[velocity + 2], -truth.speedUp},
            {record[roll], truth.roll * kRadian},
            {record[pitch], truth.pitch * kRadian},
            {record[heading], truth.heading * kRadian},
            {record[wander], 0.0},
        };
        for (const auto& [found, expected] : exact) ASSERT_NEAR(found, expected, 1e-9) << at;
        const Simulation::SVehicleState state = mission.GetState(at, cursor);
        const Simulation::Vector3d force = state.attitude.transpose() * state.motion.acceleration;
        // Vessel axes of the mission: forward, to port, up.
        for (const int axis : {0, 1, 2}) {
            const double sign = axis == 0 ? 1 : -1;
            ASSERT_NEAR(record[acceleration + static_cast<std::size_t>(axis)], sign * force[axis], 5e-3)
                << at;
            ASSERT_NEAR(record[rate + static_cast<std::size_t>(axis)], sign * state.earthRelativeRate[axis],
                        5e-4)
                << at;
        }
    }
}

// A turn to starboard with a list: the acceleration points to the centre.
TEST_F(SbetExport, MotionIsInVesselAxes) {
    constexpr double kTurn = 0.1, kSpeed = 5, kList = 20 * kRadian;
    std::vector<CPacketMaker> packets;
    for (int i = 0; i < 5; ++i) {
        const double at = i * 0.02, course = 6.25 + kTurn * at; // passes north
        packets.push_back(Navigation(at));
        packets.back().SetAll({{"Speed north", kSpeed * std::cos(course)},
                               {"Speed east", kSpeed * std::sin(course)},
                               {"Heading", std::fmod(course / kRadian, 360)},
                               {"Roll", kList / kRadian}});
    }
    Record(packets);
    ASSERT_EQ(Run(kResultToSbet, {Name("in.tarout"), Name("out")}), ERunEnd::finished);
    const double to = kSpeed * kTurn;
    const double expected[] = {0, to * std::cos(kList),    -to * std::sin(kList),
                               0, kTurn * std::sin(kList), kTurn * std::cos(kList)};
    for (const std::vector<double>& record : Read("out", 17))
        for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(record[acceleration + i], expected[i], 1e-3) << i;
}

TEST_F(SbetExport, TimesCountFromDayOrWeek) {
    // A Saturday before midnight: the next day is in the next week.
    Record(
        {Navigation(10, 7, 23, 59, 59.5), Navigation(10.25, 7, 23, 59, 59.75), Navigation(11, 8, 0, 0, 0.5)});
    const struct {
        std::string word;
        double first;
    } rows[] = {{"day", 86399.5}, {"week", 7 * 86400 - 0.5}};
    for (const auto& row : rows) {
        ASSERT_EQ(Run(kResultToSbet, {"/tr", row.word, Name("in.tarout"), Name("out")}), ERunEnd::finished);
        const Records records = Read("out", 17);
        ASSERT_EQ(records.size(), 3u);
        EXPECT_NEAR(records[0][time], row.first, 1e-9);
        EXPECT_NEAR(records[2][time], row.first + 1, 1e-9) << "times never fall";
        EXPECT_THAT(monitor.codes, Contains(EText::exportTimeGoesOn));
    }
    ASSERT_EQ(Run(kResultToSbet, {"/dec", "2", Name("in.tarout"), Name("out")}), ERunEnd::finished);
    EXPECT_EQ(Read("out", 17).size(), 2u);
}

TEST_F(SbetExport, AccuracyFileLiesBeside) {
    std::vector<CPacketMaker> packets{Navigation(1)};
    packets[0].SetAll({{"Std. dev. north", 1.5},
                       {"Std. dev. east", 2.5},
                       {"Std. dev. altitude", 3.5},
                       {"Std. dev. speed north", 0.1},
                       {"Std. dev. speed east", 0.2},
                       {"Std. dev. speed up", 0.3},
                       {"Std. dev. roll", 0.5},
                       {"Std. dev. pitch", 1.0},
                       {"Std. dev. heading", 2.0}});
    Record(packets);
    ASSERT_EQ(Run(kResultToSbet, {"/a", Name("in.tarout"), Name("sbet_x.out")}), ERunEnd::finished);
    EXPECT_THAT(ListFolder(), ElementsAre("in.tarout", "sbet_x.out", "smrmsg_x.out"));
    const Records records = Read("smrmsg_x.out", 10);
    const double expected[] = {1.5, 2.5, 3.5, 0.1, 0.2, 0.3, 30, 60, 120}; // attitude in arc minutes
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0][time], Read("sbet_x.out", 17)[0][time]);
    for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_NEAR(records[0][i + 1], expected[i], 1e-9);
}

TEST_F(SbetExport, APointMovesWithItsArm) {
    // 10 m ahead of the primary point on a vessel that turns about it.
    constexpr double kTurn = 0.2, kArm = 10, kRadius = 6378137;
    std::vector<CPacketMaker> packets;
    for (int i = 0; i < 3; ++i) {
        const double course = kTurn * i * 0.1;
        packets.push_back(Navigation(i * 0.1));
        packets.back().SetAll({{"Heading", course / kRadian},
                               {"Longitude2", kArm * std::sin(course) / kRadius / kRadian},
                               {"Latitude2", kArm * std::cos(course) / 6335439.327 / kRadian}});
    }
    Record(packets);
    ASSERT_EQ(Run(kResultToSbet, {"/lv", "2", Name("in.tarout"), Name("out")}), ERunEnd::finished);
    const Records records = Read("out", 17);
    EXPECT_NEAR(records[1][velocity + 1], kTurn * kArm * std::cos(kTurn * 0.1), 1e-3);
    EXPECT_NEAR(records[1][latitude], kArm * std::cos(kTurn * 0.1) / 6335439.327, 1e-12);
}

} // namespace
} // namespace Exportation
