// Frames of the raw binary stream of an INS.
//
// A frame is "$", its length, the row of its channel in the channel table, a sequence number, the payload of
// the channel's packet without "Date", the time of the INS clock and a CRC-32 of all before. Little-endian,
// packed.
#pragma once

#include "xpf/layout.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>

namespace Conversion {

inline constexpr std::uint8_t kFrameMark = '$';
inline constexpr std::size_t kFrameHeadSize = 4, kFrameTimeSize = 4, kFrameSumSize = 4;
inline constexpr std::size_t kFrameOverhead = kFrameHeadSize + kFrameTimeSize + kFrameSumSize;
inline constexpr std::size_t kLargestFrame = 255;
inline constexpr std::size_t kDateSize = 8; // that a packet's payload has and a frame's has not

inline constexpr std::int64_t kTicksPerClockUnit = 1000;       // the clock counts 0.1 ms
inline constexpr std::uint32_t kClockCycle = 86'400 * 10'000u; // and begins again after a day

// A view of a whole frame.
struct SFrame {
    std::uint16_t channel; // row of the channel table
    std::uint8_t sequence;
    std::uint32_t time; // of the INS clock, in 0.1 ms
    std::span<const std::uint8_t> payload;
};

// The checks that a frame's first bytes pass, and the size that they state; 0 when they are no frame's.
std::size_t GetFrameSize(std::span<const std::uint8_t> bytes);
// The frame at the front; empty unless it is whole and its sum holds.
std::optional<SFrame> ReadFrame(std::span<const std::uint8_t> bytes);
// Writes a frame and returns its size. REQUIRES: a payload of the channel, and room for kLargestFrame bytes.
std::size_t WriteFrame(const SFrame& frame, std::span<std::uint8_t> bytes);

// CRC-32 as in IEEE 802.3, of these bytes.
std::uint32_t ComputeCrc32(std::span<const std::uint8_t> bytes);

// Inertial increments in a frame may be enciphered, and "Data type" then is kEnciphered. The keystream is
// ChaCha20 (RFC 8439), block 0, with the clock time, the sequence number and zeros as the nonce.
inline constexpr std::uint8_t kPlain = 0, kEnciphered = 1;

class CInertialCipher {
  public:
    using Key = std::array<std::uint8_t, 32>;

    explicit CInertialCipher(const Key& key) : m_key(key) {}

    // The key beside a stream: a file of its name with the extension ".key", of 32 bytes or 64 hexadecimal
    // digits. Empty when there is none.
    static std::optional<Key> ReadKey(const std::filesystem::path& stream);
    static std::filesystem::path GetKeyPath(const std::filesystem::path& stream);

    // Enciphers or deciphers the increments in the payload of an inertial frame, which lacks the date.
    void Apply(std::span<std::uint8_t> payload, std::uint32_t time, std::uint8_t sequence) const;

  private:
    Key m_key;
};

// One block of the keystream.
std::array<std::uint8_t, 64> MakeKeystream(const CInertialCipher::Key& key, std::uint32_t counter,
                                           const std::array<std::uint32_t, 3>& nonce);

// Where "Data type" lies in the payload of an inertial frame.
std::size_t GetDataTypeOffset();

} // namespace Conversion
