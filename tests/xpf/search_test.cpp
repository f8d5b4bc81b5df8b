// Searches in damaged streams, files above 4 GB, and bytes that mean harm.
#include "packet_file_builder.h"

#include <gmock/gmock.h>
#include <random>

namespace Persistance_Xpf {
namespace {

constexpr std::uint16_t kImu = 0, kUtc = 13;

class Search : public PacketFileTest {
  protected:
    void UseEverything(CXpfFile& file, std::mt19937& random);
};

TEST_F(Search, FindsNearestPacketFromEveryByte) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU"});
    for (int i = 0; i < 12; ++i) builder.Add(kImu, Bytes(static_cast<std::size_t>(i) * 23, '.'));
    builder.bytes.insert(builder.bytes.end(), 300, '?');
    // Beyond these, packets of many blocks, with dollar signs that stand alone.
    const auto everyByte = static_cast<std::int64_t>(builder.bytes.size());
    Bytes large(70'000, '.');
    for (std::size_t i = 0; i < large.size(); i += 6'000 - i / 12) large[i] = '$';
    for (int i = 0; i < 2; ++i) builder.Add(kImu, large);
    const auto file = Open(builder.bytes);
    const std::vector<SPlacedPacket>& packets = builder.packets[kImu];
    for (std::int64_t at = 0; at <= static_cast<std::int64_t>(builder.bytes.size());
         at += at < everyByte ? 1 : 101) {
        const SPlacedPacket *before = nullptr, *after = nullptr;
        for (const SPlacedPacket& packet : packets) {
            // Backwards the whole magic must lie before the pointer.
            if (packet.position + 2 <= at) before = &packet;
            if (packet.position >= at && !after) after = &packet;
        }
        ASSERT_TRUE(file->Seek(at));
        ASSERT_EQ(file->SearchPacketBackward(header), before != nullptr) << at;
        ASSERT_EQ(file->GetPosition(), before ? before->position : at) << at;
        ASSERT_TRUE(file->Seek(at));
        ASSERT_EQ(file->SearchPacketForward(header), after != nullptr) << at;
        if (after) {
            ASSERT_EQ(file->GetPosition(), after->position) << at;
        }
    }
    EXPECT_TRUE(file->Seek(std::int64_t{1} << 60));
    EXPECT_TRUE(file->SearchPacketBackward(header)) << "from far beyond the end";
    EXPECT_EQ(header.number, 13u);
    EXPECT_FALSE(file->Seek(std::int64_t{1} << 60) && file->SearchPacketForward(header));
}

TEST_F(Search, ForwardSearchLagsAfterRejectedCandidates) {
    // False magic at `lure` bytes from the pointer, the packet at `packet` bytes.
    struct {
        std::size_t lure, packet;
        bool found;
    } const rows[] = {{10, 60, true},   {10, 126, true},  {10, 127, false},
                      {10, 200, false}, {130, 200, true}, {126, 140, false}};
    for (const auto& row : rows) {
        auto builder = CPacketFileBuilder::ForChannels({"IMU"});
        builder.bytes.resize(builder.bytes.size() + row.packet, '.');
        const auto lure = builder.bytes.begin() + builder.dataStart + static_cast<std::ptrdiff_t>(row.lure);
        lure[0] = lure[1] = '$';
        builder.Add(kImu, Bytes(2000, '.'));
        const auto file = Open(builder.bytes);
        ASSERT_TRUE(file->Seek(builder.dataStart));
        EXPECT_EQ(file->SearchPacketForward(header), row.found) << row.lure << " " << row.packet;
        ASSERT_TRUE(file->Seek(static_cast<std::int64_t>(builder.bytes.size())));
        EXPECT_TRUE(file->SearchPacketBackward(header)) << "backwards nothing lags";
    }
}

TEST_F(Search, BackwardSearchPassesRunsOfDollars) {
    for (std::size_t count = 0; count < 140; ++count) {
        auto builder = CPacketFileBuilder::ForChannels({"IMU"});
        builder.bytes.resize(builder.bytes.size() + count, '$');
        const auto position = builder.Add(kImu, {}).position;
        builder.bytes.resize(builder.bytes.size() + count, '.');
        const auto file = Open(builder.bytes);
        ASSERT_TRUE(file->Seek(static_cast<std::int64_t>(builder.bytes.size())));
        ASSERT_TRUE(file->SearchPacketBackward(header)) << count;
        EXPECT_EQ(file->GetPosition(), position) << count;
    }
}

TEST_F(Search, ReachesBeyondFourGigabytes) {
    constexpr std::uint32_t kHuge = 3'000'000'000;
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    Save(builder.bytes);
    std::int64_t end = builder.dataStart;
    std::vector<std::int64_t> positions;
    const auto write = [&](std::uint16_t channel, std::uint32_t size, std::uint32_t number,
                           std::uint32_t back, std::uint32_t forward) {
        const SPacketHeader head{{'$', '$'}, channel, size, number, back, forward};
        const SPacketTrailer trailer{{'!', '!'}, channel, size};
        WriteAt(end, &head, sizeof head);
        WriteAt(end + size - kPacketTrailerSize, &trailer, sizeof trailer);
        if (channel == kImu) positions.push_back(end);
        end += size;
    };
    constexpr std::uint32_t kSmall = 68, kCount = 40;
    for (std::uint32_t i = 0; i < kCount; ++i) {
        const std::uint32_t back = i == 0 ? 0 : i < 3 ? kHuge + kSmall : kSmall;
        write(kImu, kSmall, i, back, i + 1 == kCount ? 0 : i < 2 ? kHuge + kSmall : kSmall);
        if (i < 2) write(kUtc, kHuge, i, i == 0 ? 0 : kHuge + kSmall, i == 0 ? kHuge + kSmall : 0);
    }
    const auto file = Open();
    CXpfChannel& imu = *file->FindChannelByNumber(kImu);
    // Upwards, so that no estimate falls into a hole and has gigabytes searched through.
    for (std::uint32_t i = 0; i < kCount; ++i) {
        ASSERT_TRUE(imu.SeekPacketNumber(i)) << i;
        EXPECT_EQ(imu.GetCurrent(), positions[i]);
    }
    ASSERT_TRUE(imu.SeekLastPacket(&header));
    EXPECT_EQ(imu.GetCurrent(), positions.back());
    ASSERT_TRUE(file->FindChannelByNumber(kUtc)->SeekLastPacket(&header));
    EXPECT_EQ(file->GetPosition(), positions[2] - kHuge);

    std::uint32_t count = 0;
    ASSERT_TRUE(file->Seek(builder.dataStart));
    for (; CStreamWalk(*file).Next(header, payload) == EPacketRead::whole; ++count)
        EXPECT_LE(payload.size(), std::size_t{64} << 20);
    EXPECT_EQ(count, kCount + 2);
    EXPECT_EQ(file->GetPosition(), end);
}

// A size that the file does not hold must cost neither memory nor the walk.
TEST_F(Search, GiantSizesAreTorn) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU"});
    for (const std::uint32_t size : {100u, 50'000'000u, 4'000'000'000u, 0xFFFFFFFFu}) {
        Bytes bytes = builder.bytes;
        Append(bytes, SPacketHeader{{'$', '$'}, kImu, size, 0, 0, 0});
        const auto file = Open(bytes);
        file->Seek(builder.dataStart);
        EXPECT_EQ(CStreamWalk(*file).NextRun(run), EPacketRead::torn) << size;
        EXPECT_EQ(CStreamWalk(*file).Next(header, payload), EPacketRead::torn) << size;
        EXPECT_EQ(file->GetPosition(), builder.dataStart);
        std::uint8_t buffer[40];
        std::uint32_t count = 0;
        EXPECT_FALSE(file->GetChannels()[0]->ReadNextPacket(count, nullptr, buffer, 40)) << size;
    }
}

// However much of the last packet is there, with or without zeros after it.
TEST_F(Search, TornTailHidesNoPacket) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    const auto utc = builder.Add(kUtc, Bytes(31, 1)).position;
    for (int i = 0; i < 3; ++i) builder.Add(kImu, Bytes(40, 7));
    const std::vector<SPlacedPacket>& packets = builder.packets[kImu];
    const auto last = static_cast<std::size_t>(packets[2].position);
    for (std::size_t size = last; size <= builder.bytes.size(); ++size) {
        for (const std::size_t zeros : {0u, 1u, 40u, 3000u}) {
            SCOPED_TRACE(std::to_string(size - last) + " bytes, zeros " + std::to_string(zeros));
            Bytes bytes = builder.bytes;
            bytes.resize(size);
            bytes.resize(size + zeros, 0);
            const auto file = Open(bytes);
            // The size ends the trailer, so that zeros after its first byte complete it.
            const bool whole = size + std::min<std::size_t>(zeros, 3) >= builder.bytes.size();
            ASSERT_TRUE(file->FindChannelByNumber(kImu)->SeekLastPacket(&header));
            EXPECT_EQ(header.number, whole ? 2u : 1u);
            ASSERT_TRUE(file->FindChannelByNumber(kUtc)->SeekLastPacket(&header));
            EXPECT_EQ(file->GetPosition(), utc);
            // Also for a walk that has come to the torn tail.
            CXpfChannel& imu = *file->FindChannelByNumber(kImu);
            std::uint32_t count = 0;
            for (int i = 0; i < 4; ++i) imu.ReadNextPacket(count, nullptr, nullptr, 0);
            ASSERT_TRUE(imu.SeekPacketNumber(1));
            EXPECT_EQ(imu.GetCurrent(), packets[1].position);
            if (!whole) {
                EXPECT_TRUE(file->IsTornTail(packets[2].position));
            }
            EXPECT_FALSE(file->IsTornTail(packets[1].position));
        }
    }
    for (const std::size_t damaged : {last, last + 4, last + 60}) {
        Bytes bytes = builder.bytes;
        bytes[damaged] = '?';
        bytes.resize(bytes.size() + 100, 0);
        EXPECT_FALSE(Open(bytes)->IsTornTail(packets[2].position)) << damaged - last;
    }
}

// Numbers in any order, packets near and far by turns, and a file rewritten under its reader.
TEST_F(Search, EarlierSearchesDoNotShow) {
    std::mt19937 random(7);
    const auto build = [&random](std::uint32_t stretch) {
        auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
        for (std::uint32_t i = 0; i < 6000; ++i) {
            builder.Add(kImu, Bytes(40 + random() % 40, '$'));
            if (i / stretch % 2 && random() % 3 == 0) builder.Add(kUtc, Bytes(31, '.'));
        }
        return builder;
    };
    auto builder = build(1500);
    const auto file = Open(builder.bytes);
    for (int round = 0; round < 2; ++round) {
        for (const std::uint16_t number : {kImu, kUtc}) {
            CXpfChannel& channel = *file->FindChannelByNumber(number);
            const auto& packets = builder.packets[number];
            const auto count = static_cast<std::uint32_t>(packets.size());
            std::uint32_t low = 0, high = count - 1;
            for (int i = 0; i < 400; ++i) {
                if (i % 16 == 0) low = 0, high = count - 1;
                const std::uint32_t target = i % 16 < 12 ? low + (high - low) / 2 : random() % count;
                (random() % 2 ? low : high) = target;
                channel.ExpectNumbers(std::min(low, high), std::max(low, high));
                ASSERT_TRUE(channel.SeekPacketNumber(target)) << target;
                ASSERT_EQ(channel.GetCurrent(), packets[target].position) << target;
                ASSERT_EQ(file->GetPosition(), packets[target].position);
                std::uint8_t buffer[80];
                std::uint32_t size = 0;
                if (i % 3 == 0) {
                    ASSERT_TRUE(channel.ReadNextPacket(size, &header, buffer, sizeof buffer));
                    ASSERT_EQ(header.number, target);
                }
            }
            EXPECT_FALSE(channel.SeekPacketNumber(count));
            channel.SetFirst(0);
            channel.SetLast(0);
        }
        builder = build(400);
        Save(builder.bytes);
        // As a reader does that comes back to the file.
        for (const std::uint16_t number : {kImu, kUtc}) {
            ASSERT_TRUE(file->FindChannelByNumber(number)->SeekFirstPacket(nullptr));
            ASSERT_TRUE(file->FindChannelByNumber(number)->SeekLastPacket(nullptr));
        }
    }
}

// A place is remembered by its number and tested before use: after a rewrite another packet lies there.
TEST_F(Search, RememberedPlacesAreTested) {
    constexpr std::uint32_t kCount = 9, kSought = 4;
    const auto build = [](int extra, std::uint16_t swapped) {
        auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
        for (std::uint32_t i = 0; i < kCount; ++i) {
            // From here on, each place has the packet of the number before.
            if (i == 2)
                for (int k = 0; k < extra; ++k) builder.Add(kUtc, Bytes(40, 7));
            // A packet of the other channel with the same size, and with the number sought.
            if (i == kSought && swapped == kUtc)
                for (std::uint32_t k = 0; k <= kSought; ++k) builder.Add(kUtc, Bytes(40, 1));
            builder.Add(kImu, Bytes(40, 7));
        }
        return builder;
    };
    auto before = build(0, kImu);
    for (auto after : {build(1, kImu), build(0, kUtc)}) {
        const auto file = Open(before.bytes);
        CXpfChannel& imu = *file->FindChannelByNumber(kImu);
        ASSERT_TRUE(imu.SeekPacketNumber(kSought));
        Save(after.bytes);
        imu.SetLast(0);
        ASSERT_TRUE(imu.SeekFirstPacket(nullptr) && imu.SeekLastPacket(&header));
        ASSERT_TRUE(imu.SeekPacketNumber(kSought));
        EXPECT_EQ(imu.GetCurrent(), after.packets[kImu][kSought].position);
    }
}

// Everything that a reader can do with a file, whatever is in it.
void Search::UseEverything(CXpfFile& file, std::mt19937& random) {
    std::uint64_t sum = 0;
    const std::int64_t size = file.GetFileSize();
    for (file.Seek(file.GetDataStart().Get()); CStreamWalk(file).Next(header, payload) == EPacketRead::whole;)
        for (const std::uint8_t byte : payload) sum += byte;
    ASSERT_LE(file.GetPosition(), size);
    for (const auto& channel : file.GetChannels()) {
        std::uint8_t buffer[64];
        std::uint32_t read = 0;
        std::int64_t steps = 0;
        // However links and sizes lie, each step leads on by a byte at least.
        while (channel->ReadNextPacket(read, &header, buffer, sizeof buffer)) {
            ASSERT_LE(read, sizeof buffer);
            ASSERT_LE(++steps, size);
        }
        for (int i = 0; i < 4; ++i) channel->SeekPacketNumber(static_cast<std::uint32_t>(random() % 80));
        channel->SeekPacketNumber(0xFFFFFFFF);
        channel->SeekLastPacket(&header);
        channel->ReadNextPacket(read, &header, buffer, sizeof buffer);
    }
    for (int i = 0; i < 3; ++i) {
        file.Seek(static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(size + 1)));
        if (i % 2 ? file.SearchPacketForward(header) : file.SearchPacketBackward(header)) {
            EXPECT_TRUE(header.Check());
        }
    }
}

TEST_F(Search, SurvivesDamagedBytes) {
    auto builder = CPacketFileBuilder::ForChannels({"IMU", "UTC"});
    for (int i = 0; i < 60; ++i) {
        builder.Add(kImu, Bytes(40, static_cast<std::uint8_t>('!' + i % 5)));
        if (i % 9 == 0) builder.Add(kUtc, Bytes(31, '$'));
    }
    std::mt19937 random(20);
    int opened = 0;
    for (int round = 0; round < 3000; ++round) {
        Bytes bytes = builder.bytes;
        // Mostly the stream, sometimes the header; values that links and sizes dislike.
        const auto place = [&] {
            const std::size_t low = random() % 8 ? static_cast<std::size_t>(builder.dataStart) : 100;
            return low + random() % (bytes.size() - low);
        };
        constexpr std::uint8_t values[] = {0, 1, 0x1C, '$', '!', 0x7F, 0x80, 0xFF};
        for (std::uint32_t i = random() % 6; i-- > 0;) bytes[place()] = values[random() % std::size(values)];
        if (random() % 4 == 0) bytes.resize(place());
        if (random() % 4 == 0)
            bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size()), random() % 300,
                         values[random() % std::size(values)]);
        const auto file = Open(bytes);
        if (!file) continue;
        ++opened;
        SCOPED_TRACE(round);
        UseEverything(*file, random);
    }
    EXPECT_GT(opened, 1500) << "too few mutations got past the header to mean anything";
}

} // namespace
} // namespace Persistance_Xpf
