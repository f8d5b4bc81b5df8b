#include "foundation/byte_stream.h"

#include <algorithm>
#include <cstring>

namespace Outils_Objets {

std::size_t CMemoryStream::Read(void* data, std::size_t size) {
    const std::size_t count = std::min(size, m_bytes.size() - m_position);
    if (count > 0) std::memcpy(data, m_bytes.data() + m_position, count);
    m_position += count;
    return count;
}

bool CMemoryStream::Write(const void* data, std::size_t size) {
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    m_bytes.insert(m_bytes.end(), bytes, bytes + size);
    return true;
}

} // namespace Outils_Objets
