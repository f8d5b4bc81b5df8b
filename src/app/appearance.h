// The looks among which the user chooses.
#pragma once

#include "config/enumerations.h"

namespace Application_Tarvel {

// Sets style and palette of the whole application. `standard` is the desktop's own.
void ApplyPalette(Outils_Configuration::EAppearance appearance);

} // namespace Application_Tarvel
