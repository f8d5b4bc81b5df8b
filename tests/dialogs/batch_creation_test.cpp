#include "dialogs/batch_creation.h"

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "dialogs/project_dialogs.h"
#include "document/document.h"
#include "document/scripted_host.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <optional>

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr int kPackets = 1000;

class BatchCreation : public testing::Test {
  protected:
    // Over a recording that starts at 10:00:00 UTC, and one that starts ten seconds later.
    BatchCreation() {
        Record("main.tarin", 0);
        Record("ext.tarin", 10);
        CTrvProject project(m_folder / "main.tarin", m_folder / "result.tarout");
        auto& parameters = *project.simulationParameters;
        EXPECT_TRUE(project.AddDataFile(m_folder / "ext.tarin", false));
        parameters.SetUtcReference(FindUtcOrigin(m_folder / "main.tarin", kPackets), {});
        parameters.begin = ToStoredTime(test::Seconds(-1.5));
        parameters.end = ToStoredTime(test::Seconds(2.25));
        parameters.AddZupt()->end = CDateTime(7);
        parameters.AddSensor(ESensorKind::gps)->channel = parameters.externalFiles[0]->FindChannel("GPS_1");
        EXPECT_TRUE(Persistance_Parametres::WriteParameterFile(m_file, parameters));
    }

    // `start` in seconds after 10:00:00, none below 0; a UTC packet follows the first IMU packet.
    void Record(const char* name, int start, int imuPackets = 2) {
        test::CTestRecording recording(m_folder / name);
        for (int i = 0; i < imuPackets; ++i) {
            recording.Imu(i * 0.1, 17);
            if (i == 0 && start >= 0) recording.Utc(0.25, 2024, 10, 0, static_cast<float>(start) + 0.25f);
        }
        if (imuPackets == 0 && start >= 0) recording.Utc(0, 2024, 10, 0, static_cast<float>(start));
        recording.Flush();
    }
    // Changes all of `from` in the command file.
    void Edit(const std::string& from, const std::string& to) {
        std::ifstream in(m_file, std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(in), {});
        in.close();
        ASSERT_NE(text.find(from), std::string::npos);
        for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
            text.replace(at, from.size(), to);
        std::ofstream(m_file, std::ios::binary) << text;
    }
    // The message of a failed creation with this file in the place of the one of this id.
    std::string FailureWith(std::string_view id, const char* name, int maxPacketCount = kPackets) {
        CBatchCreation creation;
        std::string message;
        EXPECT_TRUE(creation.Load(m_file, message)) << message;
        EXPECT_TRUE(creation.ChooseFile(id, m_folder / name));
        EXPECT_FALSE(creation.Create(CBatchCreation::LookInto(creation.GetFiles(), maxPacketCount), message));
        return message;
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_file = m_folder / "p-parameters.xml";
};

} // namespace

TEST_F(BatchCreation, ProjectComesBackFromCommandFile) {
    Edit(".\\ext.tarin\"", ".\\ext.tarin\" timeOffset=\"2.5\"");
    CBatchCreation creation;
    std::string message;
    ASSERT_TRUE(creation.Load(m_file, message));
    EXPECT_EQ(creation.GetProposedName(), "p-parameters");
    EXPECT_EQ(creation.GetProposedFolder() / "x", m_folder / "x");
    ASSERT_EQ(creation.GetFiles().size(), 3u);
    EXPECT_EQ(creation.GetFiles()[1].path, m_folder / "ext.tarin");
    std::filesystem::rename(m_folder / "main.tarin", m_folder / "moved.tarin");
    EXPECT_TRUE(creation.ChooseFile("main", m_folder / "moved.tarin"));
    EXPECT_FALSE(creation.ChooseFile("file03", m_folder / "moved.tarin"));
    auto project = creation.Create(CBatchCreation::LookInto(creation.GetFiles(), kPackets), message);
    ASSERT_TRUE(project) << message;
    const auto check = [&](const CTrvSimulationParameters& parameters) {
        CDateTime start;
        start.SetDateTime(2024, 3, 14, 10, 0, 0, 0);
        EXPECT_TRUE(parameters.hasUtcReference);
        EXPECT_EQ(parameters.utcReference, start);
        EXPECT_EQ(parameters.begin, ToStoredTime(test::Seconds(-1.5)));
        EXPECT_EQ(parameters.end, ToStoredTime(test::Seconds(2.25)));
        EXPECT_EQ(parameters.zupts.at(0)->end.GetTicks(), 7u);
        EXPECT_EQ(parameters.mainInputFile->path, m_folder / "moved.tarin");
        EXPECT_EQ(parameters.mainInputFile->timeOffset, CDateTime());
        EXPECT_EQ(parameters.externalFiles.at(0)->timeOffset, ToStoredTime(test::Seconds(12.5)));
        EXPECT_EQ(parameters.sensors.at(0)->channel->file, parameters.externalFiles[0].get());
        EXPECT_EQ(parameters.nelixConfiguration->type->housing, 7);
    };
    check(*project->simulationParameters);

    // The document searches the reference once more, and finds the same.
    test::CScriptedHost host;
    Outils_Configuration::CTrvCnfConfigFile configuration;
    CTrvDocument document(host, host.m_queue, configuration, false);
    ASSERT_TRUE(document.NewFromProject(std::move(project), m_folder / "p.tarprj"));
    check(*document.GetProject()->simulationParameters);

    // A file that does not tell its UTC keeps its offset.
    Record("silent.tarin", -1);
    EXPECT_TRUE(creation.ChooseFile("file02", m_folder / "silent.tarin"));
    project = creation.Create(CBatchCreation::LookInto(creation.GetFiles(), kPackets), message);
    ASSERT_TRUE(project) << message;
    EXPECT_EQ(project->simulationParameters->externalFiles.at(0)->timeOffset,
              ToStoredTime(test::Seconds(2.5)));
}

TEST_F(BatchCreation, TenExternalFilesKeepTheirOrder) {
    CTrvProject project(m_folder / "main.tarin", m_folder / "result.tarout");
    auto& parameters = *project.simulationParameters;
    for (int i = 0; i < 10; ++i) {
        const std::string name = "ext" + std::to_string(i) + ".tarin";
        Record(name.c_str(), i);
        ASSERT_TRUE(project.AddDataFile(m_folder / name, false));
    }
    parameters.AddSensor(ESensorKind::gps)->channel = parameters.externalFiles[9]->FindChannel("GPS_1");
    ASSERT_TRUE(Persistance_Parametres::WriteParameterFile(m_file, parameters));
    CBatchCreation creation;
    std::string message;
    ASSERT_TRUE(creation.Load(m_file, message)) << message;
    EXPECT_EQ(creation.GetFiles().at(1).id, "file02") << "after the main input";
    EXPECT_EQ(creation.GetFiles().at(9).id, "file10");
    const auto back = creation.Create(CBatchCreation::LookInto(creation.GetFiles(), kPackets), message);
    ASSERT_TRUE(back) << message;
    const auto& files = back->simulationParameters->externalFiles;
    ASSERT_EQ(files.size(), 10u);
    for (std::size_t i = 0; i < 10; ++i) EXPECT_EQ(files[i]->path, parameters.externalFiles[i]->path);
    EXPECT_EQ(back->simulationParameters->sensors.at(0)->channel->file, files[9].get());
}

TEST_F(BatchCreation, EachFailureHasItsMessage) {
    Record("silent.tarin", -1);
    Record("empty.tarin", 0, 0);
    std::ofstream(m_folder / "other.tarin") << "no recording";
    const std::string notRead = FormatText(EText::batchFileNotRead, {ToText(m_file)});
    EXPECT_EQ(FailureWith("main", "other.tarin"),
              FormatText(EText::noSynchronization, {ToText(m_folder / "other.tarin")}));
    EXPECT_EQ(FailureWith("file02", "none.tarin"),
              FormatText(EText::noSynchronization, {ToText(m_folder / "none.tarin")}));
    EXPECT_EQ(FailureWith("main", "empty.tarin"), GetText(EText::noEquipment));
    // The dates of the command file need the UTC of the recording, within the first packets.
    EXPECT_EQ(FailureWith("main", "silent.tarin"), notRead);
    EXPECT_EQ(FailureWith("main", "main.tarin", 1), notRead);
    EXPECT_EQ(FailureWith("file02", "main.tarin"), notRead) << "two inputs on one file";

    CBatchCreation creation;
    std::string message;
    Edit("outputFile", "output");
    EXPECT_FALSE(creation.Load(m_file, message));
    EXPECT_EQ(message, GetText(EText::batchFileCorrupted));
    EXPECT_FALSE(creation.Create(CBatchCreation::LookInto(creation.GetFiles(), kPackets), message));
    EXPECT_EQ(message, GetText(EText::batchFileCorrupted));
}

// The look at the last file must give up in the middle of its search.
TEST_F(BatchCreation, UnfinishedSearchFails) {
    Record("ext.tarin", -1, 10 * kPackets);
    CBatchCreation creation;
    std::string message;
    ASSERT_TRUE(creation.Load(m_file, message));
    CBatchCreation::SRecordings recordings;
    test::StopHalfWay(m_folder / "ext.tarin", [&](const Outils::CEvent& cancel) {
        recordings = CBatchCreation::LookInto(creation.GetFiles(), 10 * kPackets, &cancel);
    });
    EXPECT_FALSE(creation.Create(recordings, message));
    EXPECT_EQ(message, FormatText(EText::noSynchronization, {ToText(m_folder / "ext.tarin")}));
}

TEST_F(BatchCreation, CommandOpensTheDialogsProject) {
    test::CScriptedHost host;
    Outils_Configuration::CTrvCnfConfigFile configuration;
    CTrvDocument document(host, host.m_queue, configuration, false);
    host.m_makeProject = [&](const std::filesystem::path& commandFile, SMadeProject& made) {
        Dialogue_Tarvel::CNewFromBatchParametersDlg dialog(host, configuration, document.GetFileLooks());
        if (!dialog.Load(commandFile)) return EOutcome::failed;
        for (const auto& row : dialog.GetRows())
            EXPECT_EQ(row.path.extension(), std::string(".") + dialog.GetExtension(row));
        Dialogue_Tarvel::EProjectField focus{};
        if (!dialog.OnOK(focus)) return EOutcome::cancelled;
        made = {dialog.TakeProject(), dialog.GetProjectPath()};
        return EOutcome::done;
    };
    EXPECT_FALSE(document.CommandNewBatch()); // no file chosen
    host.m_commandFile = m_file;
    ASSERT_TRUE(document.CommandNewBatch());
    ASSERT_TRUE(document.GetProject());
    EXPECT_EQ(document.GetPathName(), m_folder / "p-parameters.tarprj");
    EXPECT_TRUE(std::filesystem::exists(m_folder / "p-parameters.tarprj"));
    // The result keeps the name that the command file gives.
    EXPECT_EQ(document.GetProject()->simulationParameters->outputFile->path, m_folder / "result.tarout");

    host.m_answers = {EAnswer::cancel}; // the project exists already
    EXPECT_TRUE(document.CommandNewBatch());
    EXPECT_EQ(host.TakeMessages(), std::vector{std::string(GetText(EText::overwriteProject))});
    Edit("outputFile", "output");
    EXPECT_FALSE(document.CommandNewBatch());
    EXPECT_EQ(host.TakeMessages(), std::vector{std::string(GetText(EText::batchFileCorrupted))});
    EXPECT_EQ(document.GetPathName(), m_folder / "p-parameters.tarprj"); // which stays open
    EXPECT_EQ(host.m_waitCursors, 0);
}
