// The ways in which a session ends from outside: signals, and a display that goes away. UI thread.
#pragma once

#include <csignal>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace Application_Tarvel {

class CEndSignals {
  public:
    // Has SIGHUP, SIGINT and SIGTERM wait instead of ending the program. REQUIRES: no thread was started yet.
    CEndSignals();
    ~CEndSignals();
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

    // Calls `end` once: from the event loop at the first signal, or from within exit(), which the window
    // system calls when its display is closed. REQUIRES: there is an application; one object listens at a
    // time.
    void Listen(std::function<void()> end);

  private:
    sigset_t m_signals;
    sigset_t m_former;
    int m_descriptor = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace Application_Tarvel
