// A rule that a project must keep before it can be processed.
#pragma once

#include "foundation/object.h"
#include "model/properties/property.h"

#include <span>
#include <string_view>

namespace Metier_Tarvel {
class CTrvSimulationParameters;
}

namespace Metier_Tarvel_Regles {

using Outils_Objets::CObject;
using Outils_Objets::CRuntimeClass;
using Outils_Objets::CTrvObject;
using Outils_Objets::TRuntimeClass;

class CTrvRuleReport;

// A check without side effect. Does not own the parameters that it looks at.
class CTrvRule : public TRuntimeClass<CTrvRule, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvRule";

    // True when the rule holds; otherwise the report gets one violation for each object at fault. O(objects
    // checked).
    virtual bool Validate(CTrvRuleReport& report) const = 0;
    // The text for the user.
    virtual std::string_view GetMessage() const = 0;
    // The rows that are wrong in an object at fault, the first of them to be mended first. Never empty.
    virtual std::span<const Metier_Tarvel_Proprietes::SProperty* const> GetProperties() const = 0;

  protected:
    explicit CTrvRule(const Metier_Tarvel::CTrvSimulationParameters& parameters)
        : m_parameters(&parameters) {}

    const Metier_Tarvel::CTrvSimulationParameters* m_parameters;
};

} // namespace Metier_Tarvel_Regles
