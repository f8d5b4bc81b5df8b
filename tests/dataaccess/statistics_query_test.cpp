#include "dataaccess/statistics_query.h"

#include "dataaccess/depth_recording.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

constexpr double kDegrees = 360;

SFieldStatistics Compute(const std::vector<double>& values) {
    SFieldStatistics result;
    long double sum = 0, squares = 0, deviations = 0;
    for (const double value : values) {
        if (!std::isfinite(value)) {
            ++result.ignored;
            continue;
        }
        if (result.count++ == 0) result.first = result.minimum = result.maximum = value;
        result.last = value;
        result.minimum = std::min(result.minimum, value);
        result.maximum = std::max(result.maximum, value);
        sum += value;
        squares += static_cast<long double>(value) * value;
    }
    if (result.count == 0) return result;
    const auto count = static_cast<long double>(result.count);
    for (const double value : values)
        if (std::isfinite(value)) deviations += (value - sum / count) * (value - sum / count);
    result.mean = static_cast<double>(sum / count);
    result.rms = static_cast<double>(std::sqrt(squares / count));
    if (result.count > 1) result.deviation = static_cast<double>(std::sqrt(deviations / (count - 1)));
    return result;
}

void ExpectSame(const SFieldStatistics& found, const SFieldStatistics& expected) {
    EXPECT_EQ(found.count, expected.count);
    EXPECT_EQ(found.ignored, expected.ignored);
    const auto close = [](const char* what, double a, double b) {
        SCOPED_TRACE(what);
        if (std::isnan(b))
            EXPECT_TRUE(std::isnan(a));
        else
            EXPECT_NEAR(a, b, std::max(1.0, std::abs(b)) * 1e-12);
    };
    close("minimum", found.minimum, expected.minimum);
    close("maximum", found.maximum, expected.maximum);
    close("mean", found.mean, expected.mean);
    close("deviation", found.deviation, expected.deviation);
    close("rms", found.rms, expected.rms);
    close("first", found.first, expected.first);
    close("last", found.last, expected.last);
}

// By the definition of the results: the way from value to value, and directions from half a turn on.
SFieldStatistics ComputeAngles(const std::vector<double>& values) {
    SFieldStatistics result;
    std::vector<double> way, nearZero;
    long double sine = 0, cosine = 0;
    for (const double value : values) {
        if (!std::isfinite(value)) {
            ++result.ignored;
            continue;
        }
        way.push_back(way.empty() ? value : way.back() + std::remainder(value - result.last, kDegrees));
        nearZero.push_back(std::remainder(value, kDegrees));
        if (result.count++ == 0) result.first = result.minimum = result.maximum = value;
        result.last = value;
        result.minimum = std::min(result.minimum, value);
        result.maximum = std::max(result.maximum, value);
        sine += std::sin(value * std::numbers::pi_v<long double> / 180);
        cosine += std::cos(value * std::numbers::pi_v<long double> / 180);
    }
    if (result.count == 0) return result;
    const SFieldStatistics along = Compute(way);
    result.mean = along.mean;
    result.deviation = along.deviation;
    result.rms = Compute(nearZero).rms;
    if (const double span = along.maximum - along.minimum; span < kDegrees) {
        result.minimum = along.minimum;
        result.maximum = along.maximum;
        if (span < kDegrees / 2) return result;
    }
    const long double length = std::hypot(sine, cosine) / static_cast<long double>(result.count);
    result.mean = static_cast<double>(std::atan2(sine, cosine)) * 180 / std::numbers::pi;
    result.deviation = static_cast<double>(std::sqrt(-2 * std::log(length))) * 180 / std::numbers::pi;
    return result;
}

void ExpectSameAngles(const SFieldStatistics& found, const SFieldStatistics& expected) {
    EXPECT_EQ(found.count, expected.count);
    EXPECT_EQ(found.ignored, expected.ignored);
    const auto close = [](const char* what, double a, double b, double turn) {
        const bool isNone = std::isnan(b);
        EXPECT_EQ(std::isnan(a), isNone) << what;
        if (isNone) return;
        EXPECT_NEAR(turn > 0 ? std::remainder(a - b, turn) : a - b, 0, 1e-7)
            << what << ": " << a << ", " << b;
    };
    close("minimum", found.minimum, expected.minimum, kDegrees);
    close("maximum", found.maximum, expected.maximum, kDegrees);
    close("mean", found.mean, expected.mean, kDegrees);
    close("deviation", found.deviation, expected.deviation, 0);
    close("rms", found.rms, expected.rms, 0);
    close("first", found.first, expected.first, 0);
    close("last", found.last, expected.last, 0);
}

class StatisticsQuery : public test::CDepthRecording {
  protected:
    void RecordDepths(bool damaged) {
        Record(damaged, [](auto& random) {
            return random() % 50 == 0 ? std::numeric_limits<float>::infinity()
                                      : 5000 + 0.01f * static_cast<float>(random() % 1000);
        });
    }
    // A vessel that turns without a plan, from `low` on.
    void RecordAngles(bool damaged, double low) {
        Record(damaged, [low, way = 0.0](auto& random) mutable {
            way += static_cast<double>(random() % 1000) * 0.01 - 5;
            return random() % 50 == 0
                       ? std::numeric_limits<float>::quiet_NaN()
                       : static_cast<float>(way - kDegrees * std::floor((way - low) / kDegrees));
        });
    }
    static std::vector<double> Depths(const std::vector<test::SSample>& rows) {
        std::vector<double> values;
        for (const auto& row : rows) values.push_back(row.depth);
        return values;
    }
    SStatistics Ask(CTrvStatisticsQuery& query, EQueryEnd expected = EQueryEnd::done) {
        EXPECT_EQ(query.Execute(), expected);
        return query.GetStatistics();
    }
};

TEST_F(StatisticsQuery, AgreesWithAPlainComputation) {
    for (const bool damaged : {false, true}) {
        m_rows.clear();
        RecordDepths(damaged);
        ForEachWindow(60, [this](const auto& address, const auto& period, const auto& rows) {
            std::vector<double> rejections;
            for (const auto& row : rows) rejections.push_back(row.rejection);
            CTrvStatisticsQuery query(address, period, {{kDepth}, {kRejection}}, nullptr);
            const SStatistics found = Ask(query);
            ASSERT_EQ(found.fields.size(), 2u);
            EXPECT_TRUE(found.complete);
            ExpectSame(found.fields[0], Compute(Depths(rows)));
            ExpectSame(found.fields[1], Compute(rejections));
        });
    }
}

TEST_F(StatisticsQuery, AnglesAgreeWithAPlainComputation) {
    const std::pair<bool, double> recordings[] = {{false, 0}, {true, -180}};
    for (const auto& [damaged, low] : recordings) {
        m_rows.clear();
        RecordAngles(damaged, low);
        ForEachWindow(60, [this](const auto& address, const auto& period, const auto& rows) {
            CTrvStatisticsQuery query(address, period, {{kDepth, kDegrees}}, nullptr);
            ExpectSameAngles(Ask(query).fields.at(0), ComputeAngles(Depths(rows)));
        });
    }
}

TEST_F(StatisticsQuery, StrayDatesNeitherCountNorEndIt) {
    test::CTestRecording recording(m_path);
    std::vector<double> values;
    for (int i = 0; i < 3000; ++i) {
        const bool stray = i % 500 == 250;
        recording.Depth(stray ? 9e6 : i, static_cast<float>(i));
        if (!stray && i >= 100 && i <= 2900) values.push_back(i);
    }
    recording.Flush();
    CTrvStatisticsQuery query({m_path, EFileKind::tarin, test::kDepthNumber}, {Seconds(100), Seconds(2900)},
                              {{kDepth}}, nullptr);
    ExpectSame(Ask(query).fields.at(0), Compute(values));
    EXPECT_EQ(query.GetProgress(), 1);
}

TEST_F(StatisticsQuery, SaysWhereDamageEndedIt) {
    RecordDepths(false);
    auto bytes = Outils_Fichiers::ReadWholeFile(m_path, 1 << 24).value();
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2), 200, std::uint8_t{0});
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, bytes));
    CTrvStatisticsQuery query({m_path, EFileKind::tarin, test::kDepthNumber}, {Seconds(0), Seconds(1e6)},
                              {{kDepth}}, nullptr);
    const SFieldStatistics found = Ask(query).fields.at(0);
    EXPECT_TRUE(query.IsCut());
    EXPECT_LT(found.count + found.ignored, m_rows.size());
}

TEST_F(StatisticsQuery, FollowsAnglesTheShortWay) {
    struct SCase {
        const char* what;
        std::vector<float> angles;
        double minimum, maximum, mean, deviation, rms;
    };
    const double directions = std::sqrt(2 * std::log(2.0)) * 180 / std::numbers::pi; // of R = 1/2
    const SCase cases[] = {
        {"through north", {359, 1, 3}, 359, 3, 1, 2, std::sqrt(11 / 3.0)},
        {"back through north", {1, 359, 357}, 357, 1, 359, 2, std::sqrt(11 / 3.0)},
        {"through south", {170, -170}, 170, -170, -180, std::sqrt(200.0), 170},
        {"no wrap", {10, 20, 30}, 10, 30, 20, 10, std::sqrt(1400 / 3.0)},
        {"a whole turn", {0, 120, 240, 0, 0, 0}, 0, 240, 0, directions, std::sqrt(28800 / 6.0)},
    };
    for (const SCase& row : cases) {
        SCOPED_TRACE(row.what);
        {
            test::CTestRecording recording(m_path);
            for (std::size_t i = 0; i < row.angles.size(); ++i)
                recording.Depth(static_cast<double>(i), row.angles[i]);
            recording.Flush();
        }
        CTrvStatisticsQuery query({m_path, EFileKind::tarin, test::kDepthNumber}, {Seconds(0), Seconds(99)},
                                  {{kDepth, kDegrees}}, nullptr);
        const SFieldStatistics found = Ask(query).fields.at(0);
        EXPECT_NEAR(found.minimum, row.minimum, 1e-9);
        EXPECT_NEAR(found.maximum, row.maximum, 1e-9);
        EXPECT_NEAR(std::remainder(found.mean - row.mean, kDegrees), 0, 1e-9);
        EXPECT_NEAR(found.deviation, row.deviation, 1e-9);
        EXPECT_NEAR(found.rms, row.rms, 1e-9);
    }
}

TEST_F(StatisticsQuery, RefusesWhatIsNoNumber) {
    RecordDepths(false);
    const auto ask = [this](std::uint16_t channel, SStatisticsField field) {
        return CTrvStatisticsQuery({m_path, EFileKind::tarin, channel}, {Seconds(0), Seconds(9)}, {field},
                                   nullptr)
            .Execute();
    };
    EXPECT_EQ(ask(test::kDepthNumber, {0}), EQueryEnd::failed); // the date
    EXPECT_EQ(ask(test::kDepthNumber, {99}), EQueryEnd::failed);
    EXPECT_EQ(ask(test::kUtcNumber, {1}), EQueryEnd::failed); // without packets
    EXPECT_EQ(ask(77, {1}), EQueryEnd::failed);
}

TEST_F(StatisticsQuery, ReportsWhileItRunsAndCancels) {
    {
        test::CTestRecording recording(m_path);
        for (int i = 0; i < 200'000; ++i) recording.Depth(CDateTimeSpan(i), 1, 1);
        recording.Flush();
    }
    const SChannelAddress address{m_path, EFileKind::tarin, test::kDepthNumber};
    CTrvStatisticsQuery query(address, {CDateTimeSpan(0), CDateTimeSpan(199'999)}, {{kDepth}}, nullptr);
    EXPECT_TRUE(query.GetStatistics().fields.empty());
    std::thread loader([&query] { query.Execute(); });
    double former = 0;
    while (query.GetStatistics().fields.empty()) {
        EXPECT_GE(query.GetProgress(), former);
        former = query.GetProgress();
        std::this_thread::yield();
    }
    query.RequestCancel();
    loader.join();
    const SStatistics part = query.GetStatistics();
    EXPECT_GE(part.fields.at(0).count, 65'536u);
    EXPECT_EQ(part.complete, part.fields[0].count == 200'000u);
    EXPECT_EQ(query.Execute(), EQueryEnd::cancelled);
}

} // namespace
