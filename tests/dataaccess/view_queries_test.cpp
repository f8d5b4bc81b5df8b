#include "dataaccess/view_queries.h"

#include "dataaccess/plain_pass.h"
#include "dataaccess/test_recording.h"
#include "xpf/packet_classes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <random>
#include <thread>
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

    void CheckWindows(std::int64_t beyond, std::int64_t longest);

    SChannelAddress Address(std::uint16_t channel = test::kDepthNumber) {
        return {m_path, EFileKind::tarin, channel, m_usesCache ? &m_cache : nullptr};
    }

    // The answer of a window over the file of the truth.
    SReducedSeries Reduce(const SWindow& window) {
        CTrvView1DDataQuery query(Address(), window, nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::done);
        return query.TakeSeries();
    }
    SReducedSeries Reduce(const test::CTestRecording& recording, const SWindow& window) {
        m_path = recording.GetPath();
        return Reduce(window);
    }

    std::optional<SSample> ValueAt(std::int64_t ticks) {
        CTrvViewValueDataQuery query(Address(), CDateTimeSpan(ticks), nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::done);
        const auto packet = query.TakePacket();
        return packet ? std::optional(SampleOf(*packet)) : std::nullopt;
    }

    // Leaves the samples of a search in the cache.
    void WarmCache(std::int64_t start) {
        Reduce({CDateTimeSpan(start), CDateTimeSpan(start + 1), CDateTimeSpan(1)});
    }

    // The answer for a moment, the earlier on a tie. One that the cache knows to the tick is answered by the
    // nearer end.
    const SSample* NearestInTruth(std::int64_t ticks) {
        const SSample &first = m_truth.front(), &last = m_truth.back();
        if (ticks < first.ticks || ticks > last.ticks) return nullptr;
        if (FirstOfPass(ticks) == test::EPassFrom::firstSample)
            return ticks - first.ticks <= last.ticks - ticks ? &first : &last;
        return &*std::min_element(m_truth.begin(), m_truth.end(),
                                  [ticks](const SSample& a, const SSample& b) {
                                      return std::abs(a.ticks - ticks) < std::abs(b.ticks - ticks);
                                  });
    }

    void CheckValue(std::int64_t ticks) {
        const auto value = ValueAt(ticks);
        const SSample* truth = NearestInTruth(ticks);
        ASSERT_EQ(value.has_value(), truth != nullptr) << ticks;
        if (truth) {
            ASSERT_EQ(value->ticks, truth->ticks) << ticks;
        }
    }

    // A window whose start the cache knows to the tick is walked from the first packet on.
    test::EPassFrom FirstOfPass(std::int64_t start) {
        return m_usesCache && IsInCache(start) && start > m_truth.front().ticks &&
                       start < m_truth.back().ticks
                   ? test::EPassFrom::firstSample
                   : test::EPassFrom::start;
    }
    bool IsInCache(std::int64_t ticks) {
        std::uint32_t number = 0;
        SDateSamples samples;
        return m_cache.FindDate(m_path, test::kDepthNumber, CDateTimeSpan(ticks), number, samples);
    }

    CXpfFileCache m_cache;
    bool m_usesCache = false;
    test::CTemporaryFolder m_folder;
    test::CTestRecording m_recording;
    std::filesystem::path m_path = m_recording.GetPath(); // of the truth
    std::vector<SSample> m_truth;
};

TEST_F(ViewQueries, ValueIsTheNearestPacket) {
    std::mt19937_64 random(3);
    const std::int64_t from = m_truth.front().ticks - 10'000'000, to = m_truth.back().ticks + 10'000'000;
    for (int i = 0; i < 300 && !HasFatalFailure(); ++i) {
        m_usesCache = i % 2 == 0; // ever warmer
        const auto ticks = from + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(to - from));
        CheckValue(ticks);
        if (m_usesCache) WarmCache(ticks);
        CheckValue(m_truth[random() % m_truth.size()].ticks);
    }
}

// Random windows that reach as far as `beyond` ticks outside the data or end with it, in slices up to
// `longest`.
void ViewQueries::CheckWindows(std::int64_t beyond, std::int64_t longest) {
    std::mt19937_64 random(5);
    const std::int64_t first = m_truth.front().ticks, last = m_truth.back().ticks;
    const auto draw = [&]() -> std::int64_t {
        const auto range = static_cast<std::uint64_t>(last - first + 2 * beyond);
        switch (random() % 8) {
        case 0: return first;
        case 1: return last;
        default: return first - beyond + static_cast<std::int64_t>(random() % range);
        }
    };
    for (int i = 0; i < 300; ++i) {
        const auto [start, end] = std::minmax({draw(), draw()});
        const std::int64_t slice =
            1 + static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(longest));
        m_usesCache = i % 2 == 0; // a warm one, from the first window on
        const auto truth = test::ReducePlainly(m_truth, start, end, slice, FirstOfPass(start));
        const auto series = Reduce({CDateTimeSpan(start), CDateTimeSpan(end), CDateTimeSpan(slice)});
        ASSERT_EQ(series.representatives.size(), truth.size()) << start << " to " << end << " by " << slice;
        ASSERT_EQ(series.minima.size(), truth.size());
        ASSERT_EQ(series.maxima.size(), truth.size());
        for (std::size_t k = 0; k < truth.size(); ++k) {
            const SSample low = SampleOf(*series.minima[k]), high = SampleOf(*series.maxima[k]);
            ASSERT_EQ(SampleOf(*series.representatives[k]).ticks, truth[k][0].ticks);
            ASSERT_EQ(low, truth[k][1]);
            ASSERT_EQ(std::pair(high.depth, high.rejection),
                      std::pair(truth[k][2].depth, truth[k][2].rejection));
        }
    }
}

TEST_F(ViewQueries, WindowsAgreeWithAPlainPass) { CheckWindows(50'000'000, 5'000'000); }

// Dates a few ticks apart lie on the edges of windows and slices, and as far from a centre as others.
TEST_F(ViewQueries, EdgesAgreeWithAPlainPass) {
    std::mt19937 random(29);
    test::CTestRecording recording(m_folder / "edges.tarin");
    m_path = recording.GetPath();
    m_truth.clear();
    for (std::int64_t i = 0, ticks = 100; i < 200; ++i, ticks += 1 + random() % 4) {
        m_truth.push_back({ticks, static_cast<float>(random() % 100), static_cast<std::uint8_t>(random())});
        recording.Depth(CDateTimeSpan(ticks), m_truth.back().depth, m_truth.back().rejection);
    }
    recording.Flush();
    CheckWindows(200, 40);
    for (std::int64_t ticks = 90; ticks < m_truth.back().ticks + 10; ++ticks) CheckValue(ticks);
    m_usesCache = false;
    for (std::int64_t ticks = 90; ticks < m_truth.back().ticks + 10; ++ticks) CheckValue(ticks);
}

// Wherever the cancellation meets the query, it ends whole or with nothing.
TEST_F(ViewQueries, ACancelledQueryLeavesNoPart) {
    std::size_t whole = 0;
    for (int i = 0; i < 200; ++i) {
        CTrvView1DDataQuery query(Address(), {Seconds(0), Seconds(1000), Seconds(0.001)}, nullptr);
        std::thread other([&query, i] {
            for (int turns = 0; turns < i; ++turns) std::this_thread::yield();
            if (i > 0) query.RequestCancel();
        });
        const EQueryEnd end = query.Execute();
        other.join();
        const bool cancelled = end == EQueryEnd::cancelled;
        EXPECT_TRUE(cancelled || end == EQueryEnd::done);
        const std::size_t count = query.TakeSeries().representatives.size();
        if (i == 0) whole = count;
        EXPECT_EQ(count, cancelled ? 0 : whole);
    }
}

TEST_F(ViewQueries, OddRequests) {
    const SWindow whole{Seconds(0), Seconds(1000), Seconds(1), false};
    const SReducedSeries series = Reduce(whole);
    EXPECT_FALSE(series.representatives.empty());
    EXPECT_TRUE(series.minima.empty() && series.maxima.empty());

    const SWindow noSlice{Seconds(0), Seconds(10), Seconds(0)};
    const SChannelAddress noFile{m_folder / "gone.tarin", EFileKind::tarin, test::kDepthNumber};
    for (const auto& [address, window] :
         {std::pair(Address(), noSlice), {Address(77), whole}, {noFile, whole}})
        EXPECT_EQ(CTrvView1DDataQuery(address, window, nullptr).Execute(), EQueryEnd::failed);
    CTrvView1DDataQuery silentChannel(Address(test::kUtcNumber), whole, nullptr);
    EXPECT_EQ(silentChannel.Execute(), EQueryEnd::failed);
    silentChannel.RequestCancel(); // a search that finds nothing gives up as well
    EXPECT_EQ(silentChannel.Execute(), EQueryEnd::cancelled);
}

// Draws one field of two extremes out to a packet, in the field's own type.
template <class T>
void Extend(bool (CXpfPacket::*get)(std::uint32_t, T&) const, bool (CXpfPacket::*set)(std::uint32_t, T),
            std::uint32_t field, const CXpfPacket& packet, CXpfPacket& low, CXpfPacket& high) {
    T value, least, greatest;
    if (!(packet.*get)(field, value)) return;
    ASSERT_TRUE((low.*get)(field, least) && (high.*get)(field, greatest));
    if (value < least || std::isnan(least)) (low.*set)(field, value);
    if (value > greatest || std::isnan(greatest)) (high.*set)(field, value);
}

std::vector<std::uint8_t> BytesOf(const CXpfPacket& packet) {
    return {packet.GetPayload(), packet.GetPayload() + packet.GetPayloadSize()};
}

// With bytes at random. What has several elements is no number: it stays as in the first packet of the slice.
TEST_F(ViewQueries, ExtremesOfEveryPacketType) {
    constexpr int kPerSlice = 20, kSlices = 15;
    std::mt19937 random(23);
    for (std::uint16_t number = 0; number < GetChannelLayouts().size(); ++number) {
        const SChannelLayout& row = GetChannelLayouts()[number];
        if (!FindPacketLayout(row.packetType)) continue;
        SCOPED_TRACE(row.name);
        const auto path = m_folder / row.name;
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(path, std::span(&row.name, 1)));
        const auto create = FindPacketClass(row.packetType)->createPacket;
        PacketList lows, highs;
        for (int i = 0; i < kPerSlice * kSlices; ++i) {
            const auto packet = create();
            std::generate_n(packet->GetPayload(), packet->GetPayloadSize(), std::ref(random));
            packet->SetDate(0, CDateTimeSpan(i));
            ASSERT_TRUE(writer.Write(row.name, *packet));
            for (auto* list : {&lows, &highs}) {
                if (i % kPerSlice) continue;
                list->push_back(create());
                std::copy_n(packet->GetPayload(), packet->GetPayloadSize(), list->back()->GetPayload());
            }
            for (std::uint32_t field = 1; field < packet->GetFieldCount(); ++field) {
                const auto extend = [&](auto get, auto set) {
                    Extend(get, set, field, *packet, *lows.back(), *highs.back());
                };
                extend(&CXpfPacket::GetDouble, &CXpfPacket::SetDouble);
                extend(&CXpfPacket::GetFloat, &CXpfPacket::SetFloat);
                extend(&CXpfPacket::GetInt32, &CXpfPacket::SetInt32);
                extend(&CXpfPacket::GetInt16, &CXpfPacket::SetInt16);
                extend(&CXpfPacket::GetInt8, &CXpfPacket::SetInt8);
                extend(&CXpfPacket::GetUInt32, &CXpfPacket::SetUInt32);
                extend(&CXpfPacket::GetUInt16, &CXpfPacket::SetUInt16);
                extend(&CXpfPacket::GetUInt8, &CXpfPacket::SetUInt8);
            }
        }
        ASSERT_TRUE(writer.Flush());
        CTrvView1DDataQuery query({path, row.kind, number},
                                  {CDateTimeSpan(0), Seconds(1), CDateTimeSpan(kPerSlice)}, nullptr);
        ASSERT_EQ(query.Execute(), EQueryEnd::done);
        const SReducedSeries series = query.TakeSeries();
        ASSERT_EQ(series.minima.size(), lows.size());
        for (std::size_t k = 0; k < lows.size(); ++k) {
            EXPECT_EQ(BytesOf(*series.minima[k]), BytesOf(*lows[k]));
            EXPECT_EQ(BytesOf(*series.maxima[k]), BytesOf(*highs[k]));
        }
    }
}

TEST_F(ViewQueries, CacheKeepsBeginsLearnsNewEnds) {
    m_usesCache = true;
    const auto lastKnown = [this] {
        ValueAt(m_truth.front().ticks);
        CXpfFilePosition position;
        EXPECT_TRUE(m_cache.GetLastPosition(m_recording.GetPath(), test::kDepthNumber, position));
        return position;
    };
    const CXpfFilePosition before = lastKnown();
    m_recording.Depth(1000, 1);
    m_recording.Flush();
    EXPECT_GT(lastKnown().Get(), before.Get());
    m_cache.SetFirstPosition(m_recording.GetPath(), test::kDepthNumber, before);
    EXPECT_FALSE(ValueAt(m_truth.front().ticks));
    EXPECT_EQ(ValueAt(m_truth.back().ticks)->ticks, m_truth.back().ticks);
}

TEST_F(ViewQueries, EqualDatesShowAllPackets) {
    test::CTestRecording recording(m_folder / "still.tarin");
    for (int i = 1; i <= 5; ++i) recording.Depth(7, static_cast<float>(i));
    recording.Flush();
    for (const double start : {6.0, 7.0}) {
        const SReducedSeries series = Reduce(recording, {Seconds(start), Seconds(8), Seconds(2)});
        ASSERT_EQ(series.minima.size(), 1u);
        EXPECT_EQ(SampleOf(*series.minima[0]).depth, 1);
        EXPECT_EQ(SampleOf(*series.maxima[0]).depth, 5);
    }
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
    const auto series = Reduce(recording, {Seconds(0), Seconds(9), Seconds(0.5)});
    std::vector<float> depths;
    for (const auto& found : series.representatives) depths.push_back(SampleOf(*found).depth);
    EXPECT_EQ(depths, (std::vector<float>{5, 6, 0, 8}));
    EXPECT_EQ(ValueAt(Seconds(3).GetTicks())->depth, 0);
}

// Jumping dates would make a slice of each packet.
TEST_F(ViewQueries, JumpingDatesKeepMemoryBounded) {
    test::CTestRecording recording(m_folder / "jumps.tarin");
    for (int i = 0; i < 100'000; ++i) recording.Depth(i % 2 ? 90 : 1, 0);
    recording.Flush();
    const auto series = Reduce(recording, {Seconds(0), Seconds(100), Seconds(1), false});
    EXPECT_LT(series.representatives.size(), 70'000u);
}

// Searches like a window, and has the file replaced before it ends.
class CReplacingQuery : public CTrvDataQuery {
  public:
    CReplacingQuery(SChannelAddress address, std::filesystem::path replacement)
        : CTrvDataQuery(std::move(address)), m_replacement(std::move(replacement)) {}
    void OnFinished(bool) override {}
    void OnCancelled() override {}

  protected:
    EQueryEnd Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) override {
        SDateBracket bracket;
        const EDateSearch found = SearchDate(channel, *packet, Seconds(9), MakeSearch(true), bracket);
        if (!m_replacement.empty()) std::filesystem::rename(m_replacement, GetAddress().path);
        return found == EDateSearch::found ? EQueryEnd::done : EQueryEnd::failed;
    }

  private:
    std::filesystem::path m_replacement;
};

TEST_F(ViewQueries, ReplacedFilesLeaveNothingCached) {
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
    EXPECT_EQ(CReplacingQuery(Address(), {}).Execute(), EQueryEnd::done);
    EXPECT_EQ(isKnown(), (std::array{true, true, true}));
    EXPECT_EQ(CReplacingQuery(Address(), other.GetPath()).Execute(), EQueryEnd::done);
    EXPECT_EQ(isKnown(), (std::array{false, false, false}));
}

} // namespace
