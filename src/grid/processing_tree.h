// The rows of the processing panel: the whole project as a grid, kept in line with the project by the hints
// of the document, and checked by its rules after each change. UI thread.
#pragma once

#include "document/document_base.h"
#include "document/hints.h"
#include "grid/property_item.h"
#include "model/simulation_time_adaptor.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace Metier_Tarvel {
class CTrvRejectionGroup;
class CTrvSensor;
class CTrvSensorUsbl;
} // namespace Metier_Tarvel

namespace Presentation_Tarvel_Grid {

class CProcessingTree {
  public:
    // Both must outlive the tree. Empty until Rebuild.
    CProcessingTree(Application_Tarvel::CTrvDocument& document, const Outils_Valeurs::CTrvAdaptors& adaptors);
    ~CProcessingTree();

    CHierarchicalGridControl& GetGrid() { return m_grid; }

    // Rows for the whole project; none without a project.
    void Rebuild();
    // Inserts, removes or refreshes what the hint names, and checks the rules. Every other row stays.
    void OnUpdate(Application_Tarvel::EHint hint, const CObject* object);
    // Takes units and notations of the settings again.
    void Reformat();

    // What is known of a channel with packets.
    struct SExtent {
        std::uint64_t packets;
        Outils_Temps::CDateTimeSpan first, last; // on the clock of the file
    };
    // Where the notes of the sensors find it; nothing as long as it is not known. Empty, as at the first, for
    // nowhere.
    using CFindExtent = std::function<std::optional<SExtent>(const Metier_Tarvel::CTrvDataFileChannel&)>;
    void SetExtents(CFindExtent find) { m_findExtent = std::move(find); }

    // The faults of the project. O(1).
    std::size_t GetFaultCount() const { return m_report.GetViolations().size(); }
    // The row at fault after the row, in the order of the tree, and round again from its end; null when
    // nothing is wrong.
    CHGItem* FindNextFault(const CHGItem* after) const;
    // The row of a property of the object, or of the object; null for what the tree does not show.
    CHGItem* Find(const CObject* object, const SProperty* property = nullptr) const;
    CHGItem* GetParametersItem() const { return m_parametersItem; }
    // Lists whose objects are collapsed at first.
    bool IsCollection(const CHGItem& item) const { return m_collections.contains(&item); }

    // The row that the last hint has added; null for none. Once.
    const CHGItem* TakeAdded() { return std::exchange(m_added, nullptr); }

    // Whether the object of the row can be removed from the project, and does so; false when it was not.
    bool CanRemove(const CHGItem* item) const;
    bool Remove(const CHGItem* item);
    // What the commands that add an instruction act on: the group or sensor of the row or above it; null for
    // none.
    Metier_Tarvel::CTrvRejectionGroup* FindGroup(const CHGItem* item) const;
    Metier_Tarvel::CTrvSensorUsbl* FindUsbl(const CHGItem* item) const;
    Metier_Tarvel::CTrvSensor* FindSensor(const CHGItem* item) const;

  private:
    struct SSession; // what one project needs

    std::unique_ptr<CHGItem> MakeObject(CObject& object, Outils_Texte::EText title, CObject* target,
                                        bool hasLine);
    void Fill(CHGItem& item, CObject& object, CObject& target);
    std::unique_ptr<CListItem> MakeList(Outils_Texte::EText title, const SProperty& property, CObject& owner);
    void Hide(CHGItem& item, CObject& owner, const SProperty& property);
    void Forget(const CHGItem& item);
    void OnAdded(const CObject* object);
    void OnRemoved(const CObject* object);
    void Validate();
    std::string GetSensorNote(const Metier_Tarvel::CTrvSensor& sensor) const;
    std::string DescribeExtent(const Metier_Tarvel::CTrvSensor& sensor, const SExtent& extent) const;

    Application_Tarvel::CTrvDocument& m_document;
    const Outils_Valeurs::CTrvAdaptors& m_adaptors;
    Metier_Tarvel::CTrvSimulationTimeAdaptor m_time;
    Metier_Tarvel_Regles::CTrvRuleReport m_report;
    CHierarchicalGridControl m_grid;
    std::unique_ptr<SSession> m_session;
    std::unordered_map<const CObject*, CHGItem*> m_objects; // the rows of objects
    std::unordered_map<const CHGItem*, CListItem*> m_lists; // each under itself
    std::unordered_set<const CHGItem*> m_collections;
    CHGItem* m_parametersItem = nullptr;
    const CHGItem* m_added = nullptr;
    CFindExtent m_findExtent;
};

} // namespace Presentation_Tarvel_Grid
