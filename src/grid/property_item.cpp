#include "grid/property_item.h"

#include "foundation/numbers.h"
#include "foundation/texts.h"
#include "model/properties/rows.h"
#include "model/words.h"
#include "values/adaptors.h"

#include <memory>

namespace Presentation_Tarvel_Grid {

using namespace Metier_Tarvel_Proprietes;
using Application_Tarvel::CTrvDocumentEdits;
using Metier_Tarvel::EWordList;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;

namespace {

// What a dialog of its own chooses.
bool HasDialog(const SProperty& property) {
    return &property == &Rows::kRoughMisalignment || &property == &Rows::kChannel ||
           &property == &Rows::kDataFile;
}

ERowKind KindOf(const SProperty& property) {
    if (HasDialog(property)) return ERowKind::dialog;
    if (!property.set) return ERowKind::staticText;
    switch (property.form.form) {
    case EPropertyForm::word:
    case EPropertyForm::flag: return ERowKind::list;
    case EPropertyForm::color: return ERowKind::color;
    default: return ERowKind::edit;
    }
}

std::vector<std::string> GetWords(const Metier_Tarvel::SWordList& list) {
    std::vector<std::string> words;
    for (int i = 0; i < list.count; ++i) words.emplace_back(Metier_Tarvel::GetWord(list.list, i));
    return words;
}
std::vector<std::string> GetFlagWords() {
    return {std::string(GetText(EText::no)), std::string(GetText(EText::yes))};
}

// The value that a new object of the class has; empty when none can be made.
std::string GetDefault(const SPropertyContext& context, const SProperty& property, const CObject& like) {
    const auto create = like.GetRuntimeClass().create;
    if (!create || &property == &Rows::kGpsAltitude) return {}; // the latter is a value of the project
    return Show(property, context, *create());
}

// Some rules on the whole run are about values that another object has: its rows say what is wrong.
bool IsAboutRowsOf(const Metier_Tarvel_Regles::CTrvRule& rule, const CObject& object) {
    const auto properties = rule.GetProperties();
    const SPropertyClass* described = FindPropertyClass(object);
    return properties.empty() || !described ||
           std::ranges::any_of(properties, [&](const SProperty* property) {
               return std::ranges::find(described->rows, property) != described->rows.end();
           });
}

// "0 to 360"; empty without a bound.
std::string GetRangeText(const SRange& range) {
    const bool hasLeast = range.least > -std::numeric_limits<double>::infinity();
    const bool hasGreatest = range.greatest < std::numeric_limits<double>::infinity();
    const std::string least = hasLeast ? Outils_Texte::FormatShortest(range.least) : std::string();
    const std::string greatest = hasGreatest ? Outils_Texte::FormatShortest(range.greatest) : std::string();
    if (hasLeast && hasGreatest) return FormatText(EText::helpRange, {least, greatest});
    if (hasLeast) return FormatText(range.isLeastExcluded ? EText::helpAbove : EText::helpLeast, {least});
    return hasGreatest ? FormatText(EText::helpGreatest, {greatest}) : std::string();
}

// The units in which the value can be typed; empty for a value without.
std::string GetUnitsText(const SPropertyContext& context, const SProperty& property) {
    if (property.form.form != EPropertyForm::quantity) return {};
    std::string units;
    for (const auto& [symbol, unit] :
         context.adaptors.Get(static_cast<Outils_Valeurs::EQuantity>(property.form.detail)).GetUnits())
        units.append(units.empty() ? "" : ", ").append(symbol);
    return FormatText(EText::helpUnits, {units});
}

} // namespace

CPropertyItem::CPropertyItem(const SProjectGrid& project, const SProperty& property, CObject& target,
                             CObject& owner)
    : CHGItem(KindOf(property)),
      m_project(project),
      m_property(property),
      m_target(target),
      m_owner(owner),
      m_isEditable(HasDialog(property) || CTrvDocumentEdits::CanChange(target, owner, property)) {}

std::string CPropertyItem::GetTitle() const { return std::string(GetText(m_property.label)); }
std::string CPropertyItem::GetValue() const { return Show(m_property, m_project.context, m_owner); }

std::string CPropertyItem::GetHelp() const {
    std::string help(GetText(m_property.help));
    if (!m_property.set || !m_isEditable) return help;
    if (const std::string range = GetRangeText(m_property.range); !range.empty()) help += '\n' + range;
    if (const std::string units = GetUnitsText(m_project.context, m_property); !units.empty())
        help += '\n' + units;
    if (const std::string value = GetDefault(m_project.context, m_property, m_owner); !value.empty())
        help += '\n' + FormatText(EText::helpDefault, {value});
    return help;
}

std::string CPropertyItem::GetFault() const {
    if (m_project.report.IsEmpty()) return {};
    // Some rules on the whole run are about a value of another object.
    const CObject* const places[] = {&m_owner, &m_project.context.parameters};
    for (const CObject* place : places)
        if (const auto* rule = m_project.report.FindFault(place, m_property))
            return std::string(rule->GetMessage());
    return {};
}

std::span<const std::string> CPropertyItem::GetChoices() const {
    if (GetKind() != ERowKind::list) return {};
    if (m_property.form.form == EPropertyForm::flag) return m_project.grid.GetList("flag", GetFlagWords);
    const auto& list = Metier_Tarvel::GetWordList(static_cast<EWordList>(m_property.form.detail));
    return m_project.grid.GetList(list.name, [&list] { return GetWords(list); });
}

int CPropertyItem::GetChoice() const {
    if (GetKind() != ERowKind::list) return -1;
    const CPropertyValue value = m_property.get(m_owner);
    if (const bool* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    const auto number = std::get<std::int64_t>(value);
    return number >= 0 && number < static_cast<std::int64_t>(GetChoices().size()) ? static_cast<int>(number)
                                                                                  : -1;
}

std::string CPropertyItem::Write(std::string_view text) {
    const SReading reading = Read(m_property, m_project.context, m_owner, text);
    if (!reading.value) return std::string(GetText(reading.refusal));
    if (*reading.value == m_property.get(m_owner)) return {};
    m_project.document.GetEdits().Change(m_target, m_owner, m_property, *reading.value);
    return {};
}

CObjectItem::CObjectItem(const SProjectGrid& project, CObject& object, EText title,
                         std::function<std::string()> note, bool hasLine)
    : CHGItem(ERowKind::section),
      m_project(project),
      m_object(object),
      m_title(title),
      m_note(std::move(note)),
      m_hasLine(hasLine) {}

std::string CObjectItem::GetTitle() const { return std::string(GetText(m_title)); }
std::string CObjectItem::GetValue() const {
    return m_hasLine ? ShowLine(m_project.context, m_object) : std::string();
}
std::string CObjectItem::GetFault() const {
    if (m_project.report.IsEmpty()) return {};
    const auto find = [this](const CObject* object) -> std::string {
        if (!m_project.report.HasViolation(object)) return {};
        for (const auto& violation : m_project.report.GetViolations())
            if (violation.object == object && IsAboutRowsOf(*violation.rule, *object))
                return std::string(violation.rule->GetMessage());
        return {};
    };
    if (std::string fault = find(&m_object); !fault.empty()) return fault;
    for (const CObject* hidden : m_hidden)
        if (std::string fault = find(hidden); !fault.empty())
            return fault.append("\n").append(GetText(EText::gridExpertFault));
    return {};
}

std::string CTitleItem::GetTitle() const { return std::string(GetText(m_title)); }

CListItem::CListItem(EText title, const SProperty& property, CObject& owner)
    : CHGItem(ERowKind::section), m_title(title), m_property(property), m_owner(owner) {}

std::string CListItem::GetTitle() const {
    const auto* group = dynamic_cast<const Metier_Tarvel::CTrvRejectionGroup*>(&m_owner);
    return group && !group->name.empty() ? group->name : std::string(GetText(m_title));
}
std::string CListItem::GetNote() const {
    const std::size_t count = GetChildCount() - m_first;
    return count == 0 ? std::string() : std::to_string(count);
}
void CListItem::AddFront(std::unique_ptr<CHGItem> row) {
    Insert(0, std::move(row));
    ++m_first;
}
std::size_t CListItem::FindPlace(const CObject* object) const {
    std::size_t place = 0;
    while (const CObject* child = Metier_Tarvel_Proprietes::GetChild(m_property, m_owner, place)) {
        if (child == object) break;
        ++place;
    }
    return place;
}

} // namespace Presentation_Tarvel_Grid
