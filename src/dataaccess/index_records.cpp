#include "dataaccess/index_records.h"

namespace Application_Tarvel {

void CIndexRecords::Append(const std::uint8_t* record) {
    const std::size_t count = m_count.load(std::memory_order_relaxed);
    const std::size_t place = count + kFirst, segment = FindSegment(place), first = kFirst << segment;
    auto& bytes = m_segments[segment];
    // Left as it is: pages that hold no record yet cost no memory.
    if (!bytes) bytes.reset(new std::uint8_t[first * m_size + SIndexForm::kReach]);
    std::uint8_t* target = bytes.get() + (place - first) * m_size;
    std::memcpy(target, record, m_size);
    std::memset(target + m_size, 0, place - first + 1 < first ? 0 : SIndexForm::kReach);
    m_count.store(count + 1, std::memory_order_release);
}

} // namespace Application_Tarvel
