// The dates of sensors at which the result is wanted as well.
#pragma once

#include "morvex/packet_stream.h"
#include "morvex/run_plan.h"

#include <memory>
#include <string_view>
#include <vector>

namespace Morvex {

struct SMark {
    double time = 0.0;        // s
    std::string_view channel; // of the plan
    std::uint32_t data = 0;   // the packet's counter, or its number in the channel
};

class CMarkReader {
  public:
    // `plan` must outlive the reader. Channels that cannot be opened give no marks.
    void Open(const SRunPlan& plan);
    // The next mark of all channels; null at the end. Valid until Pop.
    const SMark* Peek() const { return m_first < m_sources.size() ? &m_sources[m_first]->next : nullptr; }
    void Pop();

  private:
    struct SSource {
        CPacketStream stream;
        SMark next;
        std::uint32_t count = 0;
        bool hasCounter = false;
        bool hasNext = false;
    };
    void Advance(SSource& source);
    void FindFirst();

    std::vector<std::unique_ptr<SSource>> m_sources;
    std::size_t m_first = 0;
};

} // namespace Morvex
