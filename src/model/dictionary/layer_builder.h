// Makes the layers of one data file.
#pragma once

#include "model/dictionary/data_model.h"

namespace Metier_Tarvel_DataModel {

struct SFileDescription;

// Appends one layer for each channel that has a definition. False when the channels and definitions multiply
// beyond any real file; `layers` then has what was built before.
bool BuildLayers(CTrvDataFile& dataFile, const SFileDescription& file, bool expertMode,
                 std::vector<std::unique_ptr<CTrvDataLayer>>& layers);

} // namespace Metier_Tarvel_DataModel
