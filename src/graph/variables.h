// What the files of a project offer to be shown, as a tree of values: files, their channels, the fields of
// these. Knows no widget. UI thread.
#pragma once

#include "graph/channel_extents.h"
#include "graph/channel_moments.h"
#include "graph/field_text.h"
#include "graph/view_state.h"

#include <functional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Presentation_Tarvel_Graphics {

// What a field is, for its icon.
enum class EVariable {
    file,
    channel,
    place,
    height,
    angle,
    speed,
    acceleration,
    turnRate,
    temperature,
    distance,
    time,
    deviation,
    number,
    state,
    count
};

// The kind of a measure by its nature.
EVariable GetVariableKind(std::uint32_t nature);

// `object` is the CTrvDataFile, CTrvDataLayer or field, which may be gone: it is compared only.
struct SVariable {
    EVariable kind = EVariable::file;
    const void* object = nullptr;
    SChannelKey channel; // of a channel and its fields
    std::string label;
    std::string tip;
    std::string words; // what the filter looks in, in small letters
    std::uint32_t field = 0;
    std::uint32_t nature = 0; // of a measure
    bool isMeasure = false;
    std::vector<std::string> states; // of an enumeration
    Outils_Plot2D::Colour colour = 0;
    bool isSilent = false; // no packet of the channel was seen

    bool IsField() const { return kind != EVariable::file && kind != EVariable::channel; }
    friend bool operator==(const SVariable&, const SVariable&) = default;
};

struct SVariableNode {
    SVariable variable;
    std::vector<SVariableNode> children;
};

// Whether every word of the filter is part of the text. An empty filter takes everything.
bool MatchesFilter(std::string_view filter, std::string_view words);

class CTrvVariables final : public Application_Tarvel::IDocumentView {
  public:
    // Registers with the document. All three must outlive the object.
    CTrvVariables(CTrvDocument& document, CViewState& state, const Outils_Valeurs::CTrvAdaptors& adaptors);
    ~CTrvVariables() override;

    CTrvDocument& GetDocument() const { return m_document; }
    // `onTree` runs when another tree is to be shown, `onValues` when values of fields have changed.
    void SetOnChanged(std::function<void()> onTree, std::function<void()> onValues);

    // One node for each file of the project, in the order of the project.
    const std::vector<SVariableNode>& GetTree() const { return m_tree; }
    // The field of the dictionary; null when it is gone.
    const Metier_Tarvel_DataModel::CTrvFieldDef* FindField(const SVariable& variable) const;
    // What an empty tree says; `filter` is the one that leaves nothing of it.
    std::string GetNotice(std::string_view filter) const;

    // Values are asked for only of these channels, and of none at first.
    void ShowValuesOf(const std::set<SChannelKey>& channels);
    // The value at the cursor with its unit, or empty with the reason. / The sample, for a tool tip.
    std::string GetValue(const SVariable& variable, std::string& why) const;
    std::string DescribeSample(const SVariable& variable) const;

    // Answers are under way.
    bool IsLoading() const { return m_extents.IsLoading() || m_moments.IsLoading(); }
    // Takes labels and units from the settings again.
    void Reformat() { UpdateTree(); }
    void OnUpdate(Application_Tarvel::EHint hint, const Outils_Objets::CObject* object) override;

  private:
    void UpdateTree(const Outils_Objets::CObject* leaving = nullptr);
    void Follow(const Outils_Objets::CObject* leaving);
    void DescribeTree(const Outils_Objets::CObject* leaving);
    SVariableNode DescribeChannel(const Metier_Tarvel_DataModel::CTrvDataLayer& layer,
                                  const SVariable& file) const;
    std::string DescribeExtent(const SChannelKey& channel, bool hasData) const;

    CTrvDocument& m_document;
    CViewState& m_state;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    std::function<void()> m_onTree, m_onValues;
    SSimulationTimeText m_timeText;
    std::vector<SVariableNode> m_tree;
    std::set<SChannelKey> m_valued;
    CTrvChannelExtents m_extents;
    CTrvChannelMoments m_moments;
    CViewState::CSubscription m_subscription;
};

} // namespace Presentation_Tarvel_Graphics
