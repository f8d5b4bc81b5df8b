#include "model/dictionary/data_model.h"

#include "model/dictionary/file_description.h"
#include "model/dictionary/layer_builder.h"
#include "model/loading.h"
#include "model/project.h"

#include <algorithm>
#include <iterator>
#include <map>

namespace Metier_Tarvel_DataModel {

using Metier_Tarvel::AppendOwned;
using Outils_Objets::CSchema;

namespace {

template <class Field>
Field* FindField(const std::vector<std::unique_ptr<Field>>& fields, std::uint32_t index) {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [index](const auto& field) { return field->m_index == index; });
    return found == fields.end() ? nullptr : found->get();
}

void Describe(CTrvFieldDef& field, CTrvDataLayer& layer, std::string name, std::string description,
              std::uint32_t index) {
    field.m_layer = &layer;
    field.m_name = std::move(name);
    field.m_description = std::move(description);
    field.m_index = index;
}

} // namespace

void CTrvFieldDef::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Reference(m_layer);
    schema.Field(m_name);
    schema.Field(m_description);
    schema.Field(m_index);
}

void CTrvMeasureDef::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvFieldDef::Serialize(archive);
    schema.Field(m_nature);
}

void CTrvEnumDefLiteral::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Field(m_name);
    schema.Field(m_description);
}

void CTrvEnumDef::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvFieldDef::Serialize(archive);
    schema.OwnedList(m_literals);
}

void CTrvDataLayer::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.Field(m_name);
    schema.Field(m_description);
    schema.Reference(m_dataFile);
    schema.Field(m_channelNumber);
    schema.OwnedList(m_measures);
    schema.OwnedList(m_enums);
    if (archive.IsStoring()) return;
    m_hasData = false;
    for (const auto& measure : m_measures) measure->m_layer = this;
    for (const auto& enumeration : m_enums) enumeration->m_layer = this;
}

void CTrvDataModel::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CTrvObject::Serialize(archive);
    schema.OwnedList(m_layers);
}

bool CTrvDataModel::BuildFromFile(CTrvDataFile& dataFile, bool expertMode) {
    RemoveLayers(&dataFile);
    SFileDescription description;
    const bool whole = ReadFileDescription(dataFile.path, description);
    return BuildLayers(dataFile, description, expertMode, m_layers) && whole;
}

bool CTrvDataModel::Refresh(CTrvDataFile& dataFile, const SFileDescription& description, bool expertMode) {
    std::vector<std::unique_ptr<CTrvDataLayer>> fresh;
    BuildLayers(dataFile, description, expertMode, fresh);

    // The layers that the file had, by name and in order: those unclaimed at the end are no longer in it.
    std::multimap<std::string, const CTrvDataLayer*> present;
    for (const auto& layer : m_layers)
        if (layer->m_dataFile == &dataFile) present.emplace(layer->m_name, layer.get());
    std::vector<std::unique_ptr<CTrvDataLayer>> added;
    for (auto& layer : fresh) {
        const auto found = present.lower_bound(layer->m_name); // the first of a repeated name
        if (found == present.end() || found->first != layer->m_name)
            added.push_back(std::move(layer));
        else
            present.erase(found);
    }

    const bool changed = !present.empty() || !added.empty();
    if (!present.empty()) {
        std::erase_if(m_layers, [&](const auto& layer) {
            const auto [first, last] = present.equal_range(layer->m_name);
            return std::any_of(first, last, [&](const auto& entry) { return entry.second == layer.get(); });
        });
    }
    std::move(added.begin(), added.end(), std::back_inserter(m_layers));
    return changed;
}

void CTrvDataModel::RemoveLayers(const CTrvDataFile* dataFile) {
    std::erase_if(m_layers, [dataFile](const auto& layer) { return layer->m_dataFile == dataFile; });
}

bool CTrvDataModel::HasLayers(const CTrvDataFile* dataFile) const {
    return std::any_of(m_layers.begin(), m_layers.end(),
                       [dataFile](const auto& layer) { return layer->m_dataFile == dataFile; });
}

CTrvDataLayer* CTrvDataModel::FindLayer(const CTrvDataFile* dataFile, std::uint16_t channelNumber) const {
    const auto found = std::find_if(m_layers.begin(), m_layers.end(), [=](const auto& layer) {
        return layer->m_dataFile == dataFile && layer->m_channelNumber == channelNumber;
    });
    return found == m_layers.end() ? nullptr : found->get();
}

bool CTrvDataModel::SetLayerHasData(const CTrvDataFile* dataFile, std::uint16_t channelNumber) {
    CTrvDataLayer* layer = FindLayer(dataFile, channelNumber);
    if (!layer) return false;
    layer->m_hasData = true;
    return true;
}

CTrvMeasureDef* CTrvDataModel::FindMeasure(const CTrvDataLayer& layer, std::uint32_t index) {
    return FindField(layer.m_measures, index);
}

CTrvEnumDef* CTrvDataModel::FindEnum(const CTrvDataLayer& layer, std::uint32_t index) {
    return FindField(layer.m_enums, index);
}

CTrvMeasureDef* CTrvDataModel::AddMeasure(CTrvDataLayer& layer, std::string name, std::string description,
                                          std::uint32_t index, std::uint32_t nature) {
    auto* measure = AppendOwned(layer.m_measures, std::make_unique<CTrvMeasureDef>());
    Describe(*measure, layer, std::move(name), std::move(description), index);
    measure->m_nature = nature;
    return measure;
}

CTrvEnumDef* CTrvDataModel::AddEnum(CTrvDataLayer& layer, std::string name, std::string description,
                                    std::uint32_t index) {
    auto* enumeration = AppendOwned(layer.m_enums, std::make_unique<CTrvEnumDef>());
    Describe(*enumeration, layer, std::move(name), std::move(description), index);
    return enumeration;
}

void CTrvDataModel::AddLiteral(CTrvEnumDef& enumeration, std::string name, std::string description) {
    auto* literal = AppendOwned(enumeration.m_literals, std::make_unique<CTrvEnumDefLiteral>());
    literal->m_name = std::move(name);
    literal->m_description = std::move(description);
}

} // namespace Metier_Tarvel_DataModel
