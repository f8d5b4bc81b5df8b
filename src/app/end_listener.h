// The ways in which a session ends from outside: signals, and a display that goes away. UI thread.
#pragma once

#include "foundation/end_signals.h"

#include <functional>
#include <memory>

class QSocketNotifier;

namespace Application_Tarvel {

class CEndListener {
  public:
    // Calls `end` once: from the event loop at the first signal, or from within exit(), which the window
    // system calls when its display is closed. `endSignals` must outlive the object. REQUIRES: there is an
    // application; one object lives at a time.
    CEndListener(const Outils::CEndSignals& endSignals, std::function<void()> end);
    ~CEndListener();
    CEndListener(const CEndListener&) = delete;
    CEndListener& operator=(const CEndListener&) = delete;

  private:
    std::unique_ptr<QSocketNotifier> m_notifier; // null when the system gives no descriptor
};

} // namespace Application_Tarvel
