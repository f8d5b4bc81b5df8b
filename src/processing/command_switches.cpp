#include "processing/command_switches.h"

namespace Communication_Processus {

std::string WriteSwitch(std::string_view name, EArgument kind, std::string_view value) {
    std::string text = name.empty() ? std::string() : ' ' + std::string(name);
    switch (kind) {
    case EArgument::flag: break;
    case EArgument::word: text += ' ' + std::string(value); break;
    case EArgument::quoted: text += ' ' + QuoteArgument(value); break;
    case EArgument::quotedIfNeeded: text += ' ' + QuoteArgumentIfNeeded(value); break;
    }
    return text;
}

} // namespace Communication_Processus
