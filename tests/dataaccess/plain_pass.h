// What a reduced window must hold, found by a plain pass over samples that are known.
#pragma once

#include "xpf/packet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <span>
#include <vector>

namespace test {

// A depth packet.
struct SSample {
    std::int64_t ticks;
    float depth;
    std::uint8_t rejection;
    bool operator==(const SSample&) const = default;
};

inline SSample SampleOf(const Persistance_Xpf::CXpfPacket& packet) {
    SSample sample{};
    Outils_Temps::CDateTimeSpan date;
    EXPECT_TRUE(packet.GetDate(0, date));
    sample.ticks = date.GetTicks();
    EXPECT_TRUE(packet.GetFloat(3, sample.depth));
    EXPECT_TRUE(packet.GetUInt8(2, sample.rejection));
    return sample;
}

enum class EPassFrom { start, firstSample };

// Representative, minima and maxima of each slice. The pass begins with the sample at or before the window's
// start, or with the first one.
inline std::vector<std::array<SSample, 3>> ReducePlainly(std::span<const SSample> truth, std::int64_t start,
                                                         std::int64_t end, std::int64_t slice,
                                                         EPassFrom from = EPassFrom::start) {
    std::vector<std::array<SSample, 3>> slices;
    if (start > truth.back().ticks || end < truth.front().ticks) return slices;
    auto first = std::upper_bound(truth.begin(), truth.end(), start,
                                  [](std::int64_t ticks, const SSample& s) { return ticks < s.ticks; });
    if (first != truth.begin()) --first;
    if (from == EPassFrom::firstSample) first = truth.begin();
    std::int64_t index = -1;
    for (auto sample = first; sample != truth.end(); ++sample) {
        const std::int64_t here = std::max<std::int64_t>(0, sample->ticks - start) / slice;
        const std::int64_t centre = start + here * slice + slice / 2;
        if (here != index) slices.push_back({*sample, *sample, *sample});
        index = here;
        auto& [representative, low, high] = slices.back();
        if (std::abs(sample->ticks - centre) < std::abs(representative.ticks - centre))
            representative = *sample;
        low.depth = std::min(low.depth, sample->depth);
        high.depth = std::max(high.depth, sample->depth);
        low.rejection = std::min(low.rejection, sample->rejection);
        high.rejection = std::max(high.rejection, sample->rejection);
        if (sample->ticks >= end) break;
    }
    return slices;
}

} // namespace test
