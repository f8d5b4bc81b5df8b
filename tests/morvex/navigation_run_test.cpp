#include "morvex/navigation_run.h"

#include "foundation/texts.h"
#include "morvex/engine_program.h"
#include "recording/recording_writer.h"
#include "run_folder.h"
#include "xpf/stream_walk.h"

#include <cmath>
#include <fstream>
#include <optional>
#include <sstream>

#include <fcntl.h>

using namespace Morvex;
using namespace Metier_Tarvel;
using namespace Persistance_Xpf;

namespace {

using Outils_Texte::EText;

using CStd = CXpfTaroutMorvexStdPacketV2;

Simulation::SMissionOptions ShortMission() {
    Simulation::SMissionOptions options;
    options.duration = 240.0;
    options.alignmentDuration = 30.0;
    options.imuRate = 25;
    options.outliers = 0.02;
    options.geoidSeparation = 40.0;
    options.leverArms[0] = {4.0, -2.0, 8.0};
    options.channels = {"IMU", "GPS_1", "UTC"};
    return options;
}

double Field(const CStd& packet, std::string_view name) {
    double value = 0.0;
    EXPECT_TRUE(packet.GetDouble(kMorvexStdLayout.IndexOf(name), value)) << name;
    return value;
}

CDateTime At(double seconds) { return ToStoredTime(CDateTimeSpan::FromSeconds(seconds)); }

// Writes the recording again without the inertial packets of some dates.
void DropInertialData(const std::filesystem::path& path, const std::function<bool(double)>& drop) {
    const std::filesystem::path source = path.string() + ".source";
    std::filesystem::rename(path, source);
    CXpfTarinFileV3 file;
    bool outdated = false;
    CXpfFile::HeaderBuffer buffer;
    ASSERT_TRUE(file.Open(source) && file.ReadFileHeader(outdated, buffer) &&
                file.Seek(file.GetDataStart().Get()));
    std::vector<std::string_view> names;
    for (const auto& channel : file.GetChannels()) names.push_back(channel->GetName());
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(path, names));
    SPacketHeader header;
    std::span<const std::uint8_t> payload;
    while (CStreamWalk(file).Next(header, payload) == EPacketRead::whole) {
        const CXpfChannel* channel = file.FindChannelByNumber(header.channel);
        if (channel->GetName() == "IMU" && drop(CPayload(payload).GetSeconds())) continue;
        ASSERT_TRUE(writer.WriteRaw(*writer.FindChannel(channel->GetName()), payload));
    }
    ASSERT_TRUE(writer.Close());
}

ERunEnd Execute(const CRunFolder& folder, CListeningMonitor& monitor) {
    const auto parameters = LoadParameters(folder.Parameters());
    if (!parameters) return ERunEnd::failed;
    const SRunPlan plan = MakeRunPlan(*parameters);
    return CNavigationRun(plan, monitor).Execute();
}

} // namespace

TEST(NavigationRun, ShipUnderWayIsNavigatedBetterThanItsFixes) {
    const CRunFolder folder;
    const Simulation::SMissionOptions options = ShortMission();
    folder.Simulate(options);
    auto parameters = folder.MakeParameters();
    *static_cast<CTrvSensorGps&>(*parameters->sensors[0]).leverArm = CLeverArm(4.0, -2.0, 8.0);
    *parameters->nelixConfiguration->secondaryLeverArmB = CLeverArm(10.0, 0.0, 0.0);
    parameters->begin = At(20.0);
    parameters->end = At(230.0);
    parameters->AddOutputRate()->value = 5.0;
    parameters->outputRates[0]->begin = At(100.0);
    parameters->outputRates[0]->end = At(110.0);
    folder.Store(*parameters);
    CListeningMonitor monitor;
    ASSERT_EQ(Execute(folder, monitor), ERunEnd::finished);

    const Simulation::CMission mission(options);
    const auto results = folder.ReadResult<CStd>("MORVEX_STD");
    EXPECT_NEAR(static_cast<double>(results.size()), 210.0 + 40.0, 3.0);
    double squares = 0.0, heading = 0.0, within = 0.0;
    for (const CStd& packet : results) {
        const double time = packet.GetPacketDate().GetTotalSeconds();
        const Simulation::STruth truth = mission.GetTruth(time);
        const Vector3d position(Field(packet, "Latitude0") * kRadiansPerDegree,
                                Field(packet, "Longitude0") * kRadiansPerDegree, 0.0);
        const Vector3d miss = MetresBetween(
            {truth.latitude * kRadiansPerDegree, truth.longitude * kRadiansPerDegree, 0.0}, position);
        squares += miss.squaredNorm();
        within += std::pow(miss.x() / Field(packet, "Std. dev. north"), 2);
        heading =
            std::max(heading, std::abs(std::remainder(Field(packet, "Heading") - truth.heading, 360.0)));
        EXPECT_NEAR(Field(packet, "Altitude0"), truth.altitude - 40.0, 3.0);
        EXPECT_NEAR(Field(packet, "Roll"), truth.roll, 0.1);
        EXPECT_NEAR(Field(packet, "Speed east"), truth.speedEast, 0.3);
        const Vector3d second(Field(packet, "Latitude2") * kRadiansPerDegree,
                              Field(packet, "Longitude2") * kRadiansPerDegree, 0.0);
        EXPECT_NEAR(MetresBetween(position, second).norm(), 10.0 * std::cos(truth.pitch * kRadiansPerDegree),
                    0.05);
    }
    const double count = static_cast<double>(results.size());
    EXPECT_LT(std::sqrt(squares / count), 0.5) << "the fixes are wrong by 0.7 m";
    EXPECT_LT(heading, 1.0);
    EXPECT_LT(within / count, 4.0) << "the deviations must be those of the errors";
    EXPECT_GT(within / count, 0.05);

    // The first result: the date, and its UTC.
    Outils_Temps::CalendarFields utc;
    ASSERT_TRUE((options.GetUtcOrigin() + results.front().GetPacketDate()).GetCalendar(utc));
    EXPECT_EQ(Field(results.front(), "UTC Minute"), utc.minute);
    EXPECT_NEAR(Field(results.front(), "UTC Second"), utc.second, 1e-3);

    // The estimates, once a second: the lever arm as stated, and the way of the vehicle.
    const auto estimates = folder.ReadResult<CXpfTaroutMorvexExtPacketV1>("MORVEX_EXT");
    EXPECT_NEAR(static_cast<double>(estimates.size()), 210.0, 3.0);
    const Simulation::STruth last = mission.GetTruth(estimates.back().GetPacketDate().GetTotalSeconds());
    for (const auto& [name, expected, tolerance] : {std::tuple{"Latitude", last.latitude, 1e-5},
                                                    {"Speed west", -last.speedEast, 0.3},
                                                    {"Lever arm GPS1 Z", 8.0, 0.2},
                                                    {"Acc Z", 9.8, 1.0}}) {
        double value = 0.0;
        ASSERT_TRUE(estimates.back().GetDouble(kMorvexExtLayout.IndexOf(name), value)) << name;
        EXPECT_NEAR(value, expected, tolerance) << name;
    }

    EXPECT_TRUE(std::is_sorted(monitor.progress.begin(), monitor.progress.end()));
    EXPECT_EQ(monitor.progress.back(), 100.0);
    EXPECT_TRUE(monitor.Has(EText::rejectedFixes));
    EXPECT_EQ(folder.ReadResult<CXpfTaroutMorvexMsgPacketV1>("MORVEX_MSG").size(), monitor.messages.size());
}

namespace {

enum class EMiss : unsigned char { horizontal, height, all };

// Root mean square of the misses, m.
double GetMiss(const CRunFolder& folder, const Simulation::SMissionOptions& options,
               EMiss which = EMiss::horizontal) {
    const Simulation::CMission mission(options);
    double squares = 0.0, count = 0.0;
    for (const CStd& packet : folder.ReadResult<CStd>("MORVEX_STD")) {
        const Simulation::STruth truth = mission.GetTruth(packet.GetPacketDate().GetTotalSeconds());
        const Vector3d found(Field(packet, "Latitude0") * kRadiansPerDegree,
                             Field(packet, "Longitude0") * kRadiansPerDegree, 0.0);
        Vector3d miss = MetresBetween(
            {truth.latitude * kRadiansPerDegree, truth.longitude * kRadiansPerDegree, 0.0}, found);
        if (which == EMiss::height) miss.setZero();
        if (which != EMiss::horizontal)
            miss.z() = Field(packet, "Altitude0") + options.geoidSeparation - truth.altitude;
        squares += miss.squaredNorm();
        ++count;
    }
    return count > 0.0 ? std::sqrt(squares / count) : HUGE_VAL;
}

} // namespace

constexpr int kLandEquipment = 15, kForwardIsPort = 8;

struct SSensorCase {
    Simulation::EVehicle vehicle;
    std::vector<std::string> channels;
    std::vector<ESensorKind> kinds; // besides the GPS
    bool backward;
    double longest; // m
    int equipment = 9;
    std::int32_t mounting = 0; // rough misalignment that the parameters state
};

class SensorMission : public testing::TestWithParam<SSensorCase> {};

// A mission without GPS from its middle on: each sensor keeps the vehicle near its way, and so does smoothing
// when the GPS comes back.
TEST_P(SensorMission, BridgesAGapOfGps) {
    const SSensorCase& c = GetParam();
    const CRunFolder folder;
    Simulation::SMissionOptions options = ShortMission();
    options.vehicle = c.vehicle;
    options.channels = c.channels;
    options.outliers = 0.0;
    options.leverArms[0].setZero();
    options.GetChannelOptions("GPS_1").outages.push_back({150.0, c.backward ? 210.0 : 1000.0});
    folder.Simulate(options);
    auto parameters = folder.MakeParameters();
    for (const ESensorKind kind : c.kinds) ASSERT_TRUE(parameters->AddSensor(kind));
    parameters->algorithm = c.backward ? algorithmBackward : 0;
    parameters->nelixConfiguration->type->SetFromEquipment(c.equipment);
    parameters->nelixConfiguration->roughMisalignment = c.mounting;
    folder.Store(*parameters);
    CListeningMonitor monitor;
    ASSERT_EQ(Execute(folder, monitor), ERunEnd::finished);
    EXPECT_TRUE(std::is_sorted(monitor.progress.begin(), monitor.progress.end()));
    EXPECT_LT(GetMiss(folder, options), c.longest);
    EXPECT_EQ(monitor.Has(EText::landRefused), c.mounting != 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder.Output().parent_path()))
        EXPECT_FALSE(entry.path().filename().string().starts_with(".spool")) << "temporary files are gone";
}

INSTANTIATE_TEST_SUITE_P(
    Engine, SensorMission,
    testing::Values(
        SSensorCase{Simulation::EVehicle::ship, {"IMU", "GPS_1"}, {}, true, 1.0},
        SSensorCase{Simulation::EVehicle::ship, {"IMU", "GPS_1", "DVL_BT"}, {ESensorKind::dvl}, false, 1.0},
        SSensorCase{Simulation::EVehicle::ship, {"IMU", "GPS_1", "LBL"}, {ESensorKind::lbl}, false, 3.0},
        SSensorCase{Simulation::EVehicle::auv,
                    {"IMU", "GPS_1", "DVL_BT", "DVL_WT", "DEPTH", "USBL_1"},
                    {ESensorKind::dvl, ESensorKind::depth, ESensorKind::usbl},
                    true,
                    1.0},
        SSensorCase{
            Simulation::EVehicle::car, {"IMU", "GPS_1", "ODOMETER"}, {ESensorKind::odometer}, false, 5.0},
        // Without a sensor: a land vehicle keeps to its wheels, and the run sees when they do not roll ahead.
        SSensorCase{Simulation::EVehicle::car, {"IMU", "GPS_1"}, {}, false, 0.6, kLandEquipment},
        SSensorCase{
            Simulation::EVehicle::car, {"IMU", "GPS_1"}, {}, false, 20.0, kLandEquipment, kForwardIsPort}));

// What a project can declare beside its GPS, and by how much it lowers the misses when the GPS is lost.
struct SHelpCase {
    Simulation::EVehicle vehicle;
    std::string_view channel; // empty: no sensor
    std::optional<ESensorKind> kind;
    double factor;
    void (*prepare)(Simulation::SMissionOptions& options) = [](auto&) {};
    void (*state)(CTrvSimulationParameters& parameters) = [](auto&) {};
    EMiss miss = EMiss::all;
};

class SensorHelp : public testing::TestWithParam<SHelpCase> {
  protected:
    // The miss of a run over a recording with this share of wild packets.
    double Navigate(bool with, double outliers, CListeningMonitor& monitor) const {
        const SHelpCase& c = GetParam();
        const CRunFolder folder;
        Simulation::SMissionOptions options = ShortMission();
        options.vehicle = c.vehicle;
        options.grade = Simulation::EGrade::tactical;
        options.channels = {"IMU", "GPS_1"};
        if (!c.channel.empty()) options.channels.emplace_back(c.channel);
        options.outliers = outliers;
        options.leverArms[0].setZero();
        options.GetChannelOptions("GPS_1").outages.push_back({150.0, 1000.0});
        c.prepare(options);
        folder.Simulate(options);
        auto parameters = folder.MakeParameters();
        if (with && c.kind) {
            EXPECT_TRUE(parameters->AddSensor(*c.kind));
        }
        if (with) c.state(*parameters);
        folder.Store(*parameters);
        EXPECT_EQ(Execute(folder, monitor), ERunEnd::finished);
        return GetMiss(folder, options, c.miss);
    }
};

TEST_P(SensorHelp, FaultyPacketsDoNoHarm) {
    CListeningMonitor without, with, faulty;
    const double miss = Navigate(false, 0.0, without);
    EXPECT_LT(GetParam().factor * Navigate(true, 0.0, with), miss);
    EXPECT_LT(Navigate(true, 0.1, faulty), miss);
    EXPECT_TRUE(faulty.Has(EText::rejectedFixes));
    EXPECT_TRUE(with.Has(GetParam().kind ? EText::aidingUse : EText::restUse));
}

INSTANTIATE_TEST_SUITE_P(
    Engine, SensorHelp,
    testing::Values(SHelpCase{Simulation::EVehicle::ship, "DVL_BT", ESensorKind::dvl, 3.0},
                    SHelpCase{Simulation::EVehicle::ship, "DVL_WT", ESensorKind::dvl, 1.3},
                    SHelpCase{Simulation::EVehicle::ship, "EM_LOG_1", ESensorKind::emLog, 1.1},
                    SHelpCase{Simulation::EVehicle::ship, "DEPTH", ESensorKind::depth, 2.0,
                              [](auto& o) { o.duration = 400.0; }, [](auto&) {}, EMiss::height},
                    SHelpCase{Simulation::EVehicle::ship, "LBL", ESensorKind::lbl, 2.0},
                    SHelpCase{Simulation::EVehicle::ship, "USBL_1", ESensorKind::usbl, 2.0},
                    SHelpCase{Simulation::EVehicle::ship, "USBL_1", ESensorKind::usbl, 1.5,
                              [](auto& o) { o.usblOrigin = 400.0; }},
                    SHelpCase{Simulation::EVehicle::car, "ODOMETER", ESensorKind::odometer, 2.0},
                    // At rest from begin to end, which the engine is to find by itself.
                    SHelpCase{Simulation::EVehicle::car, "", std::nullopt, 3.0,
                              [](auto& o) { o.alignmentDuration = 1000.0; },
                              [](auto& p) { p.AddZupt()->end = At(1000.0); }}));

// A unit that its mount keeps level: the result is the attitude of the vehicle, and its antenna swings.
TEST(NavigationRun, MountGivesTheVehiclesAttitude) {
    const CRunFolder folder;
    Simulation::SMissionOptions options = ShortMission();
    options.stabilised = 1.0;
    options.outliers = 0.0;
    options.channels.emplace_back("PLATFORM_ORIENT");
    folder.Simulate(options);
    auto parameters = folder.MakeParameters();
    *static_cast<CTrvSensorGps&>(*parameters->sensors[0]).leverArm = CLeverArm(4.0, -2.0, 8.0);
    ASSERT_TRUE(parameters->AddSensor(ESensorKind::platformOrientation));
    folder.Store(*parameters);
    CListeningMonitor monitor;
    ASSERT_EQ(Execute(folder, monitor), ERunEnd::finished);
    EXPECT_TRUE(monitor.Has(EText::mountUse));
    EXPECT_LT(GetMiss(folder, options), 0.6);
    const Simulation::CMission mission(options);
    for (const CStd& packet : folder.ReadResult<CStd>("MORVEX_STD")) {
        const Simulation::STruth truth = mission.GetTruth(packet.GetPacketDate().GetTotalSeconds());
        EXPECT_NEAR(Field(packet, "Roll"), truth.roll, 0.2);
        EXPECT_NEAR(Field(packet, "Pitch"), truth.pitch, 0.2);
        EXPECT_LT(std::abs(std::remainder(Field(packet, "Heading") - truth.heading, 360.0)), 1.0);
    }
}

// Settings that are wrong, and the word that names them.
struct SWrongCase {
    Simulation::EVehicle vehicle;
    std::vector<std::string> channels;
    std::vector<ESensorKind> kinds; // besides the GPS
    void (*spoil)(Simulation::SMissionOptions& options);
    EText named;
    double duration;                    // s
    Vector3d stated = Vector3d::Zero(); // lever arm of the GPS, m
};

class WrongSetting : public testing::TestWithParam<SWrongCase> {};

TEST_P(WrongSetting, IsNamedAndSetRight) {
    const SWrongCase& c = GetParam();
    const CRunFolder folder;
    Simulation::SMissionOptions options = ShortMission();
    options.vehicle = c.vehicle;
    options.channels = c.channels;
    options.duration = c.duration;
    options.outliers = 0.0;
    options.leverArms[0].setZero();
    c.spoil(options);
    folder.Simulate(options);
    auto parameters = folder.MakeParameters();
    for (const ESensorKind kind : c.kinds) ASSERT_TRUE(parameters->AddSensor(kind));
    *static_cast<CTrvSensorGps&>(*parameters->sensors[0]).leverArm =
        CLeverArm(c.stated.x(), c.stated.y(), c.stated.z());
    folder.Store(*parameters);
    CListeningMonitor monitor;
    ASSERT_EQ(Execute(folder, monitor), ERunEnd::finished);
    EXPECT_LT(GetMiss(folder, options), 0.6);
    // Named on the way and in the result, with the date by which it was known.
    const auto message = std::ranges::find(monitor.messages, c.named, &CListeningMonitor::SMessage::code);
    ASSERT_NE(message, monitor.messages.end());
    const auto packets = folder.ReadResult<CXpfTaroutMorvexMsgPacketV1>("MORVEX_MSG");
    const auto number = static_cast<std::size_t>(message - monitor.messages.begin());
    ASSERT_LT(number, packets.size());
    constexpr double kTenMinutes = 600.0;
    EXPECT_LT(packets[number].GetPacketDate().GetTotalSeconds(), kTenMinutes);
}

INSTANTIATE_TEST_SUITE_P(
    Engine, WrongSetting,
    testing::Values(
        SWrongCase{Simulation::EVehicle::ship,
                   {"IMU", "GPS_1"},
                   {},
                   [](auto& o) {
                       o.leverArms[0] = {12.0, -6.0, 9.0};
                   },
                   EText::gpsArmFound,
                   900.0},
        SWrongCase{Simulation::EVehicle::ship,
                   {"IMU", "GPS_1"},
                   {},
                   [](auto& o) {
                       o.leverArms[0] = {12.0, 6.0, 9.0};
                   },
                   EText::gpsArmDiffers,
                   900.0,
                   {12.0, -6.0, 9.0}},
        SWrongCase{Simulation::EVehicle::car,
                   {"IMU", "GPS_1"},
                   {},
                   [](auto& o) { o.GetChannelOptions("GPS_1").hiddenDelay = 1.0; },
                   EText::gpsLag,
                   300.0},
        SWrongCase{Simulation::EVehicle::car, {"IMU", "GPS_1"}, {}, [](auto&) {}, EText::landAssumed, 300.0},
        SWrongCase{Simulation::EVehicle::ship,
                   {"IMU", "GPS_1", "DVL_BT"},
                   {ESensorKind::dvl},
                   [](auto& o) { o.dvlHeadingError = 180.0; },
                   EText::sensorTurned,
                   240.0},
        SWrongCase{Simulation::EVehicle::ship,
                   {"IMU", "GPS_1", "DVL_BT"},
                   {ESensorKind::dvl},
                   [](auto& o) {
                       o.GetChannelOptions("DVL_BT").jams.push_back({150.0, 200.0});
                   },
                   EText::sensorJammed,
                   240.0},
        SWrongCase{Simulation::EVehicle::car,
                   {"IMU", "GPS_1", "ODOMETER"},
                   {ESensorKind::odometer},
                   [](auto& o) { o.odometerScaleError = 0.1; },
                   EText::sensorScaled,
                   240.0}));

// What a run under Backward has come to is kept when it is stopped.
TEST(NavigationRun, AStoppedBackwardRunKeepsItsResults) {
    const CRunFolder folder;
    folder.Simulate(ShortMission());
    auto parameters = folder.MakeParameters();
    parameters->algorithm = algorithmBackward;
    folder.Store(*parameters);
    CListeningMonitor monitor;
    monitor.goOn = [&] { return monitor.progress.empty() || monitor.progress.back() < 40.0; };
    EXPECT_EQ(Execute(folder, monitor), ERunEnd::stopped);
    const auto results = folder.ReadResult<CStd>("MORVEX_STD");
    EXPECT_GT(results.size(), 60u);
    EXPECT_LT(results.size(), 200u);
}

TEST(NavigationRun, LostInertialDataBeginsANewSegmentAndDamageIsPassed) {
    const CRunFolder folder;
    Simulation::SMissionOptions options = ShortMission();
    options.duration = 140.0;
    folder.Simulate(options);
    DropInertialData(folder.Input(),
                     [](double t) { return (t > 50.0 && t < 50.5) || (t > 60.0 && t < 80.0); });
    {
        std::fstream file(folder.Input(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(static_cast<std::streamoff>(std::filesystem::file_size(folder.Input()) / 3));
        file << std::string(300, '$');
    }
    folder.Store(*folder.MakeParameters());
    CListeningMonitor monitor;
    EXPECT_EQ(Execute(folder, monitor), ERunEnd::finished);
    EXPECT_TRUE(monitor.Has(EText::damaged));
    bool seen[3] = {}; // before, within and after the hole
    for (const CStd& packet : folder.ReadResult<CStd>("MORVEX_STD")) {
        const double time = packet.GetPacketDate().GetTotalSeconds();
        seen[(time >= 60.5) + (time >= 79.5)] = true;
        EXPECT_LT(std::abs(Field(packet, "Altitude0") + 40.0), 20.0) << time;
    }
    EXPECT_TRUE(seen[0] && !seen[1] && seen[2]);
}

TEST(NavigationRun, BrokenInputIsToldAsAnError) {
    const CRunFolder folder;
    Simulation::SMissionOptions options = ShortMission();
    options.duration = 5.0;
    options.alignmentDuration = 1.0;
    folder.Simulate(options);
    const std::pair<std::function<void(CTrvSimulationParameters&)>, EText> cases[] = {
        {[](auto& p) { p.mainInputFile->path += ".gone"; }, EText::noMainFile},
        {[&](auto& p) { p.mainInputFile->path = folder.Parameters(); }, EText::noInertialData},
        {[](auto& p) { p.sensors.clear(); }, EText::noGps},
        {[](auto& p) { p.begin = At(1000.0), p.end = At(2000.0); }, EText::noInertialData},
        {[](auto& p) { p.outputFile->path = "/nowhere/at/all.tarout"; }, EText::outputFailed},
        {[](auto& p) { p.outputFile->path = p.mainInputFile->path; }, EText::outputFailed},
        {[](auto&) {}, EText::tooShort}, // and the recording is still there
    };
    for (const auto& [spoil, code] : cases) {
        auto parameters = folder.MakeParameters();
        spoil(*parameters);
        folder.Store(*parameters);
        CListeningMonitor monitor;
        EXPECT_EQ(Execute(folder, monitor), ERunEnd::failed) << Outils_Texte::GetText(code);
        ASSERT_TRUE(monitor.Has(code)) << Outils_Texte::GetText(code);
        EXPECT_EQ(monitor.messages.back().level, ELevel::error);
    }
}

TEST(NavigationRun, SaysOnceThatTheDiskIsFull) {
    const CRunFolder folder;
    folder.Simulate(ShortMission());
    auto parameters = folder.MakeParameters();
    parameters->outputFile->path = "/dev/full";
    folder.Store(*parameters);
    CListeningMonitor monitor;
    EXPECT_EQ(Execute(folder, monitor), ERunEnd::failed);
    const auto isFault = [](const auto& message) { return message.code == EText::outputFailed; };
    EXPECT_EQ(std::ranges::count_if(monitor.messages, isFault), 1);
    EXPECT_FALSE(monitor.Has(EText::finished));
    EXPECT_LT(monitor.progress.back(), 100.0);
}

TEST(NavigationRun, ProgramSpeaksItsProtocol) {
    const CRunFolder folder;
    const std::filesystem::path said = folder.Output().replace_extension(".txt");
    auto run = [&](std::vector<std::string> arguments, std::string_view commands) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        EXPECT_EQ(write(ends[1], commands.data(), commands.size()), static_cast<ssize_t>(commands.size()));
        const int output = open(said.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
        const int code = Compagnon::RunProgram(kEngineProgram, arguments, ends[0], output);
        for (const int descriptor : {ends[0], ends[1], output}) close(descriptor);
        std::stringstream text;
        text << std::ifstream(said).rdbuf();
        return std::pair(code, text.str());
    };
    const std::string file = folder.Parameters().string();
    const auto [failed, text] = run({"/remote", "/autostart", "off", file}, "start\n");
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(text, "message 2 10900 \"The parameter file cannot be read: " + file + "\"\n");
    EXPECT_EQ(run({"/remote", "/autostart", "off", file}, "stop\n"), std::pair(2, std::string()));
    EXPECT_EQ(run({}, "").first, 1);
}

// Which fixes are taken, when, and with what weight: by the packet, and by the instructions over it.
TEST(FixReader, PacketAndInstructionsDecide) {
    const CRunFolder folder;
    constexpr std::string_view channels[] = {"IMU", "GPS_1"};
    Enregistrement::CRecordingWriter writer;
    ASSERT_TRUE(writer.Create(folder.Input(), channels));
    auto write = [&](double date, std::uint8_t mode, std::uint8_t rejection, float deviation,
                     double latitude = 10.0) {
        CXpfTarinGpsPacketV2 packet;
        auto at = [](std::string_view name) { return kGpsLayout.IndexOf(name); };
        packet.SetDate(0, CDateTimeSpan::FromSeconds(date));
        packet.SetFloat(at("Delay"), 0.5f);
        packet.SetUInt8(at("GPS mode"), mode);
        packet.SetUInt8(at("Horizontal rejection"), rejection);
        packet.SetUInt8(at("Vertical rejection"), 3);
        packet.SetDouble(at("Latitude"), latitude);
        packet.SetFloat(at("Altitude"), 5.0f);
        packet.SetFloat(at("Geoidal sep"), 30.0f);
        packet.SetFloat(at("Std. dev. north"), deviation);
        ASSERT_TRUE(writer.Write("GPS_1", packet));
    };
    write(1.0, 0, 3, 2.0f);               // no fix
    write(2.0, 4, 3, 2.0f);               // tested
    write(3.0, 4, 1, 0.001f);             // always, below the least deviation
    write(4.0, 4, 2, 2.0f);               // never, but its height is taken
    write(5.0, 2, 3, 0.0f);               // deviation by the mode
    write(6.0, 2, 3, 2.0f, std::nan("")); // no position
    write(7.0, 2, 3, 2.0f);               // rejected by an instruction
    write(8.0, 2, 2, 2.0f);               // forced by an instruction
    write(9.0, 2, 3, 2.0f);               // the user's deviation
    ASSERT_TRUE(writer.Close());

    SRunPlan plan;
    SGpsPlan gps;
    gps.source = {folder.Input(), "GPS_1", 100.0};
    gps.leastDeviation = {0.03, 0.03, 0.03, 0.0};
    gps.rejections = {{{106.0, 107.0}, ERejection::always}, {{107.0, 108.0}, ERejection::never}};
    gps.userDeviations = {{{108.0, 120.0}, {7.0, 7.0, 7.0, 0.0}}};
    plan.gps = {gps};
    CFixReader reader;
    ASSERT_TRUE(reader.Open(plan).empty());
    const std::tuple<double, EUse, double> rows[] = {{101.5, EUse::tested, 2.0}, {102.5, EUse::always, 0.03},
                                                     {103.5, EUse::never, 2.0},  {104.5, EUse::tested, 1.5},
                                                     {106.5, EUse::never, 2.0},  {107.5, EUse::always, 2.0},
                                                     {108.5, EUse::tested, 7.0}};
    for (const auto& [time, use, deviation] : rows) {
        ASSERT_TRUE(reader.Peek()) << time;
        const SPositionFix& fix = *reader.Peek();
        EXPECT_NEAR(fix.time, time, 1e-6);
        EXPECT_EQ(fix.horizontal, use) << time;
        EXPECT_EQ(fix.vertical, EUse::tested);
        EXPECT_NEAR(fix.varianceNorth, deviation * deviation, 1e-6) << time;
        EXPECT_NEAR(fix.position[2], 35.0, 1e-6) << "above the ellipsoid";
        reader.Pop();
    }
    EXPECT_FALSE(reader.Peek());
    plan.gps[0].source.channel = "GPS_2";
    EXPECT_EQ(reader.Open(plan), std::vector<int>{0});
}
