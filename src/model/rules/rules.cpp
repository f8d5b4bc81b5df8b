#include "model/rules/rules.h"

#include "foundation/texts.h"
#include "model/properties/rows.h"
#include "model/rules/rule_report.h"
#include "model/simulation_parameters.h"

#include <array>
#include <iterator>
#include <unordered_set>
#include <utility>

namespace Metier_Tarvel_Regles {

using namespace Metier_Tarvel;

namespace {

// Where a check reports what it finds.
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
    const std::int32_t code = parameters.nelixConfiguration->roughMisalignment;
    faults.Check(code >= 0 && code < kRoughMisalignmentCount, parameters);
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

using CProperties = std::span<const Metier_Tarvel_Proprietes::SProperty* const>;

template <const auto&... Properties>
constexpr std::array<const Metier_Tarvel_Proprietes::SProperty*, sizeof...(Properties)> kProperties{
    &Properties...};

struct SRuleRow {
    EText message;
    FCheck check;
    CProperties properties;
};

namespace P = Metier_Tarvel_Proprietes::Rows;
constexpr CProperties kPeriod = kProperties<P::kTo, P::kFrom>;

// By ERule.
constexpr SRuleRow kRows[] = {
    {EText::ruleSimulationPeriod, CheckSimulationPeriod, kProperties<P::kEnd, P::kBegin>},
    {EText::ruleDefaultOutputRate, CheckDefaultOutputRate, kProperties<P::kDefaultOutputRate>},
    {EText::ruleChannelUsedTwice, CheckChannels, kProperties<P::kChannel>},
    {EText::ruleRejectionPeriod, CheckRejectionPeriods, kPeriod},
    {EText::ruleZuptPeriod, CheckPeriods<&CTrvSimulationParameters::zupts>, kPeriod},
    {EText::ruleOutputRatePeriod, CheckPeriods<&CTrvSimulationParameters::outputRates>, kPeriod},
    {EText::ruleAltitudeModePeriod, CheckPeriods<&CTrvSimulationParameters::altitudeModes>, kPeriod},
    {EText::ruleOutputRate, CheckOutputRateValues, kProperties<P::kOutputRate>},
    {EText::ruleRoughMisalignment, CheckRoughMisalignment, kProperties<P::kRoughMisalignment>},
    {EText::ruleDvlStdDevPeriod, CheckStdDevPeriods<ESensorKind::dvl>, kPeriod},
    {EText::ruleGpsStdDevPeriod, CheckStdDevPeriods<ESensorKind::gps>, kPeriod},
    {EText::ruleUsblStdDevPeriod, CheckStdDevPeriods<ESensorKind::usbl>, kPeriod},
    {EText::ruleDepthStdDevPeriod, CheckStdDevPeriods<ESensorKind::depth>, kPeriod},
    {EText::ruleLblStdDevPeriod, CheckStdDevPeriods<ESensorKind::lbl>, kPeriod},
    {EText::ruleEmLogStdDevPeriod, CheckStdDevPeriods<ESensorKind::emLog>, kPeriod},
    {EText::ruleOdometerStdDevPeriod, CheckStdDevPeriods<ESensorKind::odometer>, kPeriod},
    {EText::ruleFilteringPeriod, CheckFilteringPeriods, kPeriod},
    {EText::ruleFilteringThreshold, CheckFilteringThresholds, kProperties<P::kThreshold>},
};
static_assert(std::size(kRows) == kRuleCount);

template <std::size_t... Index>
std::vector<std::unique_ptr<CTrvRule>> CreateRows(const CTrvSimulationParameters& parameters,
                                                  std::index_sequence<Index...>) {
    std::vector<std::unique_ptr<CTrvRule>> rules;
    rules.reserve(sizeof...(Index));
    (rules.push_back(std::make_unique<TTrvRule<static_cast<ERule>(Index)>>(parameters)), ...);
    return rules;
}

} // namespace

template <ERule Rule>
bool TTrvRule<Rule>::Validate(CTrvRuleReport& report) const {
    CFaults faults(*this, report);
    kRows[static_cast<int>(Rule)].check(*this->m_parameters, faults);
    return !faults.Any();
}

template <ERule Rule>
std::string_view TTrvRule<Rule>::GetMessage() const {
    return Outils_Texte::GetText(kRows[static_cast<int>(Rule)].message);
}

template <ERule Rule>
std::span<const Metier_Tarvel_Proprietes::SProperty* const> TTrvRule<Rule>::GetProperties() const {
    return kRows[static_cast<int>(Rule)].properties;
}

std::vector<std::unique_ptr<CTrvRule>> CreateRules(const CTrvSimulationParameters& parameters) {
    return CreateRows(parameters, std::make_index_sequence<kRuleCount>{});
}

} // namespace Metier_Tarvel_Regles
