// How a message of a child is shown.
#pragma once

#include <string>
#include <string_view>

namespace Communication_Processus {

// "INFO", "WARNING", "ERROR"; "?????" for a level that is none of EMessageLevel.
std::string_view GetLevelWord(int level);
// "%s : %s" with the level's word.
std::string FormatMessageLine(int level, std::string_view text);

} // namespace Communication_Processus
