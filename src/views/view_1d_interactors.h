// What the mouse does in the graphs: one object per mode. Portlets are known by their place, because they may
// go during a gesture. UI thread.
#pragma once

#include "views/interactor.h"
#include "views/view_1d.h"

#include <QPointF>

#include <optional>

namespace Application_Tarvel {

// Lets the cursor follow the mouse, and draws it.
class CCursorInteractor : public Outils_Application::CInteractor {
  public:
    explicit CCursorInteractor(CTrvView1D& view) : CInteractor(view), m_view(view) {}

    void OnMouseMove(QMouseEvent& event) override;
    void Draw(QPainter& painter) override;

  protected:
    CTrvView1D& View() const { return m_view; }

  private:
    CTrvView1D& m_view; // Not owned.
};

// What all modes share: the keys and the wheel.
class CTrvView1DInteractor : public CCursorInteractor {
  public:
    using CCursorInteractor::CCursorInteractor;

    void OnWheel(QWheelEvent& event) override;
    void OnKeyPress(QKeyEvent& event) override;

  protected:
    CTrv1DGraphPortlet* PortletAt(QPointF position) const;
    // The portlet at this place of the stack, or null.
    CTrv1DGraphPortlet* GetPortlet(int index) const;
    int IndexOf(const CTrv1DGraphPortlet* portlet) const;

  private:
    void MoveCursor(int pixels);
    void SelectNextCurve();
    void ChangeHeight(float pixels);
};

// Selects graphs and curves, and drags the lower border of a graph.
class CTrvView1DInteractorSelect : public CTrvView1DInteractor {
  public:
    using CTrvView1DInteractor::CTrvView1DInteractor;

    void OnMousePress(QMouseEvent& event) override;
    void OnMouseMove(QMouseEvent& event) override;
    void OnMouseRelease(QMouseEvent& event) override;
    void OnMouseLeave() override;
    void OnCaptureLost() override { m_dragged = -1; }

  protected:
    // The mode's own press in the plotting area of a portlet; true when a gesture began.
    virtual bool BeginGesture(QMouseEvent&, CTrv1DGraphPortlet&) { return false; }
    // The shape of the mouse over a plotting area.
    virtual Qt::CursorShape GetShape() const { return Qt::ArrowCursor; }

  private:
    void Hover(QPointF position);

    int m_dragged = -1; // the portlet whose border is dragged
};

// Drags the picture; new data is asked for at the end.
class CTrvView1DInteractorPan final : public CTrvView1DInteractorSelect {
  public:
    using CTrvView1DInteractorSelect::CTrvView1DInteractorSelect;

    void OnMouseMove(QMouseEvent& event) override;
    void OnMouseRelease(QMouseEvent& event) override;
    void OnCaptureLost() override;

  protected:
    bool BeginGesture(QMouseEvent& event, CTrv1DGraphPortlet& portlet) override;
    Qt::CursorShape GetShape() const override {
        return m_gesture ? Qt::ClosedHandCursor : Qt::OpenHandCursor;
    }

  private:
    struct SGesture {
        int portlet;
        QPointF start, last;
        bool vertical = false; // the mouse has left the height at which it was pressed
    };
    void End(bool accept);

    std::optional<SGesture> m_gesture;
};

// Spans a rubber band over the time to be shown.
class CTrvView1DInteractorZoom final : public CTrvView1DInteractorSelect {
  public:
    using CTrvView1DInteractorSelect::CTrvView1DInteractorSelect;

    void OnMouseMove(QMouseEvent& event) override;
    void OnMouseRelease(QMouseEvent& event) override;
    void OnCaptureLost() override;
    void Draw(QPainter& painter) override;

  protected:
    bool BeginGesture(QMouseEvent& event, CTrv1DGraphPortlet& portlet) override;
    Qt::CursorShape GetShape() const override { return Qt::CrossCursor; }

  private:
    // In pixels of the window, within the plotting area of the portlet.
    struct SGesture {
        int portlet;
        QPointF start, current;
    };
    std::optional<SGesture> m_gesture;
};

} // namespace Application_Tarvel
