// What a new project takes from the configuration files of an INS.
#include "foundation/numbers.h"
#include "model/configuration_values.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/simulation_parameters.h"

#include <cmath>

namespace Metier_Tarvel {

namespace {

struct SIniSensor {
    std::string_view section;
    ESensorKind kind;
    bool countsByContent; // on the equipment whose sections carry no port
};

// In the order of creation.
constexpr SIniSensor kIniSensors[] = {
    {"Gps", ESensorKind::gps, true},       {"Gps2", ESensorKind::gps, false},
    {"LochEM", ESensorKind::emLog, false}, {"Dvl", ESensorKind::dvl, false},
    {"Usbl0", ESensorKind::usbl, false},   {"Usbl1", ESensorKind::usbl, false},
    {"Usbl2", ESensorKind::usbl, false},   {"Lbl", ESensorKind::lbl, false},
    {"Depth", ESensorKind::depth, false},  {"Odo", ESensorKind::odometer, true},
};
constexpr std::int32_t kEquipmentWithoutPorts = 15;

struct SWebSensor {
    int index;
    ESensorKind kind;
};

constexpr SWebSensor kWebSensors[] = {
    {1, ESensorKind::gps},   {2, ESensorKind::gps},       {3, ESensorKind::depth}, {4, ESensorKind::dvl},
    {6, ESensorKind::emLog}, {7, ESensorKind::lbl},       {8, ESensorKind::usbl},  {9, ESensorKind::usbl},
    {10, ESensorKind::usbl}, {11, ESensorKind::odometer},
};

constexpr std::string_view kZero = "0.0,0.0,0.0";

// Down to 180 and below by whole turns.
double BringBelow180(double longitude) {
    return longitude > 180.0 ? longitude - 360.0 * std::ceil((longitude - 180.0) / 360.0) : longitude;
}

} // namespace

bool CTrvNelixConfiguration::ReadIni(const CIniFile& file) {
    if (!ReadTriple(*factoryMisalignment, file.GetString("Usine", "CRT", kZero)) ||
        !ReadTriple(*fineMisalignment, file.GetString("System", "bias")) ||
        !ReadTriple(*primaryLeverArm, file.GetString("System", "PriLvArm", kZero)) ||
        !ReadTriple(*secondaryLeverArmA, file.GetString("System", "SecLvArmA", kZero)) ||
        !ReadTriple(*secondaryLeverArmB, file.GetString("System", "SecLvArmB", kZero)) ||
        !ReadTriple(*secondaryLeverArmC, file.GetString("System", "SecLvArmC", kZero)))
        return false;
    const auto rough = Outils_Texte::ParseInt(file.GetString("System", "Axisor"));
    if (!rough) return false;
    roughMisalignment = *rough;
    type->SetFromEquipment(file.GetInt("Info", "Type"));
    return ReadTriple(*cogLeverArm, file.GetString("Cog", "LvArm", kZero));
}

bool CTrvNelixConfiguration::ReadWebConfiguration(const CInsWebConfigurationFile& file) {
    const std::string_view leverArms = file.GetList("LVA");
    std::int32_t rough = 0;
    if (!ReadTriple(*fineMisalignment, file.GetList("MesaCrt")) ||
        !ReadTriple(*primaryLeverArm, leverArms, 0) || !ReadTriple(*secondaryLeverArmA, leverArms, 3) ||
        !ReadTriple(*secondaryLeverArmB, leverArms, 6) || !ReadTriple(*secondaryLeverArmC, leverArms, 9) ||
        !file.GetIntegerField("MesaOrient", 0, rough))
        return false;
    if (rough >= 0 && rough < kRoughMisalignmentCount) roughMisalignment = rough;
    return ReadTriple(*cogLeverArm, file.GetList("COG"));
}

bool CTrvSimulationParameters::ImportIniConfiguration(const std::filesystem::path& path) {
    CIniFile file;
    if (!file.Open(path)) return false;
    const auto position = GetListNumbers<3>(file.GetString("System", "Position", "0,0,0"));
    if (!position) return false;
    referencePosition = CPosition((*position)[0], BringBelow180((*position)[1]), (*position)[2]);
    constexpr std::int32_t kSeaStates = 4; // that an INS knows
    if (const auto seaState = Outils_Texte::ParseInt(file.GetString("System", "SeaState"));
        seaState && *seaState >= 0 && *seaState < kSeaStates)
        heaveSeaState = *seaState;
    if (!nelixConfiguration->ReadIni(file)) return false;

    const bool withoutPorts = nelixConfiguration->type->equipment == kEquipmentWithoutPorts;
    for (const SIniSensor& row : kIniSensors) {
        const bool connected = file.GetInt(row.section, "Port") != 0;
        if (!connected && !(withoutPorts && row.countsByContent && file.HasContent(row.section))) continue;
        CTrvSensor* sensor = AddSensor(row.kind);
        if (sensor && !sensor->ReadFromIniFile(file, row.section)) return false;
    }
    return true;
}

bool CTrvSimulationParameters::ImportWebConfiguration(const CInsWebConfigurationFile& file) {
    if (const auto position = GetListNumbers<3>(file.GetList("MANPOS")))
        referencePosition = CPosition((*position)[0], (*position)[1], (*position)[2]);
    if (std::int32_t heave = 0; file.GetIntegerField("HeaveConf", 0, heave)) {
        if (heave == 0 || heave == 1) heaveSeaState = heave;
        if (heave == 3) heaveSeaState = 2;
    }
    if (!nelixConfiguration->ReadWebConfiguration(file)) return false;

    for (const SWebSensor& row : kWebSensors) {
        std::int32_t port = 0;
        if (!file.GetPort(row.index, port) || port == 0) continue;
        CTrvSensor* sensor = AddSensor(row.kind);
        if (sensor && !sensor->ReadFromWebConfiguration(file, row.index)) return false;
    }
    return true;
}

} // namespace Metier_Tarvel
