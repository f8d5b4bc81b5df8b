// Small steps that the Serialize of several classes and their lists share.
#pragma once

#include "foundation/serialize.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace Metier_Tarvel {

// A member that the class cannot be without: a file in which it is null is refused.
template <class T>
void RequiredMember(Outils_Objets::CSchema& schema, std::unique_ptr<T>& member) {
    schema.Owned(member);
    if (schema.IsLoading() && !member)
        Outils_Objets::AfxThrowArchiveException(Outils_Objets::CArchiveException::badIndex);
}

// Deletes an element of a list; false if it is not in it.
template <class T>
bool EraseOwned(std::vector<std::unique_ptr<T>>& objects, const T* object) {
    const auto found = std::find_if(objects.begin(), objects.end(),
                                    [object](const auto& held) { return held.get() == object; });
    if (found == objects.end()) return false;
    objects.erase(found);
    return true;
}

// Appends a new element and returns it.
template <class T, class Base>
T* AppendOwned(std::vector<std::unique_ptr<Base>>& objects, std::unique_ptr<T> object) {
    T* added = object.get();
    objects.push_back(std::move(object));
    return added;
}

} // namespace Metier_Tarvel
