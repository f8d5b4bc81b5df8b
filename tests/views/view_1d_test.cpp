#include "config/config_file.h"
#include "document/scripted_host.h"
#include "graph/fabricated.h"
#include "support/temporary_folder.h"
#include "views/stack_pictures.h"
#include "views/view_1d.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPrinter>
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
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key.key(), key.keyboardModifiers());
            QApplication::sendEvent(&*m_view, &event);
        }
    }
    void Mouse(QEvent::Type type, QPointF position, Qt::KeyboardModifiers keys = {},
               Qt::MouseButton button = Qt::LeftButton) {
        QMouseEvent event(type, position, m_view->viewport()->mapToGlobal(position),
                          type == QEvent::MouseMove ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, keys);
        QApplication::sendEvent(m_view->viewport(), &event);
    }
    void Drag(QPointF from, QPointF to, Qt::KeyboardModifiers keys = {},
              Qt::MouseButton button = Qt::LeftButton) {
        Mouse(QEvent::MouseButtonPress, from, keys, button);
        Mouse(QEvent::MouseMove, (from + to) / 2, keys, button);
        Mouse(QEvent::MouseMove, to, keys, button);
        Mouse(QEvent::MouseButtonRelease, to, keys, button);
    }
    void DoubleClick(QPointF position) { Mouse(QEvent::MouseButtonDblClick, position); }
    void Turn(QPointF position, QPoint turn, Qt::KeyboardModifiers keys = {}) {
        QWheelEvent event(position, position, QPoint(), turn, Qt::NoButton, keys, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view->viewport(), &event);
    }
    double Cursor(ECursor cursor = ECursor::first) {
        const auto time = m_viewState.GetCursor(cursor);
        return time ? time->GetTotalSeconds() : -1;
    }
    void ShowAll() { m_viewState.SetView({{Seconds(0), Seconds(1000)}, {}}); }
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

TEST_F(View1DTest, PagesAndFilesHoldThePicture) {
    const SPictureContent content{m_view->GetStack(), m_viewState, {}};
    CTemporaryFolder folder;
    for (const auto& [name, begin] :
         {std::pair("a.pdf", "%PDF"), {"a.png", "\x89PNG"}, {"a.svg", "<?xml"}, {"a.other", "<?xml"}}) {
        EXPECT_TRUE(SavePicture(content, folder / name));
        QFile file(QString::fromStdString((folder / name).string()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.readAll().startsWith(begin)) << name;
    }
    EXPECT_FALSE(SavePicture(content, folder / "none" / "a.svg"));

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setPageSize(QPageSize(QPageSize::A4));
    printer.setOutputFileName(QString::fromStdString((folder / "pages.pdf").string()));
    PrintPages(content, printer, SPageMargins{}, "dive, 0 to 1000");
    QFile pages(QString::fromStdString((folder / "pages.pdf").string()));
    ASSERT_TRUE(pages.open(QIODevice::ReadOnly));
    // Eight graphs of 130 pixels in 900 make some 2.5 cm each on 17 cm, and nine such fit on 25.7 cm.
    EXPECT_EQ(pages.readAll().count("/Type /Page\n"), 1);
    for (const auto& portlet : m_view->GetStack().GetPortlets()) portlet->SetUserHeight(500);
    m_view->GetLoader().Relayout();
    printer.setOutputFileName(QString::fromStdString((folder / "more.pdf").string()));
    PrintPages(content, printer, SPageMargins{}, "dive, 0 to 1000");
    QFile more(QString::fromStdString((folder / "more.pdf").string()));
    ASSERT_TRUE(more.open(QIODevice::ReadOnly));
    EXPECT_EQ(more.readAll().count("/Type /Page\n"), 4);
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

TEST_F(View1DTest, ClipboardGetsAVectorImage) {
    m_viewState.SetRange(First().GetKey(), SRange{400, 600}); // of values from 0 to 1000
    m_view->GetLoader().Relayout();
    m_viewState.SetCursor(ECursor::first, Seconds(500));
    const SPictureContent content{m_view->GetStack(), m_viewState, {}};
    EXPECT_EQ(CopyToClipboard(content), ECopyEnd::done);
    const QMimeData* data = QApplication::clipboard()->mimeData();
    ASSERT_TRUE(data && data->hasFormat("image/svg+xml"));
    EXPECT_TRUE(data->data("image/svg+xml").contains("<polyline"));
    EXPECT_TRUE(data->data("application/pdf").startsWith("%PDF"));
    EXPECT_TRUE(data->text().contains("first\tnorth\t5"));
    const QImage dense = QImage::fromData(data->data("image/png"));
    EXPECT_EQ(dense.width(), 2 * m_view->viewport()->width());

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
