#include "app/version_info.h"

#include "foundation/serialize.h"
#include "foundation/texts.h"

#include <charconv>

namespace Application_Tarvel {

using Outils_Texte::EText;
using Outils_Texte::GetText;

namespace {

// "2026-11-24" as an instant; invalid for anything else.
Outils_Temps::CDateTime ParseDate(std::string_view text) {
    auto date = Outils_Temps::CDateTime::Invalid();
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return date;
    const auto number = [&](std::size_t begin, std::size_t size) {
        std::uint16_t value = 0; // no month or day: the date stays invalid
        std::from_chars(text.data() + begin, text.data() + begin + size, value);
        return value;
    };
    date.SetDateTime(number(0, 4), number(5, 2), number(8, 2), 0, 0, 0, 0);
    return date;
}

std::string WithCodedBlanks(std::string_view text) {
    std::string coded;
    for (const char c : text) c == ' ' ? coded += "%20" : coded += c;
    return coded;
}

} // namespace

void CVersionInfo::Serialize(Outils_Objets::CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 1);
    for (std::string* field : {&productName, &fileDescription, &fileVersion, &productVersion, &copyright})
        schema.Field(*field);
    schema.Field(releaseDate);
}

CVersionInfo GetVersionInfo() {
    CVersionInfo info;
    info.productName = GetText(EText::product);
    info.fileDescription = GetText(EText::fileDescription);
    info.fileVersion = info.productVersion = VARNE_VERSION;
    info.copyright = GetText(EText::copyright);
    info.buildNumber = VARNE_BUILD_NUMBER;
    info.buildReleaseDate = VARNE_BUILD_DATE;
    info.releaseDate = ParseDate(info.buildReleaseDate);
    return info;
}

std::string GetSupportLink(const CVersionInfo& version) {
    // The texts are in the link's own code: "%20" is a blank, "%0d%0a" ends a line.
    std::string link = "mailto:" VARNE_SUPPORT_MAILBOX "?subject=";
    link += GetText(EText::mailSubject);
    link += "&body=";
    link += GetText(EText::mailProduct);
    link += GetText(EText::mailVersion);
    link += WithCodedBlanks(version.fileVersion);
    link += GetText(EText::mailBuild);
    link += WithCodedBlanks(version.buildNumber);
    link += GetText(EText::mailEnd);
    return link;
}

} // namespace Application_Tarvel
