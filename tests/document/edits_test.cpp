#include "document/edit_fixture.h"

#include "foundation/texts.h"
#include "model/properties/classes.h"

#include <map>

namespace test {

using namespace Metier_Tarvel_Proprietes;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Another value of the same type; each call gives one that was not there before.
void Alter(bool& value) { value = !value; }
void Alter(std::int32_t& value) { ++value; }
void Alter(std::int64_t& value) { ++value; }
void Alter(std::uint32_t& value) { ++value; }
void Alter(float& value) { value += 0.5f; }
void Alter(double& value) { value += 0.5; }
void Alter(std::string& value) { value += 'x'; }
void Alter(CDateTime& value) { value = CDateTime(value.GetTicks() + 1); }
void Alter(CLeverArm& value) { value.xv2 += 1; }
void Alter(CMisalignment& value) { value.pitch += 1; }
void Alter(CPosition& value) { value.longitude += 1; }
void Alter(CTrvCurrentModeling& value) { value.sigma += 1; }
void Alter(CTrvSpeedBias& value) { value.y += 1; }
void Alter(CPropertyValue& value) {
    std::visit([](auto& held) { Alter(held); }, value);
}

// Hint and message of every edit by its name after "CTrvAct".
struct SExpected {
    int hint;
    int failure = 0;
};
// clang-format off
const std::map<std::string, SExpected, std::less<>> kExpected = {
    {"AddDataFile", {1, 303}}, {"MoveDataFiles", {31, 302}}, {"RemoveDataFile", {2, 326}}, {"AddSensorGps", {3, 301}}, {"AddSensorDvl", {3, 301}},
    {"AddSensorEMLog", {3, 301}}, {"AddSensorDepth", {3, 301}}, {"AddSensorUsbl", {3, 301}},
    {"AddSensorLbl", {3, 301}}, {"AddSensorOdometer", {3, 301}}, {"AddSensorEventMarker", {3, 301}},
    {"AddSensorPlatformOrientation", {3, 301}}, {"RemoveSensor", {13}}, {"ChangeSensorGps", {12}},
    {"ChangeSensorDvl", {12}}, {"ChangeSensorEMLog", {12}}, {"ChangeSensorDepth", {12}}, {"ChangeSensorUsbl", {12}},
    {"ChangeSensorLbl", {12}}, {"ChangeSensorOdometer", {12}}, {"ChangeSensorEventMarker", {12}},
    {"ChangeSensorPlatformOrientation", {12}}, {"ChangeSensorTimeOffset", {9}},
    {"ChangeSensorSynchronizedOutput", {10}}, {"ChangeSensorDataFileChannel", {11}},
    {"ChangeDataFileTimeOffset", {8}}, {"ChangeSimulationParameters", {6}}, {"ChangeNelixConfiguration", {7, 348}},
    {"AddRejectionInstruction", {4, 309}}, {"ChangeRejectionInstruction", {5}}, {"RemoveRejectionInstruction", {14}},
    {"AddZupt", {15, 336}}, {"ChangeZupt", {18}}, {"RemoveZupt", {21}}, {"AddOutputRate", {16, 337}},
    {"ChangeOutputRate", {19}}, {"RemoveOutputRate", {22}}, {"AddAltitudeMode", {17, 751}},
    {"ChangeAltitudeMode", {20}}, {"RemoveAltitudeMode", {23}}, {"AddHorizontalFilteringInstruction", {46, 359}},
    {"ChangeHorizontalFilteringInstruction", {47}}, {"RemoveHorizontalFilteringInstruction", {48}},
    {"ChangeDvlStdDevInstruction", {36}}, {"ChangeGpsStdDevInstruction", {37}}, {"ChangeGpsStdDevThreshold", {37}},
    {"ChangeUsblStdDevInstruction", {38}}, {"ChangeDepthStdDevInstruction", {39}},
    {"ChangeLblStdDevInstruction", {40}}, {"ChangeEMLogStdDevInstruction", {41}},
    {"ChangeOdometerStdDevInstruction", {42}}, {"Add1DGraphMeasure", {28, 765}}, {"Add1DGraphEnum", {28, 765}},
    {"Remove1DGraph", {30, 800}}, {"Add1DCurve", {29, 766}}, {"Change1DCurve", {45}}, {"Remove1DCurve", {44, 818}},
    {"AddInstantValuesMeasure", {32, 802}}, {"AddInstantValuesEnum", {33, 803}}, {"RemoveInstantValuesMeasure", {34}},
    {"RemoveInstantValuesEnum", {35}}, {"MoveInstantValue", {32}},
};
// clang-format on

} // namespace

class EditsTest : public CEditTest {
  protected:
    // The project with one of everything that edits change.
    void CreateWhole() {
        Create();
        for (const SSensorKind& kind : GetSensorKinds()) ASSERT_TRUE(m_edits.AddSensor(kind.kind));
        CTrvSimulationParameters& p = Parameters();
        p.AddZupt();
        p.AddOutputRate();
        p.AddAltitudeMode();
        Get<CTrvSensorDvl>().rejectionGroups[1]->AddInstruction();
        Get<CTrvSensorUsbl>().AddFilteringInstruction();
        ASSERT_TRUE(m_edits.Do(Edits::kAdd1DGraphMeasure, Measure("GPS_1", "Altitude")));
        ASSERT_TRUE(m_document.Save());
        m_view.Take();
    }
    CTrv1DGraphMeasure& Graph() {
        return static_cast<CTrv1DGraphMeasure&>(*m_document.GetProject()->graphSettings->graphs.front());
    }
    void ExpectDone(const SEditRow& row, bool done, const CObject* object) {
        EXPECT_TRUE(done) << row.className;
        EXPECT_THAT(m_view.Take(), ElementsAre(Update(row.hint, object))) << row.className;
        EXPECT_TRUE(m_document.IsModified() && m_document.AreParametersChanged()) << row.className;
        ASSERT_TRUE(m_document.Save());
    }
    // Each member by itself: there and back, the whole project is what it was.
    template <class Target, class Values, class... More>
    void CheckChange(const TEditRow<Target&, Values, More...>& row, std::type_identity_t<Target>& target,
                     More... more) {
        const Values former = Values::Of(target);
        const auto before = Bytes();
        const auto check = [&](auto index) {
            Values values = former;
            Alter(std::get<index()>(values.GetAll()));
            ExpectDone(row, m_edits.Do(row, target, values, more...), &target);
            EXPECT_NE(Bytes(), before) << row.className << " member " << index();
            EXPECT_TRUE(m_edits.Do(row, target, former, more...));
            EXPECT_EQ(Bytes(), before) << row.className << " member " << index();
            m_view.Take();
        };
        [&]<std::size_t... Index>(std::index_sequence<Index...>) {
            (check(std::integral_constant<std::size_t, Index>{}), ...);
        }
        (std::make_index_sequence<std::tuple_size_v<typename Values::CTuple>>{});
    }
    // What is added is removed again.
    template <class Object, class List, class... Arguments>
    void CheckAddition(const TEditRow<Arguments...>& add, const TEditRow<const Object&>& remove,
                       const List& list, std::type_identity_t<Arguments>... arguments) {
        const auto before = Bytes();
        const bool added = m_edits.Do(add, std::forward<Arguments>(arguments)...);
        ASSERT_FALSE(list.empty());
        const auto& object = static_cast<const Object&>(*list.back());
        ExpectDone(add, added, &object);
        ExpectDone(remove, m_edits.Do(remove, object), &object);
        EXPECT_EQ(Bytes(), before) << add.className;
    }
    // Every property that an object and its parts show, changed by itself. `target` is what the views hear
    // of.
    void CheckProperties(CObject& target, CObject& owner, int& count) {
        for (const SProperty* row : FindPropertyClass(owner)->rows) {
            for (std::size_t i = 0; const CObject* found = GetChild(*row, owner, i); ++i) {
                auto& child = const_cast<CObject&>(*found);
                CheckProperties(FindEdit(target, found) ? target : child, child, count);
            }
            if (!row->set) continue;
            ++count;
            ASSERT_TRUE(CTrvDocumentEdits::CanChange(target, owner, *row)) << Text(row->label);
            const auto before = Bytes();
            const CPropertyValue former = row->get(owner);
            CPropertyValue value = former;
            Alter(value);
            EXPECT_TRUE(m_edits.Change(target, owner, *row, value));
            EXPECT_NE(Bytes(), before) << Text(row->label);
            EXPECT_EQ(m_view.Take(),
                      std::vector{Update(FindEdit(target, row->address(owner))->hint, &target)});
            EXPECT_TRUE(m_edits.Change(target, owner, *row, former));
            EXPECT_EQ(Bytes(), before) << Text(row->label);
            m_view.Take();
        }
    }
};

TEST_F(EditsTest, RowsHaveTheirHintsAndMessages) {
    EXPECT_EQ(GetEditRows().size(), kExpected.size());
    for (const SEditRow* row : GetEditRows()) {
        const auto expected = kExpected.find(row->className.substr(std::string_view("CTrvAct").size()));
        ASSERT_NE(expected, kExpected.end()) << row->className;
        EXPECT_EQ(row->hint, expected->second.hint) << row->className;
        EXPECT_EQ(static_cast<int>(row->failureText), expected->second.failure) << row->className;
    }
}

// Of each kind of value one; that the rows have the right members is checked with the properties below.
TEST_F(EditsTest, ChangesWriteEachMember) {
    CreateWhole();
    using namespace Edits;
    auto& p = Parameters();
    auto& gps = Get<CTrvSensorGps>();
    auto& dvl = Get<CTrvSensorDvl>();
    CheckChange(kChangeSensorGps, gps);
    CheckChange(kChangeSensorDvl, dvl);
    CheckChange(kChangeSensorPlatformOrientation, Get<CTrvSensorPlatformOrientation>());
    CheckChange(kChangeSensorSynchronizedOutput, gps);
    CheckChange(kChangeSimulationParameters, p);
    CheckChange(kChangeNelixConfiguration, *p.nelixConfiguration, std::filesystem::path());
    CheckChange(kChangeZupt, *p.zupts[0]);
    CheckChange(kChangeHorizontalFilteringInstruction, *Get<CTrvSensorUsbl>().filteringInstructions[0]);
    CheckChange(kChangeDvlStdDevInstruction, *dvl.waterTrackStdDevInstruction);
    CheckChange(kChangeUsblStdDevInstruction, *Get<CTrvSensorUsbl>().stdDevInstruction);
    CheckChange(kChange1DCurve, *Graph().curves[0]);
    ExpectDone(kChangeSensorTimeOffset, m_edits.Do(kChangeSensorTimeOffset, gps, Seconds(-2)), &gps);
    EXPECT_EQ(ToSpan(gps.timeOffset), Seconds(-2));
    auto& file = *p.mainInputFile;
    ExpectDone(kChangeDataFileTimeOffset, m_edits.Do(kChangeDataFileTimeOffset, file, Seconds(1)), &file);
    EXPECT_EQ(ToSpan(file.timeOffset), Seconds(1));
}

TEST_F(EditsTest, ChangesAnyPropertyOnItsOwn) {
    CreateWhole();
    CTrvSimulationParameters& p = Parameters();
    int count = 0;
    CheckProperties(p, p, count);
    CheckProperties(*p.nelixConfiguration, *p.nelixConfiguration, count);
    CheckProperties(*p.mainInputFile, *p.mainInputFile, count);
    for (const auto& sensor : p.sensors) CheckProperties(*sensor, *sensor, count);
    CheckProperties(*p.zupts[0], *p.zupts[0], count);
    CheckProperties(*p.outputRates[0], *p.outputRates[0], count);
    CheckProperties(*p.altitudeModes[0], *p.altitudeModes[0], count);
    CheckProperties(*Graph().curves[0], *Graph().curves[0], count);
    EXPECT_GT(count, 150);
    // No edit has it: nothing happens.
    const auto before = Bytes();
    EXPECT_FALSE(m_edits.Change(p, p, Rows::kRunGpsAltitude, std::int64_t{1}));
    EXPECT_EQ(Bytes(), before);
}

TEST_F(EditsTest, AddsAndRemovesAgain) {
    CreateWhole();
    using namespace Edits;
    auto& p = Parameters();
    auto& project = *m_document.GetProject();
    auto& graphs = project.graphSettings->graphs;
    auto& values = *project.instantValuesSettings;
    CheckAddition(kAddZupt, kRemoveZupt, p.zupts);
    CheckAddition(kAddOutputRate, kRemoveOutputRate, p.outputRates);
    CheckAddition(kAddAltitudeMode, kRemoveAltitudeMode, p.altitudeModes);
    CTrvRejectionGroup& group = *Get<CTrvSensorDvl>().rejectionGroups[0];
    CheckAddition(kAddRejectionInstruction, kRemoveRejectionInstruction, group.instructions, group);
    auto& usbl = Get<CTrvSensorUsbl>();
    CheckAddition(kAddHorizontalFilteringInstruction, kRemoveHorizontalFilteringInstruction,
                  usbl.filteringInstructions, usbl);
    CheckAddition(kAdd1DGraphMeasure, kRemove1DGraph, graphs, Measure("GPS_1", "Altitude"));
    CheckAddition(kAdd1DGraphEnum, kRemove1DGraph, graphs, Enum());
    CheckAddition(kAdd1DCurve, kRemove1DCurve, Graph().curves, Graph(), Measure("DEPTH", "Depth"));
    CheckAddition(kAddInstantValuesMeasure, kRemoveInstantValuesMeasure, values.measures,
                  Measure("GPS_1", "Latitude"));
    CheckAddition(kAddInstantValuesEnum, kRemoveInstantValuesEnum, values.enums, Enum());
    for (const SSensorKind& kind : GetSensorKinds()) {
        const CTrvSensor& sensor = *p.sensors.front();
        EXPECT_EQ(sensor.GetKind().kind, kind.kind);
        ExpectDone(kRemoveSensor, m_edits.Do(kRemoveSensor, sensor), &sensor);
    }
    for (const SSensorKind& kind : GetSensorKinds()) {
        const bool added = m_edits.AddSensor(kind.kind);
        EXPECT_EQ(&p.sensors.back()->GetKind(), &kind);
        ExpectDone(*kAddSensor[static_cast<int>(kind.kind)], added, p.sensors.back().get());
    }
    auto& channel = *p.mainInputFile->channels[1];
    auto& gps = Get<CTrvSensorGps>();
    ExpectDone(kChangeSensorDataFileChannel, m_edits.Do(kChangeSensorDataFileChannel, gps, channel), &gps);
    EXPECT_EQ(gps.channel, &channel);
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

TEST_F(EditsTest, EmptyGraphsGoWithTheirCurves) {
    CreateWhole();
    auto& graphs = m_document.GetProject()->graphSettings->graphs;
    CTrv1DGraphMeasure& graph = Graph();
    ASSERT_TRUE(m_edits.Do(Edits::kAdd1DCurve, graph, Measure("DEPTH", "Depth")));
    const CTrv1DCurve& mirrored = *graph.curves.back();
    EXPECT_EQ(std::tuple(mirrored.label, mirrored.factor), std::tuple("DEPTH - Depth", -1.0));
    ASSERT_TRUE(m_edits.Do(Edits::kRemove1DCurve, mirrored));
    m_view.Take();
    const CTrv1DCurve* last = graph.curves.back().get();
    EXPECT_TRUE(m_edits.Do(Edits::kRemove1DCurve, *last));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(44, last), Update(30, &graph)));
    EXPECT_THAT(graphs, IsEmpty());
}

TEST_F(EditsTest, ConfigurationFilesReplaceValues) {
    Create();
    auto& ins = *Parameters().nelixConfiguration;
    auto values = ValuesOf(Edits::kChangeNelixConfiguration, ins);
    values.Get<&CTrvNelixConfiguration::fineMisalignment>() = {1, 2, 3};
    values.Get<&CTrvNelixConfiguration::userMisalignment>() = {4, 5, 6};
    std::ofstream(m_folder / "ins.txt") << "[System]\nbias=4,5,6\nAxisor=9\n[Info]\nType=17\n";
    std::ofstream(m_folder / "bad.txt") << "[System]\nbias=7,8,9\nAxisor=no\n[Info]\nType=1\n";
    EXPECT_TRUE(m_edits.Do(Edits::kChangeNelixConfiguration, ins, values, m_folder / "ins.txt"));
    const auto state = [&] {
        return std::tuple(ins.fineMisalignment->heading, ins.userMisalignment->heading, ins.roughMisalignment,
                          ins.type->equipment);
    };
    EXPECT_EQ(state(), std::tuple(4.0, 4.0, 9, 17));
    m_view.Take();
    values.Get<&CTrvNelixConfiguration::userMisalignment>() = {7, 8, 9};
    for (const char* name : {"bad.txt", "gone.txt"})
        ExpectRefused(m_edits.Do(Edits::kChangeNelixConfiguration, ins, values, m_folder / name),
                      EText::insConfigurationFailed);
    EXPECT_EQ(state(), std::tuple(4.0, 4.0, 9, 17));
}

TEST_F(EditsTest, NoProjectMeansNoEditNoMessage) {
    CTrvZupt zupt;
    m_host.m_dataFile = m_folder / "r.tarin";
    EXPECT_FALSE(m_edits.AddSensor(ESensorKind::gps));
    EXPECT_FALSE(m_edits.Do(Edits::kAddDataFile));
    EXPECT_FALSE(m_edits.Do(Edits::kChangeZupt, zupt, {1, CDateTime(), CDateTime()}));
    EXPECT_FALSE(CTrvActChangeZupt(m_document, zupt, {1, CDateTime(), CDateTime()}).Do());
    EXPECT_FALSE(m_edits.Change(zupt, zupt, Rows::kZuptMode, std::int64_t{1}));
    EXPECT_EQ(zupt.mode, 0);
    EXPECT_FALSE(m_document.IsModified());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    EXPECT_THAT(m_view.Take(), IsEmpty());
}

TEST_F(EditsTest, RefusalsShowTheirMessage) {
    Record(m_folder / "r.tarin", 14, 10); // equipment without an altitude aid
    Create();
    using namespace Edits;
    auto& parameters = Parameters();
    ExpectRefused(m_edits.Do(kAddAltitudeMode), EText::altitudeModeFailed);
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::dvl));
    m_view.Take();
    ExpectRefused(m_edits.AddSensor(ESensorKind::dvl), EText::tooManySensors);
    ASSERT_TRUE(m_document.Save());
    parameters.mainInputFile->FindChannel("LBL")->sensorClass.clear();
    ExpectRefused(m_edits.AddSensor(ESensorKind::lbl), EText::sensorFailed);
    EXPECT_EQ(parameters.sensors.size(), 1u);

    auto* graph = m_document.GetProject()->graphSettings->AddMeasureGraph("speeds");
    CTrv1DGraphMeasure foreign;
    auto* curve = foreign.AddCurve(nullptr, 0, 0, "");
    CTrv1DCurve loose;
    // An empty graph takes any measure.
    ASSERT_TRUE(m_edits.Do(kAdd1DCurve, *graph, Measure("DVL_BT", "Speed X")));
    ASSERT_TRUE(m_document.Save());
    m_view.Take();
    ExpectRefused(m_edits.Do(kAdd1DCurve, *graph, Measure("DVL_BT", "Altitude")), EText::curveFailed);
    CTrvMeasureDef nowhere;
    ExpectRefused(m_edits.Do(kAdd1DGraphMeasure, nowhere), EText::graphFailed);
    ExpectRefused(m_edits.Do(kAddInstantValuesMeasure, nowhere), EText::instantMeasureFailed);
    ExpectRefused(m_edits.Do(kRemove1DGraph, foreign), EText::graphNotRemoved);
    ExpectRefused(m_edits.Do(kRemove1DCurve, loose), EText::curveNotRemoved);
    EXPECT_EQ(graph->curves.size(), 1u);
    EXPECT_EQ(foreign.curves.back().get(), curve);
    EXPECT_FALSE(m_edits.Do(kRemoveZupt, CTrvZupt())); // silently
    EXPECT_FALSE(m_document.IsModified());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

TEST_F(EditsTest, FurtherGpsTakesTheFirstLeverArm) {
    Create();
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::gps));
    auto& first = Get<CTrvSensorGps>();
    EXPECT_TRUE(m_edits.Do(Edits::kChangeSensorGps, first, {CLeverArm(1, 2, 3), 0}));
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::gps));
    EXPECT_TRUE(m_edits.Do(Edits::kChangeSensorGps, first, {CLeverArm(9, 9, 9), 0}));
    EXPECT_EQ(Parameters().sensors.back()->GetLeverArm()->xv2, 2.0);
}

} // namespace test
