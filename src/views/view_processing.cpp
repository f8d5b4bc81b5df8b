#include "views/view_processing.h"

#include "document/document.h"
#include "plot/text.h"

#include <QPushButton>
#include <QTimerEvent>
#include <QVBoxLayout>

namespace Application_Tarvel {

using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr EText textProcess = EText::processLabel;
constexpr EText textStopProcessing = EText::stopProcessingLabel;
constexpr int kPollPeriod = 500;  // ms
constexpr int kButtonHeight = 23; // pixels, unless the font needs more

} // namespace

CTrvViewProcessing::CTrvViewProcessing(CTrvDocument& document, QWidget* parent)
    : QWidget(parent), m_document(document), m_button(new QPushButton(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addStretch(1);
    m_button->setMinimumHeight(kButtonHeight);
    m_button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout->addWidget(m_button);
    connect(m_button, &QPushButton::clicked, this, &CTrvViewProcessing::ToggleProcess);
    m_document.AddView(this);
    UpdateButton(false);
    setVisible(m_document.GetProject() != nullptr);
}

CTrvViewProcessing::~CTrvViewProcessing() { m_document.RemoveView(this); }

void CTrvViewProcessing::ToggleProcess() {
    if (m_document.IsSimulationRunning()) {
        m_document.StopSimulation();
    } else {
        m_document.StartSimulation();
        m_poll.start(kPollPeriod, this);
    }
    UpdateButton(m_document.IsSimulationRunning());
}

void CTrvViewProcessing::OnUpdate(EHint hint, const Outils_Objets::CObject*) {
    switch (hint) {
    case hintRefresh: setVisible(m_document.GetProject() != nullptr); break;
    case hintRunStarted: UpdateButton(true); break;
    case hintRunEnded: UpdateButton(false); break;
    default: break;
    }
}

void CTrvViewProcessing::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_poll.timerId()) return QWidget::timerEvent(event);
    const bool running = m_document.IsSimulationRunning();
    UpdateButton(running);
    if (!running) m_poll.stop();
}

void CTrvViewProcessing::UpdateButton(bool running) {
    m_button->setText(Text(running ? textStopProcessing : textProcess));
}

} // namespace Application_Tarvel
