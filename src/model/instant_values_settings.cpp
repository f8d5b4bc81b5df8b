#include "model/instant_values_settings.h"

#include "model/loading.h"
#include "model/project.h"

#include <algorithm>

namespace Metier_Tarvel_InstantValues {

using Metier_Tarvel::AppendOwned;
using Metier_Tarvel::EraseOwned;
using Outils_Objets::CSchema;
using Outils_Objets::SerializeUnchanged;

namespace {

template <class Value>
Value* AddValue(std::vector<std::unique_ptr<Value>>& values, CTrvInstantValuesSettings& settings,
                CTrvDataFile* dataFile, std::uint16_t channel, std::uint32_t field) {
    auto* value = AppendOwned(values, std::make_unique<Value>());
    value->settings = &settings;
    value->dataFile = dataFile;
    value->channel = channel;
    value->field = field;
    return value;
}

template <class Value>
bool MoveValue(std::vector<std::unique_ptr<Value>>& values, const CTrvInstantValue& moved,
               std::size_t place) {
    const auto found = std::ranges::find_if(values, [&](const auto& value) { return value.get() == &moved; });
    if (found == values.end()) return false;
    const auto target = values.begin() + static_cast<std::ptrdiff_t>(std::min(place, values.size() - 1));
    if (target < found)
        std::rotate(target, found, found + 1);
    else
        std::rotate(found, found + 1, target + 1);
    return true;
}

template <class Value>
void AttachValues(std::vector<std::unique_ptr<Value>>& values, CTrvInstantValuesSettings& settings,
                  const Metier_Tarvel::CTrvSimulationParameters* parameters) {
    for (const auto& value : values) {
        value->settings = &settings;
        if (value->dataFile && value->dataFile->owner != parameters)
            Outils_Objets::AfxThrowArchiveException(Outils_Objets::CArchiveException::badIndex);
    }
}

} // namespace

void CTrvInstantValue::SerializeFields(CSchema& schema) {
    CTrvObject::Serialize(schema.GetArchive());
    schema.Reference(settings);
    schema.Field(label);
    schema.Reference(dataFile);
    schema.Field(channel);
    schema.Field(field);
}

void CTrvInstantValuesEnum::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    SerializeFields(schema);
}

void CTrvInstantValuesMeasure::Serialize(CArchive& archive) {
    CSchema schema(archive, 2);
    if (archive.IsLoading()) secondField = 0;
    SerializeFields(schema);
    schema.Since(2).Field(secondField);
}

CTrvInstantValuesMeasure* CTrvInstantValuesSettings::AddMeasure(CTrvDataFile* dataFile, std::uint16_t channel,
                                                                std::uint32_t field, std::string label) {
    auto* measure = AddValue(measures, *this, dataFile, channel, field);
    measure->label = std::move(label);
    return measure;
}

CTrvInstantValuesEnum* CTrvInstantValuesSettings::AddEnum(CTrvDataFile* dataFile, std::uint16_t channel,
                                                          std::uint32_t field, std::string label) {
    auto* enumeration = AddValue(enums, *this, dataFile, channel, field);
    enumeration->label = std::move(label);
    return enumeration;
}

bool CTrvInstantValuesSettings::RemoveMeasure(const CTrvInstantValuesMeasure* measure) {
    return EraseOwned(measures, measure);
}

bool CTrvInstantValuesSettings::RemoveEnum(const CTrvInstantValuesEnum* enumeration) {
    return EraseOwned(enums, enumeration);
}

bool CTrvInstantValuesSettings::Move(const CTrvInstantValue& value, std::size_t place) {
    return MoveValue(measures, value, place) || MoveValue(enums, value, place);
}

void CTrvInstantValuesSettings::ForgetDataFile(const CTrvDataFile* dataFile) {
    const auto isOnFile = [dataFile](const auto& value) { return value->dataFile == dataFile; };
    std::erase_if(measures, isOnFile);
    std::erase_if(enums, isOnFile);
}

void CTrvInstantValuesSettings::Attach(CTrvProject& owner) {
    project = &owner;
    AttachValues(measures, *this, owner.simulationParameters.get());
    AttachValues(enums, *this, owner.simulationParameters.get());
}

void CTrvInstantValuesSettings::Serialize(CArchive& archive) {
    SerializeUnchanged<CTrvObject>(archive, *this, project, measures, enums);
}

} // namespace Metier_Tarvel_InstantValues
