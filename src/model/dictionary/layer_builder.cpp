#include "model/dictionary/layer_builder.h"

#include "model/dictionary/file_description.h"
#include "model/dictionary/visibility.h"
#include "model/simulation_parameters.h"
#include "xpf/table_file.h"

#include <unordered_map>

namespace Metier_Tarvel_DataModel {

using namespace Persistance_Xpf;

namespace {

// Fields of all layers together: every channel repeats the fields of its type, so a hostile header could ask
// for more than memory holds.
constexpr std::size_t kLargestWork = 1u << 16;

// Files written before the natures of raw measurements existed give these fields none.
std::uint32_t RepairNature(const std::string& layerName, const SFieldDescription& field) {
    if (layerName != "IMU" || field.nature != natureUnknown ||
        field.typeCode != static_cast<std::uint8_t>(EFieldType::i32))
        return field.nature;
    if (field.name == "Fog 1" || field.name == "Fog 2" || field.name == "Fog 3") return natureRawFog;
    if (field.name == "Acc 1" || field.name == "Acc 2" || field.name == "Acc 3") return natureRawAcc;
    return field.nature;
}

class CLayerBuilder {
  public:
    CLayerBuilder(EFileKind kind, bool expertMode)
        : m_kind(kind), m_expertMode(expertMode), m_statusTables(kind) {}

    void AddDefinition(CTrvDataLayer& layer, const SFileDescription& file,
                       const SDefinitionDescription& definition) {
        for (std::size_t i = 0; i < definition.fieldCount; ++i) {
            const SFieldDescription& field = file.fields[definition.firstField + i];
            if (field.count == 1 && IsTaken(definition, field.name))
                CTrvDataModel::AddMeasure(layer, field.name, field.description, static_cast<std::uint32_t>(i),
                                          RepairNature(layer.m_name, field));
        }
        // Of the result file only the standard result has status fields.
        if (m_kind == EFileKind::tarin || definition.packetType == typeMorvexStd)
            AddStatusFields(layer, definition.packetType);
    }

  private:
    bool IsTaken(const SDefinitionDescription& definition, std::string_view fieldName) const {
        const EVisibility visibility =
            GetVisibility(m_kind, definition.packetType, definition.version, fieldName);
        return visibility == EVisibility::visible || (visibility == EVisibility::expertOnly && m_expertMode);
    }

    void AddStatusFields(CTrvDataLayer& layer, std::uint16_t packetType) const {
        std::string name, description;
        std::uint32_t literals = 0;
        for (std::uint32_t i = 0; m_statusTables.GetStatusField(packetType, i, name, description, literals);
             ++i) {
            CTrvEnumDef* status = CTrvDataModel::AddEnum(layer, name, description, i);
            for (std::uint32_t literal = 0; literal < literals; ++literal)
                if (m_statusTables.GetStatusLiteral(packetType, i, literal, name, description))
                    CTrvDataModel::AddLiteral(*status, name, description);
        }
    }

    EFileKind m_kind;
    bool m_expertMode;
    CXpfTableFile m_statusTables; // not opened: it answers from the tables of its kind
};

} // namespace

bool BuildLayers(CTrvDataFile& dataFile, const SFileDescription& file, bool expertMode,
                 std::vector<std::unique_ptr<CTrvDataLayer>>& layers) {
    std::unordered_map<std::uint16_t, std::vector<const SDefinitionDescription*>> definitions;
    for (const SDefinitionDescription& definition : file.definitions)
        definitions[definition.packetType].push_back(&definition);

    const bool isResult = dataFile.owner && dataFile.owner->outputFile.get() == &dataFile;
    CLayerBuilder builder(isResult ? EFileKind::tarout : EFileKind::tarin, expertMode);
    std::size_t work = 0;
    for (const SChannelDescription& channel : file.channels) {
        const auto found = definitions.find(channel.packetType);
        if (found == definitions.end()) continue;
        auto layer = std::make_unique<CTrvDataLayer>();
        layer->m_name = channel.name;
        layer->m_description = channel.description;
        layer->m_dataFile = &dataFile;
        layer->m_channelNumber = channel.number;
        for (const SDefinitionDescription* definition : found->second) {
            work += definition->fieldCount + kMaximumFields; // status fields counted in
            if (work > kLargestWork) return false;
            builder.AddDefinition(*layer, file, *definition);
        }
        layers.push_back(std::move(layer));
    }
    return true;
}

} // namespace Metier_Tarvel_DataModel
