#include "values/compound_adaptors.h"

#include "foundation/serialize.h"

namespace Outils_Valeurs {

void CGeographicPositionAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::SerializeUnchanged<CObjetMetier>(archive, *this, latitude, longitude, altitude);
}

void CTripleAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 1);
    CObjetMetier::Serialize(archive);
    for (CPhysicalValueAdaptor& axis : m_axes) schema.InPlace(axis);
}

} // namespace Outils_Valeurs
