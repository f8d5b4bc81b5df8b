#include "config/config_file.h"
#include "document/scripted_host.h"
#include "graph/fabricated.h"
#include "views/stack_clipboard.h"
#include "views/view_1d.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSvgRenderer>
#include <QWheelEvent>

using namespace test;

namespace {

// A view on a project whose files do not exist: the data is handed to the stack by the test.
class View1DTest : public testing::Test {
  protected:
    View1DTest() {
        m_document.emplace(m_host, m_host.m_queue, m_config, false);
        auto project =
            std::make_unique<Metier_Tarvel::CTrvProject>("/nowhere/dive.tarin", "/nowhere/dive.tarout");
        auto& parameters = *project->simulationParameters;
        parameters.begin = Metier_Tarvel::ToStoredTime(Seconds(0));
        parameters.end = Metier_Tarvel::ToStoredTime(Seconds(1000));
        m_file = parameters.outputFile.get();
        auto* graph = project->graphSettings->AddMeasureGraph("first");
        for (const char* label : {"north", "north again"}) graph->AddCurve(m_file, 1, kLatitude, label);
        project->graphSettings->AddMeasureGraph("second")->AddCurve(m_file, 1, kAltitude, "up");
        for (int i = 0; i < 6; ++i) project->graphSettings->AddMeasureGraph("empty");
        m_document->NewFromProject(std::move(project), "/nowhere/dive.tarprj");

        m_view.emplace(*m_document, m_viewState, m_config, m_adaptors, m_settings);
        m_view->resize(900, 500);
        m_view->show();
        EXPECT_TRUE(m_host.m_queue.RunUntil([this] { return !m_view->GetLoader().IsLoading(); },
                                            std::chrono::seconds(60)));
        m_view->GetStack().SetDataset({m_file, 1}, MakeDataset(0, 1000, [](double t) { return t; }));
        QApplication::processEvents();
    }

    // By its name, as "Ctrl+Down".
    void Key(const char* name) {
        const QKeyCombination key = QKeySequence(name)[0];
        QKeyEvent event(QEvent::KeyPress, key.key(), key.keyboardModifiers());
        QApplication::sendEvent(&*m_view, &event);
    }
    void Mouse(QEvent::Type type, QPointF position) {
        const bool move = type == QEvent::MouseMove;
        QMouseEvent event(type, position, m_view->viewport()->mapToGlobal(position),
                          move ? Qt::NoButton : Qt::LeftButton,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_view->viewport(), &event);
    }
    void Drag(QPointF from, QPointF to) {
        Mouse(QEvent::MouseButtonPress, from);
        Mouse(QEvent::MouseMove, (from + to) / 2);
        Mouse(QEvent::MouseMove, to);
        Mouse(QEvent::MouseButtonRelease, to);
    }
    // A point of the plotting area of the first graph, by parts of its width and height.
    QPointF At(double x, double y) {
        const SRect area = m_view->GetStack().GetPortlets()[0]->GetPlottingRect();
        return {static_cast<double>(area.x) + x * static_cast<double>(area.width),
                static_cast<double>(area.y) + y * static_cast<double>(area.height)};
    }
    std::pair<double, double> Shown() {
        const auto& period = m_view->GetStack().GetPeriod();
        return {std::round(period.start.GetTotalSeconds()), std::round(period.end.GetTotalSeconds())};
    }
    CTrv1DGraphMeasurePortlet& First() {
        return dynamic_cast<CTrv1DGraphMeasurePortlet&>(*m_view->GetStack().GetPortlets()[0]);
    }

    Outils_Configuration::CTrvCnfConfigFile m_config;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_settings;
    CScriptedHost m_host;
    std::optional<CTrvDocument> m_document;
    Metier_Tarvel::CTrvDataFile* m_file = nullptr;
    CViewState m_viewState;
    std::optional<CTrvView1D> m_view;
};

using Period = std::pair<double, double>;

TEST_F(View1DTest, KeyboardSelectsAndScrolls) {
    const float height = First().GetRect().height;
    Key("Ctrl+Shift+Down");
    EXPECT_GT(First().GetRect().height, height);
    Key("Shift+Right");
    EXPECT_EQ(m_viewState.GetCursor(ECursor::first), Seconds(500));
    Key("Shift+Right");
    EXPECT_GT(m_viewState.GetCursor(ECursor::first).value(), Seconds(500));

    const QScrollBar& bar = *m_view->verticalScrollBar();
    for (int i = 0; i < 20; ++i) Key("Down");
    EXPECT_EQ(m_view->GetStack().GetSelectedIndex(), 7);
    EXPECT_NEAR(bar.value(), bar.maximum(), 4) << "in sight";
    for (int i = 0; i < 20; ++i) Key("Up");
    EXPECT_EQ(bar.value(), 0);
    Key("PgDown");
    EXPECT_GT(bar.value(), 0);

    Key("PgUp");
    EXPECT_EQ(bar.value(), 0);
}

TEST_F(View1DTest, DeletesTheSelectedCurveOnly) {
    const auto& graph = dynamic_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(
        *m_document->GetProject()->graphSettings->graphs[0]);
    int changes = 0;
    QObject::connect(&*m_view, &CTrvView1D::StateChanged, [&] { ++changes; });
    const auto expect = [&](bool selected, std::size_t curves) {
        EXPECT_EQ(m_view->HasSelectedCurve(), selected);
        EXPECT_EQ(graph.curves.size(), curves);
        EXPECT_EQ(First().GetPlot().GetSeries().size(), curves);
        EXPECT_GT(std::exchange(changes, 0), 0);
    };
    m_view->DeleteSelectedCurve();
    m_view->SelectPortlet(0);
    expect(false, 2);
    Key("Space");
    expect(true, 2);
    m_view->SelectPortlet(1);
    expect(false, 2);
    m_view->SelectPortlet(0);
    m_view->DeleteSelectedCurve();
    expect(false, 1);
    Key("Space");
    Key("Space"); // after the last curve, none
    expect(false, 1);
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
        {Qt::Key_Left, Qt::ShiftModifier, 0}, // moves the cursor
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
    const auto wheel = [&](int turn, Qt::KeyboardModifier key) {
        QWheelEvent event(At(0.5, 0.5), At(0.5, 0.5), QPoint(), QPoint(0, turn), Qt::NoButton, key,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view->viewport(), &event);
    };
    const struct {
        Qt::KeyboardModifier key;
        int turn, times;
        Period shown;
    } rows[] = {{Qt::ControlModifier, 120, 1, {250, 750}}, {Qt::ControlModifier, 15, 8, {250, 750}},
                {Qt::ControlModifier, 240, 1, {375, 625}}, {Qt::ControlModifier, -30, 4, {-500, 1500}},
                {Qt::ShiftModifier, 120, 1, {-250, 750}},  {Qt::ShiftModifier, -12, 10, {250, 1250}}};
    for (const auto& row : rows) {
        for (int i = 0; i < row.times; ++i) wheel(row.turn, row.key);
        EXPECT_EQ(Shown(), row.shown) << row.turn;
        m_view->GetLoader().ViewAll();
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

TEST_F(View1DTest, RubberBandZoomsTheTime) {
    m_view->SetMode(EView1DMode::zoom);
    Drag(At(0.25, 0.5), At(0.75, 0.6));
    EXPECT_NEAR(Shown().first, 250, 3);
    EXPECT_NEAR(Shown().second, 750, 3);
    const auto before = m_view->GetStack().GetPeriod();
    Drag(At(0.5, 0.5), At(0.5, 0.5));
    Drag(At(0.5, 0.5), At(0.9, 0.5)); // flat
    Mouse(QEvent::MouseButtonPress, At(0.1, 0.1));
    Mouse(QEvent::MouseMove, At(0.4, 0.4));
    Key("Esc");
    Mouse(QEvent::MouseButtonRelease, At(0.4, 0.4));
    EXPECT_EQ(m_view->GetStack().GetPeriod(), before);
    Drag(At(0.5, 0.5), At(3, 4)); // far out: kept to the plotting area
    EXPECT_NEAR(Shown().second, 750, 3);
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
}

TEST_F(View1DTest, SelectTakesBordersLegendsAndTheCursor) {
    const SRect rect = First().GetRect();
    Drag(QPointF(500, static_cast<double>(rect.Bottom()) + 1),
         QPointF(500, static_cast<double>(rect.Bottom()) + 61));
    EXPECT_NEAR(First().GetRect().height, rect.height + 61, 5);

    const SRect plot = First().GetPlot().GetRect();
    const QPointF row(static_cast<double>(plot.x) + 30, static_cast<double>(plot.y) + 12);
    Mouse(QEvent::MouseMove, row);
    EXPECT_NE(First().GetPlot().GetHoveredSerie(), nullptr);
    Drag(row, row);
    EXPECT_NE(First().GetPlot().GetSelectedSerie(), nullptr);

    Mouse(QEvent::MouseMove, At(0.5, 0.5));
    EXPECT_EQ(First().GetPlot().GetHoveredSerie(), nullptr);
    EXPECT_NEAR(m_viewState.GetCursor(ECursor::first)->GetTotalSeconds(), 500, 2);
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

TEST_F(View1DTest, ClipboardGetsAVectorImage) {
    m_viewState.SetRange(First().GetKey(), SRange{400, 600}); // of values from 0 to 1000
    m_view->GetLoader().Relayout();
    CopyToClipboard(m_view->GetStack(), m_view->viewport()->width());
    const QMimeData* data = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(data && data->hasFormat("image/svg+xml"));
    EXPECT_TRUE(data->data("image/svg+xml").contains("<polyline"));
    EXPECT_TRUE(data->hasImage());

    // The curve ends at the plotting area: that kind of image has no clip of its own.
    QSvgRenderer svg(data->data("image/svg+xml"));
    QImage image(svg.viewBox().size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing, false);
    svg.render(&painter, image.rect());
    painter.end();
    const auto count = [&](const SRect& rect) {
        int found = 0;
        for (int y = static_cast<int>(rect.y); y < static_cast<int>(rect.Bottom()); ++y)
            for (int x = static_cast<int>(rect.x); x < static_cast<int>(rect.Right()); ++x)
                found += qRed(image.pixel(x, y)) > qBlue(image.pixel(x, y)) + 60; // the upper curve is red
        return found;
    };
    const SRect area = First().GetPlottingRect(), strip = First().GetRect();
    EXPECT_GT(count({area.x + 3, area.y, area.width - 6, area.height - 3}), 50);
    EXPECT_EQ(count({area.x + 3, area.Bottom() + 2, area.width - 6, strip.Bottom() - area.Bottom() - 3}), 0);
}

} // namespace
