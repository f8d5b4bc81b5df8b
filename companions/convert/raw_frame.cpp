#include "convert/raw_frame.h"

#include "convert/fields.h"
#include "foundation/bytes.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "xpf/tarin_layouts.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace Conversion {
namespace {

using namespace Persistance_Xpf;
using Outils::Load;

// The size of the frames of each channel of recordings; 0 for the others.
const auto& GetFrameSizes() {
    static const auto sizes = [] {
        std::array<std::uint8_t, 256> all{};
        const auto rows = GetChannelLayouts();
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (rows[i].kind == EFileKind::tarin)
                all[i] = static_cast<std::uint8_t>(FindPacketLayout(rows[i].packetType)->payloadSize -
                                                   kDateSize + kFrameOverhead);
        return all;
    }();
    return sizes;
}

// Eight tables, so that eight bytes are looked up at once.
constexpr auto kCrcTables = [] {
    constexpr std::uint32_t kPolynomial = 0xEDB88320;
    std::array<std::array<std::uint32_t, 256>, 8> tables{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t sum = i;
        for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1) != 0 ? kPolynomial : 0);
        tables[0][i] = sum;
    }
    for (std::size_t t = 1; t < tables.size(); ++t)
        for (std::size_t i = 0; i < 256; ++i)
            tables[t][i] = (tables[t - 1][i] >> 8) ^ tables[0][tables[t - 1][i] & 0xFF];
    return tables;
}();

using StateRow = std::uint32_t __attribute__((vector_size(16)));

template <int bits>
StateRow Rotate(StateRow row) {
    return (row << bits) | (row >> (32 - bits));
}
// Moves each word to the place that is so many before its own.
template <int places>
StateRow Turn(StateRow row) {
    return __builtin_shufflevector(row, row, places, places + 1, places + 2, places + 3);
}
void MixColumns(StateRow& a, StateRow& b, StateRow& c, StateRow& d) {
    d = Rotate<16>(d ^ (a += b));
    b = Rotate<12>(b ^ (c += d));
    d = Rotate<8>(d ^ (a += b));
    b = Rotate<7>(b ^ (c += d));
}

constexpr std::uint32_t kFirstIncrement = kImuLayout.OffsetOf("Fog 1") - kDateSize;
constexpr std::uint32_t kIncrementsSize = kImuLayout.OffsetOf("Sensor status") - kDateSize - kFirstIncrement;

} // namespace

std::size_t GetFrameSize(std::span<const std::uint8_t> bytes) {
    if (bytes.size() < kFrameHeadSize || bytes[0] != kFrameMark) return 0;
    const std::uint8_t size = GetFrameSizes()[bytes[2]];
    return size != 0 && size == bytes[1] ? size : 0;
}

std::optional<SFrame> ReadFrame(std::span<const std::uint8_t> bytes) {
    const std::size_t size = GetFrameSize(bytes);
    if (size == 0 || size > bytes.size()) return std::nullopt;
    const std::size_t sumAt = size - kFrameSumSize, timeAt = sumAt - kFrameTimeSize;
    if (ComputeCrc32(bytes.first(sumAt)) != Load<std::uint32_t>(bytes.data() + sumAt)) return std::nullopt;
    SFrame frame{bytes[2], bytes[3], Load<std::uint32_t>(bytes.data() + timeAt),
                 bytes.subspan(kFrameHeadSize, timeAt - kFrameHeadSize)};
    if (frame.time >= kClockCycle) return std::nullopt;
    return frame;
}

std::size_t WriteFrame(const SFrame& frame, std::span<std::uint8_t> bytes) {
    const std::size_t size = frame.payload.size() + kFrameOverhead;
    const std::uint8_t head[] = {kFrameMark, static_cast<std::uint8_t>(size),
                                 static_cast<std::uint8_t>(frame.channel), frame.sequence};
    std::uint8_t* end = std::copy(std::begin(head), std::end(head), bytes.data());
    end = std::copy(frame.payload.begin(), frame.payload.end(), end);
    std::memcpy(end, &frame.time, sizeof frame.time);
    const std::uint32_t sum = ComputeCrc32(bytes.first(size - kFrameSumSize));
    std::memcpy(bytes.data() + size - kFrameSumSize, &sum, sizeof sum);
    return size;
}

std::uint32_t ComputeCrc32(std::span<const std::uint8_t> bytes) {
    std::uint32_t sum = 0xFFFFFFFF;
    const std::uint8_t* at = bytes.data();
    std::size_t left = bytes.size();
    for (; left >= 8; left -= 8, at += 8) {
        const std::uint32_t low = Load<std::uint32_t>(at) ^ sum, high = Load<std::uint32_t>(at + 4);
        sum = kCrcTables[7][low & 0xFF] ^ kCrcTables[6][(low >> 8) & 0xFF] ^
              kCrcTables[5][(low >> 16) & 0xFF] ^ kCrcTables[4][low >> 24] ^ kCrcTables[3][high & 0xFF] ^
              kCrcTables[2][(high >> 8) & 0xFF] ^ kCrcTables[1][(high >> 16) & 0xFF] ^
              kCrcTables[0][high >> 24];
    }
    for (; left > 0; --left, ++at) sum = (sum >> 8) ^ kCrcTables[0][(sum ^ *at) & 0xFF];
    return ~sum;
}

// The four rows of the state are four vectors: a round mixes its columns at once, and then its diagonals,
// which lie in columns while the rows are turned.
std::array<std::uint8_t, 64> MakeKeystream(const CInertialCipher::Key& key, std::uint32_t counter,
                                           const std::array<std::uint32_t, 3>& nonce) {
    std::array<StateRow, 4> state{StateRow{0x61707865, 0x3320646E, 0x79622D32, 0x6B206574}, StateRow{},
                                  StateRow{}, StateRow{counter, nonce[0], nonce[1], nonce[2]}};
    std::memcpy(&state[1], key.data(), key.size());
    auto [a, b, c, d] = state;
    for (int round = 0; round < 10; ++round) {
        MixColumns(a, b, c, d);
        b = Turn<1>(b), c = Turn<2>(c), d = Turn<3>(d);
        MixColumns(a, b, c, d);
        b = Turn<3>(b), c = Turn<2>(c), d = Turn<1>(d);
    }
    return std::bit_cast<std::array<std::uint8_t, 64>>(
        std::array{a + state[0], b + state[1], c + state[2], d + state[3]});
}

void CInertialCipher::Apply(std::span<std::uint8_t> payload, std::uint32_t time,
                            std::uint8_t sequence) const {
    const auto keystream = MakeKeystream(m_key, 0, {time, sequence, 0});
    for (std::size_t i = 0; i < kIncrementsSize; ++i) payload[kFirstIncrement + i] ^= keystream[i];
}

std::filesystem::path CInertialCipher::GetKeyPath(const std::filesystem::path& stream) {
    return Outils_Fichiers::WithExtension(stream, ".key");
}

std::optional<CInertialCipher::Key> CInertialCipher::ReadKey(const std::filesystem::path& stream) {
    Key key;
    const auto bytes = Outils_Fichiers::ReadWholeFile(GetKeyPath(stream), 3 * key.size());
    if (!bytes) return std::nullopt;
    if (bytes->size() == key.size()) {
        std::ranges::copy(*bytes, key.begin());
        return key;
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    const std::string_view digits = text.substr(0, text.find_first_of("\r\n "));
    if (digits.size() != 2 * key.size()) return std::nullopt;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const auto value = ParseInteger<std::uint8_t>(digits.substr(2 * i, 2), 16);
        if (!value) return std::nullopt;
        key[i] = *value;
    }
    return key;
}

std::size_t GetDataTypeOffset() { return kImuLayout.OffsetOf("Data type") - kDateSize; }

} // namespace Conversion
