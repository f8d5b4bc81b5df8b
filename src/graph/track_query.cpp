#include "graph/track_query.h"

#include "foundation/bytes.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;
using namespace Persistance_Xpf;
using Outils_Temps::CDateTimeSpan;
using Outils_Temps::kTicksPerSecond;

namespace {

constexpr double kFinestCell = 1e-3; // metres: below what any position knows
// A line ends before a packet that comes so many times later than the one before it did, and a second.
constexpr std::int64_t kGapSteps = 10;

enum ESide : unsigned { west = 1, east = 2, south = 4, north = 8 };

} // namespace

bool CTrvTrackQuery::Begin(const SPacketLayout& layout) {
    const auto isDegrees = [&](std::uint32_t field) {
        return field < layout.fields.size() && layout.fields[field].type == EFieldType::f64 &&
               layout.fields[field].count == 1;
    };
    if (!isDegrees(m_request.latitude) || !isDegrees(m_request.longitude)) return false;
    m_latitudeOffset = layout.offsets[m_request.latitude];
    m_longitudeOffset = layout.offsets[m_request.longitude];
    m_track = {};
    m_kept.clear();
    m_previous.reset();
    m_started = false;
    m_isBroken = true;
    m_sides = 0;
    m_step = 0;
    return true;
}

bool CTrvTrackQuery::Take(Payloads payloads) {
    for (const std::uint8_t* payload : payloads) {
        const auto date = Outils::Load<std::int64_t>(payload);
        const SGeoPoint point{Outils::Load<double>(payload + m_latitudeOffset),
                              Outils::Load<double>(payload + m_longitudeOffset)};
        // Written so that what is no number fails too.
        if (!(std::abs(point.latitude) <= 90 && std::abs(point.longitude) <= 360)) {
            m_isBroken = true;
            continue;
        }
        if (!m_started) Start(point);
        TakePoint(date, point);
    }
    return true;
}

void CTrvTrackQuery::Start(const SGeoPoint& point) {
    m_started = true;
    m_track.frame = m_request.frame.value_or(CLocalFrame(point.latitude, point.longitude));
    m_scale = CLocalFrame(point.latitude, point.longitude);
    m_outermost.fill({std::numeric_limits<std::int64_t>::min(), point, false});
    SetCell(m_request.region ? m_request.cell : kFinestCell);
    m_date = std::numeric_limits<std::int64_t>::min();
}

void CTrvTrackQuery::SetCell(double metres) {
    m_track.cell = metres;
    // At a pole a degree of longitude has no length.
    m_size = {metres / m_scale.GetMetresPerLatitude(),
              metres / std::max(m_scale.GetMetresPerLongitude(), 1.0)};
    m_widest = m_request.region ? std::numeric_limits<double>::infinity() : metres * m_request.across;
}

void CTrvTrackQuery::Enter(const SGeoPoint& point) {
    m_cellLow = {std::floor(point.latitude / m_size.latitude) * m_size.latitude,
                 std::floor(point.longitude / m_size.longitude) * m_size.longitude};
    m_cellHigh = {m_cellLow.latitude + m_size.latitude, m_cellLow.longitude + m_size.longitude};
}

void CTrvTrackQuery::TakePoint(std::int64_t date, SGeoPoint point) {
    if (const double turn = point.longitude - m_scale.GetLongitude(); std::abs(turn) > 180)
        point.longitude -= 360 * std::round(turn / 360);
    ++m_track.count;
    if (m_date != std::numeric_limits<std::int64_t>::min()) {
        std::int64_t step = 0;
        const bool isWild = __builtin_sub_overflow(date, m_date, &step) || step < 0;
        m_isBroken = m_isBroken || isWild || (step > kTicksPerSecond && step / kGapSteps > m_step);
        m_step = step;
    }
    m_date = date;
    const SKept kept{date, point, m_isBroken};
    Widen(kept);
    if (const unsigned sides = m_request.region ? SidesOf(point) : 0; sides || m_sides) {
        TakeOutside(kept, sides);
        m_sides = sides;
        return;
    }
    if (!m_isBroken && IsIn(point)) {
        m_previous = kept;
        return;
    }
    Keep(kept);
}

// Of what lies outside the region only the ends of lines that lead through it are kept.
void CTrvTrackQuery::TakeOutside(const SKept& kept, unsigned sides) {
    const bool mayCross = !m_isBroken && (m_sides & sides) == 0;
    if (mayCross && m_previous) {
        SKept before = *m_previous;
        before.isBreak = m_sides != 0;
        Keep(before);
        m_isBroken = false;
    }
    if (mayCross || !sides) {
        SKept here = kept;
        here.isBreak = !mayCross;
        Keep(here);
    } else {
        m_previous = kept;
        m_isBroken = false;
    }
}

void CTrvTrackQuery::Keep(const SKept& kept) {
    m_kept.push_back(kept);
    m_previous.reset();
    m_isBroken = false;
    Enter(kept.point);
    if (m_kept.size() < kMostPoints) return;
    SetCell(m_track.cell * 2);
    Thin();
}

unsigned CTrvTrackQuery::SidesOf(const SGeoPoint& point) const {
    const SGeoBox& region = *m_request.region;
    return (point.longitude < region.low.longitude ? west : 0u) |
           (point.longitude > region.high.longitude ? east : 0u) |
           (point.latitude < region.low.latitude ? south : 0u) |
           (point.latitude > region.high.latitude ? north : 0u);
}

void CTrvTrackQuery::Widen(const SKept& kept) {
    auto& [w, e, s, n] = m_outermost;
    const SGeoPoint& point = kept.point;
    const bool isFirst = w.date == std::numeric_limits<std::int64_t>::min();
    bool isWider = isFirst;
    if (isFirst || point.longitude < w.point.longitude) w = kept, isWider = true;
    if (isFirst || point.longitude > e.point.longitude) e = kept, isWider = true;
    if (isFirst || point.latitude < s.point.latitude) s = kept, isWider = true;
    if (isFirst || point.latitude > n.point.latitude) n = kept, isWider = true;
    if (!isWider) return;
    const double span = std::max((e.point.longitude - w.point.longitude) * m_scale.GetMetresPerLongitude(),
                                 (n.point.latitude - s.point.latitude) * m_scale.GetMetresPerLatitude());
    if (span <= m_widest) return;
    while (span > m_widest) SetCell(m_track.cell * 2);
    Thin();
}

// Takes out what the larger cells do not tell apart.
void CTrvTrackQuery::Thin() {
    std::size_t count = 0;
    for (const SKept& kept : m_kept) {
        if (count > 0 && !kept.isBreak && IsIn(kept.point)) continue;
        Enter(kept.point);
        m_kept[count++] = kept;
    }
    m_kept.resize(count);
}

bool CTrvTrackQuery::Finish() {
    m_track.isCut = IsCut();
    if (!m_started) return true;
    if (m_previous && !m_sides) m_kept.push_back(*m_previous);
    const auto& [w, e, s, n] = m_outermost;
    m_track.box = SGeoBox{{s.point.latitude, w.point.longitude}, {n.point.latitude, e.point.longitude}};
    const auto isEarlier = [](const SKept& left, const SKept& right) { return left.date < right.date; };
    if (!m_request.region)
        for (SKept kept : m_outermost) {
            const auto place = std::ranges::upper_bound(m_kept, kept, isEarlier);
            const bool isThere = place != m_kept.begin() && std::prev(place)->date == kept.date;
            if (isThere) continue;
            kept.isBreak = false;
            m_kept.insert(place, kept);
        }
    m_track.points.reserve(m_kept.size());
    for (const SKept& kept : m_kept)
        m_track.points.push_back({CDateTimeSpan(kept.date),
                                  m_track.frame.ToPlace(kept.point.latitude, kept.point.longitude),
                                  kept.isBreak});
    m_kept = {};
    return true;
}

} // namespace Presentation_Tarvel_Graphics
