// The commands that look at projects and turn them into other files.
#include "batch/batch_fixture.h"

#include "simulator/mission_writer.h"

#include <gmock/gmock.h>

#include <fstream>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

std::string TextOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class ProjectCommands : public test::Batch {
  protected:
    ProjectCommands() {
        Simulation::SMissionOptions options;
        options.vehicle = Simulation::EVehicle::auv;
        options.duration = 20;
        options.alignmentDuration = 5;
        options.channels = {"IMU", "GPS_1", "GPS_2", "DVL_BT", "DEPTH", "UTC", "SYNCHRO_1"};
        std::string error;
        EXPECT_TRUE(WriteMission(options, Path("m.tarin"), {}, error)) << error;
        EXPECT_EQ(Run({"create", Path("m.tarin"), Path("m.tarprj"), "--add", "all"}), 0) << m_error;
    }
};

TEST_F(ProjectCommands, DescribesAndCopies) {
    ASSERT_EQ(Run({"describe", Path("m.tarprj")}), 0) << m_error;
    const std::string described = m_out;
    for (const char* line : {"  algorithm: Standard\n", "  CTrvSensorGps\n", "    channel: GPS_2\n",
                             "    leverArm: 0.000 m, 0.000 m, 0.000 m\n", "  hasUtcReference: true\n",
                             "  utcReference: 14/05/2024 08:00:00.000\n", "    eventId: \n"})
        EXPECT_THAT(described, HasSubstr(line));
    ASSERT_EQ(Run({"copy", Path("m.tarprj"), Path("copy.tarprj")}), 0) << m_error;
    EXPECT_EQ(Run({"copy", Path("m.tarprj"), Path("copy.tarprj")}), 1);
    ASSERT_EQ(Run({"describe", Path("copy.tarprj")}), 0);
    // Only the result follows the new name.
    std::string expected = described;
    for (std::size_t at; (at = expected.find("m.tarout")) != std::string::npos;)
        expected.replace(at, 8, "copy.tarout");
    EXPECT_EQ(m_out, expected);
}

TEST_F(ProjectCommands, ChecksAndTurnsIntoABatchFileAndBack) {
    EXPECT_EQ(Run({"check", Path("m.tarprj")}), 0);
    EXPECT_THAT(m_out, IsEmpty());
    ASSERT_EQ(Run({"parameters", Path("m.tarprj"), Path("c.xml")}), 0) << m_error;
    EXPECT_THAT(TextOf(Path("c.xml")), HasSubstr("<morvexParameters>"));
    ASSERT_EQ(Run({"create-from-parameters", Path("c.xml"), Path("back.tarprj")}), 0) << m_error;
    ASSERT_EQ(Run({"describe", Path("m.tarprj")}), 0);
    const std::string described = m_out;
    ASSERT_EQ(Run({"describe", Path("back.tarprj")}), 0);
    EXPECT_EQ(m_out, described); // the result's name is that of the command file

    std::filesystem::copy_file(Path("m.tarin"), Path("other.tarin"));
    ASSERT_EQ(Run({"create-from-parameters", Path("c.xml"), Path("other.tarprj"), "--file",
                   "main=" + Path("other.tarin"), "--file", "output=" + Path("o.tarout")}),
              0)
        << m_error;
    ASSERT_EQ(Run({"describe", Path("other.tarprj")}), 0);
    EXPECT_THAT(m_out, HasSubstr("path: " + Path("other.tarin")));
    EXPECT_THAT(m_out, HasSubstr("path: " + Path("o.tarout")));
    EXPECT_EQ(Run({"create-from-parameters", Path("c.xml"), Path("x.tarprj"), "--file", "nobody=x"}), 2);
    EXPECT_EQ(Run({"create-from-parameters", Path("m.tarin"), Path("x.tarprj")}), 1);
}

TEST_F(ProjectCommands, ImportsTheConfigurationOfTheIns) {
    std::ofstream(Path("ins.txt"))
        << "[System]\nPosition=43.5,7.25,12\nbias=1,2,3\nAxisor=4\n[Info]\nType=11\n";
    ASSERT_EQ(Run({"create", Path("m.tarin"), Path("i.tarprj"), "--ins-configuration", Path("ins.txt")}), 0)
        << m_error;
    ASSERT_EQ(Run({"describe", Path("i.tarprj")}), 0);
    EXPECT_THAT(m_out, HasSubstr("roughMisalignment: 4\n"));
    // Sensors that the configuration brought keep their channels for themselves.
    std::ofstream(Path("ins.txt"), std::ios::app) << "[Gps]\nPort=1\n";
    ASSERT_EQ(Run({"create", Path("m.tarin"), Path("g.tarprj"), "--add", "gps", "--ins-configuration",
                   Path("ins.txt")}),
              0);
    EXPECT_EQ(Run({"check", Path("g.tarprj")}), 0) << m_out;
    std::ofstream(Path("bad.txt")) << "[System]\nbias=none\n";
    EXPECT_EQ(Run({"create", Path("m.tarin"), Path("b.tarprj"), "--ins-configuration", Path("bad.txt")}), 1);
    EXPECT_EQ(Run({"create", Path("m.tarin"), Path("b.tarprj"), "--ins-configuration", Path("gone.txt")}), 1);
    EXPECT_FALSE(std::filesystem::exists(Path("b.tarprj")));
}

TEST_F(ProjectCommands, TellsWhatFilesHold) {
    ASSERT_EQ(Run({"dictionary", Path("m.tarprj")}), 0);
    EXPECT_THAT(m_out, HasSubstr("m.tarin;GPS_1;GPS receiver;data\n  measure;5;Latitude;Latitude\n"));
    EXPECT_THAT(m_out, HasSubstr(";Off;On;Auto\n"));
    ASSERT_EQ(Run({"detect", Path("m.tarin")}), 0);
    EXPECT_TRUE(m_out.starts_with("1;")) << m_out;
    EXPECT_EQ(Run({"detect", Path("gone")}), 1);

    ASSERT_EQ(Run({"analyse", Path("m.tarin")}), 0);
    EXPECT_THAT(m_out, HasSubstr("0;IMU;2000;0.0100000;20.0000000;100.000;0;0\n"));
    EXPECT_THAT(m_out, HasSubstr("UTC origin;14/05/2024 08:00:00.000\n"));
    EXPECT_THAT(m_out, HasSubstr("first position;43"));
    EXPECT_THAT(m_out, Not(HasSubstr("damaged")));

    // A hole of foreign bytes and a torn end are told with their places, and what lies around them is
    // counted.
    std::string bytes = TextOf(Path("m.tarin"));
    bytes.replace(bytes.size() / 2, 300, 300, 'x');
    bytes.resize(bytes.size() - 5);
    std::ofstream(Path("damaged.tarin"), std::ios::binary) << bytes;
    ASSERT_EQ(Run({"analyse", Path("damaged.tarin")}), 0);
    EXPECT_THAT(m_out, HasSubstr("damaged at byte "));
    EXPECT_THAT(m_out, HasSubstr("torn at byte "));
}

} // namespace
