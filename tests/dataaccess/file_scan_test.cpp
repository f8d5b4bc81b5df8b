// What one pass over a file counts, and where it finds the file damaged.
#include "dataaccess/file_scan.h"

#include "dataaccess/test_recording.h"
#include "foundation/files.h"

#include <gtest/gtest.h>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

constexpr std::size_t kDepthPacket = kDepthLayout.payloadSize + kPacketOverhead;

class FileScan : public testing::Test {
  protected:
    // Ten depths, one each second, and two GPS fixes between them.
    FileScan() {
        test::CTestRecording recording(m_path);
        for (int i = 0; i < 10; ++i) {
            if (i % 5 == 2) recording.Gps(i, 48, -4, 0);
            recording.Depth(i, 1);
        }
        recording.Flush();
        m_bytes = Outils_Fichiers::ReadWholeFile(m_path, 1 << 20).value();
        m_last = static_cast<std::int64_t>(m_bytes.size() - kDepthPacket);
    }

    std::unique_ptr<CFileScan> Scan() {
        EXPECT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, m_bytes));
        m_file = OpenXpfFile(m_path, EFileKind::tarin).file;
        auto scan = std::make_unique<CFileScan>(*m_file, EFileKind::tarin, m_path);
        scan->Run();
        return scan;
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    std::vector<std::uint8_t> m_bytes;
    std::int64_t m_last = 0; // position of the last depth packet
    std::unique_ptr<CXpfFile> m_file;
};

TEST_F(FileScan, CountsPacketsAndNotTheirNumbers) {
    const std::uint32_t number = 1000;
    std::memcpy(&m_bytes[static_cast<std::size_t>(m_last) + 8], &number, sizeof number);
    const auto scan = Scan();
    const SChannelScan& depth = *scan->GetChannel(test::kDepthNumber);
    EXPECT_EQ(depth.packets, 10u);
    EXPECT_EQ(depth.numberJumps, 1u);
    EXPECT_EQ(depth.first, Seconds(0));
    EXPECT_EQ(depth.last, Seconds(9));
    EXPECT_EQ(depth.GetRate(), 1);
    EXPECT_EQ(scan->GetChannel(test::kGpsNumber)->packets, 2u);
    EXPECT_EQ(scan->GetChannel(test::kUtcNumber), nullptr);
    EXPECT_TRUE(scan->GetFirstData().hasPosition);
}

TEST_F(FileScan, EqualDatesAreNoJumpBack) {
    struct {
        double date;
        std::uint64_t jumps;
    } const rows[] = {{9, 0}, {8, 0}, {7.9999999, 1}};
    for (const auto& row : rows) {
        const std::int64_t ticks = Seconds(row.date).GetTicks();
        std::memcpy(&m_bytes[static_cast<std::size_t>(m_last) + kPacketHeaderSize], &ticks, sizeof ticks);
        EXPECT_EQ(Scan()->GetChannel(test::kDepthNumber)->timeJumps, row.jumps) << row.date;
    }
}

TEST_F(FileScan, TornTailsDifferFromDamage) {
    struct {
        const char* what;
        std::size_t kept, zeros; // of the last packet, and after them
        bool torn;
        std::size_t damaged = 0; // byte of the last packet that is overwritten
    } const rows[] = {
        {"cut in the header", 7, 0, true},           {"cut in the payload", 30, 0, true},
        {"cut in the trailer", 45, 0, true},         {"zeros for a packet", 0, 500, true},
        {"zeros for the rest", 30, 500, true},       {"zeros in the header", 7, 500, true},
        {"no mark", kDepthPacket, 0, false, 1},      {"no trailer", kDepthPacket, 0, false, 41},
        {"no trailer but zeros", 49, 70, false, 41},
    };
    const auto whole = m_bytes;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        m_bytes = whole;
        m_bytes.resize(static_cast<std::size_t>(m_last) + row.kept);
        if (row.damaged) m_bytes[static_cast<std::size_t>(m_last) + row.damaged] = '?';
        m_bytes.resize(m_bytes.size() + row.zeros);
        const auto scan = Scan();
        EXPECT_EQ(scan->GetChannel(test::kDepthNumber)->packets, 9u);
        ASSERT_EQ(scan->GetDamage().size(), 1u);
        EXPECT_EQ(scan->GetDamage()[0].position, m_last);
        EXPECT_EQ(scan->GetDamage()[0].size, static_cast<std::int64_t>(row.kept + row.zeros));
        EXPECT_EQ(scan->GetDamage()[0].torn, row.torn);
        // The background analysis reports damage, and a torn tail as nothing.
        Outils::CMessageQueue queue;
        Outils::CMessagePort port{queue};
        std::vector<std::int64_t> reported;
        CTrvTarinDataFileAnalyzerThread analyzer(
            m_path, port, [](std::uint16_t) {}, [&](std::int64_t place) { reported.push_back(place); });
        ASSERT_TRUE(analyzer.Start());
        analyzer.Join();
        queue.RunPending();
        EXPECT_EQ(reported, row.torn ? std::vector<std::int64_t>() : std::vector{m_last});
    }
    m_bytes = whole;
    EXPECT_TRUE(Scan()->GetDamage().empty());
    m_bytes[static_cast<std::size_t>(m_last) - 3] = '?';
    const auto inside = Scan();
    ASSERT_EQ(inside->GetDamage().size(), 1u);
    EXPECT_FALSE(inside->GetDamage()[0].torn);
    EXPECT_EQ(inside->GetDamage()[0].position + inside->GetDamage()[0].size, m_last);
}

} // namespace
