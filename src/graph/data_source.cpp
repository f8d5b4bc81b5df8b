#include "graph/data_source.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace Presentation_Tarvel_Graphics {

namespace {

// Beyond this a range of two such values is not finite, and no quantity has them: a curve of damaged packets
// must not flatten the others.
constexpr double kGreatestValue = 1e300;

// Packets of a channel that is shown have their date as field 0.
bool ReadDate(const CXpfPacket& packet, CDateTimeSpan origin, CDateTimeSpan& date) {
    if (!packet.GetDate(0, date)) return false;
    date += origin;
    return date.IsValid();
}

} // namespace

void CTrv1DGraphDataSource::SetDisplay(CDateTimeSpan start, CDateTimeSpan end) {
    m_start = start.GetTicks();
    m_percentPerTick = 100.0 / (static_cast<double>(end.GetTicks()) - static_cast<double>(start.GetTicks()));
}

double CTrv1DGraphDataSource::GetPeriod() const {
    return m_dataset ? static_cast<double>(m_dataset->GetBucket().GetTicks()) * m_percentPerTick : 0;
}

std::uint32_t CTrv1DGraphDataSource::GetCount() const {
    if (!m_dataset || m_percentPerTick == 0) return 0;
    return static_cast<std::uint32_t>(m_dataset->GetRepresentatives().size());
}

bool CTrv1DGraphDataSource::GetPoint(std::uint32_t index, double& x, double& y) const {
    return m_dataset && Read(*m_dataset, m_dataset->GetRepresentatives(), index, x, y);
}

bool CTrv1DGraphDataSource::GetMinimum(std::uint32_t index, double& x, double& y) const {
    return m_dataset && Read(*m_dataset, m_dataset->GetMinima(), index, x, y);
}

bool CTrv1DGraphDataSource::GetMaximum(std::uint32_t index, double& x, double& y) const {
    return m_dataset && Read(*m_dataset, m_dataset->GetMaxima(), index, x, y);
}

bool CTrv1DGraphDataSource::Read(const CTrv1DGraphDataset& dataset, const PacketList& packets,
                                 std::uint32_t index, double& x, double& y) const {
    if (index >= packets.size() || !packets[index]) return false;
    CDateTimeSpan date;
    double value = 0;
    if (!ReadValue(*packets[index], value) || !ReadDate(*packets[index], dataset.GetOrigin(), date))
        return false;
    y = value * m_factor;
    // The subtraction is done in ticks: far from zero a double cannot separate neighbouring ticks.
    std::int64_t elapsed = 0;
    if (__builtin_sub_overflow(date.GetTicks(), m_start, &elapsed)) return false;
    x = static_cast<double>(elapsed) * m_percentPerTick;
    return true;
}

bool CTrv1DGraphDataSource::IncludeValues(double& low, double& high) const {
    std::vector<const PacketList*> lists;
    for (const auto& dataset : {m_dataset, m_preview})
        if (dataset)
            for (const PacketList* list :
                 {&dataset->GetRepresentatives(), &dataset->GetMinima(), &dataset->GetMaxima()})
                lists.push_back(list);
    bool found = false;
    for (const PacketList* packets : lists) {
        for (const auto& packet : *packets) {
            double value = 0;
            if (!packet || !ReadValue(*packet, value)) continue;
            value *= m_factor;
            if (!(std::abs(value) <= kGreatestValue)) continue;
            low = std::min(low, value);
            high = std::max(high, value);
            found = true;
        }
    }
    return found;
}

bool CTrv1DGraphDataSource::GetNearestPoint(CDateTimeSpan time, double& x, double& y) const {
    return (m_dataset && FindNearest(*m_dataset, time, x, y)) ||
           (m_preview && FindNearest(*m_preview, time, x, y));
}

bool CTrv1DGraphDataSource::FindNearest(const CTrv1DGraphDataset& dataset, CDateTimeSpan time, double& x,
                                        double& y) const {
    const auto& packets = dataset.GetRepresentatives();
    const auto before = [&](const std::unique_ptr<CXpfPacket>& packet, CDateTimeSpan sought) {
        CDateTimeSpan date;
        return packet && ReadDate(*packet, dataset.GetOrigin(), date) && date < sought;
    };
    const auto place = std::lower_bound(packets.begin(), packets.end(), time, before);
    const auto index = static_cast<std::uint32_t>(place - packets.begin());
    const double wanted =
        (static_cast<double>(time.GetTicks()) - static_cast<double>(m_start)) * m_percentPerTick;
    double distance = static_cast<double>(dataset.GetBucket().GetTicks()) * m_percentPerTick * 1.5;
    bool found = false;
    for (const std::uint32_t candidate : {index - 1, index}) { // wraps at 0, and is then out of range
        double px = 0, py = 0;
        if (!Read(dataset, packets, candidate, px, py) || !(std::abs(px - wanted) <= distance)) continue;
        distance = std::abs(px - wanted);
        x = px;
        y = py;
        found = true;
    }
    return found;
}

double CTrv1DGraphDataSource::CProvisional::GetPeriod() const {
    return static_cast<double>(m_owner.m_preview->GetBucket().GetTicks()) * m_owner.m_percentPerTick;
}

std::uint32_t CTrv1DGraphDataSource::CProvisional::GetCount() const {
    if (m_owner.m_percentPerTick == 0) return 0;
    return static_cast<std::uint32_t>(m_owner.m_preview->GetRepresentatives().size());
}

bool CTrv1DGraphDataSource::CProvisional::GetPoint(std::uint32_t index, double& x, double& y) const {
    const CTrv1DGraphDataset& preview = *m_owner.m_preview;
    if (!m_owner.Read(preview, preview.GetRepresentatives(), index, x, y)) return false;
    CDateTimeSpan date, first, last;
    if (m_owner.m_dataset && m_owner.m_dataset->GetExtent(first, last) &&
        preview.GetRepresentatives()[index]->GetDate(0, date) && date > first && date < last)
        y = std::numeric_limits<double>::quiet_NaN();
    return true;
}

bool CTrv1DGraphDataSource::ReadValue(const CXpfPacket& packet, double& value) const {
    return packet.GetDouble(m_field, value);
}

bool CTrv1DGraphDataSourceEnum::ReadValue(const CXpfPacket& packet, double& value) const {
    std::uint32_t literal = 0;
    if (!packet.GetStatusValue(GetField(), literal)) return false;
    value = literal;
    return true;
}

} // namespace Presentation_Tarvel_Graphics
