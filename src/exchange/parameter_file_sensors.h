// The sensors in a parameter file.
#pragma once

#include "exchange/parameter_file_exchange.h"

namespace Persistance_Parametres {

// The sensor elements under the root, in the order of the parameters' list or of the document. Throws
// CParameterFileException.
void ExchangeSensors(const CParameterExchange& exchange, pugi::xml_node root,
                     CTrvSimulationParameters& parameters);

} // namespace Persistance_Parametres
