// The view of the graphs: paints the stack and turns mouse and keys into its commands. All else is in graph/.
// UI thread.
//
// Keys of its own, beside those of the commands: with Shift, left and right move the cursor (with Ctrl, too,
// faster); up and down select a graph, with Ctrl and Shift they change its height; Space selects its next
// curve; Page Up and Page Down scroll the stack; Escape ends a gesture; the menu key opens the menu. The
// wheel scrolls the stack, with Ctrl it zooms the time, with Shift it scrolls the time, both in proportion to
// its turn.
#pragma once

#include "graph/loader.h"
#include "graph/stack_picture.h"
#include "views/interactor.h"

#include <QKeySequence>
#include <QPixmap>

#include <optional>
#include <utility>
#include <vector>

class QAction;
class QMenu;

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrv1DGraphLoader;
using Presentation_Tarvel_Graphics::CTrv1DGraphPortlet;
using Presentation_Tarvel_Graphics::CTrv1DGraphStack;

// What the mouse does.
enum class EView1DMode { select, pan, zoom };

class CTrvView1D final : public Outils_Application::CInteractorView {
    Q_OBJECT

  public:
    // All five must outlive the view. `configuration` is the document's own: the view keeps its switches
    // there.
    CTrvView1D(CTrvDocument& document, Presentation_Tarvel_Graphics::CViewState& viewState,
               Outils_Configuration::CTrvCnfConfigFile& configuration,
               const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings,
               QWidget* parent = nullptr);
    ~CTrvView1D() override;

    CTrv1DGraphLoader& GetLoader() { return m_loader; }
    CTrv1DGraphStack& GetStack() { return m_loader.GetStack(); }
    const CTrv1DGraphStack& GetStack() const { return m_loader.GetStack(); }

    // Triggers `action` for this key while the view has the focus. `action` must outlive the view.
    void AddCommandKey(const QKeySequence& key, QAction* action) { m_keys.emplace_back(key, action); }
    // Must outlive the view; null for none.
    void SetContextMenu(QMenu* menu) { m_menu = menu; }

    void SetMode(EView1DMode mode);
    EView1DMode GetMode() const { return m_mode; }
    // Legends and the marks at the cursor; kept in the settings.
    void SetLegendsVisible(bool visible);
    bool AreLegendsVisible() const { return GetStack().AreLegendsVisible(); }
    void SetEcho(bool on);
    bool HasEcho() const { return m_echo; }
    // A curve of a saved graph is selected.
    bool HasSelectedCurve() const;
    // Removes that curve from the project; a chronogram goes as a whole. Does nothing without a selected
    // curve.
    void DeleteSelectedCurve();
    // Takes the settings again.
    void Reformat();

    // Fields of the dictionary that the user drags here, by the rules of graph/field_drop.h.
    bool CanDrop(QPointF position, const Outils_Objets::CObject& field) const;
    bool Drop(QPointF position, const Outils_Objets::CObject& field);

    // For the interactors. Positions are in pixels of the window; the stack may be scrolled under it.
    Outils_Plot2D::SPoint ToStack(QPointF position) const;
    Presentation_Tarvel_Graphics::CViewState& GetViewState() const { return m_loader.GetViewState(); }
    void DrawCursor(QPainter& painter);
    // Clamps the index; scrolls the graph into sight.
    void SelectPortlet(int index);
    // Selects a curve of the selected graph, or none for null; no other graph keeps a selected curve.
    void SelectSerie(Outils_Plot2D::CPlot2DSerie* serie);
    // Paints again what the stack shows / only what lies over it.
    void Redraw();
    void RedrawOverlay() { viewport()->update(); }

  Q_SIGNALS:
    // Mode, legends, echo or the selected curve have changed.
    void StateChanged();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void OnLoaderChanged(bool layout);
    void FitToWindow();
    void UpdateScrollBar();
    void PaintBacking();
    void ShowSelected();

    Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CTrv1DGraphLoader m_loader;
    std::vector<std::pair<QKeySequence, QAction*>> m_keys; // actions are not owned
    QMenu* m_menu = nullptr;                               // not owned
    Presentation_Tarvel_Graphics::SCursorLook m_cursorLook;
    EView1DMode m_mode = EView1DMode::select;
    bool m_echo = true;
    QPixmap m_backing; // what the window shows of the stack, without what lies over it
    bool m_backingValid = false;
    Presentation_Tarvel_Graphics::CViewState::CSubscription m_subscription;
};

} // namespace Application_Tarvel
