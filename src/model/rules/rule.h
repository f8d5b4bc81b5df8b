// The rules that a project must keep before it can be processed, and the report of those it breaks.
#pragma once

#include "foundation/object.h"
#include "model/properties/property.h"

#include <cstdint>
#include <list>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_set>
#include <vector>

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

class CTrvRuleViolation : public TRuntimeClass<CTrvRuleViolation, CTrvObject> {
  public:
    static constexpr std::string_view kClassName = "CTrvRuleViolation";

    const CTrvRule* rule = nullptr; // not owned
    // The period, instruction or sensor at fault, or the simulation parameters; not owned.
    const CObject* object = nullptr;
};

// The violations of one validation, in the order of detection. Valid while the validated objects are.
class CTrvRuleReport {
  public:
    void Add(const CTrvRule& rule, const CObject& object);

    const std::list<CTrvRuleViolation>& GetViolations() const { return m_violations; }
    bool IsEmpty() const { return m_violations.empty(); }
    // Whether the property of the object is at fault: by which rule, the first of several. Null when it is
    // right. O(violations).
    const CTrvRule* FindFault(const CObject* object,
                              const Metier_Tarvel_Proprietes::SProperty& property) const;
    // Whether the object breaks any rule, or the rule of this class. O(1).
    bool HasViolation(const CObject* object) const { return m_atFault.contains({nullptr, object}); }
    bool HasViolation(const CRuntimeClass& rule, const CObject* object) const {
        return m_atFault.contains({&rule, object});
    }

  private:
    struct SKey {
        const CRuntimeClass* rule;
        const CObject* object;
        bool operator==(const SKey&) const = default;
    };
    struct SHash {
        std::size_t operator()(const SKey& key) const {
            return std::hash<const void*>{}(key.rule) * 31 + std::hash<const void*>{}(key.object);
        }
    };

    std::list<CTrvRuleViolation> m_violations;
    std::unordered_set<SKey, SHash> m_atFault; // for each violation its rule, and null for any rule
};

// The 18 rules over `parameters`, in the order of checking.
std::vector<std::unique_ptr<CTrvRule>> CreateRules(const Metier_Tarvel::CTrvSimulationParameters& parameters);

} // namespace Metier_Tarvel_Regles
