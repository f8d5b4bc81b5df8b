#include "document/actions/procedures.h"
#include "document/automatic_sensors.h"
#include "document/document.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"

namespace Application_Tarvel {

namespace Procedures {

namespace {

bool ReadConfigurationFile(CTrvNelixConfiguration& configuration, const std::filesystem::path& path) {
    CInsWebConfigurationFile web;
    if (web.Open(path)) return configuration.ReadWebConfiguration(web);
    CIniFile ini;
    return ini.Open(path) && configuration.ReadIni(ini);
}

} // namespace

bool AddSensor(const CEdit& edit, ESensorKind kind) {
    auto& parameters = *edit.GetProject().simulationParameters;
    if (!parameters.CanAddSensor(kind)) return edit.Refuse(EText::tooManySensors);
    CTrvSensor* added = MakeSensor(parameters, kind);
    return added ? edit.Changed(added) : edit.Refuse();
}

bool ChangeSensorChannel(const CEdit& edit, CTrvSensor& sensor, CTrvDataFileChannel& channel) {
    CTrvDataFile* former = sensor.channel ? sensor.channel->file : nullptr;
    sensor.channel = &channel;
    edit.Changed(&sensor);
    if (!former || !IsRemovable(edit.GetProject(), *former)) return true;
    const std::string question =
        Outils_Texte::FormatText(EText::dataFileUnused, {Outils_Fichiers::ToText(former->path)});
    if (edit.GetDocument().GetHost().ShowMessage(question, EButtons::yesNo, EIcon::question) == EAnswer::yes)
        Application_Tarvel::RemoveDataFile(edit.GetDocument(), edit.GetProject(), *former);
    return true;
}

bool ChangeNelixConfiguration(const CEdit& edit, CTrvNelixConfiguration& configuration, CNelixValues values,
                              std::filesystem::path file) {
    const CNelixValues formerValues = CNelixValues::Of(configuration);
    const CTrvNelixType formerType = *configuration.type;
    values.ApplyTo(configuration);
    if (!file.empty() && !ReadConfigurationFile(configuration, file)) {
        formerValues.ApplyTo(configuration);
        *configuration.type = formerType;
        return edit.Refuse();
    }
    return edit.Changed(&configuration);
}

} // namespace Procedures
} // namespace Application_Tarvel
