#include "processing/notification_queue.h"

#include "foundation/text.h"

#include <utility>

namespace Communication_Processus {

void CNotificationQueue::StoreProgress(float percent) {
    {
        const std::lock_guard lock(m_lock);
        m_lastProgress = percent;
        if (!m_window || std::exchange(m_progressPosted, true)) return;
    }
    m_port.Post([this] {
        {
            const std::lock_guard lock(m_lock);
            m_progressPosted = false;
        }
        m_window->OnProgressChanged();
    });
}

void CNotificationQueue::QueueMessage(int level, int code, std::string_view text) {
    std::string valid = Outils_Texte::Utf16ToUtf8(Outils_Texte::Utf8ToUtf16(text));
    {
        const std::lock_guard lock(m_lock);
        while (!m_window && IsFullLocked()) {
            m_bytes -= m_messages.front().text.size();
            m_messages.pop_front();
        }
        m_bytes += valid.size();
        m_messages.push_back({level, code, std::move(valid)});
    }
    if (m_window) m_port.Post([this] { m_window->OnMessageQueued(); });
}

bool CNotificationQueue::IsFull() const {
    const std::lock_guard lock(m_lock);
    return m_window && IsFullLocked();
}

float CNotificationQueue::LastProgress() const {
    const std::lock_guard lock(m_lock);
    return m_lastProgress;
}

bool CNotificationQueue::TakeMessage(int& level, int& code, std::string& text) {
    const std::lock_guard lock(m_lock);
    if (m_messages.empty()) return false;
    SMessage& oldest = m_messages.front();
    m_bytes -= oldest.text.size();
    level = oldest.level;
    code = oldest.code;
    text = std::move(oldest.text);
    m_messages.pop_front();
    return true;
}

} // namespace Communication_Processus
