#include "morvex/mark_reader.h"

#include "xpf/tarin_layouts.h"

namespace Morvex {

using namespace Persistance_Xpf;

void CMarkReader::Open(const SRunPlan& plan) {
    m_sources.clear();
    for (const SChannelPlan& channel : plan.synchronized) {
        const SChannelLayout* row = FindChannelLayout(channel.channel);
        const SPacketLayout* layout = row ? FindPacketLayout(row->packetType) : nullptr;
        auto source = std::make_unique<SSource>();
        if (!layout || !source->stream.Open(channel, *layout)) continue;
        source->next.channel = channel.channel;
        source->hasCounter = layout->type == typeSynchro;
        Advance(*source);
        m_sources.push_back(std::move(source));
    }
    FindFirst();
}

void CMarkReader::Pop() {
    Advance(*m_sources[m_first]);
    FindFirst();
}

void CMarkReader::Advance(SSource& source) {
    const double last = source.hasNext ? source.next.time : -1e30;
    CPayload payload;
    while (source.stream.Next(payload)) {
        const std::uint32_t number = source.count++;
        const double time = payload.GetSeconds() + source.stream.GetTimeOffset();
        if (!(time > last)) continue;
        source.next.time = time;
        source.next.data =
            source.hasCounter ? payload.Get<std::uint32_t>(kSynchroLayout.OffsetOf("Counter")) : number;
        source.hasNext = true;
        return;
    }
    source.hasNext = false;
}

void CMarkReader::FindFirst() {
    m_first = m_sources.size();
    for (std::size_t i = 0; i < m_sources.size(); ++i)
        if (m_sources[i]->hasNext &&
            (m_first == m_sources.size() || m_sources[i]->next.time < m_sources[m_first]->next.time))
            m_first = i;
}

} // namespace Morvex
