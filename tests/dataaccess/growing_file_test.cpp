// Queries on a recording while another thread appends to it: without help, with a warm cache, and with an
// index that an analysis makes meanwhile.
#include "dataaccess/data_file_analyzer.h"
#include "dataaccess/file_indexes.h"
#include "dataaccess/plain_pass.h"
#include "dataaccess/test_recording.h"
#include "dataaccess/view_queries.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::SampleOf;
using test::SSample;

namespace {

// Even ticks at an uneven rate: an odd tick is never a packet's.
SSample SampleAt(std::int64_t i) {
    return {(i + 1) * 100'000 + 2 * (i * 7919 % 20'000), static_cast<float>(i * 37 % 1000),
            static_cast<std::uint8_t>(i % 200)};
}

// Appends in small pieces and keeps some way ahead of the reader, who thus always reads beside it.
class CWriter {
  public:
    explicit CWriter(const std::filesystem::path& path) : m_recording(path), m_thread([this] { Run(); }) {}
    ~CWriter() {
        m_stop = true;
        m_thread.join();
    }

    std::int64_t GetWhole() const { return m_whole; } // packets that every reader finds
    std::int64_t GetBegun() const { return m_begun; } // those that a reader may have seen
    void LetOneMorePieceCome() { ++m_reads; }

  private:
    void Run() {
        std::mt19937 random(7);
        for (std::int64_t i = 0; !m_stop;) {
            if (i > 2000 + 150 * m_reads) {
                std::this_thread::yield();
                continue;
            }
            for (const std::int64_t end = i + 1 + random() % 100; i < end; ++i) {
                const SSample sample = SampleAt(i);
                m_recording.Depth(CDateTimeSpan(sample.ticks), sample.depth, sample.rejection);
                if (i % 7 == 0) m_recording.Gps(static_cast<double>(sample.ticks) * 1e-7, 48, -4, 0);
            }
            m_begun = i;
            m_recording.Flush();
            m_whole = i;
        }
    }

    test::CTestRecording m_recording;
    std::atomic<std::int64_t> m_whole{0}, m_begun{0}, m_reads{0};
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

enum class EHelp { none, cache, index };

class GrowingFile : public testing::TestWithParam<EHelp> {
  protected:
    GrowingFile() {
        while (m_writer.GetWhole() < 1000) std::this_thread::yield();
    }

    void LearnTruth(std::int64_t count) {
        for (auto i = static_cast<std::int64_t>(m_truth.size()); i < count; ++i)
            m_truth.push_back(SampleAt(i));
    }
    std::span<const SSample> Truth(std::int64_t count) const {
        return std::span(m_truth).first(static_cast<std::size_t>(count));
    }
    std::int64_t OddBelow(std::int64_t limit) {
        return static_cast<std::int64_t>(m_random() % static_cast<std::uint64_t>(limit)) | 1;
    }
    // A search may meet a packet that is being written, and a view asks again then. A search that fails while
    // nothing is written is at fault.
    template <class Query, class... Arguments>
    std::unique_ptr<Query> Ask(const Arguments&... arguments) {
        for (;;) {
            const std::int64_t whole = m_writer.GetWhole(), begun = m_writer.GetBegun();
            auto query = std::make_unique<Query>(m_address, arguments..., nullptr);
            if (query->Execute() == EQueryEnd::done) return query;
            if (whole == begun && m_writer.GetBegun() == begun) return nullptr;
        }
    }
    void CheckWindow();
    void CheckMoment();

    test::CTemporaryFolder m_folder;
    CXpfFileCache m_cache;
    std::shared_ptr<CFileIndexes> m_indexes = std::make_shared<CFileIndexes>(SIndexSettings());
    SChannelAddress m_address{m_folder / "r.tarin", EFileKind::tarin, test::kDepthNumber,
                              GetParam() == EHelp::cache ? &m_cache : nullptr,
                              GetParam() == EHelp::index ? m_indexes.get() : nullptr};
    CWriter m_writer{m_address.path};
    Outils::CMessageQueue m_queue;
    Outils::CMessagePort m_port{m_queue};
    CTrvTarinDataFileAnalyzerThread m_analysis{m_address.path, m_port, [](std::uint16_t) {}, {}, m_indexes};
    std::mt19937_64 m_random{17};
    std::vector<SSample> m_truth;
};

// The window holds what a plain pass finds in the packets that were whole before, and of those that came
// meanwhile a beginning.
void GrowingFile::CheckWindow() {
    const std::int64_t before = m_writer.GetWhole();
    const std::int64_t start = OddBelow(SampleAt(before + 200).ticks);
    const std::int64_t end = start + OddBelow(SampleAt(before).ticks / 2);
    const std::int64_t slice = 1 + OddBelow((end - start) / 20 + 1);
    const auto query =
        Ask<CTrvView1DDataQuery>(SWindow{CDateTimeSpan(start), CDateTimeSpan(end), CDateTimeSpan(slice)});
    ASSERT_TRUE(query) << start << " to " << end;
    const std::int64_t after = m_writer.GetBegun();
    LearnTruth(after);
    const auto least = test::ReducePlainly(Truth(before), start, end, slice);
    const auto most = test::ReducePlainly(Truth(after), start, end, slice);
    const SReducedSeries series = query->TakeSeries();
    const std::size_t count = series.representatives.size();
    ASSERT_GE(count, least.size()) << start << " to " << end << " by " << slice;
    ASSERT_LE(count, most.size());
    for (std::size_t k = 0; k < count; ++k) {
        const SSample middle = SampleOf(*series.representatives[k]), low = SampleOf(*series.minima[k]),
                      high = SampleOf(*series.maxima[k]);
        // Of the last slice more packets may be in the file by now.
        const bool known = k < least.size() && least[k][0].ticks == most[k][0].ticks;
        if (k + 1 < count || known) {
            ASSERT_EQ(middle.ticks, most[k][0].ticks) << start << " to " << end << " by " << slice;
        }
        ASSERT_EQ(low.ticks, most[k][1].ticks) << "each slice begins with its first packet";
        ASSERT_GE(low.depth, most[k][1].depth);
        ASSERT_LE(high.depth, most[k][2].depth);
        if (k < least.size()) {
            ASSERT_LE(low.depth, least[k][1].depth);
            ASSERT_GE(high.depth, least[k][2].depth);
        }
    }
}

void GrowingFile::CheckMoment() {
    const std::int64_t before = m_writer.GetWhole();
    LearnTruth(before);
    const std::int64_t ticks = SampleAt(0).ticks + OddBelow(SampleAt(before - 1).ticks - SampleAt(0).ticks);
    const auto query = Ask<CTrvViewValueDataQuery>(CDateTimeSpan(ticks));
    ASSERT_TRUE(query) << ticks;
    const auto packet = query->TakePacket();
    ASSERT_TRUE(packet) << ticks;
    const auto above = std::lower_bound(m_truth.begin(), m_truth.end(), ticks,
                                        [](const SSample& s, std::int64_t t) { return s.ticks < t; });
    const auto below = above - 1;
    EXPECT_EQ(SampleOf(*packet).ticks,
              ticks - below->ticks <= above->ticks - ticks ? below->ticks : above->ticks);
}

TEST_P(GrowingFile, AnswersAgreeWithWholePackets) {
    for (int i = 0; i < 200 && !HasFatalFailure(); ++i) {
        if (GetParam() == EHelp::index) m_analysis.Start();
        CheckWindow();
        CheckMoment();
        m_writer.LetOneMorePieceCome();
    }
    if (GetParam() != EHelp::index) return;
    const auto index = m_indexes->Find(m_address.path);
    ASSERT_TRUE(index);
    EXPECT_GT(index->GetChannel(test::kDepthNumber)->GetCount(0), 10u);
    EXPECT_FALSE(index->HasGaps());
}

constexpr const char* kHelpNames[] = {"none", "cache", "index"};
INSTANTIATE_TEST_SUITE_P(Help, GrowingFile, testing::Values(EHelp::none, EHelp::cache, EHelp::index),
                         [](const auto& row) { return kHelpNames[static_cast<int>(row.param)]; });

} // namespace
