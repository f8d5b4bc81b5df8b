#include "foundation/object.h"

#include "foundation/serialize.h"

namespace Outils_Objets {

bool CRuntimeClass::IsDerivedFrom(const CRuntimeClass& other) const {
    for (const CRuntimeClass* candidate = this; candidate; candidate = candidate->base)
        if (candidate == &other) return true;
    return false;
}

const CRuntimeClass& CObject::Class() {
    static const CRuntimeClass runtimeClass{"CObject", nullptr, nullptr};
    return runtimeClass;
}

void CObject::Serialize(CArchive&) {}

const CRuntimeClass* CClassRegistry::Find(std::string_view name) const {
    const auto found = m_classes.find(name);
    return found == m_classes.end() ? nullptr : found->second;
}

void CObjetMetier::Serialize(CArchive& archive) { CSchema(archive, 1); }

void CTrvObject::Serialize(CArchive& archive) {
    CSchema(archive, 1);
    CObjetMetier::Serialize(archive);
}

} // namespace Outils_Objets
