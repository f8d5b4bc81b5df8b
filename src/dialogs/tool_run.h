// The run of one tool (converter, export tool or updater) from its command line to its end. UI thread.
#pragma once

#include "document/document_host.h"
#include "foundation/message_target.h"
#include "processing/child_run.h"
#include "processing/notification_queue.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Dialogue_Tarvel {

// The time that a work will still take, as far as its progress shows. REQUIRES: percent above 0.
std::chrono::seconds EstimateTimeLeft(std::chrono::steady_clock::duration elapsed, int percent);

enum class EToolKind { importer, exporter, updater };

class CToolRun : private Communication_Processus::INotificationWindow,
                 private Communication_Processus::IChildRunOwner {
  public:
    using ERunState = Communication_Processus::CChildRun::ERunState;
    // `level` is an EMessageLevel.
    using COnMessage = std::function<void(int level, const std::string& text)>;

    // `host` must outlive the run.
    CToolRun(EToolKind kind, Application_Tarvel::IDocumentHost& host, COnMessage onMessage);
    // Ends a tool that still runs.
    ~CToolRun() override;

    // False when the program cannot be started. REQUIRES: IsActive() is false.
    bool Start(const std::string& commandLine);
    // Reports what the tool has written meanwhile. `ended` once, after its last message; then `idle`.
    ERunState Poll();
    // The same, after waiting for a report of the tool.
    ERunState Wait(std::chrono::milliseconds time);
    // Asks the tool to stop and gives it 200 ms. A second request more than 5 seconds after the first asks
    // the user whether to terminate it.
    ERunState Stop();

    bool IsActive() const { return m_run.IsActive(); }
    // A stop was requested in this run, or in the last one.
    bool IsStopRequested() const { return m_run.IsStopRequested(); }
    // How the last tool ended. REQUIRES: IsActive() is false.
    const Communication_Processus::SProcessEnd& GetEnd() const { return m_run.GetEnd(); }
    // The first message of level error of this run, or of the last one; empty for none.
    const std::string& GetError() const { return m_error; }
    // 0 to 100; 0 while no tool runs.
    int GetProgress() const;
    // Empty before the first percent.
    std::optional<std::chrono::seconds> GetTimeLeft() const;

  private:
    struct IChild {
        virtual ~IChild() = default;
        virtual Communication_Processus::CRemoteProcess& GetProcess() = 0;
        virtual Communication_Processus::CNotificationQueue& GetQueue() = 0;
    };
    template <class TProcess, class TNotification>
    struct TChild;
    std::unique_ptr<IChild> MakeChild(EToolKind kind);

    void OnProgressChanged() override {}
    void OnMessageQueued() override;
    Outils_Temps::CDateTime GetTime() override { return m_host.GetTime(); }
    void Sleep(std::chrono::milliseconds time) override { m_host.Sleep(time); }
    bool AskToTerminate() override;
    ERunState Report(ERunState state);

    Application_Tarvel::IDocumentHost& m_host;
    const COnMessage m_onMessage;
    Outils::CMessageQueue m_messages;
    const std::unique_ptr<IChild> m_child;
    Communication_Processus::CChildRun m_run;
    std::chrono::steady_clock::time_point m_start;
    std::string m_error;
};

} // namespace Dialogue_Tarvel
