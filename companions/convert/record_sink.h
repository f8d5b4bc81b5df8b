// Takes the records of a reader and writes them as the packets of a recording.
#pragma once

#include "common/fault_counter.h"
#include "convert/calendar.h"
#include "recording/payload.h"
#include "recording/recording_writer.h"
#include "xpf/layout.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <set>
#include <span>
#include <string_view>

namespace Conversion {

using Compagnon::CFaultCounter;

// Which channels a recording has. A header is written once, so a channel that turns up later than the first
// records makes the conversion start again with the greater set.
using ChannelSet = std::set<std::uint16_t>; // rows of the channel table

// The row of a channel of recordings. REQUIRES: there is one.
std::uint16_t GetChannelRow(std::string_view name);

// What the dates of the records are.
enum class EDates : std::uint8_t {
    utc, // absolute: date zero of the recording is the midnight before the first, and the sink writes the UTC
         // packets, one a second
    own  // spans on the recorder's clock, written as they are
};

// Puts records that are out of order by a few places into order, and leaves out those whose date cannot be
// right: a damaged digit must not cost more than its own record. One thread.
class CRecordSink {
  public:
    // `known`: channels that the recording is to have in any case. `faults` must outlive the sink.
    CRecordSink(std::filesystem::path path, EDates dates, ChannelSet known, CFaultCounter& faults);

    // With own dates: the UTC of date zero, so that the sink writes UTC packets there as well.
    void SetUtcOrigin(Ticks origin) { m_origin = origin, m_writesUtc = true; }

    // A record of a channel; its date replaces that of the payload. `place` is the line or the byte that it
    // comes from. REQUIRES: the payload has the size of the channel's packets.
    void Add(std::uint16_t channel, Ticks date, std::span<const std::uint8_t> payload, std::uint64_t place);
    // Writes what waits. False when the disk does not take the recording.
    bool Finish();

    // The conversion is to start again with GetChannels(), which have grown.
    bool MustRestart() const { return m_mustRestart; }
    const ChannelSet& GetChannels() const { return m_channels; }
    // The disk does not take the recording: nothing more is written.
    bool IsFailed() const { return m_failed; }
    bool IsDone() const { return m_failed || m_mustRestart; }
    // Packets written, without the UTC packets that the sink makes itself.
    std::uint64_t GetCount() const { return m_count; }

  private:
    static constexpr std::size_t kWaiting = 64; // records that wait for their order
    // A record is dated wrongly when so many that come after it in the source are dated before it.
    static constexpr std::uint64_t kOvertakers = 32;
    static constexpr std::size_t kLargestPayload = 64;

    struct SRecord {
        Ticks date;
        std::uint64_t number, place;
        std::uint16_t channel;
        std::uint8_t size;
        std::array<std::uint8_t, kLargestPayload> payload;
    };

    SRecord& At(std::size_t index) { return m_records[(m_first + index) % m_records.size()]; }
    bool IsRepeated(std::uint16_t channel, Ticks date, std::span<const std::uint8_t> payload,
                    std::size_t place);
    void DropFarBack();
    void DropAheadOfAll();
    void WriteFirst();
    bool Begin();
    bool Write(SRecord& record);
    void WriteUtc(Ticks utc);

    std::filesystem::path m_path;
    bool m_writesUtc;
    Ticks m_origin = 0; // UTC of date zero, subtracted from absolute dates
    bool m_isAbsolute;
    ChannelSet m_channels;
    CFaultCounter& m_faults;
    Enregistrement::CRecordingWriter m_writer;
    std::array<Enregistrement::ChannelHandle, 32> m_handles{};

    std::array<SRecord, kWaiting + 1> m_records; // a ring in order of date
    std::size_t m_first = 0, m_waiting = 0;
    std::uint64_t m_number = 0, m_count = 0;
    Ticks m_lastDate = INT64_MIN, m_lastSecond = INT64_MIN;
    bool m_begun = false, m_mustRestart = false, m_failed = false;
};

} // namespace Conversion
