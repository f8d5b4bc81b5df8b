#pragma once

#include "foundation/object.h"

namespace Metier_Tarvel {

// The classes that a project file or a parameter file may hold.
void RegisterModelClasses(Outils_Objets::CClassRegistry& registry);

} // namespace Metier_Tarvel
