// What the program knows of its own build.
#pragma once

#include "foundation/date_time.h"
#include "foundation/object.h"

#include <string>

namespace Application_Tarvel {

class CVersionInfo final : public Outils_Objets::TRuntimeClass<CVersionInfo, Outils_Objets::CObject> {
  public:
    static constexpr std::string_view kClassName = "CVersionInfo";

    // Product name, file description, file version, product version, copyright, then the date.
    void Serialize(Outils_Objets::CArchive& archive) override;

    std::string productName;
    std::string fileDescription;
    std::string fileVersion; // "2.4.0"
    std::string productVersion;
    std::string copyright;
    std::string buildNumber;
    std::string buildReleaseDate; // "2026-11-24"
    Outils_Temps::CDateTime releaseDate = Outils_Temps::CDateTime::Invalid();
};

// That of the running program.
CVersionInfo GetVersionInfo();

// The link that prepares an e-mail to the support with what they need to know first.
std::string GetSupportLink(const CVersionInfo& version);

} // namespace Application_Tarvel
