// Makes the index of a file from the packets of a walk over its stream. One thread at a time.
#pragma once

#include "dataaccess/file_index.h"
#include "dataaccess/packet_extremes.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace Application_Tarvel {

class CIndexBuilder {
  public:
    // Bytes of the stream that a block of a dense channel spans at least.
    static constexpr std::int64_t kBlock = std::int64_t{16} << 10;

    // Goes on where the index ends.
    explicit CIndexBuilder(std::shared_ptr<CFileIndex> index);
    // For a later part of a file: begins at the place that the index covers so far, of which nothing is known
    // of what lies before it. Its index is of no use but to be joined to another one.
    static std::unique_ptr<CIndexBuilder> MakePart(std::shared_ptr<CFileIndex> index);
    ~CIndexBuilder() { End(); }

    const std::shared_ptr<CFileIndex>& GetIndex() const { return m_index; }
    // Kept records that it needs cannot be read: the index is not to be used any more.
    bool HasFailed() const { return m_failed; }
    // The place in the stream of the next packets to take.
    std::int64_t GetFrontier() const { return m_frontier; }

    // Before a scan: looks again at what a writer may have set since the last one. False when the file is not
    // the one of the index any more. Moves the file pointer. `since`: how the file looked before, of a scan
    // that goes on.
    bool Begin(Persistance_Xpf::CXpfFile& file, const std::filesystem::path& path,
               const SFileState* since = nullptr);
    // How the file looked before the scan.
    const SFileState& GetState() const { return m_state; }
    // Packets that follow each other in the file, the first one at `position`, each whole. What lies before
    // the frontier is left out. REQUIRES: none of them begins after the frontier unless a gap was added up to
    // there.
    void Take(std::int64_t position, std::span<const std::uint8_t* const> packets);
    // The bytes from the frontier up to `end` are no packets.
    void SkipTo(std::int64_t end);
    // After a scan: what is known of the file's end.
    void End();
    // Makes blocks of all packets that are in none yet, however few they are.
    void CloseBlocks();
    // Takes over what `part` has made of the packets from the frontier on. False, with nothing done, when it
    // does not begin there or has failed. `part` is not to be used after that.
    bool Join(CIndexBuilder& part);

  private:
    static constexpr std::size_t kRun = 64; // packets that are looked at together

    struct SChannel {
        SChannel(CChannelIndex& channel, std::uint32_t size);

        CChannelIndex& index;
        std::uint32_t packetSize;
        CPacketExtremes extremes{};
        // The last packet; none before the first one.
        std::int64_t lastPosition = 0;
        std::int64_t lastDate = INT64_MIN;
        std::uint32_t lastNumber = UINT32_MAX;
        std::uint32_t lastLink = 0;
        std::uint32_t firstBackLink = 0; // of the first packet that this builder has met
        SIndexHead block;                // that packets are added to; its count is 0 when there is none
        std::array<const std::uint8_t*, kRun> run;
        std::size_t held = 0;
        std::vector<std::uint8_t> record;
    };

    void TakeRun(std::int64_t position, std::span<const std::uint8_t* const> packets);
    void MeetChannel(std::uint16_t number, std::int64_t position);
    SChannel* FindChannel(std::uint16_t number);
    void JoinChannel(SChannel& channel, SChannel& part);
    std::uint32_t FindJointFlags(const SChannel& channel, const SIndexHead& head,
                                 std::uint32_t backLink) const;
    void AddRun(SChannel& channel, std::int64_t position, const std::uint8_t* first);
    void AddOddRun(SChannel& channel, std::span<const std::uint8_t* const> packets, std::int64_t position,
                   const std::uint8_t* first);
    void BeginBlock(SChannel& channel, std::int64_t position, const std::uint8_t* packet);
    bool IsLedTo(const SChannel& channel, std::int64_t position) const;
    void CloseWhenFull(SChannel& channel);
    void CloseBlock(SChannel& channel);
    void RestoreLast(SChannel& channel);
    void AddSample(std::int64_t position, const std::uint8_t* packet);
    void RememberTail(std::int64_t position, const std::uint8_t* packet);

    std::shared_ptr<CFileIndex> m_index;
    SFileState m_state;
    std::vector<std::unique_ptr<SChannel>> m_channels;
    // By channel number: an index into m_channels, or one of the two below.
    std::vector<std::uint8_t> m_slots;
    static constexpr std::uint8_t kUnknown = 255; // not met yet
    static constexpr std::uint8_t kIgnored = 254;
    std::int64_t m_frontier;
    std::int64_t m_whole;           // from here to the frontier there is no gap
    std::int64_t m_recordBytes = 0; // of the blocks made
    std::int64_t m_start;           // of what they were made of
    std::int64_t m_nextSample;
    std::int64_t m_sampleStep;
    std::int64_t m_tailPosition = 0; // of the last packet of the stream, which is a sample in the end
    std::vector<std::uint8_t> m_tail;
    bool m_failed = false;
    bool m_isPart = false;
};

} // namespace Application_Tarvel
