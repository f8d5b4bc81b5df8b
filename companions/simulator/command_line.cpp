#include "simulator/command_line.h"

#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/switches.h"
#include "foundation/texts.h"
#include "simulator/foreign_writer.h"
#include "simulator/grades.h"
#include "simulator/sensors.h"
#include "simulator/truth_writer.h"
#include "xpf/layout.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <initializer_list>
#include <optional>

namespace Simulation {

namespace {

using Outils_Texte::ESwitchValue;
using Outils_Texte::EText;
using Outils_Texte::FormatText;
using Outils_Texte::GetText;
using Outils_Texte::ParseDouble;
using Outils_Texte::SSwitchRow;

constexpr std::string_view kVehicles[] = {"ship", "auv", "car", "uav"};
constexpr std::string_view kMounts[] = {"gps", "dvl", "emlog", "depth", "usbl", "lbl"};
constexpr std::string_view kGpsModes[] = {"none", "sps", "dgps", "pps", "rtk", "float"};
constexpr std::string_view kGpsChannels[] = {"GPS_1", "GPS_2", "GPS_3"};

std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos) return parts;
        text.remove_prefix(end + 1);
    }
}

// As many numbers as asked for.
std::optional<std::array<double, 3>> ParseNumbers(std::string_view text, char separator, std::size_t count) {
    const auto parts = Split(text, separator);
    if (parts.size() != count) return std::nullopt;
    std::array<double, 3> numbers{};
    for (std::size_t i = 0; i < count; ++i) {
        const auto number = ParseDouble(parts[i]);
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    return numbers;
}

// The elements as `show` writes them, with commas between.
template <class TRange, class TShow>
std::string Join(const TRange& range, TShow show) {
    std::string text;
    for (const auto& element : range) {
        if (!text.empty()) text += ',';
        text += show(element);
    }
    return text;
}

template <class TRange>
std::optional<std::size_t> FindWord(const TRange& words, std::string_view word) {
    const auto found = std::ranges::find(words, word);
    if (found == std::end(words)) return std::nullopt;
    return static_cast<std::size_t>(found - std::begin(words));
}

template <class TInteger>
bool ReadInteger(std::string_view text, TInteger& value) {
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value);
    return end.ec == std::errc() && end.ptr == text.data() + text.size();
}

template <double SMissionOptions::*Member>
bool SetNumber(SMissionOptions& options, std::string_view value) {
    const auto number = ParseDouble(value);
    if (number) options.*Member = *number;
    return number.has_value();
}

template <int SMissionOptions::*Member>
bool SetInteger(SMissionOptions& options, std::string_view value) {
    return ReadInteger(value, options.*Member);
}

bool SetVehicle(SMissionOptions& options, std::string_view value) {
    const auto word = FindWord(kVehicles, value);
    if (!word) return false;
    options.vehicle = static_cast<EVehicle>(*word);
    return true;
}

bool SetGrade(SMissionOptions& options, std::string_view value) {
    const auto* found = std::ranges::find(kGrades, value, &SGrade::name);
    if (found == std::end(kGrades)) return false;
    options.grade = static_cast<EGrade>(found - kGrades);
    return true;
}

bool SetSeed(SMissionOptions& options, std::string_view value) { return ReadInteger(value, options.seed); }
bool SetSize(SMissionOptions& options, std::string_view value) {
    return ReadInteger(value, options.targetSize);
}

bool SetStart(SMissionOptions& options, std::string_view value) {
    const auto numbers = ParseNumbers(value, ',', 3);
    if (!numbers) return false;
    options.latitude = (*numbers)[0];
    options.longitude = (*numbers)[1];
    options.altitude = (*numbers)[2];
    return true;
}

bool SetCurrent(SMissionOptions& options, std::string_view value) {
    const auto numbers = ParseNumbers(value, ',', 2);
    if (numbers) options.current = {(*numbers)[0], (*numbers)[1], 0};
    return numbers.has_value();
}

// "YYYY-MM-DD" or "YYYY-MM-DDThh:mm:ss".
bool SetUtc(SMissionOptions& options, std::string_view value) {
    const auto parts = Split(value, 'T');
    const auto day = ParseNumbers(parts[0], '-', 3);
    const auto time = parts.size() == 2 ? ParseNumbers(parts[1], ':', 3) : std::array<double, 3>{};
    if (!day || !time || parts.size() > 2) return false;
    const auto field = [](double number) {
        return static_cast<std::uint16_t>(std::clamp(number, 0.0, 65535.0));
    };
    options.utcOrigin = Outils_Temps::CDateTime::Invalid();
    options.utcOrigin.SetDateTime(field((*day)[0]), field((*day)[1]), field((*day)[2]), field((*time)[0]),
                                  field((*time)[1]), field((*time)[2]), 0);
    return options.utcOrigin.IsValid();
}

bool SetGpsMode(SMissionOptions& options, std::string_view value) {
    const auto word = FindWord(kGpsModes, value);
    if (word) options.gpsMode = static_cast<int>(*word);
    return word.has_value();
}

bool SetChannels(SMissionOptions& options, std::string_view value) {
    options.channels.clear();
    for (const std::string_view name : Split(value, ',')) options.channels.emplace_back(name);
    return true;
}

bool SetLeverArm(SMissionOptions& options, std::string_view value) {
    const std::size_t blank = value.find(' ');
    const auto mount = FindWord(kMounts, value.substr(0, blank));
    if (!mount || blank == std::string_view::npos) return false;
    const auto numbers = ParseNumbers(value.substr(blank + 1), ',', 3);
    if (numbers) options.leverArms[*mount] = {(*numbers)[0], (*numbers)[1], (*numbers)[2]};
    return numbers.has_value();
}

// The options of the channel in "CHANNEL=value", and the value.
SChannelOptions& OwnOptions(SMissionOptions& options, std::string_view& value) {
    const std::size_t equals = std::min(value.find('='), value.size());
    SChannelOptions& own = options.GetChannelOptions(value.substr(0, equals));
    value.remove_prefix(std::min(equals + 1, value.size()));
    return own;
}

bool SetRate(SMissionOptions& options, std::string_view value) {
    SChannelOptions& own = OwnOptions(options, value);
    const auto number = ParseDouble(value);
    if (number) own.rate = *number;
    return number && *number > 0;
}

template <double SChannelOptions::*Member>
bool SetOwnNumber(SMissionOptions& options, std::string_view value) {
    SChannelOptions& own = OwnOptions(options, value);
    const auto number = ParseDouble(value);
    if (number) own.*Member = *number;
    return number.has_value();
}

bool AddPeriod(std::vector<SPeriod>& periods, std::string_view value) {
    const auto numbers = ParseNumbers(value, ':', 2);
    if (numbers) periods.push_back({(*numbers)[0], (*numbers)[1]});
    return numbers.has_value();
}

template <std::vector<SPeriod> SChannelOptions::*Member>
bool AddOwnPeriod(SMissionOptions& options, std::string_view value) {
    SChannelOptions& own = OwnOptions(options, value);
    return AddPeriod(own.*Member, value);
}

bool SetGpsRate(SMissionOptions& options, std::string_view value) {
    return std::ranges::all_of(kGpsChannels, [&](std::string_view channel) {
        return SetRate(options, std::string(channel) + '=' + std::string(value));
    });
}

bool SetGpsOutage(SMissionOptions& options, std::string_view value) {
    return std::ranges::all_of(kGpsChannels, [&](std::string_view channel) {
        return AddPeriod(options.GetChannelOptions(channel).outages, value);
    });
}

template <auto Member>
std::string ShowNumber(const SMissionOptions& options) {
    return Outils_Texte::FormatShortest(static_cast<double>(options.*Member));
}
std::string ShowVehicle(const SMissionOptions& options) {
    return std::string(kVehicles[static_cast<std::size_t>(options.vehicle)]);
}
std::string ShowGrade(const SMissionOptions& options) { return std::string(GetGrade(options.grade).name); }
std::string ShowGpsMode(const SMissionOptions& options) {
    return std::string(kGpsModes[static_cast<std::size_t>(options.gpsMode)]);
}
std::string ShowSeed(const SMissionOptions& options) { return std::to_string(options.seed); }
std::string ShowStart(const SMissionOptions& options) {
    return Join(std::array{options.latitude, options.longitude, options.altitude},
                Outils_Texte::FormatShortest);
}
std::string ShowCurrent(const SMissionOptions& options) {
    return Join(std::array<double, 2>{options.current.x(), options.current.y()},
                Outils_Texte::FormatShortest);
}
std::string ShowUtc(const SMissionOptions& options) {
    Outils_Temps::CalendarFields fields;
    options.GetUtcOrigin().GetCalendar(fields);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", fields.year, fields.month, fields.day,
                  fields.hour, fields.minute, fields.second);
    return text;
}

struct SOptionRow {
    std::string_view name;
    std::string_view value; // as the usage names it; two words: two arguments
    EText help;
    bool (*set)(SMissionOptions& options, std::string_view value);
    std::string (*showDefault)(const SMissionOptions& options) = nullptr; // null when there is none to show
};

constexpr SOptionRow kRows[] = {
    {"--vehicle", "KIND", EText::simVehicleHelp, SetVehicle, ShowVehicle},
    {"--duration", "S", EText::simDurationHelp, SetNumber<&SMissionOptions::duration>,
     ShowNumber<&SMissionOptions::duration>},
    {"--size", "BYTES", EText::simSizeHelp, SetSize},
    {"--alignment", "S", EText::simAlignmentHelp, SetNumber<&SMissionOptions::alignmentDuration>,
     ShowNumber<&SMissionOptions::alignmentDuration>},
    {"--alignment-motion", "SHARE", EText::simAlignmentMotionHelp,
     SetNumber<&SMissionOptions::alignmentMotion>, ShowNumber<&SMissionOptions::alignmentMotion>},
    {"--sea", "FACTOR", EText::simSeaHelp, SetNumber<&SMissionOptions::seaState>,
     ShowNumber<&SMissionOptions::seaState>},
    {"--start", "LAT,LON,ALT", EText::simStartHelp, SetStart, ShowStart},
    {"--heading", "DEG", EText::simHeadingHelp, SetNumber<&SMissionOptions::heading>,
     ShowNumber<&SMissionOptions::heading>},
    {"--current", "N,E", EText::simCurrentHelp, SetCurrent, ShowCurrent},
    {"--seabed", "M", EText::simSeabedHelp, SetNumber<&SMissionOptions::seabedDepth>,
     ShowNumber<&SMissionOptions::seabedDepth>},
    {"--utc", "DATE", EText::simUtcHelp, SetUtc, ShowUtc},
    {"--imu-rate", "HZ", EText::simImuRateHelp, SetInteger<&SMissionOptions::imuRate>,
     ShowNumber<&SMissionOptions::imuRate>},
    {"--grade", "GRADE", EText::simGradeHelp, SetGrade, ShowGrade},
    {"--equipment", "CODE", EText::simEquipmentHelp, SetInteger<&SMissionOptions::equipment>,
     ShowNumber<&SMissionOptions::equipment>},
    {"--seed", "N", EText::simSeedHelp, SetSeed, ShowSeed},
    {"--noise", "FACTOR", EText::simNoiseHelp, SetNumber<&SMissionOptions::noise>,
     ShowNumber<&SMissionOptions::noise>},
    {"--outliers", "SHARE", EText::simOutliersHelp, SetNumber<&SMissionOptions::outliers>,
     ShowNumber<&SMissionOptions::outliers>},
    {"--gps-mode", "MODE", EText::simGpsModeHelp, SetGpsMode, ShowGpsMode},
    {"--gps-rate", "HZ", EText::simGpsRateHelp, SetGpsRate},
    {"--gps-outage", "FROM:TO", EText::simGpsOutageHelp, SetGpsOutage},
    {"--geoid", "M", EText::simGeoidHelp, SetNumber<&SMissionOptions::geoidSeparation>,
     ShowNumber<&SMissionOptions::geoidSeparation>},
    {"--dvl-scale", "FRACTION", EText::simDvlScaleHelp, SetNumber<&SMissionOptions::dvlScaleError>,
     ShowNumber<&SMissionOptions::dvlScaleError>},
    {"--dvl-heading", "DEG", EText::simDvlHeadingHelp, SetNumber<&SMissionOptions::dvlHeadingError>,
     ShowNumber<&SMissionOptions::dvlHeadingError>},
    {"--lever-arm", "SENSOR X,Y,Z", EText::simLeverArmHelp, SetLeverArm},
    {"--channels", "LIST", EText::simChannelsHelp, SetChannels},
    {"--rate", "CHANNEL=HZ", EText::simRateHelp, SetRate},
    {"--delay", "CHANNEL=S", EText::simDelayHelp, SetOwnNumber<&SChannelOptions::delay>},
    {"--outage", "CHANNEL=FROM:TO", EText::simOutageHelp, AddOwnPeriod<&SChannelOptions::outages>},
    {"--imu-lost", "SHARE", EText::simImuLostHelp, SetNumber<&SMissionOptions::imuLost>,
     ShowNumber<&SMissionOptions::imuLost>},
    {"--imu-late", "SHARE", EText::simImuLateHelp, SetNumber<&SMissionOptions::imuLate>,
     ShowNumber<&SMissionOptions::imuLate>},
    {"--imu-late-by", "S", EText::simImuLateByHelp, SetNumber<&SMissionOptions::imuLateBy>,
     ShowNumber<&SMissionOptions::imuLateBy>},
    {"--imu-doubled", "SHARE", EText::simImuDoubledHelp, SetNumber<&SMissionOptions::imuDoubled>,
     ShowNumber<&SMissionOptions::imuDoubled>},
    {"--imu-jitter", "S", EText::simImuJitterHelp, SetNumber<&SMissionOptions::imuJitter>,
     ShowNumber<&SMissionOptions::imuJitter>},
    {"--clock-drift", "PPM", EText::simClockDriftHelp, SetNumber<&SMissionOptions::clockDrift>,
     ShowNumber<&SMissionOptions::clockDrift>},
    {"--gps-wander", "M", EText::simGpsWanderHelp, SetNumber<&SMissionOptions::gpsWander>,
     ShowNumber<&SMissionOptions::gpsWander>},
    {"--gps-jumps", "M", EText::simGpsJumpsHelp, SetNumber<&SMissionOptions::gpsJumps>,
     ShowNumber<&SMissionOptions::gpsJumps>},
    {"--odometer-scale", "FRACTION", EText::simOdometerScaleHelp,
     SetNumber<&SMissionOptions::odometerScaleError>, ShowNumber<&SMissionOptions::odometerScaleError>},
    {"--wheel-slip", "FRACTION", EText::simWheelSlipHelp, SetNumber<&SMissionOptions::wheelSlip>,
     ShowNumber<&SMissionOptions::wheelSlip>},
    {"--stated-deviation", "FACTOR", EText::simStatedDeviationHelp,
     SetNumber<&SMissionOptions::statedDeviation>, ShowNumber<&SMissionOptions::statedDeviation>},
    {"--current-field", "M/S", EText::simCurrentFieldHelp, SetNumber<&SMissionOptions::currentField>,
     ShowNumber<&SMissionOptions::currentField>},
    {"--gravity-disturbance", "MICRO-G", EText::simGravityHelp,
     SetNumber<&SMissionOptions::gravityDisturbance>, ShowNumber<&SMissionOptions::gravityDisturbance>},
    {"--stabilised", "0|1", EText::simStabilisedHelp, SetNumber<&SMissionOptions::stabilised>,
     ShowNumber<&SMissionOptions::stabilised>},
    {"--lbl-beacons", "N", EText::simBeaconsHelp, SetNumber<&SMissionOptions::lblBeacons>,
     ShowNumber<&SMissionOptions::lblBeacons>},
    {"--usbl-origin", "M", EText::simUsblOriginHelp, SetNumber<&SMissionOptions::usblOrigin>,
     ShowNumber<&SMissionOptions::usblOrigin>},
    {"--hidden-delay", "CHANNEL=S", EText::simHiddenDelayHelp, SetOwnNumber<&SChannelOptions::hiddenDelay>},
    {"--jam", "CHANNEL=FROM:TO", EText::simJamHelp, AddOwnPeriod<&SChannelOptions::jams>},
    {"--truth-rate", "HZ", EText::simTruthRateHelp, SetNumber<&SMissionOptions::truthRate>,
     ShowNumber<&SMissionOptions::truthRate>},
};

// Options of the program itself.
constexpr SSwitchRow kTruth{"--truth", ESwitchValue::text, "FILE", EText::simTruthHelp};
constexpr SSwitchRow kAlso{"--also", ESwitchValue::list, "KIND=FILE", EText::simAlsoHelp};
constexpr SSwitchRow kRaw{"--raw", ESwitchValue::text, "FILE", EText::simRawHelp};
constexpr SSwitchRow kDecoded{"--decoded", ESwitchValue::text, "FILE", EText::simDecodedHelp};
constexpr SSwitchRow kForce{"--force", ESwitchValue::none, "", EText::simForceHelp};
constexpr SSwitchRow kVersion{"--version", ESwitchValue::none, "", EText::simVersionHelp};
constexpr SSwitchRow kHelp{"--help", ESwitchValue::none, "", EText::simHelpHelp};
constexpr SSwitchRow kShortHelp{"-h", ESwitchValue::none, "", EText::simHelpHelp};
constexpr std::string_view kHelpWord = "help";

std::vector<SSwitchRow> MakeSwitches() {
    std::vector<SSwitchRow> rows{kTruth, kAlso, kRaw, kDecoded, kForce, kVersion, kHelp, kShortHelp};
    for (const SOptionRow& row : kRows) {
        const bool two = row.value.find(' ') != std::string_view::npos;
        rows.push_back({row.name, two ? ESwitchValue::pair : ESwitchValue::text, row.value, row.help});
    }
    return rows;
}

bool Refuse(std::string& error, EText text, std::initializer_list<std::string_view> arguments = {}) {
    error = FormatText(text, arguments);
    return false;
}

void AddOption(std::string& usage, std::string_view name, std::string_view value, std::string_view help,
               const std::string& shownDefault = {}) {
    std::string left = "  ";
    ((left += name) += ' ') += value;
    left.resize(std::max<std::size_t>(left.size() + 2, 30), ' ');
    (usage += left) += help;
    if (!shownDefault.empty()) usage += FormatText(EText::simDefault, {shownDefault});
    usage += '\n';
}

std::string DescribeGrades() {
    std::string text(GetText(EText::simGrades));
    using Outils_Texte::FormatShortest;
    for (const SGrade& grade : kGrades)
        text += FormatText(EText::simGradeLine,
                           {grade.name, FormatShortest(grade.gyroBias), FormatShortest(grade.gyroWalk),
                            FormatShortest(grade.accBias), FormatShortest(grade.accNoise)});
    return text;
}

std::string DescribeChannels() {
    std::string text(GetText(EText::simChannels));
    for (const Persistance_Xpf::SChannelLayout& row : Persistance_Xpf::GetChannelLayouts())
        if (const double rate = GetUsualRate(row.name); rate > 0)
            text += FormatText(EText::simChannelLine, {row.name, Outils_Texte::FormatShortest(rate)});
    for (std::size_t i = 0; i < std::size(kVehicles); ++i) {
        SMissionOptions options;
        options.vehicle = static_cast<EVehicle>(i);
        const auto same = [](std::string_view name) { return std::string(name); };
        text += FormatText(EText::simUsualChannels, {kVehicles[i], Join(options.GetChannels(), same)});
    }
    return text;
}

std::string ListForeignKinds() {
    return Join(GetForeignKinds(), [](std::string_view kind) { return std::string(kind); });
}

// The foreign formats that are asked for; false for one that there is not.
bool TakeAlso(const Outils_Texte::CArguments& arguments, SCommandLine& line, std::string& error) {
    const auto kinds = GetForeignKinds();
    for (const auto& given : arguments.GetSwitches()) {
        const std::string_view name = given.row->name;
        if (name == kRaw.name || name == kDecoded.name)
            line.also.emplace_back(name.substr(2), Outils_Fichiers::FromText(given.text));
        if (name != kAlso.name) continue;
        const std::string_view text = given.text, kind = text.substr(0, text.find('='));
        if (kind.size() + 1 >= text.size() || !FindWord(kinds, kind))
            return Refuse(error, EText::simAlsoKind, {text, ListForeignKinds()});
        line.also.emplace_back(kind, Outils_Fichiers::FromText(text.substr(kind.size() + 1)));
    }
    return true;
}

} // namespace

bool ParseCommandLine(std::span<const std::string> words, SCommandLine& commandLine, std::string& error) {
    const std::vector<SSwitchRow> switches = MakeSwitches();
    Outils_Texte::CArguments arguments;
    const bool valid = arguments.Parse(switches, words, error, Outils_Texte::ESwitchStyle::dash);
    const auto& files = arguments.GetFiles();
    // Asked for instead of a mission, whatever else the line says.
    commandLine.help = arguments.Has(kHelp.name) || arguments.Has(kShortHelp.name) ||
                       std::ranges::find(files, kHelpWord) != files.end();
    commandLine.version = arguments.Has(kVersion.name);
    if (commandLine.help || commandLine.version) return true;
    if (!valid) return false;
    if (files.size() > 1) return Refuse(error, EText::simTwoOutputs, {files[1]});
    if (!files.empty()) commandLine.output = Outils_Fichiers::FromText(files[0]);
    commandLine.force = arguments.Has(kForce.name);
    commandLine.truth = Outils_Fichiers::FromText(arguments.GetText(kTruth.name));
    for (const auto& given : arguments.GetSwitches()) {
        const auto* row = std::ranges::find(kRows, given.row->name, &SOptionRow::name);
        if (row != std::end(kRows) && !row->set(commandLine.options, given.text))
            return Refuse(error, EText::simWrongValue,
                          {row->name, given.text, row->value, GetText(row->help)});
    }
    if (!TakeAlso(arguments, commandLine, error)) return false;
    if (commandLine.output.empty()) return Refuse(error, EText::simNoOutput);
    if (commandLine.truth.empty())
        commandLine.truth = Outils_Fichiers::WithExtension(commandLine.output, ".truth.csv");
    return true;
}

bool CheckTargets(const SCommandLine& commandLine, std::string& error) {
    const std::filesystem::path result = GetTruthResultPath(commandLine.truth);
    std::vector<std::filesystem::path> targets{commandLine.output, commandLine.truth, result};
    for (const auto& [kind, path] : commandLine.also) targets.push_back(path);
    for (auto path = targets.begin(); path != targets.end(); ++path)
        for (auto other = targets.begin(); other != path; ++other)
            if (Outils_Fichiers::SamePath(*path, *other))
                return Refuse(error, EText::simSameFile, {Outils_Fichiers::ToText(*path)});
    for (const auto& path : targets) {
        std::error_code unknown;
        const auto status = std::filesystem::symlink_status(path, unknown);
        if (commandLine.force ? std::filesystem::is_directory(status) : std::filesystem::exists(status))
            return Refuse(error, commandLine.force ? EText::simFolder : EText::simExists,
                          {Outils_Fichiers::ToText(path)});
    }
    return true;
}

std::string GetUsage() {
    std::string usage(GetText(EText::simUsage));
    const SMissionOptions defaults;
    for (const SOptionRow& row : kRows)
        AddOption(usage, row.name, row.value, GetText(row.help),
                  row.showDefault ? row.showDefault(defaults) : std::string());
    AddOption(usage, "-h, --help", "", GetText(kHelp.help));
    for (const SSwitchRow& row : {kTruth, kAlso, kRaw, kDecoded, kForce, kVersion})
        AddOption(usage, row.name, row.value, FormatText(row.help, {ListForeignKinds()}));
    return usage + DescribeGrades() + DescribeChannels();
}

} // namespace Simulation
