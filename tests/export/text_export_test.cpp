#include "export/text_export.h"

#include "export_fixture.h"

#include <cmath>
#include <csignal>

#include <sys/resource.h>

namespace Exportation {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class TextExport : public ExportTest {
  protected:
    using Table = std::vector<std::vector<std::string>>;

    Table Read(std::string_view name) const {
        Table table;
        for (const std::string& line : Split(Ask("python3 " READ_BACK " csv " + Name(name)), '\n'))
            table.push_back(Split(line + '\t', '\t'));
        return table;
    }
    // The cell of a row under a heading, as the number that another program reads.
    static double Cell(const Table& table, std::size_t row, std::string_view heading) {
        const auto found = std::ranges::find(table[0], heading);
        if (found == table[0].end()) return std::nan("");
        return std::strtod(table[row].at(static_cast<std::size_t>(found - table[0].begin())).c_str(),
                           nullptr);
    }

    void RecordInput(int fixes) const {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path("in.tarin"), std::vector<std::string_view>{"UTC", "DEPTH", "GPS_1"}));
        ASSERT_TRUE(writer.Write("UTC", MakeUtc(-0.5, 1, 23, 59, 59.5)));
        for (int i = 0; i < fixes; ++i) ASSERT_TRUE(writer.Write("GPS_1", Fix(i)));
        ASSERT_TRUE(writer.Close());
    }
    static CPacketMaker Fix(int i) {
        CPacketMaker packet("GPS_1", i * 0.1);
        packet.SetAll({{"Latitude", 48.0 + i / 3.0}, {"Longitude", -0.1 * i}, {"Altitude", 1e-7f * i}});
        return packet;
    }
    void RecordResult() const {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(
            writer.Create(Path("in.tarout"), std::vector<std::string_view>{"MORVEX_STD", "MORVEX_EXT"}));
        const auto standard = [](double at) { return CPacketMaker("MORVEX_STD", at); };
        const auto extended = [](double at) {
            CPacketMaker packet("MORVEX_EXT", at);
            packet.Set("Gyro X", at * 10);
            return packet;
        };
        CPacketMaker first = standard(1);
        std::memcpy(first.GetPayload() + kMorvexStdLayout.OffsetOf("Sensor"), "a;\"b\nc", 6);
        // The extended packet follows, precedes, and is missing.
        ASSERT_TRUE(writer.Write("MORVEX_STD", first) && writer.Write("MORVEX_EXT", extended(1)) &&
                    writer.Write("MORVEX_EXT", extended(2)) && writer.Write("MORVEX_STD", standard(2)) &&
                    writer.Write("MORVEX_STD", standard(3)) && writer.Write("MORVEX_EXT", extended(4)) &&
                    writer.Close());
    }
};

TEST_F(TextExport, ValuesAreThoseOfThePackets) {
    RecordInput(50);
    ASSERT_EQ(Run(kInputToText, {Name("in.tarin"), Name("out.csv")}), ERunEnd::finished) << monitor.texts;
    EXPECT_THAT(ListFolder(), ElementsAre("in.tarin", "out.csv", "out_GPS_1.csv", "out_UTC.csv"));
    const Table table = Read("out_GPS_1.csv");
    ASSERT_EQ(table.size(), 51u);
    EXPECT_THAT(table[0], Contains("Std. dev. north [m]"));
    for (int i = 0; i < 50; ++i) {
        const auto row = static_cast<std::size_t>(i) + 1;
        double expected = 0;
        Fix(i).Get().GetDouble(kGpsLayout.IndexOf("Altitude"), expected);
        EXPECT_EQ(Cell(table, row, "Latitude [°]"), 48.0 + i / 3.0);
        EXPECT_EQ(Cell(table, row, "Longitude [°]"), -0.1 * i);
        EXPECT_EQ(static_cast<float>(Cell(table, row, "Altitude [m]")), static_cast<float>(expected));
    }
    EXPECT_EQ(table[1][0], "0.0000000");
    EXPECT_EQ(table[1][1], "2026-03-02T00:00:00.0000000Z") << "the next day begins";
    EXPECT_THAT(Read("out.csv")[2], ElementsAre("GPS_1", "50", "0.0000000", "4.9000000", "out_GPS_1.csv"));
}

TEST_F(TextExport, SwitchesChooseRowsAndHeader) {
    RecordInput(50);
    const struct {
        std::vector<std::string> switches;
        std::size_t lines;
        std::string_view first;
    } rows[] = {
        {{"/header", "off"}, 50, "0.0000000"},
        {{"/header", "off", "/from", "1.000", "/to", "2.000"}, 11, "1.0000000"},
        {{"/header", "off", "/dec", "7"}, 8, "0.0000000"},
        {{"/header", "off", "/from", "4.9"}, 1, "4.9000000"},
    };
    for (const auto& row : rows) {
        auto arguments = row.switches;
        arguments.insert(arguments.end(), {Name("in.tarin"), Name("out.csv")});
        ASSERT_EQ(Run(kInputToText, arguments), ERunEnd::finished) << monitor.texts;
        const Table table = Read("out_GPS_1.csv");
        EXPECT_EQ(table.size(), row.lines) << testing::PrintToString(row.switches);
        EXPECT_EQ(table[0][0], row.first);
    }
}

TEST_F(TextExport, InertialValuesJoinByDate) {
    RecordResult();
    ASSERT_EQ(Run(kResultToText, {"/imu", "on", Name("in.tarout"), Name("out.csv")}), ERunEnd::finished);
    const Table table = Read("out.csv");
    ASSERT_EQ(table.size(), 4u);
    EXPECT_EQ(Cell(table, 1, "Gyro X [rad/s]"), 10);
    EXPECT_EQ(Cell(table, 2, "Gyro X [rad/s]"), 20);
    EXPECT_EQ(table[3].size(), table[0].size());
    EXPECT_EQ(Cell(table, 3, "Gyro X [rad/s]"), 0) << "an empty cell";
    EXPECT_EQ(table[1][1], "a;\"b c");
    ASSERT_EQ(Run(kResultToText, {Name("in.tarout"), Name("out.csv")}), ERunEnd::finished);
    EXPECT_THAT(Load("out.csv"), Not(HasSubstr("Gyro")));
}

TEST_F(TextExport, RefusesWhatItCannotWrite) {
    RecordInput(3);
    RecordResult();
    std::ofstream(Path("text")) << "no packet file";
    std::filesystem::create_directory(Path("folder"));
    const struct {
        std::string source, target;
        EText text;
    } rows[] = {
        {"text", "out.csv", EText::exportSourceForeign},
        {"missing", "out.csv", EText::exportSourceUnreadable},
        {"in.tarout", "out.csv", EText::exportSourceForeign},
        {"in.tarin", "in.tarin", EText::targetIsSource},
        {"in.tarin", "folder", EText::targetIsFolder},
        {"in.tarin", "none/out.csv", EText::targetNotWritable},
    };
    const auto before = ListFolder();
    for (const auto& row : rows) {
        EXPECT_EQ(Run(kInputToText, {Name(row.source), Name(row.target)}), ERunEnd::failed);
        EXPECT_THAT(monitor.codes, Contains(row.text)) << monitor.texts;
    }
    EXPECT_EQ(Run(kInputToText, {"/from", "100", Name("in.tarin"), Name("out.csv")}), ERunEnd::failed);
    EXPECT_THAT(monitor.codes, ElementsAre(EText::exportNothing));
    EXPECT_EQ(ListFolder(), before);
}

TEST_F(TextExport, AStopLeavesNothing) {
    RecordInput(20'000);
    int asked = 0;
    monitor.goOn = [&] { return ++asked < 8; };
    EXPECT_EQ(Run(kInputToText, {Name("in.tarin"), Name("out.csv")}), ERunEnd::stopped);
    EXPECT_THAT(ListFolder(), ElementsAre("in.tarin"));
}

TEST_F(TextExport, PassesDamageAndCountsIt) {
    RecordInput(100);
    std::fstream file(Path("in.tarin"), std::ios::binary | std::ios::in | std::ios::out);
    constexpr int kFixSize = kGpsLayout.payloadSize + kPacketOverhead;
    file.seekp(-10 * kFixSize, std::ios::end).write("##", 2);
    file.close();
    ASSERT_EQ(Run(kInputToText, {Name("in.tarin"), Name("out.csv")}), ERunEnd::finished);
    EXPECT_EQ(Read("out_GPS_1.csv").size(), 100u) << "one packet is lost, and the heading is a line";
    EXPECT_THAT(monitor.texts, HasSubstr("damaged bytes: 1"));
}

TEST_F(TextExport, AFullDiskLeavesNothing) {
    RecordInput(20'000);
    const rlimit limit{1 << 20, RLIM_INFINITY};
    const auto former = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    const ERunEnd end = Run(kInputToText, {Name("in.tarin"), Name("out.csv")});
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_FSIZE, &none);
    std::signal(SIGXFSZ, former);
    EXPECT_EQ(end, ERunEnd::failed);
    EXPECT_THAT(monitor.codes, Contains(EText::exportWriteFailed));
    EXPECT_THAT(ListFolder(), ElementsAre("in.tarin"));
}

} // namespace
} // namespace Exportation
