// The fixed records of a packet file, little-endian and without alignment. Shared by the reader and by the
// writer of recordings.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace Persistance_Xpf {

inline constexpr std::uint32_t kFileHeaderSize = 123;
inline constexpr std::uint32_t kChannelCountOffset = 119;
inline constexpr std::uint32_t kDefinitionCountOffset = 121;
inline constexpr std::uint32_t kChannelRecordSize = 84;
inline constexpr std::uint32_t kChannelNameSize = 16;
inline constexpr std::uint32_t kChannelDescriptionSize = 64;
inline constexpr std::uint32_t kDefinitionRecordSize = 8;
inline constexpr std::uint32_t kFieldRecordSize = 100;
inline constexpr std::uint32_t kFieldNameSize = 30;
inline constexpr std::uint32_t kFieldDescriptionSize = 64;
inline constexpr std::uint32_t kPacketHeaderSize = 20;
inline constexpr std::uint32_t kPacketTrailerSize = 8;
inline constexpr std::uint32_t kPacketOverhead =
    kPacketHeaderSize + kPacketTrailerSize; // the smallest packet

#pragma pack(push, 1)

struct SPacketHeader {
    char magic[2];             // "$$"
    std::uint16_t channel;     // channel number
    std::uint32_t size;        // whole packet, header and trailer included
    std::uint32_t number;      // running number within the channel, from 0
    std::uint32_t backLink;    // bytes back to the previous packet of the channel
    std::uint32_t forwardLink; // bytes on to the next packet of the channel, 0 while there is none

    // The weak test: magic and smallest size.
    bool Check() const { return magic[0] == '$' && magic[1] == '$' && size >= kPacketOverhead; }
    std::uint32_t GetPayloadSize() const { return size - kPacketOverhead; }
};

struct SPacketTrailer {
    char magic[2]; // "!!"
    std::uint16_t channel;
    std::uint32_t size;

    bool CheckMagic() const { return magic[0] == '!' && magic[1] == '!' && size >= kPacketOverhead; }
    // The packet check, given that the header lies `size - 8` bytes before this trailer.
    bool Matches(const SPacketHeader& header) const {
        return header.Check() && magic[0] == '!' && magic[1] == '!' && channel == header.channel &&
               size == header.size;
    }
};

#pragma pack(pop)

// The packet check on the bytes themselves, for the scans that run it on every packet: the words are compared
// where they are loaded, without a copy in memory on the way from one packet's size to the next packet.
static_assert(std::endian::native == std::endian::little);

inline std::uint32_t LoadWord(const std::uint8_t* bytes) {
    std::uint32_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}
inline std::uint64_t LoadLongWord(const std::uint8_t* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}
inline std::uint32_t LoadPacketSize(const std::uint8_t* header) { return LoadWord(header + 4); }
inline bool CheckHeaderBytes(const std::uint8_t* header) {
    return (LoadWord(header) & 0xFFFF) == 0x2424 && LoadPacketSize(header) >= kPacketOverhead;
}
// Given that the header check has passed: "$$", channel and size against "!!", channel and size.
inline bool TrailerBytesMatch(const std::uint8_t* header, const std::uint8_t* trailer) {
    return (LoadLongWord(header) ^ LoadLongWord(trailer)) == (0x2424 ^ 0x2121);
}

// A text padded with zeros to its size, which need not end with one.
inline std::string_view LoadPaddedText(const std::uint8_t* bytes, std::size_t size) {
    const auto* text = reinterpret_cast<const char*>(bytes);
    return {text, strnlen(text, size)};
}

static_assert(sizeof(SPacketHeader) == kPacketHeaderSize);
static_assert(sizeof(SPacketTrailer) == kPacketTrailerSize);

} // namespace Persistance_Xpf
