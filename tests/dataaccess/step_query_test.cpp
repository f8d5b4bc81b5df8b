#include "dataaccess/step_query.h"

#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;

namespace {

class StepQuery : public testing::Test {
  protected:
    StepQuery() {
        test::CTestRecording recording(m_path);
        std::mt19937 random(2);
        for (std::int64_t i = 0, ticks = 1000; i < 2000; ++i) {
            // Runs of one date, longer than a first look goes back.
            if (i < 900 || i > 1000) ticks += random() % 3;
            m_dates.insert(ticks);
            recording.Depth(CDateTimeSpan(ticks), 1, 1);
            if (i % 5 == 0) recording.Gps(1, 48, -4, 0);
        }
        recording.Flush();
    }

    // The step by the dates themselves.
    std::optional<CDateTimeSpan> FindPlainly(std::int64_t from, int steps) const {
        std::vector<std::int64_t> way;
        if (steps > 0) way.assign(m_dates.upper_bound(from), m_dates.end());
        if (steps < 0) way.assign(std::make_reverse_iterator(m_dates.lower_bound(from)), m_dates.rend());
        if (way.empty()) return {};
        const auto wanted = static_cast<std::size_t>(std::abs(steps)) - 1;
        return CDateTimeSpan(way[std::min(wanted, way.size() - 1)]);
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    std::set<std::int64_t> m_dates;
};

TEST_F(StepQuery, AgreesWithThePlainDates) {
    std::mt19937 random(8);
    const std::int64_t first = *m_dates.begin(), last = *m_dates.rbegin();
    for (int i = 0; i < 300; ++i) {
        const std::int64_t from = first - 5 + static_cast<std::int64_t>(random() % (last - first + 10));
        constexpr int kSteps[] = {1, -1, 10, -10, 200, -200, 0, -5000};
        const int steps = kSteps[i % 8];
        CTrvStepQuery query({m_path, EFileKind::tarin, test::kDepthNumber}, CDateTimeSpan(from), steps,
                            nullptr);
        ASSERT_EQ(query.Execute(), EQueryEnd::done);
        ASSERT_EQ(query.GetDate(), FindPlainly(from, steps)) << from << " by " << steps;
    }
}

TEST_F(StepQuery, EndsWithoutAnAnswer) {
    const auto execute = [this](std::uint16_t channel, bool cancel) {
        CTrvStepQuery query({m_path, EFileKind::tarin, channel}, CDateTimeSpan(1200), -3, nullptr);
        if (cancel) query.RequestCancel();
        const EQueryEnd end = query.Execute();
        EXPECT_FALSE(query.GetDate());
        return end;
    };
    EXPECT_EQ(execute(test::kUtcNumber, false), EQueryEnd::failed);
    EXPECT_EQ(execute(77, false), EQueryEnd::failed);
    EXPECT_EQ(execute(test::kDepthNumber, true), EQueryEnd::cancelled);
}

} // namespace
