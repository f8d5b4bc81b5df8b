// The signals that ask a program to end.
#pragma once

#include "foundation/descriptor.h"

#include <chrono>
#include <csignal>
#include <initializer_list>

namespace Outils {

// As long as the object lives, the signals wait to be taken instead of ending the program. REQUIRES: no
// thread was started before, as one that lets a signal in would end the program.
class CEndSignals {
  public:
    explicit CEndSignals(std::initializer_list<int> kinds = {SIGHUP, SIGINT, SIGTERM});
    // What was not taken ends the program now.
    ~CEndSignals();
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

    // Takes one signal, and waits for it at most this long; 0 when none came. Any thread.
    int Take(std::chrono::milliseconds patience = {}) const;
    // Can be read as long as a signal waits; -1 when the system gives none.
    int GetDescriptor() const { return m_descriptor.Get(); }
    // Ends the program as the signal would have done. Any thread.
    static void Obey(int signal);

  private:
    sigset_t m_signals, m_former;
    Outils_Fichiers::CDescriptor m_descriptor;
};

} // namespace Outils
