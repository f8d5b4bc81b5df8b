// The text exporters: tables with the separator ";" and a decimal point, one row a packet.
#pragma once

#include "export/export_run.h"

namespace Exportation {

// Tarin2Txt.exe: for each channel with packets a table NAME_CHANNEL beside the target NAME, and as target a
// table of these tables.
extern const Compagnon::SProgram kInputToText;
// Tarout2Txt.exe: the navigation of a result as one table, with "/imu on" the inertial values of its
// extended packets beside it.
extern const Compagnon::SProgram kResultToText;

} // namespace Exportation
