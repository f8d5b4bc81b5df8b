#include "app/window_session.h"
#include "foundation/texts.h"

#include <QApplication>

#include <iostream>

namespace Application_Tarvel {

CWindowSession::CWindowSession(CTrvApp& application, Outils::IMessageTarget& target, IDialogs& dialogs,
                               QSettings& settings)
    : m_host(target, dialogs, application.GetProgramFolder(), application.GetUserFolder()),
      m_document(m_host, target, application.GetConfiguration(), application.IsExpertMode()),
      m_frame(application, m_host, m_document, dialogs, settings) {}

void CWindowSession::EndOn(const Outils::CEndSignals& endSignals) {
    m_endListener.emplace(endSignals, [this] {
        m_endedFromOutside = true;
        // There is nobody to answer a box.
        if (!m_document.EndNow()) std::cerr << Outils_Texte::GetText(EText::unsavedLost) << std::endl;
        QApplication::exit();
    });
}

} // namespace Application_Tarvel
