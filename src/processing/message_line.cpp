#include "processing/message_line.h"

#include "foundation/texts.h"
#include "processing/notification.h"

namespace Communication_Processus {

using Outils_Texte::EText;

std::string FormatMessageLine(int level, std::string_view text) {
    using namespace Communication_Interfaces;
    const bool known = level >= levelInformation && level <= levelError;
    const std::string_view word =
        Outils_Texte::GetText(known ? EText::levelInfo + level : EText::levelUnknown);
    return Outils_Texte::FormatText(EText::messageLine, {word, text});
}

} // namespace Communication_Processus
