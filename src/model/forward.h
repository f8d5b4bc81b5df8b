// The names that every header of the model uses.
#pragma once

#include "foundation/archive.h"
#include "foundation/date_time.h"
#include "foundation/object.h"
#include "foundation/positioning.h"

namespace Metier_Tarvel {

using Metier_Positioning::CLeverArm;
using Metier_Positioning::CMisalignment;
using Metier_Positioning::CPosition;
using Outils_Objets::CArchive;
using Outils_Objets::CTrvObject;
using Outils_Objets::TRuntimeClass;
using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

class CTrvProject;
class CTrvSimulationParameters;
class CTrvDataFile;
class CTrvDataFileChannel;
class CTrvSensor;
class CTrvSensorDvl;
class CTrvSensorUsbl;
class CTrvRejectionGroup;
class CIniFile;
class CInsWebConfigurationFile;

// A length of time as the model stores it: the signed tick count in the 64 bits of a date.
inline CDateTime ToStoredTime(CDateTimeSpan span) {
    return CDateTime(static_cast<std::uint64_t>(span.GetTicks()), span.GetStatus());
}
inline CDateTimeSpan ToSpan(CDateTime stored) {
    return CDateTimeSpan(static_cast<std::int64_t>(stored.GetTicks()), stored.GetStatus());
}

} // namespace Metier_Tarvel
