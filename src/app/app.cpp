#include "app/app.h"

#include "foundation/paths.h"
#include "foundation/texts.h"

namespace Application_Tarvel {

using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::GetText;

void CTrvApp::InitInstance() {
    const auto user = GetUserSettingsPath(), program = GetSettingsPath();
    if (user.empty() || !m_configuration.Load(user))
        static_cast<void>(!program.empty() && m_configuration.Load(program)); // the defaults serve as well
    m_plotSettings.drawCurve = m_configuration.Get(Cnf<"view1D/drawCurve">);
    m_plotSettings.extremumTransparency = static_cast<std::uint8_t>(
        std::clamp(m_configuration.Get(Cnf<"view1D/extremumTransparency">), 0, 255));
    m_expertMode = m_configuration.Get(Cnf<"general/expertMode">);
    m_adaptors.Configure(m_configuration);
}

bool CTrvApp::ExitInstance() const {
    const auto user = GetUserSettingsPath(), program = GetSettingsPath();
    std::error_code error;
    if (!program.empty() && m_configuration.Save(program)) {
        // An older file of the user's would be read first at the next start.
        if (!user.empty()) std::filesystem::remove(user, error);
        return true;
    }
    if (user.empty()) return false;
    std::filesystem::create_directories(m_userFolder, error);
    return m_configuration.Save(user);
}

std::filesystem::path CTrvApp::GetUserGuide() const {
    const std::string name = m_configuration.Get(Cnf<"general/userGuide">);
    return GetProgramFolder() / Outils_Fichiers::FromText(name);
}

std::filesystem::path CTrvApp::GetSettingsPath() const {
    if (m_executable.empty()) return {};
    return Outils_Fichiers::WithExtension(m_executable, GetText(EText::settingsExtension));
}

std::filesystem::path CTrvApp::GetUserSettingsPath() const {
    return m_userFolder.empty() || m_executable.empty() ? std::filesystem::path()
                                                        : m_userFolder / GetSettingsPath().filename();
}

} // namespace Application_Tarvel
