#include "model/rules/rule_report.h"

#include <algorithm>

namespace Metier_Tarvel_Regles {

void CTrvRuleReport::Add(const CTrvRule& rule, const CObject& object) {
    CTrvRuleViolation& violation = m_violations.emplace_back();
    violation.rule = &rule;
    violation.object = &object;
    m_atFault.insert({nullptr, &object});
    m_atFault.insert({&rule.GetRuntimeClass(), &object});
}

const CTrvRule* CTrvRuleReport::FindFault(const CObject* object,
                                          const Metier_Tarvel_Proprietes::SProperty& property) const {
    for (const CTrvRuleViolation& violation : m_violations)
        if (violation.object == object && std::ranges::find(violation.rule->GetProperties(), &property) !=
                                              violation.rule->GetProperties().end())
            return violation.rule;
    return nullptr;
}

} // namespace Metier_Tarvel_Regles
