// The panel Plan view: paints the plan and turns mouse and keys into its commands. UI thread.
//
// Wheel and + - zoom, the left and the middle button drag, arrows move; a click puts the cursor to the track,
// a double click or F shows everything; Ctrl+C copies the picture.
#pragma once

#include "graph/plan.h"
#include "views/picture_data.h"

#include <QWidget>

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrvPlan;
using Presentation_Tarvel_Graphics::CViewState;

class CTrvPlanView final : public QWidget {
    Q_OBJECT

  public:
    // All three must outlive the view.
    CTrvPlanView(CTrvDocument& document, CViewState& state, const Outils_Valeurs::CTrvAdaptors& adaptors,
                 QWidget* parent = nullptr);
    ~CTrvPlanView() override;

    CTrvPlan& GetPlan() { return m_plan; }
    void CopyPicture();
    // Asks for a file; a message box reports a failure.
    void SavePicture();
    // Takes texts and units from the settings again.
    void Reformat() { m_plan.Reformat(); }

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    SPictureData GetPicture() const;
    void FitToWindow();

    CTrvPlan m_plan;
    QPointF m_pressed;     // of the button that is down
    QPointF m_last;        // of the mouse in a drag
    bool m_isDown = false; // a button that can drag
    bool m_isDragging = false;
};

} // namespace Application_Tarvel
