#include "conversion_fixture.h"
#include "foundation/texts.h"

#include <cmath>

namespace {

using namespace test;
using Compagnon::EText;

class TextReadersTest : public ConversionTest {};

// A source, and one value of one packet that must come out of it.
struct SRow {
    std::string_view rule, program;
    std::string text;
    std::string channel;
    std::size_t count;
    std::string_view field;
    double value;
    double date; // of the last packet, seconds
    EText fault = EText::none;
    std::vector<std::string> switches = {};
};

constexpr std::string_view kDepth = "DEPTH TO VARNE NAV EXTERNAL DATA\n",
                           kFixes = "GRAFNAV TO VARNE NAV POST-PROCESSED GPS DATA\n";

const SRow kRows[] = {
    {"a unit in the title", "Depth2Tarin",
     std::string(kDepth) + "# any\nDate;Std. dev. depth [cm];Depth [ft]\n2024-05-14T00:00:10.5;25;100\n",
     "DEPTH", 1, "Depth", 30.48f, 10.5},
    {"tabs and a decimal comma", "Depth2Tarin",
     std::string(kDepth) + "Depth\tDate\r\n12,5\t2024-05-14 00:00:01,5\r\n", "DEPTH", 1, "Depth", 12.5, 1.5},
    {"lines of CR CR LF", "Depth2Tarin",
     "DEPTH TO VARNE NAV EXTERNAL DATA\r\r\nDate;Depth\r\r\n2024-05-14T00:00:01;2\r\r\n", "DEPTH", 1, "Depth",
     2, 1},
    {"lines of CR alone", "Depth2Tarin",
     "DEPTH TO VARNE NAV EXTERNAL DATA\rDate;Depth\r2024-05-14T00:00:01;2\r2024-05-14T00:00:02;3\r", "DEPTH",
     2, "Depth", 3, 2},
    {"missing columns", "Depth2Tarin", std::string(kDepth) + "Date;Depth\n2024-05-14T00:00:01;1\n", "DEPTH",
     1, "Rejection", 3, 1},
    {"dates in seconds", "Depth2Tarin",
     std::string(kDepth) + "# utc 2024-05-14T06:00:00\nDate;Depth\n-0.5;1\n2;3\n", "DEPTH", 2, "Depth", 3,
     6 * 3600 + 2},
    {"an unknown column", "Depth2Tarin", std::string(kDepth) + "Date;Colour;Depth\n2024-05-14;red;1\n",
     "DEPTH", 1, "Depth", 1, 0},
    {"a value that is none", "Depth2Tarin",
     std::string(kDepth) +
         "Date;Depth\n2024-05-14T00:00:01;1\n2024-05-14T00:00:02;x\n2024-05-14T00:00:03;3\n",
     "DEPTH", 2, "Depth", 3, 3, EText::faultNumber},
    {"an empty measure", "Odometer2Tarin",
     "ODOMETER TO VARNE NAV EXTERNAL DATA\nDate;Measure;Std. dev. "
     "measure\n2024-05-14T00:00:01;;\n2024-05-14T00:00:02;1e-3;\n",
     "ODOMETER", 1, "Measure", 1e-3, 2, EText::faultNumber},
    {"a beacon of its own number", "Usbl2Tarin",
     "USBL TO VARNE NAV EXTERNAL DATA\nDate;Beacon;Latitude "
     "[rad];Longitude\n2024-05-14T00:00:01;17;0.5;-5\n2024-05-14T00:00:02;2;0.5;-5\n",
     "USBL_1", 1, "Latitude", 0.5 * 180 / M_PI, 1},
    {"an angle beyond the pole", "Range2Tarin",
     "RANGE TO VARNE NAV EXTERNAL "
     "DATA\nDate;Latitude;Longitude;Altitude;Range\n2024-05-14T00:00:01;91;0;0;1\n2024-05-14T00:00:02;9;0;0;"
     "1\n",
     "LBL", 1, "Latitude", 9, 2, EText::faultRange},
    {"radians of a mount", "Platform2Tarin",
     "PLATFORM ORIENTATION TO VARNE NAV EXTERNAL DATA\nDate;Pitch;Drift (heading);Roll "
     "[rad]\n2024-05-14;1;2;1\n",
     "PLATFORM_ORIENT", 1, "Roll", static_cast<float>(180 / M_PI), 0},

    {"events of any notation", "Synchro2Tarin",
     "14/05/2024 00:00:01.25\n2024-05-14 00:00:02\t0\t7\n14.05.2024 00:00:03\t\t\n", "SYNCHRO_1", 3,
     "Counter", 8, 3},
    {"months first, as a later line shows", "Synchro2Tarin",
     "05/12/2024 00:00:01\t0\t1\n05/13/2024 00:00:02\t0\t2\n", "SYNCHRO_1", 2, "Counter", 2, 86402},
    {"a channel that there is not", "Synchro2Tarin", "14/05/2024 00:00:01\t3\t1\n14/05/2024 00:00:02\t2\t9\n",
     "SYNCHRO_3", 1, "Counter", 9, 2, EText::faultNoChannel},

    {"a beacon's own depth", "Kolt2Tarin",
     "x$PTSAG,#00001,000001.500,14,05,2024,3,4530.00000,S,00515.00000,W,F,12.5,2,13.5\n", "USBL_1", 1,
     "Altitude", -13.5, 1.5},
    {"the ship and other beacons", "Kolt2Tarin",
     "$PTSAG,#1,000001,14,05,2024,0,4530.0,N,00515.0,W,F,0,1,0\n$PTSAG,#2,000002,14,05,2024,4,4530.0,N,00515."
     "0,W,F,1,0,2\n",
     "USBL_1", 1, "Vertical rejection", 2, 2, EText::faultShip},
    {"an invalid position",
     "Kolt2Tarin",
     "$PTSAG,#1,000001,14,05,2024,4,4530.0,N,00515.0,W,0,0,1,0\n$PTSAG,#2,000002,14,05,2024,4,4530.0,N,00515."
     "0,W,3,7,1,2\n",
     "USBL_1",
     1,
     "Altitude",
     -7,
     2,
     EText::faultInvalid,
     {"/beacon", "4"}},

    {"speeds of the log", "PD6Rdi2Tarin",
     ":SA,1,2,3\n:TS,24051400000150,35.0,+15.0,0.0,1495.5,0\n$HEHDT,1\n:BI,+1000,-2000,+30,0,A\n:BS,1,2,3,"
     "A\n:BD,0,0,0,55.5,0\n",
     "DVL_BT", 1, "Speed Y", -2, 1.5},
    {"the range to the bottom", "PD6Rdi2Tarin",
     ":TS,24051400000150,35,15,0,1495.5,0\n12:00 > :BI,1,2,3,0,A\n12:00 > :BD,0,0,0,55.5,0\n", "DVL_BT", 1,
     "Altitude", 55.5, 1.5},
    {"speeds of the ship", "PD6Rdi2Tarin", ":TS,24051400000150,35,15,0,1495.5,0\n:WS,-500,1000,20,A\n",
     "DVL_WT", 1, "Speed Y", 0.5, 1.5},
    {"no bottom", "PD6Rdi2Tarin",
     ":TS,24051400000100,35,15,0,1500,0\n:BI,-32768,-32768,-32768,0,V\n:TS,24051400000200,35,15,0,1500,0\n:"
     "BI,1,2,3,0,A\n",
     "DVL_BT", 1, "Speed X", 0.001f, 2, EText::faultInvalid},
    {"speeds without a date", "PD6Rdi2Tarin",
     ":BI,1,2,3,0,A\n:SA,1,1,1\n:TS,24051400000200,35,15,0,1500,0\n:BI,1,2,3,0,A\n", "DVL_BT", 1, "Speed X",
     0.001f, 2, EText::faultUndated},

    {"degrees, minutes and seconds", "Novatel2Tarin",
     "\nProgram:     GrafNav Version 8\nUTC Offset: 18 s\n\n Week GPSTime Latitude Longitude H-Ell Q\n "
     "(weeks) (sec) (D M S) (D M S) (ft)\n2314 172819.5 45 30 36.0 -0 15 18.0 1000 1\n",
     "GPS_1", 1, "Longitude", -0.255, 1.5},
    {"heights in feet", "Novatel2Tarin",
     "Program:     GrafNav\n   Week GPSTime Latitude Longitude H-Ell Q\n(weeks)   (sec)    (deg)     (deg)  "
     "(ft)\n2314 "
     "172819.5 45.5 -5.25 1000 1\n",
     "GPS_1", 1, "Altitude", 304.8f, 1.5},
    {"angles counted in the lines", "Novatel2Tarin",
     "Program:     POSGNSS\nUTCDate UTCTime Latitude Longitude H-MSL Undulation SDNorth SDEast "
     "SDHeight\n2024/05/14 00:00:02.00 45 30.5 5 15.25 10 40 0.1 0.2 0.3\n",
     "GPS_1", 1, "Latitude", 45 + 30.5 / 60, 2},
    {"weeks of a solution", "Novatel2Tarin",
     "% program   : RTKPOST\n%  GPST          latitude(d'\")   longitude(d'\")  height(m)   Q  ns  sdn(m)  "
     "sde(m)   sdu(m)  sdne(m)\n2314 172820.000 45 30 36.0 -5 15 18.0 100 5 9 1 1 2 -0.5\n",
     "GPS_1", 1, "Covariance XY", -0.25, 2},
    {"a solution in UTC with commas", "Novatel2Tarin",
     "% program   : RTKPOST\n%  UTC,latitude(deg),longitude(deg),height(m),Q,ns\n2024/05/14 "
     "00:00:02.5,45.5,-5.25,100,2,9\n",
     "GPS_1", 1, "GPS mode", 5, 2.5},
    {"fixes with a title line", "Novatel2Tarin",
     std::string(kFixes) + "Date Lat Lon H sN sE sH\n2024-05-14 00:00:01.5 45,5 355 100 0,01 0,01 0,02\n",
     "GPS_1", 1, "Longitude", -5, 1.5},
    {"a short line amid others", "Novatel2Tarin",
     std::string(kFixes) + "2024-05-14T00:00:01;45.5\n2024-05-14T00:00:02;45.5;5.0;1.0;1.0;1.0;1.0\n",
     "GPS_1", 1, "GPS mode", 2, 2, EText::faultColumns},

    {"decoded text",
     "DecodedNelix2Tarin",
     "DEPTH : 0.5 3 12.5 0.1 86399.5\nREF   : 1\nDEPTH_: 0.5 3 13.5 0.1 0.5\n",
     "DEPTH",
     2,
     "Depth",
     13.5,
     86400.5,
     EText::faultNoChannel,
     {"/utc", "2024-05-14"}},
    {"a short clock cycle",
     "DecodedNelix2Tarin",
     "DEPTH : 0 3 1 0 59\nDEPTH : 0 3 2 0 1\n",
     "DEPTH",
     2,
     "Depth",
     2,
     61,
     EText::none,
     {"/cycle", "60", "/utc", "2024-05-14"}},
    {"inertial data 5 ms early",
     "DecodedNelix2Tarin",
     "IMU   : 1 7 0 1 2 3 4 5 -6 0 10\n",
     "IMU",
     1,
     "System type",
     9,
     9.995,
     EText::none,
     {"/e", "9", "/utc", "2024-05-14"}},
};

TEST_F(TextReadersTest, SourcesGiveTheirPackets) {
    for (const SRow& row : kRows) {
        auto packets = Convert(row.program, row.text, row.switches);
        ASSERT_EQ(packets[row.channel].size(), row.count) << row.rule << '\n' << m_monitor.all;
        const SPacket& last = packets[row.channel].back();
        EXPECT_NEAR(last[row.field], row.value, 1e-12 * (1 + std::abs(row.value))) << row.rule;
        EXPECT_DOUBLE_EQ(last.date, row.date) << row.rule;
        EXPECT_FALSE(packets["UTC"].empty()) << row.rule;
        EXPECT_EQ(Said(row.fault) == "0", row.fault == EText::none) << row.rule << '\n' << m_monitor.all;
    }
}

// The texts that lead to no target, each with what is said of it.
TEST_F(TextReadersTest, SourcesWithoutARecordAreRefused) {
    const std::tuple<std::string_view, std::string, EText> rows[] = {
        {"Depth2Tarin", "RANGE TO VARNE NAV EXTERNAL DATA\nDate;Depth\n", EText::externalHeading},
        {"Depth2Tarin", std::string(kDepth) + "Date;Range\n2024-05-14;1\n", EText::externalMissing},
        {"Depth2Tarin", std::string(kDepth) + "Date;Depth [kg]\n2024-05-14;1\n", EText::externalUnit},
        {"Depth2Tarin", std::string(kDepth) + "Date;Depth\n5.0;1\n", EText::externalSeconds},
        {"Depth2Tarin", std::string(kDepth), EText::convertNothing},
        {"Novatel2Tarin", "% program   : RTKPOST\n% GPST x-ecef(m) y-ecef(m) z-ecef(m)\n2314 1 2 3 4\n",
         EText::fixNoColumns},
        {"Nmea2Tarin", "", EText::convertNothing},
        {"PostProNelixDecode", std::string(1000, '$'), EText::convertNothing},
    };
    for (const auto& [program, text, said] : rows) {
        EXPECT_TRUE(Convert(program, text).empty()) << text;
        EXPECT_TRUE(m_monitor.texts.contains(said)) << text << m_monitor.all;
        EXPECT_FALSE(std::filesystem::exists(GetTarget()));
    }
}

} // namespace
