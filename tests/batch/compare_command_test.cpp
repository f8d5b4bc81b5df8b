#include "batch/batch_fixture.h"

#include "recording/recording_writer.h"
#include "xpf/packets.h"
#include "xpf/tarout_layouts.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

namespace {

using Persistance_Xpf::CXpfTaroutMorvexStdPacketV2;
using Persistance_Xpf::kMorvexStdLayout;

class CompareCommand : public test::Batch {
  protected:
    struct SRow {
        double time, latitude, longitude, heading;
    };
    // A result with deviations of a metre and a degree.
    void Write(std::string_view name, const std::vector<SRow>& rows) const {
        constexpr std::string_view channels[] = {"MORVEX_STD"};
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path(name), channels));
        for (const SRow& row : rows) {
            CXpfTaroutMorvexStdPacketV2 packet;
            packet.SetDate(0, Outils_Temps::CDateTimeSpan::FromSeconds(row.time));
            const std::pair<std::string_view, double> fields[] = {
                {"Latitude0", row.latitude}, {"Longitude0", row.longitude}, {"Heading", row.heading},
                {"Std. dev. north", 1.0},    {"Std. dev. east", 1.0},       {"Std. dev. heading", 1.0}};
            for (const auto& [field, value] : fields)
                packet.SetDouble(kMorvexStdLayout.IndexOf(field), value);
            ASSERT_TRUE(writer.Write("MORVEX_STD", packet));
        }
        ASSERT_TRUE(writer.Close());
    }
};

// A degree of latitude at the equator is 110574 m, of longitude 111320 m.
TEST_F(CompareCommand, ReportsErrorsOnOneTimeBase) {
    Write("truth.tarout", {{0, 0, 179.99999, 359}, {2, 0, -179.99999, 3}, {4, 0, -179.99999, 3}});
    Write("result.tarout", {{-1, 5, 0, 0},                    // before the truth begins
                            {1, 1 / 110574.3, 180, 2},        // 1 m north, 1 degree
                            {3, 3 / 110574.3, -179.99999, 3}, // 3 m north
                            {5, 5, 5, 5}});                   // after its end
    Succeed("compare /result.tarout /truth.tarout --fields north,east,heading,along");
    const auto lines = Lines();
    ASSERT_EQ(lines.size(), 5u);
    const auto number = [&](std::size_t line, std::size_t cell) {
        return std::stod(Cells(lines[line])[cell]);
    };
    EXPECT_EQ(Cells(lines[1])[0], "north");
    EXPECT_EQ(number(1, 2), 2);             // count
    EXPECT_NEAR(number(1, 3), 2.0, 1e-4);   // mean
    EXPECT_NEAR(number(1, 4), 1.0, 1e-4);   // deviation
    EXPECT_NEAR(number(1, 5), 2.236, 1e-3); // root mean square
    EXPECT_NEAR(number(1, 6), 3.0, 1e-4);   // largest
    EXPECT_EQ(number(1, 7), 3.0);           // when
    EXPECT_EQ(number(1, 9), 50.0);          // within one stated deviation
    EXPECT_EQ(number(1, 11), 100.0);        // within three
    EXPECT_NEAR(number(1, 12), 5.0, 1e-3);  // normalised
    EXPECT_NEAR(number(2, 6), 0.0, 1e-6) << "longitudes go the short way";
    EXPECT_NEAR(number(3, 3), 0.5, 1e-9) << "and so do headings";
    EXPECT_NEAR(number(4, 6), 3.0 * std::cos(3.0 / 57.29578), 1e-3) << "along the bow of the truth";

    Succeed("compare /result.tarout /truth.tarout --fields north --from 2 --to 4 --json");
    EXPECT_THAT(m_out, HasSubstr("\"count\":1"));
}

TEST_F(CompareCommand, SaysWhyThereIsNothingToCompare) {
    Write("a.tarout", {{0, 0, 0, 0}, {1, 0, 0, 0}});
    Write("late.tarout", {{100, 0, 0, 0}, {101, 0, 0, 0}});
    Write("gap.tarout", {{0.5, 0, 0, 0}, {80, 0, 0, 0}});
    for (const auto& [line, status, text] :
         {std::tuple{"compare /a.tarout /late.tarout", 1, "no result lies in this period"},
          {"compare /a.tarout /a.tarout --from 50", 1, "no result lies in this period"},
          {"compare /late.tarout /gap.tarout", 1, "no result lies in this period"},
          {"compare /a.tarout /none.tarout", 1, "none.tarout"},
          {"compare /a.tarout /a.tarout --fields north,south", 2, "there is no difference south"},
          {"compare /a.tarout", 2, "compare RESULT TRUTH"}}) {
        EXPECT_EQ(Run(line), status) << line;
        EXPECT_THAT(m_error, HasSubstr(text)) << line;
    }
}

} // namespace
