// Takes the packets down as a recorder does: with its faults.
#pragma once

#include "recording/recording_writer.h"
#include "simulator/mission_options.h"
#include "simulator/random.h"

#include <span>
#include <vector>

namespace Simulation {

// Loses, doubles and dates late what the options say, and has the clock that they say.
class CRecorder {
  public:
    // Both must outlive the recorder.
    CRecorder(const SMissionOptions& options, Enregistrement::CRecordingWriter& writer)
        : m_options(options), m_writer(writer), m_random(options.seed, kStream) {}

    // Writes a packet of an aiding sensor, late by so many seconds. False when the disk does not take it.
    bool Write(Enregistrement::ChannelHandle handle, std::span<const std::uint8_t> payload, double late = 0);
    // Writes an inertial packet of this date, s, or not.
    bool WriteImu(Enregistrement::ChannelHandle handle, std::span<const std::uint8_t> payload, double time);

  private:
    static constexpr std::uint64_t kStream = 102; // beyond those of the sensors

    bool Happens(double share) { return share > 0 && m_random.Uniform() < share; }

    const SMissionOptions& m_options;
    Enregistrement::CRecordingWriter& m_writer;
    CRandom m_random;
    std::vector<std::uint8_t> m_payload;
};

} // namespace Simulation
