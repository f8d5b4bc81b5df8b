#include "graph/variables.h"

#include "config/config_file.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <utility>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Persistance_Xpf;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

constexpr std::array kKinds = {
    EVariable::number,       // 0 unknown
    EVariable::place,        // 1 latitude
    EVariable::place,        // 2 longitude
    EVariable::deviation,    // 3 position standard deviation
    EVariable::deviation,    // 4 position cross variance
    EVariable::speed,        // 5 linear speed
    EVariable::deviation,    // 6 linear speed standard deviation
    EVariable::acceleration, // 7 linear acceleration
    EVariable::deviation,    // 8 linear acceleration standard deviation
    EVariable::turnRate,     // 9 angular speed
    EVariable::deviation,    // 10 angular speed standard deviation
    EVariable::temperature,  // 11 temperature
    EVariable::speed,        // 12 sound velocity
    EVariable::height,       // 13 altitude
    EVariable::height,       // 14 immersion
    EVariable::deviation,    // 15 altitude standard deviation
    EVariable::angle,        // 16 attitude
    EVariable::deviation,    // 17 attitude standard deviation
    EVariable::distance,     // 18 distance
    EVariable::deviation,    // 19 distance standard deviation
    EVariable::time,         // 20 time length
    EVariable::number,       // 21 scale factor
    EVariable::state,        // 22 enumeration
    EVariable::time,         // 23 time drift
    EVariable::turnRate,     // 24 raw FOG measurement
    EVariable::acceleration, // 25 raw accelerometer measurement
};
static_assert(kKinds.size() == natureCount);

// ASCII only: a filter finds other letters as they are written.
std::string ToSmall(std::string_view text) {
    std::string small(text);
    for (char& c : small) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return small;
}

EText RoleOf(const CTrvProject& project, const CTrvDataFile& file) {
    const auto& parameters = *project.simulationParameters;
    if (&file == parameters.mainInputFile.get()) return EText::inputFile;
    return &file == parameters.outputFile.get() ? EText::outputFile : EText::externalFile;
}

} // namespace

EVariable GetVariableKind(std::uint32_t nature) {
    return nature < kKinds.size() ? kKinds[nature] : EVariable::number;
}

bool MatchesFilter(std::string_view filter, std::string_view words) {
    const std::string small = ToSmall(filter);
    std::string_view rest = small;
    for (;;) {
        const auto begin = rest.find_first_not_of(" \t");
        if (begin == std::string_view::npos) return true;
        rest.remove_prefix(begin);
        const auto length = std::min(rest.find_first_of(" \t"), rest.size());
        if (words.find(rest.substr(0, length)) == std::string_view::npos) return false;
        rest.remove_prefix(length);
    }
}

CTrvVariables::CTrvVariables(CTrvDocument& document, CViewState& state,
                             const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_document(document),
      m_state(state),
      m_adaptors(adaptors),
      m_extents(document,
                [this] {
                    if (!m_extents.IsLoading()) UpdateTree();
                }),
      m_moments(document,
                [this] {
                    if (m_onValues) m_onValues();
                }),
      m_subscription(state.Listen([this](EViewChange change) {
          if (change != EViewChange::cursor) return;
          m_moments.SetTime(0, m_state.GetCursor(ECursor::first));
          if (m_onValues) m_onValues();
      })) {
    m_moments.SetTime(0, m_state.GetCursor(ECursor::first));
    m_document.AddView(this);
    UpdateTree();
}

CTrvVariables::~CTrvVariables() { m_document.RemoveView(this); }

void CTrvVariables::SetOnChanged(std::function<void()> onTree, std::function<void()> onValues) {
    m_onTree = std::move(onTree);
    m_onValues = std::move(onValues);
}

const CTrvFieldDef* CTrvVariables::FindField(const SVariable& variable) const {
    const auto* project = m_document.GetProject();
    if (!project || !variable.IsField()) return nullptr;
    const CTrvDataLayer* layer =
        project->dataModel->FindLayer(variable.channel.file, variable.channel.channel);
    if (!layer) return nullptr;
    if (variable.isMeasure) return CTrvDataModel::FindMeasure(*layer, variable.field);
    return CTrvDataModel::FindEnum(*layer, variable.field);
}

std::string CTrvVariables::GetNotice(std::string_view filter) const {
    if (!m_document.GetProject()) return std::string(GetText(EText::variablesNoProject));
    const bool hasChannels =
        std::ranges::any_of(m_tree, [](const SVariableNode& file) { return !file.children.empty(); });
    if (!hasChannels) return std::string(GetText(EText::variablesNoFiles));
    return FormatText(EText::variablesNoMatch, {filter});
}

// --- Values

void CTrvVariables::ShowValuesOf(const std::set<SChannelKey>& channels) {
    m_valued = channels;
    Follow(nullptr);
    if (m_onValues) m_onValues();
}

std::string CTrvVariables::GetValue(const SVariable& variable, std::string& why) const {
    const SSample& sample = m_moments.Get(variable.channel, 0);
    if (!variable.IsField() || !sample.packet) {
        if (variable.IsField() && sample.state == ESample::noTime && !m_state.GetCursor(ECursor::first))
            why = GetText(EText::whyNoCursor);
        if (sample.state == ESample::outside)
            why = FormatText(EText::whyOutside,
                             {m_timeText.Format(sample.first), m_timeText.Format(sample.last)});
        if (sample.state == ESample::noPackets) why = GetText(EText::whyNoPackets);
        return {};
    }
    if (!variable.isMeasure) {
        std::uint32_t state = 0;
        if (sample.packet->GetStatusValue(variable.field, state) && state < variable.states.size())
            return variable.states[state];
        why = GetText(EText::whyNoState);
        return {};
    }
    double value = 0;
    if (sample.packet->GetDouble(variable.field, value) && std::isfinite(value))
        return CFieldText(m_adaptors, variable.nature).Format(value);
    why = GetText(EText::whyNoNumber);
    return {};
}

std::string CTrvVariables::DescribeSample(const SVariable& variable) const {
    const SSample& sample = m_moments.Get(variable.channel, 0);
    if (!variable.IsField() || !sample.packet || sample.state != ESample::found) return {};
    return FormatText(EText::sampleAtCursorTip,
                      {m_timeText.Format(sample.date), std::to_string(sample.place.number),
                       std::to_string(sample.place.position.Get())});
}

// --- Tree

void CTrvVariables::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintDataFileRemoved: UpdateTree(object); break; // it exists until all views know
    case hintRefresh:
    case hintDataFileAdded:
    case hintDataFileTimeOffsetChanged:
    case hintSimulationParametersChanged: // the reference of UTC
    case hintOutputFileNameChanged:
    case hintDataLayersRebuilt: UpdateTree(); break;
    case hintRunStarted:
    case hintRunEnded:
    case hintChannelFound:
    case hintDataFileContentChanged:
        UpdateTree();
        m_extents.Refresh(object);
        m_moments.Refresh(object);
        break;
    default: break;
    }
}

void CTrvVariables::UpdateTree(const Outils_Objets::CObject* leaving) {
    m_timeText = MakeTimeText(m_document, m_adaptors);
    Follow(leaving);
    DescribeTree(leaving);
    if (m_onTree) m_onTree();
}

void CTrvVariables::Follow(const Outils_Objets::CObject* leaving) {
    std::set<SChannelKey> withData, valued;
    if (const auto* project = m_document.GetProject())
        for (const auto& layer : project->dataModel->m_layers) {
            const SChannelKey key{layer->m_dataFile, layer->m_channelNumber};
            if (!key.file || key.file == leaving) continue;
            if (layer->m_hasData) withData.insert(key);
            if (m_valued.contains(key)) valued.insert(key);
        }
    m_extents.Follow(withData);
    m_moments.Follow(valued);
}

std::string CTrvVariables::DescribeExtent(const SChannelKey& channel, bool hasData) const {
    const SChannelExtent* extent = m_extents.Find(channel);
    if (!extent) return hasData ? std::string() : std::string(GetText(EText::channelSilent));
    const CDateTimeSpan origin = ToSpan(channel.file->timeOffset);
    return FormatText(EText::channelCounts,
                      {std::to_string(extent->count), m_timeText.Format(extent->first + origin),
                       m_timeText.Format(extent->last + origin)});
}

SVariableNode CTrvVariables::DescribeChannel(const CTrvDataLayer& layer, const SVariable& file) const {
    const auto& settings = m_document.GetConfiguration();
    const auto& project = *m_document.GetProject();
    SVariableNode node;
    SVariable& channel = node.variable;
    channel = file;
    channel.kind = EVariable::channel;
    channel.object = &layer;
    channel.channel = {layer.m_dataFile, layer.m_channelNumber};
    channel.isSilent = !layer.m_hasData;
    const std::string label =
        MakeChannelLabel(layer.m_name, settings.Get(Cnf<"viewMetadata/translateChannelLabel">),
                         settings.Get(Cnf<"viewMetadata/displayChannelLabel">));
    const std::string extent = DescribeExtent(channel.channel, layer.m_hasData);
    channel.label = label + MakeFileSuffix(project, layer.m_dataFile) +
                    (extent.empty() ? std::string() : " (" + extent + ')');
    channel.tip = FormatText(
        EText::channelTip, {label, layer.m_name, std::to_string(layer.m_channelNumber), layer.m_description});
    if (!extent.empty()) channel.tip += '\n' + extent;
    const std::string words = file.words + ' ' + ToSmall(label) + ' ' + ToSmall(layer.m_name);
    channel.words = words;

    const auto append = [&](const CTrvFieldDef& field, EVariable kind) -> SVariable& {
        SVariable variable = channel;
        variable.kind = kind;
        variable.object = &field;
        variable.field = field.m_index;
        variable.label = field.m_name;
        variable.tip =
            FormatText(EText::fieldTip, {field.m_description.empty() ? field.m_name : field.m_description,
                                         field.m_name, layer.m_name, std::to_string(field.m_index),
                                         Outils_Fichiers::ToText(layer.m_dataFile->path)});
        variable.words = words + ' ' + ToSmall(field.m_name);
        node.children.push_back({std::move(variable), {}});
        return node.children.back().variable;
    };
    for (const auto& measure : layer.m_measures) {
        SVariable& variable = append(*measure, GetVariableKind(measure->m_nature));
        variable.isMeasure = true;
        variable.nature = measure->m_nature;
        const std::string unit = CFieldText(m_adaptors, measure->m_nature).GetUnit();
        variable.words += ' ' + ToSmall(unit);
        if (!unit.empty()) variable.tip += '\n' + FormatText(EText::unitTip, {unit});
    }
    for (const auto& enumeration : layer.m_enums) {
        SVariable& variable = append(*enumeration, EVariable::state);
        for (const auto& literal : enumeration->m_literals) variable.states.push_back(literal->m_name);
    }
    return node;
}

void CTrvVariables::DescribeTree(const Outils_Objets::CObject* leaving) {
    m_tree.clear();
    const auto* project = m_document.GetProject();
    if (!project) return;
    for (const CTrvDataFile* file : project->simulationParameters->GetDataFiles()) {
        if (file == leaving) continue;
        SVariableNode node;
        const std::string role(GetText(RoleOf(*project, *file)));
        node.variable.object = file;
        node.variable.label = Outils_Fichiers::ToText(file->path.filename());
        node.variable.tip = role + '\n' + Outils_Fichiers::ToText(file->path);
        node.variable.words = ToSmall(node.variable.label + ' ' + role);
        node.variable.colour = GetFileColour(*project, file, m_document.GetConfiguration());
        for (const auto& layer : project->dataModel->m_layers)
            if (layer->m_dataFile == file) node.children.push_back(DescribeChannel(*layer, node.variable));
        m_tree.push_back(std::move(node));
    }
}

} // namespace Presentation_Tarvel_Graphics
