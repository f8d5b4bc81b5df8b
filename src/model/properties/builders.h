// Makes rows from pointers to members: get, set and address are written once for all types of members.
#pragma once

#include "foundation/text_id.h"
#include "model/properties/property.h"
#include "model/words.h"
#include "values/adaptors.h"

#include <cmath>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace Metier_Tarvel_Proprietes {

// --- Forms

constexpr SForm Quantity(Outils_Valeurs::EQuantity quantity) {
    return {EPropertyForm::quantity, static_cast<int>(quantity)};
}
constexpr SForm Word(Metier_Tarvel::EWordList list) { return {EPropertyForm::word, static_cast<int>(list)}; }
constexpr SForm Number(EText unit = kNoText) { return {EPropertyForm::number, 0, unit}; }

// --- Members

template <class Type>
struct SMemberTraits;
template <class Class, class Member>
struct SMemberTraits<Member Class::*> {
    using CClass = Class;
    using CMember = Member;
};
// A function that gives the member of another object: `Member& (*)(const Class&)`.
template <class Class, class Member>
struct SMemberTraits<Member& (*)(const Class&)> {
    using CClass = Class;
    using CMember = Member;
};
template <auto Member>
using TClassOf = typename SMemberTraits<decltype(Member)>::CClass;
template <auto Member>
using TMemberOf = typename SMemberTraits<decltype(Member)>::CMember;

// The type of CPropertyValue that carries a member's value.
template <class Member>
using TCarrier = std::conditional_t<
    std::is_same_v<Member, bool>, bool,
    std::conditional_t<std::is_integral_v<Member>, std::int64_t,
                       std::conditional_t<std::is_floating_point_v<Member>, double, Member>>>;

template <auto Member>
CPropertyValue GetMember(const CObject& object) {
    return static_cast<TCarrier<TMemberOf<Member>>>(
        std::invoke(Member, static_cast<const TClassOf<Member>&>(object)));
}
template <auto Member>
void SetMember(CObject& object, const CPropertyValue& value) {
    std::invoke(Member, static_cast<TClassOf<Member>&>(object)) =
        static_cast<TMemberOf<Member>>(std::get<TCarrier<TMemberOf<Member>>>(value));
}
template <auto Member>
const void* AddressOfMember(const CObject& object) {
    return &std::invoke(Member, static_cast<const TClassOf<Member>&>(object));
}
template <class Member>
bool CanHold(const CPropertyValue& value) {
    if constexpr (std::is_integral_v<Member>)
        return std::in_range<Member>(std::get<std::int64_t>(value));
    else
        return std::isfinite(static_cast<Member>(std::get<double>(value)));
}

template <auto Member>
constexpr SProperty Value(EText label, EText help, SForm form) {
    using CMember = TMemberOf<Member>;
    SProperty row{label, help, form};
    row.get = GetMember<Member>;
    row.set = SetMember<Member>;
    row.address = AddressOfMember<Member>;
    if constexpr ((std::is_integral_v<CMember> ||
                   std::is_floating_point_v<CMember>)&&!std::is_same_v<CMember, bool>)
        row.canHold = CanHold<CMember>;
    return row;
}

// A value that is not edited as text: chosen by a dialog, or said by the recording.
template <auto Member>
constexpr SProperty FixedValue(EText label, EText help, SForm form) {
    SProperty row = Value<Member>(label, help, form);
    row.set = nullptr;
    return row;
}

// `Text(context, object)` makes the text of the object.
template <class Class, auto Text>
constexpr SProperty Shown(EText label, EText help) {
    SProperty row{label, help};
    row.show = [](const SPropertyContext& context, const CObject& object) -> std::string {
        return Text(context, static_cast<const Class&>(object));
    };
    return row;
}

// --- Owned objects

template <class Object>
CObject* ElementAt(const std::vector<std::unique_ptr<Object>>& list, std::size_t index) {
    return index < list.size() ? list[index].get() : nullptr;
}
template <class Object>
CObject* ElementAt(const std::unique_ptr<Object>& object, std::size_t index) {
    return index == 0 ? object.get() : nullptr;
}
inline CObject* ElementAt(CObject& object, std::size_t index) { return index == 0 ? &object : nullptr; }

template <auto Member>
constexpr SProperty Owned(EText label, EText help) {
    SProperty row{label, help};
    row.isList = requires(TMemberOf<Member> list) { list.size(); };
    row.child = [](CObject& object, std::size_t index) {
        return ElementAt(static_cast<TClassOf<Member>&>(object).*Member, index);
    };
    return row;
}
template <auto Member>
constexpr SProperty OwnedInLine(EText label, EText help) {
    SProperty row = Owned<Member>(label, help);
    row.isInline = true;
    return row;
}

} // namespace Metier_Tarvel_Proprietes
