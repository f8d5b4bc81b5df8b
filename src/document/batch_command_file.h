// The command Prepare batch command file: a project's processing for the engine without a window.
#pragma once

#include "document/file_looks.h"

#include <filesystem>

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Application_Tarvel {

class IDocumentHost;

// Asks for a name beside `project` and writes the command file. False when a rule is broken, the user
// cancelled, the recording does not say in time whether it is ciphered, or the file could not be written; all
// but the second show a message. UI thread only.
bool PrepareBatchCommandFile(IDocumentHost& host,
                             const Outils_Configuration::CTrvCnfConfigFile& configuration, CFileLooks& looks,
                             const Metier_Tarvel::CTrvSimulationParameters& parameters,
                             const std::filesystem::path& project);

} // namespace Application_Tarvel
