#include "document/actions/nelix_action.h"

#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"

namespace Application_Tarvel {

using namespace Metier_Tarvel;

namespace {

bool ReadConfigurationFile(CTrvNelixConfiguration& configuration, const std::filesystem::path& path) {
    CInsWebConfigurationFile web;
    if (web.Open(path)) return configuration.ReadWebConfiguration(web);
    CIniFile ini;
    return ini.Open(path) && configuration.ReadIni(ini);
}

} // namespace

bool CTrvActChangeNelixConfiguration::Perform(CTrvProject& project) {
    auto& configuration = *project.simulationParameters->nelixConfiguration;
    const SNelixValues formerValues = SNelixValues::Of(configuration);
    const CTrvNelixType formerType = *configuration.type;
    m_values.ApplyTo(configuration);
    if (!m_configurationFile.empty() && !ReadConfigurationFile(configuration, m_configurationFile)) {
        formerValues.ApplyTo(configuration);
        *configuration.type = formerType;
        return Refuse();
    }
    return Changed(&configuration);
}

} // namespace Application_Tarvel
