// The run of a child of any kind: engine, converter, exporter, updater.
#pragma once

#include "foundation/date_time.h"
#include "processing/remote_process.h"

#include <chrono>
#include <cstdint>
#include <string_view>

namespace Communication_Processus {

// What the owner of a run gives it. UI thread.
class IChildRunOwner {
  public:
    virtual ~IChildRunOwner() = default;
    virtual Outils_Temps::CDateTime GetTime() = 0;
    virtual void Sleep(std::chrono::milliseconds time) = 0;
    // Asks the user whether to terminate a child that does not stop.
    virtual bool AskToTerminate() = 0;
};

// Idle, running, ended unseen; the first Poll or Stop after the end sees it. One run after the other. UI
// thread only.
class CChildRun {
  public:
    enum class ERunState { idle, running, ended };

    // Both must outlive the object.
    CChildRun(CRemoteProcess& process, IChildRunOwner& owner) : m_process(process), m_owner(owner) {}

    // Opens the child with a hidden window and sends "start". Before that, takes the last output of a former
    // child and closes it. False when the child cannot be started. REQUIRES: Poll() is not `running`.
    bool Start(std::string_view commandLine);

    // The state; `ended` once, after all output of the child is reported (waits for it at most a second),
    // then `idle`.
    ERunState Poll();
    // Sends "stop" and gives the child 200 ms. A second request more than 5 seconds after the first asks the
    // owner whether to terminate it. `idle` when no child ran, `ended` when this was the end.
    ERunState Stop();
    // Ends the child without a question: sends "stop", kills it after `patience`. `ended`, or `idle` when no
    // child ran.
    ERunState StopNow(std::chrono::milliseconds patience);

    // True from Start until Poll or Stop has said `ended`. Does not look at the process.
    bool IsActive() const { return m_active; }
    // A stop was requested in this run, or in the last one.
    bool IsStopRequested() const { return m_stopRequests > 0; }
    // How the last child ended. REQUIRES: IsActive() is false.
    const SProcessEnd& GetEnd() const { return m_process.GetEnd(); }

  private:
    ERunState SeeEnd();

    CRemoteProcess& m_process;
    IChildRunOwner& m_owner;
    bool m_active = false;
    std::uint32_t m_stopRequests = 0;
    Outils_Temps::CDateTime m_firstStopTime = Outils_Temps::CDateTime::Invalid();
};

} // namespace Communication_Processus
