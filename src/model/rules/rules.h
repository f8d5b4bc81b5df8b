// The rule classes by name, to ask a report for the violations of one of them, and one object of each.
#pragma once

#include "model/rules/rule.h"

#include <memory>
#include <vector>

namespace Metier_Tarvel_Regles {

// The rows of the rule table, in the order of checking.
enum class ERule {
    simulationPeriod,
    defaultOutputRate,
    sensorDataFileChannel,
    rejectionInstructionPeriod,
    zuptPeriod,
    outputRatePeriod,
    altitudeModePeriod,
    outputRateValue,
    roughMisalignment,
    dvlStdDevInstructionPeriod,
    gpsStdDevInstructionPeriod,
    usblStdDevInstructionPeriod,
    depthStdDevInstructionPeriod,
    lblStdDevInstructionPeriod,
    emLogStdDevInstructionPeriod,
    odometerStdDevInstructionPeriod,
    horizontalFilteringInstructionPeriod,
    horizontalFilteringInstructionThreshold,
};
inline constexpr int kRuleCount = 18;

// Class names of the rows.
inline constexpr std::string_view kRuleNames[kRuleCount] = {
    "CTrvRuleSimulationPeriod",
    "CTrvRuleDefaultOutputRate",
    "CTrvRuleSensorDataFileChannel",
    "CTrvRuleRejectionInstructionPeriod",
    "CTrvRuleZuptPeriod",
    "CTrvRuleOutputRatePeriod",
    "CTrvRuleAltitudeModePeriod",
    "CTrvRuleOutputRateValue",
    "CTrvRuleRoughMisalignment",
    "CTrvRuleDvlStdDevInstructionPeriod",
    "CTrvRuleGpsStdDevInstructionPeriod",
    "CTrvRuleUsblStdDevInstructionPeriod",
    "CTrvRuleDepthStdDevInstructionPeriod",
    "CTrvRuleLblStdDevInstructionPeriod",
    "CTrvRuleEMLogStdDevInstructionPeriod",
    "CTrvRuleOdometerStdDevInstructionPeriod",
    "CTrvRuleHorizontalFilteringInstructionPeriod",
    "CTrvRuleHorizontalFilteringInstructionThreshold",
};

template <ERule Rule>
class TTrvRule final : public TRuntimeClass<TTrvRule<Rule>, CTrvRule> {
  public:
    static constexpr std::string_view kClassName = kRuleNames[static_cast<int>(Rule)];

    explicit TTrvRule(const Metier_Tarvel::CTrvSimulationParameters& parameters)
        : TRuntimeClass<TTrvRule<Rule>, CTrvRule>(parameters) {}
    bool Validate(CTrvRuleReport& report) const override;
    std::string_view GetMessage() const override;
    std::span<const Metier_Tarvel_Proprietes::SProperty* const> GetProperties() const override;
};

using CTrvRuleSimulationPeriod = TTrvRule<ERule::simulationPeriod>;
using CTrvRuleDefaultOutputRate = TTrvRule<ERule::defaultOutputRate>;
using CTrvRuleSensorDataFileChannel = TTrvRule<ERule::sensorDataFileChannel>;
using CTrvRuleRejectionInstructionPeriod = TTrvRule<ERule::rejectionInstructionPeriod>;
using CTrvRuleZuptPeriod = TTrvRule<ERule::zuptPeriod>;
using CTrvRuleOutputRatePeriod = TTrvRule<ERule::outputRatePeriod>;
using CTrvRuleAltitudeModePeriod = TTrvRule<ERule::altitudeModePeriod>;
using CTrvRuleOutputRateValue = TTrvRule<ERule::outputRateValue>;
using CTrvRuleRoughMisalignment = TTrvRule<ERule::roughMisalignment>;
using CTrvRuleDvlStdDevInstructionPeriod = TTrvRule<ERule::dvlStdDevInstructionPeriod>;
using CTrvRuleGpsStdDevInstructionPeriod = TTrvRule<ERule::gpsStdDevInstructionPeriod>;
using CTrvRuleUsblStdDevInstructionPeriod = TTrvRule<ERule::usblStdDevInstructionPeriod>;
using CTrvRuleDepthStdDevInstructionPeriod = TTrvRule<ERule::depthStdDevInstructionPeriod>;
using CTrvRuleLblStdDevInstructionPeriod = TTrvRule<ERule::lblStdDevInstructionPeriod>;
using CTrvRuleEMLogStdDevInstructionPeriod = TTrvRule<ERule::emLogStdDevInstructionPeriod>;
using CTrvRuleOdometerStdDevInstructionPeriod = TTrvRule<ERule::odometerStdDevInstructionPeriod>;
using CTrvRuleHorizontalFilteringInstructionPeriod = TTrvRule<ERule::horizontalFilteringInstructionPeriod>;
using CTrvRuleHorizontalFilteringInstructionThreshold =
    TTrvRule<ERule::horizontalFilteringInstructionThreshold>;

// The 18 rules over `parameters`, in the order of checking.
std::vector<std::unique_ptr<CTrvRule>> CreateRules(const Metier_Tarvel::CTrvSimulationParameters& parameters);

} // namespace Metier_Tarvel_Regles
