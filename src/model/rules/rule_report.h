// What a validation finds: which objects of a project break which rules.
#pragma once

#include "model/rules/rule.h"

#include <cstddef>
#include <functional>
#include <list>
#include <string_view>
#include <unordered_set>

namespace Metier_Tarvel_Regles {

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

} // namespace Metier_Tarvel_Regles
