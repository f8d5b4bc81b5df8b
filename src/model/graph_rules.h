// What may be shown together in one graph, and under which name. UI thread.
#pragma once

#include "model/project.h"

#include <cstdint>
#include <string>

namespace Metier_Tarvel_Graphics {

// The nature of the values of a measure graph: the nature of its first curve that the dictionary knows.
// False for a graph without one, which takes any measure.
bool FindGraphNature(const CTrvProject& project, const CTrv1DGraphMeasure& graph, std::uint32_t& nature);

// Whether a measure may join a graph of values of `graphNature`; then `factor` is what its values are
// multiplied by: an immersion counts downwards and is mirrored beside an altitude, and the other way round.
bool CanJoin(std::uint32_t graphNature, std::uint32_t nature, double& factor);

// "channel - field", and the file's name after it unless the file is the main input or the result.
std::string MakeCurveLabel(const Metier_Tarvel_DataModel::CTrvDataLayer& layer, const std::string& field);

} // namespace Metier_Tarvel_Graphics
