#include "foundation/texts.h"
#include "graph/data_fixture.h"
#include "plot/settings.h"
#include "views/drop_targets.h"
#include "views/plan_view.h"
#include "views/view_metadata.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QLineEdit>
#include <QMimeData>
#include <QMouseEvent>
#include <QWheelEvent>

using namespace test;
using Outils_Texte::EText;

namespace {

void Key(QWidget& widget, int key, Qt::KeyboardModifiers modifiers = {}, const QString& text = {}) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&widget, &event);
}

void Mouse(QWidget& widget, QEvent::Type type, QPoint position) {
    const bool isUp = type == QEvent::MouseButtonRelease, isMove = type == QEvent::MouseMove;
    QMouseEvent event(type, position, widget.mapToGlobal(position), isMove ? Qt::NoButton : Qt::LeftButton,
                      isUp ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

// The three panels in one window: variables on the left, graphs in the middle, values on the right.
class DataPanelsTest : public CDataFixture {
  protected:
    DataPanelsTest() {
        m_window.resize(1000, 600);
        m_graphs = new CTrvView1D(*m_document, m_state, m_config, m_adaptors, m_settings, &m_window);
        m_graphs->setGeometry(300, 0, 400, 600);
        m_values = new CTrvViewValue(*m_document, m_state, m_config, m_adaptors, &m_window);
        m_values->setGeometry(700, 0, 300, 600);
        m_variables = new CTrvViewMetadata(*m_document, m_state, m_adaptors, &m_window);
        m_variables->setGeometry(0, 0, 300, 600);
        m_variables->SetReceivers(*m_graphs, m_values->GetValues());
        m_variables->AddTarget(std::make_unique<CGraphsDropTarget>(*m_graphs));
        m_variables->AddTarget(std::make_unique<CValuesDropTarget>(*m_values));
        m_tree = m_variables->findChild<QTreeView*>();
        m_box = m_variables->findChild<QLineEdit*>();
        m_testers[0] = std::make_unique<QAbstractItemModelTester>(m_tree->model());
        m_testers[1] = std::make_unique<QAbstractItemModelTester>(m_values->GetList().model());
        m_window.show();
        QApplication::processEvents();
        Load();
    }
    ~DataPanelsTest() override {
        for (auto& tester : m_testers) tester.reset();
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    }

    void Load() {
        RunUntil([this] {
            return !m_values->GetValues().IsLoading() && !m_variables->GetVariables().IsLoading() &&
                   !m_graphs->GetLoader().IsLoading();
        });
    }
    // Filters until one field is left, and selects it.
    QModelIndex Find(const QString& filter) {
        m_box->setText(filter);
        QModelIndex index = m_tree->model()->index(0, 0);
        while (m_tree->model()->rowCount(index) > 0) index = m_tree->model()->index(0, 0, index);
        m_tree->setCurrentIndex(index);
        return index;
    }
    std::size_t GraphCount() { return Project().graphSettings->graphs.size(); }
    std::size_t ValueCount() { return m_values->GetValues().GetRows().size(); }
    void Drag(const QString& field, QPoint to, bool release = true) {
        const QPoint from = m_tree->visualRect(Find(field)).center();
        QWidget& viewport = *m_tree->viewport();
        Mouse(viewport, QEvent::MouseButtonPress, from);
        Mouse(viewport, QEvent::MouseMove, from + QPoint(3, 3));
        Mouse(viewport, QEvent::MouseMove, from + QPoint(40, 0));
        Mouse(viewport, QEvent::MouseMove, viewport.mapFrom(&m_window, to));
        if (release) Mouse(viewport, QEvent::MouseButtonRelease, viewport.mapFrom(&m_window, to));
    }

    Outils_Plot2D::CPlot2DSettings m_settings;
    QWidget m_window;
    CTrvView1D* m_graphs;
    CTrvViewValue* m_values;
    CTrvViewMetadata* m_variables;
    QTreeView* m_tree;
    QLineEdit* m_box;
    std::unique_ptr<QAbstractItemModelTester> m_testers[2];
};

const QPoint kOnValues(850, 300), kBelowGraphs(500, 590), kOutside(150, 590);

TEST_F(DataPanelsTest, FilterLeavesWhatMatches) {
    const QModelIndex depth = Find("input dep"); // the result has states of the depth sensor
    EXPECT_EQ(depth.data(), "Depth");
    EXPECT_EQ(m_tree->model()->rowCount(), 1);
    Key(*m_tree, Qt::Key_X, {}, "xyz"); // typing in the tree goes on in the box
    EXPECT_EQ(m_box->text(), "input depxyz");
    EXPECT_EQ(m_tree->model()->rowCount(), 0);
    Key(*m_box, Qt::Key_Escape);
    EXPECT_EQ(m_box->text(), "");
    EXPECT_EQ(m_tree->model()->rowCount(), 2);
    m_variables->ShowValues(true);
    SetCursors(42);
    const QModelIndex again = Find("dep");
    Load();
    EXPECT_EQ(again.siblingAtColumn(1).data(), "42.000 m");
}

TEST_F(DataPanelsTest, EnterSendsFieldsByItsModifiers) {
    Find("morvex heading");
    Key(*m_tree, Qt::Key_Return, Qt::ControlModifier);
    Key(*m_tree, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(ValueCount(), 1u);
    const std::size_t before = GraphCount();
    Key(*m_tree, Qt::Key_Return, Qt::ShiftModifier);
    const std::size_t after = GraphCount();
    EXPECT_GT(after, before);
    Find("dep");
    Key(*m_box, Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(GraphCount(), after + 1);
}

TEST_F(DataPanelsTest, DragsEndWhereTheyAreTaken) {
    Drag("dep", kOnValues);
    EXPECT_EQ(ValueCount(), 1u);
    Drag("dep", kOnValues); // there already
    EXPECT_EQ(ValueCount(), 1u);
    Drag("morvex heading", kOnValues, false);
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    Key(*m_tree, Qt::Key_Escape);
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
    Mouse(*m_tree->viewport(), QEvent::MouseButtonRelease, kOnValues);
    EXPECT_EQ(ValueCount(), 1u);
    const std::size_t before = GraphCount();
    Drag("morvex heading", kOutside);
    EXPECT_EQ(GraphCount(), before);
    m_graphs->GetStack().Clear();
    Drag("morvex heading", kBelowGraphs);
    EXPECT_GT(GraphCount(), before);
}

TEST_F(DataPanelsTest, ListKeysMoveCopyAndRemove) {
    for (const char* name : {"Heading", "Roll", "Pitch"})
        EXPECT_TRUE(m_values->GetValues().Add(Field("MORVEX_STD", name)));
    CValuesList& list = m_values->GetList();
    const auto label = [&](int row) { return list.model()->index(row, 0).data().toString(); };
    const QString heading = label(0), roll = label(1), pitch = label(2);
    list.setCurrentIndex(list.model()->index(0, 0));
    m_values->MoveRows(1);
    EXPECT_EQ(label(1), heading);
    EXPECT_EQ(list.currentIndex().row(), 1) << "the selection goes along";
    m_values->MoveRows(5);
    EXPECT_EQ(label(2), heading);
    m_values->CopyRows();
    EXPECT_TRUE(QApplication::clipboard()->text().contains(heading));
    EXPECT_FALSE(QApplication::clipboard()->text().contains(roll));
    m_values->RemoveRows();
    EXPECT_EQ(list.model()->rowCount(), 2);

    // By the mouse: the second row before the first.
    const QScopedPointer<QMimeData> data(list.model()->mimeData({list.model()->index(1, 0)}));
    list.model()->dropMimeData(data.data(), Qt::MoveAction, 0, 0, {});
    EXPECT_EQ(label(0), pitch);
    SetCursors(5, 15);
    m_values->ShowStatistics(true);
    Load();
    EXPECT_FALSE(list.isColumnHidden(static_cast<int>(EValueColumn::count)));
    EXPECT_EQ(list.model()->index(0, static_cast<int>(EValueColumn::count)).data(), "11");
    SetCursors({});
    EXPECT_TRUE(list.isColumnHidden(static_cast<int>(EValueColumn::second)));
}

TEST_F(DataPanelsTest, PlanFollowsWheelDragAndKeys) {
    CTrvPlanView view(*m_document, m_state, m_adaptors);
    view.resize(400, 300);
    view.show();
    RunUntil([&] { return !view.GetPlan().IsLoading() && view.GetPlan().GetFrame(); });
    const auto scale = [&] { return view.GetPlan().GetScale(); };
    const auto before = scale();
    QWheelEvent wheel({200, 150}, view.mapToGlobal(QPointF(200, 150)), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&view, &wheel);
    EXPECT_NEAR(scale().metresPerPixel, before.metresPerPixel / 2, 1e-9);
    const double east = scale().centre.east;
    Mouse(view, QEvent::MouseButtonPress, {100, 100});
    Mouse(view, QEvent::MouseMove, {130, 100});
    Mouse(view, QEvent::MouseButtonRelease, {130, 100});
    EXPECT_NEAR(scale().centre.east, east - 30 * scale().metresPerPixel, 1e-6);
    EXPECT_EQ(m_state.GetCursor(ECursor::first), std::nullopt);
    Key(view, Qt::Key_Home);
    EXPECT_EQ(scale().metresPerPixel, before.metresPerPixel);
    const auto& points = view.GetPlan().GetTracks()[0].whole->points;
    const SPoint middle = scale().ToPixel(points[points.size() / 2].place);
    const QPoint onTrack(static_cast<int>(middle.x), static_cast<int>(middle.y));
    Mouse(view, QEvent::MouseButtonPress, onTrack);
    Mouse(view, QEvent::MouseButtonRelease, onTrack);
    EXPECT_TRUE(m_state.GetCursor(ECursor::first)) << "a click puts the cursor to the track";
    view.CopyPicture();
    const QMimeData* data = QApplication::clipboard()->mimeData();
    EXPECT_TRUE(data->data("image/svg+xml").contains("<svg"));
    EXPECT_TRUE(data->data("application/pdf").startsWith("%PDF"));
    EXPECT_TRUE(data->data("image/png").startsWith("\x89PNG"));
}

} // namespace
