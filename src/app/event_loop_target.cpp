#include "app/event_loop_target.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>

namespace Application_Tarvel {

namespace {

constexpr qint64 kTurn = 10; // ms: a frame of the screen lasts longer

QEvent::Type WakeUp() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

} // namespace

void CEventLoopTarget::Post(std::function<void()> message) {
    const std::lock_guard lock(m_lock);
    // Nobody is left to run anything.
    if (QCoreApplication::closingDown() || !QCoreApplication::instance()) return;
    m_messages.push_back(std::move(message));
    if (m_wakeUpPosted) return;
    m_wakeUpPosted = true;
    QCoreApplication::postEvent(this, new QEvent(WakeUp()));
}

bool CEventLoopTarget::event(QEvent* event) {
    if (event->type() != WakeUp()) return QObject::event(event);
    {
        const std::lock_guard lock(m_lock);
        m_wakeUpPosted = false;
    }
    RunTurn();
    return true;
}

void CEventLoopTarget::timerEvent(QTimerEvent*) { RunTurn(); }

void CEventLoopTarget::RunTurn() {
    QElapsedTimer time;
    time.start();
    do {
        const auto message = Take();
        if (!message) return;
        message();
    } while (time.elapsed() < kTurn);
}

std::function<void()> CEventLoopTarget::Take() {
    const std::lock_guard lock(m_lock);
    std::function<void()> message;
    if (!m_messages.empty()) {
        message = std::move(m_messages.front());
        m_messages.pop_front();
    }
    // Armed before the message runs: if it opens a dialog, the dialog's loop carries on with the rest.
    if (m_messages.empty())
        m_nextTurn.stop();
    else if (!m_nextTurn.isActive())
        m_nextTurn.start(0, this);
    return message;
}

} // namespace Application_Tarvel
