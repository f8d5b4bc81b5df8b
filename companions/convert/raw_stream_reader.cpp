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
    explicit CFrameReader(CByteSource& source) : m_source(source), m_buffer(2 * CByteSource::kPieceSize) {}

    // The next frame; its view is valid until the next call. False at the end.
    bool Next(SFrame& frame) {
        for (m_lost = 0;;) {
            while (m_end - m_begin < kLargestFrame && Fill()) {
            }
            const std::span<const std::uint8_t> rest(m_buffer.data() + m_begin, m_end - m_begin);
            if (rest.empty()) return false;
            const std::size_t stated = GetFrameSize(rest);
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
        m_day = GetUtcDay(m_conversion.arguments);
        const SLearnt& learnt = m_conversion.learnt;
        if (learnt.lacksUtc && m_day) m_conversion.sink.SetUtcOrigin(*m_day);
        CFrameReader frames(m_conversion.source);
        CClockCycle clock(kClockCycle * kTicksPerClockUnit);
        Ticks begin = INT64_MIN;
        for (SFrame frame; !m_conversion.IsDone() && frames.Next(frame);) {
            if (frames.TakeLost()) m_conversion.faults.Add(EText::faultFrame, frames.GetLostPlace());
            if (!Follows(frame, frames.GetPlace())) continue;
            const Ticks date = clock.Unwrap(frame.time * kTicksPerClockUnit);
            if (begin == INT64_MIN) begin = date;
            if (m_stop > 0 && date - begin >= m_stop) break;
            if (frame.channel == m_utcRow) TakeUtc(frame, date);
            if (date - begin >= m_skip && !Take(frame, date, frames.GetPlace())) return false;
        }
        if (frames.TakeLost()) m_conversion.faults.Add(EText::faultFrame, frames.GetLostPlace());
        const bool isWhole = !m_conversion.source.IsStopped() && !m_conversion.source.IsFailed();
        if (isWhole && !m_conversion.IsDone()) Learn();
        return true;
    }

  private:
    void TakeUtc(const SFrame& frame, Ticks date) {
        const auto time = ReadUtc(frame.payload, m_day);
        m_hasUtc = m_hasUtc || time.has_value();
        if (time) m_fit.Add(date, *time);
    }

    // Most streams hold UTC and have a steady clock, and need not be read again.
    void Learn() {
        SLearnt& learnt = m_conversion.learnt;
        if (!learnt.clockRate) {
            const std::size_t compensation = m_conversion.arguments.GetWord("/ccd", 0);
            const bool drifts = compensation == kOn || (compensation != kOff && m_fit.IsSignificant());
            learnt.clockRate = drifts ? m_fit.GetRate() : 1;
            if (*learnt.clockRate != 1) {
                m_conversion.startAgain = true;
                m_conversion.notes.Say(ELevel::information, EText::rawDrift,
                                       {Outils_Texte::FormatFixed((*learnt.clockRate - 1) * 1e6, 3)});
            }
        }
        if (m_hasUtc || learnt.lacksUtc) return;
        learnt.lacksUtc = true;
        m_conversion.startAgain = m_conversion.startAgain || m_day.has_value();
        if (!m_day) m_conversion.notes.Say(ELevel::warning, EText::rawNoUtc);
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
    bool Take(const SFrame& frame, Ticks date, std::uint64_t place) {
        std::memcpy(m_payload.data() + kDateSize, frame.payload.data(), frame.payload.size());
        const std::span<std::uint8_t> body(m_payload.data() + kDateSize, frame.payload.size());
        if (frame.channel == m_imuRow && body[GetDataTypeOffset()] == kEnciphered && m_deciphers) {
            if (!m_cipher && !LoadKey()) return false;
            m_cipher->Apply(body, frame.time, frame.sequence);
            body[GetDataTypeOffset()] = kPlain;
        }
        if (frame.channel == m_utcRow && m_day) CompleteUtc(body, *m_day);
        const double rate = m_conversion.learnt.clockRate.value_or(1);
        if (rate != 1) date = std::llround(static_cast<double>(date) * rate);
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
    std::optional<Ticks> m_day; // that the switch gives
    CDriftFit m_fit;
    std::optional<CInertialCipher> m_cipher;
    std::array<std::uint8_t, kLargestFrame> m_payload{};

    bool m_hasLast = false;
    std::uint8_t m_lastSequence = 0;
    std::uint16_t m_lastChannel = 0;
    std::uint32_t m_lastTime = 0;
};

} // namespace

bool ReadRawStream(SConversion& conversion) { return CRawStreamReader(conversion).Read(); }

} // namespace Conversion
