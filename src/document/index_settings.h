// The user's settings of the file indexes.
#pragma once

#include "dataaccess/file_indexes.h"

namespace Outils_Configuration {
class CTrvCnfConfigFile;
}

namespace Application_Tarvel {

// With the usual folder for the kept files.
SIndexSettings ReadIndexSettings(const Outils_Configuration::CTrvCnfConfigFile& configuration);

} // namespace Application_Tarvel
