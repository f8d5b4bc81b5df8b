// The trajectory exporter: SBET records of 17 and accuracy records of 10 little-endian doubles.
// docs/sbet.md states their frames and where the convention is from.
#pragma once

#include "export/export_run.h"

namespace Exportation {

// Tarout2Sbet.exe
extern const Compagnon::SProgram kResultToSbet;

// The accuracy file of a trajectory: "smrmsg_NAME" beside it, where "sbet_" at the front of the name is
// replaced.
std::filesystem::path NameAccuracyFile(const std::filesystem::path& target);

} // namespace Exportation
