// A packet file: a self-describing header and one time-ordered stream in which the packets of all channels
// interleave. Only read here; another process may be appending at the same time.
//
// One thread at a time uses a file object and its channels, because they share one file pointer. Failure is a
// false or zero result; nothing is raised. Positions are byte offsets from the start of the file, 64-bit.
#pragma once

#include "xpf/channel.h"
#include "xpf/definitions.h"
#include "xpf/file_position.h"
#include "xpf/layout.h"
#include "xpf/records.h"

#include <array>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Outils {
class CEvent;
}

namespace Persistance_Xpf {

class CBlockReader; // block_reader.h: blocks read ahead under the file pointer

class CXpfFile {
  public:
    using HeaderBuffer = std::array<std::uint8_t, kFileHeaderSize>;

    CXpfFile();
    virtual ~CXpfFile();
    CXpfFile(const CXpfFile&) = delete;
    CXpfFile& operator=(const CXpfFile&) = delete;

    // Opens an existing regular file for reading beside its writers. True when the handle is valid. A folder,
    // a FIFO or a device is refused, so that no reader can stall on opening.
    bool Open(const std::filesystem::path& path);

    // Reads header, channel records and definitions, each file kind by its own tables. On false
    // `outdated` says that channels or versions are not those of the tables; OpenXpfFile separates a former
    // layout from damage. The base class knows no channel and returns false.
    virtual bool ReadFileHeader(bool& outdated, HeaderBuffer& headerBuffer);

    // Position of the first packet; 0 on failure. The file pointer stays.
    CXpfFilePosition GetDataStart();
    // Size now; 0 on failure. The file pointer stays.
    std::int64_t GetFileSize() const;
    // False once the path names another file or none, or the file was cut since it was opened: the bytes read
    // may then be of a former recording.
    bool IsAt(const std::filesystem::path& path) const;

    // While the event is set, operations fail as at the end of the file as soon as they would have to read:
    // that ends also a search through gigabytes, which finds nothing to report meanwhile. Null for none; the
    // event must outlive its use.
    void SetInterrupt(const Outils::CEvent* interrupt);
    // The file pointer; 0 while closed.
    std::int64_t GetPosition() const;

    // Moves the file pointer; false while closed and for a negative offset. Reads nothing.
    bool Seek(std::int64_t offset);
    // Reads at the file pointer and moves it by the count read, which is short at the end of the file.
    std::size_t Read(void* buffer, std::size_t size);

    // Whether the file has a torn tail from `position` on: it ends inside the packet there, or zero bytes
    // replace the rest of that packet and all that follows, as a writer or a crash leaves them. The file
    // pointer stays.
    bool IsTornTail(std::int64_t position);

    // The nearest valid packet before, or the first one at or after, the file pointer. On success the pointer
    // is on it and its header is copied; a failed backward search restores the pointer.
    bool SearchPacketBackward(SPacketHeader& header);
    bool SearchPacketForward(SPacketHeader& header);

    const std::vector<std::unique_ptr<CXpfChannel>>& GetChannels() const { return m_channels; }
    const std::vector<std::unique_ptr<CXpfPacketDefinition>>& GetDefinitions() const { return m_definitions; }

    // Null when the file has no such channel.
    virtual CXpfChannel* FindChannelByName(std::string_view name);
    virtual CXpfChannel* FindChannelByNumber(std::uint16_t number);
    // The status fields of a packet type: virtual fields taken from bits of packet bytes.
    virtual std::uint32_t GetStatusFieldCount(std::uint16_t packetType) const;
    virtual bool GetStatusField(std::uint16_t packetType, std::uint32_t index, std::string& name,
                                std::string& description, std::uint32_t& literalCount) const;
    // Name and description of one literal of a status field.
    virtual bool GetStatusLiteral(std::uint16_t packetType, std::uint32_t index, std::uint32_t literal,
                                  std::string& name, std::string& description) const;

  protected:
    friend class CXpfChannel;
    friend class CChannelWalk;
    friend class CPacketNumberSearch;
    friend class CPacketSampler;
    friend class CStreamWalk;

    std::vector<std::unique_ptr<CXpfChannel>> m_channels;             // in file order
    std::vector<std::unique_ptr<CXpfPacketDefinition>> m_definitions; // in file order

  private:
    std::unique_ptr<CBlockReader> m_reader;
    // Steps from `position` over packets of other channels to one of `channel`: its header in the block. Null
    // at the end of the stream, with `position` where it stopped. Tests no magic; the file pointer stays.
    const std::uint8_t* WalkToChannel(std::uint16_t channel, std::int64_t& position);
    // Whether all bytes from `position` up to the end are zero; false as well when they cannot be read.
    bool HoldsOnlyZeros(std::int64_t position);

    CXpfFilePosition m_dataStart;
};

// How the opening of a packet file ended.
enum class EOpening {
    opened,
    unreadable, // no regular file, no right to read it, or the disk does not give it
    foreign,    // no packet file
    outdated,   // a whole header of an older layout, which the file updater can raise
    damaged     // the header is cut, or contradicts itself
};

struct SOpenedFile {
    std::unique_ptr<CXpfFile> file; // with its header read; null unless opened
    EOpening how = EOpening::unreadable;
};

// Opens a file of the project as input layout or result layout, and reads its header. `interrupt` is set for
// the file before its header is read.
SOpenedFile OpenXpfFile(const std::filesystem::path& path, EFileKind kind,
                        const Outils::CEvent* interrupt = nullptr);

} // namespace Persistance_Xpf
