// A view of graphs without a window on the screen, and events for it.
#pragma once

#include "config/config_file.h"
#include "document/scripted_host.h"
#include "graph/fabricated.h"
#include "support/temporary_folder.h"
#include "views/view_1d.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

namespace test {

using Period = std::pair<double, double>;

// Sends events to a view.
class CGestures {
  public:
    explicit CGestures(CTrvView1D& view) : m_view(view) {}

    // By its name, as "Ctrl+Down".
    void Key(const char* name) {
        const QKeyCombination key = QKeySequence(name)[0];
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) Send(type, key);
    }
    void Send(QEvent::Type type, QKeyCombination key) {
        QKeyEvent event(type, key.key(), key.keyboardModifiers());
        QApplication::sendEvent(&m_view, &event);
    }
    void Mouse(QEvent::Type type, QPointF position, Qt::KeyboardModifiers keys = {},
               Qt::MouseButton button = Qt::LeftButton) {
        QMouseEvent event(type, position, m_view.viewport()->mapToGlobal(position),
                          type == QEvent::MouseMove ? Qt::NoButton : button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : button, keys);
        QApplication::sendEvent(m_view.viewport(), &event);
    }
    void Drag(QPointF from, QPointF to, Qt::KeyboardModifiers keys = {},
              Qt::MouseButton button = Qt::LeftButton) {
        Mouse(QEvent::MouseButtonPress, from, keys, button);
        Mouse(QEvent::MouseMove, (from + to) / 2, keys, button);
        Mouse(QEvent::MouseMove, to, keys, button);
        Mouse(QEvent::MouseButtonRelease, to, keys, button);
    }
    void Click(QPointF position, Qt::KeyboardModifiers keys = {}) { Drag(position, position, keys); }
    void DoubleClick(QPointF position) { Mouse(QEvent::MouseButtonDblClick, position); }
    void Turn(QPointF position, QPoint turn, Qt::KeyboardModifiers keys = {}) {
        QWheelEvent event(position, position, QPoint(), turn, Qt::NoButton, keys, Qt::NoScrollPhase, false);
        QApplication::sendEvent(m_view.viewport(), &event);
    }
    // A point of the plotting area of a graph, by parts of its width and height.
    QPointF At(double x, double y, std::size_t graph = 0) {
        const SRect area = m_view.GetStack().GetPortlets()[graph]->GetPlottingRect();
        return {static_cast<double>(area.x) + x * static_cast<double>(area.width),
                static_cast<double>(area.y) + y * static_cast<double>(area.height) -
                    m_view.verticalScrollBar()->value()};
    }

  private:
    CTrvView1D& m_view;
};

// A view on a project whose files do not exist: the data is handed to the stack by the test. The third graph
// is a chronogram.
class CView1DFixture : public testing::Test {
  protected:
    CView1DFixture() {
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
        project->graphSettings->AddEnumGraph("states", m_file, 2, 0, "rejected");
        for (int i = 0; i < 5; ++i) project->graphSettings->AddMeasureGraph("empty");
        m_document->NewFromProject(std::move(project), "/nowhere/dive.tarprj");

        m_view.emplace(*m_document, m_viewState, m_config, m_adaptors, m_settings);
        m_gestures.emplace(*m_view);
        m_view->resize(900, 500);
        m_view->show();
        EXPECT_TRUE(m_host.m_queue.RunUntil([this] { return !m_view->GetLoader().IsLoading(); },
                                            std::chrono::seconds(60)));
        m_view->GetStack().SetDataset({m_file, 1}, MakeDataset(0, 1000, [](double t) { return t; }));
        QApplication::processEvents();
    }

    void Key(const char* name) { m_gestures->Key(name); }
    void Mouse(QEvent::Type type, QPointF position, Qt::KeyboardModifiers keys = {},
               Qt::MouseButton button = Qt::LeftButton) {
        m_gestures->Mouse(type, position, keys, button);
    }
    void Drag(QPointF from, QPointF to, Qt::KeyboardModifiers keys = {},
              Qt::MouseButton button = Qt::LeftButton) {
        m_gestures->Drag(from, to, keys, button);
    }
    void Turn(QPointF position, QPoint turn, Qt::KeyboardModifiers keys = {}) {
        m_gestures->Turn(position, turn, keys);
    }
    void Click(QPointF position, Qt::KeyboardModifiers keys = {}) { m_gestures->Click(position, keys); }
    void DoubleClick(QPointF position) { m_gestures->DoubleClick(position); }
    QPointF At(double x, double y, std::size_t graph = 0) { return m_gestures->At(x, y, graph); }
    double Cursor(ECursor cursor = ECursor::first) {
        const auto time = m_viewState.GetCursor(cursor);
        return time ? time->GetTotalSeconds() : -1;
    }
    void ShowAll() { m_viewState.SetView({{Seconds(0), Seconds(1000)}, {}}); }
    Period Shown() {
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
    std::optional<CGestures> m_gestures;
};

} // namespace test
