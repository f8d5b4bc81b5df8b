#include "graph/data_source.h"

#include <algorithm>
#include <cmath>

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
    return m_dataset && Read(m_dataset->GetRepresentatives(), index, x, y);
}

bool CTrv1DGraphDataSource::GetMinimum(std::uint32_t index, double& x, double& y) const {
    return m_dataset && Read(m_dataset->GetMinima(), index, x, y);
}

bool CTrv1DGraphDataSource::GetMaximum(std::uint32_t index, double& x, double& y) const {
    return m_dataset && Read(m_dataset->GetMaxima(), index, x, y);
}

bool CTrv1DGraphDataSource::Read(const PacketList& packets, std::uint32_t index, double& x, double& y) const {
    if (index >= packets.size() || !packets[index]) return false;
    CDateTimeSpan date;
    double value = 0;
    if (!ReadValue(*packets[index], value) || !ReadDate(*packets[index], m_dataset->GetOrigin(), date))
        return false;
    y = value * m_factor;
    // The subtraction is done in ticks: far from zero a double cannot separate neighbouring ticks.
    std::int64_t elapsed = 0;
    if (__builtin_sub_overflow(date.GetTicks(), m_start, &elapsed)) return false;
    x = static_cast<double>(elapsed) * m_percentPerTick;
    return true;
}

bool CTrv1DGraphDataSource::IncludeValues(double& low, double& high) const {
    if (!m_dataset) return false;
    bool found = false;
    for (const PacketList* packets :
         {&m_dataset->GetRepresentatives(), &m_dataset->GetMinima(), &m_dataset->GetMaxima()}) {
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
    if (!m_dataset) return false;
    const auto& packets = m_dataset->GetRepresentatives();
    const auto before = [&](const std::unique_ptr<CXpfPacket>& packet, CDateTimeSpan sought) {
        CDateTimeSpan date;
        return packet && ReadDate(*packet, m_dataset->GetOrigin(), date) && date < sought;
    };
    const auto place = std::lower_bound(packets.begin(), packets.end(), time, before);
    const auto index = static_cast<std::uint32_t>(place - packets.begin());
    const double wanted =
        (static_cast<double>(time.GetTicks()) - static_cast<double>(m_start)) * m_percentPerTick;
    double distance = GetPeriod() * 1.5;
    bool found = false;
    for (const std::uint32_t candidate : {index - 1, index}) { // wraps at 0, and is then out of range
        double px = 0, py = 0;
        if (!GetPoint(candidate, px, py) || !(std::abs(px - wanted) <= distance)) continue;
        distance = std::abs(px - wanted);
        x = px;
        y = py;
        found = true;
    }
    return found;
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
