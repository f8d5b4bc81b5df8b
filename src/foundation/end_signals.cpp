#include "foundation/end_signals.h"

#include <algorithm>
#include <ctime>

#include <sys/signalfd.h>

namespace Outils {

CEndSignals::CEndSignals(std::initializer_list<int> kinds) {
    sigemptyset(&m_signals);
    for (const int signal : kinds) sigaddset(&m_signals, signal);
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_former);
    m_descriptor = Outils_Fichiers::CDescriptor(::signalfd(-1, &m_signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

CEndSignals::~CEndSignals() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }

int CEndSignals::Take(std::chrono::milliseconds patience) const {
    const auto seconds = std::chrono::floor<std::chrono::seconds>(patience);
    const timespec time{seconds.count(), std::chrono::nanoseconds(patience - seconds).count()};
    return std::max(0, ::sigtimedwait(&m_signals, nullptr, &time));
}

void CEndSignals::Obey(int signal) {
    std::signal(signal, SIG_DFL);
    sigset_t one;
    sigemptyset(&one);
    sigaddset(&one, signal);
    pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
    std::raise(signal);
}

} // namespace Outils
