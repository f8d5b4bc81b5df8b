// The fixes of all GPS and USBL of a run, in one order of their instants of validity.
#pragma once

#include "morvex/measurements.h"
#include "morvex/mount_reader.h"
#include "morvex/packet_stream.h"
#include "morvex/run_plan.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace Morvex {

class CFixReader {
  public:
    // Opens every GPS of the plan, which must outlive the reader. Gives the numbers, from 0, of those that
    // could not be opened.
    std::vector<int> Open(const SRunPlan& plan);
    bool HasSources() const { return !m_sources.empty(); }
    // Whether the next fix of a source is relative.
    bool HasRelative() const {
        return std::ranges::any_of(m_sources, [](const auto& s) { return s->hasNext && s->next.isRelative; });
    }

    // The next fix; null at the end. Valid until Pop.
    const SPositionFix* Peek() const {
        return m_first < m_sources.size() ? &m_sources[m_first]->next : nullptr;
    }
    void Pop();

  private:
    struct SSource {
        const SGpsPlan* plan = nullptr;
        std::uint8_t number = 0;
        CPacketStream stream;
        SPositionFix next;
        bool hasNext = false;
    };
    void Advance(SSource& source);
    void FindFirst();
    bool MakeFix(SSource& source, const CPayload& payload, SPositionFix& fix);

    const SRunPlan* m_plan = nullptr;
    CMountReader m_mount;
    double m_geoidHeight = 0.0; // that a GPS stated last, m
    std::vector<std::unique_ptr<SSource>> m_sources;
    std::size_t m_first = 0; // the source whose fix is next; beyond the last at the end
};

} // namespace Morvex
