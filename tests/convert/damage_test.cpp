#include "conversion_fixture.h"

#include "convert/raw_frame.h"
#include "foundation/texts.h"
#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"

#include <algorithm>
#include <csignal>
#include <random>
#include <set>

#include <sys/resource.h>

namespace {

using namespace test;
using Compagnon::ERunEnd;
using Compagnon::EText;

struct SSource {
    std::string_view kind, program;
    std::vector<std::string> switches;
};
const SSource kSources[] = {
    {"nmea", "Nmea2Tarin", {}},       {"kolt", "Kolt2Tarin", {"/beacon", "1"}},
    {"novatel", "Novatel2Tarin", {}}, {"raw", "PostProNelixDecode", {"/ccd", "off"}},
    {"pd6", "PD6Rdi2Tarin", {}},      {"decoded", "DecodedNelix2Tarin", {"/imu5msOffset", "no"}},
    {"synchro", "Synchro2Tarin", {}}, {"usbl", "Usbl2Tarin", {}},
    {"depth", "Depth2Tarin", {}},
};

class DamageTest : public ConversionTest {
  protected:
    DamageTest() {
        Simulation::SMissionOptions options;
        options.duration = 120;
        options.alignmentDuration = 10;
        options.imuRate = 5;
        for (const auto& row : Persistance_Xpf::GetChannelLayouts())
            if (row.kind == Persistance_Xpf::EFileKind::tarin) options.channels.emplace_back(row.name);
        std::string error;
        EXPECT_TRUE(Simulation::WriteMission(options, m_folder / "mission.tarin", {}, error)) << error;
        m_origin = options.GetUtcOrigin();
    }
    std::string MakeSource(std::string_view kind) {
        std::string error;
        EXPECT_TRUE(Simulation::WriteForeign(kind, m_folder / "mission.tarin", m_origin, m_folder / "foreign",
                                             error));
        std::ifstream stream(m_folder / "foreign", std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    Outils_Temps::CDateTime m_origin;
};

using Contents = std::set<std::pair<std::string, std::vector<std::uint8_t>>>;

// The packets by channel and bytes, but those that a converter makes itself.
Contents Collect(const Packets& packets, bool hasOwnUtc) {
    Contents contents;
    for (const auto& [channel, list] : packets)
        for (const SPacket& packet : list)
            if (hasOwnUtc || channel != "UTC") contents.emplace(channel, packet.payload);
    return contents;
}

TEST_F(DamageTest, LosesOnlyTheRecordsItTouches) {
    std::mt19937 random(5);
    for (const SSource& source : kSources) {
        const std::string whole = MakeSource(source.kind);
        const bool hasOwnUtc = source.kind == "raw" || source.kind == "decoded";
        const Contents expected = Collect(Convert(source.program, whole, source.switches), hasOwnUtc);
        ASSERT_GT(expected.size(), 10u) << source.kind;
        // The head names the columns: without it there is nothing to read.
        const std::size_t head = whole.find('\n', whole.find('\n') + 1) + 1,
                          begin = std::max({head, whole.size() / 20, std::size_t{100}});
        for (int round = 0; round < 24; ++round) {
            const std::size_t at = begin + random() % (whole.size() - begin - 300), size = 1 + random() % 20;
            std::string damaged = whole;
            if (round % 4 == 0) damaged[at] ^= static_cast<char>(1 << random() % 8);
            if (round % 4 == 1) damaged.erase(at, size);
            if (round % 4 == 2)
                for (std::size_t i = 0; i < size; ++i) damaged.insert(at, 1, static_cast<char>(random()));
            if (round % 4 == 3) damaged.replace(at, 100, damaged.substr(at - 100, 100));
            const Contents found = Collect(Convert(source.program, damaged, source.switches), hasOwnUtc);
            std::vector<Contents::value_type> lost;
            std::ranges::set_difference(expected, found, std::back_inserter(lost));
            // A record of text may take several lines, and one of two tracks a line of both.
            EXPECT_LE(lost.size(), round % 4 == 3 ? 8u : 3u)
                << source.kind << " round " << round << " at " << at << '\n'
                << m_monitor.all;
        }
    }
}

TEST_F(DamageTest, CutSourcesEndEarly) {
    for (const SSource& source : kSources) {
        const std::string whole = MakeSource(source.kind);
        for (const std::size_t left : {1u, 3u, 17u, 40u}) {
            const Packets packets = Convert(
                source.program, std::string_view(whole).substr(0, whole.size() - left), source.switches);
            EXPECT_FALSE(packets.empty()) << source.kind;
            EXPECT_EQ(m_monitor.all.find("Skipped"), m_monitor.all.find("Skipped, position of"))
                << source.kind << left << '\n'
                << m_monitor.all;
        }
    }
}

TEST_F(DamageTest, StopLeavesNoTarget) {
    for (const SSource& source : kSources) {
        std::vector<std::string> words = source.switches;
        MakeSource(source.kind);
        words.push_back((m_folder / "foreign").string());
        for (int questions = 0; questions < 2; ++questions) {
            m_monitor.stopAfter = questions;
            EXPECT_EQ(Run(source.program, words), ERunEnd::stopped) << source.kind;
            EXPECT_EQ(CountFiles(), 2u) << "mission and source only";
        }
        m_monitor.stopAfter = -1;
    }
}

TEST_F(DamageTest, BadTargetsAndSourcesAreRefused) {
    const std::string source = Write("source", MakeSource("nmea")).string();
    const std::filesystem::path full = "/dev/full";
    const std::tuple<std::string, std::filesystem::path, EText> rows[] = {
        {source, source, EText::targetIsSource},
        {source, m_folder.GetPath(), EText::targetIsFolder},
        {source, m_folder / "none/target.tarin", EText::targetNotWritable},
        {source + "-not", GetTarget(), EText::convertUnreadable},
        {m_folder.GetPath().string(), GetTarget(), EText::convertUnreadable},
        {full.string(), GetTarget(), EText::convertUnreadable},
    };
    for (const auto& [from, to, said] : rows) {
        EXPECT_EQ(Run("Nmea2Tarin", {from}, to), ERunEnd::failed);
        EXPECT_TRUE(m_monitor.texts.contains(said)) << from << to << m_monitor.all;
    }
    EXPECT_EQ(std::filesystem::file_size(source), MakeSource("nmea").size()) << "the source stays";
}

// As on a full disk: no file can grow beyond a limit.
TEST_F(DamageTest, FullDiskLeavesNoTarget) {
    MakeSource("raw");
    rlimit former{};
    getrlimit(RLIMIT_FSIZE, &former);
    const auto signal = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{20000, former.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const ERunEnd end = Run("PostProNelixDecode", {(m_folder / "foreign").string()});
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, signal);
    EXPECT_EQ(end, ERunEnd::failed);
    EXPECT_TRUE(m_monitor.texts.contains(EText::targetNotWritable)) << m_monitor.all;
    EXPECT_EQ(CountFiles(), 2u);
}

// A former target stays when the conversion fails.
TEST_F(DamageTest, FailureKeepsTheFormerTarget) {
    Write("target.tarin", "former");
    EXPECT_EQ(Run("Nmea2Tarin", {Write("source", "nothing\n").string()}), ERunEnd::failed);
    EXPECT_EQ(std::filesystem::file_size(GetTarget()), 6u);
}

TEST_F(DamageTest, StreamsAreCutPiecedAndCiphered) {
    const std::string whole = MakeSource("raw");
    const std::size_t half = whole.size() / 2; // within a frame
    const std::string first = Write("1.raw", whole.substr(0, half)).string(),
                      second = Write("2.raw", whole.substr(half)).string();
    const Contents expected = Collect(Convert("PostProNelixDecode", whole), true);
    ASSERT_EQ(Run("PostProNelixDecode", {"/sort", "alpha", second, first}), ERunEnd::finished);
    EXPECT_EQ(Collect(ReadPackets(GetTarget()), true), expected);
    ASSERT_EQ(Run("PostProNelixDecode", {"/skip", "30", "/stop", "60", first, second}), ERunEnd::finished);
    const auto imu = ReadPackets(GetTarget())["IMU"];
    EXPECT_NEAR(imu.front().date, 30, 0.3);
    EXPECT_NEAR(imu.back().date, 60, 0.3);

    MakeSource("ciphered");
    const std::vector<std::string> ciphered{(m_folder / "foreign").string()};
    std::filesystem::remove(m_folder / "foreign.key");
    EXPECT_EQ(Run("PostProNelixDecode", ciphered), ERunEnd::failed);
    EXPECT_TRUE(m_monitor.texts.contains(EText::rawNoKey));
    EXPECT_EQ(Run("PostProNelixDecode", {"/decipher", "no", ciphered[0]}), ERunEnd::finished);
    const auto packets = ReadPackets(GetTarget());
    EXPECT_EQ(packets.at("IMU").front()["Data type"], 1) << "the system sees that it is ciphered";
}

TEST_F(DamageTest, LostAndRepeatedFramesAreCounted) {
    const std::string whole = MakeSource("raw");
    const auto first = static_cast<unsigned char>(whole[1]),
               second = static_cast<unsigned char>(whole[first + 1u]);
    const std::string frame = whole.substr(first, second);
    const struct {
        std::string stream;
        EText fault;
    } cases[] = {
        {whole, EText::none},
        {whole.substr(0, first) + whole.substr(first + second), EText::faultMissing},
        {whole.substr(0, first) + frame + frame + whole.substr(first + second), EText::faultRepeated}};
    for (const auto& c : cases) {
        Convert("PostProNelixDecode", c.stream);
        for (const EText fault : {EText::faultMissing, EText::faultRepeated, EText::faultFrame})
            EXPECT_EQ(Said(fault), fault == c.fault ? "1" : "0") << m_monitor.all;
    }
}

// Published values: the check value of the sum, and the first block of RFC 8439, 2.3.2.
TEST(RawFrame, SumAndCipherAreThePublishedOnes) {
    const std::string_view digits = "123456789";
    EXPECT_EQ(Conversion::ComputeCrc32({reinterpret_cast<const std::uint8_t*>(digits.data()), digits.size()}),
              0xCBF43926u);
    Conversion::CInertialCipher::Key key;
    for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(i);
    const auto block = Conversion::MakeKeystream(key, 1, {0x09000000, 0x4A000000, 0});
    const std::uint8_t expected[] = {0x10, 0xF1, 0xE7, 0xE4, 0xD1, 0x3B, 0x59, 0x15};
    EXPECT_TRUE(std::equal(std::begin(expected), std::end(expected), block.begin()));
}

} // namespace
