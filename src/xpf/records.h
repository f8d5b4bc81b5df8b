// The fixed records of a packet file, little-endian and without alignment. Shared by the reader and by the
// writer of recordings.
#pragma once

#include <cstdint>

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
    // The packet check, given that the header stands `size - 8` bytes before this trailer.
    bool Matches(const SPacketHeader& header) const {
        return header.Check() && magic[0] == '!' && magic[1] == '!' && channel == header.channel &&
               size == header.size;
    }
};

#pragma pack(pop)

static_assert(sizeof(SPacketHeader) == kPacketHeaderSize);
static_assert(sizeof(SPacketTrailer) == kPacketTrailerSize);

} // namespace Persistance_Xpf
