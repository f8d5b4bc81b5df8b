#include "app/window_session.h"

#include "app/end_signals.h"

#include <QApplication>

namespace Application_Tarvel {

CWindowSession::CWindowSession(CTrvApp& application, Outils::IMessageTarget& target, IDialogs& dialogs,
                               QSettings& settings)
    : m_host(target, dialogs, application.GetProgramFolder()),
      m_document(m_host, target, application.GetConfiguration(), application.IsExpertMode()),
      m_frame(application, m_host, m_document, dialogs, settings) {}

void CWindowSession::EndOn(CEndSignals& endSignals) {
    endSignals.Listen([this] {
        m_endedFromOutside = true;
        m_document.EndNow();
        QApplication::exit();
    });
}

} // namespace Application_Tarvel
