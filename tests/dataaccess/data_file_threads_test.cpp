#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/data_file_monitor.h"

#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <optional>
#include <sys/stat.h>
#include <vector>

using namespace Application_Tarvel;
using Persistance_Xpf::kPacketTrailerSize;
using namespace std::chrono_literals;

namespace {

class DataFileThreads : public testing::Test {
  protected:
    auto Report() {
        return [this](std::uint16_t channel) { m_channels.push_back(channel); };
    }

    test::CTemporaryFolder m_folder;
    Outils::CMessageQueue m_queue;
    Outils::CMessagePort m_port{m_queue};
    std::vector<std::uint16_t> m_channels;
};

TEST_F(DataFileThreads, ScanReportsChannelsOnceAndResumes) {
    test::CTestRecording recording(m_folder / "r.tarin");
    CTrvTarinDataFileAnalyzerThread analyzer(recording.GetPath(), m_port, Report());
    const auto scan = [&] {
        ASSERT_TRUE(analyzer.Start());
        analyzer.Join();
        m_queue.RunPending();
    };
    recording.Depth(1, 10);
    recording.Depth(2, 11);
    recording.Flush();
    scan();
    EXPECT_EQ(m_channels, (std::vector<std::uint16_t>{test::kDepthNumber}));
    const std::int64_t resume = analyzer.GetResumePosition().Get();
    EXPECT_EQ(resume, static_cast<std::int64_t>(std::filesystem::file_size(recording.GetPath())));

    recording.Depth(3, 12);
    recording.Gps(3, 48.5, -4.25, 30);
    recording.Utc(4, 2024, 10, 20, 30.5f);
    recording.Flush();
    // A torn tail: the scan stops before it, but what it says counts as far as it is there.
    const auto whole = std::filesystem::file_size(recording.GetPath());
    std::filesystem::resize_file(recording.GetPath(), whole - kPacketTrailerSize - 1);
    scan();
    EXPECT_EQ(m_channels, (std::vector<std::uint16_t>{test::kDepthNumber, test::kGpsNumber}));
    const SFirstData torn = analyzer.WaitForFirstData(30s);
    EXPECT_TRUE(torn.hasPosition && !torn.hasUtc);
    EXPECT_EQ(torn.position.latitude, 48.5);
    EXPECT_EQ(torn.position.longitude, -4.25);
    EXPECT_EQ(torn.position.altitude, 30);
    const std::int64_t beforeUtc = analyzer.GetResumePosition().Get();
    std::filesystem::resize_file(recording.GetPath(), whole - 1); // zeros, but no trailer
    scan();
    EXPECT_EQ(analyzer.GetResumePosition().Get(), beforeUtc);
    EXPECT_EQ(m_channels.back(), test::kUtcNumber);
    EXPECT_TRUE(analyzer.WaitForFirstData(0ms).hasUtc);
}

TEST_F(DataFileThreads, FirstUtcGivesTheOrigin) {
    Outils_Temps::CDateTime origin;
    origin.SetDateTime(2024, 3, 14, 10, 20, 30, Outils_Temps::kTicksPerSecond / 2);
    for (const float second : {34.5f, 60.0f, -1.0f, std::numeric_limits<float>::quiet_NaN(), 1e30f}) {
        test::CTestRecording recording(m_folder / "r.tarin");
        for (int i = 0; i < 10; ++i) recording.Depth(i * 0.1, 0);
        recording.Utc(4, 2024, 10, 20, second);
        recording.Gps(5, 1, 2, 3);
        recording.Flush();
        CTrvTarinDataFileAnalyzerThread analyzer(recording.GetPath(), m_port, Report());
        ASSERT_TRUE(analyzer.Start());
        const SFirstData data = analyzer.WaitForFirstData(30s);
        EXPECT_TRUE(data.hasUtc && data.hasPosition);
        EXPECT_EQ(data.utcOrigin.IsValid(), second == 34.5f) << second;
        if (second != 34.5f) continue;
        EXPECT_EQ(data.utcOrigin, origin);
        EXPECT_EQ(FindUtcOrigin(recording.GetPath(), 1000), origin);
        EXPECT_FALSE(FindUtcOrigin(recording.GetPath(), 10).IsValid());
    }
    EXPECT_FALSE(FindUtcOrigin(m_folder / "gone", 1000).IsValid());
}

TEST(WatchedFile, ReportsWhatChanged) {
    struct SStep {
        std::optional<SFileEntry> found;
        std::optional<EFileChange> change;
    };
    const SStep steps[] = {{{}, {}},
                           {{{10, 1, 7}}, EFileChange::appeared},
                           {{{10, 1, 7}}, {}},
                           {{{12, 1, 7}}, EFileChange::grew},
                           {{{3, 1, 7}}, EFileChange::shrank},
                           {{{20, 1, 8}}, EFileChange::shrank}, // another one, however long
                           {{{20, 2, 8}}, {}},
                           {{{21, 2, 8}}, EFileChange::shrank},
                           {{{22, 2, 8}}, EFileChange::grew},
                           {{}, EFileChange::disappeared},
                           {{}, {}},
                           {{{0, 1, 9}}, EFileChange::appeared},
                           {{{1, 1, 9}}, EFileChange::grew}};
    CWatchedFile file;
    for (const SStep& step : steps) EXPECT_EQ(file.Update(step.found), step.change) << &step - steps;
}

TEST_F(DataFileThreads, MonitorFollowsAFile) {
    const auto path = m_folder / "watched";
    std::vector<std::pair<EFileChange, const void*>> changes;
    CTrvDataFileMonitorThread monitor(
        m_port, [&](EFileChange change, const void* file) { changes.emplace_back(change, file); }, 1ms);
    const auto expect = [&](EFileChange change) {
        ASSERT_TRUE(
            m_queue.RunUntil([&] { return !changes.empty() && changes.back().first == change; }, 30s));
        EXPECT_EQ(changes.back().second, this);
    };
    std::ofstream(path) << "12345";
    monitor.Watch(this, path);
    monitor.Watch(this, path);
    expect(EFileChange::appeared);
    EXPECT_EQ(changes.size(), 1u);
    std::filesystem::resize_file(path, 10000);
    expect(EFileChange::grew);
    std::filesystem::remove(path);
    expect(EFileChange::disappeared);
    std::filesystem::create_directory(path); // no data file
    const auto pipe = m_folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    monitor.Watch(&pipe, pipe);
    const auto other = m_folder / "other";
    std::ofstream(other) << "x";
    monitor.Watch(&path, other);
    ASSERT_TRUE(m_queue.RunUntil([&] { return changes.back().second == &path; }, 30s));
    monitor.Kill();
    m_queue.RunPending();
    EXPECT_EQ(changes.back().first, EFileChange::appeared);
    EXPECT_TRUE(std::ranges::none_of(changes, [&](const auto& change) { return change.second == &pipe; }));
}

TEST_F(DataFileThreads, MessagesOfFormerWatchesAreIgnored) {
    const std::filesystem::path files[] = {m_folder / "a", m_folder / "b"};
    std::vector<const void*> reported;
    CTrvDataFileMonitorThread monitor(
        m_port, [&](EFileChange, const void* file) { reported.push_back(file); }, 1ms);
    for (const auto& file : files) std::ofstream(file) << "x";
    for (const auto& file : files) monitor.Watch(&file, file);
    ASSERT_TRUE(m_queue.RunUntil([&] { return !reported.empty(); }, 30s));
    // The same poll reported the other one.
    for (const auto& file : files) {
        monitor.Unwatch(&file);
        monitor.Watch(&file, m_folder / "gone");
    }
    monitor.Kill();
    m_queue.RunPending();
    EXPECT_EQ(reported.size(), 1u);
}

} // namespace
