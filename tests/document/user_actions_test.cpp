#include "dataaccess/test_recording.h"
#include "document/edits.h"
#include "document/project_creation.h"
#include "document/scripted_host.h"
#include "foundation/archive.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

#include "config/config_file.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <set>

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Texte::EText;
using Outils_Texte::GetText;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Update = std::pair<int, const CObject*>;

// Writes down what the document tells its views, and whether a data file told of is still in the project.
class CUpdateView : public IDocumentView {
  public:
    explicit CUpdateView(const CTrvDocument& document) : m_document(document) {}
    void OnUpdate(EHint hint, const CObject* object) override {
        if (hint == hintChannelFound || hint == hintDataFileContentChanged) return; // of the threads
        m_updates.push_back({hint, object});
        if (hint == hintDataFileRemoved) {
            const auto files = m_document.GetProject()->simulationParameters->GetDataFiles();
            m_removedFileWasThere = std::ranges::find(files, object) != files.end();
        }
    }
    std::vector<Update> Take() { return std::exchange(m_updates, {}); }
    bool m_removedFileWasThere = false;

  private:
    const CTrvDocument& m_document;
    std::vector<Update> m_updates;
};

std::string Text(EText id) { return std::string(GetText(id)); }

class UserActions : public testing::Test {
  protected:
    UserActions() { Record(m_folder / "r.tarin", 9, 10); }

    // A recording with a channel for every kind of sensor, whose UTC origin is at `hour`.
    static void Record(const std::filesystem::path& path, std::uint8_t equipment, int hour) {
        constexpr std::string_view channels[] = {"IMU",      "DVL_BT",    "EM_LOG_1",  "GPS_1",
                                                 "DEPTH",    "USBL_1",    "LBL",       "UTC",
                                                 "ODOMETER", "SYNCHRO_1", "NELIX_NAV", "PLATFORM_ORIENT"};
        test::CTestRecording recording(path);
        ASSERT_TRUE(recording.GetWriter().Create(path, channels));
        Persistance_Xpf::CXpfTarinImuPacketV2 imu;
        imu.SetUInt8(2, equipment);
        ASSERT_TRUE(recording.GetWriter().Write("IMU", imu));
        recording.Gps(0.1, 48.5, -4.5, 10);
        recording.Utc(0.2, 2024, hour, 0, 0.2f);
        ASSERT_TRUE(recording.GetWriter().Close());
    }
    void Create() {
        std::string message;
        auto project = CreateProject({m_folder / "r.tarin", m_folder / "p.tarprj"}, message);
        ASSERT_TRUE(project) << message;
        ASSERT_TRUE(m_document.NewFromProject(std::move(project), m_folder / "p.tarprj"));
        m_view.Take();
    }
    CTrvSimulationParameters& Parameters() { return *m_document.GetProject()->simulationParameters; }
    template <class Sensor>
    Sensor& Get() {
        for (const auto& sensor : Parameters().sensors)
            if (auto* found = dynamic_cast<Sensor*>(sensor.get())) return *found;
        throw std::runtime_error("no such sensor");
    }
    // The measure of the main file's channel, or of another file's.
    const CTrvMeasureDef& Measure(std::string_view channel, std::string_view name,
                                  const CTrvDataFile* file = nullptr) {
        if (!file) file = Parameters().mainInputFile.get();
        for (const auto& layer : m_document.GetProject()->dataModel->m_layers)
            for (const auto& measure : layer->m_measures)
                if (layer->m_dataFile == file && layer->m_name == channel && measure->m_name == name)
                    return *measure;
        throw std::runtime_error("no such measure");
    }
    const CTrvEnumDef& Enum() {
        for (const auto& layer : m_document.GetProject()->dataModel->m_layers)
            if (!layer->m_enums.empty()) return *layer->m_enums.front();
        throw std::runtime_error("no enumeration");
    }
    CTrvDataFile* AddFile(const char* name, int hour = 11) {
        Record(m_folder / name, 9, hour);
        m_host.m_dataFile = m_folder / name;
        return m_edits.AddDataFile() ? Parameters().externalFiles.back().get() : nullptr;
    }
    std::vector<std::uint8_t> Bytes() {
        Outils_Objets::CMemoryStream stream;
        Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::store, nullptr, m_folder / "copy");
        archive.WriteObject(m_document.GetProject());
        archive.Close();
        return {stream.GetBytes().begin(), stream.GetBytes().end()};
    }
    // Takes a change back, and makes it once more: each time the whole project is what it was.
    template <class Values, class Edit>
    void CheckThereAndBack(const std::string& name, const Values& former, const Values& present,
                           const std::vector<std::uint8_t>& before, Edit edit) {
        const auto after = Bytes();
        EXPECT_NE(after, before) << name;
        EXPECT_TRUE(edit(former));
        EXPECT_EQ(Bytes(), before) << name;
        EXPECT_TRUE(edit(present));
        EXPECT_EQ(Bytes(), after) << name;
        m_view.Take();
        ASSERT_TRUE(m_document.Save());
    }
    // An edit that must leave document and model as they were, with this message.
    void ExpectRefused(bool done, EText message) {
        EXPECT_FALSE(done) << Text(message);
        EXPECT_THAT(m_host.TakeMessages(), ElementsAre(Text(message)));
        EXPECT_THAT(m_view.Take(), IsEmpty()) << Text(message);
    }

    test::CTemporaryFolder m_folder;
    test::CScriptedHost m_host;
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    CTrvDocument m_document{m_host, m_host.m_queue, m_configuration};
    CUpdateView m_view{m_document};
    CTrvDocumentEdits m_edits = m_document.GetEdits();
    struct SRegistration {
        explicit SRegistration(UserActions& test) { test.m_document.AddView(&test.m_view); }
    } m_registration{*this};
};

TEST_F(UserActions, EveryActionTellsTheViewsByItsHint) {
    Create();
    auto& p = Parameters();
    auto& project = *m_document.GetProject();
    std::set<std::string, std::less<>> tried;
    // `object` is what the hint must carry: of a removal the identity that is left.
    const auto expect = [&](std::string name, int hint, bool done, const CObject* object) {
        tried.insert(name);
        EXPECT_TRUE(done) << name;
        EXPECT_THAT(m_view.Take(), ElementsAre(Update(hint, object))) << name;
        EXPECT_TRUE(m_document.IsModified() && m_document.AreParametersChanged()) << name;
        ASSERT_TRUE(m_document.Save());
    };
    for (const SSensorKind& kind : GetSensorKinds()) {
        const bool added = m_edits.AddSensor(kind.kind);
        expect("CTrvActAdd" + std::string(kind.className.substr(4)), 3, added, p.sensors.back().get());
    }
    const auto change = [&](const char* name, int hint, auto edit, auto& target, auto values) {
        using CValues = decltype(values);
        const auto run = [&](const CValues& given) { return (m_edits.*edit)(target, given); };
        if constexpr (requires { CValues::Of(target); }) {
            const auto before = Bytes();
            const CValues former = CValues::Of(target);
            expect(std::string("CTrvActChange") + name, hint, run(values), &target);
            CheckThereAndBack(name, former, CValues::Of(target), before, run);
        } else {
            expect(std::string("CTrvActChange") + name, hint, run(values), &target);
        }
    };
    using E = CTrvDocumentEdits;
    auto& gps = Get<CTrvSensorGps>();
    auto& dvl = Get<CTrvSensorDvl>();
    auto& usbl = Get<CTrvSensorUsbl>();
    auto& odometer = Get<CTrvSensorOdometer>();
    change("SensorGps", 12, &E::ChangeSensorGps, gps, SGpsValues{{1, 2, 3}, 1});
    auto dvlValues = SDvlValues::Of(dvl);
    dvlValues.leverArm = {1, 2, 3};
    dvlValues.misalignment = {4, 5, 6};
    dvlValues.scaleFactor = 0.5;
    dvlValues.currentModeling.sigma = 7;
    dvlValues.speedBias.x = 8;
    change("SensorDvl", 12, &E::ChangeSensorDvl, dvl, dvlValues);
    change("SensorEMLog", 12, &E::ChangeSensorEMLog, Get<CTrvSensorEMLog>(), SLeverArmValues{{1, 2, 3}});
    change("SensorDepth", 12, &E::ChangeSensorDepth, Get<CTrvSensorDepth>(), SLeverArmValues{{1, 2, 3}});
    change("SensorUsbl", 12, &E::ChangeSensorUsbl, usbl, SUsblValues{{1, 2, 3}, "B7"});
    change("SensorLbl", 12, &E::ChangeSensorLbl, Get<CTrvSensorLbl>(), SLeverArmValues{{1, 2, 3}});
    change("SensorOdometer", 12, &E::ChangeSensorOdometer, odometer,
           SOdometerValues{{1, 2, 3}, {4, 5, 6}, 0.5});
    change("SensorEventMarker", 12, &E::ChangeSensorEventMarker, Get<CTrvSensorEventMarker>(),
           SEventMarkerValues{"2"});
    change("SensorPlatformOrientation", 12, &E::ChangeSensorPlatformOrientation,
           Get<CTrvSensorPlatformOrientation>(),
           SPlatformOrientationValues{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {3, 2, 1}});
    CTrvSensor& sensor = gps;
    change("SensorTimeOffset", 9, &E::ChangeSensorTimeOffset, sensor, test::Seconds(-2));
    EXPECT_EQ(ToSpan(gps.timeOffset), test::Seconds(-2));
    change("SensorSynchronizedOutput", 10, &E::ChangeSensorSynchronizedOutput, sensor, true);
    EXPECT_TRUE(gps.synchronizedOutput);
    expect("CTrvActChangeSensorDataFileChannel", 11,
           m_edits.ChangeSensorDataFileChannel(gps, *p.mainInputFile->channels[1]), &gps);
    EXPECT_EQ(gps.channel, p.mainInputFile->channels[1].get());
    change("DataFileTimeOffset", 8, &E::ChangeDataFileTimeOffset, *p.mainInputFile, test::Seconds(1));
    const auto formerSimulation = SSimulationValues::Of(p);
    auto before = Bytes();
    const auto simulate = [&](const SSimulationValues& v) { return m_edits.ChangeSimulationParameters(v); };
    const SSimulationValues simulation{1, 1, 3, {10, 20, 30}, 5.0, CDateTime(7), CDateTime(9)};
    expect("CTrvActChangeSimulationParameters", 6, simulate(simulation), &p);
    CheckThereAndBack("simulation", formerSimulation, SSimulationValues::Of(p), before, simulate);
    auto& nelix = *p.nelixConfiguration;
    const auto formerNelix = SNelixValues::Of(nelix);
    before = Bytes();
    const auto configure = [&](const SNelixValues& v) { return m_edits.ChangeNelixConfiguration(v); };
    const SNelixValues configuration{{1, 2, 3}, 4,         {5, 6, 7}, {8, 9, 1}, {2, 4, 6},
                                     {1, 3, 5}, {7, 9, 2}, {9, 8, 7}, {6, 5, 4}};
    expect("CTrvActChangeNelixConfiguration", 7, configure(configuration), &nelix);
    CheckThereAndBack("configuration", formerNelix, SNelixValues::Of(nelix), before, configure);

    const SModePeriodValues period{3, CDateTime(20), CDateTime(10)}; // a broken rule does not block an edit
    before = Bytes();                                                // each addition below is removed again
    auto& group = *dvl.rejectionGroups[1];
    bool added = m_edits.AddRejectionInstruction(group);
    auto* rejection = group.instructions.back().get();
    expect("CTrvActAddRejectionInstruction", 4, added, rejection);
    change("RejectionInstruction", 5, &E::ChangeRejectionInstruction, *rejection, period);
    expect("CTrvActRemoveRejectionInstruction", 14, m_edits.RemoveRejectionInstruction(*rejection),
           rejection);
    added = m_edits.AddZupt();
    auto* zupt = p.zupts.back().get();
    expect("CTrvActAddZupt", 15, added, zupt);
    change("Zupt", 18, &E::ChangeZupt, *zupt, period);
    EXPECT_EQ(std::tuple(zupt->mode, zupt->begin.GetTicks(), zupt->end.GetTicks()), std::tuple(3, 20u, 10u));
    expect("CTrvActRemoveZupt", 21, m_edits.RemoveZupt(*zupt), zupt);
    added = m_edits.AddOutputRate();
    auto* rate = p.outputRates.back().get();
    expect("CTrvActAddOutputRate", 16, added, rate);
    change("OutputRate", 19, &E::ChangeOutputRate, *rate, SOutputRateValues{5.0, CDateTime(1), CDateTime(2)});
    EXPECT_EQ(std::tuple(rate->value, rate->begin.GetTicks(), rate->end.GetTicks()), std::tuple(5.0, 1u, 2u));
    expect("CTrvActRemoveOutputRate", 22, m_edits.RemoveOutputRate(*rate), rate);
    added = m_edits.AddAltitudeMode();
    auto* altitude = p.altitudeModes.back().get();
    expect("CTrvActAddAltitudeMode", 17, added, altitude);
    change("AltitudeMode", 20, &E::ChangeAltitudeMode, *altitude, period);
    expect("CTrvActRemoveAltitudeMode", 23, m_edits.RemoveAltitudeMode(*altitude), altitude);
    added = m_edits.AddHorizontalFilteringInstruction(usbl);
    auto* filtering = usbl.filteringInstructions.back().get();
    expect("CTrvActAddHorizontalFilteringInstruction", 46, added, filtering);
    change("HorizontalFilteringInstruction", 47, &E::ChangeHorizontalFilteringInstruction, *filtering,
           SFilteringValues{2.5f, CDateTime(1), CDateTime(2)});
    EXPECT_EQ(filtering->threshold, 2.5f);
    expect("CTrvActRemoveHorizontalFilteringInstruction", 48,
           m_edits.RemoveHorizontalFilteringInstruction(*filtering), filtering);
    EXPECT_EQ(Bytes(), before);

    // By the kind of the instruction, and a value for each of its fields.
    const std::pair<const char*, int> stdDevs[] = {{"Gps", 37},  {"Dvl", 36}, {"EMLog", 41},   {"Depth", 39},
                                                   {"Usbl", 38}, {"Lbl", 40}, {"Odometer", 42}};
    for (std::size_t i = 0; i < std::size(stdDevs); ++i) {
        CTrvStdDevInstruction& instruction = *p.sensors[i]->GetStdDevInstructions()[0];
        const std::string name = std::string(stdDevs[i].first) + "StdDevInstruction";
        change(name.c_str(), stdDevs[i].second, &E::ChangeStdDevInstruction, instruction,
               SStdDevValues{1, {1, 2, 3, 4}, {}, {}});
        EXPECT_EQ(instruction.mode, 1);
        for (int k = 0; k < instruction.GetValueCount(); ++k) EXPECT_EQ(instruction.GetValue(k), k + 1);
    }
    change("GpsStdDevThreshold", 37, &E::ChangeGpsStdDevThreshold, *gps.stdDevThreshold,
           SGpsThresholdValues{1, 2, 3});

    before = Bytes();
    auto& graphs = project.graphSettings->graphs;
    added = m_edits.Add1DGraphMeasure(Measure("GPS_1", "Altitude"));
    auto* graph = static_cast<CTrv1DGraphMeasure*>(graphs.back().get());
    expect("CTrvActAdd1DGraphMeasure", 28, added, graph);
    added = m_edits.Add1DGraphEnum(Enum());
    auto* enumGraph = graphs.back().get();
    expect("CTrvActAdd1DGraphEnum", 28, added, enumGraph);
    expect("CTrvActRemove1DGraph", 30, m_edits.Remove1DGraph(*enumGraph), enumGraph);
    added = m_edits.Add1DCurve(*graph, Measure("DEPTH", "Depth"));
    auto* curve = graph->curves.back().get();
    expect("CTrvActAdd1DCurve", 29, added, curve);
    EXPECT_EQ(std::tuple(curve->label, curve->factor), std::tuple("DEPTH - Depth", -1.0)); // mirrored
    change("1DCurve", 45, &E::Change1DCurve, *curve, SCurveValues{"depth", 0xFF00FF00, 2.0});
    EXPECT_EQ(std::tuple(curve->label, curve->color, curve->factor), std::tuple("depth", 0xFF00FF00, 2.0));
    expect("CTrvActRemove1DCurve", 44, m_edits.Remove1DCurve(*curve), curve);
    auto* last = graph->curves.back().get();
    EXPECT_TRUE(m_edits.Remove1DCurve(*last)); // and the graph with it
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(44, last), Update(30, graph)));
    EXPECT_THAT(graphs, IsEmpty());

    auto& values = *project.instantValuesSettings;
    added = m_edits.AddInstantValuesMeasure(Measure("GPS_1", "Latitude"));
    auto* measure = values.measures.back().get();
    expect("CTrvActAddInstantValuesMeasure", 32, added, measure);
    expect("CTrvActRemoveInstantValuesMeasure", 34, m_edits.RemoveInstantValuesMeasure(*measure), measure);
    added = m_edits.AddInstantValuesEnum(Enum());
    auto* enumeration = values.enums.back().get();
    expect("CTrvActAddInstantValuesEnum", 33, added, enumeration);
    expect("CTrvActRemoveInstantValuesEnum", 35, m_edits.RemoveInstantValuesEnum(*enumeration), enumeration);
    CTrvDataFile* file = AddFile("e.tarin");
    expect("CTrvActAddDataFile", 1, file != nullptr, file);
    expect("CTrvActRemoveDataFile", 2, m_edits.RemoveDataFile(*file), file);
    EXPECT_EQ(Bytes(), before);
    expect("CTrvActRemoveSensor", 13, m_edits.RemoveSensor(gps), &sensor);
    EXPECT_THAT(m_host.m_messages, IsEmpty());

    // The messages of failures, by the beginning of the name; the others stay silent.
    constexpr std::pair<std::string_view, int> failures[] = {
        {"AddDataFile", 303},   {"RemoveDataFile", 326},          {"AddSensor", 301},
        {"ChangeNelix", 348},   {"AddRejectionInstruction", 309}, {"AddZupt", 336},
        {"AddOutputRate", 337}, {"AddAltitudeMode", 751},         {"AddHorizontalFilteringInstruction", 359},
        {"Add1DGraph", 765},    {"Remove1DGraph", 800},           {"Add1DCurve", 766},
        {"Remove1DCurve", 818}, {"AddInstantValuesMeasure", 802}, {"AddInstantValuesEnum", 803}};
    for (const SActionRow& row : GetActionRows()) {
        EXPECT_EQ(tried.erase(std::string(row.className)), 1u) << row.className;
        const auto* failure = std::ranges::find_if(failures, [&](const auto& known) {
            return row.className.substr(std::string_view("CTrvAct").size()).starts_with(known.first);
        });
        EXPECT_EQ(static_cast<int>(row.failureText), failure == std::end(failures) ? 0 : failure->second)
            << row.className;
    }
    EXPECT_THAT(tried, IsEmpty());
}

// Values of every object, written with numbers that tell a mixed-up member.
TEST_F(UserActions, ValuesReachTheirMembers) {
    Create();
    for (const SSensorKind& kind : GetSensorKinds()) ASSERT_TRUE(m_edits.AddSensor(kind.kind));
    const auto arm = [](const CLeverArm& a) { return std::tuple(a.xv1, a.xv2, a.xv3); };
    const auto angles = [](const CMisalignment& a) { return std::tuple(a.heading, a.roll, a.pitch); };
    const std::tuple a(1., 2., 3.), b(4., 5., 6.), c(7., 8., 9.), d(10., 11., 12.);

    auto& gps = Get<CTrvSensorGps>();
    EXPECT_TRUE(m_edits.ChangeSensorGps(gps, {{1, 2, 3}, altitudeEllipsoid}));
    EXPECT_EQ(arm(*gps.leverArm), a);
    EXPECT_EQ(Parameters().gpsAltitudeReference, altitudeEllipsoid);
    auto& dvl = Get<CTrvSensorDvl>();
    auto values = SDvlValues::Of(dvl);
    values.leverArm = {1, 2, 3};
    values.misalignment = {4, 5, 6};
    values.scaleFactor = 0.5;
    values.currentModeling.time = 60;
    values.speedBias.y = 0.25;
    EXPECT_TRUE(m_edits.ChangeSensorDvl(dvl, values));
    EXPECT_EQ(std::tuple(arm(*dvl.leverArm), angles(*dvl.misalignment)), std::tuple(a, b));
    EXPECT_EQ(std::tuple(dvl.scaleFactor, dvl.currentModeling->time, dvl.speedBias->y),
              std::tuple(0.5, 60., 0.25));
    EXPECT_EQ(dvl.currentModeling->sigma, 0.0); // not touched by the caller
    auto& mount = Get<CTrvSensorPlatformOrientation>();
    EXPECT_TRUE(
        m_edits.ChangeSensorPlatformOrientation(mount, {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12}}));
    const auto read = SPlatformOrientationValues::Of(mount);
    EXPECT_EQ(std::tuple(arm(*mount.insLeverArm), arm(*mount.vehicleLeverArm), angles(*mount.insMisalignment),
                         angles(*mount.vehicleMisalignment)),
              std::tuple(a, b, c, d));
    EXPECT_EQ(std::tuple(arm(read.vehicleLeverArm), angles(read.insMisalignment)), std::tuple(b, c));

    SNelixValues ins;
    ins.fineMisalignment = {1, 2, 3};
    ins.userMisalignment = {4, 5, 6};
    ins.secondaryLeverArmC = {7, 8, 9};
    ins.cogLeverArm = {10, 11, 12};
    ins.roughMisalignment = 7;
    EXPECT_TRUE(m_edits.ChangeNelixConfiguration(ins));
    const auto& nelix = *Parameters().nelixConfiguration;
    EXPECT_EQ(std::tuple(angles(*nelix.fineMisalignment), angles(*nelix.userMisalignment),
                         arm(*nelix.secondaryLeverArmC), arm(*nelix.cogLeverArm), nelix.roughMisalignment),
              std::tuple(a, b, c, d, 7));
    // A configuration file is read over the values; one that cannot be read changes nothing.
    std::ofstream(m_folder / "ins.txt") << "[System]\nbias=4,5,6\nAxisor=9\n[Info]\nType=17\n";
    std::ofstream(m_folder / "bad.txt") << "[System]\nbias=7,8,9\nAxisor=no\n[Info]\nType=1\n";
    EXPECT_TRUE(m_edits.ChangeNelixConfiguration(ins, m_folder / "ins.txt"));
    EXPECT_EQ(std::tuple(angles(*nelix.fineMisalignment), nelix.roughMisalignment, nelix.type->equipment),
              std::tuple(b, 9, 17));
    m_view.Take();
    for (const char* name : {"bad.txt", "gone.txt"})
        ExpectRefused(m_edits.ChangeNelixConfiguration({}, m_folder / name), EText::insConfigurationFailed);
    EXPECT_EQ(std::tuple(angles(*nelix.fineMisalignment), nelix.roughMisalignment, nelix.type->equipment,
                         angles(*nelix.userMisalignment)),
              std::tuple(b, 9, 17, b));

    auto simulation = SSimulationValues::Of(Parameters());
    simulation.heaveSeaState = 2;
    simulation.begin = CDateTime(5);
    simulation.referencePosition = {10, 20, 30};
    EXPECT_TRUE(m_edits.ChangeSimulationParameters(simulation));
    EXPECT_EQ(std::tuple(Parameters().heaveSeaState, Parameters().begin.GetTicks(),
                         Parameters().referencePosition.longitude, Parameters().heaveAlgorithm),
              std::tuple(2, 5u, 20.0, static_cast<int>(heaveKelvar)));
}

TEST_F(UserActions, WithoutAProjectNothingIsDoneOrSaid) {
    CTrvZupt zupt;
    m_host.m_dataFile = m_folder / "r.tarin";
    EXPECT_FALSE(m_edits.AddSensor(ESensorKind::gps));
    EXPECT_FALSE(m_edits.AddDataFile());
    EXPECT_FALSE(m_edits.ChangeZupt(zupt, {1, {}, {}}));
    EXPECT_FALSE(CTrvActChangeZupt(m_document, zupt, {1, {}, {}}).Do());
    EXPECT_FALSE(m_edits.ChangeSimulationParameters({}));
    EXPECT_EQ(zupt.mode, 0);
    EXPECT_FALSE(m_document.IsModified());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    EXPECT_THAT(m_view.Take(), IsEmpty());
}

TEST_F(UserActions, WhatTheModelRefusesIsTold) {
    Record(m_folder / "r.tarin", 14, 10); // equipment without an altitude aid
    Create();
    auto& parameters = Parameters();
    ExpectRefused(m_edits.AddAltitudeMode(), EText::altitudeModeFailed);
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::dvl));
    m_view.Take();
    ExpectRefused(m_edits.AddSensor(ESensorKind::dvl), EText::tooManySensors);
    ASSERT_TRUE(m_document.Save());
    parameters.mainInputFile->FindChannel("LBL")->sensorClass.clear();
    ExpectRefused(m_edits.AddSensor(ESensorKind::lbl), EText::sensorFailed);
    EXPECT_EQ(parameters.sensors.size(), 1u);

    auto& settings = *m_document.GetProject()->graphSettings;
    auto* graph = settings.AddMeasureGraph("speeds");
    CTrv1DGraphMeasure foreign;
    auto* curve = foreign.AddCurve(nullptr, 0, 0, "");
    CTrv1DCurve loose;
    ASSERT_TRUE(m_edits.Add1DCurve(*graph, Measure("DVL_BT", "Speed X"))); // an empty graph takes any measure
    ASSERT_TRUE(m_document.Save());
    m_view.Take();
    ExpectRefused(m_edits.Add1DCurve(*graph, Measure("DVL_BT", "Altitude")), EText::curveFailed);
    CTrvMeasureDef nowhere;
    ExpectRefused(m_edits.Add1DGraphMeasure(nowhere), EText::graphFailed);
    ExpectRefused(m_edits.AddInstantValuesMeasure(nowhere), EText::instantMeasureFailed);
    ExpectRefused(m_edits.Remove1DGraph(foreign), EText::graphNotRemoved);
    ExpectRefused(m_edits.Remove1DCurve(loose), EText::curveNotRemoved);
    EXPECT_EQ(graph->curves.size(), 1u);
    EXPECT_EQ(foreign.curves.back().get(), curve);
    EXPECT_FALSE(m_edits.RemoveZupt(CTrvZupt())); // silently
    EXPECT_FALSE(m_document.IsModified());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
}

TEST_F(UserActions, AFurtherGpsStartsWhereTheFirstIs) {
    Create();
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::gps));
    auto& first = Get<CTrvSensorGps>();
    EXPECT_TRUE(m_edits.ChangeSensorGps(first, {{1, 2, 3}, 0}));
    ASSERT_TRUE(m_edits.AddSensor(ESensorKind::gps));
    EXPECT_TRUE(m_edits.ChangeSensorGps(first, {{9, 9, 9}, 0}));
    EXPECT_EQ(Parameters().sensors.back()->GetLeverArm()->xv2, 2.0);
}

TEST_F(UserActions, ADataFileIsPreparedBeforeItIsAdded) {
    Create();
    const auto good = m_folder / "good.tarin";
    Record(good, 9, 11);
    // With a channel of a name that is known no more.
    auto bytes = Outils_Fichiers::ReadWholeFile(good, 1 << 20).value();
    bytes[123 + 2] = 'X';
    const auto old = m_folder / "old.tarin";
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(old, bytes));
    bytes.resize(130); // a packet file cut in its list of channels
    const auto cut = m_folder / "cut.tarin";
    ASSERT_TRUE(Outils_Fichiers::WriteWholeFile(cut, bytes));
    const auto text = m_folder / "gps.nmea";
    std::ofstream(text) << std::string(500, 'x');
    const auto depth = m_folder / "depth.txt";
    std::ofstream(depth) << "DEPTH TO VARNE NAV EXTERNAL DATA\n";

    struct SCase {
        std::filesystem::path chosen;
        std::vector<EAnswer> answers;
        bool canUpdate, canConvert;
        std::vector<EText> messages;
        bool added;
    };
    using enum EAnswer;
    const SCase cases[] = {
        {m_folder / "gone.tarin", {}, true, true, {EText::dataFileNotAnalyzed}, false},
        {text, {cancel}, true, true, {EText::unrecognizedDataFile}, false},
        {text, {ok}, true, false, {EText::unrecognizedDataFile}, false},
        {depth, {cancel}, true, true, {EText::convertDataFile}, false},
        {depth, {ok}, true, false, {EText::convertDataFile}, false},
        {old, {cancel}, true, true, {EText::upgradeDataFile}, false},
        {old, {ok}, false, true, {EText::upgradeDataFile}, false},
        {cut, {ok}, false, true, {EText::upgradeDataFile}, false},
        {m_folder / "r.tarin", {}, true, true, {EText::dataFileReferenced}, false},
        {old, {ok}, true, true, {EText::upgradeDataFile}, true},
        {depth, {ok}, true, true, {EText::convertDataFile}, true},
        {good, {}, true, true, {EText::dataFileReferenced}, false}, // the converted file
    };
    for (const SCase& c : cases) {
        const auto before = Parameters().externalFiles.size();
        m_host.m_dataFile = c.chosen;
        m_host.m_answers.assign(c.answers.begin(), c.answers.end());
        m_host.m_repaired = c.canUpdate ? good : std::filesystem::path();
        m_host.m_converted = c.canConvert ? std::optional(good) : std::nullopt;
        EXPECT_EQ(m_edits.AddDataFile(), c.added) << c.chosen;
        std::vector<std::string> messages;
        for (const EText message : c.messages) messages.push_back(Text(message));
        EXPECT_EQ(m_host.TakeMessages(), messages) << c.chosen;
        EXPECT_EQ(m_view.Take().size(), c.added ? 1u : 0u) << c.chosen;
        EXPECT_EQ(Parameters().externalFiles.size(), before + (c.added ? 1 : 0)) << c.chosen;
    }
    EXPECT_EQ(m_host.m_conversions.back().second, ERawFormat::depth);
    m_host.m_dataFile.reset();
    EXPECT_FALSE(m_edits.AddDataFile());
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    // One hour after the main recording, to the precision of the seconds in a UTC packet.
    const auto& file = *Parameters().externalFiles.back();
    EXPECT_EQ(file.path, good);
    EXPECT_LT(std::abs((ToSpan(file.timeOffset) - test::Seconds(3600)).GetTicks()), 20);
    EXPECT_TRUE(m_document.GetProject()->dataModel->FindLayer(&file, test::kGpsNumber));
    EXPECT_TRUE(m_host.m_queue.RunUntil(
        [&] { return m_document.GetProject()->dataModel->FindLayer(&file, test::kGpsNumber)->m_hasData; },
        std::chrono::seconds(30)));
}

TEST_F(UserActions, ADataFileGoesOnlyWhenNobodyNeedsIt) {
    Create();
    CTrvDataFile* file = AddFile("e.tarin");
    ASSERT_TRUE(file && m_edits.AddSensor(ESensorKind::gps));
    auto& gps = Get<CTrvSensorGps>();
    auto& external = *file->FindChannelForSensor(gps);
    auto& main = *gps.channel;
    ASSERT_TRUE(m_edits.ChangeSensorDataFileChannel(gps, external)); // the main file stays without a question
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    m_view.Take();
    ExpectRefused(m_edits.RemoveDataFile(*file), EText::dataFileInUse);
    ExpectRefused(m_edits.RemoveDataFile(*Parameters().outputFile), EText::dataFileInUse);

    const std::string question =
        Outils_Texte::FormatText(EText::dataFileUnused, {Outils_Fichiers::ToText(file->path)});
    m_host.m_answers = {EAnswer::no};
    EXPECT_TRUE(m_edits.ChangeSensorDataFileChannel(gps, main));
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(question));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(11, &gps)));
    EXPECT_EQ(Parameters().externalFiles.size(), 1u);

    // Graph, curve and value on the file go with it, and the views hear of each.
    ASSERT_TRUE(m_edits.Add1DGraphMeasure(Measure("GPS_1", "Altitude")));
    ASSERT_TRUE(m_edits.Add1DGraphMeasure(Measure("DEPTH", "Depth", file)));
    auto& graphs = m_document.GetProject()->graphSettings->graphs;
    auto* mixed = static_cast<CTrv1DGraphMeasure*>(graphs[0].get());
    auto* lonely = static_cast<CTrv1DGraphMeasure*>(graphs[1].get());
    ASSERT_TRUE(m_edits.Add1DCurve(*mixed, Measure("GPS_1", "Altitude", file)));
    EXPECT_EQ(mixed->curves[1]->label, "GPS_1 - Altitude (e.tarin)");
    ASSERT_TRUE(m_edits.AddInstantValuesMeasure(Measure("DEPTH", "Depth", file)));
    const CObject* value = m_document.GetProject()->instantValuesSettings->measures.back().get();
    const CObject* curves[] = {mixed->curves[1].get(), lonely->curves[0].get()};
    ASSERT_TRUE(m_edits.ChangeSensorDataFileChannel(gps, external));
    m_view.Take();
    m_host.m_answers = {EAnswer::yes};
    EXPECT_TRUE(m_edits.ChangeSensorDataFileChannel(gps, main));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(11, &gps), Update(2, file), Update(44, curves[0]),
                                           Update(44, curves[1]), Update(30, lonely), Update(34, value)));
    EXPECT_TRUE(m_view.m_removedFileWasThere);
    EXPECT_THAT(Parameters().externalFiles, IsEmpty());
    EXPECT_EQ(mixed->curves.size(), 1u);
    m_host.m_queue.RunPending(); // whatever the threads had still to say of the file

    // A file that only a damaged archive brings in is no part of the project: nobody is asked to remove it.
    CTrvDataFile foreign;
    foreign.owner = &Parameters();
    foreign.AddChannel(main.id, "GPS_1", main.sensorClass);
    gps.channel = foreign.channels[0].get();
    EXPECT_TRUE(m_edits.ChangeSensorDataFileChannel(gps, main));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(11, &gps)));
    EXPECT_THAT(m_host.m_messages, ElementsAre(question)); // of the removal above
}

} // namespace
