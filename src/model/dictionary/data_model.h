// The dictionary from which the views choose what to show: one layer per channel of each data file, with its
// measures and enumerations, read from the file's own description.
#pragma once

#include "model/forward.h"

#include <memory>
#include <string>
#include <vector>

namespace Metier_Tarvel_DataModel {

using Metier_Tarvel::CTrvDataFile;
using Outils_Objets::CArchive;
using Outils_Objets::CTrvObject;
using Outils_Objets::TRuntimeClass;

class CTrvDataLayer;
struct SFileDescription;

class CTrvFieldDef : public TRuntimeClass<CTrvFieldDef, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvFieldDef";

    CTrvDataLayer* m_layer = nullptr; // the owner
    std::string m_name;
    std::string m_description;
    std::uint32_t m_index = 0;

    void Serialize(CArchive& archive) override;
};

// A numeric field; packet->GetDouble(m_index, value) gives its value.
class CTrvMeasureDef : public TRuntimeClass<CTrvMeasureDef, CTrvFieldDef> {
  public:
    static constexpr std::string_view kClassName = "CTrvMeasureDef";

    std::uint32_t m_nature = 0; // Persistance_Xpf::ENature

    void Serialize(CArchive& archive) override;
};

// One value of an enumeration: its position in the list.
class CTrvEnumDefLiteral : public TRuntimeClass<CTrvEnumDefLiteral, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvEnumDefLiteral";

    std::string m_name;
    std::string m_description;

    void Serialize(CArchive& archive) override;
};

// A status field; packet->GetStatusValue(m_index, value) gives a literal's index.
class CTrvEnumDef : public TRuntimeClass<CTrvEnumDef, CTrvFieldDef> {
  public:
    static constexpr std::string_view kClassName = "CTrvEnumDef";

    std::vector<std::unique_ptr<CTrvEnumDefLiteral>> m_literals;

    void Serialize(CArchive& archive) override;
};

class CTrvDataLayer : public TRuntimeClass<CTrvDataLayer, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvDataLayer";

    std::string m_name; // channel name, for example "GPS_1"
    std::string m_description;
    CTrvDataFile* m_dataFile = nullptr;
    std::uint16_t m_channelNumber = 0;
    std::vector<std::unique_ptr<CTrvMeasureDef>> m_measures;
    std::vector<std::unique_ptr<CTrvEnumDef>> m_enums;
    bool m_hasData = false; // a packet of the channel was seen; not archived

    void Serialize(CArchive& archive) override;
};

// Owns its layers. UI thread only.
class CTrvDataModel : public TRuntimeClass<CTrvDataModel, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvDataModel";

    std::vector<std::unique_ptr<CTrvDataLayer>> m_layers;

    // Replaces the layers of a file by what its header says. Expert mode also takes the fields meant for
    // experts and those that the system does not know. False when the file cannot be read; what was built so
    // far is kept.
    bool BuildFromFile(CTrvDataFile& dataFile, bool expertMode);
    // The same by what was read of the file before, without touching layers that it still has: they keep
    // their identity. True when a layer was added or removed. An empty description leaves the file none.
    bool Refresh(CTrvDataFile& dataFile, const SFileDescription& description, bool expertMode);
    // `dataFile` is only compared.
    void RemoveLayers(const CTrvDataFile* dataFile);
    // Marks the layer of a channel; false when there is no such layer.
    bool SetLayerHasData(const CTrvDataFile* dataFile, std::uint16_t channelNumber);
    bool HasLayers(const CTrvDataFile* dataFile) const;
    CTrvDataLayer* FindLayer(const CTrvDataFile* dataFile, std::uint16_t channelNumber) const;

    // The entry with this m_index; null if there is none.
    static CTrvMeasureDef* FindMeasure(const CTrvDataLayer& layer, std::uint32_t index);
    static CTrvEnumDef* FindEnum(const CTrvDataLayer& layer, std::uint32_t index);

    static CTrvMeasureDef* AddMeasure(CTrvDataLayer& layer, std::string name, std::string description,
                                      std::uint32_t index, std::uint32_t nature);
    static CTrvEnumDef* AddEnum(CTrvDataLayer& layer, std::string name, std::string description,
                                std::uint32_t index);
    static void AddLiteral(CTrvEnumDef& enumeration, std::string name, std::string description);

    void Serialize(CArchive& archive) override;
};

} // namespace Metier_Tarvel_DataModel
