#include "model/rules/rules.h"

#include "foundation/texts.h"
#include "model/simulation_parameters.h"

#include <iterator>
#include <utility>

namespace Metier_Tarvel_Regles {

using namespace Metier_Tarvel;

namespace {

// Where a check tells what it found.
class CFaults {
  public:
    CFaults(const CTrvRule& rule, CTrvRuleReport& report) : m_rule(rule), m_report(report) {}

    void Check(bool holds, const CObject& object) {
        if (holds) return;
        m_report.Add(m_rule, object);
        m_any = true;
    }
    // The end must be strictly later than the begin. Times that are not valid are not compared.
    void CheckPeriod(CDateTime begin, CDateTime end, const CObject& object) {
        Check(!begin.IsValid() || !end.IsValid() || end > begin, object);
    }
    void CheckPeriod(const CTrvPeriod& period) { CheckPeriod(period.begin, period.end, period); }
    bool Any() const { return m_any; }

  private:
    const CTrvRule& m_rule;
    CTrvRuleReport& m_report;
    bool m_any = false;
};

using FCheck = void (*)(const CTrvSimulationParameters& parameters, CFaults& faults);

template <auto List>
void CheckPeriods(const CTrvSimulationParameters& parameters, CFaults& faults) {
    for (const auto& period : parameters.*List) faults.CheckPeriod(*period);
}

template <ESensorKind Kind>
void CheckStdDevPeriods(const CTrvSimulationParameters& parameters, CFaults& faults) {
    for (const auto& sensor : parameters.sensors) {
        if (sensor->GetKind().kind != Kind) continue;
        for (const CTrvStdDevInstruction* instruction : sensor->GetStdDevInstructions())
            if (instruction && !instruction->isDefault) faults.CheckPeriod(*instruction);
    }
}

void CheckSimulationPeriod(const CTrvSimulationParameters& parameters, CFaults& faults) {
    faults.CheckPeriod(parameters.begin, parameters.end, parameters);
}

void CheckDefaultOutputRate(const CTrvSimulationParameters& parameters, CFaults& faults) {
    faults.Check(parameters.defaultOutputRate > 0.0, parameters);
}

// The first sensor on a channel may keep it.
void CheckChannels(const CTrvSimulationParameters& parameters, CFaults& faults) {
    std::unordered_set<const CTrvDataFileChannel*> taken;
    for (const auto& sensor : parameters.sensors)
        if (sensor->channel) faults.Check(taken.insert(sensor->channel).second, *sensor);
}

void CheckRejectionPeriods(const CTrvSimulationParameters& parameters, CFaults& faults) {
    for (const auto& sensor : parameters.sensors)
        for (const auto& group : sensor->rejectionGroups)
            for (const auto& instruction : group->instructions) faults.CheckPeriod(*instruction);
}

void CheckOutputRateValues(const CTrvSimulationParameters& parameters, CFaults& faults) {
    for (const auto& rate : parameters.outputRates) faults.Check(rate->value > 0.0, *rate);
}

void CheckRoughMisalignment(const CTrvSimulationParameters& parameters, CFaults& faults) {
    const CTrvNelixConfiguration& configuration = *parameters.nelixConfiguration;
    const std::int32_t code = configuration.roughMisalignment;
    faults.Check(code >= 0 && code < kRoughMisalignmentCount, configuration);
}

template <class Visit>
void ForEachFiltering(const CTrvSimulationParameters& parameters, Visit visit) {
    for (const auto& sensor : parameters.sensors)
        if (sensor->IsKindOf(CTrvSensorUsbl::Class()))
            for (const auto& instruction : static_cast<const CTrvSensorUsbl&>(*sensor).filteringInstructions)
                visit(*instruction);
}

void CheckFilteringPeriods(const CTrvSimulationParameters& parameters, CFaults& faults) {
    ForEachFiltering(parameters, [&faults](const auto& instruction) { faults.CheckPeriod(instruction); });
}

void CheckFilteringThresholds(const CTrvSimulationParameters& parameters, CFaults& faults) {
    ForEachFiltering(parameters, [&faults](const CTrvHorizontalFilteringInstruction& instruction) {
        faults.Check(!(instruction.threshold < 0.0f), instruction);
    });
}

constexpr EText kFirstMessage =
    EText::ruleSimulationPeriod; // the messages follow each other in the order of the rows

constexpr FCheck kChecks[] = {
    CheckSimulationPeriod,
    CheckDefaultOutputRate,
    CheckChannels,
    CheckRejectionPeriods,
    CheckPeriods<&CTrvSimulationParameters::zupts>,
    CheckPeriods<&CTrvSimulationParameters::outputRates>,
    CheckPeriods<&CTrvSimulationParameters::altitudeModes>,
    CheckOutputRateValues,
    CheckRoughMisalignment,
    CheckStdDevPeriods<ESensorKind::dvl>,
    CheckStdDevPeriods<ESensorKind::gps>,
    CheckStdDevPeriods<ESensorKind::usbl>,
    CheckStdDevPeriods<ESensorKind::depth>,
    CheckStdDevPeriods<ESensorKind::lbl>,
    CheckStdDevPeriods<ESensorKind::emLog>,
    CheckStdDevPeriods<ESensorKind::odometer>,
    CheckFilteringPeriods,
    CheckFilteringThresholds,
};
static_assert(std::size(kChecks) == kRuleCount);

template <std::size_t... Rows>
std::vector<std::unique_ptr<CTrvRule>> CreateRows(const CTrvSimulationParameters& parameters,
                                                  std::index_sequence<Rows...>) {
    std::vector<std::unique_ptr<CTrvRule>> rules;
    rules.reserve(sizeof...(Rows));
    (rules.push_back(std::make_unique<TTrvRule<static_cast<ERule>(Rows)>>(parameters)), ...);
    return rules;
}

} // namespace

void CTrvRuleReport::Add(const CTrvRule& rule, const CObject& object) {
    CTrvRuleViolation& violation = m_violations.emplace_back();
    violation.rule = &rule;
    violation.object = &object;
    m_atFault.insert({nullptr, &object});
    m_atFault.insert({&rule.GetRuntimeClass(), &object});
}

template <ERule Rule>
bool TTrvRule<Rule>::Validate(CTrvRuleReport& report) const {
    CFaults faults(*this, report);
    kChecks[static_cast<int>(Rule)](*this->m_parameters, faults);
    return !faults.Any();
}

template <ERule Rule>
std::string_view TTrvRule<Rule>::GetMessage() const {
    return Outils_Texte::GetText(kFirstMessage + static_cast<int>(Rule));
}

std::vector<std::unique_ptr<CTrvRule>> CreateRules(const CTrvSimulationParameters& parameters) {
    return CreateRows(parameters, std::make_index_sequence<kRuleCount>{});
}

} // namespace Metier_Tarvel_Regles
