// What each kind of sensor takes from the configuration files of an INS.
#include "model/configuration_values.h"
#include "model/ini_file.h"
#include "model/ins_web_configuration_file.h"
#include "model/sensors.h"

namespace Metier_Tarvel {

namespace {

constexpr double kPercent = 100.0;

// Heading, roll, pitch and the scale factor in percent.
bool ReadCalibration(CTrvSensor& sensor, std::string_view list) {
    const auto values = GetListNumbers<4>(list);
    if (!values) return false;
    Assign(*sensor.GetMisalignment(), {(*values)[0], (*values)[1], (*values)[2]});
    *sensor.GetScaleFactor() = (*values)[3] / kPercent;
    return true;
}

bool ReadCurrentModeling(CTrvCurrentModeling& modeling, std::string_view list) {
    const auto values = GetListNumbers<2>(list);
    if (!values) return false;
    modeling.time = (*values)[0];
    modeling.sigma = (*values)[1];
    return true;
}

// An absent key changes nothing; a value that does not convert is a failure.
bool ReadLeverArm(CLeverArm& leverArm, const std::string& list) {
    return list.empty() || ReadTriple(leverArm, list);
}

} // namespace

bool CTrvSensor::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    if (CLeverArm* leverArm = GetLeverArm();
        leverArm && !ReadLeverArm(*leverArm, file.GetString(section, "LvArm")))
        return false;
    return !GetMisalignment() || ReadCalibration(*this, file.GetString(section, "Mesalign"));
}

bool CTrvSensorDvl::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    return CTrvSensor::ReadFromIniFile(file, section) &&
           ReadCurrentModeling(*currentModeling, file.GetString("System", "ModeleCourrant", "0,0"));
}

bool CTrvSensorUsbl::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    if (!CTrvSensor::ReadFromIniFile(file, section)) return false;
    transponderCode = file.GetString(section, "TpCode");
    return true;
}

bool CTrvSensorPlatformOrientation::ReadFromIniFile(const CIniFile& file, std::string_view section) {
    return ReadLeverArm(*insLeverArm, file.GetString(section, "INSLvArm")) &&
           ReadLeverArm(*vehicleLeverArm, file.GetString(section, "PlatformLvArm")) &&
           ReadTriple(*insMisalignment, file.GetString(section, "INSMesalign")) &&
           ReadTriple(*vehicleMisalignment, file.GetString(section, "PlatformMesalign"));
}

bool CTrvSensor::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    if (CLeverArm* leverArm = GetLeverArm()) ReadTriple(*leverArm, file.GetLeverArm(sensorIndex));
    if (GetMisalignment()) ReadCalibration(*this, file.GetCalibration(sensorIndex));
    return true;
}

bool CTrvSensorDvl::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    file.GetFloatField("DVLTAM", 0, currentModeling->time);
    file.GetFloatField("DVLTAM", 1, currentModeling->sigma);
    return CTrvSensor::ReadFromWebConfiguration(file, sensorIndex);
}

bool CTrvSensorUsbl::ReadFromWebConfiguration(const CInsWebConfigurationFile& file, int sensorIndex) {
    if (const std::string_view code = file.GetTransponder(sensorIndex); !code.empty()) transponderCode = code;
    return CTrvSensor::ReadFromWebConfiguration(file, sensorIndex);
}

} // namespace Metier_Tarvel
