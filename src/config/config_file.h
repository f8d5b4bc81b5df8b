// The settings file of the program: `<executable name>.conf.xml`, beside the executable.
#pragma once

#include "config/schema.h"
#include "config/xml_config_file.h"

#include <type_traits>
#include <vector>

namespace Outils_Configuration {

// The tree of all keys of kSchema over a document that starts with every key at its default. Main thread
// only.
class CTrvCnfConfigFile : public CXmlConfigFile {
  public:
    CTrvCnfConfigFile();

    // The present value of a key, parsed at this moment; its default when the text does not parse. A number
    // outside the range of the key is the nearest end of it.
    template <class Value>
    Value Get(TKey<Value> key) const {
        const CXmlConfigValue& value = GetValue(key);
        if constexpr (std::is_enum_v<Value>)
            return static_cast<Value>(GetNumber(key));
        else if constexpr (std::is_same_v<Value, std::string>)
            return value.GetString();
        else if constexpr (std::is_same_v<Value, bool>)
            return value.GetBool();
        else if constexpr (std::is_same_v<Value, char16_t>)
            return value.GetChar();
        else if constexpr (std::is_same_v<Value, double>)
            return kSchema[key.row].range.Clamp(value.GetDouble());
        else if constexpr (std::is_same_v<Value, SColor>)
            return SColor{value.GetColor()};
        else
            return kSchema[key.row].range.Clamp(value.GetInt());
    }
    // Changes the text of a key in memory; the file follows at the next Save.
    template <class Value>
    void Set(TKey<Value> key, const std::type_identity_t<Value>& newValue) {
        CXmlConfigValue& value = GetValue(key);
        if constexpr (std::is_enum_v<Value>)
            SetNumber(key, static_cast<int>(newValue));
        else if constexpr (std::is_same_v<Value, std::string>)
            value.SetString(newValue);
        else if constexpr (std::is_same_v<Value, bool>)
            value.SetBool(newValue);
        else if constexpr (std::is_same_v<Value, char16_t>)
            value.SetChar(newValue);
        else if constexpr (std::is_same_v<Value, double>)
            value.SetDouble(newValue);
        else if constexpr (std::is_same_v<Value, SColor>)
            value.SetColor(newValue.argb);
        else
            value.SetInt(newValue);
    }

    // The value of a key, for code that treats all types alike.
    CXmlConfigValue& GetValue(SKey key) { return *m_values[key.row]; }
    const CXmlConfigValue& GetValue(SKey key) const { return *m_values[key.row]; }

  private:
    int GetNumber(SKey key) const;
    void SetNumber(SKey key, int number);

    std::vector<CXmlConfigValue*> m_values; // by row; owned by their sections
};

} // namespace Outils_Configuration
