// The view of the graphs: paints the stack and turns mouse and keys into its commands. All else is in graph/.
// UI thread.
//
// Keys of its own, beside those of the commands: left and right step the cursor from sample to sample of the
// selected curve, with Shift by ten, with Ctrl from change to change of a chronogram; Insert puts the second
// cursor beside the first; Home, End, Page Up and Page Down move the displayed time; up and down select a
// graph, with Alt they change its height; Space selects its next curve, and held makes the left button drag;
// Escape ends a gesture; the menu key opens the menu.
#pragma once

#include "graph/coverage_strip.h"
#include "graph/cursor_steps.h"
#include "graph/hit_test.h"
#include "graph/loader.h"
#include "graph/stack_picture.h"
#include "views/interactor.h"

#include <QImage>
#include <QKeySequence>
#include <QTimer>

#include <optional>
#include <utility>
#include <vector>

class QAction;
class QHelpEvent;
class QMenu;

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrv1DGraphLoader;
using Presentation_Tarvel_Graphics::CTrv1DGraphPortlet;
using Presentation_Tarvel_Graphics::CTrv1DGraphStack;
using Presentation_Tarvel_Graphics::CViewState;

class CTrvView1DTip;

// What the left button does in a plotting area.
enum class EView1DMode { select, pan, zoom };

class CTrvView1D final : public Outils_Application::CInteractorView {
    Q_OBJECT

  public:
    // All five must outlive the view. `configuration` is the document's own: the view keeps its switches
    // there.
    CTrvView1D(CTrvDocument& document, CViewState& viewState,
               Outils_Configuration::CTrvCnfConfigFile& configuration,
               const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings,
               QWidget* parent = nullptr);
    ~CTrvView1D() override;

    CTrv1DGraphLoader& GetLoader() { return m_loader; }
    CTrv1DGraphStack& GetStack() { return m_loader.GetStack(); }
    const CTrv1DGraphStack& GetStack() const { return m_loader.GetStack(); }
    CViewState& GetViewState() const { return m_loader.GetViewState(); }

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
    const Presentation_Tarvel_Graphics::SCursorLook& GetCursorLook() const { return m_cursorLook; }
    // Takes the settings again.
    void Reformat();

    // A curve is selected, chronograms included.
    bool HasSelectedCurve() const;
    // The saved curve that is selected, after the default graphs were saved; null for none and for a
    // chronogram.
    Metier_Tarvel_Graphics::CTrv1DCurve* TakeSelectedCurve();
    // Removes the selected curve from the project, or without one the selected graph. Asks first. A
    // chronogram goes as a whole.
    void RemoveSelected();
    void RemoveSelectedGraph();

    // Fields of the dictionary that the user drags here, by the rules of graph/field_drop.h.
    bool CanDrop(QPointF position, const Outils_Objets::CObject& field) const;
    bool Drop(QPointF position, const Outils_Objets::CObject& field);

    // For the interactors. Positions are in pixels of the window; the stack may be scrolled under it.
    Outils_Plot2D::SPoint ToStack(QPointF position) const;
    // What lies there; nothing over the strip of the files.
    Presentation_Tarvel_Graphics::SGraphHit Hit(QPointF position) const;
    std::optional<Presentation_Tarvel_Graphics::SStripHit> HitStrip(QPointF position) const;
    // Cursors, interval and their values.
    void DrawOverlay(QPainter& painter);
    // Clamps the index; scrolls the graph into sight.
    void SelectPortlet(int index);
    void ChangeSelectedHeight(float pixels);
    // Selects a curve of the selected graph, or none for null; no other graph keeps a selected curve.
    void SelectSerie(Outils_Plot2D::CPlot2DSerie* serie);
    void SelectNextCurve();
    void SetCurveVisible(CTrv1DGraphPortlet& portlet, Outils_Plot2D::CPlot2DSerie& serie, bool visible);
    // The cursor goes by samples of the selected curve, or of the first one of the selected graph; from
    // change to change of the selected chronogram.
    void StepCursor(int samples);
    void StepToChange(bool forward);
    void SetSecondCursorHere();
    // Turns of the wheel that follow each other keep one view to go back to.
    void BeginWheel();
    void EndWheel();
    // Paints again what the stack shows / only what lies over it.
    void Redraw();
    void RedrawOverlay() { viewport()->update(); }

  Q_SIGNALS:
    // Mode, legends, echo, the selected curve, or the views to go back to have changed.
    void StateChanged();
    // The user wants to change the selected curve / the range of the selected graph.
    void PropertiesRequested();
    void RangeRequested();
    // Something to be said in passing.
    void Notice(const QString& text);

  protected:
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void OnLoaderChanged(bool layout);
    void OnCoverageChanged();
    float GetStackHeight() const;
    Outils_Plot2D::SRect GetStripRect() const;
    void FitToWindow();
    void UpdateScrollBar();
    void PaintBacking();
    void ShowSelected();
    struct SOffered {
        bool back = false, forward = false, period = false;
        bool operator==(const SOffered&) const = default;
    };
    bool Ask(Outils_Texte::EText question, const std::string& name);
    const Presentation_Tarvel_Graphics::SCurveDescription* FindSelectedShown() const;
    const Outils_Plot2D::STheme& GetTheme() const;

    Outils_Configuration::CTrvCnfConfigFile& m_configuration;
    CTrv1DGraphLoader m_loader;
    Presentation_Tarvel_Graphics::CTrv1DCursorSteps m_steps;
    float m_stripHeight = 0; // before the coverage, which reports at once
    Presentation_Tarvel_Graphics::CTrv1DCoverage m_coverage;
    std::unique_ptr<CTrvView1DTip> m_tip;
    std::vector<std::pair<QKeySequence, QAction*>> m_keys; // actions are not owned
    QMenu* m_menu = nullptr;                               // not owned
    Presentation_Tarvel_Graphics::SCursorLook m_cursorLook;
    EView1DMode m_mode = EView1DMode::select;
    bool m_echo = true;
    SOffered m_offered; // as reported last
    // What the window shows of the stack, without what lies over it. A QImage, to whose pixels the curves are
    // written.
    QImage m_backing;
    bool m_backingValid = false;
    QTimer m_wheelEnd;    // runs while the wheel turns
    QTimer m_growth;      // runs while the result grows
    QTimer m_description; // runs until the accessible description is brought up to date
    QTimer m_notices;     // runs while files are analysed
    CViewState::CSubscription m_subscription;
};

} // namespace Application_Tarvel
