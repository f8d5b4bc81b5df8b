#include "graph/change_query.h"

#include "dataaccess/date_search.h"

#include <algorithm>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;

EQueryEnd CTrv1DChangeQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    SDateBracket bracket;
    if (const auto end = FindNeighbours(channel, *packet, m_from, bracket)) return *end;
    const bool isAfter = m_from >= bracket.upperDate;
    if (m_forward) return SearchOn(channel, *packet, isAfter ? bracket.upperNumber : bracket.lowerNumber);
    return SearchBack(channel, *packet, isAfter ? bracket.upperNumber : bracket.lowerNumber);
}

std::optional<std::uint32_t> CTrv1DChangeQuery::ReadState(const CXpfDatedPacket& packet) const {
    std::uint32_t state = 0;
    if (!packet.GetStatusValue(m_field, state)) return {};
    return state;
}

// `number`: of a packet at or before the start, or the first one.
EQueryEnd CTrv1DChangeQuery::SearchOn(CXpfChannel& channel, CXpfDatedPacket& packet, std::uint32_t number) {
    if (!channel.SeekPacketNumber(number)) return EQueryEnd::failed;
    std::optional<std::uint32_t> before;
    for (bool first = true; channel.ReadNextPacket(packet); first = false) {
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        const auto state = ReadState(packet);
        if (!first && state != before && packet.GetPacketDate() > m_from) {
            m_date = packet.GetPacketDate();
            return EQueryEnd::done;
        }
        before = state;
    }
    return m_cancel.IsSet() ? EQueryEnd::cancelled : EQueryEnd::done;
}

// Packets are linked forwards: reads from some packets before, and from ever more while these do not do.
EQueryEnd CTrv1DChangeQuery::SearchBack(CXpfChannel& channel, CXpfDatedPacket& packet, std::uint32_t number) {
    SPacketHeader header;
    if (!channel.SeekFirstPacket(&header)) return EQueryEnd::failed;
    const std::uint64_t before = number > header.number ? number - header.number : 0;
    for (std::uint64_t reach = std::min<std::uint64_t>(before, 256);;
         reach = std::min<std::uint64_t>(before, reach * 8)) {
        const bool sought = reach == before
                                ? channel.SeekFirstPacket(nullptr)
                                : channel.SeekPacketNumber(static_cast<std::uint32_t>(number - reach));
        if (!sought) return EQueryEnd::failed;
        std::optional<std::uint32_t> last;
        for (std::uint64_t i = 0; i <= reach && channel.ReadNextPacket(packet); ++i) {
            if (m_cancel.IsSet()) return EQueryEnd::cancelled;
            const auto state = ReadState(packet);
            if (i > 0 && state != last && packet.GetPacketDate() < m_from) m_date = packet.GetPacketDate();
            last = state;
        }
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        if (m_date || reach == before) return EQueryEnd::done;
    }
}

} // namespace Presentation_Tarvel_Graphics
