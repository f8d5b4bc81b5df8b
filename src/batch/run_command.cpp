// The command that processes a project.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/run_report.h"
#include "batch/session.h"

#include <chrono>
#include <csignal>
#include <optional>

namespace Batch {

namespace {

// The signals that ask a program to end. While an object lives they wait to be taken instead of ending the
// program.
class CEndSignals {
  public:
    CEndSignals() {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGINT);
        sigaddset(&m_signals, SIGTERM);
        sigaddset(&m_signals, SIGHUP);
        sigaddset(&m_signals, SIGPIPE); // nobody reads the output any more
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_former);
    }
    ~CEndSignals() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

    bool Take() {
        constexpr timespec atOnce{0, 0};
        return sigtimedwait(&m_signals, nullptr, &atOnce) > 0;
    }

  private:
    sigset_t m_signals, m_former;
};

} // namespace

int RunCommand(const COptions& options, SStreams streams) {
    CEndSignals signals; // before any thread starts: a thread that lets a signal in would end the program
    const std::string& path = options.GetArguments()[0];
    if (!CheckFile(path, FindProjectFault, streams)) return exitFailure;
    CRunReport report(streams.out, options.GetForm());
    CSession session(streams, report);
    if (!session.Open(path)) return exitFailure;
    Application_Tarvel::CTrvDocument& document = session.GetDocument();
    CBatchHost& host = session.GetHost();
    const auto& parameters = *document.GetProject()->simulationParameters;
    report.SetResult(parameters.outputFile->path, parameters.hasUtcReference
                                                      ? parameters.utcReference
                                                      : Outils_Temps::CDateTime::Invalid());
    if (!document.StartSimulation()) return exitFailure;
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kPatience(6); // a second request this late ends an engine that is frozen
    std::optional<Clock::time_point> nextRequest;
    while (document.IsSimulationRunning()) {
        host.GetQueue().RunOne(std::chrono::milliseconds(50));
        // Who sends one signal may send no other: a closed terminal or output does not.
        if (!signals.Take() && !(nextRequest && Clock::now() > *nextRequest)) continue;
        document.StopSimulation();
        nextRequest = Clock::now() + kPatience;
    }
    host.GetQueue().RunPending();
    // An engine that was stopped or has died leaves a result that ends early: no success for a script.
    const bool finished = document.GetRunOutcome() == Application_Tarvel::ERunOutcome::finished;
    if (!host.HasFailed() && !finished) return Fail(path, EText::runIncomplete, streams);
    return host.HasFailed() ? exitFailure : exitSuccess;
}

} // namespace Batch
