// What the scan and the queries make of recordings that are damaged or change under their readers.
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/test_recording.h"
#include "dataaccess/view_queries.h"
#include "foundation/files.h"
#include "xpf/stream_walk.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <limits>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using namespace std::chrono_literals;
using test::Seconds;
using EError = CTrvDataQuery::EError;

namespace {

constexpr std::int64_t kFailed = -1;
constexpr int kDepths = 40; // one each second from 1 s on, its depth the second

// The bytes of a sane recording, to be damaged.
struct SBytes {
    std::vector<std::uint8_t> bytes;
    std::size_t data = 0;           // where the packets begin
    std::vector<std::size_t> depth; // the packets of the depth channel

    template <class T>
    void Put(std::size_t place, T value) {
        std::memcpy(bytes.data() + place, &value, sizeof value);
    }
    std::size_t InHeader(int packet, std::size_t member) const { return depth[std::size_t(packet)] + member; }
    void PutDate(int packet, std::int64_t ticks) { Put(InHeader(packet, kPacketHeaderSize), ticks); }
};

SBytes MakeBytes(const std::filesystem::path& path) {
    test::CTestRecording recording(path);
    for (int i = 1; i <= kDepths; ++i) {
        if (i % 4 == 2) recording.Gps(i, 48, -4, 0);
        recording.Depth(i, static_cast<float>(i));
    }
    recording.Flush();
    SBytes sane;
    sane.bytes = Outils_Fichiers::ReadWholeFile(path, 1 << 20).value();
    CXpfFile file;
    EXPECT_TRUE(file.Open(path));
    sane.data = static_cast<std::size_t>(file.GetDataStart().Get());
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    for (auto at = sane.data; file.Seek(static_cast<std::int64_t>(at)) &&
                              CStreamWalk(file).Next(header, payload) == EPacketRead::whole;
         at += header.size)
        if (header.channel == test::kDepthNumber) sane.depth.push_back(at);
    EXPECT_EQ(sane.depth.size(), std::size_t{kDepths});
    return sane;
}

constexpr std::size_t kDefinitions = kFileHeaderSize + 4 * kChannelRecordSize;

struct SFault {
    const char* what;
    void (*damage)(SBytes&);
    std::int64_t channels = 2;   // found by a scan
    std::int64_t all = kDepths;  // slices of a window around everything, or that it failed
    std::int64_t middle = 10;    // of one from 20.5 s to 30 s
    EError error = EError::none; // of the latter
};

const SFault kFaults[] = {
    {"nothing", [](SBytes&) {}},
    {"an empty file", [](SBytes& b) { b.bytes.clear(); }, 0, kFailed, kFailed, EError::noFile},
    {"a head cut", [](SBytes& b) { b.bytes.resize(100); }, 0, kFailed, kFailed, EError::noFile},
    {"channels beyond count", [](SBytes& b) { b.Put<std::uint16_t>(kChannelCountOffset, 0xFFFF); }, 0,
     kFailed, kFailed, EError::noFile},
    {"fields beyond count", [](SBytes& b) { b.Put<std::uint16_t>(kDefinitions + 6, 0xFFFF); }, 0, kFailed,
     kFailed, EError::noFile},
    {"no packets", [](SBytes& b) { b.bytes.resize(b.data); }, 0, kFailed, kFailed, EError::noPackets},
    {"the last packet cut", [](SBytes& b) { b.bytes.resize(b.bytes.size() - 9); }, 2, kDepths - 1},
    {"the last header cut", [](SBytes& b) { b.bytes.resize(b.bytes.size() - 40); }, 2, kDepths - 1},
    {"zeros after the last packet", [](SBytes& b) { b.bytes.resize(b.bytes.size() + 5000); }},
    {"no mark before a packet", [](SBytes& b) { b.Put<std::uint16_t>(b.InHeader(26, 0), 0); }},
    {"a packet of no size", [](SBytes& b) { b.Put<std::uint32_t>(b.InHeader(26, 4), 0); }, 2, 26, 6},
    {"a packet of all sizes", [](SBytes& b) { b.Put<std::uint32_t>(b.InHeader(26, 4), 0xFFFFFFFF); }},
    {"a link backwards", [](SBytes& b) { b.Put<std::int32_t>(b.InHeader(26, 16), -100); }, 2, 27, 7},
    {"a link past the end", [](SBytes& b) { b.Put<std::int32_t>(b.InHeader(26, 16), 1 << 30); }, 2, 27, 7},
    {"one number for all",
     [](SBytes& b) {
         for (int i = 0; i < kDepths; ++i) b.Put<std::uint32_t>(b.InHeader(i, 8), 7);
     },
     2, kDepths, 1},
    {"numbers that jump",
     [](SBytes& b) {
         for (int i = 20; i < kDepths; ++i) b.Put<std::uint32_t>(b.InHeader(i, 8), 1000u + unsigned(i));
     },
     2, kDepths, kFailed, EError::damaged},
    {"dates backwards",
     [](SBytes& b) {
         for (int i = 0; i < kDepths; ++i) b.PutDate(i, Seconds(kDepths - i).GetTicks());
     },
     2, kDepths, 0},
    {"dates at the ends of time",
     [](SBytes& b) {
         using Limits = std::numeric_limits<std::int64_t>;
         for (int i = 0; i < kDepths; ++i) b.PutDate(i, i % 2 ? Limits::max() : Limits::min());
     },
     2, 2, 2},
};

class Faults : public testing::Test {
  protected:
    SChannelAddress Address(CXpfFileCache* cache) const {
        return {m_path, EFileKind::tarin, test::kDepthNumber, cache};
    }
    std::pair<std::int64_t, EError> CountSlices(double start, double end, CXpfFileCache* cache) const {
        CTrvView1DDataQuery query(Address(cache), {Seconds(start), Seconds(end), Seconds(1)}, nullptr);
        const EQueryEnd ended = query.Execute();
        EXPECT_NE(ended, EQueryEnd::cancelled);
        const std::size_t count = query.TakeSeries().representatives.size();
        return {ended == EQueryEnd::done ? static_cast<std::int64_t>(count) : kFailed, query.GetError()};
    }
    std::int64_t CountChannels() {
        std::int64_t count = 0;
        CTrvTarinDataFileAnalyzerThread analyzer(m_path, m_port, [&count](std::uint16_t) { ++count; });
        EXPECT_TRUE(analyzer.Start());
        analyzer.Join();
        m_queue.RunPending();
        return count;
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    SBytes m_sane = MakeBytes(m_path);
    Outils::CMessageQueue m_queue;
    Outils::CMessagePort m_port{m_queue};
};

TEST_F(Faults, DamagedFilesGiveTheirSanePackets) {
    for (const SFault& fault : kFaults) {
        SCOPED_TRACE(fault.what);
        SBytes damaged = m_sane;
        fault.damage(damaged);
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, damaged.bytes));
        EXPECT_EQ(CountChannels(), fault.channels);
        EXPECT_EQ(CountSlices(0, 100, nullptr).first, fault.all);
        CXpfFileCache cache;
        for (int round = 0; round < 2; ++round)
            EXPECT_EQ(CountSlices(20.5, 30, &cache), std::pair(fault.middle, fault.error));
    }
}

// A file that changes while it is read gives some answer, and the right one once it is at rest.
TEST_F(Faults, FilesThatChangeUnderTheirReaders) {
    std::atomic<bool> done{false};
    std::thread writer([this, &done] {
        std::mt19937 random(23);
        const auto other = m_folder / "other.tarin";
        for (int i = 0; i < 300; ++i) {
            std::error_code ignored;
            std::filesystem::resize_file(m_path, random() % m_sane.bytes.size(), ignored);
            EXPECT_TRUE(Outils_Fichiers::WriteWholeFile(i % 3 ? m_path : other, m_sane.bytes));
            if (i % 3 == 0) std::filesystem::rename(other, m_path);
        }
        done = true;
    });
    CXpfFileCache cache;
    std::mt19937 random(29);
    while (!done) {
        const double start = random() % 40 + 0.5;
        const auto [slices, error] = CountSlices(start, start + 10, &cache);
        EXPECT_EQ(slices == kFailed, error != EError::none);
        EXPECT_LE(slices, kDepths);
        EXPECT_LE(CountChannels(), 2);
    }
    writer.join();
    cache.InvalidateFirst(m_path);
    cache.InvalidateLast(m_path);
    cache.InvalidateDates(m_path);
    EXPECT_EQ(CountSlices(20.5, 30, &cache), std::pair(std::int64_t{10}, EError::none));
}

} // namespace
