#include "views/view_1d_fixture.h"

#include <QAction>
#include <QPainter>
#include <QScrollBar>

using namespace test;

namespace {

using View1DTest = CView1DFixture;

TEST_F(View1DTest, KeysSelectAndMoveTheTime) {
    const float height = First().GetRect().height;
    Key("Alt+Down");
    EXPECT_GT(First().GetRect().height, height);
    const QScrollBar& bar = *m_view->verticalScrollBar();
    for (int i = 0; i < 20; ++i) Key("Down");
    EXPECT_EQ(m_view->GetStack().GetSelectedIndex(), 7);
    EXPECT_NEAR(bar.value(), bar.maximum(), 4) << "in sight";
    for (int i = 0; i < 20; ++i) Key("Up");
    EXPECT_EQ(bar.value(), 0);

    m_view->GetLoader().ShowPeriod({Seconds(100), Seconds(300)});
    const std::pair<const char*, Period> rows[] = {
        {"PgDown", {300, 500}}, {"PgUp", {100, 300}}, {"End", {800, 1000}}, {"Home", {0, 200}}};
    for (const auto& [key, shown] : rows) {
        Key(key);
        EXPECT_EQ(Shown(), shown) << key;
    }
}

TEST_F(View1DTest, RemovesCurvesAndGraphsAfterAQuestion) {
    const auto& graphs = m_document->GetProject()->graphSettings->graphs;
    const auto& graph = dynamic_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(*graphs[0]);
    int changes = 0;
    QObject::connect(&*m_view, &CTrvView1D::StateChanged, [&] { ++changes; });
    m_view->SelectPortlet(0);
    Key("Space");
    EXPECT_TRUE(m_view->HasSelectedCurve());
    m_host.TakeMessages();
    m_host.m_answers = {EAnswer::no, EAnswer::yes, EAnswer::yes};
    m_view->RemoveSelected();
    EXPECT_EQ(graph.curves.size(), 2u) << "the answer was no";
    m_view->RemoveSelected();
    EXPECT_EQ(graph.curves.size(), 1u);
    EXPECT_EQ(First().GetPlot().GetSeries().size(), 1u);
    EXPECT_FALSE(m_view->HasSelectedCurve());
    EXPECT_GT(changes, 0);
    m_view->RemoveSelected();
    EXPECT_EQ(graphs.size(), 7u) << "without a curve, the graph";
    EXPECT_EQ(m_host.TakeMessages().size(), 3u);
}

TEST_F(View1DTest, KeysTriggerTheCommandsGivenToThem) {
    QAction action;
    int runs = 0;
    QObject::connect(&action, &QAction::triggered, [&] { ++runs; });
    for (const char* key : {"+", "Left"}) m_view->AddCommandKey(QKeySequence(key), &action);
    const std::tuple<int, Qt::KeyboardModifiers, int> rows[] = {
        {Qt::Key_Plus, {}, 1},
        {Qt::Key_Plus, Qt::ShiftModifier, 1}, // as on some keyboards
        {Qt::Key_Plus, Qt::KeypadModifier, 1},
        {Qt::Key_Plus, Qt::ControlModifier, 0},
        {Qt::Key_Left, {}, 1},
        {Qt::Key_Left, Qt::ShiftModifier, 0}, // steps the cursor
        {Qt::Key_Right, {}, 0},
    };
    for (const auto& [key, modifiers, expected] : rows) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QApplication::sendEvent(&*m_view, &event);
        EXPECT_EQ(std::exchange(runs, 0), expected) << key << " " << modifiers;
    }
    action.setEnabled(false);
    Key("+");
    EXPECT_EQ(runs, 0);
}

TEST_F(View1DTest, WheelActsInProportion) {
    const struct {
        Qt::KeyboardModifier key;
        QPoint turn;
        int times;
        Period shown;
    } rows[] = {{Qt::NoModifier, {0, 120}, 1, {250, 750}},     {Qt::NoModifier, {0, 15}, 8, {250, 750}},
                {Qt::NoModifier, {0, 240}, 1, {375, 625}},     {Qt::NoModifier, {0, -30}, 4, {-500, 1500}},
                {Qt::ShiftModifier, {0, 120}, 1, {-250, 750}}, {Qt::ShiftModifier, {0, -12}, 10, {250, 1250}},
                {Qt::NoModifier, {-120, 0}, 1, {250, 1250}}};
    for (const auto& row : rows) {
        for (int i = 0; i < row.times; ++i) Turn(At(0.5, 0.5), row.turn, row.key);
        EXPECT_EQ(Shown(), row.shown) << row.turn.y();
        m_view->EndWheel();
        EXPECT_TRUE(m_viewState.GoBack());
        EXPECT_EQ(Shown(), Period(0, 1000)) << "all turns are one view";
    }
    Turn(At(0.25, 0.5), {0, 120});
    EXPECT_NEAR(Shown().first, 125, 2) << "the time under the pointer stays";
    ShowAll();

    const SRange range = First().GetRange();
    for (const QPointF at : {At(0.5, 1), At(0, 1) - QPointF(10, 0)}) {
        Turn(at, {0, 120}, at.x() > At(0, 0).x() ? Qt::ControlModifier : Qt::NoModifier);
        EXPECT_NEAR(First().GetMinimum(), range.low, 1) << "the value under the pointer stays";
        EXPECT_NEAR(First().GetRange().GetWidth(), range.GetWidth() / 2, 1);
        ShowAll();
    }
    Turn(QPointF(40, 60), {0, -120}); // over a legend
    EXPECT_EQ(Shown(), Period(0, 1000));
    EXPECT_GT(m_view->verticalScrollBar()->value(), 0);
}

// A chronogram has no values to zoom: there the gestures act on the time alone.
TEST_F(View1DTest, EveryKindOfGraphTakesTheGestures) {
    for (const std::size_t graph : {0u, 2u}) {
        const auto* portlet = m_view->GetStack().GetPortlets()[graph].get();
        const auto* measure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet);
        const auto at = [&](double x, double y) { return At(x, y, graph); };
        const struct {
            const char* what;
            std::function<void()> run;
            Period shown;
            double cursor;
            bool values; // change in a graph of measures
        } rows[] = {
            {"wheel", [&] { Turn(at(0.5, 0.5), QPoint(0, 120)); }, {250, 750}, -1, false},
            {"Ctrl+wheel",
             [&] { Turn(at(0.5, 0.5), QPoint(0, 120), Qt::ControlModifier); },
             {0, 1000},
             -1,
             true},
            {"wheel over the axis",
             [&] { Turn(at(0, 0.5) - QPointF(8, 0), QPoint(0, 120), Qt::NoModifier); },
             {0, 1000},
             -1,
             true},
            {"Shift+wheel",
             [&] { Turn(at(0.5, 0.5), QPoint(0, -120), Qt::ShiftModifier); },
             {250, 1250},
             -1,
             false},
            {"middle drag",
             [&] { Drag(at(0.5, 0.5), at(0.25, 0.5), Qt::NoModifier, Qt::MiddleButton); },
             {250, 1250},
             -1,
             false},
            {"slanting drag",
             [&] { Drag(at(0.5, 0.2), at(0.25, 0.6), Qt::NoModifier, Qt::MiddleButton); },
             {250, 1250},
             -1,
             true},
            {"Ctrl+drag",
             [&] { Drag(at(0.2, 0.2), at(0.4, 0.6), Qt::ControlModifier); },
             {200, 400},
             -1,
             false},
            {"Ctrl+Shift+drag",
             [&] { Drag(at(0.2, 0.2), at(0.4, 0.6), Qt::ControlModifier | Qt::ShiftModifier); },
             {200, 400},
             -1,
             true},
            {"click", [&] { Click(at(0.25, 0.5)); }, {0, 1000}, 250, false},
            {"drag", [&] { Drag(at(0.25, 0.5), at(0.75, 0.5)); }, {0, 1000}, 750, false},
            {"Shift+click", [&] { Click(at(0.25, 0.5), Qt::ShiftModifier); }, {0, 1000}, -1, false},
            {"double click",
             [&] { m_view->GetLoader().ZoomTime(1), DoubleClick(at(0.5, 0.5)); },
             {0, 1000},
             -1,
             false},
        };
        for (const auto& row : rows) {
            ShowAll();
            for (const auto cursor : {ECursor::first, ECursor::second}) m_viewState.SetCursor(cursor, {});
            row.run();
            m_view->EndWheel();
            SCOPED_TRACE(row.what + std::string(measure ? "" : " in a chronogram"));
            EXPECT_NEAR(Shown().first, row.shown.first, 3);
            EXPECT_NEAR(Shown().second, row.shown.second, 3);
            EXPECT_NEAR(Cursor(), row.cursor, 3);
            EXPECT_EQ(!m_viewState.GetView().ranges.empty(), row.values && measure);
        }
        EXPECT_EQ(m_view->GetStack().GetSelected(), portlet) << "by its clicks";
    }
}

TEST_F(View1DTest, SwitchesAreKeptInTheSettings) {
    using Outils_Configuration::Cnf;
    m_view->SetLegendsVisible(false);
    m_view->SetEcho(false);
    EXPECT_FALSE(m_config.Get(Cnf<"view1D/showGraphLegends">) || m_config.Get(Cnf<"viewValue/echoToGraph">));
    const CTrvView1D again(*m_document, m_viewState, m_config, m_adaptors, m_settings);
    EXPECT_FALSE(again.AreLegendsVisible() || again.HasEcho());
}

TEST_F(View1DTest, BandZoomsTheTime) {
    m_view->SetMode(EView1DMode::zoom);
    Drag(At(0.25, 0.5), At(0.75, 0.6));
    EXPECT_NEAR(Shown().first, 250, 3);
    EXPECT_NEAR(Shown().second, 750, 3);
    EXPECT_TRUE(First().IsRangeAutomatic());
    const auto before = m_view->GetStack().GetPeriod();
    Drag(At(0.5, 0.5), At(0.5, 0.5));
    Drag(At(0.5, 0.5), At(0.9, 0.5)); // flat
    Mouse(QEvent::MouseButtonPress, At(0.1, 0.1));
    Mouse(QEvent::MouseMove, At(0.4, 0.4));
    Key("Esc");
    Mouse(QEvent::MouseButtonRelease, At(0.4, 0.4));
    EXPECT_EQ(m_view->GetStack().GetPeriod(), before);
    EXPECT_EQ(Cursor(), -1) << "a click changes nothing";
    Drag(At(0.5, 0.5), At(3, 4)); // far out: kept to the plotting area
    EXPECT_NEAR(Shown().second, 750, 3);

    ShowAll();
    m_view->SetMode(EView1DMode::select);
    const SRange range = First().GetRange();
    Drag(At(0.2, 0.25), At(0.4, 0.75), Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_NEAR(Shown().first, 200, 3);
    EXPECT_NEAR(First().GetMinimum(), range.low + range.GetWidth() / 4, range.GetWidth() / 50);
    EXPECT_NEAR(First().GetMaximum(), range.low + range.GetWidth() * 0.75, range.GetWidth() / 50);
}

TEST_F(View1DTest, PanDragsTimeAndMeantDragsOfValues) {
    m_view->SetMode(EView1DMode::pan);
    const double low = First().GetMinimum();
    Drag(At(0.5, 0.5), At(0.25, 0.5) + QPointF(0, 4));
    EXPECT_NEAR(Shown().first, 250, 3);
    EXPECT_NEAR(Shown().second, 1250, 3);
    EXPECT_EQ(First().GetMinimum(), low) << "a hand is not quite steady";
    Drag(At(0.5, 0.25), At(0.5, 0.75));
    EXPECT_NEAR(First().GetMinimum(), low + (First().GetMaximum() - First().GetMinimum()) / 2, 1);
    EXPECT_TRUE(m_viewState.GoBack() && m_viewState.GoBack());
    EXPECT_EQ(Shown(), Period(0, 1000)) << "a drag is one view";

    // In any mode by the middle button, or with Space held.
    m_view->SetMode(EView1DMode::zoom);
    Drag(At(0.5, 0.5), At(0.25, 0.5), {}, Qt::MiddleButton);
    EXPECT_NEAR(Shown().first, 250, 3);
    ShowAll();
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, {}), release(QEvent::KeyRelease, Qt::Key_Space, {});
    QApplication::sendEvent(&*m_view, &press);
    Drag(At(0.5, 0.5), At(0.25, 0.5));
    QApplication::sendEvent(&*m_view, &release);
    EXPECT_NEAR(Shown().first, 250, 3);
    EXPECT_FALSE(m_view->HasSelectedCurve()) << "Space was for the drag";
    ShowAll();
    Mouse(QEvent::MouseButtonPress, At(0.5, 0.5), {}, Qt::MiddleButton);
    Mouse(QEvent::MouseMove, At(0.1, 0.5), {}, Qt::MiddleButton);
    Key("Esc");
    EXPECT_EQ(Shown(), Period(0, 1000));
}

TEST_F(View1DTest, SelectPutsBothCursors) {
    Drag(At(0.25, 0.5), At(0.25, 0.5));
    EXPECT_NEAR(Cursor(), 250, 2);
    Drag(At(0.25, 0.5), At(0.5, 0.5));
    EXPECT_NEAR(Cursor(), 500, 2);
    Drag(At(0.75, 0.5), At(2, 0.5), Qt::ShiftModifier);
    EXPECT_NEAR(Cursor(), 500, 2);
    EXPECT_NEAR(Cursor(ECursor::second), 1000, 2) << "kept to the plotting area";
    Mouse(QEvent::MouseMove, At(0.1, 0.1));
    EXPECT_NEAR(Cursor(), 500, 2) << "the mouse alone moves nothing";
    EXPECT_FALSE(m_view->grab().isNull());
    Key("Ins");
    EXPECT_EQ(Cursor(), Cursor(ECursor::second));
    EXPECT_FALSE(m_viewState.GetInterval());
}

TEST_F(View1DTest, LegendsSelectAndHide) {
    const SRect plot = First().GetPlot().GetRect();
    const QPointF row(static_cast<double>(plot.x) + 40, static_cast<double>(plot.y) + 12),
        box = row - QPointF(28, 0);
    const auto& serie = *First().GetPlot().GetSeries()[0];
    Mouse(QEvent::MouseMove, row);
    EXPECT_EQ(First().GetPlot().GetHoveredSerie(), &serie);
    Drag(row, row);
    EXPECT_EQ(First().GetPlot().GetSelectedSerie(), &serie);
    Mouse(QEvent::MouseMove, At(0.5, 0.5));
    EXPECT_EQ(First().GetPlot().GetHoveredSerie(), nullptr);
    Drag(box, box);
    EXPECT_FALSE(serie.IsVisible());
    m_document->UpdateAllViews(nullptr, hintGraphAdded);
    EXPECT_FALSE(serie.IsVisible()) << "a change of the project shows nothing again";
    DoubleClick(box);
    EXPECT_TRUE(serie.IsVisible());
}

TEST_F(View1DTest, DoubleClicksAskOrShowAll) {
    int ranges = 0, properties = 0;
    QObject::connect(&*m_view, &CTrvView1D::RangeRequested, [&] { ++ranges; });
    QObject::connect(&*m_view, &CTrvView1D::PropertiesRequested, [&] { ++properties; });
    m_view->GetLoader().ShowPeriod({Seconds(100), Seconds(300)});
    DoubleClick(At(0.5, 0.5));
    EXPECT_EQ(Shown(), Period(0, 1000));
    DoubleClick(At(0, 0.5) - QPointF(10, 0));
    EXPECT_EQ(ranges, 1);
    const SRect plot = First().GetPlot().GetRect();
    DoubleClick(QPointF(static_cast<double>(plot.x) + 40, static_cast<double>(plot.y) + 12));
    EXPECT_EQ(properties, 1);

    const SRect rect = First().GetRect();
    const QPointF border(500, static_cast<double>(rect.Bottom()) + 1);
    Drag(border, border + QPointF(0, 60));
    EXPECT_NEAR(First().GetRect().height, rect.height + 61, 5);
    DoubleClick(border + QPointF(0, 60));
    EXPECT_EQ(First().GetRect().height, rect.height);
}

TEST_F(View1DTest, OneGraphIsShownAlone) {
    m_view->GetLoader().ShowAlone(true);
    EXPECT_GT(First().GetRect().height, 400);
    Key("Down");
    EXPECT_TRUE(First().IsCollapsed());
    EXPECT_EQ(m_view->GetStack().GetShown().size(), 1u);
    EXPECT_EQ(PortletAt(m_view->GetStack(), {100, 100}), m_view->GetStack().GetSelected());
    m_view->GetLoader().ShowAlone(false);
    EXPECT_EQ(m_view->GetStack().GetShown().size(), 8u);
}

TEST_F(View1DTest, DarkPaletteMakesDarkGraphs) {
    const auto ground = [this] {
        const QPointF at = At(0.02, 0.05);
        return m_view->grab().toImage().pixelColor(at.toPoint()).lightness();
    };
    EXPECT_GT(ground(), 200);
    QPalette dark;
    dark.setColor(QPalette::Base, Qt::black);
    m_view->setPalette(dark);
    EXPECT_LT(ground(), 80);
}

TEST_F(View1DTest, FieldsAreDroppedWhereTheyFit) {
    using namespace Metier_Tarvel_DataModel;
    auto& project = *m_document->GetProject();
    CTrvDataLayer& layer = *project.dataModel->m_layers.emplace_back(std::make_unique<CTrvDataLayer>());
    layer.m_name = "MORVEX_STD";
    layer.m_dataFile = m_file;
    layer.m_channelNumber = 1;
    const auto* latitude = CTrvDataModel::AddMeasure(layer, "Latitude0", "", kLatitude, 1);
    const auto* altitude = CTrvDataModel::AddMeasure(layer, "Altitude0", "", kAltitude, 13);
    const auto* state = CTrvDataModel::AddEnum(layer, "State", "", 0);

    const auto& graphs = project.graphSettings->graphs;
    const QPointF below(5, 1e5);
    EXPECT_TRUE(m_view->CanDrop(At(0.5, 0.5), *latitude));
    EXPECT_FALSE(m_view->CanDrop(At(0.5, 0.5), *altitude)) << "another kind of value";
    EXPECT_FALSE(m_view->CanDrop(At(0.5, 0.5), *state));
    EXPECT_FALSE(m_view->CanDrop(below, project)) << "no field";
    EXPECT_FALSE(m_view->Drop(At(0.5, 0.5), *altitude));
    EXPECT_TRUE(m_view->Drop(At(0.5, 0.5), *latitude));
    EXPECT_EQ(First().GetPlot().GetSeries().size(), 3u);
    EXPECT_EQ(First().GetPlot().GetSeries()[2]->GetName(), "MORVEX_STD - Latitude0");
    const std::size_t count = graphs.size();
    EXPECT_TRUE(m_view->Drop(below, *altitude));
    EXPECT_TRUE(m_view->Drop(below, *state));
    EXPECT_EQ(graphs.size(), count + 2);
    EXPECT_EQ(m_view->GetStack().GetPortlets().size(), count + 2);
}

TEST_F(View1DTest, ProjectMayGoDuringAGesture) {
    m_view->SetMode(EView1DMode::pan);
    Mouse(QEvent::MouseButtonPress, At(0.5, 0.5));
    Mouse(QEvent::MouseMove, At(0.4, 0.4));
    m_document->CloseDocument();
    m_document->UpdateAllViews(nullptr, hintRefresh);
    Mouse(QEvent::MouseMove, QPointF(300, 80));
    Mouse(QEvent::MouseButtonRelease, QPointF(300, 80));
    for (const char* key : {"+", "Left", "Home", "Down", "Space", "Del"}) Key(key);
    EXPECT_FALSE(m_view->grab().isNull());
}

} // namespace
