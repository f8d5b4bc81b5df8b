#include "dataaccess/csv_query.h"

#include "dataaccess/depth_recording.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using test::Seconds;

namespace {

std::string ReadText(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class CsvQuery : public test::CDepthRecording {
  protected:
    // Values of any size, some of them no numbers.
    void RecordBits(bool damaged) {
        Record(damaged,
               [](auto& random) { return std::bit_cast<float>(static_cast<std::uint32_t>(random())); });
    }
    CTrvCsvQuery Make(SChannelAddress address, SClosedPeriod period,
                      SCsvClock clock = {"Time [s]", {}, {}}) const {
        return {std::move(address), period, std::move(clock), m_columns, m_target, nullptr};
    }
    CTrvCsvQuery MakeWhole() const {
        return Make(Address(), {CDateTimeSpan(0), CDateTimeSpan(m_rows.back().ticks)});
    }
    SChannelAddress Address() const { return {m_path, EFileKind::tarin, test::kDepthNumber}; }
    // Nothing but the recording and what was there before.
    std::size_t CountFiles() const {
        return static_cast<std::size_t>(
            std::distance(std::filesystem::directory_iterator(m_folder / ""), {}));
    }

    const std::vector<SCsvColumn> m_columns = {{"Rejection", kRejection}, {"Depth [m]", kDepth}};
    std::filesystem::path m_target = m_folder / "depth.csv";
};

TEST_F(CsvQuery, EveryPacketReadsBackToItsBits) {
    for (const bool damaged : {false, true}) {
        m_rows.clear();
        RecordBits(damaged);
        ForEachWindow(30, [this](const auto& address, const auto& period, const auto& rows) {
            CTrvCsvQuery query = Make(address, period);
            ASSERT_EQ(query.Execute(), EQueryEnd::done);
            EXPECT_EQ(query.GetRowCount(), rows.size());
            EXPECT_EQ(query.GetProgress(), 1);
            std::istringstream text(ReadText(m_target));
            std::string line;
            ASSERT_TRUE(std::getline(text, line));
            EXPECT_EQ(line, "Time [s];Rejection;Depth [m]");
            for (const auto& row : rows) {
                ASSERT_TRUE(std::getline(text, line));
                const std::string head =
                    CDateTimeSpan(row.ticks).ToText() + ';' + std::to_string(row.rejection) + ';';
                ASSERT_EQ(line.substr(0, head.size()), head);
                float depth = 0;
                const char* last = line.data() + line.size();
                ASSERT_EQ(std::from_chars(line.data() + head.size(), last, depth).ptr, last);
                ASSERT_TRUE(depth == row.depth || (std::isnan(depth) && std::isnan(row.depth)));
            }
            EXPECT_FALSE(std::getline(text, line));
        });
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
    RecordBits(false);
    CTrvCsvQuery whole = MakeWhole();
    ASSERT_EQ(whole.Execute(), EQueryEnd::done);
    const std::string text = ReadText(m_target);
    for (int i = 0; i < 8; ++i) {
        std::ofstream(m_target) << "old";
        CTrvCsvQuery query = MakeWhole();
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
    RecordBits(false);
    std::ofstream(m_target) << "old";
    const auto expectFault = [this](const std::filesystem::path& target) {
        SCOPED_TRACE(target);
        CTrvCsvQuery query(Address(), {Seconds(0), Seconds(9)}, {"t", {}, {}}, m_columns, target, nullptr);
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
    RecordBits(false);
    for (const std::uint32_t field : {0u, 99u}) {
        CTrvCsvQuery query(Address(), {Seconds(0), Seconds(9)}, {"t", {}, {}}, {{"x", field}}, m_target,
                           nullptr);
        EXPECT_EQ(query.Execute(), EQueryEnd::failed);
        EXPECT_FALSE(query.IsTargetAtFault());
        EXPECT_EQ(CountFiles(), 1u);
    }
}

} // namespace
