#include "export_fixture.h"

namespace Exportation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr int kFixes = 2000;

// The programs run as the dialog runs them: nobody else links the geographic library.
class GeoExport : public ExportTest {
  protected:
    void SetUp() override {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path("in.tarout"), std::vector<std::string_view>{"MORVEX_STD"}));
        for (int i = 0; i < kFixes; ++i) {
            CPacketMaker packet("MORVEX_STD", i);
            packet.SetAll({{"Latitude1", -10 + i * 0.005},
                           {"Longitude1", 20 - i * 0.01},
                           {"Altitude1", 100 + i * 0.25},
                           {"Heave1", 0.5},
                           {"Speed east", 1.5},
                           {"Heading", 0.125 * i},
                           {"UTC Year", 2026},
                           {"UTC Month", 3},
                           {"UTC Day", 1},
                           {"UTC Minute", i / 60 % 60},
                           {"UTC Second", i % 60}});
            ASSERT_TRUE(writer.Write("MORVEX_STD", packet));
        }
        ASSERT_TRUE(writer.Close());
    }
    std::string Command(const std::string& switches, const std::string& target) const {
        return GEO_EXPORTER " " + switches + ' ' + Name("in.tarout") + ' ' + Name(target) + " 2>&1";
    }
};

TEST_F(GeoExport, AnotherProgramReadsEveryFormat) {
    const struct {
        std::string format, file;
        bool attributes, altitude;
        std::string_view last; // the last point, with its altitude
    } rows[] = {
        {"ESRI Shapefile", "t.shp", true, true, "POINT Z (0.01 -0.005 599.75)"},
        {"KML", "t.kml", true, true, "POINT Z (0.01 -0.005 599.75)"},
        {"GML", "t.gml", true, true, "POINT Z (0.01 -0.005 599.75)"},
        {"DXF", "t.dxf", false, true, "POINT Z (0.01 -0.005 599.75)"},
        {"Geoconcept", "t.gxt", true, true, "POINT Z (0.01 -0.005 6"}, // whole metres
        {"GMT", "t.gmt", true, true, "POINT Z (0.01 -0.005 599.75)"},
        {"MapInfo File", "t.tab", true, false, "POINT (0.0"},
        {"MapInfo File", "t.mif", true, false, "POINT (0.01 -0.005)"},
        {"DGN", "t.dgn", false, true, "599.75"}, // a line of no length
    };
    for (const auto& row : rows) {
        for (const bool is25d : {false, true}) {
            const std::string out =
                Ask(Command("/f \"" + row.format + "\" /lv 1 /motion yes /speed yes /orientation yes /25d " +
                                (is25d ? "yes" : "no"),
                            row.file));
            EXPECT_THAT(out, HasSubstr("Written: 2000 packets")) << row.format;
            const std::string seen = Ask("ogrinfo -al " + Name(row.file) + " 2>&1");
            EXPECT_THAT(seen, HasSubstr("Feature Count: 2000")) << row.format;
            double west = 0, south = 0, east = 0, north = 0;
            std::sscanf(seen.c_str() + seen.find("Extent:"), "Extent: (%lf, %lf) - (%lf, %lf)", &west, &south,
                        &east, &north);
            constexpr double kStep = 2e-6; // of a drawing with altitudes
            EXPECT_THAT((std::array{west, south, east, north}),
                        testing::Pointwise(testing::DoubleNear(kStep), {0.01, -10.0, 20.0, -0.005}))
                << row.format;
            EXPECT_EQ(seen.find(" Z (") != seen.npos, is25d && row.altitude) << row.format;
            EXPECT_TRUE(!is25d || seen.find(row.last) != seen.npos) << row.format;
            for (const std::string_view value : {"UTC (String) = 2026-03-01T00:33:19.0000000Z", "Altitude",
                                                 "Heave", "SpeedEast", "= 249.875"})
                EXPECT_EQ(seen.find(value) != seen.npos, row.attributes) << row.format << value;
        }
        std::filesystem::remove(Path(row.file));
    }
}

TEST_F(GeoExport, SwitchesChooseColumnsAndRows) {
    const struct {
        std::string switches;
        std::string_view has, hasNot;
    } rows[] = {
        {"", "Feature Count: 2000", "Heave"},
        {"/dec 7", "Feature Count: 286", "Roll"},
        {"/from 10 /to 19", "Feature Count: 10", "SpeedUp"},
        {"/toffset 5 /from 10 /to 19 /motion yes", "Date (Real) = 10.0", "Heading"},
        {"/utc 2020-02-28T23:59:59.5 /orientation yes", "UTC (String) = 2020-02-29T00:00:00.5000000Z",
         "2026-03"},
    };
    for (const auto& row : rows) {
        Ask(Command(row.switches, "t.shp"));
        const std::string seen = Ask("ogrinfo -al " + Name("t.shp"));
        EXPECT_THAT(seen, HasSubstr(row.has)) << row.switches;
        EXPECT_THAT(seen, Not(HasSubstr(row.hasNot))) << row.switches;
    }
}

TEST_F(GeoExport, AFullDiskLeavesNothing) {
    for (const std::string format :
         {"ESRI Shapefile", "KML", "GML", "DXF", "Geoconcept", "GMT", "MapInfo File", "DGN"}) {
        // The limit holds for the program only; what it reports is read here.
        const std::string seen =
            Ask("sh -c \"ulimit -f 48; trap '' XFSZ; " + Command("/f '" + format + "'", "t.x") + "\"; true");
        EXPECT_THAT(seen, HasSubstr("ERROR")) << format;
        EXPECT_THAT(ListFolder(), ElementsAre("in.tarout")) << format;
    }
}

} // namespace
} // namespace Exportation
