#include "graph/extent_query.h"

#include "dataaccess/date_search.h"

#include <limits>

namespace Presentation_Tarvel_Graphics {

using namespace Application_Tarvel;

EQueryEnd CTrv1DExtentQuery::Search(Persistance_Xpf::CXpfChannel& channel,
                                    std::unique_ptr<Persistance_Xpf::CXpfDatedPacket> packet) {
    // A date before everything: the search ends as soon as it knows both ends of the channel.
    const Outils_Temps::CDateTimeSpan before(std::numeric_limits<std::int64_t>::min());
    SDateBracket bracket;
    const EDateSearch end = SearchDate(channel, *packet, before, MakeSearch(false), bracket);
    m_first = bracket.lowerDate;
    m_last = bracket.upperDate;
    if (bracket.upperNumber >= bracket.lowerNumber)
        m_count = std::uint64_t{bracket.upperNumber} - bracket.lowerNumber + 1;
    if (end == EDateSearch::cancelled) return EQueryEnd::cancelled;
    return end == EDateSearch::failed ? EQueryEnd::failed : EQueryEnd::done;
}

} // namespace Presentation_Tarvel_Graphics
