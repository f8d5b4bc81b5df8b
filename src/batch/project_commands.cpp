// The commands that make projects.
#include "batch/commands.h"
#include "batch/file_access.h"
#include "batch/session.h"
#include "document/automatic_sensors.h"
#include "document/project_creation.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <ostream>

namespace Batch {

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
    if (Outils_Texte::EqualsNoCase(text, "all")) {
        for (const SKindWord& row : kKindWords) kinds.push_back(row.kind);
        return kinds;
    }
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(',', start), text.size());
        const auto word = text.substr(start, end - start);
        const auto row = FindNoCase(kKindWords, &SKindWord::word, word);
        if (!row) throw CUsageError(EText::unknownKind, {word, ListWords(kKindWords, &SKindWord::word)});
        const ESensorKind kind = kKindWords[*row].kind;
        if (std::ranges::find(kinds, kind) == kinds.end()) kinds.push_back(kind);
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
        if (CTrvSensor* sensor = parameters.AddSensor(kind)) ConnectSensor(*sensor, *channel);
    }
}

} // namespace

int CreateCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    const auto kinds = options.Has("--add") ? ParseKinds(*options.Get("--add")) : std::vector<ESensorKind>();
    const auto recording = Outils_Fichiers::ToAbsolute(Outils_Fichiers::FromText(arguments[0]));
    if (!CheckFile(arguments[0], FindPacketFileFault, streams)) return exitFailure;
    const auto configuration = options.Get("--ins-configuration");
    if (configuration && !CheckFile(*configuration, FindFileFault, streams)) return exitFailure;
    const auto project = FindFreeProjectPath(arguments[1], streams);
    if (!project) return exitFailure;

    CSession session(streams);
    using namespace Outils_Configuration;
    const bool ellipsoidal =
        session.GetConfiguration().Get(Cnf<"general/gpsAltitudeMode">) == EGpsAltitudeMode::ellipsoid;
    std::string message;
    auto made = CreateProject(
        {recording, *project, Outils_Fichiers::FromText(configuration.value_or("")), ellipsoidal}, message);
    if (!made) return FailWith(message, streams);
    for (const ESensorKind kind : kinds) AddSensors(*made->simulationParameters, kind);
    return session.Create(std::move(made), *project, CTrvDocument::EResultName::ofProject) ? exitSuccess
                                                                                           : exitFailure;
}

int CopyCommand(const COptions& options, SStreams streams) {
    const auto& arguments = options.GetArguments();
    CSession session(streams);
    if (!session.Open(arguments[0])) return exitFailure;
    const auto target = FindFreeProjectPath(arguments[1], streams);
    return target && session.GetDocument().DoSave(*target, true) ? exitSuccess : exitFailure;
}

} // namespace Batch
