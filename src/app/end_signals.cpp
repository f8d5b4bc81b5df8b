#include "app/end_signals.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <sys/signalfd.h>
#include <unistd.h>
#include <utility>

namespace Application_Tarvel {

namespace {

// What exit() has to call: it knows no objects.
std::function<void()> g_end;

void End() {
    if (const auto end = std::exchange(g_end, {})) end();
}

} // namespace

CEndSignals::CEndSignals() {
    sigemptyset(&m_signals);
    for (const int signal : {SIGHUP, SIGINT, SIGTERM}) sigaddset(&m_signals, signal);
    pthread_sigmask(SIG_BLOCK, &m_signals, &m_former);
}

CEndSignals::~CEndSignals() {
    g_end = {};
    m_notifier.reset();
    if (m_descriptor >= 0) ::close(m_descriptor);
    pthread_sigmask(SIG_SETMASK, &m_former, nullptr);
}

void CEndSignals::Listen(std::function<void()> end) {
    g_end = std::move(end);
    [[maybe_unused]] static const int once = std::atexit(&End);
    m_descriptor = ::signalfd(-1, &m_signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (m_descriptor < 0) return;
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] {
        signalfd_siginfo taken;
        if (::read(m_descriptor, &taken, sizeof taken) == sizeof taken) End();
    });
}

} // namespace Application_Tarvel
