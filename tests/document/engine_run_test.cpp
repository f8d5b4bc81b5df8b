#include "document/document_fixture.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "support/faulty_disk.h"

#include <gmock/gmock.h>

#include <thread>

using namespace Application_Tarvel;
using namespace std::chrono_literals;
using Outils_Fichiers::ToText;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using test::BytesOf;
using test::Text;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

class EngineRun : public test::CDocumentFixture {
  protected:
    // A result with navigation up to 1.5 s.
    std::filesystem::path MakeResult() {
        constexpr std::string_view channels[] = {"MORVEX_STD", "MORVEX_MSG"};
        Enregistrement::CRecordingWriter writer;
        EXPECT_TRUE(writer.Create(m_whole, channels));
        Persistance_Xpf::CXpfTaroutMorvexStdPacketV2 navigation;
        navigation.SetDate(0, test::Seconds(1.5));
        EXPECT_TRUE(writer.Write("MORVEX_STD", navigation));
        EXPECT_TRUE(writer.Write("MORVEX_MSG", Persistance_Xpf::CXpfTaroutMorvexMsgPacketV1()));
        EXPECT_TRUE(writer.Close());
        return m_whole;
    }
    ERunOutcome Run(CTrvDocument& document) {
        EXPECT_TRUE(document.StartSimulation());
        while (document.IsSimulationRunning()) m_host.m_queue.RunOne(10ms);
        m_host.m_queue.RunPending();
        return document.GetRunOutcome();
    }
    ERunOutcome Run() { return Run(m_document); }
    // The lines of the output panel that come neither from the engine nor from the monitor, which may look at
    // any moment.
    std::vector<std::string> TakeReports() {
        const std::string seen[] = {Format(EText::fileVanished), Format(EText::fileReplaced)};
        std::vector<std::string> lines;
        for (const std::string& line : std::exchange(m_host.m_output, {}))
            if (!line.starts_with("INFO : parameters") && !line.starts_with("?????") &&
                std::ranges::count(seen, line) == 0)
                lines.push_back(line);
        return lines;
    }
    // Results that are none of the engine's.
    void WriteOldResult() { MakeHeader(m_result, "MORVEX_MSG"); }
    bool HasOldResult() {
        MakeHeader(m_folder / "old", "MORVEX_MSG");
        return BytesOf(m_result) == BytesOf(m_folder / "old");
    }
    static void MakeHeader(const std::filesystem::path& path, std::string_view channel) {
        Enregistrement::CRecordingWriter writer;
        EXPECT_TRUE(writer.Create(path, std::span(&channel, 1)) && writer.Close());
    }
    // Files of runs beside the result.
    std::size_t CountTraces() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.GetPath()))
            if (entry.path().filename().native().starts_with("p.tarout.")) ++count;
        return count;
    }
    std::string Format(EText text, const std::string& more = "") const {
        return FormatText(text, {ToText(m_result), more});
    }
    std::string Failed(std::string_view how) const {
        return "ERROR : " + FormatText(EText::runFailed, {how});
    }

    std::filesystem::path m_whole = m_folder / "whole";
};

TEST_F(EngineRun, ReportsAndEnds) {
    UseEngine("work", MakeResult());
    Create();
    std::ofstream(m_folder / "p.tarout") << "an old result";
    m_view.m_hints.clear();
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_FALSE(std::filesystem::exists(m_folder / "p.tarout"));
    EXPECT_THAT(m_view.m_hints, ElementsAre(hintDataFileContentChanged, hintRunStarted));
    EXPECT_TRUE(m_host.m_progressShows);
    PumpRunToItsEnd();
    EXPECT_EQ(m_document.GetRunOutcome(), ERunOutcome::finished);
    EXPECT_EQ(BytesOf(m_result), BytesOf(m_whole));
    EXPECT_EQ(CountTraces(), 0u);
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

// The engine writes all its lines and ends at once, while this thread serves no message.
TEST_F(EngineRun, ShowsTheLastProgressUnderLoad) {
    UseEngine("work", MakeResult());
    Create();
    ASSERT_TRUE(m_document.StartSimulation());
    while (m_document.IsSimulationRunning()) std::this_thread::yield();
    EXPECT_THAT(m_host.m_shownProgress, Contains(100));
    m_host.m_queue.RunPending();
    EXPECT_EQ(m_host.m_shownProgress.back(), 0) << "the bar is set back before it is hidden";
}

TEST_F(EngineRun, GuardsTheProjectUntilItEnds) {
    UseEngine("deaf");
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
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_THAT(m_host.m_messages, IsEmpty()); // not frozen before five seconds have passed
    m_host.Sleep(6s);
    m_host.m_answers = {EAnswer::cancel, EAnswer::ok};
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_TRUE(m_document.IsSimulationRunning());
    EXPECT_TRUE(m_document.StopSimulation());
    EXPECT_FALSE(m_document.IsSimulationRunning());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::frozen), Text(EText::frozen)));
    EXPECT_TRUE(m_view.Saw(hintRunEnded));
    EXPECT_FALSE(m_document.StopSimulation());
    EXPECT_TRUE(m_document.CanCloseFrame());
}

TEST_F(EngineRun, SaveDuringRunKeepsResultName) {
    UseEngine("stop");
    Create();
    auto& result = m_document.GetProject()->simulationParameters->outputFile->path;
    result = m_folder / "kept.tarout";
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_TRUE(m_document.Save());
    EXPECT_EQ(result, m_folder / "kept.tarout");
    m_document.StopSimulation();
    PumpRunToItsEnd();
    EXPECT_TRUE(m_document.Save());
    EXPECT_EQ(result, m_result);
}

TEST_F(EngineRun, AsksToSaveWhatChanged) {
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

// The engine ends at any byte: the whole packets of its result are shown, and a result without a whole header
// is reported once the run is over.
TEST_F(EngineRun, CutResultShowsWholePackets) {
    UseEngine("wait");
    Create();
    MakeResult();
    const auto whole = BytesOf(m_folder / "whole");
    const auto hasData = [&](std::string_view name) {
        const auto& layers = m_document.GetProject()->dataModel->m_layers;
        return std::any_of(layers.begin(), layers.end(),
                           [name](const auto& layer) { return layer->m_name == name && layer->m_hasData; });
    };
    const auto runAndCutAt = [&](std::size_t size) {
        ASSERT_TRUE(m_document.StartSimulation());
        ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(m_result, std::span(whole).first(size)));
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
    EXPECT_THAT(m_host.m_output, ElementsAre(Outils_Texte::FormatText(EText::fileHeaderDamaged,
                                                                      {Outils_Fichiers::ToText(m_result)})));
    EXPECT_FALSE(hasData("MORVEX_STD"));
}

// What the engine says last, here more than the window's queue takes, belongs to the run.
TEST_F(EngineRun, WaitsForTheLastMessages) {
    UseEngine("talk", MakeResult());
    Create();
    ASSERT_TRUE(m_document.StartSimulation());
    while (m_document.IsSimulationRunning()) std::this_thread::yield();
    m_host.m_queue.RunPending();
    EXPECT_EQ(std::ranges::count(m_host.m_output, "INFO : 1499"), 1);
}

TEST_F(EngineRun, ReportsEndAndResultOfRuns) {
    const auto whole = MakeResult();
    Create();
    const std::string kept = "INFO : " + FormatText(EText::formerKept, {ToText(m_result) + ".former"});
    const std::string partial = "WARNING : " + Format(EText::resultPartial, "2024-03-14T10:00:01.5Z");
    const std::string none = "WARNING : " + Format(EText::noResult);
    const std::string restored = "INFO : " + Format(EText::resultRestored);
    const std::string stopped = "WARNING : " + Text(EText::runStopped);
    MakeHeader(m_folder / "empty", "MORVEX_STD");
    const struct {
        const char* mode;
        std::filesystem::path result;
        bool hasOld;
        ERunOutcome outcome;
        std::vector<std::string> reports;
    } rows[] = {
        {"work", whole, true, ERunOutcome::finished, {}},
        {"die", "", false, ERunOutcome::failed, {Failed("exit code 3"), none}},
        {"die", "", true, ERunOutcome::failed, {Failed("exit code 3"), none, restored}},
        {"work", "", true, ERunOutcome::failed, {Failed("exit code 0"), none, restored}},
        {"crash", whole, true, ERunOutcome::failed, {Failed("killed by signal 9"), partial, kept}},
        {"crash", whole, false, ERunOutcome::failed, {Failed("killed by signal 9"), partial}},
        {"fail", m_folder / "empty", true, ERunOutcome::failed, {Failed("exit code 1"), none, restored}},
        {"short", whole, false, ERunOutcome::failed, {Failed("exit code 0"), partial}},
        {"stop", whole, true, ERunOutcome::stopped, {stopped, partial, kept}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mode);
        for (const char* trace : {"", ".run", ".former"}) std::filesystem::remove(m_result.native() + trace);
        if (row.hasOld) WriteOldResult();
        UseEngine(row.mode, row.result);
        ASSERT_TRUE(m_document.StartSimulation());
        EXPECT_FALSE(row.hasOld && row.result.empty() && HasOldResult());
        if (row.outcome == ERunOutcome::stopped) {
            ASSERT_TRUE(PumpUntil([&] { return std::filesystem::exists(m_result); }));
            m_document.StopSimulation();
        }
        PumpRunToItsEnd();
        EXPECT_EQ(m_document.GetRunOutcome(), row.outcome);
        EXPECT_THAT(TakeReports(), ElementsAreArray(row.reports));
        const bool isRestored = !row.reports.empty() && row.reports.back() == restored;
        EXPECT_EQ(HasOldResult(), isRestored);
        EXPECT_EQ(CountTraces() > 0, std::ranges::count(row.reports, partial) > 0);
        EXPECT_THAT(m_host.m_messages, IsEmpty());
    }
}

TEST_F(EngineRun, FailedRunsKeepTheGoodResult) {
    MakeResult();
    Create();
    WriteOldResult();
    UseEngine("crash", m_whole);
    Run();
    Run();
    ASSERT_TRUE(m_document.CommandOpen(m_project));
    const std::string partial = Format(EText::resultWasPartial);
    EXPECT_TRUE(PumpUntil([&] { return std::ranges::count(m_host.m_output, partial) == 1; }));
    UseEngine("die");
    Run();
    EXPECT_TRUE(HasOldResult());
    EXPECT_EQ(CountTraces(), 0u);

    // A partial result comes back as a partial one.
    std::filesystem::remove(m_result);
    UseEngine("crash", m_whole);
    Run();
    UseEngine("die");
    Run();
    EXPECT_EQ(BytesOf(m_result), BytesOf(m_whole));
    EXPECT_EQ(CountTraces(), 1u);
    UseEngine("work", m_whole);
    Run();
    EXPECT_EQ(CountTraces(), 0u);

    // A program that is killed early in a run leaves the old result aside.
    std::filesystem::rename(m_result, m_result.native() + ".former");
    std::ofstream(m_result.native() + ".run").flush();
    m_host.m_output.clear();
    ASSERT_TRUE(m_document.CommandOpen(m_project));
    EXPECT_TRUE(PumpUntil([&] { return !m_host.m_output.empty(); }));
    EXPECT_THAT(TakeReports(), ElementsAre(Format(EText::resultRestored)));
    EXPECT_EQ(BytesOf(m_result), BytesOf(m_whole));
    EXPECT_EQ(CountTraces(), 0u);
}

TEST_F(EngineRun, LeavesForeignFilesAlone) {
    Create();
    WriteOldResult();
    const std::string former = m_result.native() + ".former";
    std::ofstream(former) << "mine";
    UseEngine("work");
    EXPECT_FALSE(m_document.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Format(EText::resultNotMoved)));
    EXPECT_EQ(BytesOf(former).size(), 4u);
    EXPECT_TRUE(HasOldResult());
}

TEST_F(EngineRun, RefusesASecondRun) {
    UseEngine("stop");
    Create();
    CTrvDocument second(m_host, m_host.m_queue, m_configuration, false);
    ASSERT_TRUE(second.CommandOpen(m_project));
    ASSERT_TRUE(m_document.StartSimulation());
    EXPECT_FALSE(second.StartSimulation());
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Format(EText::runBusy)));
    EXPECT_EQ(ParameterFiles().size(), 1u);
    m_document.StopSimulation();
    PumpRunToItsEnd();
    UseEngine("work", MakeResult());
    EXPECT_EQ(Run(second), ERunOutcome::finished);
}

TEST_F(EngineRun, RefusalKeepsTheOldResult) {
    UseEngine("work", MakeResult());
    Create();
    WriteOldResult();
    const auto engines = m_host.m_programFolder;
    const auto away = m_folder / "away";
    const auto refused = [](EText text, const std::filesystem::path& file) {
        return FormatText(EText::runRefused, {FormatText(text, {ToText(file)})});
    };
    const struct {
        std::function<void()> spoil;
        std::function<void()> mend;
        std::string message;
    } rows[] = {
        {[&] { std::filesystem::rename(m_recording, away); },
         [&] { std::filesystem::rename(away, m_recording); }, refused(EText::inputMissing, m_recording)},
        {[&] { std::filesystem::rename(m_recording, away), std::ofstream(m_recording) << "no recording"; },
         [&] { std::filesystem::rename(away, m_recording); }, refused(EText::fileForeign, m_recording)},
        {[&] { m_host.m_programFolder = m_folder / "nowhere"; }, [&] { m_host.m_programFolder = engines; },
         Text(EText::noProcess)},
        {[&] { std::filesystem::create_directory(m_result.native() + ".run"); },
         [&] { std::filesystem::remove(m_result.native() + ".run"); }, Format(EText::resultNotWritable)},
        {[&] { std::filesystem::create_directories(m_result.native() + ".former/in"); },
         [&] { std::filesystem::remove_all(m_result.native() + ".former"); }, Format(EText::resultNotMoved)},
    };
    for (const auto& [spoil, mend, message] : rows) {
        SCOPED_TRACE(message);
        spoil();
        EXPECT_FALSE(m_document.StartSimulation());
        mend();
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(message));
        EXPECT_TRUE(HasOldResult());
        EXPECT_EQ(CountTraces(), 0u);
        EXPECT_FALSE(m_document.IsSimulationRunning());
    }
    {
        const test::CFaultyDisk disk(m_temporary, test::CFaultyDisk::isFull);
        EXPECT_FALSE(m_document.StartSimulation());
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(EText::noParameterFile)));
    }
    EXPECT_THAT(ParameterFiles(), IsEmpty());
    EXPECT_EQ(Run(), ERunOutcome::finished);
}

TEST_F(EngineRun, EndNowKeepsTheResult) {
    UseEngine("deaf", MakeResult());
    Create();
    ASSERT_TRUE(m_document.StartSimulation());
    ASSERT_TRUE(PumpUntil([&] { return !m_host.m_output.empty(); }));
    m_document.EndNow();
    EXPECT_FALSE(m_document.IsSimulationRunning());
    EXPECT_TRUE(m_view.Saw(hintRunEnded));
    EXPECT_EQ(BytesOf(m_result), BytesOf(m_whole));
    EXPECT_THAT(ParameterFiles(), IsEmpty());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

} // namespace
