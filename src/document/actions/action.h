// The shapes of edits. Most are one line over these templates: they add an object, remove one, or write
// values to one, and differ by their row of the table.
#pragma once

#include "document/actions/action_table.h"
#include "document/user_action.h"
#include "foundation/texts.h"
#include "model/project.h"

#include <functional>
#include <tuple>
#include <utility>

namespace Application_Tarvel {

using Outils_Texte::EText;

using Metier_Tarvel::CTrvProject;
using Outils_Objets::CObject;

// An edit by its row. Without a project it does nothing and says nothing.
class CTrvTableAction : public CTrvUserAction {
  public:
    CTrvTableAction(CTrvDocument& document, EAction action)
        : CTrvUserAction(document), m_row(GetActionRow(action)) {}

    bool Do() final;
    const SActionRow& GetRow() const { return m_row; }

  protected:
    // Changes the model and ends with Changed or Refuse.
    virtual bool Perform(CTrvProject& project) = 0;

    // Marks the document modified and tells the views by the row's hint. True. A removed `object` is an
    // identity only.
    bool Changed(const CObject* object);
    // Shows the row's message, or another one. False.
    bool Refuse() { return Refuse(m_row.failureText); }
    bool Refuse(EText text);

  private:
    const SActionRow& m_row;
};

// `Create(project, arguments...)` makes the object in the model, or gives null.
template <EAction Action, auto Create, class... Arguments>
class TAddAction final : public CTrvTableAction {
  public:
    explicit TAddAction(CTrvDocument& document, Arguments... arguments)
        : CTrvTableAction(document, Action), m_arguments(std::forward<Arguments>(arguments)...) {}

  private:
    bool Perform(CTrvProject& project) override {
        const CObject* added = std::apply(
            [&project](auto&... arguments) -> const CObject* { return Create(project, arguments...); },
            m_arguments);
        return added ? Changed(added) : Refuse();
    }

    std::tuple<Arguments...> m_arguments;
};

// `Remove(project, target)` deletes the object; false if it is not in the model.
template <EAction Action, class Target, bool (*Remove)(CTrvProject&, const Target&)>
class TRemoveAction final : public CTrvTableAction {
  public:
    TRemoveAction(CTrvDocument& document, const Target& target)
        : CTrvTableAction(document, Action), m_target(target) {}

  private:
    bool Perform(CTrvProject& project) override {
        const CObject* identity = &m_target;
        return Remove(project, m_target) ? Changed(identity) : Refuse();
    }

    const Target& m_target;
};

// Writes `Values` to the object by their ApplyTo.
template <EAction Action, class Target, class Values>
class TChangeAction final : public CTrvTableAction {
  public:
    using CTarget = Target;

    TChangeAction(CTrvDocument& document, Target& target, Values values)
        : CTrvTableAction(document, Action), m_target(target), m_values(std::move(values)) {}

  private:
    bool Perform(CTrvProject&) override {
        m_values.ApplyTo(m_target);
        return Changed(&m_target);
    }

    Target& m_target;
    Values m_values;
};

} // namespace Application_Tarvel
