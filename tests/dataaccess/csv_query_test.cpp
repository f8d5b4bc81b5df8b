#include "dataaccess/csv_query.h"

#include "dataaccess/test_recording.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

constexpr std::uint32_t kRejection = 2, kDepth = 3;
const std::vector<SCsvColumn> kColumns = {{"Rejection", kRejection}, {"Depth [m]", kDepth}};

std::string ReadText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class CsvQuery : public testing::Test {
  protected:
    struct SRow {
        std::int64_t ticks;
        float depth;
        std::uint8_t rejection;
    };

    CsvQuery() {
        test::CTestRecording recording(m_path);
        std::mt19937 random(5);
        for (std::int64_t i = 0, ticks = -30'000'000; i < 15'000; ++i, ticks += 1 + random() % 4'000) {
            const auto bits = static_cast<std::uint32_t>(random() & 0x7F7FFFFF); // of any finite size
            float depth = 0;
            std::memcpy(&depth, &bits, sizeof depth);
            m_rows.push_back({ticks, depth, static_cast<std::uint8_t>(random())});
            recording.Depth(CDateTimeSpan(ticks), depth, m_rows.back().rejection);
            if (i % 11 == 0) recording.Gps(static_cast<double>(i), 48, -4, 100);
        }
        recording.Flush();
    }

    CTrvCsvQuery Make(std::int64_t start, std::int64_t end, SCsvClock clock = {"Time [s]", {}, {}}) const {
        return {Address(), {CDateTimeSpan(start), CDateTimeSpan(end)}, std::move(clock), kColumns, m_target,
                nullptr};
    }
    SChannelAddress Address() const { return {m_path, EFileKind::tarin, test::kDepthNumber}; }
    // Nothing but the recording and what stood there before.
    std::size_t CountFiles() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_folder / ""), {}));
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder / "r.tarin", m_target = m_folder / "depth.csv";
    std::vector<SRow> m_rows;
};

TEST_F(CsvQuery, RowsReadBackToTheSameBits) {
    std::mt19937 random(9);
    for (int i = 0; i < 10; ++i) {
        const auto draw = [&] {
            return m_rows[random() % m_rows.size()].ticks - 1 + std::int64_t(random() % 3);
        };
        const auto [start, end] = std::minmax({draw(), draw()});
        CTrvCsvQuery query = Make(start, end);
        ASSERT_EQ(query.Execute(), EQueryEnd::done);
        std::istringstream text(ReadText(m_target));
        std::string line;
        ASSERT_TRUE(std::getline(text, line));
        EXPECT_EQ(line, "Time [s];Rejection;Depth [m]");
        std::uint64_t count = 0;
        for (const SRow& row : m_rows) {
            if (row.ticks < start || row.ticks > end) continue;
            ++count;
            ASSERT_TRUE(std::getline(text, line));
            const std::string head =
                CDateTimeSpan(row.ticks).ToText() + ';' + std::to_string(row.rejection) + ';';
            ASSERT_EQ(line.substr(0, head.size()), head);
            float depth = 0;
            const char* last = line.data() + line.size();
            ASSERT_EQ(std::from_chars(line.data() + head.size(), last, depth).ptr, last);
            ASSERT_EQ(depth, row.depth);
        }
        EXPECT_FALSE(std::getline(text, line));
        EXPECT_EQ(query.GetRowCount(), count);
        EXPECT_EQ(query.GetProgress(), 1);
    }
}

TEST_F(CsvQuery, WritesDatesUnitsAndHeadings) {
    test::CTestRecording recording(m_folder / "few.tarin");
    for (const double second : {-1.0, 0.0, 1.5}) recording.Depth(second, 2.5f, 7);
    recording.Flush();
    Outils_Temps::CDateTime midnight;
    midnight.SetDateTime(2026, 3, 15, 0, 0, 0, 0);
    const std::vector<SCsvColumn> columns = {{"Depth;\"raw\" [cm]", kDepth, 100, 1}};
    struct SCase {
        SCsvClock clock;
        const char* text;
    };
    const SCase cases[] = {
        {{"UTC", midnight, {}},
         "UTC;\"Depth;\"\"raw\"\" [cm]\"\n2026-03-14T23:59:59.0000000Z;251\n"
         "2026-03-15T00:00:00.0000000Z;251\n2026-03-15T00:00:01.5000000Z;251\n"},
        {{"Time [s]", {}, Seconds(10)},
         "Time [s];\"Depth;\"\"raw\"\" [cm]\"\n9.0000000;251\n10.0000000;251\n11.5000000;251\n"},
    };
    for (const SCase& row : cases) {
        CTrvCsvQuery query({recording.GetPath(), EFileKind::tarin, test::kDepthNumber},
                           {Seconds(-9), Seconds(9)}, row.clock, columns, m_target, nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::done);
        EXPECT_EQ(ReadText(m_target), row.text);
    }
}

// Wherever the cancellation meets the query, the target is the old file or the whole new one.
TEST_F(CsvQuery, ACancelledQueryLeavesTheOldFile) {
    CTrvCsvQuery whole = Make(0, m_rows.back().ticks);
    ASSERT_EQ(whole.Execute(), EQueryEnd::done);
    const std::string text = ReadText(m_target);
    for (int i = 0; i < 8; ++i) {
        std::ofstream(m_target) << "old";
        CTrvCsvQuery query = Make(0, m_rows.back().ticks);
        std::thread other([&query, i] {
            while (i > 0 && query.GetProgress() < i * 0.12) std::this_thread::yield();
            query.RequestCancel();
        });
        const EQueryEnd end = query.Execute();
        other.join();
        EXPECT_EQ(ReadText(m_target), end == EQueryEnd::done ? text : "old");
        EXPECT_EQ(CountFiles(), 2u);
    }
}

TEST_F(CsvQuery, UnwritableTargetsFailAndStay) {
    std::ofstream(m_target) << "old";
    const auto expectFault = [this](const std::filesystem::path& target) {
        SCOPED_TRACE(target);
        CTrvCsvQuery query(Address(), {Seconds(0), Seconds(9)}, {"t", {}, {}}, kColumns, target, nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::failed);
        EXPECT_TRUE(query.IsTargetAtFault());
        EXPECT_EQ(ReadText(m_target), "old");
        EXPECT_EQ(CountFiles(), 2u);
    };
    expectFault(m_folder / "no folder" / "depth.csv");
    expectFault(m_folder / "");
    expectFault("/dev/full");
    // A limit of the file size ends a write as a full disk does.
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{100, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    expectFault(m_target);
    EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &former), 0);
    std::signal(SIGXFSZ, handler);
}

TEST_F(CsvQuery, RefusesColumnsThatAreNone) {
    for (const std::uint32_t field : {0u, 99u}) {
        CTrvCsvQuery query(Address(), {Seconds(0), Seconds(9)}, {"t", {}, {}}, {{"x", field}}, m_target,
                           nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::failed);
        EXPECT_FALSE(query.IsTargetAtFault());
        EXPECT_EQ(CountFiles(), 1u);
    }
}

} // namespace
