// A physical quantity: kept in one internal unit, shown in the unit that the user chose.
#pragma once

#include "values/numeric_value_adaptor.h"

#include <map>

namespace Outils_Valeurs {

// A value v in the internal unit is `B * v / A + C` in this one.
struct SUnit {
    std::string name;
    double A = 1.0; // not zero
    double B = 1.0; // not zero
    double C = 0.0;
    std::string symbol;

    double FromInternal(double value) const { return B * value / A + C; }
};

class CPhysicalValueAdaptor
    : public Outils_Objets::TRuntimeClass<CPhysicalValueAdaptor, CNumericValueAdaptor> {
  public:
    static constexpr std::string_view kClassName = "CPhysicalValueAdaptor";

    bool showUnit = true; // the symbol follows the number after one blank

    // False for an empty symbol, a zero A or B, or a symbol that is in the table. The first unit added
    // becomes the current one.
    bool AddUnit(double A, double B, double C, std::string_view name, std::string_view symbol);
    // False for a symbol that is not in the table: the current unit stays.
    bool SetCurrentUnit(std::string_view symbol);
    // The internal unit, without a symbol, until a unit is added.
    const SUnit& GetCurrentUnit() const { return m_currentUnit; }
    // By symbol, in the order of the symbols' bytes.
    const std::map<std::string, SUnit, std::less<>>& GetUnits() const { return m_units; }

    // From the internal unit.
    bool ValueToText(double value, std::string& text) const override;
    // To the internal unit. A symbol of the table may follow the number and then says its unit. False, and
    // nothing changes, for a bad number, an unknown symbol, or a result that is not finite. `rest`, if given,
    // becomes empty.
    bool TextToValue(std::string_view text, double& value, std::string_view* rest = nullptr) const override;

    void Serialize(CArchive& archive) override;

  private:
    std::map<std::string, SUnit, std::less<>> m_units;
    SUnit m_currentUnit; // a copy, so that no display looks it up
};

} // namespace Outils_Valeurs
