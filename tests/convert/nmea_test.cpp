#include "conversion_fixture.h"
#include "foundation/texts.h"

#include <cmath>

namespace {

using namespace test;
using Compagnon::EText;

std::string Sum(std::string body) {
    unsigned sum = 0;
    for (const char c : body) sum ^= static_cast<unsigned char>(c);
    std::array<char, 8> text;
    std::snprintf(text.data(), text.size(), "*%02X", sum);
    return "$" + body + text.data() + "\r\n";
}
std::string Gga(std::string_view time, std::string_view talker = "GP", std::string_view quality = "2") {
    return Sum(std::string(talker) + "GGA," + std::string(time) + ",4530.0000,N,00515.0000,W," +
               std::string(quality) + ",09,1.5,100.5,M,48.2,M,,");
}
std::string Zda(std::string_view time, std::string_view date = "14,05,2024") {
    return Sum("GPZDA," + std::string(time) + "," + std::string(date) + ",00,00");
}
std::string Gst(std::string_view time, std::string_view rest = "1,5,3,30,4.5,3.5,6") {
    return Sum("GPGST," + std::string(time) + "," + std::string(rest));
}

class NmeaTest : public ConversionTest {};

TEST_F(NmeaTest, FieldsFillThePacket) {
    const auto packets =
        Convert("Nmea2Tarin", "\xEF\xBB\xBF" + Zda("120000.25") + Gga("120000.25") + Gst("120000.25"));
    ASSERT_EQ(packets.at("GPS_1").size(), 1u);
    const SPacket& fix = packets.at("GPS_1")[0];
    const double a = 25, b = 9, turn = 30 * M_PI / 180;
    const std::pair<std::string_view, double> values[] = {
        {"Horizontal rejection", 3},
        {"Vertical rejection", 3},
        {"GPS mode", 2},
        {"Latitude", 45.5},
        {"Longitude", -5.25},
        {"Altitude", 100.5},
        {"Geoidal sep", 48.2f},
        {"Std. dev. north", 4.5},
        {"Std. dev. east", 3.5},
        {"Std. dev. altitude", 6},
        {"Covariance XY", static_cast<float>((a - b) * std::sin(turn) * std::cos(turn))}};
    for (const auto& [name, value] : values) EXPECT_DOUBLE_EQ(fix[name], value) << name;
    EXPECT_DOUBLE_EQ(fix.date, 43200.25);
    ASSERT_EQ(packets.at("UTC").size(), 1u);
    EXPECT_DOUBLE_EQ(packets.at("UTC")[0].date, 43200);
    EXPECT_DOUBLE_EQ(packets.at("UTC")[0]["UTC Hour"], 12);
}

// Dates of the fixes that come out of a log.
TEST_F(NmeaTest, OddLogsGiveWhatIsInThem) {
    const std::string z = Zda("120000"), g = Gga("120000"), next = Gga("120001"), third = Gga("120002");
    std::string wrong = Gga("120001");
    wrong[wrong.size() - 4] ^= 1;
    struct SRow {
        std::string_view rule;
        std::string log;
        std::vector<double> dates; // seconds after noon
        EText fault = EText::none;
    } const rows[] = {
        {"loggers put a time stamp first", "2024-05-14T12:00:00.1;COM3;" + z + "12:00:00 > " + g, {0}},
        {"noise between lines", z + "\x01\xff$\x02" + g + std::string(70000, '\x80') + "\n" + next, {0, 1}},
        {"errors before the position", Gst("120000") + z + g + Gst("120001") + next, {0, 1}},
        {"a date long after", g + next + third + Zda("120003"), {0, 1, 2}},
        {"two sentences on a line", z + g.substr(0, g.size() - 2) + next, {0, 1}},
        {"a cut last line", z + g + next.substr(0, 30), {0}},
        {"no date", g + next, {}, EText::faultUndated},
        {"no fix", z + g + Gga("120001", "GP", "0"), {0}, EText::faultNoFix},
        {"a wrong sum", z + g + wrong + third, {0, 2}, EText::faultCheckSum},
        {"a cut sentence", z + g + next.substr(0, 40) + "\r\n" + third, {0, 2}, EText::faultNoCheckSum},
        {"a repeated fix", z + g + g + next, {0, 1}, EText::faultRepeated},
        {"another talker in turn", z + g + next + Gga("120002", "GN") + Gga("120003", "GN"), {0, 1, 2, 3}},
        {"another receiver beside",
         z + g + Gga("120000", "GL") + next + Gga("120001", "GL"),
         {0, 1},
         EText::faultOtherReceiver},
        {"a receiver half a second off",
         z + g + next + Gga("120001.5", "GL") + third + Gga("120002.5", "GL"),
         {0, 1, 2},
         EText::faultOtherReceiver},
        {"date of RMC", Sum("GNRMC,120000,A,,,,,,,140524,,") + g, {0}},
        {"neighbours swapped", z + next + g + third, {0, 1, 2}},
        {"an old part again",
         z + g + next + third + g + third + Gga("120003"),
         {0, 1, 2, 3},
         EText::faultRepeated},
    };
    for (const SRow& row : rows) {
        const auto packets = Convert("Nmea2Tarin", row.log);
        std::vector<double> dates;
        if (packets.contains("GPS_1"))
            for (const SPacket& fix : packets.at("GPS_1")) dates.push_back(fix.date - 43200);
        EXPECT_EQ(dates, row.dates) << row.rule << '\n' << m_monitor.all;
        EXPECT_EQ(Said(row.fault) == "0", row.fault == EText::none) << row.rule << '\n' << m_monitor.all;
        if (row.fault == EText::none) {
            EXPECT_EQ(m_monitor.all.find("Skipped"), std::string::npos) << row.rule << '\n' << m_monitor.all;
        }
    }
    EXPECT_EQ(Convert("Nmea2Tarin", z + g + wrong, {"/verifyChecksum", "no"}).at("GPS_1").size(), 2u);
}

// One log as many loggers write it.
TEST_F(NmeaTest, LoggersChangeNothing) {
    std::vector<std::string> sentences;
    for (int second = 0; second < 30; ++second) {
        const std::string time = "1200" + std::to_string(second + 10);
        for (std::string sentence : {Gga(time), Gst(time), Zda(time)})
            sentences.push_back(sentence.substr(0, sentence.size() - 2));
    }
    const auto join = [&sentences](std::string_view before, std::string_view after) {
        std::string log;
        for (const std::string& sentence : sentences) log.append(before).append(sentence).append(after);
        return log;
    };
    const std::string first = join("", "\r\n"), noise(300, '\x80');
    const auto expected = Convert("Nmea2Tarin", first)["GPS_1"];
    ASSERT_EQ(expected.size(), 30u);
    const std::pair<std::string_view, std::string> logs[] = {
        {"LF", join("", "\n")},
        {"CR", join("", "\r")},
        {"CR CR LF", join("", "\r\r\n")},
        {"no end of the last line", first.substr(0, first.size() - 2)},
        {"byte order mark", "\xEF\xBB\xBF" + first},
        {"a stamp before", join("2024-05-14 12:00:10.123 COM1: ", "\r\n")},
        {"a stamp behind", join("", "\t1715688010.5\n")},
        {"cells in quotes", join("\"GPS\";\"", "\";\"ok\"\n")},
        {"all on one line", join("", " ")},
        {"noise between lines", join("", "\r\n" + noise + "$GP\x01\x02\n\n")},
        {"noise before the sentence", join(noise + "\x01$\x02", "\r\n")},
        {"other devices between", join("", "\n!AIVDM,1,1,,A,x,0*00\n$PSAT,GBS*15\n$HEHDT,12.5,T\n")},
    };
    for (const auto& [rule, log] : logs) {
        const auto fixes = Convert("Nmea2Tarin", log)["GPS_1"];
        ASSERT_EQ(fixes.size(), expected.size()) << rule << '\n' << m_monitor.all;
        for (std::size_t i = 0; i < fixes.size(); ++i)
            EXPECT_EQ(fixes[i].payload, expected[i].payload) << rule << i;
    }
}

TEST_F(NmeaTest, OldDataInBetweenCostsNothing) {
    std::string old, log = Zda("110000");
    for (int second = 0; second < 200; ++second) {
        std::array<char, 8> time;
        std::snprintf(time.data(), time.size(), "11%02d%02d", second / 60, second % 60);
        if (second < 50) old += Gga(time.data());
        if (second == 150) log += old;
        log += Gga(time.data());
    }
    EXPECT_EQ(Convert("Nmea2Tarin", log)["GPS_1"].size(), 200u) << m_monitor.all;
    EXPECT_EQ(Said(EText::faultLate), "50");
}

TEST_F(NmeaTest, PositionsWithoutErrorsTakeDilution) {
    auto packets = Convert("Nmea2Tarin", Zda("120000") + Gga("120000", "GP", "4") + Gga("120001", "GP", "1"));
    EXPECT_FLOAT_EQ(packets["GPS_1"][0]["Std. dev. north"], 0.03f);
    EXPECT_FLOAT_EQ(packets["GPS_1"][1]["Std. dev. east"], 4.5f);
    EXPECT_FLOAT_EQ(packets["GPS_1"][1]["Std. dev. altitude"], 7.5f);
    EXPECT_TRUE(m_monitor.texts.contains(EText::nmeaAssumedErrors));
}

TEST_F(NmeaTest, GnsStandsInForGga) {
    auto packets =
        Convert("Nmea2Tarin", Zda("120000") + Sum("GNGNS,120000,4530.0,S,00515.0,E,ARN,12,0.8,,,,") +
                                  Gga("120001") + Sum("GNGNS,120001,4530.0,S,00515.0,E,AN,12,0.8,5,6,,"));
    ASSERT_EQ(packets["GPS_1"].size(), 2u) << m_monitor.all;
    EXPECT_EQ(packets["GPS_1"][0]["GPS mode"], 4);
    EXPECT_EQ(packets["GPS_1"][0]["Latitude"], -45.5);
    EXPECT_EQ(packets["GPS_1"][0]["Vertical rejection"], 2) << "it has no altitude";
    EXPECT_EQ(packets["GPS_1"][1]["Latitude"], 45.5) << "GGA comes first";
}

TEST_F(NmeaTest, DatesFollowMidnightAndEras) {
    const std::string nights =
        Zda("235959") + Gga("235959") + Gga("000000") + Gga("120000") + Gga("120001") + Gga("000001");
    const std::string old = Zda("120000", "25,09,2004") + Gga("120000") + Gga("120001");
    struct SRow {
        std::string log;
        std::vector<double> dates; // seconds from the first midnight
        double year;               // of the first UTC packet
    } const rows[] = {
        {nights, {86399, 86400, 129600, 129601, 172801}, 2024},
        {Zda("120000", "01,01,1990") + Gga("120000"), {43200}, 2009},
        {old + Zda("120002", "11,05,2024") + Gga("120002"), {43200, 43201, 43202}, 2024},
        {Zda("120000", "11,05,2024") + Gga("120000") + Zda("120001", "25,09,2004") + Gga("120001"),
         {43200, 43201},
         2024},
    };
    for (const SRow& row : rows) {
        auto packets = Convert("Nmea2Tarin", row.log);
        std::vector<double> dates;
        for (const SPacket& fix : packets["GPS_1"]) dates.push_back(fix.date);
        EXPECT_EQ(dates, row.dates) << m_monitor.all;
        ASSERT_FALSE(packets["UTC"].empty());
        EXPECT_EQ(packets["UTC"][0]["UTC Year"], row.year);
    }
}

} // namespace
