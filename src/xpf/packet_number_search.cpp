// The jump to a packet by its running number: interpolation over the byte range between two packets of the
// channel.

#include "xpf/channel.h"
#include "xpf/file.h"

namespace Persistance_Xpf {

namespace {

// A stream of even density needs a handful of steps. Beyond these, long pauses make the interpolation creep
// along one side, and halving the range is surer.
constexpr int kInterpolations = 64;
// Every second halving halves the bytes between the brackets.
constexpr int kHalvings = 2 * 64;

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

bool CXpfChannel::SeekPacketNumber(std::uint32_t target) {
    if (target == 0) return SeekFirstPacket(nullptr);
    SBracket lower, upper;
    bool done = false;
    if (!FindBrackets(target, lower, upper, done)) return false;
    if (done) return true;

    for (int step = 0; step < kInterpolations + kHalvings; ++step) {
        if (target <= lower.number || target >= upper.number || lower.position >= upper.position)
            return false;
        const std::int64_t estimate =
            step < kInterpolations
                ? Interpolate(target, lower.number, lower.position, lower.header.forwardLink, upper.number,
                              upper.position, upper.header.backLink)
                : lower.position + (upper.position - lower.position) / 2;
        const EStep result = NarrowBracket(target, estimate, lower, upper);
        if (result != EStep::narrowed) return result == EStep::found;
    }
    return false;
}

// `done` when one of the ends is the target.
bool CXpfChannel::FindBrackets(std::uint32_t target, SBracket& lower, SBracket& upper, bool& done) {
    bool hasLower = false, hasUpper = false;
    SPacketHeader header;
    if (m_current.IsKnown() && m_file.ReadHeaderAt(m_current.Get(), header)) {
        if (!header.Check()) return false;
        if (header.channel == m_number) {
            done = header.number == target;
            if (done) return m_file.Seek(m_current.Get());
            hasLower = header.number < target;
            hasUpper = !hasLower;
            (hasLower ? lower : upper) = {header.number, m_current.Get(), header};
        }
    }
    if (!hasLower) {
        if (!SeekFirstPacket(&lower.header)) return false;
        lower.position = m_current.Get();
    }
    if (!hasUpper) {
        if (!SeekLastPacket(&upper.header)) return false;
        upper.number = upper.header.number;
        upper.position = m_current.Get();
        done = upper.number == target;
    }
    return true;
}

CXpfChannel::EStep CXpfChannel::NarrowBracket(std::uint32_t target, std::int64_t estimate, SBracket& lower,
                                              SBracket& upper) {
    SPacketHeader header;
    if (!m_file.Seek(estimate) || !m_file.SearchPacketForward(header)) return EStep::failed;
    std::int64_t position = m_file.GetPosition();
    if (!m_file.WalkToChannel(m_number, position)) return EStep::failed;
    if (!m_file.ReadHeaderAt(position, header)) return EStep::failed;
    if (header.number == upper.number) {
        // Overshot: the packet before the upper one.
        position -= header.backLink;
        if (!m_file.ReadHeaderAt(position, header)) return EStep::failed;
    }

    const std::int64_t before = position - header.backLink;
    bool moved = false;
    if (header.number == target)
        moved = MoveTo(position, before);
    else if (header.number == std::int64_t{target} + 1)
        moved = MoveTo(before, 0);
    else if (header.number == std::int64_t{target} - 1)
        moved = MoveTo(position + header.forwardLink, 0);
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
