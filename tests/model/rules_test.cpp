#include "foundation/texts.h"
#include "model/rules/rules.h"
#include "model/simulation_parameters.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Regles;

namespace {

// A valid project with a channel for each sensor.
class RulesTest : public testing::Test {
  protected:
    RulesTest() {
        parameters.end = CDateTime(1);
        std::uint16_t id = 1;
        for (const SSensorKind& kind : GetSensorKinds())
            parameters.mainInputFile->AddChannel(id++, "channel", std::string(kind.className));
    }

    CTrvSensor& Add(ESensorKind kind) { return *parameters.AddSensor(kind); }
    template <class T>
    T& Valid(T* period) {
        period->end = CDateTime(1);
        return *period;
    }

    // Names of the broken rules in order, one for each violation.
    std::vector<std::string> Broken() {
        CTrvRuleReport report;
        std::vector<std::string> names;
        const bool valid = parameters.Validate(report);
        EXPECT_EQ(valid, report.IsEmpty());
        for (const CTrvRuleViolation& violation : report.GetViolations()) {
            names.emplace_back(violation.rule->GetRuntimeClass().name);
            EXPECT_TRUE(report.HasViolation(violation.object));
            EXPECT_TRUE(report.HasViolation(violation.rule->GetRuntimeClass(), violation.object));
        }
        return names;
    }

    CTrvSimulationParameters parameters;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(RulesTest, EachRuleFindsItsOwnFaultAndNoOther) {
    struct SCase {
        const char* rule;
        std::function<void()> breakIt;
        std::function<void()> mend;
    };
    CTrvOutputRate& rate = Valid(parameters.AddOutputRate());
    CTrvZupt& zupt = Valid(parameters.AddZupt());
    CTrvAltitudeMode& altitude = Valid(parameters.AddAltitudeMode());
    for (const SSensorKind& kind : GetSensorKinds()) Add(kind.kind);
    CTrvRejectionInstruction& rejection = Valid(parameters.sensors[1]->rejectionGroups[1]->AddInstruction());
    auto& usbl = static_cast<CTrvSensorUsbl&>(*parameters.sensors[static_cast<int>(ESensorKind::usbl)]);
    CTrvHorizontalFilteringInstruction& filtering = Valid(usbl.AddFilteringInstruction());
    std::int32_t& rough = parameters.nelixConfiguration->roughMisalignment;

    const auto period = [](const char* rule, CTrvPeriod& p) {
        return SCase{rule, [&p] { p.begin = p.end; }, [&p] { p.begin = CDateTime(0); }};
    };
    const auto stdDev = [&](const char* rule, ESensorKind kind) {
        CTrvStdDevInstruction* instruction =
            parameters.sensors[static_cast<int>(kind)]->GetStdDevInstructions()[0];
        return SCase{rule, [=] { instruction->isDefault = false; }, [=] { instruction->isDefault = true; }};
    };
    const SCase cases[] = {
        {"CTrvRuleSimulationPeriod", [&] { parameters.begin = CDateTime(2); },
         [&] { parameters.begin = CDateTime(0); }},
        {"CTrvRuleDefaultOutputRate", [&] { parameters.defaultOutputRate = 0; },
         [&] { parameters.defaultOutputRate = 1e-9; }},
        period("CTrvRuleRejectionInstructionPeriod", rejection),
        period("CTrvRuleZuptPeriod", zupt),
        period("CTrvRuleOutputRatePeriod", rate),
        period("CTrvRuleAltitudeModePeriod", altitude),
        {"CTrvRuleOutputRateValue", [&] { rate.value = -1; }, [&] { rate.value = 10; }},
        {"CTrvRuleRoughMisalignment", [&] { rough = 24; }, [&] { rough = 23; }},
        {"CTrvRuleRoughMisalignment", [&] { rough = -1; }, [&] { rough = 0; }},
        stdDev("CTrvRuleDvlStdDevInstructionPeriod", ESensorKind::dvl),
        stdDev("CTrvRuleGpsStdDevInstructionPeriod", ESensorKind::gps),
        stdDev("CTrvRuleUsblStdDevInstructionPeriod", ESensorKind::usbl),
        stdDev("CTrvRuleDepthStdDevInstructionPeriod", ESensorKind::depth),
        stdDev("CTrvRuleLblStdDevInstructionPeriod", ESensorKind::lbl),
        stdDev("CTrvRuleEMLogStdDevInstructionPeriod", ESensorKind::emLog),
        stdDev("CTrvRuleOdometerStdDevInstructionPeriod", ESensorKind::odometer),
        period("CTrvRuleHorizontalFilteringInstructionPeriod", filtering),
        {"CTrvRuleHorizontalFilteringInstructionThreshold", [&] { filtering.threshold = -0.1f; },
         [&] { filtering.threshold = 0.0f; }},
    };
    EXPECT_EQ(Broken(), Names{});
    for (const SCase& test : cases) {
        test.breakIt();
        EXPECT_EQ(Broken(), Names{test.rule});
        test.mend();
        EXPECT_EQ(Broken(), Names{});
    }
}

TEST_F(RulesTest, LaterSensorsOnATakenChannelAreNamed) {
    Add(ESensorKind::gps);
    CTrvSensor& second = Add(ESensorKind::gps);
    CTrvSensor& third = Add(ESensorKind::gps);
    CTrvRuleReport report;
    EXPECT_FALSE(parameters.Validate(report));
    ASSERT_EQ(report.GetViolations().size(), 2u);
    EXPECT_EQ(report.GetViolations().front().object, &second);
    EXPECT_EQ(report.GetViolations().back().object, &third);
    EXPECT_EQ(report.GetViolations().front().rule->GetMessage(),
              "Some sensors uses the same datafile channel");
    EXPECT_FALSE(report.HasViolation(CTrvRuleZuptPeriod::Class(), &second));
}

TEST_F(RulesTest, AFaultDoesNotHideTheNext) {
    parameters.defaultOutputRate = 0;
    parameters.AddZupt();
    parameters.AddZupt();
    parameters.AddSensor<CTrvSensorUsbl>()->AddFilteringInstruction()->threshold = -1;
    EXPECT_EQ(Broken(), (Names{"CTrvRuleDefaultOutputRate", "CTrvRuleZuptPeriod", "CTrvRuleZuptPeriod",
                               "CTrvRuleHorizontalFilteringInstructionPeriod",
                               "CTrvRuleHorizontalFilteringInstructionThreshold"}));
    EXPECT_EQ(parameters.rules.back()->GetMessage(),
              "Filtering intruction threshold should be positive or nul");
}

// A time that is not valid cannot be compared.
TEST_F(RulesTest, InvalidTimesAreNoFault) {
    parameters.AddZupt()->end = CDateTime::Invalid();
    EXPECT_EQ(Broken(), Names{});
}
