// The command line of the processing engine.
#pragma once

#include <string>
#include <string_view>

namespace Communication_Processus {

// Both are paths as text. Empty for a program whose path holds a double quote.
std::string MakeEngineCommand(std::string_view program, std::string_view parameterFile);

} // namespace Communication_Processus
