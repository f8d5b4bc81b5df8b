// The converters as child programs, with the command lines of the application.
#include "conversion_fixture.h"
#include "foundation/texts.h"

#include "config/config_file.h"
#include "simulator/foreign_writer.h"
#include "simulator/mission_writer.h"

#include <array>

#include <unistd.h>

namespace {

using namespace test;

class ProgramTest : public ConversionTest {
  protected:
    // Exit code and output of a converter that is told to start.
    std::pair<int, std::string> RunProgram(const Conversion::SConverter& converter,
                                           const std::vector<std::string>& line) {
        std::array<int, 2> in{}, out{};
        EXPECT_TRUE(pipe(in.data()) == 0 && pipe(out.data()) == 0);
        EXPECT_EQ(write(in[1], "start\n", 6), 6);
        const int code = Compagnon::RunProgram(Conversion::MakeProgram(converter), line, in[0], out[1]);
        close(out[1]);
        std::string text;
        std::array<char, 4096> buffer;
        for (ssize_t size; (size = read(out[0], buffer.data(), buffer.size())) > 0;)
            text.append(buffer.data(), static_cast<std::size_t>(size));
        for (const int descriptor : {in[0], in[1], out[0]}) close(descriptor);
        return {code, text};
    }
};

struct SRow {
    std::string_view kind;
    std::vector<std::string> switches; // as the application gives them
    std::string_view targetSwitch = {};
};
const SRow kRows[] = {
    {"nmea", {"/verifyChecksum", "yes"}},
    {"kolt", {"/beacon", "1"}},
    {"novatel", {}},
    {"raw",
     {"/f", "tarin", "/utc", "2024-05-14", "/skip", "1", "/stop", "9", "/decipher", "yes", "/ccd", "auto"},
     "/o"},
    {"pd6", {}},
    {"decoded", {"/e", "9", "/utc", "2024-05-14", "/cycle", "86400", "/imu5msOffset", "yes"}},
    {"synchro", {}},
    {"range", {}},
    {"usbl", {}},
    {"platform", {}},
    {"odometer", {}},
    {"depth", {}},
};
static_assert(std::size(kRows) == Conversion::kConverterCount);

TEST_F(ProgramTest, ApplicationsCommandLinesConvert) {
    Simulation::SMissionOptions options;
    options.duration = 20;
    options.alignmentDuration = 2;
    options.imuRate = 2;
    for (const auto& row : Persistance_Xpf::GetChannelLayouts())
        if (row.kind == Persistance_Xpf::EFileKind::tarin) options.channels.emplace_back(row.name);
    std::string error;
    ASSERT_TRUE(Simulation::WriteMission(options, m_folder / "mission.tarin", {}, error)) << error;
    const auto source = m_folder / "a source";
    for (std::size_t i = 0; i < std::size(kRows); ++i) {
        const SRow& row = kRows[i];
        ASSERT_TRUE(Simulation::WriteForeign(row.kind, m_folder / "mission.tarin", options.GetUtcOrigin(),
                                             source, error));
        std::vector<std::string> line{"/remote"};
        line.insert(line.end(), row.switches.begin(), row.switches.end());
        line.push_back(source.string());
        if (!row.targetSwitch.empty()) line.emplace_back(row.targetSwitch);
        line.push_back(GetTarget().string());
        const auto [code, text] = RunProgram(Conversion::GetConverters()[i], line);
        EXPECT_EQ(code, 0) << text;
        EXPECT_NE(text.find("progress 100.0\n"), std::string::npos) << text;
        EXPECT_NE(text.find("message info \"Records read: "), std::string::npos) << text;
        EXPECT_FALSE(ReadPackets(GetTarget()).empty()) << row.kind;
        std::filesystem::remove(GetTarget());
    }
}

TEST_F(ProgramTest, SettingsNameThePrograms) {
    using namespace Outils_Configuration;
    const CTrvCnfConfigFile settings;
    const auto converters = Conversion::GetConverters();
    EXPECT_EQ(converters[0].program, settings.Get(Cnf<"process/nmea2Tarin">));
    EXPECT_EQ(converters[1].program, settings.Get(Cnf<"process/kolt2Tarin">));
    EXPECT_EQ(converters[2].program, settings.Get(Cnf<"process/novatel2Tarin">));
    EXPECT_EQ(converters[3].program, settings.Get(Cnf<"process/postProNelixDecode">));
    EXPECT_EQ(converters[4].program, settings.Get(Cnf<"process/pd6Rdi2Tarin">));
    EXPECT_EQ(converters[5].program, settings.Get(Cnf<"process/decodedNelix2Tarin">));
    EXPECT_EQ(converters[6].program, settings.Get(Cnf<"process/synchro2Tarin">));
    EXPECT_EQ(converters[7].program, settings.Get(Cnf<"process/range2Tarin">));
    EXPECT_EQ(converters[8].program, settings.Get(Cnf<"process/usbl2Tarin">));
    EXPECT_EQ(converters[9].program, settings.Get(Cnf<"process/platform2Tarin">));
    EXPECT_EQ(converters[10].program, settings.Get(Cnf<"process/odometer2Tarin">));
    EXPECT_EQ(converters[11].program, settings.Get(Cnf<"process/depth2Tarin">));
}

} // namespace
