// Logs of real receivers, converted and read a second time in the plainest way, which shares nothing with the
// readers. VARNE_FOREIGN_LOGS names their folder; without it these tests are skipped.
#include "conversion_fixture.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <sstream>

namespace {

using namespace test;

using Words = std::vector<std::string>;

struct SFix {
    double date, latitude, longitude; // seconds since 1970, degrees
    int mode = 0;
    std::optional<double> altitude = {}, separation = {}, north = {}, east = {}, up = {}, covariance = {};
};

Words Split(const std::string& line, char separator) {
    Words words;
    std::istringstream text(line);
    for (std::string word; std::getline(text, word, separator);) words.push_back(word);
    words.resize(40);
    return words;
}

// "4130.5" is 41 degrees and a half minute.
double ToDegrees(const std::string& text, const std::string& side) {
    const double value = std::stod(text), degrees = std::floor(value / 100);
    return (degrees + (value - degrees * 100) / 60) * (side == "S" || side == "W" ? -1 : 1);
}

double ToSeconds(const std::string& text) { // hhmmss.sss
    return std::stod(text.substr(0, 2)) * 3600 + std::stod(text.substr(2, 2)) * 60 +
           std::stod(text.substr(4));
}

double ToDay(int year, unsigned month, unsigned day) { // seconds since 1970
    using namespace std::chrono;
    const sys_days date(std::chrono::year(year) / std::chrono::month(month) / std::chrono::day(day));
    return static_cast<double>(date.time_since_epoch().count()) * 86400;
}

std::optional<double> Number(const std::string& text) {
    return text.empty() ? std::nullopt : std::optional(std::stod(text));
}

// The body of a sentence whose check sum is right; empty for any other line.
std::string GetBody(const std::string& line) {
    const std::size_t begin = line.find('$'), end = line.find('*');
    if (begin == line.npos || end == line.npos || end < begin) return {};
    unsigned sum = 0;
    for (std::size_t i = begin + 1; i < end; ++i) sum ^= static_cast<unsigned char>(line[i]);
    const bool isRight = std::stoul(line.substr(end + 1, 2), nullptr, 16) == sum;
    return isRight ? line.substr(begin + 1, end - begin - 1) : std::string();
}

std::vector<SFix> ReadNmea(std::istream& log) {
    std::map<double, Words> positions, errors; // by time of day
    double day = 0;
    for (std::string line; std::getline(log, line);) {
        const Words w = Split(GetBody(line), ',');
        const std::string kind = w[0].size() == 5 ? w[0].substr(2) : "";
        if (kind == "ZDA" && !w[2].empty())
            day = ToDay(std::stoi(w[4]), unsigned(std::stoi(w[3])), unsigned(std::stoi(w[2])));
        if (kind == "RMC" && w[9].size() == 6)
            day = ToDay(2000 + std::stoi(w[9].substr(4)), unsigned(std::stoi(w[9].substr(2, 2))),
                        unsigned(std::stoi(w[9].substr(0, 2))));
        if (kind == "GGA" && w[6] != "0" && !w[2].empty()) positions[ToSeconds(w[1])] = w;
        if (kind == "GST" && !w[6].empty()) errors[ToSeconds(w[1])] = w;
    }
    std::vector<SFix> fixes;
    for (const auto& [time, w] : positions) {
        SFix fix{day + time,      ToDegrees(w[2], w[3]), ToDegrees(w[4], w[5]),
                 std::stoi(w[6]), Number(w[9]),          Number(w[11])};
        if (errors.contains(time)) {
            const Words& error = errors.at(time);
            fix.north = Number(error[6]), fix.east = Number(error[7]), fix.up = Number(error[8]);
        }
        fixes.push_back(fix);
    }
    return fixes;
}

// "2020/12/24 21:28:42.000 40.097025378 -105.147247371" from a column on.
SFix ReadColumns(const Words& w, std::size_t date, double leap) {
    const Words day = Split(w[date], '/'), time = Split(w[date + 1], ':');
    return {ToDay(std::stoi(day[0]), unsigned(std::stoi(day[1])), unsigned(std::stoi(day[2]))) +
                std::stod(time[0]) * 3600 + std::stod(time[1]) * 60 + std::stod(time[2]) - leap,
            std::stod(w[date + 2]), std::stod(w[date + 3])};
}

Words SplitBlanks(const std::string& line) {
    std::istringstream text(line);
    Words words{std::istream_iterator<std::string>(text), {}};
    words.resize(40);
    return words;
}

std::vector<SFix> ReadSolution(std::istream& log) { // GPS time, in 2020 18 s ahead of UTC
    std::vector<SFix> fixes;
    for (std::string line; std::getline(log, line);) {
        const Words w = SplitBlanks(line);
        if (line.starts_with('%') || w[0].empty()) continue;
        SFix fix = ReadColumns(w, 0, 18);
        constexpr int kModes[] = {0, 4, 5, 2, 2, 1, 5};
        fix.mode = kModes[std::stoi(w[5])];
        fix.altitude = std::stod(w[4]);
        fix.north = std::stod(w[7]), fix.east = std::stod(w[8]), fix.up = std::stod(w[9]);
        fix.covariance = std::stod(w[10]) * std::abs(std::stod(w[10]));
        fixes.push_back(fix);
    }
    return fixes;
}

std::vector<SFix> ReadCampaign(std::istream& log) { // UTC; height above the sea and undulation
    std::vector<SFix> fixes;
    for (std::string line; std::getline(log, line);) {
        const Words w = SplitBlanks(line);
        if (w[1].find('/') != 4 || w[2].find(':') != 2) continue;
        SFix fix = ReadColumns(w, 1, 0);
        constexpr int kModes[] = {0, 4, 5, 9, 2, 1, 1};
        fix.mode = kModes[std::stoi(w[8])];
        fix.altitude = std::stod(w[5]), fix.separation = std::stod(w[9]);
        fixes.push_back(fix);
    }
    return fixes;
}

class ForeignLogs : public ConversionTest {
  protected:
    void SetUp() override {
        const char* folder = std::getenv("VARNE_FOREIGN_LOGS");
        if (!folder || !std::filesystem::is_directory(folder))
            GTEST_SKIP() << "VARNE_FOREIGN_LOGS names no folder of logs";
        m_logs = folder;
    }

    void Compare(const std::filesystem::path& log, std::string_view program,
                 std::vector<SFix> (*read)(std::istream&)) {
        SCOPED_TRACE(log);
        std::ifstream file(log, std::ios::binary);
        const std::vector<SFix> fixes = read(file);
        std::filesystem::remove(GetTarget());
        const bool hasTarget = Run(program, {log.string()}) == Compagnon::ERunEnd::finished;
        ASSERT_EQ(hasTarget, !fixes.empty()) << m_monitor.all;
        if (!hasTarget) return;
        const Packets packets = ReadPackets(GetTarget());
        const auto& written = packets.at("GPS_1");
        ASSERT_EQ(written.size(), fixes.size()) << m_monitor.all;
        const double midnight = std::floor(fixes[0].date / 86400) * 86400;
        for (std::size_t i = 0; i < fixes.size(); ++i) {
            const SPacket& packet = written[i];
            const SFix& fix = fixes[i];
            EXPECT_NEAR(packet.date, fix.date - midnight, 1e-6);
            EXPECT_NEAR(packet["Latitude"], fix.latitude, 1e-12);
            EXPECT_NEAR(packet["Longitude"], fix.longitude, 1e-12);
            EXPECT_EQ(packet["GPS mode"], fix.mode);
            EXPECT_FLOAT_EQ(float(packet["Altitude"]), float(fix.altitude.value_or(0)));
            EXPECT_EQ(packet["Vertical rejection"], fix.altitude ? 3 : 2);
            EXPECT_FLOAT_EQ(float(packet["Geoidal sep"]), float(fix.separation.value_or(0)));
            const std::pair<std::string_view, std::optional<double>> errors[] = {
                {"Std. dev. north", fix.north},
                {"Std. dev. east", fix.east},
                {"Std. dev. altitude", fix.up},
                {"Covariance XY", fix.covariance}};
            for (const auto& [name, value] : errors)
                EXPECT_FLOAT_EQ(float(packet[name]), float(value.value_or(packet[name]))) << name << i;
        }
        ASSERT_FALSE(packets.at("UTC").empty());
        const SPacket& utc = packets.at("UTC").front();
        EXPECT_EQ(ToDay(int(utc["UTC Year"]), unsigned(utc["UTC Month"]), unsigned(utc["UTC day"])),
                  midnight);
    }

    void CompareAll(std::string_view ending, std::string_view program,
                    std::vector<SFix> (*read)(std::istream&)) {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_logs)) {
            if (!entry.path().string().ends_with(ending)) continue;
            Compare(entry.path(), program, read);
            ++count;
        }
        EXPECT_GT(count, 0) << ending;
    }

    std::filesystem::path m_logs;
};

TEST_F(ForeignLogs, NmeaEqualsAPlainReading) { CompareAll(".log", "Nmea2Tarin", ReadNmea); }

TEST_F(ForeignLogs, PostProcessedTextsEqualAPlainReading) {
    CompareAll(".pos", "Novatel2Tarin", ReadSolution);
    CompareAll("_PPP.txt", "Novatel2Tarin", ReadCampaign);
}

} // namespace
