// The exporters to formats of geographic information systems.
#pragma once

#include "export/export_run.h"

namespace Exportation {

// Tarin2Geo.exe and Tarout2Geo.exe. The files of a format have the name of the target with their own
// extensions.
extern const Compagnon::SProgram kInputToGeo;
extern const Compagnon::SProgram kResultToGeo;

} // namespace Exportation
