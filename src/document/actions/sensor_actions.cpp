#include "document/actions/sensor_actions.h"

#include "document/actions/data_file_actions.h"
#include "document/document.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Texte::EText;

using namespace Metier_Tarvel;

static_assert(static_cast<int>(EAction::addSensorPlatformOrientation) -
                  static_cast<int>(EAction::addSensorGps) ==
              static_cast<int>(ESensorKind::platformOrientation));

CTrvActAddSensor::CTrvActAddSensor(CTrvDocument& document, ESensorKind kind)
    : CTrvTableAction(document,
                      static_cast<EAction>(static_cast<int>(EAction::addSensorGps) + static_cast<int>(kind))),
      m_kind(kind) {}

bool CTrvActAddSensor::Perform(CTrvProject& project) {
    auto& parameters = *project.simulationParameters;
    if (!parameters.CanAddSensor(m_kind)) return Refuse(EText::tooManySensors);
    CTrvSensor* added = parameters.AddSensor(m_kind);
    if (!added) return Refuse();
    if (m_kind == ESensorKind::gps) {
        // The antennas of one vessel often stand side by side.
        for (const auto& sensor : parameters.sensors) {
            if (sensor.get() == added || sensor->GetKind().kind != ESensorKind::gps) continue;
            *added->GetLeverArm() = *sensor->GetLeverArm();
            break;
        }
    }
    return Changed(added);
}

bool CTrvActChangeSensorDataFileChannel::Perform(CTrvProject& project) {
    CTrvDataFile* former = m_sensor.channel ? m_sensor.channel->file : nullptr;
    m_sensor.channel = &m_channel;
    Changed(&m_sensor);
    if (!former || !IsRemovable(project, *former)) return true;
    const std::string question =
        Outils_Texte::FormatText(EText::dataFileUnused, {Outils_Fichiers::ToText(former->path)});
    if (m_document.GetHost().ShowMessage(question, EButtons::yesNo, EIcon::question) == EAnswer::yes)
        RemoveDataFile(m_document, project, *former);
    return true;
}

} // namespace Application_Tarvel
