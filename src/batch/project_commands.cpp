// The commands that make and process projects.
#include "batch/commands.h"
#include "batch/packet_access.h"
#include "batch/session.h"
#include "document/project_creation.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <csignal>
#include <ostream>

namespace Batch {

using Outils_Texte::EText;

using namespace Application_Tarvel;
using namespace Metier_Tarvel;

namespace {

struct SKindWord {
    std::string_view word;
    ESensorKind kind;
};
constexpr SKindWord kKindWords[] = {
    {"gps", ESensorKind::gps},
    {"dvl", ESensorKind::dvl},
    {"emlog", ESensorKind::emLog},
    {"depth", ESensorKind::depth},
    {"usbl", ESensorKind::usbl},
    {"lbl", ESensorKind::lbl},
    {"odometer", ESensorKind::odometer},
    {"eventmarker", ESensorKind::eventMarker},
    {"mount", ESensorKind::platformOrientation},
};

std::vector<ESensorKind> ParseKinds(std::string_view text) {
    std::vector<ESensorKind> kinds;
    if (text == "all") {
        for (const SKindWord& row : kKindWords) kinds.push_back(row.kind);
        return kinds;
    }
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const auto word = text.substr(start, end - start);
        const auto row = std::find_if(std::begin(kKindWords), std::end(kKindWords),
                                      [&](const SKindWord& k) { return k.word == word; });
        if (row == std::end(kKindWords)) throw CUsageError(EText::unknownKind, {word});
        if (std::find(kinds.begin(), kinds.end(), row->kind) == kinds.end()) kinds.push_back(row->kind);
        start = end + 1;
    }
    return kinds;
}

// A sensor for every channel of the kind that the recording has, each on its own channel, within the kind's
// maximum.
void AddSensors(CTrvSimulationParameters& parameters, ESensorKind kind) {
    for (const auto& channel : parameters.mainInputFile->channels) {
        if (channel->sensorClass != GetSensorKind(kind).className) continue;
        const auto uses = [&channel](const auto& sensor) { return sensor->channel == channel.get(); };
        if (std::any_of(parameters.sensors.begin(), parameters.sensors.end(), uses)) continue;
        if (CTrvSensor* sensor = parameters.AddSensor(kind)) sensor->channel = channel.get();
    }
}

// The signals that ask a program to end. While an object lives they wait to be taken instead of ending the
// program.
class CEndSignals {
  public:
    CEndSignals() {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGINT);
        sigaddset(&m_signals, SIGTERM);
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

int CreateCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const auto kinds = options.Has("--add") ? ParseKinds(*options.Get("--add")) : std::vector<ESensorKind>();
    const auto recording = Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(arguments[0]));
    const auto project = FindFreePath(arguments[1], streams);
    if (!project) return exitFailure;

    const auto configuration = Outils_Fichiers::FromText(options.Get("--ins-configuration").value_or(""));
    std::error_code error;
    if (!configuration.empty() && !std::filesystem::exists(configuration, error))
        return Fail(*options.Get("--ins-configuration"), EText::noSuchFile, streams);
    CSession session(streams);
    using namespace Outils_Configuration;
    const bool ellipsoidal =
        session.GetConfiguration().Get(Cnf<"general/gpsAltitudeMode">) == EGpsAltitudeMode::ellipsoid;
    std::string message;
    auto made = CreateProject({recording, *project, configuration, ellipsoidal}, message);
    if (!made) return FailWith(message, streams);
    for (const ESensorKind kind : kinds) AddSensors(*made->simulationParameters, kind);
    return session.GetDocument().NewFromProject(std::move(made), *project) ? exitSuccess : exitFailure;
}

int CopyCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    CSession session(streams);
    if (!session.Open(arguments[0])) return exitFailure;
    const auto target = FindFreePath(arguments[1], streams);
    return target && session.GetDocument().DoSave(*target, true) ? exitSuccess : exitFailure;
}

int RunCommand(const COptions& options, SStreams streams) {
    CEndSignals signals; // before any thread starts: a thread that lets a signal in would end the program
    CSession session(streams, streams.out);
    if (!session.Open(options.GetArguments()[0])) return exitFailure;
    CTrvDocument& document = session.GetDocument();
    CBatchHost& host = session.GetHost();
    if (!document.StartSimulation()) return exitFailure;
    while (document.IsSimulationRunning()) {
        host.GetQueue().RunOne(std::chrono::milliseconds(50));
        // A second signal more than five seconds after the first ends an engine that does not answer.
        if (signals.Take()) document.StopSimulation();
    }
    host.GetQueue().RunPending();
    // An engine that was stopped or has died leaves a result that ends early: no success for a script.
    if (!host.HasFailed() && !host.IsRunComplete())
        return Fail(options.GetArguments()[0], EText::runIncomplete, streams);
    return host.HasFailed() ? exitFailure : exitSuccess;
}

} // namespace Batch
