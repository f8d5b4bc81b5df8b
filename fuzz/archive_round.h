// Loading and storing the object of an archive.
#pragma once

#include "foundation/archive.h"
#include "input.h"
#include "model/registration.h"

#include <memory>
#include <vector>

namespace Fuzz {

// Null when the bytes are refused, or hold null.
template <class T>
std::unique_ptr<T> TryLoad(Bytes bytes) {
    Outils_Objets::CClassRegistry registry;
    Metier_Tarvel::RegisterModelClasses(registry);
    Outils_Objets::CMemoryStream stream({bytes.begin(), bytes.end()});
    Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::load, &registry, "/none/a.tarprj");
    try {
        return T::Load(archive);
    } catch (const Outils_Objets::CArchiveException&) {
        return nullptr;
    }
}

inline std::vector<std::uint8_t> Store(const Outils_Objets::CObject& object) {
    Outils_Objets::CMemoryStream stream;
    Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::store, nullptr, "/none/a.tarprj");
    archive.WriteObject(&object);
    archive.Close();
    return stream.GetBytes();
}

// The object as it is once the present version has stored it: the older versions did not resolve relative
// paths, so such a path finds its folder only when it is read back. Null as for TryLoad.
template <class T>
std::unique_ptr<T> LoadRaised(Bytes bytes) {
    const auto old = TryLoad<T>(bytes);
    if (!old) return nullptr;
    auto raised = TryLoad<T>(Store(*old));
    Require(raised != nullptr, "an object of any version can be raised to the present one");
    return raised;
}

// What was loaded can be stored, and what was stored loads as the same.
template <class T>
void CheckRoundTrip(const T& loaded) {
    const auto stored = Store(loaded);
    const auto again = TryLoad<T>(stored);
    Require(again != nullptr, "a stored object loads");
    Require(Store(*again) == stored, "a loaded object is stored as it was");
}

} // namespace Fuzz
