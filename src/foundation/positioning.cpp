#include "foundation/positioning.h"

#include "foundation/serialize.h"

namespace Metier_Positioning {

using Outils_Objets::CSchema;

CPosition::CPosition(const CPosition& other)
    : TRuntimeClass(other), longitude(other.longitude), latitude(other.latitude), altitude(other.altitude) {}

CPosition& CPosition::operator=(const CPosition& other) {
    longitude = other.longitude;
    latitude = other.latitude;
    altitude = other.altitude;
    altitudeKind = 0;
    return *this;
}

void CPosition::Serialize(CArchive& archive) {
    Outils_Objets::SerializeUnchanged<CObjetMetier>(archive, *this, longitude, latitude, altitude,
                                                    altitudeKind);
}

void CTriple::Serialize(CArchive& archive) {
    CSchema schema(archive, 1);
    CObjetMetier::Serialize(archive);
    for (int i = 0; i < 3; ++i) schema.Field(*GetValues(i));
}

} // namespace Metier_Positioning
