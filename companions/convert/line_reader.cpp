#include "convert/line_reader.h"

#include <cstring>

namespace Conversion {

// Appends what the source has next; false at its end.
bool CLineReader::Fill() {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    const std::size_t count = m_source.Read({m_buffer.data() + m_end, m_buffer.size() - m_end});
    m_end += count;
    if (m_number == 0) FindLineEnd();
    return count > 0;
}

void CLineReader::FindLineEnd() {
    const bool hasFeed = std::memchr(m_buffer.data(), '\n', m_end) != nullptr;
    m_lineEnd = hasFeed || std::memchr(m_buffer.data(), '\r', m_end) == nullptr ? '\n' : '\r';
}

std::string_view CLineReader::Take(std::size_t size, std::size_t end) {
    std::string_view line(m_buffer.data() + m_begin, size);
    m_begin += size + end;
    if (++m_number == 1 && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
    while (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

bool CLineReader::Next(std::string_view& line) {
    for (std::size_t looked = 0;;) {
        const char* begin = m_buffer.data() + m_begin;
        const std::size_t size = m_end - m_begin;
        const auto* end = static_cast<const char*>(std::memchr(begin + looked, m_lineEnd, size - looked));
        if (end) {
            line = Take(static_cast<std::size_t>(end - begin), 1);
            return true;
        }
        if (size >= kLongestLine) {
            line = Take(kLongestLine, 0);
            return true;
        }
        looked = size;
        if (!Fill()) break;
    }
    if (m_begin == m_end || m_source.IsStopped() || m_source.IsFailed()) return false;
    m_unfinished = true;
    line = Take(m_end - m_begin, 0);
    return true;
}

} // namespace Conversion
