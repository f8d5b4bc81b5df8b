// What a project saves of its list of instant values.
#pragma once

#include "model/forward.h"

#include <memory>
#include <string>
#include <vector>

namespace Outils_Objets {
class CSchema;
}

namespace Metier_Tarvel_InstantValues {

using Metier_Tarvel::CTrvDataFile;
using Metier_Tarvel::CTrvProject;
using Outils_Objets::CArchive;
using Outils_Objets::CTrvObject;
using Outils_Objets::TRuntimeClass;

class CTrvInstantValuesSettings;

// The fields that both kinds of rows share.
class CTrvInstantValue : public TRuntimeClass<CTrvInstantValue, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvInstantValue";

    CTrvInstantValuesSettings* settings = nullptr; // the owner
    std::string label;
    CTrvDataFile* dataFile = nullptr; // null when the file is gone
    std::uint16_t channel = 0;
    std::uint32_t field = 0;

  protected:
    CTrvInstantValue() = default;
    // What follows the version.
    void SerializeFields(Outils_Objets::CSchema& schema);
};

class CTrvInstantValuesEnum : public TRuntimeClass<CTrvInstantValuesEnum, CTrvInstantValue> {
  public:
    static constexpr std::string_view kClassName = "CTrvInstantValuesEnum";
    void Serialize(CArchive& archive) override;
};

class CTrvInstantValuesMeasure : public TRuntimeClass<CTrvInstantValuesMeasure, CTrvInstantValue> {
  public:
    static constexpr std::string_view kClassName = "CTrvInstantValuesMeasure";

    std::uint32_t secondField = 0; // of a pair measure

    void Serialize(CArchive& archive) override;
};

class CTrvInstantValuesSettings : public TRuntimeClass<CTrvInstantValuesSettings, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvInstantValuesSettings";

    CTrvProject* project = nullptr; // the owner
    std::vector<std::unique_ptr<CTrvInstantValuesMeasure>> measures;
    std::vector<std::unique_ptr<CTrvInstantValuesEnum>> enums;

    CTrvInstantValuesSettings() = default;
    explicit CTrvInstantValuesSettings(CTrvProject& owner) : project(&owner) {}

    CTrvInstantValuesMeasure* AddMeasure(CTrvDataFile* dataFile, std::uint16_t channel, std::uint32_t field,
                                         std::string label);
    CTrvInstantValuesEnum* AddEnum(CTrvDataFile* dataFile, std::uint16_t channel, std::uint32_t field,
                                   std::string label);
    // Each deletes the object; false if it is not in its list.
    bool RemoveMeasure(const CTrvInstantValuesMeasure* measure);
    bool RemoveEnum(const CTrvInstantValuesEnum* enumeration);
    // Moves a row to this place among those of its kind, at the end beyond it. False if it is not in its
    // list.
    bool Move(const CTrvInstantValue& value, std::size_t place);
    // Deletes the rows on a file. `dataFile` is only compared.
    void ForgetDataFile(const CTrvDataFile* dataFile);

    // Second half of a load: sets the back pointers of all rows. Throws badIndex for a data file of another
    // project.
    void Attach(CTrvProject& owner);
    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel_InstantValues
