#include "simulator/mission_writer.h"

#include "foundation/files.h"
#include "simulator/command_line.h"
#include "simulator/earth.h"
#include "simulator/truth_writer.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace Simulation {
namespace {

using namespace Persistance_Xpf;
namespace fs = std::filesystem;

class MissionWriterTest : public testing::Test {
  protected:
    MissionWriterTest() {
        m_options.duration = 300;
        m_options.alignmentDuration = 30;
        m_options.imuRate = 20;
    }

    fs::path Write(const std::string& name) {
        std::string error;
        EXPECT_TRUE(WriteMission(m_options, m_folder / name, m_folder / (name + ".csv"), error)) << error;
        return m_folder / name;
    }
    std::vector<std::uint8_t> Bytes(const fs::path& path) {
        return *Outils_Fichiers::ReadWholeFile(path, 1 << 28);
    }
    std::unique_ptr<CXpfFile> WriteAndOpen() { return OpenXpfFile(Write("m.tarin"), EFileKind::tarin).file; }

    // Calls `visit` for each packet of a channel with its time and a function that gives its fields by name.
    template <class TPacket, class TVisit>
    static void ForEach(CXpfFile& file, std::string_view name, const SPacketLayout& layout, TVisit visit) {
        CXpfChannel* channel = file.FindChannelByName(name);
        ASSERT_TRUE(channel) << name;
        TPacket packet;
        while (channel->ReadNextPacket(packet))
            visit(packet.GetPacketDate().GetTotalSeconds(), [&](std::string_view field) {
                double value = NAN;
                EXPECT_TRUE(packet.GetDouble(layout.IndexOf(field), value)) << field;
                return value;
            });
    }

    test::CTemporaryFolder m_folder;
    SMissionOptions m_options;
};

TEST_F(MissionWriterTest, ChannelsComeInTimeOrder) {
    for (const SChannelLayout& row : GetChannelLayouts())
        if (row.kind == EFileKind::tarin) m_options.channels.emplace_back(row.name);
    m_options.GetChannelOptions("GPS_2").rate = 4;
    m_options.GetChannelOptions("DVL_BT").delay = 0.4;
    const auto file = WriteAndOpen();
    ASSERT_TRUE(file && file->Seek(file->GetDataStart().Get()));
    std::map<std::string, int> counts;
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    std::int64_t before = 1;
    while (CStreamWalk(*file).Next(header, payload) == EPacketRead::whole) {
        std::int64_t date;
        std::memcpy(&date, payload.data(), sizeof date);
        ASSERT_GE(date, before);
        before = date;
        ++counts[file->FindChannelByNumber(header.channel)->GetName()];
    }
    EXPECT_EQ(file->GetPosition(), file->GetFileSize());
    EXPECT_EQ(counts.size(), 22u);
    EXPECT_EQ(counts["IMU"], 6000);
    EXPECT_EQ(counts["GPS_1"], 300);
    EXPECT_EQ(counts["GPS_2"], 1200);
    EXPECT_EQ(counts["NELIX_NAV"], 3000);
    EXPECT_EQ(counts["SYNCHRO_4"], 30);
}

TEST_F(MissionWriterTest, SeedsAndSizeDecideTheBytes) {
    m_options.outliers = 0.05;
    const auto first = Bytes(Write("a")), firstTruth = Bytes(m_folder / "a.csv");
    EXPECT_EQ(Bytes(Write("b")), first);
    EXPECT_EQ(Bytes(m_folder / "b.csv"), firstTruth);
    m_options.seed = 2;
    EXPECT_NE(Bytes(Write("c")), first);
    m_options.targetSize = 3'000'000;
    EXPECT_NEAR(static_cast<double>(fs::file_size(Write("size.tarin"))), 3e6, 3e4);
}

TEST_F(MissionWriterTest, GpsErrsAsItClaims) {
    m_options.duration = 1500;
    m_options.imuRate = 1;
    m_options.geoidSeparation = 48.5;
    m_options.leverArms[static_cast<std::size_t>(EMount::gps)] = {3, -2, 12};
    m_options.GetChannelOptions("GPS_1") = {"GPS_1", 4, 0.25, {{700, 800}}};
    const CMission mission(m_options);
    const auto file = WriteAndOpen();
    ASSERT_TRUE(file);
    CTrackCursor cursor;
    double nn = 0, ee = 0, ne = 0, uu = 0, n = 0, count = 0;
    ForEach<CXpfTarinGpsPacketV2>(*file, "GPS_1", kGpsLayout, [&](double date, auto field) {
        const double time = date - field("Delay");
        EXPECT_FALSE(time >= 700 && time < 800);
        const SVehicleState state = mission.GetState(time, cursor);
        const Vector3d arm = state.attitude * Vector3d(3, -2, 12);
        const Vector3d vessel = ToEarthFixed(state.latitude, state.longitude, state.motion.altitude);
        const Vector3d fix =
            ToEarthFixed(field("Latitude") * kRadiansPerDegree, field("Longitude") * kRadiansPerDegree,
                         field("Altitude") + field("Geoidal sep"));
        const double north =
            (field("Latitude") * kRadiansPerDegree - state.latitude) * state.meridianRadius - arm.x();
        const double east = (field("Longitude") * kRadiansPerDegree - state.longitude) * state.normalRadius *
                                std::cos(state.latitude) +
                            arm.y();
        const double up = field("Altitude") + 48.5 - state.motion.altitude - arm.z();
        // The distance from the unit, in space, is that of the lever arm with the errors.
        EXPECT_NEAR((fix - vessel).norm(), (arm + Vector3d{north, -east, up}).norm(), 0.01);
        n += north / field("Std. dev. north");
        nn += std::pow(north / field("Std. dev. north"), 2);
        ee += std::pow(east / field("Std. dev. east"), 2);
        uu += std::pow(up / field("Std. dev. altitude"), 2);
        ne += north * east / field("Covariance XY");
        ++count;
    });
    EXPECT_EQ(count, 5600);
    for (const double squares : {nn, ee, uu}) EXPECT_NEAR(squares / count, 1, 0.08);
    EXPECT_NEAR(ne / count, 1, 0.3);
    EXPECT_NEAR(n / count, 0, 0.06);
}

TEST_F(MissionWriterTest, OutliersStandOutAndOnlyThey) {
    m_options.channels = {"DEPTH"};
    m_options.noise = 0;
    std::vector<double> depths[2]; // without and with outliers
    for (auto& found : depths) {
        const auto file = WriteAndOpen();
        ForEach<CXpfTarinDepthPacketV1>(*file, "DEPTH", kDepthLayout,
                                        [&](double, auto field) { found.push_back(field("Depth")); });
        m_options.outliers = 0.1;
    }
    ASSERT_EQ(depths[0].size(), depths[1].size());
    int outliers = 0;
    for (std::size_t i = 0; i < depths[0].size(); ++i) {
        const double difference = std::abs(depths[0][i] - depths[1][i]);
        outliers += difference > 0;
        EXPECT_TRUE(difference == 0 || difference > 1.0);
    }
    EXPECT_NEAR(outliers, 60, 25);
}

TEST_F(MissionWriterTest, PerfectSensorsReadTheTruth) {
    m_options.grade = EGrade::perfect;
    m_options.vehicle = EVehicle::car;
    m_options.channels = {"ODOMETER", "NELIX_NAV", "UTC", "DVL_BT"};
    const CMission mission(m_options);
    const auto file = WriteAndOpen();
    ASSERT_TRUE(file);
    CTrackCursor cursor;
    double run = 0;
    ForEach<CXpfTarinOdometerPacketV2>(*file, "ODOMETER", kOdometerLayout, [&](double time, auto field) {
        run += field("Measure");
        EXPECT_NEAR(run, mission.GetState(time, cursor).motion.distance, 1e-6);
    });
    EXPECT_GT(run, 500);
    ForEach<CXpfTarinNelixNavPacketV2>(*file, "NELIX_NAV", kNelixNavLayout, [&](double time, auto field) {
        const STruth truth = mission.GetTruth(time, cursor);
        EXPECT_NEAR(field("Latitude"), truth.latitude, 1e-10);
        EXPECT_NEAR(std::remainder(field("Heading") - truth.heading, 360), 0, 1e-4);
        EXPECT_NEAR(field("Speed east"), truth.speedEast, 1e-5);
    });
    ForEach<CXpfTarinDvlPacketV1>(*file, "DVL_BT", kDvlLayout, [&](double time, auto field) {
        const STruth truth = mission.GetTruth(time, cursor);
        const double x = field("Speed X"), y = field("Speed Y"), z = field("Speed Z");
        EXPECT_NEAR(std::hypot(x, y, z), std::hypot(truth.speedNorth, truth.speedEast, truth.speedUp), 1e-5);
        EXPECT_LT(std::abs(y), 0.1 * std::max(x, 1.0));
    });
    ForEach<CXpfTarinUtcPacketV2>(*file, "UTC", kUtcLayout, [&](double time, auto field) {
        const auto part = [&](std::string_view name) { return static_cast<std::uint16_t>(field(name)); };
        Outils_Temps::CDateTime date;
        date.SetDateTime(part("UTC Year"), part("UTC Month"), part("UTC day"), part("UTC Hour"),
                         part("UTC Minute"), part("UTC Second"), 0);
        EXPECT_EQ(date - Outils_Temps::CDateTimeSpan::FromSeconds(time), m_options.GetUtcOrigin());
    });
}

// Each fault of the recorder, and what it does to the inertial packets of a minute at 20 Hz.
TEST_F(MissionWriterTest, RecordersLoseDoubleAndDateLate) {
    struct {
        double SMissionOptions::*fault;
        double value;
        double packets;   // about
        double lateShare; // of dates that are no multiple of the period
    } const rows[] = {{&SMissionOptions::imuLost, 0.1, 1080, 0.0},
                      {&SMissionOptions::imuDoubled, 0.1, 1320, 0.09},
                      {&SMissionOptions::imuLate, 0.1, 1200, 0.1},
                      {&SMissionOptions::imuJitter, 0.01, 1200, 1.0},
                      {&SMissionOptions::clockDrift, 100.0, 1200, 1.0}};
    m_options.duration = 60;
    for (const auto& row : rows) {
        SMissionOptions before = m_options;
        m_options.*row.fault = row.value;
        const auto file = WriteAndOpen();
        m_options = before;
        ASSERT_TRUE(file);
        double packets = 0, late = 0;
        ForEach<CXpfTarinImuPacketV2>(*file, "IMU", kImuLayout, [&](double time, auto) {
            ++packets;
            late += std::abs(std::remainder(time, 0.05)) > 1e-6;
        });
        EXPECT_NEAR(packets, row.packets, 40);
        EXPECT_NEAR(late / packets, row.lateShare, 0.04);
    }
}

// What a fault without a word does to the sensor: the largest error north or in the measure.
TEST_F(MissionWriterTest, HiddenFaultsMoveWhatIsMeasured) {
    m_options.vehicle = EVehicle::car;
    m_options.noise = 0;
    m_options.channels = {"GPS_1", "ODOMETER"};
    const auto measure = [&](void (*spoil)(SMissionOptions&)) {
        const SMissionOptions before = m_options;
        spoil(m_options);
        const CMission mission(m_options);
        const auto file = WriteAndOpen();
        m_options = before;
        double north = 0, distance = 0;
        ForEach<CXpfTarinGpsPacketV2>(*file, "GPS_1", kGpsLayout, [&](double time, auto field) {
            north = std::max(north, std::abs(field("Latitude") - mission.GetTruth(time).latitude) * 111132);
        });
        ForEach<CXpfTarinOdometerPacketV2>(*file, "ODOMETER", kOdometerLayout,
                                           [&](double, auto field) { distance += field("Measure"); });
        return std::pair(north, distance);
    };
    const auto [north, distance] = measure([](auto&) {});
    EXPECT_LT(north, 0.001);
    EXPECT_GT(measure([](auto& o) { o.GetChannelOptions("GPS_1").hiddenDelay = 1; }).first, 5);
    EXPECT_GT(measure([](auto& o) { o.GetChannelOptions("GPS_1").jams.push_back({100, 150}); }).first, 50);
    EXPECT_NEAR(measure([](auto& o) { o.gpsWander = 2; }).first, 4, 3);
    EXPECT_NEAR(measure([](auto& o) { o.odometerScaleError = 0.1; }).second, 1.1 * distance,
                0.001 * distance);
    EXPECT_GT(measure([](auto& o) { o.wheelSlip = 0.05; }).second, 1.005 * distance);
    m_options.duration = 2000;
    EXPECT_NEAR(measure([](auto& o) { o.gpsJumps = 30; }).first, 28, 5);
}

// The truth as a result file says what the mission says.
TEST_F(MissionWriterTest, TruthIsAResultToo) {
    m_options.geoidSeparation = 40;
    m_options.truthRate = 2;
    const CMission mission(m_options);
    Write("m.tarin");
    const auto file = OpenXpfFile(GetTruthResultPath(m_folder / "m.tarin.csv"), EFileKind::tarout).file;
    ASSERT_TRUE(file);
    int count = 0;
    ForEach<CXpfTaroutMorvexStdPacketV2>(*file, "MORVEX_STD", kMorvexStdLayout, [&](double time, auto field) {
        const STruth truth = mission.GetTruth(time);
        EXPECT_NEAR(field("Longitude0"), truth.longitude, 1e-10);
        EXPECT_NEAR(field("Altitude0"), truth.altitude - 40, 1e-4);
        EXPECT_NEAR(field("Heave2"), truth.heave, 1e-6);
        EXPECT_NEAR(field("Heading"), truth.heading, 1e-9);
        ++count;
    });
    EXPECT_EQ(count, 601);
}

TEST_F(MissionWriterTest, DivingVehiclesLoseGps) {
    m_options.vehicle = EVehicle::auv;
    m_options.altitude = m_options.geoidSeparation = 20;
    const CMission mission(m_options);
    const auto file = WriteAndOpen();
    ASSERT_TRUE(file);
    int fixes = 0, navigated = 0;
    ForEach<CXpfTarinGpsPacketV2>(*file, "GPS_1", kGpsLayout, [&](double time, auto) {
        EXPECT_GT(mission.GetTruth(time).altitude, 19);
        ++fixes;
    });
    EXPECT_GT(fixes, 30);
    EXPECT_LT(fixes, 150);
    // The real-time navigation waits for the fixes that do not come: bit 14 of its first word.
    ForEach<CXpfTarinNelixNavPacketV2>(*file, "NELIX_NAV", kNelixNavLayout, [&](double, auto field) {
        navigated += (static_cast<std::uint32_t>(field("Algorithm status 1")) >> 14 & 1) == 0;
    });
    EXPECT_NEAR(navigated, fixes * 10, 20);
}

TEST(CommandLineTest, OptionsReachTheMission) {
    const auto parse = [](const char* text, SCommandLine& line) {
        std::istringstream stream(text);
        const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
        std::string error;
        return ParseCommandLine(words, line, error) && line.options.Validate().empty();
    };
    SCommandLine line;
    ASSERT_TRUE(parse("--vehicle car --start 10,-20.5,30 --gps-outage 60:90 --gps-outage 100:130 "
                      "--lever-arm gps 1,2,-3 --channels GPS_1,ODOMETER --rate ODOMETER=20 "
                      "--utc 2023-02-28T23:59:58 /tmp/x.tarin --seed 77 --also nmea=a --raw b",
                      line));
    const SMissionOptions& options = line.options;
    EXPECT_EQ(options.vehicle, EVehicle::car);
    EXPECT_EQ(options.longitude, -20.5);
    EXPECT_TRUE(options.IsOutage("GPS_1", 75) && options.IsOutage("GPS_3", 100));
    EXPECT_FALSE(options.IsOutage("GPS_1", 95));
    EXPECT_EQ(options.leverArms[0].z(), -3);
    EXPECT_EQ(options.GetChannels(), (std::vector<std::string_view>{"IMU", "GPS_1", "ODOMETER"}));
    EXPECT_EQ(options.FindChannelOptions("ODOMETER")->rate, 20);
    EXPECT_EQ(options.GetUtcOrigin().GetDay(), 28);
    EXPECT_EQ(line.truth, fs::path("/tmp/x.truth.csv"));
    const decltype(line.also) also{{"nmea", "a"}, {"raw", "b"}};
    EXPECT_EQ(line.also, also);

    for (const char* wrong : {"",
                              "--duration 10",
                              "x --duration",
                              "x y",
                              "x --nonsense 1",
                              "x -n",
                              "x --vehicle boat",
                              "x --start 1,2",
                              "x --duration nan",
                              "x --imu-rate 0",
                              "x --utc 2023-02-29",
                              "x --lever-arm gps",
                              "x --channels IMU,MORVEX_STD",
                              "x --rate GPS_1",
                              "x --rate =5",
                              "x --size 99999999999999",
                              "x --start 90,0,0",
                              "x --imu-lost 2",
                              "x --jam GPS_1=5",
                              "x --also nmea",
                              "x --also sonar=y",
                              "x --stated-deviation 0"}) {
        SCommandLine ignored;
        EXPECT_FALSE(parse(wrong, ignored)) << wrong;
    }
}

TEST(CommandLineTest, NeverOverwritesWithoutForce) {
    const test::CTemporaryFolder folder;
    const std::string recording = (folder / "x.tarin").string();
    std::ofstream(folder / "x.truth.csv") << "kept";
    fs::create_directory(folder / "d.tarin");
    struct {
        std::vector<std::string> words;
        std::string fault; // empty when the mission may be written
    } const rows[] = {
        {{recording}, "x.truth.csv exists already; --force replaces it"},
        {{recording, "--force"}, ""},
        {{recording, "--truth", recording}, "cannot both be"},
        {{recording, "--force", "--also", "nmea=" + recording}, "cannot both be"},
        {{recording, "--truth", recording + ".csv"}, ""},
        {{(folder / "d.tarin").string(), "--force"}, "is a folder"},
    };
    for (const auto& row : rows) {
        SCommandLine line;
        std::string error;
        ASSERT_TRUE(ParseCommandLine(row.words, line, error)) << error;
        EXPECT_EQ(CheckTargets(line, error), row.fault.empty()) << testing::PrintToString(row.words);
        EXPECT_NE(error.find(row.fault), error.npos) << error;
    }
}

TEST(CommandLineTest, HelpShowsDefaultsGradesAndChannels) {
    const std::string usage = GetUsage();
    for (const char* part :
         {"length in seconds; default 1800", "tactical or mems; default navigation", "--force",
          "mems: 20, 0.3, 3000, 120", "GPS_1: 1 Hz", "Without --channels, auv: IMU,DVL_BT"})
        EXPECT_NE(usage.find(part), usage.npos) << part;
}

} // namespace
} // namespace Simulation
