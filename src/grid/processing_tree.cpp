#include "grid/processing_tree.h"

#include "config/config_file.h"
#include "document/document.h"
#include "foundation/texts.h"
#include "model/properties/rows.h"
#include "model/sensors.h"

#include <algorithm>

namespace Presentation_Tarvel_Grid {

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Proprietes;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

enum class EEffect { none, refresh, add, remove };

struct SHintRow {
    EHint first, last;
    EEffect effect;
};
// What a hint does to the rows; a hint that is not here does nothing.
constexpr SHintRow kHints[] = {
    {hintDataFileAdded, hintDataFileAdded, EEffect::add},
    {hintDataFileRemoved, hintDataFileRemoved, EEffect::remove},
    {hintSensorAdded, hintRejectionAdded, EEffect::add},
    {hintRejectionChanged, hintSensorChanged, EEffect::refresh},
    {hintSensorRemoved, hintRejectionRemoved, EEffect::remove},
    {hintZuptAdded, hintAltitudeModeAdded, EEffect::add},
    {hintZuptChanged, hintAltitudeModeChanged, EEffect::refresh},
    {hintZuptRemoved, hintAltitudeModeRemoved, EEffect::remove},
    {hintOutputFileNameChanged, hintOutputFileNameChanged, EEffect::refresh},
    {hintChannelFound, hintChannelFound, EEffect::refresh},
    {hintDataLayersRebuilt, hintDataLayersRebuilt, EEffect::refresh},
    {hintDvlStdDevChanged, hintOdometerStdDevChanged, EEffect::refresh},
    {hintFilteringAdded, hintFilteringAdded, EEffect::add},
    {hintFilteringChanged, hintFilteringChanged, EEffect::refresh},
    {hintFilteringRemoved, hintFilteringRemoved, EEffect::remove},
};

EEffect EffectOf(EHint hint) {
    const auto row = std::ranges::find_if(
        kHints, [hint](const SHintRow& entry) { return entry.first <= hint && hint <= entry.last; });
    return row == std::end(kHints) ? EEffect::none : row->effect;
}

// How an object of a class leaves the project.
struct SRemoval {
    const CRuntimeClass& (*runtimeClass)();
    bool (*remove)(CTrvDocumentEdits edits, CObject& object);
};
template <class Class, const auto& Row>
constexpr SRemoval Removal() {
    return {
        []() -> const CRuntimeClass& { return Class::Class(); },
        [](CTrvDocumentEdits edits, CObject& object) { return edits.Do(Row, static_cast<Class&>(object)); }};
}
constexpr SRemoval kRemovals[] = {
    Removal<CTrvDataFile, Edits::kRemoveDataFile>(),
    Removal<CTrvSensor, Edits::kRemoveSensor>(),
    Removal<CTrvRejectionInstruction, Edits::kRemoveRejectionInstruction>(),
    Removal<CTrvZupt, Edits::kRemoveZupt>(),
    Removal<CTrvOutputRate, Edits::kRemoveOutputRate>(),
    Removal<CTrvAltitudeMode, Edits::kRemoveAltitudeMode>(),
    Removal<CTrvHorizontalFilteringInstruction, Edits::kRemoveHorizontalFilteringInstruction>(),
};

const SRemoval* FindRemoval(const CObject& object) {
    const auto row = std::ranges::find_if(
        kRemovals, [&object](const SRemoval& entry) { return object.IsKindOf(entry.runtimeClass()); });
    return row == std::end(kRemovals) ? nullptr : row;
}

// The object of the row or of one above it that is of the class; null for none.
template <class Class>
Class* FindObject(const CHGItem* item) {
    for (; item; item = item->GetParent())
        if (const CObject* object = item->GetObject(); object && object->IsKindOf(Class::Class()))
            return static_cast<Class*>(const_cast<CObject*>(object));
    return nullptr;
}

// The next row in the order in which a tree shows them; null after the last.
const CHGItem* GetNext(const CHGItem* item) {
    if (const CHGItem* child = item->GetChild(0)) return child;
    for (; item->GetParent(); item = item->GetParent())
        if (const CHGItem* next = item->GetParent()->GetChild(item->GetIndex() + 1)) return next;
    return nullptr;
}

} // namespace

struct CProcessingTree::SSession {
    SPropertyContext context;
    SProjectGrid project;

    SSession(CProcessingTree& tree, const CTrvSimulationParameters& parameters)
        : context{tree.m_adaptors, tree.m_time, parameters},
          project{tree.m_grid, tree.m_document, context, tree.m_report} {}
};

CProcessingTree::CProcessingTree(CTrvDocument& document, const Outils_Valeurs::CTrvAdaptors& adaptors)
    : m_document(document),
      m_adaptors(adaptors),
      m_time(adaptors.GetDateTimeSpan(), adaptors.GetDateTime()) {}

CProcessingTree::~CProcessingTree() = default;

void CProcessingTree::Rebuild() {
    m_grid.Reset({});
    m_objects.clear();
    m_lists.clear();
    m_collections.clear();
    m_parametersItem = nullptr;
    m_added = nullptr;
    m_report = {};
    m_session.reset();
    CTrvProject* project = m_document.GetProject();
    if (!project) return;
    m_time.Configure(m_document.GetConfiguration());
    CTrvSimulationParameters& run = *project->simulationParameters;
    m_session = std::make_unique<SSession>(*this, run);

    std::vector<std::unique_ptr<CHGItem>> rows;
    auto files = MakeList(EText::dataFiles, Rows::kExternalFiles, run);
    auto input = MakeObject(*run.mainInputFile, EText::inputFile, nullptr, false);
    auto output = MakeObject(*run.outputFile, EText::outputFile, nullptr, false);
    CListItem& list = *files;
    list.AddFront(std::move(output));
    list.AddFront(std::move(input));
    rows.push_back(std::move(files));
    rows.push_back(MakeObject(run, EText::simulationParameters, nullptr, false));
    m_parametersItem = rows.back().get();
    rows.push_back(MakeObject(*run.nelixConfiguration, EText::configuration, nullptr, false));
    for (const auto& [title, property] :
         {std::pair(EText::sensors, &Rows::kSensors), std::pair(EText::zuptCollection, &Rows::kZupts),
          std::pair(EText::outputRateCollection, &Rows::kOutputRates),
          std::pair(EText::altitudeModeCollection, &Rows::kAltitudeModes)}) {
        rows.push_back(MakeList(title, *property, run));
        m_collections.insert(rows.back().get());
    }
    run.Validate(m_report);
    m_grid.Reset(std::move(rows));
}

void CProcessingTree::OnUpdate(EHint hint, const CObject* object) {
    if (hint == hintRefresh) return Rebuild();
    if (!m_session) return;
    switch (EffectOf(hint)) {
    case EEffect::none: return;
    case EEffect::add: OnAdded(object); break;
    case EEffect::remove: OnRemoved(object); break;
    case EEffect::refresh: break; // every row is read again below
    }
    Validate();
}

void CProcessingTree::Reformat() {
    m_time.Configure(m_document.GetConfiguration());
    m_grid.Changed(m_grid.GetRoot());
}

void CProcessingTree::Validate() {
    m_report = {};
    m_document.GetProject()->simulationParameters->Validate(m_report);
    m_grid.Changed(m_grid.GetRoot());
}

// --- Rows

std::unique_ptr<CHGItem> CProcessingTree::MakeObject(CObject& object, EText title, CObject* target,
                                                     bool hasLine) {
    std::function<std::string()> note;
    if (object.IsKindOf(CTrvSensor::Class()))
        note = [this, &sensor = static_cast<const CTrvSensor&>(object)] { return GetSensorNote(sensor); };
    auto item = std::make_unique<CObjectItem>(m_session->project, object, title, std::move(note), hasLine);
    Fill(*item, object, target ? *target : object);
    m_objects.insert_or_assign(&object, item.get());
    return item;
}

// An object with an edit of its own is the target of its changes; any other belongs to `target`.
void CProcessingTree::Fill(CHGItem& item, CObject& object, CObject& target) {
    const SPropertyClass* described = FindPropertyClass(object);
    if (!described) return;
    CHGItem* deviations = nullptr; // the section of the standard deviations
    for (const SProperty* property : described->rows) {
        if (property->isExpert && !m_document.IsExpertMode()) {
            Hide(item, object, *property);
            continue;
        }
        if (!property->child) {
            CObject& owner = CTrvDocumentEdits::CanChange(object, object, *property) ? object : target;
            item.Add(std::make_unique<CPropertyItem>(m_session->project, *property, owner, object));
        } else if (property == &Rows::kRejections) {
            // A group is the list of its instructions.
            for (std::size_t i = 0; CObject* group = property->child(object, i); ++i)
                m_objects[group] = &item.Add(MakeList(property->label, Rows::kGroupInstructions, *group));
        } else if (property->isList) {
            item.Add(MakeList(property->label, *property, object));
        } else if (CObject* child = property->child(object, 0)) {
            const EText title =
                property->label == EText::none ? FindPropertyClass(*child)->title : property->label;
            const auto* instruction = dynamic_cast<const CTrvStdDevInstruction*>(child);
            if (instruction) deviations = &item.Add(std::make_unique<CTitleItem>(title));
            const bool isLeast = property == &Rows::kMinimumValue;
            CHGItem& above = deviations && (instruction || isLeast) ? *deviations : item;
            const EText own = !instruction             ? title
                              : instruction->isDefault ? EText::stdDevDefaultTitle
                                                       : EText::filtering;
            above.Add(MakeObject(*child, own, &target, property->isInline));
        }
    }
}

// A rule can be broken by what only experts see: the row of the owner then says so.
void CProcessingTree::Hide(CHGItem& item, CObject& owner, const SProperty& property) {
    auto* row = dynamic_cast<CObjectItem*>(&item);
    if (!row || !property.child) return;
    for (std::size_t i = 0; CObject* child = property.child(owner, i); ++i) {
        row->AddHidden(*child);
        m_objects.insert_or_assign(child, row);
        if (const SPropertyClass* described = FindPropertyClass(*child))
            for (const SProperty* below : described->rows) Hide(item, *child, *below);
    }
}

std::unique_ptr<CListItem> CProcessingTree::MakeList(EText title, const SProperty& property, CObject& owner) {
    auto list = std::make_unique<CListItem>(title, property, owner);
    for (std::size_t i = 0; CObject* child = property.child(owner, i); ++i)
        list->Add(MakeObject(*child, FindPropertyClass(*child)->title, nullptr, false));
    m_lists.emplace(list.get(), list.get());
    return list;
}

void CProcessingTree::OnAdded(const CObject* object) {
    if (!object || m_objects.contains(object)) return;
    for (const auto& [key, list] : m_lists) {
        const auto place = list->FindPlace(object);
        CObject* child = list->GetOwned(place);
        if (!child) continue;
        m_added = &m_grid.Insert(*list, list->GetFirst() + place,
                                 MakeObject(*child, FindPropertyClass(*child)->title, nullptr, false));
        return;
    }
}

void CProcessingTree::OnRemoved(const CObject* object) {
    const auto found = m_objects.find(object);
    if (found == m_objects.end()) return;
    CHGItem& item = *found->second;
    Forget(item);
    m_grid.Remove(item);
}

// By the rows alone: the objects may have gone.
void CProcessingTree::Forget(const CHGItem& item) {
    m_objects.erase(item.GetObject());
    if (const auto* row = dynamic_cast<const CObjectItem*>(&item))
        for (const CObject* hidden : row->GetHidden()) m_objects.erase(hidden);
    for (std::size_t i = 0; const CHGItem* child = item.GetChild(i); ++i) {
        if (child->GetChildCount() == 0 && child->GetKind() != ERowKind::section) continue;
        m_lists.erase(child);
        Forget(*child);
    }
}

// --- What is known

std::string CProcessingTree::GetSensorNote(const CTrvSensor& sensor) const {
    if (!sensor.channel) return std::string(GetText(EText::noteNoChannel));
    std::string note = sensor.channel->name;
    const auto* project = m_document.GetProject();
    const auto* layer = project && project->dataModel
                            ? project->dataModel->FindLayer(sensor.channel->file, sensor.channel->id)
                            : nullptr;
    const bool isKnown = m_document.GetFiles() && !m_document.GetFiles()->IsAnalysing();
    if (const auto extent = m_findExtent ? m_findExtent(*sensor.channel) : std::nullopt)
        note.append(", ").append(DescribeExtent(sensor, *extent));
    else if (layer && !layer->m_hasData && isKnown)
        note.append(", ").append(GetText(EText::noteNoPackets));
    const CLeverArm* arm = const_cast<CTrvSensor&>(sensor).GetLeverArm();
    if (arm && arm->xv1 == 0.0 && arm->xv2 == 0.0 && arm->xv3 == 0.0)
        note.append(", ").append(GetText(EText::noteNoArm));
    return note;
}

std::string CProcessingTree::DescribeExtent(const CTrvSensor& sensor, const SExtent& extent) const {
    const auto& run = *m_document.GetProject()->simulationParameters;
    // On the clock of the recording, as the period is.
    const auto offset = ToSpan(sensor.channel->file->timeOffset);
    const auto first = extent.first + offset, last = extent.last + offset;
    std::string text = FormatText(EText::notePackets, {std::to_string(extent.packets)});
    const auto show = [&](Outils_Temps::CDateTimeSpan date) {
        std::string shown;
        m_time.ValueToText(ToStoredTime(date), run, shown);
        return shown;
    };
    text.append(", ").append(FormatText(EText::noteDates, {show(first), show(last)}));
    if (last < ToSpan(run.begin) || first > ToSpan(run.end))
        text.append(", ").append(GetText(EText::noteOutsidePeriod));
    return text;
}

CHGItem* CProcessingTree::FindNextFault(const CHGItem* after) const {
    if (m_report.IsEmpty()) return nullptr;
    const CHGItem& root = m_grid.GetRoot();
    const CHGItem* start = after ? after : &root;
    const CHGItem* item = start;
    do {
        item = GetNext(item);
        if (!item) item = &root;
        if (item->IsVisible() && !item->GetFault().empty() && !item->HasFaultBelow())
            return const_cast<CHGItem*>(item);
    } while (item != start);
    return nullptr;
}

CHGItem* CProcessingTree::Find(const CObject* object, const SProperty* property) const {
    const auto found = m_objects.find(object);
    CHGItem* const item = found == m_objects.end() ? nullptr : found->second;
    if (!property) return item;
    const CHGItem* end = item;
    while (end && !(end->GetParent() && end->GetParent()->GetChild(end->GetIndex() + 1)))
        end = end->GetParent();
    const CHGItem* const last = end ? end->GetParent()->GetChild(end->GetIndex() + 1) : nullptr;
    const auto search = [property](const CHGItem* from, const CHGItem* to) -> CHGItem* {
        for (const CHGItem* row = from; row && row != to; row = GetNext(row))
            if (const auto* value = dynamic_cast<const CPropertyItem*>(row);
                value && &value->GetProperty() == property)
                return const_cast<CHGItem*>(row);
        return nullptr;
    };
    if (item)
        if (CHGItem* row = search(item, last)) return row;
    // A rule on the whole run may be about a value of the unit.
    CHGItem* row = search(&m_grid.GetRoot(), nullptr);
    return row ? row : item;
}

bool CProcessingTree::CanRemove(const CHGItem* item) const {
    const auto* row = dynamic_cast<const CObjectItem*>(item);
    if (!row || !FindRemoval(row->GetOwned())) return false;
    const auto& run = *m_document.GetProject()->simulationParameters;
    return row->GetObject() != run.mainInputFile.get() && row->GetObject() != run.outputFile.get();
}

bool CProcessingTree::Remove(const CHGItem* item) {
    if (!CanRemove(item)) return false;
    CObject& object = static_cast<const CObjectItem*>(item)->GetOwned();
    return FindRemoval(object)->remove(m_document.GetEdits(), object);
}

CTrvRejectionGroup* CProcessingTree::FindGroup(const CHGItem* item) const {
    return FindObject<CTrvRejectionGroup>(item);
}
CTrvSensorUsbl* CProcessingTree::FindUsbl(const CHGItem* item) const {
    return FindObject<CTrvSensorUsbl>(item);
}
CTrvSensor* CProcessingTree::FindSensor(const CHGItem* item) const { return FindObject<CTrvSensor>(item); }

} // namespace Presentation_Tarvel_Grid
