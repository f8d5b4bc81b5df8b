#include "conversion_fixture.h"

#include "foundation/texts.h"
#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"

#include <cmath>

namespace {

using namespace test;

struct SField {
    std::string_view name;
    double tolerance;
};

struct SRow {
    std::string_view kind, program;
    std::vector<std::string> switches;
    std::vector<std::string> channels; // compared
    double resolution;                 // of dates, s
    std::vector<SField> fields;        // that the format holds; none: all bytes after the date are equal
};

// A degree of latitude is 1.1e5 m.
const std::vector<SField> kFix{{"Latitude", 2e-11},
                               {"Longitude", 2e-11},
                               {"Std. dev. north", 6e-6},
                               {"Std. dev. east", 6e-6},
                               {"Std. dev. altitude", 6e-6}};

std::vector<SField> WithHeight(std::vector<SField> fields, std::initializer_list<SField> more) {
    fields.insert(fields.end(), more);
    return fields;
}

const SRow kRows[] = {
    {"nmea",
     "Nmea2Tarin",
     {},
     {"GPS_1"},
     6e-4,
     WithHeight(kFix, {{"Altitude", 6e-5},
                       {"Geoidal sep", 6e-5},
                       {"GPS mode", 0},
                       {"Covariance XY", 1e-4},
                       {"Horizontal rejection", 0}})},
    {"kolt",
     "Kolt2Tarin",
     {"/beacon", "2"},
     {"USBL_1"},
     6e-4,
     {{"Latitude", 2e-9}, {"Longitude", 2e-9}, {"Altitude", 6e-3}, {"Beacon", 0}, {"Mode", 0}}},
    {"novatel",
     "Novatel2Tarin",
     {},
     {"GPS_1"},
     6e-4,
     WithHeight(kFix, {{"GPS mode", 0}, {"Covariance XY", 1e-4}})},
    {"novatel-weeks",
     "Novatel2Tarin",
     {},
     {"GPS_1"},
     6e-5,
     WithHeight({{"Latitude", 3e-11}, {"Longitude", 3e-11}, {"Std. dev. north", 6e-6}}, {{"GPS mode", 0}})},
    {"novatel-fixes", "Novatel2Tarin", {}, {"GPS_1"}, 1e-7, kFix},
    {"raw", "PostProNelixDecode", {"/f", "tarin", "/utc", "2024-05-14"}, {}, 6e-5, {}},
    {"ciphered", "PostProNelixDecode", {"/ccd", "off"}, {}, 6e-5, {}},
    {"pd6",
     "PD6Rdi2Tarin",
     {},
     {"DVL_BT", "DVL_WT"},
     6e-3,
     {{"Speed X", 6e-4},
      {"Speed Y", 6e-4},
      {"Speed Z", 6e-4},
      {"Sound velocity (sensor)", 0.06},
      {"Rejection", 0}}},
    {"decoded", "DecodedNelix2Tarin", {"/e", "9", "/imu5msOffset", "no"}, {}, 1e-7, {}},
    {"synchro", "Synchro2Tarin", {}, {"SYNCHRO_1", "SYNCHRO_2", "SYNCHRO_3"}, 1e-7, {}},
    {"range", "Range2Tarin", {}, {"LBL"}, 1e-7, {}},
    {"usbl", "Usbl2Tarin", {}, {"USBL_1", "USBL_2", "USBL_3"}, 1e-7, {}},
    {"platform", "Platform2Tarin", {}, {"PLATFORM_ORIENT"}, 1e-7, {}},
    {"odometer", "Odometer2Tarin", {}, {"ODOMETER"}, 1e-7, {}},
    {"depth", "Depth2Tarin", {}, {"DEPTH"}, 1e-7, {}},
};

class RoundTripTest : public ConversionTest {
  protected:
    RoundTripTest() {
        m_options.duration = 60;
        m_options.alignmentDuration = 10;
        m_options.imuRate = 20;
        m_options.geoidSeparation = 48.5;
        m_options.latitude = -33.86;
        m_options.longitude = -179.9;
        m_options.gpsMode = 4;
        m_options.utcOrigin.SetDateTime(2024, 5, 14, 23, 59, 30, 0); // over midnight
        for (const auto& row : Persistance_Xpf::GetChannelLayouts())
            if (row.kind == Persistance_Xpf::EFileKind::tarin) m_options.channels.emplace_back(row.name);
    }
    void WriteMission() {
        std::string error;
        ASSERT_TRUE(Simulation::WriteMission(m_options, m_folder / "mission.tarin", {}, error)) << error;
        m_mission = ReadPackets(m_folder / "mission.tarin");
    }
    Packets WriteAndConvert(const SRow& row) {
        std::string error;
        EXPECT_TRUE(Simulation::WriteForeign(row.kind, m_folder / "mission.tarin", m_options.GetUtcOrigin(),
                                             m_folder / "foreign", error))
            << error;
        std::vector<std::string> words = row.switches;
        words.push_back((m_folder / "foreign").string());
        EXPECT_EQ(Run(row.program, words), Compagnon::ERunEnd::finished) << m_monitor.all;
        return ReadPackets(GetTarget());
    }

    Simulation::SMissionOptions m_options;
    Packets m_mission;
};

void Compare(const SRow& row, const SPacket& found, const SPacket& expected, double shift) {
    ASSERT_NEAR(found.date, expected.date + shift, row.resolution);
    for (const SField& field : row.fields)
        ASSERT_NEAR(found[field.name], expected[field.name], field.tolerance)
            << field.name << " at " << found.date;
    if (row.fields.empty()) {
        ASSERT_TRUE(std::equal(found.payload.begin() + 8, found.payload.end(), expected.payload.begin() + 8,
                               expected.payload.end()))
            << found.date;
    }
}

TEST_F(RoundTripTest, EveryKindComesBackPacketByPacket) {
    WriteMission();
    for (const SRow& row : kRows) {
        SCOPED_TRACE(row.kind);
        Packets target = WriteAndConvert(row);
        // Without a list the source holds all, dated by the recorder's clock; else dates count from midnight.
        const double shift = row.channels.empty() ? 0 : 23 * 3600 + 59 * 60 + 30;
        std::vector<std::string> channels = row.channels;
        if (channels.empty())
            for (const auto& [name, packets] : m_mission) channels.push_back(name);
        EXPECT_EQ(target.size(), channels.size() + (row.channels.empty() ? 0 : 1)) << m_monitor.all;
        for (const std::string& channel : channels) {
            SCOPED_TRACE(channel);
            const auto& expected = m_mission[row.kind == "kolt" ? "USBL_2" : channel];
            ASSERT_EQ(target[channel].size(), expected.size()) << m_monitor.all;
            for (std::size_t i = 0; i < expected.size(); ++i)
                Compare(row, target[channel][i], expected[i], shift);
        }
        for (const SPacket& utc : target["UTC"]) {
            const double day = utc["UTC day"] - 14,
                         second = utc["UTC Hour"] * 3600 + utc["UTC Minute"] * 60 + utc["UTC Second"];
            const double zero = row.channels.empty() ? 23 * 3600 + 59 * 60 + 30 : 0;
            ASSERT_NEAR(day * 86400 + second, utc.date + zero,
                        1e-4 + (row.channels.empty() ? row.resolution : 0));
        }
    }
}

TEST_F(RoundTripTest, DriftOfTheClockIsTakenOut) {
    m_options.channels = {"IMU", "UTC"};
    m_options.duration = 600;
    WriteMission();
    const Packets steady = m_mission;
    m_options.clockDrift = 100; // 0.06 s at the end
    WriteMission();
    const auto last = [&](std::string_view mode) {
        return WriteAndConvert({"raw", "PostProNelixDecode", {"/ccd", std::string(mode)}, {}, 0, {}})["IMU"]
            .back()
            .date;
    };
    const double right = steady.at("IMU").back().date;
    EXPECT_NEAR(last("off"), right * (1 + 1e-4), 1e-4);
    EXPECT_NEAR(last("auto"), right, 3e-4);
    EXPECT_NEAR(last("on"), right, 3e-4);
    EXPECT_TRUE(m_monitor.texts.contains(Compagnon::EText::rawDrift));
}

TEST_F(RoundTripTest, GivenDayDatesAStreamWithoutUtc) {
    m_options.channels = {"IMU"};
    WriteMission();
    for (const SRow& row : {SRow{"raw", "PostProNelixDecode", {"/utc", "2024-05-14"}, {}, 0, {}},
                            SRow{"decoded", "DecodedNelix2Tarin", {"/utc", "2024-05-14"}, {}, 0, {}}}) {
        const Packets target = WriteAndConvert(row);
        EXPECT_EQ(target.at("IMU").size(), m_mission["IMU"].size());
        ASSERT_GE(target.at("UTC").size(), 60u);
        const SPacket& last = target.at("UTC").back();
        EXPECT_EQ(last["UTC day"], 14);
        EXPECT_EQ(last["UTC Minute"] * 60 + last["UTC Second"], last.date) << "the clock starts at midnight";
    }
}

} // namespace
