// The view of the graphs: paints the stack, turns mouse and keys into its commands. All else is in graph/. UI
// thread.
//
// Keys: left and right scroll, with Shift they move the cursor (with Ctrl, too, faster); plus and minus zoom,
// Home shows everything; up and down select a graph, with Ctrl they scroll its values, with Shift, too, they
// change its height; plus and minus with Ctrl zoom its values; Space selects its next curve, Delete removes
// that; Page Up and Page Down scroll the stack; Escape ends a gesture; the menu key opens the menu. The wheel
// scrolls the stack, with Ctrl it zooms, with Shift it scrolls the time.
#pragma once

#include "graph/loader.h"
#include "views/interactor.h"

#include <QPixmap>

#include <functional>
#include <optional>

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrv1DGraphLoader;
using Presentation_Tarvel_Graphics::CTrv1DGraphPortlet;
using Presentation_Tarvel_Graphics::CTrv1DGraphStack;

// What the mouse does.
enum class EView1DMode { select, pan, zoom };

class CTrvView1D final : public Outils_Application::CInteractorView {
    Q_OBJECT

  public:
    // All three must outlive the view.
    CTrvView1D(CTrvDocument& document, const Outils_Valeurs::CTrvAdaptors& adaptors,
               Outils_Plot2D::CPlot2DSettings& settings, QWidget* parent = nullptr);
    ~CTrvView1D() override;

    CTrv1DGraphLoader& GetLoader() { return m_loader; }
    CTrv1DGraphStack& GetStack() { return m_loader.GetStack(); }
    const CTrv1DGraphStack& GetStack() const { return m_loader.GetStack(); }

    // The commands of the frame. Vertical ones act on the selected graph.
    void ZoomHorizontal() { m_loader.ZoomHorizontal(); }
    void UnzoomHorizontal() { m_loader.UnzoomHorizontal(); }
    void ScrollLeft() { m_loader.ScrollLeft(); }
    void ScrollRight() { m_loader.ScrollRight(); }
    void ViewAll() { m_loader.ViewAll(); }
    void ZoomVertical() { m_loader.ZoomVertical(); }
    void UnzoomVertical() { m_loader.UnzoomVertical(); }
    void ScrollUp() { m_loader.ScrollUp(); }
    void ScrollDown() { m_loader.ScrollDown(); }
    void ToggleLegends();
    bool AreLegendsVisible() { return GetStack().AreLegendsVisible(); }
    void SetMode(EView1DMode mode);
    EView1DMode GetMode() const { return m_mode; }
    void SetEcho(bool on);
    void ToggleEcho() { SetEcho(!m_echo); }
    bool HasEcho() const { return m_echo; }
    // A vector image of the whole stack on the clipboard, and a picture for programs that take none.
    void CopyToClipboard();
    // Takes the curve that is selected in the legend of the selected graph out of the project; a chronogram
    // goes as a whole. Curves of default graphs are not in the project and stay.
    void DeleteSelectedCurve();
    // After a change of the settings.
    void Reformat();

    // Fields of the dictionary that the user drags here; positions are in pixels of the window. A measure
    // joins the graph under it if that takes its kind; elsewhere, also on a default graph, a measure or an
    // enumeration gets a graph of its own.
    bool CanDrop(QPointF position, const Outils_Objets::CObject& field) const;
    bool Drop(QPointF position, const Outils_Objets::CObject& field);

    // For the interactors. Positions are in pixels of the window; the stack may be scrolled under it.
    Outils_Plot2D::SPoint ToStack(QPointF position) const;
    void SetCursorTime(std::optional<Outils_Temps::CDateTimeSpan> time);
    std::optional<Outils_Temps::CDateTimeSpan> GetCursorTime() const { return m_cursorTime; }
    void DrawCursor(QPainter& painter);
    // Clamped; scrolls it into sight.
    void SelectPortlet(int index);
    // Paints anew what the stack shows / only what lies over it.
    void Redraw();
    void RedrawOverlay() { viewport()->update(); }

  Q_SIGNALS:
    // The cursor stands at another time, or nowhere (an invalid time).
    void CursorMoved(Outils_Temps::CDateTimeSpan time);
    // A switch that the frame shows as a tick has changed: mode, legends, echo.
    void StateChanged();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

  private:
    void OnLoaderChanged(bool layout);
    void FitToWindow();
    void UpdateScrollBar();
    void PaintBacking();
    void ShowSelected();
    void ShowContextMenu(QPoint position);

    CTrv1DGraphLoader m_loader;
    Presentation_Tarvel_Graphics::SCursorLook m_cursorLook;
    EView1DMode m_mode = EView1DMode::select;
    std::optional<Outils_Temps::CDateTimeSpan> m_cursorTime;
    bool m_echo = true;
    QPixmap m_backing; // what the window shows of the stack, without what lies over it
    bool m_backingValid = false;
};

} // namespace Application_Tarvel
