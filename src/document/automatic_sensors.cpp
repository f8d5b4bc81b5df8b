#include "document/automatic_sensors.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>

namespace Application_Tarvel {

using namespace Metier_Tarvel;
using Outils_Texte::EText;

namespace {

struct SAutomaticKind {
    ESensorKind kind;
    EText message;
};
constexpr SAutomaticKind kAutomaticKinds[] = {
    {ESensorKind::eventMarker, EText::eventMarkerAdded},
    {ESensorKind::platformOrientation, EText::mountAdded},
};

// The first of the four event channels has the number 15 and gives the event "1".
constexpr int kChannelBeforeEvents = 14;

} // namespace

void ConnectSensor(CTrvSensor& sensor, CTrvDataFileChannel& channel) {
    sensor.channel = &channel;
    if (auto* marker = dynamic_cast<CTrvSensorEventMarker*>(&sensor))
        marker->eventId = std::to_string(channel.id - kChannelBeforeEvents);
}

CTrvSensor* MakeSensor(CTrvSimulationParameters& parameters, ESensorKind kind) {
    CTrvSensor* added = parameters.AddSensor(kind);
    if (!added || kind != ESensorKind::gps) return added;
    // The antennas of one vessel are often side by side.
    for (const auto& sensor : parameters.sensors) {
        if (sensor.get() == added || sensor->GetKind().kind != ESensorKind::gps) continue;
        *added->GetLeverArm() = *sensor->GetLeverArm();
        break;
    }
    return added;
}

SChannelSensor AddSensorOn(CTrvSimulationParameters& parameters, CTrvDataFile& file, std::uint16_t number) {
    CTrvDataFileChannel* channel = file.FindChannel(number);
    const SSensorKind* kind = channel ? FindSensorKind(channel->sensorClass) : nullptr;
    if (!kind) return {};
    const bool served = std::ranges::any_of(parameters.sensors, [&](const auto& sensor) {
        const bool isOfFile = sensor->channel && sensor->channel->file == &file;
        return sensor->channel == channel ||
               (isOfFile && kind->maximum == 1 && sensor->GetKind().kind == kind->kind);
    });
    if (served) return {};
    const std::string_view label = Outils_Texte::GetText(kind->label);
    const std::string name = Outils_Fichiers::ToText(file.path.filename());
    CTrvSensor* sensor = MakeSensor(parameters, kind->kind);
    if (!sensor) return {nullptr, Outils_Texte::FormatText(EText::convertedSensorMissing, {label, name})};
    ConnectSensor(*sensor, *channel);
    return {sensor, Outils_Texte::FormatText(EText::convertedSensorAdded, {label, channel->name, name})};
}

CAutomaticSensors::SAdded CAutomaticSensors::Add(CTrvSimulationParameters& parameters, CTrvDataFile& file,
                                                 std::uint16_t number) {
    CTrvDataFileChannel* channel = file.FindChannel(number);
    if (!channel) return {};
    const auto row = std::ranges::find_if(kAutomaticKinds, [channel](const SAutomaticKind& automatic) {
        return channel->sensorClass == GetSensorKind(automatic.kind).className;
    });
    const std::string key = Outils_Fichiers::ToText(file.path) + " - " + channel->name;
    const auto uses = [channel](const auto& sensor) { return sensor->channel == channel; };
    if (row == std::end(kAutomaticKinds) || m_addedKeys.contains(key) ||
        std::ranges::any_of(parameters.sensors, uses))
        return {};
    CTrvSensor* sensor = parameters.AddSensor(row->kind);
    if (!sensor) return {};
    ConnectSensor(*sensor, *channel);
    m_addedKeys.insert(key);
    return {sensor, row->message};
}

} // namespace Application_Tarvel
