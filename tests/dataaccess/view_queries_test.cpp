#include "dataaccess/view_queries.h"

#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <random>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

struct SSample {
    std::int64_t ticks;
    float depth;
    std::uint8_t rejection;
};

SSample SampleOf(const CXpfPacket& packet) {
    SSample sample{};
    CDateTimeSpan date;
    EXPECT_TRUE(packet.GetDate(0, date));
    sample.ticks = date.GetTicks();
    EXPECT_TRUE(packet.GetFloat(3, sample.depth));
    EXPECT_TRUE(packet.GetUInt8(2, sample.rejection));
    return sample;
}

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

    SChannelAddress Address(std::uint16_t channel = test::kDepthNumber) const {
        return {m_recording.GetPath(), EFileKind::tarin, channel};
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

    // The slices of a window by a plain pass over the truth.
    std::vector<std::array<SSample, 3>> ReduceTruth(std::int64_t start, std::int64_t end,
                                                    std::int64_t slice) const {
        std::vector<std::array<SSample, 3>> slices;
        if (start > m_truth.back().ticks || end < m_truth.front().ticks) return slices;
        auto first = std::upper_bound(m_truth.begin(), m_truth.end(), start,
                                      [](std::int64_t ticks, const SSample& s) { return ticks < s.ticks; });
        if (first != m_truth.begin()) --first;
        std::int64_t index = -1;
        for (auto sample = first; sample != m_truth.end(); ++sample) {
            const std::int64_t here = std::max<std::int64_t>(0, sample->ticks - start) / slice;
            const std::int64_t centre = start + here * slice + slice / 2;
            if (here != index) slices.push_back({*sample, *sample, *sample});
            index = here;
            auto& [representative, low, high] = slices.back();
            if (std::abs(sample->ticks - centre) < std::abs(representative.ticks - centre))
                representative = *sample;
            low.depth = std::min(low.depth, sample->depth);
            high.depth = std::max(high.depth, sample->depth);
            low.rejection = std::min(low.rejection, sample->rejection);
            high.rejection = std::max(high.rejection, sample->rejection);
            if (sample->ticks >= end) break;
        }
        return slices;
    }

    test::CTemporaryFolder m_folder;
    test::CTestRecording m_recording;
    std::vector<SSample> m_truth;
};

TEST_F(ViewQueries, ValueIsTheNearestPacketTheEarlierOnATie) {
    std::mt19937_64 random(3);
    const std::int64_t from = m_truth.front().ticks - 10'000'000, to = m_truth.back().ticks + 10'000'000;
    for (int i = 0; i < 300; ++i) {
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
    for (int i = 0; i < 200; ++i) {
        const auto a = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        const auto b = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        const auto [start, end] = std::minmax(a, b);
        const std::int64_t slice = 1 + static_cast<std::int64_t>(random() % 5'000'000);
        CTrvView1DDataQuery query(Address(), {CDateTimeSpan(start), CDateTimeSpan(end), CDateTimeSpan(slice)},
                                  nullptr);
        bool cancelled = false;
        ASSERT_TRUE(query.Execute(cancelled));
        const SReducedSeries series = query.TakeSeries();
        const auto truth = ReduceTruth(start, end, slice);
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

    CTrvView1DDataQuery given(Address(), whole, nullptr);
    given.RequestCancel();
    given.Execute(cancelled);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(given.TakeSeries().representatives.empty());
}

} // namespace
