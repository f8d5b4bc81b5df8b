// Every property of the model, shown and read in every unit and notation.
#include "config/config_file.h"
#include "foundation/texts.h"
#include "model/project.h"
#include "model/properties/classes.h"
#include "model/properties/rows.h"
#include "model/simulation_time_adaptor.h"
#include "values/adaptors.h"
#include "values/units.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <set>

using namespace Metier_Tarvel;
using namespace Metier_Tarvel_Proprietes;
using namespace Outils_Configuration;
using namespace Outils_Valeurs;

namespace {

struct SPlace {
    const SProperty* row;
    CObject* object;
};

// A project with one of everything, and settings to show it by.
class PropertiesTest : public testing::Test {
  protected:
    PropertiesTest() {
        std::uint16_t id = 1;
        for (const SSensorKind& kind : GetSensorKinds())
            parameters.mainInputFile->AddChannel(id++, "channel", std::string(kind.className));
        for (const SSensorKind& kind : GetSensorKinds()) parameters.AddSensor(kind.kind);
        for (const auto& sensor : parameters.sensors)
            for (const auto& group : sensor->rejectionGroups) group->AddInstruction();
        for (const auto& sensor : parameters.sensors)
            if (sensor->IsKindOf(CTrvSensorUsbl::Class()))
                static_cast<CTrvSensorUsbl&>(*sensor).AddFilteringInstruction();
        parameters.AddZupt();
        parameters.AddOutputRate();
        parameters.AddAltitudeMode();
        parameters.SetUtcReference(Date(2024, 2, 28), Outils_Temps::CDateTimeSpan(0));
        auto* graph = project.graphSettings->AddMeasureGraph("Depths");
        graph->AddCurve(nullptr, 1, 2, "Depth");
        project.instantValuesSettings->AddMeasure(nullptr, 1, 2, "Depth");
        Collect(project);
    }
    static CDateTime Date(std::uint16_t year, std::uint16_t month, std::uint16_t day) {
        CDateTime date;
        date.SetDateTime(year, month, day, 0, 0, 0, 0);
        return date;
    }
    void Collect(CObject& object) {
        const SPropertyClass* found = FindPropertyClass(object);
        ASSERT_TRUE(found) << object.GetRuntimeClass().name;
        std::set<const SProperty*> rows(found->rows.begin(), found->rows.end());
        rows.insert(found->archived.begin(), found->archived.end());
        for (const SProperty* row : rows) {
            places.push_back({row, &object});
            for (std::size_t i = 0; const CObject* child = GetChild(*row, object, i); ++i)
                Collect(const_cast<CObject&>(*child));
        }
    }
    // Of a user's size: the digits shown do not outnumber those that a double has.
    CPropertyValue Random(const SPlace& place) {
        const CPropertyValue present = place.row->get(*place.object);
        const auto any = [this](double scale) {
            return std::uniform_real_distribution(-scale, scale)(m_random);
        };
        if (std::holds_alternative<bool>(present)) return m_random() % 2 == 0;
        if (std::holds_alternative<double>(present)) return any(90);
        if (std::holds_alternative<std::string>(present)) return "B " + std::to_string(m_random() % 1000);
        if (std::holds_alternative<CDateTime>(present)) {
            const bool isTime = place.row->form.form == EPropertyForm::time;
            const double ticks = isTime ? std::fabs(any(1e12)) : any(1e12);
            return ToStoredTime(Outils_Temps::CDateTimeSpan(static_cast<std::int64_t>(ticks)));
        }
        if (place.row->form.form != EPropertyForm::word) return static_cast<std::int64_t>(m_random() % 1000);
        const auto list = static_cast<EWordList>(place.row->form.detail);
        return static_cast<std::int64_t>(m_random() % static_cast<unsigned>(GetWordList(list).count));
    }
    // The unit of every quantity that has one of this number.
    void SetUnits(std::size_t index) {
        const auto symbol = [index](std::span<const SUnitRow> units) {
            return std::string(units[index % units.size()].symbol);
        };
        configuration.Set(Cnf<"adaptors/leverArm/unit">, symbol(Units::kLength));
        configuration.Set(Cnf<"adaptors/altitude/unit">, symbol(Units::kLength));
        configuration.Set(Cnf<"adaptors/distance/unit">, symbol(Units::kDistance));
        configuration.Set(Cnf<"adaptors/misalignment/unit">, symbol(Units::kAngle));
        configuration.Set(Cnf<"adaptors/linearSpeed/unit">, symbol(Units::kSpeed));
        configuration.Set(Cnf<"adaptors/currentSpeed/unit">, symbol(Units::kSpeed));
        configuration.Set(Cnf<"adaptors/dateTimeSpan/unit">, symbol(Units::kSpan));
    }
    SPropertyContext Context() {
        adaptors.Configure(configuration);
        return {adaptors, time, parameters};
    }

    CTrvProject project;
    CTrvSimulationParameters& parameters = *project.simulationParameters;
    std::vector<SPlace> places;
    CTrvCnfConfigFile configuration;
    CTrvAdaptors adaptors;
    CTrvSimulationTimeAdaptor time{adaptors.GetDateTimeSpan(), adaptors.GetDateTime()};
    std::mt19937 m_random{20261125};
};

std::string_view Refusal(const SReading& reading) { return Outils_Texte::GetText(reading.refusal); }

} // namespace

TEST_F(PropertiesTest, RowsAreTitledExplainedAndArchived) {
    for (const SPropertyClass& entry : GetPropertyClasses()) {
        SCOPED_TRACE(std::string(entry.runtimeClass().name));
        for (const CPropertyRows rows : {entry.rows, entry.archived}) {
            EXPECT_EQ(std::set<const SProperty*>(rows.begin(), rows.end()).size(), rows.size());
            for (const SProperty* row : rows) {
                EXPECT_NE(row->help, EText::none);
                EXPECT_TRUE(row->label != EText::none || row->show) << static_cast<int>(row->help);
                EXPECT_EQ((row->get != nullptr) + (row->show != nullptr) + (row->child != nullptr), 1);
                EXPECT_TRUE(!row->set || row->address);
            }
        }
        // What can be edited is archived; the reference of all GPS is archived with the parameters.
        for (const SProperty* row : entry.rows) {
            const bool isArchived = std::ranges::find(entry.archived, row) != entry.archived.end();
            EXPECT_TRUE(isArchived || !row->set || row == &Rows::kGpsAltitude)
                << Outils_Texte::GetText(row->label);
        }
    }
}

// The settings in turn: units, separator, digits, notations of angles, dates and lengths of time.
TEST_F(PropertiesTest, ShownTextReadsBack) {
    int count = 0;
    for (std::size_t round = 0; round < 32; ++round) {
        SetUnits(round);
        configuration.Set(Cnf<"adaptors/decimalSeparator">, round % 3 == 0 ? u',' : u'.');
        configuration.Set(Cnf<"adaptors/leverArm/precision">, static_cast<int>(round % 8));
        configuration.Set(Cnf<"adaptors/dateTimeSpan/precision">, static_cast<int>(round % 8));
        configuration.Set(Cnf<"adaptors/geographicPosition/notation">, EAngleNotation(round % 4));
        configuration.Set(Cnf<"adaptors/geographicPosition/useMathematicalSign">, round % 8 < 4);
        configuration.Set(Cnf<"adaptors/dateTimeSpan/spanNotation">, ESpanNotation(round / 2 % 2));
        // A second of the Unix time reads as a length of time, which comes first.
        const bool isTotal = round / 2 % 2 == 1;
        configuration.Set(Cnf<"adaptors/dateTime/dateNotation">, EDateNotation(round % (isTotal ? 3 : 4)));
        time.mode = round % 2 == 0 ? timeElapsed : timeUtc;
        const SPropertyContext context = Context();
        for (const SPlace& place : places) {
            const auto& [row, object] = place;
            if (!row->set) continue;
            const CPropertyValue former = row->get(*object);
            row->set(*object, Random(place));
            const CPropertyValue value = row->get(*object);
            const std::string text = Show(*row, context, *object);
            // Digits that are not shown are kept.
            EXPECT_EQ(Read(*row, context, *object, text).value, value) << text;
            row->set(*object, former);
            const SReading reading = Read(*row, context, *object, text);
            ASSERT_TRUE(reading.value) << Outils_Texte::GetText(row->label) << ": " << text;
            EXPECT_EQ(row->get(*object), former) << text;
            row->set(*object, *reading.value);
            if (*reading.value != CPropertyValue(0.0)) { // "-0.00" is shown as "0.00"
                EXPECT_EQ(Show(*row, context, *object), text) << Outils_Texte::GetText(row->label);
            }
            ++count;
        }
    }
    EXPECT_GT(count, 32 * 100);
}

TEST_F(PropertiesTest, NumbersAreTakenAsTyped) {
    const SPropertyContext context = Context();
    auto& dvl = static_cast<CTrvSensorDvl&>(*parameters.sensors[1]);
    const auto number = [&](const SProperty& row, const CObject& object, std::string_view text) {
        const SReading reading = Read(row, context, object, text);
        return reading.value ? std::get<double>(*reading.value) : NAN;
    };
    EXPECT_EQ(number(Rows::kArm1, *dvl.leverArm, " 12 cm "), 0.12);
    EXPECT_EQ(number(Rows::kArm1, *dvl.leverArm, "12cm"), 0.12);
    EXPECT_EQ(number(Rows::kArm1, *dvl.leverArm, "1,5"), 1.5);
    EXPECT_EQ(number(Rows::kScaleFactor<CTrvSensorDvl>, dvl, "2"), 0.02);
    EXPECT_EQ(number(Rows::kOutputRate, *parameters.outputRates[0], "5"), 5.0);
    EXPECT_EQ(number(Rows::kOutputRate, *parameters.outputRates[0], "5 Hz"), 5.0);
    // A value that a rule forbids is taken; the rule says so before a run.
    EXPECT_EQ(number(Rows::kOutputRate, *parameters.outputRates[0], "-5"), -5.0);
    EXPECT_FALSE(Rows::kOutputRate.range.Contains(0.0));
    EXPECT_EQ(Read(Rows::kZuptMode, context, *parameters.zupts[0], "autostatic BENCH").value,
              CPropertyValue(std::int64_t{5}));
    // A value without a word, as a damaged project has it, stays what it is.
    parameters.zupts[0]->mode = 99;
    EXPECT_EQ(Show(Rows::kZuptMode, context, *parameters.zupts[0]), "99");
    EXPECT_EQ(Read(Rows::kZuptMode, context, *parameters.zupts[0], "99").value,
              CPropertyValue(std::int64_t{99}));
}

TEST_F(PropertiesTest, BadTextIsRefused) {
    // A free text may be any of them but the last.
    std::vector<std::string> cases = {"", " "};
    std::istringstream words("x nan inf 1e999 1_parsec 1;2 #12 99999999999999999999_00:00:00 "
                             "31/12/1600_00:00:00.000 01/01/30828_00:00:00.000 30/02/2024_00:00:00.000");
    for (std::string word; words >> word; cases.push_back(word)) std::ranges::replace(word, '_', ' ');
    cases.push_back(std::string(10 << 20, '1'));
    for (const std::int32_t mode : {timeElapsed, timeUtc}) {
        time.mode = mode;
        const SPropertyContext context = Context();
        for (const SPlace& place : places) {
            const auto& [row, object] = place;
            if (!row->get) continue;
            const CPropertyValue before = row->get(*object);
            const bool isFree = row->set && row->form.form == EPropertyForm::text;
            for (const std::string& text : cases) {
                const SReading reading = Read(*row, context, *object, text);
                if (isFree && &text != &cases.back()) {
                    EXPECT_TRUE(reading.value) << text;
                    continue;
                }
                EXPECT_FALSE(reading.value)
                    << Outils_Texte::GetText(row->label) << ": " << text.substr(0, 40);
                EXPECT_EQ(Refusal(reading), "Invalid value");
            }
            EXPECT_EQ(row->get(*object), before);
        }
    }
    // Beyond the member, though a number; and a date before the clock of the calendar begins.
    const SPropertyContext context = Context();
    EXPECT_FALSE(Read(Rows::kRoughMisalignment, context, *parameters.nelixConfiguration, "2147483648").value);
    const auto& usbl = static_cast<CTrvSensorUsbl&>(*parameters.sensors[4]);
    EXPECT_FALSE(Read(Rows::kThreshold, context, *usbl.filteringInstructions[0], "1e200").value);
    EXPECT_FALSE(Read(Rows::kFrom, context, *parameters.zupts[0], "-9999999 00:00:00").value);
    EXPECT_TRUE(Read(Rows::kFrom, context, *parameters.zupts[0], "-9 00:00:00").value);
}
