#include "app/app.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::GetText;

void CTrvApp::InitInstance() {
    if (const auto path = GetSettingsPath(); !path.empty())
        static_cast<void>(m_configuration.Load(path)); // the defaults serve as well
    m_plotSettings.drawCurve = m_configuration.Get(Cnf<"view1D/drawCurve">);
    m_plotSettings.extremumTransparency = static_cast<std::uint8_t>(
        std::clamp(m_configuration.Get(Cnf<"view1D/extremumTransparency">), 0, 255));
    m_expertMode = m_configuration.Get(Cnf<"general/expertMode">);
    m_adaptors.Configure(m_configuration);
}

bool CTrvApp::ExitInstance() const {
    const auto path = GetSettingsPath();
    return !path.empty() && m_configuration.Save(path);
}

std::filesystem::path CTrvApp::GetUserGuide() const {
    const std::string name = m_configuration.Get(Cnf<"general/userGuide">);
    return GetProgramFolder() / Outils_Fichiers::FromText(name);
}

std::filesystem::path CTrvApp::GetSettingsPath() const {
    if (m_executable.empty()) return {};
    return Outils_Fichiers::WithExtension(m_executable, GetText(EText::settingsExtension));
}

} // namespace Application_Tarvel
