#include "common/fault_counter.h"

#include <algorithm>
#include <string>

namespace Compagnon {

void CFaultCounter::Add(EText kind, std::uint64_t place) {
    auto found = std::ranges::find(m_kinds, kind, &SKind::kind);
    if (found == m_kinds.end()) found = m_kinds.insert(found, SKind{kind, 0, {}});
    if (found->count < found->first.size()) found->first[found->count] = place;
    ++found->count;
}

std::uint64_t CFaultCounter::GetCount() const {
    std::uint64_t count = 0;
    for (const SKind& kind : m_kinds) count += kind.count;
    return count;
}

std::uint64_t CFaultCounter::GetCount(EText kind) const {
    const auto found = std::ranges::find(m_kinds, kind, &SKind::kind);
    return found == m_kinds.end() ? 0 : found->count;
}

void CFaultCounter::Report(IRunMonitor& monitor, EText places) const {
    for (const SKind& kind : m_kinds) {
        std::string list;
        for (std::size_t i = 0; i < kind.first.size() && i < kind.count; ++i)
            list += (i > 0 ? ", " : "") + std::to_string(kind.first[i]);
        if (kind.count > kind.first.size()) list += ", ...";
        monitor.Report(ELevel::warning, places,
                       {Outils_Texte::GetText(kind.kind), std::to_string(kind.count), list});
    }
}

} // namespace Compagnon
