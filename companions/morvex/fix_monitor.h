// What became of the fixes of a run: the status words of the result, and what the end of the run reports.
#pragma once

#include "morvex/aiding.h"
#include "morvex/ins_filter.h"
#include "morvex/measurements.h"
#include "morvex/smoother.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace Morvex {

class CFixMonitor {
  public:
    // What became of a source's packets.
    struct SUse {
        std::uint64_t used = 0, rejected = 0;
        double distance = 0.0; // sum of squared innovations in standard deviations, outliers bounded
        int components = 0;
    };
    // `plan`: which sensors the run has.
    explicit CFixMonitor(const SRunPlan& plan); // `plan` must outlive the monitor

    void Add(const SPositionFix& fix, const SFixOutcome& outcome);
    void Add(const SAiding& aiding, EFixResult result, const SFixOutcome& outcome);

    // The geoid before the first fix of which the height is used.
    void SetGeoidHeight(double height) { m_geoidHeight = height; }

    // The status words at a time; `state` gives the bits of the alignment.
    std::uint32_t GetStatus1(double time, const NavigationCovariance& covariance) const;
    std::uint32_t GetStatus2(double time) const;

    // Of the last fix of which anything was used, s; far in the past before the first.
    double GetLastUsed() const { return m_lastUsed; }
    double GetLastHeight() const { return m_lastHeight; }
    double GetGeoidHeight() const { return m_geoidHeight; }
    // The last of the height, or of a speed upwards, from any sensor, s.
    double GetLastHeightAid() const;
    // `visit(channel, use)` for every source of which there was a packet.
    template <class Visit>
    void ForEachAiding(Visit&& visit) const {
        for (const SSource& source : m_sources)
            if (source.use.used + source.use.rejected > 0) visit(source.channel, source.use);
    }
    std::uint64_t GetUsedCount() const { return m_used; }
    std::uint64_t GetRejectedCount() const { return m_rejected; }

  private:
    struct SSource {
        bool isOn = false;
        std::string_view channel;
        SUse use;
        double lastSeen = -1e30, lastUsed = -1e30, lastRejected = -1e30; // s
    };
    double GetLast(EAiding kind) const {
        return m_sources[kFirstAiding + static_cast<std::size_t>(kind)].lastUsed;
    }
    static void Count(SSource& source, bool used, const SFixOutcome& outcome);
    std::uint32_t GetWord(int word, double time) const;
    static std::uint32_t StateBits(const SSource& source, double time);

    // GPS 0 to 2, USBL from kFirstUsbl on, then the kinds of EAiding.
    static constexpr std::size_t kFirstAiding = kFirstUsbl + 3;
    const std::vector<SInPeriod<EHeightAid>>* m_heightAids;
    std::array<SSource, kFirstAiding + static_cast<std::size_t>(EAiding::count)> m_sources;
    double m_lastUsed = -1e30;
    double m_lastHeight = -1e30; // time of the last height that was used, s
    double m_geoidHeight = 0.0;
    std::uint64_t m_used = 0, m_rejected = 0;
};

} // namespace Morvex
