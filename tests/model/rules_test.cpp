#include "foundation/text_id.h"
#include "model/properties/classes.h"
#include "model/rules/rule_report.h"
#include "model/rules/rules.h"
#include "model/simulation_parameters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Proprietes;
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

    // The rule colours its own rows and no other.
    void ExpectPropertiesAtFault(const CTrvRuleReport& report, const CTrvRuleViolation& violation) {
        const CObject& rowsOf = violation.rule->GetRuntimeClass().name == "CTrvRuleRoughMisalignment"
                                    ? *parameters.nelixConfiguration
                                    : *violation.object;
        const auto expected = violation.rule->GetProperties();
        ASSERT_FALSE(expected.empty());
        std::size_t found = 0;
        for (const auto* row : FindPropertyClass(rowsOf)->rows) {
            const bool atFault = std::ranges::find(expected, row) != expected.end();
            found += atFault;
            EXPECT_EQ(report.FindFault(violation.object, *row), atFault ? violation.rule : nullptr);
        }
        EXPECT_EQ(found, expected.size()) << violation.rule->GetMessage();
    }

    CTrvSimulationParameters parameters;
};

using Names = std::vector<std::string>;

} // namespace

// The whole table in the order of checking: name, a fault that this rule alone finds, the object and the
// properties that it names, and its message.
TEST_F(RulesTest, EachRuleFindsOnlyItsFault) {
    struct SCase {
        std::string name; // after "CTrvRule"
        std::function<void()> breakIt;
        std::function<void()> mend;
        const CObject* object;
        std::string message;
    };
    CTrvOutputRate& rate = Valid(parameters.AddOutputRate());
    CTrvZupt& zupt = Valid(parameters.AddZupt());
    CTrvAltitudeMode& altitude = Valid(parameters.AddAltitudeMode());
    for (const SSensorKind& kind : GetSensorKinds()) Add(kind.kind);
    CTrvRejectionInstruction& rejection = Valid(parameters.sensors[1]->rejectionGroups[1]->AddInstruction());
    auto& usbl = static_cast<CTrvSensorUsbl&>(*parameters.sensors[static_cast<int>(ESensorKind::usbl)]);
    CTrvHorizontalFilteringInstruction& filtering = Valid(usbl.AddFilteringInstruction());
    std::int32_t& rough = parameters.nelixConfiguration->roughMisalignment;
    CTrvSensor* extra = nullptr;

    const auto period = [](const char* name, CTrvPeriod& p, std::string subject) {
        return SCase{name, [&p] { p.begin = p.end; }, [&p] { p.begin = CDateTime(0); }, &p,
                     subject + " end time should be strictly greater than begin time"};
    };
    const auto stdDev = [&](const std::string& kindName, ESensorKind kind, const std::string& subject,
                            int which = 0) {
        CTrvStdDevInstruction* instruction =
            parameters.sensors[static_cast<int>(kind)]->GetStdDevInstructions()[which];
        return SCase{kindName + "StdDevInstructionPeriod", [=] { instruction->isDefault = false; },
                     [=] { instruction->isDefault = true; }, instruction,
                     subject + " standard deviation instruction end time should be strictly greater than "
                               "begin time"};
    };
    const SCase cases[] = {
        {"SimulationPeriod", [&] { parameters.begin = CDateTime(2); },
         [&] { parameters.begin = CDateTime(0); }, &parameters,
         "Simulation end time should be strictly greater than begin time"},
        {"DefaultOutputRate", [&] { parameters.defaultOutputRate = 0; },
         [&] { parameters.defaultOutputRate = 1e-9; }, &parameters,
         "Default output rate value should be strictly positive"},
        {"SensorDataFileChannel", [&] { extra->channel = parameters.sensors[0]->channel; },
         [&] { extra->channel = nullptr; }, extra = &Add(ESensorKind::gps),
         "Some sensors uses the same datafile channel"},
        period("RejectionInstructionPeriod", rejection, "Rejection intruction"),
        period("ZuptPeriod", zupt, "ZUPT"),
        period("OutputRatePeriod", rate, "Output rate"),
        period("AltitudeModePeriod", altitude, "Altitude mode"),
        {"OutputRateValue", [&] { rate.value = 0; }, [&] { rate.value = 10; }, &rate,
         "Output rate value should be strictly positive"},
        {"RoughMisalignment", [&] { rough = 24; }, [&] { rough = 23; }, &parameters,
         "Bad rough misalignement value"},
        {"RoughMisalignment", [&] { rough = -1; }, [&] { rough = 0; }, &parameters,
         "Bad rough misalignement value"},
        stdDev("Dvl", ESensorKind::dvl, "DVL"),
        stdDev("Dvl", ESensorKind::dvl, "DVL", 1),
        stdDev("Gps", ESensorKind::gps, "GPS"),
        stdDev("Usbl", ESensorKind::usbl, "USBL"),
        stdDev("Depth", ESensorKind::depth, "DEPTH"),
        stdDev("Lbl", ESensorKind::lbl, "LBL"),
        stdDev("EMLog", ESensorKind::emLog, "EM Log"),
        stdDev("Odometer", ESensorKind::odometer, "Odometer"),
        period("HorizontalFilteringInstructionPeriod", filtering, "Filtering intruction"),
        {"HorizontalFilteringInstructionThreshold", [&] { filtering.threshold = -0.1f; },
         [&] { filtering.threshold = 0.0f; }, &filtering,
         "Filtering intruction threshold should be positive or nul"},
    };
    extra->channel = nullptr;
    EXPECT_EQ(Broken(), Names{});
    Names order;
    for (const SCase& test : cases) {
        test.breakIt();
        CTrvRuleReport report;
        EXPECT_FALSE(parameters.Validate(report));
        EXPECT_EQ(Broken(), Names{"CTrvRule" + test.name});
        ASSERT_FALSE(report.IsEmpty()) << test.name;
        const CTrvRuleViolation& violation = report.GetViolations().front();
        EXPECT_EQ(violation.object, test.object) << test.name;
        EXPECT_EQ(violation.rule->GetMessage(), test.message);
        ExpectPropertiesAtFault(report, violation);
        test.mend();
        EXPECT_EQ(Broken(), Names{});
        if (order.empty() || order.back() != "CTrvRule" + test.name) order.push_back("CTrvRule" + test.name);
    }
    Names rules;
    for (const auto& rule : parameters.rules) rules.emplace_back(rule->GetRuntimeClass().name);
    EXPECT_EQ(rules, order);
}

TEST_F(RulesTest, NamesLaterSensorsOnOneChannel) {
    Add(ESensorKind::gps);
    const CTrvSensor& second = Add(ESensorKind::gps);
    const CTrvSensor& third = Add(ESensorKind::gps);
    CTrvRuleReport report;
    EXPECT_FALSE(parameters.Validate(report));
    std::vector<const CObject*> named;
    for (const CTrvRuleViolation& violation : report.GetViolations()) named.push_back(violation.object);
    EXPECT_EQ(named, (std::vector<const CObject*>{&second, &third}));
    EXPECT_FALSE(report.HasViolation(CTrvRuleZuptPeriod::Class(), &second));
}

TEST_F(RulesTest, FaultsDoNotHideEachOther) {
    parameters.AddZupt()->end = CDateTime::Invalid(); // cannot be compared and is no fault
    EXPECT_EQ(Broken(), Names{});
    parameters.defaultOutputRate = 0;
    parameters.AddZupt();
    parameters.AddZupt();
    parameters.AddSensor<CTrvSensorUsbl>()->AddFilteringInstruction()->threshold = -1;
    EXPECT_EQ(Broken(), (Names{"CTrvRuleDefaultOutputRate", "CTrvRuleZuptPeriod", "CTrvRuleZuptPeriod",
                               "CTrvRuleHorizontalFilteringInstructionPeriod",
                               "CTrvRuleHorizontalFilteringInstructionThreshold"}));
}
