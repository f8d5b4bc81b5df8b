#include "dialogs/project_dialogs.h"

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "dialogs/choosers.h"
#include "dialogs/relink.h"
#include "dialogs/rough_misalignment.h"
#include "document/document.h"
#include "document/project_creation.h"
#include "document/scripted_host.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

#include <sys/fsuid.h>
#include <unistd.h>

using namespace Dialogue_Tarvel;
using namespace Metier_Tarvel;
using namespace Outils_Configuration;
using Outils_Texte::EText;
using test::Text;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ProjectDialogs : public testing::Test {
  protected:
    ProjectDialogs() {
        Record("dive.tarin", 14);
        Record("blind.tarin", -1);
        std::filesystem::copy_file(m_folder / "dive.tarin", m_folder / "old.tarin");
        test::MakeOutdated(m_folder / "old.tarin");
        Write("raw1.log", "$\x04__$ and so on");
        Write("raw 2.log", "$\x04__$ and so on");
        Write("decoded.txt", "NAV___: 1\nNAV___: 2\n");
        Write("depth.txt", "DEPTH TO VARNE NAV EXTERNAL DATA\n");
        Write("other.bin", "nothing known");
        Write("ini.txt", "[System]\nbias=4,5,6\nAxisor=9\n[Info]\nType=17\n");
        Write("bad.txt", "[System]\nbias=4,5\n");
    }

    // Without an IMU packet for an equipment below 0.
    void Record(const char* name, int equipment) {
        test::CTestRecording recording(m_folder / name);
        for (int i = 0; equipment >= 0 && i < 3; ++i) recording.Imu(1 + i, equipment);
        recording.Gps(4, 48.5, -4.5, 10);
        recording.Flush();
    }
    void Write(const char* name, std::string_view text) { std::ofstream(m_folder / name) << text; }
    std::vector<std::filesystem::path> InFolder(std::initializer_list<const char*> names) {
        std::vector<std::filesystem::path> paths;
        for (const char* name : names) paths.push_back(m_folder / name);
        return paths;
    }

    test::CTemporaryFolder m_folder;
    test::CScriptedHost m_host;
    CTrvCnfConfigFile m_configuration;
    CFileLooks m_looks{m_host.m_queue};
};

TEST_F(ProjectDialogs, WizardNamesTheFieldAtFault) {
    using enum EAnswer;
    using enum EProjectField;
    Write("taken.tarprj", "a project");
    struct SCase {
        const char *files, *configuration, *name, *folder;
        std::vector<EAnswer> answers;
        const char* converted;
        std::vector<EText> messages;
        std::optional<EProjectField> focus; // none when the project is made
    };
    const SCase cases[] = {
        {"", "gone", "", "gone", {}, "", {EText::enterValue}, files},
        {"dive.tarin gone", "gone", "", "gone", {}, "", {EText::fileNotFound}, files},
        {"dive.tarin", "gone", "", "gone", {}, "", {EText::fileNotFound}, configurationFile},
        {"dive.tarin", "", "", "gone", {}, "", {EText::enterValue}, name},
        {"dive.tarin", "", "p", "gone", {}, "", {EText::folderNotFound}, folder},
        {"dive.tarin", "", "p", "ini.txt", {}, "", {EText::notAFolder}, folder},
        {"dive.tarin .", "", "p", "", {}, "", {EText::unknownFileType}, files}, // a folder has no type
        {"dive.tarin old.tarin", "", "p", "", {}, "", {EText::onlyRawFilesTogether}, files},
        {"raw1.log decoded.txt", "", "p", "", {}, "", {EText::onlyRawFilesTogether}, files},
        {"old.tarin", "", "p", "", {cancel}, "", {EText::upgradeDataFile}, files},
        {"other.bin", "", "p", "", {cancel}, "", {EText::unrecognizedRecording}, files},
        {"depth.txt",
         "",
         "p",
         "",
         {ok, cancel},
         "dive.tarin",
         {EText::unrecognizedRecording, EText::convertDataFile},
         files},
        {"raw1.log", "", "p", "", {cancel}, "dive.tarin", {EText::convertDataFile}, files},
        {"raw1.log", "", "p", "", {ok}, "", {EText::convertDataFile}, files},
        {"raw1.log", "", "p", "", {ok}, "gone", {EText::convertDataFile, EText::fileNotFound}, files},
        {"dive.tarin", "", "taken", "", {cancel}, "", {EText::overwriteProject}, name},
        {"dive.tarin", "bad.txt", "p", "", {}, "", {EText::insConfigurationFailed}, configurationFile},
        {"blind.tarin", "", "p", "", {}, "", {EText::noEquipment}, files},
        {"dive.tarin", "ini.txt", "taken", "", {ok}, "", {EText::overwriteProject}, {}},
        {"raw1.log", "", "p", "", {ok}, "dive.tarin", {EText::convertDataFile}, {}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        const SCase& c = cases[i];
        CNewProjectWizard wizard(m_host, m_configuration, m_looks);
        std::istringstream files(c.files);
        std::vector<std::filesystem::path> chosen;
        for (std::string name; files >> name;) chosen.push_back(m_folder / name);
        wizard.ChooseInputFiles(chosen);
        if (*c.configuration) wizard.insConfigurationFile = m_folder / c.configuration;
        wizard.projectName = c.name;
        wizard.projectFolder = m_folder / c.folder;
        m_host.m_answers.assign(c.answers.begin(), c.answers.end());
        m_host.m_converted = *c.converted ? std::optional(m_folder / c.converted) : std::nullopt;
        EProjectField focus = folder;
        EXPECT_EQ(wizard.OnOK(focus), !c.focus) << i;
        std::vector<std::string> messages;
        for (const EText text : c.messages)
            messages.push_back(Outils_Texte::FormatText(text, {Outils_Fichiers::ToText(m_folder / ".")}));
        EXPECT_EQ(m_host.TakeMessages(), messages) << i;
        EXPECT_EQ(wizard.TakeProject() != nullptr, !c.focus) << i;
        EXPECT_EQ(focus, c.focus.value_or(focus)) << i;
    }
    EXPECT_FALSE(std::filesystem::exists(m_folder / "p.tarprj"));
    EXPECT_EQ(m_host.m_waitCursors, 0);
}

TEST_F(ProjectDialogs, ReadOnlyFolderIsNamed) {
    using std::filesystem::perms;
    const auto locked = m_folder / "locked";
    std::filesystem::create_directory(locked);
    permissions(m_folder.GetPath(), perms::all);
    permissions(locked, perms::owner_read | perms::owner_exec | perms::others_read | perms::others_exec);
    CNewProjectWizard wizard(m_host, m_configuration, m_looks);
    wizard.ChooseInputFiles({m_folder / "dive.tarin"});
    wizard.projectFolder = locked;
    EProjectField focus{};
    ::setfsuid(65534); // the superuser's rights to files are none for this thread
    EXPECT_FALSE(wizard.OnOK(focus));
    ::setfsuid(::geteuid());
    EXPECT_EQ(focus, EProjectField::folder);
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Outils_Texte::FormatText(EText::folderReadOnly, {locked.string()})));
}

// The search for the last inertial packet must give up after its first read, of external data alone.
TEST_F(ProjectDialogs, UnfinishedLookMakesNoProject) {
    test::CTestRecording recording(m_folder / "dive.tarin");
    for (int i = 0; i < 2; ++i) recording.Imu(1, 0);
    for (int i = 0; i < 20000; ++i) recording.Gps(i, 48.5, -4.5, 10);
    recording.Flush();
    std::unique_ptr<CTrvProject> project;
    EText failure = EText::none;
    test::StopHalfWay(recording.GetPath(), [&](const Outils::CEvent& cancel) {
        project = BuildProject({m_folder / "dive.tarin", m_folder / "p.tarprj"}, failure, &cancel);
    });
    EXPECT_FALSE(project);
    EXPECT_EQ(failure, EText::fileNotReadable);
}

TEST_F(ProjectDialogs, WizardPreparesTheRecording) {
    const auto run = [&](std::initializer_list<const char*> names) {
        CNewProjectWizard wizard(m_host, m_configuration, m_looks);
        wizard.ChooseInputFiles(InFolder(names));
        EProjectField focus{};
        EXPECT_TRUE(wizard.OnOK(focus));
        return wizard.GetInputFiles();
    };
    m_host.m_repaired = m_folder / "dive.tarin";
    EXPECT_EQ(run({"old.tarin"}), InFolder({"old.tarin"}));
    m_host.m_converted = m_folder / "dive.tarin";
    EXPECT_EQ(run({"raw1.log", "raw 2.log"}), InFolder({"dive.tarin"}));
    run({"decoded.txt"});
    run({"other.bin"});
    using CConversion = test::CScriptedHost::CConversion;
    EXPECT_THAT(m_host.m_conversions,
                ElementsAre(CConversion(InFolder({"raw1.log", "raw 2.log"}), ERawFormat::rawIns),
                            CConversion(InFolder({"decoded.txt"}), ERawFormat::decodedIns),
                            CConversion(InFolder({"other.bin"}), ERawFormat::rawIns)));

    CNewProjectWizard wizard(m_host, m_configuration, m_looks);
    wizard.ChooseInputFiles({"/d/raw1.log", "/d/raw 2.log"});
    EXPECT_EQ(wizard.GetInputLine(), "/d/raw1.log \"/d/raw 2.log\"");
}

TEST_F(ProjectDialogs, OffersTheSensorsOfTheRecording) {
    {
        test::CTestRecording recording(m_folder / "long.tarin");
        for (int i = 0; i <= 20; ++i) {
            recording.Imu(10 + i, 14);
            if (i % 2) recording.Gps(10 + i, 48.5, -4.5, 10);
            if (i % 4 == 3) recording.Depth(10 + i, 5.0F);
        }
        recording.Utc(31, 2026, 9, 0, 31);
        recording.Flush();
    }
    enum class EUser { waits, unticks, hurries, isGivenNoWindow };
    for (const EUser user : {EUser::waits, EUser::unticks, EUser::hurries, EUser::isGivenNoWindow}) {
        CNewProjectWizard wizard(m_host, m_configuration, m_looks);
        wizard.ChooseInputFiles(InFolder({"long.tarin"}));
        int calls = 0;
        if (user != EUser::isGivenNoWindow) wizard.Survey([&calls] { ++calls; });
        if (user == EUser::waits || user == EUser::unticks) {
            for (int i = 0; i < 100 && wizard.GetFindings().isBusy; ++i)
                m_looks.Wait(std::chrono::milliseconds(100));
            std::vector<std::string> rows;
            for (const auto& row : wizard.DescribeFindings())
                rows.push_back(row.title + '|' + row.value +
                               (row.offer ? '|' + std::to_string(*row.offer) : ""));
            EXPECT_THAT(rows, ElementsAre("Equipment|INS model 14", // of the channels, those with packets
                                          "Period|00:00:10.000 to 00:00:30.000 (00:00:20.000)",
                                          "UTC of its start|14/03/2026 09:00:00.000",
                                          "IMU|21 packets, 00:00:10.000 to 00:00:30.000",
                                          "DEPTH|5 packets, 00:00:13.000 to 00:00:29.000|0",
                                          "GPS_1|10 packets, 00:00:11.000 to 00:00:29.000|1",
                                          "UTC|1 packets, 00:00:31.000 to 00:00:31.000"));
            EXPECT_EQ(calls, 3);
        }
        if (user == EUser::unticks) wizard.Take(1, false);
        EProjectField focus{};
        wizard.projectName = "p" + std::to_string(static_cast<int>(user));
        ASSERT_TRUE(wizard.OnOK(focus));
        std::vector<std::string> sensors;
        const auto project = wizard.TakeProject();
        for (const auto& sensor : project->simulationParameters->sensors)
            sensors.push_back(sensor->channel->name);
        if (user == EUser::isGivenNoWindow)
            EXPECT_THAT(sensors, IsEmpty());
        else if (user == EUser::unticks)
            EXPECT_THAT(sensors, ElementsAre("DEPTH"));
        else
            EXPECT_THAT(sensors, ElementsAre("DEPTH", "GPS_1"));
    }
    // A file that is none says so, and another choice begins anew.
    CNewProjectWizard wizard(m_host, m_configuration, m_looks);
    wizard.Survey([] {});
    ASSERT_EQ(wizard.DescribeFindings().size(), 1u);
    EXPECT_EQ(wizard.DescribeFindings()[0].title, Outils_Texte::GetText(EText::wizardHint));
    for (const char* name : {"raw1.log", "blind.tarin", "old.tarin"}) {
        wizard.ChooseInputFiles(InFolder({name}));
        for (int i = 0; i < 100 && wizard.GetFindings().isBusy; ++i) m_looks.Wait(std::chrono::seconds(1));
        const auto rows = wizard.DescribeFindings();
        if (name == std::string("blind.tarin"))
            EXPECT_EQ(rows[0].value, Outils_Texte::GetText(EText::surveyNoInertial));
        else
            EXPECT_EQ(rows[0].title, Outils_Texte::GetText(EText::surveyNone)) << name;
        EXPECT_EQ(rows.size(), name == std::string("blind.tarin") ? 3U : 1U);
    }
}

TEST_F(ProjectDialogs, OffersNoMoreThanAProjectTakes) {
    {
        test::CTestRecording recording(m_folder / "log.tarin");
        constexpr std::string_view channels[] = {"IMU", "DVL_BT", "DVL_WT"};
        ASSERT_TRUE(recording.GetWriter().Create(m_folder / "log.tarin", channels));
        recording.Imu(0, 9);
        for (const char* channel : {"DVL_BT", "DVL_WT"})
            EXPECT_TRUE(recording.GetWriter().Write(channel, Persistance_Xpf::CXpfTarinDvlPacketV1()));
        recording.Flush();
    }
    CNewProjectWizard wizard(m_host, m_configuration, m_looks);
    wizard.ChooseInputFiles(InFolder({"log.tarin"}));
    wizard.Survey([] {});
    for (int i = 0; i < 100 && wizard.GetFindings().isBusy; ++i) m_looks.Wait(std::chrono::seconds(1));
    const auto taken = [&wizard] {
        std::vector<std::string> names;
        for (const auto& offer : wizard.GetFindings().offers)
            if (offer.isTaken) names.push_back(offer.channel.name);
        return names;
    };
    EXPECT_THAT(taken(), ElementsAre("DVL_BT"));
    wizard.Take(1, true);
    EXPECT_THAT(taken(), ElementsAre("DVL_WT"));
    wizard.Take(1, false);
    EXPECT_THAT(taken(), IsEmpty());
}

TEST_F(ProjectDialogs, FindsMissingFilesBesideTheFirst) {
    for (const char* name : {"second.tarin", "third.tarin", "fourth.tarin"}) Record(name, 14);
    std::string message;
    auto made = CreateProject({m_folder / "dive.tarin", m_folder / "p.tarprj"}, message);
    for (const char* name : {"second.tarin", "third.tarin"})
        ASSERT_TRUE(made->AddDataFile(m_folder / name, false));
    const auto path = m_folder / "p.tarprj";
    {
        CTrvDocument document(m_host, m_host.m_queue, m_configuration, false);
        ASSERT_TRUE(document.NewFromProject(std::move(made), path));
    }
    std::filesystem::create_directories(m_folder / "moved");
    for (const char* name : {"dive.tarin", "third.tarin"})
        std::filesystem::rename(m_folder / name, m_folder / "moved" / name);

    CTrvDocument document(m_host, m_host.m_queue, m_configuration, false);
    ASSERT_TRUE(document.CommandOpen(path));
    CRelinkDialog dialog(document);
    ASSERT_EQ(dialog.GetRows().size(), 2U);
    EXPECT_FALSE(dialog.OnOK()); // nothing was chosen
    EXPECT_EQ(dialog.GetQuestion(1).proposed, m_folder / "third.tarin");
    dialog.Choose(1, m_folder / "moved/third.tarin");
    EXPECT_EQ(dialog.GetRows()[0].place, m_folder / "moved/dive.tarin");
    const auto& run = *document.GetProject()->simulationParameters;
    // A file of the project cannot stand for another one.
    dialog.Choose(1, m_folder / "second.tarin");
    EXPECT_FALSE(dialog.OnOK());
    EXPECT_EQ(m_host.TakeMessages(),
              std::vector{std::string(Outils_Texte::GetText(EText::dataFileReferenced))});
    EXPECT_EQ(run.mainInputFile->path, m_folder / "dive.tarin");
    EXPECT_FALSE(document.IsModified());
    dialog.Choose(1, m_folder / "fourth.tarin");
    EXPECT_TRUE(dialog.OnOK());
    EXPECT_EQ(run.mainInputFile->path, m_folder / "moved/dive.tarin");
    EXPECT_EQ(run.externalFiles[1]->path, m_folder / "fourth.tarin");
    EXPECT_TRUE(document.IsModified());
    // The files are followed where they are now.
    const auto* file = run.mainInputFile.get();
    EXPECT_TRUE(m_host.m_queue.RunUntil(
        [&] {
            const auto* layer = document.GetProject()->dataModel->FindLayer(file, test::kGpsNumber);
            return layer && layer->m_hasData;
        },
        std::chrono::seconds(30)));
    EXPECT_THAT(document.GetFiles()->GetMissing(), IsEmpty());
}

TEST_F(ProjectDialogs, OldFilesAreAskedAboutTogether) {
    CTrvDocument document(m_host, m_host.m_queue, m_configuration, false);
    Record("second.tarin", 14);
    Record("repaired.tarin", 14);
    std::string message;
    auto project = CreateProject({m_folder / "dive.tarin", m_folder / "p.tarprj"}, message);
    ASSERT_TRUE(project && project->AddDataFile(m_folder / "second.tarin", false));
    ASSERT_TRUE(document.NewFromProject(std::move(project), m_folder / "p.tarprj"));
    for (const auto& file : InFolder({"dive.tarin", "second.tarin"})) test::MakeOutdated(file);
    m_host.m_repaired = m_folder / "repaired.tarin";
    std::vector<std::string> names; // of the first channels, as the dictionary has them
    for (const bool upgrade : {false, true}) {
        m_host.m_answers = {upgrade ? EAnswer::yes : EAnswer::no};
        ASSERT_TRUE(document.CommandOpen(m_folder / "p.tarprj"));
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::upgradeDataFiles)));
        for (const CTrvDataFile* file : document.GetProject()->simulationParameters->GetDataFiles())
            if (const auto* layer = document.GetProject()->dataModel->FindLayer(file, 0))
                names.push_back(layer->m_name);
    }
    EXPECT_THAT(names, ElementsAre("XMU", "XMU", "IMU", "IMU"));
}

TEST_F(ProjectDialogs, NewOpensTheWizardsProject) {
    m_configuration.Set(Cnf<"general/gpsAltitudeMode">, EGpsAltitudeMode::ellipsoid);
    CTrvDocument document(m_host, m_host.m_queue, m_configuration, false);
    m_host.m_makeProject = [&](const auto&, SMadeProject& made) {
        CNewProjectWizard wizard(m_host, m_configuration, m_looks);
        wizard.ChooseInputFiles(InFolder({"dive.tarin"}));
        wizard.insConfigurationFile = m_folder / "ini.txt";
        EProjectField focus{};
        EXPECT_TRUE(wizard.OnOK(focus));
        made = {wizard.TakeProject(), wizard.GetProjectPath()};
        return EOutcome::done;
    };
    ASSERT_TRUE(document.CommandNew());
    ASSERT_TRUE(document.GetProject());
    EXPECT_EQ(document.GetPathName(), m_folder / "dive.tarprj");
    EXPECT_TRUE(std::filesystem::exists(m_folder / "dive.tarprj"));
    EXPECT_FALSE(document.IsModified());
    const auto& parameters = *document.GetProject()->simulationParameters;
    EXPECT_EQ(parameters.outputFile->path, m_folder / "dive.tarout");
    EXPECT_EQ(parameters.gpsAltitudeReference, altitudeEllipsoid);
    EXPECT_EQ(parameters.nelixConfiguration->roughMisalignment, 9);
    EXPECT_EQ(parameters.nelixConfiguration->type->equipment, 14); // the recording's, not the file's
    EXPECT_EQ(ToSpan(parameters.begin), test::Seconds(1));
    EXPECT_EQ(ToSpan(parameters.end), test::Seconds(3));

    // The project stays until another one is accepted.
    m_host.m_makeProject = {};
    EXPECT_TRUE(document.CommandNew());
    EXPECT_EQ(&parameters, document.GetProject()->simulationParameters.get());
    EXPECT_EQ(document.GetPathName(), m_folder / "dive.tarprj");
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

TEST_F(ProjectDialogs, EquipmentChoosesTheAlgorithm) {
    const std::pair<int, int> rows[] = {{9, algorithmStandard},  {13, algorithmBackward},
                                        {14, algorithmBackward}, {15, algorithmBackward},
                                        {17, algorithmStandard}, {18, algorithmBackward}};
    for (const auto& [equipment, algorithm] : rows) {
        Record("of.tarin", equipment);
        std::string message;
        const auto project = CreateProject({m_folder / "of.tarin", m_folder / "p.tarprj"}, message);
        ASSERT_TRUE(project) << message;
        EXPECT_EQ(project->simulationParameters->algorithm, algorithm) << equipment;
    }
    // A name that is no UTF-8 text would come back as another one.
    std::string message;
    Record("b\xFF.tarin", 14);
    EXPECT_FALSE(CreateProject({m_folder / "b\xFF.tarin", m_folder / "p.tarprj"}, message));
    EXPECT_EQ(message, Outils_Texte::FormatText(EText::nameNotStorable,
                                                {Outils_Fichiers::ToText(m_folder / "b\xFF.tarin")}));
}

TEST_F(ProjectDialogs, ChoosersListWhatTheProjectHas) {
    Record("more.tarin", 14);
    CTrvProject project(m_folder / "dive.tarin", m_folder / "dive.tarout");
    auto& parameters = *project.simulationParameters;
    CTrvDataFile* more = project.AddDataFile(m_folder / "more.tarin", false);
    ASSERT_TRUE(more);
    CTrvSensor* gps = parameters.AddSensor(ESensorKind::gps);
    parameters.outputFile->AddChannel(gps->channel->id, "GPS_1", std::string(gps->GetRuntimeClass().name));

    CDataFileChooser files(parameters, 2);
    std::vector<std::pair<EDataFileRole, std::string>> rows;
    for (const auto& row : files.GetRows()) rows.emplace_back(row.role, row.name);
    EXPECT_THAT(rows, ElementsAre(std::pair(EDataFileRole::mainInput, "dive.tarin"),
                                  std::pair(EDataFileRole::output, "dive.tarout"),
                                  std::pair(EDataFileRole::external, "more.tarin")));
    EXPECT_EQ(files.OnOK()->file, more);
    EXPECT_EQ(m_folder / "x", Outils_Fichiers::FromText(files.OnOK()->folder) / "x");
    files.Select(3);
    EXPECT_FALSE(files.OnOK());

    gps->channel = more->FindChannel("GPS_1");
    CDataFileChannelChooser channels(parameters, *gps);
    ASSERT_EQ(channels.GetRows().size(), 2u); // none of the result
    EXPECT_EQ(channels.OnOK()->data, gps->channel);
    channels.Select(0);
    EXPECT_EQ(channels.OnOK()->data, parameters.mainInputFile->FindChannel("GPS_1"));
    EXPECT_EQ(channels.OnOK()->file, "dive.tarin");
}

TEST(RoughMisalignment, SidesAndCodesBelongTogether) {
    for (const int equipment : {9, 11, 14})
        for (int code = 0; code < kRoughMisalignmentCount; ++code)
            EXPECT_EQ(CRoughMisalignmentChooser(code, equipment).GetCode(), code) << equipment;
    // Units of equipment 11, 12 and 16 are mounted the other way.
    const auto sides = [](int code, int equipment) {
        const CRoughMisalignmentChooser chooser(code, equipment);
        return std::pair(chooser.GetLogo(), chooser.GetConnector());
    };
    EXPECT_EQ(sides(9, 9), std::pair(3, 1));
    EXPECT_EQ(sides(9, 18), std::pair(3, 1));
    for (const int equipment : {11, 12, 16}) EXPECT_EQ(sides(9, equipment), std::pair(0, 3)) << equipment;
    EXPECT_EQ(sides(24, 11), std::pair(4, 0));
    EXPECT_EQ(sides(-1, 9), std::pair(0, 5));

    CRoughMisalignmentChooser chooser(0, 9);
    EXPECT_FALSE(chooser.SetConnector(1)); // on the axis of the logo
    EXPECT_FALSE(chooser.SetConnector(6) || chooser.SetLogo(6) || chooser.SetLogo(-1));
    EXPECT_EQ(chooser.GetConnector(), 5);
    EXPECT_TRUE(chooser.SetLogo(4)); // the connectors move to the first side of the next axis
    EXPECT_EQ(chooser.GetConnector(), 0);
    EXPECT_EQ(chooser.GetCode(), 17);
    EXPECT_TRUE(chooser.SetConnector(2));
    EXPECT_TRUE(chooser.SetLogo(3));
    EXPECT_EQ(chooser.GetConnector(), 4);

    EXPECT_EQ(chooser.GetLabel(2), "Right (starboard)");
    EXPECT_EQ(chooser.GetLabel(5), "Back (stern)");
    const CRoughMisalignmentChooser brief(0, 15);
    EXPECT_EQ(brief.GetLabel(1), "Downward");
    EXPECT_EQ(brief.GetLabel(2), "Right");
    EXPECT_EQ(brief.GetLabel(5), "Back");
}

} // namespace
