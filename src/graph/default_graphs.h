// The graphs of a project that has saved none, when they become part of it. UI thread.
#pragma once

#include "model/project.h"
#include "values/adaptors.h"

namespace Presentation_Tarvel_Graphics {

// Saves the default graphs that show something in a project without graphs, so that the first change of one
// leaves the others where they are. Returns the last one; null when there is nothing to save, or the project
// has graphs of its own. The caller reports the change.
const Metier_Tarvel_Graphics::CTrv1DGraph* SaveDefaultGraphs(Metier_Tarvel::CTrvProject& project,
                                                             const Outils_Valeurs::CTrvAdaptors& adaptors);

} // namespace Presentation_Tarvel_Graphics
