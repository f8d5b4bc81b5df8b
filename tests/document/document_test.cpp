#include "document/document.h"

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "document/project_creation.h"
#include "document/scripted_host.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

using namespace Application_Tarvel;
using namespace Outils_Configuration;
using namespace std::chrono_literals;
using Outils_Texte::EText;
using Outils_Texte::GetText;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Writes down what the document tells its views.
class CRecordingView : public IDocumentView {
  public:
    void OnUpdate(EHint hint, const Outils_Objets::CObject*) override { m_hints.push_back(hint); }
    bool Saw(EHint hint) const { return std::find(m_hints.begin(), m_hints.end(), hint) != m_hints.end(); }
    std::vector<EHint> m_hints;
};

std::string Text(EText id) { return std::string(GetText(id)); }

std::vector<std::uint8_t> BytesOf(const std::filesystem::path& path) {
    return Outils_Fichiers::ReadWholeFile(path, 1 << 20).value_or(std::vector<std::uint8_t>());
}

class Document : public testing::Test {
  protected:
    Document() {
        // Parameter files of other tests must not be seen here.
        std::filesystem::create_directory(m_temporary);
        ::setenv("TMPDIR", m_temporary.c_str(), 1);
        m_host.m_programFolder = TEST_ENGINE_FOLDER;
        m_configuration.Set(Cnf<"process/morvex">, "test_engine");
        m_document.AddView(&m_view);
        test::CTestRecording recording(m_recording);
        Persistance_Xpf::CXpfTarinImuPacketV2 imu;
        imu.SetUInt8(2, 14);
        for (int i = 0; i < 300; ++i) {
            imu.SetDate(0, test::Seconds(i * 0.01));
            imu.SetUInt16(1, static_cast<std::uint16_t>(i));
            EXPECT_TRUE(recording.GetWriter().Write("IMU", imu));
            if (i % 100 == 50) recording.Gps(i * 0.01, 48.5, -4.5, 10);
            if (i == 20) recording.Utc(0.2, 2024, 10, 0, 0.2f);
        }
    }
    ~Document() override {
        EXPECT_EQ(m_host.m_waitCursors, 0);
        ::unsetenv("TMPDIR");
    }

    // A new project over the recording, saved as "p.tarprj".
    void Create() {
        std::string message;
        auto project = CreateProject({m_recording, m_project}, message);
        ASSERT_TRUE(project) << message;
        ASSERT_TRUE(m_document.NewFromProject(std::move(project), m_project));
        m_host.m_queue.RunPending();
    }
    bool PumpUntil(const std::function<bool()>& done) { return m_host.m_queue.RunUntil(done, 30s); }
    void PumpRunToItsEnd() {
        while (m_document.IsSimulationRunning()) m_host.m_queue.RunOne(10ms);
        m_host.m_queue.RunPending();
    }
    void UseEngine(const char* mode) { ::setenv("TEST_ENGINE", mode, 1); }
    std::vector<std::filesystem::path> ParameterFiles() const {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_temporary))
            files.push_back(entry.path());
        return files;
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_temporary = m_folder / "temporary";
    std::filesystem::path m_recording = m_folder / "r.tarin";
    std::filesystem::path m_project = m_folder / "p.tarprj";
    test::CScriptedHost m_host;
    CTrvCnfConfigFile m_configuration;
    CRecordingView m_view;
    CTrvDocument m_document{m_host, m_host.m_queue, m_configuration};
};

TEST_F(Document, ANewProjectKnowsItsRecording) {
    Create();
    const auto& parameters = *m_document.GetProject()->simulationParameters;
    EXPECT_EQ(parameters.nelixConfiguration->type->equipment, 14);
    EXPECT_EQ(m_host.m_equipment, 14);
    EXPECT_EQ(parameters.algorithm, Metier_Tarvel::algorithmBackward);
    EXPECT_EQ(parameters.heaveAlgorithm, Metier_Tarvel::heaveKelvar);
    EXPECT_EQ(Metier_Tarvel::ToSpan(parameters.end), test::Seconds(2.99));
    EXPECT_EQ(parameters.outputFile->path, m_folder / "p.tarout");
    EXPECT_EQ(parameters.imuFrequency, 100);
    EXPECT_EQ(parameters.referencePosition.latitude, 48.5);
    Outils_Temps::CDateTime origin;
    origin.SetDateTime(2024, 3, 14, 10, 0, 0, 0);
    ASSERT_TRUE(parameters.hasUtcReference);
    // The seconds of a UTC packet have the precision of a float.
    EXPECT_LT(std::abs((parameters.utcReference - origin).GetTicks()), 10);
    EXPECT_FALSE(m_document.IsModified());
    EXPECT_TRUE(PumpUntil([&] { return m_view.Saw(hintChannelFound); }));

    std::string message;
    EXPECT_FALSE(CreateProject({m_folder / "gone.tarin", m_project}, message));
    EXPECT_FALSE(message.empty());
    std::ofstream(m_folder / "text.tarin") << "no packets here";
    EXPECT_FALSE(CreateProject({m_folder / "text.tarin", m_project}, message));
}

TEST_F(Document, OpensSavesAndFollowsItsName) {
    Create();
    const auto bytes = BytesOf(m_project);
    const std::string head("\xFF\xFF\x01\x00\x0B\x00"
                           "CTrvProject\x03\x00\x00\x00\x01\x00\x00\x00\x01\x00\x00\x00\xFF\xFF\x01\x00"
                           "\x18\x00"
                           "CTrvSimulationParameters",
                           17 + 12 + 6 + 24);
    ASSERT_GT(bytes.size(), head.size());
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin(),
                           [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; }));

    ASSERT_TRUE(m_document.CommandOpen(m_project));
    EXPECT_FALSE(m_document.IsModified());
    ASSERT_TRUE(m_document.Save());
    EXPECT_EQ(BytesOf(m_project), bytes);

    m_view.m_hints.clear();
    m_host.m_paths.push_back(m_folder / "q.tarprj");
    ASSERT_TRUE(m_document.CommandSaveAs());
    EXPECT_EQ(m_document.GetPathName(), m_folder / "q.tarprj");
    EXPECT_EQ(m_document.GetProject()->simulationParameters->outputFile->path, m_folder / "q.tarout");
    EXPECT_THAT(m_view.m_hints, Contains(hintOutputFileNameChanged));
    EXPECT_FALSE(m_document.CommandSaveAs()); // no name given
}

TEST_F(Document, WhatCannotBeOpenedLeavesAnEmptyDocumentAndAMessage) {
    Create();
    auto bytes = BytesOf(m_project);
    bytes.resize(bytes.size() / 2);
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_folder / "half.tarprj", bytes));
    bytes = BytesOf(m_project);
    bytes[17] = 99; // the version of the project
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_folder / "future.tarprj", bytes));
    const struct {
        const char* name;
        EText text;
    } rows[] = {{"half.tarprj", EText::failedToLoad},
                {"gone.tarprj", EText::failedToLoad},
                {"", EText::failedToLoad},
                {"future.tarprj", EText::projectTooNew}};
    for (const auto& [name, text] : rows) {
        const auto path = m_folder / name;
        EXPECT_FALSE(m_document.CommandOpen(path)) << name;
        EXPECT_FALSE(m_document.GetProject());
        EXPECT_THAT(m_host.TakeMessages(),
                    ElementsAre(Outils_Texte::FormatText(text, {Outils_Fichiers::ToText(path)})));
    }
    EXPECT_TRUE(m_document.CommandNew());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_FALSE(m_document.StopSimulation());
}

TEST_F(Document, ChangesAreNeverLostWithoutAQuestion) {
    Create();
    m_document.ProjectChanged(hintSimulationParametersChanged, nullptr);
    EXPECT_TRUE(m_document.IsModified() && m_document.AreParametersChanged());
    m_host.m_answers = {EAnswer::cancel};
    EXPECT_FALSE(m_document.CommandNew());
    EXPECT_TRUE(m_document.GetProject());
    m_host.m_answers = {EAnswer::cancel};
    EXPECT_FALSE(m_document.CanCloseFrame());

    // A save that fails keeps file, mark and project.
    const auto bytes = BytesOf(m_project);
    m_host.m_answers = {EAnswer::yes, EAnswer::ok};
    {
        const test::CFaultyDisk disk(m_folder.GetPath(), test::CFaultyDisk::isFull);
        EXPECT_FALSE(m_document.CommandOpen(m_folder / "other.tarprj"));
    }
    EXPECT_TRUE(m_document.IsModified() && m_document.GetProject());
    EXPECT_EQ(BytesOf(m_project), bytes);
    EXPECT_THAT(m_host.m_output, ElementsAre(Outils_Texte::FormatText(EText::projectNotSaved,
                                                                      {Outils_Fichiers::ToText(m_project)})));
    m_host.m_answers = {EAnswer::yes};
    EXPECT_TRUE(m_document.CloseDocument());
    EXPECT_EQ(BytesOf(m_project), bytes);
    EXPECT_FALSE(m_document.GetProject());
}

TEST_F(Document, ARunReportsAndEnds) {
    UseEngine("work");
    Create();
    std::ofstream(m_folder / "p.tarout") << "an old result";
    m_view.m_hints.clear();
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_FALSE(std::filesystem::exists(m_folder / "p.tarout"));
    EXPECT_THAT(m_view.m_hints, ElementsAre(hintDataFileContentChanged, hintRunStarted));
    EXPECT_TRUE(m_host.m_progressShows);
    PumpRunToItsEnd();
    EXPECT_TRUE(m_view.Saw(hintRunEnded));
    EXPECT_FALSE(m_host.m_progressShows);
    EXPECT_THAT(m_host.m_output, ElementsAre("INFO : parameters \"read\"", "????? : odd"));
    EXPECT_THAT(m_host.m_progress, Contains(100));
    // Set back at the start and at the end; what the engine said last may come behind that, to a hidden bar.
    EXPECT_GE(std::count(m_host.m_progress.begin(), m_host.m_progress.end(), 0), 2);

    // The parameter file stays until the document closes, so that the engine reads it at its own pace.
    ASSERT_EQ(ParameterFiles().size(), 1u);
    ASSERT_TRUE(m_document.StartSimulation());
    PumpRunToItsEnd();
    EXPECT_EQ(ParameterFiles().size(), 2u);
    EXPECT_TRUE(m_document.CloseDocument());
    EXPECT_THAT(ParameterFiles(), IsEmpty());
}

TEST_F(Document, ARunGuardsTheProject) {
    UseEngine("wait");
    Create();
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_FALSE(m_document.CommandNew());
    EXPECT_FALSE(m_document.CommandOpen(m_project));
    EXPECT_FALSE(m_document.CommandSaveAs());
    EXPECT_FALSE(m_document.CanCloseFrame());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Text(EText::stopBeforeClose), Text(EText::stopBeforeClose),
                            Text(EText::stopBeforeSaveAs), Text(EText::stopBeforeExit)));
    EXPECT_TRUE(m_document.StopSimulation());
    PumpRunToItsEnd();
    EXPECT_FALSE(m_document.StopSimulation());
    EXPECT_TRUE(m_document.CanCloseFrame());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

TEST_F(Document, AnEngineThatDoesNotStopCanBeTerminated) {
    UseEngine("deaf");
    Create();
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_THAT(m_host.m_messages, IsEmpty()); // not frozen before five seconds have passed
    m_host.Sleep(6s);
    m_host.m_answers = {EAnswer::cancel, EAnswer::ok};
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_TRUE(m_document.IsSimulationRunning());
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_FALSE(m_document.IsSimulationRunning());
    EXPECT_THAT(m_host.m_messages, ElementsAre(Text(EText::frozen), Text(EText::frozen)));
    EXPECT_TRUE(m_view.Saw(hintRunEnded));
}

TEST_F(Document, ARunAsksToSaveWhatChanged) {
    UseEngine("work");
    Create();
    const auto change = [&] { m_document.ProjectChanged(hintSimulationParametersChanged, nullptr); };
    change();
    m_host.m_answers = {EAnswer::cancel};
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::mustSaveBeforeRun)));
    std::ofstream(m_folder / "p.tarout") << "a result";
    m_host.m_answers = {EAnswer::cancel};
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::resultExists)));
    m_host.m_answers = {EAnswer::no};
    m_host.m_paths.push_back(m_folder / "second.tarprj");
    EXPECT_TRUE(m_document.StartSimulation());
    EXPECT_TRUE(std::filesystem::exists(m_folder / "p.tarout"));
    EXPECT_FALSE(m_document.AreParametersChanged());
    PumpRunToItsEnd();
}

TEST_F(Document, ABrokenRuleStopsRunAndBatchFileAlike) {
    Create();
    auto& parameters = *m_document.GetProject()->simulationParameters;
    parameters.AddZupt();
    parameters.defaultOutputRate = 0;
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.m_output, ElementsAre(Text(EText::parametersWrongLine),
                                             "Default output rate value should be strictly positive",
                                             "ZUPT end time should be strictly greater than begin time"));
    EXPECT_FALSE(m_document.PrepareBatchCommandFile());
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Text(EText::parametersWrongRun), Text(EText::parametersWrongBatch)));
    EXPECT_THAT(ParameterFiles(), IsEmpty());

    parameters.defaultOutputRate = 1;
    parameters.RemoveZupt(parameters.zupts[0].get());
    m_host.m_commandFile = m_folder / "nowhere" / "c.xml";
    EXPECT_FALSE(m_document.PrepareBatchCommandFile());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::parametersNotWritten)));
    m_host.m_commandFile = m_folder / "c.xml";
    EXPECT_TRUE(m_document.PrepareBatchCommandFile());
    EXPECT_EQ(m_host.m_proposed, m_folder / "p-parameters.xml");
    EXPECT_TRUE(std::filesystem::exists(m_folder / "c.xml"));

    // While the recording does not answer, nothing is written that a ciphered one would hide.
    std::filesystem::remove(m_folder / "c.xml");
    m_configuration.Set(Cnf<"general/utcSearch/timeout">, 1);
    m_host.m_patience = 0ms;
    {
        const test::CFaultyDisk disk(m_recording, test::CFaultyDisk::stalls);
        ASSERT_TRUE(m_document.CommandOpen(m_project));
        EXPECT_FALSE(m_document.PrepareBatchCommandFile());
    }
    EXPECT_THAT(m_host.TakeMessages(),
                ElementsAre(Outils_Texte::FormatText(EText::cipherUnknown, {m_recording.string()})));
    EXPECT_FALSE(std::filesystem::exists(m_folder / "c.xml"));
    EXPECT_TRUE(m_document.PrepareBatchCommandFile()) << "a late answer is waited for";
    EXPECT_FALSE(m_document.GetFileLooks().Call([](const auto&) -> int { throw std::bad_alloc(); }, 30s));
}

TEST_F(Document, AnEngineThatDiesOrIsMissingIsNoDisaster) {
    Create();
    UseEngine("die");
    EXPECT_TRUE(m_document.StartSimulation());
    PumpRunToItsEnd();
    m_host.m_programFolder = m_folder / "nowhere";
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::noProcess)));
    const test::CFaultyDisk disk(m_temporary, test::CFaultyDisk::isFull);
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::noParameterFile)));
    EXPECT_EQ(ParameterFiles().size(), 1u); // that of the first run
    EXPECT_FALSE(m_document.IsSimulationRunning());
}

// The engine is killed at any byte: the whole packets of its result are there, and what is no result yet is
// told once the run is over.
TEST_F(Document, AResultThatWasCutByTheEndOfItsEngineGivesWhatWasWhole) {
    UseEngine("wait");
    Create();
    const auto result = m_folder / "p.tarout";
    {
        constexpr std::string_view channels[] = {"MORVEX_STD", "MORVEX_MSG"};
        Enregistrement::CRecordingWriter writer;
        ASSERT_TRUE(writer.Create(m_folder / "whole", channels));
        ASSERT_TRUE(writer.Write("MORVEX_STD", Persistance_Xpf::CXpfTaroutMorvexStdPacketV2()));
        ASSERT_TRUE(writer.Write("MORVEX_MSG", Persistance_Xpf::CXpfTaroutMorvexMsgPacketV1()));
        ASSERT_TRUE(writer.Close());
    }
    const auto whole = BytesOf(m_folder / "whole");
    const auto hasData = [&](std::string_view name) {
        const auto& layers = m_document.GetProject()->dataModel->m_layers;
        return std::any_of(layers.begin(), layers.end(),
                           [name](const auto& layer) { return layer->m_name == name && layer->m_hasData; });
    };
    const auto runAndCutAt = [&](std::size_t size) {
        ASSERT_TRUE(m_document.StartSimulation());
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(result, std::span(whole).first(size)));
        EXPECT_TRUE(m_document.StopSimulation());
        PumpRunToItsEnd();
        m_host.m_output.clear();
    };
    runAndCutAt(whole.size() - 5);
    EXPECT_TRUE(PumpUntil([&] { return hasData("MORVEX_STD"); }));
    while (m_document.IsAnalysing()) m_host.m_queue.RunOne(10ms);
    m_host.m_queue.RunPending();
    EXPECT_THAT(m_host.m_output, IsEmpty());
    runAndCutAt(60);
    EXPECT_TRUE(PumpUntil([&] { return !m_host.m_output.empty(); }));
    EXPECT_THAT(m_host.m_output, ElementsAre(Outils_Texte::FormatText(EText::fileNoHeader,
                                                                      {Outils_Fichiers::ToText(result)})));
    EXPECT_FALSE(hasData("MORVEX_STD"));
}

TEST_F(Document, SensorsWithoutAChoiceAreAddedWhileANewProjectIsOpen) {
    constexpr std::string_view channels[] = {"IMU", "SYNCHRO_2", "PLATFORM_ORIENT"};
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(m_recording, channels));
    ASSERT_TRUE(writer.Write("IMU", Persistance_Xpf::CXpfTarinImuPacketV2()));
    ASSERT_TRUE(writer.Write("SYNCHRO_2", Persistance_Xpf::CXpfTarinSynchroPacketV2()));
    ASSERT_TRUE(writer.Write("PLATFORM_ORIENT", Persistance_Xpf::CXpfPlatformOrientationPacketV1()));
    ASSERT_TRUE(writer.Close());
    Create();
    const auto& sensors = m_document.GetProject()->simulationParameters->sensors;
    ASSERT_TRUE(PumpUntil([&] { return sensors.size() == 2; }));
    EXPECT_EQ(dynamic_cast<Metier_Tarvel::CTrvSensorEventMarker&>(*sensors[0]).eventId, "2");
    EXPECT_THAT(m_host.m_output, ElementsAre(Text(EText::eventMarkerAdded), Text(EText::mountAdded)));
    EXPECT_TRUE(m_document.IsModified() && m_view.Saw(hintSensorAdded));

    // Not in a project that was opened.
    m_host.m_answers = {EAnswer::no};
    ASSERT_TRUE(m_document.CommandOpen(m_project));
    m_view.m_hints.clear();
    ASSERT_TRUE(PumpUntil(
        [&] { return std::count(m_view.m_hints.begin(), m_view.m_hints.end(), hintChannelFound) == 3; }));
    EXPECT_THAT(m_document.GetProject()->simulationParameters->sensors, IsEmpty());
}

TEST_F(Document, AResultThatAppearsAndGrowsIsFollowed) {
    Create();
    const auto result = m_folder / "p.tarout";
    std::ofstream(result) << "XP"; // seen before its header is whole
    ASSERT_TRUE(PumpUntil([&] { return !m_host.m_output.empty(); }));
    constexpr std::string_view channels[] = {"MORVEX_STD", "MORVEX_MSG"};
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(result, channels));
    ASSERT_TRUE(writer.Write("MORVEX_STD", Persistance_Xpf::CXpfTaroutMorvexStdPacketV2()));
    ASSERT_TRUE(writer.Flush());
    const auto* output = m_document.GetProject()->simulationParameters->outputFile.get();
    const auto hasData = [&](std::string_view name) {
        for (const auto& layer : m_document.GetProject()->dataModel->m_layers)
            if (layer->m_dataFile == output && layer->m_name == name && layer->m_hasData) return true;
        return false;
    };
    ASSERT_TRUE(PumpUntil([&] { return hasData("MORVEX_STD"); }));
    EXPECT_TRUE(m_view.Saw(hintDataLayersRebuilt) && m_view.Saw(hintDataFileContentChanged));
    EXPECT_FALSE(hasData("MORVEX_MSG"));
    ASSERT_TRUE(writer.Write("MORVEX_MSG", Persistance_Xpf::CXpfTaroutMorvexMsgPacketV1()));
    ASSERT_TRUE(writer.Close());
    EXPECT_TRUE(PumpUntil([&] { return hasData("MORVEX_MSG"); }));
    std::filesystem::remove(result);
    EXPECT_TRUE(PumpUntil([&] { return !hasData("MORVEX_STD"); }));
}

} // namespace
