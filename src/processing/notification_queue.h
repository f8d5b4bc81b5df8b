// How a child's reports get from the receiver thread to a window.
#pragma once

#include "foundation/message_target.h"
#include "processing/notification.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>

namespace Communication_Processus {

// The window's side. Both are called on the UI thread.
class INotificationWindow {
  public:
    virtual ~INotificationWindow() = default;
    // LastProgress has changed. One call may cover several changes.
    virtual void OnProgressChanged() = 0;
    // Called once for each message: the window takes one with TakeMessage.
    virtual void OnMessageQueued() = 0;
};

// Keeps the last progress and the messages not yet shown, oldest first, and posts to the window. No message
// is lost or merged. Above a count or a size the queue is full and holds the child back (IFlowControl) until
// the window has caught up, which bounds the memory and leaves the UI thread time for its user. Without a
// window nobody empties the queue: it is never full and drops the oldest messages. A full queue never delays
// the stop of a child.
class CNotificationQueue : public Communication_Interfaces::IFlowControl {
  public:
    static constexpr std::size_t mostMessages = 1000;
    static constexpr std::size_t mostBytes = std::size_t(8) << 20;

    // Both must outlive the queue; `window` may be null. Destroy it on the UI thread, after the last report.
    CNotificationQueue(Outils::IMessageTarget& target, INotificationWindow* window)
        : m_port(target), m_window(window) {}

    // Receiver thread. `text` is the child's bytes; what is not UTF-8 in it becomes U+FFFD.
    void StoreProgress(float percent);
    void QueueMessage(int level, int code, std::string_view text);

    // Any thread.
    bool IsFull() const override;
    // Percent; 0 before the first.
    float LastProgress() const;
    // Removes the oldest message and fills the three outputs; false, and they stay, when there is none.
    bool TakeMessage(int& level, int& code, std::string& text);

  private:
    struct SMessage {
        int level;
        int code;
        std::string text;
    };

    bool IsFullLocked() const { return m_messages.size() >= mostMessages || m_bytes >= mostBytes; }

    Outils::CMessagePort m_port;
    INotificationWindow* const m_window;
    mutable std::mutex m_lock; // guards all below; never held across a post
    float m_lastProgress = 0.0f;
    bool m_progressPosted = false; // a post is under way that covers any newer value
    std::deque<SMessage> m_messages;
    std::size_t m_bytes = 0; // of the texts
};

} // namespace Communication_Processus
