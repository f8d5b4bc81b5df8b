// The rows of a grid that stand for objects of the project and their properties. UI thread.
#pragma once

#include "document/edits.h"
#include "grid/grid_control.h"
#include "model/properties/classes.h"
#include "model/rules/rule_report.h"

#include <functional>

namespace Presentation_Tarvel_Grid {

using Metier_Tarvel_Proprietes::SProperty;
using Metier_Tarvel_Proprietes::SPropertyClass;

// What the rows of one project share. All must outlive the rows.
struct SProjectGrid {
    CHierarchicalGridControl& grid;
    Application_Tarvel::CTrvDocument& document;
    const Metier_Tarvel_Proprietes::SPropertyContext& context;
    const Metier_Tarvel_Regles::CTrvRuleReport& report; // of the last validation
};

// A value of an object: shown, read and written by its row of the model's properties. The edit that has the
// value among its own makes the change.
class CPropertyItem final : public CHGItem {
  public:
    // `owner` is `target`, of which the views hear, or belongs to it.
    CPropertyItem(const SProjectGrid& project, const SProperty& property, CObject& target, CObject& owner);

    std::string GetTitle() const override;
    std::string GetValue() const override;
    std::string GetHelp() const override;
    std::string GetFault() const override;
    bool IsEditable() const override { return m_isEditable; }
    bool IsVisible() const override { return !m_property.isVisible || m_property.isVisible(m_owner); }
    std::span<const std::string> GetChoices() const override;
    int GetChoice() const override;
    std::string Write(std::string_view text) override;
    const CObject* GetObject() const override { return &m_owner; }
    const SProperty& GetProperty() const { return m_property; }

  private:
    const SProjectGrid& m_project;
    const SProperty& m_property;
    CObject& m_target;
    CObject& m_owner;
    const bool m_isEditable;
};

// An object: its title, and as a value the line of all its properties where that is short.
class CObjectItem final : public CHGItem {
  public:
    // `note` may be empty.
    CObjectItem(const SProjectGrid& project, CObject& object, Outils_Texte::EText title,
                std::function<std::string()> note = {}, bool hasLine = false);

    std::string GetTitle() const override;
    std::string GetNote() const override { return m_note ? m_note() : std::string(); }
    std::string GetValue() const override;
    std::string GetFault() const override;
    const CObject* GetObject() const override { return &m_object; }
    CObject& GetOwned() const { return m_object; }
    // An object that belongs to this one and has no row: what is wrong with it, this row says.
    void AddHidden(const CObject& object) { m_hidden.push_back(&object); }
    // Identities only: the objects may be gone.
    const std::vector<const CObject*>& GetHidden() const { return m_hidden; }

  private:
    const SProjectGrid& m_project;
    CObject& m_object;
    const Outils_Texte::EText m_title;
    const std::function<std::string()> m_note;
    const bool m_hasLine;
    std::vector<const CObject*> m_hidden;
};

// A title over rows.
class CTitleItem final : public CHGItem {
  public:
    explicit CTitleItem(Outils_Texte::EText title) : CHGItem(ERowKind::section), m_title(title) {}
    std::string GetTitle() const override;

  private:
    const Outils_Texte::EText m_title;
};

// A title over the objects of a list; a list with a name of its own is called by that.
class CListItem final : public CHGItem {
  public:
    // `property` is a list of `owner`.
    CListItem(Outils_Texte::EText title, const SProperty& property, CObject& owner);

    std::string GetTitle() const override;
    std::string GetNote() const override; // how many
    const CObject* GetObject() const override { return &m_owner; }
    // The place of the object in the list; the number of objects when it is not there.
    std::size_t FindPlace(const CObject* object) const;
    // Null past the last.
    CObject* GetOwned(std::size_t place) const { return m_property.child(m_owner, place); }
    // A row that is none of the list, before its first; the later added comes first.
    void AddFront(std::unique_ptr<CHGItem> row);
    // How many of these there are.
    std::size_t GetFirst() const { return m_first; }

  private:
    const Outils_Texte::EText m_title;
    const SProperty& m_property;
    CObject& m_owner;
    std::size_t m_first = 0;
};

} // namespace Presentation_Tarvel_Grid
