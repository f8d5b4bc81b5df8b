// The result of one query: the packets of one channel over one window, one per bucket of the display. UI
// thread.
#pragma once

#include "dataaccess/view_queries.h"

#include <compare>
#include <cstdint>
#include <memory>

namespace Metier_Tarvel {
class CTrvDataFile;
}

namespace Presentation_Tarvel_Graphics {

using Application_Tarvel::PacketList;
using Outils_Temps::CDateTimeSpan;
using Persistance_Xpf::CXpfPacket;

// A channel of a data file of the project. The file may be destroyed: its address is compared and never
// followed.
struct SChannelKey {
    const Metier_Tarvel::CTrvDataFile* file = nullptr;
    std::uint16_t channel = 0;

    friend auto operator<=>(const SChannelKey&, const SChannelKey&) = default;
};

// Shared by all curves that show the channel, which read different fields of it. Grows at its end while its
// window is being read, and never changes otherwise.
class CTrv1DGraphDataset {
  public:
    // `bucket` is the width of a bucket. The date of a packet plus `origin` is simulation time.
    CTrv1DGraphDataset(Application_Tarvel::SReducedSeries series, CDateTimeSpan bucket, CDateTimeSpan origin)
        : m_series(std::move(series)), m_bucket(bucket), m_origin(origin) {}

    // Minimum and maximum packets are there for every bucket.
    bool HasExtremum() const {
        const std::size_t count = m_series.representatives.size();
        return count > 0 && m_series.minima.size() == count && m_series.maxima.size() == count;
    }
    // The slices that follow.
    void Append(Application_Tarvel::SReducedSeries part);
    // The dates of the first and the last packet, on the clock of the file; false when there is none.
    bool GetExtent(CDateTimeSpan& first, CDateTimeSpan& last) const;

    const PacketList& GetRepresentatives() const { return m_series.representatives; }
    const PacketList& GetMinima() const { return m_series.minima; }
    const PacketList& GetMaxima() const { return m_series.maxima; }
    CDateTimeSpan GetBucket() const { return m_bucket; }
    CDateTimeSpan GetOrigin() const { return m_origin; }

  private:
    Application_Tarvel::SReducedSeries m_series;
    CDateTimeSpan m_bucket;
    CDateTimeSpan m_origin;
};

} // namespace Presentation_Tarvel_Graphics
