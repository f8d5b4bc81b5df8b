// The raw binary stream of an INS.
#include "convert/clock_cycle.h"
#include "convert/raw_frame.h"
#include "convert/readers.h"
#include "convert/utc_packet.h"
#include "foundation/numbers.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace Conversion {
namespace {

using namespace Persistance_Xpf;

// Frames in a stream of bytes: looks for the next whose sum holds where one is damaged.
class CFrameReader {
  public:
    // `only`: the channel that is asked for; 0 for all.
    explicit CFrameReader(CByteSource& source, std::uint8_t only = 0)
        : m_source(source), m_only(only), m_buffer(2 * CByteSource::kPieceSize) {}

    // The next frame; its view is valid until the next call. False at the end.
    bool Next(SFrame& frame) {
        for (m_lost = 0;;) {
            while (m_end - m_begin < kLargestFrame && Fill()) {
            }
            const std::span<const std::uint8_t> rest(m_buffer.data() + m_begin, m_end - m_begin);
            if (rest.empty()) return false;
            const std::size_t stated = GetFrameSize(rest);
            if (m_only != 0 && stated != 0 && rest[2] != m_only && stated < rest.size() &&
                rest[stated] == kFrameMark) {
                m_begin += stated; // between two marks: not looked at closer
                continue;
            }
            if (const auto found = ReadFrame(rest)) {
                frame = *found;
                m_place = m_position + m_begin;
                m_begin += found->payload.size() + kFrameOverhead;
                return true;
            }
            // A frame that is cut by the end is no loss.
            if (stated > rest.size() && m_lost == 0) return false;
            const auto* next =
                static_cast<const std::uint8_t*>(std::memchr(rest.data() + 1, kFrameMark, rest.size() - 1));
            const std::size_t skipped = next ? static_cast<std::size_t>(next - rest.data()) : rest.size();
            if (m_lost == 0) m_lostAt = m_position + m_begin;
            m_lost += skipped;
            m_begin += skipped;
        }
    }

    std::uint64_t GetPlace() const { return m_place; } // of the frame, bytes
    // Whether bytes before this frame, or before the end, are no frame, and where they begin.
    bool TakeLost() { return std::exchange(m_lost, 0) > 0; }
    std::uint64_t GetLostPlace() const { return m_lostAt; }

  private:
    bool Fill() {
        std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
        m_position += m_begin;
        m_end -= m_begin;
        m_begin = 0;
        const std::size_t count =
            m_source.Read({reinterpret_cast<char*>(m_buffer.data()) + m_end, m_buffer.size() - m_end});
        m_end += count;
        return count > 0;
    }

    CByteSource& m_source;
    std::uint8_t m_only;
    std::vector<std::uint8_t> m_buffer;
    std::size_t m_begin = 0, m_end = 0;
    std::uint64_t m_position = 0; // of the buffer in the stream
    std::uint64_t m_place = 0, m_lost = 0, m_lostAt = 0;
};

constexpr std::size_t kOff = 1, kOn = 2; // words of "/ccd auto|off|on"

class CRawStreamReader {
  public:
    explicit CRawStreamReader(SConversion& conversion)
        : m_conversion(conversion), m_utcRow(GetChannelRow("UTC")), m_imuRow(GetChannelRow("IMU")) {
        const CArguments& arguments = conversion.arguments;
        m_skip = std::llround(arguments.GetNumber("/skip", 0) * kTicksPerSecond);
        m_stop = std::llround(arguments.GetNumber("/stop", 0) * kTicksPerSecond);
        m_deciphers = arguments.GetWord("/decipher", 0) == 0;
    }

    bool Read() {
        const std::size_t compensation = m_conversion.arguments.GetWord("/ccd", 0);
        const auto day = GetUtcDay(m_conversion.arguments);
        // Clock and UTC are compared over the whole stream before the first packet can be dated.
        const CDriftFit fit = MeasureDrift(day, compensation != kOff);
        if (m_conversion.source.IsStopped() || m_conversion.source.IsFailed()) return true;
        if (compensation == kOn || (compensation != kOff && fit.IsSignificant())) m_rate = fit.GetRate();
        if (m_rate != 1)
            m_conversion.notes.Say(ELevel::information, EText::rawDrift, {FormatPartsPerMillion(m_rate - 1)});
        if (!m_hasUtc && day) m_conversion.sink.SetUtcOrigin(*day);
        if (!m_hasUtc && !day) m_conversion.notes.Say(ELevel::warning, EText::rawNoUtc);
        m_conversion.source.Rewind();

        CFrameReader frames(m_conversion.source);
        CClockCycle clock(kClockCycle * kTicksPerClockUnit);
        for (SFrame frame; !m_conversion.IsDone() && frames.Next(frame);) {
            if (frames.TakeLost()) m_conversion.faults.Add(EText::faultFrame, frames.GetLostPlace());
            if (!Follows(frame, frames.GetPlace())) continue;
            const Ticks date = clock.Unwrap(frame.time * kTicksPerClockUnit);
            if (m_begin == INT64_MIN) m_begin = date;
            if (date - m_begin < m_skip) continue;
            if (m_stop > 0 && date - m_begin >= m_stop) break;
            if (!Take(frame, date, day, frames.GetPlace())) return false;
        }
        if (frames.TakeLost()) m_conversion.faults.Add(EText::faultFrame, frames.GetLostPlace());
        return true;
    }

  private:
    static std::string FormatPartsPerMillion(double share);

    // Without `measures` only looks whether there is UTC at all.
    CDriftFit MeasureDrift(std::optional<Ticks> day, bool measures) {
        CDriftFit fit;
        CFrameReader frames(m_conversion.source, static_cast<std::uint8_t>(m_utcRow));
        CClockCycle clock(kClockCycle * kTicksPerClockUnit);
        for (SFrame frame; !(m_hasUtc && !measures) && frames.Next(frame);) {
            const Ticks date = clock.Unwrap(frame.time * kTicksPerClockUnit);
            if (const auto time = ReadUtc(frame.payload, day)) {
                m_hasUtc = true;
                fit.Add(date, *time);
            }
        }
        return fit;
    }

    // False for a repeated frame. Counts the gaps in the sequence.
    bool Follows(const SFrame& frame, std::uint64_t place) {
        const bool repeats = m_hasLast && frame.sequence == m_lastSequence && frame.time == m_lastTime &&
                             frame.channel == m_lastChannel;
        if (repeats) {
            m_conversion.faults.Add(EText::faultRepeated, place);
            return false;
        }
        const auto missing = static_cast<std::uint8_t>(frame.sequence - m_lastSequence - 1);
        for (unsigned i = 0; m_hasLast && i < missing; ++i)
            m_conversion.faults.Add(EText::faultMissing, place);
        m_hasLast = true;
        m_lastSequence = frame.sequence;
        m_lastTime = frame.time;
        m_lastChannel = frame.channel;
        return true;
    }

    // False when the stream needs a key that is not there.
    bool Take(const SFrame& frame, Ticks date, std::optional<Ticks> day, std::uint64_t place) {
        std::memcpy(m_payload.data() + kDateSize, frame.payload.data(), frame.payload.size());
        const std::span<std::uint8_t> body(m_payload.data() + kDateSize, frame.payload.size());
        if (frame.channel == m_imuRow && body[GetDataTypeOffset()] == kEnciphered && m_deciphers) {
            if (!m_cipher && !LoadKey()) return false;
            m_cipher->Apply(body, frame.time, frame.sequence);
            body[GetDataTypeOffset()] = kPlain;
        }
        if (frame.channel == m_utcRow && day) CompleteUtc(body, *day);
        if (m_rate != 1) date = std::llround(static_cast<double>(date) * m_rate);
        m_conversion.sink.Add(frame.channel, date, {m_payload.data(), frame.payload.size() + kDateSize},
                              place);
        return true;
    }

    bool LoadKey() {
        const std::filesystem::path& stream = m_conversion.sources.front();
        const auto key = CInertialCipher::ReadKey(stream);
        if (key)
            m_cipher.emplace(*key);
        else
            m_conversion.notes.Say(ELevel::error, EText::rawNoKey,
                                   {Outils_Fichiers::ToText(CInertialCipher::GetKeyPath(stream))});
        return key.has_value();
    }

    SConversion& m_conversion;
    const std::uint16_t m_utcRow, m_imuRow;
    Ticks m_skip = 0, m_stop = 0; // from the first frame; 0: to the end
    bool m_deciphers = true, m_hasUtc = false;
    double m_rate = 1;
    std::optional<CInertialCipher> m_cipher;
    Ticks m_begin = INT64_MIN;
    std::array<std::uint8_t, kLargestFrame> m_payload{};

    bool m_hasLast = false;
    std::uint8_t m_lastSequence = 0;
    std::uint16_t m_lastChannel = 0;
    std::uint32_t m_lastTime = 0;
};

std::string CRawStreamReader::FormatPartsPerMillion(double share) {
    return Outils_Texte::FormatFixed(share * 1e6, 3);
}

} // namespace

bool ReadRawStream(SConversion& conversion) { return CRawStreamReader(conversion).Read(); }

} // namespace Conversion
