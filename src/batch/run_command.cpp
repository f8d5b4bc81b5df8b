// The command that processes a project.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/run_report.h"
#include "batch/session.h"
#include "foundation/end_signals.h"
#include "foundation/texts.h"
#include "foundation/thread.h"

#include <chrono>
#include <optional>

namespace Batch {

using Outils::CEndSignals;

namespace {

// Lets the signals end the program while it waits for its disks: nothing is begun yet that wants an end.
class CEndWhileWaiting {
  public:
    explicit CEndWhileWaiting(const CEndSignals& signals)
        : m_task([&signals](const Outils::CEvent& cancel) {
              constexpr std::chrono::milliseconds kPeriod(20);
              while (!cancel.IsSet())
                  if (const int signal = signals.Take(kPeriod)) CEndSignals::Obey(signal);
          }) {
        m_task.Start();
    }

  private:
    Outils::CTask m_task;
};

} // namespace

int RunCommand(const COptions& options, SStreams streams) {
    // A closed output too: nobody reads any more.
    const CEndSignals signals({SIGHUP, SIGINT, SIGTERM, SIGPIPE});
    std::optional<CEndWhileWaiting> waiting(signals);
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
    waiting.reset();
    if (!document.StartSimulation()) return exitFailure;
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::seconds kPatience(6); // a second request this late ends an engine that is frozen
    std::optional<Clock::time_point> nextRequest;
    while (document.IsSimulationRunning()) {
        host.GetQueue().RunOne(std::chrono::milliseconds(50));
        // Who sends one signal may send no other: a closed terminal or output does not.
        if (signals.Take() == 0 && !(nextRequest && Clock::now() > *nextRequest)) continue;
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
