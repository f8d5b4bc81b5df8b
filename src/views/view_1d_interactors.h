// What the mouse and the keys do in the graphs: one object per mode, which differ in what a left drag in a
// plotting area does. Portlets are known by their place, because they may go during a gesture. UI thread.
#pragma once

#include "graph/hit_test.h"
#include "views/interactor.h"
#include "views/view_1d.h"

#include <QPointF>

#include <optional>

namespace Application_Tarvel {

// Draws what lies over the graphs.
class CCursorInteractor : public Outils_Application::CInteractor {
  public:
    explicit CCursorInteractor(CTrvView1D& view) : CInteractor(view), m_view(view) {}

    void Draw(QPainter& painter) override { m_view.DrawOverlay(painter); }

  protected:
    CTrvView1D& View() const { return m_view; }

  private:
    CTrvView1D& m_view; // Not owned.
};

enum class EView1DGesture {
    border, // a height
    pan,    // the picture; new data is asked for at the end
    band,   // the time to be shown
    cursor
};

// What all modes share.
class CTrvView1DInteractor : public CCursorInteractor {
  public:
    using CCursorInteractor::CCursorInteractor;

    void OnMousePress(QMouseEvent& event) override;
    void OnMouseMove(QMouseEvent& event) override;
    void OnMouseRelease(QMouseEvent& event) override;
    void OnMouseDoubleClick(QMouseEvent& event) override;
    void OnMouseLeave() override;
    void OnWheel(QWheelEvent& event) override;
    void OnKeyPress(QKeyEvent& event) override;
    void OnKeyRelease(QKeyEvent& event) override;
    void OnCaptureLost() override;
    void Draw(QPainter& painter) override;

  protected:
    virtual EView1DGesture GetLeftGesture() const = 0;

  private:
    struct SGesture {
        EView1DGesture kind;
        Qt::MouseButton button;
        int portlet;
        QPointF start, last;
        bool values = false;   // of a band: its height counts too
        bool vertical = false; // of a pan: the mouse has left the height at which it was pressed
        Presentation_Tarvel_Graphics::ECursor cursor{};
    };

    CTrv1DGraphPortlet* GetPortlet(int index) const;
    void Begin(SGesture gesture);
    void Finish();
    void Pan(QPointF position);
    void PutCursor(QPointF position);
    void ShowBand(const SGesture& band);
    void ClickLegend(const Presentation_Tarvel_Graphics::SGraphHit& hit);
    void Hover(QPointF position);
    Qt::CursorShape GetShape(const Presentation_Tarvel_Graphics::SGraphHit& hit) const;
    void Cancel();

    std::optional<SGesture> m_gesture;
    bool m_space = false;     // is held
    bool m_spaceUsed = false; // for a drag
};

// Puts the cursor, and with Shift the second one.
class CTrvView1DInteractorSelect final : public CTrvView1DInteractor {
  public:
    using CTrvView1DInteractor::CTrvView1DInteractor;

  protected:
    EView1DGesture GetLeftGesture() const override { return EView1DGesture::cursor; }
};

class CTrvView1DInteractorPan final : public CTrvView1DInteractor {
  public:
    using CTrvView1DInteractor::CTrvView1DInteractor;

  protected:
    EView1DGesture GetLeftGesture() const override { return EView1DGesture::pan; }
};

class CTrvView1DInteractorZoom final : public CTrvView1DInteractor {
  public:
    using CTrvView1DInteractor::CTrvView1DInteractor;

  protected:
    EView1DGesture GetLeftGesture() const override { return EView1DGesture::band; }
};

} // namespace Application_Tarvel
