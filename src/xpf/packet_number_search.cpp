#include "xpf/packet_number_search.h"

#include "xpf/block_reader.h"
#include "xpf/channel.h"
#include "xpf/file.h"

#include <algorithm>

namespace Persistance_Xpf {

namespace {

// A stream of even density needs a handful of steps. Beyond these, long pauses make the interpolation creep
// along one side, and halving the range is surer.
constexpr int kInterpolations = 64;
// Every second halving halves the bytes between the brackets.
constexpr int kHalvings = 2 * 64;

// An estimate is missed by a few packets either way: what is read around it holds them too.
constexpr std::int64_t kBeforeEstimate = 1024;
constexpr std::int64_t kSmallestProbe = 4096;

// Where packet `target` should begin. The neighbours of the brackets are kept out, where another step would
// not come nearer. The count of packets between the brackets is at least 2.
std::int64_t Interpolate(std::uint32_t target, std::uint32_t lowerNumber, std::int64_t lowerPosition,
                         std::uint32_t forwardLink, std::uint32_t upperNumber, std::int64_t upperPosition,
                         std::uint32_t backLink) {
    const std::int64_t span = upperPosition - lowerPosition;
    const std::int64_t count = std::int64_t{upperNumber} - lowerNumber;
    const std::int64_t offset = std::int64_t{target} - lowerNumber;
    // Divided first: the product of the other order would not fit for all files.
    const std::int64_t estimate = (span / count) * offset + lowerPosition;
    if (estimate > upperPosition - backLink)
        return ((span - backLink) / (count - 1)) * offset + lowerPosition;
    return estimate < lowerPosition + forwardLink ? lowerPosition + forwardLink : estimate;
}

} // namespace

bool CPacketNumberSearch::Seek(std::uint32_t target) {
    SBracket lower, upper;
    // What was found before spares the looks at both ends. It may mislead, when the file was written again
    // under its reader or its numbers jump: then the search begins without it.
    SPacketHeader header;
    for (const SBracket& known : m_landmarks)
        if (known.position != 0 && known.number == target &&
            m_file.m_reader->ReadRecord(known.position, header) && header.Check() &&
            header.channel == m_channel.m_number && header.number == target)
            return m_channel.MoveTo(known.position, 0);
    if (FindLandmarks(target, lower, upper)) {
        // A walk that has come to damage has no place to search from; one at a torn tail has come to the end.
        if (m_channel.m_current.IsKnown() &&
            m_file.m_reader->Holds(m_channel.m_current.Get(), kPacketHeaderSize) &&
            m_file.m_reader->ReadRecord(m_channel.m_current.Get(), header)) {
            if (!header.Check() && !m_file.IsTornTail(m_channel.m_current.Get())) return false;
            const SBracket here{header.number, m_channel.m_current.Get(), header};
            if (header.Check() && header.channel == m_channel.m_number && here.number >= lower.number &&
                here.number < target && here.position < upper.position)
                lower = here;
        }
        if (NarrowBrackets(target, lower, upper, true)) return true;
    }
    m_landmarks = {};
    bool done = false;
    if (!FindBrackets(target, lower, upper, done)) return false;
    return done || NarrowBrackets(target, lower, upper, false);
}

// The closest on either side; false when there is none on one side. The first packet needs no look at it.
bool CPacketNumberSearch::FindLandmarks(std::uint32_t target, SBracket& lower, SBracket& upper) const {
    if (m_channel.m_first.IsKnown()) lower.position = m_channel.m_first.Get();
    for (const SBracket& known : m_landmarks) {
        if (known.position == 0) continue;
        if (known.number < target && known.number >= lower.number && known.position >= lower.position)
            lower = known;
        if (known.number > target && (upper.position == 0 || known.number < upper.number)) upper = known;
    }
    return lower.position != 0 && upper.position != 0;
}

// `exact` interpolates without the truncation of the usual rule, which in a long file misses by many packets
// and costs a further step. Which packet a search in damage ends on depends on the rule, so that a first
// search keeps to it.
bool CPacketNumberSearch::NarrowBrackets(std::uint32_t target, SBracket lower, SBracket upper, bool exact) {
    m_landmarks = {lower, {}, upper};
    for (int step = 0; step < kInterpolations + kHalvings; ++step) {
        if (target <= lower.number || target >= upper.number || lower.position >= upper.position)
            return false;
        std::int64_t estimate = lower.position + (upper.position - lower.position) / 2;
        if (step < kInterpolations)
            estimate = Interpolate(target, lower.number, lower.position, lower.header.forwardLink,
                                   upper.number, upper.position, upper.header.backLink);
        if (exact && step < kInterpolations) {
            const auto count = static_cast<std::uint64_t>(upper.number - lower.number);
            const auto rest = static_cast<std::uint64_t>(upper.position - lower.position) % count;
            estimate += static_cast<std::int64_t>(rest * (target - lower.number) / count);
            estimate = std::min(estimate, upper.position - std::int64_t{kPacketOverhead});
        }
        const EStep result = NarrowBracket(target, estimate, lower, upper);
        if (result == EStep::narrowed) continue;
        if (result == EStep::failed) return false;
        SBracket& found = m_landmarks[1] = {target, m_channel.m_current.Get(), {}};
        if (m_file.m_reader->Holds(found.position, kPacketHeaderSize))
            m_file.m_reader->ReadRecord(found.position, found.header);
        return true;
    }
    return false;
}

// `done` when one of the ends is the target.
bool CPacketNumberSearch::FindBrackets(std::uint32_t target, SBracket& lower, SBracket& upper, bool& done) {
    bool hasLower = false, hasUpper = false;
    SPacketHeader header;
    if (m_channel.m_current.IsKnown() && m_file.m_reader->ReadRecord(m_channel.m_current.Get(), header) &&
        !m_file.IsTornTail(m_channel.m_current.Get())) {
        if (!header.Check()) return false;
        if (header.channel == m_channel.m_number) {
            done = header.number == target;
            if (done) return m_file.Seek(m_channel.m_current.Get());
            hasLower = header.number < target;
            hasUpper = !hasLower;
            (hasLower ? lower : upper) = {header.number, m_channel.m_current.Get(), header};
        }
    }
    if (!hasLower) {
        if (!m_channel.SeekFirstPacket(&lower.header)) return false;
        lower.position = m_channel.m_current.Get();
    }
    if (!hasUpper) {
        if (!m_channel.SeekLastPacket(&upper.header)) return false;
        upper.number = upper.header.number;
        upper.position = m_channel.m_current.Get();
        done = upper.number == target;
    }
    return true;
}

// One read for what a step looks at and, as far as it is little, for the steps to come.
void CPacketNumberSearch::FetchAround(std::uint32_t target, std::int64_t estimate, const SBracket& lower,
                                      const SBracket& upper) {
    constexpr std::int64_t largest = CBlockReader::kLargestFetch;
    CBlockReader& reader = *m_file.m_reader;
    const std::int64_t span = upper.position + kPacketOverhead - lower.position;
    if (span <= largest) {
        reader.Fetch(lower.position, static_cast<std::size_t>(span));
        return;
    }
    if (reader.Holds(estimate, kPacketHeaderSize)) return;
    const std::int64_t distance = std::max<std::int64_t>(span / (upper.number - lower.number), 1);
    std::int64_t before = kBeforeEstimate;
    std::int64_t after = std::clamp(2 * distance, kSmallestProbe, largest - before);
    // Products of a distance up to the file's size and a count that is small here.
    const std::int64_t expected = std::int64_t{m_highestExpected} - m_lowestExpected;
    if (target >= m_lowestExpected && target <= m_highestExpected && expected < largest / distance) {
        before += (target - m_lowestExpected) * distance;
        after += (m_highestExpected - target) * distance;
    }
    before = std::min(before, estimate);
    reader.Fetch(estimate - before, static_cast<std::size_t>(before + after));
}

CPacketNumberSearch::EStep CPacketNumberSearch::NarrowBracket(std::uint32_t target, std::int64_t estimate,
                                                              SBracket& lower, SBracket& upper) {
    FetchAround(target, estimate, lower, upper);
    SPacketHeader header;
    if (!m_file.Seek(estimate) || !m_file.SearchPacketForward(header)) return EStep::failed;
    std::int64_t position = m_file.GetPosition();
    if (!m_file.WalkToChannel(m_channel.m_number, position)) return EStep::failed;
    if (!m_file.m_reader->ReadRecord(position, header)) return EStep::failed;
    if (header.number == upper.number) {
        // Overshot: the packet before the upper one.
        position -= header.backLink;
        if (!m_file.m_reader->ReadRecord(position, header)) return EStep::failed;
    }

    const std::int64_t before = position - header.backLink;
    bool moved = false;
    if (header.number == target)
        moved = m_channel.MoveTo(position, before);
    else if (header.number == std::int64_t{target} + 1)
        moved = m_channel.MoveTo(before, 0);
    else if (header.number == std::int64_t{target} - 1)
        moved = m_channel.MoveTo(position + header.forwardLink, 0);
    else {
        // A packet that does not lie between the brackets is damage, and would keep the search going for
        // ever.
        const bool between = header.number > lower.number && header.number < upper.number &&
                             position > lower.position && position < upper.position;
        if (!between) return EStep::failed;
        (header.number > target ? upper : lower) = {header.number, position, header};
        return EStep::narrowed;
    }
    return moved ? EStep::found : EStep::failed;
}

} // namespace Persistance_Xpf
