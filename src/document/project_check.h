// The rules of a project, asked before a run and before a batch command file is written.
#pragma once

#include "foundation/text_id.h"

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Application_Tarvel {

class IDocumentHost;

// Returns whether no rule is broken. Otherwise writes the text `line` and each violation to the output panel,
// then shows `message`. UI thread only.
bool ValidateProject(IDocumentHost& host, const Metier_Tarvel::CTrvSimulationParameters& parameters,
                     Outils_Texte::EText line, Outils_Texte::EText message);

} // namespace Application_Tarvel
