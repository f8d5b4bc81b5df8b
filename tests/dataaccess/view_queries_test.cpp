#include "dataaccess/view_queries.h"

#include "dataaccess/plain_pass.h"
#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>
#include <utility>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::SampleOf;
using test::Seconds;
using test::SSample;

namespace {

// A depth channel with a pause and an uneven rate beside a second channel, and the plain truth of it.
class ViewQueries : public testing::Test {
  protected:
    ViewQueries() : m_recording(m_folder / "r.tarin") {
        std::mt19937 random(11);
        std::uniform_real_distribution<double> step(0.005, 0.02);
        double time = 1.0;
        for (int i = 0; i < 3000; ++i) {
            time += i == 1500 ? 40.0 : step(random);
            const auto depth = static_cast<float>(std::sin(i * 0.01) * 50 + (random() % 100) * 0.1);
            const auto rejection = static_cast<std::uint8_t>(random() % 200);
            m_recording.Depth(time, depth, rejection);
            m_truth.push_back({Seconds(time).GetTicks(), depth, rejection});
            if (i % 7 == 0) m_recording.Gps(time, 48, -4, 0);
        }
        m_recording.Flush();
    }

    SChannelAddress Address(std::uint16_t channel = test::kDepthNumber) {
        return {m_recording.GetPath(), EFileKind::tarin, channel, m_usesCache ? &m_cache : nullptr};
    }

    std::optional<SSample> ValueAt(std::int64_t ticks) {
        CTrvViewValueDataQuery query(Address(), CDateTimeSpan(ticks), nullptr);
        bool cancelled = false;
        EXPECT_TRUE(query.Execute(cancelled));
        const auto packet = query.TakePacket();
        return packet ? std::optional(SampleOf(*packet)) : std::nullopt;
    }

    const SSample* NearestInTruth(std::int64_t ticks) const {
        if (ticks < m_truth.front().ticks || ticks > m_truth.back().ticks) return nullptr;
        return &*std::min_element(m_truth.begin(), m_truth.end(),
                                  [ticks](const SSample& a, const SSample& b) {
                                      return std::abs(a.ticks - ticks) < std::abs(b.ticks - ticks);
                                  });
    }

    // A window whose start the cache knows to the tick is walked from the first packet on.
    test::EPassFrom FirstOfPass(std::int64_t start) {
        return m_usesCache && IsInCache(start) && start > m_truth.front().ticks ? test::EPassFrom::firstSample
                                                                                : test::EPassFrom::start;
    }
    bool IsInCache(std::int64_t ticks) {
        std::uint32_t number = 0;
        SDateSamples samples;
        return m_cache.FindDate(m_recording.GetPath(), test::kDepthNumber, CDateTimeSpan(ticks), number,
                                samples);
    }

    CXpfFileCache m_cache;
    bool m_usesCache = false;
    test::CTemporaryFolder m_folder;
    test::CTestRecording m_recording;
    std::vector<SSample> m_truth;
};

TEST_F(ViewQueries, ValueIsTheNearestPacketTheEarlierOnATie) {
    std::mt19937_64 random(3);
    const std::int64_t from = m_truth.front().ticks - 10'000'000, to = m_truth.back().ticks + 10'000'000;
    for (int i = 0; i < 300; ++i) {
        m_usesCache = i % 2 == 0;
        const auto ticks = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        const auto value = ValueAt(ticks);
        const SSample* truth = NearestInTruth(ticks);
        ASSERT_EQ(value.has_value(), truth != nullptr) << ticks;
        if (truth) {
            ASSERT_EQ(value->ticks, truth->ticks) << ticks;
        }
    }
    for (std::size_t i : {std::size_t{0}, std::size_t{1}, m_truth.size() / 2, m_truth.size() - 1})
        EXPECT_EQ(ValueAt(m_truth[i].ticks)->ticks, m_truth[i].ticks);
    test::CTestRecording tie(m_folder / "tie.tarin");
    tie.Depth(1, 1);
    tie.Depth(3, 3);
    tie.Flush();
    CTrvViewValueDataQuery query({tie.GetPath(), EFileKind::tarin, test::kDepthNumber}, Seconds(2), nullptr);
    bool cancelled = false;
    ASSERT_TRUE(query.Execute(cancelled));
    EXPECT_EQ(SampleOf(*query.TakePacket()).depth, 1);
}

TEST_F(ViewQueries, WindowsAgreeWithAPlainPass) {
    std::mt19937_64 random(5);
    const std::int64_t from = m_truth.front().ticks - 50'000'000, to = m_truth.back().ticks + 50'000'000;
    for (int i = 0; i < 300; ++i) {
        const auto a = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        const auto b = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        const auto [start, end] = std::minmax(a, b);
        const std::int64_t slice = 1 + static_cast<std::int64_t>(random() % 5'000'000);
        m_usesCache = i % 2 == 0; // a warm one, from the first window on
        CTrvView1DDataQuery query(Address(), {CDateTimeSpan(start), CDateTimeSpan(end), CDateTimeSpan(slice)},
                                  nullptr);
        const auto truth = test::ReducePlainly(m_truth, start, end, slice, FirstOfPass(start));
        bool cancelled = false;
        ASSERT_TRUE(query.Execute(cancelled));
        const SReducedSeries series = query.TakeSeries();
        ASSERT_EQ(series.representatives.size(), truth.size()) << start << " to " << end << " by " << slice;
        ASSERT_EQ(series.minima.size(), truth.size());
        ASSERT_EQ(series.maxima.size(), truth.size());
        for (std::size_t k = 0; k < truth.size(); ++k) {
            ASSERT_EQ(SampleOf(*series.representatives[k]).ticks, truth[k][0].ticks);
            ASSERT_EQ(SampleOf(*series.minima[k]).depth, truth[k][1].depth);
            ASSERT_EQ(SampleOf(*series.maxima[k]).depth, truth[k][2].depth);
            ASSERT_EQ(SampleOf(*series.minima[k]).rejection, truth[k][1].rejection);
            ASSERT_EQ(SampleOf(*series.maxima[k]).rejection, truth[k][2].rejection);
            ASSERT_EQ(SampleOf(*series.minima[k]).ticks, truth[k][1].ticks);
        }
    }
}

TEST_F(ViewQueries, OddRequests) {
    bool cancelled = false;
    const SWindow whole{Seconds(0), Seconds(1000), Seconds(1), false};
    CTrvView1DDataQuery withoutExtremes(Address(), whole, nullptr);
    ASSERT_TRUE(withoutExtremes.Execute(cancelled));
    const SReducedSeries series = withoutExtremes.TakeSeries();
    EXPECT_FALSE(series.representatives.empty());
    EXPECT_TRUE(series.minima.empty() && series.maxima.empty());

    CTrvView1DDataQuery noSlice(Address(), {Seconds(0), Seconds(10), Seconds(0)}, nullptr);
    EXPECT_FALSE(noSlice.Execute(cancelled));
    CTrvView1DDataQuery silentChannel(Address(test::kUtcNumber), whole, nullptr);
    EXPECT_FALSE(silentChannel.Execute(cancelled));
    CTrvView1DDataQuery noChannel(Address(77), whole, nullptr);
    EXPECT_FALSE(noChannel.Execute(cancelled));
    CTrvView1DDataQuery noFile({m_folder / "gone.tarin", EFileKind::tarin, test::kDepthNumber}, whole,
                               nullptr);
    EXPECT_FALSE(noFile.Execute(cancelled));
    EXPECT_FALSE(cancelled);

    // A search that finds nothing gives up as well.
    silentChannel.RequestCancel();
    EXPECT_FALSE(silentChannel.Execute(cancelled));
    EXPECT_TRUE(std::exchange(cancelled, false));
    CTrvView1DDataQuery given(Address(), whole, nullptr);
    given.RequestCancel();
    given.Execute(cancelled);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(given.TakeSeries().representatives.empty());
}

// A moment that the cache knows to the tick is answered by the nearer end of the data, and a window that
// starts there is walked from the first packet on.
TEST_F(ViewQueries, ExactHitsInTheCacheLeadToTheEnds) {
    m_usesCache = true;
    const auto window = [this](std::int64_t start) {
        const SWindow asked{CDateTimeSpan(start), CDateTimeSpan(start + 30'000'000),
                            CDateTimeSpan(1'000'000)};
        CTrvView1DDataQuery query(Address(), asked, nullptr);
        bool cancelled = false;
        EXPECT_TRUE(query.Execute(cancelled));
        std::vector<std::int64_t> ticks;
        for (const auto& packet : query.TakeSeries().representatives)
            ticks.push_back(SampleOf(*packet).ticks);
        return ticks;
    };
    for (std::size_t i = 1; i < m_truth.size(); i += 150) window(m_truth[i].ticks + 1);
    const std::int64_t first = m_truth.front().ticks, last = m_truth.back().ticks;
    int hits = 0;
    for (const SSample& sample : m_truth) {
        if (!IsInCache(sample.ticks) || ++hits > 60) continue;
        EXPECT_EQ(ValueAt(sample.ticks)->ticks, sample.ticks - first <= last - sample.ticks ? first : last);
        std::vector<std::int64_t> truth;
        for (const auto& slice : test::ReducePlainly(m_truth, sample.ticks, sample.ticks + 30'000'000,
                                                     1'000'000, test::EPassFrom::firstSample))
            truth.push_back(slice[0].ticks);
        EXPECT_EQ(window(sample.ticks), truth);
    }
    EXPECT_GT(hits, 60);
}

// Short and long packets are taken as far as they go, and what one does not fill is zero.
TEST_F(ViewQueries, PacketsOfOtherSizes) {
    test::CTestRecording recording(m_folder / "odd.tarin");
    const auto handle = *recording.GetWriter().FindChannel("DEPTH");
    CXpfTarinDepthPacketV1 packet;
    const auto write = [&](double seconds, float depth, std::size_t size) {
        packet.SetDate(0, Seconds(seconds));
        packet.SetFloat(3, depth);
        std::vector<std::uint8_t> payload(packet.GetPayload(), packet.GetPayload() + packet.GetPayloadSize());
        payload.resize(size, 0xFF);
        EXPECT_TRUE(recording.GetWriter().WriteRaw(handle, payload));
    };
    const std::size_t whole = packet.GetPayloadSize();
    write(1, 5, whole);
    write(2, 6, whole + 9);
    write(3, 7, sizeof(std::int64_t));
    write(4, 8, whole);
    recording.Flush();
    CTrvView1DDataQuery query({recording.GetPath(), EFileKind::tarin, test::kDepthNumber},
                              {Seconds(0), Seconds(9), Seconds(0.5)}, nullptr);
    bool cancelled = false;
    ASSERT_TRUE(query.Execute(cancelled));
    const SReducedSeries series = query.TakeSeries();
    std::vector<float> depths;
    for (const auto& found : series.representatives) depths.push_back(SampleOf(*found).depth);
    EXPECT_EQ(depths, (std::vector<float>{5, 6, 0, 8}));
}

// Dates that jump to and fro would make a slice of each packet.
TEST_F(ViewQueries, JumpingDatesCostNoMemoryWithoutEnd) {
    test::CTestRecording recording(m_folder / "jumps.tarin");
    for (int i = 0; i < 100'000; ++i) recording.Depth(i % 2 ? 90 : 1, 0);
    recording.Flush();
    CTrvView1DDataQuery query({recording.GetPath(), EFileKind::tarin, test::kDepthNumber},
                              {Seconds(0), Seconds(100), Seconds(1), false}, nullptr);
    bool cancelled = false;
    ASSERT_TRUE(query.Execute(cancelled));
    EXPECT_LT(query.TakeSeries().representatives.size(), 70'000u);
}

// Searches like a window, and has the file replaced before it ends.
class CReplacingQuery : public CTrvDataQuery {
  public:
    CReplacingQuery(SChannelAddress address, std::filesystem::path replacement)
        : CTrvDataQuery(std::move(address)), m_replacement(std::move(replacement)) {}
    void OnFinished(bool) override {}
    void OnCancelled() override {}

  protected:
    bool Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet, bool&) override {
        SDateBracket bracket;
        const bool found =
            SearchDate(channel, *packet, Seconds(9), MakeSearch(true), bracket) == EDateSearch::found;
        if (!m_replacement.empty()) std::filesystem::rename(m_replacement, GetAddress().path);
        return found;
    }

  private:
    std::filesystem::path m_replacement;
};

TEST_F(ViewQueries, NothingStaysInTheCacheOfAFileThatWasReplaced) {
    m_usesCache = true;
    test::CTestRecording other(m_folder / "other.tarin");
    const auto isKnown = [this] {
        CXpfFilePosition position;
        std::uint32_t number = 0;
        SDateSamples samples;
        m_cache.FindDate(m_recording.GetPath(), test::kDepthNumber, Seconds(9), number, samples);
        return std::array{m_cache.GetFirstPosition(m_recording.GetPath(), test::kDepthNumber, position),
                          m_cache.GetLastPosition(m_recording.GetPath(), test::kDepthNumber, position),
                          samples.lowerDate.IsValid()};
    };
    bool cancelled = false;
    EXPECT_TRUE(CReplacingQuery(Address(), {}).Execute(cancelled));
    EXPECT_EQ(isKnown(), (std::array{true, true, true}));
    EXPECT_TRUE(CReplacingQuery(Address(), other.GetPath()).Execute(cancelled));
    EXPECT_EQ(isKnown(), (std::array{false, false, false}));
}

} // namespace
