#include "dataaccess/period_query.h"

#include "foundation/bytes.h"
#include "xpf/channel_walk.h"

#include <algorithm>
#include <array>
#include <limits>

namespace Application_Tarvel {

using namespace Persistance_Xpf;

// Searches the last packet before the period, since several may share the date of its start.
EDateSearch CTrvPeriodQuery::SeekStart(CXpfChannel& channel, CXpfDatedPacket& packet) const {
    const auto fromFirst = [&] {
        return channel.SeekFirstPacket(nullptr) ? EDateSearch::found : EDateSearch::failed;
    };
    const std::int64_t start = m_period.start.GetTicks();
    if (start == std::numeric_limits<std::int64_t>::min()) return fromFirst();
    SDateBracket bracket;
    const EDateSearch end = SearchDate(channel, packet, CDateTimeSpan(start - 1), MakeSearch(true), bracket);
    if (end == EDateSearch::cancelled) return end;
    // After the last packet a stray date may still lie in the period; those near the end are looked at.
    std::uint32_t number = bracket.lowerNumber;
    if (end == EDateSearch::outside && m_period.start > bracket.upperDate) number = bracket.upperNumber;
    SPacketHeader first;
    const bool isNear = end == EDateSearch::failed || !channel.SeekFirstPacket(&first) ||
                        number < first.number || number - first.number <= kTolerance;
    if (isNear || !channel.SeekPacketNumber(number - kTolerance) || !IsBefore(channel, packet) ||
        !channel.SeekPacketNumber(number - kTolerance))
        return fromFirst();
    return EDateSearch::found;
}

// A search that met a stray date ends too late. A few packets tell, of which a stray one costs time only.
bool CTrvPeriodQuery::IsBefore(CXpfChannel& channel, CXpfDatedPacket& packet) const {
    constexpr int kProbes = 16;
    for (int i = 0; i < kProbes; ++i)
        if (!channel.ReadNextPacket(packet) || packet.GetPacketDate() >= m_period.start) return false;
    return true;
}

EQueryEnd CTrvPeriodQuery::Search(CXpfChannel& channel, std::unique_ptr<CXpfDatedPacket> packet) {
    m_beyond = 0;
    m_cut = false;
    EQueryEnd end = EQueryEnd::failed;
    if (m_period.start.IsValid() && m_period.end.IsValid() && Begin(packet->GetLayout()))
        end = Walk(channel, *packet);
    if (end != EQueryEnd::done) Abandon();
    return end;
}

EQueryEnd CTrvPeriodQuery::Walk(CXpfChannel& channel, CXpfDatedPacket& packet) {
    switch (SeekStart(channel, packet)) {
    case EDateSearch::failed: return EQueryEnd::failed;
    case EDateSearch::cancelled: return EQueryEnd::cancelled;
    default: break;
    }
    CChannelWalk walk(channel, packet.GetPayloadSize());
    bool failed = false;
    for (;;) {
        const auto payloads = walk.Next([] {});
        // After the read: an interrupted read is no end of the file.
        if (m_cancel.IsSet()) return EQueryEnd::cancelled;
        if (payloads.empty()) {
            // The search has found the last packet from the end of the file.
            m_cut = channel.GetPrevious().Get() < channel.GetLast().Get();
            break;
        }
        if (!TakeWithin(payloads, failed)) break;
    }
    if (failed || !Finish()) return EQueryEnd::failed;
    m_progress.store(1, std::memory_order_relaxed);
    return EQueryEnd::done;
}

bool CTrvPeriodQuery::TakeWithin(Payloads payloads, bool& failed) {
    const std::int64_t start = m_period.start.GetTicks(), end = m_period.end.GetTicks();
    std::array<const std::uint8_t*, 64> within;
    while (!payloads.empty()) {
        const Payloads part = payloads.first(std::min(payloads.size(), within.size()));
        payloads = payloads.subspan(part.size());
        std::size_t count = 0;
        std::int64_t date = 0;
        for (const std::uint8_t* payload : part) {
            date = Outils::Load<std::int64_t>(payload);
            within[count] = payload;
            count += date >= start && date <= end;
            m_beyond = date > end ? m_beyond + 1 : 0;
        }
        failed = count > 0 && !Take({within.data(), count});
        if (failed || m_beyond > kTolerance) return false;
        Report(date);
    }
    return true;
}

void CTrvPeriodQuery::Report(std::int64_t date) {
    const double start = static_cast<double>(m_period.start.GetTicks());
    const double span = static_cast<double>(m_period.end.GetTicks()) - start;
    const double part = span > 0 ? (static_cast<double>(date) - start) / span : 0;
    if (part > m_progress.load(std::memory_order_relaxed))
        m_progress.store(std::min(part, 1.0), std::memory_order_relaxed);
}

} // namespace Application_Tarvel
