#include "recording/recording_writer.h"

#include "recording/recording_header.h"
#include "support/temporary_folder.h"
#include "xpf/packets.h"
#include "xpf/stream_walk.h"
#include "xpf/table_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <random>
#include <sys/resource.h>

namespace Enregistrement {
namespace {

using namespace Persistance_Xpf;
namespace fs = std::filesystem;

using Names = std::vector<std::string_view>;

Names GetNames(EFileKind kind) {
    Names names;
    for (const SChannelLayout& row : GetChannelLayouts())
        if (row.kind == kind) names.push_back(row.name);
    return names;
}

class RecordingTest : public testing::Test {
  protected:
    // Packets of all channels of a kind in a random order, remembered by channel.
    void Record(CRecordingWriter& writer, EFileKind kind, int count, unsigned seed) {
        std::mt19937 random(seed);
        const auto names = GetNames(kind);
        for (int i = 0; i < count; ++i) {
            const std::string_view name = names[random() % names.size()];
            const SPacketLayout* layout = FindPacketLayout(FindChannelLayout(name)->packetType);
            std::vector<std::uint8_t> payload(layout ? layout->payloadSize : random() % 5000);
            for (std::uint8_t& byte : payload) byte = static_cast<std::uint8_t>(random() % 256);
            // The search of the reader is not what is tested here: nothing that looks like a packet.
            std::ranges::replace(payload, '$', '#');
            ASSERT_TRUE(writer.WriteRaw(*writer.FindChannel(name), payload));
            m_written[std::string(name)].push_back(payload);
        }
    }

    // Compares content, numbers and links of every packet with what was written.
    void ExpectWritten(CXpfFile& file) {
        struct SLast {
            std::size_t count = 0;
            std::int64_t position = 0;
            std::uint32_t forwardLink = 0;
        };
        std::map<std::string, SLast> channels;
        ASSERT_TRUE(file.Seek(file.GetDataStart().Get()));
        SPacketHeader header;
        std::span<const std::uint8_t> payload;
        for (std::int64_t position = file.GetPosition();
             CStreamWalk(file).Next(header, payload) == EPacketRead::whole; position = file.GetPosition()) {
            const std::string& name = file.FindChannelByNumber(header.channel)->GetName();
            SLast& last = channels[name];
            ASSERT_EQ(header.number, last.count);
            ASSERT_TRUE(std::ranges::equal(payload, m_written[name][last.count])) << name;
            EXPECT_EQ(header.backLink, last.count == 0 ? 0 : position - last.position);
            EXPECT_EQ(header.backLink, last.forwardLink);
            last = {last.count + 1, position, header.forwardLink};
        }
        EXPECT_EQ(file.GetPosition(), file.GetFileSize());
        for (const auto& [name, packets] : m_written) {
            EXPECT_EQ(channels[name].count, packets.size()) << name;
            EXPECT_EQ(channels[name].forwardLink, 0u) << name;
        }
    }

    test::CTemporaryFolder m_folder;
    fs::path m_path = m_folder / "a.xpf";
    std::map<std::string, std::vector<std::vector<std::uint8_t>>> m_written;
};

// Links lie within a block, over the edge of one, and over several flushes.
TEST_F(RecordingTest, ChannelsComeBackLinkedAndNumbered) {
    for (const EFileKind kind : {EFileKind::tarin, EFileKind::tarout}) {
        m_written.clear();
        CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(m_path, GetNames(kind)));
        for (const unsigned seed : {1u, 2u, 3u}) {
            Record(writer, kind, 9000, seed);
            ASSERT_TRUE(writer.Flush());
        }
        Record(writer, kind, 5, 4);
        const std::int64_t size = writer.GetSize();
        ASSERT_TRUE(writer.Close());
        EXPECT_EQ(fs::file_size(m_path), static_cast<std::uintmax_t>(size));

        const auto file = OpenXpfFile(m_path, kind).file;
        ASSERT_TRUE(file);
        ExpectWritten(*file);
        for (const auto& definition : file->GetDefinitions())
            if (const SPacketLayout* layout = FindPacketLayout(definition->type))
                for (std::size_t i = 0; i < layout->fields.size(); ++i) {
                    const CXpfFieldDefinition& field = definition->fields.at(i);
                    EXPECT_EQ(field.GetName(), layout->fields[i].name);
                    EXPECT_EQ(field.GetDescription(), layout->fields[i].name);
                    EXPECT_EQ(field.GetCount(), layout->fields[i].count);
                }
        for (const auto& [name, packets] : m_written) {
            CXpfChannel* channel = file->FindChannelByName(name);
            ASSERT_TRUE(channel) << name;
            EXPECT_EQ(channel->GetDescription(), FindChannelLayout(name)->description);
            SPacketHeader header;
            ASSERT_TRUE(channel->SeekLastPacket(&header)) << name;
            EXPECT_EQ(header.number, packets.size() - 1);
            EXPECT_TRUE(channel->SeekPacketNumber(static_cast<std::uint32_t>(packets.size() / 2))) << name;
        }
    }
}

TEST_F(RecordingTest, RefusesChannelsThatMakeNoFile) {
    const std::vector<Names> refused = {
        {}, {"IMU", "NO_SUCH"}, {"GPS_1", "IMU", "GPS_1"}, {"IMU", "MORVEX_STD"}, {"imu"}};
    for (const auto& names : refused) {
        CRecordingWriter writer;
        EXPECT_FALSE(writer.Create(m_path, names));
        EXPECT_FALSE(fs::exists(m_path));
    }
    CRecordingWriter writer;
    EXPECT_FALSE(writer.Create(m_folder.GetPath(), Names{"IMU"}));
    EXPECT_FALSE(writer.Create(m_folder / "none/a", Names{"IMU"}));
    ASSERT_TRUE(writer.Create(m_path, Names{"IMU", "UTC"}));
    EXPECT_FALSE(writer.Write("GPS_1", CXpfTarinGpsPacketV2()));
    EXPECT_FALSE(writer.Write("UTC", CXpfTarinGpsPacketV2()));
    EXPECT_FALSE(writer.WriteRaw(2, {}));
    EXPECT_TRUE(writer.Write("UTC", CXpfTarinUtcPacketV2()));
    EXPECT_TRUE(writer.WriteRaw(*writer.FindChannel("UTC"), {}));
    EXPECT_EQ(writer.GetPacketCount(1), 2u);
}

// A link leads to packets in the file only, also from packets that left the memory long ago.
TEST_F(RecordingTest, LinksFollowAGrowingFile) {
    CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(m_path, Names{"IMU", "UTC"}));
    const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
    ASSERT_TRUE(file);
    CXpfChannel* channel = file->FindChannelByName("UTC");
    CXpfTarinUtcPacketV2 packet, read;
    const CXpfTarinImuPacketV2 filler;
    for (int round = 0; round < 6; ++round) {
        packet.SetDate(0, CDateTimeSpan(round));
        ASSERT_TRUE(writer.Write("UTC", packet));
        // Without a flush the memory gives its blocks to the file by itself.
        for (int i = 0; i < (round % 2 ? 20000 : 3); ++i) ASSERT_TRUE(writer.Write(0, filler));
        ASSERT_TRUE(writer.Flush());
        ASSERT_TRUE(channel->ReadNextPacket(read)) << round;
        EXPECT_EQ(read.GetPacketDate().GetTicks(), round);
        EXPECT_FALSE(channel->ReadNextPacket(read));
    }
}

TEST_F(RecordingTest, AFullDiskLeavesWholePackets) {
    rlimit former;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{5'000'001, former.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);

    CRecordingWriter writer;
    EXPECT_TRUE(writer.Create(m_path, Names{"IMU"}));
    const CXpfTarinImuPacketV2 packet;
    int count = 0;
    while (count < 200'000 && writer.Write(0, packet)) ++count;
    EXPECT_LT(count, 200'000);
    EXPECT_FALSE(writer.Write(0, packet));
    EXPECT_FALSE(writer.Flush());
    EXPECT_FALSE(writer.Close());
    setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, handler);

    const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
    ASSERT_TRUE(file);
    SPacketHeader header;
    ASSERT_TRUE(file->GetChannels()[0]->SeekLastPacket(&header));
    EXPECT_EQ(header.forwardLink, 0u);
    EXPECT_EQ(file->GetPosition() + header.size, file->GetFileSize());
    EXPECT_GT(header.number, 50'000u);
}

TEST(MakeLinkTest, LongDistancesAreNoLink) {
    constexpr std::int64_t far = 7'000'000'000;
    EXPECT_EQ(MakeLink(far, far + 68), 68u);
    EXPECT_EQ(MakeLink(far, far + 0xFFFFFFFFLL), 0xFFFFFFFFu);
    EXPECT_EQ(MakeLink(far, far + 0x100000000LL), 0u);
}

} // namespace
} // namespace Enregistrement
