// Geometry carried through the model: a geographic position, a lever arm and a misalignment.
#pragma once

#include "foundation/object.h"

#include <cstdint>

namespace Metier_Positioning {

using Outils_Objets::CArchive;

class CPosition : public Outils_Objets::TRuntimeClass<CPosition, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CPosition";

    double longitude = 0.0;        // degrees, east positive
    double latitude = 0.0;         // degrees, north positive
    std::int32_t altitudeKind = 0; // set to 0 by all users; stored and restored
    double altitude = 0.0;         // metres

    CPosition() = default;
    CPosition(double latitudeDegrees, double longitudeDegrees, double altitudeMetres)
        : longitude(longitudeDegrees), latitude(latitudeDegrees), altitude(altitudeMetres) {}
    // A copy takes the three values; its altitude kind is 0.
    CPosition(const CPosition& other);
    CPosition& operator=(const CPosition& other);

    void Serialize(CArchive& archive) override;
};

// Three floats with one archive form.
class CTriple : public Outils_Objets::TRuntimeClass<CTriple, Outils_Objets::CObjetMetier> {
  public:
    static constexpr std::string_view kClassName = "CTriple";
    void Serialize(CArchive& archive) override;

  protected:
    virtual double* GetValues(int index) = 0; // 0 to 2
};

class CLeverArm : public Outils_Objets::TRuntimeClass<CLeverArm, CTriple> {
  public:
    static constexpr std::string_view kClassName = "CLeverArm";

    double xv1 = 0.0; // metres, vessel axis 1: forward
    double xv2 = 0.0; // metres, vessel axis 2: to port
    double xv3 = 0.0; // metres, vessel axis 3: up

    CLeverArm() = default;
    CLeverArm(double x1, double x2, double x3) : xv1(x1), xv2(x2), xv3(x3) {}

  protected:
    double* GetValues(int index) override { return index == 0 ? &xv1 : index == 1 ? &xv2 : &xv3; }
};

class CMisalignment : public Outils_Objets::TRuntimeClass<CMisalignment, CTriple> {
  public:
    static constexpr std::string_view kClassName = "CMisalignment";

    double heading = 0.0; // degrees
    double roll = 0.0;    // degrees
    double pitch = 0.0;   // degrees

    CMisalignment() = default;
    CMisalignment(double h, double r, double p) : heading(h), roll(r), pitch(p) {}

  protected:
    double* GetValues(int index) override { return index == 0 ? &heading : index == 1 ? &roll : &pitch; }
};

} // namespace Metier_Positioning
