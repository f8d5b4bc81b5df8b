// Writes packet files: recordings (.tarin) and results (.tarout), from the layout rows that the readers use.
#pragma once

#include "recording/recording_file.h"
#include "xpf/layout.h"
#include "xpf/packet.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace Enregistrement {

// A channel of the file that is being written: its place in the list given to Create.
using ChannelHandle = std::uint32_t;

// Bytes; far above any packet there is, and small enough to be held in memory.
inline constexpr std::size_t kMaximumPayload = 64 << 20;

// One packet file under construction. Used by one thread; readers in any process may follow the file.
//
// Packets collect in memory and reach the file in big blocks, whole packets each, or at Flush. A reader thus
// sees whole packets, or at most a torn tail while a block is on its way. The link of a packet to the next
// one of its channel is patched when that one is appended: in memory while the packet is still there, else in
// the file, and then only after the packet that the link leads to is in the file.
//
// Every operation answers false on failure (disk full, no right to write, not open). After a failed write the
// file is cut back to what was complete before it, and every later operation but Close and Create fails.
class CRecordingWriter {
  public:
    CRecordingWriter() = default;
    // Writes what is left, as Close does.
    ~CRecordingWriter() { Close(); }
    CRecordingWriter(const CRecordingWriter&) = delete;
    CRecordingWriter& operator=(const CRecordingWriter&) = delete;

    // Makes the file, or empties an existing one, with these channels in this order. The names decide the
    // kind of the file; a channel's number is its row in the channel table. False for no name at all, an
    // unknown or repeated one, names of both kinds, and when the file cannot be made. An open file is closed
    // first.
    bool Create(const std::filesystem::path& path, std::span<const std::string_view> channelNames);
    bool IsOpen() const { return m_file.IsOpen(); }

    // The handle of a channel of this file; empty when it has none of that name.
    std::optional<ChannelHandle> FindChannel(std::string_view name) const;

    // Appends a packet of a decoded channel. False also when the packet's size is not the size of the
    // channel's type.
    bool Write(ChannelHandle channel, const Persistance_Xpf::CXpfPacket& packet);
    // The same by name, which is looked up each time.
    bool Write(std::string_view channel, const Persistance_Xpf::CXpfPacket& packet);
    // Appends a packet of any payload: for the internal states of the engine, whose size varies, and for
    // packets that are made damaged or short on purpose. False for a payload beyond kMaximumPayload.
    bool WriteRaw(ChannelHandle channel, std::span<const std::uint8_t> payload);

    // Hands everything to the file, so that readers see it. Not a flush to the disk.
    bool Flush();
    // Flushes and closes; true when every byte was taken. True when nothing is open.
    bool Close();

    // Bytes written so far, including those still in memory; 0 when not open.
    std::int64_t GetSize() const { return IsOpen() ? m_blockStart + static_cast<std::int64_t>(m_used) : 0; }
    // Packets written to a channel so far.
    std::uint32_t GetPacketCount(ChannelHandle channel) const;

  private:
    struct SChannel {
        std::string_view name;
        std::uint16_t number;        // row in the channel table
        std::uint32_t payloadSize;   // 0: varies
        std::uint32_t count = 0;     // packets written
        std::int64_t last = 0;       // position of the channel's last packet; 0: none yet
        bool patchWaits = false;     // the link at `patchAt` waits for its target to be in the file
        std::int64_t patchAt = 0;    // position of the packet whose link waits
        std::uint32_t patchLink = 0; // its value
    };

    std::uint8_t* Reserve(std::size_t size);
    void LinkPrevious(SChannel& channel, std::int64_t position);
    bool Fail();

    CRecordingFile m_file;
    std::vector<SChannel> m_channels;
    std::vector<std::uint8_t> m_block; // bytes that are not in the file yet are at its front
    std::size_t m_used = 0;
    std::int64_t m_blockStart = 0; // position of the block in the file
    bool m_failed = false;
};

// The distance between two positions as a link holds it; 0, which is "none", when it does not fit 32 bits.
// Readers then find the next packet by walking the stream.
constexpr std::uint32_t MakeLink(std::int64_t from, std::int64_t to) {
    const std::int64_t distance = to - from;
    return distance > 0 && distance <= 0xFFFFFFFFLL ? static_cast<std::uint32_t>(distance) : 0;
}

} // namespace Enregistrement
