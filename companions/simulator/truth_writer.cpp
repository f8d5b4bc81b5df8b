#include "simulator/truth_writer.h"

#include "foundation/paths.h"
#include "recording/payload.h"
#include "recording/recording_writer.h"
#include "xpf/tarout_layouts.h"

#include <charconv>
#include <cmath>
#include <fstream>

namespace Simulation {

using Enregistrement::CPayload;
using Enregistrement::PlaceOf;
using Enregistrement::SPlace;

using Enregistrement::CRecordingWriter;
using Outils_Temps::kTicksPerSecond;

namespace {

void AppendNumber(std::string& line, double value, int decimals) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    line.append(text, end.ptr);
}

bool WriteTruthText(const CMission& mission, const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    std::string lines =
        "time,latitude,longitude,altitude,speedNorth,speedEast,speedUp,heading,roll,pitch,heave\n";
    CTrackCursor cursor;
    const double rate = mission.GetOptions().truthRate;
    for (std::int64_t i = 0; static_cast<double>(i) <= mission.GetDuration() * rate; ++i) {
        const STruth truth = mission.GetTruth(static_cast<double>(i) / rate, cursor);
        const std::pair<double, int> values[] = {
            {truth.time, 4},       {truth.latitude, 11}, {truth.longitude, 11}, {truth.altitude, 5},
            {truth.speedNorth, 6}, {truth.speedEast, 6}, {truth.speedUp, 6},    {truth.heading, 7},
            {truth.roll, 7},       {truth.pitch, 7},     {truth.heave, 5}};
        for (const auto& [value, decimals] : values) {
            AppendNumber(lines, value, decimals);
            lines += ',';
        }
        lines.back() = '\n';
        if (lines.size() > 1 << 16) {
            file << lines;
            lines.clear();
        }
    }
    file << lines;
    file.close();
    return file.good();
}

consteval SPlace At(std::string_view name) { return PlaceOf(Persistance_Xpf::kMorvexStdLayout, name); }

bool WriteTruthResult(const CMission& mission, const std::filesystem::path& path) {
    constexpr std::string_view kChannels[] = {"MORVEX_STD"};
    CRecordingWriter writer;
    if (!writer.Create(path, kChannels)) return false;
    const SMissionOptions& options = mission.GetOptions();
    CTrackCursor cursor;
    CPayload payload;
    for (std::int64_t i = 0; static_cast<double>(i) <= mission.GetDuration() * options.truthRate; ++i) {
        const STruth truth = mission.GetTruth(static_cast<double>(i) / options.truthRate, cursor);
        payload.Reset(Persistance_Xpf::kMorvexStdLayout.payloadSize);
        const double date = truth.time * (1 + options.clockDrift * 1e-6);
        payload.PutDate(std::llround(date * kTicksPerSecond));
        constexpr SPlace kPoints[][3] = {{At("Latitude0"), At("Longitude0"), At("Altitude0")},
                                         {At("Latitude1"), At("Longitude1"), At("Altitude1")},
                                         {At("Latitude2"), At("Longitude2"), At("Altitude2")},
                                         {At("Latitude3"), At("Longitude3"), At("Altitude3")}};
        for (const auto& [latitude, longitude, altitude] : kPoints) {
            payload.Put(latitude, truth.latitude);
            payload.Put(longitude, truth.longitude);
            payload.Put(altitude, truth.altitude - options.geoidSeparation);
        }
        for (const SPlace place : {At("Heave0"), At("Heave1"), At("Heave2"), At("Heave3")})
            payload.Put(place, truth.heave);
        const std::pair<SPlace, double> values[] = {{At("Speed north"), truth.speedNorth},
                                                    {At("Speed east"), truth.speedEast},
                                                    {At("Speed up"), truth.speedUp},
                                                    {At("Heading"), truth.heading},
                                                    {At("Roll"), truth.roll},
                                                    {At("Pitch"), truth.pitch}};
        for (const auto& [place, value] : values) payload.Put(place, value);
        Outils_Temps::CalendarFields utc;
        if ((options.GetUtcOrigin() + Outils_Temps::CDateTimeSpan::FromSeconds(truth.time))
                .GetCalendar(utc)) {
            payload.Put(At("UTC Year"), utc.year);
            payload.Put(At("UTC Month"), utc.month);
            payload.Put(At("UTC Day"), utc.day);
            payload.Put(At("UTC Hour"), utc.hour);
            payload.Put(At("UTC Minute"), utc.minute);
            payload.Put(At("UTC Second"), utc.second + utc.ticks * 1e-7);
        }
        if (!writer.WriteRaw(*writer.FindChannel(kChannels[0]), payload.Get())) return false;
    }
    return writer.Close();
}

} // namespace

std::filesystem::path GetTruthResultPath(const std::filesystem::path& truthPath) {
    return Outils_Fichiers::WithExtension(truthPath, ".tarout");
}

bool WriteTruth(const CMission& mission, const std::filesystem::path& path) {
    return WriteTruthText(mission, path) && WriteTruthResult(mission, GetTruthResultPath(path));
}

} // namespace Simulation
