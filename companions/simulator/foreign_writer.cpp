#include "simulator/foreign_writer.h"

#include "convert/calendar.h"
#include "convert/decoded_text.h"
#include "convert/raw_frame.h"
#include "foundation/bytes.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "xpf/stream_walk.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>

namespace Simulation {
namespace {

using namespace Persistance_Xpf;
using Conversion::Ticks;
using Outils_Temps::CDateTime;
using Outils_Temps::kTicksPerDay;
using Outils_Temps::kTicksPerSecond;
using Outils_Texte::EText;

// A packet of the recording.
struct SPacket {
    std::string_view channel;
    std::uint16_t row = 0; // of the channel table
    const SPacketLayout* layout = nullptr;
    std::span<const std::uint8_t> payload;
    Ticks date = 0, utc = 0;

    double Get(std::uint32_t field) const;
    double Get(std::string_view name) const { return Get(layout->IndexOf(name)); }
};

template <class T>
double LoadAsDouble(const std::uint8_t* bytes) {
    return static_cast<double>(Outils::Load<T>(bytes));
}

double SPacket::Get(std::uint32_t field) const {
    const std::uint8_t* bytes = payload.data() + layout->offsets[field];
    switch (layout->fields[field].type) {
    case EFieldType::u8: return LoadAsDouble<std::uint8_t>(bytes);
    case EFieldType::u16: return LoadAsDouble<std::uint16_t>(bytes);
    case EFieldType::u32: return LoadAsDouble<std::uint32_t>(bytes);
    case EFieldType::i8: return LoadAsDouble<std::int8_t>(bytes);
    case EFieldType::i16: return LoadAsDouble<std::int16_t>(bytes);
    case EFieldType::i32: return LoadAsDouble<std::int32_t>(bytes);
    case EFieldType::f32: return LoadAsDouble<float>(bytes);
    case EFieldType::f64: return LoadAsDouble<double>(bytes);
    case EFieldType::date: return LoadAsDouble<std::int64_t>(bytes);
    }
    return 0;
}

// The file that is written, and what its lines count.
class COutput {
  public:
    explicit COutput(const std::filesystem::path& path) : m_path(path), m_stream(path, std::ios::binary) {}
    const std::filesystem::path& GetPath() const { return m_path; }

    [[gnu::format(printf, 2, 3)]] void Print(const char* format, ...) {
        std::array<char, 1024> text;
        va_list arguments;
        va_start(arguments, format);
        const int size = std::vsnprintf(text.data(), text.size(), format, arguments);
        va_end(arguments);
        Write({text.data(), static_cast<std::size_t>(size)});
    }
    // "$", the sentence, its check sum.
    [[gnu::format(printf, 2, 3)]] void PrintSentence(const char* format, ...) {
        std::array<char, 256> text;
        va_list arguments;
        va_start(arguments, format);
        const int size = std::vsnprintf(text.data(), text.size(), format, arguments);
        va_end(arguments);
        unsigned sum = 0;
        for (int i = 0; i < size; ++i) sum ^= static_cast<unsigned char>(text[static_cast<std::size_t>(i)]);
        Print("$%s*%02X\r\n", text.data(), sum);
    }
    void Write(std::string_view bytes) {
        m_stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    bool Close() {
        m_stream.close();
        return !m_stream.fail();
    }

    std::uint32_t count = 0; // of frames or sentences

  private:
    std::filesystem::path m_path;
    std::ofstream m_stream;
};

// The shortest text that reads back to the value of the field.
std::string FormatField(const SPacket& packet, std::uint32_t field) {
    std::array<char, 64> text;
    const double value = packet.Get(field);
    const EFieldType type = packet.layout->fields[field].type;
    std::to_chars_result end{};
    if (type == EFieldType::f32)
        end = std::to_chars(text.begin(), text.end(), static_cast<float>(value));
    else if (type == EFieldType::f64)
        end = std::to_chars(text.begin(), text.end(), value);
    else
        end = std::to_chars(text.begin(), text.end(), static_cast<std::int64_t>(value));
    return {text.data(), end.ptr};
}

// Calendar fields of a tick; ticks are those within the second.
Outils_Temps::CalendarFields Split(Ticks utc) {
    Outils_Temps::CalendarFields fields;
    CDateTime(static_cast<std::uint64_t>(utc)).GetCalendar(fields);
    return fields;
}

std::string FormatClock(Ticks utc, const char* between, int decimals) {
    const auto fields = Split(utc);
    std::array<char, 48> text;
    const double second = fields.second + fields.ticks * 1e-7;
    const int size = std::snprintf(text.data(), text.size(), "%02d%s%02d%s%0*.*f", fields.hour, between,
                                   fields.minute, between, 3 + decimals, decimals, second);
    return {text.data(), static_cast<std::size_t>(size)};
}

// ISO 8601 to the tick.
std::string FormatIso(Ticks utc) {
    const auto fields = Split(utc);
    std::array<char, 48> text;
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT", fields.year, fields.month, fields.day);
    return text.data() + FormatClock(utc, ":", 7);
}

// "ddmm.mmm,N"
std::string FormatMinutes(double degrees, int width, int decimals, const char* halves) {
    const double whole = std::floor(std::abs(degrees)), scale = std::pow(10.0, decimals);
    const double minutes =
        std::min(std::round((std::abs(degrees) - whole) * 60 * scale) / scale, 60 - 1 / scale);
    std::array<char, 48> text;
    const int size = std::snprintf(text.data(), text.size(), "%0*d%0*.*f,%c", width, static_cast<int>(whole),
                                   3 + decimals, decimals, minutes, halves[degrees < 0]);
    return {text.data(), static_cast<std::size_t>(size)};
}

struct SEllipse {
    double major, minor, turn; // m, m, degrees from north
};

SEllipse MakeEllipse(double north, double east, double covariance) {
    const double mean = (north * north + east * east) / 2, half = (north * north - east * east) / 2;
    const double root = std::hypot(half, covariance);
    double turn = 0.5 * std::atan2(covariance, half) * 180 / 3.14159265358979323846;
    if (turn < 0) turn += 180;
    return {std::sqrt(mean + root), std::sqrt(std::max(0.0, mean - root)), turn};
}

void WriteNmea(COutput& output, const SPacket& fix) {
    const auto fields = Split(fix.utc);
    const std::string time = FormatClock(fix.utc, "", 3);
    output.PrintSentence("GPZDA,%s,%02d,%02d,%04d,00,00", time.c_str(), fields.day, fields.month,
                         fields.year);
    output.PrintSentence("GPGGA,%s,%s,%s,%d,10,1.0,%.4f,M,%.4f,M,,", time.c_str(),
                         FormatMinutes(fix.Get("Latitude"), 2, 9, "NS").c_str(),
                         FormatMinutes(fix.Get("Longitude"), 3, 9, "EW").c_str(),
                         static_cast<int>(fix.Get("GPS mode")), fix.Get("Altitude"), fix.Get("Geoidal sep"));
    const double north = fix.Get("Std. dev. north"), east = fix.Get("Std. dev. east");
    const SEllipse ellipse = MakeEllipse(north, east, fix.Get("Covariance XY"));
    output.PrintSentence("GPGST,%s,1.0,%.5f,%.5f,%.4f,%.5f,%.5f,%.5f", time.c_str(), ellipse.major,
                         ellipse.minor, ellipse.turn, north, east, fix.Get("Std. dev. altitude"));
}

void WriteBeacon(COutput& output, const SPacket& fix) {
    const auto fields = Split(fix.utc);
    const double depth = -fix.Get("Altitude");
    output.PrintSentence("PTSAG,#%05u,%s,%02d,%02d,%04d,%d,%s,%s,F,%.2f,1,%.2f", ++output.count % 100000,
                         FormatClock(fix.utc, "", 3).c_str(), fields.day, fields.month, fields.year,
                         static_cast<int>(fix.Get("Beacon")),
                         FormatMinutes(fix.Get("Latitude"), 2, 7, "NS").c_str(),
                         FormatMinutes(fix.Get("Longitude"), 3, 7, "EW").c_str(), depth, depth);
}

double GetEllipsoidHeight(const SPacket& fix) { return fix.Get("Altitude") + fix.Get("Geoidal sep"); }

void WriteSolutionHead(COutput& output) {
    output.Write(
        "% program   : RTKPOST\n%  GPST                  latitude(deg) longitude(deg)  height(m)   Q  ns   "
        "sdn(m)   sde(m)   sdu(m)  sdne(m)  sdeu(m)  sdun(m) age(s)  ratio\n");
}

void WriteSolution(COutput& output, const SPacket& fix) {
    constexpr int kQuality[] = {5, 5, 4, 5, 1, 2};
    // The instant is far from a leap second.
    const Ticks time = fix.utc + Conversion::GetLeapSeconds(fix.utc) * kTicksPerSecond;
    const auto fields = Split(time);
    const double covariance = fix.Get("Covariance XY");
    output.Print("%04d/%02d/%02d %s %14.11f %14.11f %10.4f %3d %3d %8.5f %8.5f %8.5f %8.5f 0 0 0 0\n",
                 fields.year, fields.month, fields.day, FormatClock(time, ":", 3).c_str(),
                 fix.Get("Latitude"), fix.Get("Longitude"), GetEllipsoidHeight(fix),
                 kQuality[static_cast<int>(fix.Get("GPS mode"))], 10, fix.Get("Std. dev. north"),
                 fix.Get("Std. dev. east"), fix.Get("Std. dev. altitude"),
                 std::copysign(std::sqrt(std::abs(covariance)), covariance));
}

std::string FormatSeconds(double degrees) {
    const double whole = std::floor(std::abs(degrees)), minutes = (std::abs(degrees) - whole) * 60;
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%s%d %02d %010.7f", degrees < 0 ? "-" : "",
                  static_cast<int>(whole), static_cast<int>(minutes),
                  std::min((minutes - std::floor(minutes)) * 60, 59.9999999));
    return text.data();
}

void WriteWeeksHead(COutput& output) {
    output.Write(
        "Project:     mission\r\nProgram:     GrafNav Version 1.0\r\n\r\n"
        "    Week       GPSTime       Latitude      Longitude     H-Ell  SDNorth   SDEast SDHeight Q\r\n"
        " (weeks)         (sec)        (D M S)        (D M S)       (m)      (m)      (m)      (m)  \r\n");
}

void WriteWeeks(COutput& output, const SPacket& fix) {
    constexpr int kQuality[] = {6, 5, 4, 5, 1, 2};
    constexpr Ticks kWeek = 7 * kTicksPerDay;
    const Ticks start = *Conversion::MakeGpsTime(0, 0);
    const Ticks time = fix.utc + Conversion::GetLeapSeconds(fix.utc) * kTicksPerSecond - start;
    output.Print("%8d %13.4f %s %s %9.4f %8.5f %8.5f %8.5f %d\r\n", static_cast<int>(time / kWeek),
                 static_cast<double>(time % kWeek) / kTicksPerSecond,
                 FormatSeconds(fix.Get("Latitude")).c_str(), FormatSeconds(fix.Get("Longitude")).c_str(),
                 GetEllipsoidHeight(fix), fix.Get("Std. dev. north"), fix.Get("Std. dev. east"),
                 fix.Get("Std. dev. altitude"), kQuality[static_cast<int>(fix.Get("GPS mode"))]);
}

void WriteFixesHead(COutput& output) { output.Write("GRAFNAV TO VARNE NAV POST-PROCESSED GPS DATA\n"); }

void WriteFixes(COutput& output, const SPacket& fix) {
    output.Print("%s\t%.11f\t%.11f\t%.4f\t%.5f\t%.5f\t%.5f\n", FormatIso(fix.utc).c_str(),
                 fix.Get("Latitude"), fix.Get("Longitude"), GetEllipsoidHeight(fix),
                 fix.Get("Std. dev. north"), fix.Get("Std. dev. east"), fix.Get("Std. dev. altitude"));
}

void WriteFrame(COutput& output, const SPacket& packet, std::span<const std::uint8_t> payload) {
    std::array<std::uint8_t, Conversion::kLargestFrame> bytes;
    const Ticks units = (packet.date + Conversion::kTicksPerClockUnit / 2) / Conversion::kTicksPerClockUnit;
    const Conversion::SFrame frame{packet.row, static_cast<std::uint8_t>(output.count++),
                                   static_cast<std::uint32_t>(units % Conversion::kClockCycle), payload};
    output.Write({reinterpret_cast<const char*>(bytes.data()), Conversion::WriteFrame(frame, bytes)});
}

void WriteRaw(COutput& output, const SPacket& packet) {
    WriteFrame(output, packet, packet.payload.subspan(Conversion::kDateSize));
}

constexpr Conversion::CInertialCipher::Key kKey{0x56, 0x41, 0x52, 0x4E, 0x45, 0x20, 0x4E, 0x41, 0x56};

void WriteKey(COutput& output) {
    Outils_Fichiers::WriteWholeFile(Conversion::CInertialCipher::GetKeyPath(output.GetPath()), kKey);
}

void WriteCiphered(COutput& output, const SPacket& packet) {
    std::vector<std::uint8_t> payload(packet.payload.begin() + Conversion::kDateSize, packet.payload.end());
    if (packet.layout->type == typeImu) {
        payload[Conversion::GetDataTypeOffset()] = Conversion::kEnciphered;
        const auto time =
            static_cast<std::uint32_t>((packet.date + Conversion::kTicksPerClockUnit / 2) /
                                       Conversion::kTicksPerClockUnit % Conversion::kClockCycle);
        Conversion::CInertialCipher(kKey).Apply(payload, time, static_cast<std::uint8_t>(output.count));
    }
    WriteFrame(output, packet, payload);
}

void WriteDoppler(COutput& output, const SPacket& packet) {
    const auto fields = Split(packet.utc);
    output.Print(
        ":SA, +0.00, +0.00,  0.00\r\n:TS,%02d%02d%02d%02d%02d%02d%02d,35.0,+15.0,%6.1f,%6.1f,  0\r\n",
        fields.year % 100, fields.month, fields.day, fields.hour, fields.minute, fields.second,
        static_cast<int>((fields.ticks + 50'000) / 100'000) % 100, 0.0,
        packet.Get("Sound velocity (sensor)"));
    const auto millimetres = [&](std::string_view name) {
        return static_cast<int>(std::lround(packet.Get(name) * 1000));
    };
    const bool bottom = packet.channel == "DVL_BT";
    output.Print(":%s,%+6d,%+6d,%+6d,%+6d,A\r\n", bottom ? "BI" : "WI", millimetres("Speed X"),
                 millimetres("Speed Y"), millimetres("Speed Z"), 0);
    output.Print(":%s,%+12.2f,%+12.2f,%+12.2f,%7.2f,%6.2f\r\n", bottom ? "BD" : "WD", 0.0, 0.0, 0.0,
                 packet.Get("Altitude"), 0.0);
}

void WriteDecoded(COutput& output, const SPacket& packet) {
    const auto tags = Conversion::GetTags();
    const auto row = std::ranges::find(tags, packet.channel, &Conversion::STagRow::channel);
    if (row == tags.end()) return;
    std::string line(row->tag);
    line += ':';
    for (std::uint32_t i = 1; i < packet.layout->fields.size(); ++i) line += ' ' + FormatField(packet, i);
    output.Print("%s %.7f\n", line.c_str(),
                 static_cast<double>(packet.date % kTicksPerDay) / static_cast<double>(kTicksPerSecond));
}

void WriteEvent(COutput& output, const SPacket& packet) {
    const auto fields = Split(packet.utc);
    output.Print("%02d/%02d/%04d %s\t%d\t%.0f\n", fields.day, fields.month, fields.year,
                 FormatClock(packet.utc, ":", 7).c_str(), packet.channel.back() - '1', packet.Get("Counter"));
}

void WriteTitles(COutput& output, std::string_view heading, const SPacketLayout& layout) {
    output.Print("%.*s\n", static_cast<int>(heading.size()), heading.data());
    for (const SFieldLayout& field : layout.fields) {
        if (&field != layout.fields.data()) output.Write(";");
        output.Write(field.name);
    }
    output.Write("\n");
}

void WriteExternal(COutput& output, const SPacket& packet) {
    std::string line = FormatIso(packet.utc);
    for (std::uint32_t i = 1; i < packet.layout->fields.size(); ++i) line += ';' + FormatField(packet, i);
    output.Print("%s\n", line.c_str());
}

template <const SPacketLayout& Layout>
void WriteExternalHead(COutput& output) {
    constexpr std::string_view kNames[] = {"DEPTH", "USBL", "RANGE", "ODOMETER", "PLATFORM ORIENTATION"};
    constexpr std::uint16_t kTypes[] = {typeDepth, typeUsbl, typeLbl, typeOdometer, typePlatformOrientation};
    const auto index = std::ranges::find(kTypes, Layout.type) - std::begin(kTypes);
    WriteTitles(output, std::string(kNames[index]) + " TO VARNE NAV EXTERNAL DATA", Layout);
}

struct SFormat {
    std::string_view kind;
    std::string_view prefix; // of the channels that are written; empty: all
    void (*head)(COutput& output);
    void (*packet)(COutput& output, const SPacket& packet);
    std::string_view without = {}; // a channel that the format has no place for
};

constexpr SFormat kFormats[] = {
    {"nmea", "GPS_1", nullptr, WriteNmea},
    {"kolt", "USBL_", nullptr, WriteBeacon},
    {"novatel", "GPS_1", WriteSolutionHead, WriteSolution},
    {"novatel-weeks", "GPS_1", WriteWeeksHead, WriteWeeks},
    {"novatel-fixes", "GPS_1", WriteFixesHead, WriteFixes},
    {"raw", "", nullptr, WriteRaw},
    {"ciphered", "", WriteKey, WriteCiphered},
    {"pd6", "DVL_", nullptr, WriteDoppler},
    {"decoded", "", nullptr, WriteDecoded},
    {"synchro", "SYNCHRO_", nullptr, WriteEvent, "SYNCHRO_4"},
    {"range", "LBL", WriteExternalHead<kLblLayout>, WriteExternal},
    {"usbl", "USBL_", WriteExternalHead<kUsblLayout>, WriteExternal},
    {"platform", "PLATFORM_ORIENT", WriteExternalHead<kPlatformOrientationLayout>, WriteExternal},
    {"odometer", "ODOMETER", WriteExternalHead<kOdometerLayout>, WriteExternal},
    {"depth", "DEPTH", WriteExternalHead<kDepthLayout>, WriteExternal},
};

} // namespace

std::vector<std::string_view> GetForeignKinds() {
    std::vector<std::string_view> kinds;
    for (const SFormat& format : kFormats) kinds.push_back(format.kind);
    return kinds;
}

bool WriteForeign(std::string_view kind, const std::filesystem::path& recording, CDateTime utcOrigin,
                  const std::filesystem::path& target, std::string& error) {
    const auto* format = std::ranges::find(kFormats, kind, &SFormat::kind);
    const auto file = OpenXpfFile(recording, EFileKind::tarin).file;
    error = Outils_Texte::FormatText(EText::simNotWritten, {Outils_Fichiers::ToText(target)});
    if (format == std::end(kFormats) || !file || !file->Seek(file->GetDataStart().Get())) return false;

    COutput output(target);
    if (format->head) format->head(output);
    SPacketHeader header;
    SPacket packet;
    for (CStreamWalk walk(*file); walk.Next(header, packet.payload) == EPacketRead::whole;) {
        packet.row = header.channel;
        packet.channel = GetChannelLayouts()[header.channel].name;
        packet.layout = FindPacketLayout(GetChannelLayouts()[header.channel].packetType);
        if (!packet.channel.starts_with(format->prefix) || packet.channel == format->without) continue;
        packet.date = Outils::Load<std::int64_t>(packet.payload.data());
        packet.utc = static_cast<Ticks>(utcOrigin.GetTicks()) + packet.date;
        format->packet(output, packet);
    }
    if (!output.Close()) return false;
    error.clear();
    return true;
}

} // namespace Simulation
