// Notification sinks for the main frame and the tool dialogs.
#pragma once

#include "processing/notification_queue.h"

namespace Communication_Processus {

// The engine's sink, a member of the main frame.
class CMorvexReceiver final : public Communication_Interfaces::IMorvexNotification,
                              public CNotificationQueue {
  public:
    using CNotificationQueue::CNotificationQueue;

    void OnProgress(float percent) override { StoreProgress(percent); }
    void OnMessage(int level, int code, std::string_view text) override { QueueMessage(level, code, text); }
};

// A tool's sink, a member of its dialog; the messages have the code 0.
template <class TNotification>
class CToolReceiver final : public TNotification, public CNotificationQueue {
  public:
    using CNotificationQueue::CNotificationQueue;

    void OnProgress(float percent) override { StoreProgress(percent); }
    void OnMessage(int level, std::string_view text) override { QueueMessage(level, 0, text); }
};

} // namespace Communication_Processus
