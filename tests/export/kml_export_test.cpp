#include "export/kml_export.h"

#include "export/kml_writer.h"
#include "export_fixture.h"

#include <cmath>
#include <map>

#include <pugixml.hpp>

namespace Exportation {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;

class KmlExport : public ExportTest {
  protected:
    void Record(int fixes, bool withUtc = true) const {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path("in.tarin"), std::vector<std::string_view>{"GPS_1", "UTC"}));
        ASSERT_TRUE(!withUtc || writer.Write("UTC", MakeUtc(0, 1, 12, 0, 0)));
        for (int i = 0; i < fixes; ++i) {
            CPacketMaker packet("GPS_1", i);
            packet.SetAll({{"Latitude", 48 + i * 1e-6},
                           {"Longitude", 179.999 + i * 1e-4},
                           {"Altitude", 10 + i % 100},
                           {"GPS mode", i % 10}});
            ASSERT_TRUE(writer.Write("GPS_1", packet));
        }
        ASSERT_TRUE(writer.Close());
    }
    ERunEnd Export(std::vector<std::string> switches) {
        switches.insert(switches.end(), {Name("in.tarin"), Name("out.kml")});
        return Run(kInputToKml, switches);
    }
};

TEST_F(KmlExport, AnotherProgramCountsThePoints) {
    Record(25);
    ASSERT_EQ(Export({"/track", "on", "/clampToGround", "off", "/asf", "2", "/ao", "-5"}), ERunEnd::finished);
    const std::string seen = Ask("ogrinfo -al " + Name("out.kml") + " 2>/dev/null");
    EXPECT_THAT(seen, HasSubstr("Feature Count: 26")) << "with the track";
    EXPECT_THAT(seen, HasSubstr("Extent: (-179.999900, 48.000000) - (180.000000, 48.000024)"));
    EXPECT_THAT(seen, HasSubstr("POINT Z (179.999 48.0 15)"));
    EXPECT_THAT(seen, HasSubstr("timestamp (DateTime) = 2026/03/01 12:00:24"));
    EXPECT_THAT(seen, HasSubstr("altitudeMode (String) = absolute"));
    EXPECT_THAT(seen, HasSubstr("GPS_mode (String) = 4"));
    EXPECT_THAT(seen, HasSubstr("LINESTRING Z (179.999 48.0 15"));
}

TEST_F(KmlExport, SwitchesShowInTheText) {
    Record(3);
    const struct {
        std::vector<std::string> switches;
        std::string_view has, hasNot;
    } rows[] = {
        {{}, "<altitudeMode>clampToGround</altitudeMode>", "gx:Track>"},
        {{"/showTime", "off"}, "<Placemark><styleUrl>", "<TimeStamp>"},
        {{"/showTime", "off", "/track", "on"}, "<LineString>", "gx:Track>"},
        {{"/track", "on", "/trackColor", "80102030"}, "<LineStyle><color>80302010</color>", "ffffffff"},
        {{"/pointColor", "ffffaa55"}, "<IconStyle><color>ff55aaff</color>", "#q0"},
        {{"/toffset", "3600.0000000"}, "<when>2026-03-01T12:00:02.000Z</when>", "T13:"},
        {{"/toffset", "10.0000000", "/utc", "2020-01-01T00:00:00.0000000"},
         "<when>2020-01-01T00:00:12.000Z</when>",
         "2026"},
        {{"/from", "1", "/to", "1"}, "T12:00:01", "T12:00:02"},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(Export(row.switches), ERunEnd::finished) << monitor.texts;
        EXPECT_THAT(Load("out.kml"), HasSubstr(row.has)) << testing::PrintToString(row.switches);
        EXPECT_THAT(Load("out.kml"), Not(HasSubstr(row.hasNot))) << testing::PrintToString(row.switches);
    }
    EXPECT_EQ(Export({"/trackColor", "red"}), ERunEnd::failed);
    EXPECT_EQ(Export({"/c", "GPS_9"}), ERunEnd::failed);
    EXPECT_EQ(Export({"/c", "UTC"}), ERunEnd::failed);
    EXPECT_EQ(Export({"/utc", "yesterday"}), ERunEnd::failed);
}

// The order of elements that the schema of KML 2.2 demands.
TEST_F(KmlExport, ElementsFollowTheSchema) {
    Record(5);
    ASSERT_EQ(Export({"/track", "on"}), ERunEnd::finished);
    const std::map<std::string, std::vector<std::string>> order = {
        {"Document", {"name", "Style", "Folder"}},
        {"Folder", {"name", "Placemark"}},
        {"Placemark", {"name", "TimeStamp", "styleUrl", "ExtendedData", "Point", "gx:Track"}},
        {"gx:Track", {"altitudeMode", "when", "gx:coord"}},
        {"Point", {"altitudeMode", "coordinates"}},
        {"Style", {"IconStyle", "LabelStyle", "LineStyle"}},
    };
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(Path("out.kml").c_str()));
    const std::function<void(pugi::xml_node)> check = [&](pugi::xml_node node) {
        const auto names = order.find(node.name());
        std::size_t place = 0;
        for (const pugi::xml_node child : node.children()) {
            if (names != order.end()) {
                const auto found = std::ranges::find(names->second, child.name());
                ASSERT_NE(found, names->second.end()) << node.name() << '/' << child.name();
                const auto at = static_cast<std::size_t>(found - names->second.begin());
                EXPECT_GE(at, place) << node.name() << '/' << child.name();
                place = at;
            }
            check(child);
        }
    };
    check(document.document_element());
    const pugi::xml_node track = document.select_node("//*[name()='gx:Track']").node();
    EXPECT_EQ(std::distance(track.children("when").begin(), track.children("when").end()), 5);
    EXPECT_EQ(std::distance(track.children("gx:coord").begin(), track.children("gx:coord").end()), 5);
}

TEST_F(KmlExport, LongRecordingsStayOpenable) {
    Record(25'000);
    ASSERT_EQ(Export({}), ERunEnd::finished);
    EXPECT_THAT(monitor.codes, Contains(EText::exportDecimated));
    EXPECT_THAT(monitor.texts, HasSubstr("Written: 8334 packets"));
    ASSERT_EQ(Export({"/dec", "1", "/track", "on"}), ERunEnd::finished);
    EXPECT_THAT(monitor.codes, Contains(EText::exportKmlParts));
    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(Path("out.kml").c_str()));
    EXPECT_EQ(document.select_nodes("//Folder").size(), 3u);
    EXPECT_EQ(document.select_nodes("//Point").size(), 25'000u);
    EXPECT_EQ(document.select_nodes("//*[name()='gx:coord']").size(), 25'002u) << "the pieces join";
}

TEST_F(KmlExport, WithoutUtcThereAreNoTimes) {
    Record(3, false);
    ASSERT_EQ(Export({"/track", "on"}), ERunEnd::finished);
    EXPECT_THAT(monitor.codes, Contains(EText::exportNoUtcTimes));
    EXPECT_THAT(Load("out.kml"), Not(HasSubstr("<when>")));
    EXPECT_THAT(Load("out.kml"), HasSubstr("<LineString>"));
}

TEST_F(KmlExport, ResultGivesItsPoint) {
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(Path("in.tarin"), std::vector<std::string_view>{"MORVEX_STD"}));
    CPacketMaker packet("MORVEX_STD", 0);
    packet.SetAll({{"Latitude2", 12.5}, {"Longitude2", 33.25}, {"Latitude0", 1}, {"Heading", 359.875}});
    ASSERT_TRUE(writer.Write("MORVEX_STD", packet) && writer.Close());
    for (const std::string channel : {"NELIX_NAV", "MORVEX_STD"}) {
        ASSERT_EQ(Run(kResultToKml, {"/c", channel, "/lv", "2", Name("in.tarin"), Name("out.kml")}),
                  ERunEnd::finished);
        EXPECT_THAT(Load("out.kml"), HasSubstr("<coordinates>33.2500000000,12.5000000000,0.0000<"));
        EXPECT_THAT(Load("out.kml"), HasSubstr("<Data name=\"Heading\"><value>359.875<"));
    }
}

} // namespace
} // namespace Exportation
