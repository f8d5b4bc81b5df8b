#include "processing/message_line.h"

#include "foundation/texts.h"
#include "processing/notification.h"

namespace Communication_Processus {

using Outils_Texte::EText;

std::string_view GetLevelWord(int level) {
    using namespace Communication_Interfaces;
    const bool known = level >= levelInformation && level <= levelError;
    return Outils_Texte::GetText(known ? EText::levelInfo + level : EText::levelUnknown);
}

std::string FormatMessageLine(int level, std::string_view text) {
    return Outils_Texte::FormatText(EText::messageLine, {GetLevelWord(level), text});
}

} // namespace Communication_Processus
