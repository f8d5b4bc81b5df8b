#include "dataaccess/statistics_query.h"

#include "dataaccess/test_recording.h"
#include "foundation/files.h"
#include "xpf/stream_walk.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <random>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

constexpr std::uint32_t kRejection = 2, kDepth = 3;
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

// A depth channel of several thousand packets with pauses, equal dates and values that are no numbers, beside
// another channel. Damage falls upon some of its bytes.
class StatisticsQuery : public testing::Test {
  protected:
    void Record(bool damaged) {
        {
            test::CTestRecording recording(m_path);
            std::mt19937 random(17);
            std::int64_t date = 10'000'000;
            for (int i = 0; i < 20000; ++i) {
                date += random() % 5 == 0 ? 0 : static_cast<std::int64_t>(random() % 200'000);
                if (i % 5000 == 4999) date += 300'000'000;
                const bool isNumber = random() % 50 != 0;
                recording.Depth(CDateTimeSpan(date),
                                isNumber ? 5000 + 0.01f * static_cast<float>(random() % 1000)
                                         : std::numeric_limits<float>::infinity(),
                                static_cast<std::uint8_t>(random()));
                if (i % 9 == 0) recording.Gps(static_cast<double>(date) / 1e7, 48, -4, 0);
            }
            recording.Flush();
        }
        if (damaged) Damage();
        ReadPackets();
    }

    SStatistics Ask(CTrvStatisticsQuery& query, EQueryEnd expected = EQueryEnd::done) {
        EXPECT_EQ(query.Execute(), expected);
        return query.GetStatistics();
    }

    void CheckWindows() {
        std::mt19937_64 random(7);
        const auto range = std::uint64_t{3'000'000'000};
        for (int i = 0; i < 60; ++i) {
            const auto draw = [&] {
                return i % 3 ? static_cast<std::int64_t>(random() % range)
                             : m_dates[random() % m_dates.size()];
            };
            const auto [start, end] = std::minmax({draw(), draw()});
            SCOPED_TRACE(std::to_string(start) + " to " + std::to_string(end));
            std::vector<double> depths, rejections;
            for (std::size_t k = 0; k < m_dates.size(); ++k) {
                if (m_dates[k] < start || m_dates[k] > end) continue;
                depths.push_back(m_depths[k]);
                rejections.push_back(m_rejections[k]);
            }
            CTrvStatisticsQuery query(
                {m_path, EFileKind::tarin, test::kDepthNumber, i % 2 ? &m_cache : nullptr},
                {CDateTimeSpan(start), CDateTimeSpan(end)}, {{kDepth}, {kRejection}}, nullptr);
            const SStatistics found = Ask(query);
            ASSERT_EQ(found.fields.size(), 2u);
            EXPECT_TRUE(found.complete);
            ExpectSame(found.fields[0], Compute(depths));
            ExpectSame(found.fields[1], Compute(rejections));
            if (HasFailure()) return;
        }
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin";
    CXpfFileCache m_cache;
    std::vector<std::int64_t> m_dates;
    std::vector<double> m_depths, m_rejections;

  private:
    // Dates far off and packets without their mark here and there, and a torn end.
    void Damage() {
        auto bytes = Outils_Fichiers::ReadWholeFile(m_path, 1 << 24).value();
        std::vector<std::size_t> packets;
        {
            const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
            ASSERT_TRUE(file);
            SPacketHeader header;
            std::span<const std::uint8_t> payload;
            for (std::int64_t at = file->GetDataStart().Get();
                 file->Seek(at) && CStreamWalk(*file).Next(header, payload) == EPacketRead::whole;
                 at += header.size)
                packets.push_back(static_cast<std::size_t>(at));
        }
        std::mt19937_64 random(3);
        for (int i = 0; i < 150; ++i) {
            const std::size_t at = packets[random() % packets.size()];
            if (i % 3 == 0) bytes[at] = bytes[at + 1] = 0;
            const std::int64_t date = i % 2 ? std::int64_t{1} << 60 : -1;
            std::memcpy(bytes.data() + at + kPacketHeaderSize, &date, sizeof date);
        }
        bytes.resize(bytes.size() - 13);
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, bytes));
    }

    // All that a reader of the channel gets, packet by packet.
    void ReadPackets() {
        const auto file = OpenXpfFile(m_path, EFileKind::tarin).file;
        ASSERT_TRUE(file);
        CXpfChannel* channel = file->FindChannelByNumber(test::kDepthNumber);
        ASSERT_TRUE(channel && channel->SeekFirstPacket(nullptr));
        const auto packet = channel->CreatePacket();
        while (channel->ReadNextPacket(*packet)) {
            CDateTimeSpan date;
            float depth = 0;
            std::uint8_t rejection = 0;
            ASSERT_TRUE(packet->GetDate(0, date) && packet->GetFloat(kDepth, depth) &&
                        packet->GetUInt8(kRejection, rejection));
            m_dates.push_back(date.GetTicks());
            m_depths.push_back(depth);
            m_rejections.push_back(rejection);
        }
        ASSERT_GT(m_dates.size(), 19900u);
    }
};

TEST_F(StatisticsQuery, AgreesWithAPlainComputation) {
    Record(false);
    CheckWindows();
}

TEST_F(StatisticsQuery, AgreesOnADamagedRecording) {
    Record(true);
    CheckWindows();
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
    Record(false);
    auto bytes = Outils_Fichiers::ReadWholeFile(m_path, 1 << 24).value();
    std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 2), 200, std::uint8_t{0});
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_path, bytes));
    CTrvStatisticsQuery query({m_path, EFileKind::tarin, test::kDepthNumber}, {Seconds(0), Seconds(1e6)},
                              {{kDepth}}, nullptr);
    const SFieldStatistics found = Ask(query).fields.at(0);
    EXPECT_TRUE(query.IsCut());
    EXPECT_LT(found.count + found.ignored, m_dates.size());
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
    Record(false);
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
