#include "dataaccess/plain_pass.h"
#include "dataaccess/sampled_view_query.h"
#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <map>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::SampleOf;
using test::Seconds;
using test::SSample;

namespace {

constexpr std::int64_t kAnySize = 0;
constexpr std::size_t kPackets = 20'000;

// A depth channel beside one that is a thousand times rarer and one that is denser, and the truth of it.
class SampledView : public testing::Test {
  protected:
    SampledView() {
        test::CTestRecording recording(m_path);
        std::mt19937 random(5);
        for (std::size_t i = 0; i < kPackets; ++i) {
            const double time = 1 + static_cast<double>(i) * 0.01;
            const SSample sample{Seconds(time).GetTicks(), static_cast<float>(random() % 1000),
                                 static_cast<std::uint8_t>(random() % 200)};
            recording.Depth(CDateTimeSpan(sample.ticks), sample.depth, sample.rejection);
            m_truth[sample.ticks] = sample;
            for (int n = 0; n < 3; ++n) recording.Imu(time, 1, static_cast<int>(i));
            if (i % 1000 == 0) recording.Gps(time, 48, -4, 0);
        }
        recording.Flush();
    }

    SWindow WindowOf(double start, double end, int slices) {
        return {Seconds(start), Seconds(end), CDateTimeSpan(Seconds(end - start).GetTicks() / slices), true};
    }
    SReducedSeries Sample(const SWindow& window, std::int64_t worthwhile = kAnySize,
                          EQueryEnd expected = EQueryEnd::done, std::uint16_t channel = test::kDepthNumber) {
        CTrvSampledViewQuery query({m_path, EFileKind::tarin, channel, m_cache}, window, nullptr, worthwhile);
        EXPECT_EQ(query.Execute(), expected);
        return query.TakeSeries();
    }
    // Every sample is a packet of the file, and they go forward.
    void ExpectTrue(const SReducedSeries& series) {
        std::int64_t last = INT64_MIN;
        for (const auto& packet : series.representatives) {
            const SSample sample = SampleOf(*packet);
            const auto known = m_truth.find(sample.ticks);
            ASSERT_TRUE(known != m_truth.end()) << sample.ticks;
            ASSERT_EQ(sample, known->second);
            ASSERT_GT(sample.ticks, last);
            last = sample.ticks;
        }
    }
    void Overwrite(std::uint64_t from, std::uint64_t count, std::mt19937& random) {
        std::fstream file(m_path, std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(from));
        for (std::uint64_t i = 0; i < count; ++i) file.put(random() % 2 ? '$' : static_cast<char>(random()));
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    std::map<std::int64_t, SSample> m_truth;
    CXpfFileCache* m_cache = nullptr;
};

TEST_F(SampledView, PlacesSpreadOverTheWholeWindow) {
    const struct {
        double start, end;
        int slices;
    } rows[] = {{1, 200.99, 1500}, {0, 1000, 800}, {50, 150, 1000}, {120.5, 180.25, 700}};
    for (const auto& row : rows) {
        const SWindow window = WindowOf(row.start, row.end, row.slices);
        const auto series = Sample(window);
        ExpectTrue(series);
        ASSERT_GE(series.representatives.size(), static_cast<std::size_t>(row.slices) * 9 / 10) << row.start;
        const double begin = std::max(row.start, 1.0), end = std::min(row.end, 200.99);
        const double most = (end - begin) / row.slices * 3 + 0.02;
        double last = begin;
        for (const auto& packet : series.representatives) {
            const double time = static_cast<double>(SampleOf(*packet).ticks) * 1e-7;
            EXPECT_LE(time - last, most) << "a hole in the window at " << time;
            last = time;
        }
        EXPECT_LE(end - last, most);
    }
}

// What the exact query answers as soon.
TEST_F(SampledView, SmallOrSparseWindowsAreLeftOut) {
    const SWindow all = WindowOf(0, 1000, 1500);
    EXPECT_TRUE(Sample(all, CTrvSampledViewQuery::kWorthwhile).representatives.empty()) << "a few megabytes";
    EXPECT_TRUE(Sample(all, kAnySize, EQueryEnd::done, test::kGpsNumber).representatives.empty());
    EXPECT_TRUE(Sample(WindowOf(10, 11, 1500)).representatives.empty()) << "as many slices as packets";
    EXPECT_TRUE(Sample(WindowOf(300, 400, 10)).representatives.empty()) << "after the data";
    EXPECT_TRUE(Sample(WindowOf(0, 0.5, 10)).representatives.empty()) << "before it";
    EXPECT_FALSE(Sample(WindowOf(0, 1000, 9)).representatives.empty());
}

TEST_F(SampledView, DistantPacketsAreFoundByNumber) {
    // Blocks of 64 KiB would miss most of these: the one channel is rare beside the other.
    const auto path = m_folder / "rare.tarin";
    test::CTestRecording recording(path);
    for (int i = 0; i < 40; ++i) {
        recording.Depth(Seconds(1 + i), static_cast<float>(i), 1);
        for (int n = 0; n < 2500; ++n) recording.Imu(1 + i, 1, n);
    }
    recording.Flush();
    m_path = path;
    const auto series = Sample(WindowOf(0, 100, 15));
    ASSERT_EQ(series.representatives.size(), 4u);
    EXPECT_EQ(SampleOf(*series.representatives.front()).depth, 0);
    EXPECT_EQ(SampleOf(*series.representatives.back()).depth, 39);
}

TEST_F(SampledView, CancelledQueriesGiveNothing) {
    int reports = 0;
    CTrvSampledViewQuery query(
        {m_path, EFileKind::tarin, test::kDepthNumber}, WindowOf(0, 300, 1000),
        [&](CTrvSampledViewQuery&, const SReducedSeries& series) {
            ++reports;
            EXPECT_TRUE(series.representatives.empty());
        },
        kAnySize);
    query.RequestCancel();
    EXPECT_EQ(query.Execute(), EQueryEnd::cancelled);
    query.OnCancelled();
    EXPECT_EQ(reports, 1);
}

TEST_F(SampledView, DamageCostsOnlyItsOwnPlaces) {
    std::mt19937 random(9);
    const auto size = std::filesystem::file_size(m_path);
    Overwrite(size / 3, size / 6, random);
    const auto series = Sample(WindowOf(0, 300, 1200));
    ExpectTrue(series);
    EXPECT_GT(series.representatives.size(), 900u);
    EXPECT_LT(series.representatives.size(), 1100u);
}

TEST_F(SampledView, CutFilesGiveOnlyTrueSamples) {
    CXpfFileCache cache; // knows where the end was
    m_cache = &cache;
    Sample(WindowOf(0, 300, 1000));
    // First while it is sampled, then where the samples are to be.
    std::atomic<bool> stop = false;
    std::thread cutter([&] {
        for (auto size = std::filesystem::file_size(m_path); size > 1'000'000 && !stop; size -= 1013)
            std::filesystem::resize_file(m_path, size);
    });
    for (int i = 0; i < 20; ++i) {
        CTrvSampledViewQuery query({m_path, EFileKind::tarin, test::kDepthNumber, m_cache},
                                   WindowOf(0, 300, 1000), nullptr, kAnySize);
        query.Execute(); // may fail
        ExpectTrue(query.TakeSeries());
    }
    stop = true;
    cutter.join();
}

// What is handed over during the walk and what is left at the end are together what comes at once without.
TEST_F(SampledView, PartsJoinToTheWholeAnswer) {
    std::mt19937 random(3);
    const auto payloads = [](const PacketList& list, std::vector<std::string>& to) {
        for (const auto& packet : list)
            to.emplace_back(reinterpret_cast<const char*>(packet->GetPayload()), packet->GetPayloadSize());
    };
    const auto add = [&](const SReducedSeries& series, std::array<std::vector<std::string>, 3>& to) {
        payloads(series.representatives, to[0]);
        payloads(series.minima, to[1]);
        payloads(series.maxima, to[2]);
    };
    for (int i = 0; i < 12; ++i) {
        std::uniform_real_distribution<double> begin(-10, 150), length(1, 250);
        const double start = begin(random);
        SWindow window = WindowOf(start, start + length(random), 1 + static_cast<int>(random() % 2000));
        window.collectExtremum = i % 4 != 0;
        std::array<std::vector<std::string>, 3> whole, joined;
        CTrvView1DDataQuery plain({m_path, EFileKind::tarin, test::kDepthNumber}, window, nullptr);
        EXPECT_EQ(plain.Execute(), EQueryEnd::done);
        add(plain.TakeSeries(), whole);
        CTrvView1DDataQuery parted({m_path, EFileKind::tarin, test::kDepthNumber}, window, nullptr);
        int parts = 0;
        parted.SetPartSink(
            [&](const SReducedSeries& part) {
                ++parts;
                EXPECT_FALSE(part.representatives.empty());
                EXPECT_EQ(part.minima.size(), window.collectExtremum ? part.representatives.size() : 0);
                add(part, joined);
                EXPECT_TRUE(std::equal(joined[0].begin(), joined[0].end(), whole[0].begin()));
            },
            std::chrono::milliseconds(0));
        EXPECT_EQ(parted.Execute(), EQueryEnd::done);
        add(parted.TakeSeries(), joined);
        EXPECT_EQ(joined, whole) << "window " << i;
        if (whole[0].size() > 200) {
            EXPECT_GT(parts, 1);
        }
    }
}

} // namespace
