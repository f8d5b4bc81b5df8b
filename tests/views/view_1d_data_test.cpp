// The view over real files: keys that walk their samples, and what no change of project, files or settings
// may move.
#include "foundation/texts.h"
#include "graph/dive.h"
#include "views/view_1d_fixture.h"

#include <QScrollBar>

using namespace test;

namespace {

class View1DDataTest : public Dive {
  protected:
    View1DDataTest() {
        m_document.emplace(m_host, m_host.m_queue, m_config, false);
        auto project =
            std::make_unique<Metier_Tarvel::CTrvProject>(m_folder / "dive.tarin", m_folder / "dive.tarout");
        auto& graphs = *project->graphSettings;
        auto* recording = project->simulationParameters->mainInputFile.get();
        m_navigation = recording->FindChannel("NELIX_NAV")->id;
        for (const char* title : {"north", "north again"}) {
            auto* graph = graphs.AddMeasureGraph(title);
            for (const char* label : {"a", "b"}) graph->AddCurve(recording, m_navigation, 4, label);
        }
        graphs.AddEnumGraph("states", recording, recording->FindChannel("DEPTH")->id, 0, "rejected");
        auto* result = graphs.AddMeasureGraph("result");
        for (int i = 0; i < 4; ++i) graphs.AddMeasureGraph("empty");
        m_document->NewFromProject(std::move(project), m_folder / "dive.tarprj");
        for (const auto& layer : m_document->GetProject()->dataModel->m_layers)
            if (layer->m_name == kResultChannel)
                result->AddCurve(&Result(), layer->m_channelNumber, kLatitude, "computed");
        EXPECT_EQ(result->curves.size(), 1u);
        m_view.emplace(*m_document, m_viewState, m_config, m_adaptors, m_settings);
        m_gestures.emplace(*m_view);
        m_view->resize(900, 400);
        m_view->show();
        LoadView();
    }
    ~View1DDataTest() override {
        m_gestures.reset();
        m_view.reset();
    }
    void LoadView() {
        EXPECT_TRUE(RunUntil([this] { return !m_view->GetLoader().IsLoading(); }));
        QApplication::processEvents();
    }
    // All that the user has set and that is to stay.
    std::string Describe() {
        std::string text = m_view->GetStack().GetPeriod().start.ToText() + " to " +
                           m_view->GetStack().GetPeriod().end.ToText() + ", scrolled " +
                           std::to_string(m_view->verticalScrollBar()->value()) + ", cursor " +
                           m_viewState.GetCursor(ECursor::first).value_or(Seconds(-1)).ToText() +
                           ", selected " + m_view->GetStack().GetSelected()->GetTitle();
        for (std::size_t i = 0; i < 2; ++i) {
            const auto& portlet = *m_view->GetStack().GetPortlets()[i];
            const auto& measure = dynamic_cast<const CTrv1DGraphMeasurePortlet&>(portlet);
            text += "; " + portlet.GetTitle() + " " + std::to_string(portlet.GetUserHeight());
            if (!measure.IsRangeAutomatic()) text += " from " + std::to_string(measure.GetMinimum());
            for (const auto& serie : portlet.GetPlot().GetSeries()) {
                text += serie->IsVisible() ? " shown" : " hidden";
                if (portlet.GetPlot().GetSelectedSerie() == serie.get()) text += " selected";
                if (serie->GetDataSource()->GetCount() == 0) text += " empty";
                if (serie->GetName() == "b") break; // others come and go
            }
        }
        return text;
    }
    Metier_Tarvel_Graphics::CTrv1DSettings& Graphs() { return *m_document->GetProject()->graphSettings; }
    Metier_Tarvel_Graphics::CTrv1DGraphMeasure& Graph(std::size_t index) {
        return dynamic_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(*Graphs().graphs[index]);
    }
    void Tell(EHint hint, const Outils_Objets::CObject* object = nullptr) {
        m_document->UpdateAllViews(nullptr, hint, object);
    }

    std::uint16_t m_navigation = 0;
    std::optional<CTrvView1D> m_view;
    std::optional<CGestures> m_gestures;
};

TEST_F(View1DDataTest, KeysWalkSamplesAndStates) {
    m_viewState.SetPeriod({Seconds(100), Seconds(200)});
    m_viewState.SetCursor(ECursor::first, Seconds(150));
    const struct {
        int graph;
        const char* key;
        double cursor;
    } rows[] = {{0, "Right", 151},      {0, "Left", 150},       {0, "Shift+Right", 160},
                {0, "Shift+Left", 150}, {0, "Ctrl+Right", 150}, {2, "Ctrl+Right", 200},
                {2, "Left", 100},       {2, "Ctrl+Left", 100}};
    for (const auto& row : rows) {
        m_view->SelectPortlet(row.graph);
        m_gestures->Key(row.key);
        EXPECT_TRUE(RunUntil([&] {
            return m_viewState.GetCursor(ECursor::first) == Seconds(row.cursor) || HasFailure();
        })) << row.graph
            << " " << row.key;
        m_host.m_queue.RunPending();
        EXPECT_EQ(m_viewState.GetCursor(ECursor::first), Seconds(row.cursor)) << row.graph << " " << row.key;
    }
}

TEST_F(View1DDataTest, NothingResetsWhatTheUserSet) {
    const auto& first = *m_view->GetStack().GetPortlets()[0];
    m_viewState.SetPeriod({Seconds(20), Seconds(80)});
    m_viewState.SetRange(first.GetKey(), SRange{-5, 50});
    m_viewState.SetCursor(ECursor::first, Seconds(40));
    m_view->GetStack().GetPortlets()[1]->SetUserHeight(222);
    m_view->SelectPortlet(1);
    m_view->SelectSerie(m_view->GetStack().GetPortlets()[1]->GetPlot().GetSeries()[1].get());
    m_view->SetCurveVisible(*m_view->GetStack().GetPortlets()[0], *first.GetPlot().GetSeries()[0], false);
    m_view->verticalScrollBar()->setValue(77);
    LoadView();
    const std::string before = Describe();
    ASSERT_NE(before.find("scrolled 77"), std::string::npos) << before;

    Metier_Tarvel_Graphics::CTrv1DCurve* added = nullptr;
    const std::pair<const char*, std::function<void()>> changes[] = {
        {"an edit", [&] { Tell(hintSimulationParametersChanged); }},
        {"a curve is added",
         [&] { Tell(hintCurveAdded, added = Graph(0).AddCurve(&Recording(), m_navigation, 5, "c")); }},
        {"a curve is changed",
         [&] { added->factor = -1, added->color = 0xFF000000, Tell(hintCurveChanged, added); }},
        {"a curve is removed", [&] { Graph(0).RemoveCurve(added), Tell(hintCurveRemoved, &Graph(0)); }},
        {"a graph is added", [&] { Tell(hintGraphAdded, Graphs().AddMeasureGraph("another")); }},
        {"a graph is removed",
         [&] { Graphs().RemoveGraph(Graphs().graphs.back().get()), Tell(hintGraphRemoved); }},
        {"the result grows", [&] { Compute(121, 500), Tell(hintDataFileContentChanged, &Result()); }},
        {"a channel is found", [&] { Tell(hintChannelFound, &Recording()); }},
        {"the recording is analysed again", [&] { Tell(hintDataLayersRebuilt, &Recording()); }},
        {"a run begins", [&] { Tell(hintRunStarted); }},
        {"a run ends", [&] { Tell(hintRunEnded); }},
        {"a setting changes",
         [&] {
             m_config.Set(Cnf<"view1D/drawCurve">, true);
             m_adaptors.Configure(m_config);
             m_view->Reformat();
         }},
        {"the window is another one for a while",
         [&] {
             m_view->resize(700, 400), LoadView();
             m_view->resize(900, 400);
         }},
    };
    for (const auto& [what, change] : changes) {
        change();
        LoadView();
        EXPECT_EQ(Describe(), before) << what;
    }
}

TEST_F(View1DDataTest, FilesComeAndGoUnderTheView) {
    const SPeriod period{Seconds(20), Seconds(290)};
    m_viewState.SetPeriod(period);
    m_view->SelectPortlet(3);
    LoadView();
    EXPECT_TRUE(m_result.Close());
    const auto file = m_folder / "dive.tarout";
    const auto last = [this] {
        double x = -1, y = 0;
        m_view->GetStack().GetPortlets()[3]->ForEachSource([&](CTrv1DGraphDataSource& source) {
            if (source.GetCount() > 0) source.GetPoint(source.GetCount() - 1, x, y);
        });
        return std::round(20 + x * 2.7);
    };
    const auto rewrite = [&](int end) {
        BeginResult();
        Compute(0, end);
    };
    const struct {
        const char* what;
        std::function<void()> change;
        double last;
    } rows[] = {
        {"as it was", [] {}, 120},
        {"replaced by a longer one", [&] { std::filesystem::remove(file), rewrite(200); }, 200},
        {"grows", [&] { Compute(201, 250); }, 250},
        {"removed", [&] { EXPECT_TRUE(m_result.Close()), std::filesystem::remove(file); }, 250},
        {"back again", [&] { rewrite(90); }, 90},
    };
    for (const auto& row : rows) {
        row.change();
        // The monitor notices it. The view follows the end of a growing result: here it is put back.
        EXPECT_TRUE(RunUntil([&] {
            m_viewState.SetPeriod(period);
            return last() == row.last && !m_view->GetLoader().IsLoading();
        })) << row.what
            << ": " << last();
        for (const double x : {0.1, 0.5, 0.9}) {
            m_gestures->Turn(m_gestures->At(x, 0.5, 3), {0, 120});
            m_gestures->Click(m_gestures->At(x, 0.5, 3));
            m_view->EndWheel();
            EXPECT_TRUE(m_viewState.GoBack());
        }
        LoadView();
        EXPECT_FALSE(m_view->grab().isNull());
        EXPECT_EQ(m_view->GetStack().GetPeriod(), period) << row.what;
    }
}

// Nobody reports the end of an analysis that finds nothing.
TEST_F(View1DDataTest, EmptyGraphsSayWhyAfterTheAnalysis) {
    m_gestures.reset();
    m_view.reset();
    EXPECT_TRUE(m_result.Close());
    std::filesystem::remove(m_folder / "dive.tarout");
    {
        CTestRecording recording(m_folder / "plain.tarin");
        for (int t = 0; t < 20; ++t) recording.Depth(t, 1);
    }
    const auto path = m_folder / "plain.tarprj";
    m_document->NewFromProject(
        std::make_unique<Metier_Tarvel::CTrvProject>(m_folder / "plain.tarin", m_folder / "plain.tarout"),
        path);
    m_view.emplace(*m_document, m_viewState, m_config, m_adaptors, m_settings);
    EXPECT_TRUE(m_document->OpenDocument(path));
    const auto expected =
        Outils_Texte::FormatText(Outils_Texte::EText::resultMissing, {std::string("plain.tarout")});
    const auto notice = [&] { return m_view->GetStack().GetPortlets()[0]->GetNotice(); };
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (notice() != expected && std::chrono::steady_clock::now() < end) {
        m_host.m_queue.RunOne(std::chrono::milliseconds(10));
        QApplication::processEvents();
    }
    EXPECT_EQ(notice(), expected);
}

} // namespace
