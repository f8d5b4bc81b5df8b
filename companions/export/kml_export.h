// The exporters to KML: points with date and values, and a track with times.
#pragma once

#include "export/export_run.h"

namespace Exportation {

// Tarin2Kml.exe and Tarout2Kml.exe. Without "/dec" they take so many packets that a viewer opens the file,
// and say so.
extern const Compagnon::SProgram kInputToKml;
extern const Compagnon::SProgram kResultToKml;

} // namespace Exportation
