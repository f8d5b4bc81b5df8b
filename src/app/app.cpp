#include "app/app.h"

#include "foundation/paths.h"

namespace Application_Tarvel {

using Outils_Configuration::Cnf;

void CTrvApp::InitInstance() {
    static_cast<void>(m_settingsFiles.Load(m_configuration)); // the defaults serve as well
    m_plotSettings.drawCurve = m_configuration.Get(Cnf<"view1D/drawCurve">);
    m_plotSettings.extremumTransparency = static_cast<std::uint8_t>(
        std::clamp(m_configuration.Get(Cnf<"view1D/extremumTransparency">), 0, 255));
    m_expertMode = m_configuration.Get(Cnf<"general/expertMode">);
    m_adaptors.Configure(m_configuration);
}

std::filesystem::path CTrvApp::GetUserGuide() const {
    const std::string name = m_configuration.Get(Cnf<"general/userGuide">);
    return GetProgramFolder() / Outils_Fichiers::FromText(name);
}

} // namespace Application_Tarvel
