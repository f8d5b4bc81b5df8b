// A channel of a packet file and the walk along its packets.
#pragma once

#include "xpf/file_position.h"
#include "xpf/packet_number_search.h"
#include "xpf/records.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace Persistance_Xpf {

class CXpfFile;
class CXpfPacket;

class CXpfChannel {
  public:
    // `file` owns the channel.
    CXpfChannel(CXpfFile& file, std::uint16_t number, std::string name, std::string description,
                std::uint32_t packetType);
    virtual ~CXpfChannel() = default;
    CXpfChannel(const CXpfChannel&) = delete;
    CXpfChannel& operator=(const CXpfChannel&) = delete;

    // A new empty packet of the channel's type; null for a channel that is not decoded.
    virtual std::unique_ptr<CXpfPacket> CreatePacket() const;

    std::uint16_t GetNumber() const { return m_number; }
    const std::string& GetName() const { return m_name; }
    const std::string& GetDescription() const { return m_description; }
    std::uint32_t GetPacketType() const { return m_packetType; }

    // Reads the packet at the current position and steps forward: min(bufferSize, payload) bytes into
    // `buffer`, their count into `sizeRead`, the header into `header` if given. A failed read leaves the file
    // pointer on the packet where it began, so that a later call retries it: that is how a growing file is
    // followed.
    bool ReadNextPacket(std::uint32_t& sizeRead, SPacketHeader* header, void* buffer,
                        std::uint32_t bufferSize);
    // The same into a packet object.
    bool ReadNextPacket(CXpfPacket& packet, SPacketHeader* header = nullptr);

    // Positions on the first or last packet, or on the packet with this running number. `header` may be null.
    bool SeekFirstPacket(SPacketHeader* header);
    bool SeekLastPacket(SPacketHeader* header);
    bool SeekPacketNumber(std::uint32_t number);
    // The next searches by number will stay between these two: once the packets between them are few, the
    // first such search reads them all at once. A hint only.
    void ExpectNumbers(std::uint32_t lowest, std::uint32_t highest) {
        m_numberSearch.Expect(lowest, highest);
    }

    // A packet whose number and place are known; position 0 is none.
    struct SPlace {
        std::uint32_t number = 0;
        std::int64_t position = 0;
    };
    // The next searches by number are for packets between these two. They begin there.
    void ExpectBetween(const SPlace& lower, const SPlace& upper) {
        m_numberSearch.Remember(lower.number, lower.position, upper.number, upper.position);
    }

    // The places that the walk remembers; 0 is not known. `first` and `last` may be given from a cache: the
    // next seek to the last packet tests its position against the file, the one to the first packet takes it
    // as it is.
    CXpfFilePosition GetCurrent() const { return m_current; }
    CXpfFilePosition GetFirst() const { return m_first; }
    CXpfFilePosition GetLast() const { return m_last; }
    CXpfFilePosition GetPrevious() const { return m_previous; }
    void SetFirst(CXpfFilePosition position) { m_first = position; }
    void SetLast(CXpfFilePosition position) { m_last = position; }

  private:
    friend class CChannelWalk;
    friend class CPacketNumberSearch;
    friend class CPacketSampler;

    // Bytes. Greater packets are not taken from the block but read into the caller's buffer.
    static constexpr std::size_t kLargestInBlock = std::size_t{64} << 10;

    bool FindFirstPacket(SPacketHeader& header);
    bool FindLastPacket(SPacketHeader& header);
    // The last packet of any channel: from the trailer at the end, or by search in a damaged tail.
    bool FindStreamEnd(std::int64_t& position, SPacketHeader& header);
    bool MoveTo(std::int64_t position, std::int64_t previous);
    // What every read does once the packet has been read whole.
    void StepOn(std::int64_t position, const SPacketHeader& header);

    std::uint16_t m_number;
    std::string m_name;
    std::string m_description;
    std::uint32_t m_packetType;
    CXpfFile& m_file;
    CXpfFilePosition m_current;  // where the next read begins
    CXpfFilePosition m_first;    // the channel's first packet
    CXpfFilePosition m_last;     // the greatest position at which a packet of the channel was seen
    CXpfFilePosition m_previous; // the packet that was read last, 0 after any seek
    CPacketNumberSearch m_numberSearch;
};

// A channel whose packets are all of class T.
template <class T>
class CXpfStructuredChannel : public CXpfChannel {
  public:
    using CXpfChannel::CXpfChannel;
    std::unique_ptr<CXpfPacket> CreatePacket() const override { return std::make_unique<T>(); }
};

// A channel whose payload size varies from packet to packet; not decoded.
template <class T>
class CXpfVariableSizeChannel : public CXpfChannel {
  public:
    using CXpfChannel::CXpfChannel;
};

} // namespace Persistance_Xpf
