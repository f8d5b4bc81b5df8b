// A depth channel of many packets with pauses, equal dates and values that are no numbers, beside another
// channel, healthy or damaged, and what a plain reader finds in it.
#pragma once

#include "dataaccess/period_query.h"
#include "dataaccess/plain_pass.h"
#include "dataaccess/test_recording.h"
#include "foundation/files.h"
#include "xpf/file_cache.h"
#include "xpf/stream_walk.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <random>
#include <string>

namespace test {

class CDepthRecording : public testing::Test {
  protected:
    static constexpr std::uint32_t kRejection = 2, kDepth = 3; // fields

    // `draw(random)` makes the depths.
    template <class Draw>
    void Record(bool damaged, Draw&& draw) {
        {
            CTestRecording recording(m_path);
            std::mt19937 random(17);
            std::int64_t date = 10'000'000;
            for (int i = 0; i < 20'000; ++i) {
                date += random() % 5 == 0 ? 0 : static_cast<std::int64_t>(random() % 200'000);
                if (i % 5000 == 4999) date += 300'000'000;
                recording.Depth(CDateTimeSpan(date), draw(random), static_cast<std::uint8_t>(random()));
                if (i % 9 == 0) recording.Gps(static_cast<double>(date) / 1e7, 48, -4, 0);
            }
            recording.Flush();
        }
        if (damaged) Damage();
        ReadPackets();
    }

    // Random windows, and what a plain pass finds in each. Every second one has the position cache.
    template <class Check>
    void ForEachWindow(int count, Check&& check) {
        std::mt19937_64 random(7);
        for (int i = 0; i < count && !HasFailure(); ++i) {
            const auto draw = [&] {
                return i % 3 ? static_cast<std::int64_t>(random() % std::uint64_t{3'000'000'000})
                             : m_rows[random() % m_rows.size()].ticks;
            };
            const auto [start, end] = std::minmax({draw(), draw()});
            SCOPED_TRACE(std::to_string(start) + " to " + std::to_string(end));
            std::vector<SSample> rows;
            std::ranges::copy_if(m_rows, std::back_inserter(rows),
                                 [start = start, end = end](const auto& row) {
                                     return row.ticks >= start && row.ticks <= end;
                                 });
            check(Application_Tarvel::SChannelAddress{m_path, Persistance_Xpf::EFileKind::tarin, kDepthNumber,
                                                      i % 2 ? &m_cache : nullptr},
                  Application_Tarvel::SClosedPeriod{CDateTimeSpan(start), CDateTimeSpan(end)}, rows);
        }
    }

    CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    Application_Tarvel::CXpfFileCache m_cache;
    std::vector<SSample> m_rows;

  private:
    // Dates far off and packets without their mark here and there, and a torn end.
    void Damage() {
        using namespace Persistance_Xpf;
        auto bytes = Outils_Fichiers::ReadWholeFile(m_path, 1 << 24).value();
        std::vector<std::size_t> packets;
        {
            const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
            ASSERT_TRUE(file);
            SPacketHeader header;
            std::span<const std::uint8_t> payload;
            for (std::int64_t at = file->GetDataStart().Get();
                 file->Seek(at) && CStreamWalk(*file).Next(header, payload) == EPacketRead::whole;
                 at += header.size)
                packets.push_back(static_cast<std::size_t>(at));
        }
        std::mt19937_64 random(3);
        for (int i = 0; i < 150; ++i) {
            const std::size_t at = packets[random() % packets.size()];
            if (i % 3 == 0) bytes[at] = bytes[at + 1] = 0;
            const std::int64_t date = i % 2 ? std::int64_t{1} << 60 : -1;
            std::memcpy(bytes.data() + at + kPacketHeaderSize, &date, sizeof date);
        }
        bytes.resize(bytes.size() - 13);
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, bytes));
    }

    // All that a reader of the channel gets, packet by packet.
    void ReadPackets() {
        const auto file = Persistance_Xpf::OpenXpfFile(m_path, Persistance_Xpf::EFileKind::tarin).file;
        ASSERT_TRUE(file);
        auto* channel = file->FindChannelByNumber(kDepthNumber);
        ASSERT_TRUE(channel && channel->SeekFirstPacket(nullptr));
        const auto packet = channel->CreatePacket();
        while (channel->ReadNextPacket(*packet)) m_rows.push_back(SampleOf(*packet));
        ASSERT_GT(m_rows.size(), 19'900u);
    }
};

} // namespace test
