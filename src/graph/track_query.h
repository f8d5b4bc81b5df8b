// The way of a channel over the ground, reduced for a picture: every packet is looked at, and a point is kept
// where the way enters another cell of a grid of half a pixel. The outermost points to the four sides are
// kept as they are.
#pragma once

#include "dataaccess/period_query.h"
#include "graph/local_frame.h"

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace Presentation_Tarvel_Graphics {

// Degrees; a longitude may be beyond 180 where the way crosses that meridian.
struct SGeoPoint {
    double latitude = 0;
    double longitude = 0;
};

struct SGeoBox {
    SGeoPoint low, high;

    bool Contains(const SGeoBox& other) const {
        return low.latitude <= other.low.latitude && high.latitude >= other.high.latitude &&
               low.longitude <= other.low.longitude && high.longitude >= other.high.longitude;
    }
};

struct STrackPoint {
    Outils_Temps::CDateTimeSpan date; // on the file's clock
    SPlace place;
    bool isBreak = false; // no line leads here from the point before
};

struct STrack {
    CLocalFrame frame;
    std::vector<STrackPoint> points; // in the order of the file
    std::uint64_t count = 0;         // positions looked at
    double cell = 0;                 // metres: how exact the points are
    std::optional<SGeoBox> box;      // of all positions; none without any
    bool isCut = false;              // damage in the file has ended the walk
};

struct STrackRequest {
    std::uint32_t latitude = 0; // fields, 64-bit floats in degrees
    std::uint32_t longitude = 0;
    std::optional<CLocalFrame> frame; // of the picture; else the first position is the origin
    double across = 2000;             // cells on the longer side of the whole way
    std::optional<SGeoBox> region;    // only what is seen of it, in cells of `cell` metres
    double cell = 0;
};

class CTrvTrackQuery final : public Application_Tarvel::TPeriodQuery<CTrvTrackQuery> {
  public:
    // Beyond as many points the cells are made larger.
    static constexpr std::size_t kMostPoints = std::size_t{1} << 17;

    CTrvTrackQuery(Application_Tarvel::SChannelAddress address, Application_Tarvel::SClosedPeriod period,
                   const STrackRequest& request, Callback onDone)
        : TPeriodQuery(std::move(address), period, std::move(onDone)), m_request(request) {}

    const STrackRequest& GetRequest() const { return m_request; }
    // Once Execute has returned.
    STrack TakeTrack() { return std::move(m_track); }

  protected:
    bool Begin(const Persistance_Xpf::SPacketLayout& layout) override;
    bool Take(Payloads payloads) override;
    bool Finish() override;

  private:
    struct SKept {
        std::int64_t date;
        SGeoPoint point;
        bool isBreak;
    };

    void Start(const SGeoPoint& point);
    void SetCell(double metres);
    void Enter(const SGeoPoint& point);
    bool IsIn(const SGeoPoint& point) const {
        return point.latitude >= m_cellLow.latitude && point.latitude < m_cellHigh.latitude &&
               point.longitude >= m_cellLow.longitude && point.longitude < m_cellHigh.longitude;
    }
    void TakePoint(std::int64_t date, SGeoPoint point);
    void TakeOutside(const SKept& kept, unsigned sides);
    void Keep(const SKept& kept);
    void Widen(const SKept& kept);
    void Thin();
    unsigned SidesOf(const SGeoPoint& point) const;

    STrackRequest m_request;
    std::uint32_t m_latitudeOffset = 0, m_longitudeOffset = 0; // bytes, in the payload
    STrack m_track;
    std::vector<SKept> m_kept;
    bool m_started = false;
    CLocalFrame m_scale;                 // at the first position
    SGeoPoint m_size;                    // of a cell, degrees
    SGeoPoint m_cellLow, m_cellHigh;     // the cell at hand, half open
    std::array<SKept, 4> m_outermost{};  // west, east, south, north
    double m_widest = 0;                 // metres that the grid holds before its cells grow
    std::optional<SKept> m_previous;     // the last position, where it was not kept
    unsigned m_sides = 0;                // of the region on which it lay
    std::int64_t m_date = 0, m_step = 0; // of the last packet, and from the one before
    bool m_isBroken = true;              // the next position begins a line
};

} // namespace Presentation_Tarvel_Graphics
