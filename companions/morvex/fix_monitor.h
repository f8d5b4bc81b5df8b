// What became of the fixes of a run: the status words of the result, and what is to be told at the end.
#pragma once

#include "morvex/ins_filter.h"
#include "morvex/measurements.h"

#include <array>
#include <cstdint>

namespace Morvex {

class CFixMonitor {
  public:
    // Which GPS the run has.
    explicit CFixMonitor(std::size_t count = 0) : m_count(count) {}

    void Add(const SPositionFix& fix, const SFixOutcome& outcome);

    // The geoid before the first fix of which the height is used.
    void SetGeoidHeight(double height) { m_geoidHeight = height; }

    // The status words at a time; `state` gives the bits of the alignment.
    std::uint32_t GetStatus1(double time, const StateMatrix& covariance) const;
    std::uint32_t GetStatus2(double time) const;

    // Of the last fix of which anything was used, s; far in the past before the first.
    double GetLastUsed() const { return m_lastUsed; }
    double GetLastHeight() const { return m_lastHeight; }
    double GetGeoidHeight() const { return m_geoidHeight; }
    std::uint64_t GetUsedCount() const { return m_used; }
    std::uint64_t GetRejectedCount() const { return m_rejected; }

  private:
    struct SSource {
        double lastSeen = -1e30, lastUsed = -1e30, lastRejected = -1e30; // s
    };
    std::uint32_t StateBits(std::size_t source, double time) const;

    std::size_t m_count;
    std::array<SSource, 3> m_sources;
    double m_lastUsed = -1e30;
    double m_lastHeight = -1e30; // time of the last height that was used, s
    double m_geoidHeight = 0.0;
    std::uint64_t m_used = 0, m_rejected = 0;
};

} // namespace Morvex
