// Which properties a class of the model has, and in which order they are shown.
#pragma once

#include "model/properties/property.h"

#include <span>

namespace Metier_Tarvel_Proprietes {

using CPropertyRows = std::span<const SProperty* const>;

struct SPropertyClass {
    const Outils_Objets::CRuntimeClass& (*runtimeClass)();
    EText title;            // of an object of the class
    CPropertyRows rows;     // as the processing tree shows them
    CPropertyRows archived; // all that an archive keeps, in its order
};

// Any thread.
std::span<const SPropertyClass> GetPropertyClasses();
// The class of the object itself, not of its bases. Null for an object that is not described.
const SPropertyClass* FindPropertyClass(const CObject& object);

} // namespace Metier_Tarvel_Proprietes
