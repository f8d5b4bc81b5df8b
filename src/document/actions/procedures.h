// The edits that are more than writing values: what they do to the model. Each ends with what `edit` says of
// its end, and leaves everything as it was when it fails.
#pragma once

#include "document/actions/edit_row.h"
#include "model/sensors.h"

#include <filesystem>

namespace Application_Tarvel {

using Metier_Tarvel::CTrvDataFile;
using Metier_Tarvel::CTrvDataFileChannel;
using Metier_Tarvel::CTrvSensor;
using Metier_Tarvel::ESensorKind;

namespace Procedures {
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using namespace Metier_Tarvel_InstantValues;

// Asks for a file, has it updated or converted where it must be, and takes it into the project as an external
// file.
bool AddDataFile(const CEdit& edit);
// The same for a file that was chosen already.
bool AddGivenDataFile(const CEdit& edit, std::filesystem::path chosen);

// Files of the project, and where each is now.
using CMoves = std::vector<std::pair<CTrvDataFile*, std::filesystem::path>>;
bool MoveDataFiles(const CEdit& edit, CMoves moves);

// Refuses a file that is still in use.
bool RemoveDataFile(const CEdit& edit, CTrvDataFile& file);

// A sensor on the main input file's first channel of the kind. A further GPS starts with the lever arm of the
// first one.
bool AddSensor(const CEdit& edit, ESensorKind kind);
template <ESensorKind Kind>
bool AddSensorOf(const CEdit& edit) {
    return AddSensor(edit, Kind);
}
// Gives a sensor the channel, of any file of the project. When nobody needs the former file any more, asks
// whether it shall go too.
bool ChangeSensorChannel(const CEdit& edit, CTrvSensor& sensor, CTrvDataFileChannel& channel);

using CNelixValues =
    TValues<CTrvNelixConfiguration, &CTrvNelixConfiguration::factoryMisalignment,
            &CTrvNelixConfiguration::roughMisalignment, &CTrvNelixConfiguration::fineMisalignment,
            &CTrvNelixConfiguration::userMisalignment, &CTrvNelixConfiguration::primaryLeverArm,
            &CTrvNelixConfiguration::secondaryLeverArmA, &CTrvNelixConfiguration::secondaryLeverArmB,
            &CTrvNelixConfiguration::secondaryLeverArmC, &CTrvNelixConfiguration::cogLeverArm>;
// Writes the values and then, unless the path is empty, what this configuration file of the INS says: an
// embedded configuration or an INI file.
bool ChangeNelixConfiguration(const CEdit& edit, CTrvNelixConfiguration& configuration, CNelixValues values,
                              std::filesystem::path file);

// The makers of graphs and values; null when the field cannot be shown there, or is of no file. A curve only
// joins curves of its kind.
CTrv1DGraph* AddMeasureGraph(CTrvProject& project, const CTrvMeasureDef& measure);
CTrv1DGraph* AddEnumGraph(CTrvProject& project, const CTrvEnumDef& enumeration);
CTrv1DCurve* AddCurve(CTrvProject& project, CTrv1DGraphMeasure& graph, const CTrvMeasureDef& measure);
CTrvInstantValuesMeasure* AddInstantMeasure(CTrvProject& project, const CTrvMeasureDef& measure);
CTrvInstantValuesEnum* AddInstantEnum(CTrvProject& project, const CTrvEnumDef& enumeration);
// Removes a curve, and its graph when it was the last one.
bool RemoveCurve(const CEdit& edit, const CTrv1DCurve& curve);

} // namespace Procedures

// Whether the file is an external one that no sensor uses. A project from a damaged archive may have a sensor
// on a file that it does not list: that one is no part of it, and cannot be removed.
bool IsRemovable(const CTrvProject& project, const CTrvDataFile& file);

// Tells the views, stops all that watches the file, then deletes it with the curves and values on it. False,
// and nothing happens, for one that is not removable.
bool RemoveDataFile(CTrvDocument& document, CTrvProject& project, CTrvDataFile& file);

} // namespace Application_Tarvel
