// The embedded configuration text that an INS saves from its web interface: a header of seven lines, then
// key=value lines whose values are lists separated by commas.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Metier_Tarvel {

class CInsWebConfigurationFile {
  public:
    // False when the file cannot be read or its header is another one.
    bool Open(const std::filesystem::path& path);

    // One field of a key's list. False, and `value` stays, when the key or field is absent or does not
    // convert.
    bool GetTextField(std::string_view key, int index, std::string& value) const;
    bool GetFloatField(std::string_view key, int index, double& value) const;
    bool GetIntegerField(std::string_view key, int index, std::int32_t& value) const;
    // The whole list of a key; empty for an absent key.
    std::string_view GetList(std::string_view key) const;

    // The serial port of the sensor with this index (0 to 11), 0 for none.
    bool GetPort(int sensorIndex, std::int32_t& port) const;
    // The lists of a sensor: x, y, z of its lever arm, its transponder code, or heading, roll, pitch and
    // scale factor in percent. Empty for an index that has none.
    std::string_view GetLeverArm(int sensorIndex) const;
    std::string_view GetTransponder(int sensorIndex) const;
    std::string_view GetCalibration(int sensorIndex) const;

  private:
    std::map<std::string, std::string, std::less<>> m_values;
};

} // namespace Metier_Tarvel
