#include "processing/message_line.h"

#include "foundation/texts.h"
#include "processing/notification.h"

namespace Communication_Processus {

namespace {

enum ETexts { textFirstLevel = 10100, textUnknownLevel = 10103, textLine = 10104 };

} // namespace

std::string FormatMessageLine(int level, std::string_view text) {
    using namespace Communication_Interfaces;
    const bool known = level >= levelInformation && level <= levelError;
    const std::string_view word = Outils_Texte::GetText(known ? textFirstLevel + level : textUnknownLevel);
    return Outils_Texte::FormatText(textLine, {word, text});
}

} // namespace Communication_Processus
