// Finds a packet of one channel by its running number: interpolates over the bytes between two packets of the
// channel, and remembers what it found for the next search.
#pragma once

#include "xpf/records.h"

#include <array>
#include <cstdint>

namespace Persistance_Xpf {

class CXpfChannel;
class CXpfFile;

class CPacketNumberSearch {
  public:
    // Moves the position of `channel`, which is a channel of `file`. Both must outlive the search.
    CPacketNumberSearch(CXpfChannel& channel, CXpfFile& file) : m_channel(channel), m_file(file) {}

    // Positions the channel on the packet with this number; false when the search does not come upon it.
    // REQUIRES: not 0, which means the first packet.
    bool Seek(std::uint32_t target);
    // The next targets lie between these two: once the packets between them are few, the first such search
    // reads them all at once. A hint only.
    void Expect(std::uint32_t lowest, std::uint32_t highest) {
        m_lowestExpected = lowest;
        m_highestExpected = highest;
    }
    // Later searches start from these two packets of the channel; position 0 is none.
    void Remember(std::uint32_t lower, std::int64_t lowerPosition, std::uint32_t upper,
                  std::int64_t upperPosition) {
        if (lowerPosition != 0) m_landmarks[0] = {lower, lowerPosition, {}};
        if (upperPosition != 0) m_landmarks[2] = {upper, upperPosition, {}};
    }
    // Later searches start from this last packet of the channel.
    void RememberLast(std::int64_t position, const SPacketHeader& header) {
        m_landmarks[2] = {header.number, position, header};
    }

  private:
    struct SBracket {
        std::uint32_t number = 0;
        std::int64_t position = 0;
        SPacketHeader header{};
    };
    enum class EStep { found, narrowed, failed };

    bool FindBrackets(std::uint32_t target, SBracket& lower, SBracket& upper, bool& done);
    bool FindLandmarks(std::uint32_t target, SBracket& lower, SBracket& upper) const;
    bool NarrowBrackets(std::uint32_t target, SBracket lower, SBracket upper, bool exact);
    void FetchAround(std::uint32_t target, std::int64_t estimate, const SBracket& lower,
                     const SBracket& upper);
    EStep NarrowBracket(std::uint32_t target, std::int64_t estimate, SBracket& lower, SBracket& upper);

    CXpfChannel& m_channel;
    CXpfFile& m_file;
    // The brackets of the last search and the packet it found between them, in any order; position 0 is none.
    // The next target often lies on one side of that packet, as in every bisection.
    std::array<SBracket, 3> m_landmarks;
    std::uint32_t m_lowestExpected = 0;
    std::uint32_t m_highestExpected = UINT32_MAX;
};

} // namespace Persistance_Xpf
