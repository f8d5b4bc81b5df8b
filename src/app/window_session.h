// One session with a window: the document, its surroundings, and the frame that shows it. UI thread.
#pragma once

#include "app/end_listener.h"
#include "app/main_frame.h"

#include <optional>

namespace Application_Tarvel {

class CWindowSession {
  public:
    // All four must outlive the session. The frame is not shown yet, and the document is empty.
    CWindowSession(CTrvApp& application, Outils::IMessageTarget& target, IDialogs& dialogs,
                   QSettings& settings);

    CTrvFrameHost& GetHost() { return m_host; }
    CTrvDocument& GetDocument() { return m_document; }
    CTrvProjectMainFrame& GetFrame() { return m_frame; }

    // From now on a signal ends the event loop: it asks nothing, and what is unsaved is kept. Standard error
    // says so when it cannot be. `endSignals` must outlive the session.
    void EndOn(const Outils::CEndSignals& endSignals);
    bool IsEndedFromOutside() const { return m_endedFromOutside; }

  private:
    bool m_endedFromOutside = false;
    CTrvFrameHost m_host;
    CTrvDocument m_document;
    Presentation_Tarvel_Graphics::CViewState m_viewState;
    CTrvProjectMainFrame m_frame; // goes before the document, which its views leave
    std::optional<CEndListener> m_endListener;
};

} // namespace Application_Tarvel
