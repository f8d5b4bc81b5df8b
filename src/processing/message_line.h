// How a message of a child is shown.
#pragma once

#include <string>
#include <string_view>

namespace Communication_Processus {

// "%s : %s" with the level's word; a level that is none of EMessageLevel has the word "?????".
std::string FormatMessageLine(int level, std::string_view text);

} // namespace Communication_Processus
