#include "graph/dataset.h"

#include "xpf/packet.h"

#include <iterator>

namespace Presentation_Tarvel_Graphics {

void CTrv1DGraphDataset::Append(Application_Tarvel::SReducedSeries part) {
    const auto append = [](PacketList& list, PacketList& further) {
        list.insert(list.end(), std::move_iterator(further.begin()), std::move_iterator(further.end()));
    };
    append(m_series.representatives, part.representatives);
    append(m_series.minima, part.minima);
    append(m_series.maxima, part.maxima);
}

bool CTrv1DGraphDataset::GetExtent(CDateTimeSpan& first, CDateTimeSpan& last) const {
    const PacketList& packets = m_series.representatives;
    return !packets.empty() && packets.front()->GetDate(0, first) && packets.back()->GetDate(0, last);
}

} // namespace Presentation_Tarvel_Graphics
