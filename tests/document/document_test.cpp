#include "document/document_fixture.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

using namespace Application_Tarvel;
using namespace Outils_Configuration;
using namespace std::chrono_literals;
using Outils_Texte::EText;
using test::BytesOf;
using test::Text;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Document : public test::CDocumentFixture {};

TEST_F(Document, NewProjectKnowsItsRecording) {
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
}

TEST_F(Document, OpensSavesAndFollowsItsName) {
    Create();
    const auto bytes = BytesOf(m_project);

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

TEST_F(Document, CopyLeavesTheOpenProject) {
    Create();
    m_document.ProjectChanged(hintSimulationParametersChanged, nullptr);
    m_view.m_hints.clear();
    m_host.m_paths.push_back(m_folder / "copy.tarprj");
    ASSERT_TRUE(m_document.SaveCopyAs());
    const auto result = [&] { return m_document.GetProject()->simulationParameters->outputFile->path; };
    EXPECT_EQ(m_document.GetPathName(), m_project);
    EXPECT_EQ(result(), m_folder / "p.tarout");
    EXPECT_TRUE(m_document.IsModified() && m_document.AreParametersChanged());
    EXPECT_THAT(m_view.m_hints, IsEmpty());
    m_host.m_answers = {EAnswer::no};
    ASSERT_TRUE(m_document.CommandOpen(m_folder / "copy.tarprj"));
    EXPECT_EQ(result(), m_folder / "copy.tarout");
}

TEST_F(Document, FailedSaveNamesTheFolder) {
    Create();
    m_view.m_hints.clear();
    m_host.m_paths = {m_folder / "none" / "q.tarprj", m_folder / "none" / "q.tarprj"};
    EXPECT_FALSE(m_document.CommandSaveAs());
    EXPECT_FALSE(m_document.SaveCopyAs());
    EXPECT_EQ(m_document.GetProject()->simulationParameters->outputFile->path, m_folder / "p.tarout");
    EXPECT_EQ(m_document.GetPathName(), m_project);
    EXPECT_THAT(m_view.m_hints, IsEmpty());
    const auto namesFolder = testing::HasSubstr("does not exist: " + (m_folder / "none").string() + "\n");
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(namesFolder, namesFolder));
}

TEST_F(Document, UnsavedChangesAreOfferedAtOpen) {
    Create();
    const auto unsaved = m_folder / "p.tarprj.unsaved";
    const auto rate = [&]() -> auto& {
        return m_document.GetProject()->simulationParameters->defaultOutputRate;
    };
    const auto former = rate();
    m_document.EndNow();
    EXPECT_FALSE(std::filesystem::exists(unsaved)); // nothing to keep
    const auto change = [&] {
        rate() = former + 1;
        m_document.ProjectChanged(hintSimulationParametersChanged, nullptr);
    };
    struct SCase {
        EAnswer answer;
        bool isRestored;
    };
    for (const auto& [answer, isRestored] : {SCase{EAnswer::no, false}, SCase{EAnswer::yes, true}}) {
        change();
        m_document.EndNow();
        EXPECT_THAT(m_host.m_messages, IsEmpty());
        m_document.SetModifiedFlag(false); // the program has ended
        m_host.m_answers = {answer};
        ASSERT_TRUE(m_document.CommandOpen(m_project));
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Outils_Texte::FormatText(
                                               EText::restoreUnsaved, {Outils_Fichiers::ToText(m_project)})));
        EXPECT_EQ(rate(), isRestored ? former + 1 : former);
        EXPECT_EQ(m_document.IsModified(), isRestored);
        EXPECT_EQ(std::filesystem::exists(unsaved), isRestored);
    }
    EXPECT_EQ(m_document.GetPathName(), m_project);
    // Opened again: the changes are saved first, so that nothing is left to offer.
    m_host.m_answers = {EAnswer::yes};
    ASSERT_TRUE(m_document.CommandOpen(m_project));
    EXPECT_THAT(m_host.TakeMessages(), testing::SizeIs(1));
    EXPECT_EQ(rate(), former + 1);
    EXPECT_FALSE(std::filesystem::exists(unsaved));
}

TEST_F(Document, StartOffersWorkWithoutAFolder) {
    Create();
    const auto end = [&] {
        m_document.ProjectChanged(hintSimulationParametersChanged, nullptr);
        const bool kept = m_document.EndNow();
        m_document.SetModifiedFlag(false); // the program has ended
        EXPECT_TRUE(m_document.CloseDocument());
        return kept;
    };
    std::filesystem::create_directory(m_project.string() + ".unsaved"); // in the way
    EXPECT_FALSE(end());
    m_host.m_userFolder = m_folder / "user";
    for (const char* name : {"p.tarprj.unsaved", "p-2.tarprj.unsaved"}) {
        ASSERT_TRUE(m_document.CommandOpen(m_project));
        EXPECT_TRUE(end());
        EXPECT_TRUE(std::filesystem::exists(m_host.m_userFolder / name));
    }
    m_host.m_answers = {EAnswer::no, EAnswer::yes};
    m_document.OfferUnsaved({m_project});
    EXPECT_THAT(m_host.TakeMessages(), testing::SizeIs(2));
    ASSERT_TRUE(m_document.GetProject());
    EXPECT_EQ(m_document.GetProject()->simulationParameters->mainInputFile->path, m_recording);
    EXPECT_TRUE(m_document.IsModified() && m_document.GetPathName().empty());

    // Once it is saved, only the other one is offered, and not before the next start.
    m_host.m_paths = {m_folder / "q.tarprj"};
    EXPECT_TRUE(m_document.Save());
    m_host.m_answers = {EAnswer::no};
    m_document.OfferUnsaved({m_project});
    EXPECT_THAT(m_host.TakeMessages(), testing::SizeIs(1));
}

TEST_F(Document, KeptChangesGoWithTheirProject) {
    Create();
    m_document.ProjectChanged(hintSimulationParametersChanged, nullptr);
    ASSERT_TRUE(m_document.EndNow());
    const auto hasKept = [&] { return std::filesystem::exists(m_project.string() + ".unsaved"); };
    m_host.m_answers = {EAnswer::no}; // to the save, before a dialog that the user cancels
    EXPECT_TRUE(m_document.CommandNew());
    EXPECT_TRUE(hasKept());
    m_host.m_answers = {EAnswer::no};
    EXPECT_TRUE(m_document.CloseDocument());
    EXPECT_FALSE(hasKept());
}

TEST_F(Document, ExpertModeChangesTheLayers) {
    Create();
    const auto count = [](const CTrvDocument& document) {
        std::size_t fields = 0;
        for (const auto& layer : document.GetProject()->dataModel->m_layers)
            fields += layer->m_measures.size() + layer->m_enums.size();
        return fields;
    };
    const std::size_t usual = count(m_document);
    CTrvDocument expert(m_host, m_host.m_queue, m_configuration, true);
    ASSERT_TRUE(expert.CommandOpen(m_project));
    EXPECT_GT(count(expert), usual);
}

TEST_F(Document, FailedOpenLeavesAnEmptyDocument) {
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
    } rows[] = {{"half.tarprj", EText::projectDamaged},
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

TEST_F(Document, ChangesNeedAnAnswerBeforeLoss) {
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

TEST_F(Document, BrokenRuleStopsRunAndBatchFile) {
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

TEST_F(Document, NewProjectGetsSensorsWithoutChoice) {
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

TEST_F(Document, GrowingResultIsFollowed) {
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
    // Under a new name the former result is no longer shown; one that appears there is, until it goes.
    m_host.m_paths = {m_folder / "q.tarprj"};
    m_view.m_hints.clear();
    ASSERT_TRUE(m_document.CommandSaveAs());
    EXPECT_FALSE(hasData("MORVEX_STD"));
    EXPECT_TRUE(m_view.Saw(hintDataLayersRebuilt) && m_view.Saw(hintDataFileContentChanged));
    std::filesystem::rename(result, m_folder / "q.tarout");
    EXPECT_TRUE(PumpUntil([&] { return hasData("MORVEX_STD"); }));
    std::filesystem::remove(m_folder / "q.tarout");
    EXPECT_TRUE(PumpUntil([&] { return !hasData("MORVEX_STD"); }));
}

} // namespace
