#include "config/settings_files.h"

#include "config/xml_config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <cstdlib>

namespace Outils_Configuration {

namespace {

constexpr const char* kUserFolder = "Qetral";

// A relative path would depend on the folder from which the program was started.
std::filesystem::path GetAbsolute(const char* variable) {
    const char* value = std::getenv(variable);
    const std::filesystem::path path = value ? value : "";
    return path.is_absolute() ? path : std::filesystem::path();
}

} // namespace

std::filesystem::path FindUserSettingsFolder() {
    const auto folder = GetAbsolute("XDG_CONFIG_HOME"), home = GetAbsolute("HOME");
    if (!folder.empty()) return folder / kUserFolder;
    return home.empty() ? home : home / ".config" / kUserFolder;
}

CSettingsFiles::CSettingsFiles(const std::filesystem::path& executable,
                               const std::filesystem::path& userFolder) {
    using Outils_Texte::EText;
    if (executable.empty()) return;
    m_program = Outils_Fichiers::WithExtension(executable, Outils_Texte::GetText(EText::settingsExtension));
    if (!userFolder.empty()) m_user = userFolder / m_program.filename();
}

bool CSettingsFiles::Load(CXmlConfigFile& settings) const {
    return (!m_user.empty() && settings.Load(m_user)) || (!m_program.empty() && settings.Load(m_program));
}

bool CSettingsFiles::Save(const CXmlConfigFile& settings) const {
    std::error_code error;
    if (!m_program.empty() && settings.Save(m_program)) {
        if (m_user.empty() || std::filesystem::remove(m_user, error) || !error) return true;
        return settings.Save(m_user); // one that stays would hide the new values
    }
    if (m_user.empty()) return false;
    std::filesystem::create_directories(m_user.parent_path(), error);
    return settings.Save(m_user);
}

} // namespace Outils_Configuration
