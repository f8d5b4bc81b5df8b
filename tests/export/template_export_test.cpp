#include "export/template_export.h"

#include "export/template_values.h"
#include "export_fixture.h"

namespace Exportation {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class TemplateExport : public ExportTest {
  protected:
    void SaveTemplate(const std::string& text) const { std::ofstream(Path("t.tarudt")) << text; }
    // A template with this primary channel, these further elements and this line.
    void Describe(const std::string& line, const std::string& more = {}) const {
        SaveTemplate(
            "<exportTemplate>\n<output lineEnd=\"lf\"/>\n<primaryInput primaryChannel=\"GPS_1\"/>\n" + more +
            "\n<line>" + line + "</line>\n</exportTemplate>");
    }
    std::vector<std::string> Export(std::string_view source = "in.tarin") {
        const ERunEnd end = Run(kTemplateExporter, {"/t", Name("t.tarudt"), Name(source), Name("out")});
        EXPECT_EQ(end, ERunEnd::finished) << monitor.texts;
        return Split(Load("out"), '\n');
    }

    // Fixes each second; the depth begins after the first, the navigation has a gap.
    void Record() const {
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(Path("in.tarin"),
                                  std::vector<std::string_view>{"GPS_1", "DEPTH", "NELIX_NAV", "UTC"}));
        ASSERT_TRUE(writer.Write("UTC", MakeUtc(-1, 31, 23, 59, 57)));
        const auto write = [&](std::string_view channel, const CPacketMaker& packet) {
            ASSERT_TRUE(writer.Write(channel, packet));
        };
        const auto heading = [](double at, double value) {
            CPacketMaker packet("NELIX_NAV", at);
            packet.SetAll({{"Heading", value}, {"Roll", value - 360}});
            return packet;
        };
        const auto depth = [](double at, double value) {
            CPacketMaker packet("DEPTH", at);
            packet.Set("Depth", value);
            return packet;
        };
        write("NELIX_NAV", heading(-0.5, 359));
        write("NELIX_NAV", heading(0.5, 1));
        write("NELIX_NAV", heading(1.5, 358));
        write("DEPTH", depth(0.5, 10));
        for (int i = 0; i < 4; ++i) {
            CPacketMaker packet("GPS_1", i == 2 ? 1.9996 : i);
            packet.SetAll({{"Latitude", 48.5 + i}, {"Longitude", 2.25}, {"Altitude", -35}, {"GPS mode", 4}});
            write("GPS_1", packet);
        }
        write("DEPTH", depth(1.5, 20));
        write("DEPTH", depth(2.5, 20.5));
        ASSERT_TRUE(writer.Close());
    }
};

TEST_F(TemplateExport, FieldsFollowTheirForm) {
    Record();
    const struct {
        std::string field;
        std::string_view first;
    } rows[] = {
        {"name=\"Latitude\"", "48.5"},
        {"name=\"Latitude\" precision=\"3\"", "48.500"},
        {"name=\"Latitude\" precision=\"3\" decimalSign=\",\" width=\"9\"", "   48,500"},
        {"name=\"Latitude\" precision=\"1\" width=\"7\" align=\"left\"", "48.5   "},
        {"name=\"Altitude\" precision=\"1\" width=\"8\" fill=\"zero\"", "-00035.0"},
        {"name=\"Altitude\" unit=\"ft\" precision=\"2\"", "-114.83"},
        {"name=\"Longitude\" unit=\"radian\" precision=\"6\"", "0.039270"},
        {"name=\"Longitude\" sign=\"always\"", "+2.25"},
        {"name=\"Delay\" precision=\"1\"", "0.0"},
        {"name=\"GPS mode\" width=\"3\"", "  4"},
        {"name=\"date\" precision=\"2\"", "0.00"},
        {"name=\"lineNumber\"", "1"},
        {"name=\"utc\" pattern=\"yyyy-MM-dd HH:mm:ss.f DDD\"", "2026-03-31 23:59:58.0 090"},
        {"name=\"localTime\" offset=\"+02:30\" pattern=\"ddMMyy-HHmm\"", "010426-0229"},
        {"name=\"localTime\" offset=\"-01:00\" pattern=\"HH:mm\"", "22:59"},
        // Projected by gdaltransform of GDAL.
        {"name=\"utmZone\"", "31"},
        {"name=\"utmEasting\" precision=\"3\"", "444596.303"},
        {"name=\"utmNorthing\" precision=\"3\"", "5372147.168"},
        {"name=\"utmNorthing\" hemisphere=\"south\" precision=\"3\"", "15372147.168"},
        {"name=\"utmEasting\" zone=\"30\" precision=\"3\"", "887761.053"},
        {"name=\"geocentricX\" precision=\"3\"", "4230951.321"},
        {"name=\"geocentricY\" precision=\"3\"", "166234.530"},
        {"name=\"geocentricZ\" precision=\"3\" unit=\"km\"", "4753.871"},
    };
    for (const auto& row : rows) {
        Describe("<field " + row.field + "/>");
        EXPECT_EQ(Export().at(0), row.first) << row.field;
    }
}

TEST_F(TemplateExport, FurtherChannelsAreInterpolated) {
    Record();
    const std::string inputs =
        "<input channel=\"DEPTH\" maxGap=\"1.5\"/><input channel=\"NELIX_NAV\" name=\"n\"/>"
        "<input channel=\"DEPTH\" name=\"near\" interpolation=\"nearest\" maxGap=\"0.55\"/>";
    const struct {
        std::string field;
        std::vector<std::string> values;
    } rows[] = {
        // Begins late; the last packet is before the last fix.
        {"name=\"Depth\" input=\"DEPTH\" precision=\"2\" empty=\"none\"", {"none", "15.00", "20.25", "none"}},
        {"name=\"Depth\" input=\"near\" precision=\"1\" empty=\"-\"", {"10.0", "10.0", "20.0", "20.5"}},
        {"name=\"Heading\" input=\"n\" precision=\"1\"", {"0.0", "359.5", "", ""}}, // through 0 both ways
        {"name=\"Roll\" input=\"n\" precision=\"1\"", {"0.0", "-0.5", "", ""}},
        {"name=\"utc\" pattern=\"dd HH:mm:ss.fff\"",
         {"31 23:59:58.000", "31 23:59:59.000", "01 00:00:00.000", "01 00:00:01.000"}}, // rounds into the day
    };
    for (const auto& row : rows) {
        Describe("<field " + row.field + "/>", inputs);
        EXPECT_EQ(Export(), row.values) << row.field;
    }
}

TEST_F(TemplateExport, FaultsNameTheirLine) {
    Record();
    const std::string head = "<exportTemplate>\n<primaryInput primaryChannel=\"GPS_1\"/>\n";
    const std::string tail = "\n</exportTemplate>";
    const struct {
        std::string text;
        std::string_view message;
    } rows[] = {
        {"<a>\n<b></a>", "line 2: it is no XML"},
        {"<other/>", "line 1: the root element must be exportTemplate, this one is other"},
        {"<exportTemplate>\n<line/>" + tail, "the element primaryInput is missing in exportTemplate"},
        {head + tail, "the element line is missing"},
        {"<exportTemplate>\n\n<primaryInput primaryChannel=\"GPS_3\"/><line/>" + tail,
         "line 3: the source has no channel GPS_3, its channels are: GPS_1, DEPTH"},
        {head + "<line>\n<field name=\"Depht\"/></line>" + tail,
         "line 4: the channel GPS_1 has no field Depht"},
        {head + "<line><field name=\"Altitude\" unit=\"fathom\"/></line>" + tail,
         "line 3: Altitude has no unit \"fathom\", possible are: m, cm"},
        {head + "<line><field name=\"Altitude\" input=\"x\"/></line>" + tail, "no input has the name x"},
        {head + "<line><field name=\"Altitude\" colour=\"x\"/></line>" + tail,
         "the attribute colour is not known"},
        {head + "<line><field/></line>" + tail, "the attribute name is missing"},
        {head + "<line><field name=\"utc\"/></line>" + tail, "the attribute pattern is missing"},
        {head + "<lines/>" + tail, "line 3: the element lines is not known here"},
        {head + "<output encoding=\"ebcdic\"/><line/>" + tail,
         "encoding cannot be \"ebcdic\", possible are: utf-8"},
        {head + "<output encoding=\"ascii\"/>\n<line><text>°</text></line>" + tail,
         "line 4: ° is not text of the encoding ascii"},
        {head + "<line><field name=\"utmZone\" zone=\"61\"/></line>" + tail, "zone cannot be \"61\""},
        {head + "<input channel=\"DEPTH\"/><line><field name=\"utmZone\" input=\"DEPTH\"/></line>" + tail,
         "utmZone needs positions, the channel DEPTH has none"},
    };
    for (const auto& row : rows) {
        SaveTemplate(row.text);
        EXPECT_EQ(Run(kTemplateExporter, {"/t", Name("t.tarudt"), Name("in.tarin"), Name("out")}),
                  ERunEnd::failed);
        EXPECT_THAT(monitor.texts, HasSubstr(row.message)) << row.text;
    }
    EXPECT_EQ(Run(kTemplateExporter, {"/t", Name("none"), Name("in.tarin"), Name("out")}), ERunEnd::failed);
    EXPECT_THAT(ListFolder(), ElementsAre("in.tarin", "t.tarudt"));
}

TEST_F(TemplateExport, OutputHasTheEncodingAskedFor) {
    Record();
    const struct {
        std::string encoding, bytes;
    } rows[] = {{"utf-8", "\xC2\xB0"}, {"windows-1252", "\xB0"}, {"iso-8859-1", "\xB0"}};
    for (const auto& row : rows) {
        SaveTemplate(
            "<exportTemplate><output encoding=\"" + row.encoding +
            "\"/><primaryInput primaryChannel=\"DEPTH\"/><header>a°</header><line><text> </text></line>"
            "<footer>b</footer></exportTemplate>");
        Export();
        EXPECT_EQ(Load("out"), "a" + row.bytes + "\r\n \r\n \r\n \r\nb\r\n");
    }
}

// The templates that come with the system, against lines computed by hand.
TEST_F(TemplateExport, ShippedTemplatesGiveTheirLines) {
    Record();
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(Path("in.tarout"), std::vector<std::string_view>{"MORVEX_STD"}));
    CPacketMaker packet("MORVEX_STD", 1.25);
    packet.SetAll({{"Latitude0", -48.5},
                   {"Longitude0", 2.25},
                   {"Altitude0", 12.345},
                   {"Heading", 359.996},
                   {"Roll", -1.5},
                   {"Pitch", 0.25},
                   {"UTC Year", 2026},
                   {"UTC Month", 12},
                   {"UTC Day", 31},
                   {"UTC Hour", 23},
                   {"UTC Minute", 59},
                   {"UTC Second", 1.25}});
    ASSERT_TRUE(writer.Write("MORVEX_STD", packet) && writer.Close());
    const struct {
        std::string name;
        std::string_view source, line;
    } rows[] = {
        {"plain_track", "in.tarout", "2026-12-31T23:59:01.250Z;-48.5000000000;2.2500000000;12.345\r"},
        {"survey_line", "in.tarout",
         "31/12/2026 23:59:01.250  31  444596.303  4627852.832    12.35    0.00   -1.50   +0.25\r"},
        {"sensor_log", "in.tarin", "000001\t0.000\t23:59:58.00\t48.50000000\t2.25000000\t4\t-\t0.00"},
    };
    for (const auto& row : rows) {
        std::filesystem::copy_file(TEMPLATES "/" + row.name + ".tarudt", Path("t.tarudt"),
                                   std::filesystem::copy_options::overwrite_existing);
        EXPECT_EQ(Export(row.source).at(1), row.line) << row.name;
    }
}

} // namespace
} // namespace Exportation
