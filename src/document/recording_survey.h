// What a recording holds: for a user who is about to make a project of it.
#pragma once

#include "foundation/date_time.h"
#include "foundation/thread.h"
#include "model/sensor.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace Application_Tarvel {

using Outils_Temps::CDateTime;
using Outils_Temps::CDateTimeSpan;

struct SSurveyedChannel {
    std::uint16_t id;
    std::string name;
    // The kind of sensor that the channel serves and a user adds by choice; none for any other channel.
    std::optional<Metier_Tarvel::ESensorKind> kind;
    std::uint64_t packets;
    CDateTimeSpan first, last; // invalid without dates
};

struct SRecordingSurvey {
    bool isRecording = false;                 // of the present layout; the rest holds nothing otherwise
    std::string equipment;                    // empty without inertial data
    std::optional<CDateTimeSpan> first, last; // of the inertial data
    CDateTime utcOrigin;                      // instant of date zero; invalid when unknown
};

// Reads a few blocks, and the first `most` packets for UTC. Any thread.
SRecordingSurvey SurveyRecording(const std::filesystem::path& path, int most, const Outils::CEvent& cancel);

// Reads the whole file: its channels with packets, in file order. Once the event is set it returns what it has
// met by then. Any thread.
std::vector<SSurveyedChannel> SurveyChannels(const std::filesystem::path& path, const Outils::CEvent& cancel);

} // namespace Application_Tarvel
