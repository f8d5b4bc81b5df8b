#include "model/ins_web_configuration_file.h"

#include "model/configuration_values.h"
#include "model/text_file.h"

namespace Metier_Tarvel {

namespace {

// What the lines of the header begin with.
constexpr std::string_view kHeader[] = {
    "Settings",
    "--------",
    "",
    "Version Loader DSP",
    "Version Firmware DSP",
    "Version Loader CINT",
    "Version Firmware CINT",
};

struct SSensorKeys {
    int index;
    std::string_view leverArm;
    std::string_view transponder;
    std::string_view calibration;
};

constexpr SSensorKeys kSensorKeys[] = {
    {1, "GPSLVA", {}, {}},
    {2, "GPS2LVA", {}, {}},
    {3, "DepthLVA", {}, {}},
    {4, "DVLLVA", {}, "DVLCAL"},
    {6, "LEMLVA", {}, {}},
    {7, "LBLLVA", {}, {}},
    {8, "USBL0LVA", "USBL0Conf", {}},
    {9, "USBL1LVA", "USBL1Conf", {}},
    {10, "USBL2LVA", "USBL2Conf", {}},
    {11, "ODOLVA", {}, "ODOCAL"},
};

SSensorKeys KeysOf(int index) {
    for (const SSensorKeys& keys : kSensorKeys)
        if (keys.index == index) return keys;
    return {};
}

} // namespace

bool CInsWebConfigurationFile::Open(const std::filesystem::path& path) {
    m_values.clear();
    const auto lines = ReadTextLines(path);
    if (!lines || lines->size() < std::size(kHeader)) return false;
    for (std::size_t i = 0; i < std::size(kHeader); ++i)
        if (!(*lines)[i].starts_with(kHeader[i])) return false;
    for (std::size_t i = std::size(kHeader); i < lines->size(); ++i) {
        const std::string& line = (*lines)[i];
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos && equals > 0)
            m_values.insert_or_assign(line.substr(0, equals), line.substr(equals + 1));
    }
    return true;
}

std::string_view CInsWebConfigurationFile::GetList(std::string_view key) const {
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::string_view() : std::string_view(found->second);
}

bool CInsWebConfigurationFile::GetTextField(std::string_view key, int index, std::string& value) const {
    const auto found = m_values.find(key);
    if (found == m_values.end()) return false;
    const auto field = GetListField(found->second, index);
    if (field) value = *field;
    return field.has_value();
}

bool CInsWebConfigurationFile::GetFloatField(std::string_view key, int index, double& value) const {
    const auto number = GetListNumber(GetList(key), index);
    if (number) value = *number;
    return number.has_value();
}

bool CInsWebConfigurationFile::GetIntegerField(std::string_view key, int index, std::int32_t& value) const {
    const auto number = GetListInteger(GetList(key), index);
    if (number) value = *number;
    return number.has_value();
}

bool CInsWebConfigurationFile::GetPort(int sensorIndex, std::int32_t& port) const {
    constexpr int kLastBeforeGap = 6; // field 7 belongs to no sensor
    constexpr int kLast = 11;
    if (sensorIndex < 0 || sensorIndex > kLast) return false;
    return GetIntegerField("ExtSToSerial", sensorIndex <= kLastBeforeGap ? sensorIndex : sensorIndex + 1,
                           port);
}

std::string_view CInsWebConfigurationFile::GetLeverArm(int sensorIndex) const {
    return GetList(KeysOf(sensorIndex).leverArm);
}

std::string_view CInsWebConfigurationFile::GetTransponder(int sensorIndex) const {
    return GetListField(GetList(KeysOf(sensorIndex).transponder), 0).value_or(std::string_view());
}

std::string_view CInsWebConfigurationFile::GetCalibration(int sensorIndex) const {
    return GetList(KeysOf(sensorIndex).calibration);
}

} // namespace Metier_Tarvel
