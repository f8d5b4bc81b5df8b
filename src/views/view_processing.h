// The panel of the project's parameters with the Process button at its foot. UI thread.
#pragma once

#include "document/document_base.h"

#include <QBasicTimer>
#include <QWidget>

class QPushButton;

namespace Application_Tarvel {

class CTrvDocument;

// Hidden while there is no project.
class CTrvViewProcessing final : public QWidget, public IDocumentView {
    Q_OBJECT

  public:
    // `document` must outlive the view.
    explicit CTrvViewProcessing(CTrvDocument& document, QWidget* parent = nullptr);
    ~CTrvViewProcessing() override;

    // What the button does: starts a run, or asks the one under way to stop.
    void ToggleProcess();
    void OnUpdate(EHint hint, const Outils_Objets::CObject* object) override;

  protected:
    void timerEvent(QTimerEvent* event) override;

  private:
    void UpdateButton(bool running);

    CTrvDocument& m_document;
    QPushButton* m_button; // Owned by the view.
    QBasicTimer m_poll;    // sees the end of a run
};

} // namespace Application_Tarvel
