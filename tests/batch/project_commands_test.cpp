// The commands that look at projects and turn them into other files.
#include "batch/batch_fixture.h"

#include "batch/session.h"
#include "simulator/mission_writer.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::UnorderedElementsAre;

namespace {

using test::Batch;

TEST_F(Batch, ReadsTheUsersSettingsFirst) {
    using Outils_Configuration::Cnf;
    EXPECT_FALSE(::Batch::CSettings().Get(Cnf<"general/expertMode">));
    std::filesystem::create_directory(Path("Qetral"));
    std::ofstream(Path("Qetral/VarneNav.conf.xml"))
        << "<configuration><general><expertMode>yes</expertMode></general></configuration>";
    EXPECT_TRUE(::Batch::CSettings().Get(Cnf<"general/expertMode">));
}

class ProjectCommands : public test::Batch {
  protected:
    ProjectCommands() {
        Simulation::SMissionOptions options;
        options.vehicle = Simulation::EVehicle::auv;
        options.duration = 20;
        options.alignmentDuration = 5;
        options.channels = {"IMU",      "GPS_1",    "GPS_2",     "GPS_3",     "DVL_BT",         "DVL_WT",
                            "DEPTH",    "USBL_1",   "USBL_2",    "LBL",       "ODOMETER",       "UTC",
                            "EM_LOG_1", "EM_LOG_2", "SYNCHRO_1", "SYNCHRO_2", "PLATFORM_ORIENT"};
        std::string error;
        EXPECT_TRUE(WriteMission(options, Path("m.tarin"), {}, error)) << error;
        Succeed("create /m.tarin /m.tarprj --add all");
    }

    // Changes the project without the program.
    void Edit(void (*change)(Metier_Tarvel::CTrvProject& project)) {
        std::ostringstream out, error;
        ::Batch::CSession session({out, error});
        ASSERT_TRUE(session.Open(Path("m.tarprj"))) << error.str();
        change(*session.GetDocument().GetProject());
        ASSERT_TRUE(session.GetDocument().DoSave(Path("m.tarprj"), true)) << error.str();
    }
};

// Every kind of sensor takes each of its channels once, up to its maximum, and further kinds of the one
// recording leave the rest.
TEST_F(ProjectCommands, AddsSensorsOnTheirOwnChannels) {
    Succeed("describe /m.tarprj");
    std::vector<std::string> sensors;
    for (const std::string& line : Lines()) {
        const auto cells = Cells(line);
        if (cells.at(1) == "Channel")
            sensors.push_back(cells[0].substr(cells[0].rfind('>') + 2) + ' ' + cells[2]);
    }
    EXPECT_THAT(sensors,
                ElementsAre("Gps[0] GPS_1", "Gps[1] GPS_2", "Gps[2] GPS_3", "Dvl[3] DVL_BT",
                            "EM Log[4] EM_LOG_1", "Depth[5] DEPTH", "Usbl[6] USBL_1", "Usbl[7] USBL_2",
                            "Lbl[8] LBL", "Odometer[9] ODOMETER", "Event marker[10] SYNCHRO_1",
                            "Event marker[11] SYNCHRO_2", "Platform Orientation[12] PLATFORM_ORIENT"));
    Succeed("create /m.tarin /few --add USBL,gps,usbl");
    Succeed("describe /few.tarprj");
    EXPECT_THAT(m_out, AllOf(HasSubstr("Usbl[0];"), HasSubstr("Gps["), Not(HasSubstr("Dvl["))));
}

TEST_F(ProjectCommands, DescribesAndCopies) {
    Edit([](Metier_Tarvel::CTrvProject& project) {
        auto& parameters = *project.simulationParameters;
        parameters.AddOutputRate()->value = 12.5;
        parameters.AddZupt()->mode = 4;
        parameters.AddAltitudeMode()->mode = 4;
        parameters.mainInputFile->timeOffset =
            Metier_Tarvel::ToStoredTime(Outils_Temps::CDateTimeSpan::FromSeconds(-1.5));
        for (const auto& sensor : parameters.sensors) {
            for (auto* stdDev : sensor->GetStdDevInstructions())
                for (int i = 0; stdDev && i < stdDev->GetValueCount(); ++i) stdDev->Value(i) = 2.25 + i;
            if (!sensor->rejectionGroups.empty()) sensor->rejectionGroups[0]->AddInstruction()->mode = 3;
            if (auto* arm = sensor->GetLeverArm()) *arm = Metier_Tarvel::CLeverArm(1, -2, 3);
            if (auto* usbl = dynamic_cast<Metier_Tarvel::CTrvSensorUsbl*>(sensor.get()))
                usbl->AddFilteringInstruction()->threshold = 7.5f;
        }
        auto* graph = project.graphSettings->AddMeasureGraph("Depths");
        graph->AddCurve(parameters.mainInputFile.get(), 8, 3, "Immersion")->factor = -2;
        project.graphSettings->AddEnumGraph("Modes", nullptr, 77, 2, "Mode");
        project.instantValuesSettings->AddMeasure(parameters.mainInputFile.get(), 5, 4, "Fix")->secondField =
            9;
    });
    Succeed("describe /m.tarprj");
    const std::string described = m_out;
    std::istringstream ends(
        ";Algorithm;Standard\n;Channel;GPS_2\n;Lever arm;XV1 1.000 m, XV2 -2.000 m, XV3 3.000 m\n"
        ";UTC reference;14/05/2024 08:00:00.000\n;Event Id;2\n;Value;12.500 Hz\n;Mode;Autostatic\n"
        ";Mode;Hydro\n;Time offset;-00:00:01.500\n;Mode;Automatic reacquisition\n;Threshold;7.50 m\n"
        ";Longitude;3.25 m\n;Crossvariance;4.25 m²\n;Altitude;5.250 m\n;X;2.25 m/s\n;Y;3.25 m/s\n"
        ";Z;4.25 m/s\n;Value X;2.25 m/s\n];16 SYNCHRO_2 Event marker\n;Title;Depths\n"
        ";Label;Immersion\n;Channel;DEPTH\n;Field;3\n;Color;#FF4682B4\n;Factor;-2.000\n"
        ";Data file;none\n;Channel;77\n;Second field;9\n");
    for (std::string end; std::getline(ends, end);) EXPECT_THAT(described, HasSubstr(end + '\n'));
    EXPECT_THAT(described, Not(HasSubstr("?")));
    Succeed("copy /m.tarprj /copy.tarprj");
    EXPECT_EQ(Run("copy /m.tarprj /copy.tarprj"), 1);
    Succeed("describe /copy.tarprj");
    // Only the result follows the new name.
    std::string expected = described;
    for (std::size_t at; (at = expected.find("m.tarout")) != std::string::npos;)
        expected.replace(at, 8, "copy.tarout");
    EXPECT_EQ(m_out, expected);
}

TEST_F(ProjectCommands, BatchFileComesBackAsProject) {
    Succeed("check /m.tarprj");
    EXPECT_THAT(Lines(), ElementsAre("object;property;broken rule"));
    Succeed("parameters /m.tarprj /c.xml");
    EXPECT_THAT(TextOf("c.xml"), HasSubstr("<morvexParameters>"));
    Succeed("create-from-parameters /c.xml /back.tarprj");
    Succeed("describe /m.tarprj");
    const std::string described = m_out;
    Succeed("describe /back.tarprj");
    EXPECT_EQ(m_out, described); // the result's name is that of the command file

    std::filesystem::copy_file(Path("m.tarin"), Path("other.tarin"));
    ASSERT_EQ(
        Run("create-from-parameters /c.xml /other.tarprj --file main=/other.tarin --file output=/o.tarout"),
        0)
        << m_error;
    Succeed("describe /other.tarprj");
    EXPECT_THAT(m_out, HasSubstr(";Path;" + Path("other.tarin")));
    EXPECT_THAT(m_out, HasSubstr(";Path;" + Path("o.tarout")));
    EXPECT_EQ(Run("create-from-parameters /c.xml /x.tarprj --file nobody=x"), 2);
    EXPECT_EQ(Run("create-from-parameters /m.tarin /x.tarprj"), 1);
}

// What the analysis of the recording adds is saved, with the identifiers of the events.
TEST_F(ProjectCommands, NewProjectsHaveMarkersAndMounts) {
    Succeed("create /m.tarin /plain.tarprj");
    Succeed("parameters /plain.tarprj /plain.xml");
    Succeed("create-from-parameters /plain.xml /again.tarprj");
    for (const char* name : {"m.tarprj", "plain.tarprj", "again.tarprj"}) {
        std::ostringstream out, error;
        ::Batch::CSession session({out, error});
        ASSERT_TRUE(session.Open(Path(name))) << error.str();
        std::vector<std::string> events;
        int mounts = 0;
        for (const auto& sensor : session.GetDocument().GetProject()->simulationParameters->sensors) {
            if (const auto* marker = dynamic_cast<Metier_Tarvel::CTrvSensorEventMarker*>(sensor.get()))
                events.push_back(marker->eventId);
            if (dynamic_cast<Metier_Tarvel::CTrvSensorPlatformOrientation*>(sensor.get())) ++mounts;
        }
        EXPECT_THAT(events, UnorderedElementsAre("1", "2")) << name;
        EXPECT_EQ(mounts, 1) << name;
    }
}

TEST_F(ProjectCommands, BrokenRulesStopCheckAndRun) {
    Edit([](Metier_Tarvel::CTrvProject& project) {
        project.simulationParameters->AddZupt(); // its period is empty
        project.simulationParameters->AddOutputRate()->value = 0;
    });
    EXPECT_EQ(Run("check /m.tarprj"), 1);
    EXPECT_THAT(Lines(), UnorderedElementsAre(
                             "object;property;broken rule",
                             "ZUPT;To;ZUPT end time should be strictly greater than begin time",
                             "Output rate;To;Output rate end time should be strictly greater than begin time",
                             "Output rate;Value;Output rate value should be strictly positive"));
    EXPECT_EQ(Run("parameters /m.tarprj /broken.xml"), 1);
    EXPECT_THAT(m_error, HasSubstr("ZUPT end time"));
    EXPECT_FALSE(std::filesystem::exists(Path("broken.xml")));
    EXPECT_EQ(Run("run /m.tarprj"), 1);
    EXPECT_FALSE(std::filesystem::exists(Path("m.tarout")));
}

// The result and a batch command file take the place of files, but never of what the user cannot have meant.
TEST_F(ProjectCommands, RefusesToWriteOverFiles) {
    const std::string recording = TextOf("m.tarin"), project = TextOf("m.tarprj");
    for (const char* target : {"m.tarin", "m.tarprj"})
        EXPECT_EQ(Run(std::string("parameters /m.tarprj /") + target), 1);
    Succeed("parameters /m.tarprj /p.xml");
    EXPECT_EQ(Run("create-from-parameters /p.xml /x.tarprj --file output=/m.tarin"), 1);
    std::filesystem::copy_file(Path("m.tarin"), Path("n.tarout"));
    EXPECT_EQ(Run("create /n.tarout /n.tarprj"), 1);
    EXPECT_EQ(TextOf("m.tarprj"), project);

    // A link leads there all the same.
    std::filesystem::create_symlink(Path("m.tarin"), Path("link.tarout"));
    Succeed("create-from-parameters /p.xml /x.tarprj --file output=/link.tarout");
    EXPECT_EQ(Run("run /x.tarprj"), 1);
    EXPECT_THAT(m_error, HasSubstr("would take the place of a file"));
    EXPECT_EQ(TextOf("m.tarin"), recording);
}

TEST_F(ProjectCommands, ImportsTheConfigurationOfTheIns) {
    std::ofstream(Path("ins.txt"))
        << "[System]\nPosition=43.5,7.25,12\nbias=1,2,3\nAxisor=4\n[Info]\nType=11\n";
    Succeed("create /m.tarin /i.tarprj --ins-configuration /ins.txt");
    Succeed("describe /i.tarprj");
    EXPECT_THAT(m_out, HasSubstr(";Rough misalignment;4\n"));
    // Sensors that the configuration brought keep their channels for themselves.
    std::ofstream(Path("ins.txt"), std::ios::app) << "[Gps]\nPort=1\n";
    Succeed("create /m.tarin /g.tarprj --add gps --ins-configuration /ins.txt");
    Succeed("check /g.tarprj");
    std::ofstream(Path("bad.txt")) << "[System]\nbias=none\n";
    EXPECT_EQ(Run("create /m.tarin /b.tarprj --ins-configuration /bad.txt"), 1);
    EXPECT_EQ(Run("create /m.tarin /b.tarprj --ins-configuration /gone.txt"), 1);
    EXPECT_FALSE(std::filesystem::exists(Path("b.tarprj")));
}

TEST_F(ProjectCommands, ReportsWhatFilesHold) {
    Succeed("dictionary /m.tarprj");
    EXPECT_THAT(m_out, AllOf(HasSubstr("m.tarin;GPS_1;layer;;;;;GPS receiver;Has data\n"),
                             HasSubstr("m.tarin;GPS_1;measure;5;;Latitude;Latitude;"),
                             HasSubstr(";literal;0;2;Auto;;")));
    Succeed("detect /m.tarin --json");
    EXPECT_EQ(m_out, "{\"code\":1,\"format\":\"Xpf packet file\"}\n");
    Succeed("analyse /m.tarin");
    EXPECT_THAT(
        m_out,
        HasSubstr("channel;0;IMU;2000;0.01;20;2024-05-14T08:00:00.01Z;2024-05-14T08:00:20Z;100;0;0;0;"));
    EXPECT_THAT(m_out, HasSubstr("UTC origin;;;;0;;2024-05-14T08:00:00Z;"));
    EXPECT_THAT(m_out, HasSubstr("first position;;;;;;;;;;;;43"));
    EXPECT_THAT(m_out, Not(HasSubstr("damaged")));
    EXPECT_THAT(m_error, AllOf(HasSubstr("progress 10\n"), HasSubstr("progress 100\n")));
    for (const std::string& line : Lines()) EXPECT_EQ(std::ranges::count(line, ';'), 17) << line;
}

TEST_F(ProjectCommands, AnalyseCountsDamage) {
    // Dates and links that no writer writes.
    std::string bytes = TextOf("m.tarin");
    std::string odd = bytes;
    odd.replace(odd.find(std::string("$$\5\0", 4)) + 20, 8, std::string("\0\0\0\0\0\0\0\x80", 8));
    odd[odd.find(std::string("$$\0\0", 4)) + 16] ^= 1;
    std::ofstream(Path("odd.tarin"), std::ios::binary) << odd;
    Succeed("analyse /odd.tarin");
    EXPECT_THAT(m_out, HasSubstr(";100;0;0;1;;;;;;\n"));
    EXPECT_THAT(m_out,
                HasSubstr("channel;5;GPS_1;20;-922337203685.4775808;20;;2024-05-14T08:00:20Z;0;0;0;0;"));

    // A torn end is no damage: it is how a recording looks whose writer is at work.
    bytes.resize(bytes.size() - 5);
    std::ofstream(Path("torn.tarin"), std::ios::binary) << bytes;
    Succeed("analyse /torn.tarin");
    EXPECT_THAT(m_out, HasSubstr("torn;"));
    // A hole of foreign bytes is, and what is around it is counted.
    bytes.replace(bytes.size() / 2, 300, 300, 'x');
    std::ofstream(Path("damaged.tarin"), std::ios::binary) << bytes;
    EXPECT_EQ(Run("analyse /damaged.tarin"), 1);
    EXPECT_THAT(m_out, AllOf(HasSubstr("damaged;"), HasSubstr("torn;")));
    EXPECT_THAT(m_error, HasSubstr("the file is damaged"));
    EXPECT_EQ(Run("packets /damaged.tarin IMU"), 1);
    EXPECT_THAT(m_error, HasSubstr("cannot be reached"));

    // Damage without end is counted, not kept.
    std::ofstream wreck(Path("damaged.tarin"), std::ios::binary | std::ios::app);
    const std::string packet(std::string("$$\x09\0\x1C\0\0\0", 8) + std::string(12, '\0') +
                             std::string("!!\x09\0\x1C\0\0\0", 8));
    for (int i = 0; i < 300; ++i) wreck << packet << "between";
    wreck.close();
    EXPECT_EQ(Run("analyse /damaged.tarin"), 1);
    EXPECT_THAT(m_out, HasSubstr("\nchannel;9;USBL_1;310;"));
    EXPECT_THAT(m_out, HasSubstr("\nmore damaged;;;;;;;;;;;;;;;;1414;202\n"));
}

} // namespace
