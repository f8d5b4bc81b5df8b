#include "simulator/mission_writer.h"

#include "foundation/files.h"
#include "simulator/command_line.h"
#include "simulator/earth.h"
#include "xpf/packets.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <unistd.h>

namespace Simulation {
namespace {

using namespace Persistance_Xpf;
namespace fs = std::filesystem;

class MissionWriterTest : public testing::Test {
  protected:
    MissionWriterTest() {
        fs::create_directories(m_folder);
        m_options.duration = 300;
        m_options.alignmentDuration = 30;
        m_options.imuRate = 20;
    }
    ~MissionWriterTest() override { fs::remove_all(m_folder); }

    fs::path Write(const std::string& name) {
        std::string error;
        EXPECT_TRUE(WriteMission(m_options, m_folder / name, m_folder / (name + ".csv"), error)) << error;
        return m_folder / name;
    }
    std::vector<std::uint8_t> Bytes(const fs::path& path) {
        return *Outils_Fichiers::ReadWholeFile(path, 1 << 28);
    }
    std::unique_ptr<CXpfFile> Open(const fs::path& path) {
        bool outdated = false;
        return OpenXpfFile(path, EFileKind::tarin, outdated);
    }

    // Calls `visit` for each packet of a channel.
    template <class TPacket, class TVisit>
    void ForEach(CXpfFile& file, std::string_view name, TVisit visit) {
        CXpfChannel* channel = file.FindChannelByName(name);
        ASSERT_TRUE(channel) << name;
        TPacket packet;
        while (channel->ReadNextPacket(packet)) visit(packet);
    }
    static double Field(const CXpfPacket& packet, const SPacketLayout& layout, std::string_view name) {
        double value = NAN;
        EXPECT_TRUE(packet.GetDouble(layout.IndexOf(name), value)) << name;
        return value;
    }

    fs::path m_folder = fs::temp_directory_path() / ("mission_writer_test_" + std::to_string(::getpid()));
    SMissionOptions m_options;
};

TEST_F(MissionWriterTest, AllChannelsComeInTimeOrderAtTheirRates) {
    for (const SChannelLayout& row : GetChannelLayouts())
        if (row.kind == EFileKind::tarin) m_options.channels.emplace_back(row.name);
    m_options.GetChannelOptions("GPS_2").rate = 4;
    m_options.GetChannelOptions("DVL_BT").delay = 0.4;
    const auto file = Open(Write("all.tarin"));
    ASSERT_TRUE(file && file->Seek(file->GetDataStart().Get()));
    std::map<std::string, int> counts;
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    std::int64_t before = 1;
    while (file->ReadPacket(header, payload) == EPacketRead::whole) {
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

TEST_F(MissionWriterTest, EqualSeedsGiveEqualBytes) {
    m_options.outliers = 0.05;
    const auto first = Bytes(Write("a")), firstTruth = Bytes(m_folder / "a.csv");
    EXPECT_EQ(Bytes(Write("b")), first);
    EXPECT_EQ(Bytes(m_folder / "b.csv"), firstTruth);
    m_options.seed = 2;
    EXPECT_NE(Bytes(Write("c")), first);
}

// The errors against the truth at the antenna have the deviations and the covariance that the packets claim.
TEST_F(MissionWriterTest, GpsErrsAsItClaims) {
    m_options.duration = 1500;
    m_options.imuRate = 1;
    m_options.geoidSeparation = 48.5;
    m_options.leverArms[static_cast<std::size_t>(EMount::gps)] = {3, -2, 12};
    m_options.GetChannelOptions("GPS_1") = {"GPS_1", 4, 0.25, {{700, 800}}};
    const CMission mission(m_options);
    const auto file = Open(Write("gps.tarin"));
    ASSERT_TRUE(file);
    CTrackCursor cursor;
    double nn = 0, ee = 0, ne = 0, uu = 0, n = 0, count = 0;
    ForEach<CXpfTarinGpsPacketV2>(*file, "GPS_1", [&](const CXpfTarinGpsPacketV2& packet) {
        const auto field = [&](std::string_view name) { return Field(packet, kGpsLayout, name); };
        const double time = packet.GetPacketDate().GetTotalSeconds() - field("Delay");
        EXPECT_FALSE(time >= 700 && time < 800);
        const SVehicleState state = mission.GetState(time, cursor);
        const Vector3 arm = state.attitude.Apply({3, -2, 12});
        const Vector3 antenna = ToEarthFixed(state.latitude, state.longitude, state.motion.altitude);
        const Vector3 fix = ToEarthFixed(field("Latitude") / kRadian, field("Longitude") / kRadian,
                                         field("Altitude") + field("Geoidal sep"));
        const double north = (field("Latitude") / kRadian - state.latitude) * state.meridianRadius - arm.x;
        const double east =
            (field("Longitude") / kRadian - state.longitude) * state.normalRadius * std::cos(state.latitude) +
            arm.y;
        const double up = field("Altitude") + 48.5 - state.motion.altitude - arm.z;
        // The distance from the unit, in space, is that of the lever arm with the errors.
        EXPECT_NEAR(Norm(fix - antenna), Norm(arm + Vector3{north, -east, up}), 0.01);
        const double sn = field("Std. dev. north"), se = field("Std. dev. east"),
                     su = field("Std. dev. altitude");
        nn += north * north / (sn * sn);
        ee += east * east / (se * se);
        uu += up * up / (su * su);
        ne += north * east / field("Covariance XY");
        n += north / sn;
        ++count;
    });
    EXPECT_EQ(count, 5600);
    EXPECT_NEAR(nn / count, 1, 0.08);
    EXPECT_NEAR(ee / count, 1, 0.08);
    EXPECT_NEAR(uu / count, 1, 0.08);
    EXPECT_NEAR(ne / count, 1, 0.3);
    EXPECT_NEAR(n / count, 0, 0.06);
}

TEST_F(MissionWriterTest, OutliersStandOutAndOnlyThey) {
    m_options.channels = {"DEPTH"};
    const auto read = [&](const fs::path& path) {
        std::vector<double> depths;
        const auto file = Open(path);
        ForEach<CXpfTarinDepthPacketV1>(*file, "DEPTH", [&](const CXpfTarinDepthPacketV1& packet) {
            depths.push_back(Field(packet, kDepthLayout, "Depth"));
        });
        return depths;
    };
    m_options.noise = 0;
    const auto clean = read(Write("clean"));
    m_options.outliers = 0.1;
    const auto wild = read(Write("wild"));
    ASSERT_EQ(wild.size(), clean.size());
    int outliers = 0;
    for (std::size_t i = 0; i < wild.size(); ++i) {
        if (wild[i] == clean[i]) continue;
        ++outliers;
        EXPECT_GT(std::abs(wild[i] - clean[i]), 1.0);
    }
    EXPECT_NEAR(outliers, 60, 25);
}

TEST_F(MissionWriterTest, PerfectSensorsReadTheTruth) {
    m_options.grade = EGrade::perfect;
    m_options.vehicle = EVehicle::car;
    m_options.channels = {"ODOMETER", "NELIX_NAV", "UTC", "DVL_BT"};
    const CMission mission(m_options);
    const auto file = Open(Write("perfect.tarin"));
    ASSERT_TRUE(file);
    CTrackCursor cursor;
    double run = 0;
    ForEach<CXpfTarinOdometerPacketV2>(*file, "ODOMETER", [&](const CXpfTarinOdometerPacketV2& packet) {
        run += Field(packet, kOdometerLayout, "Measure");
        EXPECT_NEAR(run, mission.GetState(packet.GetPacketDate().GetTotalSeconds(), cursor).motion.distance,
                    1e-6);
    });
    EXPECT_GT(run, 500);
    ForEach<CXpfTarinNelixNavPacketV2>(*file, "NELIX_NAV", [&](const CXpfTarinNelixNavPacketV2& packet) {
        const STruth truth = mission.GetTruth(packet.GetPacketDate().GetTotalSeconds(), cursor);
        EXPECT_NEAR(Field(packet, kNelixNavLayout, "Latitude"), truth.latitude, 1e-10);
        EXPECT_NEAR(std::remainder(Field(packet, kNelixNavLayout, "Heading") - truth.heading, 360), 0, 1e-4);
        EXPECT_NEAR(Field(packet, kNelixNavLayout, "Speed east"), truth.speedEast, 1e-5);
    });
    ForEach<CXpfTarinDvlPacketV1>(*file, "DVL_BT", [&](const CXpfTarinDvlPacketV1& packet) {
        const STruth truth = mission.GetTruth(packet.GetPacketDate().GetTotalSeconds(), cursor);
        const double x = Field(packet, kDvlLayout, "Speed X"), y = Field(packet, kDvlLayout, "Speed Y"),
                     z = Field(packet, kDvlLayout, "Speed Z");
        EXPECT_NEAR(std::hypot(x, y, z), std::hypot(truth.speedNorth, truth.speedEast, truth.speedUp), 1e-5);
        EXPECT_LT(std::abs(y), 0.1 * std::max(x, 1.0));
    });
    ForEach<CXpfTarinUtcPacketV2>(*file, "UTC", [&](const CXpfTarinUtcPacketV2& packet) {
        const auto field = [&](std::string_view name) {
            return static_cast<std::uint16_t>(Field(packet, kUtcLayout, name));
        };
        Outils_Temps::CDateTime date;
        date.SetDateTime(field("UTC Year"), field("UTC Month"), field("UTC day"), field("UTC Hour"),
                         field("UTC Minute"), field("UTC Second"), 0);
        EXPECT_EQ(date - packet.GetPacketDate(), m_options.GetUtcOrigin());
    });
}

TEST_F(MissionWriterTest, ADivingVehicleHasGpsAtTheSurfaceOnly) {
    m_options.vehicle = EVehicle::auv;
    m_options.altitude = m_options.geoidSeparation = 20;
    const CMission mission(m_options);
    const auto file = Open(Write("auv.tarin"));
    ASSERT_TRUE(file);
    int fixes = 0;
    ForEach<CXpfTarinGpsPacketV2>(*file, "GPS_1", [&](const CXpfTarinGpsPacketV2& packet) {
        EXPECT_GT(mission.GetTruth(packet.GetPacketDate().GetTotalSeconds()).altitude, 19);
        ++fixes;
    });
    EXPECT_GT(fixes, 30);
    EXPECT_LT(fixes, 150);
    // The real-time navigation waits for the fixes that do not come: bit 14 of its first word.
    std::map<bool, int> waiting;
    ForEach<CXpfTarinNelixNavPacketV2>(*file, "NELIX_NAV", [&](const CXpfTarinNelixNavPacketV2& packet) {
        const auto word = static_cast<std::uint32_t>(Field(packet, kNelixNavLayout, "Algorithm status 1"));
        ++waiting[(word >> 14 & 1) != 0];
    });
    EXPECT_NEAR(waiting[false], fixes * 10, 20);
}

TEST_F(MissionWriterTest, ASizeIsMet) {
    m_options.targetSize = 3'000'000;
    EXPECT_NEAR(static_cast<double>(fs::file_size(Write("size.tarin"))), 3e6, 3e4);
}

TEST(CommandLineTest, OptionsReachTheMission) {
    const auto parse = [](std::vector<std::string> words, SCommandLine& line) {
        std::string error;
        return ParseCommandLine(words, line, error) && line.options.Validate().empty();
    };
    SCommandLine line;
    ASSERT_TRUE(parse({"--vehicle",           "car",          "--start",      "10,-20.5,30",
                       "--gps-outage",        "60:90",        "--gps-outage", "100:130",
                       "--lever-arm",         "gps",          "1,2,-3",       "--channels",
                       "GPS_1,ODOMETER",      "--rate",       "ODOMETER=20",  "--utc",
                       "2023-02-28T23:59:58", "/tmp/x.tarin", "--seed",       "77"},
                      line));
    const SMissionOptions& options = line.options;
    EXPECT_EQ(options.vehicle, EVehicle::car);
    EXPECT_EQ(options.longitude, -20.5);
    EXPECT_TRUE(options.IsOutage("GPS_1", 75) && options.IsOutage("GPS_3", 100));
    EXPECT_FALSE(options.IsOutage("GPS_1", 95));
    EXPECT_EQ(options.leverArms[0].z, -3);
    EXPECT_EQ(options.GetChannels(), (std::vector<std::string_view>{"IMU", "GPS_1", "ODOMETER"}));
    EXPECT_EQ(options.FindChannelOptions("ODOMETER")->rate, 20);
    EXPECT_EQ(options.GetUtcOrigin().GetDay(), 28);
    EXPECT_EQ(line.truth, fs::path("/tmp/x.truth.csv"));

    for (const std::vector<std::string>& wrong :
         std::vector<std::vector<std::string>>{{},
                                               {"--duration", "10"},
                                               {"x", "--duration"},
                                               {"x", "y"},
                                               {"x", "--nonsense", "1"},
                                               {"x", "--vehicle", "boat"},
                                               {"x", "--start", "1,2"},
                                               {"x", "--duration", "nan"},
                                               {"x", "--imu-rate", "0"},
                                               {"x", "--utc", "2023-02-29"},
                                               {"x", "--lever-arm", "gps"},
                                               {"x", "--channels", "IMU,MORVEX_STD"},
                                               {"x", "--rate", "GPS_1"},
                                               {"x", "--rate", "=5"},
                                               {"x", "--size", "99999999999999"},
                                               {"x", "--start", "90,0,0"}}) {
        SCommandLine ignored;
        EXPECT_FALSE(parse(wrong, ignored)) << testing::PrintToString(wrong);
    }
}

} // namespace
} // namespace Simulation
