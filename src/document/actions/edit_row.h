// The shape of an edit: one constexpr row says what it does to which object, which hint tells the views, and
// what the user reads when it fails. rows.h lists them.
#pragma once

#include "document/hints.h"
#include "document/user_action.h"
#include "foundation/object.h"
#include "foundation/text_id.h"
#include "model/project.h"

#include <functional>
#include <memory>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Application_Tarvel {

using Metier_Tarvel::CTrvProject;
using Outils_Objets::CObject;
using Outils_Objets::CRuntimeClass;
using Outils_Texte::EText;
using Outils_Texte::kNoText;

// What all rows have, whatever their arguments.
struct SEditRow {
    std::string_view className; // the given name of the action
    EHint hint;
    EText failureText = kNoText; // none for an edit that cannot fail or stays silent

    // Of an edit that writes values: the class it changes, and whether a member at this address is one of
    // the values of the target, or a part of one. Null for the others.
    const CRuntimeClass& (*targetClass)() = nullptr;
    bool (*covers)(const CObject& target, const void* address) = nullptr;
};

// One edit at work.
class CEdit {
  public:
    // All must outlive the object.
    CEdit(CTrvDocument& document, CTrvProject& project, const SEditRow& row)
        : m_document(document), m_project(project), m_row(row) {}

    CTrvDocument& GetDocument() const { return m_document; }
    CTrvProject& GetProject() const { return m_project; }

    // Marks the document modified and tells the views by the row's hint. True. A removed `object` is an
    // identity only.
    bool Changed(const CObject* object) const;
    // Shows the row's message, or another one. False.
    bool Refuse() const { return Refuse(m_row.failureText); }
    bool Refuse(EText text) const;

  private:
    CTrvDocument& m_document;
    CTrvProject& m_project;
    const SEditRow& m_row;
};

// An edit with these arguments.
template <class... Arguments>
struct TEditRow : SEditRow {
    // Changes the model and ends with Changed or Refuse.
    bool (*perform)(const CEdit& edit, Arguments... arguments) = nullptr;
};

// The edit as an action object. Without a project it does nothing and says nothing.
template <class... Arguments>
class TEditAction : public CTrvUserAction {
  public:
    TEditAction(CTrvDocument& document, const TEditRow<Arguments...>& row,
                std::type_identity_t<Arguments>... arguments)
        : CTrvUserAction(document), m_row(row), m_arguments(std::forward<Arguments>(arguments)...) {}

    bool Do() final {
        CTrvProject* project = FindProject();
        if (!project) return false;
        const CEdit edit(m_document, *project, m_row);
        return std::apply([&](auto&... arguments) { return m_row.perform(edit, arguments...); }, m_arguments);
    }

  private:
    const TEditRow<Arguments...>& m_row;
    std::tuple<Arguments...> m_arguments;
};

// The given class name of a row: `using CTrvActChangeZupt = TAction<kChangeZupt>`.
template <const auto& Row, class Shape = std::remove_cvref_t<decltype(Row)>>
class TAction;
template <const auto& Row, class... Arguments>
class TAction<Row, TEditRow<Arguments...>> final : public TEditAction<Arguments...> {
  public:
    explicit TAction(CTrvDocument& document, std::type_identity_t<Arguments>... arguments)
        : TEditAction<Arguments...>(document, Row, std::forward<Arguments>(arguments)...) {}
};

// --- Members

// The member itself, or what a member that owns an object points to.
template <auto Member, class Target>
auto& MemberOf(Target& target) {
    auto& member = std::invoke(Member, target);
    if constexpr (requires { member.get(); })
        return *member;
    else
        return member;
}

template <auto Left, auto Right>
constexpr bool kIsSame = std::is_same_v<std::integral_constant<decltype(Left), Left>,
                                        std::integral_constant<decltype(Right), Right>>;

// A copy of some members of an object, in the order of the list. A caller takes the present values, changes
// some, and hands all back.
template <class Target, auto... Members>
class TValues {
  public:
    using CTuple = std::tuple<std::remove_cvref_t<decltype(MemberOf<Members>(std::declval<Target&>()))>...>;

    TValues(std::remove_cvref_t<decltype(MemberOf<Members>(std::declval<Target&>()))>... values)
        : m_values(std::move(values)...) {}
    static TValues Of(const Target& target) { return TValues(MemberOf<Members>(target)...); }
    void ApplyTo(Target& target) const { Write(target, std::index_sequence_for<decltype(Members)...>()); }

    // values.Get<&CTrvZupt::mode>() = 3;
    template <auto Member>
    auto& Get() {
        return std::get<IndexOf<Member>()>(m_values);
    }
    CTuple& GetAll() { return m_values; }

    static bool Covers(const CObject& object, const void* address) {
        const auto& target = static_cast<const Target&>(object);
        return (IsWithin(MemberOf<Members>(target), address) || ...);
    }

  private:
    template <class Value>
    static bool IsWithin(const Value& value, const void* address) {
        const std::less<> isBefore;
        const void* begin = &value;
        const void* end = &value + 1;
        return !isBefore(address, begin) && isBefore(address, end);
    }
    template <auto Member>
    static consteval std::size_t IndexOf() {
        constexpr bool isSame[] = {kIsSame<Member, Members>...};
        for (std::size_t i = 0; i < sizeof...(Members); ++i)
            if (isSame[i]) return i;
        throw "the edit does not write this member";
    }
    template <std::size_t... Index>
    void Write(Target& target, std::index_sequence<Index...>) const {
        ((MemberOf<Members>(target) = std::get<Index>(m_values)), ...);
    }

    CTuple m_values;
};

// --- Makers of rows

template <class Target, class Values>
constexpr void SetCovered(SEditRow& row) {
    row.targetClass = []() -> const CRuntimeClass& { return Target::Class(); };
    row.covers = Values::Covers;
}

template <class Target, class Values>
bool PerformChange(const CEdit& edit, Target& target, Values values) {
    values.ApplyTo(target);
    return edit.Changed(&target);
}

// Writes these members of the target.
template <class Target, auto... Members>
constexpr auto Change(std::string_view className, EHint hint) {
    using CValues = TValues<Target, Members...>;
    TEditRow<Target&, CValues> row{{className, hint}, PerformChange<Target, CValues>};
    SetCovered<Target, CValues>(row);
    return row;
}

// The same for a value that callers state in another type: `Apply(target, value)` writes the member.
template <auto Member, class Target, class Value, void (*Apply)(Target&, Value)>
constexpr auto ChangeAs(std::string_view className, EHint hint) {
    TEditRow<Target&, Value> row{{className, hint}, [](const CEdit& edit, Target& target, Value value) {
                                     Apply(target, value);
                                     return edit.Changed(&target);
                                 }};
    SetCovered<Target, TValues<Target, Member>>(row);
    return row;
}

// `Create(project, arguments...)` makes the object in the model, or gives null.
template <auto Create, class... Arguments>
constexpr auto Add(std::string_view className, EHint hint, EText failureText) {
    return TEditRow<Arguments...>{{className, hint, failureText},
                                  [](const CEdit& edit, Arguments... arguments) {
                                      const CObject* added = Create(edit.GetProject(), arguments...);
                                      return added ? edit.Changed(added) : edit.Refuse();
                                  }};
}

// `Remove(project, target)` deletes the object; false if it is not in the model.
template <class Target, bool (*Remove)(CTrvProject&, const Target&)>
constexpr auto RemoveBy(std::string_view className, EHint hint, EText failureText = kNoText) {
    return TEditRow<const Target&>{
        {className, hint, failureText}, [](const CEdit& edit, const Target& target) {
            const CObject* identity = &target;
            return Remove(edit.GetProject(), target) ? edit.Changed(identity) : edit.Refuse();
        }};
}

} // namespace Application_Tarvel
