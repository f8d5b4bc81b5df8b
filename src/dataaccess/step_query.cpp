#include "dataaccess/step_query.h"

#include <algorithm>
#include <vector>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

EQueryEnd CTrvStepQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    m_date.reset();
    SDateBracket bracket;
    if (const auto end = FindNeighbours(channel, *packet, m_from, bracket)) return *end;
    const bool isAfter = m_from >= bracket.upperDate;
    if (m_steps > 0) return StepOn(channel, *packet, bracket.lowerNumber);
    if (m_steps < 0) return StepBack(channel, *packet, isAfter ? bracket.upperNumber : bracket.lowerNumber);
    return EQueryEnd::done;
}

// `number`: of a packet at or before the start, or the first one.
EQueryEnd CTrvStepQuery::StepOn(CXpfChannel& channel, CXpfDatedPacket& packet, std::uint32_t number) {
    if (!channel.SeekPacketNumber(number)) return EQueryEnd::failed;
    CDateTimeSpan last = m_from;
    for (int steps = 0; steps < m_steps && channel.ReadNextPacket(packet);) {
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        if (!(packet.GetPacketDate() > last)) continue;
        last = packet.GetPacketDate();
        m_date = last;
        ++steps;
    }
    return m_cancel.IsSet() ? EQueryEnd::cancelled : EQueryEnd::done;
}

// Packets are linked forwards: reads from some packets before, and from ever more while these do not do.
// `number`: of a packet at or after the last one wanted.
EQueryEnd CTrvStepQuery::StepBack(CXpfChannel& channel, CXpfDatedPacket& packet, std::uint32_t number) {
    SPacketHeader header;
    if (!channel.SeekFirstPacket(&header)) return EQueryEnd::failed;
    const std::uint64_t steps = static_cast<std::uint64_t>(-static_cast<std::int64_t>(m_steps));
    const std::uint64_t before = number > header.number ? number - header.number : 0;
    for (std::uint64_t reach = std::min(before, steps + 16);; reach = std::min(before, reach * 8)) {
        std::vector<CDateTimeSpan> dates; // rising
        const bool sought = reach == before
                                ? channel.SeekFirstPacket(nullptr)
                                : channel.SeekPacketNumber(static_cast<std::uint32_t>(number - reach));
        if (!sought) return EQueryEnd::failed;
        for (std::uint64_t i = 0; i <= reach && channel.ReadNextPacket(packet); ++i) {
            if (m_cancel.IsSet()) return EQueryEnd::cancelled;
            const CDateTimeSpan date = packet.GetPacketDate();
            if (date < m_from && (dates.empty() || date > dates.back())) dates.push_back(date);
        }
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        // The first date at hand may go on before what was read, but is the same for all its packets.
        if (dates.size() < steps && reach < before) continue;
        if (!dates.empty()) m_date = dates[dates.size() - std::min<std::uint64_t>(steps, dates.size())];
        return EQueryEnd::done;
    }
}

} // namespace Application_Tarvel
