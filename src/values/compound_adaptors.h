// The adaptors of values that have several numbers, one inner adaptor for each.
#pragma once

#include "values/latitude_longitude_adaptor.h"
#include "values/physical_value_adaptor.h"

#include <array>

namespace Outils_Valeurs {

class CGeographicPositionAdaptor
    : public Outils_Objets::TRuntimeClass<CGeographicPositionAdaptor, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CGeographicPositionAdaptor";

    CLatitudeLongitudeAdaptor latitude{true};   // degrees
    CLatitudeLongitudeAdaptor longitude{false}; // degrees
    CPhysicalValueAdaptor altitude;             // metres

    void Serialize(CArchive& archive) override;
};

// Three physical adaptors, one per axis, that always have the same settings.
class CTripleAdaptor : public Outils_Objets::TRuntimeClass<CTripleAdaptor, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CTripleAdaptor";

    // Axis 0 to 2 in the order of the fields of the value.
    const CPhysicalValueAdaptor& GetAxis(std::size_t axis) const { return m_axes[axis]; }
    // Gives all three the settings of `axis`.
    void SetAxes(const CPhysicalValueAdaptor& axis) { m_axes.fill(axis); }

    void Serialize(CArchive& archive) override;

  private:
    std::array<CPhysicalValueAdaptor, 3> m_axes;
};

// Metres.
class CLeverArmAdaptor : public Outils_Objets::TRuntimeClass<CLeverArmAdaptor, CTripleAdaptor> {
  public:
    static constexpr std::string_view kClassName = "CLeverArmAdaptor";
};

// Degrees.
class CMisalignmentAdaptor : public Outils_Objets::TRuntimeClass<CMisalignmentAdaptor, CTripleAdaptor> {
  public:
    static constexpr std::string_view kClassName = "CMisalignmentAdaptor";
};

} // namespace Outils_Valeurs
