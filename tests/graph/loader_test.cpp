#include "foundation/texts.h"
#include "graph/dive.h"
#include "graph/stack_text.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>

using namespace test;

namespace {

using LoaderTest = Dive;

TEST_F(LoaderTest, DefaultGraphsShowResultAndRecording) {
    Open();
    EXPECT_TRUE(m_loader->IsLoading());
    ASSERT_EQ(Stack().GetPortlets().size(), 6u);
    EXPECT_EQ(Stack().GetPortlets()[3]->GetTitle(), "Heading");
    const auto& series = Stack().GetPortlets()[0]->GetPlot().GetSeries();
    ASSERT_EQ(series.size(), 2u);
    EXPECT_EQ(series[kResult]->GetName(), "MORVEX_STD - Latitude0");
    EXPECT_EQ(series[kRecording]->GetName(), "NELIX_NAV - Latitude");
    EXPECT_FALSE(Stack().GetPortlets()[0]->HasPoints());
    Load();
    EXPECT_EQ(Shown(), Period(0, 300));
    EXPECT_TRUE(Stack().ShowsFullExtent());
    EXPECT_NEAR(LastTime(kResult), 120, 1e-6);
    EXPECT_NEAR(LastTime(kRecording), 300, 1e-6);
    double x = 0, y = 0;
    ASSERT_TRUE(Source(0, kRecording).GetMaximum(100, x, y));
    EXPECT_NEAR(y, 43.01, 1e-9);
    // One question for each channel: all curves of it share one answer.
    EXPECT_EQ(Source(0, kResult).GetDataset(), Source(5, kResult).GetDataset());
    EXPECT_GT(m_changes, 0);
    // Under another name there is no result yet.
    m_host.m_paths.push_back(m_folder / "other.tarprj");
    ASSERT_TRUE(m_document->CommandSaveAs());
    Load();
    EXPECT_EQ(CurveCount(), 1u);
}

TEST_F(LoaderTest, LastOfManyPeriodsWins) {
    OpenAndLoad();
    const auto old = Source(0, kRecording).GetDataset();
    m_loader->ZoomTime(1);
    m_loader->ZoomTime(1);
    m_loader->ScrollTime(1);
    m_loader->ScrollTime(-1);
    m_loader->ScrollTime(-1);
    EXPECT_EQ(Shown(), Period(93.75, 168.75));
    EXPECT_EQ(Source(0, kRecording).GetDataset(), old);
    EXPECT_GT(Source(0, kRecording).GetCount(), 0u);
    Load();
    const auto& dataset = *Source(0, kRecording).GetDataset();
    const auto width = static_cast<double>(Stack().GetPlotWidth());
    EXPECT_NEAR(dataset.GetBucket().GetTotalSeconds(), 75 / width, 1e-6);
    CDateTimeSpan first, last;
    dataset.GetRepresentatives().front()->GetDate(0, first);
    dataset.GetRepresentatives().back()->GetDate(0, last);
    EXPECT_EQ(first, Seconds(93)); // the curve reaches both edges
    EXPECT_EQ(last, Seconds(169));
    m_loader->ViewAll();
    Load();
    EXPECT_EQ(Shown(), Period(0, 300));
}

TEST_F(LoaderTest, GrowingResultIsFollowed) {
    OpenAndLoad();
    Tell(hintRunStarted);
    EXPECT_EQ(Source(0, kResult).GetCount(), 0u) << "the former result is not the run's";
    Compute(121, 400);
    for (int i = 0; i < 5; ++i) Tell(hintDataFileContentChanged, &Result());
    Load();
    EXPECT_EQ(Shown(), Period(0, 400)) << "a view of everything stays one";
    EXPECT_NEAR(LastTime(kResult), 400, 1e-6);

    m_loader->ZoomTime(1);
    Load();
    Compute(401, 500);
    Tell(hintChannelFound, &Result());
    Load();
    EXPECT_EQ(Shown(), Period(100, 300)) << "the user's period is left alone";
    EXPECT_EQ(Stack().GetFullExtent().end, Seconds(500));

    m_loader->ShowEnd();
    Load();
    Compute(501, 550);
    Tell(hintChannelFound, &Result());
    Load();
    EXPECT_EQ(Shown(), Period(350, 550)) << "the last screenful stays the last one";

    m_loader->ViewAll();
    Load();
    m_config.Set(Cnf<"view1D/displayAutoRefresh">, false);
    Compute(551, 600);
    Tell(hintDataFileContentChanged, &Result());
    EXPECT_FALSE(m_loader->IsLoading());
    Tell(hintRunEnded);
    Load();
    EXPECT_EQ(Shown(), Period(0, 600));
    EXPECT_NEAR(LastTime(kResult), 600, 1e-6);
}

// Of a file as large as this packets here and there come before the walk is through.
TEST_F(LoaderTest, PreviewStandsInUntilAllIsRead) {
    constexpr int kEnd = 120'000;
    OpenAndLoad();
    Compute(121, kEnd);
    Tell(hintChannelFound, &Result());
    const auto& source = Source(0, kResult);
    ASSERT_TRUE(RunUntil([&] { return source.GetPreview() != nullptr; }));
    EXPECT_TRUE(m_loader->IsLoading());
    const std::string notice(Outils_Texte::GetText(Outils_Texte::EText::graphProvisional));
    EXPECT_NE(DescribeStack(Stack(), m_viewState).find(notice), std::string::npos);
    const auto* preview = source.GetProvisional();
    ASSERT_NE(preview, nullptr);
    EXPECT_FALSE(preview->HasExtremum());
    // It breaks off where exact data is, and reaches the end.
    double x = 0, y = 0;
    int exact = 0, shown = 0;
    for (std::uint32_t i = 0; i < preview->GetCount(); ++i)
        if (preview->GetPoint(i, x, y)) (std::isfinite(y) ? shown : exact) += 1;
    EXPECT_GT(shown, 500);
    EXPECT_LT(exact, shown);
    EXPECT_NEAR(x, 100, 0.5);
    EXPECT_TRUE(source.GetNearestPoint(Seconds(kEnd / 2), x, y)) << "the cursor has a value meanwhile";

    Load();
    EXPECT_EQ(source.GetPreview(), nullptr);
    EXPECT_EQ(DescribeStack(Stack(), m_viewState).find(notice), std::string::npos);
    CTrvView1DDataQuery direct({m_folder / "dive.tarout", EFileKind::tarout, source.GetChannel().channel},
                               {Seconds(0), Seconds(kEnd), source.GetDataset()->GetBucket(), true}, nullptr);
    ASSERT_EQ(direct.Execute(), EQueryEnd::done);
    const auto expected = direct.TakeSeries();
    const auto& dataset = *source.GetDataset();
    const auto isSame = [](const auto& a, const auto& b) {
        return std::memcmp(a->GetPayload(), b->GetPayload(), a->GetPayloadSize()) == 0;
    };
    EXPECT_TRUE(std::ranges::equal(dataset.GetRepresentatives(), expected.representatives, isSame));
    EXPECT_TRUE(std::ranges::equal(dataset.GetMaxima(), expected.maxima, isSame));

    // Of what the data at hand covers nothing provisional is shown.
    bool wasShown = false;
    m_loader->ZoomTime(1);
    EXPECT_TRUE(RunUntil([&] {
        wasShown = wasShown || source.GetPreview();
        return !m_loader->IsLoading();
    }));
    EXPECT_FALSE(wasShown);
}

// Whether the file goes before or while all of it is read.
TEST_F(LoaderTest, PreviewEndsWithItsFile) {
    OpenAndLoad();
    Compute(121, 120'000);
    Tell(hintChannelFound, &Result());
    const auto& source = Source(0, kResult);
    ASSERT_TRUE(RunUntil([&] { return source.GetPreview() != nullptr; }));
    std::filesystem::remove(m_folder / "dive.tarout");
    Load();
    EXPECT_EQ(source.GetPreview(), nullptr);
    EXPECT_GE(source.GetCount(), 121u) << "the former curve stays, or the new one is there";
}

TEST_F(LoaderTest, NewResultIsReadAgain) {
    OpenAndLoad();
    EXPECT_TRUE(m_result.Close());
    BeginResult();
    Compute(0, 120, 44.0);
    Tell(hintRunEnded);
    Load();
    double x = 0, y = 0;
    ASSERT_TRUE(Source(0, kResult).GetPoint(10, x, y));
    EXPECT_EQ(y, 44.0);
}

TEST_F(LoaderTest, FileTimeBecomesSimulationTime) {
    OpenAndLoad();
    Recording().timeOffset = Metier_Tarvel::ToStoredTime(Seconds(-50));
    Tell(hintDataFileTimeOffsetChanged, &Recording());
    Load();
    EXPECT_EQ(Shown(), Period(-50, 250));
    EXPECT_NEAR(LastTime(kRecording), 250, 1e-6);
    EXPECT_NEAR(LastTime(kResult), 120, 1e-6);
}

TEST_F(LoaderTest, CurvesOfBrokenFilesStay) {
    OpenAndLoad();
    EXPECT_TRUE(m_result.Close());
    const auto file = m_folder / "dive.tarout";
    const std::function<void()> breakages[] = {
        [&] { std::filesystem::remove(file); }, [&] { std::filesystem::create_directory(file); },
        [&] { std::filesystem::remove(file), std::ofstream(file) << "no longer a result"; }};
    const auto expectTheCurve = [&] {
        m_loader->ZoomTime(1);
        m_loader->ViewAll();
        Load();
        EXPECT_EQ(CurveCount(), 2u);
        EXPECT_NEAR(LastTime(kResult), 120, 1e-6);
    };
    for (const auto& breakFile : breakages) {
        breakFile();
        Tell(hintDataFileContentChanged, &Result());
        expectTheCurve();
        // A failed query starts a look at the file. It ends before the file changes again.
        ASSERT_TRUE(RunUntil([this] { return !m_document->IsAnalysing(); }));
    }
    // Nor does the monitor take the curve away, by whom the result loses its place in the dictionary.
    const auto hasLayers = [this] {
        const auto& layers = m_document->GetProject()->dataModel->m_layers;
        return std::ranges::any_of(layers,
                                   [this](const auto& layer) { return layer->m_dataFile == &Result(); });
    };
    ASSERT_TRUE(RunUntil([&] { return !hasLayers(); }));
    expectTheCurve();
    // Each fault is reported once, whether or not the monitor came by while the file was missing.
    using Outils_Texte::EText;
    for (const EText fault : {EText::fileIsFolder, EText::fileForeign})
        EXPECT_EQ(std::ranges::count(m_host.m_output, Outils_Texte::FormatText(fault, {file.string()})), 1);
    Tell(hintRunStarted);
    EXPECT_EQ(CurveCount(), 1u);
}

// The whole way: the monitor sees the file, the dictionary gets its layer, the graphs a curve.
TEST_F(LoaderTest, LateResultJoinsTheGraphs) {
    EXPECT_TRUE(m_result.Close());
    std::filesystem::rename(m_folder / "dive.tarout", m_folder / "kept");
    OpenAndLoad();
    EXPECT_EQ(CurveCount(), 1u);
    const auto first = Source(0, kRecording).GetDataset();
    // The monitor's first look tells of every file, and what it tells of is read again.
    ASSERT_TRUE(
        RunUntil([&] { return Source(0, kRecording).GetDataset() != first && !m_loader->IsLoading(); }));
    const auto recorded = Source(0, kRecording).GetDataset();
    Tell(hintChannelFound, &Recording());
    Load();
    EXPECT_EQ(Source(0, kRecording).GetDataset(), recorded) << "it has not grown";
    std::filesystem::rename(m_folder / "kept", m_folder / "dive.tarout");
    ASSERT_TRUE(
        RunUntil([this] { return CurveCount() == 2 && !m_loader->IsLoading() && LastTime(kResult) > 0; }));
    EXPECT_NEAR(LastTime(kResult), 120, 1e-6);
    EXPECT_EQ(Source(0, kRecording).GetDataset(), recorded) << "what was known is not read again";
}

TEST_F(LoaderTest, SavedGraphsReplaceTheDefaultOnes) {
    OpenAndLoad();
    auto& graphs = *m_document->GetProject()->graphSettings;
    auto* mirrored = graphs.AddMeasureGraph("mirrored");
    auto* curve = mirrored->AddCurve(&Recording(), Recording().FindChannel("NELIX_NAV")->id, 4, "north");
    curve->factor = -1;
    curve->color = 0xFF123456;
    mirrored->AddCurve(nullptr, 1, 1, "gone");
    graphs.AddEnumGraph("states", &Recording(), Recording().FindChannel("DEPTH")->id, 0, "rejected?");
    m_document->UpdateAllViews(nullptr, hintGraphAdded, mirrored);
    Load();
    ASSERT_EQ(Stack().GetPortlets().size(), 2u);
    auto& portlet = *Stack().GetPortlets()[0];
    const auto& series = portlet.GetPlot().GetSeries();
    ASSERT_EQ(series.size(), 2u);
    EXPECT_EQ(series[0]->GetColor(), 0xFF123456u);
    EXPECT_EQ(portlet.GetCurve(series[0].get()), curve);
    double x = 0, y = 0;
    ASSERT_TRUE(Source(0, 0).GetPoint(0, x, y));
    EXPECT_EQ(y, -43);
    EXPECT_EQ(Source(1, 0).GetCount(), 4u);

    // What the user set on a graph outlives every change of the project, and the data at hand is shown at
    // once.
    portlet.SetUserHeight(333);
    m_viewState.SetRange(portlet.GetKey(), SRange{-50, -40});
    portlet.GetPlot().SetSelectedSerie(series[0].get());
    Stack().Select(1);
    const auto period = Stack().GetPeriod();
    const auto* dropped = mirrored->curves[1].get();
    const struct {
        EHint hint;
        std::function<const Outils_Objets::CObject*()> edit;
        std::size_t curves;
    } edits[] = {
        {hintCurveRemoved, [&] { return mirrored->RemoveCurve(dropped) ? mirrored : nullptr; }, 1},
        {hintCurveAdded, [&] { return mirrored->AddCurve(&Recording(), curve->channel, 5, "east"); }, 2},
        {hintCurveChanged, [&] { return curve->color = 0xFF000000, curve; }, 2},
        {hintGraphAdded, [&] { return graphs.AddMeasureGraph("empty"); }, 2},
        {hintGraphRemoved, [&] { return graphs.RemoveGraph(graphs.graphs[2].get()), nullptr; }, 2},
    };
    for (const auto& [hint, edit, curves] : edits) {
        m_document->UpdateAllViews(nullptr, hint, edit());
        ASSERT_EQ(Stack().GetPortlets()[0].get(), &portlet) << hint;
        EXPECT_EQ(series.size(), curves) << hint;
        EXPECT_EQ(portlet.GetPlot().GetSelectedSerie(), series[0].get()) << hint;
        EXPECT_EQ(Stack().GetSelectedIndex(), 1) << hint;
        EXPECT_EQ(Stack().GetPeriod(), period) << hint;
        EXPECT_EQ(portlet.GetUserHeight(), 333) << hint;
        EXPECT_EQ(dynamic_cast<CTrv1DGraphMeasurePortlet&>(portlet).GetMinimum(), -50) << hint;
        for (const auto& serie : series) EXPECT_GT(serie->GetDataSource()->GetCount(), 0u) << hint;
    }
    EXPECT_EQ(series[0]->GetColor(), 0xFF000000u);
}

TEST_F(LoaderTest, AnswersFindNobodyAfterTheEnd) {
    Open();
    m_loader->ZoomTime(1);
    m_loader.reset();
    m_document->CloseDocument();
    Tell(hintRefresh);
    m_host.m_queue.RunPending();
    m_loader.emplace(*m_document, m_viewState, m_adaptors, m_settings);
    EXPECT_FALSE(m_loader->HasProject() && m_loader->IsLoading());
    EXPECT_TRUE(Stack().GetPortlets().empty());
}

} // namespace
