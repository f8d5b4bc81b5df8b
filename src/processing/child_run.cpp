#include "processing/child_run.h"

#include <utility>

namespace Communication_Processus {

namespace {

constexpr Outils_Temps::CDateTimeSpan kFreezeTime(5 * Outils_Temps::kTicksPerSecond);
constexpr std::chrono::milliseconds kStopPause(200);
constexpr std::chrono::milliseconds kEndPause(20); // between two looks in StopNow

} // namespace

bool CChildRun::Start(std::string_view commandLine) {
    if (m_process.ProcessId() != 0) {
        m_process.WaitForReceivers();
        m_process.Close();
    }
    m_stopRequests = 0;
    m_active = m_process.Open(commandLine, false);
    if (m_active) m_process.SendCommand("start");
    return m_active;
}

CChildRun::ERunState CChildRun::Poll() { return m_process.IsRunning() ? ERunState::running : SeeEnd(); }

CChildRun::ERunState CChildRun::SeeEnd() {
    if (!std::exchange(m_active, false)) return ERunState::idle;
    // The child's last output is on its way to the receiver: it belongs to this run.
    m_process.WaitForReceivers();
    return ERunState::ended;
}

CChildRun::ERunState CChildRun::Stop() {
    if (!m_process.IsRunning()) return ERunState::idle;
    if (m_stopRequests == 0) m_firstStopTime = m_owner.GetTime();
    m_process.SendCommand("stop");
    m_owner.Sleep(kStopPause);
    ++m_stopRequests;
    const bool frozen = m_stopRequests > 1 && m_owner.GetTime() - m_firstStopTime > kFreezeTime;
    if (frozen && m_owner.AskToTerminate() && m_process.IsRunning()) m_process.Terminate();
    return Poll();
}

CChildRun::ERunState CChildRun::StopNow(std::chrono::milliseconds patience) {
    if (!m_process.IsRunning()) return SeeEnd();
    ++m_stopRequests;
    m_process.SendCommand("stop");
    for (auto waited = std::chrono::milliseconds(0); waited < patience && m_process.IsRunning();
         waited += kEndPause)
        m_owner.Sleep(kEndPause);
    if (m_process.IsRunning()) m_process.Terminate();
    return SeeEnd();
}

} // namespace Communication_Processus
