// The queue of the UI thread, over the event loop of its windows.
#pragma once

#include "foundation/message_target.h"

#include <QBasicTimer>
#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace Application_Tarvel {

// Runs what is posted in the order of posting, also while a modal dialog or menu has an event loop of its
// own, and also what such a loop's opener left behind it. Works in short turns, so that a flood of messages
// leaves the user's clicks and the painting their time. Made on the UI thread after the application object
// and destroyed before it; what is queued then never runs.
class CEventLoopTarget final : public QObject, public Outils::IMessageTarget {
    Q_OBJECT

  public:
    explicit CEventLoopTarget(QObject* parent = nullptr) : QObject(parent) {}

    void Post(std::function<void()> message) override;

  protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

  private:
    void RunTurn();
    // Removes the oldest message; sees to it that another turn comes for the rest.
    std::function<void()> Take();

    QBasicTimer m_nextTurn; // runs while messages wait and no wake-up is under way
    std::mutex m_lock;      // guards all below; never held while a message runs
    std::deque<std::function<void()>> m_messages;
    bool m_wakeUpPosted = false;
};

} // namespace Application_Tarvel
