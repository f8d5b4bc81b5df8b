// Measurements and samples in one order of time.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/measurements.h"

#include <cstddef>
#include <span>
#include <vector>

namespace Morvex {

// What was read ahead of a recording, each in ascending order of time.
struct SStretch {
    std::vector<SImuSample> samples;
    std::vector<SPositionFix> fixes;

    // The same stretch played backwards (see CStrapdown): times and angles change their signs.
    SStretch Reversed() const;
};

// Walks an array of fixes.
class CFixCursor {
  public:
    explicit CFixCursor(std::span<const SPositionFix> fixes) : m_fixes(fixes) {}
    // The next one, null at the end.
    const SPositionFix* Peek() const { return m_next < m_fixes.size() ? &m_fixes[m_next] : nullptr; }
    void Pop() { ++m_next; }
    // Leaves out what is dated up to this time.
    void SkipTo(double time) {
        while (Peek() && Peek()->time <= time) Pop();
    }

  private:
    std::span<const SPositionFix> m_fixes;
    std::size_t m_next = 0;
};

// Two dates closer than this are one, s.
inline constexpr double kSameTime = 1e-6;

// Moves the filter over a sample, cutting it where `source` has something dated within. `source.Peek()` gives
// a pointer to what is next, with its `time`, or null; `take(item)` is called with the filter at that
// instant, after which the item is popped. What is dated before the sample is taken at its beginning.
template <class Source, class Take>
void AdvanceThrough(CInsFilter& filter, const SImuSample& sample, Source& source, Take&& take) {
    SImuSample rest = sample;
    // What a bridge over lost data may be off grows with the time on it: fixes on the way help against it.
    const auto advance = [&](const SImuSample& piece) {
        filter.Advance(piece);
        if (sample.gap > 0.0) filter.AdmitGap(sample, piece.span / sample.span);
    };
    while (const auto* item = source.Peek()) {
        if (item->time > sample.time) break;
        if (sample.time - item->time < kSameTime && rest.span > 0.0) {
            advance(rest);
            rest.span = 0.0;
        }
        const double part = item->time - (rest.time - rest.span);
        if (rest.span > 0.0 && part > kSameTime) {
            const double share = part / rest.span;
            advance({item->time, part, rest.angle * share, rest.velocity * share});
            rest = {rest.time, rest.span - part, rest.angle * (1.0 - share), rest.velocity * (1.0 - share)};
        }
        take(*item);
        source.Pop();
    }
    if (rest.span > 0.0) advance(rest);
}

} // namespace Morvex
