// The true navigation of a mission as files.
#pragma once

#include "simulator/mission.h"

#include <filesystem>

namespace Simulation {

// Where the truth goes as a result file: beside its text.
std::filesystem::path GetTruthResultPath(const std::filesystem::path& truthPath);

// Writes the truth at its rate, twice: as comma-separated text with a title line: time (the Date in seconds),
// latitude, longitude, altitude, speedNorth, speedEast, speedUp, heading, roll, pitch, heave, in the units of
// STruth; and as the standard channel of a result file, with altitudes above the geoid as an engine writes
// them. False when a file cannot be written.
bool WriteTruth(const CMission& mission, const std::filesystem::path& path);

} // namespace Simulation
