#include "foundation/thread.h"
#include "packet_file_builder.h"
#include "xpf/channel_walk.h"

#include <array>
#include <random>

namespace Persistance_Xpf {
namespace {

constexpr std::uint16_t kImu = 0, kDepth = 8, kUtc = 13, kMount = 21;

class Channel : public PacketFileTest {
  protected:
    // Dense, sparse and late channels with sizes and rates that share no rhythm, and a pause in the middle.
    static CPacketFileBuilder MakeMixed(unsigned seed, int rounds) {
        auto builder = CPacketFileBuilder::ForChannels({"IMU", "DEPTH", "UTC", "PLATFORM_ORIENT", "LBL"});
        std::mt19937 random(seed);
        const auto fill = [&random](std::size_t size) {
            Bytes payload(size);
            for (std::uint8_t& byte : payload)
                byte = static_cast<std::uint8_t>(random() % 200 + 50); // never "$"
            return payload;
        };
        for (int i = 0; i < rounds; ++i) {
            if (i < rounds / 3 || i > rounds / 2) builder.Add(kImu, fill(40));
            if (i % 37 == 5) builder.Add(kDepth, fill(random() % 3 ? 21 : 300));
            if (i > rounds - 20) builder.Add(kUtc, fill(31));
            if (i == rounds / 2) builder.Add(kMount, fill(20));
        }
        return builder;
    }

    // One walk from the first packet on, against the packets as they were added.
    void ExpectWalk(CXpfChannel& channel, const std::vector<SPlacedPacket>& packets) {
        Bytes buffer(1000);
        std::uint32_t size = 0;
        for (const SPlacedPacket& packet : packets) {
            ASSERT_TRUE(channel.ReadNextPacket(size, &header, buffer.data(), 1000));
            ASSERT_EQ(Bytes(buffer.begin(), buffer.begin() + size), packet.payload);
            ASSERT_EQ(header.number, packet.header.number);
            ASSERT_EQ(channel.GetPrevious(), packet.position);
            ASSERT_EQ(channel.GetLast(), packet.position);
        }
        EXPECT_FALSE(channel.ReadNextPacket(size, &header, buffer.data(), 1000));
        EXPECT_EQ(size, 0u);
    }
};

TEST_F(Channel, WalksAndSeeksThroughOtherChannels) {
    auto builder = MakeMixed(1, 5000);
    const auto file = Open(builder.bytes);
    for (const auto& channel : file->GetChannels()) {
        SCOPED_TRACE(channel->GetName());
        const auto& packets = builder.packets[channel->GetNumber()];
        if (channel->GetName() != "LBL") ExpectWalk(*channel, packets);
        const CXpfFilePosition first = channel->GetFirst();
        for (std::uint32_t number = 0; number < packets.size(); ++number) {
            ASSERT_TRUE(channel->SeekPacketNumber(number)) << number;
            ASSERT_EQ(channel->GetCurrent(), packets[number].position) << number;
        }
        EXPECT_FALSE(channel->SeekPacketNumber(static_cast<std::uint32_t>(packets.size())));
        EXPECT_FALSE(channel->SeekPacketNumber(0xFFFFFFFF));
        EXPECT_EQ(channel->GetFirst(), first);
    }
    CXpfChannel& empty = *file->FindChannelByName("LBL");
    empty.SetFirst(builder.dataStart);
    EXPECT_TRUE(empty.SeekFirstPacket(nullptr)) << "a position that is given is taken as it is";
    empty.SetFirst(1 << 30);
    EXPECT_FALSE(empty.SeekFirstPacket(&header));
    EXPECT_FALSE(empty.GetFirst().IsKnown() || empty.GetCurrent().IsKnown());
    EXPECT_FALSE(empty.SeekFirstPacket(nullptr) || empty.SeekLastPacket(&header) ||
                 empty.SeekPacketNumber(1));
}

TEST_F(Channel, CutsThePayloadToTheBuffer) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU"});
    builder.Add(kImu, {});
    builder.Add(kImu, Bytes(40, 7));
    builder.Add(kImu, Bytes(200'000, 9));
    const auto file = Open(builder.bytes);
    Bytes buffer(200'000, 1);
    std::uint32_t size = 0;
    for (const std::uint32_t expected : {0u, 10u, 200'000u}) {
        const std::uint32_t room = expected == 200'000u ? expected : 10;
        ASSERT_TRUE(file->GetChannels()[0]->ReadNextPacket(size, nullptr, buffer.data(), room));
        EXPECT_EQ(size, expected);
        if (expected == 10) {
            EXPECT_EQ(buffer[9], 7);
            EXPECT_EQ(buffer[10], 1) << "written beyond the buffer";
        }
    }
    EXPECT_EQ(buffer, Bytes(200'000, 9));
}

TEST_F(Channel, FollowsAFileByteByByte) {
    auto builder = MakeMixed(5, 80);
    const auto start = static_cast<std::size_t>(builder.dataStart);
    Bytes before(builder.bytes.begin(), builder.bytes.begin() + builder.dataStart);
    const auto file = Open(before);
    CXpfChannel& imu = *file->FindChannelByNumber(kImu);
    const std::vector<SPlacedPacket>& packets = builder.packets[kImu];
    std::ofstream writer(m_path, std::ios::binary | std::ios::app);
    Bytes buffer(40);
    std::uint32_t size = 0;
    CStreamWalk walk(*file);
    std::size_t walked = 0;
    std::int64_t scanned = builder.dataStart;
    ASSERT_TRUE(file->Seek(scanned));
    for (std::size_t end = start + 1; end <= builder.bytes.size(); ++end) {
        writer.put(static_cast<char>(builder.bytes[end - 1])).flush();
        // The walk and the scan take turns on one pointer: both must hold.
        const bool expected =
            walked < packets.size() && end >= static_cast<std::size_t>(packets[walked].position) + 68;
        ASSERT_EQ(imu.ReadNextPacket(size, &header, buffer.data(), 40), expected) << end;
        if (expected) {
            ASSERT_EQ(buffer, packets[walked++].payload);
        }
        ASSERT_TRUE(file->Seek(scanned));
        const EPacketRead read = CStreamWalk(*file).Next(header, payload);
        ASSERT_NE(read, EPacketRead::damaged) << end;
        ASSERT_TRUE(file->Seek(scanned));
        ASSERT_EQ(walk.NextRun(run), read) << end;
        ASSERT_EQ(run.size(), read == EPacketRead::whole ? 1u : 0u) << end;
        if (read == EPacketRead::whole) {
            scanned = file->GetPosition();
            ASSERT_EQ(scanned, static_cast<std::int64_t>(end)) << "late, or torn";
        }
        ASSERT_EQ(file->GetPosition(), scanned);
    }
    EXPECT_EQ(walked, packets.size());
    EXPECT_EQ(scanned, static_cast<std::int64_t>(builder.bytes.size()));
    // Once more in one go, and the run must have the bytes of the file.
    ASSERT_TRUE(file->Seek(builder.dataStart));
    for (auto at = start; walk.NextRun(run) == EPacketRead::whole;)
        for (const std::uint8_t* packet : run) {
            const std::uint32_t length = LoadPacketSize(packet);
            ASSERT_EQ(Bytes(packet, packet + length), Bytes(&builder.bytes[at], &builder.bytes[at] + length));
            ASSERT_EQ(CStreamWalk::GetPayload(packet).size(), length - kPacketOverhead);
            at += length;
        }
    EXPECT_EQ(file->GetPosition(), scanned);
}

TEST_F(Channel, SeesADamagedPlaceMended) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU"});
    const auto position = builder.Add(kImu, Bytes(40, 7)).position;
    Bytes zeroed = builder.bytes;
    std::fill(zeroed.begin() + position, zeroed.end(), std::uint8_t{0});
    const auto file = Open(zeroed);
    std::uint32_t size = 0;
    file->Seek(position);
    CStreamWalk walk(*file);
    EXPECT_EQ(CStreamWalk(*file).Next(header, payload), EPacketRead::damaged);
    EXPECT_EQ(walk.NextRun(run), EPacketRead::damaged);
    EXPECT_FALSE(file->GetChannels()[0]->ReadNextPacket(size, nullptr, nullptr, 0)) << "a size of 0";
    WriteAt(0, builder.bytes.data(), builder.bytes.size());
    EXPECT_TRUE(file->GetChannels()[0]->ReadNextPacket(size, nullptr, nullptr, 0));
    file->Seek(position);
    EXPECT_EQ(CStreamWalk(*file).Next(header, payload), EPacketRead::whole);
    EXPECT_EQ(payload.size(), 40u);
}

TEST_F(Channel, FindsTheLastPacketAfterChanges) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    builder.Add(kUtc, Bytes(31, 1));
    for (int i = 0; i < 5; ++i) builder.Add(kImu, Bytes(40, 7));
    const auto file = Open(builder.bytes);
    CXpfChannel& imu = *file->FindChannelByNumber(kImu);
    CXpfChannel& utc = *file->FindChannelByNumber(kUtc);
    ASSERT_TRUE(utc.SeekLastPacket(&header));
    EXPECT_EQ(utc.GetCurrent(), builder.dataStart);
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(header.number, 4u);

    // The writer has linked the next packet, which lies in the block that was read before.
    for (int i = 0; i < 3; ++i) builder.Add(kImu, Bytes(40, 8));
    WriteAt(0, builder.bytes.data(), builder.bytes.size());
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(header.number, 7u);
    EXPECT_EQ(imu.GetLast(), builder.packets[kImu][7].position);
    ASSERT_TRUE(imu.SeekPacketNumber(5));
    EXPECT_EQ(imu.GetCurrent(), builder.packets[kImu][5].position);

    // A last packet of which only a part is there: the one before it.
    EXPECT_TRUE(file->IsAt(m_path));
    std::filesystem::resize_file(m_path, builder.bytes.size() - 30);
    ASSERT_TRUE(Open()->FindChannelByNumber(kImu)->SeekLastPacket(&header));
    EXPECT_EQ(header.number, 6u);
    std::filesystem::resize_file(m_path, static_cast<std::uintmax_t>(builder.packets[kImu][3].position));
    EXPECT_FALSE(file->IsAt(m_path));
    EXPECT_FALSE(imu.SeekLastPacket(&header)) << "the remembered packet is no longer in the file";
    imu.SetLast(0);
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(header.number, 2u);
    imu.SetLast(1 << 20);
    EXPECT_FALSE(imu.SeekLastPacket(&header)) << "a given position is tested";
    imu.SetLast(builder.dataStart + 1);
    EXPECT_FALSE(imu.SeekLastPacket(&header));
}

// A writer sets the link to a packet after the packet itself: the walk goes on without it.
TEST_F(Channel, WalksOverMissingLinks) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    for (int i = 0; i < 6; ++i) {
        builder.Add(kImu, Bytes(40, 7));
        builder.Add(kUtc, Bytes(31, 1));
    }
    for (SPlacedPacket& packet : builder.packets[kImu]) {
        packet.header.forwardLink = 0;
        std::memcpy(&builder.bytes[static_cast<std::size_t>(packet.position)], &packet.header,
                    sizeof packet.header);
    }
    const auto file = Open(builder.bytes);
    CXpfChannel& imu = *file->FindChannelByNumber(kImu);
    ExpectWalk(imu, builder.packets[kImu]);
    ASSERT_TRUE(imu.SeekFirstPacket(nullptr));
    CChannelWalk walk(imu, 40);
    std::size_t count = 0;
    while (const std::size_t size = walk.Next([] {}).size()) count += size;
    EXPECT_EQ(count, 6u);
    imu.SetLast(0);
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(header.number, 5u);
}

// Interrupted searches end at once and find nothing.
TEST_F(Channel, ReadsNothingWhileInterrupted) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    for (int i = 0; i < 5; ++i) builder.Add(kImu, Bytes(40, 7));
    builder.bytes.resize(builder.bytes.size() + 5'000'000);
    const auto file = Open(builder.bytes);
    CXpfChannel& imu = *file->FindChannelByNumber(kImu);
    Outils::CEvent interrupt;
    file->SetInterrupt(&interrupt);
    interrupt.Set();
    EXPECT_FALSE(imu.SeekLastPacket(&header));
    EXPECT_FALSE(file->Seek(file->GetFileSize()) && file->SearchPacketBackward(header));
    EXPECT_FALSE(file->FindChannelByNumber(kUtc)->SeekFirstPacket(&header));
    interrupt.Reset();
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(header.number, 4u);
}

} // namespace
} // namespace Persistance_Xpf
