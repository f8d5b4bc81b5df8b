#include "values/physical_value_adaptor.h"

#include "foundation/serialize.h"
#include "foundation/text.h"

#include <cmath>

namespace Outils_Valeurs {

namespace {

void SerializeUnit(Outils_Objets::CSchema& schema, SUnit& unit) {
    schema.Field(unit.name);
    schema.Field(unit.A);
    schema.Field(unit.B);
    schema.Field(unit.C);
    schema.Field(unit.symbol);
}

} // namespace

bool CPhysicalValueAdaptor::AddUnit(double A, double B, double C, std::string_view name,
                                    std::string_view symbol) {
    if (symbol.empty() || A == 0.0 || B == 0.0 || m_units.contains(symbol)) return false;
    SUnit unit{std::string(name), A, B, C, std::string(symbol)};
    if (m_units.empty()) m_currentUnit = unit;
    m_units.emplace(symbol, std::move(unit));
    return true;
}

bool CPhysicalValueAdaptor::SetCurrentUnit(std::string_view symbol) {
    const auto found = m_units.find(symbol);
    if (found == m_units.end()) return false;
    m_currentUnit = found->second;
    return true;
}

bool CPhysicalValueAdaptor::ValueToText(double value, std::string& text) const {
    CNumericValueAdaptor::ValueToText(m_currentUnit.FromInternal(value), text);
    if (showUnit && !m_currentUnit.symbol.empty()) {
        text += ' ';
        text += m_currentUnit.symbol;
    }
    return true;
}

bool CPhysicalValueAdaptor::TextToValue(std::string_view text, double& value, std::string_view* rest) const {
    double number = 0.0;
    std::string_view symbol;
    if (!CNumericValueAdaptor::TextToValue(text, number, &symbol)) return false;
    symbol = Outils_Texte::TrimBlanks(symbol);
    const SUnit* unit = &m_currentUnit;
    if (!symbol.empty()) {
        const auto found = m_units.find(symbol);
        if (found == m_units.end()) return false;
        unit = &found->second;
    }
    // The offset is always the one of the unit shown, whatever unit is typed.
    const double internal = (number - m_currentUnit.C) * unit->A / unit->B;
    if (!std::isfinite(internal)) return false;
    value = internal;
    if (rest) *rest = {};
    return true;
}

void CPhysicalValueAdaptor::Serialize(CArchive& archive) {
    Outils_Objets::CSchema schema(archive, 3, 3);
    CNumericValueAdaptor::Serialize(archive);
    auto count = static_cast<std::uint32_t>(m_units.size());
    schema.Field(count);
    if (archive.IsStoring()) {
        for (auto& [symbol, unit] : m_units) SerializeUnit(schema, unit);
    } else {
        m_units.clear();
        for (; count > 0; --count) {
            SUnit unit;
            SerializeUnit(schema, unit);
            if (!AddUnit(unit.A, unit.B, unit.C, unit.name, unit.symbol))
                Outils_Objets::AfxThrowArchiveException(Outils_Objets::CArchiveException::generic);
        }
    }
    SerializeUnit(schema, m_currentUnit);
    schema.Field(showUnit);
}

} // namespace Outils_Valeurs
