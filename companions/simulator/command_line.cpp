#include "simulator/command_line.h"

#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "simulator/grades.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace Simulation {

namespace {

using Outils_Texte::ParseDouble;

constexpr std::string_view kVehicles[] = {"ship", "auv", "car"};
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

bool SetDelay(SMissionOptions& options, std::string_view value) {
    SChannelOptions& own = OwnOptions(options, value);
    const auto number = ParseDouble(value);
    if (number) own.delay = *number;
    return number.has_value();
}

bool AddOutage(SChannelOptions& own, std::string_view value) {
    const auto numbers = ParseNumbers(value, ':', 2);
    if (numbers) own.outages.push_back({(*numbers)[0], (*numbers)[1]});
    return numbers.has_value();
}

bool SetOutage(SMissionOptions& options, std::string_view value) {
    SChannelOptions& own = OwnOptions(options, value);
    return AddOutage(own, value);
}

bool SetGpsRate(SMissionOptions& options, std::string_view value) {
    return std::ranges::all_of(kGpsChannels, [&](std::string_view channel) {
        return SetRate(options, std::string(channel) + '=' + std::string(value));
    });
}

bool SetGpsOutage(SMissionOptions& options, std::string_view value) {
    return std::ranges::all_of(kGpsChannels, [&](std::string_view channel) {
        return AddOutage(options.GetChannelOptions(channel), value);
    });
}

struct SOptionRow {
    std::string_view name;
    std::string_view value; // as the usage names it; two words: two arguments
    std::string_view help;
    bool (*set)(SMissionOptions& options, std::string_view value);
};

constexpr SOptionRow kRows[] = {
    {"--vehicle", "KIND", "ship, auv or car", SetVehicle},
    {"--duration", "S", "length in seconds", SetNumber<&SMissionOptions::duration>},
    {"--size", "BYTES", "a length that gives about this file size instead", SetSize},
    {"--alignment", "S", "seconds at rest at the start", SetNumber<&SMissionOptions::alignmentDuration>},
    {"--alignment-motion", "SHARE", "of the sea's motion felt at rest, 0 to 1",
     SetNumber<&SMissionOptions::alignmentMotion>},
    {"--sea", "FACTOR", "on waves, terrain and vibration", SetNumber<&SMissionOptions::seaState>},
    {"--start", "LAT,LON,ALT", "degrees and metres above the ellipsoid", SetStart},
    {"--heading", "DEG", "at the start", SetNumber<&SMissionOptions::heading>},
    {"--current", "N,E", "of the water, metres per second", SetCurrent},
    {"--seabed", "M", "depth of the seabed", SetNumber<&SMissionOptions::seabedDepth>},
    {"--utc", "DATE", "YYYY-MM-DD or YYYY-MM-DDThh:mm:ss of date zero", SetUtc},
    {"--imu-rate", "HZ", "inertial samples per second", SetInteger<&SMissionOptions::imuRate>},
    {"--grade", "GRADE", "perfect, marine, navigation, tactical or mems", SetGrade},
    {"--equipment", "CODE", "the system type of the recording", SetInteger<&SMissionOptions::equipment>},
    {"--seed", "N", "of all that is random", SetSeed},
    {"--noise", "FACTOR", "on the errors of the aiding sensors", SetNumber<&SMissionOptions::noise>},
    {"--outliers", "SHARE", "of aiding packets that are wildly wrong, 0 to 1",
     SetNumber<&SMissionOptions::outliers>},
    {"--gps-mode", "MODE", "sps, dgps, pps, rtk or float", SetGpsMode},
    {"--gps-rate", "HZ", "of all GPS channels", SetGpsRate},
    {"--gps-outage", "FROM:TO", "seconds without GPS; may be repeated", SetGpsOutage},
    {"--geoid", "M", "height of the geoid above the ellipsoid", SetNumber<&SMissionOptions::geoidSeparation>},
    {"--dvl-scale", "FRACTION", "by which the Doppler log reads too much",
     SetNumber<&SMissionOptions::dvlScaleError>},
    {"--dvl-heading", "DEG", "by which the Doppler log is turned to port",
     SetNumber<&SMissionOptions::dvlHeadingError>},
    {"--lever-arm", "SENSOR X,Y,Z", "gps, dvl, emlog, depth, usbl or lbl; forward, to port, up", SetLeverArm},
    {"--channels", "LIST", "channel names with commas between; IMU is always there", SetChannels},
    {"--rate", "CHANNEL=HZ", "of one channel; may be repeated", SetRate},
    {"--delay", "CHANNEL=S", "from measurement to date; may be repeated", SetDelay},
    {"--outage", "CHANNEL=FROM:TO", "seconds without this channel; may be repeated", SetOutage},
    {"--truth-rate", "HZ", "lines per second of the truth file", SetNumber<&SMissionOptions::truthRate>},
};

constexpr std::string_view kTruthOption = "--truth";

} // namespace

bool ParseCommandLine(std::span<const std::string> arguments, SCommandLine& commandLine, std::string& error) {
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        if (argument == "--help") {
            commandLine.help = true;
            return true;
        }
        if (!argument.starts_with("--")) {
            if (!commandLine.output.empty()) {
                error = "there is more than one output file: " + argument;
                return false;
            }
            commandLine.output = Outils_Fichiers::FromText(argument);
            continue;
        }
        const auto* row = std::ranges::find(kRows, argument, &SOptionRow::name);
        if (row == std::end(kRows) && argument != kTruthOption) {
            error = "there is no option " + argument;
            return false;
        }
        const bool two = row != std::end(kRows) && row->value.find(' ') != std::string_view::npos;
        if (i + (two ? 2 : 1) >= arguments.size()) {
            error = argument + " lacks its value";
            return false;
        }
        std::string value = arguments[++i];
        if (two) value += ' ' + arguments[++i];
        if (row == std::end(kRows)) {
            commandLine.truth = Outils_Fichiers::FromText(value);
        } else if (!row->set(commandLine.options, value)) {
            error = argument + " cannot be " + value;
            return false;
        }
    }
    if (commandLine.output.empty()) {
        error = "there is no output file";
        return false;
    }
    if (commandLine.truth.empty())
        commandLine.truth = Outils_Fichiers::WithExtension(commandLine.output, ".truth.csv");
    return true;
}

std::string GetUsage() {
    std::string usage = "MissionSimulator [options] OUT.tarin\n";
    const auto add = [&usage](std::string_view name, std::string_view value, std::string_view help) {
        std::string left = "  " + std::string(name) + ' ' + std::string(value);
        left.resize(std::max<std::size_t>(left.size() + 2, 30), ' ');
        usage += left + std::string(help) + '\n';
    };
    for (const SOptionRow& row : kRows) add(row.name, row.value, row.help);
    add(kTruthOption, "FILE", "where the truth goes; by default beside the output, as .truth.csv");
    return usage;
}

} // namespace Simulation
